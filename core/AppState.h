#pragma once
// The one set of shared data of the program: one recording, its channel table,
// the recording parameters and the fixed sample store. Windows, commands and
// the engine read and write it directly; nothing here draws or asks.

#include "core/SettingsOptions.h"

#include <QDateTime>
#include <QString>

#include <array>
#include <optional>
#include <cstdint>
#include <memory>

namespace aqx {

inline constexpr int kMaxChannels = 32;
inline constexpr int kMaxSamples = 1048576;
inline constexpr int kProbeEntries = 7;
inline constexpr int kFilterEntries = 4;
inline constexpr int kRemarkCount = 28;
inline constexpr int kMaxMarkers = 100;
inline constexpr int kMaxShaftMarks = 10001;
// The module's total conversion rate, Hz: its 8 MHz clock over the largest
// and the smallest divider.
inline constexpr int32_t kMinFreqADC = 122;
inline constexpr int32_t kMaxFreqADC = 100000;

// 32 per-channel values addressed by channel number 1..32, as the user counts
// them; data() hands the engine the element of channel 1.
template <class T>
struct PerChannel {
  std::array<T, kMaxChannels> values{};
  T& operator[](int channel) { return values.at(static_cast<size_t>(channel - 1)); }
  const T& operator[](int channel) const { return values.at(static_cast<size_t>(channel - 1)); }
  T* data() { return values.data(); }
  const T* data() const { return values.data(); }
  void fill(const T& v) { values.fill(v); }
};

// 1,048,576 rows of 32 signed 16-bit codes, row-major (all channels of one
// instant side by side). The address is fixed for the store's life, but the
// memory behind it is taken from the system page by page as rows are first
// written or read: an untouched store costs address space and no memory, so
// a command that needs only a header, or a recording of a few channels and
// samples, never holds 64 MiB. Unwritten codes read as 0.
class SampleStore {
 public:
  static constexpr size_t kRows = kMaxSamples;
  static constexpr size_t kColumns = kMaxChannels;
  static constexpr size_t kElements = kRows * kColumns;
  static constexpr size_t kBytes = kElements * sizeof(int16_t);

  SampleStore();
  ~SampleStore();
  SampleStore(const SampleStore&) = delete;
  SampleStore& operator=(const SampleStore&) = delete;

  int16_t* data() { return codes_; }
  const int16_t* data() const { return codes_; }
  // Sample 1..kRows of channel 1..32.
  int16_t& at(int sample, int channel) {
    return codes_[static_cast<size_t>(sample - 1) * kColumns + static_cast<size_t>(channel - 1)];
  }
  int16_t at(int sample, int channel) const {
    return codes_[static_cast<size_t>(sample - 1) * kColumns + static_cast<size_t>(channel - 1)];
  }
  // Every code back to 0, and the memory back to the system.
  void clear();
  // Bytes of the store the system has given memory to so far.
  size_t residentBytes() const;
  // Counts the times the samples were replaced (a load, a block, a run's
  // cycle, an edit), so that what views keep of them knows when it is old.
  void markWritten() { ++writes_; }
  uint64_t writeCount() const { return writes_; }

 private:
  int16_t* codes_;
  uint64_t writes_ = 0;
};

enum ViewWindow : int {
  frmViewSignal,
  frmViewSpectr,
  frmViewSpectrum,
  frmViewTraectoria,
  frmViewFormaRotor,
  frmViewFormaRotorDiagram,
  frmViewFormaRotorSpectr,
  frmViewConsole,
  frmViewInfoADC,
  frmViewMarker,
  kViewWindowCount
};

struct ChannelSetup {
  PerChannel<int32_t> Channel;
  PerChannel<int32_t> Active;
  PerChannel<int32_t> Type;
  PerChannel<QString> Place;
  PerChannel<QString> Direct;
  PerChannel<float> Ku;
  PerChannel<int32_t> Zero;
  PerChannel<float> KS;
  PerChannel<int32_t> Volume;
  PerChannel<QString> SensorName;
  PerChannel<int32_t> ChannelColor;  // blue-green-red word
  PerChannel<int32_t> ChannelLineWidthSignal;
  PerChannel<int32_t> ChannelLineWidthSpectr;
  PerChannel<int32_t> ChannelY;
  PerChannel<int32_t> ChannelYm;
  PerChannel<std::array<float, kProbeEntries>> ProbeFreq;  // entry 1..7 at [0..6]
  PerChannel<std::array<float, kFilterEntries>> Filter;    // entry 1..4 at [0..3]
};

struct ObjectInfo {
  QString Station;
  int32_t Agregat = 1;
  QString Mode;
  std::array<QString, kRemarkCount> Remark;
  double RecordDate = 0.0;  // days since 30 December 1899
};

// Time marks of the recording, numbered 1..100 (index 0 is marker 1).
struct Markers {
  int32_t MarkerN = 0;
  std::array<double, kMaxMarkers> MarkerDate{};
  std::array<QString, kMaxMarkers> MarkerRemark;
  std::array<int32_t, kMaxMarkers> MarkerColor{};
  std::array<int32_t, kMaxMarkers> MarkerOn{};
  std::array<int32_t, kMaxMarkers> MarkerShift{};
};

// Everything of the shared state but the sample store: plain values that a
// command can copy aside and put back when what it started fails.
struct StateValues {
  // Version of the recording in memory (of the file it came from, or of the
  // program after a save).
  int32_t FileVersionMajor = AQX_VERSION_MAJOR;
  int32_t FileVersionMinor = AQX_VERSION_MINOR;
  int32_t FileVersionRevision = AQX_VERSION_PATCH;

  ChannelSetup channels;
  ObjectInfo object;
  Markers markers;

  // Recording parameters.
  int32_t Polus = 72;
  int32_t FreqSety = 50;
  double FreqRotorN = 83.3;
  double FreqOneGarmonic = 1.38;
  double FreqRotorReal = 0.0;
  int32_t NumberRotorRecord = 17;
  int32_t FreqDesc = 2677;
  int32_t FreqDescR = 2677;
  int32_t FreqADC = 32000;
  double StepDesc = 0.082;
  // A block as large as the store means one transform over the whole stretch.
  int32_t BlockSizeFFT = kMaxSamples;
  int32_t BlockSizeFFTa = kMaxSamples;
  int32_t BlockSizeFFTr = kMaxSamples;
  int32_t SpectrLineCount = 16384;
  int32_t ViewStyle = 1;
  int32_t ChannelDifferential = 0;
  int32_t InputMode = 0;
  int32_t SynchroAdType = 0;
  int32_t SynchroAdMode = 0;
  int32_t SynchroAdChannel = 32;
  int32_t SynchroAdPorog = 1000;
  QString ModuleTag = QStringLiteral("?");

  bool SolidMode = false;
  QString SolidFileName = QStringLiteral("Aquilonix");
  int32_t SolidBlockCount = 0;
  int32_t SolidBlockN = 1;
  int32_t SolidBlockM = 1;
  int32_t SolidDataStart = 0;

  int32_t FirstChannelActive = 1;
  bool Imposition = false;
  QString PathFileData;
  bool DataSaved = true;

  // The sample window the views work on (the samples are AppState's).
  int32_t SignalDataN = 32768;
  // During a cyclic run, the rows of the cycle acquired so far while it is
  // not yet full; 0 when every row of the store holds signal.
  int32_t RunRowsAcquired = 0;
  int32_t ChannelUsedCount = 0;
  int32_t ViewFirst = 1;
  int32_t ViewLast = 32768;
  int32_t SelectFirst = 0;
  int32_t SelectLast = 0;
  std::array<bool, kViewWindowCount> ViewOpenFlags{};

  // Engine-side results that go with the samples (ADC codes).
  PerChannel<int32_t> SignalOffset;
  PerChannel<int32_t> SignalMaxValue;
  PerChannel<int32_t> SignalMeanValue;
  PerChannel<int32_t> SignalCurrentValue;
  int32_t ShaftMarkCount = 0;
  std::array<int32_t, kMaxShaftMarks> ShaftMarks{};

  // Options that steer loading and display.
  bool SaveProbe = false;
  bool SaveFilter = false;
  bool ReminderConvertFile = true;
  bool ReminderFileSave = true;
  bool AccountOffset = true;
  QString InitDirOpen = QStringLiteral("C:\\");
  QString InitDirSave = QStringLiteral("C:\\");
  int32_t Clearance = 2500;
  // Set while a report walks through files: the reader then shows no notice.
  bool BatchMode = false;

  // Unit of the current readouts, set by SetChannelUnit.
  QString UnitName = QStringLiteral("мкм");
  double UnitDivisor = 1.0;

  // --- Settings-backed options (core/SettingsOptions.h): view menu checks,
  // option sheet, colours, shaft marker detector, by section. Filled by
  // LoadConfigReg, each written back by its command (core/ConfigWriters.h).
  SettingsOptions options;
  // --- end of settings-backed options
};

struct AppState : StateValues {
  AppState();
  AppState(const AppState&) = delete;
  AppState& operator=(const AppState&) = delete;

  SampleStore SignalData;
};

// Per-channel defaults of a fresh program (channel table of the settings).
void ResetChannelDefaults(ChannelSetup& channels);

// 16 in differential connection, else 32; every loop over channels stops here.
int ChannelCount(const AppState& s);
// Counts channels with Channel = 1 among the first ChannelCount and stores it.
int RecountChannelUsedCount(AppState& s);
// First recorded channel of type shaft marker, 0 when there is none.
int FirstMarkerChannel(const AppState& s);
// Channels with both Channel and Active set.
int ActiveUsedCount(const AppState& s);
// First recorded channel, or 0.
int FirstUsedChannel(const AppState& s);

// The rows a cycle being acquired holds so far: the module fills it from row
// 1 and leaves the rest zero until it is full. 0 when it is full.
int32_t AcquiredRows(const AppState& s);

// Block rule: after SignalDataN or FreqDesc change, StepDesc and
// SpectrLineCount follow BlockSizeFFT (0 leaves them alone).
void ApplyBlockRule(AppState& s);

// Samples per second of one channel as time and frequency are counted:
// FreqDesc, except in a continuous recording, whose FreqDesc is rounded to
// whole hertz and falls to 0 at coarse block scales; there the module's rate
// over the used channels and the scale, exactly. 0 when nothing is known.
double ChannelRateHz(const AppState& s);
// Rotor parameters in their derivation order: FreqRotorN, FreqOneGarmonic,
// FreqDescR, then the block rule.
void DeriveRotorParameters(AppState& s);

// Empties the recording description and the channel table.
void ClearApplicationData(AppState& s);

// Sets UnitName and UnitDivisor for a level in display units of the type of
// FirstChannelActive.
void SetChannelUnit(AppState& s, double value);
// The same rule for any channel type, leaving the state alone; nullopt for
// a type with no unit.
struct LevelUnit {
  QString name;
  double divisor = 1.0;
};
std::optional<LevelUnit> UnitOfLevel(int type, double value);

// A total conversion rate the module can run at, and what the user is told
// about one it cannot.
bool IsModuleRate(int32_t freqADC);
QString ModuleRateRefusal(int32_t freqADC);


}  // namespace aqx
