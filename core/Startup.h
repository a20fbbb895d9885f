#pragma once
// The program's start up to the windows, and its end: the start counter,
// the vocabulary, the settings load with the crash check, the file named on
// the command line or the last file, and GoodRun at a clean exit.

#include "core/AppState.h"
#include "core/OpenFile.h"
#include "core/Settings.h"
#include "core/Vocabulary.h"

#include <QString>

namespace aqx {

// Start (section "Aquilonix") read, incremented, written back; returns the
// new count.
int32_t CountStart(SettingsStore& store);

// The splash picture to show, 1..pictureCount: the stored StartUpPicture
// (1 when out of range); the next one, cycling, is stored for the next start.
int32_t NextStartUpPicture(SettingsStore& store, int32_t pictureCount);

// SpeedLoad: count the start, build the vocabulary; the data count as saved
// and the block counter starts at 1.
void SpeedLoad(AppState& s, SettingsStore& store, Vocabulary& vocabulary);

// The main window's load, without the windows: LoadConfig (crash check),
// then the recent list to the menu hook.
void MainLoad(OpenFileContext& ctx);

// The command line as one text: trimmed, and a path standing in double
// quotes loses them.
QString StartFileFromCommandLine(const QString& commandLine);

// At start, a file named on the command line is loaded if it exists and
// ignored silently if not (the last file is then not tried either). With an
// empty command line and FileLastLoad on, the stored PathFileData is loaded
// if it exists. True when a file was loaded.
bool LoadStartFile(OpenFileContext& ctx, const QString& commandLine);

// The whole start in order: SpeedLoad, MainLoad, LoadStartFile.
bool RunStartup(OpenFileContext& ctx, Vocabulary& vocabulary, const QString& commandLine);

// Unload of the main window: the run ended cleanly.
void MarkCleanExit(SettingsStore& store);

}  // namespace aqx
