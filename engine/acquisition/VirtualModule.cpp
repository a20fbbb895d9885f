#include "engine/acquisition/VirtualModule.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace aqx::acq {

namespace {
constexpr auto kScanStep = std::chrono::milliseconds(10);
// The first conversion after an edge on the INT line.
constexpr double kEdgeDelaySeconds = 1e-7;
}

VirtualModule::VirtualModule(const ModuleSettings& settings, VirtualLines& lines)
    : settings_(settings), model_(settings), lines_(lines) {
  parameters_.table.push_back({});
}

bool VirtualModule::readName(std::string& name) {
  name = settings_.moduleName;
  return true;
}

bool VirtualModule::readUsbSpeed(int& highSpeed) {
  highSpeed = 0;  // the E14-140 is a full-speed device
  return true;
}

bool VirtualModule::readDescription(ModuleDescription& d) {
  d.name = settings_.moduleName;
  d.serialNumber = settings_.serialNumber;
  d.biosVersion = "3.05";
  d.revision = 'A';
  d.clockHz = kModuleClockHz;
  for (int r = 0; r < kRangeCount; ++r) {
    d.offsetCodes[r] = 0.0;
    d.scale[r] = 1.0;
  }
  return true;
}

bool VirtualModule::readParameters(AdcParameters& parameters) {
  parameters = parameters_;
  return true;
}

bool VirtualModule::writeParameters(AdcParameters& p) {
  if (p.table.empty() || p.table.size() > static_cast<size_t>(kSingleEndedChannels)) return false;
  for (const AdcChannelEntry& e : p.table) {
    const int limit = e.differential ? kDifferentialChannels : kSingleEndedChannels;
    if (e.channel < 0 || e.channel >= limit || e.range < 0 || e.range >= kRangeCount) return false;
  }
  if (p.inputMode < kInputNoSync || p.inputMode > kInputAnalogStart) return false;
  p.clockDivider = std::clamp(p.clockDivider, kMinClockDivider, kMaxClockDivider);
  p.synchroAdChannel = std::clamp(p.synchroAdChannel, 0, kSingleEndedChannels - 1);
  parameters_ = p;
  return true;
}

bool VirtualModule::start() {
  {
    std::lock_guard lock(mutex_);
    running_ = true;
    cancelled_ = false;
    startTime_ = Clock::now();
  }
  rowsDelivered_ = 0;
  triggerSeconds_ = parameters_.inputMode == kInputNoSync ? 0.0 : -1.0;
  scanRow_ = 0;
  return true;
}

bool VirtualModule::stop() {
  std::lock_guard lock(mutex_);
  running_ = false;
  wake_.notify_all();
  return true;
}

bool VirtualModule::cancelRequests() {
  std::lock_guard lock(mutex_);
  cancelled_ = true;
  wake_.notify_all();
  return true;
}

VirtualModule::Clock::time_point VirtualModule::realTime(double moduleSeconds) const {
  return startTime_ + std::chrono::duration_cast<Clock::duration>(
                          std::chrono::duration<double>(moduleSeconds));
}

bool VirtualModule::waitUntil(Clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  wake_.wait_until(lock, deadline, [&] { return !running_ || cancelled_; });
  return running_ && !cancelled_;
}

bool VirtualModule::analogConditionMet(int16_t previous, int16_t current) const {
  const int porog = parameters_.synchroAdPorog;
  if (parameters_.synchroAdType == 0)
    return parameters_.synchroAdMode == 0 ? current > porog : current < porog;
  return parameters_.synchroAdMode == 0 ? (previous <= porog && current > porog)
                                        : (previous >= porog && current < porog);
}

bool VirtualModule::waitForTrigger() {
  const double totalRate = TotalRateFor(parameters_.clockDivider);
  const double rowRate = totalRate / static_cast<double>(parameters_.table.size());
  if (parameters_.inputMode == kInputDigitalStart) {
    // The INT line carries the shaft marker: the run starts at the next
    // revolution.
    triggerSeconds_ = model_.turnStartSeconds(1.0) + kEdgeDelaySeconds;
    return true;
  }
  // Analogue start: watch the chosen input at the row rate until the
  // condition holds.
  const int channel = parameters_.synchroAdChannel;
  int range = 0;
  const bool differential = parameters_.table.front().differential;
  for (const AdcChannelEntry& e : parameters_.table)
    if (e.channel == channel) range = e.range;
  for (;;) {
    const double elapsed = std::chrono::duration<double>(Clock::now() - startTime_).count();
    const auto reached = static_cast<int64_t>(elapsed * rowRate);
    for (; scanRow_ < reached; ++scanRow_) {
      const double t = static_cast<double>(scanRow_) / rowRate;
      const int16_t current =
          model_.code(channel, range, differential, t, scanRow_, static_cast<uint64_t>(scanRow_) * 64u + 63u);
      const bool met = analogConditionMet(scanPrevious_, current) &&
                       (parameters_.synchroAdType == 0 || scanRow_ > 0);
      scanPrevious_ = current;
      if (met) {
        triggerSeconds_ = t;
        return true;
      }
    }
    if (!waitUntil(Clock::now() + kScanStep)) return false;
  }
}

bool VirtualModule::readRows(int16_t* codes, int rows) {
  if (rows <= 0) return true;
  {
    std::lock_guard lock(mutex_);
    if (!running_ || cancelled_) return false;
  }
  const size_t width = parameters_.table.size();
  const double totalRate = TotalRateFor(parameters_.clockDivider);
  const double rowRate = totalRate / static_cast<double>(width);
  const bool perFrame = parameters_.inputMode == kInputDigitalFrame;
  if (!perFrame && triggerSeconds_ < 0.0 && !waitForTrigger()) return false;

  const auto rowTime = [&](int64_t row) {
    return perFrame ? model_.turnStartSeconds(static_cast<double>(row + 1)) + kEdgeDelaySeconds
                    : triggerSeconds_ + static_cast<double>(row) / rowRate;
  };
  const int64_t last = rowsDelivered_ + rows - 1;
  // A row is there once its last channel has been converted.
  const double lastReady = rowTime(last) + static_cast<double>(width) / totalRate;
  if (!waitUntil(realTime(lastReady))) return false;

  for (int r = 0; r < rows; ++r) {
    const int64_t row = rowsDelivered_ + r;
    const double t0 = rowTime(row);
    for (size_t j = 0; j < width; ++j) {
      const AdcChannelEntry& e = parameters_.table[j];
      const double t = t0 + static_cast<double>(j) / totalRate;
      codes[static_cast<size_t>(r) * width + j] =
          model_.code(e.channel, e.range, e.differential, t, row,
                      static_cast<uint64_t>(row) * 64u + static_cast<uint64_t>(e.channel));
    }
  }
  rowsDelivered_ += rows;
  return true;
}

bool VirtualModule::enableTtlOut(bool enable) {
  std::lock_guard lock(lines_.mutex);
  lines_.outputsEnabled = enable;
  return true;
}

bool VirtualModule::ttlIn(uint16_t& state) {
  // A loop-back plug: with the outputs driven, the inputs read them.
  std::lock_guard lock(lines_.mutex);
  state = lines_.outputsEnabled ? lines_.outputs : settings_.ttlIn;
  return true;
}

bool VirtualModule::ttlOut(uint16_t state) {
  std::lock_guard lock(lines_.mutex);
  lines_.outputs = state;
  return true;
}

std::string VirtualModule::backendText() const {
  char text[160];
  std::snprintf(text, sizeof text, "Виртуальный модуль: агрегат %.1f об/мин, %d полюсов, %d лопастей",
                settings_.rpm, settings_.poles, settings_.blades);
  return text;
}

}  // namespace aqx::acq
