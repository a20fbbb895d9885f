// The commands of frmMain's menus and toolbars, and the view windows they
// open, arrange and close.

#include "core/ConfigWriters.h"
#include "core/OpenFile.h"
#include "files/DataFile.h"
#include "ui/common/CopyPicture.h"
#include "ui/common/Icons.h"
#include "ui/main/MainWindow.h"
#include "ui/acquisition/MeasurementRun.h"
#include "ui/acquisition/ModuleWindows.h"
#include "ui/signal/ParametersWindow.h"
#include "ui/signal/SignalWindow.h"
#include "ui/spectrum/CascadeWindow.h"
#include "ui/spectrum/SpectrWindow.h"
#include "core/ConfigKeys.h"
#include "ui/common/OptionMenu.h"
#include "ui/main/Workspace.h"
#include "ui/rotor/ShaftViews.h"

#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStyle>
#include <QRandomGenerator>
#include <QStatusBar>
#include <QToolBar>

namespace aqx::ui {

// ---------------------------------------------------------------------------
// File menu.
// ---------------------------------------------------------------------------

void MainWindow::onFileRecord() { run_->press(); }

void MainWindow::onFileOpen() {
  OpenFileContext ctx = context();
  FileOpenCommand(ctx);
}

void MainWindow::onFileSave() {
  if (!HasData(s_) || measuring_) return;
  if (!SaveDataFileCommand(s_, prompts_)) return;
  AddNewRecentFile(store_, s_.PathFileData);
  ReadRecentFile();
  OutPathFileDataToStatusBar();
  RefreshToolbarMainMenu();
}

// Block navigation of a continuous recording: the new block is read and the
// views recomputed; a failed read has been told by the reporter.
void MainWindow::onViewBlock(SolidBlockCommand command) {
  if (!s_.SolidMode || measuring_) return;
  if (RunSolidBlockCommand(s_, command, prompts_) == 0) ViewRefresh();
  RefreshToolbarMainMenu();
}

void MainWindow::onFileCopy() {
  QMdiSubWindow* active = mdi_->activeSubWindow();
  if (!active) return;
  if (auto* w = qobject_cast<SignalWindow*>(active->widget())) w->CopyPicture();
  if (auto* w = qobject_cast<SpectrWindow*>(active->widget())) w->CopyPicture();
  if (auto* w = qobject_cast<CascadeWindow*>(active->widget())) w->CopyPicture();
  if (auto* w = qobject_cast<ParametersWindow*>(active->widget())) {
    PutPictureOnClipboard(w->grab().toImage(), {w->line()});
  }
  shaftViews_->copyPicture(active->widget());
}

void MainWindow::onFileRecentFile(int k) {
  OpenFileContext ctx = context();
  OpenRecentFileCommand(ctx, k);
}

void MainWindow::onFileExit() { close(); }

// ---------------------------------------------------------------------------
// View menu.
// ---------------------------------------------------------------------------

void MainWindow::applyBars() {
  const ConfigOptions& config = s_.options.config;
  toolbarMain_->setVisible(config.ViewToolbarMain);
  toolbarChannels_->setVisible(config.ViewToolbarChannels);
  statusBar()->setVisible(config.ViewStatusBar);
  RefreshOptionChecks(actions_, s_, kSectionConfig);
}

void MainWindow::onViewSignal() {
  if (signalWindow()) {
    closeView(frmViewSignal);
  } else if (hasData()) {
    openView(frmViewSignal);
    ViewRefresh();
  }
  RefreshToolbarMainMenu();
}

void MainWindow::onViewParameters() {
  if (parametersWindow()) {
    closeView(kParametersWindow);
  } else if (hasData()) {
    openView(kParametersWindow);
    ViewRefresh();
  }
  RefreshToolbarMainMenu();
}

void MainWindow::SelectActiveChannel(int channel) {
  const std::vector<int> changed = aqx::ui::SelectActiveChannel(s_, channel);
  {
    SettingsStore::Batch batch(store_);
    for (int c : changed) SaveChannelActive(store_, s_, c);
    SaveFirstChannelActive(store_, s_);
  }
  RefreshToolbarChannels();
  RefreshStatusBar();
  if (SignalWindow* w = signalWindow()) w->RefreshElementsImposition();
  ViewRefresh();
}

void MainWindow::Imposition() {
  FlipImposition(s_);
  SaveImposition(store_, s_);
  RefreshToolbarChannels();
  RefreshStatusBar();
  if (SignalWindow* w = signalWindow()) w->RefreshElementsImposition();
  ViewRefresh();
}

void MainWindow::onViewImposition() { Imposition(); }

void MainWindow::onViewStyle(int style) {
  s_.ViewStyle = style;
  SaveViewStyle(store_, s_);
  SetViewStyle();
  ViewRefresh();
}

void MainWindow::ColorBack(int set) {
  auto& kit = s_.options.config.ColorBackKit;
  if (set < 0 || set >= static_cast<int>(kit.size())) return;
  if (set == kColorBackSetCount - 1) {
    // "Случайный": fresh parts each time it is chosen.
    for (int32_t& part : kit[static_cast<size_t>(set)]) part = QRandomGenerator::global()->bounded(256);
  }
  s_.options.config.ColorBackKitSel = set;
  SaveColorBack(store_, s_);
  applyBackground();
  ViewRefresh();
}

void MainWindow::applyBackground() {
  const auto& kit = s_.options.config.ColorBackKit;
  const int set = std::clamp(s_.options.config.ColorBackKitSel, 0, static_cast<int>(kit.size()) - 1);
  mdi_->setBackground(WorkspaceColorOf(kit[static_cast<size_t>(set)]));
  for (int k = 0; k < kColorBackSetCount; ++k) action(QStringLiteral("mnuViewColorBack%1").arg(k))->setChecked(k == set);
}

void MainWindow::ActivateElements(bool run) {
  measuring_ = run;
  QAction* record = action(QStringLiteral("mnuFileRecord"));
  record->setText(run ? QStringLiteral("Останов измерений") : QStringLiteral("Пуск измерений"));
  record->setToolTip(record->text());
  record->setIcon(MakeToolIcon(run ? ToolIcon::Stop : ToolIcon::Record));
  RefreshToolbarMainMenu();
}

// ---------------------------------------------------------------------------
// The signal view's popup menu.
// ---------------------------------------------------------------------------

void MainWindow::onSignalCursor(int entry) {
  const views::SignalCursor cursor = entry == 0 ? views::SignalCursor::Free : views::SignalCursor::Bound;
  if (SignalWindow* w = signalWindow()) {
    w->SetTypeCursor(cursor);
  } else {
    views::SetCursorSetting(s_, views::CursorOf(s_) == cursor ? views::SignalCursor::None : cursor);
    SaveOption(store_, s_, QString::fromLatin1(kSectionSignal), QStringLiteral("Cursor"));
  }
  refreshSignalMenuChecks();
}

void MainWindow::onSignalZoomBack() {
  if (SignalWindow* w = signalWindow()) w->ZoomBack();
}

void MainWindow::onSignalShowAll() {
  if (SignalWindow* w = signalWindow()) w->ShowAll();
}

void MainWindow::onSignalCopy() {
  if (SignalWindow* w = signalWindow()) w->CopyPicture();
}

// ---------------------------------------------------------------------------
// Window and help menus.
// ---------------------------------------------------------------------------

void MainWindow::onWindowCascade() {
  // The windows of the stacking order, the one in front last and so in front.
  const QList<QMdiSubWindow*> windows = mdi_->subWindowList(QMdiArea::StackingOrder);
  const QSize area = mdi_->viewport()->size();
  const int titlePx = style()->pixelMetric(QStyle::PM_TitleBarHeight);
  const std::vector<PixelBox> boxes =
      CascadeBoxes(area.width(), area.height(), static_cast<int>(windows.size()), titlePx + 4);
  for (qsizetype i = 0; i < windows.size(); ++i) {
    windows[i]->showNormal();
    const PixelBox& b = boxes[static_cast<size_t>(i)];
    windows[i]->setGeometry(b.left, b.top, b.width, b.height);
    windows[i]->raise();
  }
}

void MainWindow::fitViewsIntoArea() {
  const QSize area = mdi_->viewport()->size();
  for (QMdiSubWindow* w : mdi_->subWindowList()) {
    if (w->isMaximized() || w->isMinimized()) continue;
    const QRect g = w->geometry();
    const PixelBox fitted = FitIntoArea({g.left(), g.top(), g.width(), g.height()}, area.width(), area.height(),
                                        w->minimumSizeHint().width(), w->minimumSizeHint().height());
    if (fitted != PixelBox{g.left(), g.top(), g.width(), g.height()})
      w->setGeometry(fitted.left, fitted.top, fitted.width, fitted.height);
  }
}
void MainWindow::onWindowTileAcross() { tile(true); }
void MainWindow::onWindowTileSideBySide() { tile(false); }

void MainWindow::onWindowClose() {
  closeAllViews();
  RefreshToolbarMainMenu();
}

void MainWindow::onHelpAbout() {
  prompts_.tell(QStringLiteral("Aquilonix v%1.%2.%3\nКомплекс наблюдения за гидроагрегатом\n\n"
                               "Запись и анализ сигналов датчиков гидроагрегата:\n"
                               "биение вала, вибрация, отметчик оборотов и другие.")
                    .arg(AQX_VERSION_MAJOR)
                    .arg(AQX_VERSION_MINOR)
                    .arg(AQX_VERSION_PATCH),
                QStringLiteral("О программе"));
}

// The module's service windows stand beside the workspace, one of each.
void MainWindow::onHelpADC() {
  // The command and its button show and hide the window, like the views'.
  if (infoAdc_) {
    infoAdc_->close();
    return;
  }
  auto* window = new InfoAdcWindow(prompts_, this);
  infoAdc_ = window;
  s_.ViewOpenFlags[frmViewInfoADC] = true;
  connect(window, &QObject::destroyed, this, [this] {
    s_.ViewOpenFlags[frmViewInfoADC] = false;
    QMetaObject::invokeMethod(this, [this] { updateViewChecks(); }, Qt::QueuedConnection);
  });
  window->show();
  updateViewChecks();
}

void MainWindow::onServiceDigitalLines() {
  if (digitalLines_) {
    digitalLines_->raise();
    digitalLines_->activateWindow();
    return;
  }
  auto* window = new DigitalLinesWindow(prompts_, this);
  digitalLines_ = window;
  window->show();
}

// ---------------------------------------------------------------------------
// View windows.
// ---------------------------------------------------------------------------

QMdiSubWindow* MainWindow::openView(int window) {
  QPointer<QMdiSubWindow>* slot = window == frmViewSignal     ? &signalSub_
                                  : window == kParametersWindow ? &parametersSub_
                                  : window == frmViewSpectr     ? &spectrSub_
                                  : window == frmViewSpectrum   ? &cascadeSub_
                                                                : shaftViews_->slot(window);
  if (!slot) return nullptr;  // windows of later versions
  if (*slot) {
    mdi_->setActiveSubWindow(*slot);
    return *slot;
  }
  QWidget* content = nullptr;
  if (window == frmViewSignal) {
    content = new SignalWindow(*this);
  } else if (window == kParametersWindow) {
    content = new ParametersWindow(*this);
  } else {
    content = shaftViews_->handles(window) ? shaftViews_->createContent(window) : makeSpectrumView(window);
  }
  QMdiSubWindow* sub = mdi_->addSubWindow(content);
  sub->setAttribute(Qt::WA_DeleteOnClose);
  sub->setWindowIcon(content->windowIcon());
  sub->setObjectName(content->objectName() + QStringLiteral("Frame"));
  *slot = sub;
  // While the frame is being destroyed its pointers still stand; the menus
  // follow once it is gone.
  connect(sub, &QObject::destroyed, this, [this] {
    QMetaObject::invokeMethod(this, [this] { RefreshToolbarMainMenu(); }, Qt::QueuedConnection);
  });
  const QSize area = mdi_->viewport()->size();
  sub->resize(window == kParametersWindow ? QSize(area.width() / 2, area.height() / 3)
                                          : QSize(area.width() * 3 / 4, area.height() * 3 / 4));
  sub->show();
  return sub;
}

void MainWindow::closeView(int window) {
  QPointer<QMdiSubWindow> sub = window == frmViewSignal     ? signalSub_
                                : window == kParametersWindow ? parametersSub_
                                : window == frmViewSpectr     ? spectrSub_
                                : window == frmViewSpectrum   ? cascadeSub_
                                                              : nullptr;
  if (shaftViews_->handles(window)) sub = *shaftViews_->slot(window);
  if (!sub) return;
  // Closed and gone at once, so that ViewRefresh no longer sees it.
  delete sub.data();
}

void MainWindow::closeAllViews() {
  closeView(frmViewSignal);
  closeView(kParametersWindow);
  closeView(frmViewSpectr);
  closeView(frmViewSpectrum);
  shaftViews_->closeAll();
}

void MainWindow::SetViewStyle() {
  updateViewChecks();
  closeAllViews();
  const ViewStyleDef style = ViewStyleDefinition(s_.ViewStyle);
  if (!hasData() || style.windows.empty()) {
    RefreshToolbarMainMenu();
    return;
  }
  std::vector<QMdiSubWindow*> opened;
  for (int w : style.windows)
    if (QMdiSubWindow* sub = openView(w)) opened.push_back(sub);
  arrange(static_cast<int>(style.arrangement), opened);
  RefreshToolbarMainMenu();
}

void MainWindow::arrange(int arrangement, const std::vector<QMdiSubWindow*>& windows) {
  if (windows.empty()) return;
  const QSize area = mdi_->viewport()->size();
  // The window opened last stands first (on top, or on the left).
  std::vector<QMdiSubWindow*> order(windows.rbegin(), windows.rend());
  switch (static_cast<Arrangement>(arrangement)) {
    case Arrangement::Maximised:
      order.front()->showMaximized();
      return;
    case Arrangement::TileAcross:
    case Arrangement::TileSideBySide: {
      const bool across = static_cast<Arrangement>(arrangement) == Arrangement::TileAcross;
      const auto boxes = across ? TileAcross(area.width(), area.height(), static_cast<int>(order.size()))
                                : TileSideBySide(area.width(), area.height(), static_cast<int>(order.size()));
      for (size_t i = 0; i < order.size(); ++i) {
        order[i]->showNormal();
        order[i]->setGeometry(boxes[i].left, boxes[i].top, boxes[i].width, boxes[i].height);
      }
      return;
    }
    case Arrangement::TileAcrossThenThird: {
      // The first two tile across; the third stands over them.
      std::vector<QMdiSubWindow*> firstTwo(windows.begin(), windows.begin() + std::min<size_t>(2, windows.size()));
      arrange(static_cast<int>(Arrangement::TileAcross), firstTwo);
      if (windows.size() > 2 && signalSub_) {
        const QRect g = signalSub_->geometry();
        const PixelBox third = ThirdWindowBox({g.x(), g.y(), g.width(), g.height()});
        windows[2]->setGeometry(third.left, third.top, third.width, third.height);
      }
      return;
    }
  }
}

void MainWindow::tile(bool across) {
  std::vector<QMdiSubWindow*> windows;
  for (QMdiSubWindow* w : mdi_->subWindowList(QMdiArea::StackingOrder)) windows.push_back(w);
  arrange(static_cast<int>(across ? Arrangement::TileAcross : Arrangement::TileSideBySide), windows);
}

}  // namespace aqx::ui
