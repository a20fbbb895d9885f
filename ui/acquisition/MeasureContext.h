#pragma once
// What the measurement windows need of the main window: the state, the
// settings, the prompts and the few refreshes that follow their changes.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"

#include <functional>

namespace aqx::ui {

struct MeasureContext {
  AppState& s;
  SettingsStore& store;
  Prompts& prompts;
  std::function<void()> viewRefresh;
  // Channel toolbar, main menu and status bar after the channel table or
  // the recording changed.
  std::function<void()> refreshFrame;
  // The signal view's block fields and slider after new record settings.
  std::function<void()> resetSignalBlock;
};

}  // namespace aqx::ui
