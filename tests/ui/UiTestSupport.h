#pragma once
// Recordings and windows for the window tests: a main window over a state and
// a settings store in memory, answering through scripted prompts.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"
#include "core/Vocabulary.h"
#include "files/FileReaders.h"
#include "ui/main/MainWindow.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace aqx::uitest {

// A recording of `samples` samples at 2677 Hz: channel 1 shaft run-out (a
// 1.38 Hz sine), 2 vibration (50 Hz plus 1.38 Hz), 3 shaft marker (a pulse
// each revolution), 4 voltage (a slow ramp); `channels` channels in use
// (1..32), the ones past 4 repeating the pattern.
void FillRecording(AppState& s, int samples, int channels = 4);
// The same written to a data file; returns false if it could not be written.
bool WriteRecording(const QString& path, int samples, int channels = 4);

// The rows behind the header of a file recorded from the virtual module with
// its row counters on channels 1 and 2 ("counter,counterhigh,..."): how many
// whole rows, and the first that is not the counters' (-1 when all are).
struct CounterRows {
  int64_t rows = 0;
  int64_t firstWrongRow = -1;
  bool tornRow = false;  // bytes of a row cut short at the end
};
CounterRows CheckCounterRows(const QString& path, int64_t headerBytes, int channels);

struct Workbench {
  Workbench();
  ~Workbench();
  Workbench(const Workbench&) = delete;
  Workbench& operator=(const Workbench&) = delete;

  QString path(const QString& name) const { return dir.filePath(name); }

  QTemporaryDir dir;
  std::unique_ptr<AppState> state;
  MemorySettingsStore store;
  ScriptedPrompts prompts;
  Vocabulary vocabulary;
  FileReaderTable readers;
  std::unique_ptr<ui::MainWindow> window;  // loaded and shown
};

}  // namespace aqx::uitest
