#pragma once
// Sample stores and sentinels for the tests of the numeric engine functions.

#include "engine/Aquilonix.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace aqx::test {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr int32_t kSentinel = 0x5A5A5A5A;
inline constexpr double kSentinelValue = -123456.75;

// A row-major store of `rows` rows of 32 channels (the full store by default).
struct Store {
  explicit Store(int32_t rowCount = AQX_SIGNAL_ROWS)
      : rows(rowCount), codes(static_cast<size_t>(rowCount) * AQX_SIGNAL_COLUMNS, 0) {}
  int16_t& at(int32_t row, int32_t channel) {
    return codes[static_cast<size_t>(row - 1) * AQX_SIGNAL_COLUMNS + static_cast<size_t>(channel - 1)];
  }
  int16_t* data() { return codes.data(); }
  // code = round(value(row)) for rows 1..count of a channel.
  template <class F>
  void fill(int32_t channel, int32_t count, F value) {
    for (int32_t row = 1; row <= count; ++row) at(row, channel) = static_cast<int16_t>(std::lround(value(row)));
  }
  int32_t rows;
  std::vector<int16_t> codes;
};

// 32 per-channel entries, one value for all and others set by channel (from 1).
template <class T>
std::array<T, 32> PerChannel(T all) {
  std::array<T, 32> a;
  a.fill(all);
  return a;
}

// A vector of `size` used entries followed by `guard` sentinels.
template <class T>
struct Guarded {
  Guarded(size_t size, T sentinel, size_t guard = 16) : used(size), values(size + guard, sentinel), mark(sentinel) {}
  T* data() { return values.data(); }
  T& operator[](size_t i) { return values[i]; }
  const T& operator[](size_t i) const { return values[i]; }
  bool guardIntact() const {
    for (size_t i = used; i < values.size(); ++i) {
      if (!(values[i] == mark)) return false;
    }
    return true;
  }
  size_t used;
  std::vector<T> values;
  T mark;
};

// Amplitude of the sinusoid at `hz` in x[first..first+count) sampled at
// sampleHz, by projection over a whole number of its periods.
inline double AmplitudeAt(const std::vector<double>& x, size_t first, size_t count, double hz,
                          double sampleHz) {
  double c = 0.0, s = 0.0;
  for (size_t i = 0; i < count; ++i) {
    const double a = 2.0 * kPi * hz * static_cast<double>(first + i) / sampleHz;
    c += x[first + i] * std::cos(a);
    s += x[first + i] * std::sin(a);
  }
  return 2.0 * std::hypot(c, s) / static_cast<double>(count);
}

inline double AngleDifference(double a, double b) {
  double d = std::fmod(a - b, 360.0);
  if (d > 180.0) d -= 360.0;
  if (d < -180.0) d += 360.0;
  return d;
}

}  // namespace aqx::test
