#include "core/AppState.h"
#include "core/ChannelPhysics.h"
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

TEST_F(StateTest, AcquiredRowsOfACycleFillingFromTheTop) {
  s.SignalDataN = 100;
  for (int c = 1; c <= kMaxChannels; ++c) s.channels.Channel[c] = c == 1 || c == 4;
  for (int i = 1; i <= 100; ++i) s.SignalData.at(i, 1) = s.SignalData.at(i, 4) = 0;
  EXPECT_EQ(AcquiredRows(s), 1) << "nothing yet";
  s.SignalData.at(30, 4) = -5;
  s.SignalData.at(31, 2) = 7;  // a channel not in use does not count
  EXPECT_EQ(AcquiredRows(s), 30);
  s.SignalData.at(100, 1) = 1;
  EXPECT_EQ(AcquiredRows(s), 0) << "full";
}

TEST_F(StateTest, ReadingsUseGainZeroAndAGuardedFactor) {
  s.channels.Ku[1] = 2.5f;
  s.channels.Zero[1] = 10;
  s.channels.Volume[1] = 1;
  EXPECT_DOUBLE_EQ(ChannelReading(s.channels, 1, 200), (200 * 1.25 - 40) / 2.5);
  EXPECT_DOUBLE_EQ(CodesToUnits(s.channels, 1, 200), 200 * 1.25 / 2.5);
  for (const float broken : {0.0f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    s.channels.Ku[1] = broken;
    EXPECT_DOUBLE_EQ(ChannelReading(s.channels, 1, 200), 200 * 1.25 - 40) << broken;
  }
  s.channels.Volume[1] = 7;  // no such range: the largest gain
  s.channels.Ku[1] = 1.0f;
  EXPECT_DOUBLE_EQ(ChannelReading(s.channels, 1, 0), -64.0 * 10);
  EXPECT_TRUE(BeginPointApplies(sensor::Runout, false, false));
  EXPECT_FALSE(BeginPointApplies(sensor::Runout, true, false));
  EXPECT_FALSE(BeginPointApplies(sensor::Runout, false, true));
  EXPECT_FALSE(BeginPointApplies(sensor::Vibration, false, false));
}

}  // namespace
}  // namespace aqx
