#pragma once
// The report commands of the main window: mnuReportMaster,
// mnuReportProtokol and mnuReportPattern, with the master's steps, the wait
// window over the walk through the files, and the written workbook handed
// to the desktop's spreadsheet program. The main window owns one.

#include "core/AppState.h"
#include "core/ReaderTable.h"
#include "core/Prompts.h"
#include "reports/ReportCommands.h"

#include <QHash>
#include <QObject>
#include <QPointer>

#include <functional>

class QAction;
class QMenu;
class QWidget;

namespace aqx::ui {

class MasterWizard;
class WaitWindow;

class ReportWindows : public QObject {
  Q_OBJECT
 public:
  struct Hooks {
    // The last file of a walk is now the recording in memory: the steps
    // after a read (toolbars, views, settings).
    std::function<void()> recordingLoaded;
    // Views hold their drawing while the state changes under them.
    std::function<void(bool hold)> holdViews;
    // Opens a written workbook; empty: the desktop's program for .xlsx.
    std::function<bool(const QString& path)> openWorkbook;
  };

  ReportWindows(AppState& state, Prompts& prompts, const FileReaderTable& readers,
                QHash<QString, QAction*>& actions, QWidget* frame, Hooks hooks);
  ~ReportWindows() override;

  // The three commands, in the menu's order.
  void addCommands(QMenu* report);
  // None of them while measuring.
  void refreshCommands(bool idle);

  // The opener of written workbooks (tests put their own, so that nothing
  // starts a spreadsheet program).
  void setWorkbookOpener(std::function<bool(const QString& path)> open);

  void onReportProtokol();
  void onReportMaster();
  void onReportPattern();

  // For tests: the master while it stands, the wait window, the last outcome.
  MasterWizard* wizard() const;
  WaitWindow* waitWindow() const { return wait_; }
  const reports::ReportResult& lastResult() const { return last_; }

 private:
  QAction* command(QMenu* menu, const char* name, const QString& caption, void (ReportWindows::*run)());
  // Runs a report command under the wait window and deals with its outcome.
  void run(const std::function<reports::ReportResult(reports::ReportContext&)>& command, const QString& title);
  void masterFinished();

  AppState& s_;
  Prompts& prompts_;
  const FileReaderTable& readers_;
  QHash<QString, QAction*>& actions_;
  QWidget* frame_;
  Hooks hooks_;
  WaitWindow* wait_ = nullptr;
  QPointer<MasterWizard> wizard_;
  reports::ReportResult last_;
  bool running_ = false;
};

}  // namespace aqx::ui
