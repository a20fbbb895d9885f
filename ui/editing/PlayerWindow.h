#pragma once
// frmPlayerSound ("Проигрыватель"): the active channel as a WAVE file at the
// chosen conversion rate, its picture, and playback through the system's
// sound output with the playing position moving over the picture.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"

#include <QDialog>
#include <QElapsedTimer>

#include <memory>

class QComboBox;
class QLabel;
class QPushButton;
class QTimer;

namespace aqx::ui {

class PictureWidget;
class SoundOutput;

class PlayerWindow : public QDialog {
  Q_OBJECT
 public:
  PlayerWindow(AppState& state, SettingsStore& store, Prompts& prompts, QWidget* parent);
  ~PlayerWindow() override;

  // Writes the file for the chosen rate and draws the channel; part of ViewRefresh.
  void BuildWaveFile();
  void cmdPlay();
  void cmdStop();
  // The file played: in the user's cache folder.
  QString wavePath() const { return path_; }
  bool hasSoundOutput() const { return sound_ != nullptr; }
  bool playing() const { return playing_; }
  QLabel* info() const { return txtInfo_; }
  QComboBox* rates() const { return cmbFreqDescWave_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void rateChosen(int row);
  void tick();
  void drawPicture(double position);

  AppState& s_;
  SettingsStore& store_;
  Prompts& prompts_;
  QString path_;
  bool written_ = false;
  bool playing_ = false;
  double playSeconds_ = 0.0;
  QElapsedTimer clock_;
  QComboBox* cmbFreqDescWave_ = nullptr;
  QLabel* txtInfo_ = nullptr;
  QLabel* lblSound_ = nullptr;
  PictureWidget* pctSignal_ = nullptr;
  QPushButton* cmdPlay_ = nullptr;
  QTimer* timer1_ = nullptr;
  std::unique_ptr<SoundOutput> sound_;
};

}  // namespace aqx::ui
