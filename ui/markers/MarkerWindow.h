#pragma once
// frmViewMarker ("Маркеры"): the table of time marks with its buttons. A
// window of its own beside the views, so that marks can be set while a run
// goes on; each change is stored at once and redrawn in the signal view.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"

#include <QColor>
#include <QDialog>

#include <functional>
#include <optional>

class QTableWidget;

namespace aqx::ui {

class MarkerWindow : public QDialog {
  Q_OBJECT
 public:
  MarkerWindow(AppState& state, SettingsStore& store, Prompts& prompts, std::function<void()> redrawSignal,
               QWidget* parent);
  ~MarkerWindow() override;

  // Refills the table from the state.
  void SetDataFlexGrid();
  // Buttons and the double click on a cell, as the user works them.
  void cmdAdd();
  void cmdDelete();
  void cmdClear();
  void cellDoubleClicked(int row, int column);
  QTableWidget* table() const { return grid_; }
  // The colour dialog; tests answer it themselves.
  std::function<std::optional<QColor>(const QColor& current)> chooseColor;

 private:
  void changed();

  AppState& s_;
  SettingsStore& store_;
  Prompts& prompts_;
  std::function<void()> redrawSignal_;
  QTableWidget* grid_ = nullptr;
};

}  // namespace aqx::ui
