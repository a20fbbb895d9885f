#pragma once
// The built-in virtual module: keeps the rules of the E14-140 (8 MHz clock
// over a divider, 14-bit codes, four ranges, 32 single-ended or 16
// differential inputs, synchronisation, 16 digital lines) and delivers, in
// real time, the signals of a running hydro unit.

#include "engine/acquisition/AcquisitionModule.h"
#include "engine/acquisition/HydroUnitModel.h"
#include "engine/acquisition/ModuleSettings.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace aqx::acq {

// The output lines: they hold between calls, as on a real module, so the
// library keeps them and lends them to each module it opens.
struct VirtualLines {
  std::mutex mutex;
  bool outputsEnabled = false;
  uint16_t outputs = 0;
};

class VirtualModule : public AcquisitionModule {
 public:
  VirtualModule(const ModuleSettings& settings, VirtualLines& lines);

  bool checkDriverVersion() override { return true; }
  bool createInterface() override { return true; }
  bool openDevice() override { return true; }
  bool readDeviceHandle() override { return true; }
  bool readName(std::string& name) override;
  bool readUsbSpeed(int& highSpeed) override;
  bool readDescription(ModuleDescription& description) override;
  bool readParameters(AdcParameters& parameters) override;
  bool writeParameters(AdcParameters& parameters) override;
  bool start() override;
  bool readRows(int16_t* codes, int rows) override;
  bool stop() override;
  bool cancelRequests() override;
  bool release() override { return true; }
  bool enableTtlOut(bool enable) override;
  bool ttlIn(uint16_t& state) override;
  bool ttlOut(uint16_t state) override;
  std::string backendText() const override;

 private:
  using Clock = std::chrono::steady_clock;
  // Waits until the deadline; false when stopped or cancelled first.
  bool waitUntil(Clock::time_point deadline);
  // Finds the data time of the first row; false when stopped or cancelled.
  bool waitForTrigger();
  bool analogConditionMet(int16_t previous, int16_t current) const;
  Clock::time_point realTime(double moduleSeconds) const;

  ModuleSettings settings_;
  HydroUnitModel model_;
  VirtualLines& lines_;
  AdcParameters parameters_;

  std::mutex mutex_;
  std::condition_variable wake_;
  bool running_ = false;
  bool cancelled_ = false;
  Clock::time_point startTime_{};

  // Touched only by the thread that reads rows.
  int64_t rowsDelivered_ = 0;
  double triggerSeconds_ = -1.0;
  int64_t scanRow_ = 0;
  int16_t scanPrevious_ = 0;
};

}  // namespace aqx::acq
