// The eight smoothing windows of the spectrum analyser settings, applied to
// the stored samples in place (FillBpfWindow).

#include "engine/EngineCommon.h"

#include <array>

using namespace aqx::engine;

namespace {

// Sum of cosines a0 - a1 cos(x) + a2 cos(2x) - a3 cos(3x) + a4 cos(4x),
// x = 2*pi*n/(N-1): the published coefficients, each summing to 1 at the
// centre.
struct CosineWindow {
  std::array<double, 5> a;
};

constexpr CosineWindow kHanning{{0.5, 0.5, 0.0, 0.0, 0.0}};
constexpr CosineWindow kHamming{{0.54, 0.46, 0.0, 0.0, 0.0}};
constexpr CosineWindow kBlackman{{0.42, 0.5, 0.08, 0.0, 0.0}};
constexpr CosineWindow kBlackmanHarris{{0.35875, 0.48829, 0.14128, 0.01168, 0.0}};
constexpr CosineWindow kFlatTop{{0.21557895, 0.41663158, 0.277263158, 0.083578947, 0.006947368}};
constexpr CosineWindow kNuttall{{0.355768, 0.487396, 0.144232, 0.012604, 0.0}};
constexpr CosineWindow kBlackmanNuttall{{0.3635819, 0.4891775, 0.1365995, 0.0106411, 0.0}};

double CosineValue(const CosineWindow& w, double x) {
  return w.a[0] - w.a[1] * std::cos(x) + w.a[2] * std::cos(2 * x) - w.a[3] * std::cos(3 * x) +
         w.a[4] * std::cos(4 * x);
}

// Value of window `index` at sample n of a symmetric window of `count` samples.
double WindowValue(int32_t index, int32_t n, int32_t count) {
  if (count <= 1) return 1.0;
  const double span = count - 1;
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

}  // namespace

extern "C" void FillBpfWindow(int16_t* SignalData, int32_t SignalDataN, int32_t windowIndex) {
  if (SignalData == nullptr || windowIndex < 1 || windowIndex > 8) return;
  const int32_t count = ClampSampleCount(SignalDataN);
  for (int32_t n = 0; n < count; ++n) {
    const double w = WindowValue(windowIndex, n, count);
    int16_t* row = SignalData + static_cast<size_t>(n) * kColumns;
    for (int32_t c = 0; c < kColumns; ++c) row[c] = RoundToCode(row[c] * w);
  }
}
