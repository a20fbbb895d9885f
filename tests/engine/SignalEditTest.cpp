// Statistics, copies, windows and edits of the store by revolutions.

#include "EngineTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

using namespace aqx::test;

TEST(EngineSignal, StatisticsOfTheViewedRows) {
  Store store;
  const int16_t codes[5] = {-7, 3, 10, -1, 99};
  for (int i = 0; i < 5; ++i) store.at(101 + i, 6) = codes[i];
  auto channel = PerChannel(0);
  channel[5] = 1;
  auto maxValue = PerChannel(kSentinel), offset = PerChannel(kSentinel), mean = PerChannel(kSentinel),
       current = PerChannel(kSentinel);
  AccountSignalMax(store.data(), 101, 104, maxValue.data(), channel.data(), offset.data(), mean.data(), current.data());
  EXPECT_EQ(maxValue[5], 10);
  EXPECT_EQ(offset[5], 1);  // 5 / 4 = 1.25
  EXPECT_EQ(mean[5], 1);
  EXPECT_EQ(current[5], -1);
  EXPECT_EQ(maxValue[4], kSentinel);  // channel 5 is off
  AccountSignalMax(store.data(), 103, 104, maxValue.data(), channel.data(), offset.data(), mean.data(), current.data());
  EXPECT_EQ(offset[5], 4);  // 4.5 to even

  std::vector<double> copy(4, kSentinelValue);
  CopyData(copy.data(), store.data(), 101, 103, 6);
  EXPECT_EQ(copy, (std::vector<double>{-7, 3, 10, kSentinelValue}));
}

// A long stretch is gone through in two halves at once; what each half
// finds must add up.
TEST(EngineSignal, StatisticsOfALongStretchJoinBothHalves) {
  constexpr int32_t rows = 300000;
  Store store(rows);
  store.fill(7, rows, [](int32_t row) { return row <= rows / 2 ? 1 : 4; });
  store.at(1000, 6) = -30000;
  store.at(250000, 6) = 31000;
  auto channel = PerChannel(0);
  channel[5] = channel[6] = 1;
  auto maxValue = PerChannel(kSentinel), offset = PerChannel(kSentinel), mean = PerChannel(kSentinel),
       current = PerChannel(kSentinel);
  AccountSignalMax(store.data(), 1, rows, maxValue.data(), channel.data(), offset.data(), mean.data(), current.data());
  EXPECT_EQ(maxValue[5], 31000);
  EXPECT_EQ(maxValue[6], 4);
  EXPECT_EQ(mean[6], 2);  // 2.5 to even
  EXPECT_EQ(current[6], 4);
  AccountSignalMax(store.data(), 1, 200000, maxValue.data(), channel.data(), offset.data(), mean.data(),
                   current.data());
  EXPECT_EQ(maxValue[5], 30000);
}

TEST(EngineSignal, ClearanceAndOverload) {
  Store store(100);
  store.fill(1, 100, [](int32_t row) { return row % 2 ? 3000.0 : -2000.0; });  // run-out
  store.fill(2, 100, [](int32_t row) { return row == 50 ? 8191.0 : 0.0; });    // vibration at the top code
  auto channel = PerChannel(0);
  channel[0] = channel[1] = 1;
  auto type = PerChannel(1);
  type[0] = 0;
  auto ks = PerChannel(1000.0f), ku = PerChannel(8.0f);
  auto low = PerChannel(0), high = PerChannel(0);
  auto control = [&](int32_t lowLimit, int32_t highLimit) {
    low.fill(0);
    high.fill(0);
    return ControlClearance(100, store.data(), channel.data(), type.data(), ks.data(), ku.data(), 2000, low.data(),
                            high.data(), nullptr, lowLimit, highLimit);
  };
  // Gap = 2000 + (code - 1000) * 1.25 / 8: 1531.25 um at -2000, 2312.5 um at 3000.
  EXPECT_EQ(control(1600, 2300), 1);
  EXPECT_EQ(low[0], 1);
  EXPECT_EQ(high[0], 1);
  EXPECT_EQ(low[1] + high[1], 0);
  channel[1] = 0;
  EXPECT_EQ(control(1500, 2400), 0);
  EXPECT_EQ(low[0] + high[0], 0);
}

TEST(EngineSignal, WindowsFollowThePublishedFormulas) {
  std::ifstream in(std::string(AQX_TEST_DATA_DIR) + "/engine_window_reference.csv");
  std::string line;
  int checked = 0;
  Store store(64);
  int lastIndex = 0, lastCount = 0;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#' || line[0] == 'i') continue;
    std::replace(line.begin(), line.end(), ',', ' ');
    std::istringstream fields(line);
    int index, count, n;
    double value;
    fields >> index >> count >> n >> value;
    if (index != lastIndex || count != lastCount) {
      std::fill(store.codes.begin(), store.codes.end(), int16_t{16000});
      FillBpfWindow(store.data(), count, index);
      lastIndex = index;
      lastCount = count;
    }
    EXPECT_NEAR(store.at(n + 1, 1 + n % 32), 16000 * value, 0.5 + 1e-9) << index << " " << count << " " << n;
    ++checked;
  }
  EXPECT_EQ(checked, 8 * (33 + 64));
  std::fill(store.codes.begin(), store.codes.end(), int16_t{16000});
  FillBpfWindow(store.data(), 33, 3);
  EXPECT_EQ(store.at(1, 1), 0);
  EXPECT_EQ(store.at(40, 1), 16000);  // rows past the count are left
}

TEST(EngineSignal, ShiftTurnsEachRevolution) {
  constexpr int32_t n = 4000;
  Store store(n);
  // One period per revolution of 360 rows, marks from row 101 on.
  auto wave = [](double row) { return 1000 * std::cos(2 * kPi * (row - 101) / 360); };
  store.fill(4, n, wave);
  std::vector<int32_t> marks;
  for (int32_t m = 101; m <= n; m += 360) marks.push_back(m);
  ShiftSignal(store.data(), n, 4, 90, static_cast<int32_t>(marks.size()), marks.data());
  for (int32_t row = 1; row <= n; row += 7) EXPECT_NEAR(store.at(row, 4), wave(row - 90), 1.01) << row;
  ShiftSignal(store.data(), n, 4, -450, static_cast<int32_t>(marks.size()), marks.data());  // back by 90
  for (int32_t row = 1; row <= n; row += 7) EXPECT_NEAR(store.at(row, 4), wave(row), 1.01) << row;
}

TEST(EngineSignal, CutKeepsWholeRevolutions) {
  constexpr int32_t n = 10000;
  Store store(n);
  store.fill(1, n, [](int32_t row) { return row - 5000.0; });
  store.fill(2, n, [](int32_t row) { return row - 5000.0; });
  std::vector<int32_t> marks;
  for (int32_t m = 1001; m <= 9001; m += 1000) marks.push_back(m);
  auto channel = PerChannel(0);
  channel[0] = 1;
  int32_t result = -1, flag = -1, freq = 1000;
  double step = 0, first = 0;
  CutSignal(store.data(), n, channel.data(), static_cast<int32_t>(marks.size()), marks.data(), &result, &freq, 1000,
            &step, &first, 83.3, &flag);
  EXPECT_EQ(result, 8);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(freq, 1250);  // 8000 rows now fill 10000
  EXPECT_DOUBLE_EQ(step, 0.125);
  EXPECT_DOUBLE_EQ(first, 1.0);  // 8 revolutions on line 8
  for (int32_t row : {1, 2, 5000, 10000}) EXPECT_NEAR(store.at(row, 1), 1001 + (row - 1) * 0.8 - 5000, 0.5) << row;
  EXPECT_EQ(store.at(1, 2), -4999);  // channel 2 is off
  marks.resize(1);
  CutSignal(store.data(), n, channel.data(), 1, marks.data(), &result, &freq, 1000, &step, &first, 83.3, &flag);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(freq, 1250);
}
