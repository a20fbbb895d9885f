#pragma once
// The built-in virtual module: keeps the rules of the E14-140 (8 MHz clock
// over a divider, 14-bit codes, four ranges, 32 single-ended or 16
// differential inputs, synchronisation, 16 digital lines) and delivers, in
// real time, the signals of a running hydro unit.

#include "engine/acquisition/HydroUnitModel.h"
#include "engine/acquisition/SimulatedModule.h"

namespace aqx::acq {

class VirtualModule : public SimulatedModule {
 public:
  VirtualModule(const ModuleSettings& settings, VirtualLines& lines);

  bool openDevice() override { return true; }
  bool readDescription(ModuleDescription& description) override;
  bool writeParameters(AdcParameters& parameters) override;
  bool start() override;
  bool readRows(int16_t* codes, int rows) override;
  bool release() override { return true; }
  std::string backendText() const override;

 private:
  // Finds the data time of the first row; false when stopped or cancelled.
  bool waitForTrigger();
  bool analogConditionMet(int16_t previous, int16_t current) const;

  HydroUnitModel model_;

  // Touched only by the thread that reads rows.
  double triggerSeconds_ = -1.0;
  int64_t scanRow_ = 0;
  int16_t scanPrevious_ = 0;
};

}  // namespace aqx::acq
