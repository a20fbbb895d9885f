#pragma once
// The picture box of a view window: shows the last drawn list as an image,
// an overlay of inverted lines over it, and passes the mouse to callbacks.

#include "ui/paint/PaintDrawList.h"

#include <QImage>
#include <QWidget>

#include <functional>

namespace aqx::ui {

class ViewPicture : public QWidget {
 public:
  ViewPicture(const QString& objectName, QWidget* parent);

  void setPicture(views::DrawList list, const QFont& font);
  void setOverlay(views::DrawList overlay);
  const views::DrawList& list() const { return list_; }

  std::function<void(Qt::MouseButton, QPointF)> pressed;
  std::function<void(QPointF, bool leftHeld)> moved;
  std::function<void()> released;
  std::function<void()> left;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* e) override;
  void mouseMoveEvent(QMouseEvent* e) override;
  void mouseReleaseEvent(QMouseEvent* e) override;
  void leaveEvent(QEvent* e) override;

 private:
  views::DrawList list_;
  views::DrawList overlay_;
  QImage image_;
};

}  // namespace aqx::ui
