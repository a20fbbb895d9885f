#pragma once
// What a view window needs from the main window: the shared state and
// settings, the refresh of all views, and the main window's own bars and
// menus that a view drives.

#include "core/AppState.h"
#include "core/Settings.h"
#include "core/Vocabulary.h"
#include "views/Analysis.h"
#include "views/signal/SignalView.h"

#include <QPoint>

namespace aqx::ui {

class ViewHost {
 public:
  virtual ~ViewHost() = default;
  virtual AppState& state() = 0;
  virtual SettingsStore& settings() = 0;
  virtual const Vocabulary& vocabulary() const = 0;
  // ViewRefresh, or its cheaper variant.
  virtual void viewRefresh(bool cheap) = 0;
  // The main status bar's speed panel (FreqRotor).
  virtual void showRotorSpeed(bool visible, const QString& text) = 0;
  // The popup menu mnuSignal at a screen point.
  virtual void showSignalPopup(const QPoint& globalPos) = 0;
  // The signal view's status changed: selection commands and the begin
  // point entry follow it.
  virtual void signalStatusChanged(const views::SignalStatus& status) = 0;
  // A signal view option changed in the view (panel click): menu checks follow.
  virtual void signalOptionsChanged() = 0;
  // Engine results the views share.
  virtual views::AnalysisResults& analysis() = 0;
};

}  // namespace aqx::ui
