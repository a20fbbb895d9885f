#include "core/IniText.h"
#include "core/Settings.h"

#include "SettingsTestSupport.h"

#include <gtest/gtest.h>

namespace aqx {
namespace {

using testing::kRussian;
using testing::WriteBytes;

TEST(SettingsText, NumbersTakeTheLocalesSeparatorAndNoGrouping) {
  EXPECT_EQ(SettingText(83.3, kRussian), QStringLiteral("83,3"));
  EXPECT_EQ(SettingText(0.082, kRussian), QStringLiteral("0,082"));
  EXPECT_EQ(SettingText(83.3, QLocale::c()), QStringLiteral("83.3"));
  EXPECT_EQ(SettingText(10.1f, kRussian), QStringLiteral("10,1"));
  EXPECT_EQ(SettingText(-1.0f, kRussian), QStringLiteral("-1"));
  EXPECT_EQ(SettingText(1048576.0, kRussian), QStringLiteral("1048576"));
  EXPECT_EQ(SettingText(int32_t{32768}), QStringLiteral("32768"));
  EXPECT_EQ(SettingText(int32_t{-1}), QStringLiteral("-1"));
  EXPECT_EQ(SettingText(true), QStringLiteral("1"));
  // The shortest text that gives the same double back.
  const double third = 1.0 / 3.0;
  EXPECT_EQ(*ParseSettingDouble(SettingText(third, kRussian), kRussian), third);
}

TEST(SettingsText, ParsingAcceptsTheLocaleFormAndRefusesText) {
  EXPECT_DOUBLE_EQ(*ParseSettingDouble(QStringLiteral("83,3"), kRussian), 83.3);
  EXPECT_DOUBLE_EQ(*ParseSettingDouble(QStringLiteral("83.3"), kRussian), 83.3);
  EXPECT_FALSE(ParseSettingDouble(QStringLiteral("abc"), kRussian));
  EXPECT_FALSE(ParseSettingDouble(QString(), kRussian));
  EXPECT_EQ(*ParseSettingInt(QStringLiteral("2,5"), kRussian), 2);
  EXPECT_EQ(*ParseSettingInt(QStringLiteral("3,5"), kRussian), 4);
  EXPECT_EQ(*ParseSettingInt(QStringLiteral(" 72 "), kRussian), 72);
  EXPECT_FALSE(ParseSettingInt(QStringLiteral("1e12"), kRussian));
  EXPECT_FALSE(ParseSettingInt(QStringLiteral("72abc"), kRussian));
  EXPECT_EQ(*ParseSettingBool(QStringLiteral("True"), kRussian), true);
  EXPECT_EQ(*ParseSettingBool(QStringLiteral("-1"), kRussian), true);
  EXPECT_EQ(*ParseSettingBool(QStringLiteral("0"), kRussian), false);
  EXPECT_FALSE(ParseSettingBool(QStringLiteral("да"), kRussian));
}

TEST(SettingsStore, GetDefaultsSaveDeleteAndBatchesWriteOnce) {
  MemorySettingsStore store;
  EXPECT_EQ(store.get(QStringLiteral("Config"), QStringLiteral("Polus"), QStringLiteral("72")),
            QStringLiteral("72"));
  store.save(QStringLiteral("Config"), QStringLiteral("Polus"), QStringLiteral("60"));
  store.save(QStringLiteral("Config"), QStringLiteral("Polus"), QStringLiteral("60"));
  EXPECT_EQ(store.writeCount, 1) << "an unchanged value is not written again";
  {
    SettingsStore::Batch outer(store);
    SettingsStore::Batch inner(store);
    for (int k = 1; k <= 9; ++k)
      store.save(QStringLiteral("Recent"), QString::number(k), QStringLiteral("/p%1").arg(k));
  }
  EXPECT_EQ(store.writeCount, 2);
  store.deleteSection(QStringLiteral("Recent"));
  EXPECT_FALSE(store.contains(QStringLiteral("Recent"), QStringLiteral("1")));
  EXPECT_TRUE(store.contains(QStringLiteral("Config"), QStringLiteral("Polus")));
  store.deleteAll();
  EXPECT_TRUE(store.tree().empty());
  EXPECT_EQ(store.writeCount, 4);
}

TEST(SettingsStore, ReadLeavesAGarbledFieldAndFillsAMissingOne) {
  MemorySettingsStore store;
  store.setLocale(kRussian);
  store.save(QStringLiteral("Config"), QStringLiteral("Polus"), QStringLiteral("сорок"));
  int32_t polus = 60;
  EXPECT_FALSE(ReadSetting(store, QStringLiteral("Config"), QStringLiteral("Polus"), polus, 72));
  EXPECT_EQ(polus, 60);
  double rotor = 1.0;
  EXPECT_TRUE(ReadSetting(store, QStringLiteral("Config"), QStringLiteral("FreqRotorN"), rotor, 83.3));
  EXPECT_DOUBLE_EQ(rotor, 83.3);
  float ku = 2.0f;
  store.save(QStringLiteral("Channel"), QStringLiteral("Ku1"), QStringLiteral("1e60"));
  EXPECT_FALSE(ReadSetting(store, QStringLiteral("Channel"), QStringLiteral("Ku1"), ku, 10.0f));
  EXPECT_EQ(ku, 2.0f) << "a value beyond float range is refused, not turned into infinity";
}

TEST(IniSettings, EveryKindOfValueSurvivesARestart) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("cfg/Aquilonix/Aquilonix.conf"));
  SettingsTree written;
  written[QStringLiteral("Config")] = {
      {QStringLiteral("FreqRotorN"), QStringLiteral("83,3")},
      {QStringLiteral("InitDirOpen"), QStringLiteral("C:\\")},
      {QStringLiteral("Station"), QStringLiteral("Саяно-Шушенская ГЭС")},
      {QStringLiteral("Mode"), QStringLiteral("  пробелы по краям  ")},
      {QStringLiteral("Odd"), QStringLiteral("@at; semi = eq \"q\" \\ back")},
      {QStringLiteral("Empty"), QString()},
      {QStringLiteral("Controls"), QStringLiteral("a\tb\nc\r\x01\x7f") + QChar(0) + QStringLiteral("z")},
      {QStringLiteral("Lists"), QStringLiteral("1,2, 3;4")},
      {QStringLiteral("Ключ с пробелом/и чертой %;=,[]"), QStringLiteral("@@")},
  };
  written[QStringLiteral("Recent")] = {{QStringLiteral("1"), QStringLiteral("/data/Запись 1.aqx")}};
  written[QStringLiteral("Aquilonix")] = {{QStringLiteral("Start"), QStringLiteral("3")}};
  written[QStringLiteral("General")] = {{QStringLiteral("x"), QStringLiteral("1")}};
  written[QStringLiteral("Раздел [2]")] = {{QStringLiteral("y"), QStringLiteral("2")}};
  {
    IniSettingsStore store(path);
    SettingsStore::Batch batch(store);
    for (const auto& [section, keys] : written)
      for (const auto& [key, value] : keys) store.save(section, key, value);
  }
  IniSettingsStore reopened(path);
  EXPECT_FALSE(reopened.readWasIncomplete());
  EXPECT_EQ(reopened.tree(), written);
}

TEST(IniSettings, GarbledOrTruncatedFilesOpenAndAreReplacedCleanly) {
  const QByteArray cases[] = {
      QByteArray("[Config]\nPolus=60\nFreqSety=5", 26),            // cut in the middle of a value
      QByteArray("[Config]\nPolus=60\n[Chan", 23),                 // cut in a section name
      QByteArray("\x00\x01\xff\xfe[[[]]]==\n\n\x7f", 14),          // binary junk
      QByteArray("[Config]\nPolus=@Variant(\x00\x00\x00\x7f\xff)\n"),  // broken serialised value
      QByteArray(4096, '\xd0'),                                    // half a Cyrillic letter, many times
  };
  for (const QByteArray& bytes : cases) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Aquilonix.conf"));
    WriteBytes(path, bytes);
    IniSettingsStore store(path);
    if (&bytes == &cases[0]) {
      EXPECT_EQ(store.get(QStringLiteral("Config"), QStringLiteral("Polus")), QStringLiteral("60"))
          << "what can be read of a truncated file is kept";
    }
    store.save(QStringLiteral("Config"), QStringLiteral("GoodRun"), QStringLiteral("0"));
    EXPECT_FALSE(store.lastWriteFailed());
    IniSettingsStore reopened(path);
    EXPECT_FALSE(reopened.readWasIncomplete());
    EXPECT_EQ(reopened.get(QStringLiteral("Config"), QStringLiteral("GoodRun")), QStringLiteral("0"));
  }
}

TEST(IniSettings, HandEditedLinesReadAsQSettingsReadsThem) {
  const IniParse parsed = ParseIniText(
      "; a remark\n# another\r\n[Config]\r\n"
      "Polus = 60 ; sixty poles\n"
      "FreqRotorN=83,3\n"
      "Mode=\"Пуск; холостой ход\" ГА-1 \"А\"\n"
      "Long=first \\\nsecond\n"
      "Escapes=\\x41\\102\\q\\\"\n"
      "Wide=\\x4a4b\n"
      "Eq==3\n"
      "Typed=@ByteArray(abc)\n"
      "no equals sign here\n"
      "Polus=72\n"
      "  [ %U041A%U0430%U043D%U0430%U043B ]  \n"
      "key%20with\\slash=v\n");
  SettingsTree expected;
  expected[QStringLiteral("Config")] = {
      {QStringLiteral("Polus"), QStringLiteral("72")},
      {QStringLiteral("FreqRotorN"), QStringLiteral("83,3")},
      {QStringLiteral("Mode"), QStringLiteral("Пуск; холостой ходГА-1 А")},
      {QStringLiteral("Long"), QStringLiteral("first second")},
      {QStringLiteral("Escapes"), QStringLiteral("AB\"")},
      {QStringLiteral("Wide"), QString(QChar(0x4a4b))},
      {QStringLiteral("Eq"), QStringLiteral("=3")},
      {QStringLiteral("Typed"), QStringLiteral("abc")},
  };
  expected[QStringLiteral("Канал")] = {{QStringLiteral("key with/slash"), QStringLiteral("v")}};
  EXPECT_EQ(parsed.tree, expected);
  EXPECT_TRUE(parsed.wellFormed);
  EXPECT_FALSE(ParseIniText("[Config]\nPolus=60\n[Chan").wellFormed) << "a section name never closed";
}

// A full temporary folder once made the store start empty and then write
// that emptiness over a good file.
TEST(IniSettings, ReadingNeedsNoTemporaryFolder) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("Aquilonix.conf"));
  QByteArray bytes("[Config]\n");
  for (int k = 1; k <= 900; ++k) bytes += "Key" + QByteArray::number(k) + "=" + QByteArray::number(k) + "\n";
  WriteBytes(path, bytes);
  const QByteArray savedTmp = qgetenv("TMPDIR");
  qputenv("TMPDIR", testing::UnwritableFolder(dir).toLocal8Bit());
  {
    IniSettingsStore store(path);
    EXPECT_FALSE(store.readWasIncomplete());
    store.save(QStringLiteral("Config"), QStringLiteral("Clearance"), QStringLiteral("2600"));
    EXPECT_FALSE(store.lastWriteFailed());
  }
  qputenv("TMPDIR", savedTmp);
  const SettingsFileRead reread = ReadSettingsFile(path);
  EXPECT_EQ(reread.tree.at(QStringLiteral("Config")).size(), 901u);
  EXPECT_EQ(reread.tree.at(QStringLiteral("Config")).at(QStringLiteral("Key900")), QStringLiteral("900"));
}

TEST(IniSettings, AFileThatCannotBeReadWholeIsNeverWrittenAndTheUserIsTold) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("Aquilonix.conf"));
  WriteBytes(path, "[Config]\nPolus=60\n");
  // Grown past anything a settings file can be, with a hole: still its bytes.
  ASSERT_TRUE(QFile::resize(path, 17 * 1024 * 1024));
  ScriptedPrompts prompts;
  IniSettingsStore store(path);
  store.setFailureReporter(&prompts);
  store.reportReadProblem();
  EXPECT_TRUE(store.readWasIncomplete());
  ASSERT_EQ(prompts.messages().size(), 1u);
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("Не удалось прочитать настройки")));
  store.save(QStringLiteral("Config"), QStringLiteral("Clearance"), QStringLiteral("2600"));
  EXPECT_TRUE(store.lastWriteFailed());
  SettingsTree other;
  other[QStringLiteral("Config")][QStringLiteral("Polus")] = QStringLiteral("48");
  EXPECT_FALSE(store.replaceAll(other));
  EXPECT_EQ(prompts.messages().size(), 1u) << "told once";
  EXPECT_EQ(QFileInfo(path).size(), 17 * 1024 * 1024);
  EXPECT_TRUE(testing::ReadBytes(path).startsWith("[Config]\nPolus=60\n"));
}

TEST(IniSettings, AnUnwritableFolderIsToldOnceAndNothingBreaks) {
  QTemporaryDir dir;
  const QString path = testing::UnwritableFolder(dir) + QStringLiteral("/Aquilonix.conf");
  ScriptedPrompts prompts;
  IniSettingsStore store(path);
  store.setFailureReporter(&prompts);
  for (int i = 0; i < 20; ++i)
    store.save(QStringLiteral("Config"), QStringLiteral("Polus"), QString::number(60 + i));
  EXPECT_TRUE(store.lastWriteFailed());
  ASSERT_EQ(prompts.messages().size(), 1u);
  EXPECT_EQ(prompts.messages()[0].title, QStringLiteral("Ошибка"));
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("Не удалось сохранить настройки")));
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("Aquilonix.conf")));
  EXPECT_EQ(store.get(QStringLiteral("Config"), QStringLiteral("Polus")), QStringLiteral("79"))
      << "the running program keeps its values";
}

TEST(IniSettings, AFailedReplaceLeavesTheTreeAsItWas) {
  QTemporaryDir dir;
  IniSettingsStore store(testing::UnwritableFolder(dir) + QStringLiteral("/Aquilonix.conf"));
  store.save(QStringLiteral("Config"), QStringLiteral("Polus"), QStringLiteral("60"));
  const SettingsTree before = store.tree();
  SettingsTree other;
  other[QStringLiteral("Config")][QStringLiteral("Polus")] = QStringLiteral("48");
  EXPECT_FALSE(store.replaceAll(other));
  EXPECT_EQ(store.tree(), before);

  MemorySettingsStore memory(before);
  memory.failWrites = true;
  EXPECT_FALSE(memory.replaceAll(other));
  EXPECT_EQ(memory.tree(), before);
}

}  // namespace
}  // namespace aqx
