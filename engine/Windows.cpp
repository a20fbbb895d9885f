// The eight smoothing windows of the spectrum analyser settings, applied to
// the stored samples in place (FillBpfWindow).

#include "engine/WindowShapes.h"

using namespace aqx::engine;

extern "C" void FillBpfWindow(int16_t* SignalData, int32_t SignalDataN, int32_t windowIndex) {
  if (SignalData == nullptr || windowIndex < 1 || windowIndex > 8) return;
  const int32_t count = ClampSampleCount(SignalDataN);
  for (int32_t n = 0; n < count; ++n) {
    const double w = count > 1 ? SmoothingWindowValue(windowIndex, n, count - 1.0) : 1.0;
    int16_t* row = SignalData + static_cast<size_t>(n) * kColumns;
    for (int32_t c = 0; c < kColumns; ++c) row[c] = RoundToCode(row[c] * w);
  }
}
