// The measurement windows driven as a user would: record settings, a
// continuous recording with its monitor, every failure of the module at
// the start, the shaft marker windows, the sensor calibration and the ruler.

#include "UiTestSupport.h"

#include "core/ChannelPhysics.h"
#include "core/EngineErrors.h"
#include "core/Numeric.h"
#include "files/DataFile.h"
#include "ui/acquisition/CalibrationWindows.h"
#include "ui/acquisition/MeasureCommands.h"
#include "ui/acquisition/MeasurementRun.h"
#include "ui/acquisition/SetupChannelsWindow.h"
#include "ui/acquisition/SetupRecWindow.h"
#include "ui/acquisition/ShaftMarkerWindows.h"
#include "ui/acquisition/StatusFileWindow.h"
#include "ui/main/Workspace.h"
#include "ui/signal/SignalWindow.h"
#include "views/signal/SignalEngine.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <cstdlib>

namespace aqx {
namespace {

using uitest::Workbench;

void PumpFor(int milliseconds) {
  QElapsedTimer clock;
  clock.start();
  while (clock.elapsed() < milliseconds) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

// An environment setting of the virtual module for one scope.
struct VirtualSetting {
  VirtualSetting(const char* key, const QString& value) : key_(key) {
    setenv(key, value.toUtf8().constData(), 1);
  }
  ~VirtualSetting() { unsetenv(key_); }
  const char* key_;
};

ui::MeasureCommands* Measure(Workbench& w) { return w.window->measureCommands(); }

void UseContinuous(Workbench& w, int channels, int32_t freqADC) {
  AppState& s = *w.state;
  for (int c = 1; c <= kMaxChannels; ++c) s.channels.Channel[c] = c <= channels ? 1 : 0;
  RecountChannelUsedCount(s);
  s.SolidMode = true;
  s.SolidFileName = QStringLiteral("live");
  s.InitDirSave = w.dir.path();
  s.FreqADC = freqADC;
}

// Presses the record command for a continuous run of that kind; returns the
// command, whose second press stops the run.
QAction* StartContinuousRun(Workbench& w, int channels, int32_t freqADC) {
  UseContinuous(w, channels, freqADC);
  QAction* record = w.window->action(QStringLiteral("mnuFileRecord"));
  record->trigger();
  return record;
}

TEST(MeasureWindows, TheirCommandsWorkAndFollowTheRun) {
  Workbench w;
  for (const char* name : {"mnuSetupRecord", "mnuSetupChannels", "mnuSetupOtmetchick", "mnuServiceDetectSensor",
                           "mnuServiceLineka"}) {
    QAction* a = w.window->action(QString::fromLatin1(name));
    ASSERT_NE(a, nullptr) << name;
    EXPECT_TRUE(a->isEnabled()) << name;
    EXPECT_FALSE(a->property("later").toBool()) << name;
  }
  EXPECT_EQ(w.window->action(QStringLiteral("mnuServiceOtm"))->text(), QStringLiteral("Искуственный отметчик"));
  // The monitor belongs to a continuous recording only.
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuViewStatusFile"))->isEnabled());
  w.window->action(QStringLiteral("mnuFileRecord"))->trigger();
  ASSERT_TRUE(w.window->measurementRun()->running());
  EXPECT_TRUE(w.window->measurementRun()->trayBlinking());
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuSetupRecord"))->isEnabled());
  EXPECT_FALSE(w.window->action(QStringLiteral("mnuServiceDetectSensor"))->isEnabled());
  w.window->action(QStringLiteral("mnuFileRecord"))->trigger();
  w.window->measurementRun()->tick();
  EXPECT_FALSE(w.window->measurementRun()->trayBlinking());
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuSetupRecord"))->isEnabled());
}

TEST(MeasureWindows, RecordSettingsWindowDecidesTheModeByItsTab) {
  Workbench w;
  w.window->action(QStringLiteral("mnuSetupRecord"))->trigger();
  ui::SetupRecWindow* rec = Measure(w)->setupRec();
  ASSERT_NE(rec, nullptr);
  rec->data(0)->setEditText(QStringLiteral("4"));
  rec->data(1)->setEditText(QStringLiteral("50"));
  EXPECT_EQ(rec->label(QStringLiteral("lblFR"))->text(), FormatStandard(1500.0));
  // Letters are refused with a message and the window stays.
  rec->data(0)->setEditText(QStringLiteral("x"));
  EXPECT_FALSE(rec->Apply());
  EXPECT_TRUE(w.prompts.lastMessage().startsWith(QStringLiteral("Число полюсов")));
  rec->data(0)->setEditText(QStringLiteral("4"));
  rec->data(2)->setEditText(QStringLiteral("256"));
  rec->tabs()->setCurrentIndex(1);
  rec->freq()->setValue(1);
  rec->solidFileName()->setText(QStringLiteral("Агрегат 2"));
  rec->solidPath()->setText(w.dir.path());
  EXPECT_TRUE(rec->information().contains(QStringLiteral("Скорость: ")));
  ASSERT_TRUE(rec->Apply());
  EXPECT_TRUE(w.state->SolidMode);
  EXPECT_EQ(w.state->FreqADC, 100000);
  EXPECT_EQ(w.state->SolidFileName, QStringLiteral("Агрегат 2"));
  EXPECT_EQ(w.state->InitDirSave, w.dir.path());
  // The record command starts continuous runs now.
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuFileRecord"))->isEnabled());
}

TEST(MeasureWindows, AContinuousRunRecordsAFileThatOpensWithItsBlocks) {
  Workbench w;
  QAction* record = StartContinuousRun(w, 4, 8000);
  ui::MeasurementRun* run = w.window->measurementRun();
  ASSERT_TRUE(run->running());
  ASSERT_NE(Measure(w)->statusFile(), nullptr);
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuViewStatusFile"))->isEnabled());
  PumpFor(700);
  // The views follow the newest rows of the block.
  EXPECT_GT(w.state->ViewLast, 1);
  Measure(w)->statusFile()->tick();
  EXPECT_TRUE(Measure(w)->statusFile()->infoText().startsWith(QStringLiteral("Длина файла данных: ")));
  // Closed by the user, the monitor comes back through the menu.
  Measure(w)->statusFile()->close();
  PumpFor(20);
  EXPECT_EQ(Measure(w)->statusFile(), nullptr);
  w.window->action(QStringLiteral("mnuViewStatusFile"))->trigger();
  EXPECT_NE(Measure(w)->statusFile(), nullptr);
  record->trigger();
  run->tick();
  EXPECT_FALSE(run->running());
  PumpFor(20);
  EXPECT_EQ(Measure(w)->statusFile(), nullptr);
  const QString path = QDir(w.dir.path()).filePath(QStringLiteral("live.aqx"));
  EXPECT_EQ(w.state->PathFileData, path);
  EXPECT_TRUE(w.state->SolidMode);
  EXPECT_GE(w.state->SolidBlockCount, 1);
  // A second run asks before it replaces the file; Cancel leaves it.
  const qint64 size = QFileInfo(path).size();
  w.prompts.answers.push_back(PromptAnswer::Cancel);
  record->trigger();
  EXPECT_FALSE(run->running());
  EXPECT_TRUE(w.prompts.lastMessage().startsWith(QStringLiteral("Имеется файл:\n")));
  EXPECT_EQ(QFileInfo(path).size(), size);
}

TEST(MeasureWindows, TheLiveViewShowsTheNewestRowsAtTheUsersZoom) {
  Workbench w;
  QAction* record = StartContinuousRun(w, 4, 100000);
  ui::MeasurementRun* run = w.window->measurementRun();
  ASSERT_TRUE(run->running());
  ui::SignalWindow* view = w.window->signalWindow();
  ASSERT_NE(view, nullptr);
  const AppState& s = *w.state;
  PumpFor(2500);
  // The caption tells the run and its file.
  EXPECT_TRUE(w.window->windowTitle().startsWith(ui::UpdateRecordTitle() + QStringLiteral(" - идет запись: live.aqx (")))
      << w.window->windowTitle().toStdString();
  // About two seconds of rows at most, however long the run has gone.
  const int width = s.ViewLast - s.ViewFirst + 1;
  EXPECT_GE(width, 4096);
  EXPECT_LE(width, 2 * s.FreqDescR);
  EXPECT_GT(s.ViewFirst, 1);
  const int32_t followed = s.ViewLast;
  PumpFor(300);
  EXPECT_GT(s.ViewLast, followed);
  EXPECT_EQ(s.ViewLast - s.ViewFirst + 1, width);
  // A pan back holds the user's stretch; a pan to the end follows again.
  QKeyEvent left(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
  QCoreApplication::sendEvent(view, &left);
  const int32_t held = s.ViewLast;
  PumpFor(300);
  EXPECT_EQ(s.ViewLast, held);
  QKeyEvent end(QEvent::KeyPress, Qt::Key_End, Qt::NoModifier);
  QCoreApplication::sendEvent(view, &end);
  PumpFor(300);
  EXPECT_GT(s.ViewLast, held);
  EXPECT_EQ(s.ViewLast - s.ViewFirst + 1, width);
  // A zoom keeps following, at the new width.
  const QPointF at(view->width() / 2.0, view->height() / 2.0);
  QWheelEvent out(at, view->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                  Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(view, &out);
  PumpFor(100);
  const int32_t zoomed = s.ViewLast;
  EXPECT_EQ(s.ViewLast - s.ViewFirst + 1, 2 * width);
  PumpFor(300);
  EXPECT_GT(s.ViewLast, zoomed);
  record->trigger();
  run->tick();
  EXPECT_FALSE(run->running());
  EXPECT_EQ(w.window->windowTitle(), ui::UpdateRecordTitle());
}

TEST(MeasureWindows, ARecordingThatFailsInItsThreadEndsByItselfWithAReadableFile) {
  Workbench w;
  VirtualSetting fail("AQX_VIRTUAL_FAIL", QStringLiteral("27"));
  VirtualSetting after("AQX_VIRTUAL_FAIL_AFTER_ROWS", QStringLiteral("1000"));
  StartContinuousRun(w, 2, 8000);
  ui::MeasurementRun* run = w.window->measurementRun();
  ASSERT_TRUE(run->running());
  QElapsedTimer clock;
  clock.start();
  while (run->running() && clock.elapsed() < 5000) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  EXPECT_FALSE(run->running());
  EXPECT_TRUE(w.prompts.lastMessage().startsWith(QStringLiteral("Error #27")));
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuFileRecord"))->isEnabled());
  EXPECT_EQ(w.state->PathFileData, QDir(w.dir.path()).filePath(QStringLiteral("live.aqx")));
  EXPECT_GE(w.state->SolidBlockCount, 1);
}

TEST(MeasureWindows, EveryStartFailureIsToldAndLeavesTheProgramUsable) {
  Workbench w;
  uitest::FillRecording(*w.state, 4096);
  w.state->DataSaved = true;
  const int16_t kept = w.state->SignalData.at(100, 1);
  QAction* record = w.window->action(QStringLiteral("mnuFileRecord"));
  for (int number : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 14, 15, 16, 23}) {
    VirtualSetting fail("AQX_VIRTUAL_FAIL", QString::number(number));
    record->trigger();
    EXPECT_FALSE(w.window->measurementRun()->running()) << number;
    EXPECT_EQ(w.prompts.lastMessage(), EngineErrorText(number)) << number;
    EXPECT_FALSE(record->isChecked()) << number;
    EXPECT_TRUE(record->isEnabled()) << number;
  }
  EXPECT_EQ(w.state->SignalData.at(100, 1), kept);  // the previous record stays
  UseContinuous(w, 4, 8000);
  for (int number : {18, 26, 28, 29, 30, 31, 33, 34}) {
    VirtualSetting fail("AQX_VIRTUAL_FAIL", QString::number(number));
    record->trigger();
    EXPECT_FALSE(w.window->measurementRun()->running()) << number;
    EXPECT_EQ(w.prompts.lastMessage(), EngineErrorText(number)) << number;
    EXPECT_FALSE(QFile::exists(QDir(w.dir.path()).filePath(QStringLiteral("live.aqx")))) << number;
  }
  // And the module still runs afterwards.
  record->trigger();
  EXPECT_TRUE(w.window->measurementRun()->running());
  record->trigger();
  w.window->measurementRun()->tick();
}

TEST(MeasureWindows, FailuresOfARunningModuleAreToldAtTheStop) {
  Workbench w;
  QAction* record = w.window->action(QStringLiteral("mnuFileRecord"));
  VirtualSetting after("AQX_VIRTUAL_FAIL_AFTER_ROWS", QStringLiteral("100"));
  for (int number : {19, 20, 22}) {
    VirtualSetting fail("AQX_VIRTUAL_FAIL", QString::number(number));
    w.state->DataSaved = true;
    record->trigger();
    ASSERT_TRUE(w.window->measurementRun()->running()) << number;
    PumpFor(200);
    record->trigger();
    w.window->measurementRun()->tick();
    EXPECT_FALSE(w.window->measurementRun()->running()) << number;
    EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Error: %1").arg(number));
    EXPECT_TRUE(record->isEnabled());
  }
}

TEST(MeasureWindows, OverloadShowsTheWarningBannerDuringARun) {
  Workbench w;
  VirtualSetting overload("AQX_VIRTUAL_OVERLOAD", QStringLiteral("all"));
  w.window->action(QStringLiteral("mnuFileRecord"))->trigger();
  PumpFor(300);
  w.window->measurementRun()->tick();
  EXPECT_EQ(w.window->measurementRun()->warnings().value(0), QStringLiteral("ПЕРЕГРУЗКА !!!"));
  w.window->action(QStringLiteral("mnuFileRecord"))->trigger();
  w.window->measurementRun()->tick();
  EXPECT_TRUE(w.window->measurementRun()->warnings().isEmpty());
}

TEST(MeasureWindows, ArtificialMarkerOnARecordingWithoutOne) {
  Workbench w;
  const QString path = w.path(QStringLiteral("nomarker.aqx"));
  ASSERT_TRUE(uitest::WriteRecording(path, 8192));
  ASSERT_TRUE(w.window->OpenFile(path));
  w.state->channels.Channel[3] = 0;  // the marker channel removed
  w.window->action(QStringLiteral("mnuServiceOtm"))->trigger();
  ui::ServiceOtmetchickWindow* otm = Measure(w)->serviceOtmetchick();
  ASSERT_NE(otm, nullptr);
  otm->periodN()->setValue(8);
  otm->channelO()->setValue(3);
  otm->channelA()->setValue(1);
  ASSERT_TRUE(otm->Apply());
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Искусственный отметчик успешно сформирован."));
  EXPECT_EQ(FirstMarkerChannel(*w.state), 3);
  // 8 revolutions in 8192 rows at 2677 Hz: 156.9 rev/min; the pulse in row 1
  // has no rise before it.
  EXPECT_GE(w.state->ShaftMarkCount, 7);
  const views::RotorSpeed speed = views::RunOtmetchick(*w.state);
  EXPECT_NEAR(speed.RotorSpeedMin, 60.0 * 2677 / 1024, 0.1);
  EXPECT_NEAR(speed.RotorSpeedMax, 60.0 * 2677 / 1024, 0.1);
  EXPECT_FALSE(w.state->DataSaved);
  // The detector window finds the level itself and shows it.
  w.window->action(QStringLiteral("mnuSetupOtmetchick"))->trigger();
  ui::SetupOtmetchickWindow* setup = Measure(w)->setupOtmetchick();
  ASSERT_NE(setup, nullptr);
  setup->automatic()->setChecked(true);
  setup->level()->setText(QStringLiteral("1"));
  ASSERT_TRUE(setup->Apply());
  EXPECT_GT(setup->level()->text().toInt(), 1000);
  EXPECT_TRUE(setup->rising()->isChecked());
  setup->automatic()->setChecked(false);
  setup->drebezg()->clear();
  EXPECT_FALSE(setup->Apply());
}

TEST(MeasureWindows, SensorCalibrationOnTheVirtualModuleFindsItsLinearRange) {
  Workbench w;
  for (int c = 1; c <= kMaxChannels; ++c) w.state->channels.Type[c] = c == 2 ? sensor::Runout : sensor::Vibration;
  w.window->action(QStringLiteral("mnuServiceDetectSensor"))->trigger();
  ui::DetectSensorWindow* detect = Measure(w)->detectSensor();
  ASSERT_NE(detect, nullptr);
  EXPECT_EQ(detect->channel()->currentText(), QStringLiteral("2"));
  EXPECT_EQ(detect->status(), QStringLiteral("Установите зазор: 0 мкм"));
  VirtualSetting channels("AQX_VIRTUAL_CHANNELS", QStringLiteral("1,0"));
  for (int step = 1; step <= 11; ++step) detect->Step();
  EXPECT_EQ(detect->status(), QStringLiteral("Тарировка закончена, копия в буфере обмена."));
  EXPECT_TRUE(detect->info().contains(QStringLiteral("для диапазона 0-3000 мкм")));
  EXPECT_FALSE(detect->stepButton()->isEnabled());
  detect->Reset();
  EXPECT_EQ(detect->status(), QStringLiteral("Установите зазор: 0 мкм"));
}

TEST(MeasureWindows, ADeadSensorIsToldAtTheSecondStep) {
  Workbench w;
  w.window->action(QStringLiteral("mnuServiceDetectSensor"))->trigger();
  ui::DetectSensorWindow* detect = Measure(w)->detectSensor();
  VirtualSetting channels("AQX_VIRTUAL_CHANNELS", QStringLiteral("0,0,0"));
  VirtualSetting slope("AQX_VIRTUAL_GAP_MV_PER_UM", QStringLiteral("0"));
  detect->Step();
  detect->Step();
  EXPECT_TRUE(w.prompts.lastMessage().startsWith(QStringLiteral("Датчик неработает (Ку=")));
  EXPECT_FALSE(detect->stepButton()->isEnabled());
  VirtualSetting fail("AQX_VIRTUAL_FAIL", QStringLiteral("3"));
  detect->Reset();
  detect->Step();
  EXPECT_EQ(w.prompts.lastMessage(), EngineErrorText(3));
  EXPECT_TRUE(detect->stepButton()->isEnabled());
}

TEST(MeasureWindows, ChannelWindowCalibratesRunOutSensorsAgainstTheShaft) {
  Workbench w;
  for (int c = 1; c <= kMaxChannels; ++c) w.state->channels.Type[c] = c <= 2 ? sensor::Runout : sensor::Vibration;
  VirtualSetting channels("AQX_VIRTUAL_CHANNELS", QStringLiteral("0,0,1"));
  w.window->action(QStringLiteral("mnuSetupChannels"))->trigger();
  ui::SetupChannelsWindow* setup = Measure(w)->setupChannels();
  ASSERT_NE(setup, nullptr);
  w.prompts.texts.push_back(QStringLiteral("2000"));
  setup->CalibrateAll();
  // 4 mV per micrometre of the virtual probes.
  EXPECT_NEAR(w.state->channels.Ku[1], 4.0, 0.011);
  EXPECT_NEAR(w.state->channels.Ku[2], 4.0, 0.011);
  EXPECT_EQ(setup->ku(1)->text(), QLocale().toString(static_cast<double>(w.state->channels.Ku[1]), 'f', 2));
  // Two markers are refused and the table stays.
  setup->type(5)->setCurrentIndex(sensor::ShaftMarker);
  setup->type(6)->setCurrentIndex(sensor::ShaftMarker);
  EXPECT_FALSE(setup->Apply());
  EXPECT_EQ(w.prompts.lastMessage(), QStringLiteral("Недопустимо включение нескольких отметчиков!"));
  setup->type(6)->setCurrentIndex(sensor::Vibration);
  setup->differential()->setChecked(true);
  EXPECT_FALSE(setup->channelOn(20)->isChecked());
  setup->inputMode()->setCurrentIndex(2);
  EXPECT_TRUE(setup->info().startsWith(QStringLiteral("Цифровая покадровая")));
  ASSERT_TRUE(setup->Apply());
  EXPECT_EQ(w.state->ChannelDifferential, 1);
  EXPECT_EQ(w.state->ChannelUsedCount, 16);
}

TEST(MeasureWindows, TheRulerReadsDegreesAcrossItsWidth) {
  EXPECT_EQ(ui::LinekaCaption(100, 100, 360), QStringLiteral("0°"));
  EXPECT_EQ(ui::LinekaCaption(460, 100, 360), QStringLiteral("361°"));
  EXPECT_EQ(ui::LinekaCaption(280, 100, 360), QStringLiteral("180°"));
  EXPECT_EQ(ui::LinekaCaption(99, 100, 360), QStringLiteral("Линейка"));
  Workbench w;
  w.window->action(QStringLiteral("mnuServiceLineka"))->trigger();
  ASSERT_NE(Measure(w)->lineka(), nullptr);
  Measure(w)->lineka()->resize(10, 10);
  EXPECT_GE(Measure(w)->lineka()->width(), 120);
  w.window->action(QStringLiteral("mnuServiceLineka"))->trigger();
  PumpFor(20);
  EXPECT_EQ(Measure(w)->lineka(), nullptr);
  EXPECT_NE(w.store.get(QStringLiteral("Lineka"), QStringLiteral("LinekaW"), {}), QString());
}

}  // namespace
}  // namespace aqx
