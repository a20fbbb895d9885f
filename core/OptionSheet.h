#pragma once
// The option sheet (frmSetupParameters) as plain logic: the options it shows
// come from the option table (the rows of sections Parameters and Color that
// carry a caption), each as text, and Apply takes all of them or none, so a
// value typed wrong never leaves the settings half changed.

#include "core/AppState.h"
#include "core/ConfigKeys.h"
#include "core/Settings.h"

#include <QString>

#include <vector>

namespace aqx {

inline constexpr int kOptionSheetTabCount = 4;

// The rows the sheet shows: Parameters, then Color, in table order; each
// row's group is its tab.
std::vector<const SettingKey*> OptionSheetRows();
// Captions of the tabs 0..kOptionSheetTabCount-1.
QString OptionSheetTabCaption(int tab);

// An option's value as the sheet shows it: "1"/"0" for a flag, the number
// for the rest (a colour is its blue-green-red word).
QString OptionSheetText(const AppState& s, const SettingKey& key);

struct OptionSheetEntry {
  const SettingKey* key = nullptr;
  QString text;
};

// Checks every entry; when all are good they go into the state and the
// store (one write) and the result is empty. Otherwise nothing changes and
// the result is what to tell the user about the first bad entry.
QString ApplyOptionSheet(AppState& s, SettingsStore& store, const std::vector<OptionSheetEntry>& entries);

}  // namespace aqx
