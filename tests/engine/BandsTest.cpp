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

Levels Bands(Store& store, int32_t channel, int32_t type, const std::vector<int32_t>& marks = {}) {
  const auto ku = PerChannel(1.25f);  // one unit per code
  auto types = PerChannel(1);
  types[static_cast<size_t>(channel - 1)] = type;
  Levels l;
  AccountVolumeField(channel, ku.data(), types.data(), 1, kRowsUsed, 0, 0, store.data(), l.max.data(), l.mean.data(),
                     kRowsUsed, nullptr, nullptr, nullptr, nullptr, kSampleHz / kRowsUsed, kRowsUsed / 2, 60.0, 0,
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
