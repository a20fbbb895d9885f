#pragma once
// The cyclic measurement run of the window program: the record command
// starts and stops it, Timer1 copies the newest cycle out of the engine,
// checks the warnings and refreshes the views on every tick.

#include "core/AppState.h"
#include "core/Prompts.h"

#include <QObject>
#include <QStringList>

#include <functional>

class QTimer;

namespace aqx::ui {

class MeasurementRun : public QObject {
  Q_OBJECT
 public:
  struct Hooks {
    std::function<void(bool running)> activateElements;  // ActivateElements
    std::function<void()> refreshToolbars;               // RefreshToolbarMainMenu and the record check
    std::function<void()> viewRefresh;
  };

  MeasurementRun(AppState& state, Prompts& prompts, Hooks hooks, QObject* parent = nullptr);
  ~MeasurementRun() override;

  // The record command: starts a run, or asks the running one to stop.
  void press();
  // Timer1.
  void tick();
  // A run is wanted (the check mark of the record command).
  bool requested() const { return requested_; }
  // Between a successful start and the last tick.
  bool running() const { return running_; }
  // A stop was pressed and the next tick has not finished the run yet.
  bool stopping() const { return running_ && !requested_; }
  // The warning lines of the last check (empty when all is well).
  const QStringList& warnings() const { return warnings_; }

 private:
  void checkWarnings();
  void finish();

  AppState& s_;
  Prompts& prompts_;
  Hooks hooks_;
  QTimer* timer1_ = nullptr;
  bool requested_ = false;
  bool running_ = false;
  bool firstTick_ = false;
  QStringList warnings_;
};

}  // namespace aqx::ui
