#pragma once
// The one road by which a recording comes into the program, from every
// source: the open dialog, the recent list, a dropped file, the command line
// and the last file at start. OpenFile picks the reader by the last three
// letters of the path and then runs the steps after the read; the steps that
// belong to windows or the engine are hooks, empty until those are present.

#include "core/AppState.h"
#include "core/ReaderTable.h"
#include "core/Prompts.h"
#include "core/Settings.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace aqx {

inline constexpr int kRecentFileCount = 9;
// Menu captions longer than this are shortened in the middle.
inline constexpr int kRecentCaptionChars = 64;

// What the window program and the engine plug into OpenFile and the start.
// Every hook may stay empty.
struct OpenFileHooks {
  std::function<void(bool busy)> setBusyCursor;
  // Shaft marker detection on the loaded data, with the detector settings.
  std::function<void(AppState&)> detectShaftMarker;
  // The signal view is open: reset its sample window and block fields.
  std::function<void(AppState&)> resetSignalViewBlock;
  // RefreshToolbarMainMenu, RefreshToolbarChannels, RefreshStatusBar, the
  // check of mnuViewImposition and, when on, the imposition itself.
  std::function<void(AppState&)> refreshToolbars;
  // SetViewStyle: bring up the views of the stored style.
  std::function<void(AppState&)> setViewStyle;
  // The file information window, if shown.
  std::function<void(AppState&)> updateFileInfo;
  std::function<void(AppState&)> viewRefresh;
  // The recent list changed: the nine captions of ReadRecentFile.
  std::function<void(const QStringList& captions)> recentFilesChanged;
  // Lets pending window events run once (before the last file is loaded).
  std::function<void()> pumpMessages;
};

struct OpenFileContext {
  AppState& state;
  SettingsStore& store;
  Prompts& prompts;
  const FileReaderTable& readers;
  OpenFileHooks hooks;
};

// Loads path: adds it to the recent list, reads it with the reader of its
// ending, then marker detection, selection cleared, block rule, toolbars,
// view style, file information, SaveConfig and ViewRefresh. True when the
// recording in memory was replaced. An ending without a reader reads
// nothing; a failed read has told the user and leaves the recording and
// PathFileData as they were.
bool OpenFile(OpenFileContext& ctx, const QString& path);
// The steps of OpenFile after the read, for a recording that came into the
// state by another road (the last file of a report's walk).
void ShowReadRecording(OpenFileContext& ctx);

// Before a file replaces unsaved data (and not for a solid file, which is on
// disk already): "Данные не сохранены, продолжить?". True to go on.
bool ConfirmReplaceData(const AppState& s, Prompts& prompts);
// Before the program closes with unsaved data. True to close.
bool ConfirmCloseProgram(const AppState& s, Prompts& prompts);

// mnuFileOpen: unsaved check, the open dialog in InitDirOpen; the chosen
// folder becomes InitDirOpen.
bool FileOpenCommand(OpenFileContext& ctx);
// mnuFileRecentFile(k), k 1..9: unsaved check; a missing file is told.
bool OpenRecentFileCommand(OpenFileContext& ctx, int k);
// Files dropped on the main window: exactly one is loaded, more are refused.
bool DropFilesCommand(OpenFileContext& ctx, const QStringList& paths);

// The filter of the open dialog.
QString OpenFileFilter();

// The recent list: nine paths, most recent first, "" for an empty entry.
QStringList RecentFiles(const SettingsStore& store);
// Puts path at the top; an entry already in the list moves up without
// being repeated, otherwise the ninth falls out.
void AddNewRecentFile(SettingsStore& store, const QString& path);
// The nine menu captions, "&" number " " path, "" for a hidden entry.
QStringList ReadRecentFile(const SettingsStore& store, int maxChars = kRecentCaptionChars);
// A path longer than maxChars with its middle replaced by " ... ".
QString ShortenPathMiddle(const QString& path, int maxChars);

}  // namespace aqx
