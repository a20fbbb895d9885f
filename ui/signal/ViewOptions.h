#pragma once
// The signal view's options as the view logic takes them, made from the
// settings-backed options of the state, and written back key by key.

#include "core/AppState.h"
#include "core/Settings.h"
#include "views/signal/SignalView.h"

namespace aqx::ui {

// Colour set ColorBackKitSel of the state as a blue-green-red word.
views::BgrColor ViewBackground(const AppState& s);

views::SignalViewOptions SignalOptionsFromState(const AppState& s);
// Copies the Signal section options back into the state and saves each key
// whose value changed.
void StoreSignalOptions(const views::SignalViewOptions& o, AppState& s, SettingsStore& store);

// Cursor key of section Signal: -1 none, 0 "Свободный", 1 "Привязанный".
int CursorSetting(views::SignalCursor cursor);
views::SignalCursor CursorFromSetting(int value);

}  // namespace aqx::ui
