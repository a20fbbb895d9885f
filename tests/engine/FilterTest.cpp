// Filters against the published designs (responses from scipy, stored by
// tests/data/make_filter_reference.py) and against the edges of a record.

#include "EngineTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

using namespace aqx::test;

namespace {

struct ReferenceRow {
  std::string kind;
  double sampleHz, edgeHz, probeHz, gain;
};

std::vector<ReferenceRow> ReadReference() {
  std::ifstream in(std::string(AQX_TEST_DATA_DIR) + "/engine_filter_reference.csv");
  std::vector<ReferenceRow> rows;
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#' || line.rfind("kind", 0) == 0) continue;
    std::replace(line.begin(), line.end(), ',', ' ');
    std::istringstream fields(line);
    ReferenceRow r;
    fields >> r.kind >> r.sampleHz >> r.edgeHz >> r.probeHz >> r.gain;
    rows.push_back(r);
  }
  return rows;
}

int EntryOf(const std::string& kind) {
  if (kind == "highpass") return 0;
  if (kind == "lowpass") return 1;
  if (kind == "notch") return 2;
  return 3;
}

std::vector<double> Column(Store& store, int32_t channel, int32_t count) {
  std::vector<double> x(static_cast<size_t>(count));
  for (int32_t row = 1; row <= count; ++row) x[static_cast<size_t>(row - 1)] = store.at(row, channel);
  return x;
}

}  // namespace

TEST(EngineFilter, EachKindFollowsThePublishedResponse) {
  const std::vector<ReferenceRow> reference = ReadReference();
  ASSERT_EQ(reference.size(), 39u);
  constexpr int32_t n = 65536;
  for (const ReferenceRow& r : reference) {
    SCOPED_TRACE(r.kind + " at " + std::to_string(r.probeHz) + " Hz");
    Store store(n);
    store.fill(1, n, [&](int32_t row) { return 8000 * std::sin(2 * kPi * r.probeHz * (row - 1) / r.sampleHz); });
    std::array<float, 128> filter;
    filter.fill(-1.0f);
    filter[EntryOf(r.kind)] = static_cast<float>(r.edgeHz);
    auto channel = PerChannel(0);
    channel[0] = 1;
    AccountFilter(channel.data(), filter.data(), nullptr, nullptr, store.data(), n,
                  static_cast<int32_t>(r.sampleHz), 0);
    // The middle 32768 samples hold whole periods of every probe frequency.
    const double gain = AmplitudeAt(Column(store, 1, n), 16384, 32768, r.probeHz, r.sampleHz) / 8000;
    EXPECT_NEAR(gain, r.gain, 0.001 + 0.01 * r.gain);
  }
}

TEST(EngineFilter, EdgesCarryNoStartUpTransient) {
  constexpr int32_t n = 10000;
  constexpr double fs = 1000;
  Store store(n);
  auto slow = [](int32_t row) { return 3000 + 2000 * std::sin(2 * kPi * 2 * (row - 1) / fs); };
  auto fast = [](int32_t row) { return 2000 * std::cos(2 * kPi * 50 * (row - 1) / fs); };
  store.fill(1, n, slow);
  store.fill(2, n, [&](int32_t row) { return -2500 + fast(row); });
  std::array<float, 128> filter;
  filter.fill(-1.0f);
  filter[1] = 20.0f;  // channel 1: low pass 20 Hz keeps everything
  filter[4] = 5.0f;   // channel 2: high pass 5 Hz takes the offset away
  auto channel = PerChannel(0);
  channel[0] = channel[1] = 1;
  AccountFilter(channel.data(), filter.data(), nullptr, nullptr, store.data(), n, 1000, 0);
  for (int32_t row : {1, 2, 10, 100, 5000, 9990, 9999, 10000}) {
    EXPECT_NEAR(store.at(row, 1), slow(row), 20) << row;
    EXPECT_NEAR(store.at(row, 2), fast(row), 40) << row;
  }
}

TEST(EngineFilter, EmptyOrImpossibleEntriesAndOffChannelsLeaveSamples) {
  Store store(4096);
  store.fill(1, 4096, [](int32_t row) { return 1000 * std::sin(row * 0.37); });
  store.fill(2, 4096, [](int32_t row) { return 1000 * std::sin(row * 0.37); });
  const std::vector<int16_t> before = store.codes;
  std::array<float, 128> filter;
  filter.fill(-1.0f);
  filter[0] = 0.0f;    // zero means none
  filter[1] = 600.0f;  // at or above half of 1000 Hz: no design possible
  filter[5] = 10.0f;   // channel 2 is off
  auto channel = PerChannel(0);
  channel[0] = 1;
  AccountFilter(channel.data(), filter.data(), nullptr, nullptr, store.data(), 4096, 1000, 0);
  EXPECT_EQ(store.codes, before);
}

TEST(EngineFilter, RunoutFilterKeepsTheRunoutBandOnly) {
  constexpr int32_t n = 16384;
  constexpr double fs = 1024;
  Store store(n);
  auto mixed = [](int32_t row) {
    return 2000 * std::sin(2 * kPi * 5 * (row - 1) / fs) + 1000 * std::sin(2 * kPi * 100 * (row - 1) / fs);
  };
  store.fill(1, n, mixed);
  store.fill(2, n, mixed);
  auto channel = PerChannel(1);
  auto type = PerChannel(1);
  type[0] = 0;  // channel 1 is run-out, channel 2 vibration
  FilterSensorBienie(channel.data(), type.data(), n, nullptr, nullptr, store.data(), 1024);
  const std::vector<double> runout = Column(store, 1, n);
  EXPECT_NEAR(AmplitudeAt(runout, 4096, 8192, 5, fs), 2000, 20);
  EXPECT_LT(AmplitudeAt(runout, 4096, 8192, 100, fs), 10);
  EXPECT_NEAR(AmplitudeAt(Column(store, 2, n), 4096, 8192, 100, fs), 1000, 2);
}
