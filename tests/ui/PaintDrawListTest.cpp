#include "ui/paint/PaintDrawList.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace aqx {
namespace {

using views::DashStyle;
using views::DrawList;
using views::Line;
using views::Pen;
using views::Polyline;
using views::Rect;
using views::Text;
using views::TextAnchor;

constexpr views::BgrColor kRed = 0x0000FF;   // blue-green-red word
constexpr views::BgrColor kBlue = 0xFF0000;
constexpr views::BgrColor kWhite = 0xFFFFFF;

DrawList Canvas(int w, int h, views::BgrColor bg = kWhite) {
  DrawList list;
  list.width = w;
  list.height = h;
  list.background = bg;
  return list;
}

TEST(PaintDrawList, ColoursAreBlueGreenRedWords) {
  EXPECT_EQ(ui::ToQColor(0x0000FF), QColor(255, 0, 0));
  EXPECT_EQ(ui::ToQColor(0x00FF00), QColor(0, 255, 0));
  EXPECT_EQ(ui::ToQColor(0xFF0000), QColor(0, 0, 255));
  EXPECT_EQ(ui::ToBgr(QColor(1, 2, 3)), 0x030201);
}

TEST(PaintDrawList, ImageHasListSizeAndBackground) {
  const QImage img = ui::RenderDrawList(Canvas(40, 30, kBlue));
  ASSERT_EQ(img.size(), QSize(40, 30));
  EXPECT_EQ(img.pixelColor(0, 0), QColor(0, 0, 255));
  EXPECT_EQ(img.pixelColor(39, 29), QColor(0, 0, 255));
}

TEST(PaintDrawList, LinesCoverBothEndsAndNothingBeside) {
  DrawList list = Canvas(20, 20);
  list.add(Line{5, 2, 5, 10, Pen{kRed}});
  list.add(Line{0, 15, 19, 15, Pen{kRed}});
  const QImage img = ui::RenderDrawList(list);
  for (int y = 2; y <= 10; ++y) EXPECT_EQ(img.pixelColor(5, y), QColor(255, 0, 0)) << y;
  EXPECT_EQ(img.pixelColor(5, 1), Qt::white);
  EXPECT_EQ(img.pixelColor(4, 6), Qt::white);
  EXPECT_EQ(img.pixelColor(6, 6), Qt::white);
  EXPECT_EQ(img.pixelColor(0, 15), QColor(255, 0, 0));
  EXPECT_EQ(img.pixelColor(19, 15), QColor(255, 0, 0));
  EXPECT_EQ(img.pixelColor(10, 14), Qt::white);
}

TEST(PaintDrawList, DottedLineLeavesGaps) {
  DrawList list = Canvas(60, 5);
  list.add(Line{0, 2, 59, 2, Pen{kRed, 1, DashStyle::Dot}});
  const QImage img = ui::RenderDrawList(list);
  int inked = 0;
  for (int x = 0; x < 60; ++x) inked += img.pixelColor(x, 2) != Qt::white;
  EXPECT_GT(inked, 10);
  EXPECT_LT(inked, 50);
}

TEST(PaintDrawList, RectOutlineAndFillStayInsideTheBox) {
  DrawList list = Canvas(30, 30);
  list.add(Rect{5, 5, 15, 12, Pen{kRed}, true, kBlue});
  const QImage img = ui::RenderDrawList(list);
  EXPECT_EQ(img.pixelColor(5, 5), QColor(255, 0, 0));    // outline corner
  EXPECT_EQ(img.pixelColor(14, 11), QColor(255, 0, 0));  // last pixel inside
  EXPECT_EQ(img.pixelColor(10, 8), QColor(0, 0, 255));   // fill
  EXPECT_EQ(img.pixelColor(15, 8), Qt::white);           // right is exclusive
  EXPECT_EQ(img.pixelColor(10, 12), Qt::white);          // bottom is exclusive
}

TEST(PaintDrawList, XorDrawnTwiceRestoresThePicture) {
  DrawList once = Canvas(30, 30, 0x336699);
  once.add(Line{0, 0, 29, 29, Pen{kRed}});
  Pen invert{kWhite, 1, DashStyle::Solid, true};
  once.add(Rect{3, 3, 20, 20, invert, true, 0});
  once.add(Line{10, 0, 10, 29, invert});
  const QImage first = ui::RenderDrawList(once);
  EXPECT_EQ(first.pixelColor(15, 5), QColor(255 - 0x99, 255 - 0x66, 255 - 0x33));

  DrawList twice = once;
  twice.add(Rect{3, 3, 20, 20, invert, true, 0});
  twice.add(Line{10, 0, 10, 29, invert});
  DrawList plain = Canvas(30, 30, 0x336699);
  plain.add(Line{0, 0, 29, 29, Pen{kRed}});
  EXPECT_EQ(ui::RenderDrawList(twice), ui::RenderDrawList(plain));
}

TEST(PaintDrawList, PolylineJoinsItsPoints) {
  DrawList list = Canvas(20, 20);
  list.add(Polyline{{0, 10, 10}, {0, 0, 10}, Pen{kRed}});
  const QImage img = ui::RenderDrawList(list);
  EXPECT_EQ(img.pixelColor(5, 0), QColor(255, 0, 0));
  EXPECT_EQ(img.pixelColor(10, 5), QColor(255, 0, 0));
  EXPECT_EQ(img.pixelColor(5, 5), Qt::white);
}

// The same list painted straight into the image's pixels and, through a
// clip that turns that shortcut off, by the toolkit's own fills.
std::pair<QImage, QImage> PaintedBothWays(const DrawList& list) {
  QImage direct = ui::RenderDrawList(list);
  QImage clipped(list.width, list.height, QImage::Format_RGB32);
  clipped.fill(Qt::white);
  QPainter p(&clipped);
  p.setClipRect(0, 0, list.width, list.height);
  ui::PaintDrawList(p, list, ui::DefaultViewFont());
  p.end();
  return {direct, clipped};
}

TEST(PaintDrawList, ColumnAreasFillTheirBarsAndJoinedGapsBothWays) {
  constexpr int kNo = views::ColumnArea::kNoColumn;
  DrawList list = Canvas(20, 20);
  // Bars at columns 2, 3 and 7, nothing between.
  list.add(views::ColumnArea{2, 15, {10, 12, kNo, kNo, kNo, 5}, kRed, false});
  // A joined ground: its gap follows the line from 10 to 4 (8 and 6 between).
  list.add(views::ColumnArea{10, 18, {10, kNo, kNo, 4, kNo}, kBlue, true});
  const auto [direct, clipped] = PaintedBothWays(list);
  EXPECT_EQ(direct, clipped);
  const QColor red(255, 0, 0), blue(0, 0, 255);
  EXPECT_EQ(direct.pixelColor(2, 10), red);
  EXPECT_EQ(direct.pixelColor(2, 15), red);
  EXPECT_EQ(direct.pixelColor(2, 9), Qt::white);
  EXPECT_EQ(direct.pixelColor(2, 16), Qt::white);
  EXPECT_EQ(direct.pixelColor(5, 14), Qt::white);
  EXPECT_EQ(direct.pixelColor(7, 5), red);
  EXPECT_EQ(direct.pixelColor(11, 8), blue);
  EXPECT_EQ(direct.pixelColor(11, 7), Qt::white);
  EXPECT_EQ(direct.pixelColor(12, 6), blue);
  EXPECT_EQ(direct.pixelColor(12, 5), Qt::white);
  // The joined area's last column had no bar: it ends on the base.
  EXPECT_EQ(direct.pixelColor(14, 18), blue);
  EXPECT_EQ(direct.pixelColor(14, 17), Qt::white);
  // Bars past the picture's edges are cut, not written beside it.
  DrawList edges = Canvas(10, 10);
  edges.add(views::ColumnArea{-3, 30, {-5, -5, -5, -5, 20, kNo, 0, 0, 0, 0, 0, 0, 0, 0, 0}, kRed, false});
  const auto [edgeDirect, edgeClipped] = PaintedBothWays(edges);
  EXPECT_EQ(edgeDirect, edgeClipped);
  EXPECT_EQ(edgeDirect.pixelColor(0, 0), red);
  EXPECT_EQ(edgeDirect.pixelColor(1, 9), Qt::white);
  EXPECT_EQ(edgeDirect.pixelColor(9, 9), red);
}

TEST(PaintDrawList, PlainTracesStepToTheNextColumnWithoutGaps) {
  // Steps of every kind: flat, diagonal, steep, each way.
  DrawList list = Canvas(40, 40);
  views::Polyline trace{{}, {}, Pen{kRed}};
  const int rises[] = {0, 1, -1, 7, -9, 0, 2, -2, 3, -1};
  int y = 20;
  for (int x = 5; x < 35; ++x) {
    trace.xs.push_back(x);
    trace.ys.push_back(y);
    y += rises[x % 10];
  }
  list.add(trace);
  const auto [direct, clipped] = PaintedBothWays(list);
  EXPECT_EQ(direct, clipped);
  for (size_t i = 0; i < trace.xs.size(); ++i) EXPECT_EQ(direct.pixelColor(trace.xs[i], trace.ys[i]), QColor(255, 0, 0));
  // Each column's ink is one run that meets the next column's.
  std::vector<std::pair<int, int>> runs;
  for (int x = 5; x < 35; ++x) {
    int top = 40, bottom = -1;
    for (int row = 0; row < 40; ++row)
      if (direct.pixelColor(x, row) != Qt::white) top = std::min(top, row), bottom = std::max(bottom, row);
    for (int row = top; row <= bottom; ++row) EXPECT_NE(direct.pixelColor(x, row), Qt::white) << x << "," << row;
    runs.push_back({top, bottom});
  }
  for (size_t i = 1; i < runs.size(); ++i)
    EXPECT_TRUE(runs[i].first <= runs[i - 1].second + 1 && runs[i].second >= runs[i - 1].first - 1) << i;
}

TEST(PaintDrawList, TracesThatTurnBackOrLeaveThePicturePaintAsTheToolkitDoes) {
  // Columns met twice with a gap between the runs, a trace going back to the
  // left, and runs past every edge of the picture.
  DrawList list = Canvas(37, 30);
  list.add(Polyline{{3, 3, 4, 4, 3, 3}, {2, 6, 6, 20, 20, 25}, Pen{kRed}});
  list.add(Polyline{{20, 19, 18, 17, 16, 16}, {5, 9, 3, 28, 14, 1}, Pen{kRed}});
  list.add(Polyline{{-2, -1, -1, 0, 0}, {4, 4, 40, 40, -8}, Pen{kRed}});
  list.add(Polyline{{35, 36, 36, 37, 37}, {-5, -5, 12, 12, 50}, Pen{kRed}});
  list.add(Line{31, 29, 31, 35, Pen{kRed}});
  const auto [direct, clipped] = PaintedBothWays(list);
  EXPECT_EQ(direct, clipped);
  const QColor red(255, 0, 0);
  EXPECT_EQ(direct.pixelColor(3, 2), red);
  EXPECT_EQ(direct.pixelColor(3, 13), Qt::white);  // between column 3's two runs
  EXPECT_EQ(direct.pixelColor(3, 22), red);
  EXPECT_EQ(direct.pixelColor(0, 0), red);
  EXPECT_EQ(direct.pixelColor(36, 0), red);
  EXPECT_EQ(direct.pixelColor(36, 13), Qt::white);
  EXPECT_EQ(direct.pixelColor(31, 29), red);
}

QRect InkBox(const QImage& img) {
  QRect box;
  for (int y = 0; y < img.height(); ++y)
    for (int x = 0; x < img.width(); ++x)
      if (img.pixelColor(x, y) != Qt::white) box |= QRect(x, y, 1, 1);
  return box;
}

TEST(PaintDrawList, TextAnchorsPlaceTheBoxAroundThePoint) {
  DrawList topLeft = Canvas(200, 60);
  topLeft.add(Text{100, 30, "Порог", 0});
  const QRect a = InkBox(ui::RenderDrawList(topLeft));
  ASSERT_FALSE(a.isEmpty());
  EXPECT_GE(a.left(), 100);
  EXPECT_GE(a.top(), 30);

  DrawList bottomRight = Canvas(200, 60);
  bottomRight.add(Text{100, 30, "Порог", 0, TextAnchor::BottomRight});
  const QRect b = InkBox(ui::RenderDrawList(bottomRight));
  ASSERT_FALSE(b.isEmpty());
  EXPECT_LE(b.right(), 100);
  EXPECT_LE(b.bottom(), 30);
  EXPECT_EQ(a.width(), b.width());
}

TEST(PaintDrawList, FontMetricsMeasureWiderTextWider) {
  const ui::QtFontMetrics fm(ui::DefaultViewFont());
  const views::FontMetrics& m = fm.metrics();
  EXPECT_GT(m.lineHeight, 5);
  EXPECT_GT(m.widthOf("Порог срабатывания"), m.widthOf("Порог"));
  EXPECT_EQ(m.widthOf(""), 0);
}

}  // namespace
}  // namespace aqx
