// Reduction of samples and spectra to pixel columns.

#include "EngineTestSupport.h"

#include <gtest/gtest.h>

using namespace aqx::test;

TEST(EngineBuildSignal, NoPeakOfAMillionSamplesIsLost) {
  Store store;
  store.at(500000, 4) = 5000;
  store.at(700001, 4) = -3000;
  const auto ku = PerChannel(1.25f);
  Guarded<int32_t> out(2 * 1920, kSentinel);
  // k = 0.01 / 1.25 pixels per millivolt: y = round(300 - 0.01 * code).
  AccountDataBuildSignal(1920, 300, 1920.0 / AQX_SIGNAL_ROWS, 0.01, 1.25, 600, 3, store.data(), AQX_SIGNAL_ROWS, 1,
                         AQX_SIGNAL_ROWS, ku.data(), nullptr, nullptr, nullptr, out.data());
  // Sample 499999 (from 0) falls on column floor(499999 * 1920 / 2^20) = 915.
  EXPECT_EQ(out[2 * 915], 250);
  EXPECT_EQ(out[2 * 915 + 1], 300);
  EXPECT_EQ(out[2 * 1281], 300);
  EXPECT_EQ(out[2 * 1281 + 1], 330);
  int flat = 0;
  for (int x = 0; x < 1920; ++x) flat += out[2 * x] == 300 && out[2 * x + 1] == 300;
  EXPECT_EQ(flat, 1918);
  EXPECT_TRUE(out.guardIntact());
}

TEST(EngineBuildSignal, ScalesLikeTheViewAndRepeatsEmptyColumns) {
  Store store(16);
  store.fill(2, 10, [](int32_t row) { return (row - 1) * 100.0; });
  auto ku = PerChannel(2.5f);
  auto zero = PerChannel(10);
  auto volume = PerChannel(1);
  auto offset = PerChannel(100);
  Guarded<int32_t> out(80, kSentinel);
  // k = 0.5 / 2.5; base = round(100 * 1.25 * 0.2 + 50) = 75; z = round(4 * 10) = 40:
  // y = round(75 - (1.25 * code - 40) * 0.2) = round(83 - code / 4), held to -100..200.
  AccountDataBuildSignal(40, 50, 4.0, 0.5, 1.25, 100, 1, store.data(), 16, 1, 10, ku.data(), zero.data(),
                         volume.data(), offset.data(), out.data());
  const int32_t expected[10] = {83, 58, 33, 8, -17, -42, -67, -92, -100, -100};
  for (int x = 0; x < 40; ++x) {
    EXPECT_EQ(out[2 * x], expected[x / 4]) << x;
    EXPECT_EQ(out[2 * x + 1], expected[x / 4]) << x;
  }
  EXPECT_TRUE(out.guardIntact());

  // Many samples per column: both extremes of each column.
  store.fill(3, 16, [](int32_t row) { return row % 2 ? 1000.0 : -1000.0; });
  AccountDataBuildSignal(4, 0, 0.25, 1.0, 1.25, 0, 2, store.data(), 16, 1, 16, nullptr, nullptr, nullptr, nullptr,
                         out.data());
  for (int x = 0; x < 4; ++x) {
    EXPECT_EQ(out[2 * x], -1250);
    EXPECT_EQ(out[2 * x + 1], 1250);
  }
}

TEST(EngineBuildSpectr, PutsLinesOnTheDecadeAxis) {
  std::vector<double> amplitude(1601, 0.0);  // lines 1/16 Hz apart up to 100 Hz
  amplitude[80] = 600;                       // 5 Hz
  amplitude[800] = 200;                      // 50 Hz
  Guarded<int32_t> columns(1900, kSentinel);
  double starts[4] = {-1, -1, -1, -1};
  int32_t divisions[4] = {10, 9, 9, 9};
  int32_t flag = -1;
  AccountDataBuildSpectr(1024, 1900, 400, 2.0, 19, 16384, amplitude.data(), 1601, 1, 16384, 0.0625, 0, starts,
                         divisions, &flag, columns.data());
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(starts[1], 1000.0);
  EXPECT_EQ(starts[2], 1900.0);
  EXPECT_EQ(divisions[1], 9);
  EXPECT_EQ(divisions[2], 0);
  EXPECT_EQ(columns[500], 100);  // 5 Hz: 100 pixels per Hz in the first decade
  int at50 = -1, bars = 0;
  for (int x = 0; x < 1900; ++x) {
    if (columns[x] == 300) at50 = x;
    bars += columns[x] != 400;
  }
  EXPECT_NEAR(at50, 1400, 1);  // 1000 + 40 Hz * 10 pixels per Hz
  EXPECT_EQ(bars, 2);
  EXPECT_TRUE(columns.guardIntact());

  // Fewer lines than columns: a line draws continuously, bars do not.
  std::vector<double> ramp(11);
  for (int k = 0; k <= 10; ++k) ramp[k] = 100.0 * k;
  AccountDataBuildSpectr(0, 1000, 2000, 1.0, 10, 0, ramp.data(), 11, 0, 0, 1.0, 1, starts, divisions, &flag,
                         columns.data());
  EXPECT_EQ(columns[100], 1900);
  EXPECT_EQ(columns[250], 1750);  // 2.505 Hz: round(2000 - 250.5), half to even
  AccountDataBuildSpectr(0, 1000, 2000, 1.0, 10, 0, ramp.data(), 11, 0, 0, 1.0, 0, starts, divisions, &flag,
                         columns.data());
  EXPECT_EQ(columns[250], 2000);
  AccountDataBuildSpectr(0, 1000, 2000, 0.0, 10, 0, ramp.data(), 11, 0, 0, 1.0, 0, starts, divisions, &flag,
                         columns.data());
  EXPECT_EQ(flag, 0);
}
