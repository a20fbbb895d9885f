// The supporting windows driven as a user drives them: the option sheet
// with Apply and Reset, the named configurations, the file browser on a
// folder with damaged files, file properties, the channel choosers, the tip
// of the day and the manual with F1.

#include "UiTestSupport.h"

#include "core/Config.h"
#include "core/NamedConfigs.h"
#include "ui/files/FilesWindow.h"
#include "ui/help/HelpWindow.h"
#include "ui/options/ChannelLooks.h"
#include "ui/options/ConfigDialog.h"
#include "ui/options/ParametersDialog.h"
#include "ui/options/SupportWindows.h"
#include "ui/signal/SignalWindow.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableWidget>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace aqx {
namespace {

using uitest::Workbench;

ui::SupportWindows& Support(Workbench& w) { return *w.window->supportWindows(); }

template <typename T>
T* Child(QWidget* parent, const char* name) {
  T* c = parent->findChild<T*>(QString::fromLatin1(name));
  EXPECT_NE(c, nullptr) << name;
  return c;
}

void PressF1(QWidget* target) {
  QKeyEvent press(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
  QApplication::sendEvent(target, &press);
}

TEST(OptionSheet, ApplyTakesEffectAndIsKeptForTheNextStart) {
  Workbench w;
  w.window->action(QStringLiteral("mnuSetupParameters"))->trigger();
  ui::ParametersDialog* d = Support(w).parameters();
  ASSERT_NE(d, nullptr);
  EXPECT_EQ(d->windowTitle(), QStringLiteral("Параметры"));
  Child<QCheckBox>(d, "chkVisibleChannels")->setChecked(false);
  Child<QCheckBox>(d, "chkStatusFilterBienie")->setChecked(true);
  Child<QLineEdit>(d, "txtValueClearenceMax")->setText(QStringLiteral("3500"));
  d->setColorChooser([](const QColor&, const QString&) { return std::optional<QColor>(QColor(0, 0, 255)); });
  Child<QPushButton>(d, "cmdColorGrid")->click();
  Child<QPushButton>(d, "cmdApply")->click();
  EXPECT_FALSE(w.state->options.parameters.VisibleChannels);
  EXPECT_TRUE(w.state->options.parameters.StatusFilterBienie);
  EXPECT_EQ(w.state->options.parameters.ValueClearenceMax, 3500);
  EXPECT_EQ(w.state->options.color.ColorGrid, 0xFF0000);  // blue as a blue-green-red word
  EXPECT_TRUE(w.prompts.messages().empty());

  // A new start reads what the sheet wrote.
  auto next = std::make_unique<AppState>();
  LoadConfigReg(*next, w.store);
  EXPECT_FALSE(next->options.parameters.VisibleChannels);
  EXPECT_EQ(next->options.parameters.ValueClearenceMax, 3500);
  EXPECT_EQ(next->options.color.ColorGrid, 0xFF0000);
}

TEST(OptionSheet, WrongValueIsNamedAndNothingChanges) {
  Workbench w;
  Support(w).showParameters();
  ui::ParametersDialog* d = Support(w).parameters();
  Child<QCheckBox>(d, "chkColorType")->setChecked(false);
  Child<QLineEdit>(d, "txtValueClearenceMin")->setText(QStringLiteral("пятьсот"));
  EXPECT_FALSE(d->Apply());
  ASSERT_EQ(w.prompts.messages().size(), 1u);
  EXPECT_TRUE(w.prompts.lastMessage().contains(QStringLiteral("Величина минимального зазора, мкм")));
  EXPECT_TRUE(w.state->options.parameters.ColorType);
  EXPECT_FALSE(w.store.contains(QStringLiteral("Parameters"), QStringLiteral("ColorType")));
  // OK with the wrong value keeps the sheet open.
  Child<QPushButton>(d, "cmdOK")->click();
  EXPECT_TRUE(d->isVisible());
}

TEST(OptionSheet, TabIsRemembered) {
  Workbench w;
  Support(w).showParameters();
  Support(w).parameters()->tabs()->setCurrentIndex(3);
  Support(w).parameters()->close();
  QApplication::processEvents();
  EXPECT_EQ(w.store.get(QStringLiteral("Config"), QStringLiteral("ParametersTab")), QStringLiteral("3"));
  Support(w).showParameters();
  EXPECT_EQ(Support(w).parameters()->tabs()->currentIndex(), 3);
}

TEST(OptionSheet, ResetAsksDeletesAllButRecentAndClosesTheProgram) {
  Workbench w;
  w.store.save(QStringLiteral("Recent"), QStringLiteral("1"), QStringLiteral("/data/a.aqx"));
  w.store.save(QStringLiteral("Parameters"), QStringLiteral("ColorType"), QStringLiteral("0"));
  w.state->options.parameters.ColorType = false;
  Support(w).showParameters();
  w.prompts.answers = {PromptAnswer::Cancel};
  Child<QPushButton>(Support(w).parameters(), "cmdReset")->click();
  EXPECT_EQ(w.store.get(QStringLiteral("Parameters"), QStringLiteral("ColorType")), QStringLiteral("0"));

  w.prompts.answers = {PromptAnswer::Ok, PromptAnswer::Ok};
  Child<QPushButton>(Support(w).parameters(), "cmdReset")->click();
  const auto shown = w.prompts.messages();
  ASSERT_GE(shown.size(), 3u);
  EXPECT_EQ(shown[1].text, ResetQuestion());
  EXPECT_EQ(shown[2].text, ResetDoneNotice());
  EXPECT_TRUE(w.state->options.parameters.ColorType);
  EXPECT_EQ(w.store.get(QStringLiteral("Recent"), QStringLiteral("1")), QStringLiteral("/data/a.aqx"));
  EXPECT_FALSE(w.store.contains(QStringLiteral("Parameters"), QStringLiteral("ColorType")));
  EXPECT_FALSE(w.window->isVisible());
}

TEST(Configs, SavedRenamedRestoredAndForeignFileRefused) {
  Workbench w;
  Support(w).setConfigsFolder(w.path(QStringLiteral("Configs")));
  w.window->action(QStringLiteral("mnuSetupConfigs"))->trigger();
  ui::ConfigDialog* d = Support(w).configs();
  ASSERT_NE(d, nullptr);
  w.store.save(QStringLiteral("Parameters"), QStringLiteral("ViewRealTime"), QStringLiteral("1"));
  w.prompts.texts = {QStringLiteral("Агрегат 3")};
  d->Save();
  ASSERT_EQ(d->list()->count(), 1);
  w.prompts.texts = {QStringLiteral("Агрегат 4")};
  d->Rename();
  EXPECT_EQ(d->list()->item(0)->text(), QStringLiteral("Агрегат 4"));

  w.store.save(QStringLiteral("Parameters"), QStringLiteral("ViewRealTime"), QStringLiteral("0"));
  w.state->options.parameters.ViewRealTime = false;
  d->Open();
  EXPECT_TRUE(w.state->options.parameters.ViewRealTime);

  QFile foreign(w.path(QStringLiteral("Configs/Чужой")));
  ASSERT_TRUE(foreign.open(QIODevice::WriteOnly));
  foreign.write(QByteArray("\x89PNG\r\n\x1a\n\0\0\0", 11));
  foreign.close();
  d->Refresh(QStringLiteral("Чужой"));
  const SettingsTree before = w.store.tree();
  d->Open();
  EXPECT_TRUE(w.prompts.lastMessage().contains(QStringLiteral("Чужой")));
  EXPECT_EQ(w.store.tree(), before);

  w.prompts.answers = {PromptAnswer::Yes};
  d->Refresh(QStringLiteral("Агрегат 4"));
  d->Delete();
  EXPECT_EQ(d->list()->count(), 1);
}

TEST(FileBrowser, ListsHeadersInTheBackgroundMarksDamagedAndOpens) {
  Workbench w;
  ASSERT_TRUE(uitest::WriteRecording(w.path(QStringLiteral("a.aqx")), 4096, 4));
  ASSERT_TRUE(uitest::WriteRecording(w.path(QStringLiteral("b.aqx")), 8192, 6));
  QFile bad(w.path(QStringLiteral("broken.aqx")));
  ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
  bad.write("not a recording at all");
  bad.close();
  QFile other(w.path(QStringLiteral("notes.txt")));
  ASSERT_TRUE(other.open(QIODevice::WriteOnly));
  other.close();

  ui::FilesWindow files(w.dir.path(), [&w](const QString& path) { return w.window->OpenFile(path); });
  EXPECT_EQ(files.rowCount(), 3);  // the names stand at once
  QElapsedTimer t;
  t.start();
  while (files.reading() && t.elapsed() < 20000) QApplication::processEvents(QEventLoop::AllEvents, 50);
  ASSERT_FALSE(files.reading());
  QTreeWidget* list = files.list();
  int damaged = -1;
  int longer = -1;
  for (int r = 0; r < list->topLevelItemCount(); ++r) {
    if (list->topLevelItem(r)->text(0) == QStringLiteral("broken.aqx")) damaged = r;
    if (list->topLevelItem(r)->text(0) == QStringLiteral("b.aqx")) longer = r;
  }
  ASSERT_GE(damaged, 0);
  ASSERT_GE(longer, 0);
  EXPECT_EQ(list->topLevelItem(damaged)->text(1), QStringLiteral("не читается"));
  EXPECT_FALSE(list->topLevelItem(damaged)->text(2).isEmpty());
  EXPECT_EQ(list->topLevelItem(longer)->text(6), QStringLiteral("6"));
  EXPECT_TRUE(files.openRow(longer));
  EXPECT_EQ(w.state->PathFileData, w.path(QStringLiteral("b.aqx")));
  EXPECT_EQ(w.state->SignalDataN, 8192);
  EXPECT_FALSE(files.openRow(damaged));
}

TEST(FileBrowser, PropertiesFollowTheOpenRecording) {
  Workbench w;
  ASSERT_TRUE(uitest::WriteRecording(w.path(QStringLiteral("a.aqx")), 4096, 4));
  ASSERT_TRUE(uitest::WriteRecording(w.path(QStringLiteral("b.aqx")), 4096, 7));
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuFileProperty"))->isEnabled());
  ASSERT_TRUE(w.window->OpenFile(w.path(QStringLiteral("a.aqx"))));
  ASSERT_TRUE(w.window->action(QStringLiteral("mnuFileProperty"))->isEnabled());
  w.window->action(QStringLiteral("mnuFileProperty"))->trigger();
  ui::FilePropertyWindow* p = Support(w).fileProperty();
  ASSERT_NE(p, nullptr);
  auto value = [p](const QString& name) {
    for (int r = 0; r < p->table()->rowCount(); ++r)
      if (p->table()->item(r, 0)->text() == name) return p->table()->item(r, 1)->text();
    return QString();
  };
  EXPECT_EQ(value(QStringLiteral("Каналов в записи")), QStringLiteral("4"));
  ASSERT_TRUE(w.window->OpenFile(w.path(QStringLiteral("b.aqx"))));
  EXPECT_EQ(value(QStringLiteral("Каналов в записи")), QStringLiteral("7"));
  EXPECT_EQ(value(QStringLiteral("Файл")), w.path(QStringLiteral("b.aqx")));
}

TEST(Choosers, ChannelLineAndTypeColourAreWrittenAndDrawn) {
  Workbench w;
  ASSERT_TRUE(uitest::WriteRecording(w.path(QStringLiteral("a.aqx")), 4096, 4));
  ASSERT_TRUE(w.window->OpenFile(w.path(QStringLiteral("a.aqx"))));
  Support(w).showSetupLine();
  auto* line = qobject_cast<ui::LineDialog*>(Support(w).setupLine());
  ASSERT_NE(line, nullptr);
  ASSERT_NE(line->colorButton(2), nullptr);
  EXPECT_EQ(line->colorButton(5), nullptr);  // only the channels of the recording
  line->setColorChooser([](const QColor&, const QString&) { return std::optional<QColor>(QColor(10, 20, 30)); });
  line->colorButton(2)->click();
  line->signalWidth(2)->setValue(3);
  line->Apply();
  EXPECT_EQ(w.state->channels.ChannelColor[2], BgrWord(10, 20, 30));
  EXPECT_EQ(w.state->channels.ChannelLineWidthSignal[2], 3);
  EXPECT_EQ(w.store.get(QStringLiteral("Channel"), QStringLiteral("ChannelLineWidthSignal2")), QStringLiteral("3"));

  Support(w).showSetupColorType();
  auto* types = qobject_cast<ui::ColorTypeDialog*>(Support(w).setupColorType());
  ASSERT_NE(types, nullptr);
  types->typeColor(3)->setCurrentIndex(12);
  types->Apply();
  EXPECT_EQ(w.state->options.config.ColorTypeKit[3], 12);
  EXPECT_EQ(w.store.get(QStringLiteral("Config"), QStringLiteral("ColorTypeKit3")), QStringLiteral("12"));
}

TEST(Choosers, ValuesWindowFollowsTheCrossHair) {
  Workbench w;
  ASSERT_TRUE(uitest::WriteRecording(w.path(QStringLiteral("a.aqx")), 4096, 4));
  ASSERT_TRUE(w.window->OpenFile(w.path(QStringLiteral("a.aqx"))));
  ui::SignalWindow* signal = w.window->signalWindow();
  ASSERT_NE(signal, nullptr);
  EXPECT_EQ(Support(w).colorProperty(), nullptr);  // no cursor yet
  w.window->action(QStringLiteral("mnuSignalCursor0"))->trigger();
  ui::ColorPropertyWindow* values = Support(w).colorProperty();
  ASSERT_NE(values, nullptr);
  ASSERT_EQ(values->rows().size(), 1);
  EXPECT_TRUE(values->rows()[0].endsWith(QStringLiteral("-")));
  const QWidget* picture = signal->pictureWidget();
  signal->pictureMouseMove(QPointF(picture->width() / 3.0, picture->height() / 2.0), false);
  ASSERT_EQ(values->rows().size(), 1);
  EXPECT_FALSE(values->rows()[0].endsWith(QStringLiteral("-"))) << values->rows()[0].toStdString();
  // The menu entry takes it down.
  w.window->action(QStringLiteral("mnuSignalViewColorProperty"))->trigger();
  EXPECT_EQ(Support(w).colorProperty(), nullptr);
  EXPECT_FALSE(signal->viewState().ColorPropertyOpen);
}

TEST(Advice, ShownAtStartWhileSetAndMovesOn) {
  Workbench w;
  w.state->options.config.Advice = true;
  w.state->options.config.AdviceN = 0;
  Support(w).startUp();
  ui::AdviceWindow* a = Support(w).advice();
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->tipText(), ui::AdviceTips().front());
  EXPECT_EQ(w.store.get(QStringLiteral("Config"), QStringLiteral("AdviceN")), QStringLiteral("1"));
  Child<QPushButton>(a, "cmdNext")->click();
  EXPECT_EQ(a->tipText(), ui::AdviceTips()[1]);
  a->showAtStart()->setChecked(false);
  EXPECT_EQ(w.store.get(QStringLiteral("Config"), QStringLiteral("Advice")), QStringLiteral("0"));
}

TEST(Help, ContentsSearchAndF1FromThreeWindows) {
  Workbench w;
  w.window->action(QStringLiteral("mnuHelpContents"))->trigger();
  ui::HelpWindow* h = Support(w).help();
  ASSERT_NE(h, nullptr);
  ASSERT_FALSE(h->manual().empty()) << "the manual was not found";
  EXPECT_EQ(h->currentPage(), QStringLiteral("index.md"));
  EXPECT_GE(h->contents()->count(), 10);
  for (const HelpPage& p : h->manual().pages()) EXPECT_FALSE(p.text.contains(QStringLiteral("TODO"))) << p.fileName.toStdString();

  h->search(QStringLiteral("траектория орбита"));
  ASSERT_GE(h->results()->count(), 1);
  EXPECT_EQ(h->currentPage(), QStringLiteral("traectoria.md"));

  // F1 over the option sheet, over the signal view, over the file browser.
  Support(w).showParameters();
  PressF1(Support(w).parameters());
  EXPECT_EQ(h->currentPage(), QStringLiteral("setup.md"));
  Support(w).parameters()->close();
  QApplication::processEvents();

  ASSERT_TRUE(uitest::WriteRecording(w.path(QStringLiteral("a.aqx")), 4096, 4));
  ASSERT_TRUE(w.window->OpenFile(w.path(QStringLiteral("a.aqx"))));
  ASSERT_NE(w.window->signalWindow(), nullptr);
  for (QMdiSubWindow* sub : w.window->mdiArea()->subWindowList())
    if (sub->widget() == w.window->signalWindow()) w.window->mdiArea()->setActiveSubWindow(sub);
  PressF1(w.window->signalWindow());
  EXPECT_EQ(h->currentPage(), QStringLiteral("signal.md"));

  Support(w).showFiles();
  PressF1(Support(w).files());
  EXPECT_EQ(h->currentPage(), QStringLiteral("files.md"));
}

}  // namespace
}  // namespace aqx
