#include "core/ArtificialMarker.h"
#include "core/ChannelPhysics.h"
#include "core/Numeric.h"
#include "core/SensorCalibration.h"

#include <gtest/gtest.h>

#include <memory>

namespace aqx {
namespace {

TEST(ArtificialMarker, PulsesArePlacedByPhaseAlone) {
  const std::vector<int32_t> rows = ArtificialMarkerRows(1024, 16, 0);
  ASSERT_EQ(rows.size(), 16u);
  EXPECT_EQ(rows.front(), 1);
  for (size_t i = 1; i < rows.size(); ++i) EXPECT_EQ(rows[i] - rows[i - 1], 64);
  // 90 degrees of a 64-row period: 16 rows on; 3 periods of 100 rows
  // (33.33 each) from 1 go 1, 34.33 -> 34, 67.67 -> 68.
  EXPECT_EQ(ArtificialMarkerRows(1024, 16, 90).front(), 17);
  EXPECT_EQ(ArtificialMarkerRows(100, 3, 0), (std::vector<int32_t>{1, 34, 68}));
  EXPECT_TRUE(ArtificialMarkerRows(0, 16, 0).empty());
}

TEST(ArtificialMarker, MakesAMarkerChannelAndAsksBeforeReplacingOne) {
  auto s = std::make_unique<AppState>();
  ScriptedPrompts prompts;
  s->SignalDataN = 6000;
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = c <= 3 ? 1 : 0;
  s->SignalData.at(10, 3) = 555;
  ArtificialMarkerSettings m;
  m.PeriodN = 10;
  m.ChannelO = 3;
  m.ChannelA = 1;
  prompts.answers.push_back(PromptAnswer::No);
  EXPECT_FALSE(MakeArtificialMarker(*s, prompts, m));
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Предлагаемый канал отметчика, занят. Заменить?"));
  EXPECT_EQ(s->SignalData.at(10, 3), 555);
  m.ChannelO = 4;
  m.ChannelA = 5;
  EXPECT_FALSE(MakeArtificialMarker(*s, prompts, m));
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Опорный канал отключен!"));
  m.ChannelA = 1;
  s->DataSaved = true;
  ASSERT_TRUE(MakeArtificialMarker(*s, prompts, m));
  EXPECT_FALSE(s->DataSaved);
  EXPECT_EQ(FirstMarkerChannel(*s), 4);
  EXPECT_EQ(s->channels.SensorName[4], QStringLiteral("Исскуственный"));
  int pulses = 0;
  for (int row = 1; row <= 6000; ++row) pulses += s->SignalData.at(row, 4) == 8190;
  EXPECT_EQ(pulses, 10);
  EXPECT_EQ(s->SignalData.at(601, 4), 8190);
}

TEST(SensorCalibration, IntervalFactorsAndTheDeadSensor) {
  // 400 codes over 500 um are 1 mV/um whichever way the probe is wired.
  EXPECT_FLOAT_EQ(IntervalKu(1000, 600), 1.0f);
  EXPECT_FLOAT_EQ(IntervalKu(600, 1000), 1.0f);
  EXPECT_FLOAT_EQ(IntervalKu(0, 3), 0.0f);  // 0.0075 truncates to 0
  SensorCalibration c;
  c.addLevel(100);
  EXPECT_FALSE(c.dead);
  c.addLevel(102);  // the sensor does not respond: known at the second step
  EXPECT_TRUE(c.dead);
  EXPECT_TRUE(c.finished());
}

TEST(SensorCalibration, TheWidestRangeWithinTheDeviationWins) {
  // A first factor alone is always within range.
  EXPECT_EQ(RecommendKu({3.0f}, 0).rangeMicrometres, 500);
  // Linear to 3000 um, then half as steep.
  const std::vector<float> factors{4.0f, 4.0f, 4.0f, 4.0f, 4.0f, 4.0f, 2.0f, 2.0f, 2.0f, 2.0f};
  const KuRecommendation r = RecommendKu(factors, 10);
  EXPECT_EQ(r.rangeMicrometres, 3000);
  EXPECT_DOUBLE_EQ(r.ku, 4.0);
  EXPECT_EQ(r.deviationPercent[0], 0);
  EXPECT_EQ(r.deviationPercent[6], -50);
  // A wide tolerance takes more of the curve; the first failure ends it.
  EXPECT_EQ(RecommendKu(factors, 50).rangeMicrometres, 5000);
  EXPECT_EQ(RecommendKu({4.0f, 3.0f, 4.0f, 4.0f}, 10).rangeMicrometres, 500);
  EXPECT_EQ(RecommendationText(r, 10), QStringLiteral("Рекомендуемый Ку = ") + FormatStandard(4.0) +
                                           QStringLiteral(",\nдля диапазона 0-3000 мкм\nпри допустимом отклонении: ±10%"));
}

TEST(SensorCalibration, CopyTextHasTheGridSeparatedByTabs) {
  SensorCalibration c;
  c.addLevel(-6400);
  c.addLevel(-4800);
  const QString text = CalibrationCopyText(c, RecommendKu(c.factors, 10), QStringLiteral("ДВТ-10"),
                                           QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9)));
  const QStringList lines = text.split(QLatin1Char('\n'));
  ASSERT_EQ(lines.size(), 14);
  EXPECT_EQ(lines[0], QStringLiteral("Время: 06.05.2024 07:08:09"));
  EXPECT_EQ(lines[1], QStringLiteral("Датчик: ДВТ-10"));
  EXPECT_EQ(lines[4], QStringLiteral("500\t") + FormatStandard(-6000.0) + QStringLiteral("\t") + FormatStandard(4.0) +
                          QStringLiteral("\t") + FormatStandard(0.0));
}

}  // namespace
}  // namespace aqx
