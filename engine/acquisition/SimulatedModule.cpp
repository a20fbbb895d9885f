#include "engine/acquisition/SimulatedModule.h"

namespace aqx::acq {

SimulatedModule::SimulatedModule(const ModuleSettings& settings, VirtualLines& lines)
    : settings_(settings), lines_(lines) {
  parameters_.table.push_back({});
}

bool SimulatedModule::readName(std::string& name) {
  name = settings_.moduleName;
  return true;
}

bool SimulatedModule::readUsbSpeed(int& highSpeed) {
  highSpeed = 0;  // the E14-140 is a full-speed device
  return true;
}

bool SimulatedModule::readParameters(AdcParameters& parameters) {
  parameters = parameters_;
  return true;
}

void SimulatedModule::beginRun() {
  std::lock_guard lock(mutex_);
  running_ = true;
  cancelled_ = false;
  startTime_ = Clock::now();
  rowsDelivered_ = 0;
}

bool SimulatedModule::stop() {
  std::lock_guard lock(mutex_);
  running_ = false;
  wake_.notify_all();
  return true;
}

bool SimulatedModule::cancelRequests() {
  std::lock_guard lock(mutex_);
  cancelled_ = true;
  wake_.notify_all();
  return true;
}

bool SimulatedModule::waitUntil(Clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  wake_.wait_until(lock, deadline, [&] { return !running_ || cancelled_; });
  return running_ && !cancelled_;
}

bool SimulatedModule::runningNow() {
  std::lock_guard lock(mutex_);
  return running_ && !cancelled_;
}

SimulatedModule::Clock::time_point SimulatedModule::realTime(double runSeconds) const {
  return startTime_ + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(runSeconds));
}

bool SimulatedModule::enableTtlOut(bool enable) {
  std::lock_guard lock(lines_.mutex);
  lines_.outputsEnabled = enable;
  return true;
}

bool SimulatedModule::ttlIn(uint16_t& state) {
  std::lock_guard lock(lines_.mutex);
  state = lines_.outputsEnabled ? lines_.outputs : settings_.ttlIn;
  return true;
}

bool SimulatedModule::ttlOut(uint16_t state) {
  std::lock_guard lock(lines_.mutex);
  lines_.outputs = state;
  return true;
}

}  // namespace aqx::acq
