#pragma once
// The setup windows of the spectrum family: frmSetupSpectrumAnalyser
// ("Спектральный анализ"), frmSetupProbe ("Проверочные частоты") and
// frmSetupFilter ("Фильтр") over the one grid rule, and
// frmServiceEvaluation ("Оценка вибрационного состояния"). Their rules live
// in core; the windows mirror them.

#include "core/AppState.h"
#include "core/FrequencyTables.h"
#include "core/Prompts.h"
#include "core/Settings.h"
#include "views/edit/EditHistory.h"

#include <QDialog>

#include <array>
#include <functional>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTableWidget;

namespace aqx::ui {

// What the setup windows need of the main window.
struct SetupContext {
  AppState& s;
  SettingsStore& store;
  Prompts& prompts;
  std::function<void()> viewRefresh;
  std::function<bool()> recordChecked;  // the main menu's record item
  views::EditHistory* history = nullptr;  // where filtering the samples can be undone
};

class SpectrumAnalyserDialog : public QDialog {
  Q_OBJECT
 public:
  SpectrumAnalyserDialog(SetupContext ctx, QWidget* parent = nullptr);
  void Apply();
  QComboBox* blockA() const { return cmbBlockSizeFFTa_; }
  QComboBox* blockR() const { return cmbBlockSizeFFTr_; }
  QComboBox* window() const { return cmbSmoothingWindow_; }
  QLineEdit* alpha() const { return txtAlphaParametr_; }
  QLineEdit* overlap() const { return txtOverlapping_; }

 private:
  SetupContext ctx_;
  QComboBox* cmbBlockSizeFFTr_ = nullptr;
  QComboBox* cmbBlockSizeFFTa_ = nullptr;
  QComboBox* cmbSmoothingWindow_ = nullptr;
  QLineEdit* txtAlphaParametr_ = nullptr;
  QLineEdit* txtOverlapping_ = nullptr;
};

class FrequencyTableDialog : public QDialog {
  Q_OBJECT
 public:
  FrequencyTableDialog(FrequencyTable table, SetupContext ctx, QWidget* parent = nullptr);
  // cmdApply; true when the table was taken.
  bool Apply();
  void Clear();
  // optType: 0 "Частота", 1 "Гармоника".
  void SetUnit(bool harmonic);
  // ViewRefresh step: the table again from the state.
  void Reload();
  QTableWidget* grid() const { return grid_; }
  QCheckBox* saveAsCommon() const { return chkSave_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void showGrid();
  void readCells();

  FrequencyTable table_;
  SetupContext ctx_;
  FrequencyGrid model_;
  QTableWidget* grid_ = nullptr;
  QButtonGroup* optType_ = nullptr;
  QCheckBox* chkSave_ = nullptr;
  bool showing_ = false;
};

class EvaluationDialog : public QDialog {
  Q_OBJECT
 public:
  explicit EvaluationDialog(QWidget* parent = nullptr);
  void AccountEvaluation();
  QLineEdit* frequency() const { return txtFreg_; }
  QLabel* grade(int index) const { return lblEvaluation_[static_cast<size_t>(index - 1)]; }
  void setClass(int option);

 private:
  QButtonGroup* optType_ = nullptr;
  QLineEdit* txtFreg_ = nullptr;
  std::array<QLabel*, 5> lblEvaluation_{};
  QString lastGood_ = QStringLiteral("1");
};

}  // namespace aqx::ui
