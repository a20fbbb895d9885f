#pragma once
// Playback of a WAVE file through the system's sound output. The output
// lives in a module of its own (libAquilonixSound.so: Qt Multimedia, and
// PulseAudio and the codecs behind it), loaded when the player window opens
// first: linked into the program, those libraries took 2.5 MiB of memory in
// every session, whether it played a sound or not.

#include <QString>
#include <QtGlobal>

#include <functional>
#include <memory>

namespace aqx::ui {

class SoundOutput {
 public:
  SoundOutput() = default;
  virtual ~SoundOutput() = default;
  SoundOutput(const SoundOutput&) = delete;
  SoundOutput& operator=(const SoundOutput&) = delete;

  virtual void play(const QString& wavePath) = 0;
  virtual void stop() = 0;
  // Lets go of the file played last, so that it can be written anew.
  virtual void release() = 0;
  // Milliseconds played of the file, 0 when not known.
  virtual qint64 positionMs() const = 0;

  // Called when playing stops, at the end of the file or by stop().
  std::function<void()> onStopped;
};

// The module's entry point, loaded on the first call; null when the module
// is found nowhere.
using OpenSoundOutputEntry = SoundOutput* (*)();
OpenSoundOutputEntry LoadSoundModule();

// The system's default sound output; null when the machine has none or the
// module cannot be loaded.
std::unique_ptr<SoundOutput> OpenSoundOutput();

// The module's one entry point, exported unmangled for QLibrary.
inline constexpr const char* kSoundOutputEntry = "AqxOpenSoundOutput";

}  // namespace aqx::ui
