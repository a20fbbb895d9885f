#pragma once
// Drawing primitives in pixels: what view logic produces and ui/ paints. No
// toolkit types, so the same list renders in a window, into an image for the
// clipboard, and in tests.

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace aqx::views {

// Colour as the files keep it: a blue-green-red word (0x00BBGGRR).
using BgrColor = int32_t;

enum class DashStyle { Solid, Dash, Dot, DashDot };

struct Pen {
  BgrColor color = 0;
  int width = 1;
  DashStyle dash = DashStyle::Solid;
  bool xorMode = false;  // cursor lines drawn so that a second draw erases them
};

struct Line {
  int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  Pen pen;
};

// Connected line through the points, one pen; filled, the closed shape
// they outline is painted in the fill colour and the pen draws its outline.
struct Polyline {
  std::vector<int> xs;
  std::vector<int> ys;
  Pen pen;
  bool filled = false;
  BgrColor fill = 0;
};

// The area between a base line and a profile given column by column from
// `left` on: the bars of a histogram, or the ground under a spectrum that
// hides what lies behind it. Both ends are included. A column holding
// kNoColumn has no bar; a `joined` area fills it up to the straight line
// between its neighbours (the ends of the area counting as the base). One
// item for a whole picture's width, where a line per column would be
// thousands.
struct ColumnArea {
  static constexpr int kNoColumn = -2147483647 - 1;
  int left = 0;
  int baseY = 0;
  std::vector<int> tops;
  BgrColor color = 0;
  bool joined = false;
};

// The top of each column of an area as painted: kNoColumn where nothing
// is, the line between neighbours where a joined area has no bar of its own.
inline std::vector<int> PaintedTops(const ColumnArea& area) {
  std::vector<int> tops = area.tops;
  if (!area.joined || tops.empty()) return tops;
  if (tops.front() == ColumnArea::kNoColumn) tops.front() = area.baseY;
  if (tops.back() == ColumnArea::kNoColumn) tops.back() = area.baseY;
  size_t known = 0;
  for (size_t x = 1; x < tops.size(); ++x) {
    if (tops[x] == ColumnArea::kNoColumn) continue;
    const long long rise = static_cast<long long>(tops[x]) - tops[known];
    const long long run = static_cast<long long>(x - known);
    // The nearest pixel, a half rounded down the screen; in integers, so
    // that every machine paints the same.
    for (size_t between = known + 1; between < x; ++between) {
      const long long num = 2 * rise * static_cast<long long>(between - known) + run;
      const long long step = num >= 0 ? num / (2 * run) : -((-num + 2 * run - 1) / (2 * run));
      tops[between] = tops[known] + static_cast<int>(step);
    }
    known = x;
  }
  return tops;
}

struct Rect {
  int left = 0, top = 0, right = 0, bottom = 0;
  Pen pen;
  bool filled = false;
  BgrColor fill = 0;
};

struct Ellipse {
  int left = 0, top = 0, right = 0, bottom = 0;
  Pen pen;
  bool filled = false;
  BgrColor fill = 0;
};

enum class TextAnchor { TopLeft, TopCenter, TopRight, MiddleLeft, Center, MiddleRight, BottomLeft, BottomCenter, BottomRight };

struct Text {
  int x = 0, y = 0;
  std::string utf8;
  BgrColor color = 0;
  TextAnchor anchor = TextAnchor::TopLeft;
  int pointSize = 0;  // 0: the view's font
  bool bold = false;
};

using Primitive = std::variant<Line, Polyline, ColumnArea, Rect, Ellipse, Text>;

struct DrawList {
  int width = 0;
  int height = 0;
  BgrColor background = 0xFFFFFF;
  std::vector<Primitive> items;

  template <class T>
  void add(T&& item) { items.emplace_back(std::forward<T>(item)); }
};

// Font measurements the layout needs, supplied by whoever paints.
struct FontMetrics {
  int charWidth = 7;     // average character width, pixels
  int lineHeight = 14;   // pixels
  int (*textWidth)(const std::string& utf8, const void* context) = nullptr;
  const void* context = nullptr;
  int widthOf(const std::string& utf8) const {
    return textWidth ? textWidth(utf8, context) : charWidth * static_cast<int>(utf8.size());
  }
};

}  // namespace aqx::views
