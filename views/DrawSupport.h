#pragma once
// Small makers of drawing primitives that the views share.

#include "views/Primitives.h"

#include <QString>

#include <algorithm>

namespace aqx::views {

inline Pen MakePen(BgrColor color, int width = 1, DashStyle dash = DashStyle::Solid) {
  Pen p;
  p.color = color;
  p.width = std::max(1, width);
  p.dash = dash;
  return p;
}

inline Text MakeText(int x, int y, const QString& text, BgrColor color, TextAnchor anchor = TextAnchor::TopLeft) {
  Text t;
  t.x = x;
  t.y = y;
  t.utf8 = text.toStdString();
  t.color = color;
  t.anchor = anchor;
  return t;
}

// A one-pixel dot of ±half pixels, filled.
inline Rect MakeDot(int x, int y, int half, BgrColor color) {
  return Rect{x - half, y - half, x + half + 1, y + half + 1, MakePen(color), true, color};
}

// A picture too small to draw in: only this note.
inline constexpr char kTooSmallNote[] = "Мало места";

}  // namespace aqx::views
