#include "ui/main/MainWindow.h"

#include "core/Config.h"
#include "core/ConfigWriters.h"
#include "core/Startup.h"
#include "engine/Aquilonix.h"
#include "ui/common/Icons.h"
#include "ui/acquisition/MeasurementRun.h"
#include "ui/common/PanelBar.h"
#include "ui/reports/ReportWindows.h"
#include "ui/acquisition/MeasureCommands.h"
#include "ui/rotor/ShaftViews.h"
#include "ui/editing/RecordingEdits.h"
#include "ui/options/SupportWindows.h"
#include "ui/signal/ParametersWindow.h"
#include "ui/signal/SignalWindow.h"
#include "core/ConfigKeys.h"
#include "ui/common/OptionMenu.h"
#include "ui/main/Workspace.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QLineEdit>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

namespace aqx::ui {

namespace {

// The workspace behind the view windows; while it is empty it says how a
// recording comes in.
class Workspace : public QMdiArea {
 public:
  explicit Workspace(QWidget* parent) : QMdiArea(parent) {}
  QString hint;

 protected:
  void paintEvent(QPaintEvent* event) override {
    QMdiArea::paintEvent(event);
    if (!subWindowList().isEmpty() || hint.isEmpty()) return;
    QPainter p(viewport());
    QFont f = font();
    f.setPointSizeF(f.pointSizeF() * 1.3);
    p.setFont(f);
    p.setPen(background().color().lightness() > 128 ? QColor(60, 60, 60) : QColor(230, 230, 230));
    p.drawText(viewport()->rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap, hint);
  }
};

}  // namespace

MainWindow::MainWindow(AppState& state, SettingsStore& store, Prompts& prompts, const Vocabulary& vocabulary,
                       const FileReaderTable& readers, QWidget* parent)
    : QMainWindow(parent),
      s_(state),
      store_(store),
      prompts_(prompts),
      vocab_(vocabulary),
      readers_(readers),
      analysis_(std::make_unique<views::AnalysisResults>()) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(UpdateRecordTitle());
  setWindowIcon(MakeToolIcon(ToolIcon::Application));
  setAcceptDrops(true);
  mdi_ = new Workspace(this);
  mdi_->setObjectName(QStringLiteral("MDIArea"));
  setCentralWidget(mdi_);
  connect(mdi_, &QMdiArea::subWindowActivated, this, [this] { RefreshToolbarMainMenu(); });
  ShaftViews::Hooks shaftHooks;
  shaftHooks.openView = [this](int window) { return openView(window); };
  shaftHooks.closeView = [this](int window) { closeView(window); };
  shaftHooks.viewRefresh = [this] { ViewRefresh(false); };
  shaftHooks.refreshToolbars = [this] { RefreshToolbarMainMenu(); };
  shaftViews_ = std::make_unique<ShaftViews>(*this, prompts_, actions_, this, std::move(shaftHooks));
  RecordingEdits::Hooks editHooks;
  editHooks.viewRefresh = [this] { ViewRefresh(false); };
  editHooks.refreshFrame = [this] {
    RefreshToolbarMainMenu();
    RefreshToolbarChannels();
    RefreshStatusBar();
    OutPathFileDataToStatusBar();
  };
  editHooks.rotorSpeedText = [this] { return views::RotorSpeedText(analysis_->speed); };
  editHooks.measuring = [this] { return measuring_; };
  editHooks.buildSignal = [this] {
    if (SignalWindow* w = signalWindow()) w->BuildSignal();
  };
  edits_ = std::make_unique<RecordingEdits>(*this, prompts_, readers_, actions_, this, std::move(editHooks));
  ReportWindows::Hooks reportHooks;
  reportHooks.recordingLoaded = [this] {
    AddNewRecentFile(store_, s_.PathFileData);
    ReadRecentFile();
    OpenFileContext ctx = context();
    ShowReadRecording(ctx);
  };
  reportHooks.holdViews = [this](bool hold) { mdi_->setUpdatesEnabled(!hold); };
  reportWindows_ = std::make_unique<ReportWindows>(s_, prompts_, readers_, actions_, this, std::move(reportHooks));
  measure_ = std::make_unique<MeasureCommands>(
      MeasureContext{s_, store_, prompts_, [this] { ViewRefresh(false); },
                     [this] { RefreshToolbarChannels(); RefreshToolbarMainMenu(); RefreshStatusBar(); },
                     [this] { if (SignalWindow* w = signalWindow()) w->ResetValueElements(); }},
      vocab_, actions_, this);
  SupportWindows::Hooks supportHooks;
  supportHooks.settingsChanged = [this] {
    applySettings();
    ViewRefresh(false);
  };
  supportHooks.openFile = [this](const QString& path) {
    return !measuring_ && ConfirmReplaceData(s_, prompts_) && OpenFile(path);
  };
  supportHooks.closeProgram = [this] { close(); };
  supportHooks.signalWindow = [this] { return signalWindow(); };
  supportHooks.activeViewName = [this] {
    return mdi_->activeSubWindow() && mdi_->activeSubWindow()->widget() ? mdi_->activeSubWindow()->widget()->objectName()
                                                                       : objectName();
  };
  supportWindows_ = std::make_unique<SupportWindows>(*this, prompts_, actions_, this, std::move(supportHooks));
  buildMenus();
  buildToolbars();
  buildStatusBar();
  MeasurementRun::Hooks runHooks;
  runHooks.activateElements = [this](bool running) {
    ActivateElements(running);
    RefreshStatusBar();
    OutPathFileDataToStatusBar();
    // The live cycle needs its views.
    if (running && mdi_->subWindowList().isEmpty()) SetViewStyle();
  };
  runHooks.refreshToolbars = [this] { RefreshToolbarMainMenu(); };
  runHooks.viewRefresh = [this] { ViewRefresh(false); };
  runHooks.statusFile = [this](bool show) { measure_->showStatusFile(show); };
  runHooks.openRecordedFile = [this](const QString& path) { OpenFile(path); };
  runHooks.followNewestRow = [this](int32_t newestRow, int32_t startRows) {
    SignalWindow* w = signalWindow();
    if (w) w->FollowNewestRow(newestRow, startRows);
    return w != nullptr;
  };
  runHooks.showRunState = [this] {
    setWindowTitle(RunRecordTitle(s_, run_->running(), run_->continuous(), InformationFileData()));
    RefreshStatusBar();
    OutPathFileDataToStatusBar();
  };
  run_ = new MeasurementRun(s_, prompts_, std::move(runHooks), this);
  if (const QScreen* screen = QGuiApplication::primaryScreen()) {
    const QRect area = screen->availableGeometry();
    resize(area.width() * 9 / 10, area.height() * 9 / 10);
    move(area.center() - rect().center());
  }
}

MainWindow::~MainWindow() {
  // The view windows save their settings as they close; they must go
  // while the state and the store they write to are still there.
  delete signalSub_.data();
  delete parametersSub_.data();
  delete spectrSub_.data();
  delete cascadeSub_.data();
  shaftViews_->closeAll();
  edits_->closeAll();
  delete infoAdc_.data();
  delete digitalLines_.data();
}

OpenFileContext MainWindow::context() {
  OpenFileHooks hooks;
  hooks.setBusyCursor = [](bool busy) {
    if (busy) {
      QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
      QApplication::restoreOverrideCursor();
    }
  };
  hooks.resetSignalViewBlock = [this](AppState&) {
    if (SignalWindow* w = signalWindow()) w->ResetValueElements();
  };
  hooks.refreshToolbars = [this](AppState& s) {
    // Without imposition the view shows exactly one channel, whatever the
    // file says: the current one.
    if (!s.Imposition && s.FirstChannelActive >= 1 && s.FirstChannelActive <= kMaxChannels) {
      for (int c = 1; c <= kMaxChannels; ++c) s.channels.Active[c] = c == s.FirstChannelActive ? 1 : 0;
    }
    RefreshToolbarMainMenu();
    RefreshToolbarChannels();
    RefreshStatusBar();
    OutPathFileDataToStatusBar();
  };
  hooks.setViewStyle = [this](AppState&) { SetViewStyle(); };
  hooks.viewRefresh = [this](AppState&) { ViewRefresh(false); };
  hooks.recentFilesChanged = [this](const QStringList&) { ReadRecentFile(); };
  hooks.pumpMessages = [] { QCoreApplication::processEvents(); };
  return OpenFileContext{s_, store_, prompts_, readers_, std::move(hooks)};
}

void MainWindow::load() {
  OpenFileContext ctx = context();
  MainLoad(ctx);
  action(QStringLiteral("mnuSignalDelete"))->setEnabled(false);
  action(QStringLiteral("mnuSignalPaste"))->setEnabled(false);
  applySettings();
  supportWindows_->startUp();
}

void MainWindow::applySettings() {
  applyBars();
  applyBackground();
  ReadRecentFile();
  RefreshToolbarChannels();
  RefreshToolbarMainMenu();
  RefreshStatusBar();
  OutPathFileDataToStatusBar();
  refreshSignalMenuChecks();
}

bool MainWindow::loadStartFile(const QString& commandLine) {
  OpenFileContext ctx = context();
  return LoadStartFile(ctx, commandLine);
}

bool MainWindow::OpenFile(const QString& path) {
  OpenFileContext ctx = context();
  return aqx::OpenFile(ctx, path);
}

bool MainWindow::dropFiles(const QStringList& paths) {
  if (measuring_) return false;
  OpenFileContext ctx = context();
  return DropFilesCommand(ctx, paths);
}

QAction* MainWindow::action(const QString& name) const { return actions_.value(name); }

QList<QAction*> MainWindow::commandActions() const { return actions_.values(); }

SignalWindow* MainWindow::signalWindow() const {
  return signalSub_ ? qobject_cast<SignalWindow*>(signalSub_->widget()) : nullptr;
}

ParametersWindow* MainWindow::parametersWindow() const {
  return parametersSub_ ? qobject_cast<ParametersWindow*>(parametersSub_->widget()) : nullptr;
}

QToolButton* MainWindow::channelButton(int channel) const {
  if (channel < 1 || channel > kMaxChannels) return nullptr;
  return channelButtons_[static_cast<size_t>(channel - 1)];
}

// ---------------------------------------------------------------------------
// Toolbars, status bar, recent files.
// ---------------------------------------------------------------------------

bool MainWindow::hasData() const { return HasData(s_) || measuring_; }

void MainWindow::RefreshToolbarMainMenu() {
  const bool data = hasData();
  static_cast<Workspace*>(mdi_)->hint =
      data ? QString()
           : QStringLiteral("Откройте файл данных: меню \"Файл\" → \"Открыть ...\",\n"
                            "или перетащите файл в это окно.");
  mdi_->viewport()->update();
  const bool idle = !measuring_;
  action(QStringLiteral("mnuFileOpen"))->setEnabled(idle);
  action(QStringLiteral("mnuFileSave"))->setEnabled(data && idle);
  action(QStringLiteral("mnuFileCopy"))->setEnabled(data && mdi_->activeSubWindow() != nullptr);
  action(QStringLiteral("mnuSignalCopyPicture"))->setEnabled(data && signalWindow() != nullptr);
  action(QStringLiteral("mnuViewSignal"))->setEnabled(data);
  action(QStringLiteral("mnuViewParameters"))->setEnabled(data);
  action(QStringLiteral("mnuViewSpectr"))->setEnabled(data);
  action(QStringLiteral("mnuViewSpectrum"))->setEnabled(data);
  action(QStringLiteral("mnuSetupFiltr"))->setEnabled(data && idle);
  for (int k = 0; k < kViewStyleCount; ++k) action(QStringLiteral("mnuViewStyle%1").arg(k))->setEnabled(data);
  for (QAction* a : recentActions_) a->setEnabled(idle);
  // The module is the run's while it lasts.
  action(QStringLiteral("mnuHelpADC"))->setEnabled(idle);
  action(QStringLiteral("mnuServiceDigitalLines"))->setEnabled(idle);
  QAction* record = action(QStringLiteral("mnuFileRecord"));
  record->setChecked(run_->requested());
  // A stop is under way until the next tick; continuous recording comes
  // with the record settings window.
  record->setEnabled(!run_->stopping());
  const SolidBlockControls blocks = SolidBlockControlState(s_, measuring_);
  const std::pair<const char*, bool> blockStates[] = {
      {"mnuViewBlockFirst", blocks.first}, {"mnuViewBlockPrevious", blocks.previous},
      {"mnuViewBlockNext", blocks.next},   {"mnuViewBlockLast", blocks.last},
      {"mnuViewBlockMin", blocks.min},     {"mnuViewBlockMinus", blocks.minus},
      {"mnuViewBlockPlus", blocks.plus},   {"mnuViewBlockMax", blocks.max}};
  for (const auto& [name, enabled] : blockStates) action(QString::fromLatin1(name))->setEnabled(enabled && data);
  txtBlock_->setText(blocks.blockText);
  txtSolidBlockM_->setText(blocks.scaleText);
  shaftViews_->refreshCommands(data);
  edits_->refreshCommands(data);
  reportWindows_->refreshCommands(idle);
  measure_->refreshCommands(data, measuring_, run_->continuous());
  supportWindows_->refreshCommands(data, measuring_);
  updateViewChecks();
}

void MainWindow::updateViewChecks() {
  action(QStringLiteral("mnuViewSignal"))->setChecked(signalWindow() != nullptr);
  action(QStringLiteral("mnuViewParameters"))->setChecked(parametersWindow() != nullptr);
  action(QStringLiteral("mnuViewSpectr"))->setChecked(spectrWindow() != nullptr);
  action(QStringLiteral("mnuViewSpectrum"))->setChecked(cascadeWindow() != nullptr);
  action(QStringLiteral("mnuHelpADC"))->setChecked(infoAdc_ != nullptr);
  shaftViews_->updateChecks();
  const int style = s_.ViewStyle;
  for (int k = 0; k < kViewStyleCount; ++k) action(QStringLiteral("mnuViewStyle%1").arg(k))->setChecked(k == style);
}

void MainWindow::RefreshToolbarChannels() {
  ChannelButtonOptions o;
  o.VisibleChannels = s_.options.parameters.VisibleChannels;
  o.ColorType = s_.options.parameters.ColorType;
  o.ColorTypeKit = s_.options.config.ColorTypeKit;
  const std::vector<ChannelButtonState> buttons = ChannelButtons(s_, vocab_, o);
  for (const ChannelButtonState& b : buttons) {
    QToolButton* w = channelButton(b.channel);
    const QColor face = b.coloured ? b.face : palette().color(QPalette::Button);
    w->setIcon(MakeChannelIcon(b.channel, b.enabled ? face : palette().color(QPalette::Midlight), b.current));
    w->setChecked(b.pressed);
    w->setEnabled(b.enabled);
    w->setToolTip(b.toolTip);
    toolbarChannels_->actions()[b.channel - 1]->setVisible(b.visible);
    QAction* entry = action(QStringLiteral("mnuViewChannel%1").arg(b.channel));
    entry->setVisible(b.channel <= ChannelCount(s_));
    entry->setEnabled(b.enabled);
    entry->setChecked(b.pressed);
  }
  action(QStringLiteral("mnuViewImposition"))->setChecked(s_.Imposition);
}

namespace {
const char* const kMainPanelKeys[] = {"DateTime", "Station", "Agregat", "Mode", "Type", "Place"};
}  // namespace

void MainWindow::RefreshStatusBar() {
  const auto texts = MainStatusTexts(s_, vocab_);
  for (int i = 0; i < kMainPanelCount; ++i) {
    const QString key = QString::fromLatin1(kMainPanelKeys[i]);
    status_->setText(key, texts[static_cast<size_t>(i)]);
    status_->setVisibleOf(key, !texts[static_cast<size_t>(i)].isEmpty());
  }
}

void MainWindow::OutPathFileDataToStatusBar() {
  // The panel takes the width the others leave and shortens the path in
  // its middle to fit, whenever the frame changes size.
  // A run's cycle belongs to no file until it is saved.
  const QString shown = s_.PathFileData.isEmpty() && (!s_.DataSaved || measuring_)
                            ? QStringLiteral("Новая запись (не сохранена)")
                            : QDir::toNativeSeparators(s_.PathFileData);
  status_->setText(QStringLiteral("PathFileData"), shown);
  status_->setToolTipOf(QStringLiteral("PathFileData"), s_.PathFileData.isEmpty() ? shown : s_.PathFileData);
}

void MainWindow::ReadRecentFile() {
  const QStringList captions = aqx::ReadRecentFile(store_);
  bool any = false;
  for (int k = 0; k < kRecentFileCount && k < static_cast<int>(recentActions_.size()); ++k) {
    const QString caption = k < captions.size() ? captions[k] : QString();
    recentActions_[static_cast<size_t>(k)]->setText(caption);
    recentActions_[static_cast<size_t>(k)]->setVisible(!caption.isEmpty());
    any = any || !caption.isEmpty();
  }
  recentLine_->setVisible(any);
}

void MainWindow::showRotorSpeed(bool visible, const QString& text) {
  status_->setText(QStringLiteral("FreqRotor"), text);
  status_->setVisibleOf(QStringLiteral("FreqRotor"), visible && !text.trimmed().isEmpty());
}

void MainWindow::showSignalPopup(const QPoint& globalPos) {
  refreshSignalMenuChecks();
  signalMenu_->popup(globalPos);
}

void MainWindow::signalStatusChanged(const views::SignalStatus& status) {
  action(QStringLiteral("mnuSignalBeginPoint"))->setEnabled(status.beginPointEnabled);
  edits_->selectionChanged(status.selectionCommandsEnabled);
}

void MainWindow::signalOptionsChanged() { refreshSignalMenuChecks(); }

void MainWindow::refreshSignalMenuChecks() {
  RefreshOptionChecks(actions_, s_, kSectionSignal);
  const views::SignalCursor cursor = views::CursorOf(s_);
  action(QStringLiteral("mnuSignalCursor0"))->setChecked(cursor == views::SignalCursor::Free);
  action(QStringLiteral("mnuSignalCursor1"))->setChecked(cursor == views::SignalCursor::Bound);
  supportWindows_->syncColorProperty();
}

// ---------------------------------------------------------------------------
// ViewRefresh.
// ---------------------------------------------------------------------------

void MainWindow::ViewRefresh(bool cheap) {
  // A refresh inside a refresh (a control moved by the refresh itself)
  // would draw twice for nothing.
  if (refreshing_) return;
  refreshing_ = true;
  views::ViewRegistry registry;
  registry.runOn = measuring_;
  registry.noticeUp = false;
  views::InstallEngineSteps(registry, s_, *analysis_);
  registry[views::RefreshStep::ShowNotice] = [this] {
    prompts_.notice({QStringLiteral("Подождите, идет обработка данных ...")});
  };
  registry[views::RefreshStep::CloseNotice] = [this] { prompts_.closeNotice(); };
  if (SignalWindow* w = signalWindow()) {
    registry.signalStatusBarParameter = w->parameterBarTicked();
    w->installRefresh(registry);
  }
  installSpectrumRefresh(registry);
  shaftViews_->installRefresh(registry);
  edits_->installRefresh(registry);
  if (ParametersWindow* w = parametersWindow()) {
    registry.parametersOpen = true;
    registry[views::RefreshStep::ParametersOutData] = [w] { w->OutData(); };
  }
  if (cheap) {
    views::ViewRefreshCheap(s_, registry);
  } else {
    views::ViewRefresh(s_, registry);
  }
  supportWindows_->viewRefreshed();
  refreshing_ = false;
}

// ---------------------------------------------------------------------------
// Closing, dropping, resizing.
// ---------------------------------------------------------------------------

void MainWindow::closeEvent(QCloseEvent* event) {
  // A run is stopped first, so that its cycle counts as unsaved data.
  if (run_->running()) {
    if (run_->requested()) run_->press();
    run_->tick();
  }
  if (!ConfirmCloseProgram(s_, prompts_)) {
    event->ignore();
    return;
  }
  closeAllViews();
  prompts_.closeNotice();
  MarkCleanExit(store_);
  event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  QStringList paths;
  for (const QUrl& url : event->mimeData()->urls())
    paths << (url.isLocalFile() ? url.toLocalFile() : url.toString());
  event->acceptProposedAction();
  // The load runs after the drop has ended, so the source is not kept waiting.
  QMetaObject::invokeMethod(this, [this, paths] { dropFiles(paths); }, Qt::QueuedConnection);
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  OutPathFileDataToStatusBar();
  // The workspace takes its new size once the frame's layout has run.
  QMetaObject::invokeMethod(this, [this] { fitViewsIntoArea(); }, Qt::QueuedConnection);
}

}  // namespace aqx::ui
