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

using Primitive = std::variant<Line, Polyline, Rect, Ellipse, Text>;

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
