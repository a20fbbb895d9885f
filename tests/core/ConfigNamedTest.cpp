#include "core/NamedConfigs.h"

#include "SettingsTestSupport.h"

#include <gtest/gtest.h>

namespace aqx {
namespace {

using testing::ReadBytes;
using testing::WriteBytes;

const QString kConfig = QStringLiteral("Config");

struct Station {
  Station() : path(dir.filePath(QStringLiteral("Aquilonix/Aquilonix.conf"))), store(path) {
    store.save(kConfig, QStringLiteral("Polus"), QStringLiteral("48"));
    store.save(kConfig, QStringLiteral("FreqRotorN"), QStringLiteral("125"));
    store.save(QStringLiteral("Recent"), QStringLiteral("1"), QStringLiteral("/data/unit1.aqx"));
  }
  QString folder() const { return ConfigsFolder(path); }
  QTemporaryDir dir;
  QString path;
  IniSettingsStore store;
  ScriptedPrompts prompts;
};

TEST(NamedConfigs, SavedBesideTheSettingsAndRestoredWhole) {
  Station st;
  EXPECT_EQ(st.folder(), st.dir.filePath(QStringLiteral("Aquilonix/Configs")));
  st.prompts.texts = {QStringLiteral(" Агрегат 1 ")};
  EXPECT_EQ(ConfigSaveCommand(st.store, st.folder(), st.prompts), ConfigResult::Done);
  ASSERT_EQ(st.prompts.shown.size(), 1u);
  EXPECT_EQ(st.prompts.shown[0].text, QStringLiteral("Введите название сохраняемой конфигурации:"));
  EXPECT_EQ(st.prompts.shown[0].title, QStringLiteral("Конфигурации"));
  EXPECT_EQ(ListConfigs(st.folder()), QStringList({"Агрегат 1"}));
  const SettingsTree saved = st.store.tree();

  st.store.save(kConfig, QStringLiteral("Polus"), QStringLiteral("72"));
  st.store.save(kConfig, QStringLiteral("Extra"), QStringLiteral("1"));
  st.store.save(QStringLiteral("Recent"), QStringLiteral("1"), QStringLiteral("/data/unit2.aqx"));
  AppState s;
  int refreshed = 0;
  EXPECT_EQ(ConfigOpenCommand(s, st.store, st.folder(), QStringLiteral("Агрегат 1"), st.prompts,
                              [&](AppState&) { ++refreshed; }),
            ConfigResult::Done);
  EXPECT_EQ(st.store.tree(), saved) << "all keys, the recent list included, and no others";
  EXPECT_EQ(IniSettingsStore(st.path).tree(), saved);
  EXPECT_EQ(s.Polus, 48) << "the running program reads the restored settings";
  EXPECT_EQ(refreshed, 1);
}

TEST(NamedConfigs, AnEmptyNameSavesNothingAndReplacingAsksFirst) {
  Station st;
  for (const std::optional<QString>& answer :
       {std::optional<QString>(), std::optional<QString>(QString()), std::optional<QString>("  ")}) {
    st.prompts.texts = {answer};
    EXPECT_EQ(ConfigSaveCommand(st.store, st.folder(), st.prompts), ConfigResult::Cancelled);
  }
  EXPECT_TRUE(ListConfigs(st.folder()).isEmpty());

  ASSERT_EQ(SaveNamedConfig(st.store, st.folder(), QStringLiteral("ГА-1"), false), ConfigResult::Done);
  const QByteArray first = ReadBytes(st.folder() + QStringLiteral("/ГА-1"));
  st.store.deleteAll();
  st.store.save(kConfig, QStringLiteral("Polus"), QStringLiteral("96"));

  st.prompts.texts = {QStringLiteral("ГА-1")};
  st.prompts.answers = {PromptAnswer::No};
  EXPECT_EQ(ConfigSaveCommand(st.store, st.folder(), st.prompts), ConfigResult::Cancelled);
  EXPECT_EQ(st.prompts.lastMessage(),
            QStringLiteral("Конфигурация с таким названием уже существует, заменить её?"));
  EXPECT_EQ(ReadBytes(st.folder() + QStringLiteral("/ГА-1")), first);

  st.prompts.texts = {QStringLiteral("ГА-1")};
  st.prompts.answers = {PromptAnswer::Yes};
  EXPECT_EQ(ConfigSaveCommand(st.store, st.folder(), st.prompts), ConfigResult::Done);
  SettingsTree only;
  only[kConfig][QStringLiteral("Polus")] = QStringLiteral("96");
  EXPECT_EQ(ReadSettingsFile(st.folder() + QStringLiteral("/ГА-1")).tree, only)
      << "the old snapshot is gone, not merged";
  EXPECT_EQ(SaveNamedConfig(st.store, st.folder(), QStringLiteral("ГА-1"), false), ConfigResult::Exists);
}

TEST(NamedConfigs, AFailedRestoreLeavesTheSettingsExactlyAsTheyWere) {
  Station st;
  const SettingsTree before = st.store.tree();
  const QByteArray fileBefore = ReadBytes(st.path);
  WriteBytes(st.folder() + QStringLiteral("/битая"), QByteArray("[Config]\nPolus=60\n[Chan\x00\xff", 25));
  AppState s;
  s.Polus = 33;
  EXPECT_EQ(ConfigOpenCommand(s, st.store, st.folder(), QStringLiteral("битая"), st.prompts, {}),
            ConfigResult::Failed);
  EXPECT_TRUE(st.prompts.lastMessage().contains(QStringLiteral("Настройки остались без изменений")));
  EXPECT_EQ(RestoreNamedConfig(st.store, st.folder(), QStringLiteral("нет такой")), ConfigResult::NotFound);
  EXPECT_EQ(st.store.tree(), before);
  EXPECT_EQ(ReadBytes(st.path), fileBefore);
  EXPECT_EQ(s.Polus, 33);

  // A snapshot that is fine but a settings file that cannot be replaced.
  QTemporaryDir other;
  IniSettingsStore blocked(testing::UnwritableFolder(other) + QStringLiteral("/Aquilonix.conf"));
  blocked.save(kConfig, QStringLiteral("Polus"), QStringLiteral("60"));
  const SettingsTree blockedBefore = blocked.tree();
  ASSERT_EQ(SaveNamedConfig(st.store, st.folder(), QStringLiteral("good"), false), ConfigResult::Done);
  EXPECT_EQ(RestoreNamedConfig(blocked, st.folder(), QStringLiteral("good")), ConfigResult::Failed);
  EXPECT_EQ(blocked.tree(), blockedBefore);
}

TEST(NamedConfigs, AFileOfAnotherProgramIsNoConfiguration) {
  Station st;
  const SettingsTree before = st.store.tree();
  WriteBytes(st.folder() + QStringLiteral("/picture"), QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16));
  WriteBytes(st.folder() + QStringLiteral("/other.ini"), QByteArray("[General]\nwindowState=1\n"));
  for (const char* name : {"picture", "other.ini"})
    EXPECT_EQ(RestoreNamedConfig(st.store, st.folder(), QString::fromLatin1(name)), ConfigResult::Failed) << name;
  EXPECT_EQ(st.store.tree(), before);
}

TEST(NamedConfigs, RenameAndDeleteAskAndNamesStayInsideTheFolder) {
  Station st;
  ASSERT_EQ(SaveNamedConfig(st.store, st.folder(), QStringLiteral("a"), false), ConfigResult::Done);
  ASSERT_EQ(SaveNamedConfig(st.store, st.folder(), QStringLiteral("b"), false), ConfigResult::Done);
  WriteBytes(st.folder() + QStringLiteral("/.a.conf.Xy12Zq"), "left by a crash");

  st.prompts.texts = {QStringLiteral("c")};
  EXPECT_EQ(ConfigRenameCommand(st.folder(), QStringLiteral("a"), st.prompts), ConfigResult::Done);
  EXPECT_EQ(st.prompts.shown.back().text, QStringLiteral("Введите новое название конфигурации:"));
  EXPECT_EQ(ListConfigs(st.folder()), QStringList({"b", "c"}));

  st.prompts.texts = {QStringLiteral("b")};
  st.prompts.answers = {PromptAnswer::No};
  EXPECT_EQ(ConfigRenameCommand(st.folder(), QStringLiteral("c"), st.prompts), ConfigResult::Cancelled);
  EXPECT_EQ(ListConfigs(st.folder()), QStringList({"b", "c"}));

  st.prompts.answers = {PromptAnswer::No};
  EXPECT_EQ(ConfigDeleteCommand(st.folder(), QStringLiteral("b"), st.prompts), ConfigResult::Cancelled);
  EXPECT_EQ(st.prompts.lastMessage(), QStringLiteral("Удалить конфигурацию: b"));
  st.prompts.answers = {PromptAnswer::Yes};
  EXPECT_EQ(ConfigDeleteCommand(st.folder(), QStringLiteral("b"), st.prompts), ConfigResult::Done);
  EXPECT_EQ(ListConfigs(st.folder()), QStringList({"c"}));

  for (const QString& bad : {QStringLiteral("../x"), QStringLiteral(".hidden"), QStringLiteral("a/b"),
                             QStringLiteral("..")}) {
    EXPECT_EQ(SaveNamedConfig(st.store, st.folder(), bad, true), ConfigResult::InvalidName) << bad.toStdString();
    st.prompts.texts = {bad};
    EXPECT_EQ(ConfigSaveCommand(st.store, st.folder(), st.prompts), ConfigResult::InvalidName);
    EXPECT_TRUE(st.prompts.lastMessage().startsWith(QStringLiteral("Недопустимое название")));
  }
  EXPECT_FALSE(QFileInfo::exists(st.dir.filePath(QStringLiteral("Aquilonix/x"))));
}

}  // namespace
}  // namespace aqx
