#pragma once
// frmStatusFileRecord ("Информация файла данных"): the small floating
// monitor of a continuous recording: the file's length, the share of the
// free disk it takes, and how long the recording has run.

#include "core/AppState.h"
#include "core/RecordSetup.h"
#include "core/Settings.h"

#include <QWidget>

class QLabel;
class QTimer;

namespace aqx::ui {

class StatusFileWindow : public QWidget {
  Q_OBJECT
 public:
  StatusFileWindow(AppState& state, SettingsStore& store, QWidget* owner);
  ~StatusFileWindow() override;

  // Timer1.
  void tick();
  QString infoText() const;
  QString freeSpaceText() const;
  QString timeText() const;
  // The bar's share of the free space, 0..1.
  double progress() const { return progress_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  AppState& s_;
  SettingsStore& store_;
  QLabel* lblInfo_ = nullptr;
  QLabel* lblFreeSpase_ = nullptr;
  QLabel* txtTimeRecord_ = nullptr;
  QTimer* timer1_ = nullptr;
  DiskSpace disk_;  // the figures of the last tick that read them
  double progress_ = 0.0;
  QPoint dragOffset_;
};

}  // namespace aqx::ui
