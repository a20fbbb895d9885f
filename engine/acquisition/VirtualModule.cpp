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
    : SimulatedModule(settings, lines), model_(settings) {}

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
  beginRun();
  triggerSeconds_ = parameters_.inputMode == kInputNoSync ? 0.0 : -1.0;
  scanRow_ = 0;
  return true;
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
  if (!runningNow()) return false;
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

std::string VirtualModule::backendText() const {
  char text[160];
  std::snprintf(text, sizeof text, "Виртуальный модуль: агрегат %.1f об/мин, %d полюсов, %d лопастей",
                settings_.rpm, settings_.poles, settings_.blades);
  return text;
}

}  // namespace aqx::acq
