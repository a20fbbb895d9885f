#pragma once
// The shaft marker pulse detector behind Otmetchick, shared with the rotor
// form, which finds its revolutions itself.

#include "engine/EngineCommon.h"

#include <vector>

namespace aqx::engine {

struct MarkerSettings {
  bool automatic = true;
  int32_t level = 0;       // code level
  bool rising = true;      // a mark where the signal rises to the level
  int32_t hysteresis = 0;  // codes the signal must come back past the level
  int32_t deadSamples = 0; // no further mark this many samples after one
};

struct MarkerResult {
  std::vector<int32_t> marks;     // rows (from 1) of the first sample at the level
  std::vector<double> crossings;  // the same instants interpolated between samples
  int32_t level = 0;              // level and direction in force
  bool rising = true;
};

// Finds the pulses of one column inside the stretch, at most `maxMarks`. In
// automatic mode the level and direction come from the signal and the
// hysteresis is at least a quarter of the pulse height.
MarkerResult DetectMarks(const int16_t* signalData, int32_t column, Stretch rows,
                         MarkerSettings settings, int32_t maxMarks);

}  // namespace aqx::engine
