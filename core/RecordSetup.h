#pragma once
// Record settings (frmSetupRec, "Настройка измерений"): the arithmetic that
// ties the generator's poles and mains frequency to the sampling of a run,
// the module frequencies of continuous recording, the disk estimate, and
// Apply, which checks the values, takes them into the state and stores them.
// The window only mirrors these.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <optional>

namespace aqx {

// What the cyclic tab shows for poles, mains frequency, revolutions per
// cycle and samples per cycle (AccountData).
struct RotorRates {
  double freqRotorN = 0.0;          // rated speed, rev/min
  double revolutionSeconds = 0.0;
  double firstHarmonicHz = 0.0;
  double spectrumStepHz = 0.0;
  int32_t freqDescR = 1;            // per-channel sampling frequency, Hz
  double cycleSeconds = 0.0;
  int64_t moduleRateHz = 0;         // ChannelUsedCount * FreqDescR
  bool moduleRateOk = false;        // 122..100000 Hz inclusive
  int32_t bufferLength = 1;         // rows per transfer
};

// nullopt when poles, mains frequency, revolutions or samples are not
// positive: nothing can be derived from them.
std::optional<RotorRates> AccountRotorRates(int32_t polus, int32_t freqSety, int32_t numberRotorRecord,
                                            int32_t signalDataN, double timeRefreshSeconds, int channelUsedCount);
// 2^Int(log2(TimeRefresh * FreqDescR)), at least 1.
int32_t RecordBufferLength(double timeRefreshSeconds, int32_t freqDescR);

// The 31 positions of the module frequency slider, from 100 kHz down to
// 122 Hz: the 8 MHz clock over a divider.
inline constexpr int kFreqSliderPositions = 31;
int32_t FreqDividerAt(int position);   // position 1..31
int32_t FreqADCAt(int position);       // 8,000,000 / divider, rounded
// The position whose frequency equals freqADC, else the nearest one.
int FreqSliderPosition(int32_t freqADC);
// Per-channel frequency of continuous mode, at least 1.
int32_t SolidFreqDescR(int32_t freqADC, int channelUsedCount);

// The lists of the cyclic tab.
QStringList RevolutionChoices();   // 2^1 .. 2^19
QStringList SampleCountChoices();  // 2^9 .. 2^20
QStringList RefreshTimeChoices(const QLocale& locale = QLocale());

// A duration as the program writes it: " 1 ч 2 мин 3 сек", parts that are
// zero left out; empty for less than a second.
QString TimeText(double seconds);

// The disk of the continuous file's folder.
struct DiskSpace {
  double totalBytes = 0.0;
  double freeBytes = 0.0;
  bool known = false;
};
DiskSpace DiskSpaceOf(const QString& folder);
// The seven lines of txtInformation.
QStringList DiskEstimateLines(const DiskSpace& disk, int32_t freqADC, int channelUsedCount,
                              const QLocale& locale = QLocale());

// The folder of continuous files: SolidPath (InitDirSave) when it is an
// existing folder, else the user's home.
QString SolidFolder(const AppState& s);
// Folder + trimmed SolidFileName + ".aqx"; a path that names a file loses
// its file part first.
QString SolidFilePath(const QString& solidPath, const QString& solidFileName);

// Everything the window edits, as text where the user types.
struct RecordSettingsInput {
  QString polus;
  QString freqSety;
  QString numberRotorRecord;
  int32_t signalDataN = 32768;
  float timeRefresh = 0.25f;
  int32_t freqADC = 32000;
  bool solidMode = false;
  QString solidFileName;
  QString solidPath;
};
RecordSettingsInput CurrentRecordSettings(const AppState& s);

// The field a refusal points at, so that the window can focus it.
enum class RecordField { None, Polus, FreqSety, NumberRotorRecord, SolidFileName, SolidPath, Frequency };
struct RecordApply {
  bool applied = false;
  RecordField field = RecordField::None;
};

// cmdApply: checks (each refusal told, nothing taken over), then the values
// into the state, the record in memory discarded, the derived rates, the
// block rule and the settings stored.
RecordApply ApplyRecordSettings(AppState& s, SettingsStore& store, Prompts& prompts,
                                const RecordSettingsInput& in);

// Text of the warning on a cycle longer than 32768 samples.
QString LargeCycleWarning();

}  // namespace aqx
