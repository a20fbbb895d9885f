#pragma once
// The acquisition module as the library sees it: a USB ADC of the E14-140 kind
// brought up step by step, then a stream of rows of its channel table. Each
// step answers false on failure; the library turns the step into its error
// number. Backends: the built-in virtual module and the replay of a file.

#include <cstdint>
#include <string>
#include <vector>

namespace aqx::acq {

inline constexpr double kModuleClockHz = 8'000'000.0;
inline constexpr int kMinClockDivider = 80;     // 100 kHz in total
inline constexpr int kMaxClockDivider = 65535;  // about 122 Hz in total
inline constexpr double kMaxTotalRateHz = 100'000.0;
inline constexpr int kRangeCount = 4;
inline constexpr int kCodeMin = -8192;  // 14-bit codes
inline constexpr int kCodeMax = 8191;
inline constexpr double kMillivoltsPerCode = 1.25;  // at range 0, +-10 V
inline constexpr int kSingleEndedChannels = 32;
inline constexpr int kDifferentialChannels = 16;
inline constexpr const char* kModuleName = "E140";

// Divider of the module clock for a wanted total rate, kept inside the
// module's limits.
int ClockDividerFor(double totalRateHz);
// Total rate the module really runs at with a divider.
double TotalRateFor(int clockDivider);
// Gain of an input range: 4 to the power of the range index.
int RangeGain(int range);
// Millivolts at the input to a code of the range, rounded and clipped.
int16_t MillivoltsToCode(double millivolts, int range);

struct ModuleDescription {
  std::string name;
  std::string serialNumber;
  std::string biosVersion;
  char revision = 'A';
  double clockHz = kModuleClockHz;
  // Factory calibration of the four ranges: offset in codes and scale.
  double offsetCodes[kRangeCount] = {};
  double scale[kRangeCount] = {1.0, 1.0, 1.0, 1.0};
};

struct AdcChannelEntry {
  int channel = 0;  // physical input, 0-based
  int range = 0;    // 0..3, gain 4^range
  bool differential = false;
};

// Synchronisation modes of the start of a run.
enum InputModes : int {
  kInputNoSync = 0,
  kInputDigitalStart = 1,  // first falling edge on the INT line
  kInputDigitalFrame = 2,  // one row per falling edge on the INT line
  kInputAnalogStart = 3,   // a channel passing a threshold
};

struct AdcParameters {
  std::vector<AdcChannelEntry> table;
  int clockDivider = kMinClockDivider;
  int inputMode = kInputNoSync;
  int synchroAdType = 0;     // 0 level, 1 transition
  int synchroAdMode = 0;     // 0 above / upward, 1 below / downward
  int synchroAdChannel = 0;  // physical input, 0-based
  int synchroAdPorog = 0;    // threshold in codes of that channel
};

class AcquisitionModule {
 public:
  virtual ~AcquisitionModule() = default;

  // Bringing the module up, in the order the library walks the steps.
  virtual bool checkDriverVersion() = 0;
  virtual bool createInterface() = 0;
  virtual bool openDevice() = 0;
  virtual bool readDeviceHandle() = 0;
  virtual bool readName(std::string& name) = 0;
  virtual bool readUsbSpeed(int& highSpeed) = 0;
  virtual bool readDescription(ModuleDescription& description) = 0;
  virtual bool readParameters(AdcParameters& parameters) = 0;
  // Takes over the channel table, divider and synchronisation; the divider
  // may come back changed to what the module really uses.
  virtual bool writeParameters(AdcParameters& parameters) = 0;

  virtual bool start() = 0;
  // Blocks until `rows` whole rows of the channel table are ready and copies
  // them out; false when the requests were cancelled or the module failed.
  virtual bool readRows(int16_t* codes, int rows) = 0;
  // stop() and cancelRequests() may be called from another thread while
  // readRows waits; both make it return.
  virtual bool stop() = 0;
  virtual bool cancelRequests() = 0;
  virtual bool release() = 0;

  // Sixteen digital lines in and out.
  virtual bool enableTtlOut(bool enable) = 0;
  virtual bool ttlIn(uint16_t& state) = 0;
  virtual bool ttlOut(uint16_t state) = 0;

  // One line on what lies behind the module, for the information text.
  virtual std::string backendText() const = 0;
};

}  // namespace aqx::acq
