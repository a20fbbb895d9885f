// The spectrum a user reads: analytic signals through the same calls the
// spectrum window makes, with every smoothing window of the settings.

#include "engine/Aquilonix.h"
#include "tests/views/SignalTestSupport.h"
#include "views/Analysis.h"
#include "views/edit/EditHistory.h"
#include "views/spectrum/SpectrumEngine.h"
#include "views/spectrum/SpectrumView.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace aqx {
namespace {

using testing_views::MakeState;

constexpr int kSamples = 4096;

// A sine of `peakCodes` at `hz` on channel 1 (1000 samples a second).
void FillSine(AppState& s, double hz, double peakCodes, double phaseRad = 0.0) {
  for (int i = 1; i <= s.SignalDataN; ++i)
    s.SignalData.at(i, 1) = static_cast<int16_t>(std::lround(peakCodes * std::sin(2 * std::numbers::pi * hz * (i - 1) / s.FreqDesc + phaseRad)));
}

struct Spectrum {
  std::unique_ptr<AppState> s;
  std::unique_ptr<views::AnalysisResults> r = std::make_unique<views::AnalysisResults>();
};

Spectrum SineSpectrum(double hz, double peakCodes, int window, int type, float ku) {
  Spectrum x{MakeState(kSamples)};
  x.s->channels.Type[1] = type;
  x.s->channels.Ku[1] = ku;
  x.s->options.config.SmoothingWindow = window;
  x.s->BlockSizeFFT = kMaxSamples;
  FillSine(*x.s, hz, peakCodes);
  views::AccountChannelSpectrum(*x.s, *x.r, 1);
  return x;
}

TEST(SpectrumNumbers, ASineReadsItsPeakToPeakInTheChannelUnitWithEveryWindow) {
  // 125 Hz lies on line 512 of a 4096-point transform at 1000 Hz.
  const double hz = 125.0;
  for (int type : {0, 1}) {  // run-out and vibration
    for (int window = 0; window < 9; ++window) {
      const Spectrum x = SineSpectrum(hz, 1000.0, window, type, 5.0f);
      SCOPED_TRACE(::testing::Message() << "type " << type << " window " << window);
      EXPECT_DOUBLE_EQ(x.s->StepDesc, 1000.0 / kSamples);
      EXPECT_EQ(x.s->SpectrLineCount, kSamples / 2);
      const auto peaks = views::StrongestLines(*x.r, x.s->SpectrLineCount, 1);
      ASSERT_EQ(peaks.size(), 1u);
      EXPECT_NEAR(peaks[0] * x.s->StepDesc, hz, 1e-9);
      // 1000 codes peak: 2 * 1000 * 1.25 / 5 = 500 units from peak to peak.
      EXPECT_NEAR(x.r->SpectrAmplitude[static_cast<size_t>(peaks[0])], 500.0, 0.5);
      EXPECT_NEAR(x.r->SpectrMax, 500, 1);
    }
  }
}

TEST(SpectrumNumbers, TwoCloseTonesStaySeparate) {
  Spectrum x{MakeState(kSamples)};
  // Six lines apart: each keeps its own peak and the dip between them is deep.
  const double step = 1000.0 / kSamples;
  for (int i = 1; i <= kSamples; ++i) {
    const double t = (i - 1) / 1000.0;
    x.s->SignalData.at(i, 1) = static_cast<int16_t>(std::lround(800 * std::sin(2 * std::numbers::pi * 500 * step * t) +
                                                                 400 * std::sin(2 * std::numbers::pi * 506 * step * t)));
  }
  views::AccountChannelSpectrum(*x.s, *x.r, 1);
  const auto peaks = views::StrongestLines(*x.r, x.s->SpectrLineCount, 2);
  ASSERT_EQ(peaks.size(), 2u);
  EXPECT_EQ(peaks[0], 500);
  EXPECT_EQ(peaks[1], 506);
  EXPECT_NEAR(x.r->SpectrAmplitude[506], 800.0, 1.0);
  EXPECT_LT(x.r->SpectrAmplitude[503], 10.0);
}

TEST(SpectrumNumbers, ASilentChannelGivesZerosAndNoNaN) {
  for (int window : {0, 1, 6}) {
    Spectrum x{MakeState(kSamples)};
    x.s->options.config.SmoothingWindow = window;
    views::AccountChannelSpectrum(*x.s, *x.r, 1);
    EXPECT_EQ(x.r->SpectrMax, 0);
    for (int k = 0; k < x.s->SpectrLineCount; ++k) {
      ASSERT_EQ(x.r->SpectrAmplitude[static_cast<size_t>(k)], 0.0);
      ASSERT_FALSE(std::isnan(x.r->SpectrPhase[static_cast<size_t>(k)]));
    }
  }
}

TEST(SpectrumNumbers, ABlockLargerThanTheRecordTakesTheRecord) {
  Spectrum x{MakeState(1024)};
  x.s->BlockSizeFFT = 2048;
  FillSine(*x.s, 1000.0 / 1024 * 64, 1000.0);
  views::AccountChannelSpectrum(*x.s, *x.r, 1);
  EXPECT_EQ(x.s->SpectrLineCount, 512);
  EXPECT_DOUBLE_EQ(x.s->StepDesc, 1000.0 / 1024);
  EXPECT_EQ(views::StrongestLines(*x.r, x.s->SpectrLineCount, 1).front(), 64);
}

TEST(SpectrumNumbers, ShorterBlocksAverageAndOverlapFollowsTheSettings) {
  for (int overlap : {0, 50, 75}) {
    Spectrum x{MakeState(kSamples)};
    x.s->BlockSizeFFT = 512;
    x.s->options.config.SmoothingWindow = 3;
    x.s->options.config.Overlapping = overlap;
    FillSine(*x.s, 1000.0 / 512 * 40, 1000.0);
    views::AccountChannelSpectrum(*x.s, *x.r, 1);
    EXPECT_EQ(x.s->SpectrLineCount, 256);
    EXPECT_NEAR(x.r->SpectrAmplitude[40], 2000.0, 1.0);
  }
}

TEST(SpectrumNumbers, ProbesBetweenLinesReadTheTone) {
  Spectrum x{MakeState(kSamples)};
  // 100.1 Hz falls four tenths of the way from line 409 to 410.
  const double hz = 409.4 * 1000.0 / kSamples;
  FillSine(*x.s, hz, 1000.0);
  x.s->channels.ProbeFreq[1][0] = static_cast<float>(hz);
  x.s->FreqOneGarmonic = hz / 2;
  views::AccountChannelSpectrum(*x.s, *x.r, 1);
  views::AccountChannelProbeValues(*x.s, *x.r);
  EXPECT_NEAR(x.r->ProbeAmplitude[1], 2000, 20);
  EXPECT_LT(x.r->ProbeAmplitude[0], 40);
  const views::ParameterBar bar = views::OutSpectrStatusBarParameter(*x.s, *x.r, 400);
  ASSERT_EQ(bar.panels.size(), 2u);
  EXPECT_TRUE(bar.panels[1].text.startsWith(QStringLiteral("2 гарм.: ")));
  EXPECT_TRUE(bar.panels[0].text.contains(QStringLiteral("? / ?°")));
}

TEST(SpectrumNumbers, LinesAsTextAndTheHarmonicOrder) {
  const Spectrum x = SineSpectrum(125.0, 1000.0, 1, 1, 1.25f);
  const QString csv = views::SpectrumLinesText(*x.r, x.s->SpectrLineCount, x.s->StepDesc, QLatin1Char(';'), false);
  const QStringList rows = csv.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  ASSERT_EQ(rows.size(), x.s->SpectrLineCount + 1);
  EXPECT_TRUE(rows[513].startsWith(QStringLiteral("125.000000;")));
  EXPECT_NEAR(rows[513].section(QLatin1Char(';'), 1).toDouble(), 2000.0, 1.0);
  EXPECT_EQ(views::HarmonicOrderAt(125.0, 62.5, 0.25), 2);
  EXPECT_EQ(views::HarmonicOrderAt(126.0, 62.5, 0.25), 0);
  EXPECT_EQ(views::HarmonicOrderAt(125.0, 0.0, 0.25), 0);
}

TEST(SpectrumNumbers, FilteringChangesSamplesOnlyWithAnEntry) {
  auto s = MakeState(kSamples);
  FillSine(*s, 200.0, 1000.0);
  const int16_t before = s->SignalData.at(100, 1);
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Filter[c].fill(-1.0f);
  EXPECT_FALSE(views::FilterSamples(*s));
  EXPECT_TRUE(s->DataSaved);
  EXPECT_EQ(s->SignalData.at(100, 1), before);
  s->channels.Filter[1][1] = 20.0f;  // low pass far below the tone
  EXPECT_TRUE(views::FilterSamples(*s));
  EXPECT_FALSE(s->DataSaved);
  int peak = 0;
  for (int i = 500; i < 3500; ++i) peak = std::max(peak, std::abs(static_cast<int>(s->SignalData.at(i, 1))));
  EXPECT_LT(peak, 20);
}

// Filtering through the window is an edit like the others: undo brings the
// samples and the saved flag back, redo the filtered ones.
TEST(SpectrumNumbers, FilteringCanBeUndoneAndRedone) {
  auto s = MakeState(kSamples);
  FillSine(*s, 200.0, 1000.0);
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Filter[c].fill(-1.0f);
  s->channels.Filter[1][1] = 20.0f;
  const std::vector<int16_t> original(s->SignalData.data(), s->SignalData.data() + SampleStore::kElements);
  views::EditHistory history;
  ASSERT_TRUE(views::FilterSamples(*s, &history));
  const std::vector<int16_t> filtered(s->SignalData.data(), s->SignalData.data() + SampleStore::kElements);
  ASSERT_NE(filtered, original);
  ASSERT_TRUE(history.undo(*s));
  EXPECT_TRUE(std::equal(original.begin(), original.end(), s->SignalData.data()));
  EXPECT_TRUE(s->DataSaved);
  ASSERT_TRUE(history.redo(*s));
  EXPECT_TRUE(std::equal(filtered.begin(), filtered.end(), s->SignalData.data()));
  EXPECT_FALSE(s->DataSaved);
}

}  // namespace
}  // namespace aqx
