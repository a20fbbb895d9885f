#pragma once
// Menu entries that tick options, made from the option table: each entry
// flips its option in the state, saves it and tells its owner; the check
// marks are set from the state.

#include "core/AppState.h"
#include "core/Settings.h"

#include <QHash>
#include <QString>

#include <functional>

class QAction;
class QMenu;
class QObject;

namespace aqx::ui {

// The entries of the options of `section` in menu group `group`, appended
// to `menu` and registered in `actions` by their object names. `changed`
// runs after an option flipped and was saved.
void AddOptionToggles(QMenu* menu, const char* section, int group, AppState& s, SettingsStore& store,
                      QHash<QString, QAction*>& actions, std::function<void()> changed);

// Ticks every entry of `section` that `actions` holds as the state has it.
void RefreshOptionChecks(const QHash<QString, QAction*>& actions, const AppState& s, const char* section);

}  // namespace aqx::ui
