// The cyclic run, the channel means outside a run, the module information
// and the digital lines, as the plain functions of the library.

#include "engine/Aquilonix.h"
#include "engine/acquisition/AcquisitionRun.h"
#include "engine/acquisition/EngineText.h"
#include "engine/acquisition/Library.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

using namespace aqx::acq;

namespace {

constexpr int64_t kMaxRows = AQX_SIGNAL_ROWS;

void RememberLists(LibraryState& lib, const int32_t* Channel, const int32_t* Volume, int32_t differential) {
  for (int c = 0; c < kSingleEndedChannels; ++c) {
    lib.channelOn[static_cast<size_t>(c)] = Channel ? Channel[c] : 0;
    lib.channelVolume[static_cast<size_t>(c)] = Volume ? Volume[c] : 0;
  }
  lib.differential = differential;
  lib.listsKnown = true;
}

// Opens the module for a short service call, runs it, releases the module.
template <class Call>
int32_t WithModule(int32_t failureNumber, Call&& call) {
  LibraryState& lib = Library();
  const ModuleSettings settings = LoadModuleSettings();
  OpenedModule m;
  int32_t result = OpenModule(settings, lib.lines, m);
  if (result != kOk) return result;
  if (!call(m) || m.faults.at(failureNumber)) result = failureNumber;
  const int32_t released = ReleaseModule(m);
  return result != kOk ? result : released;
}

}  // namespace

extern "C" int32_t StartPotok(int32_t ChannelUsedCount, const int32_t* Channel, const int32_t* Volume,
                              int32_t SignalDataN, int32_t* FreqDescR, int32_t BufferLength,
                              int32_t InputMode, int32_t SynchroAdType, int32_t SynchroAdMode,
                              int32_t SynchroAdChannel, int32_t SynchroAdPorog, char* ModuleText,
                              int32_t ChannelDifferential) {
  LibraryState& lib = Library();
  std::lock_guard lock(lib.mutex);
  if (lib.cyclic || lib.recording) return kErrThread;
  const ModuleSettings settings = LoadModuleSettings();
  const FaultPlan faults = FaultPlan::From(settings);
  ChannelPlan plan = PlanChannels(ChannelUsedCount, Channel, Volume, ChannelDifferential);
  const double width = static_cast<double>(std::max<size_t>(plan.table.size(), 1));
  const double wantedRowRate = FreqDescR ? *FreqDescR : 0.0;
  if (wantedRowRate * width > kMaxTotalRateHz || faults.at(kErrFrequency)) return kErrFrequency;

  OpenedModule m;
  int32_t result = OpenModule(settings, lib.lines, m);
  if (result != kOk) return result;
  AdcParameters p = RunParameters(plan.table, ClockDividerFor(wantedRowRate * width), InputMode, SynchroAdType, SynchroAdMode,
                                  SynchroAdChannel, SynchroAdPorog);
  result = ConfigureModule(m, p);
  if (result == kOk && SignalDataN <= 0) result = kErrSignalDataDll;
  if (result != kOk) {
    ReleaseModule(m);
    return result;
  }
  const double rowRate = TotalRateFor(p.clockDivider) / width;
  AcquisitionRun::Config config;
  config.viewRows = std::min<int64_t>(SignalDataN, kMaxRows);
  config.rowsPerTransfer = std::clamp<int64_t>(
      std::max<int64_t>(BufferLength, static_cast<int64_t>(std::ceil(rowRate / 1000.0))), 1, kMaxRows);
  // Room for a cycle, the transfer on its way and a quarter second more, so
  // that the thread never waits for a poll that is copying.
  config.ringRows = config.viewRows + 2 * config.rowsPerTransfer + static_cast<int64_t>(rowRate / 4.0);
  FillModuleText(m, ModuleText);
  auto run = std::make_unique<AcquisitionRun>(std::move(m), std::move(plan), config, nullptr);
  result = run->start();
  if (result != kOk) return result;
  RememberLists(lib, Channel, Volume, ChannelDifferential);
  if (FreqDescR) *FreqDescR = std::max(1, static_cast<int32_t>(std::nearbyint(rowRate)));
  lib.cyclic = std::move(run);
  return kOk;
}

extern "C" void CopySignalData(int16_t* SignalData) {
  LibraryState& lib = Library();
  std::lock_guard lock(lib.mutex);
  if (lib.cyclic && SignalData) lib.cyclic->copyView(SignalData);
}

extern "C" int32_t StopPotok(void) {
  LibraryState& lib = Library();
  std::lock_guard lock(lib.mutex);
  if (!lib.cyclic) return kOk;
  const int32_t result = lib.cyclic->stop();
  lib.cyclic.reset();
  return result;
}

extern "C" int32_t ReadDataChannels(double* ChannelMeans, int32_t rows) {
  LibraryState& lib = Library();
  std::lock_guard lock(lib.mutex);
  // A run holds the module.
  if (lib.cyclic || lib.recording) return kErrOpenDevice;
  const ModuleSettings settings = LoadModuleSettings();
  OpenedModule m;
  int32_t result = OpenModule(settings, lib.lines, m);
  if (result != kOk) return result;
  AdcParameters p;
  const int count = lib.differential == 1 ? kDifferentialChannels : kSingleEndedChannels;
  for (int c = 0; c < count; ++c)
    p.table.push_back({c, lib.listsKnown ? std::clamp(lib.channelVolume[static_cast<size_t>(c)], 0, 3) : 0,
                       lib.differential == 1});
  p.clockDivider = kMinClockDivider;
  result = ConfigureModule(m, p);
  std::vector<int16_t> buffer;
  if (result == kOk) {
    try {
      if (rows <= 0 || !ChannelMeans || m.faults.at(kErrReadBuffer)) throw std::bad_alloc();
      buffer.assign(static_cast<size_t>(rows) * p.table.size(), 0);
    } catch (const std::bad_alloc&) {
      result = kErrReadBuffer;
    }
  }
  bool started = false;
  if (result == kOk) {
    started = m.module->start() && !m.faults.at(kErrStartAdc);
    if (!started) result = kErrStartAdc;
  }
  if (result == kOk && (!m.module->readRows(buffer.data(), rows) || m.faults.at(kErrReadData)))
    result = kErrReadData;
  if (started) {
    if ((!m.module->stop() || m.faults.at(kErrStopAdc)) && result == kOk) result = kErrStopAdc;
    if ((!m.module->cancelRequests() || m.faults.at(kErrCancelIo)) && result == kOk) result = kErrCancelIo;
  }
  const int32_t released = ReleaseModule(m);
  if (result == kOk) result = released;
  if (result != kOk) return result;
  const size_t width = p.table.size();
  for (int c = 0; c < kSingleEndedChannels; ++c) {
    double sum = 0.0;
    if (c < count)
      for (int32_t r = 0; r < rows; ++r) sum += buffer[static_cast<size_t>(r) * width + static_cast<size_t>(c)];
    ChannelMeans[c] = c < count ? sum / rows : 0.0;
  }
  return kOk;
}

extern "C" int32_t MainInfoE140(char* buffers) {
  LibraryState& lib = Library();
  std::lock_guard lock(lib.mutex);
  const ModuleSettings settings = LoadModuleSettings();
  OpenedModule m;
  const int32_t result = OpenModule(settings, lib.lines, m);
  if (result != kOk) return result;
  const ModuleDescription& d = m.description;
  bool outputsEnabled = false;
  uint16_t outputs = 0;
  {
    std::lock_guard lines(lib.lines.mutex);
    outputsEnabled = lib.lines.outputsEnabled;
    outputs = lib.lines.outputs;
  }
  char outputsText[8];
  std::snprintf(outputsText, sizeof outputsText, "%04X", outputs);
  std::string calibration = "Калибровка диапазонов (смещение, масштаб):";
  const char* ranges[kRangeCount] = {"±10.0В", "±2.5В", "±0.625В", "±0.15625В"};
  for (int r = 0; r < kRangeCount; ++r) {
    char line[96];
    std::snprintf(line, sizeof line, "\n%s: %.3f, %.6f", ranges[r], d.offsetCodes[r], d.scale[r]);
    calibration += line;
  }
  const std::string blocks[8] = {
      "Модуль: " + d.name + " (E14-140)\nСерийный номер: " + d.serialNumber + "\nВерсия BIOS: " +
          d.biosVersion + "\nРевизия: " + std::string(1, d.revision),
      m.module->backendText(),
      std::string("Шина USB: ") + (m.highSpeed ? "480 Мбит/с (High-Speed)" : "12 Мбит/с (Full-Speed)"),
      "Тактовая частота: 8000000 Гц\nДелитель частоты: от 80 до 65535\n"
      "Частота АЦП: от 122 Гц до 100000 Гц\nРазрядность АЦП: 14 бит (коды -8192..8191)",
      "Входы: 32 однополюсных или 16 дифференциальных\nДиапазоны входного напряжения: ",
      "±10.0В, ±2.5В, ±0.625В, ±0.15625В",
      calibration,
      std::string("Цифровые линии: 16 входных, 16 выходных\nВыходы: ") +
          (outputsEnabled ? "включены" : "в высокоимпедансном состоянии") + "\nСостояние выходов: 0x" +
          outputsText};
  if (buffers) {
    for (size_t i = 0; i < 8; ++i) {
      const std::string text = Cp1251FromUtf8(blocks[i]);
      char* out = buffers + i * 1001;
      const size_t n = std::min<size_t>(text.size(), 1000);
      std::memcpy(out, text.data(), n);
      out[n] = '\0';
    }
  }
  return ReleaseModule(m);
}

extern "C" int32_t DigitalLinesEnableTtlOut(int32_t enable) {
  std::lock_guard lock(Library().mutex);
  return WithModule(kErrEnableTtlOut, [&](OpenedModule& m) { return m.module->enableTtlOut(enable != 0); });
}

extern "C" int32_t DigitalLinesTtlIn(int32_t* state) {
  std::lock_guard lock(Library().mutex);
  uint16_t lines = 0;
  const int32_t result = WithModule(kErrTtlIn, [&](OpenedModule& m) { return m.module->ttlIn(lines); });
  if (result == kOk && state) *state = lines;
  return result;
}

extern "C" int32_t DigitalLinesTtlOut(int32_t state) {
  std::lock_guard lock(Library().mutex);
  // The module has no number of its own for a failed output; it is the
  // outputs' step.
  return WithModule(kErrEnableTtlOut, [&](OpenedModule& m) {
    return m.module->ttlOut(static_cast<uint16_t>(state & 0xFFFF));
  });
}
