// The trajectory and the rotor form windows driven through the main
// window's commands as a user drives them: opening rule, menu entries and
// their keys, bars, spokes, console, copy, and the refusals.

#include "UiTestSupport.h"

#include "files/DataFile.h"
#include "tests/views/RotorTestSupport.h"
#include "ui/common/PanelBar.h"
#include "ui/rotor/ConsoleWindow.h"
#include "ui/rotor/FormaWindow.h"
#include "ui/rotor/ShaftViews.h"
#include "ui/rotor/SpicaWindow.h"
#include "ui/trajectory/TraectoriaWindow.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QMdiArea>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>

#include <gtest/gtest.h>

namespace aqx {
namespace {

using uitest::Workbench;

// Marker 1, turn probe 2 (40 poles, pole 11 5 % high), run-out ВБ/ЛБ on 3 and 4.
QString WriteShaftRecording(Workbench& w, const QString& name, bool turnProbe = true) {
  auto s = testing_views::RotorRecording(40, 50, 6, [](int p) { return p == 11 ? 1.05 * 39 / 38.95 : 1.0; });
  testing_views::AddRunOutPair(*s, 3);
  if (!turnProbe) s->channels.Type[testing_views::kRotorTurn] = sensor::Voltage;
  s->FirstChannelActive = 3;
  s->object.Station = QStringLiteral("Волжская ГЭС");
  s->PathFileData = w.path(name);
  return WriteDataFile(*s, w.prompts) ? s->PathFileData : QString();
}

void Trigger(Workbench& w, const char* name) {
  QAction* a = w.window->action(QString::fromLatin1(name));
  ASSERT_NE(a, nullptr) << name;
  a->trigger();
}

TEST(ShaftViews, CommandsStandInTheViewMenuAndWaitForData) {
  Workbench w;
  for (const char* name : {"mnuViewTraectoria", "mnuViewFormaRotor", "mnuViewFormaRotorDiagram", "mnuViewFormaRotorSpectr"}) {
    QAction* a = w.window->action(QString::fromLatin1(name));
    ASSERT_NE(a, nullptr) << name;
    EXPECT_FALSE(a->isEnabled()) << name;
    EXPECT_FALSE(a->property("later").toBool()) << name;
  }
  EXPECT_EQ(w.window->action(QStringLiteral("mnuViewTraectoia")), nullptr);
  ASSERT_TRUE(w.window->OpenFile(WriteShaftRecording(w, QStringLiteral("вал.aqx"))));
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuViewTraectoria"))->isEnabled());
}

TEST(ShaftViews, TrajectoryOpensDrawsItsEntriesAndCopies) {
  Workbench w;
  ASSERT_TRUE(w.window->OpenFile(WriteShaftRecording(w, QStringLiteral("вал.aqx"))));
  Trigger(w, "mnuViewTraectoria");
  ui::TraectoriaWindow* t = w.window->shaftViews()->traectoriaWindow();
  ASSERT_NE(t, nullptr);
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuViewTraectoria"))->isChecked());
  EXPECT_EQ(t->windowTitle(), QStringLiteral("Траектория движения вала (ВБ-ЛБ)"));
  EXPECT_GT(t->picture().items.size(), 20u);
  EXPECT_TRUE(t->statusBar()->text(QStringLiteral("Dimension")).startsWith(QStringLiteral("D: ")));
  // Every entry of mnuTraectoria flips its option and stores its key.
  const std::pair<const char*, const char*> entries[] = {
      {"mnuTraectoriaFirstGarmonic", "TraectoriaFirstGarmonic"}, {"mnuTraectoriaCenterRotor", "CenterRotor"},
      {"mnuTraectoriaOtmetchick", "TraectoriaOtmetchick"},       {"mnuTraectoriaBeginPoint", "BeginPoint"},
      {"mnuTraectoriaCursor", "Cursor"},                         {"mnuTraectoriaStatusBar", "StatusBar"}};
  for (const auto& [name, key] : entries) {
    const QString before = w.store.get(QStringLiteral("Traectoria"), QString::fromLatin1(key), QStringLiteral("?"));
    Trigger(w, name);
    EXPECT_NE(w.store.get(QStringLiteral("Traectoria"), QString::fromLatin1(key)), before) << name;
  }
  EXPECT_TRUE(w.state->options.traectoria.TraectoriaFirstGarmonic);
  EXPECT_FALSE(t->statusBar()->isVisible());
  Trigger(w, "mnuTraectoriaFirstGarmonic");
  Trigger(w, "mnuTraectoriaStatusBar");
  // The bars: the scale slider, a drag of the plane, the stretch.
  t->sliderV()->setValue(5);
  EXPECT_EQ(t->viewState().ScaleXY, 500);
  t->flatScrollBar(true)->setValue(t->flatScrollBar(true)->value() - 40);
  EXPECT_EQ(t->viewState().CenterX, t->flatScrollBar(true)->value());
  t->hScroll(true)->setValue(100);
  EXPECT_EQ(t->viewState().BeginSample, 100);
  t->slowDraw();
  EXPECT_FALSE(t->picture().items.empty());
  Trigger(w, "mnuTraectoriaCopy");
  const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
  ASSERT_NE(copied, nullptr);
  EXPECT_TRUE(copied->hasImage());
  EXPECT_TRUE(copied->text().startsWith(QStringLiteral("Станция: Волжская ГЭС     Гидроагрегат №")));
  EXPECT_GT(t->CopyPictureImage().height(), t->picture().height);
  Trigger(w, "mnuViewTraectoria");
  EXPECT_EQ(w.window->shaftViews()->traectoriaWindow(), nullptr);
  EXPECT_EQ(w.store.get(QStringLiteral("Traectoria"), QStringLiteral("ScaleXY")), QStringLiteral("500"));
}

TEST(ShaftViews, RotorWindowsShareOneFormAndEveryEntryStoresItsKey) {
  Workbench w;
  ASSERT_TRUE(w.window->OpenFile(WriteShaftRecording(w, QStringLiteral("ротор.aqx"))));
  ui::ShaftViews* views = w.window->shaftViews();
  Trigger(w, "mnuViewFormaRotor");
  ui::FormaWindow* rotor = views->formaWindow(ui::FormaKind::Rotor);
  ASSERT_NE(rotor, nullptr);
  EXPECT_EQ(rotor->statusBar()->text(QStringLiteral("Form")), QStringLiteral("Средняя форма"));
  EXPECT_EQ(rotor->hScroll()->maximum(), 5);
  rotor->hScroll()->setValue(2);
  EXPECT_EQ(rotor->statusBar()->text(QStringLiteral("Form")), QStringLiteral("Форма №2"));
  rotor->vScroll()->setValue(10);
  EXPECT_EQ(rotor->viewState().VScroll, 10);
  // With a window standing, the others open on its form without a new
  // computation: a pole count spoilt now is not looked at.
  w.state->Polus = 0;
  Trigger(w, "mnuViewFormaRotorDiagram");
  Trigger(w, "mnuViewFormaRotorSpectr");
  ASSERT_NE(views->formaWindow(ui::FormaKind::Diagram), nullptr);
  ASSERT_NE(views->formaWindow(ui::FormaKind::Spectr), nullptr);
  EXPECT_TRUE(w.prompts.messages().empty());
  w.state->Polus = 40;

  const std::pair<const char*, const char*> entries[] = {
      {"mnuFormaView0", "FormaView"},          {"mnuFormaViewColor", "FormaViewColor"},
      {"mnuFormaViewScale", "FormaViewScale"}, {"mnuFormaValue", "FormaValue"},
      {"mnuDiagramaViewType2", "DiagramaViewType"}, {"mnuDiagramaView2", "DiagramaView"},
      {"mnuDiagramaViewColor", "DiagramaViewColor"}, {"mnuDiagramaViewScale", "DiagramaViewScale"},
      {"mnuDiagramaValue", "DiagramaValue"},   {"mnuSpectrFormsValue", "SpectrFormsValue"}};
  for (const auto& [name, key] : entries) {
    const QString before = w.store.get(QStringLiteral("FormaRotor"), QString::fromLatin1(key), QStringLiteral("?"));
    Trigger(w, name);
    EXPECT_NE(w.store.get(QStringLiteral("FormaRotor"), QString::fromLatin1(key)), before) << name;
  }
  EXPECT_EQ(w.state->options.formaRotor.FormaView, 0);
  EXPECT_EQ(w.state->options.formaRotor.DiagramaViewType, 2);

  for (const char* console : {"mnuFormaConsole", "mnuFormaRotorDiagramConsole", "mnuSpectrFormsConsole"}) {
    Trigger(w, console);
    ASSERT_NE(views->console(), nullptr);
    EXPECT_TRUE(views->console()->text().contains(QStringLiteral("Процентные значения ЭДС полюсов")));
  }
  EXPECT_EQ(views->console()->windowTitle(), QStringLiteral("Консоль - Форма ротора"));

  for (const char* copy : {"mnuFormaCopy", "mnuDiagramaCopy", "mnuSpectrFormsCopy"}) {
    QGuiApplication::clipboard()->clear();
    Trigger(w, copy);
    EXPECT_TRUE(QGuiApplication::clipboard()->mimeData()->hasImage()) << copy;
  }

  // The spokes: a change shows at once, "Применить" stores it, "Отмена" puts
  // back what stood before.
  Trigger(w, "mnuFormRotorSpica");
  ui::SpicaWindow* spica = views->spicaWindow();
  ASSERT_NE(spica, nullptr);
  spica->spokeCount()->setCurrentIndex(11);
  EXPECT_EQ(w.state->options.formaRotor.SpicaN, 12);
  spica->findChild<QPushButton*>(QStringLiteral("cmdApply"))->click();
  EXPECT_EQ(w.store.get(QStringLiteral("FormaRotor"), QStringLiteral("SpicaN")), QStringLiteral("12"));
  spica->direction()->setCurrentIndex(0);
  spica->findChild<QPushButton*>(QStringLiteral("cmdCancel"))->click();
  EXPECT_EQ(w.state->options.formaRotor.SpicaD, 1);

  Trigger(w, "mnuViewFormaRotor");
  Trigger(w, "mnuViewFormaRotorDiagram");
  Trigger(w, "mnuViewFormaRotorSpectr");
  EXPECT_FALSE(views::FormaRotorDataStands(*w.state));
}

TEST(ShaftViews, NoFormMeansAMessageAndNoWindow) {
  Workbench w;
  ASSERT_TRUE(w.window->OpenFile(WriteShaftRecording(w, QStringLiteral("без витка.aqx"), false)));
  const size_t before = w.prompts.messages().size();
  Trigger(w, "mnuViewFormaRotorDiagram");
  EXPECT_EQ(w.window->shaftViews()->formaWindow(ui::FormaKind::Diagram), nullptr);
  ASSERT_EQ(w.prompts.messages().size(), before + 1);
  EXPECT_EQ(w.prompts.messages().back().title, QStringLiteral("Форма ротора"));
  EXPECT_TRUE(w.prompts.lastMessage().contains(QStringLiteral("\"Виток\"")));
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuViewFormaRotorDiagram"))->isChecked());
  // The trajectory of a channel whose neighbour is of another type says so.
  w.window->SelectActiveChannel(2);
  Trigger(w, "mnuViewTraectoria");
  ui::TraectoriaWindow* t = w.window->shaftViews()->traectoriaWindow();
  ASSERT_NE(t, nullptr);
  EXPECT_FALSE(t->sliderV()->isEnabled());
  bool told = false;
  for (const auto& item : t->picture().items)
    if (const auto* text = std::get_if<views::Text>(&item))
      told = told || text->utf8 == QStringLiteral("Построение траектории невозможно").toStdString();
  EXPECT_TRUE(told);
}

}  // namespace
}  // namespace aqx
