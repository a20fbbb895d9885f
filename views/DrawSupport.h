#pragma once
// Small makers of drawing primitives that the views share.

#include "views/Primitives.h"

#include <QString>

#include <algorithm>
#include <utility>
#include <vector>

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

// Histogram bars from the base line up to each column's top (both ends
// inked; ColumnArea::kNoColumn: no bar), the first at x = left. A plain
// one-pixel pen makes them one area; any other pen a line each.
inline void AddBars(int left, int baseY, std::vector<int> tops, const Pen& pen, DrawList& list) {
  if (pen.width <= 1 && pen.dash == DashStyle::Solid && !pen.xorMode) {
    ColumnArea bars;
    bars.left = left;
    bars.baseY = baseY;
    bars.tops = std::move(tops);
    bars.color = pen.color;
    list.add(std::move(bars));
    return;
  }
  for (size_t i = 0; i < tops.size(); ++i) {
    const int x = left + static_cast<int>(i);
    if (tops[i] != ColumnArea::kNoColumn) list.add(Line{x, baseY, x, tops[i], pen});
  }
}

// A picture too small to draw in: only this note.
inline constexpr char kTooSmallNote[] = "Мало места";

}  // namespace aqx::views
