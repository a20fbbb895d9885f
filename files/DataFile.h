#pragma once
// The .aqx data file: a header record (thirteen layouts over the program's
// history) followed by the 16-bit codes of the used channels, channel after
// channel. The first sample byte is byte number H of the file counted from 1,
// so it overwrites the last header byte: the file is H-1 + 2 x N x used bytes.

#include "core/AppState.h"
#include "core/PlainFile.h"
#include "core/Prompts.h"
#include "files/DataFileLayout.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <span>
#include <vector>

namespace aqx {

// Titles of the data file's messages.
inline const QString kOpenTitle = QStringLiteral("Открытие");
inline const QString kSaveTitle = QStringLiteral("Сохранение");
inline const QString kConvertTitle = QStringLiteral("Конвертор");
inline const QString kDataFileFilter =
    QStringLiteral("Файлы данных (*.aqx)|*.aqx|Все файлы (*.*)|*.*");

// Reads state.PathFileData into the state, any layout 0..12. Returns true
// when the recording in memory was replaced. Every check on the file
// (magic, version, a header or sample area shorter than the header says, a
// sample count below 1) is made before the state is touched: a refused file
// leaves the previous recording whole. A sample count above 1,048,576 keeps
// the first 1,048,576 samples of each channel.
bool ReadDataFile(AppState& state, Prompts& prompts);

// The same as ReadDataFile for a command that needs the header alone: the
// same checks (the sample area's size among them) and the same state, but
// the samples are neither read nor put into the store, which stays as it
// was.
bool ReadDataFileHeader(AppState& state, Prompts& prompts);

// Where an ordinary data file holds its samples: the used channels
// (ascending) one after another from byte `areaStart` (counted from 0), each
// `fileSamplesPerChannel` codes of 16 bits, little-endian; a recording keeps
// the first `keptSamples` of each.
struct DataFileArea {
  QString path;
  std::vector<int> usedChannels;
  int64_t areaStart = 0;
  int64_t fileSamplesPerChannel = 0;
  int keptSamples = 0;

  // Byte of sample `sample` (from 0) of the k-th used channel (from 0).
  int64_t byteOf(size_t k, int64_t sample) const {
    return areaStart + 2 * (static_cast<int64_t>(k) * fileSamplesPerChannel + sample);
  }
};

// ReadDataFile for a command that moves the samples on by itself: an
// ordinary file's header goes into the state as ReadDataFile puts it, after
// the same checks, but its samples stay in the file and `area` says where
// (the store is not touched); a continuous file is read as ReadDataFile
// reads it and `area` stays empty.
bool ReadDataFileLeavingSamples(AppState& state, Prompts& prompts, std::optional<DataFileArea>& area);

// Samples `first`.. of the k-th used channel of an area, as the file holds
// them, into `bytes` (two per sample), from a file opened on area.path. A
// failure is told as ReadDataFile tells it.
bool ReadAreaSamples(PlainFile& file, const DataFileArea& area, size_t k, int64_t first,
                     std::span<char> bytes, Prompts& prompts);
// Opens area.path for ReadAreaSamples; a failure is told as ReadDataFile
// tells it.
bool OpenArea(PlainFile& file, const DataFileArea& area, Prompts& prompts);

// Reads only the header of state.PathFileData in layout `minor` into the
// state, with the rules of every header reader. LoadHeader is the current
// layout's reader. True when the header was taken over.
bool LoadHeaderOfLayout(AppState& state, int minor, Prompts& prompts);
bool LoadHeader(AppState& state, Prompts& prompts);

// Sets what older layouts lack to its defaults (per-channel values up to
// ChannelCount as it stands on entry).
void ResetFileDefaults(AppState& state);

// Writes the recording to state.PathFileData in the current layout: into a
// temporary file in the same folder, synced, then renamed over the target.
// On failure the old file stays as it was, the reason is told under
// "Сохранение", and false is returned.
bool WriteDataFile(AppState& state, Prompts& prompts);

// WriteDataFile for the state as ReadDataFileLeavingSamples left it: the
// same file, written the same way, with each channel's kept samples copied
// from `area` as they lie there, never through the store.
bool WriteDataFileFrom(AppState& state, const DataFileArea& area, Prompts& prompts);

// Writes the header record at the start of an existing file without
// touching what follows (a continuous recording keeps its samples). The
// version triple becomes the running program's, in the file and in memory.
bool WriteFileHeader(AppState& state, const QString& path, Prompts& prompts);

// The command "save": for a continuous recording only its header; otherwise
// the save dialog, the question before replacing a file, and WriteDataFile.
// Returns true when the recording was saved (DataSaved is then true and
// PathFileData names the file); the caller then adds the path to the recent
// list and shows it in the status bar.
bool SaveDataFileCommand(AppState& state, Prompts& prompts);

// The header record of the recording in memory, as WriteFileHeader writes
// it (current layout, H bytes).
QByteArray BuildFileHeaderBytes(const AppState& state);

// Header record <-> state. FileHeaderFromState takes every channel and
// marker record as it is.
FileHeader FileHeaderFromState(const AppState& state);

}  // namespace aqx
