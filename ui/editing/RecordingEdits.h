#pragma once
// What the user changes in the recording in memory, from the main window:
// the edit commands of the signal view's menu with undo and redo, the cut to
// whole revolutions, the markers, the recording description and its date,
// channel import, WAVE export and the sound player. The main window owns one
// and calls it when its menus are built and refreshed.

#include "core/ReaderTable.h"
#include "core/Prompts.h"
#include "ui/main/ViewHost.h"
#include "views/edit/EditHistory.h"
#include "views/edit/SignalEdit.h"
#include "views/ViewRefresh.h"

#include <QHash>
#include <QObject>
#include <QPointer>

#include <functional>

class QAction;
class QMenu;

namespace aqx::ui {

class ImportWindow;
class MarkerWindow;
class ObjectWindow;
class PlayerWindow;

class RecordingEdits : public QObject {
  Q_OBJECT
 public:
  struct Hooks {
    std::function<void()> viewRefresh;
    // Toolbars, menus and the status bar after the recording changed.
    std::function<void()> refreshFrame;
    // The speed text the signal view shows, for the values' header.
    std::function<QString()> rotorSpeedText;
    // A run is on: the samples are the run's.
    std::function<bool()> measuring;
    // The signal view draws anew (the marks changed).
    std::function<void()> buildSignal;
  };

  RecordingEdits(ViewHost& host, Prompts& prompts, const FileReaderTable& readers, QHash<QString, QAction*>& actions,
                 QWidget* frame, Hooks hooks);
  ~RecordingEdits() override;

  // The edit entries of mnuSignal, "Отменить" and "Повторить" among them
  // (their keys work wherever the frame has the focus).
  void addSignalCommands(QMenu* menu);
  // A menu entry of these commands by its object name (mnuSetupReAccount,
  // mnuSetupObject, mnuViewMarker, mnuFileImport, mnuFileExport,
  // mnuServicePlayerSound): the frame's entry from its table, made live.
  void adoptCommand(const char* name);
  QAction* addCommand(QMenu* menu, const char* name, const QString& caption);
  // Enabled states after the frame's refresh; selection: the signal view has one.
  void refreshCommands(bool data);
  void selectionChanged(bool selection);
  void closeAll();
  // The player's step of ViewRefresh.
  void installRefresh(views::ViewRegistry& registry);

  // Commands, public for tests.
  void runSignalEdit(const QString& name);
  void undo();
  void redo();
  void copyValues();
  void showMarkers();
  void setupObject();
  void editDateTime();
  void importChannels();
  void exportWave();
  void showPlayer();

  views::EditHistory& history() { return history_; }
  const views::SignalClipboard& clipboard() const { return clipboard_; }
  MarkerWindow* markerWindow() const;
  ObjectWindow* objectWindow() const;
  ImportWindow* importWindow() const;
  PlayerWindow* playerWindow() const;

 private:
  void connectCommand(QAction* a);
  void afterEdit(views::EditResult result);

  ViewHost& host_;
  AppState& s_;
  Prompts& prompts_;
  const FileReaderTable& readers_;
  QHash<QString, QAction*>& actions_;
  QWidget* frame_;
  Hooks hooks_;
  views::EditHistory history_;
  views::SignalClipboard clipboard_;
  bool selection_ = false;
  QPointer<MarkerWindow> markers_;
  QPointer<ObjectWindow> object_;
  QPointer<ImportWindow> import_;
  QPointer<PlayerWindow> player_;
  // Marks the marker table shows: count and stamps, to refill it after a load.
  double markerSignature_ = 0.0;
};

}  // namespace aqx::ui
