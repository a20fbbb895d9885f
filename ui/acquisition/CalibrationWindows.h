#pragma once
// The two service tools of the acquisition: frmServiceDetectSensor
// ("Тарировка датчиков биения"), which takes a run-out sensor through
// known gaps, and frmServiceLineka ("Линейка"), the hollow degree ruler the
// user stretches over one revolution of a chart.

#include "core/SensorCalibration.h"
#include "ui/acquisition/MeasureContext.h"

#include <QDialog>
#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTableWidget;
class QTimer;

namespace aqx::ui {

class DetectSensorWindow : public QDialog {
  Q_OBJECT
 public:
  explicit DetectSensorWindow(MeasureContext ctx, QWidget* parent = nullptr);
  ~DetectSensorWindow() override;

  // cmdOK: one step, the level at the gap the status line asked for.
  void Step();
  void Reset();
  void Copy();

  QComboBox* channel() const { return cmbChannel_; }
  QLineEdit* razbros() const { return txtRazbros_; }
  QTableWidget* table() const { return grid_; }
  QString info() const;
  QString status() const;
  QPushButton* stepButton() const { return cmdOK_; }
  const SensorCalibration& calibration() const { return calibration_; }

 private:
  void showRecommendation();
  void lockSteps(bool inProgress);
  int selectedChannel() const;

  MeasureContext ctx_;
  SensorCalibration calibration_;
  QComboBox* cmbChannel_ = nullptr;
  QLineEdit* txtSensor_ = nullptr;
  QLineEdit* txtRemark_ = nullptr;
  QLineEdit* txtRazbros_ = nullptr;
  QTableWidget* grid_ = nullptr;
  QPlainTextEdit* txtInfo_ = nullptr;
  QLabel* statusInfo_ = nullptr;
  QPushButton* cmdOK_ = nullptr;
  QPushButton* cmdReset_ = nullptr;
  QPushButton* cmdCopy_ = nullptr;
  QPushButton* cmdClose_ = nullptr;
};

// The ruler's caption for a mouse at screen x over a ruler whose inside
// starts at leftPixels and is widthPixels wide: "N°" across, else "Линейка".
QString LinekaCaption(int mouseX, int leftPixels, int widthPixels);

class LinekaWindow : public QWidget {
  Q_OBJECT
 public:
  LinekaWindow(SettingsStore& store, QWidget* owner);
  ~LinekaWindow() override;
  // Timer1.
  void tick();
  QString caption() const { return caption_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  QRect inside() const;

  SettingsStore& store_;
  QTimer* timer1_ = nullptr;
  QString caption_;
  int lastX_ = -1;
  QPoint pressOffset_;
  QSize pressSize_;
  bool resizing_ = false;
};

}  // namespace aqx::ui
