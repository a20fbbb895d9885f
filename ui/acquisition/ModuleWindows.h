#pragma once
// The two service windows of the acquisition module: what the library and
// the module say about themselves (frmViewInfoADC), and the module's sixteen
// digital inputs and outputs (frmDigitalLines).

#include "core/Prompts.h"

#include <QDialog>

#include <array>
#include <cstdint>

class QCheckBox;
class QPlainTextEdit;

namespace aqx::ui {

// The library's version line, then the module's eight blocks of text; on a
// failure the failure is told and the text ends in "> Нет данных АЦП!!!".
QString AdcInformationText(Prompts& prompts);

class InfoAdcWindow : public QDialog {
  Q_OBJECT
 public:
  InfoAdcWindow(Prompts& prompts, QWidget* parent = nullptr);
  QString text() const;

 private:
  QPlainTextEdit* txtInfo_ = nullptr;
};

class DigitalLinesWindow : public QDialog {
  Q_OBJECT
 public:
  DigitalLinesWindow(Prompts& prompts, QWidget* parent = nullptr);

  // cmdRead: the input lines into their boxes; on a failure they stay.
  void cmdRead();
  // cmdRecord: the ticked output boxes to the output lines.
  void cmdRecord();
  // chkDigitalLinesEnable: the outputs driven, or left floating.
  void chkDigitalLinesEnable(bool enable);

  QCheckBox* input(int line) const { return chkChannelIn_[static_cast<size_t>(line)]; }
  QCheckBox* output(int line) const { return chkChannelOut_[static_cast<size_t>(line)]; }
  QCheckBox* enable() const { return chkEnable_; }

 private:
  Prompts& prompts_;
  std::array<QCheckBox*, 16> chkChannelIn_{};
  std::array<QCheckBox*, 16> chkChannelOut_{};
  QCheckBox* chkEnable_ = nullptr;
};

}  // namespace aqx::ui
