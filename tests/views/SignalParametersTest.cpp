// Panels of the parameter bar by channel type, and the large-type line.

#include "SignalTestSupport.h"

#include "views/parameters/SignalParameters.h"

#include <gtest/gtest.h>

namespace aqx {
namespace {

using namespace views;
using namespace testing_views;

struct ParameterBarTest : ::testing::Test {
  std::unique_ptr<AppState> s = MakeState(1000);
  SignalViewState v;
  ParameterReadings r;

  ParameterBar Bar(int type, int width = 600) {
    s->channels.Type[1] = type;
    return BuildParameterBar(*s, v, r, width);
  }
  static std::vector<QString> Texts(const ParameterBar& bar) {
    std::vector<QString> out;
    for (const auto& p : bar.panels) out.push_back(p.text);
    return out;
  }
};

TEST_F(ParameterBarTest, RunOutShowsItsBandHarmonicAndShift) {
  r.BandMax = {11, 22, 33, 44};
  r.ProbeAmplitude = 57;
  r.ProbePhase = 271;
  s->SignalOffset[1] = 1000;  // 1000 units
  s->channels.KS[1] = 300;
  const ParameterBar bar = Bar(0, 600);
  EXPECT_EQ(Texts(bar), (std::vector<QString>{QStringLiteral("ОУ (0-20Гц): 22мкм "),
                                              QStringLiteral("1 гарм.: 57мкм / 271° "),
                                              QStringLiteral("Смещение: 1000мкм ")}));
  EXPECT_EQ(bar.panels[0].toolTip, QStringLiteral("Общий уровень - максимальное значение"));
  EXPECT_EQ(bar.panels[1].toolTip, QStringLiteral("Усредненная амплитуда 1 гармоники"));
  EXPECT_EQ(bar.panels[2].toolTip, QStringLiteral("Смещение вала в сторону датчика"));
  EXPECT_EQ(bar.panelWidthPx, 200);
  s->AccountOffset = true;  // relative to the clearance
  EXPECT_EQ(Bar(0).panels[2].text, QStringLiteral("Смещение: 700мкм "));
  s->channels.Ku[1] = 1.0f;
  s->SignalOffset[1] = -7;  // -8.75 is cut to its integer part
  s->AccountOffset = false;
  EXPECT_EQ(Bar(0).panels[2].text, QStringLiteral("Смещение: -8мкм "));
}

TEST_F(ParameterBarTest, HarmonicOfOneOrLessIsAQuestionMark) {
  r.ProbeAmplitude = 1;
  r.ProbePhase = 90;
  EXPECT_EQ(Bar(0).panels[1].text, QStringLiteral("1 гарм.: ?"));
  r.ProbeAmplitude = 0;
  EXPECT_EQ(Bar(1).panels[4].text, QStringLiteral("1 гарм.: ?"));
  r.ProbeAmplitude = 2;
  EXPECT_EQ(Bar(1).panels[4].text, QStringLiteral("1 гарм.: 2мкм / 90° "));
}

TEST_F(ParameterBarTest, VibrationBandsMaxAndMeanOrMeanAlone) {
  r.BandMax = {100, 10, 20, 30};
  r.BandMean = {50, 5, 6, 7};
  s->options.parameters.SignalParameterMax = true;
  ParameterBar bar = Bar(1, 500);
  EXPECT_EQ(Texts(bar), (std::vector<QString>{QStringLiteral("ОУ (0-200Гц): 100 / 50мкм "),
                                              QStringLiteral("0-1Гц: 10 / 5мкм "), QStringLiteral("1-30Гц: 20 / 6мкм "),
                                              QStringLiteral("30-200Гц: 30 / 7мкм "), QStringLiteral("1 гарм.: ?")}));
  EXPECT_EQ(bar.panels[0].toolTip, QStringLiteral("Общий уровень: максимальное / среднее значение"));
  EXPECT_EQ(bar.panels[3].toolTip, QStringLiteral("ВЧ: максимальное / среднее значение"));
  EXPECT_EQ(bar.panels[4].toolTip, QStringLiteral("1 гармоника: амлитуда / фаза"));
  EXPECT_EQ(bar.panelWidthPx, 100);
  s->options.parameters.SignalParameterMax = false;
  bar = Bar(1);
  EXPECT_EQ(bar.panels[1].text, QStringLiteral("0-1Гц: 5мкм "));
  EXPECT_EQ(bar.panels[2].toolTip, QStringLiteral("СЧ: среднее значение"));
}

TEST_F(ParameterBarTest, ShaftMarkerCountFallsBackToTheRecordsRevolutions) {
  v.RotorSpeedText = QStringLiteral("83 об/мин (100%) ");
  s->NumberRotorRecord = 17;
  s->FreqOneGarmonic = 1.38;
  s->ShaftMarkCount = 1;
  ParameterBar bar = Bar(3);
  EXPECT_EQ(bar.panels[0].text, QStringLiteral("Частота вращения: 83 об/мин (100%) "));
  EXPECT_EQ(bar.panels[1].text, QStringLiteral("Количество оборотов: 17 "));
  EXPECT_EQ(bar.panels[2].text, QStringLiteral("Частота 1 гармоники: ") + FormatStandard(1.38) + QStringLiteral(" Гц "));
  s->ShaftMarkCount = 0;
  EXPECT_EQ(Bar(3).panels[1].text, QStringLiteral("Количество оборотов: 17 "));
  s->ShaftMarkCount = 12;
  EXPECT_EQ(Bar(3).panels[1].text, QStringLiteral("Количество оборотов: 11 "));
}

TEST_F(ParameterBarTest, VoltageStartAndEndAreTheStoresWhateverTheView) {
  s->channels.Ku[1] = 1.0f;  // 1.25 mV per code
  s->SignalData.at(1, 1) = 100;
  s->SignalData.at(1000, 1) = 200;
  s->ViewFirst = 300;
  s->ViewLast = 400;
  s->SignalMaxValue[1] = 300;
  s->SignalMeanValue[1] = 150;
  s->SignalCurrentValue[1] = 3;
  s->channels.Type[1] = 5;
  SetChannelUnit(*s, 100);
  const ParameterBar bar = Bar(5);
  ASSERT_EQ(bar.panels.size(), 5u);
  EXPECT_EQ(bar.panels[0].text, QStringLiteral("Начальное: ") + FormatStandard(125) + QStringLiteral(" мВ "));
  EXPECT_EQ(bar.panels[1].text, QStringLiteral("Конечное: ") + FormatStandard(250) + QStringLiteral(" мВ "));
  EXPECT_EQ(bar.panels[2].text, QStringLiteral("Максимальное: ") + FormatStandard(375) + QStringLiteral(" мВ "));
  EXPECT_EQ(bar.panels[3].text, QStringLiteral("Среднее: ") + FormatStandard(187) + QStringLiteral(" мВ "));
  // The current value keeps its decimals even at divisor 1.
  EXPECT_EQ(bar.panels[4].text, QStringLiteral("Текущее: ") + FormatStandard(3.75) + QStringLiteral(" мВ "));
  EXPECT_EQ(Bar(6).panels.size(), 5u);
  EXPECT_EQ(Bar(7).panels.size(), 4u);
}

TEST_F(ParameterBarTest, LevelsKeepTwoDecimalsAboveDivisorOne) {
  s->channels.Ku[1] = 1.0f;
  s->SignalMaxValue[1] = 1001;  // 1251.25 mV
  s->channels.Type[1] = 4;
  SetChannelUnit(*s, 10000);  // volts
  EXPECT_EQ(Bar(4).panels[0].text, QStringLiteral("Максимальное: ") + FormatStandard(1.25125) + QStringLiteral(" В "));
  s->UnitDivisor = 0.0;  // treated as 1
  EXPECT_EQ(Bar(4).panels[0].text, QStringLiteral("Максимальное: ") + FormatStandard(1251) + QStringLiteral(" В "));
  EXPECT_EQ(s->UnitDivisor, 1.0);
}

TEST_F(ParameterBarTest, GainIsNotTakenOutOfThePanelValue) {
  s->channels.Ku[1] = 1.0f;
  s->channels.Volume[1] = 2;
  s->channels.Zero[1] = 1;  // 16 mV at gain 16
  s->SignalMaxValue[1] = 100;
  s->channels.Type[1] = 4;
  SetChannelUnit(*s, 100);
  EXPECT_EQ(Bar(4).panels[0].text, QStringLiteral("Максимальное: ") + FormatStandard(109) + QStringLiteral(" мВ "));
}

TEST(ParameterTable, OneLinePerKindOfChannel) {
  auto s = MakeState(100);
  ParameterReadings r;
  r.BandMax = {40, 12, 0, 0};
  r.BandMean = {30, 0, 0, 0};
  s->channels.Type[1] = 0;
  EXPECT_EQ(ParameterTableText(*s, r, {}), FormatStandard(12) + QStringLiteral(" мкм"));
  s->channels.Type[1] = 1;
  EXPECT_EQ(ParameterTableText(*s, r, {}), FormatStandard(40) + QStringLiteral(" мкм"));
  s->options.parameters.SignalParameterMax = false;
  EXPECT_EQ(ParameterTableText(*s, r, {}), FormatStandard(30) + QStringLiteral(" мкм"));
  s->channels.Type[1] = 3;
  EXPECT_EQ(ParameterTableText(*s, r, RotorSpeed{80, 85, 96, 102}),
            FormatStandard(80) + QStringLiteral("-") + FormatStandard(85) + QStringLiteral(" об/мин (96-102%) "));
  s->channels.Type[1] = 5;
  s->channels.Ku[1] = 1.0f;
  s->SignalMaxValue[1] = 4000;  // 5000 mV: volts
  EXPECT_EQ(ParameterTableText(*s, r, {}), FormatStandard(5) + QStringLiteral(" В"));
}

}  // namespace
}  // namespace aqx
