// Band levels of AccountVolumeField against sines in and out of each band.

#include "EngineTestSupport.h"

#include <gtest/gtest.h>

using namespace aqx::test;

namespace {

constexpr double kSampleHz = 1000;
constexpr int32_t kRowsUsed = 20000;  // 20 s, one nominal revolution per second

double Cosine(int32_t row, double hz, double peakToPeak) {
  return peakToPeak / 2 * std::cos(2 * kPi * hz * (row - 1) / kSampleHz);
}

struct Levels {
  std::array<int32_t, 4> max{}, mean{};
};

Levels Bands(Store& store, int32_t channel, int32_t type, const std::vector<int32_t>& marks = {},
             int32_t rows = kRowsUsed) {
  const auto ku = PerChannel(1.25f);  // one unit per code
  auto types = PerChannel(1);
  types[static_cast<size_t>(channel - 1)] = type;
  Levels l;
  AccountVolumeField(channel, ku.data(), types.data(), 1, rows, 0, 0, store.data(), l.max.data(), l.mean.data(), rows,
                     nullptr, nullptr, nullptr, nullptr, kSampleHz / rows, rows / 2, 60.0, 0,
                     static_cast<int32_t>(marks.size()), marks.data());
  return l;
}

}  // namespace

TEST(EngineBands, EachBandHoldsItsOwnFrequencies) {
  Store store(kRowsUsed);
  store.fill(1, kRowsUsed, [](int32_t row) { return Cosine(row, 10, 2000); });
  Levels l = Bands(store, 1, 1);
  EXPECT_NEAR(l.max[0], 2000, 20);
  EXPECT_NEAR(l.max[2], 2000, 20);
  EXPECT_NEAR(l.mean[2], 2000, 20);
  EXPECT_LT(l.max[1], 10);
  EXPECT_LT(l.max[3], 10);

  store.fill(2, kRowsUsed, [](int32_t row) { return Cosine(row, 0.5, 1000) + Cosine(row, 100, 400); });
  l = Bands(store, 2, 1);
  EXPECT_NEAR(l.max[1], 1000, 20);  // every second holds a half period of 0.5 Hz
  EXPECT_NEAR(l.mean[1], 1000, 20);
  EXPECT_NEAR(l.max[3], 400, 8);
  EXPECT_LT(l.max[2], 15);  // 0.5 Hz comes through the 1 Hz edge at 1 percent

  // For run-out, entry 1 is the run-out band of 0-20 Hz.
  store.fill(3, kRowsUsed, [](int32_t row) { return Cosine(row, 10, 2000); });
  EXPECT_NEAR(Bands(store, 3, 0).max[1], 2000, 20);
}

TEST(EngineBands, MaximumAndMeanOverTheRevolutions) {
  Store store(kRowsUsed);
  // The amplitude changes at a zero crossing, so the signal stays continuous.
  store.fill(4, kRowsUsed, [](int32_t row) { return (row <= 10000 ? 500 : 1500) * std::sin(2 * kPi * 10 * (row - 1) / kSampleHz); });
  std::vector<int32_t> marks;
  for (int32_t m = 1; m <= 18001; m += 2000) marks.push_back(m);  // 9 revolutions of 2 s
  const Levels l = Bands(store, 4, 1, marks);
  EXPECT_NEAR(l.max[0], 3000, 30);
  EXPECT_NEAR(l.mean[0], (5 * 1000 + 4 * 3000) / 9.0, 20);
}

// A long record is filtered in two halves at once; a revolution that spans
// the seam must come out as whole as any other.
TEST(EngineBands, LongRecordsFilteredInHalvesKeepEveryRevolutionWhole) {
  constexpr int32_t rows = 400000;
  Store store(rows);
  store.fill(5, rows, [](int32_t row) {
    return Cosine(row, 0.5, 1000) + Cosine(row, 10, 2000) + Cosine(row, 100, 400);
  });
  std::vector<int32_t> marks;
  for (int32_t m = 701; m <= rows; m += 2000) marks.push_back(m);
  const Levels l = Bands(store, 5, 1, marks, rows);
  // Each revolution holds the same signal: only the record's own two ends
  // may differ a little from the rest.
  for (int32_t band : {0, 1, 2, 3}) EXPECT_NEAR(l.max[band], l.mean[band], l.max[band] * 0.003) << band;
  EXPECT_NEAR(l.max[1], 1000, 20);
  EXPECT_NEAR(l.max[2], 2000, 20);
  EXPECT_NEAR(l.max[3], 400, 8);
}
