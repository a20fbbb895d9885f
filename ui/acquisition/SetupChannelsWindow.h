#pragma once
// frmSetupChannels ("Настройка каналов"): one row per channel on two pages,
// the connection mode, the synchronisation of the acquisition, the colour
// sets and the calibration of run-out sensors against the shaft.

#include "core/ChannelSetupRules.h"
#include "core/Vocabulary.h"
#include "ui/acquisition/MeasureContext.h"

#include <QDialog>

#include <array>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QToolButton;

namespace aqx::ui {

class SetupChannelsWindow : public QDialog {
  Q_OBJECT
 public:
  SetupChannelsWindow(MeasureContext ctx, const Vocabulary& vocabulary, QWidget* parent = nullptr);

  // cmdApply; false when refused (the window stays, the state untouched).
  bool Apply();
  // cmdReset: the rows back from the state.
  void Reset();
  // cmdClearance, cmdSetup and cmdSetKu.
  void SetClearance();
  void CalibrateAll();
  void CalibrateChannel(int channel);

  // For tests: the controls of one channel's row.
  QCheckBox* channelOn(int c) const { return rows_[static_cast<size_t>(c - 1)].on; }
  QComboBox* type(int c) const { return rows_[static_cast<size_t>(c - 1)].type; }
  QLineEdit* ku(int c) const { return rows_[static_cast<size_t>(c - 1)].ku; }
  QLineEdit* zero(int c) const { return rows_[static_cast<size_t>(c - 1)].zero; }
  QCheckBox* differential() const { return chkChannelDifferential_; }
  QComboBox* inputMode() const { return cmbInputMode_; }
  QComboBox* colorSet() const { return imageCombo1_; }
  QString info() const;
  QTabWidget* pages() const { return sstab1_; }
  QPushButton* clearanceButton() const { return cmdClearance_; }

 private:
  struct RowControls {
    QCheckBox* on = nullptr;
    QComboBox* type = nullptr;
    QComboBox* place = nullptr;
    QComboBox* direct = nullptr;
    QLineEdit* ku = nullptr;
    QLineEdit* zero = nullptr;
    QToolButton* setKu = nullptr;
    QComboBox* volume = nullptr;
    QLineEdit* sensorName = nullptr;
    QToolButton* color = nullptr;
    int32_t colorWord = 0;
  };
  ChannelSetupInput input() const;
  void fill(const ChannelSetupInput& in);
  void showColor(int c);
  void differentialChanged();
  void synchroChanged();
  void applyColorSet(int set);
  CalibrationHooks calibrationHooks();

  MeasureContext ctx_;
  const Vocabulary& vocab_;
  std::array<RowControls, kMaxChannels> rows_;
  QTabWidget* sstab1_ = nullptr;
  QCheckBox* chkChannelDifferential_ = nullptr;
  QComboBox* cmbInputMode_ = nullptr;
  QComboBox* cmbSynchroAdType_ = nullptr;
  QComboBox* cmbSynchroAdMode_ = nullptr;
  QComboBox* cmbSynchroAdChannel_ = nullptr;
  QLineEdit* txtSynchroAdPorog_ = nullptr;
  QPlainTextEdit* txtInfo_ = nullptr;
  QComboBox* imageCombo1_ = nullptr;
  QPushButton* cmdClearance_ = nullptr;
  uint32_t randomState_ = 0x2545F491u;
};

}  // namespace aqx::ui
