// Spectra against analytic signals: a sine of known amplitude and phase, DC,
// the Nyquist frequency, an impulse, block averaging and integration.

#include "EngineTestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>
#include <utility>

using namespace aqx::test;

namespace {

constexpr int32_t kSampleHz = 1024;
constexpr int32_t kRowsUsed = 8192;  // lines 0.125 Hz apart

struct Spectrum {
  Guarded<double> amplitude{AQX_SPECTRUM_LINES, kSentinelValue};
  Guarded<double> phase{AQX_SPECTRUM_LINES, kSentinelValue};
  Guarded<double> real{AQX_SPECTRUM_LINES, kSentinelValue};
  double step = -1.0;
  int32_t lines = -1;
  int32_t largest = -1;
};

struct Request {
  int32_t first = 1, last = kRowsUsed, selectFirst = 0, selectLast = 0;
  int32_t block = AQX_SIGNAL_ROWS;
  int32_t removeConstant = 1;
  std::vector<int32_t> marks;
};

// Which of the optional outputs the call asks for.
enum class Asked { All, PhaseOnly, AmplitudeOnly };

Spectrum Analyse(Store& store, const Request& r, Asked asked = Asked::All) {
  Spectrum s;
  const auto ku = PerChannel(1.25f);  // one unit per code
  AccountSpectrFull(nullptr, nullptr, asked == Asked::AmplitudeOnly ? nullptr : s.phase.data(),
                    asked == Asked::All ? s.real.data() : nullptr, s.amplitude.data(), r.selectFirst,
                    r.selectLast, r.first, r.last, AQX_SIGNAL_ROWS, store.rows, store.data(), 1, nullptr,
                    nullptr, r.removeConstant, r.block, &s.step, kSampleHz, &s.lines, &s.largest,
                    ku.data(), static_cast<int32_t>(r.marks.size()), r.marks.data(), -1);
  return s;
}

// (peak-to-peak / 2) * cos(2*pi*f*t - phase) with t = 0 at row 1.
double Sine(int32_t row, double hz, double peakToPeak, double phaseDegrees) {
  return peakToPeak / 2 * std::cos(2 * kPi * hz * (row - 1) / kSampleHz - phaseDegrees * kPi / 180);
}

}  // namespace

TEST(EngineSpectrum, SineGivesItsAmplitudeAndPhaseAtItsLine) {
  Store store(kRowsUsed);
  store.fill(1, kRowsUsed, [](int32_t row) { return Sine(row, 50.0, 6000, 30); });
  Spectrum s = Analyse(store, {});
  EXPECT_DOUBLE_EQ(s.step, 0.125);
  EXPECT_EQ(s.lines, 4096);
  EXPECT_NEAR(s.amplitude[400], 6000, 60);
  EXPECT_NEAR(AngleDifference(s.phase[400], 30), 0, 1);
  EXPECT_NEAR(s.real[400], 6000 * std::cos(30 * kPi / 180), 60);
  EXPECT_NEAR(s.largest, 6000, 60);
  EXPECT_LT(s.amplitude[390], 1.0);  // the Hann window keeps the line narrow
  EXPECT_TRUE(s.amplitude.guardIntact() && s.phase.guardIntact() && s.real.guardIntact());
  // Referred to a shaft mark 100 rows later the phase is that much earlier.
  Request atMark;
  atMark.marks = {101};
  s = Analyse(store, atMark);
  EXPECT_NEAR(AngleDifference(s.phase[400], 30 - 360.0 * 50 * 100 / kSampleHz), 0, 1);
}

TEST(EngineSpectrum, ProbeBetweenLinesReadsTheSineThere) {
  Store store(kRowsUsed);
  store.fill(1, kRowsUsed, [](int32_t row) { return Sine(row, 50.05, 6000, 45) + Sine(row, 12.5, 1000, 200); });
  Spectrum s = Analyse(store, {});
  ASSERT_EQ(s.lines, 4096);
  auto probes = PerChannel(std::array<float, 7>{-1, -1, -1, -1, -1, -1, -1});
  probes[0] = {50.05f, 12.5f, 300.0f, 600.0f, -1, 0, -1};
  Guarded<int32_t> amplitude(8, kSentinel), phase(8, kSentinel);
  AccountProbe(1, s.lines, amplitude.data(), phase.data(), probes[0].data(), nullptr, nullptr, 12.5, s.step,
               s.amplitude.data(), s.phase.data(), s.real.data());
  EXPECT_NEAR(amplitude[0], 1000, 10);  // entry 0: the first harmonic
  EXPECT_NEAR(AngleDifference(phase[0], 200), 0, 1);
  EXPECT_NEAR(amplitude[1], 6000, 60);  // 0.4 of a line from line 400
  EXPECT_NEAR(AngleDifference(phase[1], 45), 0, 1);
  EXPECT_EQ(amplitude[3], 0);  // nothing at 300 Hz
  EXPECT_EQ(amplitude[4], 0);  // 600 Hz lies past the last line
  EXPECT_EQ(amplitude[5], 0);
  EXPECT_EQ(phase[5], 0);
  EXPECT_TRUE(amplitude.guardIntact() && phase.guardIntact());
}

TEST(EngineSpectrum, ConstantComponentStaysOrGoesAsAsked) {
  Store store(kRowsUsed);
  store.fill(1, kRowsUsed, [](int32_t row) { return -500 + Sine(row, 100, 2000, 0); });
  Request keep;
  keep.removeConstant = 0;
  Spectrum s = Analyse(store, keep);
  EXPECT_NEAR(s.amplitude[0], 500, 0.5);
  EXPECT_NEAR(s.real[0], -500, 0.5);
  EXPECT_NEAR(s.amplitude[800], 2000, 20);
  s = Analyse(store, {});
  EXPECT_NEAR(s.amplitude[0], 0, 1e-6);
  EXPECT_NEAR(s.amplitude[800], 2000, 20);
}

TEST(EngineSpectrum, NyquistAlternationShowsOnTheLastLine) {
  Store store(1024);
  store.fill(1, 1024, [](int32_t row) { return row % 2 ? 1000 : -1000; });
  Request r;
  r.last = 1024;
  const Spectrum s = Analyse(store, r);
  ASSERT_EQ(s.lines, 512);
  EXPECT_NEAR(s.amplitude[511], 2000, 1e-6);  // peak-to-peak of +-1000
  EXPECT_NEAR(s.amplitude[100], 0, 1e-6);
}

TEST(EngineSpectrum, BlocksAverageAndFollowTheBlockRule) {
  Store store(kRowsUsed);
  // 64 Hz is line 16 of a 256-sample block.
  store.fill(1, kRowsUsed, [](int32_t row) { return Sine(row, 64, 3000, 120); });
  Request r;
  r.block = 256;
  Spectrum s = Analyse(store, r);
  EXPECT_EQ(s.lines, 128);
  EXPECT_DOUBLE_EQ(s.step, 4.0);
  EXPECT_NEAR(s.amplitude[16], 3000, 30);
  EXPECT_NEAR(AngleDifference(s.phase[16], 120), 0, 1);
  // A block longer than the stretch gives one block over the stretch.
  r.block = 2048;
  r.last = 1024;
  s = Analyse(store, r);
  EXPECT_EQ(s.lines, 512);
  EXPECT_DOUBLE_EQ(s.step, 1.0);
}

TEST(EngineSpectrum, SelectionWinsOverTheView) {
  Store store(kRowsUsed);
  store.fill(1, kRowsUsed, [](int32_t row) { return row > 4096 ? Sine(row, 64, 3000, 0) : 0.0; });
  Request r;
  r.selectFirst = 4097;
  r.selectLast = 8192;
  Spectrum s = Analyse(store, r);
  EXPECT_NEAR(s.amplitude[256], 3000, 30);  // 4096 rows: lines 0.25 Hz apart
  r.selectFirst = r.selectLast = 0;
  s = Analyse(store, r);
  EXPECT_NEAR(s.amplitude[512], 1500, 30);
}

TEST(EngineSpectrum, TransformOfImpulseAndSineThroughFFT) {
  std::vector<double> re(64, 0.0), im(64, 0.0);
  re[1] = 1.0;
  FFT(re.data(), im.data(), 64, 1, 0);
  for (int k = 0; k < 64; ++k) {
    EXPECT_NEAR(re[k], std::cos(2 * kPi * k / 64), 1e-12);
    EXPECT_NEAR(im[k], -std::sin(2 * kPi * k / 64), 1e-12);
  }
  FFT(re.data(), im.data(), 64, -1, 0);
  EXPECT_NEAR(re[1], 1.0, 1e-12);
  EXPECT_NEAR(re[2], 0.0, 1e-12);

  // Plain (unwindowed) amplitude spectrum of a sine on line 8 plus DC 100.
  for (int i = 0; i < 64; ++i) {
    re[i] = 100 + 400 * std::sin(2 * kPi * 8 * i / 64);
    im[i] = 0;
  }
  FFT(re.data(), im.data(), 64, 1, 0);
  Guarded<double> amplitude(32, kSentinelValue);
  int32_t largest = 0;
  AccountSpectr(re.data(), im.data(), amplitude.data(), 0, 2.5f, &largest, 64);
  EXPECT_NEAR(amplitude[0], 50, 1e-9);   // 100 codes * 1.25 / 2.5
  EXPECT_NEAR(amplitude[8], 400, 1e-9);  // peak-to-peak 800 codes
  EXPECT_EQ(largest, 400);
  EXPECT_TRUE(amplitude.guardIntact());
}

TEST(EngineSpectrum, CallersOnTwoThreadsShareThePlansSafely) {
  Store store(kRowsUsed);
  store.fill(1, kRowsUsed, [](int32_t row) { return Sine(row, 64, 3000, 0) + Sine(row, 100, 500, 90); });
  auto run = [&](int32_t last, double* amplitudeAt64) {
    for (int i = 0; i < 20; ++i) {
      Request r;
      r.last = last - 16 * (i % 3);  // several sizes, so plans are made while others run
      *amplitudeAt64 = Analyse(store, r).amplitude[static_cast<size_t>(r.last / 16)];
    }
  };
  double a = 0, b = 0;
  std::thread other(run, 4096, &a);
  run(8192, &b);
  other.join();
  EXPECT_NEAR(a, 3000, 30);
  EXPECT_NEAR(b, 3000, 30);
}

// A long block is transformed as its even and odd samples, and its lines are
// worked out in two halves at once, each turned to the shaft mark: lines
// below, at and above the seams (256 Hz here) keep amplitude and phase,
// alone and averaged over blocks.
TEST(EngineSpectrum, LinesOfALongStretchKeepTheirPhaseInBothHalves) {
  constexpr int32_t rows = 1 << 19;
  Store store(rows);
  store.fill(1, rows, [](int32_t row) {
    return Sine(row, 50.0, 6000, 30) + Sine(row, 256.0, 2000, 100) + Sine(row, 300.0, 1000, 60);
  });
  Request whole;
  whole.last = rows;
  whole.marks = {101};
  Request blocks = whole;
  blocks.block = rows / 2;
  for (const Request& r : {whole, blocks}) {
    const Spectrum s = Analyse(store, r);
    const int32_t perHz = static_cast<int32_t>(std::lround(1.0 / s.step));
    EXPECT_NEAR(s.amplitude[50 * perHz], 6000, 60);
    EXPECT_NEAR(s.amplitude[256 * perHz], 2000, 20);
    EXPECT_NEAR(s.amplitude[256 * perHz - 1], 1000, 10);  // the Hann window's neighbours
    EXPECT_NEAR(s.amplitude[256 * perHz + 1], 1000, 10);
    EXPECT_NEAR(AngleDifference(s.phase[50 * perHz], 30 - 360.0 * 50 * 100 / kSampleHz), 0, 1);
    EXPECT_NEAR(AngleDifference(s.phase[256 * perHz], 100 - 360.0 * 256 * 100 / kSampleHz), 0, 1);
    EXPECT_NEAR(s.amplitude[300 * perHz], 1000, 10);
    EXPECT_NEAR(AngleDifference(s.phase[300 * perHz], 60 - 360.0 * 300 * 100 / kSampleHz), 0, 1);
  }
}

// An impulse shows at every line with the window's value at the impulse as
// its amplitude and the impulse's delay as its phase. Checked at every line
// for lengths on both sides of half a million, where a long transform
// changes its way (as the complex transform of sample pairs), alone and
// averaged over blocks.
TEST(EngineSpectrum, EveryLineOfAnImpulseIsExactAroundHalfAMillionRows) {
  constexpr int32_t rows = 1 << 20;
  constexpr int32_t half = 1 << 19;
  constexpr double height = 30000;
  Store store(rows);
  struct Case {
    int32_t rows, block, impulse;  // impulse: rows after the first
  };
  const Case cases[] = {{half - 2, rows, half / 3 + 7}, {half - 1, rows, half / 3}, {half, rows, half / 3 + 7},
                        {half + 2, rows, 99991},       {rows, rows, rows - 12345}, {rows, half, 700001}};
  for (const Case& c : cases) {
    store.at(c.impulse + 1, 1) = static_cast<int16_t>(height);
    Request r;
    r.last = c.rows;
    r.block = c.block;
    r.removeConstant = 0;
    const Spectrum s = Analyse(store, r);
    store.at(c.impulse + 1, 1) = 0;
    const int32_t L = std::min(c.block, c.rows);
    ASSERT_EQ(s.lines, (L + 1) / 2) << c.rows;
    // Blocks every L/2 rows; the amplitudes average over all of them.
    const int32_t hop = L < c.rows ? L / 2 : L;
    const int32_t count = (c.rows - L) / hop + 1;
    double windowMean = 0;
    for (int32_t b = 0; b < count; ++b) {
      const int32_t at = c.impulse - b * hop;
      if (at >= 0 && at < L) windowMean += (0.5 - 0.5 * std::cos(2 * kPi * at / L)) / count;
    }
    const double amplitude = height * windowMean * 8 / L;
    for (int32_t k = 1; k < s.lines; ++k) {
      ASSERT_NEAR(s.amplitude[k], amplitude, 1e-9 * amplitude) << c.rows << " line " << k;
      const double delay = static_cast<double>(static_cast<int64_t>(k) * c.impulse % L) * 360 / L;
      ASSERT_NEAR(AngleDifference(s.phase[k], delay), 0, 1e-6) << c.rows << " line " << k;
    }
    EXPECT_TRUE(s.amplitude.guardIntact() && s.phase.guardIntact() && s.real.guardIntact());
  }
}

// Measured plans change the order of the transform's arithmetic and nothing
// more: a sine with an impulse, single-block and averaged, gives the same
// lines to rounding. The wisdom is kept in a temporary file, and forgotten
// after, so that other tests plan as before.
TEST(EngineSpectrum, MeasuredPlansGiveTheEstimatedPlansLines) {
  Store store(kRowsUsed);
  store.fill(1, kRowsUsed, [](int32_t row) { return Sine(row, 50.05, 6000, 45) + (row == 2000 ? 3000 : 0); });
  Request averaged;
  averaged.block = 2048;
  averaged.marks = {777};
  const Spectrum single = Analyse(store, {});
  const Spectrum blocks = Analyse(store, averaged);
  const std::string path = ::testing::TempDir() + "aqx-fft-wisdom";
  EXPECT_EQ(LoadFftWisdom((path + ".missing").c_str()), 0);
  ASSERT_EQ(MakeFftWisdom(path.c_str(), kRowsUsed), 1);
  ASSERT_EQ(LoadFftWisdom(path.c_str()), 1);
  const Spectrum measuredSingle = Analyse(store, {});
  const Spectrum measuredBlocks = Analyse(store, averaged);
  LoadFftWisdom(nullptr);
  std::remove(path.c_str());
  for (const auto& [estimated, measured] : {std::pair{&single, &measuredSingle}, std::pair{&blocks, &measuredBlocks}}) {
    ASSERT_EQ(measured->lines, estimated->lines);
    const double tolerance = 1e-9 * estimated->largest;
    for (int32_t k = 0; k < estimated->lines; ++k) {
      ASSERT_NEAR(measured->amplitude[k], estimated->amplitude[k], tolerance) << k;
      ASSERT_NEAR(measured->real[k], estimated->real[k], tolerance) << k;
      // A phase is worth comparing where the line stands above rounding.
      if (estimated->amplitude[k] > 1e-3 * estimated->largest) {
        ASSERT_NEAR(AngleDifference(measured->phase[k], estimated->phase[k]), 0, 1e-9 * 360) << k;
      }
    }
  }
}

// What is not asked for is left alone, and leaving it out changes nothing in
// what is: the same amplitudes and phases to the last bit without the
// in-phase part; amplitudes alone skip the turn to the shaft mark, which
// moves them by rounding only.
TEST(EngineSpectrum, LeavingOutPhaseOrInPhasePartKeepsTheRestExact) {
  Store store(kRowsUsed);
  store.fill(1, kRowsUsed, [](int32_t row) { return Sine(row, 50.3, 6000, 30) + Sine(row, 7.0, 900, 100) + row % 7; });
  Request single;
  single.marks = {101};
  Request averaged = single;
  averaged.block = 1024;
  for (const Request& r : {single, averaged}) {
    const Spectrum all = Analyse(store, r);
    const Spectrum phaseOnly = Analyse(store, r, Asked::PhaseOnly);
    const Spectrum amplitudeOnly = Analyse(store, r, Asked::AmplitudeOnly);
    ASSERT_GT(all.lines, 0);
    EXPECT_EQ(phaseOnly.lines, all.lines);
    EXPECT_EQ(amplitudeOnly.largest, all.largest);
    for (int32_t k = 0; k < all.lines; ++k) {
      ASSERT_EQ(phaseOnly.amplitude[k], all.amplitude[k]) << k;
      ASSERT_EQ(phaseOnly.phase[k], all.phase[k]) << k;
      ASSERT_NEAR(amplitudeOnly.amplitude[k], all.amplitude[k], 1e-12 * all.largest) << k;
      ASSERT_EQ(phaseOnly.real[k], kSentinelValue) << k;
      ASSERT_EQ(amplitudeOnly.phase[k], kSentinelValue) << k;
    }
  }
}
