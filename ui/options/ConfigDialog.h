#pragma once
// frmConfig ("Конфигурации"): the named snapshots of the whole settings
// tree; open (restore and read into the running program), save, rename,
// delete.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"

#include <QDialog>

#include <functional>

class QListWidget;

namespace aqx::ui {

class ConfigDialog : public QDialog {
  Q_OBJECT
 public:
  // restored: the settings were read into the state; the main window
  // follows (bars, menus, views).
  ConfigDialog(AppState& s, SettingsStore& store, Prompts& prompts, QString folder,
               std::function<void()> restored, QWidget* parent = nullptr);

  void Open();
  void Save();
  void Rename();
  void Delete();
  // lstConfig again from the folder, keeping the selection by name.
  void Refresh(const QString& select = {});
  QListWidget* list() const { return lstConfig_; }

 private:
  QString selected() const;

  AppState& s_;
  SettingsStore& store_;
  Prompts& prompts_;
  QString folder_;
  std::function<void()> restored_;
  QListWidget* lstConfig_ = nullptr;
};

}  // namespace aqx::ui
