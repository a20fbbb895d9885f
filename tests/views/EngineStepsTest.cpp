// The signal view and its bars on the engine's own results: shaft marks, the
// first harmonic, peak values, through the steps ViewRefresh runs.

#include "SignalTestSupport.h"

#include "views/Analysis.h"
#include "views/parameters/ParameterSteps.h"
#include "views/signal/SignalRefresh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace aqx {
namespace {

using namespace views;
using namespace testing_views;

// Channel 1 a 1.38 Hz sine of 400 units, channel 2 a marker pulse every 250
// samples (4 revolutions a second at 1000 Hz).
std::unique_ptr<AppState> Unit(int samples) {
  auto s = MakeState(samples);
  s->channels.Channel[2] = 1;
  s->channels.Type[2] = 3;
  RecountChannelUsedCount(*s);
  s->FreqRotorN = 240;
  for (int i = 1; i <= samples; ++i) {
    s->SignalData.at(i, 1) = static_cast<int16_t>(std::lround(400 * std::sin(2 * std::numbers::pi * 1.38 * i / 1000.0)));
    s->SignalData.at(i, 2) = (i % 250 == 100) ? 4000 : 0;
  }
  return s;
}

TEST(EngineSteps, MarkerLinesStandWhereTheDetectorFoundThePulses) {
  auto s = Unit(1000);
  SetTestOptions(*s);
  s->options.otmetchick.OtmetchickAuto = 0;
  s->options.otmetchick.OtmetchickLevel = 2000;
  SignalViewState v = ViewOf(*s, 500, 100);  // half a pixel per sample
  const DrawList list = BuildSignal(*s, v, FontMetrics{});
  ASSERT_EQ(s->ShaftMarkCount, 4);
  const auto lines = LinesOf(list, kMarkerLine);
  ASSERT_EQ(lines.size(), 4u);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(lines[static_cast<size_t>(i)].x1, RoundHalfEven((99 + 250 * i) * 0.5));
  EXPECT_NEAR(v.speed.RotorSpeedMin, 240.0, 0.5);
  EXPECT_EQ(v.RotorSpeedText.left(3), FormatStandard(240.0).left(3));
}

TEST(EngineSteps, RefreshDeliversPictureStatusAndParameterBar) {
  auto s = Unit(32768);
  s->ViewOpenFlags[frmViewSignal] = true;
  s->channels.Type[1] = 1;  // vibration: five panels
  SetTestOptions(*s);
  s->options.parameters.AutoY0 = true;
  SignalViewState v = ViewOf(*s, 640, 200);
  auto r = std::make_unique<AnalysisResults>();
  ViewRegistry registry;
  registry.runOn = true;
  registry.signalStatusBarParameter = true;
  InstallEngineSteps(registry, *s, *r);
  int pictures = 0;
  ParameterBar shownBar;
  SignalStatus shownStatus;
  SignalWindowHooks hooks;
  hooks.showPicture = [&](DrawList&& list) {
    ++pictures;
    // 32768 samples on 640 pixels: thinned to two points a column, as a
    // redraw outside the refresh draws them.
    ASSERT_EQ(TracesOf(list).size(), 1u);
    EXPECT_EQ(TracesOf(list)[0].xs.size(), 2u * 640 + 1);
    SignalViewState again = v;
    EXPECT_EQ(TracesOf(BuildSignal(*s, again, FontMetrics{}))[0].ys, TracesOf(list)[0].ys);
  };
  hooks.showStatus = [&](SignalStatus&& st) { shownStatus = std::move(st); };
  hooks.showParameterBar = [&](ParameterBar&& bar) { shownBar = std::move(bar); };
  hooks.parameterBarWidthPx = [] { return 500; };
  InstallSignalView(registry, *s, v, *r, std::move(hooks));

  ViewRefresh(*s, registry);
  EXPECT_EQ(pictures, 1);
  EXPECT_EQ(shownStatus[SignalPanel::SignalDataN], QStringLiteral("N: 32768"));
  EXPECT_EQ(s->SignalMaxValue[1], 400);
  EXPECT_EQ(s->channels.ChannelYm[1], 500);  // auto: the entry above a 400 peak
  ASSERT_EQ(shownBar.panels.size(), 5u);
  EXPECT_EQ(shownBar.panelWidthPx, 100);
  // The first harmonic, peak to peak: twice the 400 units.
  EXPECT_NEAR(r->ProbeAmplitude[0], 800, 16);
  EXPECT_TRUE(shownBar.panels[4].text.startsWith(QStringLiteral("1 гарм.: ")));
  EXPECT_TRUE(shownBar.panels[4].text.contains(QStringLiteral("мкм / ")));

  ViewRefreshCheap(*s, registry);
  EXPECT_EQ(pictures, 1);  // the cheaper variant draws no picture
}

TEST(EngineSteps, ParameterWindowReadsByTheChannelsKind) {
  auto s = Unit(4000);
  s->options.otmetchick.OtmetchickAuto = 0;
  s->options.otmetchick.OtmetchickLevel = 2000;
  auto r = std::make_unique<AnalysisResults>();
  s->FirstChannelActive = 2;
  const QString speed = OutDataParameters(*s, *r);
  EXPECT_TRUE(speed.contains(QStringLiteral(" об/мин (100%) "))) << speed.toStdString();
  s->FirstChannelActive = 1;
  s->channels.Type[1] = 5;  // voltage: the peak in millivolts
  EXPECT_EQ(OutDataParameters(*s, *r), FormatStandard(400) + QStringLiteral(" мВ"));
}

// A selection shorter than two revolutions once read "0.00 об/мин (0%)" and
// the marker lines outside it vanished.
TEST(EngineSteps, AStretchOfLessThanTwoRevolutionsShowsTheWholeRecordsSpeed) {
  auto s = Unit(4000);
  SetTestOptions(*s);
  s->options.otmetchick.OtmetchickAuto = 0;
  s->options.otmetchick.OtmetchickLevel = 2000;
  s->SelectFirst = 1000;
  s->SelectLast = 1200;  // one mark, at 1100
  SignalViewState v = ViewOf(*s, 400, 100);
  const DrawList list = BuildSignal(*s, v, FontMetrics{});
  EXPECT_TRUE(v.speed.WholeRecord);
  EXPECT_NEAR(v.speed.RotorSpeedMin, 240.0, 0.5);
  EXPECT_TRUE(v.RotorSpeedText.endsWith(QStringLiteral("по всей записи "))) << v.RotorSpeedText.toStdString();
  EXPECT_EQ(LinesOf(list, kMarkerLine).size(), 16u) << "every mark of the view";
  s->SelectLast = 1600;  // two marks: the selection's own speed
  BuildSignal(*s, v, FontMetrics{});
  EXPECT_FALSE(v.speed.WholeRecord);
  EXPECT_NEAR(v.speed.RotorSpeedMin, 240.0, 0.5);
}

TEST(EngineSteps, NoRecordingAtAllStillRefreshes) {
  auto s = MakeState(1);
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = s->channels.Active[c] = 0;
  RecountChannelUsedCount(*s);
  s->FirstChannelActive = 0;
  for (int w = 0; w < kViewWindowCount; ++w) s->ViewOpenFlags[static_cast<size_t>(w)] = true;
  SignalViewState v = ViewOf(*s, 300, 200);
  auto r = std::make_unique<AnalysisResults>();
  ViewRegistry registry;
  registry.signalStatusBarParameter = true;
  registry.parametersOpen = true;
  InstallEngineSteps(registry, *s, *r);
  QString line = QStringLiteral("unset");
  registry[RefreshStep::ParametersOutData] = [&] { line = OutDataParameters(*s, *r); };
  InstallSignalView(registry, *s, v, *r, SignalWindowHooks{});
  ViewRefresh(*s, registry);
  ViewRefreshCheap(*s, registry);
  EXPECT_NE(line, QStringLiteral("unset"));
}

}  // namespace
}  // namespace aqx
