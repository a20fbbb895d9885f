#pragma once
// frmSetupParameters ("Параметры"): every option of the sections Parameters
// and Color, one control per row of the option table, on tabs; the tab shown
// last comes back. Apply takes all values or, when one is wrong, none; Reset
// asks, deletes the settings and offers to close the program.

#include "core/AppState.h"
#include "core/ConfigKeys.h"
#include "core/Prompts.h"
#include "core/Settings.h"

#include <QColor>
#include <QDialog>

#include <functional>
#include <optional>
#include <vector>

class QAbstractButton;
class QTabWidget;
class QWidget;

namespace aqx::ui {

// A colour chosen by the user; nullopt when cancelled.
using ColorChooser = std::function<std::optional<QColor>(const QColor& current, const QString& title)>;
// The standard colour dialog.
ColorChooser StandardColorChooser(QWidget* parent);

// Blue-green-red words, as the settings keep colours.
QColor ColorFromWord(int32_t bgr);
int32_t WordFromColor(const QColor& c);

class ParametersDialog : public QDialog {
  Q_OBJECT
 public:
  struct Hooks {
    std::function<void()> applied;       // options changed: bars and views follow
    std::function<void()> closeProgram;  // after a reset the user agreed to close
    std::function<void()> setupColorType;
    std::function<void()> setupLine;
  };
  ParametersDialog(AppState& s, SettingsStore& store, Prompts& prompts, Hooks hooks, QWidget* parent = nullptr);

  void setColorChooser(ColorChooser chooser) { chooser_ = std::move(chooser); }
  // cmdApply; false when a value was refused (the user was told).
  bool Apply();
  // cmdReset.
  void Reset();
  // The controls again from the state.
  void Reload();
  QTabWidget* tabs() const { return tabs_; }

 private:
  struct Row {
    const SettingKey* key;
    QWidget* control;
  };
  void chooseColor(const Row& row);

  AppState& s_;
  SettingsStore& store_;
  Prompts& prompts_;
  Hooks hooks_;
  ColorChooser chooser_;
  QTabWidget* tabs_ = nullptr;
  std::vector<Row> rows_;
};

}  // namespace aqx::ui
