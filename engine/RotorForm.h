#pragma once
// The rotor form, typed: the computation behind FormaRotorAccount.

#include "engine/Aquilonix.h"
#include "engine/EngineApi.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace aqx::engine {

struct RotorFormRequest {
  int32_t turnColumn = 0;    // 0..31, the turn probe's EMF
  int32_t markerColumn = 0;  // 0..31, the shaft marker
  int32_t rows = 0;          // rows 1..rows of the store
  double sampleHz = 0.0;
  int32_t poles = 0;         // taken when the EMF does not tell the number
};

// One form: pole values for poles 1..P at 0..P-1, harmonics 1..9 at 1..9.
struct RotorFormValues {
  double speedRpm = 0.0;
  double rms = 0.0;
  double distortion = 0.0;
  std::vector<double> poleRms;
  std::vector<double> polePercent;
  std::array<double, AQX_FORMA_HARMONICS> harmonicAmplitude{};
  std::array<double, AQX_FORMA_HARMONICS> harmonicPhase{};
};

struct RotorFormResult {
  int32_t status = 0;  // 0 or one of AQX_FORMA_*
  int32_t poles = 0;
  std::vector<RotorFormValues> forms;  // [0] the average, then one per revolution
  std::vector<double> poleMin;         // over the single forms, pole p at p-1
  std::vector<double> poleMax;
  double largestHarmonic = 0.0;
};

// At most AQX_FORMA_FORMS - 1 revolutions are used. A store shorter than
// `rows` rows, or a column outside 0..31, gives AQX_FORMA_BAD_ARGUMENTS.
AQX_TYPED_API RotorFormResult ComputeRotorForm(std::span<const int16_t> store,
                                               const RotorFormRequest& request);

}  // namespace aqx::engine
