#include "SignalTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

namespace aqx {
namespace {

using namespace views;
using testing_views::MakeState;
using testing_views::ViewOf;

TEST(NiceTimeStep, EachBoundIsInclusiveAndTheNextStepStartsJustAbove) {
  const double bounds[] = {0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1,    2,     5,     10,    20,
                           50,   100,  200,  300, 600, 1200, 3000, 6000, 12000, 18000, 36000};
  const double steps[] = {0.001, 0.002, 0.005, 0.01, 0.02, 0.05, 0.1,  0.2,  0.5,  1,    2,
                          5,     10,    20,    30,   60,   120,  300,  600,  1200, 1800, 3600};
  for (size_t i = 0; i < std::size(bounds); ++i) {
    EXPECT_DOUBLE_EQ(NiceTimeStep(bounds[i]), steps[i]) << "T = " << bounds[i];
    if (i + 1 < std::size(bounds)) {
      EXPECT_DOUBLE_EQ(NiceTimeStep(bounds[i] * 1.0001), steps[i + 1]);
    }
  }
  EXPECT_DOUBLE_EQ(NiceTimeStep(0.0), 0.001);
  EXPECT_DOUBLE_EQ(NiceTimeStep(36000.5), 0.0);
}

TEST(ScrollAndZoom, ScrollStepReachesTheWholeStoreWithA16BitBar) {
  EXPECT_EQ(ScrollStepFor(1), 1);
  EXPECT_EQ(ScrollStepFor(32768), 1);
  EXPECT_EQ(ScrollStepFor(32769), 1);
  EXPECT_EQ(ScrollStepFor(49152), 2);  // 1.5 rounds to even
  EXPECT_EQ(ScrollStepFor(1048576), 32);
  EXPECT_EQ(SliderHMaxFor(32768), 14);
  EXPECT_EQ(SliderHMaxFor(1048576), 19);
  EXPECT_EQ(SliderHMaxFor(1), 0);
  EXPECT_EQ(SliderHMaxFor(0), 0);
}

TEST(ScrollAndZoom, ConfigSliderHShowsTheWholeStoreAndZoomedKeepsTheCentre) {
  auto s = MakeState(32768);
  SignalViewState v = ViewOf(*s, 800, 400);
  EXPECT_EQ(v.timeScroll, 1);
  EXPECT_EQ(v.timeScrollMax, 1);
  EXPECT_EQ(s->ViewFirst, 1);
  EXPECT_EQ(s->ViewLast, 32768);
  EXPECT_EQ(v.SliderHToolTip, QStringLiteral("Масштаб: 1:1"));
  v.SliderH = 2;  // a quarter in view: 8192 samples
  v.CentreSample = 16384;
  ConfigSliderH(*s, v);
  EXPECT_EQ(v.timeScrollMax, 32768 - 8192);
  EXPECT_EQ(v.timeScrollLargeChange, 8192);
  EXPECT_EQ(v.timeScroll, 16384 - 4096 + 1);
  EXPECT_EQ(s->ViewFirst, 12289);
  EXPECT_EQ(s->ViewLast, 12289 + 8191);
  EXPECT_EQ(v.SliderHToolTip, QStringLiteral("Масштаб: 4:1"));
}

TEST(ScrollAndZoom, ConfigSliderHOnTheLargestStoreAtDeepestZoom) {
  auto s = MakeState(kMaxSamples);
  SignalViewState v = ViewOf(*s, 1920, 1080);
  EXPECT_EQ(v.ScrollStep, 32);
  v.SliderH = v.SliderHMax;  // 2 samples in view
  v.CentreSample = kMaxSamples;
  ConfigSliderH(*s, v);
  EXPECT_EQ(v.timeScroll, 32767);  // held to the bar's top
  EXPECT_GE(s->ViewFirst, 1);
  EXPECT_LE(s->ViewLast, kMaxSamples);
  EXPECT_EQ(s->ViewLast - s->ViewFirst, 1);
}

TEST(ScrollAndZoom, OneSampleStore) {
  auto s = MakeState(1);
  SignalViewState v = ViewOf(*s, 300, 200);
  EXPECT_EQ(v.SliderHMax, 0);
  EXPECT_EQ(s->ViewFirst, 1);
  EXPECT_EQ(s->ViewLast, 1);
  EXPECT_DOUBLE_EQ(PixelsPerSampleFor(0, 300, 1), 300.0);
}

TEST(PixelMapping, CursorSampleCountsFromOneAtTheStartAndFromThePositionElsewhere) {
  EXPECT_EQ(XToSample(0, 1, 1, 2.0), 1);
  EXPECT_EQ(XToSample(10, 1, 1, 2.0), 6);
  EXPECT_EQ(XToSample(0, 5, 32, 0.5), 160);
  EXPECT_EQ(XToSample(10, 5, 32, 0.5), 180);
  EXPECT_DOUBLE_EQ(SampleToX(11, 1, 2.0), 20.0);
}

TEST(PixelMapping, SelectionEdgesSpreadTheViewOverTheWidth) {
  EXPECT_EQ(SelectionSampleAt(0, 101, 200, 100), 101);
  EXPECT_EQ(SelectionSampleAt(100, 101, 200, 100), 200);
  EXPECT_EQ(SelectionSampleAt(50, 101, 200, 100), 150);  // 150.5 to even
  EXPECT_EQ(SelectionSampleAt(50, 1, 1, 0), 1);          // no width, no fault
}

TEST(ChannelLayout, BandsShareTheHeightWithZeroLinesAtTheirCentres) {
  EXPECT_TRUE(BandCentres(400, 0).empty());
  EXPECT_EQ(BandCentres(400, 1), std::vector<int>{200});
  EXPECT_EQ(BandCentres(100, 3), (std::vector<int>{17, 50, 83}));
  const std::vector<int> all = BandCentres(1080, 32);
  ASSERT_EQ(all.size(), 32u);
  EXPECT_EQ(all.front(), 17);  // 16.875
  EXPECT_EQ(all.back(), 1063);
}

TEST(ChannelLayout, AutoScaleIsTheNextStepAboveThePeakTimesTheChannels) {
  EXPECT_EQ(AutoChannelYm(40, 1), 50);
  EXPECT_EQ(AutoChannelYm(50, 1), 100);  // strictly above
  EXPECT_EQ(AutoChannelYm(40, 3), 150);
  EXPECT_EQ(AutoChannelYm(0, 0), 10);    // no channels counts as one
  // Past the table the 1-2-5 steps go on: 60 MW of a power channel.
  EXPECT_EQ(AutoChannelYm(6.0e7, 1), 100'000'000);
  EXPECT_EQ(AutoChannelYm(4.9e6, 1), 5'000'000);
  EXPECT_EQ(AutoChannelYm(5.0e6, 1), 10'000'000);
  // Held to what 32 bits hold, channels counted in.
  EXPECT_EQ(AutoChannelYm(3.0e9, 1), 2'000'000'000);
  EXPECT_EQ(AutoChannelYm(3.0e9, 32), 32 * 50'000'000);
  EXPECT_EQ(AutoChannelYm(std::numeric_limits<double>::quiet_NaN(), 1), 2'000'000'000);
}

TEST(ChannelLayout, ThePeakIsWhatTheTraceShows) {
  ChannelSetup ch;
  ch.Ku[1] = 8.0f;
  ch.Volume[1] = 0;
  // A run-out probe at its 4 V gap, swinging 300 codes each way: with the
  // offset taken off, 300 codes are 46.875 um, not the 500 um of the gap.
  EXPECT_DOUBLE_EQ(DisplayPeak(ch, 1, 2900, 3500, 3200), 300 * 1.25 / 8);
  EXPECT_DOUBLE_EQ(DisplayPeak(ch, 1, 2900, 3500, 0), 3500 * 1.25 / 8);
  EXPECT_DOUBLE_EQ(DisplayPeak(ch, 1, -4000, 100, 0), 4000 * 1.25 / 8);
  ch.Volume[1] = 1;  // four times the gain: a quarter of the units
  ch.Zero[1] = 10;   // less 4 x 10 mV
  EXPECT_DOUBLE_EQ(DisplayPeak(ch, 1, -100, 100, 0), (100 * 1.25 + 40) / 8 / 4);
}

TEST(TimeTexts, MillisecondsOnlyWhenNotZero) {
  EXPECT_EQ(TimeText(0.0), QStringLiteral("0:00:00"));
  EXPECT_EQ(TimeText(0.01), QStringLiteral("0:00:00.010"));
  EXPECT_EQ(TimeText(3723.5), QStringLiteral("1:02:03.500"));
  EXPECT_EQ(TimeText(86400.0 + 1), QStringLiteral("0:00:01"));  // a time of day
  EXPECT_EQ(TimeText(-1.0), QStringLiteral("23:59:59"));
}

TEST(TimeTexts, RealTimeAddsTheRecordingStartAndSolidBlocksTheirPlace) {
  auto s = MakeState(1000);
  s->object.RecordDate = DateTimeToOle(QDateTime(QDate(2020, 5, 1), QTime(10, 0, 0)));
  EXPECT_DOUBLE_EQ(SampleSeconds(*s, 500), 0.5);
  s->options.parameters.ViewRealTime = true;
  EXPECT_DOUBLE_EQ(SampleSeconds(*s, 500), 36000.5);
  s->options.parameters.ViewRealTime = false;
  s->SolidMode = true;
  s->SolidBlockN = 3;
  s->FreqADC = 32000;
  s->ChannelUsedCount = 2;  // 16000 rows a second: a block lasts 65.536 s
  EXPECT_DOUBLE_EQ(SampleSeconds(*s, 0), 131.0);
}

}  // namespace
}  // namespace aqx
