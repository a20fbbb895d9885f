// Mouse, scroll bars, sliders and status panels as state transitions.

#include "SignalTestSupport.h"

#include <gtest/gtest.h>

namespace aqx {
namespace {

using namespace views;
using namespace testing_views;

constexpr int kW = 200;
constexpr int kH = 100;

struct Interaction : ::testing::Test {
  std::unique_ptr<AppState> s = MakeState(100);
  SignalViewState v;
  void SetUp() override {
    SetTestOptions(*s);
    for (int i = 1; i <= 100; ++i) s->SignalData.at(i, 1) = static_cast<int16_t>(i);
    v = ViewOf(*s, kW, kH);
    PrepareAndDraw(*s, v, FontMetrics{});
  }
};

TEST_F(Interaction, SelectionDraggedRightToLeftIsStoredWithBeginBelowEnd) {
  SetCursorSetting(*s, SignalCursor::Free);
  MouseMove(*s, v, 150, 20, false);  // the cross-hair, the anchor
  ASSERT_EQ(v.CursorX, 150);
  MouseDown(*s, v, MouseButton::Left, 150, 20);
  const SignalAction a = MouseMove(*s, v, 50, 20, true);
  EXPECT_TRUE(a.cheapRefresh);
  EXPECT_TRUE(a.redraw);
  EXPECT_EQ(s->SelectFirst, 26);  // 1 + 99 * 50 / 200 = 25.75
  EXPECT_EQ(s->SelectLast, 75);   // 1 + 99 * 150 / 200 = 75.25
  EXPECT_EQ(v.CentreSample, 50);  // 50.5 to even
  EXPECT_TRUE(v.CursorValueText.isEmpty());
  // The anchor survives the redraw that follows each move.
  PrepareAndDraw(*s, v, FontMetrics{});
  EXPECT_EQ(v.CursorX, 150);
  MouseUp(*s, v);
  PrepareAndDraw(*s, v, FontMetrics{});
  EXPECT_EQ(v.CursorX, -1);
  EXPECT_EQ(s->SelectFirst, 26);
}

TEST_F(Interaction, SelectionDraggedPastThePictureIsHeldToTheView) {
  SetCursorSetting(*s, SignalCursor::Bound);
  MouseMove(*s, v, 100, 20, false);
  MouseDown(*s, v, MouseButton::Left, 100, 20);
  MouseMove(*s, v, 400, 20, true);
  EXPECT_EQ(s->SelectLast, s->ViewLast);
  EXPECT_EQ(v.SelectSaveLast, 199);  // kept before holding
  MouseMove(*s, v, -30, 20, true);
  EXPECT_EQ(s->SelectFirst, s->ViewFirst);
}

TEST_F(Interaction, WithoutCursorALeftClickClearsTheSelectionAndADragPans) {
  s->SelectFirst = 10;
  s->SelectLast = 20;
  SignalAction a = MouseDown(*s, v, MouseButton::Left, 100, 50);
  EXPECT_EQ(s->SelectFirst, 0);
  EXPECT_EQ(s->SelectLast, 0);
  EXPECT_TRUE(a.cheapRefresh);
  // At zoom 1:1 there is nothing to pan.
  a = MouseMove(*s, v, 60, 50, true);
  EXPECT_FALSE(a.redraw);
  EXPECT_EQ(s->ViewFirst, 1);

  SliderHChanged(*s, v, 1, false);  // half the store in view
  PrepareAndDraw(*s, v, FontMetrics{});
  const int before = v.timeScroll;
  MouseDown(*s, v, MouseButton::Left, 100, 50);
  a = MouseMove(*s, v, 80, 55, true);  // 20 px left: 5 samples later
  EXPECT_TRUE(a.redraw);
  EXPECT_EQ(v.timeScroll, before + 5);
  EXPECT_EQ(s->ViewFirst, (before + 5) * v.ScrollStep);
  EXPECT_EQ(s->channels.ChannelY[1], 55);  // the zero line follows down
  EXPECT_EQ(v.DragX, 80);
  MouseUp(*s, v);
  EXPECT_EQ(v.DragX, -1);
}

TEST_F(Interaction, PanningUpwardPastTheBarWidensItsRangeWithin16Bits) {
  SliderHChanged(*s, v, 1, false);
  PrepareAndDraw(*s, v, FontMetrics{});
  MouseDown(*s, v, MouseButton::Left, 100, 90);
  MouseMove(*s, v, 100, 0, true);
  EXPECT_EQ(s->channels.ChannelY[1], -40);
  EXPECT_EQ(v.VScrollMin, -40);
  v.VScroll1 = 32760;
  v.VScrollMax = 32760;
  s->channels.ChannelY[1] = 32760;
  MouseDown(*s, v, MouseButton::Left, 100, 0);
  MouseMove(*s, v, 100, 90, true);
  EXPECT_EQ(s->channels.ChannelY[1], 32760);  // not applied past 32767
}

TEST_F(Interaction, FreeCursorReadsTheHeightBoundCursorTheSample) {
  SetCursorSetting(*s, SignalCursor::Free);
  SignalAction a = MouseMove(*s, v, 20, 30, false);
  EXPECT_TRUE(a.crosshair);
  EXPECT_EQ(v.CursorSample, 11);
  EXPECT_EQ(v.CursorY, 30);
  // 20 px above the zero line at 0.5 px per unit.
  EXPECT_EQ(v.CursorValueText, QStringLiteral("40 мкм"));

  SetCursorSetting(*s, SignalCursor::Bound);
  MouseMove(*s, v, 20, 90, false);
  // Sample 11 holds code 11: 11 units, 5.5 px above the zero line.
  EXPECT_EQ(v.CursorValueText, QStringLiteral("11 мкм"));
  EXPECT_EQ(v.CursorY, 44);
  DrawList overlay;
  AppendCrosshair(v, overlay);
  ASSERT_EQ(overlay.items.size(), 3u);
  EXPECT_TRUE(std::get<Line>(overlay.items[0]).pen.xorMode);
}

TEST_F(Interaction, CursorOutsideThePictureOrBeyondTheStoreIsQuiet) {
  SetCursorSetting(*s, SignalCursor::Bound);
  EXPECT_FALSE(MouseMove(*s, v, kW + 1, 10, false).crosshair);
  v.PixelsPerSample = 0.5;  // a stale factor sends the pointer past the store
  v.ColorPropertyOpen = true;
  const SignalAction a = MouseMove(*s, v, kW, 10, false);
  EXPECT_GT(v.CursorSample, s->SignalDataN);
  EXPECT_FALSE(a.colorProperty);
}

TEST_F(Interaction, ColorPropertyGetsOneValuePerShownChannel) {
  s->channels.Channel[2] = 1;
  s->channels.Active[2] = 1;
  s->SignalData.at(11, 2) = -2000;
  SetCursorSetting(*s, SignalCursor::Free);
  v.ColorPropertyOpen = true;
  EXPECT_TRUE(MouseMove(*s, v, 20, 30, false).colorProperty);
  EXPECT_EQ(v.ColorPropertyValues[1], FormatGrouped(11));
  EXPECT_EQ(v.ColorPropertyValues[2], FormatGrouped(-2000));
}

TEST_F(Interaction, ScrollBarMovesTheViewAndAFinishedChangeRefreshesAll) {
  SliderHChanged(*s, v, 2, false);  // 25 samples in view
  SignalAction a = HScrollChanged(*s, v, 40, false);
  EXPECT_EQ(s->ViewFirst, 40);
  EXPECT_EQ(s->ViewLast, 64);
  EXPECT_TRUE(a.redraw);
  EXPECT_FALSE(a.viewRefresh);
  a = HScrollChanged(*s, v, 1, true);
  EXPECT_EQ(s->ViewFirst, 1);
  EXPECT_TRUE(a.viewRefresh);
  a = HScrollChanged(*s, v, 100000, true);
  EXPECT_EQ(v.timeScroll, v.timeScrollMax);
}

TEST_F(Interaction, AmplitudeSliderSetsTheScaleOrAuto) {
  s->SignalMaxValue[1] = 100;  // what the auto scale is taken from
  const struct { int slider; int32_t ym; const char* tip; } cases[] = {
      {3, 100, "100 мкм"}, {9, 10000, "10 мм"}, {-1, 200, "Авто"}};
  for (const auto& c : cases) {
    SliderVChanged(*s, v, c.slider);
    EXPECT_EQ(s->channels.ChannelYm[1], c.ym);
    EXPECT_EQ(v.SliderVToolTip, QString::fromUtf8(c.tip));
  }
}

TEST_F(Interaction, StatusPanelsAsButtons) {
  StatusPanelClicked(*s, v, SignalPanel::Dimension, MouseButton::Left);
  EXPECT_EQ(v.SliderV, 0);
  StatusPanelClicked(*s, v, SignalPanel::Dimension, MouseButton::Right);
  StatusPanelClicked(*s, v, SignalPanel::Dimension, MouseButton::Right);
  EXPECT_EQ(v.SliderV, -1);

  StatusPanelClicked(*s, v, SignalPanel::Scale, MouseButton::Left);
  EXPECT_EQ(v.SliderH, 1);
  StatusPanelClicked(*s, v, SignalPanel::Scale, MouseButton::Right);
  StatusPanelClicked(*s, v, SignalPanel::Scale, MouseButton::Right);
  EXPECT_EQ(v.SliderH, 0);

  EXPECT_TRUE(StatusPanelClicked(*s, v, SignalPanel::Center, MouseButton::Right).optionsChanged);
  EXPECT_TRUE(s->options.signal.LineCenter);

  s->SelectFirst = 5;
  StatusPanelClicked(*s, v, SignalPanel::Cursor, MouseButton::Left);
  EXPECT_EQ(CursorOf(*s), SignalCursor::Free);
  EXPECT_EQ(s->SelectFirst, 0);
  StatusPanelClicked(*s, v, SignalPanel::Cursor, MouseButton::Right);
  EXPECT_EQ(CursorOf(*s), SignalCursor::Bound);
  StatusPanelClicked(*s, v, SignalPanel::Cursor, MouseButton::Right);
  EXPECT_EQ(CursorOf(*s), SignalCursor::None);
  EXPECT_FALSE(CrossPointer(*s));
}

TEST_F(Interaction, ZeroLinePanelStepsMiddleBottomTopMiddle) {
  const struct { int from; MouseButton button; int to; } steps[] = {
      {50, MouseButton::Left, kH}, {kH, MouseButton::Left, 0}, {0, MouseButton::Right, 50}, {7, MouseButton::Left, 50}};
  for (const auto& step : steps) {
    s->channels.ChannelY[1] = step.from;
    StatusPanelClicked(*s, v, SignalPanel::Y0, step.button);
    EXPECT_EQ(s->channels.ChannelY[1], step.to) << "from " << step.from;
  }
  EXPECT_EQ(v.VScroll1, 50);
}

void ExpectTexts(const SignalStatus& st, std::initializer_list<std::pair<SignalPanel, QString>> want) {
  for (const auto& [panel, text] : want) EXPECT_EQ(st[panel], text) << "panel " << static_cast<int>(panel);
}

TEST_F(Interaction, StatusTexts) {
  using enum SignalPanel;
  SignalStatus st = OutInfoToStatusBar(*s, v);
  ExpectTexts(st, {{Dimension, "D: 100 мкм "}, {Scale, "M: 1:1 "}, {Window, "W: 0:00:00.001 - 0:00:00.100 "},
                   {Cursor, "C0: - "}, {Level, "V: - "}, {Select, "S: - "}, {SelectLen, "L: - "},
                   {Y0, "Y0: 50% "}, {BeginPoint, "BP: - "}, {SignalDataN, "N: 100"}});
  EXPECT_FALSE(st.beginPointEnabled);
  EXPECT_FALSE(st.selectionCommandsEnabled);

  SetCursorSetting(*s, SignalCursor::Bound);
  MouseMove(*s, v, 20, 30, false);
  s->SelectFirst = 11;
  s->SelectLast = 61;
  s->channels.Type[1] = 0;
  s->channels.KS[1] = 40;
  s->options.parameters.StatusFilterConst = false;
  s->channels.ChannelYm[1] = 20000;
  st = OutInfoToStatusBar(*s, v);
  ExpectTexts(st, {{Dimension, "D: " + FormatGrouped(20) + " мм "}, {Cursor, "C2: 0:00:00.011 "},
                   {Level, "V: 11 мкм "}, {Select, "S: 0:00:00.011 - 0:00:00.061 "}, {SelectLen, "L: 0:00:00.050 "},
                   {BeginPoint, "BP: " + FormatGrouped(40) + " мкм "}});
  EXPECT_TRUE(st.beginPointEnabled);
  EXPECT_TRUE(st.selectionCommandsEnabled);
}

TEST(SignalControls, ControlsFollowANewCurrentChannel) {
  auto s = MakeState(100, kChannelUnplaced, 200);
  SignalViewState v = ViewOf(*s, kW, kH);
  RefreshElementsImposition(*s, v);
  EXPECT_EQ(v.VScroll1, 50);
  EXPECT_EQ(v.VScrollMax, kH);
  s->channels.ChannelY[1] = 300;
  v.SliderV = 0;
  RefreshElementsImposition(*s, v);
  EXPECT_EQ(v.VScroll1, 300);
  EXPECT_EQ(v.VScrollMax, 300);
  EXPECT_EQ(v.SliderV, 4);  // 200 is entry 4
  EXPECT_FALSE(v.ImpositionLock);
  SetY0(*s, v);
  EXPECT_EQ(s->channels.ChannelY[2], 50);
  ResetValueElements(v);
  EXPECT_EQ(v.SliderH, 0);
  EXPECT_EQ(v.timeScroll, 1);
}

// Zoom round the pointer, a zoom box, the way back and the whole record.
TEST(SignalNavigation, ZoomKeepsThePointedSampleAndCanBeTakenBack) {
  auto s = MakeState(1000);
  SignalViewState v = ViewOf(*s, 200, 100);  // 0.2 pixels a sample
  ASSERT_EQ(s->ViewFirst, 1);
  SignalAction a = ZoomAround(*s, v, 50, 1);
  EXPECT_TRUE(a.viewRefresh);
  // Sample 251 stood under column 50 and stands there at 0.4 pixels a sample.
  EXPECT_EQ(v.SliderH, 1);
  EXPECT_NEAR(s->ViewFirst + 50 / PixelsPerSampleFor(v.SliderH, 200, 1000), 251, 1);
  ZoomAround(*s, v, 200, 2);
  EXPECT_EQ(v.SliderH, 3);
  EXPECT_LE(s->ViewLast, 1000);
  ZoomBack(*s, v);
  ZoomBack(*s, v);
  EXPECT_EQ(v.SliderH, 0);
  EXPECT_EQ(s->ViewFirst, 1);
  EXPECT_FALSE(ZoomBack(*s, v).viewRefresh) << "nothing left to go back to";

  // A box from column 60 to 80: samples 301..401 need zoom 3 (125 samples).
  StartZoomBox(v, 60);
  DragZoomBox(v, 80);
  DrawList overlay;
  AppendZoomBox(v, overlay);
  ASSERT_EQ(ItemsOf<Rect>(overlay).size(), 1u);
  EndZoomBox(*s, v);
  EXPECT_EQ(v.SliderH, 3);
  EXPECT_LE(s->ViewFirst, 301);
  EXPECT_GE(s->ViewLast, 401);
  StartZoomBox(v, 60);
  DragZoomBox(v, 62);  // a slip of the hand
  EXPECT_FALSE(EndZoomBox(*s, v).viewRefresh);
  ShowAll(*s, v);
  EXPECT_EQ(v.SliderH, 0);
  ZoomBack(*s, v);
  EXPECT_EQ(v.SliderH, 3);
  for (int k = 0; k < 80; ++k) ZoomAround(*s, v, 100, k % 2 == 0 ? -1 : 1);
  EXPECT_EQ(v.zoomHistory.size(), 50u) << "the history is bounded";
}

}  // namespace
}  // namespace aqx
