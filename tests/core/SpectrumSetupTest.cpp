// The spectrum analyser settings' rule and Apply, the probe and filter grids,
// and the vibration grade limits.

#include "core/ConfigKeys.h"
#include "core/Evaluation.h"
#include "core/FrequencyTables.h"
#include "core/Settings.h"
#include "core/SpectrumSetup.h"

#include <gtest/gtest.h>

#include <memory>

namespace aqx {
namespace {

const QLocale kRu(QLocale::Russian, QLocale::Russia);

TEST(SpectrumSetup, StepAndLinesFollowTheBlockOrTheRecord) {
  // A block longer than the record: one transform over the record.
  const auto longBlock = StepAndLines(2048, 1024, 2677.0);
  ASSERT_TRUE(longBlock);
  EXPECT_DOUBLE_EQ(longBlock->StepDesc, 2677.0 / 1024);
  EXPECT_EQ(longBlock->SpectrLineCount, 512);
  const auto shortBlock = StepAndLines(512, 32768, 1000.0);
  ASSERT_TRUE(shortBlock);
  EXPECT_DOUBLE_EQ(shortBlock->StepDesc, 1000.0 / 512);
  EXPECT_EQ(shortBlock->SpectrLineCount, 256);
  // Odd records round half to even: 1001 samples give 500 lines.
  EXPECT_EQ(StepAndLines(4096, 1001, 1000.0)->SpectrLineCount, 500);
  EXPECT_FALSE(StepAndLines(0, 1024, 1000.0));
  EXPECT_FALSE(StepAndLines(512, 0, 1000.0));
}

TEST(SpectrumSetup, ListsAndBoxTexts) {
  const QStringList blocks = BlockSizeTexts();
  EXPECT_EQ(blocks.front(), QStringLiteral("Нет"));
  EXPECT_EQ(blocks.back(), QStringLiteral("1048576"));
  EXPECT_EQ(BlockSizeOfText(QStringLiteral("Нет")), 0);
  EXPECT_EQ(BlockSizeOfText(QStringLiteral("4096")), 4096);
  EXPECT_FALSE(BlockSizeOfText(QStringLiteral("4000")));
  EXPECT_EQ(blocks[BlockSizeIndex(4096)], QStringLiteral("4096"));
  EXPECT_EQ(blocks[BlockSizeIndex(3000)], QStringLiteral("4096"));
  EXPECT_EQ(BlockSizeIndex(0), 0);
  EXPECT_EQ(SmoothingWindowNames().size(), kSmoothingWindowCount);

  EXPECT_DOUBLE_EQ(AlphaOfText(QStringLiteral("12,5"), kRu), 9.0);
  EXPECT_DOUBLE_EQ(AlphaOfText(QStringLiteral("2,5"), kRu), 2.5);
  EXPECT_DOUBLE_EQ(AlphaOfText(QStringLiteral("abc"), kRu), 0.0);
  EXPECT_EQ(AlphaText(9.0, kRu), QStringLiteral("9,0000"));
  EXPECT_EQ(OverlapOfText(QStringLiteral("150")), 99);
  EXPECT_EQ(OverlapOfText(QStringLiteral("99999999999")), 99);
  EXPECT_EQ(OverlapOfText(QStringLiteral("5x")), 0);
  EXPECT_EQ(OverlapOfText(QStringLiteral("75")), 75);
}

TEST(SpectrumSetup, ApplyPicksTheBlockInForceAndStoresTheKeys) {
  auto s = std::make_unique<AppState>();
  s->SignalDataN = 1024;
  s->FreqDesc = 1000;
  MemorySettingsStore store;
  SpectrumAnalyserChoice choice{2048, 512, 6, 3.5, 75};
  ApplySpectrumAnalyser(*s, store, choice, false);
  EXPECT_EQ(s->BlockSizeFFT, 2048);
  EXPECT_DOUBLE_EQ(s->StepDesc, 1000.0 / 1024);
  EXPECT_EQ(s->SpectrLineCount, 512);
  EXPECT_EQ(store.get(QStringLiteral("Config"), QStringLiteral("SmoothingWindow"), {}), QStringLiteral("6"));
  EXPECT_EQ(store.get(QStringLiteral("Config"), QStringLiteral("Overlapping"), {}), QStringLiteral("75"));
  EXPECT_EQ(store.get(QStringLiteral("Config"), QStringLiteral("BlockSizeFFTr"), {}), QStringLiteral("512"));
  // While a run is on the run's block is in force.
  ApplySpectrumAnalyser(*s, store, choice, true);
  EXPECT_EQ(s->BlockSizeFFT, 512);
  EXPECT_EQ(s->SpectrLineCount, 256);
  // "Нет" keeps the step as it was.
  const double step = s->StepDesc;
  ApplySpectrumAnalyser(*s, store, {0, 0, 0, 0.0, 0}, false);
  EXPECT_EQ(s->BlockSizeFFT, 0);
  EXPECT_DOUBLE_EQ(s->StepDesc, step);
}

std::unique_ptr<AppState> ThreeChannels() {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) {
    s->channels.Channel[c] = c <= 3 ? 1 : 0;
    s->channels.Type[c] = 1;
    s->channels.ProbeFreq[c].fill(-1.0f);
    s->channels.Filter[c].fill(-1.0f);
  }
  s->channels.Type[3] = 3;  // the shaft marker
  s->FreqRotorN = 120.0;    // 2 Hz a harmonic
  s->options.parameters.VisibleChannels = true;
  return s;
}

TEST(FrequencyTables, CellsShowAndReadInHertzOrHarmonics) {
  EXPECT_EQ(FrequencyCellText(-1.0f, false, 120.0, kRu), QString());
  EXPECT_EQ(FrequencyCellText(12.5f, false, 120.0, kRu), QStringLiteral("12,50"));
  EXPECT_EQ(FrequencyCellText(5.0f, true, 120.0, kRu), QStringLiteral("2"));  // 2.5 to even
  EXPECT_EQ(FrequencyCellText(0.0f, true, 120.0, kRu), QStringLiteral("0"));
  EXPECT_EQ(*ReadFrequencyCell(QString(), false, 120.0, kRu), -1.0f);
  EXPECT_EQ(*ReadFrequencyCell(QStringLiteral("3"), true, 120.0, kRu), 6.0f);
  EXPECT_EQ(*ReadFrequencyCell(QStringLiteral("0"), true, 120.0, kRu), 0.0f);
  EXPECT_EQ(*ReadFrequencyCell(QStringLiteral("-4"), false, 120.0, kRu), -1.0f);
  EXPECT_FALSE(ReadFrequencyCell(QStringLiteral("12a"), false, 120.0, kRu));
  EXPECT_TRUE(CellKeyAccepted(QStringLiteral("12"), QLatin1Char(','), kRu));
  EXPECT_FALSE(CellKeyAccepted(QStringLiteral("1,2"), QLatin1Char(','), kRu));
  EXPECT_FALSE(CellKeyAccepted(QStringLiteral("12"), QLatin1Char('x'), kRu));
}

TEST(FrequencyTables, TheRowAllWritesEveryShownChannelAndOnlyThose) {
  auto s = ThreeChannels();
  s->channels.ProbeFreq[5][0] = 77.0f;  // hidden: not in use
  MemorySettingsStore store;
  ScriptedPrompts prompts;
  FrequencyGrid grid = LoadFrequencyGrid(*s, FrequencyTable::Probe, false, kRu);
  ASSERT_EQ(grid.rowChannels, (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(grid.rowTitles[0], QStringLiteral("Все"));
  EXPECT_EQ(grid.columnTitles[0], QStringLiteral("F1, Гц"));
  grid.cells[0][0] = QStringLiteral("25");
  grid.cells[2][1] = QStringLiteral("7,5");
  EXPECT_EQ(ApplyProbeGrid(*s, store, prompts, grid, true, kRu), GridApply::Applied);
  for (int c = 1; c <= 3; ++c) EXPECT_EQ(s->channels.ProbeFreq[c][0], 25.0f);
  EXPECT_EQ(s->channels.ProbeFreq[2][1], 7.5f);
  EXPECT_EQ(s->channels.ProbeFreq[5][0], 77.0f);
  EXPECT_TRUE(grid.cells[0][0].isEmpty());
  EXPECT_TRUE(s->SaveProbe);
  EXPECT_EQ(store.get(QStringLiteral("ProbeFreq"), QStringLiteral("ProbeFreq2N2"), {}).replace(QLatin1Char(','), QLatin1Char('.')), QStringLiteral("7.5"));
}

TEST(FrequencyTables, UnitSwitchAndClearKeepTheTableUntilApply) {
  auto s = ThreeChannels();
  s->channels.ProbeFreq[1][0] = 6.0f;
  FrequencyGrid grid = LoadFrequencyGrid(*s, FrequencyTable::Probe, false, kRu);
  ASSERT_TRUE(SwitchGridUnit(grid, true, s->FreqRotorN, kRu));
  EXPECT_EQ(grid.cells[1][0], QStringLiteral("3"));
  EXPECT_EQ(grid.columnTitles[0], QStringLiteral("N1"));
  ClearGrid(grid);
  EXPECT_EQ(s->channels.ProbeFreq[1][0], 6.0f);
  grid.cells[1][0] = QStringLiteral("4x");
  EXPECT_FALSE(SwitchGridUnit(grid, false, s->FreqRotorN, kRu));
  EXPECT_TRUE(grid.harmonic);
}

TEST(FrequencyTables, LettersInACellAreToldAndNothingChanges) {
  auto s = ThreeChannels();
  MemorySettingsStore store;
  ScriptedPrompts prompts;
  FrequencyGrid grid = LoadFrequencyGrid(*s, FrequencyTable::Filter, false, kRu);
  grid.cells[1][0] = QStringLiteral("10");
  grid.cells[2][3] = QStringLiteral("abc");
  EXPECT_EQ(ApplyFilterGrid(*s, store, prompts, grid, false, kRu), GridApply::Refused);
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("abc")));
  EXPECT_EQ(s->channels.Filter[1][0], -1.0f);
  EXPECT_FALSE(FilterTableActive(*s));
}

TEST(FrequencyTables, FilterBandWithLowAboveHighIsRefused) {
  auto s = ThreeChannels();
  MemorySettingsStore store;
  ScriptedPrompts prompts;
  FrequencyGrid grid = LoadFrequencyGrid(*s, FrequencyTable::Filter, false, kRu);
  grid.cells[1][0] = QStringLiteral("200");
  grid.cells[1][1] = QStringLiteral("50");
  EXPECT_EQ(ApplyFilterGrid(*s, store, prompts, grid, false, kRu), GridApply::Refused);
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("ФВЧ")));
  EXPECT_EQ(s->channels.Filter[1][0], -1.0f);
}

TEST(FrequencyTables, TheMarkerChannelQuestion) {
  auto s = ThreeChannels();
  MemorySettingsStore store;
  {
    ScriptedPrompts prompts;
    prompts.answers = {PromptAnswer::Cancel};
    FrequencyGrid grid = LoadFrequencyGrid(*s, FrequencyTable::Filter, false, kRu);
    grid.cells[0][1] = QStringLiteral("100");  // "Все": the marker too
    EXPECT_EQ(ApplyFilterGrid(*s, store, prompts, grid, false, kRu), GridApply::Cancelled);
    EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Фильтровать сигнал отметчика?"));
    EXPECT_FALSE(FilterTableActive(*s));
  }
  ScriptedPrompts prompts;
  prompts.answers = {PromptAnswer::No};
  FrequencyGrid grid = LoadFrequencyGrid(*s, FrequencyTable::Filter, false, kRu);
  grid.cells[0][1] = QStringLiteral("100");
  EXPECT_EQ(ApplyFilterGrid(*s, store, prompts, grid, true, kRu), GridApply::Applied);
  EXPECT_EQ(s->channels.Filter[1][1], 100.0f);
  EXPECT_EQ(s->channels.Filter[3][1], -1.0f);
  EXPECT_TRUE(FilterTableActive(*s));
  EXPECT_TRUE(s->SaveFilter);
}

TEST(Evaluation, FirstClassFollowsItsLines) {
  const auto at1 = AccountEvaluation(1.0f, 0);
  EXPECT_EQ(at1[4], QStringLiteral("< 50"));
  EXPECT_EQ(at1[3], QStringLiteral("< 100"));
  EXPECT_EQ(at1[2], QStringLiteral("< 140"));
  EXPECT_EQ(at1[1], QStringLiteral("< 180"));
  EXPECT_EQ(at1[0], QStringLiteral("> 180"));
  EXPECT_EQ(AccountEvaluation(13.0f, 0)[4], QStringLiteral("0"));
  EXPECT_EQ(AccountEvaluation(7.0f, 0)[4], QStringLiteral("< 25"));
  EXPECT_FALSE(AccountEvaluation(30.0f, 0)[3].isEmpty());
  const auto above = AccountEvaluation(30.5f, 0);
  EXPECT_EQ(above[0], QStringLiteral("40"));
  EXPECT_TRUE(above[1].isEmpty());
  EXPECT_EQ(AccountEvaluation(0.5f, 0)[0], QStringLiteral("180"));
  EXPECT_TRUE(AccountEvaluation(301.0f, 0)[0].isEmpty());
  for (float f : {0.0f, -5.0f})
    for (int option = 0; option < kEvaluationClassCount; ++option)
      for (const QString& text : AccountEvaluation(f, option)) EXPECT_TRUE(text.isEmpty());
}

TEST(Evaluation, StatorClassesAndTheExactHundred) {
  EXPECT_EQ(AccountEvaluation(42.0f, 1)[0], QStringLiteral("> 100"));
  EXPECT_EQ(AccountEvaluation(100.0f, 2)[2], QStringLiteral("< 30(50)"));
  EXPECT_EQ(AccountEvaluation(100.1f, 2)[2], QStringLiteral("< 80"));
  EXPECT_EQ(AccountEvaluation(100.1f, 2)[0], QStringLiteral("> 180"));
}

}  // namespace
}  // namespace aqx
