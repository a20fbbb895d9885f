#pragma once
// The library's side of a measurement: its error numbers, bringing a module
// up step by step, the channel table from the application's arrays, and the
// library's one state (the module of a run, its thread, the digital lines).

#include "engine/acquisition/AcquisitionModule.h"
#include "engine/acquisition/ModuleSettings.h"
#include "engine/acquisition/VirtualModule.h"

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace aqx::acq {

// Error numbers of the interface, each in one meaning only.
enum LibraryError : int32_t {
  kOk = 0,
  kErrDllVersion = 1,
  kErrCreateInstance = 2,
  kErrOpenDevice = 3,
  kErrModuleHandle = 4,
  kErrModuleName = 5,
  kErrNotE140 = 6,
  kErrUsbSpeed = 7,
  kErrDescription = 8,
  kErrGetAdcPars = 9,
  kErrSetAdcPars = 10,
  kErrReadBuffer = 11,
  kErrRelease = 12,
  kErrThread = 13,
  kErrSignalDataDll = 14,
  kErrChannelOnDll = 15,
  kErrChannelVolumeDll = 16,
  kErrFrequency = 18,
  kErrStopAdc = 19,           // cyclic run and channel means
  kErrReadData = 20,
  kErrStopAdcRecording = 21,  // file recording
  kErrCancelIo = 22,
  kErrStartAdc = 23,
  kErrEnableTtlOut = 24,
  kErrTtlIn = 25,
  kErrCreateFile = 26,
  kErrRecordingThread = 27,
  kErrSaveFileHeader = 28,
  kErrHeaderBuffer = 29,
  kErrOpenHeader = 30,
  kErrReadHeader = 31,
  kErrSealHeader = 32,
  kErrDataStorage = 33,
  kErrDataBuffer = 34,
  kErrOpenDataFile = 35,
  kErrReadDataFile = 36,
};

// A failure asked for by the settings: the step of that number fails.
struct FaultPlan {
  int number = 0;
  int64_t afterRows = 0;
  bool at(int n) const { return number == n; }
  static FaultPlan From(const ModuleSettings& s) { return {s.failNumber, s.failAfterRows}; }
};

struct OpenedModule {
  std::unique_ptr<AcquisitionModule> module;
  ModuleDescription description;
  int highSpeed = 0;
  FaultPlan faults;
};

// Creates the backend of the settings and walks GetDllVersion to
// GET_MODULE_DESCRIPTION. On failure the module is released again.
int32_t OpenModule(const ModuleSettings& settings, VirtualLines& lines, OpenedModule& out);
// GET_ADC_PARS, then SET_ADC_PARS with the wanted parameters; the divider
// comes back as the module runs it.
int32_t ConfigureModule(OpenedModule& m, AdcParameters& wanted);
// ReleaseLInstance.
int32_t ReleaseModule(OpenedModule& m);
// The wanted parameters of a run: channel table, clock divider and the five
// synchronisation values as the C interface passes them (channel from 1).
AdcParameters RunParameters(std::vector<AdcChannelEntry> table, int clockDivider, int32_t inputMode,
                            int32_t synchroAdType, int32_t synchroAdMode, int32_t synchroAdChannel,
                            int32_t synchroAdPorog);
// "E140 <serial>", at most 16 characters, into the 17-byte ModuleText.
void FillModuleText(const OpenedModule& m, char* moduleText);

// The module's channel table for the channels that are on, in ascending
// order, and the SignalData column of each entry.
struct ChannelPlan {
  std::vector<AdcChannelEntry> table;
  std::vector<int> columns;
};
ChannelPlan PlanChannels(int32_t usedCount, const int32_t* Channel, const int32_t* Volume,
                         int32_t differential);

// Copies `count` packed rows into SignalData rows from `firstRow` (0-based),
// one code per table entry into that entry's column.
void SpreadRows(const int16_t* rows, int64_t count, const std::vector<int>& columns,
                int16_t* SignalData, int64_t firstRow);
// Zeroes the columns of the plan in SignalData rows [first, end).
void ClearRows(const std::vector<int>& columns, int16_t* SignalData, int64_t first, int64_t end);

class AcquisitionRun;

// The library's one state. The interface has no handles, so the library
// keeps its run here, as the module driver would.
struct LibraryState {
  std::mutex mutex;  // one interface call at a time on the run pointers
  VirtualLines lines;
  std::unique_ptr<AcquisitionRun> cyclic;
  std::unique_ptr<AcquisitionRun> recording;
  // Channel lists of the last start (ChannelOnDll, ChannelVolumeDll), used
  // by the channel means outside a run.
  std::array<int32_t, kSingleEndedChannels> channelOn{};
  std::array<int32_t, kSingleEndedChannels> channelVolume{};
  int32_t differential = 0;
  bool listsKnown = false;
  double lastFileBytes = 0.0;  // size of the last recorded file, after its stop
};
LibraryState& Library();

}  // namespace aqx::acq
