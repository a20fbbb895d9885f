#include "engine/acquisition/AcquisitionModule.h"

#include <algorithm>
#include <cmath>

namespace aqx::acq {

int ClockDividerFor(double totalRateHz) {
  if (!(totalRateHz > 0.0)) return kMaxClockDivider;
  const double divider = std::nearbyint(kModuleClockHz / totalRateHz);
  return static_cast<int>(std::clamp(divider, static_cast<double>(kMinClockDivider),
                                     static_cast<double>(kMaxClockDivider)));
}

double TotalRateFor(int clockDivider) {
  return kModuleClockHz / std::clamp(clockDivider, kMinClockDivider, kMaxClockDivider);
}

int RangeGain(int range) { return 1 << (2 * std::clamp(range, 0, kRangeCount - 1)); }

int16_t MillivoltsToCode(double millivolts, int range) {
  const double codes = std::nearbyint(millivolts / kMillivoltsPerCode * RangeGain(range));
  if (!(codes >= kCodeMin)) return static_cast<int16_t>(std::isnan(codes) ? 0 : kCodeMin);
  if (codes > kCodeMax) return static_cast<int16_t>(kCodeMax);
  return static_cast<int16_t>(codes);
}

}  // namespace aqx::acq
