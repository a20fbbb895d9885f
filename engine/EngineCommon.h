#pragma once
// Small helpers shared by the numeric routines of the library: clamping of
// the caller's row and channel numbers, access to the sample store, rounding.
// Nothing here is exported.

#include "engine/Aquilonix.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

// A hot loop built twice, for processors with AVX2 and FMA and for any
// x86-64, the loader choosing when the library loads. Not under the
// sanitizers: their runtimes are not ready when the loader makes that choice.
#if defined(__x86_64__) && !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
#define AQX_CLONED_FOR_AVX2 __attribute__((target_clones("arch=x86-64-v3", "default")))
// The same with a third build for AVX-512, whose 32 vector registers hold
// two passes' states and their coefficients at once.
#define AQX_CLONED_FOR_AVX512 __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define AQX_CLONED_FOR_AVX2
#define AQX_CLONED_FOR_AVX512
#endif

namespace aqx::engine {

inline constexpr int32_t kRows = AQX_SIGNAL_ROWS;
inline constexpr int32_t kColumns = AQX_SIGNAL_COLUMNS;
inline constexpr int32_t kMaxMarks = AQX_MAX_SHAFT_MARKS;
inline constexpr double kMillivoltsPerCode = 1.25;
inline constexpr double kPi = 3.14159265358979323846;

inline constexpr int32_t kTypeRunout = 0;
inline constexpr int32_t kTypeMarker = 3;
inline constexpr int32_t kTypeTurnProbe = 4;

// Rounds half to even (the program's one rounding rule) and saturates into
// the int32 range, so that garbage scale values cannot cause undefined
// conversions.
inline int32_t RoundToInt32(double v) {
  if (!(v == v)) return 0;
  const double r = std::nearbyint(v);
  if (r >= 2147483647.0) return std::numeric_limits<int32_t>::max();
  if (r <= -2147483648.0) return std::numeric_limits<int32_t>::min();
  return static_cast<int32_t>(r);
}

inline int16_t RoundToCode(double v) {
  if (!(v == v)) return 0;
  const double r = std::nearbyint(v);
  return static_cast<int16_t>(std::clamp(r, -32768.0, 32767.0));
}

// Valid samples per channel: SignalDataN held to 0..1,048,576.
inline int32_t ClampSampleCount(int32_t signalDataN) { return std::clamp(signalDataN, 0, kRows); }

// An inclusive stretch of 1-based rows; empty when first > last.
struct Stretch {
  int32_t first = 1;
  int32_t last = 0;
  int32_t count() const { return last >= first ? last - first + 1 : 0; }
  bool empty() const { return last < first; }
};

// Rows first..last held inside 1..rowCount.
inline Stretch ClampStretch(int32_t first, int32_t last, int32_t rowCount) {
  Stretch s;
  s.first = std::max(first, 1);
  s.last = std::min(last, rowCount);
  return s;
}

// The stretch the analysis works on: the selection when both its ends are set
// and it lies inside the store, otherwise the view, held inside the store.
inline Stretch AnalysisStretch(int32_t selectFirst, int32_t selectLast, int32_t viewFirst,
                               int32_t viewLast, int32_t rowCount) {
  if (selectFirst > 0 && selectLast > selectFirst) {
    const Stretch sel = ClampStretch(selectFirst, selectLast, rowCount);
    if (!sel.empty()) return sel;
  }
  return ClampStretch(viewFirst, viewLast, rowCount);
}

// Code of 1-based row `row` of 0-based column `column`.
inline int16_t CodeAt(const int16_t* signalData, int32_t row, int32_t column) {
  return signalData[static_cast<size_t>(row - 1) * kColumns + static_cast<size_t>(column)];
}

inline int16_t* CodePtr(int16_t* signalData, int32_t row, int32_t column) {
  return signalData + static_cast<size_t>(row - 1) * kColumns + static_cast<size_t>(column);
}
inline const int16_t* CodePtr(const int16_t* signalData, int32_t row, int32_t column) {
  return signalData + static_cast<size_t>(row - 1) * kColumns + static_cast<size_t>(column);
}

// Channel factor with the garbage cases (0, NaN, missing table) turned into 1,
// so that a division never produces infinities.
inline double SafeKu(const float* ku, int32_t column) {
  if (ku == nullptr) return 1.0;
  const double v = ku[column];
  return (std::isfinite(v) && v != 0.0) ? v : 1.0;
}

// Index 0..31 of the first channel with Channel = 1 and the given type, or -1.
inline int32_t FirstChannelOfType(const int32_t* channel, const int32_t* type, int32_t wanted) {
  if (channel == nullptr || type == nullptr) return -1;
  for (int32_t c = 0; c < kColumns; ++c) {
    if (channel[c] == 1 && type[c] == wanted) return c;
  }
  return -1;
}

inline double WrapDegrees(double degrees) {
  double d = std::fmod(degrees, 360.0);
  if (d < 0.0) d += 360.0;
  if (d >= 360.0) d -= 360.0;
  return d;
}

}  // namespace aqx::engine
