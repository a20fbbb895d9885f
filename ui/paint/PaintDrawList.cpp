#include "ui/paint/PaintDrawList.h"

#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QLine>
#include <QList>
#include <QPolygon>
#include <QTransform>

#include <algorithm>
#include <array>

namespace aqx::ui {

namespace {

Qt::PenStyle ToQtDash(views::DashStyle dash) {
  switch (dash) {
    case views::DashStyle::Dash: return Qt::DashLine;
    case views::DashStyle::Dot: return Qt::DotLine;
    case views::DashStyle::DashDot: return Qt::DashDotLine;
    case views::DashStyle::Solid: break;
  }
  return Qt::SolidLine;
}

// Inverting ink: a white pen in xor mode turns every pixel into its
// complement, so the same stroke drawn twice restores the picture.
void ApplyMode(QPainter& painter, const views::Pen& pen) {
  if (!pen.xorMode) {
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  } else if ((pen.color & 0xFFFFFF) == 0xFFFFFF) {
    painter.setCompositionMode(QPainter::RasterOp_NotDestination);
  } else {
    painter.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
  }
}

QPen ToQPen(const views::Pen& pen) {
  QPen p(ToQColor(pen.color));
  p.setWidth(std::max(1, pen.width));
  p.setStyle(ToQtDash(pen.dash));
  // Square caps on one-pixel pens put the end point in, as the views expect.
  p.setCapStyle(pen.width <= 1 ? Qt::SquareCap : Qt::FlatCap);
  p.setJoinStyle(Qt::MiterJoin);
  // One-pixel pens stay one pixel whatever the painter's transform.
  if (pen.width <= 1) p.setCosmetic(true);
  return p;
}

QRect BoxOf(int left, int top, int right, int bottom) {
  const int l = std::min(left, right), r = std::max(left, right);
  const int t = std::min(top, bottom), b = std::max(top, bottom);
  return QRect(l, t, r - l, b - t);
}

// A solid one-pixel stroke along an axis is a one-pixel box, end points
// included; filled as a box it costs a fraction of the stroker's time, which
// matters for a thinned trace of a million samples, whose columns are long
// verticals. Only on an untransformed painter: one-pixel pens stay one pixel.
bool IsPlainPen(const QPainter& p, const views::Pen& pen) {
  return !pen.xorMode && pen.width <= 1 && pen.dash == views::DashStyle::Solid &&
         p.transform().type() <= QTransform::TxTranslate;
}

// An image painted without clip or transform takes opaque ink as stores
// straight into its pixels: a thinned trace of a million samples fills some
// two million of them, and a box per row costs twice as much.
struct DirectPixels {
  uint32_t* pixels = nullptr;
  size_t stridePixels = 0;
  int widthPx = 0, heightPx = 0;
  uint32_t value = 0;

  DirectPixels(QPainter& p, const QColor& color) {
    QPaintDevice* device = p.device();
    if (device == nullptr || device->devType() != QInternal::Image || p.hasClipping() ||
        !p.transform().isIdentity() || color.alpha() != 255)
      return;
    auto* image = static_cast<QImage*>(device);
    const QImage::Format f = image->format();
    if (f != QImage::Format_RGB32 && f != QImage::Format_ARGB32 && f != QImage::Format_ARGB32_Premultiplied) return;
    // The painter has the image to itself already; constBits does not copy it.
    pixels = reinterpret_cast<uint32_t*>(const_cast<uchar*>(image->constBits()));
    stridePixels = static_cast<size_t>(image->bytesPerLine()) / sizeof(uint32_t);
    widthPx = image->width();
    heightPx = image->height();
    value = color.rgba();
  }
  explicit operator bool() const { return pixels != nullptr; }
  uint32_t* row(int y) const { return pixels + static_cast<size_t>(y) * stridePixels; }
};

// Fills an area column by column as the image lies in memory: a strip of
// columns one cache line wide, row after row, so that each line is fetched
// once and not once per column it holds.
void FillArea(const DirectPixels& d, int left, int baseY, const std::vector<int>& tops) {
  constexpr int kStripPx = 16;
  const int count = static_cast<int>(tops.size());
  std::array<int, kStripPx> low{}, high{};
  for (int start = std::max(0, -left); start < count && left + start < d.widthPx; start += kStripPx) {
    const int width = std::min({kStripPx, count - start, d.widthPx - left - start});
    int stripLow = d.heightPx, stripHigh = -1;
    for (int i = 0; i < width; ++i) {
      const int top = tops[static_cast<size_t>(start + i)];
      if (top == views::ColumnArea::kNoColumn) {
        low[static_cast<size_t>(i)] = 1;
        high[static_cast<size_t>(i)] = 0;
        continue;
      }
      low[static_cast<size_t>(i)] = std::min(top, baseY);
      high[static_cast<size_t>(i)] = std::max(top, baseY);
      stripLow = std::min(stripLow, low[static_cast<size_t>(i)]);
      stripHigh = std::max(stripHigh, high[static_cast<size_t>(i)]);
    }
    stripLow = std::max(stripLow, 0);
    stripHigh = std::min(stripHigh, d.heightPx - 1);
    for (int y = stripLow; y <= stripHigh; ++y) {
      uint32_t* at = d.row(y) + left + start;
      for (int i = 0; i < width; ++i)
        if (low[static_cast<size_t>(i)] <= y && y <= high[static_cast<size_t>(i)]) at[i] = d.value;
    }
  }
}

// Fills solid one-pixel strokes as boxes. Vertical pieces that touch in the
// same column are joined first, so that a pixel is filled once.
class StrokeFiller {
 public:
  StrokeFiller(QPainter& p, const QColor& color) : p_(p), color_(color), direct_(p, color) {}
  ~StrokeFiller() { flush(); }
  StrokeFiller(const StrokeFiller&) = delete;
  StrokeFiller& operator=(const StrokeFiller&) = delete;

  // False for a stroke that is not made of such pieces.
  bool add(int x1, int y1, int x2, int y2) {
    if (y1 == y2 && x1 != x2) {
      row(std::min(x1, x2), std::max(x1, x2), y1);
      return true;
    }
    if (x1 == x2) {
      column(x1, y1, y2);
      return true;
    }
    if (std::abs(x2 - x1) != 1) return false;
    // A stroke to the next column (the joints of a thinned trace, the steps
    // of a spectrum): its first half lies in the one column, its second half
    // in the other; a diagonal step is its two end pixels.
    if (std::abs(y2 - y1) <= 1) {
      column(x1, y1, y1);
      column(x2, y2, y2);
      return true;
    }
    const int middle = y1 + (y2 - y1) / 2;
    column(x1, y1, middle);
    column(x2, middle + (y2 > y1 ? 1 : -1), y2);
    return true;
  }

  void flush() {
    if (open_) {
      if (direct_) {
        storeColumn();
      } else {
        p_.fillRect(QRect(QPoint(x_, low_), QPoint(x_, high_)), color_);
      }
    }
    open_ = false;
  }

 private:
  void storeColumn() const {
    if (x_ < 0 || x_ >= direct_.widthPx) return;
    const int top = std::max(low_, 0), bottom = std::min(high_, direct_.heightPx - 1);
    uint32_t* at = direct_.row(top) + x_;
    for (int y = top; y <= bottom; ++y, at += direct_.stridePixels) *at = direct_.value;
  }

  void row(int left, int right, int y) {
    if (!direct_) {
      p_.fillRect(QRect(QPoint(left, y), QPoint(right, y)), color_);
      return;
    }
    if (y < 0 || y >= direct_.heightPx || right < 0 || left >= direct_.widthPx) return;
    uint32_t* line = direct_.row(y);
    std::fill(line + std::max(left, 0), line + std::min(right, direct_.widthPx - 1) + 1, direct_.value);
  }

  void column(int x, int ya, int yb) {
    const int low = std::min(ya, yb), high = std::max(ya, yb);
    if (open_ && x == x_ && low <= high_ + 1 && high >= low_ - 1) {
      low_ = std::min(low_, low);
      high_ = std::max(high_, high);
      return;
    }
    flush();
    open_ = true;
    x_ = x;
    low_ = low;
    high_ = high;
  }

  QPainter& p_;
  QColor color_;
  DirectPixels direct_;
  bool open_ = false;
  int x_ = 0, low_ = 0, high_ = 0;
};

struct Painter {
  QPainter& p;
  const QFont& font;

  void operator()(const views::Line& line) const {
    if (IsPlainPen(p, line.pen)) {
      p.setCompositionMode(QPainter::CompositionMode_SourceOver);
      if (StrokeFiller(p, ToQColor(line.pen.color)).add(line.x1, line.y1, line.x2, line.y2)) return;
    }
    ApplyMode(p, line.pen);
    p.setPen(ToQPen(line.pen));
    if (line.x1 == line.x2 && line.y1 == line.y2) {
      p.drawPoint(line.x1, line.y1);
    } else {
      p.drawLine(line.x1, line.y1, line.x2, line.y2);
    }
  }

  void operator()(const views::Polyline& poly) const {
    const size_t n = std::min(poly.xs.size(), poly.ys.size());
    if (n == 0) return;
    ApplyMode(p, poly.pen);
    p.setPen(ToQPen(poly.pen));
    if (n == 1) {
      p.drawPoint(poly.xs[0], poly.ys[0]);
      return;
    }
    if (poly.filled) {
      QPolygon shape(static_cast<int>(n));
      for (size_t i = 0; i < n; ++i) shape.setPoint(static_cast<int>(i), poly.xs[i], poly.ys[i]);
      p.setBrush(ToQColor(poly.fill));
      p.drawPolygon(shape);
      p.setBrush(Qt::NoBrush);
      return;
    }
    if (IsPlainPen(p, poly.pen)) {
      // Opaque ink in one colour: the order of the strokes does not show.
      StrokeFiller filler(p, ToQColor(poly.pen.color));
      QList<QLine> slanted;
      for (size_t i = 1; i < n; ++i) {
        if (!filler.add(poly.xs[i - 1], poly.ys[i - 1], poly.xs[i], poly.ys[i])) {
          slanted.append(QLine(poly.xs[i - 1], poly.ys[i - 1], poly.xs[i], poly.ys[i]));
        }
      }
      if (!slanted.isEmpty()) p.drawLines(slanted);
      return;
    }
    QPolygon polygon(static_cast<int>(n));
    for (size_t i = 0; i < n; ++i) polygon.setPoint(static_cast<int>(i), poly.xs[i], poly.ys[i]);
    p.drawPolyline(polygon);
  }

  void operator()(const views::ColumnArea& area) const {
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    const std::vector<int> tops = views::PaintedTops(area);
    if (const DirectPixels direct(p, ToQColor(area.color)); direct) {
      FillArea(direct, area.left, area.baseY, tops);
      return;
    }
    StrokeFiller filler(p, ToQColor(area.color));
    for (size_t i = 0; i < tops.size(); ++i) {
      if (tops[i] == views::ColumnArea::kNoColumn) continue;
      const int x = area.left + static_cast<int>(i);
      filler.add(x, area.baseY, x, tops[i]);
    }
  }

  void operator()(const views::Rect& rect) const {
    const QRect box = BoxOf(rect.left, rect.top, rect.right, rect.bottom);
    ApplyMode(p, rect.pen);
    if (rect.filled) {
      // The fill covers the box; in xor mode the outline would cancel its
      // own edge, so a filled box is one fill only.
      p.fillRect(box, ToQColor(rect.pen.xorMode ? rect.pen.color : rect.fill));
      if (rect.pen.xorMode) return;
    }
    if (box.width() < 1 || box.height() < 1) return;
    p.setPen(ToQPen(rect.pen));
    p.setBrush(Qt::NoBrush);
    // The outline runs on the box's outer pixels.
    p.drawRect(box.adjusted(0, 0, -1, -1));
  }

  void operator()(const views::Ellipse& ellipse) const {
    const QRect box = BoxOf(ellipse.left, ellipse.top, ellipse.right, ellipse.bottom);
    if (box.width() < 1 || box.height() < 1) return;
    ApplyMode(p, ellipse.pen);
    p.setPen(ToQPen(ellipse.pen));
    p.setBrush(ellipse.filled ? QBrush(ToQColor(ellipse.fill)) : QBrush(Qt::NoBrush));
    p.drawEllipse(box.adjusted(0, 0, -1, -1));
    p.setBrush(Qt::NoBrush);
  }

  void operator()(const views::Text& text) const {
    if (text.utf8.empty()) return;
    QFont f = font;
    if (text.pointSize > 0) f.setPointSize(text.pointSize);
    f.setBold(text.bold);
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    p.setFont(f);
    p.setPen(ToQColor(text.color));
    const QString s = QString::fromStdString(text.utf8);
    const QFontMetrics fm(f, p.device());
    const int w = fm.horizontalAdvance(s);
    const int h = fm.height();
    int left = text.x, top = text.y;
    switch (text.anchor) {
      case views::TextAnchor::TopLeft: break;
      case views::TextAnchor::TopCenter: left -= w / 2; break;
      case views::TextAnchor::TopRight: left -= w; break;
      case views::TextAnchor::MiddleLeft: top -= h / 2; break;
      case views::TextAnchor::Center: left -= w / 2; top -= h / 2; break;
      case views::TextAnchor::MiddleRight: left -= w; top -= h / 2; break;
      case views::TextAnchor::BottomLeft: top -= h; break;
      case views::TextAnchor::BottomCenter: left -= w / 2; top -= h; break;
      case views::TextAnchor::BottomRight: left -= w; top -= h; break;
    }
    p.drawText(left, top + fm.ascent(), s);
  }
};

}  // namespace

QColor ToQColor(views::BgrColor bgr) {
  return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}

views::BgrColor ToBgr(const QColor& color) {
  return static_cast<views::BgrColor>((color.blue() << 16) | (color.green() << 8) | color.red());
}

void PaintDrawList(QPainter& painter, const views::DrawList& list, const QFont& font) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setRenderHint(QPainter::TextAntialiasing, true);
  painter.fillRect(QRect(0, 0, list.width, list.height), ToQColor(list.background));
  const Painter visitor{painter, font};
  for (const views::Primitive& item : list.items) std::visit(visitor, item);
  painter.restore();
}

void PaintDrawListItems(QPainter& painter, const views::DrawList& list, const QFont& font) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  const Painter visitor{painter, font};
  for (const views::Primitive& item : list.items) std::visit(visitor, item);
  painter.restore();
}

void PaintDrawList(QPaintDevice& device, const views::DrawList& list, const QFont& font) {
  QPainter painter(&device);
  PaintDrawList(painter, list, font);
}

QImage RenderDrawList(const views::DrawList& list, const QFont& font) {
  // The painting fills the background itself, unless the list has no size.
  QImage image(std::max(1, list.width), std::max(1, list.height), QImage::Format_RGB32);
  if (list.width < 1 || list.height < 1) image.fill(ToQColor(list.background));
  PaintDrawList(image, list, font);
  return image;
}

QImage RenderDrawList(const views::DrawList& list) { return RenderDrawList(list, DefaultViewFont()); }

QFont DefaultViewFont() {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(11);
  font.setStyleHint(QFont::SansSerif);
  return font;
}

QtFontMetrics::QtFontMetrics(const QFont& font) : qt_(font) {
  metrics_.charWidth = std::max(1, qt_.averageCharWidth());
  metrics_.lineHeight = std::max(1, qt_.height());
  metrics_.context = &qt_;
  metrics_.textWidth = [](const std::string& utf8, const void* context) {
    return static_cast<const QFontMetrics*>(context)->horizontalAdvance(QString::fromStdString(utf8));
  };
}

}  // namespace aqx::ui
