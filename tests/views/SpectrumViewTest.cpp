// The spectrum view's decade axis, picture, panels and cursor, and the
// cascade's box and parts.

#include "tests/views/SignalTestSupport.h"
#include "views/Analysis.h"
#include "views/spectrum/CascadeView.h"
#include "views/spectrum/SpectrumView.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace aqx {
namespace {

using namespace testing_views;
using views::FrequencyToX;
using views::XToFrequency;

constexpr views::BgrColor kHarmonic = 0x0000E1;
constexpr views::BgrColor kProbe = 0x0000E2;
constexpr views::BgrColor kTrace = 0x0000E3;

TEST(SpectrumAxis, EachDecadeHasEqualRoomAndIsLinearInside) {
  // G = 37 over 370 pixels: the first decade 100 pixels, the others 90.
  const double w = 370;
  EXPECT_DOUBLE_EQ(*FrequencyToX(0.0, w, 37), 0.0);
  EXPECT_DOUBLE_EQ(*FrequencyToX(5.0, w, 37), 50.0);
  EXPECT_DOUBLE_EQ(*FrequencyToX(10.0, w, 37), 100.0);
  EXPECT_DOUBLE_EQ(*FrequencyToX(55.0, w, 37), 145.0);
  EXPECT_DOUBLE_EQ(*FrequencyToX(100.0, w, 37), 190.0);
  EXPECT_DOUBLE_EQ(*FrequencyToX(1000.0, w, 37), 280.0);
  EXPECT_DOUBLE_EQ(*FrequencyToX(5500.0, w, 37), 325.0);
  EXPECT_DOUBLE_EQ(*FrequencyToX(10000.0, w, 37), 370.0);
  EXPECT_FALSE(FrequencyToX(10000.5, w, 37));
  EXPECT_FALSE(FrequencyToX(-1.0, w, 37));
  // Just past an edge the next decade's slope holds.
  EXPECT_NEAR(*FrequencyToX(100.9, w, 37) - 190.0, 0.09, 1e-9);
  EXPECT_NEAR(*FrequencyToX(99.0, w, 37), 189.0, 1e-9);
  for (double hz : {0.5, 9.99, 10.0, 10.01, 99.9, 100.0, 150.0, 999.0, 1000.0, 7777.0, 10000.0})
    EXPECT_NEAR(XToFrequency(*FrequencyToX(hz, w, 37), w, 37), hz, 1e-9) << hz;
  EXPECT_EQ(XToFrequency(-3, w, 37), 0.0);
  // G = 10 (0-10 Hz): the first decade takes the whole width.
  EXPECT_DOUBLE_EQ(*FrequencyToX(10.0, 500, 10), 500.0);
}

TEST(SpectrumAxis, RangesLabelsAndScales) {
  EXPECT_EQ(views::SpectrGridN(0), 10);
  EXPECT_EQ(views::SpectrGridN(3), 37);
  EXPECT_EQ(views::SpectrGridN(7), 37);
  EXPECT_EQ(views::SpectrRangeLabel(2), QStringLiteral("0-1кГц"));
  const std::vector<int> labels = views::SpectrGridLabels(19);
  EXPECT_EQ(labels.front(), 1);
  EXPECT_EQ(labels[9], 10);
  EXPECT_EQ(labels[10], 20);
  EXPECT_EQ(labels.back(), 100);
  EXPECT_EQ(views::SpectrScaleFor(49, 0), 50);
  EXPECT_EQ(views::SpectrScaleFor(50, 0), 100);
  EXPECT_EQ(views::SpectrScaleFor(800, 1), 500);  // 800 / 4 = 200
  EXPECT_EQ(views::SpectrScaleFor(6e6, 0), 0);
}

struct SpectrFixture {
  std::unique_ptr<AppState> s = MakeState(4096);
  std::unique_ptr<views::AnalysisResults> r = std::make_unique<views::AnalysisResults>();
  views::SpectrViewState v;
  views::FontMetrics fm;

  // Tones on a line of the 4096-point spectrum, so that their lines read whole.
  explicit SpectrFixture(double hz = 82 * 1000.0 / 4096) {
    SetTestOptions(*s);
    s->options.color.ColorLinesGarmonic = kHarmonic;
    s->options.color.ColorLinesProbeFreq = kProbe;
    s->channels.ChannelColor[1] = kTrace;
    for (int i = 1; i <= 4096; ++i)
      s->SignalData.at(i, 1) = static_cast<int16_t>(std::lround(40 * std::sin(2 * std::numbers::pi * hz * (i - 1) / 1000.0)));
    views::AccountChannelSpectrum(*s, *r, 1);
    v.widthPx = 740;
    v.heightPx = 300;
  }
  views::DrawList draw() { return views::BuildSpectr(*s, v, *r, fm); }
};

TEST(SpectrumPicture, GridsGuideLinesAndTraceFollowTheOptions) {
  SpectrFixture f;
  f.s->options.config.ScaleSpectr = 3;
  f.s->FreqOneGarmonic = 5.0;
  f.s->options.spectr.ViewGarmonic = true;
  f.s->options.spectr.GarmonicaN = 4;
  f.s->options.spectr.ViewLinesProbeFreq = true;
  f.s->channels.ProbeFreq[1] = {100.0f, -1.0f, 20000.0f, 0.0f, -1.0f, -1.0f, -1.0f};
  const views::DrawList list = f.draw();
  EXPECT_EQ(f.v.Scale, 100);  // 80 units from peak to peak
  // 37 verticals and 10 horizontals of the grid.
  EXPECT_EQ(LinesOf(list, kGrid).size(), 47u);
  const auto harmonics = LinesOf(list, kHarmonic);
  ASSERT_EQ(harmonics.size(), 4u);
  EXPECT_EQ(harmonics[1].x1, 200);  // 10 Hz on 740 px with 37 divisions
  const auto probes = LinesOf(list, kProbe);
  ASSERT_EQ(probes.size(), 1u);  // 20 kHz and 0 are not drawn
  EXPECT_EQ(probes[0].x1, 380);
  const auto traces = TracesOf(list);
  ASSERT_EQ(traces.size(), 1u);
  EXPECT_EQ(traces[0].xs.front(), 0);
  EXPECT_EQ(traces[0].ys.front(), 299);
  // The tone's top reaches 80 of 100 units of the height (H - 1 while drawing).
  EXPECT_NEAR(*std::min_element(traces[0].ys.begin(), traces[0].ys.end()), 299 - 80 * 3, 2);
}

TEST(SpectrumPicture, LevelLabelsNeverOverprintOnALowPicture) {
  for (const int heightPx : {300, 160, 120, 60}) {
    SpectrFixture f;
    f.v.heightPx = heightPx;
    const views::DrawList list = f.draw();
    std::vector<std::pair<int, int>> boxes;  // top and bottom of each level label
    for (const views::Text& text : ItemsOf<views::Text>(list)) {
      if (text.x != 2) continue;
      const int top = text.anchor == views::TextAnchor::TopLeft ? text.y : text.y - f.fm.lineHeight;
      boxes.emplace_back(top, top + f.fm.lineHeight);
    }
    ASSERT_FALSE(boxes.empty());
    std::sort(boxes.begin(), boxes.end());
    for (size_t i = 1; i < boxes.size(); ++i)
      EXPECT_LE(boxes[i - 1].second, boxes[i].first) << "height " << heightPx << ", label " << i;
  }
}

TEST(SpectrumPicture, RangeZeroDrawsOnlyTheFirstDecadeAndHistogramBarsStopAbove) {
  SpectrFixture f(20 * 1000.0 / 4096);
  f.s->options.config.ScaleSpectr = 0;
  f.s->options.spectr.SpectrViewType = 0;
  const views::DrawList list = f.draw();
  EXPECT_EQ(LinesOf(list, kGrid).size(), 20u);
  const auto areas = ItemsOf<views::ColumnArea>(list);
  ASSERT_EQ(areas.size(), 1u);
  const views::ColumnArea& bars = areas[0];
  EXPECT_EQ(bars.color, kTrace);
  EXPECT_EQ(bars.baseY, 299);
  int highest = -1;
  for (size_t x = 0; x < bars.tops.size(); ++x) {
    if (bars.tops[x] == views::ColumnArea::kNoColumn) continue;
    EXPECT_LE(x, 740u);
    if (highest < 0 || bars.tops[x] < bars.tops[static_cast<size_t>(highest)]) highest = static_cast<int>(x);
  }
  // The bar of 4.88 Hz stands near the middle and stops one pixel above its level.
  EXPECT_EQ(bars.left + highest, 361);
  EXPECT_EQ(bars.tops[static_cast<size_t>(highest)], 299 - 80 * 3 - 1);
}

TEST(SpectrumPicture, MarkerChannelsAndEvaluationCurves) {
  SpectrFixture f;
  f.s->options.spectr.Evaluation = 1;
  const views::DrawList vibration = f.draw();
  EXPECT_EQ(TracesOf(vibration).size(), 5u);  // four curves and the trace
  f.s->options.spectr.Evaluation = 2;  // the other classes draw no curve
  EXPECT_EQ(TracesOf(f.draw()).size(), 1u);
  f.s->options.spectr.Evaluation = 1;
  f.s->channels.Type[1] = 3;
  const views::DrawList marker = f.draw();
  EXPECT_TRUE(TracesOf(marker).empty());
  EXPECT_FALSE(LinesOf(marker, kGrid).empty());
  f.v.widthPx = 40;
  EXPECT_TRUE(f.draw().items.empty());
}

TEST(SpectrumPicture, NoBlockSizeOrNoScaleLeavesItBlank) {
  SpectrFixture f;
  f.s->BlockSizeFFTa = f.s->BlockSizeFFTr = 0;
  EXPECT_TRUE(f.draw().items.empty());
  SpectrFixture g;
  g.r->SpectrMax = 7000000;
  EXPECT_TRUE(g.draw().items.empty());
}

TEST(SpectrumPanels, ClicksAndTexts) {
  SpectrFixture f;
  f.draw();
  views::SpectrStatus st = views::OutInfoToStatusBar(*f.s, f.v);
  EXPECT_EQ(st[views::SpectrPanel::Scale], QStringLiteral("М: 0-1кГц "));
  EXPECT_EQ(st[views::SpectrPanel::Cursor], QStringLiteral("C0: - "));
  EXPECT_EQ(st[views::SpectrPanel::TypeDiagram], QStringLiteral("G: График "));
  EXPECT_EQ(st[views::SpectrPanel::BlockSizeFFT], QStringLiteral("FFT: 1048576 "));
  using B = views::MouseButton;
  for (int i = 0; i < 3; ++i) views::SpectrPanelClicked(*f.s, f.v, views::SpectrPanel::Scale, B::Left);
  EXPECT_EQ(f.s->options.config.ScaleSpectr, 3);
  EXPECT_FALSE(views::SpectrPanelClicked(*f.s, f.v, views::SpectrPanel::Scale, B::Right).analyserSettings);
  for (int i = 0; i < 5; ++i) views::SpectrPanelClicked(*f.s, f.v, views::SpectrPanel::Scale, B::Right);
  EXPECT_EQ(f.s->options.config.ScaleSpectr, 0);
  EXPECT_FALSE(views::SpectrPanelClicked(*f.s, f.v, views::SpectrPanel::Scale, B::Right).scaleChanged);
  views::SpectrPanelClicked(*f.s, f.v, views::SpectrPanel::TypeDiagram, B::Left);
  EXPECT_EQ(f.s->options.spectr.SpectrViewType, 0);
  EXPECT_TRUE(views::SpectrPanelClicked(*f.s, f.v, views::SpectrPanel::BlockSizeFFT, B::Left).analyserSettings);
  views::SpectrPanelClicked(*f.s, f.v, views::SpectrPanel::Cursor, B::Left);
  EXPECT_EQ(views::SpectrCursorOf(*f.s), views::SpectrCursor::Free);
  views::SpectrPanelClicked(*f.s, f.v, views::SpectrPanel::Cursor, B::Left);
  EXPECT_EQ(views::SpectrCursorOf(*f.s), views::SpectrCursor::Bound);
}

TEST(SpectrumPanels, TheCrossHairReadsFrequencyAmplitudeAndHarmonic) {
  SpectrFixture f;
  f.s->FreqOneGarmonic = 10.0;
  f.s->options.spectr.Cursor = 1;  // bound: snaps onto the tone's line
  f.draw();
  const double x = *FrequencyToX(20.2, f.v.widthPx, 28);
  const views::SpectrAction a = views::SpectrMouseMove(*f.s, f.v, *f.r, x, 10);
  EXPECT_TRUE(a.crosshair);
  EXPECT_DOUBLE_EQ(f.v.CursorFrequency, 82 * 1000.0 / 4096);
  EXPECT_EQ(f.v.CursorText, QStringLiteral("C2: 2 гарм. (20.02 Гц) "));
  EXPECT_TRUE(f.v.LevelText.startsWith(QStringLiteral("L: 80.0"))) << f.v.LevelText.toStdString();
  EXPECT_TRUE(f.v.LevelText.contains(QStringLiteral(" мкм / ")));
  f.s->options.spectr.Cursor = 0;
  views::SpectrMouseMove(*f.s, f.v, *f.r, *FrequencyToX(25.0, f.v.widthPx, 28), 10);
  EXPECT_EQ(f.v.CursorText, QStringLiteral("C1: 24.90 Гц (2.49 гарм.) "));
  views::DrawList overlay;
  views::AppendSpectrCrosshair(f.v, overlay, f.fm);
  EXPECT_EQ(ItemsOf<views::Text>(overlay).size(), 1u);
}

TEST(CascadeBox, GeometryCornerAndParts) {
  const views::CascadeBox box = views::CascadeBoxFor(1000, 600, 700, 300);
  EXPECT_EQ(box.BoxW, 670);
  EXPECT_EQ(box.BoxH, 270);
  const auto nearest = views::PlaneOrigin(box, 600, 3, 4);
  EXPECT_DOUBLE_EQ(nearest.first, 30.0);
  EXPECT_DOUBLE_EQ(nearest.second, 570.0);
  const auto farthest = views::PlaneOrigin(box, 600, 0, 4);
  // Its top right stands in the picture's corner, 6 pixels in.
  EXPECT_DOUBLE_EQ(farthest.first + box.BoxW, 994.0);
  EXPECT_DOUBLE_EQ(farthest.second - box.BoxH, 6.0);
  EXPECT_TRUE(views::CornerAccepted(1000, 600, 30, 570));
  EXPECT_FALSE(views::CornerAccepted(1000, 600, 29, 300));
  EXPECT_FALSE(views::CornerAccepted(1000, 600, 500, 571));
  EXPECT_EQ(views::CascadePlus(32), 32);
  EXPECT_EQ(views::CascadeMinus(2), 2);
  EXPECT_EQ(views::CascadePlus(4), 8);
  EXPECT_EQ(views::CascadePartSamples(1048576, 64), 16384);
  EXPECT_EQ(views::CascadeCaption(8), QStringLiteral("Каскад спектров (Спектров: 8)"));
  views::CascadeViewState v;
  v.widthPx = 1400;
  v.heightPx = 950;
  views::PlaceCorner(v, 0.0, 0.0);
  EXPECT_EQ(v.Xc, 1000);
  EXPECT_EQ(v.Yc, 500);
  EXPECT_DOUBLE_EQ(views::CornerRatios(v).first, 1.4);
}

TEST(CascadeBox, PartsFollowTheRecordAndMarkersShowAnEmptyFrame) {
  auto s = MakeState(8192);
  SetTestOptions(*s);
  s->channels.ChannelColor[1] = kTrace;
  // A tone on line 100 of each quarter that grows along the record.
  for (int i = 1; i <= 8192; ++i)
    s->SignalData.at(i, 1) = static_cast<int16_t>(
        std::lround(100.0 * (1 + (i - 1) / 2048) * std::sin(2 * std::numbers::pi * 100.0 * (i - 1) / 2048.0)));
  views::CascadeViewState v;
  v.widthPx = 800;
  v.heightPx = 500;
  views::PlaceCorner(v, 1.4, 1.9);
  views::PrepareCascade(*s, v);
  ASSERT_EQ(v.parts.size(), 4u);
  EXPECT_EQ(s->SignalDataN, 8192);
  auto peak = [](const std::vector<float>& c) { return *std::max_element(c.begin(), c.end()); };
  EXPECT_NEAR(peak(v.parts[0]), 200.0, 2.0);
  EXPECT_NEAR(peak(v.parts[3]), 800.0, 8.0);
  EXPECT_EQ(v.Scale, 1000);
  const views::DrawList list = views::DrawCascade(*s, v);
  const auto traces = TracesOf(list);
  ASSERT_EQ(traces.size(), 4u);
  // Each plane hides what lies behind it under its own trace, nothing above.
  const auto grounds = ItemsOf<views::ColumnArea>(list);
  ASSERT_EQ(grounds.size(), 4u);
  for (size_t part = 0; part < 4; ++part) {
    EXPECT_TRUE(grounds[part].joined);
    std::vector<int> under;
    for (size_t x = 0; x < grounds[part].tops.size(); ++x)
      if (grounds[part].tops[x] != views::ColumnArea::kNoColumn) under.push_back(grounds[part].tops[x]);
    EXPECT_EQ(under, std::vector<int>(traces[part].ys.begin() + 1, traces[part].ys.end())) << "part " << part;
    EXPECT_EQ(grounds[part].baseY, traces[part].ys.front());
  }
  s->channels.Type[1] = 3;
  views::PrepareCascade(*s, v);
  const views::DrawList marker = views::DrawCascade(*s, v);
  ASSERT_EQ(marker.items.size(), 1u);
  EXPECT_TRUE(std::holds_alternative<views::Rect>(marker.items[0]));
}

TEST(CascadeBox, FrequencyLabelsNeverOverprintOnANarrowBox) {
  auto s = MakeState(8192);
  SetTestOptions(*s);
  for (int i = 1; i <= 8192; ++i)
    s->SignalData.at(i, 1) = static_cast<int16_t>(std::lround(300.0 * std::sin(2 * std::numbers::pi * 100.0 * i / 2048.0)));
  const views::FontMetrics fm;
  const auto labelsAt = [&](int widthPx) {
    views::CascadeViewState v;
    v.widthPx = widthPx;
    v.heightPx = 500;
    views::PlaceCorner(v, 1.4, 1.9);
    views::PrepareCascade(*s, v);
    std::vector<views::Text> labels = ItemsOf<views::Text>(views::DrawCascade(*s, v));
    std::erase_if(labels, [](const views::Text& t) { return t.anchor != views::TextAnchor::TopCenter; });
    return labels;
  };
  const std::vector<views::Text> wide = labelsAt(3000);
  EXPECT_EQ(wide.size(), views::SpectrGridLabels(views::SpectrGridN(s->options.config.ScaleSpectr)).size());
  const std::vector<views::Text> narrow = labelsAt(500);
  ASSERT_GE(narrow.size(), 3u);
  EXPECT_LT(narrow.size(), wide.size());
  EXPECT_EQ(narrow.front().utf8, wide.front().utf8);
  for (size_t i = 1; i < narrow.size(); ++i)
    EXPECT_LT(narrow[i - 1].x + fm.widthOf(narrow[i - 1].utf8) / 2, narrow[i].x - fm.widthOf(narrow[i].utf8) / 2)
        << narrow[i].utf8;
}

}  // namespace
}  // namespace aqx
