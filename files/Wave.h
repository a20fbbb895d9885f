#pragma once
// WAVE files: a recording goes out as 16-bit PCM, and a PCM file of 8 or 16
// bits comes in as a recording, stretched or thinned to the power-of-two
// length of the sample store.

#include "core/AppState.h"
#include "core/Prompts.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <functional>
#include <span>

namespace aqx {

struct DataFileArea;  // files/DataFile.h

inline constexpr size_t kWaveHeaderBytes = 44;

// The 44-byte header of a 16-bit PCM file of `sampleCount` frames (held to
// 0..1,048,576) of that many channels at `samplesPerSecond`; each frame that
// follows holds the channels' codes unchanged, little-endian.
std::array<char, kWaveHeaderBytes> WaveHeaderBytes(size_t channelCount, int sampleCount, int samplesPerSecond);

// All channels with Channel = 1 (up to ChannelCount), SignalDataN frames at
// FreqDesc, to `path` through a temporary file. Failures are told under
// `title`; true when the file is in place. The codes come from the store,
// or with `samplesInFile` from the data file the state was read from with
// ReadDataFileLeavingSamples, a block of rows at a time.
bool WriteWaveFile(const AppState& state, const QString& path, Prompts& prompts,
                   const QString& title = QStringLiteral("Экспорт"),
                   const DataFileArea* samplesInFile = nullptr);
// One channel in the same form at the rate given (the player's choice).
bool WriteWaveChannel(const AppState& state, int channel, const QString& path,
                      int samplesPerSecond, Prompts& prompts,
                      const QString& title = QStringLiteral("Экспорт"));

// What a WAVE file holds, after its header has been checked.
struct WaveContents {
  int channels = 0;
  int samplesPerSecond = 0;
  int bitsPerSample = 0;
  int blockAlign = 0;
  size_t dataOffset = 0;     // first sample byte
  size_t frameCount = 0;     // P: samples per channel
};

// The bytes of a WAVE file as the parser asks for them: `read` fills the
// span from the offset or returns false (past the end, or a read error).
struct WaveSource {
  uint64_t size = 0;
  std::function<bool(uint64_t at, std::span<char> bytes)> read;
};

// Checks the header and finds the samples, reading only the header and the
// chunk heads. On refusal returns false with the user's text in `refusal`
// (title "Ошибка").
bool ParseWave(const WaveSource& source, WaveContents& contents, QString& refusal);
bool ParseWave(std::span<const char> bytes, WaveContents& contents, QString& refusal);

// Reads PathFileData into the state. Nothing changes when the file is refused.
bool ReadFileWave(AppState& state, Prompts& prompts);

// The export command: save dialog in InitDirSave, the question before an
// existing file is replaced, the write (codes as WriteWaveFile takes them).
// True when a file was written.
bool ExportWaveCommand(const AppState& state, Prompts& prompts, const DataFileArea* samplesInFile = nullptr);

}  // namespace aqx
