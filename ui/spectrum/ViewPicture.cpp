#include "ui/spectrum/ViewPicture.h"

#include <QMouseEvent>
#include <QPainter>

namespace aqx::ui {

ViewPicture::ViewPicture(const QString& objectName, QWidget* parent) : QWidget(parent) {
  setObjectName(objectName);
  setMouseTracking(true);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void ViewPicture::setPicture(views::DrawList list, const QFont& font) {
  list_ = std::move(list);
  image_ = list_.width > 0 && list_.height > 0 ? RenderDrawList(list_, font) : QImage();
  update();
}

void ViewPicture::setOverlay(views::DrawList overlay) {
  overlay_ = std::move(overlay);
  update();
}

void ViewPicture::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), ToQColor(list_.background));
  if (!image_.isNull()) p.drawImage(0, 0, image_);
  PaintDrawListItems(p, overlay_, font());
}

void ViewPicture::mousePressEvent(QMouseEvent* e) {
  if (pressed) pressed(e->button(), e->position());
}

void ViewPicture::mouseMoveEvent(QMouseEvent* e) {
  if (moved) moved(e->position(), (e->buttons() & Qt::LeftButton) != 0);
}

void ViewPicture::mouseReleaseEvent(QMouseEvent*) {
  if (released) released();
}

void ViewPicture::leaveEvent(QEvent*) {
  if (left) left();
}

}  // namespace aqx::ui
