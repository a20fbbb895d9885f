#include "core/Startup.h"

#include "SettingsTestSupport.h"

#include <gtest/gtest.h>

namespace aqx {
namespace {

using testing::kRussian;

const QString kConfig = QStringLiteral("Config");

// One start of the program on the settings file at path, as far as it goes
// without windows; the state and what was shown are kept for inspection.
struct ProgramRun {
  explicit ProgramRun(const QString& path) : store(path) { store.setLocale(kRussian); }
  bool start(const QString& commandLine = {}) {
    OpenFileContext ctx{state, store, prompts, readers, hooks};
    return RunStartup(ctx, vocabulary, commandLine);
  }
  IniSettingsStore store;
  AppState state;
  ScriptedPrompts prompts;
  Vocabulary vocabulary;
  FileReaderTable readers = testing::FakeReaders();
  OpenFileHooks hooks;
};

TEST(Startup, AFreshUserStartsWithNothingWrittenButStartAndGoodRun) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("home/.config/Aquilonix/Aquilonix.conf"));
  ProgramRun run(path);
  EXPECT_FALSE(run.start());
  EXPECT_TRUE(run.prompts.shown.empty());
  SettingsTree expected;
  expected[QStringLiteral("Aquilonix")][QStringLiteral("Start")] = QStringLiteral("1");
  expected[kConfig][QStringLiteral("GoodRun")] = QStringLiteral("0");
  EXPECT_EQ(ReadSettingsFile(path).tree, expected);
  EXPECT_EQ(run.vocabulary.ModeList.size(), 39);
  EXPECT_TRUE(run.state.DataSaved);
  EXPECT_EQ(run.state.SolidBlockM, 1);
  EXPECT_EQ(run.state.Polus, 72);
  EXPECT_TRUE(run.state.PathFileData.isEmpty());
}

TEST(Startup, AGarbledSettingsFileStillStarts) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("Aquilonix.conf"));
  const char junk[] = "[Config]\nPolus=\xff\x00junk\nGoodRun=1\n[Aquilon";
  testing::WriteBytes(path, QByteArray(junk, sizeof junk - 1));
  ProgramRun run(path);
  run.start();
  EXPECT_TRUE(run.prompts.shown.empty());
  EXPECT_EQ(run.state.Polus, 72);
  EXPECT_EQ(ReadSettingsFile(path).tree[QStringLiteral("Aquilonix")][QStringLiteral("Start")],
            QStringLiteral("1"));
}

TEST(Startup, StartsAreCountedAndACleanExitAsksNothingNextTime) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("Aquilonix.conf"));
  for (int n = 1; n <= 3; ++n) {
    ProgramRun run(path);
    run.start();
    EXPECT_TRUE(run.prompts.shown.empty()) << "start " << n;
    EXPECT_EQ(run.store.get(QStringLiteral("Aquilonix"), QStringLiteral("Start")), QString::number(n));
    MarkCleanExit(run.store);
  }
  {
    ProgramRun crashed(path);
    crashed.start();  // and never reaches MarkCleanExit
  }
  ProgramRun afterCrash(path);
  afterCrash.prompts.answers = {PromptAnswer::No};
  afterCrash.start();
  ASSERT_EQ(afterCrash.prompts.messages().size(), 1u);
  EXPECT_EQ(afterCrash.prompts.messages()[0].title, QStringLiteral("Внимание"));
}

TEST(Startup, ARecordingsValuesBecomeTheNextStartsDefaults) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("Aquilonix.conf"));
  const QString recording = dir.filePath(QStringLiteral("Агрегат 7, сброс.aqx"));
  testing::WriteBytes(recording, "recording");
  {
    ProgramRun first(path);
    first.start(QLatin1Char('"') + recording + QLatin1Char('"'));
    EXPECT_EQ(first.state.PathFileData, recording);
    MarkCleanExit(first.store);
  }
  ProgramRun next(path);
  EXPECT_FALSE(next.start());
  const AppState& s = next.state;
  EXPECT_TRUE(s.PathFileData.isEmpty()) << "FileLastLoad is off: nothing loaded";
  EXPECT_EQ(s.Polus, 48);
  EXPECT_DOUBLE_EQ(s.FreqRotorN, 125.0);
  EXPECT_DOUBLE_EQ(s.FreqOneGarmonic, 125.0 / 60.0);
  EXPECT_EQ(s.NumberRotorRecord, 10);
  EXPECT_EQ(s.SignalDataN, 4096);
  EXPECT_EQ(s.ViewLast, 4096);
  EXPECT_EQ(s.FreqDesc, 853);
  EXPECT_EQ(s.object.Station, QStringLiteral("Братская ГЭС"));
  EXPECT_EQ(s.object.Agregat, 7);
  EXPECT_EQ(s.object.Mode, QStringLiteral("Сброс нагрузки"));
  EXPECT_EQ(s.object.Remark[27], QStringLiteral("Длинный комментарий; с запятой, = и \"кавычками\""));
  EXPECT_EQ(s.channels.Type[3], 3);
  EXPECT_EQ(s.channels.Ku[3], 1.25f);
  EXPECT_EQ(s.channels.Place[2], QStringLiteral("ВГП"));
  EXPECT_EQ(s.channels.ProbeFreq[2][0], 12.5f);
  EXPECT_EQ(s.channels.Filter[4][3], 0.75f);
  EXPECT_EQ(next.store.get(QStringLiteral("Recent"), QStringLiteral("1")), recording);
  EXPECT_EQ(next.store.get(kConfig, QStringLiteral("FreqOneGarmonic")),
            SettingText(125.0 / 60.0, kRussian));
}

TEST(Startup, TheCommandLineAndTheLastFile) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("Aquilonix.conf"));
  const QString last = dir.filePath(QStringLiteral("last.aqx"));
  const QString named = dir.filePath(QStringLiteral("с пробелом.aqx"));
  testing::WriteBytes(last, "x");
  testing::WriteBytes(named, "x");
  {
    IniSettingsStore store(path);
    store.save(QStringLiteral("Parameters"), QStringLiteral("FileLastLoad"), QStringLiteral("1"));
    store.save(kConfig, QStringLiteral("PathFileData"), last);
  }
  EXPECT_EQ(StartFileFromCommandLine(QStringLiteral("  \"/a b/c.aqx\"  ")), QStringLiteral("/a b/c.aqx"));
  EXPECT_EQ(StartFileFromCommandLine(QStringLiteral(" /a/c.aqx ")), QStringLiteral("/a/c.aqx"));
  EXPECT_EQ(StartFileFromCommandLine(QStringLiteral("\"")), QStringLiteral("\""));

  {
    ProgramRun missing(path);
    EXPECT_FALSE(missing.start(QStringLiteral("\"") + dir.filePath(QStringLiteral("нет.aqx")) +
                               QStringLiteral("\"")));
    EXPECT_TRUE(missing.prompts.shown.empty()) << "a missing file is ignored silently";
    EXPECT_TRUE(missing.state.PathFileData.isEmpty()) << "and the last file is not tried";
    MarkCleanExit(missing.store);
  }
  {
    ProgramRun quoted(path);
    EXPECT_TRUE(quoted.start(QLatin1Char('"') + named + QLatin1Char('"')));
    EXPECT_EQ(quoted.state.PathFileData, named);
    EXPECT_TRUE(quoted.prompts.shown.empty());
    MarkCleanExit(quoted.store);
  }
  {
    // SaveConfig of the load above stored the named file as PathFileData.
    ProgramRun byLast(path);
    int pumps = 0;
    byLast.hooks.pumpMessages = [&] { ++pumps; };
    EXPECT_TRUE(byLast.start());
    EXPECT_EQ(byLast.state.PathFileData, named);
    EXPECT_EQ(pumps, 1);
    MarkCleanExit(byLast.store);
  }
  {
    IniSettingsStore store(path);
    store.save(QStringLiteral("Parameters"), QStringLiteral("FileLastLoad"), QStringLiteral("0"));
  }
  ProgramRun off(path);
  EXPECT_FALSE(off.start());
}

}  // namespace
}  // namespace aqx
