#pragma once
// The walk of a report through recordings: each file is read into the one
// shared state by the reader of its ending (no notice, as in a batch), the
// shaft marks are found, and the parameters every protocol prints are taken
// per channel from the same routines as the parameter bar. What a protocol
// needs of a file is kept as plain readings, so that the tables are built
// apart from the engine and from any workbook writer.

#include "core/AppState.h"
#include "core/ReaderTable.h"
#include "core/Prompts.h"
#include "views/Analysis.h"

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace aqx::reports {

// Called before each file with the number of files done and their count,
// and once more when all are done; false cancels the walk (the wait
// window's button).
using ReportProgress = std::function<bool(int filesDone, int fileCount)>;

struct ReportContext {
  AppState& state;  // the recording in memory; the last file read stays there
  Prompts& prompts;
  const FileReaderTable& readers;
  ReportProgress progress;  // may stay empty
};

// What the protocols print of one recorded channel.
struct ChannelReadings {
  int channel = 0;
  int32_t type = 0;
  QString place;
  QString direct;
  // Band levels, units: 0-200 Hz (0-20 Hz for run-out at entry 1), 0-1 Hz,
  // 1-30 Hz, 30-200 Hz.
  std::array<int32_t, views::kBandCount> bandMax{};
  std::array<int32_t, views::kBandCount> bandMean{};
  // Entry 0 the first harmonic, 1..7 the probe table.
  std::array<int32_t, views::kProbeResults> probeAmplitude{};
  std::array<int32_t, views::kProbeResults> probePhase{};
  std::array<float, kProbeEntries> probeFreq{};
  double rotorSpeedMin = 0.0;  // rpm, of the shaft marker
  double rotorSpeedMax = 0.0;
  int32_t revolutions = 0;  // NumberRotorRecord
  double shift = 0.0;       // run-out shift, units
};

struct FileReadings {
  QString path;
  bool read = false;  // false: the file could not be read, its block stays empty
  QString mode;
  std::vector<ChannelReadings> channels;  // recorded channels, by number
};

// The recordings of a folder: "*.aqx" in any case, by name; a file that
// cannot be read is listed too, so that its block stays empty.
QStringList FolderRecordings(const QString& folder);

struct ReportWalk {
  std::vector<FileReadings> files;  // up to where the walk stopped
  bool cancelled = false;
  // A file of the walk is now the recording in memory.
  bool recordingReplaced() const;
};

// Reads the files in order into ctx.state with the batch flag set, until the
// progress callback cancels. The state holds the last file read.
ReportWalk ReadReportFiles(ReportContext& ctx, const QStringList& files);

// The channels recorded in the files, read into a state of their own so that
// the recording in memory is not touched (the master's channel step).
std::vector<FileReadings> ReadChannelTables(const QStringList& files, const FileReaderTable& readers,
                                            Prompts& prompts);

// Rotor speed as the protocols print it: one value, or "low-high".
QString RotorSpeedValue(const ChannelReadings& r);
// The run-out shift as printed: its integer part.
QString ShiftValue(const ChannelReadings& r);
// A probe frequency as heads and tags name it, in "Standard".
QString ProbeFrequencyText(float hz);

}  // namespace aqx::reports
