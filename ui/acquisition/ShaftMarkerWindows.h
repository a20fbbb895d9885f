#pragma once
// The two windows of the shaft marker: frmSetupOtmetchick ("Отметчик"),
// the detector's settings applied through the detector and the views, and
// frmServiceOtmetchick ("Искусственный отметчик"), which makes a marker
// channel by arithmetic.

#include "core/ArtificialMarker.h"
#include "ui/acquisition/MeasureContext.h"

#include <QDialog>

#include <array>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSpinBox;

namespace aqx::ui {

class SetupOtmetchickWindow : public QDialog {
  Q_OBJECT
 public:
  explicit SetupOtmetchickWindow(MeasureContext ctx, QWidget* parent = nullptr);
  // Apply; false when a field holds no number (told, nothing changed).
  bool Apply();

  QCheckBox* automatic() const { return chkOtmetchickAuto_; }
  QLineEdit* level() const { return txtOtmetchickLevel_; }
  QLineEdit* drebezg() const { return txtOtmetchickDrebezg_; }
  QLineEdit* noise() const { return txtOtmetchickNoise_; }
  QRadioButton* rising() const { return optOtmetchick_[0]; }

 private:
  void autoChanged();

  MeasureContext ctx_;
  QCheckBox* chkOtmetchickAuto_ = nullptr;
  QLineEdit* txtOtmetchickLevel_ = nullptr;
  QLabel* lblOtmetchick_ = nullptr;
  std::array<QRadioButton*, 2> optOtmetchick_{};
  QLineEdit* txtOtmetchickDrebezg_ = nullptr;
  QLineEdit* txtOtmetchickNoise_ = nullptr;
};

class ServiceOtmetchickWindow : public QDialog {
  Q_OBJECT
 public:
  explicit ServiceOtmetchickWindow(MeasureContext ctx, QWidget* parent = nullptr);
  // Apply; false when nothing was made.
  bool Apply();

  QSpinBox* periodN() const { return udPeriodN_; }
  QSpinBox* channelO() const { return udChannelO_; }
  QSpinBox* channelA() const { return udChannelA_; }
  QSpinBox* shiftF() const { return udShiftF_; }
  QCheckBox* onZero() const { return chkOnZero_; }

 private:
  ArtificialMarkerSettings settings() const;
  void onZeroChanged();

  MeasureContext ctx_;
  QSpinBox* udPeriodN_ = nullptr;
  QSpinBox* udChannelO_ = nullptr;
  QSpinBox* udChannelA_ = nullptr;
  QSpinBox* udShiftF_ = nullptr;
  QLabel* lblChannelA_ = nullptr;
  QLabel* lblShiftF_ = nullptr;
  QGroupBox* fraFront_ = nullptr;
  std::array<QRadioButton*, 2> optFront_{};
  QCheckBox* chkOnZero_ = nullptr;
};

}  // namespace aqx::ui
