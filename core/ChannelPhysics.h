#pragma once
// What the codes of a channel mean: millivolts per ADC code, the gain of the
// input range, the sensor factor with its guard, the sensor types, when the
// shaft's begin point applies, and where a code lands in the signal view.
// The engine keeps a copy of the constant and of the guard, since it may not
// include core.

#include "core/AppState.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace aqx {

// Millivolts of one ADC code at the ±10 V range.
inline constexpr double kMillivoltsPerCode = 1.25;

// Sensor types, the index into SensorTypeList.
namespace sensor {
enum Type : int32_t {
  Runout = 0,        // "Биение"
  Vibration = 1,     // "Вибрация"
  Strain = 2,        // "Тензометрия"
  ShaftMarker = 3,   // "Отметчик"
  TurnProbe = 4,     // "Виток"
  Voltage = 5,       // "Напряжение"
  Pressure = 6,      // "Давление"
  Temperature = 7,   // "Температура"
  Displacement = 8,  // "Перемещение"
  Power = 9,         // "Мощность"
};
inline constexpr int kTypeCount = 10;
}  // namespace sensor

// A marker channel reads in plain codes, whatever its file holds.
inline constexpr float kShaftMarkerKu = static_cast<float>(kMillivoltsPerCode);

// The sensor factor as a divisor: 1 where it is 0 or no number.
inline double SafeKu(float ku) { return std::isfinite(ku) && ku != 0.0f ? ku : 1.0; }

// Gain of input range `volume` 0..3: 4^volume.
inline double RangeGain(int volume) { return std::pow(4.0, std::clamp(volume, 0, 3)); }

// A span of codes in the channel's base unit, no zero taken off: the
// clearance KS, a shaft's offset, a peak.
inline double CodesToUnits(const ChannelSetup& ch, int c, double codes) {
  return codes * kMillivoltsPerCode / SafeKu(ch.Ku[c]);
}

// The reading of `codes` (above the offset, if any) as the readouts show it:
// (codes × 1.25 - 4^Volume × Zero) / Ku, not divided by the gain.
inline double ChannelReading(const ChannelSetup& ch, int c, double codes) {
  return (codes * kMillivoltsPerCode - RangeGain(ch.Volume[c]) * ch.Zero[c]) / SafeKu(ch.Ku[c]);
}

// The shaft's begin point is shown for a run-out channel whose constant part
// is neither filtered out nor taken as the offset.
inline bool BeginPointApplies(int32_t type, bool statusFilterConst, bool accountOffset) {
  return type == sensor::Runout && !statusFilterConst && !accountOffset;
}

// Where a code of a channel lands in the signal view:
// y = round(base - (value - zero) × k), base and zero rounded first.
struct CodeOrdinate {
  double base = 0.0;  // the zero line moved by the offset
  double zero = 0.0;  // 4^Volume × Zero, rounded
  double k = 0.0;     // pixels per millivolt
  int y(double millivolts) const { return static_cast<int>(std::nearbyint(base - (millivolts - zero) * k)); }
};
inline CodeOrdinate ChannelOrdinate(const ChannelSetup& ch, int c, double pixelsPerUnit, int zeroLinePx,
                                    int offsetCodes) {
  CodeOrdinate o;
  o.k = pixelsPerUnit / SafeKu(ch.Ku[c]);
  o.base = std::nearbyint(offsetCodes * kMillivoltsPerCode * o.k + zeroLinePx);
  o.zero = std::nearbyint(RangeGain(ch.Volume[c]) * ch.Zero[c]);
  return o;
}

}  // namespace aqx
