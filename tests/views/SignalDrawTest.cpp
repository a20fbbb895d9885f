// The picture's rules, read off the primitive list: where lines go, what the
// trace's first points are, what the grids step by.

#include "SignalTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace aqx {
namespace {

using namespace views;
using namespace testing_views;

constexpr int kW = 200;
constexpr int kH = 100;

DrawList Draw(AppState& s, SignalViewState& v) { return PrepareAndDraw(s, v, FontMetrics{}); }

// 100 samples over 200 pixels: two pixels per sample, the staircase branch.
struct DcRecording : ::testing::Test {
  std::unique_ptr<AppState> s = MakeState(100);
  SignalViewState v;
  void SetUp() override {
    SetTestOptions(*s);
    for (int i = 1; i <= 100; ++i) s->SignalData.at(i, 1) = 40;
    v = ViewOf(*s, kW, kH);
  }
};

TEST_F(DcRecording, StaircaseDrawsTheFirstSampleAtOneAndAQuarterTimesTheScale) {
  const DrawList list = Draw(*s, v);
  const auto traces = TracesOf(list);
  ASSERT_EQ(traces.size(), 1u);
  const Polyline& t = traces[0];
  // Ku 1.25, ChannelYm 100 over half of 100 px: 0.4 px per code.
  // First sample at 1.25 * 40 codes * 0.4 for half a sample's width, then raw.
  ASSERT_GE(t.xs.size(), 4u);
  EXPECT_EQ(std::vector<int>(t.xs.begin(), t.xs.begin() + 4), (std::vector<int>{0, 1, 1, 3}));
  EXPECT_EQ(std::vector<int>(t.ys.begin(), t.ys.begin() + 2), (std::vector<int>{30, 30}));
  EXPECT_TRUE(std::all_of(t.ys.begin() + 2, t.ys.end(), [](int y) { return y == 34; }));
  // Samples 2..100 (the view's end is the store's end), two points each.
  EXPECT_EQ(t.xs.size(), 2u + 2u * 99u);
  EXPECT_EQ(t.xs.back(), 199);
  EXPECT_EQ(t.pen.color, s->channels.ChannelColor[1]);
}

TEST_F(DcRecording, StaircaseTakesOneSamplePastTheViewWhenTheStoreHasIt) {
  v.SliderH = 1;
  v.CentreSample = 25;
  ConfigSliderH(*s, v);  // samples 1..50 in view
  ASSERT_EQ(s->ViewLast, 50);
  const Polyline t = TracesOf(Draw(*s, v))[0];
  EXPECT_EQ(t.xs.size(), 2u + 2u * 50u);  // samples 2..51
}

TEST_F(DcRecording, ZeroLineAtTheCurrentChannelsZeroAndUnplacedAtMidHeight) {
  s->channels.ChannelY[1] = kChannelUnplaced;
  Draw(*s, v);
  EXPECT_EQ(s->channels.ChannelY[1], 50);
  s->channels.ChannelY[1] = 37;
  const auto zero = LinesOf(Draw(*s, v), kZero);
  ASSERT_EQ(zero.size(), 1u);
  EXPECT_EQ(std::vector<int>({zero[0].x1, zero[0].y1, zero[0].x2, zero[0].y2}), (std::vector<int>{0, 37, kW, 37}));
  s->options.signal.LineZero = false;
  EXPECT_TRUE(LinesOf(Draw(*s, v), kZero).empty());
}

TEST_F(DcRecording, TimeGridStepsByTheNiceStepFromTheScrollPosition) {
  s->options.signal.ScaleY = false;
  FontMetrics narrow;
  narrow.charWidth = 1;
  const DrawList list = PrepareAndDraw(*s, v, narrow);
  // 0.1 s in view gives 0.01 s ticks, 20 px apart, the first one pixel left
  // of sample 1.
  std::vector<Line> grid = LinesOf(list, kGrid);
  ASSERT_EQ(grid.size(), 11u);
  for (size_t i = 0; i < grid.size(); ++i) {
    EXPECT_EQ(grid[i].x1, -2 + 20 * static_cast<int>(i));
    EXPECT_EQ(grid[i].y1, 0);
    EXPECT_EQ(grid[i].y2, kH);
    EXPECT_EQ(grid[i].pen.dash, DashStyle::Dot);
  }
  std::vector<Text> labels;
  for (const Text& t : ItemsOf<Text>(list))
    if (t.color == kTextColor) labels.push_back(t);
  // The last tick's label would run past the right edge: left out whole,
  // never cut.
  ASSERT_EQ(labels.size(), 10u);
  for (const Text& t : labels) EXPECT_LE(t.x + narrow.widthOf(t.utf8), kW);
  EXPECT_EQ(labels[0].utf8, "0:00:00");
  EXPECT_EQ(labels[1].utf8, "0:00:00.010");
  EXPECT_EQ(labels[1].x, 19);
  EXPECT_EQ(labels[1].y, kH - FontMetrics{}.lineHeight - 1);
}

TEST_F(DcRecording, TimeLabelsThatWouldOverlapAreLeftOutButTheirTicksStay) {
  s->options.signal.ScaleY = false;
  const FontMetrics fm;  // 7 px a character: "0:00:00.010" needs 77 px
  const DrawList list = PrepareAndDraw(*s, v, fm);
  EXPECT_EQ(LinesOf(list, kGrid).size(), 11u);
  const auto labels = ItemsOf<Text>(list);
  ASSERT_GE(labels.size(), 2u);
  for (size_t i = 1; i < labels.size(); ++i)
    EXPECT_GE(labels[i].x, labels[i - 1].x + fm.widthOf(labels[i - 1].utf8));
}

TEST_F(DcRecording, LevelGridStepsATenthOfTheHeightAndAFifthOfTheScale) {
  s->options.signal.ScaleX = false;
  const DrawList list = Draw(*s, v);
  std::vector<int> ys;
  for (const Line& l : LinesOf(list, kGrid)) ys.push_back(l.y1);
  EXPECT_EQ(ys, (std::vector<int>{40, 30, 20, 10, 0, 60, 70, 80, 90, 100}));
  std::vector<std::string> labels;
  for (const Text& t : ItemsOf<Text>(list)) labels.push_back(t.utf8);
  // The first label names the unit; each label stands on a patch of the
  // background drawn after the traces.
  EXPECT_EQ(labels, (std::vector<std::string>{"20 мкм", "40", "60", "80", "100", "-20", "-40", "-60", "-80", "-100"}));
  const auto patches = ItemsOf<Rect>(list);
  EXPECT_EQ(std::count_if(patches.begin(), patches.end(), [&](const Rect& r) { return r.filled && r.fill == list.background; }),
            10);
  s->channels.ChannelYm[1] = 10000;  // shown in millimetres: labels divide by the unit
  EXPECT_EQ(ItemsOf<Text>(Draw(*s, v)).front().utf8, "2 мм");
  EXPECT_EQ(s->UnitName, QStringLiteral("мм"));
}

TEST_F(DcRecording, ShaftMarkerLinesAtEachPulseOnlyWithAMarkerChannel) {
  s->ShaftMarkCount = 3;
  s->ShaftMarks[0] = 11;
  s->ShaftMarks[1] = 51;
  s->ShaftMarks[2] = 500;  // beyond the view
  EXPECT_TRUE(LinesOf(Draw(*s, v), kMarkerLine).empty());
  EXPECT_FALSE(v.FreqRotorVisible);
  s->channels.Channel[2] = 1;
  s->channels.Type[2] = 3;
  v.speed = RotorSpeed{83.3, 83.3, 100, 100};
  const auto lines = LinesOf(Draw(*s, v), kMarkerLine);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].x1, 20);
  EXPECT_EQ(lines[1].x1, 100);
  EXPECT_TRUE(v.FreqRotorVisible);
  EXPECT_EQ(v.RotorSpeedText, RotorSpeedText(v.speed));
  s->options.signal.OtmetchickLine = false;
  EXPECT_TRUE(LinesOf(Draw(*s, v), kMarkerLine).empty());
}

TEST_F(DcRecording, ThresholdLineOfTheShownMarkerChannel) {
  s->channels.Type[1] = 3;
  s->options.otmetchick.OtmetchickAuto = 0;
  s->options.otmetchick.OtmetchickLevel = 50;  // 50 units at 0.5 px per unit
  s->InputMode = 3;
  s->SynchroAdPorog = 20;
  const DrawList list = Draw(*s, v);
  const auto porog = LinesOf(list, kPorog);
  ASSERT_EQ(porog.size(), 1u);
  EXPECT_EQ(porog[0].y1, 25);
  const auto synchro = LinesOf(list, kSynchro);
  ASSERT_EQ(synchro.size(), 1u);
  EXPECT_EQ(synchro[0].y1, 40);
  bool caption = false;
  for (const Text& t : ItemsOf<Text>(list)) {
    if (t.utf8 == "Порог срабатывания отметчика") {
      caption = true;
      EXPECT_EQ(t.x, kW - 15);
      EXPECT_EQ(t.y, 22);
      EXPECT_EQ(t.anchor, TextAnchor::BottomRight);
    }
  }
  EXPECT_TRUE(caption);
}

TEST_F(DcRecording, UserMarkerExactlyAtEitherEdgeIsNotDrawn) {
  s->FreqDesc = 10;
  s->ViewFirst = 10;
  const double start = DateTimeToOle(QDateTime(QDate(2021, 3, 1), QTime(12, 0, 0)));
  // A cyclic record carries the moment its run stopped.
  s->object.RecordDate = start + s->SignalDataN / 10.0 / 86400.0;
  s->markers.MarkerN = 3;
  const int seconds[] = {1, 2, 11};  // x = 0, 20, 200
  for (int i = 0; i < 3; ++i) {
    s->markers.MarkerDate[static_cast<size_t>(i)] = start + seconds[i] / 86400.0;
    s->markers.MarkerOn[static_cast<size_t>(i)] = 1;
    s->markers.MarkerColor[static_cast<size_t>(i)] = 0x123456;
    s->markers.MarkerRemark[static_cast<size_t>(i)] = QStringLiteral("Пуск");
    s->markers.MarkerShift[static_cast<size_t>(i)] = 15;
  }
  const DrawList list = Draw(*s, v);
  const auto lines = LinesOf(list, 0x123456);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].x1, 20);
  bool remark = false;
  for (const Text& t : ItemsOf<Text>(list))
    if (t.color == 0x123456) {
      remark = true;
      EXPECT_EQ(t.utf8, "Пуск");
      EXPECT_EQ(t.x, 21);
      EXPECT_EQ(t.y, FontMetrics{}.lineHeight);
    }
  EXPECT_TRUE(remark);
}

TEST_F(DcRecording, BeginPointOnlyForRunOutWithoutOffsetAndConstantFilter) {
  s->channels.Type[1] = 0;
  s->channels.KS[1] = 20;  // 20 codes: 20 units, 10 px above the zero line
  s->options.signal.BeginPoint = true;
  s->options.parameters.StatusFilterConst = false;
  auto bp = LinesOf(Draw(*s, v), kBeginPoint);
  ASSERT_EQ(bp.size(), 1u);
  EXPECT_EQ(bp[0].y1, 40);
  EXPECT_EQ(bp[0].pen.dash, DashStyle::Dash);
  s->AccountOffset = true;
  EXPECT_TRUE(LinesOf(Draw(*s, v), kBeginPoint).empty());
  s->AccountOffset = false;
  s->options.parameters.StatusFilterConst = true;
  EXPECT_TRUE(LinesOf(Draw(*s, v), kBeginPoint).empty());
}

TEST_F(DcRecording, SelectionIsAnInvertedFullHeightBoxOrALineWhenNarrow) {
  s->SelectFirst = 21;
  s->SelectLast = 61;
  auto boxes = ItemsOf<Rect>(Draw(*s, v));
  // Past the labels' patches: the selection, then the frame.
  boxes.erase(boxes.begin(), boxes.end() - 2);
  EXPECT_TRUE(boxes[0].pen.xorMode && boxes[0].filled);
  // 20 * 200 / 99 and 60 * 200 / 99, full height.
  EXPECT_EQ(std::vector<int>({boxes[0].left, boxes[0].top, boxes[0].right, boxes[0].bottom}),
            (std::vector<int>{40, 0, 121, kH}));
  EXPECT_FALSE(boxes[1].pen.xorMode);
  EXPECT_EQ(boxes[1].right, kW);

  s->SelectLast = 21;
  const DrawList narrow = Draw(*s, v);
  EXPECT_FALSE(ItemsOf<Rect>(narrow).back().pen.xorMode) << "only the frame after the patches";
  const auto inverted = LinesOf(narrow, 0xFFFFFF);
  ASSERT_EQ(inverted.size(), 1u);
  EXPECT_TRUE(inverted[0].pen.xorMode);
  EXPECT_EQ(inverted[0].x1, 40);
}

TEST_F(DcRecording, PictureBelowFiftyPixelsIsNotDrawn) {
  v.widthPx = 49;
  EXPECT_TRUE(Draw(*s, v).items.empty());
  v.widthPx = kW;
  v.heightPx = 10;
  EXPECT_TRUE(Draw(*s, v).items.empty());
  v.heightPx = 0;
  v.widthPx = 0;
  EXPECT_TRUE(BuildSignal(*s, v, FontMetrics{}).items.empty());
}

TEST(SignalThinning, ALongRecordKeepsItsOneSamplePeak) {
  auto s = MakeState(32768, 50, 1000);
  s->SignalData.at(10000, 1) = 1000;  // 1000 units: half the picture's height
  SetTestOptions(*s);
  SignalViewState v = ViewOf(*s, 400, 100);
  const Polyline t = TracesOf(PrepareAndDraw(*s, v, FontMetrics{}))[0];
  ASSERT_LT(v.PixelsPerSample, 1.0);
  ASSERT_EQ(t.xs.size(), 2u * 400u + 1u);
  const auto top = std::min_element(t.ys.begin(), t.ys.end());
  EXPECT_EQ(*top, 0);
  const int x = t.xs[static_cast<size_t>(top - t.ys.begin())];
  EXPECT_NEAR(x, 123, 1);  // sample 10000 of 32768 over 400 columns
  EXPECT_EQ(*std::max_element(t.ys.begin(), t.ys.end()), 50);
}

TEST(SignalThinning, NyquistSignalFillsTheBandBetweenItsExtremes) {
  auto s = MakeState(32768, 50, 100);
  for (int i = 1; i <= 32768; ++i) s->SignalData.at(i, 1) = (i % 2) ? 50 : -50;
  SetTestOptions(*s);
  SignalViewState v = ViewOf(*s, 400, 100);
  const Polyline t = TracesOf(PrepareAndDraw(*s, v, FontMetrics{}))[0];
  for (size_t i = 1; i < t.xs.size(); i += 2) {
    EXPECT_EQ(t.ys[i], 25) << "column " << t.xs[i];
    EXPECT_EQ(t.ys[i + 1], 75) << "column " << t.xs[i];
  }
}

TEST(SignalImposition, ChannelsShareTheHeightInBandsWithAutoScales) {
  auto s = MakeState(100);
  for (int c = 1; c <= 3; ++c) {
    s->channels.Channel[c] = 1;
    s->channels.Active[c] = 1;
    s->channels.ChannelYm[c] = -1;
    for (int i = 1; i <= 100; ++i) s->SignalData.at(i, c) = 0;
    s->SignalData.at(50, c) = 40;  // the peaks set the automatic scale
    s->SignalData.at(60, c) = -40;
  }
  s->Imposition = true;
  SetTestOptions(*s);
  s->options.parameters.AutoY0 = true;
  SignalViewState v = ViewOf(*s, kW, kH);
  AccountChannelY0(*s, v);
  EXPECT_EQ(s->channels.ChannelY[1], 17);
  EXPECT_EQ(s->channels.ChannelY[2], 50);
  EXPECT_EQ(s->channels.ChannelY[3], 83);
  for (int c = 1; c <= 3; ++c) EXPECT_EQ(s->channels.ChannelYm[c], 150);
  const auto traces = TracesOf(PrepareAndDraw(*s, v, FontMetrics{}));
  ASSERT_EQ(traces.size(), 3u);
  EXPECT_EQ(traces[0].ys[0], 17);  // code 0 sits on each band's zero line
  EXPECT_EQ(traces[1].ys[0], 50);
  EXPECT_EQ(traces[2].ys[0], 83);
  EXPECT_EQ(traces[2].pen.color, s->channels.ChannelColor[3]);
}

// A run-out probe's gap voltage once set the automatic scale, and the swing
// filled a twentieth of the height; a power channel above the table was
// drawn at the smallest scale.
TEST(SignalAutoScale, TheScaleFitsWhatIsDrawn) {
  auto s = MakeState(1000);
  s->channels.Type[1] = 0;
  s->channels.Ku[1] = 8.0f;
  for (int i = 1; i <= 1000; ++i)
    s->SignalData.at(i, 1) = static_cast<int16_t>(3200 + std::lround(300 * std::sin(i / 20.0)));
  s->SignalOffset[1] = 3200;
  s->AccountOffset = true;
  SetTestOptions(*s);
  s->options.parameters.AutoY0 = true;
  SignalViewState v = ViewOf(*s, kW, kH);
  AccountChannelY0(*s, v);
  EXPECT_EQ(s->channels.ChannelYm[1], 50) << "a 47 um swing on a 50 um scale";
  s->AccountOffset = false;
  AccountChannelY0(*s, v);
  EXPECT_EQ(s->channels.ChannelYm[1], 1000) << "with the gap drawn, the gap counts";

  s->channels.Type[1] = 9;  // power: 4000 mV at 60 MW
  s->channels.Ku[1] = 6.6667e-5f;
  for (int i = 1; i <= 1000; ++i) s->SignalData.at(i, 1) = 3200;
  s->SignalData.markWritten();
  AccountChannelY0(*s, v);
  EXPECT_EQ(s->channels.ChannelYm[1], 100'000'000);
  PrepareAndDraw(*s, v, FontMetrics{});
  EXPECT_EQ(s->UnitName, QStringLiteral("МВт"));
  EXPECT_EQ(s->UnitDivisor, 1'000'000);
}

// During a run the part of the cycle not acquired yet was drawn as a flat
// signal of zeros.
TEST(SignalRun, OnlyTheRowsAcquiredSoFarAreDrawn) {
  auto s = MakeState(100);
  SetTestOptions(*s);
  for (int i = 1; i <= 100; ++i) s->SignalData.at(i, 1) = i <= 30 ? 40 : 0;
  s->RunRowsAcquired = 30;
  SignalViewState v = ViewOf(*s, kW, kH);  // two pixels a sample
  Polyline t = TracesOf(PrepareAndDraw(*s, v, FontMetrics{}))[0];
  EXPECT_EQ(*std::max_element(t.xs.begin(), t.xs.end()), 59);

  auto longer = MakeState(32768);
  SetTestOptions(*longer);
  longer->RunRowsAcquired = 8192;  // a quarter of the cycle on 200 pixels
  SignalViewState w = ViewOf(*longer, kW, kH);
  t = TracesOf(PrepareAndDraw(*longer, w, FontMetrics{}))[0];
  EXPECT_EQ(*std::max_element(t.xs.begin(), t.xs.end()), 50);
}

TEST(SignalEdges, NoChannelInUseDrawsTheFrameAndNoTrace) {
  auto s = MakeState(1000);
  s->channels.Channel[1] = 0;
  s->channels.Active[1] = 0;
  RecountChannelUsedCount(*s);
  SetTestOptions(*s);
  s->options.parameters.AutoY0 = true;
  SignalViewState v = ViewOf(*s, kW, kH);
  AccountChannelY0(*s, v);
  const DrawList list = BuildSignal(*s, v, FontMetrics{});
  EXPECT_TRUE(TracesOf(list).empty());
  EXPECT_FALSE(ItemsOf<Rect>(list).empty());
}

TEST(SignalEdges, EveryChannelInUseAndShownOnTheLargestStore) {
  auto s = MakeState(kMaxSamples);
  for (int c = 1; c <= kMaxChannels; ++c) {
    s->channels.Channel[c] = 1;
    s->channels.Active[c] = 1;
    s->channels.Volume[c] = c % 4;
    s->channels.Type[c] = c % 10;
  }
  s->SignalData.at(kMaxSamples, 32) = 8191;
  RecountChannelUsedCount(*s);
  SetTestOptions(*s);
  s->options.parameters.AutoY0 = true;
  SignalViewState v = ViewOf(*s, 640, 480);
  AccountChannelY0(*s, v);
  EXPECT_EQ(TracesOf(BuildSignal(*s, v, FontMetrics{})).size(), 32u);
  s->ChannelDifferential = 1;
  EXPECT_EQ(TracesOf(BuildSignal(*s, v, FontMetrics{})).size(), 16u);
}

TEST(SignalEdges, OneSampleAndAOneSampleView) {
  auto s = MakeState(1);
  s->SignalData.at(1, 1) = 8;
  SetTestOptions(*s);
  SignalViewState v = ViewOf(*s, kW, kH);
  const Polyline t = TracesOf(BuildSignal(*s, v, FontMetrics{}))[0];
  EXPECT_EQ(t.xs, (std::vector<int>{0, 100}));
  EXPECT_EQ(t.ys, (std::vector<int>{46, 46}));

  auto big = MakeState(kMaxSamples);
  SignalViewState deep = ViewOf(*big, kW, kH);
  deep.SliderH = deep.SliderHMax;
  deep.CentreSample = 1;
  ConfigSliderH(*big, deep);
  big->ViewLast = big->ViewFirst;  // one sample in view
  big->SelectFirst = big->SelectLast = big->ViewFirst;
  EXPECT_FALSE(BuildSignal(*big, deep, FontMetrics{}).items.empty());
}

TEST(SignalEdges, TenHoursInViewEndsThePictureAtTheTimeGrid) {
  auto s = MakeState(kMaxSamples);
  s->FreqDesc = 20;  // 52428 s in view
  SetTestOptions(*s);
  SignalViewState v = ViewOf(*s, kW, kH);
  EXPECT_TRUE(TracesOf(PrepareAndDraw(*s, v, FontMetrics{})).empty());
  s->options.signal.ScaleX = false;
  EXPECT_EQ(TracesOf(PrepareAndDraw(*s, v, FontMetrics{})).size(), 1u);
}

}  // namespace
}  // namespace aqx
