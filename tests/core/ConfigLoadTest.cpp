#include "core/Config.h"
#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "core/Vocabulary.h"

#include "SettingsTestSupport.h"

#include <gtest/gtest.h>

namespace aqx {
namespace {

using testing::kRussian;

const QString kConfig = QStringLiteral("Config");
const QString kChannel = QStringLiteral("Channel");

// A value unlike the one the field holds, inside the range its key accepts.
void MakeDifferent(const SettingField& field, int salt, int32_t lo, int32_t hi) {
  std::visit(
      [&](auto* p) {
        using T = std::remove_pointer_t<decltype(p)>;
        if constexpr (std::is_same_v<T, bool>) {
          *p = !*p;
        } else if constexpr (std::is_same_v<T, QString>) {
          *p = QStringLiteral("Значение, %1; \"x\"").arg(salt);
        } else if constexpr (std::is_same_v<T, int32_t>) {
          const int32_t v = *p + 1 + salt % 3;
          *p = v > hi ? lo : v;
        } else {
          *p = static_cast<T>(*p + 0.125 * (salt + 1));
        }
      },
      field);
}

bool SameValue(const SettingField& a, const SettingField& b) {
  return a.index() == b.index() &&
         std::visit([&](auto* pa) { return *pa == *std::get<decltype(pa)>(b); }, a);
}

TEST(ConfigLoad, EverySettingSurvivesARestart) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("Aquilonix.conf"));
  AppState before;
  int salt = 0;
  for (const SettingKey& key : ScalarSettingKeys())
    MakeDifferent(key.field(before), ++salt, key.minValue, key.maxValue);
  for (int c = 1; c <= kMaxChannels; ++c) {
    for (const ChannelSettingKey& key : ChannelSettingKeys())
      MakeDifferent(key.field(before.channels, c), ++salt, key.minValue, key.maxValue);
    before.channels.ProbeFreq[c][6] = 1.5f * static_cast<float>(c);
    before.channels.Filter[c][0] = 0.25f * static_cast<float>(c);
  }
  before.SignalDataN = 65536;
  before.BlockSizeFFTa = 4096;
  before.BlockSizeFFTr = 2048;
  before.object.Remark[27] = QStringLiteral("Комментарий");
  before.options.config.ScaleSpectr = 3;
  before.options.config.ColorTypeKit[4] = 63;
  before.options.config.ColorBackKit[5][3] = 17;
  before.markers.MarkerN = 2;
  before.markers.MarkerDate[1] = 45432.5004;
  before.markers.MarkerRemark[1] = QStringLiteral("Маркер №2");
  before.markers.MarkerShift[1] = 3;
  {
    IniSettingsStore store(path);
    store.setLocale(kRussian);
    SettingsStore::Batch batch(store);
    SaveConfig(store, before);
    for (const SettingKey& key : ScalarSettingKeys())
      SaveOption(store, before, QLatin1String(key.section), QLatin1String(key.key));
    SaveScaleSpectr(store, before);
    SaveColorTypeKit(store, before);
    SaveColorBack(store, before);
    SaveMarker(store, before);
  }
  IniSettingsStore store(path);
  store.setLocale(kRussian);
  AppState after;
  LoadConfigReg(after, store);

  for (const SettingKey& key : ScalarSettingKeys())
    EXPECT_TRUE(SameValue(key.field(after), key.field(before))) << key.section << "/" << key.key;
  for (int c = 1; c <= kMaxChannels; ++c)
    for (const ChannelSettingKey& key : ChannelSettingKeys())
      EXPECT_TRUE(SameValue(key.field(after.channels, c), key.field(before.channels, c)))
          << key.key << c;
  for (int c = 1; c <= kMaxChannels; ++c) {
    EXPECT_EQ(after.channels.ProbeFreq[c], before.channels.ProbeFreq[c]);
    EXPECT_EQ(after.channels.Filter[c], before.channels.Filter[c]);
  }
  EXPECT_EQ(after.SignalDataN, 65536);
  EXPECT_EQ(after.BlockSizeFFT, 4096);
  EXPECT_EQ(after.BlockSizeFFTr, 2048);
  EXPECT_EQ(after.object.Remark, before.object.Remark);
  EXPECT_EQ(after.options.config.BandLabelText, QStringLiteral("0-10кГц"));
  EXPECT_EQ(after.options.config.ColorTypeKit, before.options.config.ColorTypeKit);
  EXPECT_EQ(after.options.config.ColorBackKit, before.options.config.ColorBackKit);
  EXPECT_EQ(after.markers.MarkerN, 2);
  EXPECT_DOUBLE_EQ(after.markers.MarkerDate[1], 45432.5004);
  EXPECT_EQ(after.markers.MarkerRemark[1], QStringLiteral("Маркер №2"));
  EXPECT_EQ(after.markers.MarkerShift[1], 3);
  const QString rotorText = ReadSettingsFile(path).tree[kConfig][QStringLiteral("FreqRotorN")];
  EXPECT_EQ(rotorText, SettingText(before.FreqRotorN, kRussian));
  EXPECT_TRUE(rotorText.contains(QLatin1Char(','))) << "fractions are stored with the decimal comma";
}

TEST(ConfigLoad, GarbledValuesKeepWhatTheFieldHeld) {
  MemorySettingsStore store;
  store.setLocale(kRussian);
  const std::pair<const char*, const char*> garbled[] = {
      {"Polus", "семьдесят два"}, {"FreqRotorN", "8x3"}, {"SignalDataN", "-5"},
      {"FirstChannelActive", "40"}, {"ScaleSpectr", "9"}, {"ColorBackKitSel", "6"},
      {"BlockSizeFFTa", "99999999"}, {"ViewToolbarMain", "может быть"}, {"FreqADC", ""},
  };
  for (const auto& [key, value] : garbled)
    store.save(kConfig, QLatin1String(key), QString::fromUtf8(value));
  store.save(kChannel, QStringLiteral("Type2"), QStringLiteral("12"));
  store.save(kChannel, QStringLiteral("Volume2"), QStringLiteral("-1"));
  store.save(kChannel, QStringLiteral("Ku2"), QStringLiteral("1e60"));
  store.save(QStringLiteral("Marker"), QStringLiteral("MarkerN"), QStringLiteral("101"));
  AppState s;
  s.Polus = 60;
  s.FreqRotorN = 100.0;
  s.SignalDataN = 8192;
  s.FirstChannelActive = 1;
  s.options.config.ScaleSpectr = 1;
  s.options.config.ColorBackKitSel = 3;
  s.BlockSizeFFTa = 1024;
  s.options.config.ViewToolbarMain = false;
  s.FreqADC = 16000;
  s.channels.Type[2] = 5;
  s.channels.Volume[2] = 2;
  s.channels.Ku[2] = 3.5f;
  LoadConfigReg(s, store);
  EXPECT_EQ(s.Polus, 60);
  EXPECT_DOUBLE_EQ(s.FreqRotorN, 100.0);
  EXPECT_EQ(s.SignalDataN, 8192);
  EXPECT_EQ(s.ViewLast, 8192);
  EXPECT_EQ(s.FirstChannelActive, 1);
  EXPECT_EQ(s.options.config.ScaleSpectr, 1);
  EXPECT_EQ(s.options.config.BandLabelText, QStringLiteral("0-100Гц"));
  EXPECT_EQ(s.options.config.ColorBackKitSel, 3);
  EXPECT_EQ(s.BlockSizeFFTa, 1024);
  EXPECT_FALSE(s.options.config.ViewToolbarMain);
  EXPECT_EQ(s.FreqADC, 16000);
  EXPECT_EQ(s.channels.Type[2], 5);
  EXPECT_EQ(s.channels.Volume[2], 2);
  EXPECT_EQ(s.channels.Ku[2], 3.5f);
  EXPECT_EQ(s.markers.MarkerN, 0);
  EXPECT_EQ(s.FreqSety, 50) << "a missing key still gives its default";

  store.save(kConfig, QStringLiteral("SignalDataN"), QStringLiteral("5000000"));
  LoadConfigReg(s, store);
  EXPECT_EQ(s.SignalDataN, kMaxSamples) << "a count beyond the store is cut to it";
}

TEST(ConfigLoad, ACrashOffersTheProtectedStart) {
  for (const PromptAnswer answer : {PromptAnswer::Yes, PromptAnswer::No}) {
    MemorySettingsStore store;
    store.save(kConfig, QStringLiteral("GoodRun"), QStringLiteral("0"));
    store.save(kConfig, QStringLiteral("Polus"), QStringLiteral("60"));
    store.save(kChannel, QStringLiteral("Active7"), QStringLiteral("1"));
    store.save(QStringLiteral("Recent"), QStringLiteral("1"), QStringLiteral("/d/b.aqx"));
    store.save(QStringLiteral("Recent"), QStringLiteral("2"), QStringLiteral("/d/a.aqx"));
    ScriptedPrompts prompts;
    prompts.answers = {answer};
    AppState s;
    LoadConfig(s, store, prompts);
    ASSERT_EQ(prompts.messages().size(), 1u);
    const ShownPrompt q = prompts.messages()[0];
    EXPECT_EQ(q.text, QStringLiteral("Последний раз программа Aquilonix была завершена не корректно.\n"
                                     "Запустить программу в защищенном режиме?"));
    EXPECT_EQ(q.title, QStringLiteral("Внимание"));
    EXPECT_EQ(q.buttons, PromptButtons::YesNo);
    EXPECT_EQ(q.icon, PromptIcon::Exclamation);
    EXPECT_EQ(store.get(kConfig, QStringLiteral("GoodRun")), QStringLiteral("0"));
    EXPECT_EQ(store.get(QStringLiteral("Recent"), QStringLiteral("2")), QStringLiteral("/d/a.aqx"));
    if (answer == PromptAnswer::Yes) {
      EXPECT_EQ(s.Polus, 72);
      EXPECT_EQ(s.channels.Active[1], 1);
      EXPECT_EQ(s.channels.Active[7], 0);
      EXPECT_FALSE(store.contains(kConfig, QStringLiteral("Polus")));
    } else {
      EXPECT_EQ(s.Polus, 60);
      EXPECT_EQ(s.channels.Active[7], 1);
      EXPECT_EQ(s.FirstChannelActive, 1) << "FirstChannelActive is its own key";
    }
  }
  for (const char* goodRun : {"1", "x", ""}) {
    MemorySettingsStore store;
    store.save(kConfig, QStringLiteral("GoodRun"), QLatin1String(goodRun));
    ScriptedPrompts prompts;
    AppState s;
    LoadConfig(s, store, prompts);
    EXPECT_TRUE(prompts.shown.empty()) << goodRun;
  }
}

TEST(ConfigLoad, ResetKeepsOnlyTheRecentListAndActiveOne) {
  MemorySettingsStore store;
  for (int k = 1; k <= 9; ++k)
    store.save(QStringLiteral("Recent"), QString::number(k), QStringLiteral("/r/%1.aqx").arg(k));
  store.save(kConfig, QStringLiteral("Polus"), QStringLiteral("60"));
  store.save(QStringLiteral("Aquilonix"), QStringLiteral("Start"), QStringLiteral("12"));
  const SettingsSection recent = store.tree().at(QStringLiteral("Recent"));
  const int writesBefore = store.writeCount;
  ResetSettings(store);
  EXPECT_EQ(store.writeCount, writesBefore + 1);
  SettingsTree expected;
  expected[QStringLiteral("Recent")] = recent;
  expected[kChannel][QStringLiteral("Active1")] = QStringLiteral("1");
  EXPECT_EQ(store.tree(), expected);
}

TEST(ConfigLoad, TheResetButtonAsksThenTellsARestartIsNeeded) {
  MemorySettingsStore store;
  store.save(kConfig, QStringLiteral("Polus"), QStringLiteral("60"));
  ScriptedPrompts prompts;
  prompts.answers = {PromptAnswer::Cancel};
  EXPECT_EQ(ResetSettingsCommand(store, prompts), ResetOutcome::Cancelled);
  EXPECT_TRUE(store.contains(kConfig, QStringLiteral("Polus")));
  EXPECT_EQ(prompts.lastMessage(),
            QStringLiteral("Удалить все настройки и восстановить все параметры по умолчанию?"));

  prompts.answers = {PromptAnswer::Ok, PromptAnswer::Ok};
  EXPECT_EQ(ResetSettingsCommand(store, prompts), ResetOutcome::CloseProgram);
  EXPECT_FALSE(store.contains(kConfig, QStringLiteral("Polus")));
  const ShownPrompt done = prompts.messages().back();
  EXPECT_EQ(done.text, QStringLiteral("Настройки удалены и восстановлены все параметры по умолчанию,\n"
                                      "необходимо перезапустить программу."));
  EXPECT_EQ(done.title, QStringLiteral("Внимание"));
  EXPECT_EQ(done.icon, PromptIcon::Information);
  prompts.answers = {PromptAnswer::Ok, PromptAnswer::Cancel};
  EXPECT_EQ(ResetSettingsCommand(store, prompts), ResetOutcome::KeepRunning);
}

TEST(ConfigLoad, TheCurrentChannelIsTheFirstRecordedOneWhenNoneIsShown) {
  MemorySettingsStore store;
  store.save(kChannel, QStringLiteral("Channel1"), QStringLiteral("0"));
  AppState s;
  LoadConfigReg(s, store);
  EXPECT_EQ(s.channels.Active[1], 0);
  EXPECT_EQ(s.channels.Active[2], 1);
  EXPECT_EQ(s.FirstChannelActive, 2);
  EXPECT_EQ(s.ChannelUsedCount, 31);
}

TEST(ConfigLoad, DifferentialModeLeavesChannels17To32Alone) {
  MemorySettingsStore store;
  store.save(kChannel, QStringLiteral("ChannelDifferential"), QStringLiteral("1"));
  store.save(kChannel, QStringLiteral("Ku17"), QStringLiteral("5"));
  store.save(kChannel, QStringLiteral("Ku16"), QStringLiteral("5"));
  AppState s;
  s.ChannelDifferential = 1;
  s.channels.Ku[17] = 2.0f;
  LoadConfigReg(s, store);
  EXPECT_EQ(s.channels.Ku[16], 5.0f);
  EXPECT_EQ(s.channels.Ku[17], 2.0f);
  EXPECT_EQ(s.ChannelUsedCount, 16);
  MemorySettingsStore out;
  SaveConfig(out, s);
  EXPECT_TRUE(out.contains(kChannel, QStringLiteral("Ku16")));
  EXPECT_FALSE(out.contains(kChannel, QStringLiteral("Ku17")));
}

}  // namespace
}  // namespace aqx
