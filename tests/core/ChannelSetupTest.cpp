#include "core/ChannelSetupRules.h"

#include "core/ChannelPhysics.h"
#include "core/Settings.h"

#include <gtest/gtest.h>

#include <memory>

namespace aqx {
namespace {

struct ChannelFixture : ::testing::Test {
  std::unique_ptr<AppState> s = std::make_unique<AppState>();
  MemorySettingsStore store;
  ScriptedPrompts prompts;
  ChannelSetupInput in;
  void SetUp() override {
    for (int c = 1; c <= kMaxChannels; ++c) {
      s->channels.Channel[c] = c <= 4 ? 1 : 0;
      s->channels.Type[c] = c <= 2 ? sensor::Runout : sensor::Vibration;
      s->channels.Ku[c] = 1.0f;
    }
    s->channels.Place[1] = QStringLiteral("ТП");
    s->channels.Direct[1] = QStringLiteral("+X");
    in = CurrentChannelSetup(*s);
  }
  bool apply() { return ApplyChannelSetup(*s, store, prompts, in); }
};

TEST_F(ChannelFixture, ApplyRefusesInTheirOrderAndLeavesTheTableAlone) {
  for (auto& r : in.rows) r.on = false;
  EXPECT_FALSE(apply());
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Отключение всех каналов недопустимо!"));
  in = CurrentChannelSetup(*s);
  in.rows[2].ku = QStringLiteral("0");
  EXPECT_FALSE(apply());
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Нулевое значения Ку недопустимо!"));
  in.rows[2].ku = QStringLiteral("abc");
  EXPECT_FALSE(apply());
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("Канал №3")));
  in = CurrentChannelSetup(*s);
  in.rows[2].type = sensor::ShaftMarker;
  in.rows[3].type = sensor::ShaftMarker;
  EXPECT_FALSE(apply());
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Недопустимо включение нескольких отметчиков!"));
  EXPECT_EQ(s->channels.Type[3], sensor::Vibration);
  EXPECT_EQ(prompts.messages().front().title, QStringLiteral("Настройка каналов"));
}

TEST_F(ChannelFixture, ApplyTakesRowsConnectionAndSynchronisation) {
  in.rows[9].on = true;
  in.rows[9].ku = QStringLiteral("2.5");
  in.rows[9].zero = QStringLiteral("-100");
  in.rows[20].on = true;
  in.differential = true;
  in.inputMode = 3;
  in.synchroAdMode = 2;
  in.synchroAdChannel = 5;
  in.synchroAdPorog = QStringLiteral("-700");
  ASSERT_TRUE(apply());
  EXPECT_EQ(s->channels.Channel[10], 1);
  EXPECT_FLOAT_EQ(s->channels.Ku[10], 2.5f);
  EXPECT_EQ(s->channels.Zero[10], -100);
  EXPECT_EQ(s->channels.Channel[21], 0);  // past 16 in differential connection
  EXPECT_EQ(s->ChannelUsedCount, 5);
  EXPECT_EQ(s->SynchroAdPorog, -700);
  EXPECT_EQ(store.get(QStringLiteral("Synchro"), QStringLiteral("InputMode"), {}), QStringLiteral("3"));
  EXPECT_EQ(store.get(QStringLiteral("Channel"), QStringLiteral("ChannelDifferential"), {}), QStringLiteral("1"));
}

TEST(ChannelSetup, SynchronisationTextsFollowTheModeAndSubMode) {
  EXPECT_TRUE(SynchroInfoText(0, 0).startsWith(QStringLiteral("Отсутствие какой-либо синхронизации")));
  EXPECT_TRUE(SynchroInfoText(2, 0).startsWith(QStringLiteral("Цифровая покадровая синхронизация.")));
  EXPECT_TRUE(SynchroInfoText(3, 3).endsWith(QStringLiteral("через погоговое значентие")));
  EXPECT_EQ(InputModeNames().mid(0, 2), (QStringList{QStringLiteral("Отключена"), QStringLiteral("Цифровая")}));
}

TEST(ChannelSetup, CalibrationGapFromFiveHundredToThreeThousand) {
  EXPECT_EQ(CheckCalibrationGap(QStringLiteral("500")).gap, 500);
  EXPECT_EQ(CheckCalibrationGap(QStringLiteral(" 3000 ")).gap, 3000);
  EXPECT_EQ(CheckCalibrationGap(QStringLiteral("499")).refusal, QStringLiteral("Величина зазора слишком мала."));
  EXPECT_EQ(CheckCalibrationGap(QStringLiteral("3001")).refusal, QStringLiteral("Величина зазора слишком велика."));
  EXPECT_EQ(CheckCalibrationGap(QStringLiteral("два")).refusal,
            QStringLiteral("Величина зазора должна быть числовым значением."));
}

TEST(ChannelSetup, CalibrationKuIsTruncatedToHundredths) {
  // 400 codes over 1000 um: 0.5 mV/um exactly; 399.2 codes: 0.499.
  EXPECT_FLOAT_EQ(CalibrationKu(-1000, -600, 1000), 0.50f);
  EXPECT_FLOAT_EQ(CalibrationKu(0, 399.2, 1000), 0.49f);
  EXPECT_FLOAT_EQ(CalibrationKu(3200, -3200, 2000), 4.0f);
}

TEST_F(ChannelFixture, CalibrationAgainstTheShaftWritesKuAndKsAtOnce) {
  int reads = 0;
  CalibrationHooks hooks;
  hooks.read = [&](std::array<double, kMaxChannels>& means, int32_t rows) {
    EXPECT_EQ(rows, 4096);
    // Channel 1 moves 3200 codes between contact and 2000 um, channel 2 only 700.
    means.fill(0.0);
    if (reads++ == 1) {
      means[0] = 3200.0;
      means[1] = 700.0;
    }
    return 0;
  };
  prompts.texts.push_back(QStringLiteral("abc"));
  prompts.texts.push_back(QStringLiteral("200"));
  prompts.texts.push_back(QStringLiteral("2000"));
  const std::vector<int> written = CalibrateRunOutSensors(*s, prompts, 0, hooks);
  EXPECT_EQ(written, std::vector<int>{1});
  EXPECT_FLOAT_EQ(s->channels.Ku[1], 2.0f);
  EXPECT_FLOAT_EQ(s->channels.KS[1], 3200.0f);
  EXPECT_FLOAT_EQ(s->channels.Ku[2], 1.0f);  // 0.43 is refused, the old factor stays
  EXPECT_EQ(s->Clearance, 2000);
  const auto shown = prompts.messages();
  ASSERT_GE(shown.size(), 4u);
  EXPECT_TRUE(shown[0].text.startsWith(QStringLiteral("Прижмите вплотную к валу ВСЕ датчики биения:\nканал №1 (ТП +X);")));
  EXPECT_TRUE(shown[0].text.endsWith(QStringLiteral("канал №2 ( ).")));
  EXPECT_EQ(shown[1].text, QStringLiteral("Величина зазора должна быть числовым значением."));
  EXPECT_TRUE(shown[2].text.startsWith(QStringLiteral("Величина зазора слишком мала.\nВеличина зазора должна")));
  EXPECT_EQ(shown.back().text,
            QStringLiteral("Зазор в канале №2 ( ) слишком мал (Ку=%1)!").arg(QLocale().toString(0.43, 'f', 2)));
}

TEST_F(ChannelFixture, WithoutRunOutChannelsNothingIsAskedAndAFailedReadStops) {
  CalibrationHooks hooks;
  hooks.read = [](std::array<double, kMaxChannels>&, int32_t) { return 3; };
  EXPECT_TRUE(CalibrateRunOutSensors(*s, prompts, 0, hooks).empty());
  EXPECT_TRUE(prompts.lastMessage().startsWith(QStringLiteral("Error #3")));
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Type[c] = sensor::Vibration;
  prompts.shown.clear();
  EXPECT_TRUE(CalibrateRunOutSensors(*s, prompts, 0, hooks).empty());
  ASSERT_EQ(prompts.messages().size(), 1u);
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Датчики биения вала отсутствуют в конфигурации каналов."));
}

}  // namespace
}  // namespace aqx
