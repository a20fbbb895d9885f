#pragma once
// What the fuzz targets of the file readers share: one state per process on
// the heap (as the program allocates it, so that a use after free shows), a
// scratch folder in memory for the input, the digest of the state, and the
// promises every reader makes. A broken promise aborts, so that libFuzzer
// reports it and keeps the input.

#include "core/AppState.h"
#include "core/Prompts.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace aqx::fuzz {

[[noreturn]] void Broken(const char* promise);
inline void Expect(bool kept, const char* promise) {
  if (!kept) Broken(promise);
}

// Every value of StateValues and the whole sample store.
uint64_t StateDigest(const AppState& state);

// The limits a recording keeps once a reader took it: sample count, views,
// channel counts and the table indices the views use.
void CheckRecordingLimits(const AppState& state);

// The samples of the channels in use (Channel = 1 up to ChannelCount), rows
// 1..SignalDataN, channel after channel.
std::vector<int16_t> UsedSamples(const AppState& state);

class FuzzWorld {
 public:
  FuzzWorld(int* argc, char*** argv);
  FuzzWorld(const FuzzWorld&) = delete;
  FuzzWorld& operator=(const FuzzWorld&) = delete;

  AppState& state() { return *state_; }
  // A file name in the scratch folder.
  QString path(const QString& name) const { return dir_.filePath(name); }
  // Writes the bytes as the whole file; aborts when that fails, since every
  // check after it would be meaningless.
  static void writeFile(const QString& path, const QByteArray& bytes);
  static QByteArray readFile(const QString& path);

  // The state's digest, computed again only after the state may have
  // changed: hashing the 64 MiB store is most of the time of a run.
  uint64_t digest();
  void stateChanged() { digest_.reset(); }

 private:
  QCoreApplication app_;
  std::unique_ptr<AppState> state_;
  QTemporaryDir dir_;
  std::optional<uint64_t> digest_;
};

// The target's one world, made by LLVMFuzzerInitialize (FuzzMain.cpp, built
// into every target) and gone before Qt's own statics are.
FuzzWorld& World();

// Writes the input to `fileName` in the scratch folder and opens it with the
// reader its extension names. A refusal must have told the user and left
// the state's digest as it was; an accepted file must keep the limits.
bool OpenAndCheck(FuzzWorld& world, const QString& fileName, const uint8_t* data, size_t size);

// Writes the recording in memory as a data file in the current layout and
// reads it back: header values, sample count and samples must be the same.
void CheckDataFileRoundTrip(FuzzWorld& world);

}  // namespace aqx::fuzz
