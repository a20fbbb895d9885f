#pragma once
// frmViewConsole: a text report in a window of its own, modeless; a console
// already open takes the new title and text.

#include "core/AppState.h"

#include <QWidget>

class QPlainTextEdit;

namespace aqx::ui {

class PanelBar;

class ConsoleWindow : public QWidget {
  Q_OBJECT
 public:
  ConsoleWindow(AppState& state, QWidget* parent = nullptr);
  ~ConsoleWindow() override;

  void showText(const QString& title, const QString& text);
  QString text() const;
  QPlainTextEdit* textBox() const { return txtConsole_; }

 private:
  AppState& s_;
  QPlainTextEdit* txtConsole_ = nullptr;
  PanelBar* statusBar_ = nullptr;
};

}  // namespace aqx::ui
