#pragma once
// Paints the drawing primitives of the view logic with QPainter, on a window,
// an image for the clipboard or a file, alike.
//
// Geometry as the views state it: a Rect or Ellipse covers the pixels from
// left/top up to but not including right/bottom; lines include both ends;
// a Text's (x, y) is the point its anchor names on the text's box.

#include "views/Primitives.h"

#include <QColor>
#include <QFont>
#include <QFontMetrics>
#include <QImage>

class QPainter;
class QPaintDevice;

namespace aqx::ui {

QColor ToQColor(views::BgrColor bgr);
views::BgrColor ToBgr(const QColor& color);

// Fills the list's background over its size and paints every item in order.
// Text without a point size of its own uses `font`.
void PaintDrawList(QPainter& painter, const views::DrawList& list, const QFont& font);
void PaintDrawList(QPaintDevice& device, const views::DrawList& list, const QFont& font);
// The items alone, over whatever the painter's device shows already.
void PaintDrawListItems(QPainter& painter, const views::DrawList& list, const QFont& font);

// The list as an opaque image of list.width x list.height pixels.
QImage RenderDrawList(const views::DrawList& list, const QFont& font);
QImage RenderDrawList(const views::DrawList& list);

// The font the views draw with when the caller has none of its own: a fixed
// sans family at a fixed size, so that rendered images match between runs.
QFont DefaultViewFont();

// Font measurements for the view logic, backed by QFontMetrics. The object
// must outlive every use of metrics().
class QtFontMetrics {
 public:
  explicit QtFontMetrics(const QFont& font);
  QtFontMetrics(const QtFontMetrics&) = delete;
  QtFontMetrics& operator=(const QtFontMetrics&) = delete;
  const views::FontMetrics& metrics() const { return metrics_; }

 private:
  QFontMetrics qt_;
  views::FontMetrics metrics_;
};

}  // namespace aqx::ui
