#include "core/AppState.h"
#include "core/Numeric.h"
#include "core/Prompts.h"
#include "core/Vocabulary.h"

#include <gtest/gtest.h>

#include <limits>

namespace aqx {
namespace {

const QLocale kRu(QLocale::Russian, QLocale::Russia);

TEST(Rounding, HalfGoesToEvenAndExtremesAreClamped) {
  EXPECT_EQ(RoundHalfEven(0.5), 0);
  EXPECT_EQ(RoundHalfEven(1.5), 2);
  EXPECT_EQ(RoundHalfEven(2.5), 2);
  EXPECT_EQ(RoundHalfEven(-2.5), -2);
  EXPECT_EQ(RoundHalfEven(-3.5), -4);
  EXPECT_EQ(RoundHalfEven(2.4999), 2);
  EXPECT_EQ(RoundHalfEven(1e300), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(RoundHalfEven(-1e300), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(RoundHalfEven(std::numeric_limits<double>::quiet_NaN()), 0);
  EXPECT_EQ(IntFloor(-0.5), -1);
  EXPECT_EQ(IntFloor(2.9), 2);
}

TEST(Dates, OleDaysRoundTripToTheSecond) {
  EXPECT_DOUBLE_EQ(DateTimeToOle(QDateTime(QDate(1899, 12, 30), QTime(0, 0))), 0.0);
  EXPECT_DOUBLE_EQ(DateTimeToOle(QDateTime(QDate(1900, 1, 1), QTime(12, 0))), 2.5);
  const QDateTime t(QDate(2024, 5, 17), QTime(13, 45, 12));
  EXPECT_EQ(OleToDateTime(DateTimeToOle(t)), t);
  EXPECT_FALSE(OleToDateTime(1e300).isValid());
}

TEST(Formats, RussianStandardAndGroupedForms) {
  EXPECT_EQ(FormatStandard(1234567.891, kRu), QStringLiteral("1\u00A0234\u00A0567,89"));
  EXPECT_EQ(FormatStandard(0.5, kRu), QStringLiteral("0,50"));
  EXPECT_EQ(FormatGrouped(1234567.8912, kRu), QStringLiteral("1 234 567,891"));
  EXPECT_EQ(FormatGrouped(12, kRu), QStringLiteral("12,0"));
  EXPECT_EQ(FormatGrouped(0.25, kRu), QStringLiteral("0,25"));
  EXPECT_EQ(FormatGrouped(-1500.5, kRu), QStringLiteral("-1 500,5"));
  EXPECT_EQ(FormatGrouped(-0.00001, kRu), QStringLiteral("0,0"));
}

TEST(Formats, FileSizesByMagnitude) {
  EXPECT_EQ(FormatFileSize(1023, kRu), QStringLiteral("1023 байт"));
  EXPECT_EQ(FormatFileSize(2048, kRu), QStringLiteral("2,00 Кб"));
  EXPECT_EQ(FormatFileSize(3 * 1048576.0, kRu), QStringLiteral("3,00Мб"));
  EXPECT_EQ(FormatFileSize(1.5 * 1073741824.0, kRu), QStringLiteral("1,50Гб"));
  EXPECT_EQ(FormatFileSizeShort(512, kRu), QStringLiteral("512 байт"));
  EXPECT_EQ(FormatFileSizeShort(1536, kRu), QStringLiteral("1,5 Кб"));
}

TEST(Formats, NumericKeyFilterAndParsing) {
  for (char ch : std::string("0123456789,-+")) EXPECT_EQ(FilterNumericKey(ch), ch);
  EXPECT_EQ(FilterNumericKey(8), 8);  // backspace passes
  EXPECT_EQ(FilterNumericKey(26), 26);
  EXPECT_EQ(FilterNumericKey('.'), 0);
  EXPECT_EQ(FilterNumericKey('a'), 0);
  EXPECT_EQ(FilterNumericKey(' '), 0);
  EXPECT_DOUBLE_EQ(*ParseLocaleNumber(QStringLiteral("83,3"), kRu), 83.3);
  EXPECT_DOUBLE_EQ(*ParseLocaleNumber(QStringLiteral("0.082"), kRu), 0.082);
  EXPECT_FALSE(ParseLocaleNumber(QStringLiteral("abc"), kRu).has_value());
  EXPECT_FALSE(ParseLocaleNumber(QString(), kRu).has_value());
}

class StateTest : public ::testing::Test {
 protected:
  AppState s;
};

TEST_F(StateTest, FreshStateHasTheDocumentedDefaults) {
  EXPECT_EQ(s.Polus, 72);
  EXPECT_EQ(s.SignalDataN, 32768);
  EXPECT_EQ(ChannelCount(s), 32);
  EXPECT_EQ(s.ChannelUsedCount, 32);
  EXPECT_EQ(s.channels.ChannelColor[1], 0x0000FF);
  EXPECT_EQ(s.channels.ChannelColor[32], 0x000456);
  EXPECT_FLOAT_EQ(s.channels.Ku[5], 10.0f);
  EXPECT_FLOAT_EQ(s.channels.ProbeFreq[32][6], -1.0f);
  EXPECT_TRUE(s.DataSaved);
  // The store is the full 64 MiB and starts zeroed at both ends.
  EXPECT_EQ(s.SignalData.at(1, 1), 0);
  EXPECT_EQ(s.SignalData.at(kMaxSamples, 32), 0);
}

TEST_F(StateTest, DifferentialConnectionHidesChannels17To32) {
  s.ChannelDifferential = 1;
  for (int c = 1; c <= 32; ++c) s.channels.Channel[c] = c > 16 ? 1 : 0;
  s.channels.Channel[3] = 1;
  s.channels.Type[20] = 3;
  EXPECT_EQ(ChannelCount(s), 16);
  EXPECT_EQ(RecountChannelUsedCount(s), 1);
  EXPECT_EQ(FirstMarkerChannel(s), 0);
  s.ChannelDifferential = 0;
  EXPECT_EQ(RecountChannelUsedCount(s), 17);
  EXPECT_EQ(FirstMarkerChannel(s), 20);
}

TEST_F(StateTest, ActiveUsedCountNeedsBothFlags) {
  for (int c = 1; c <= 32; ++c) s.channels.Active[c] = 0;
  s.channels.Active[2] = 1;
  s.channels.Active[4] = 1;
  s.channels.Channel[4] = 0;
  EXPECT_EQ(ActiveUsedCount(s), 1);
}

TEST_F(StateTest, BlockRuleFollowsTheSmallerOfBlockAndRecord) {
  s.FreqDesc = 2048;
  s.SignalDataN = 1024;
  s.BlockSizeFFT = 2048;
  ApplyBlockRule(s);
  EXPECT_EQ(s.SpectrLineCount, 512);
  EXPECT_DOUBLE_EQ(s.StepDesc, 2.0);
  s.SignalDataN = 8192;
  s.BlockSizeFFT = 1024;
  ApplyBlockRule(s);
  EXPECT_EQ(s.SpectrLineCount, 512);
  EXPECT_DOUBLE_EQ(s.StepDesc, 2.0);
  s.StepDesc = 7.0;
  s.BlockSizeFFT = 0;  // "none" keeps the step
  ApplyBlockRule(s);
  EXPECT_DOUBLE_EQ(s.StepDesc, 7.0);
}

TEST_F(StateTest, RotorDerivationOrderAndFreqDescRFloor) {
  s.Polus = 48;
  s.FreqSety = 50;
  s.NumberRotorRecord = 10;
  s.SignalDataN = 16384;
  DeriveRotorParameters(s);
  EXPECT_DOUBLE_EQ(s.FreqRotorN, 125.0);
  EXPECT_DOUBLE_EQ(s.FreqOneGarmonic, 125.0 / 60.0);
  EXPECT_EQ(s.FreqDescR, RoundHalfEven(16384 / (10 * 60.0 / 125.0)));
  s.SignalDataN = 1;
  s.NumberRotorRecord = 1000;
  DeriveRotorParameters(s);
  EXPECT_EQ(s.FreqDescR, 1);
}

TEST_F(StateTest, SetChannelUnitKeepsItsTableAsItStands) {
  s.FirstChannelActive = 1;
  s.channels.Type[1] = 0;
  SetChannelUnit(s, 100);
  EXPECT_EQ(s.UnitName, QStringLiteral("мкм"));
  SetChannelUnit(s, 6000);
  EXPECT_EQ(s.UnitName, QStringLiteral("мм"));
  EXPECT_DOUBLE_EQ(s.UnitDivisor, 1000);
  SetChannelUnit(s, 60000);
  EXPECT_EQ(s.UnitName, QStringLiteral("см"));
  EXPECT_DOUBLE_EQ(s.UnitDivisor, 10000);  // centimetres by 10000, as always
  s.channels.Type[1] = 6;
  SetChannelUnit(s, 60000);
  EXPECT_EQ(s.UnitName, QStringLiteral("кгс/см2"));
  EXPECT_DOUBLE_EQ(s.UnitDivisor, 1000);
  s.channels.Type[1] = 7;
  SetChannelUnit(s, 1e7);
  EXPECT_EQ(s.UnitName, QStringLiteral("°C"));
  EXPECT_DOUBLE_EQ(s.UnitDivisor, 1000000);
  s.channels.Type[1] = 9;
  SetChannelUnit(s, 5000);
  EXPECT_EQ(s.UnitName, QStringLiteral("кВт"));
  s.channels.Type[1] = 2;
  SetChannelUnit(s, 4999.9);
  EXPECT_EQ(s.UnitName, QStringLiteral("г"));
}

TEST_F(StateTest, CodeToValueUsesGainZeroAndOffsetOption) {
  s.channels.Ku[1] = 2.5f;
  s.channels.Zero[1] = 10;
  s.channels.Volume[1] = 1;
  s.SignalOffset[1] = 100;
  s.AccountOffset = false;
  EXPECT_DOUBLE_EQ(CodeToValue(s, 1, 200), (200 * 1.25 - 40) / 2.5);
  s.AccountOffset = true;
  EXPECT_DOUBLE_EQ(CodeToValue(s, 1, 200), (100 * 1.25 - 40) / 2.5);
}

TEST_F(StateTest, ClearApplicationDataEmptiesTheRecording) {
  s.object.Station = QStringLiteral("Станция");
  ClearApplicationData(s);
  EXPECT_EQ(s.Polus, 0);
  EXPECT_EQ(s.object.Agregat, 0);
  EXPECT_TRUE(s.object.Station.isEmpty());
  EXPECT_EQ(s.object.Remark[27], QStringLiteral("0"));
  EXPECT_EQ(s.FirstChannelActive, 0);
  EXPECT_EQ(s.channels.Channel[7], 0);
  EXPECT_GT(s.object.RecordDate, 40000.0);
}

TEST(VocabularyTables, SizesAndKnownRows) {
  const Vocabulary v = BuildVocabulary();
  EXPECT_DOUBLE_EQ(v.AmplitudeScales.front(), 10);
  EXPECT_DOUBLE_EQ(v.AmplitudeScales[3], 100);
  EXPECT_DOUBLE_EQ(v.AmplitudeScales.back(), 5000000);
  EXPECT_EQ(v.SensorTypeList.size(), 10);
  EXPECT_EQ(v.PlaceList.size(), 17);
  EXPECT_EQ(v.DirectList.size(), 11);
  EXPECT_EQ(v.StationList.size(), 11);
  ASSERT_EQ(v.ModeList.size(), 39);
  EXPECT_EQ(v.ModeList[9], QStringLiteral("Параллельная работа с сетью при Р=10МВт"));
  EXPECT_EQ(v.ModeList[33], QStringLiteral("Параллельная работа с сетью при Р=250МВт"));
  EXPECT_EQ(v.ModeList[38], QStringLiteral("Холостой ход без возбуждения при n=1,1nном"));
  ASSERT_EQ(v.ColorNameList.size(), 64);
  EXPECT_EQ(v.ColorList[2], 0xFFBF00u);
  EXPECT_EQ(v.ColorNameList[63], QStringLiteral("Жёлтый / Yellow"));
  EXPECT_EQ(BandLabel(3).label, QStringLiteral("0-10кГц"));
  EXPECT_EQ(BandLabel(1).tickCount, 19);
}

TEST(ScriptedPromptsTest, AnswersInOrderAndRecordsWhatWasShown) {
  ScriptedPrompts p;
  p.answers = {PromptAnswer::No};
  p.texts = {QStringLiteral("/tmp/a.aqx")};
  EXPECT_EQ(p.ask(QStringLiteral("Вопрос?"), QStringLiteral("Внимание")), PromptAnswer::No);
  EXPECT_EQ(p.ask(QStringLiteral("Ещё?"), QStringLiteral("Внимание"), PromptButtons::YesNoCancel),
            PromptAnswer::Yes);
  EXPECT_EQ(p.chooseOpenFile(QStringLiteral("Открытие"), QStringLiteral("/tmp"), QString()),
            QStringLiteral("/tmp/a.aqx"));
  EXPECT_FALSE(p.input(QStringLiteral("Имя"), QStringLiteral("Ввод"), QString()).has_value());
  ASSERT_EQ(p.messages().size(), 2u);
  EXPECT_EQ(p.messages()[0].title, QStringLiteral("Внимание"));
  EXPECT_EQ(p.lastMessage(), QStringLiteral("Ещё?"));
}

}  // namespace
}  // namespace aqx
