#pragma once
// What the built-in virtual module and the replay of a file share: the
// steps of bringing a module up that have nothing to do, a run that waits on
// the clock until stopped or cancelled, and the sixteen digital lines.

#include "engine/acquisition/AcquisitionModule.h"
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

class SimulatedModule : public AcquisitionModule {
 public:
  SimulatedModule(const ModuleSettings& settings, VirtualLines& lines);

  bool checkDriverVersion() override { return true; }
  bool createInterface() override { return true; }
  bool readDeviceHandle() override { return true; }
  bool readName(std::string& name) override;
  bool readUsbSpeed(int& highSpeed) override;
  bool readParameters(AdcParameters& parameters) override;
  bool stop() override;
  bool cancelRequests() override;

  // A loop-back plug: with the outputs driven, the inputs read them;
  // otherwise they read the level the settings give.
  bool enableTtlOut(bool enable) override;
  bool ttlIn(uint16_t& state) override;
  bool ttlOut(uint16_t state) override;

 protected:
  using Clock = std::chrono::steady_clock;
  // Marks the run started now, with no rows delivered.
  void beginRun();
  // Waits until the deadline; false when stopped or cancelled first.
  bool waitUntil(Clock::time_point deadline);
  bool runningNow();
  // The real time of an instant of the run.
  Clock::time_point realTime(double runSeconds) const;

  ModuleSettings settings_;
  AdcParameters parameters_;
  Clock::time_point startTime_{};
  // Touched only by the thread that reads rows.
  int64_t rowsDelivered_ = 0;

 private:
  VirtualLines& lines_;
  std::mutex mutex_;
  std::condition_variable wake_;
  bool running_ = false;
  bool cancelled_ = false;
};

}  // namespace aqx::acq
