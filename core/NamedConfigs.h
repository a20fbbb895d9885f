#pragma once
// Named configurations: snapshots of the whole settings tree, one file per
// name in the folder "Configs" beside the settings file, so that a station
// can keep a setup per generating unit. A snapshot is restored whole; a
// restore that cannot be completed leaves the settings exactly as they were.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace aqx {

enum class ConfigResult {
  Done,
  Cancelled,    // the user said no or gave no name
  InvalidName,  // a name that cannot be a file name
  Exists,       // the target name is taken
  NotFound,     // no configuration of that name
  Failed,       // the file could not be written or read
};

// "<folder of the settings file>/Configs".
QString ConfigsFolder(const QString& settingsFilePath);

// Names of the stored configurations, sorted.
QStringList ListConfigs(const QString& folder);
// A name is one file name: not empty, no path separator, not hidden.
bool IsValidConfigName(const QString& name);

// A tree that holds settings of this program (a section it knows), not
// the leftovers of another program's file.
bool IsSettingsSnapshot(const SettingsTree& tree);

// The operations themselves, without questions. The folder is created when
// missing.
ConfigResult SaveNamedConfig(const SettingsStore& store, const QString& folder,
                             const QString& name, bool replace);
ConfigResult RestoreNamedConfig(SettingsStore& store, const QString& folder, const QString& name);
ConfigResult RenameNamedConfig(const QString& folder, const QString& from, const QString& to,
                               bool replace);
ConfigResult DeleteNamedConfig(const QString& folder, const QString& name);

// The commands of the configurations window ("Конфигурации"), with their
// questions and input boxes.
ConfigResult ConfigSaveCommand(const SettingsStore& store, const QString& folder, Prompts& prompts);
// Restores, then the running program reads the settings (LoadConfigReg)
// and redraws (viewRefresh, may be empty).
ConfigResult ConfigOpenCommand(AppState& s, SettingsStore& store, const QString& folder,
                               const QString& name, Prompts& prompts,
                               const std::function<void(AppState&)>& viewRefresh);
ConfigResult ConfigRenameCommand(const QString& folder, const QString& name, Prompts& prompts);
ConfigResult ConfigDeleteCommand(const QString& folder, const QString& name, Prompts& prompts);

}  // namespace aqx
