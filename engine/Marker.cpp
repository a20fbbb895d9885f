// The shaft marker detector and Otmetchick.

#include "engine/MarkerDetect.h"
#include "engine/Parallel.h"

#include <vector>

namespace aqx::engine {
namespace {

// A signal whose pulses stand fewer codes above its rest is taken as flat.
constexpr int32_t kLeastPulseHeight = 8;

struct Levels {
  int32_t least = 0;
  int32_t median = 0;
  int32_t greatest = 0;
};

Levels LevelsOf(const std::vector<int16_t>& codes) {
  std::vector<int32_t> histogram(65536, 0);
  for (int16_t code : codes) ++histogram[static_cast<size_t>(code + 32768)];
  Levels l;
  const int32_t half = static_cast<int32_t>(codes.size()) / 2;
  int32_t seen = 0;
  bool medianFound = false;
  bool leastFound = false;
  for (int32_t v = 0; v < 65536; ++v) {
    if (histogram[static_cast<size_t>(v)] == 0) continue;
    if (!leastFound) {
      l.least = v - 32768;
      leastFound = true;
    }
    seen += histogram[static_cast<size_t>(v)];
    if (!medianFound && seen > half) {
      l.median = v - 32768;
      medianFound = true;
    }
    l.greatest = v - 32768;
  }
  return l;
}

}  // namespace

MarkerResult DetectMarks(const int16_t* signalData, int32_t column, Stretch rows,
                         MarkerSettings settings, int32_t maxMarks) {
  MarkerResult result;
  result.level = settings.level;
  result.rising = settings.rising;
  if (rows.count() < 2) return result;

  // The column once out of the store, for both passes.
  std::vector<int16_t> codes(static_cast<size_t>(rows.count()));
  ReadColumn(signalData, rows.first, column, rows.count(), codes.data());
  int32_t hysteresis = std::max(settings.hysteresis, 0);
  if (settings.automatic) {
    const Levels l = LevelsOf(codes);
    const int32_t up = l.greatest - l.median;
    const int32_t down = l.median - l.least;
    result.rising = up >= down;
    const int32_t height = std::max(up, down);
    const int32_t extreme = result.rising ? l.greatest : l.least;
    result.level = RoundToInt32((static_cast<double>(l.median) + extreme) / 2.0);
    if (height < kLeastPulseHeight) return result;
    hysteresis = std::max(hysteresis, height / 4);
  }
  const double level = result.level;
  // Looked at from the pulse's side: positive means "into the pulse".
  const double sign = result.rising ? 1.0 : -1.0;
  auto depth = [&](int32_t row) { return sign * (codes[static_cast<size_t>(row - rows.first)] - level); };

  const int64_t dead = std::max(settings.deadSamples, 0);
  bool armed = depth(rows.first) < 0.0;
  int64_t lastMark = std::numeric_limits<int32_t>::min();
  for (int32_t row = rows.first + 1; row <= rows.last; ++row) {
    const double d = depth(row);
    if (!armed) {
      if (d < -static_cast<double>(hysteresis) || (hysteresis == 0 && d < 0.0)) armed = true;
      continue;
    }
    if (d < 0.0) continue;
    armed = false;
    // A bounce inside the dead time disarms like a mark, so the end of a long
    // pulse cannot be taken for a new one.
    if (static_cast<int64_t>(row) - lastMark <= dead) continue;
    const double before = depth(row - 1);
    const double fraction = (d - before) > 0.0 ? -before / (d - before) : 1.0;
    result.marks.push_back(row);
    result.crossings.push_back(row - 1 + std::clamp(fraction, 0.0, 1.0));
    lastMark = row;
    if (static_cast<int32_t>(result.marks.size()) >= maxMarks) break;
  }
  return result;
}

}  // namespace aqx::engine

using namespace aqx::engine;

extern "C" int32_t Otmetchick(const int16_t* SignalData, int32_t SignalDataN,
                              const int32_t* Channel, const int32_t* Type,
                              int32_t* ShaftMarkCount, int32_t* ShaftMarks, int32_t FreqDesc,
                              double FreqRotorN, double* RotorSpeedMin, double* RotorSpeedMax,
                              int32_t* RotorPercentMin, int32_t* RotorPercentMax,
                              int32_t OtmetchickAuto, int32_t* OtmetchickLevel,
                              int32_t* OtmetchickDirect, int32_t ViewFirst, int32_t ViewLast,
                              int32_t SelectFirst, int32_t SelectLast, int32_t OtmetchickDrebezg,
                              int32_t OtmetchickNoise) {
  if (ShaftMarkCount) *ShaftMarkCount = 0;
  if (RotorSpeedMin) *RotorSpeedMin = 0.0;
  if (RotorSpeedMax) *RotorSpeedMax = 0.0;
  if (RotorPercentMin) *RotorPercentMin = 0;
  if (RotorPercentMax) *RotorPercentMax = 0;
  if (SignalData == nullptr) return 0;
  const int32_t column = FirstChannelOfType(Channel, Type, kTypeMarker);
  if (column < 0) return 0;

  const int32_t rowCount = ClampSampleCount(SignalDataN);
  Stretch rows = ClampStretch(ViewFirst, ViewLast, rowCount);
  if (SelectFirst > 0 && SelectLast > SelectFirst) {
    rows.first = std::max(rows.first, SelectFirst);
    rows.last = std::min(rows.last, SelectLast);
  }

  MarkerSettings settings;
  settings.automatic = OtmetchickAuto == 1;
  settings.level = OtmetchickLevel ? *OtmetchickLevel : 0;
  settings.rising = OtmetchickDirect ? *OtmetchickDirect == 1 : true;
  settings.hysteresis = OtmetchickNoise;
  double dead = std::max(OtmetchickDrebezg, 0);
  if (FreqRotorN > 0.0 && FreqDesc > 0 && std::isfinite(FreqRotorN)) {
    // A once-per-revolution pulse cannot come again within a quarter of the
    // rated revolution unless the shaft runs at four times its speed.
    dead = std::max(dead, 15.0 * FreqDesc / FreqRotorN);
  }
  settings.deadSamples = static_cast<int32_t>(std::min(dead, static_cast<double>(kRows)));

  const MarkerResult found = DetectMarks(SignalData, column, rows, settings, kMaxMarks);
  if (settings.automatic) {
    if (OtmetchickLevel) *OtmetchickLevel = found.level;
    if (OtmetchickDirect) *OtmetchickDirect = found.rising ? 1 : 0;
  }
  const int32_t count = static_cast<int32_t>(found.marks.size());
  if (ShaftMarkCount) *ShaftMarkCount = count;
  if (ShaftMarks) std::copy(found.marks.begin(), found.marks.end(), ShaftMarks);
  if (count < 2 || FreqDesc <= 0) return 0;

  double slowest = std::numeric_limits<double>::max();
  double fastest = 0.0;
  for (size_t i = 1; i < found.crossings.size(); ++i) {
    const double interval = found.crossings[i] - found.crossings[i - 1];
    if (!(interval > 0.0)) continue;
    const double rpm = 60.0 * FreqDesc / interval;
    slowest = std::min(slowest, rpm);
    fastest = std::max(fastest, rpm);
  }
  if (fastest <= 0.0) return 0;
  if (RotorSpeedMin) *RotorSpeedMin = slowest;
  if (RotorSpeedMax) *RotorSpeedMax = fastest;
  if (FreqRotorN > 0.0 && std::isfinite(FreqRotorN)) {
    if (RotorPercentMin) *RotorPercentMin = RoundToInt32(slowest / FreqRotorN * 100.0);
    if (RotorPercentMax) *RotorPercentMax = RoundToInt32(fastest / FreqRotorN * 100.0);
  }
  return 0;
}
