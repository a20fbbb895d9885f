#pragma once
// frmSetupFormaRotorSpicaView ("Установка спиц ротора"): how many spokes the
// rotor has, on which pole the first stands, which way they are counted,
// and whether the rotor form shows them. Each control takes effect at once;
// "Применить" stores the settings, "OK" stores them and closes, "Отмена"
// puts back what stood when the window opened.

#include "core/AppState.h"
#include "core/Settings.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QComboBox;
class QPushButton;

namespace aqx::ui {

class SpicaWindow : public QDialog {
  Q_OBJECT
 public:
  SpicaWindow(AppState& state, SettingsStore& store, std::function<void()> redraw, QWidget* parent = nullptr);

  void apply();
  QComboBox* spokeCount() const { return cmbSpicaN_; }
  QComboBox* firstPole() const { return cmbSpicaPolus_; }
  QComboBox* direction() const { return cmbSpicaDirection_; }
  QCheckBox* visible() const { return chkVisible_; }

 protected:
  void reject() override;

 private:
  void takeControls();

  AppState& s_;
  SettingsStore& store_;
  std::function<void()> redraw_;
  FormaRotorOptions before_;
  QComboBox* cmbSpicaN_ = nullptr;
  QComboBox* cmbSpicaPolus_ = nullptr;
  QComboBox* cmbSpicaDirection_ = nullptr;
  QCheckBox* chkVisible_ = nullptr;
};

}  // namespace aqx::ui
