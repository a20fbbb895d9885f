#pragma once
// frmMain: the multi-document frame. Menus, the two toolbars, the status bar
// and the view windows; it owns no data, shows the shared state and routes
// the commands.

#include "core/ReaderTable.h"
#include "core/OpenFile.h"
#include "files/SolidFile.h"
#include "ui/main/ViewHost.h"

#include <QDialog>
#include <QHash>
#include <QMainWindow>
#include <QPointer>

#include <array>
#include <functional>
#include <memory>
#include <vector>

class QActionGroup;
class QLineEdit;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QToolBar;
class QToolButton;

namespace aqx::ui {

class CascadeWindow;
class FrequencyTableDialog;
class MeasureCommands;
class MeasurementRun;
class PanelBar;
class SpectrWindow;
class ParametersWindow;
class RecordingEdits;
class ReportWindows;
class ShaftViews;
class SupportWindows;
class SignalWindow;

class MainWindow : public QMainWindow, public ViewHost {
  Q_OBJECT
 public:
  MainWindow(AppState& state, SettingsStore& store, Prompts& prompts, const Vocabulary& vocabulary,
             const FileReaderTable& readers, QWidget* parent = nullptr);
  ~MainWindow() override;

  // The load of the main window: settings with the crash check, the recent
  // list, toolbars and status bar.
  void load();
  // At start: the file of the command line, or the last file (LoadStartFile).
  bool loadStartFile(const QString& commandLine);

  // Public operations.
  bool OpenFile(const QString& path);
  void RefreshToolbarMainMenu();
  void RefreshToolbarChannels();
  void RefreshStatusBar();
  void ReadRecentFile();
  void OutPathFileDataToStatusBar();
  void SelectActiveChannel(int channel);
  void SetViewStyle();
  void ActivateElements(bool run);
  void Imposition();
  void ColorBack(int set);
  void ViewRefresh(bool cheap = false);

  // Windows and parts, for the program's own use and for tests.
  QAction* action(const QString& name) const;
  QList<QAction*> commandActions() const;
  QMdiArea* mdiArea() const { return mdi_; }
  SignalWindow* signalWindow() const;
  ParametersWindow* parametersWindow() const;
  SpectrWindow* spectrWindow() const;
  CascadeWindow* cascadeWindow() const;
  FrequencyTableDialog* setupProbe() const;
  FrequencyTableDialog* setupFilter() const;
  QToolBar* toolbarMain() const { return toolbarMain_; }
  QToolBar* toolbarChannels() const { return toolbarChannels_; }
  QToolButton* channelButton(int channel) const;
  PanelBar* mainStatus() const { return status_; }
  QMenu* signalMenu() const { return signalMenu_; }
  // Files dropped on the window (the drop handler's work, callable directly).
  bool dropFiles(const QStringList& paths);
  MeasurementRun* measurementRun() const { return run_; }
  // The trajectory and rotor form windows.
  ShaftViews* shaftViews() const { return shaftViews_.get(); }
  // Edits of the recording, markers, description, import, sound.
  RecordingEdits* recordingEdits() const { return edits_.get(); }
  ReportWindows* reportWindows() const { return reportWindows_.get(); }
  // The measurement settings, marker, calibration and monitor windows.
  MeasureCommands* measureCommands() const { return measure_.get(); }
  // The option sheet, configurations, file browser, choosers and help.
  SupportWindows* supportWindows() const { return supportWindows_.get(); }

  // ViewHost.
  AppState& state() override { return s_; }
  SettingsStore& settings() override { return store_; }
  const Vocabulary& vocabulary() const override { return vocab_; }
  void viewRefresh(bool cheap) override { ViewRefresh(cheap); }
  void showRotorSpeed(bool visible, const QString& text) override;
  void showSignalPopup(const QPoint& globalPos) override;
  void signalStatusChanged(const views::SignalStatus& status) override;
  void signalOptionsChanged() override;
  views::AnalysisResults& analysis() override { return *analysis_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  // Menus, toolbars and status bar (MainMenus.cpp).
  void buildMenus();
  void buildFileMenu();
  void buildViewMenu();
  void buildOtherMenus();
  void buildSignalMenu();
  void buildToolbars();
  void buildStatusBar();
  QAction* addCommand(QMenu* menu, const char* name, const QString& caption, void (MainWindow::*handler)(),
                      bool available = true);
  QAction* addLaterCommand(QMenu* menu, const char* name, const QString& caption);
  QAction* addToggle(QMenu* menu, const char* name, const QString& caption, void (MainWindow::*handler)());
  // A checkable entry that calls `onClick`; in `group` when one of a set is chosen.
  QAction* addCheck(QMenu* menu, const QString& name, const QString& caption, std::function<void()> onClick,
                    QActionGroup* group = nullptr);

  // Commands (MainCommands.cpp).
  void onFileRecord();
  void onFileOpen();
  void onFileSave();
  void onFileCopy();
  void onFileRecentFile(int k);
  void onFileExit();
  void applyBars();
  // Bars, menus, background and status bar as the settings now stand.
  void applySettings();
  void onViewSignal();
  void onViewParameters();
  void onViewImposition();
  void onViewBlock(SolidBlockCommand command);
  void onViewStyle(int style);
  void onWindowCascade();
  void onWindowTileAcross();
  void onWindowTileSideBySide();
  void onWindowClose();
  void onHelpAbout();
  void onHelpADC();
  void onServiceDigitalLines();
  void onSignalCursor(int entry);
  void onSignalCopy();
  void onSignalZoomBack();
  void onSignalShowAll();
  // The spectrum family (MainSpectrum.cpp).
  void onViewSpectr();
  void onViewSpectrum();
  void onSetupCheckF();
  void onSetupFiltr();
  void onSetupSpectrumAnalyser();
  void onServiceEvaluation();
  void installSpectrumRefresh(views::ViewRegistry& registry);
  QWidget* makeSpectrumView(int window);

  // View windows.
  OpenFileContext context();
  QMdiSubWindow* openView(int window);
  void closeView(int window);
  void closeAllViews();
  void arrange(int arrangement, const std::vector<QMdiSubWindow*>& windows);
  void tile(bool across);
  // After the workspace shrank: windows that stick out come back inside.
  void fitViewsIntoArea();
  void applyBackground();
  void refreshSignalMenuChecks();
  void updateViewChecks();
  // A recording is in memory or coming in.
  bool hasData() const;

  AppState& s_;
  SettingsStore& store_;
  Prompts& prompts_;
  const Vocabulary& vocab_;
  const FileReaderTable& readers_;
  std::unique_ptr<views::AnalysisResults> analysis_;
  std::unique_ptr<ShaftViews> shaftViews_;
  std::unique_ptr<RecordingEdits> edits_;
  std::unique_ptr<ReportWindows> reportWindows_;
  std::unique_ptr<MeasureCommands> measure_;
  std::unique_ptr<SupportWindows> supportWindows_;

  QMdiArea* mdi_ = nullptr;
  QPointer<QMdiSubWindow> signalSub_;
  QPointer<QMdiSubWindow> parametersSub_;
  QPointer<QMdiSubWindow> spectrSub_;
  QPointer<QMdiSubWindow> cascadeSub_;
  QPointer<FrequencyTableDialog> setupProbe_;
  QPointer<FrequencyTableDialog> setupFilter_;
  QToolBar* toolbarMain_ = nullptr;
  QToolBar* toolbarChannels_ = nullptr;
  std::array<QToolButton*, kMaxChannels> channelButtons_{};
  PanelBar* status_ = nullptr;
  QLineEdit* txtBlock_ = nullptr;
  QLineEdit* txtSolidBlockM_ = nullptr;
  QMenu* fileMenu_ = nullptr;
  QMenu* signalMenu_ = nullptr;
  QHash<QString, QAction*> actions_;
  std::vector<QAction*> recentActions_;
  QAction* recentLine_ = nullptr;
  QPointer<QDialog> infoAdc_;
  QPointer<QDialog> digitalLines_;
  MeasurementRun* run_ = nullptr;
  bool measuring_ = false;
  bool refreshing_ = false;
};

}  // namespace aqx::ui
