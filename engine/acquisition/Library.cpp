#include "engine/acquisition/Library.h"

#include "engine/acquisition/AcquisitionRun.h"
#include "engine/acquisition/ReplayModule.h"

#include <algorithm>
#include <utility>
#include <cstring>

namespace aqx::acq {

namespace {

// The library's one state, for the life of the process.
LibraryState gLibrary;

std::unique_ptr<AcquisitionModule> CreateModule(const ModuleSettings& settings, VirtualLines& lines) {
  if (settings.backend == "replay") return std::make_unique<ReplayModule>(settings, lines);
  return std::make_unique<VirtualModule>(settings, lines);
}

}  // namespace

LibraryState& Library() { return gLibrary; }

int32_t OpenModule(const ModuleSettings& settings, VirtualLines& lines, OpenedModule& out) {
  out.faults = FaultPlan::From(settings);
  out.module = CreateModule(settings, lines);
  AcquisitionModule& m = *out.module;
  const FaultPlan& f = out.faults;
  const auto failed = [&](bool ok, int number) { return !ok || f.at(number); };

  int32_t result = kOk;
  std::string name;
  if (failed(m.checkDriverVersion(), kErrDllVersion)) result = kErrDllVersion;
  else if (failed(m.createInterface(), kErrCreateInstance)) result = kErrCreateInstance;
  else if (failed(m.openDevice(), kErrOpenDevice)) result = kErrOpenDevice;
  else if (failed(m.readDeviceHandle(), kErrModuleHandle)) result = kErrModuleHandle;
  else if (failed(m.readName(name), kErrModuleName)) result = kErrModuleName;
  else if (name != kModuleName || f.at(kErrNotE140)) result = kErrNotE140;
  else if (failed(m.readUsbSpeed(out.highSpeed), kErrUsbSpeed)) result = kErrUsbSpeed;
  else if (failed(m.readDescription(out.description), kErrDescription)) result = kErrDescription;
  if (result != kOk) {
    m.release();
    out.module.reset();
  }
  return result;
}

int32_t ConfigureModule(OpenedModule& m, AdcParameters& wanted) {
  AdcParameters current;
  if (!m.module->readParameters(current) || m.faults.at(kErrGetAdcPars)) return kErrGetAdcPars;
  if (!m.module->writeParameters(wanted) || m.faults.at(kErrSetAdcPars)) return kErrSetAdcPars;
  return kOk;
}

AdcParameters RunParameters(std::vector<AdcChannelEntry> table, int clockDivider, int32_t inputMode,
                            int32_t synchroAdType, int32_t synchroAdMode, int32_t synchroAdChannel,
                            int32_t synchroAdPorog) {
  AdcParameters p;
  p.table = std::move(table);
  p.clockDivider = clockDivider;
  p.inputMode = inputMode;
  p.synchroAdType = synchroAdType;
  p.synchroAdMode = synchroAdMode;
  p.synchroAdChannel = std::clamp(synchroAdChannel, 1, kSingleEndedChannels) - 1;
  p.synchroAdPorog = synchroAdPorog;
  return p;
}

int32_t ReleaseModule(OpenedModule& m) {
  if (!m.module) return kOk;
  const bool ok = m.module->release();
  m.module.reset();
  return ok && !m.faults.at(kErrRelease) ? kOk : kErrRelease;
}

void FillModuleText(const OpenedModule& m, char* moduleText) {
  if (!moduleText) return;
  std::string text = m.description.name + " " + m.description.serialNumber;
  text.resize(std::min<size_t>(text.size(), 16));
  std::memset(moduleText, 0, 17);
  std::memcpy(moduleText, text.data(), text.size());
}

ChannelPlan PlanChannels(int32_t usedCount, const int32_t* Channel, const int32_t* Volume,
                         int32_t differential) {
  ChannelPlan plan;
  const int count = differential == 1 ? kDifferentialChannels : kSingleEndedChannels;
  for (int c = 0; c < count && Channel && static_cast<int>(plan.table.size()) < usedCount; ++c) {
    if (Channel[c] != 1) continue;
    const int range = Volume ? std::clamp(Volume[c], 0, kRangeCount - 1) : 0;
    plan.table.push_back({c, range, differential == 1});
    plan.columns.push_back(c);
  }
  return plan;
}

namespace {
// Channels side by side from the first one on: a row moves in one piece.
bool Contiguous(const std::vector<int>& columns) {
  for (size_t j = 1; j < columns.size(); ++j)
    if (columns[j] != columns[0] + static_cast<int>(j)) return false;
  return !columns.empty();
}
}  // namespace

void SpreadRows(const int16_t* rows, int64_t count, const std::vector<int>& columns,
                int16_t* SignalData, int64_t firstRow) {
  const size_t width = columns.size();
  if (Contiguous(columns)) {
    for (int64_t r = 0; r < count; ++r)
      std::memcpy(SignalData + (firstRow + r) * 32 + columns[0], rows + r * static_cast<int64_t>(width),
                  width * sizeof(int16_t));
    return;
  }
  for (int64_t r = 0; r < count; ++r) {
    int16_t* dst = SignalData + (firstRow + r) * 32;
    const int16_t* src = rows + r * static_cast<int64_t>(width);
    for (size_t j = 0; j < width; ++j) dst[columns[j]] = src[j];
  }
}

void ClearRows(const std::vector<int>& columns, int16_t* SignalData, int64_t first, int64_t end) {
  if (Contiguous(columns)) {
    for (int64_t r = first; r < end; ++r)
      std::memset(SignalData + r * 32 + columns[0], 0, columns.size() * sizeof(int16_t));
    return;
  }
  for (int64_t r = first; r < end; ++r) {
    int16_t* dst = SignalData + r * 32;
    for (int c : columns) dst[c] = 0;
  }
}

}  // namespace aqx::acq
