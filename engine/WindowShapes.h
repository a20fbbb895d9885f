#pragma once
// The eight smoothing windows of the spectrum analyser settings by their
// index 1..8 (1 Hanning, 2 Hamming, 3 Blackman, 4 Bartlett, 5 Blackman-Harris,
// 6 flat top, 7 Nuttall, 8 Blackman-Nuttall); any other index is no window.
// Shared by the in-place window of the store and the windowed spectrum.

#include "engine/EngineCommon.h"

#include <array>

namespace aqx::engine {

// Sum of cosines a0 - a1 cos(x) + a2 cos(2x) - a3 cos(3x) + a4 cos(4x): the
// published coefficients, each summing to 1 at the centre.
struct CosineWindow {
  std::array<double, 5> a;
};

inline constexpr CosineWindow kHanning{{0.5, 0.5, 0.0, 0.0, 0.0}};
inline constexpr CosineWindow kHamming{{0.54, 0.46, 0.0, 0.0, 0.0}};
inline constexpr CosineWindow kBlackman{{0.42, 0.5, 0.08, 0.0, 0.0}};
inline constexpr CosineWindow kBlackmanHarris{{0.35875, 0.48829, 0.14128, 0.01168, 0.0}};
inline constexpr CosineWindow kFlatTop{{0.21557895, 0.41663158, 0.277263158, 0.083578947, 0.006947368}};
inline constexpr CosineWindow kNuttall{{0.355768, 0.487396, 0.144232, 0.012604, 0.0}};
inline constexpr CosineWindow kBlackmanNuttall{{0.3635819, 0.4891775, 0.1365995, 0.0106411, 0.0}};

inline double CosineValue(const CosineWindow& w, double x) {
  return w.a[0] - w.a[1] * std::cos(x) + w.a[2] * std::cos(2 * x) - w.a[3] * std::cos(3 * x) +
         w.a[4] * std::cos(4 * x);
}

// Value of window `index` at sample n of a window spanning `span` samples:
// span = count - 1 gives the symmetric window (both ends on the curve's
// feet), span = count the periodic one a transform of `count` points wants.
inline double SmoothingWindowValue(int32_t index, double n, double span) {
  if (!(span > 0.0)) return 1.0;
  if (index == 4) return 1.0 - std::fabs(2.0 * n / span - 1.0);  // Bartlett
  const double x = 2.0 * kPi * n / span;
  switch (index) {
    case 1: return CosineValue(kHanning, x);
    case 2: return CosineValue(kHamming, x);
    case 3: return CosineValue(kBlackman, x);
    case 5: return CosineValue(kBlackmanHarris, x);
    case 6: return CosineValue(kFlatTop, x);
    case 7: return CosineValue(kNuttall, x);
    case 8: return CosineValue(kBlackmanNuttall, x);
    default: return 1.0;
  }
}

}  // namespace aqx::engine
