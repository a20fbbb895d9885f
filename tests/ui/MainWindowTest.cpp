// The main window as a user drives it: every command in the situations that
// break programs (nothing open, one sample, no channel in use, every channel
// in use), opening by menu, recent list, command line and drop, closing with
// and without unsaved data.

#include "UiTestSupport.h"

#include "core/OpenFile.h"
#include "ui/acquisition/MeasurementRun.h"
#include "ui/common/PanelBar.h"
#include "ui/signal/ParametersWindow.h"
#include "ui/signal/SignalWindow.h"
#include "ui/main/Workspace.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QSlider>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>

#include <gtest/gtest.h>

namespace aqx {
namespace {

using uitest::Workbench;

void Pump() { QCoreApplication::processEvents(); }

// Every command of the menus and toolbars (toggles twice, so that they come
// back), then
// a short run of the record command; the exit is left to the closing tests.
// Dialogs answer through the scripted prompts: files cancelled, questions
// with their first button.
void TriggerEveryCommand(Workbench& w) {
  QList<QAction*> actions = w.window->commandActions();
  std::sort(actions.begin(), actions.end(), [](QAction* a, QAction* b) { return a->objectName() < b->objectName(); });
  for (int round = 0; round < 2; ++round) {
    for (QAction* a : actions) {
      if (a->objectName() == QLatin1String("mnuFileExit") || a->objectName() == QLatin1String("mnuFileRecord")) continue;
      if (round == 1 && !a->isCheckable()) continue;
      a->trigger();
      Pump();
    }
  }
  QAction* record = w.window->action(QStringLiteral("mnuFileRecord"));
  record->trigger();
  w.window->measurementRun()->tick();
  record->trigger();
  w.window->measurementRun()->tick();
  EXPECT_FALSE(w.window->measurementRun()->running());
  for (int c = 1; c <= kMaxChannels; ++c) {
    w.window->channelButton(c)->click();
    Pump();
  }
  w.window->signalMenu()->close();
}

// The mouse, keys and bars of the signal view in every cursor mode.
void DriveSignalView(Workbench& w) {
  ui::SignalWindow* view = w.window->signalWindow();
  if (!view) return;
  const QSize size = view->pictureWidget()->size();
  for (int cursor : {-1, 0, 1}) {
    w.state->options.signal.Cursor = cursor;
    view->optionsChanged();
    view->pictureMousePress(Qt::LeftButton, QPointF(size.width() * 0.2, size.height() * 0.3));
    for (double f : {0.1, 0.5, 0.9, 1.2, -0.3}) view->pictureMouseMove(QPointF(size.width() * f, size.height() * f), true);
    view->pictureMouseRelease();
    for (double f : {0.0, 0.33, 0.99, 1.5}) view->pictureMouseMove(QPointF(size.width() * f, size.height() * 0.5), false);
    view->pictureMousePress(Qt::RightButton, QPointF(5, 5));
    w.window->signalMenu()->close();
  }
  for (const ui::PanelBar::Panel& p : view->statusBar()->panels()) {
    for (Qt::MouseButton b : {Qt::LeftButton, Qt::RightButton, Qt::LeftButton, Qt::LeftButton}) {
      emit view->statusBar()->panelClicked(p.key, b);
    }
  }
  for (int v : {0, 3, 100, -5}) view->sliderH()->setValue(v);
  for (int v : {-1, 0, 17, 5}) view->sliderV()->setValue(v);
  for (int v : {view->hScroll()->minimum(), view->hScroll()->maximum(), 2}) view->hScroll()->setValue(v);
  for (int v : {view->vScroll()->minimum(), view->vScroll()->maximum()}) view->vScroll()->setValue(v);
  view->resize(40, 30);
  Pump();
  view->resize(700, 400);
  Pump();
  emit view->parameterBar()->barClicked(Qt::LeftButton);
}

void ExpectGoodRun(const Workbench& w, const QString& value) {
  EXPECT_EQ(w.store.get(QStringLiteral("Config"), QStringLiteral("GoodRun")), value);
}

TEST(MainWindow, FrameHasCaptionMenusToolbarsAndPanels) {
  Workbench w;
  EXPECT_EQ(w.window->windowTitle(),
            QStringLiteral("Aquilonix v%1.%2 (Комплекс наблюдения за гидроагрегатом)").arg(AQX_VERSION_MAJOR).arg(AQX_VERSION_MINOR));
  EXPECT_EQ(w.window->action(QStringLiteral("mnuFileOpen"))->text(), QStringLiteral("Открыть ..."));
  EXPECT_EQ(w.window->action(QStringLiteral("mnuWindowArrange1"))->text(), QStringLiteral("Мозаика (горизонталь)"));
  EXPECT_EQ(w.window->action(QStringLiteral("mnuViewChannel32"))->text(), QStringLiteral("Канал №32"));
  EXPECT_EQ(w.window->action(QStringLiteral("mnuViewStyle3"))->text(), QStringLiteral("Сигнал + Спектр + Траектория"));
  EXPECT_EQ(w.window->action(QStringLiteral("mnuViewColorBack2"))->text(), QStringLiteral("Лампа накаливания"));
  // With no recording the spectrum has nothing to show.
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuViewSpectr"))->isEnabled());
  EXPECT_EQ(w.window->toolbarMain()->objectName(), QStringLiteral("ToolbarMain"));
  EXPECT_EQ(w.window->channelButton(7)->objectName(), QStringLiteral("Ch7"));
  // No file: the data commands are off and no view is open.
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuFileSave"))->isEnabled());
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuViewSignal"))->isEnabled());
  EXPECT_TRUE(w.window->mdiArea()->subWindowList().isEmpty());
  EXPECT_TRUE(w.window->mainStatus()->isPanelVisible(QStringLiteral("Agregat")));
  EXPECT_FALSE(w.window->mainStatus()->isPanelVisible(QStringLiteral("Station")));
  ExpectGoodRun(w, QStringLiteral("0"));
}

TEST(MainWindow, EveryCommandWithNoFileOpen) {
  Workbench w;
  TriggerEveryCommand(w);
  // "О программе" is the one message a user can call up here.
  const auto shown = w.prompts.messages();
  EXPECT_TRUE(std::any_of(shown.begin(), shown.end(),
                          [](const ShownPrompt& p) { return p.title == QStringLiteral("О программе"); }));
  // The short run at the end left a cycle in memory, in the views.
  EXPECT_FALSE(w.state->DataSaved);
  EXPECT_NE(w.window->signalWindow(), nullptr);
}

TEST(MainWindow, OpenByMenuShowsTheRecordingInTheStoredStyle) {
  Workbench w;
  const QString file = w.path(QStringLiteral("demo.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(file, 32768));
  w.prompts.texts.push_back(file);
  w.window->action(QStringLiteral("mnuFileOpen"))->trigger();
  EXPECT_EQ(w.state->PathFileData, file);
  ASSERT_NE(w.window->signalWindow(), nullptr);  // style 1: the signal view
  EXPECT_FALSE(w.window->signalWindow()->picture().items.empty());
  EXPECT_EQ(w.window->mainStatus()->text(QStringLiteral("Station")), QStringLiteral("Волжская ГЭС"));
  EXPECT_EQ(w.window->mainStatus()->text(QStringLiteral("Agregat")), QStringLiteral("г/а №5"));
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuFileRecentFile1"))->isVisible());
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuFileRecentFile1"))->text().endsWith(QStringLiteral("demo.aqx")));
  EXPECT_TRUE(w.window->channelButton(4)->isEnabled());
  EXPECT_FALSE(w.window->toolbarChannels()->actions()[4]->isVisible());  // channel 5 is not in use
  // The signal view's status bar reads the store.
  EXPECT_EQ(w.window->signalWindow()->statusBar()->text(QStringLiteral("SignalDataN")), QStringLiteral("N: 32768"));
}

TEST(MainWindow, ViewStylesOpenAndArrangeTheirWindows) {
  Workbench w;
  const QString file = w.path(QStringLiteral("demo.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(file, 4096));
  ASSERT_TRUE(w.window->OpenFile(file));
  w.window->action(QStringLiteral("mnuViewStyle7"))->trigger();
  EXPECT_EQ(w.window->signalWindow(), nullptr);
  ASSERT_NE(w.window->parametersWindow(), nullptr);
  EXPECT_TRUE(w.window->mdiArea()->subWindowList().front()->isMaximized());
  EXPECT_FALSE(w.window->parametersWindow()->line().isEmpty());
  EXPECT_EQ(w.store.get(QStringLiteral("Config"), QStringLiteral("ViewStyle")), QStringLiteral("7"));
  w.window->action(QStringLiteral("mnuViewStyle6"))->trigger();
  ASSERT_NE(w.window->signalWindow(), nullptr);
  // The rotor form beside it; this recording has no turn probe, which it says.
  EXPECT_EQ(w.window->mdiArea()->subWindowList().size(), 2);
  EXPECT_TRUE(w.state->ViewOpenFlags[frmViewFormaRotor]);
  w.window->action(QStringLiteral("mnuViewFormaRotor"))->trigger();
  EXPECT_EQ(w.window->mdiArea()->subWindowList().size(), 1);
  w.window->action(QStringLiteral("mnuViewParameters"))->trigger();
  w.window->action(QStringLiteral("mnuWindowArrange1"))->trigger();  // tile across
  const auto windows = w.window->mdiArea()->subWindowList();
  ASSERT_EQ(windows.size(), 2);
  EXPECT_EQ(windows[0]->width(), windows[1]->width());
  EXPECT_NE(windows[0]->y(), windows[1]->y());
  w.window->action(QStringLiteral("mnuWindowArrange2"))->trigger();  // side by side
  EXPECT_EQ(w.window->mdiArea()->subWindowList()[0]->y(), w.window->mdiArea()->subWindowList()[1]->y());
  w.window->action(QStringLiteral("mnuWindowClose"))->trigger();
  EXPECT_TRUE(w.window->mdiArea()->subWindowList().isEmpty());
  EXPECT_FALSE(w.state->ViewOpenFlags[frmViewSignal]);
}

TEST(MainWindow, ChannelsImpositionAndBackground) {
  Workbench w;
  const QString file = w.path(QStringLiteral("demo.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(file, 8192));
  ASSERT_TRUE(w.window->OpenFile(file));
  w.window->channelButton(3)->click();
  EXPECT_EQ(w.state->FirstChannelActive, 3);
  EXPECT_EQ(ActiveUsedCount(*w.state), 1);
  EXPECT_TRUE(w.window->channelButton(3)->isChecked());
  EXPECT_FALSE(w.window->channelButton(1)->isChecked());
  EXPECT_EQ(w.store.get(QStringLiteral("Config"), QStringLiteral("FirstChannelActive")), QStringLiteral("3"));
  w.window->action(QStringLiteral("mnuViewImposition"))->trigger();
  EXPECT_TRUE(w.state->Imposition);
  w.window->action(QStringLiteral("mnuViewChannel2"))->trigger();
  w.window->channelButton(4)->click();
  EXPECT_EQ(ActiveUsedCount(*w.state), 3);
  EXPECT_TRUE(w.window->channelButton(2)->isChecked());
  w.window->action(QStringLiteral("mnuViewImposition"))->trigger();
  EXPECT_EQ(ActiveUsedCount(*w.state), 1);
  EXPECT_EQ(w.state->FirstChannelActive, 4);
  const QColor before = w.window->mdiArea()->background().color();
  w.window->action(QStringLiteral("mnuViewColorBack3"))->trigger();
  EXPECT_NE(w.window->mdiArea()->background().color(), before);
  EXPECT_EQ(w.store.get(QStringLiteral("Config"), QStringLiteral("ColorBackKitSel")), QStringLiteral("3"));
  EXPECT_EQ(w.window->signalWindow()->picture().background,
            ui::ToBgr(ui::ColorBackOf(w.state->options.config.ColorBackKit[3])));
}

TEST(MainWindow, EveryCommandWithAOneSampleRecording) {
  Workbench w;
  const QString file = w.path(QStringLiteral("one.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(file, 1));
  ASSERT_TRUE(w.window->OpenFile(file));
  EXPECT_EQ(w.state->SignalDataN, 1);
  DriveSignalView(w);
  TriggerEveryCommand(w);
  w.window->action(QStringLiteral("mnuViewStyle0"))->trigger();
  DriveSignalView(w);
}

TEST(MainWindow, EveryCommandWithEveryChannelInUse) {
  Workbench w;
  const QString file = w.path(QStringLiteral("all.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(file, 8192, 32));
  ASSERT_TRUE(w.window->OpenFile(file));
  EXPECT_EQ(w.state->ChannelUsedCount, 32);
  w.window->action(QStringLiteral("mnuViewImposition"))->trigger();
  for (int c = 2; c <= kMaxChannels; ++c) w.window->channelButton(c)->click();
  EXPECT_EQ(ActiveUsedCount(*w.state), 32);
  DriveSignalView(w);
  TriggerEveryCommand(w);
  w.window->action(QStringLiteral("mnuViewStyle0"))->trigger();
  DriveSignalView(w);
}

TEST(MainWindow, EveryCommandWithNoChannelInUse) {
  Workbench w;
  const QString file = w.path(QStringLiteral("demo.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(file, 2048));
  ASSERT_TRUE(w.window->OpenFile(file));
  for (int c = 1; c <= kMaxChannels; ++c) w.state->channels.Channel[c] = 0;
  RecountChannelUsedCount(*w.state);
  w.window->RefreshToolbarChannels();
  w.window->ViewRefresh();
  EXPECT_FALSE(w.window->channelButton(1)->isEnabled());
  DriveSignalView(w);
  TriggerEveryCommand(w);
  w.window->action(QStringLiteral("mnuViewStyle7"))->trigger();
  w.window->action(QStringLiteral("mnuViewStyle0"))->trigger();
  DriveSignalView(w);
}

TEST(MainWindow, OpenByRecentListCommandLineAndDrop) {
  Workbench w;
  const QString first = w.path(QStringLiteral("first.aqx"));
  const QString second = w.path(QStringLiteral("second file.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(first, 4096));
  ASSERT_TRUE(uitest::WriteRecording(second, 2048));
  EXPECT_TRUE(w.window->loadStartFile(QStringLiteral("  \"") + first + QStringLiteral("\"  ")));
  EXPECT_EQ(w.state->PathFileData, first);
  // A real drop event: the load follows once the drop has ended.
  QMimeData mime;
  mime.setUrls({QUrl::fromLocalFile(second)});
  QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(w.window.get(), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(w.window.get(), &drop);
  Pump();
  EXPECT_EQ(w.state->PathFileData, second);
  EXPECT_EQ(w.state->SignalDataN, 2048);
  // Two files at once load nothing.
  w.prompts.shown.clear();
  EXPECT_FALSE(w.window->dropFiles({first, second}));
  EXPECT_EQ(w.state->PathFileData, second);
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Невозможно загрузить больше одного файла!"));
  // Recent entry 2 is the first file; entry 1 the second.
  w.window->action(QStringLiteral("mnuFileRecentFile2"))->trigger();
  EXPECT_EQ(w.state->PathFileData, first);
  QFile::remove(second);
  w.window->action(QStringLiteral("mnuFileRecentFile2"))->trigger();
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Файл по указанному Вами пути отсутствует."));
  EXPECT_EQ(w.state->PathFileData, first);
}

TEST(MainWindow, CopyPicturePutsHeaderAboveThePicture) {
  Workbench w;
  const QString file = w.path(QStringLiteral("demo.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(file, 8192));
  ASSERT_TRUE(w.window->OpenFile(file));
  ui::SignalWindow* view = w.window->signalWindow();
  ASSERT_NE(view, nullptr);
  // The file's style opens the spectrum beside it; the signal window is the one copied.
  w.window->mdiArea()->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(view->parentWidget()));
  QGuiApplication::clipboard()->clear();
  w.window->action(QStringLiteral("mnuFileCopy"))->trigger();
  const QImage copied = QGuiApplication::clipboard()->image();
  ASSERT_FALSE(copied.isNull());
  EXPECT_EQ(copied.width(), std::max(view->picture().width, copied.width()));
  EXPECT_GT(copied.height(), view->picture().height);
  const QString text = QGuiApplication::clipboard()->text();
  EXPECT_TRUE(text.contains(QStringLiteral("Волжская ГЭС, Гидроагрегат №5")));
  EXPECT_TRUE(text.contains(QStringLiteral("Тип диаграмы: Сигнал")));
  EXPECT_TRUE(text.contains(QStringLiteral("Режим: Холостой ход без возбуждения")));
}

TEST(MainWindow, ClosingAsksOnlyWithUnsavedData) {
  Workbench w;
  const QString file = w.path(QStringLiteral("demo.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(file, 4096));
  ASSERT_TRUE(w.window->OpenFile(file));
  w.state->DataSaved = false;
  w.prompts.answers.push_back(PromptAnswer::Cancel);
  w.window->action(QStringLiteral("mnuFileExit"))->trigger();
  EXPECT_TRUE(w.window->isVisible());
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Данные не сохранены, закончить работу с программой?"));
  ExpectGoodRun(w, QStringLiteral("0"));
  w.prompts.answers.push_back(PromptAnswer::Ok);
  w.window->close();
  EXPECT_FALSE(w.window->isVisible());
  ExpectGoodRun(w, QStringLiteral("1"));
}

TEST(MainWindow, ClosingWithSavedDataAsksNothing) {
  Workbench w;
  const size_t before = w.prompts.messages().size();
  w.window->close();
  EXPECT_FALSE(w.window->isVisible());
  EXPECT_EQ(w.prompts.messages().size(), before);
  ExpectGoodRun(w, QStringLiteral("1"));
}

TEST(MainWindow, UnsavedDataIsKeptWhenTheUserSaysNo) {
  Workbench w;
  const QString first = w.path(QStringLiteral("first.aqx"));
  const QString second = w.path(QStringLiteral("second.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(first, 4096));
  ASSERT_TRUE(uitest::WriteRecording(second, 2048));
  ASSERT_TRUE(w.window->OpenFile(first));
  w.state->DataSaved = false;
  w.prompts.answers.push_back(PromptAnswer::No);
  EXPECT_FALSE(w.window->dropFiles({second}));
  EXPECT_EQ(w.state->PathFileData, first);
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Данные не сохранены, продолжить?"));
}

TEST(MainWindow, RecordCommandRunsTheVirtualModuleUntilPressedAgain) {
  Workbench w;
  QAction* record = w.window->action(QStringLiteral("mnuFileRecord"));
  ui::MeasurementRun* run = w.window->measurementRun();
  record->trigger();
  ASSERT_TRUE(run->running());
  EXPECT_TRUE(record->isChecked());
  EXPECT_EQ(record->text(), QStringLiteral("Останов измерений"));
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuFileOpen"))->isEnabled());
  // The module belongs to the run.
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuHelpADC"))->isEnabled());
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuServiceDigitalLines"))->isEnabled());
  ASSERT_NE(w.window->signalWindow(), nullptr);  // the live cycle in the views of the style
  QElapsedTimer clock;
  clock.start();
  while (clock.elapsed() < 400) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  record->trigger();
  EXPECT_FALSE(record->isEnabled());  // until the next tick has wound the run down
  run->tick();
  EXPECT_FALSE(run->running());
  EXPECT_TRUE(record->isEnabled());
  EXPECT_FALSE(record->isChecked());
  EXPECT_EQ(record->text(), QStringLiteral("Пуск измерений"));
  EXPECT_FALSE(w.state->DataSaved);
  int nonZero = 0;
  for (int i = 1; i <= w.state->SignalDataN; ++i) nonZero += w.state->SignalData.at(i, 1) != 0;
  EXPECT_GT(nonZero, 0);
  // A new run over unsaved data asks first; No leaves the cycle alone.
  w.prompts.answers.push_back(PromptAnswer::No);
  record->trigger();
  EXPECT_FALSE(run->running());
  EXPECT_FALSE(record->isChecked());
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Данные не сохранены, продолжить?"));
  // And closing asks too.
  w.prompts.answers.push_back(PromptAnswer::Cancel);
  w.window->close();
  EXPECT_TRUE(w.window->isVisible());
}

TEST(MainWindow, TheModuleInformationCommandShowsAndHidesItsWindow) {
  Workbench w;
  QAction* adc = w.window->action(QStringLiteral("mnuHelpADC"));
  adc->trigger();
  Pump();
  auto* info = w.window->findChild<QDialog*>(QStringLiteral("frmViewInfoADC"));
  ASSERT_NE(info, nullptr);
  EXPECT_TRUE(info->isVisible());
  EXPECT_TRUE(w.state->ViewOpenFlags[frmViewInfoADC]);
  EXPECT_TRUE(adc->isChecked());
  adc->trigger();
  Pump();
  Pump();
  EXPECT_EQ(w.window->findChild<QDialog*>(QStringLiteral("frmViewInfoADC")), nullptr);
  EXPECT_FALSE(w.state->ViewOpenFlags[frmViewInfoADC]);
  EXPECT_FALSE(adc->isChecked());
}

TEST(MainWindow, ClosingDuringARunStopsItAndAsks) {
  Workbench w;
  w.window->action(QStringLiteral("mnuFileRecord"))->trigger();
  ASSERT_TRUE(w.window->measurementRun()->running());
  w.prompts.answers.push_back(PromptAnswer::Ok);
  w.window->close();
  EXPECT_FALSE(w.window->measurementRun()->running());
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Данные не сохранены, закончить работу с программой?"));
  EXPECT_FALSE(w.window->isVisible());
}

}  // namespace
}  // namespace aqx
