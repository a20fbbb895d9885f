// The shaft marker detector on pulse trains of known period.

#include "EngineTestSupport.h"

#include <gtest/gtest.h>

using namespace aqx::test;

namespace {

constexpr double kSampleHz = 2000;
constexpr double kPeriod = 1234.5;  // samples per revolution: 97.2053 rpm
constexpr int32_t kRowsUsed = 25000;

// Pulse k rises from 200 to 3200 over 10 samples from t = 300 + k * period
// (t = row - 1), stays 40 samples and falls back over 10: it crosses 1700 at
// exactly 5 samples after its start.
double Pulses(int32_t row, int bounce = 0) {
  const double t = row - 1;
  const int k = static_cast<int>(std::floor((t - 300) / kPeriod));
  const double d = t - 300 - k * kPeriod;
  if (k < 0 || k >= 20 || d >= 60) return 200;
  if (bounce && d >= 12 && d < 14) return 200;  // contact bounce after the edge
  if (d < 10) return 200 + 300 * d;
  if (d < 50) return 3200;
  return 3200 - 300 * (d - 50);
}

int32_t MarkRow(int k) { return static_cast<int32_t>(std::ceil(300 + k * kPeriod + 5)) + 1; }

struct Detection {
  int32_t count = -1, level = 0, direct = -1, percentMin = -1, percentMax = -1;
  double slowest = -1, fastest = -1;
  Guarded<int32_t> marks{AQX_MAX_SHAFT_MARKS, kSentinel};
};

struct Settings {
  int32_t automatic = 1, level = 0, direct = 1, bounce = 0, noise = 0;
  int32_t first = 1, last = kRowsUsed, selectFirst = 0, selectLast = 0;
  double ratedRpm = 100;
};

Detection Detect(Store& store, const Settings& s, int32_t markerChannel = 3) {
  auto channel = PerChannel(1);
  auto type = PerChannel(1);
  if (markerChannel > 0) type[static_cast<size_t>(markerChannel - 1)] = 3;
  Detection d;
  d.level = s.level;
  d.direct = s.direct;
  Otmetchick(store.data(), store.rows, channel.data(), type.data(), &d.count, d.marks.data(), kSampleHz,
             s.ratedRpm, &d.slowest, &d.fastest, &d.percentMin, &d.percentMax, s.automatic, &d.level,
             &d.direct, s.first, s.last, s.selectFirst, s.selectLast, s.bounce, s.noise);
  return d;
}

}  // namespace

TEST(EngineMarker, PulseTrainGivesItsSpeed) {
  Store store(kRowsUsed);
  store.fill(3, kRowsUsed, [](int32_t row) { return Pulses(row); });
  Detection d = Detect(store, {});
  EXPECT_EQ(d.level, 1700);
  EXPECT_EQ(d.direct, 1);
  ASSERT_EQ(d.count, 20);
  for (int k = 0; k < 20; ++k) EXPECT_EQ(d.marks[k], MarkRow(k)) << k;
  const double rpm = 60 * kSampleHz / kPeriod;
  EXPECT_NEAR(d.slowest, rpm, 1e-6);
  EXPECT_NEAR(d.fastest, rpm, 1e-6);
  EXPECT_EQ(d.percentMin, 97);
  EXPECT_EQ(d.percentMax, 97);
  EXPECT_TRUE(d.marks.guardIntact());

  // Falling pulses: the detector finds the direction itself.
  store.fill(3, kRowsUsed, [](int32_t row) { return 3400 - Pulses(row); });
  d = Detect(store, {});
  EXPECT_EQ(d.direct, 0);
  EXPECT_EQ(d.level, 1700);
  EXPECT_EQ(d.count, 20);
}

TEST(EngineMarker, BounceAndNoiseDoNotAddMarks) {
  Store store(kRowsUsed);
  uint32_t seed = 12345;
  store.fill(3, kRowsUsed, [&](int32_t row) {
    seed = seed * 1664525u + 1013904223u;
    return Pulses(row, 1) + (static_cast<double>(seed >> 8) / (1 << 24) - 0.5) * 300;
  });
  const double rpm = 60 * kSampleHz / kPeriod;
  Detection d = Detect(store, {});  // automatic; rated speed sets the dead time
  ASSERT_EQ(d.count, 20);
  EXPECT_NEAR(d.slowest, rpm, rpm * 1e-3);
  EXPECT_NEAR(d.fastest, rpm, rpm * 1e-3);

  Settings manual;  // no rated speed: the given bounce and noise settings act
  manual.automatic = 0;
  manual.level = 1700;
  manual.bounce = 20;
  manual.noise = 400;
  manual.ratedRpm = 0;
  d = Detect(store, manual);
  ASSERT_EQ(d.count, 20);
  EXPECT_NEAR(d.fastest, rpm, rpm * 1e-3);
  EXPECT_EQ(d.percentMax, 0);
  manual.bounce = 0;
  manual.noise = 0;
  EXPECT_EQ(Detect(store, manual).count, 40);  // undamped, each bounce counts
}

TEST(EngineMarker, LooksOnlyInsideViewAndSelection) {
  Store store(kRowsUsed);
  store.fill(3, kRowsUsed, [](int32_t row) { return Pulses(row); });
  Settings s;
  s.first = 5000;
  s.last = 15000;
  Detection d = Detect(store, s);
  ASSERT_EQ(d.count, 8);
  EXPECT_EQ(d.marks[0], MarkRow(4));
  s.selectFirst = 6000;
  s.selectLast = 9000;
  d = Detect(store, s);
  ASSERT_EQ(d.count, 3);
  EXPECT_EQ(d.marks[0], MarkRow(5));
  EXPECT_EQ(Detect(store, {}, 0).count, 0);  // no marker channel
}

TEST(EngineMarker, StopsAtTenThousandAndOneMarks) {
  Store store;
  store.fill(7, AQX_SIGNAL_ROWS, [](int32_t row) { return row % 20 < 5 ? 4000 : 0; });
  Settings s;
  s.last = AQX_SIGNAL_ROWS;
  s.ratedRpm = 0;
  const Detection d = Detect(store, s, 7);
  EXPECT_EQ(d.count, AQX_MAX_SHAFT_MARKS);
  EXPECT_TRUE(d.marks.guardIntact());
}
