#include "ui/common/PictureWidget.h"

#include "ui/paint/PaintDrawList.h"

#include <QMouseEvent>
#include <QPainter>

namespace aqx::ui {

PictureWidget::PictureWidget(const QString& objectName, const QFont& font, QWidget* parent)
    : QWidget(parent), font_(font) {
  setObjectName(objectName);
  setFont(font);
  setMouseTracking(true);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void PictureWidget::setPicture(views::DrawList list) {
  list_ = std::move(list);
  image_ = RenderDrawList(list_, font_);
  update();
}

void PictureWidget::setOverlay(views::DrawList overlay) {
  overlay_ = std::move(overlay);
  update();
}

QImage PictureWidget::image() const { return image_; }

void PictureWidget::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), ToQColor(list_.background));
  if (!image_.isNull()) p.drawImage(0, 0, image_);
  // The inverting ink works on the widget's raster backing store.
  PaintDrawListItems(p, overlay_, font_);
}

void PictureWidget::mousePressEvent(QMouseEvent* e) {
  if (handlers_.press) handlers_.press(e->button(), e->position().toPoint());
}

void PictureWidget::mouseMoveEvent(QMouseEvent* e) {
  if (handlers_.move) handlers_.move(e->position().toPoint(), e->buttons());
}

void PictureWidget::mouseReleaseEvent(QMouseEvent* e) {
  if (handlers_.release) handlers_.release(e->button());
}

void PictureWidget::mouseDoubleClickEvent(QMouseEvent*) {
  if (handlers_.doubleClick) handlers_.doubleClick();
}

}  // namespace aqx::ui
