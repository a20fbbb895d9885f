#include "views/signal/SignalEngine.h"

#include "core/Numeric.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace aqx::views {

void ThinChannel(const AppState& s, int channel, int widthPx, int channelY, double pixelsPerSample,
                 double pixelsPerUnit, std::vector<int32_t>& columns) {
  const int w = std::max(10, widthPx);
  columns.assign(static_cast<size_t>(w) * 2, channelY);
  const int n = std::clamp(s.SignalDataN, 0, kMaxSamples);
  const int first = std::max(1, s.ViewFirst);
  const int last = std::min(n, s.ViewLast);
  if (first > last || pixelsPerSample <= 0) return;
  const double ku = s.channels.Ku[channel] != 0.0f ? s.channels.Ku[channel] : 1.0;
  const double k = pixelsPerUnit / ku;
  const int offset = s.AccountOffset ? s.SignalOffset[channel] : 0;
  const double base = RoundHalfEven(offset * 1.25 * k + channelY);
  const double z = RoundHalfEven(std::pow(4.0, std::clamp(s.channels.Volume[channel], 0, 3)) * s.channels.Zero[channel]);
  std::vector<int32_t> top(static_cast<size_t>(w), std::numeric_limits<int32_t>::max());
  std::vector<int32_t> bottom(static_cast<size_t>(w), std::numeric_limits<int32_t>::min());
  for (int sample = first; sample <= last; ++sample) {
    const int col = std::clamp(static_cast<int>((sample - first) * pixelsPerSample), 0, w - 1);
    const int32_t y = RoundHalfEven(base - (1.25 * s.SignalData.at(sample, channel) - z) * k);
    top[static_cast<size_t>(col)] = std::min(top[static_cast<size_t>(col)], y);
    bottom[static_cast<size_t>(col)] = std::max(bottom[static_cast<size_t>(col)], y);
  }
  int32_t lastY = channelY;
  for (int col = 0; col < w; ++col) {
    if (top[static_cast<size_t>(col)] > bottom[static_cast<size_t>(col)]) {
      top[static_cast<size_t>(col)] = bottom[static_cast<size_t>(col)] = lastY;
    }
    columns[static_cast<size_t>(col) * 2] = top[static_cast<size_t>(col)];
    columns[static_cast<size_t>(col) * 2 + 1] = bottom[static_cast<size_t>(col)];
    lastY = bottom[static_cast<size_t>(col)];
  }
}

RotorSpeed RunOtmetchick(AppState& s, const SignalViewOptions& o) {
  RotorSpeed speed;
  speed.OtmetchickLevel = o.OtmetchickLevel;
  speed.OtmetchickDirect = o.OtmetchickDirect;
  if (FirstMarkerChannel(s) == 0) s.ShaftMarkCount = 0;
  return speed;
}

}  // namespace aqx::views
