#pragma once
// The small windows that set how things look: frmSetupColorType (a colour
// per sensor type, for the channel buttons), frmSetupLine (colour and pen
// widths of each channel's trace), frmAdvice (the tip of the day).

#include "core/AppState.h"
#include "core/Settings.h"
#include "core/Vocabulary.h"
#include "ui/options/ParametersDialog.h"

#include <QDialog>

#include <array>
#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QSpinBox;

namespace aqx::ui {

class ColorTypeDialog : public QDialog {
  Q_OBJECT
 public:
  ColorTypeDialog(AppState& s, SettingsStore& store, const Vocabulary& vocab, std::function<void()> applied,
                  QWidget* parent = nullptr);
  void Apply();
  QComboBox* typeColor(int type) const { return combos_[static_cast<size_t>(type)]; }

 private:
  AppState& s_;
  SettingsStore& store_;
  std::function<void()> applied_;
  std::array<QComboBox*, kColorTypeKitCount> combos_{};
};

class LineDialog : public QDialog {
  Q_OBJECT
 public:
  LineDialog(AppState& s, SettingsStore& store, const Vocabulary& vocab, std::function<void()> applied,
             QWidget* parent = nullptr);
  void setColorChooser(ColorChooser chooser) { chooser_ = std::move(chooser); }
  void Apply();
  QPushButton* colorButton(int channel) const { return colors_[static_cast<size_t>(channel - 1)]; }
  QSpinBox* signalWidth(int channel) const { return signalWidths_[static_cast<size_t>(channel - 1)]; }
  QSpinBox* spectrWidth(int channel) const { return spectrWidths_[static_cast<size_t>(channel - 1)]; }

 private:
  AppState& s_;
  SettingsStore& store_;
  std::function<void()> applied_;
  ColorChooser chooser_;
  std::array<QPushButton*, kMaxChannels> colors_{};
  std::array<QSpinBox*, kMaxChannels> signalWidths_{};
  std::array<QSpinBox*, kMaxChannels> spectrWidths_{};
};

// frmViewColorProperty ("Значения"): a small floating window beside the
// signal view with one row per shown channel, in the channel's colour, and
// the value under the cross-hair.
class ColorPropertyWindow : public QWidget {
  Q_OBJECT
 public:
  ColorPropertyWindow(const AppState& s, const Vocabulary& vocab, QWidget* parent = nullptr);
  // The rows from the state and the values texts of the signal view.
  void OutInfoColor(const PerChannel<QString>& values);
  QStringList rows() const;

 private:
  const AppState& s_;
  const Vocabulary& vocab_;
  QLabel* lblRows_ = nullptr;
};

// The tips, in order; AdviceN is the next one to show.
QStringList AdviceTips();

class AdviceWindow : public QDialog {
  Q_OBJECT
 public:
  AdviceWindow(AppState& s, SettingsStore& store, QWidget* parent = nullptr);
  // Shows the tip AdviceN and moves AdviceN on.
  void NextTip();
  QString tipText() const;
  QCheckBox* showAtStart() const { return chkAdvice_; }

 private:
  AppState& s_;
  SettingsStore& store_;
  QLabel* lblTip_ = nullptr;
  QCheckBox* chkAdvice_ = nullptr;
};

}  // namespace aqx::ui
