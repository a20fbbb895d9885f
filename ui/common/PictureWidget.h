#pragma once
// The picture of a view window: shows the last drawn list, an inverted
// overlay over it (a cross-hair), and hands mouse events to its owner.

#include "views/Primitives.h"

#include <QImage>
#include <QWidget>

#include <functional>

namespace aqx::ui {

class PictureWidget : public QWidget {
  Q_OBJECT
 public:
  struct Handlers {
    std::function<void(Qt::MouseButton, QPoint)> press;
    std::function<void(QPoint, Qt::MouseButtons)> move;
    std::function<void(Qt::MouseButton)> release;
    std::function<void()> doubleClick;
  };

  PictureWidget(const QString& objectName, const QFont& font, QWidget* parent);

  void setHandlers(Handlers handlers) { handlers_ = std::move(handlers); }
  void setPicture(views::DrawList list);
  void setOverlay(views::DrawList overlay);
  const views::DrawList& list() const { return list_; }
  // The picture as painted, for the clipboard.
  QImage image() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  QFont font_;
  Handlers handlers_;
  views::DrawList list_;
  views::DrawList overlay_;
  QImage image_;
};

}  // namespace aqx::ui
