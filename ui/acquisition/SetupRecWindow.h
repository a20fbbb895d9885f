#pragma once
// frmSetupRec ("Настройка измерений"): the cyclic tab with the arithmetic
// from poles, mains frequency and revolutions to the sampling, and the
// continuous tab with the module frequency, the file name, the folder and
// the disk estimate. The tab open at OK decides the mode of the next run.

#include "core/RecordSetup.h"
#include "ui/acquisition/MeasureContext.h"

#include <QDialog>

class QComboBox;
class QFileSystemModel;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QSlider;
class QTabWidget;
class QTreeView;

namespace aqx::ui {

class SetupRecWindow : public QDialog {
  Q_OBJECT
 public:
  explicit SetupRecWindow(MeasureContext ctx, QWidget* parent = nullptr);

  // cmdApply; false when a value was refused (the window stays).
  bool Apply();
  // AccountData of the cyclic tab.
  void AccountData();
  // The slider moved: the frequency labels.
  void FreqChanged();
  // txtInformation.
  void DiskEstimate();

  // For tests.
  QTabWidget* tabs() const { return tabs_; }
  QComboBox* data(int k) const { return cmbData_[static_cast<size_t>(k)]; }
  QComboBox* signalDataN() const { return cmbSignalDataN_; }
  QSlider* freq() const { return sldFreq_; }
  QLineEdit* solidFileName() const { return txtSolidFileName_; }
  QLineEdit* solidPath() const { return txtSolidPath_; }
  QPushButton* okButton() const { return cmdOK_; }
  QLabel* label(const QString& name) const;
  QString information() const;

 private:
  RecordSettingsInput input() const;
  void fill(const RecordSettingsInput& in);
  void focusField(RecordField field);

  MeasureContext ctx_;
  QTabWidget* tabs_ = nullptr;
  std::array<QComboBox*, 3> cmbData_{};
  QComboBox* cmbSignalDataN_ = nullptr;
  QComboBox* cmbTimeRefresh_ = nullptr;
  QLabel* lblFR_ = nullptr;
  QLabel* lblOneRotor_ = nullptr;
  QLabel* lblFG_ = nullptr;
  QLabel* lblStepDesc_ = nullptr;
  QLabel* lblFreqDesc_ = nullptr;
  QLabel* lblFreqDescADC_ = nullptr;
  QLabel* lblTimeRec_ = nullptr;
  QLabel* lblBuffer_ = nullptr;
  QSlider* sldFreq_ = nullptr;
  QLabel* lblFreqADC_ = nullptr;
  QLabel* lblFreqChannel_ = nullptr;
  QLineEdit* txtSolidFileName_ = nullptr;
  QLineEdit* txtSolidPath_ = nullptr;
  QTreeView* dir1_ = nullptr;
  QFileSystemModel* dirModel_ = nullptr;
  QPlainTextEdit* txtInformation_ = nullptr;
  QPushButton* cmdOK_ = nullptr;
  int32_t lastSignalDataN_ = 0;
};

}  // namespace aqx::ui
