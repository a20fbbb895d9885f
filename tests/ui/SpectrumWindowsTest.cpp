// The spectrum family's windows through the main window: the views of the
// styles, the panels, the cascade's buttons and corner, the probe and
// filter tables, the analyser settings, the evaluation window.

#include "UiTestSupport.h"

#include "ui/common/PanelBar.h"
#include "ui/setup/SetupDialogs.h"
#include "ui/spectrum/CascadeWindow.h"
#include "ui/spectrum/SpectrWindow.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTableWidget>

#include <gtest/gtest.h>

namespace aqx {
namespace {

class SpectrumWindowsTest : public testing::Test {
 protected:
  void SetUp() override {
    const QString file = w.path(QStringLiteral("demo.aqx"));
    ASSERT_TRUE(uitest::WriteRecording(file, 32768));
    ASSERT_TRUE(w.window->OpenFile(file));
    w.window->action(QStringLiteral("mnuViewStyle2"))->trigger();
    QCoreApplication::processEvents();
    spectr = w.window->spectrWindow();
    cascade = w.window->cascadeWindow();
    ASSERT_NE(spectr, nullptr);
    ASSERT_NE(cascade, nullptr);
  }
  QString panel(const char* key) const { return spectr->statusBar()->text(QString::fromLatin1(key)); }

  uitest::Workbench w;
  ui::SpectrWindow* spectr = nullptr;
  ui::CascadeWindow* cascade = nullptr;
};

TEST_F(SpectrumWindowsTest, TheStyleOpensBothViewsAndTheCommandsAreReal) {
  EXPECT_TRUE(w.state->ViewOpenFlags[frmViewSpectr]);
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuViewSpectr"))->isChecked());
  for (const char* name : {"mnuViewSpectr", "mnuViewSpectrum", "mnuSetupCheckF", "mnuSetupFiltr",
                           "mnuSetupSpectrumAnalyser", "mnuServiceEvaluation"}) {
    QAction* a = w.window->action(QString::fromLatin1(name));
    ASSERT_NE(a, nullptr) << name;
    EXPECT_FALSE(a->property("later").toBool()) << name;
    EXPECT_TRUE(a->isEnabled()) << name;
  }
  EXPECT_FALSE(spectr->picture().items.empty());
  EXPECT_EQ(panel("Scale"), QStringLiteral("М: 0-1кГц "));
  w.window->action(QStringLiteral("mnuViewSpectr"))->trigger();
  EXPECT_EQ(w.window->spectrWindow(), nullptr);
  EXPECT_FALSE(w.state->ViewOpenFlags[frmViewSpectr]);
}

TEST_F(SpectrumWindowsTest, PanelClicksChangeAndSaveTheOptions) {
  emit spectr->statusBar()->panelClicked(QStringLiteral("Scale"), Qt::LeftButton);
  EXPECT_EQ(panel("Scale"), QStringLiteral("М: 0-10кГц "));
  EXPECT_EQ(w.store.get(QStringLiteral("Config"), QStringLiteral("ScaleSpectr"), {}), QStringLiteral("3"));
  emit spectr->statusBar()->panelClicked(QStringLiteral("TypeDiagram"), Qt::LeftButton);
  EXPECT_EQ(panel("TypeDiagram"), QStringLiteral("G: Гистограмма "));
  emit spectr->statusBar()->panelClicked(QStringLiteral("Cursor"), Qt::LeftButton);
  EXPECT_EQ(w.state->options.spectr.Cursor, 0);
  QMouseEvent move(QEvent::MouseMove, QPointF(200, 50), spectr->pictureWidget()->mapToGlobal(QPointF(200, 50)),
                   Qt::NoButton, Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(spectr->pictureWidget(), &move);
  EXPECT_TRUE(panel("Cursor").startsWith(QStringLiteral("C1: ")));
  EXPECT_TRUE(panel("Level").startsWith(QStringLiteral("L: ")));
  EXPECT_FALSE(spectr->CopyPictureImage().isNull());
}

TEST_F(SpectrumWindowsTest, CascadeButtonsStopAtTheirLimitsAndTheCornerIsSaved) {
  for (int i = 0; i < 5; ++i) cascade->plusAction()->trigger();
  EXPECT_EQ(cascade->viewState().CascadeN, 32);
  EXPECT_FALSE(cascade->plusAction()->isEnabled());
  EXPECT_EQ(cascade->windowTitle(), QStringLiteral("Каскад спектров (Спектров: 32)"));
  for (int i = 0; i < 5; ++i) cascade->minusAction()->trigger();
  EXPECT_EQ(cascade->viewState().CascadeN, 2);
  EXPECT_FALSE(cascade->minusAction()->isEnabled());
  const views::CascadeViewState& v = cascade->viewState();
  cascade->pictureMousePress(Qt::LeftButton, QPointF(v.widthPx / 2.0, v.heightPx / 2.0));
  cascade->pictureMouseMove(QPointF(10, 10), true);  // too near the edge: not taken
  cascade->pictureMouseRelease();
  EXPECT_EQ(v.Xc, v.widthPx / 2);
  EXPECT_FALSE(w.store.get(QStringLiteral("Traectoria"), QStringLiteral("Xc"), {}).isEmpty());
}

TEST_F(SpectrumWindowsTest, ProbeTableAppliesAndTheFilterAsksAboutTheMarker) {
  w.window->action(QStringLiteral("mnuSetupCheckF"))->trigger();
  ui::FrequencyTableDialog* probe = w.window->setupProbe();
  ASSERT_NE(probe, nullptr);
  probe->grid()->item(1, 0)->setText(QStringLiteral("2.76"));
  EXPECT_TRUE(probe->Apply());
  EXPECT_FLOAT_EQ(w.state->channels.ProbeFreq[1][0], 2.76f);
  probe->close();

  const int16_t before = w.state->SignalData.at(1000, 2);
  w.window->action(QStringLiteral("mnuSetupFiltr"))->trigger();
  ui::FrequencyTableDialog* filter = w.window->setupFilter();
  ASSERT_NE(filter, nullptr);
  filter->grid()->item(0, 1)->setText(QStringLiteral("abc"));  // letters: told, nothing changes
  EXPECT_FALSE(filter->Apply());
  EXPECT_EQ(w.state->SignalData.at(1000, 2), before);
  EXPECT_TRUE(w.state->DataSaved);
  filter->grid()->item(0, 1)->setText(QStringLiteral("10"));  // "Все": low pass at 10 Hz
  w.prompts.answers = {PromptAnswer::No};
  EXPECT_TRUE(filter->Apply());
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Фильтровать сигнал отметчика?"));
  EXPECT_NE(w.state->SignalData.at(1000, 2), before);
  EXPECT_FALSE(w.state->DataSaved);
  EXPECT_EQ(w.state->channels.Filter[3][1], -1.0f);
}

TEST_F(SpectrumWindowsTest, AnalyserSettingsApplyTheBlockAndWindow) {
  ui::SpectrumAnalyserDialog dialog(ui::SetupContext{*w.state, w.store, w.prompts, [] {}, [] { return false; }});
  dialog.blockA()->setCurrentText(QStringLiteral("4096"));
  dialog.window()->setCurrentIndex(6);
  dialog.overlap()->setText(QStringLiteral("75"));
  dialog.Apply();
  EXPECT_EQ(w.state->BlockSizeFFT, 4096);
  EXPECT_EQ(w.state->SpectrLineCount, 2048);
  EXPECT_EQ(w.state->options.config.SmoothingWindow, 6);
  EXPECT_EQ(w.state->options.config.Overlapping, 75);
}

TEST_F(SpectrumWindowsTest, EvaluationWindowFollowsTheFrequencyAndClass) {
  ui::EvaluationDialog dialog;
  EXPECT_EQ(dialog.grade(5)->text(), QStringLiteral("< 50"));
  dialog.setClass(2);
  EXPECT_EQ(dialog.frequency()->text(), QStringLiteral("100"));
  EXPECT_EQ(dialog.grade(3)->text(), QStringLiteral("< 30(50)"));
}

}  // namespace
}  // namespace aqx
