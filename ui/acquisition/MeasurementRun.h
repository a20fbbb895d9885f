#pragma once
// The measurement run of the window program, in both modes. The record
// command starts and stops it; Timer1 copies the newest samples out of the
// engine (the cycle, or the newest stretch of the continuous file), checks
// the warnings and refreshes the views on every tick. TimerIcon blinks the
// tray icon meanwhile.

#include "core/AppState.h"
#include "core/Prompts.h"

#include <QElapsedTimer>
#include <QIcon>
#include <QObject>
#include <QStringList>

#include <functional>

class QSystemTrayIcon;
class QTimer;

namespace aqx::ui {

class MeasurementRun : public QObject {
  Q_OBJECT
 public:
  struct Hooks {
    std::function<void(bool running)> activateElements;  // ActivateElements
    std::function<void()> refreshToolbars;               // RefreshToolbarMainMenu and the record check
    std::function<void()> viewRefresh;
    // Continuous mode: the monitor shown at the start and closed at the end.
    std::function<void(bool show)> statusFile;
    // Continuous mode, after the stop: the recorded file into the views.
    std::function<void(const QString& path)> openRecordedFile;
    // Continuous mode: the signal view's stretch ends at the newest row
    // (startRows > 0: at the widest zoom of at most that many rows first);
    // false when no signal view is open.
    std::function<bool(int32_t newestRow, int32_t startRows)> followNewestRow;
    // The caption and the status bar: at the start, about twice a second
    // during the run, and at its end.
    std::function<void()> showRunState;
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
  // The run in progress (or the last one) records into a file.
  bool continuous() const { return continuous_; }
  // The warning lines of the last check (empty when all is well).
  const QStringList& warnings() const { return warnings_; }
  // The tray icon blinks while a run is on.
  bool trayBlinking() const;

 private:
  bool startContinuous();
  bool startCyclic();
  // Continuous mode: the views follow the newest rows of the block, of the
  // file's length before the copy.
  void followNewestRows(double fileBytes);
  void checkWarnings();
  void finish();
  void blinkTray();

  AppState& s_;
  Prompts& prompts_;
  Hooks hooks_;
  QTimer* timer1_ = nullptr;
  QTimer* timerIcon_ = nullptr;
  QSystemTrayIcon* tray_ = nullptr;
  QIcon trayIcon_;
  bool trayLit_ = true;
  bool requested_ = false;
  bool running_ = false;
  bool continuous_ = false;
  bool firstTick_ = false;
  // Continuous mode: the stretch set last, to tell a zoom or a pan of the
  // user's; whether the views follow the newest rows, and in which block.
  int32_t liveFirst_ = 0;
  int32_t liveLast_ = 0;
  int32_t liveWidth_ = 0;  // as the zoom has it, before the rows are in
  bool following_ = true;
  bool liveStart_ = true;
  int32_t liveBlock_ = 0;
  QStringList warnings_;
  QElapsedTimer runStateShown_;
};

}  // namespace aqx::ui
