// The recording's edits driven through the main window as a user drives
// them: the signal menu's commands with their keys, undo and redo, the
// values on the clipboard.

#include "UiTestSupport.h"

#include "core/Numeric.h"
#include "files/DataFile.h"
#include "ui/common/PanelBar.h"
#include "ui/editing/ImportWindow.h"
#include "ui/editing/ObjectWindow.h"
#include "ui/editing/PlayerWindow.h"
#include "ui/editing/SoundOutput.h"
#include "ui/editing/RecordingEdits.h"
#include "ui/markers/MarkerWindow.h"
#include "ui/signal/SignalWindow.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTableWidget>

#include <gtest/gtest.h>

namespace aqx {
namespace {

using uitest::Workbench;

QAction* Command(Workbench& w, const char* name) {
  QAction* a = w.window->action(QString::fromLatin1(name));
  EXPECT_NE(a, nullptr) << name;
  return a;
}

// A recording of four channels open in the signal view.
void OpenRecording(Workbench& w) {
  const QString path = w.path(QStringLiteral("edit.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(path, 8192));
  ASSERT_TRUE(w.window->OpenFile(path));
  if (!w.window->signalWindow()) Command(w, "mnuViewSignal")->trigger();
  ASSERT_NE(w.window->signalWindow(), nullptr);
}

TEST(RecordingEdits, EditCommandsFollowTheSelectionAndUndoWithTheirKeys) {
  Workbench w;
  OpenRecording(w);
  AppState& s = *w.state;
  for (const char* name : {"mnuSignalDelete", "mnuSignalSmoothly", "mnuSignalZero", "mnuSignalMemory",
                           "mnuSignalShift", "mnuSignalCopyData", "mnuSignalUndo", "mnuSignalRedo"}) {
    QAction* a = Command(w, name);
    ASSERT_NE(a, nullptr);
    EXPECT_FALSE(a->property("later").toBool()) << name;
    EXPECT_TRUE(w.window->signalMenu()->actions().contains(a)) << name;
  }
  EXPECT_EQ(Command(w, "mnuSignalUndo")->text(), QStringLiteral("Отменить"));
  EXPECT_EQ(Command(w, "mnuSignalUndo")->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Z));
  EXPECT_FALSE(Command(w, "mnuSignalZero")->isEnabled());
  EXPECT_FALSE(Command(w, "mnuSignalUndo")->isEnabled());

  s.SelectFirst = 100;
  s.SelectLast = 199;
  w.window->ViewRefresh();
  ASSERT_TRUE(Command(w, "mnuSignalZero")->isEnabled());
  const int c = s.FirstChannelActive;
  const int16_t before = s.SignalData.at(150, c);
  ASSERT_NE(before, 0);
  Command(w, "mnuSignalZero")->trigger();
  EXPECT_EQ(s.SignalData.at(150, c), 0);
  EXPECT_FALSE(s.DataSaved);
  ASSERT_TRUE(Command(w, "mnuSignalUndo")->isEnabled());
  Command(w, "mnuSignalUndo")->trigger();
  EXPECT_EQ(s.SignalData.at(150, c), before);
  EXPECT_TRUE(s.DataSaved);
  Command(w, "mnuSignalRedo")->trigger();
  EXPECT_EQ(s.SignalData.at(150, c), 0);

  // Memorise, paste elsewhere.
  Command(w, "mnuSignalUndo")->trigger();
  Command(w, "mnuSignalMemory")->trigger();
  EXPECT_EQ(w.window->recordingEdits()->clipboard().size(), 100u);
  s.SelectFirst = s.SelectLast = 1000;
  w.window->ViewRefresh();
  ASSERT_TRUE(Command(w, "mnuSignalPaste")->isEnabled());
  Command(w, "mnuSignalPaste")->trigger();
  EXPECT_EQ(s.SignalData.at(1050, c), before);

  // A shift angle the command cannot take changes nothing.
  w.prompts.texts = {QStringLiteral("400")};
  const double corner = s.options.signal.Corner;
  Command(w, "mnuSignalShift")->trigger();
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Значение угла должно находится в диапазоне от -360 до 360."));
  EXPECT_EQ(s.options.signal.Corner, corner);
  // A good one is kept under Corner.
  w.prompts.texts = {QStringLiteral("90")};
  Command(w, "mnuSignalShift")->trigger();
  EXPECT_EQ(w.store.get(QStringLiteral("Signal"), QStringLiteral("Corner")), QStringLiteral("90"));
}

TEST(RecordingEdits, CutToWholeRevolutionsAndValuesOnTheClipboard) {
  Workbench w;
  OpenRecording(w);
  AppState& s = *w.state;
  QAction* reAccount = Command(w, "mnuSetupReAccount");
  ASSERT_TRUE(reAccount->isEnabled());
  EXPECT_EQ(reAccount->text(), QStringLiteral("Вырезка эффективного сигнала"));
  const int rate = s.FreqDesc;
  reAccount->trigger();
  EXPECT_GT(s.FreqDesc, rate);
  Command(w, "mnuSignalUndo")->trigger();
  EXPECT_EQ(s.FreqDesc, rate);

  s.SelectFirst = 1;
  s.SelectLast = 5;
  Command(w, "mnuSignalCopyData")->trigger();
  const QStringList lines = QGuiApplication::clipboard()->text().split(QStringLiteral("\r\n"));
  ASSERT_GE(lines.size(), 15);
  EXPECT_TRUE(lines[0].startsWith(QStringLiteral("Aquilonix v")));
  EXPECT_TRUE(lines[7].startsWith(QStringLiteral("Тип измерения: ")));
  EXPECT_EQ(lines.size(), 10 + 5 + 1);
}

TEST(RecordingEdits, MarkersAreTabledStoredAndKeptWithTheFile) {
  Workbench w;
  OpenRecording(w);
  AppState& s = *w.state;
  QAction* view = Command(w, "mnuViewMarker");
  ASSERT_TRUE(view->isEnabled());
  view->trigger();
  ui::MarkerWindow* m = w.window->recordingEdits()->markerWindow();
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->windowTitle(), QStringLiteral("Маркеры"));
  m->cmdAdd();
  m->cmdAdd();
  ASSERT_EQ(m->table()->rowCount(), 2);
  EXPECT_EQ(m->table()->item(1, 2)->text(), QStringLiteral("Маркер №2"));
  EXPECT_EQ(m->table()->item(0, 3)->text(), QStringLiteral("да"));
  EXPECT_EQ(w.store.get(QStringLiteral("Marker"), QStringLiteral("MarkerN")), QStringLiteral("2"));
  w.prompts.texts = {QStringLiteral("Пуск насоса")};
  m->cellDoubleClicked(0, 2);
  m->cellDoubleClicked(1, 3);
  m->chooseColor = [](const QColor&) { return std::optional<QColor>(QColor(0, 0, 255)); };
  m->cellDoubleClicked(0, 0);
  EXPECT_EQ(s.markers.MarkerRemark[0], QStringLiteral("Пуск насоса"));
  EXPECT_EQ(s.markers.MarkerOn[1], 0);
  EXPECT_EQ(s.markers.MarkerColor[0], 0xFF0000);  // blue as a blue-green-red word
  EXPECT_EQ(m->table()->item(1, 3)->text(), QStringLiteral("нет"));

  // Saved with the recording and back after a load that replaced them.
  const QString path = w.path(QStringLiteral("marked.aqx"));
  s.PathFileData = path;
  ASSERT_TRUE(WriteDataFile(s, w.prompts));
  s.markers.MarkerN = 0;
  ASSERT_TRUE(w.window->OpenFile(path));
  EXPECT_EQ(s.markers.MarkerN, 2);
  EXPECT_EQ(s.markers.MarkerRemark[0], QStringLiteral("Пуск насоса"));
  EXPECT_EQ(m->table()->rowCount(), 2);
}

TEST(RecordingEdits, DescriptionGoesToTheStatusBarTheFileAndTheCopyHeader) {
  Workbench w;
  OpenRecording(w);
  AppState& s = *w.state;
  Command(w, "mnuSetupObject")->trigger();
  ui::ObjectWindow* o = w.window->recordingEdits()->objectWindow();
  ASSERT_NE(o, nullptr);
  o->station()->setCurrentText(QStringLiteral(" Богучанская ГЭС "));
  o->agregat()->setCurrentText(QStringLiteral("7"));
  o->mode()->setCurrentText(QStringLiteral("Номинальная нагрузка"));
  o->field(0)->setText(QStringLiteral("333"));
  o->field(27)->setText(QStringLiteral("после ремонта"));
  o->cmdOK();
  EXPECT_EQ(s.object.Station, QStringLiteral("Богучанская ГЭС"));
  EXPECT_EQ(s.object.Agregat, 7);
  EXPECT_EQ(s.object.Remark[0], QStringLiteral("333"));
  EXPECT_FALSE(s.DataSaved);
  EXPECT_EQ(w.window->mainStatus()->text(QStringLiteral("Station")), QStringLiteral("Богучанская ГЭС"));
  EXPECT_EQ(w.store.get(QStringLiteral("Config"), QStringLiteral("Station")), QStringLiteral("Богучанская ГЭС"));
  w.window->signalWindow()->CopyPicture();
  const QString header = QGuiApplication::clipboard()->text();
  EXPECT_TRUE(header.contains(QStringLiteral("Богучанская ГЭС, Гидроагрегат №7"))) << header.toStdString();
  EXPECT_TRUE(header.contains(QStringLiteral("Режим: Номинальная нагрузка")));
  const QString path = w.path(QStringLiteral("described.aqx"));
  s.PathFileData = path;
  ASSERT_TRUE(WriteDataFile(s, w.prompts));
  s.object.Station.clear();
  s.object.Remark[27].clear();
  ASSERT_TRUE(w.window->OpenFile(path));
  EXPECT_EQ(s.object.Station, QStringLiteral("Богучанская ГЭС"));
  EXPECT_EQ(s.object.Remark[27], QStringLiteral("после ремонта"));

  ui::DateTimeWindow dt(s, {}, nullptr);
  dt.editor()->setDateTime(QDateTime(QDate(2024, 5, 17), QTime(10, 30, 0)));
  dt.cmdOK();
  EXPECT_EQ(OleToDateTime(s.object.RecordDate).toString(QStringLiteral("dd.MM.yyyy HH:mm")), QStringLiteral("17.05.2024 10:30"));
}

TEST(RecordingEdits, ImportExportAndThePlayerWithoutSound) {
  Workbench w;
  OpenRecording(w);
  AppState& s = *w.state;
  const QString source = w.path(QStringLiteral("source.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(source, 8192));
  Command(w, "mnuFileImport")->trigger();
  ui::ImportWindow* im = w.window->recordingEdits()->importWindow();
  ASSERT_NE(im, nullptr);
  EXPECT_EQ(im->destinations()->count(), ChannelCount(s));
  ASSERT_TRUE(im->openSource(source));
  EXPECT_EQ(im->sources()->count(), 4);
  im->sources()->setCurrentRow(1);
  im->destinations()->setCurrentRow(9);
  im->cmdOK();
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Импортировать данные в канал №10"));
  EXPECT_EQ(s.channels.Channel[10], 1);
  EXPECT_EQ(s.SignalData.at(77, 10), s.SignalData.at(77, 2));
  // A foreign file is refused and changes nothing.
  const QString foreign = w.path(QStringLiteral("notes.txt"));
  QFile f(foreign);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.write("text");
  f.close();
  EXPECT_FALSE(im->openSource(foreign));
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Файл неподдерживаемого формата для импорта."));

  w.prompts.texts = {w.path(QStringLiteral("out.wav"))};
  Command(w, "mnuFileExport")->trigger();
  EXPECT_TRUE(QFile::exists(w.path(QStringLiteral("out.wav"))));

  Command(w, "mnuServicePlayerSound")->trigger();
  ui::PlayerWindow* p = w.window->recordingEdits()->playerWindow();
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(p->rates()->count(), 9);
  EXPECT_TRUE(QFile::exists(p->wavePath()));
  EXPECT_TRUE(p->info()->text().startsWith(QStringLiteral("Частота дескритизации: ")));
  // The sound output is a module of its own, found where the build put it.
  EXPECT_NE(ui::LoadSoundModule(), nullptr);
  if (!p->hasSoundOutput()) {
    p->cmdPlay();
    EXPECT_TRUE(w.prompts.lastMessage().startsWith(QStringLiteral("Звуковое устройство не найдено")));
    EXPECT_FALSE(p->playing());
  }
}

}  // namespace
}  // namespace aqx
