// demo and record of aquilonix-tool: runs of the virtual module written to
// files that the program's reader opens.
#include "engine/Aquilonix.h"
#include "files/ContinuousRecording.h"
#include "files/DataFile.h"
#include "tools/Commands.h"
#include "tools/ToolCommand.h"
#include "tests/tools/ToolTestSupport.h"
#include "views/rotor/RotorForm.h"
#include "views/trajectory/TraectoriaView.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <sys/resource.h>

namespace aqx::tool {

namespace {

class AcquisitionTool : public ::testing::Test {
 protected:
  void SetUp() override {
    // The tool tells the virtual module the unit; each test starts afresh.
    for (const char* key : {"AQX_VIRTUAL_CHANNELS", "AQX_VIRTUAL_RPM", "AQX_VIRTUAL_POLES",
                            "AQX_VIRTUAL_MAINS_HZ", "AQX_MODULE", "AQX_VIRTUAL_FAIL"})
      unsetenv(key);
  }
  void TearDown() override { SetUp(); }

  int Run(int (*command)(ToolContext&), const QStringList& args, const QString& settings = {}) {
    return RunToolCommand(command, args, prompts, out, settings);
  }

  QTemporaryDir dir;
  ScriptedPrompts prompts;
  QString out;
};

}  // namespace

TEST_F(AcquisitionTool, DemoRecordsARunningUnitThatTheReaderOpens) {
  const QString file = dir.filePath(QStringLiteral("demo.aqx"));
  ASSERT_EQ(Run(RunDemo, {file, QStringLiteral("--seconds"), QStringLiteral("2")}), kExitOk)
      << prompts.lastMessage().toStdString();
  auto s = std::make_unique<AppState>();
  s->PathFileData = file;
  ASSERT_TRUE(ReadDataFile(*s, prompts));
  EXPECT_EQ(s->ChannelUsedCount, 11);
  EXPECT_EQ(s->ModuleTag, QStringLiteral("E140 VR000001"));
  EXPECT_EQ(s->channels.Type[1], 3);
  EXPECT_EQ(s->channels.Type[2], 0);
  EXPECT_EQ(s->channels.Type[10], 4);
  EXPECT_FALSE(s->object.Station.isEmpty());
  EXPECT_LE(s->FreqDescR * 11, 100000);
  // 40 poles at 50 Hz: the marker shows 150 rev/min.
  std::vector<int32_t> marks(AQX_MAX_SHAFT_MARKS);
  int32_t count = 0, percentMin = 0, percentMax = 0, level = 0, direct = 1;
  double minRpm = 0, maxRpm = 0;
  Otmetchick(s->SignalData.data(), s->SignalDataN, s->channels.Channel.data(), s->channels.Type.data(), &count,
             marks.data(), s->FreqDesc, s->FreqRotorN, &minRpm, &maxRpm, &percentMin, &percentMax, 1, &level,
             &direct, 1, s->SignalDataN, 0, 0, 0, 0);
  EXPECT_GE(count, 4);
  EXPECT_NEAR(minRpm, 150.0, 1.5);
  EXPECT_NEAR(maxRpm, 150.0, 1.5);
  // Run-out codes sit around the probe's gap voltage: 4 V is 3200 codes.
  EXPECT_NEAR(s->SignalData.at(100, 2), 3200, 600);

  // The turn probe carries the module's chosen poles: 7 at +6 %, 23 at -9 %,
  // 31 at +4 %, the rest within half a percent.
  auto forma = std::make_unique<views::FormaRotorResults>();
  ASSERT_EQ(views::RunFormaRotorAccount(*s, *forma), 0) << views::FormaRotorFailureText(forma->Failure, *s).toStdString();
  EXPECT_EQ(forma->Polus, 40);
  EXPECT_GE(forma->FormaRotorN, 3);
  EXPECT_NEAR(forma->percent(0, 7), 6.0, 0.7);
  EXPECT_NEAR(forma->percent(0, 23), -9.0, 0.7);
  EXPECT_NEAR(forma->percent(0, 31), 4.0, 0.7);
  EXPECT_NEAR(forma->percent(0, 12), 0.0, 0.7);

  // Its first run-out pair (ВБ, ПБ) draws the known orbit: a first harmonic
  // circle of 400 mV over 8 mV/µm, 50 µm in radius.
  auto analysis = std::make_unique<views::AnalysisResults>();
  s->FirstChannelActive = 2;
  s->options.traectoria.TraectoriaFirstGarmonic = true;
  views::TraectoriaViewState v;
  views::InitTraectoriaView(*s, v);
  views::ResizeTraectoria(v, 400, 400);
  views::PrepareTraectoria(*s, *analysis, v);
  ASSERT_TRUE(v.Paired);
  EXPECT_NEAR(v.AmplitudeX, 100, 4);
  EXPECT_NEAR(v.AmplitudeY, 100, 4);
  EXPECT_NEAR(std::abs(std::remainder(v.PhaseX - v.PhaseY, 360.0)), 90, 4);
}

TEST_F(AcquisitionTool, ContinuousRecordShowsItsBlockFigures) {
  const QString file = dir.filePath(QStringLiteral("solid.aqx"));
  const QString settings = dir.filePath(QStringLiteral("settings.ini"));
  ASSERT_EQ(Run(RunRecord, {file, QStringLiteral("--mode"), QStringLiteral("solid"), QStringLiteral("--seconds"),
                            QStringLiteral("1")},
                settings),
            kExitOk)
      << prompts.lastMessage().toStdString();
  ASSERT_EQ(Run(RunInfo, {file}), kExitOk);
  EXPECT_TRUE(out.contains(QStringLiteral("SolidMode: true")));
  EXPECT_TRUE(out.contains(QStringLiteral("SolidBlockCount: 1\n")));
  EXPECT_TRUE(out.contains(QStringLiteral("SolidBlockRows: 1024\n")));  // 32 channels at 1000 Hz for 1 s
  EXPECT_TRUE(out.contains(QStringLiteral("ModuleTag: E140 VR000001")));
}

TEST_F(AcquisitionTool, RefusalsAndAModuleFailure) {
  const QString file = dir.filePath(QStringLiteral("cyclic.aqx"));
  const QString settings = dir.filePath(QStringLiteral("settings.ini"));
  EXPECT_EQ(Run(RunRecord, {file, QStringLiteral("--mode"), QStringLiteral("sideways")}, settings), kExitRefused);
  EXPECT_EQ(Run(RunRecord, {file, QStringLiteral("--seconds"), QStringLiteral("-1")}, settings), kExitRefused);
  EXPECT_EQ(Run(RunDemo, {}), kExitRefused);
  // A module failure is told with its number, text and step, and no file is left.
  setenv("AQX_VIRTUAL_FAIL", "3", 1);
  EXPECT_EQ(Run(RunRecord, {file, QStringLiteral("--mode"), QStringLiteral("solid"), QStringLiteral("--seconds"),
                            QStringLiteral("1")},
                settings),
            kExitFailure);
  EXPECT_EQ(prompts.lastMessage(),
            QStringLiteral("Error #3\nНевозможно обнаружить модуль E14-140 в виртуальных слотах!\nOpenLDevice"));
  EXPECT_FALSE(QFile::exists(file));
}

// An impossible module rate once recorded 7 rows at 0 Hz and exited 0.
TEST_F(AcquisitionTool, AnImpossibleModuleRateIsRefused) {
  const QString file = dir.filePath(QStringLiteral("solid.aqx"));
  const QString settings = dir.filePath(QStringLiteral("settings.ini"));
  for (const char* rate : {"0", "100001"}) {
    QFile ini(settings);
    ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
    ini.write(QByteArray("[Config]\nFreqADC=") + rate + "\n");
    ini.close();
    EXPECT_EQ(Run(RunRecord, {file, QStringLiteral("--mode"), QStringLiteral("solid"), QStringLiteral("--seconds"),
                              QStringLiteral("1")},
                  settings),
              kExitOk)
        << "the store refuses the value and keeps the default";
    EXPECT_TRUE(QFile::remove(file));
  }
  ScriptedPrompts told;
  auto s = std::make_unique<AppState>();
  s->FreqADC = 0;
  EXPECT_FALSE(StartContinuousRecording(*s, told, file, false));
  EXPECT_TRUE(told.lastMessage().startsWith(QStringLiteral("Недопустимая частота АЦП: 0 Гц.")));
  EXPECT_FALSE(QFile::exists(file));
}

// A full disk once printed "Error: 27" and exited 0.
TEST_F(AcquisitionTool, AContinuousRecordingStoppedByAFullDiskFailsButItsFileOpens) {
  const QString file = dir.filePath(QStringLiteral("full.aqx"));
  const QString settings = dir.filePath(QStringLiteral("settings.ini"));
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  const auto previous = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{200000, old.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  // The limit ends the run after about a second; the longer run asked for
  // leaves room for a loaded machine that writes more slowly.
  const int rc = Run(RunRecord, {file, QStringLiteral("--mode"), QStringLiteral("solid"), QStringLiteral("--seconds"),
                                 QStringLiteral("20")},
                     settings);
  setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, previous);
  EXPECT_EQ(rc, kExitFailure);
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("Ошибка выполнения потока сбора данных")))
      << prompts.lastMessage().toStdString();
  auto s = std::make_unique<AppState>();
  s->PathFileData = file;
  EXPECT_TRUE(ReadDataFile(*s, prompts));
  EXPECT_TRUE(s->SolidMode);
}

}  // namespace aqx::tool
