// The cyclic run over the virtual module, the module's rules (clock divider,
// ranges, clipping, synchronisation), the channel means, the digital lines,
// the information text and the replay of a file.

#include "AcquisitionTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

using namespace aqx_test;

namespace {

struct Sync {
  int32_t inputMode = 0;
  int32_t type = 0;
  int32_t mode = 0;
  int32_t channel = 32;
  int32_t porog = 1000;
};

int32_t Start(const std::array<int32_t, 32>& on, int32_t& freqDescR, int32_t signalDataN,
              int32_t bufferLength = 64, Sync sync = {}, std::array<int32_t, 32> volume = {},
              int32_t differential = 0, char* moduleText = nullptr) {
  const int32_t used = std::accumulate(on.begin(), on.begin() + (differential ? 16 : 32), 0);
  char text[17];
  return StartPotok(used, on.data(), volume.data(), signalDataN, &freqDescR, bufferLength,
                    sync.inputMode, sync.type, sync.mode, sync.channel, sync.porog,
                    moduleText ? moduleText : text, differential);
}

// Polls as the program's timer does until `rows` rows have come.
void WaitForRows(int16_t* store, int channel, int64_t row, int timeoutMs = 10000) {
  for (int waited = 0; waited < timeoutMs; waited += 5) {
    CopySignalData(store);
    if (At(store, row, channel) != 0) return;
    SleepMs(5);
  }
}

// Speed the engine's shaft marker detector sees on channel 1 of a copy.
struct Speed {
  int32_t marks = 0;
  double minRpm = 0.0, maxRpm = 0.0;
};
Speed MarkerSpeed(const int16_t* store, const std::array<int32_t, 32>& on, int32_t rows,
                  int32_t freqDesc, double ratedRpm) {
  std::array<int32_t, 32> type{};
  type[0] = 3;
  std::vector<int32_t> marks(AQX_MAX_SHAFT_MARKS);
  Speed speed;
  int32_t percentMin = 0, percentMax = 0, level = 0, direct = 1;
  Otmetchick(store, rows, on.data(), type.data(), &speed.marks, marks.data(), freqDesc, ratedRpm,
             &speed.minRpm, &speed.maxRpm, &percentMin, &percentMax, 1, &level, &direct, 1, rows, 0,
             0, 0, 0);
  return speed;
}

// Sample numbers where the marker code rises through the threshold.
std::vector<int64_t> RisingEdges(const int16_t* store, int channel, int64_t rows, int threshold) {
  std::vector<int64_t> edges;
  for (int64_t r = 1; r < rows; ++r)
    if (At(store, r - 1, channel) < threshold && At(store, r, channel) >= threshold) edges.push_back(r);
  return edges;
}

}  // namespace

TEST(AcquisitionCyclic, MarkerShowsTheConfiguredSpeedOnTheCopiedCycle) {
  EnvScope env;
  env.set("AQX_VIRTUAL_RPM", "600").set("AQX_VIRTUAL_WANDER", "0")
      .set("AQX_VIRTUAL_CHANNELS", "marker,runout,runout,vibration");
  auto store = MakeStore(0, 16385);
  int32_t freq = 5000;  // 4 x 5000 = 20 kHz, divider 400
  ASSERT_EQ(Start(On({1, 2, 3, 4}), freq, 16384, 512), 0);
  EXPECT_EQ(freq, 5000);
  WaitForRows(store.get(), 4, 16383);
  CopySignalData(store.get());
  ASSERT_EQ(StopPotok(), 0);

  // The detector of the program sees the unit's speed on the copied cycle.
  const Speed speed = MarkerSpeed(store.get(), On({1, 2, 3, 4}), 16384, freq, 600.0);
  EXPECT_GE(speed.marks, 30);
  EXPECT_NEAR(speed.minRpm, 600.0, 0.6);
  EXPECT_NEAR(speed.maxRpm, 600.0, 0.6);
  // 600 rev/min is 10 revolutions a second: one pulse every 500 samples.
  const auto edges = RisingEdges(store.get(), 1, 16384, 2000);
  ASSERT_GE(edges.size(), 30u);
  for (size_t i = 1; i < edges.size(); ++i) EXPECT_NEAR(edges[i] - edges[i - 1], 500, 1) << i;
  // The pulse is 5000 mV high: 4000 codes at the +-10 V range.
  EXPECT_NEAR(At(store.get(), edges[0] + 2, 1), 4000, 30);
}

TEST(AcquisitionCyclic, SpeedWandersSlightlyAroundTheNominalSpeed) {
  EnvScope env;
  env.set("AQX_VIRTUAL_RPM", "1500").set("AQX_VIRTUAL_WANDER", "2")
      .set("AQX_VIRTUAL_CHANNELS", "marker,counter");
  auto store = MakeStore(0, 65537);
  int32_t freq = 50000;
  ASSERT_EQ(Start(On({1, 2}), freq, 65536, 1024), 0);
  WaitForRows(store.get(), 2, 65535);
  CopySignalData(store.get());
  ASSERT_EQ(StopPotok(), 0);
  const Speed speed = MarkerSpeed(store.get(), On({1, 2}), 65536, freq, 1500.0);
  EXPECT_GE(speed.minRpm, 1470.0);
  EXPECT_LE(speed.maxRpm, 1530.0);
  EXPECT_GT(speed.maxRpm - speed.minRpm, 0.5);  // it does wander
  const auto edges = RisingEdges(store.get(), 1, 65536, 2000);
  ASSERT_GE(edges.size(), 30u);
  // 25 revolutions a second at 50 kHz: 2000 samples, within the 2 % wander.
  int64_t shortest = INT64_MAX, longest = 0;
  for (size_t i = 1; i < edges.size(); ++i) {
    shortest = std::min(shortest, edges[i] - edges[i - 1]);
    longest = std::max(longest, edges[i] - edges[i - 1]);
  }
  EXPECT_GE(shortest, 1960);
  EXPECT_LE(longest, 2041);
}

TEST(AcquisitionCyclic, RateComesBackAsTheClockDividerAllows) {
  EnvScope env;
  int32_t freq = 30000;  // 3 channels: 90 kHz wanted, 8 MHz / 89 = 89887.6 Hz
  ASSERT_EQ(Start(On({1, 2, 3}), freq, 1024), 0);
  EXPECT_EQ(freq, 29963);
  EXPECT_EQ(StopPotok(), 0);

  freq = 2677;  // 11 channels: divider 272, 2673.8 Hz a channel
  ASSERT_EQ(Start(On({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}), freq, 1024), 0);
  EXPECT_EQ(freq, 2674);
  EXPECT_EQ(StopPotok(), 0);

  freq = 1;  // the slowest clock: divider 65535
  ASSERT_EQ(Start(On({5}), freq, 1024), 0);
  EXPECT_EQ(freq, 122);
  EXPECT_EQ(StopPotok(), 0);

  freq = 50001;  // 2 x 50001 Hz exceeds the module
  EXPECT_EQ(Start(On({1, 2}), freq, 1024), 18);
  freq = 50000;
  ASSERT_EQ(Start(On({1, 2}), freq, 1024), 0);
  EXPECT_EQ(StopPotok(), 0);
}

TEST(AcquisitionCyclic, CopiesAreConsecutiveRowsAndTouchOnlyTheCycleOfUsedChannels) {
  EnvScope env;
  env.set("AQX_VIRTUAL_CHANNELS", "zero,counter,zero,zero,counterhigh");
  const int16_t sentinel = 0x5A5A;
  const int64_t cycle = 8192;
  auto store = MakeStore(sentinel, cycle + 64);
  int32_t freq = 40000;  // 2 x 40 kHz: a cycle every 0.2 s
  char moduleText[17];
  std::memset(moduleText, 'x', sizeof moduleText);
  ASSERT_EQ(Start(On({2, 5}), freq, static_cast<int32_t>(cycle), 256, {}, {}, 0, moduleText), 0);
  EXPECT_STREQ(moduleText, "E140 VR000001");

  int partial = 0, full = 0;
  for (int poll = 0; poll < 300; ++poll) {
    CopySignalData(store.get());
    const int16_t first = At(store.get(), 0, 2);
    if (first == 0 && At(store.get(), cycle - 1, 2) == 0) {
      // Before the first cycle is full the rows so far start the cycle and
      // the rest is cleared.
      int64_t filled = 0;
      while (filled < cycle && At(store.get(), filled, 2) == CounterCode(filled)) ++filled;
      for (int64_t r = filled; r < cycle; ++r) ASSERT_EQ(At(store.get(), r, 2), 0) << r;
      for (int64_t r = 0; r < filled; ++r) ASSERT_EQ(At(store.get(), r, 5), 0) << r;
      partial += filled > 0;
    } else {
      // Afterwards the newest cycle: whole and without a gap.
      for (int64_t r = 1; r < cycle; ++r)
        ASSERT_EQ(At(store.get(), r, 2), CounterCode(first + r)) << "poll " << poll << " row " << r;
      ++full;
    }
    for (int64_t r = 0; r < cycle; r += 511) {
      ASSERT_EQ(At(store.get(), r, 1), sentinel);
      ASSERT_EQ(At(store.get(), r, 3), sentinel);
      ASSERT_EQ(At(store.get(), r, 32), sentinel);
    }
    SleepMs(3);
  }
  EXPECT_EQ(StopPotok(), 0);
  EXPECT_GT(partial, 0);
  EXPECT_GT(full, 0);
  // Rows past the cycle are never written.
  EXPECT_EQ(At(store.get(), cycle, 2), sentinel);
  EXPECT_EQ(At(store.get(), cycle + 63, 2), sentinel);
}

TEST(AcquisitionCyclic, RangesMultiplyByFourAndCodesClipAt14Bits) {
  EnvScope env;
  // Differential inputs: no mains hum, so direct voltages give exact codes.
  env.set("AQX_VIRTUAL_CHANNELS", "dc:100,dc:100,dc:100,dc:100,dc:3000,dc:-3000,dc:-1.875");
  auto store = MakeStore(0, 257);
  int32_t freq = 1000;
  const std::array<int32_t, 32> volume{0, 1, 2, 3, 3, 3, 1};
  ASSERT_EQ(Start(On({1, 2, 3, 4, 5, 6, 7, 20}), freq, 256, 16, {}, volume, 1), 0);
  EXPECT_EQ(freq, 1000);  // channel 20 does not exist in differential connection: 7 channels
  WaitForRows(store.get(), 1, 255);
  EXPECT_EQ(StopPotok(), 0);
  for (int64_t r : {0, 100, 255}) {
    EXPECT_EQ(At(store.get(), r, 1), 80);
    EXPECT_EQ(At(store.get(), r, 2), 320);
    EXPECT_EQ(At(store.get(), r, 3), 1280);
    EXPECT_EQ(At(store.get(), r, 4), 5120);
    EXPECT_EQ(At(store.get(), r, 5), 8191);
    EXPECT_EQ(At(store.get(), r, 6), -8192);
    EXPECT_EQ(At(store.get(), r, 7), -6);  // -1.875 mV x 4 / 1.25 = -6
    EXPECT_EQ(At(store.get(), r, 20), 0);
  }
}

TEST(AcquisitionCyclic, OverloadDrivesTheChosenChannelIntoClipping) {
  EnvScope env;
  env.set("AQX_VIRTUAL_CHANNELS", "vibration,vibration").set("AQX_VIRTUAL_OVERLOAD", "2");
  auto store = MakeStore(0, 4097);
  int32_t freq = 10000;
  ASSERT_EQ(Start(On({1, 2}), freq, 4096, 256), 0);
  WaitForRows(store.get(), 1, 4095);
  CopySignalData(store.get());
  EXPECT_EQ(StopPotok(), 0);
  int clipped1 = 0, clipped2 = 0;
  for (int64_t r = 0; r < 4096; ++r) {
    clipped1 += std::abs(At(store.get(), r, 1)) >= 8191;
    clipped2 += std::abs(At(store.get(), r, 2)) >= 8191;
  }
  EXPECT_EQ(clipped1, 0);
  EXPECT_GT(clipped2, 100);
}

TEST(AcquisitionSync, AnalogStartBeginsWhereTheSignalRisesThroughTheThreshold) {
  EnvScope env;
  env.set("AQX_VIRTUAL_CHANNELS", "sine:7:5000,counter");
  auto store = MakeStore(0, 65537);
  int32_t freq = 10000;
  // Transition upwards through 1000 codes on channel 1.
  // A long cycle: the first rows stay at the start while the test looks.
  ASSERT_EQ(Start(On({1, 2}), freq, 65536, 64, {3, 1, 0, 1, 1000}, {}, 1), 0);
  WaitForRows(store.get(), 2, 1000);
  EXPECT_EQ(StopPotok(), 0);
  // 7 Hz, 4000 codes: at most about 18 codes a sample near the crossing.
  EXPECT_GT(At(store.get(), 0, 1), 1000);
  EXPECT_LE(At(store.get(), 0, 1), 1020);
  EXPECT_GT(At(store.get(), 1, 1), At(store.get(), 0, 1));
  EXPECT_EQ(At(store.get(), 0, 2), 0);

  // Level below -2000 codes.
  store = MakeStore(0, 65537);
  ASSERT_EQ(Start(On({1, 2}), freq, 65536, 64, {3, 0, 1, 1, -2000}, {}, 1), 0);
  WaitForRows(store.get(), 2, 1000);
  EXPECT_EQ(StopPotok(), 0);
  EXPECT_LT(At(store.get(), 0, 1), -2000);
  EXPECT_GT(At(store.get(), 0, 1), -2030);
}

TEST(AcquisitionSync, DigitalStartWaitsForTheRevolutionAndFrameSyncTakesOneRowEach) {
  EnvScope env;
  env.set("AQX_VIRTUAL_RPM", "1200").set("AQX_VIRTUAL_WANDER", "0")
      .set("AQX_VIRTUAL_CHANNELS", "marker,counter").set("AQX_VIRTUAL_NOISE_MV", "0");
  auto store = MakeStore(0, 65537);
  int32_t freq = 10000;
  ASSERT_EQ(Start(On({1, 2}), freq, 65536, 64, {1}), 0);
  WaitForRows(store.get(), 2, 2047);
  CopySignalData(store.get());
  EXPECT_EQ(StopPotok(), 0);
  // The run starts with the marker pulse: 3 % of 500 samples a revolution.
  EXPECT_GE(At(store.get(), 0, 1), 3900);
  EXPECT_GE(At(store.get(), 13, 1), 3900);
  EXPECT_LT(At(store.get(), 16, 1), 100);
  const auto edges = RisingEdges(store.get(), 1, 2048, 2000);
  ASSERT_FALSE(edges.empty());
  EXPECT_NEAR(edges[0], 500, 1);

  // One row at each falling edge of INT: every row is taken in the pulse.
  store = MakeStore(0, 65);
  freq = 500;
  ASSERT_EQ(Start(On({1, 2}), freq, 64, 1, {2}), 0);
  WaitForRows(store.get(), 2, 7);
  EXPECT_EQ(StopPotok(), 0);
  for (int64_t r = 0; r < 8; ++r) {
    EXPECT_GE(At(store.get(), r, 1), 3900) << r;
    EXPECT_EQ(At(store.get(), r, 2), r);
  }
}

TEST(AcquisitionSignals, TurnProbeHasOnePulsePerPoleWithItsOwnAmplitude) {
  EnvScope env;
  env.set("AQX_VIRTUAL_RPM", "750").set("AQX_VIRTUAL_POLES", "8").set("AQX_VIRTUAL_WANDER", "0")
      .set("AQX_VIRTUAL_CHANNELS", "marker,turn,counter,zero").set("AQX_VIRTUAL_NOISE_MV", "0")
      .set("AQX_VIRTUAL_POLE_SPREAD", "0").set("AQX_VIRTUAL_POLE_DEVIATION", "3:-50");
  auto store = MakeStore(0, 16385);
  int32_t freq = 25000;  // 12.5 rev/s: 2000 samples a revolution, 250 a pole
  ASSERT_EQ(Start(On({1, 2, 3, 4}), freq, 16384, 256, {}, {}, 1), 0);
  WaitForRows(store.get(), 3, 16383);
  CopySignalData(store.get());
  EXPECT_EQ(StopPotok(), 0);
  const auto edges = RisingEdges(store.get(), 1, 16384, 2000);
  ASSERT_GE(edges.size(), 3u);
  // Pole 1 begins half a pitch after the mark.
  const int64_t start = edges[0] + 125;
  for (int pole = 0; pole < 8; ++pole) {
    int peak = 0;
    for (int64_t r = start + pole * 250; r < start + (pole + 1) * 250; ++r)
      peak = std::max(peak, std::abs(static_cast<int>(At(store.get(), r, 2))));
    // 2000 mV is 1600 codes; pole 3 (from 1) is 50 % weaker.
    EXPECT_NEAR(peak, pole == 2 ? 800 : 1600, 10) << "pole " << pole + 1;
    // Poles alternate north and south.
    const int16_t middle = At(store.get(), start + pole * 250 + 125, 2);
    EXPECT_EQ(middle > 0, pole % 2 == 0) << "pole " << pole + 1;
  }
}

TEST(AcquisitionFailures, EachStartStepFailsWithItsNumber) {
  for (int number : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 14, 15, 16, 18, 23}) {
    EnvScope env;
    env.set("AQX_VIRTUAL_FAIL", std::to_string(number));
    int32_t freq = 1000;
    EXPECT_EQ(Start(On({1}), freq, 1024), number);
    // Nothing is left running: a new start goes through.
    env.set("AQX_VIRTUAL_FAIL", std::nullopt);
    ASSERT_EQ(Start(On({1}), freq, 1024), 0) << number;
    EXPECT_EQ(StopPotok(), 0);
  }
}

TEST(AcquisitionFailures, NaturalCausesGiveTheirNumbers) {
  EnvScope env;
  env.set("AQX_VIRTUAL_NAME", "E440");
  int32_t freq = 1000;
  EXPECT_EQ(Start(On({1}), freq, 1024), 6);
  env.set("AQX_VIRTUAL_NAME", std::nullopt);
  // No channel on: the module refuses the table.
  EXPECT_EQ(Start(On({}), freq, 1024), 10);
  ASSERT_EQ(Start(On({1}), freq, 1024), 0);
  // A second start while a run is on.
  EXPECT_EQ(Start(On({1}), freq, 1024), 13);
  double means[32];
  EXPECT_EQ(ReadDataChannels(means, 64), 3);
  EXPECT_EQ(StopPotok(), 0);
  EXPECT_EQ(StopPotok(), 0);  // nothing to stop
}

TEST(AcquisitionFailures, StopStepsAndAFailedReadAreToldByStopPotok) {
  for (int number : {12, 19, 22}) {
    EnvScope env;
    env.set("AQX_VIRTUAL_FAIL", std::to_string(number));
    int32_t freq = 1000;
    ASSERT_EQ(Start(On({1}), freq, 1024), 0);
    EXPECT_EQ(StopPotok(), number);
    env.set("AQX_VIRTUAL_FAIL", std::nullopt);
    ASSERT_EQ(Start(On({1}), freq, 1024), 0) << number;
    EXPECT_EQ(StopPotok(), 0);
  }
  EnvScope env;
  env.set("AQX_VIRTUAL_FAIL", "20").set("AQX_VIRTUAL_FAIL_AFTER_ROWS", "300")
      .set("AQX_VIRTUAL_CHANNELS", "counter");
  auto store = MakeStore(0, 1025);
  int32_t freq = 10000;
  ASSERT_EQ(Start(On({1}), freq, 1024, 64), 0);
  SleepMs(300);
  CopySignalData(store.get());
  // The rows before the failure are there, then nothing more came.
  EXPECT_EQ(At(store.get(), 299, 1), 299);
  EXPECT_EQ(At(store.get(), 300, 1), 0);
  EXPECT_EQ(StopPotok(), 20);
}

TEST(AcquisitionMeans, ChannelMeansUseTheRangesOfTheLastStart) {
  EnvScope env;
  env.set("AQX_VIRTUAL_CHANNELS", "dc:100,dc:-250,dc:1000");
  int32_t freq = 1000;
  ASSERT_EQ(Start(On({1, 2}), freq, 1024, 64, {}, {0, 2, 1}, 1), 0);
  EXPECT_EQ(StopPotok(), 0);
  std::array<double, 33> means;
  means.fill(-1.0);
  ASSERT_EQ(ReadDataChannels(means.data(), 1024), 0);
  EXPECT_DOUBLE_EQ(means[0], 80.0);
  EXPECT_DOUBLE_EQ(means[1], -3200.0);
  EXPECT_DOUBLE_EQ(means[2], 3200.0);  // every channel is read, at its range
  for (int c = 16; c < 32; ++c) EXPECT_EQ(means[static_cast<size_t>(c)], 0.0);  // differential: 16
  EXPECT_EQ(means[32], -1.0);

  for (int number : {11, 19, 20, 22, 23}) {
    env.set("AQX_VIRTUAL_FAIL", std::to_string(number));
    EXPECT_EQ(ReadDataChannels(means.data(), 64), number);
  }
  env.set("AQX_VIRTUAL_FAIL", std::nullopt);
  EXPECT_EQ(ReadDataChannels(means.data(), 0), 11);
}

TEST(AcquisitionDigitalLines, OutputsLoopBackWhileEnabledAndHoldBetweenCalls) {
  EnvScope env;
  env.set("AQX_VIRTUAL_TTL_IN", "0x1234");
  int32_t in = -1;
  ASSERT_EQ(DigitalLinesEnableTtlOut(0), 0);
  ASSERT_EQ(DigitalLinesTtlIn(&in), 0);
  EXPECT_EQ(in, 0x1234);
  ASSERT_EQ(DigitalLinesTtlOut(0xA5C3), 0);
  ASSERT_EQ(DigitalLinesEnableTtlOut(-1), 0);
  ASSERT_EQ(DigitalLinesTtlIn(&in), 0);
  EXPECT_EQ(in, 0xA5C3);
  ASSERT_EQ(DigitalLinesTtlOut(0x10000 | 0x0001), 0);  // 16 lines only
  ASSERT_EQ(DigitalLinesTtlIn(&in), 0);
  EXPECT_EQ(in, 1);

  env.set("AQX_VIRTUAL_FAIL", "24");
  EXPECT_EQ(DigitalLinesEnableTtlOut(0), 24);
  env.set("AQX_VIRTUAL_FAIL", "25");
  in = 77;
  EXPECT_EQ(DigitalLinesTtlIn(&in), 25);
  EXPECT_EQ(in, 77);
  env.set("AQX_VIRTUAL_FAIL", "3");
  EXPECT_EQ(DigitalLinesTtlIn(&in), 3);
  env.set("AQX_VIRTUAL_FAIL", std::nullopt);
  ASSERT_EQ(DigitalLinesEnableTtlOut(0), 0);
}

TEST(AcquisitionInfo, EightZeroEndedBlocksInTheSingleByteCodePage) {
  EnvScope env;
  std::vector<char> buffers(8 * 1001 + 16, '#');
  ASSERT_EQ(MainInfoE140(buffers.data()), 0);
  for (int b = 0; b < 8; ++b) {
    const char* block = buffers.data() + b * 1001;
    const size_t length = strnlen(block, 1001);
    EXPECT_GT(length, 0u) << b;
    EXPECT_LT(length, 1001u) << b;
  }
  EXPECT_EQ(buffers[8 * 1001], '#');
  // "Модуль: E140" in Windows-1251.
  EXPECT_EQ(std::string(buffers.data(), 12), std::string("\xCC\xEE\xE4\xF3\xEB\xFC: E140"));
  EXPECT_NE(std::string(buffers.data()).find("VR000001"), std::string::npos);

  env.set("AQX_VIRTUAL_FAIL", "8");
  EXPECT_EQ(MainInfoE140(buffers.data()), 8);
  env.set("AQX_VIRTUAL_FAIL", "12");
  EXPECT_EQ(MainInfoE140(buffers.data()), 12);
}

TEST(AcquisitionReplay, PlaysTheChannelsOfAFileAtItsRate) {
  EnvScope env;
  // An ordinary file of the current layout: header 14173 bytes, channels 1
  // and 3 on, 64 samples each at 2000 Hz, channel after channel from byte
  // 14172 on.
  std::vector<unsigned char> file(14172 + 2 * 64 * 2, 0);
  std::memcpy(file.data(), "Aquilonix ", 10);
  PutInt32(file, 14, 12);
  PutInt32(file, 46, 2000);
  PutInt32(file, 50, 2000);
  PutInt32(file, 202 + 0, 1);
  PutInt32(file, 202 + 8, 1);
  PutInt32(file, 6094, 64);
  for (int s = 0; s < 64; ++s) {
    PutInt16(file, 14172 + 2 * static_cast<size_t>(s), static_cast<int16_t>(100 + s));
    PutInt16(file, 14172 + 128 + 2 * static_cast<size_t>(s), static_cast<int16_t>(-s));
  }
  const std::string path = TempPath("replay.aqx");
  WriteBytes(path, file);
  env.set("AQX_MODULE", "replay").set("AQX_REPLAY_FILE", path);
  auto store = MakeStore(7, 201);
  int32_t freq = 10000;  // the file decides
  ASSERT_EQ(Start(On({1, 2, 3}), freq, 200, 16), 0);
  // 8 MHz over the nearest divider (1333) for three channels: 2000.5 Hz.
  EXPECT_EQ(freq, 2001);
  WaitForRows(store.get(), 1, 199, 5000);
  SleepMs(20);
  CopySignalData(store.get());
  EXPECT_EQ(StopPotok(), 0);
  // The newest 200 rows of the file played round and round.
  const int64_t phase = At(store.get(), 0, 1) - 100;
  ASSERT_GE(phase, 0);
  ASSERT_LT(phase, 64);
  for (int64_t r = 0; r < 200; ++r) {
    EXPECT_EQ(At(store.get(), r, 1), 100 + (phase + r) % 64) << r;
    EXPECT_EQ(At(store.get(), r, 2), 0) << r;
    EXPECT_EQ(At(store.get(), r, 3), -((phase + r) % 64)) << r;
  }

  env.set("AQX_REPLAY_FILE", path + ".missing");
  EXPECT_EQ(Start(On({1}), freq, 200), 3);
  std::remove(path.c_str());
}

TEST(AcquisitionReplay, PlaysAContinuousRecordingRowByRow) {
  EnvScope env;
  // SolidMode -1 at 6138, FreqADC 4000 at 6165, channels 2 and 3 on; rows of
  // two codes from byte 14173 on.
  std::vector<unsigned char> file(14173 + 100 * 4, 0);
  std::memcpy(file.data(), "Aquilonix ", 10);
  PutInt32(file, 14, 12);
  PutInt32(file, 202 + 4, 1);
  PutInt32(file, 202 + 8, 1);
  PutInt16(file, 6138, -1);
  PutInt32(file, 6165, 4000);
  for (int r = 0; r < 100; ++r) {
    PutInt16(file, 14173 + 4 * static_cast<size_t>(r), static_cast<int16_t>(1000 + r));
    PutInt16(file, 14173 + 4 * static_cast<size_t>(r) + 2, static_cast<int16_t>(-1000 - r));
  }
  const std::string path = TempPath("replay-solid.aqx");
  WriteBytes(path, file);
  env.set("AQX_MODULE", "replay").set("AQX_REPLAY_FILE", path);
  auto store = MakeStore(0, 151);
  int32_t freq = 1;
  ASSERT_EQ(Start(On({2, 3}), freq, 150, 10), 0);
  EXPECT_EQ(freq, 2000);  // 4000 Hz over the file's two channels
  WaitForRows(store.get(), 2, 149, 5000);
  CopySignalData(store.get());
  EXPECT_EQ(StopPotok(), 0);
  const int64_t phase = At(store.get(), 0, 2) - 1000;
  ASSERT_GE(phase, 0);
  ASSERT_LT(phase, 100);
  for (int64_t r = 0; r < 150; ++r) {
    EXPECT_EQ(At(store.get(), r, 2), 1000 + (phase + r) % 100) << r;
    EXPECT_EQ(At(store.get(), r, 3), -1000 - (phase + r) % 100) << r;
  }
  std::remove(path.c_str());
}
