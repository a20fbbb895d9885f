#pragma once
// The signals of a running hydro unit as a pure function of time: the
// virtual module samples it. Everything is computed from the time of the
// sample and its number, so that the same settings give the same codes
// however the rows are fetched.

#include "engine/acquisition/ModuleSettings.h"

#include <array>
#include <cstdint>
#include <vector>

namespace aqx::acq {

class HydroUnitModel {
 public:
  explicit HydroUnitModel(const ModuleSettings& settings);

  // Revolutions of the shaft since t = 0, with the slow speed wander.
  double shaftTurns(double seconds) const;
  // Time of the start of revolution `turn` (shaftTurns == turn), turn >= 0.
  double turnStartSeconds(double turn) const;

  // Code of physical input `channel` (0-based) at `range` for the sample
  // taken at `seconds`; `row` is the row number since the start of the run,
  // `sampleIndex` a number unique to the sample (it seeds the noise).
  int16_t code(int channel, int range, bool differential, double seconds, int64_t row,
               uint64_t sampleIndex) const;
  // The same before quantisation, in millivolts at the input.
  double millivolts(int channel, bool differential, double seconds, uint64_t sampleIndex) const;

  // Relative deviation of pole `pole` (0-based) of the turn probe.
  double poleDeviation(int pole) const { return poleDeviation_.at(static_cast<size_t>(pole)); }

 private:
  double gaussian(uint64_t key) const;

  ModuleSettings settings_;
  double rotationHz_;
  std::vector<double> poleDeviation_;
  std::array<int, kScenarioChannels> runOutOrder_{};
  std::array<int, kScenarioChannels> vibrationOrder_{};
};

}  // namespace aqx::acq
