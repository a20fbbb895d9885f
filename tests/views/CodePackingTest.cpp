// The undo history's lossless packing of codes: every kind of run comes back
// code for code, at the size its kind allows.

#include "views/edit/CodePacking.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace aqx::views {
namespace {

std::vector<int16_t> RoundTrip(const std::vector<int16_t>& codes, size_t* packedBytes = nullptr) {
  const std::vector<uint8_t> packed = PackCodes(codes.data(), codes.size());
  if (packedBytes) *packedBytes = packed.size();
  std::vector<int16_t> back(codes.size(), 12345);
  EXPECT_TRUE(UnpackCodes(packed, back.data(), back.size()));
  return back;
}

std::vector<int16_t> Sine(size_t n, double amplitude, double periodSamples) {
  std::vector<int16_t> codes(n);
  for (size_t i = 0; i < n; ++i)
    codes[i] = static_cast<int16_t>(std::lround(amplitude * std::sin(2.0 * std::numbers::pi * static_cast<double>(i) / periodSamples)));
  return codes;
}

// Lengths 0, 1, one block, and one not a whole number of blocks.
constexpr size_t kLengths[] = {0, 1, kPackBlockCodes, 3 * kPackBlockCodes + 123};

TEST(CodePacking, AConstantRunCostsAFewBitsABlock) {
  for (size_t n : kLengths) {
    for (int16_t value : {int16_t{0}, int16_t{-32768}, int16_t{32767}}) {
      size_t bytes = 0;
      const std::vector<int16_t> codes(n, value);
      EXPECT_EQ(RoundTrip(codes, &bytes), codes) << n;
      EXPECT_LE(bytes, 2 + (n / kPackBlockCodes + 1) * 3) << n;
    }
  }
  // A zeroed million: what redo keeps of a zeroed channel.
  const std::vector<int16_t> zeros(1 << 20, 0);
  EXPECT_LT(PackCodes(zeros.data(), zeros.size()).size(), 1024u);
}

TEST(CodePacking, ASmoothSignalPacksToAFewBitsACode) {
  for (size_t n : kLengths) {
    const std::vector<int16_t> codes = Sine(n, 30000.0, 500.0);
    EXPECT_EQ(RoundTrip(codes), codes) << n;
  }
  size_t bytes = 0;
  const std::vector<int16_t> sine = Sine(1 << 16, 30000.0, 500.0);
  RoundTrip(sine, &bytes);
  // The third difference of a slow sine is its rounding: about 3 bits.
  EXPECT_LT(bytes, sine.size() * 2 / 4);
  // A line, as smoothing leaves it.
  std::vector<int16_t> line(10000);
  for (size_t i = 0; i < line.size(); ++i) line[i] = static_cast<int16_t>(-20000 + static_cast<int>(i) * 3);
  EXPECT_EQ(RoundTrip(line, &bytes), line);
  EXPECT_LT(bytes, line.size() * 2 / 12);
}

TEST(CodePacking, NoiseAndNyquistComeBackAtNoMoreThanTheirOwnSize) {
  std::mt19937 random(17);
  std::uniform_int_distribution<int> fullScale(-32768, 32767);
  for (size_t n : kLengths) {
    std::vector<int16_t> noise(n), nyquist(n);
    for (size_t i = 0; i < n; ++i) {
      noise[i] = static_cast<int16_t>(fullScale(random));
      nyquist[i] = i % 2 == 0 ? int16_t{-32768} : int16_t{32767};
    }
    for (const std::vector<int16_t>& codes : {noise, nyquist}) {
      size_t bytes = 0;
      EXPECT_EQ(RoundTrip(codes, &bytes), codes) << n;
      // The codes as they are, plus the kind of each block.
      EXPECT_LE(bytes, 2 * n + n / kPackBlockCodes + 3) << n;
    }
  }
  // A lone full-scale spike in silence escapes the Rice code.
  std::vector<int16_t> spike(kPackBlockCodes, 0);
  spike[100] = 32767;
  spike[101] = -32768;
  size_t bytes = 0;
  EXPECT_EQ(RoundTrip(spike, &bytes), spike);
  EXPECT_LT(bytes, 600u);
}

TEST(CodePacking, ColumnsOfTheStoreComeBackWithoutTouchingTheirNeighbours) {
  constexpr size_t kStride = 32, kRows = kPackBlockCodes + 7;
  std::vector<int16_t> store(kRows * kStride);
  for (size_t i = 0; i < store.size(); ++i) store[i] = static_cast<int16_t>(i * 7919 % 65536 - 32768);
  const std::vector<int16_t> before = store;
  const std::vector<uint8_t> one = PackCodes(store.data() + 5, kRows, kStride);
  const std::vector<size_t> columns = {31, 0, 7};
  const std::vector<std::vector<uint8_t>> three = PackColumns(store.data(), kRows, kStride, columns);
  for (size_t r = 0; r < kRows; ++r)
    for (size_t c : {size_t{5}, size_t{31}, size_t{0}, size_t{7}}) store[r * kStride + c] = 0;
  ASSERT_TRUE(UnpackCodes(one, store.data() + 5, kRows, kStride));
  ASSERT_TRUE(UnpackColumns(three, store.data(), kRows, kStride, columns));
  EXPECT_EQ(store, before);
  // Runs in a different number than the columns are refused.
  EXPECT_FALSE(UnpackColumns(three, store.data(), kRows, kStride, std::vector<size_t>{1, 2}));
}

TEST(CodePacking, ATruncatedRunIsRefused) {
  const std::vector<int16_t> codes = Sine(3 * kPackBlockCodes, 1000.0, 77.0);
  std::vector<uint8_t> packed = PackCodes(codes.data(), codes.size());
  packed.resize(packed.size() / 2);
  std::vector<int16_t> back(codes.size());
  EXPECT_FALSE(UnpackCodes(packed, back.data(), back.size()));
  EXPECT_FALSE(UnpackCodes({}, back.data(), 1));
  EXPECT_TRUE(UnpackCodes({}, back.data(), 0));
}

}  // namespace
}  // namespace aqx::views
