#pragma once
// The supporting windows of the main window: the option sheet, the named
// configurations, the file browser and file properties, the colour and line
// choosers, the tip of the day and the built-in manual with F1. The main
// window owns one; it adds these commands to the menus and opens the windows.

#include "core/Prompts.h"
#include "ui/main/ViewHost.h"

#include <QHash>
#include <QObject>
#include <QPointer>

#include <functional>

class QAction;
class QMenu;
class QWidget;

namespace aqx::ui {

class AdviceWindow;
class ColorPropertyWindow;
class SignalWindow;
class ConfigDialog;
class FilePropertyWindow;
class FilesWindow;
class HelpWindow;
class ParametersDialog;

class SupportWindows : public QObject {
  Q_OBJECT
 public:
  struct Hooks {
    // Options or settings changed: toolbars, menus, status bar and views
    // follow the state.
    std::function<void()> settingsChanged;
    // A recording chosen in the browser, with the unsaved check.
    std::function<bool(const QString& path)> openFile;
    std::function<void()> closeProgram;
    // The object name of the window in front of the frame (for F1).
    std::function<QString()> activeViewName;
    // The signal view while it is open, else null.
    std::function<SignalWindow*()> signalWindow;
  };

  SupportWindows(ViewHost& host, Prompts& prompts, QHash<QString, QAction*>& actions, QWidget* frame, Hooks hooks);
  ~SupportWindows() override;

  // The command `name` if it is one of these, appended to `menu`; null for
  // another command.
  QAction* addCommand(QMenu* menu, const char* name, const QString& caption);
  // Enabled states by whether a recording is in memory, and not during a run.
  void refreshCommands(bool data, bool measuring);
  // After ViewRefresh: the windows that show the recording follow it.
  void viewRefreshed();
  // frmViewColorProperty stands beside the signal view while its option and
  // a cursor are on.
  void syncColorProperty();
  // Start step: the tip of the day while Advice is on.
  void startUp();

  // Where the configurations live; by default beside the settings file.
  void setConfigsFolder(const QString& folder) { configsFolder_ = folder; }
  QString configsFolder() const;

  void showParameters();
  void showConfigs();
  void showFiles();
  void showFileProperty();
  void showAdvice();
  void showSetupColorType();
  void showSetupLine();
  // The manual at a page ("" for the contents), or with a search.
  void showHelp(const QString& page = {});
  void showHelpSearch();
  // F1: the page of the window in front (of the window that holds target,
  // when given).
  void helpForWindowInFront(QWidget* target = nullptr);

  // The windows while they are open, else null.
  ParametersDialog* parameters() const;
  ConfigDialog* configs() const;
  FilesWindow* files() const;
  FilePropertyWindow* fileProperty() const;
  AdviceWindow* advice() const;
  HelpWindow* help() const;
  ColorPropertyWindow* colorProperty() const;
  QWidget* setupColorType() const { return setupColorType_; }
  QWidget* setupLine() const { return setupLine_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  ViewHost& host_;
  Prompts& prompts_;
  QHash<QString, QAction*>& actions_;
  QWidget* frame_;
  Hooks hooks_;
  QString configsFolder_;
  QPointer<ParametersDialog> parameters_;
  QPointer<ConfigDialog> configs_;
  QPointer<FilesWindow> files_;
  QPointer<FilePropertyWindow> fileProperty_;
  QPointer<AdviceWindow> advice_;
  QPointer<HelpWindow> help_;
  QPointer<ColorPropertyWindow> colorProperty_;
  QPointer<QWidget> setupColorType_;
  QPointer<QWidget> setupLine_;
};

}  // namespace aqx::ui
