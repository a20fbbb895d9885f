#pragma once
// frmSetupObject ("Описание режима"): station, unit, mode, the instrument
// readings and the comment of the recording; and frmEditDateTime, where the
// recording's date and time are set.

#include "core/AppState.h"
#include "core/Vocabulary.h"

#include <QDialog>

#include <array>
#include <functional>

class QComboBox;
class QDateTimeEdit;
class QLineEdit;

namespace aqx::ui {

class ObjectWindow : public QDialog {
  Q_OBJECT
 public:
  // applied: after the state took the form (save the settings, refresh).
  ObjectWindow(AppState& state, const Vocabulary& vocabulary, std::function<void()> applied, QWidget* parent);

  void cmdApply();
  void cmdOK();
  void cmdClear();
  QComboBox* station() const { return cmbStation_; }
  QComboBox* agregat() const { return cmbAgregat_; }
  QComboBox* mode() const { return cmbMode_; }
  QLineEdit* field(int index) const { return txtData_.at(static_cast<size_t>(index)); }

 signals:
  // "Дата и время ...": frmEditDateTime over this window.
  void dateTimeRequested();

 private:
  AppState& s_;
  std::function<void()> applied_;
  QComboBox* cmbStation_ = nullptr;
  QComboBox* cmbAgregat_ = nullptr;
  QComboBox* cmbMode_ = nullptr;
  std::array<QLineEdit*, kRemarkCount> txtData_{};
};

class DateTimeWindow : public QDialog {
  Q_OBJECT
 public:
  DateTimeWindow(AppState& state, std::function<void()> applied, QWidget* parent);
  void cmdOK();
  QDateTimeEdit* editor() const { return edit_; }

 private:
  AppState& s_;
  std::function<void()> applied_;
  QDateTimeEdit* edit_ = nullptr;
};

}  // namespace aqx::ui
