// The edit commands on known samples, and their undo: a hash of the whole
// store must come back byte for byte.

#include "views/edit/EditHistory.h"
#include "views/edit/SignalEdit.h"

#include "RotorTestSupport.h"
#include "SignalTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string_view>

namespace aqx::views {
namespace {

using testing_views::MakeState;

// FNV-1a over every byte of the store.
uint64_t StoreHash(const AppState& s) {
  uint64_t h = 1469598103934665603ull;
  const auto* bytes = reinterpret_cast<const unsigned char*>(s.SignalData.data());
  for (size_t i = 0; i < SampleStore::kBytes; ++i) h = (h ^ bytes[i]) * 1099511628211ull;
  return h;
}

std::unique_ptr<AppState> Ramp(int samples) {
  auto s = MakeState(samples);
  for (int k = 1; k <= samples; ++k) s->SignalData.at(k, 1) = static_cast<int16_t>(k);
  return s;
}

std::vector<int> Channel1(const AppState& s, int first, int last) {
  std::vector<int> codes;
  for (int k = first; k <= last; ++k) codes.push_back(s.SignalData.at(k, 1));
  return codes;
}

void Select(AppState& s, int first, int last) {
  s.SelectFirst = first;
  s.SelectLast = last;
}

TEST(SignalEdit, SmoothDrawsALineThatStopsOneStepShortOfItsEnd) {
  auto s = Ramp(16);
  s->SignalData.at(5, 1) = 100;
  s->SignalData.at(6, 1) = 201;
  Select(*s, 5, 6);
  ScriptedPrompts prompts;
  EditHistory history;
  ASSERT_EQ(SignalSmoothly(*s, prompts, history), EditResult::Changed);
  EXPECT_EQ(s->SignalData.at(5, 1), 100);
  EXPECT_EQ(s->SignalData.at(6, 1), 150);  // 100 + 101/2 = 150.5, half to even
  EXPECT_EQ(s->SelectFirst, 0);
  EXPECT_FALSE(s->DataSaved);
  // The whole record, from its first to its last sample: 1 .. 16 becomes
  // 1 + (16-1)/16 per step.
  auto whole = Ramp(16);
  Select(*whole, 1, 16);
  SignalSmoothly(*whole, prompts, history);
  EXPECT_EQ(whole->SignalData.at(1, 1), 1);
  EXPECT_EQ(whole->SignalData.at(16, 1), RoundHalfEven(1 + 15 * 15.0 / 16));
}

TEST(SignalEdit, ZeroWritesRawCodeZeroAndKeepsTheSelection) {
  auto s = Ramp(10);
  s->channels.Zero[1] = 500;
  Select(*s, 9, 10);
  ScriptedPrompts prompts;
  EditHistory history;
  SignalZero(*s, prompts, history);
  EXPECT_EQ(Channel1(*s, 7, 10), (std::vector<int>{7, 8, 0, 0}));
  EXPECT_EQ(s->SelectFirst, 9);
  EXPECT_EQ(s->SelectLast, 10);
}

TEST(SignalEdit, CutRemovesTheStretchInEveryChannelAndRaisesTheRate) {
  auto s = Ramp(8);
  s->channels.Channel[2] = 1;  // in use but not shown: cut all the same
  for (int k = 1; k <= 8; ++k) s->SignalData.at(k, 2) = static_cast<int16_t>(10 * k);
  s->FreqDesc = 1000;
  Select(*s, 3, 4);
  ScriptedPrompts prompts;
  EditHistory history;
  ASSERT_EQ(SignalDelete(*s, prompts, history), EditResult::Changed);
  ASSERT_EQ(prompts.messages().size(), 1u);
  EXPECT_EQ(prompts.messages()[0].text, QStringLiteral("Удалить выделенный диапазон во всех каналах?"));
  // 1 2 5 6 7 8 stretched to 8 rows by nearest sample, in order.
  EXPECT_EQ(Channel1(*s, 1, 8), (std::vector<int>{1, 2, 2, 5, 6, 6, 7, 8}));
  EXPECT_EQ(s->SignalData.at(8, 2), 80);
  EXPECT_EQ(s->SignalDataN, 8);
  EXPECT_EQ(s->FreqDesc, 1333);
  EXPECT_DOUBLE_EQ(s->StepDesc, 1333.0 / 8);
  EXPECT_EQ(s->SelectFirst, 0);
}

TEST(SignalEdit, CutAnsweredNoStillChangesTheRateAndTheWholeRecordIsRefused) {
  auto s = Ramp(8);
  const uint64_t before = StoreHash(*s);
  Select(*s, 1, 2);
  ScriptedPrompts prompts;
  prompts.answers = {PromptAnswer::No};
  EditHistory history;
  SignalDelete(*s, prompts, history);
  EXPECT_EQ(StoreHash(*s), before);
  EXPECT_EQ(s->FreqDesc, 1333);
  EXPECT_EQ(s->SelectFirst, 0);
  EXPECT_FALSE(s->DataSaved);

  auto whole = Ramp(8);
  Select(*whole, 1, 8);
  ScriptedPrompts refused;
  EXPECT_EQ(SignalDelete(*whole, refused, history), EditResult::Nothing);
  EXPECT_EQ(whole->FreqDesc, 1000);
  EXPECT_EQ(whole->SelectLast, 8);
  EXPECT_TRUE(whole->DataSaved);
  EXPECT_EQ(refused.messages().size(), 1u);
}

TEST(SignalEdit, MemoriseAndPasteTruncateAtTheEndOnlyWhenTheUserAgrees) {
  auto s = Ramp(10);
  ScriptedPrompts prompts;
  EditHistory history;
  SignalClipboard clipboard;
  Select(*s, 1, 4);
  EXPECT_EQ(SignalMemory(*s, prompts, clipboard), EditResult::Refreshed);
  EXPECT_EQ(clipboard, (SignalClipboard{1, 2, 3, 4}));
  Select(*s, 9, 9);
  prompts.answers = {PromptAnswer::No};
  EXPECT_EQ(SignalPaste(*s, prompts, clipboard, history), EditResult::Nothing);
  EXPECT_EQ(Channel1(*s, 9, 10), (std::vector<int>{9, 10}));
  EXPECT_EQ(SignalPaste(*s, prompts, clipboard, history), EditResult::Changed);  // Yes
  EXPECT_EQ(Channel1(*s, 8, 10), (std::vector<int>{8, 1, 2}));
  EXPECT_EQ(s->SelectFirst, 9);
  EXPECT_EQ(SignalPaste(*s, prompts, SignalClipboard{}, history), EditResult::Nothing);
}

TEST(SignalEdit, WithoutASelectionNothingChangesAndTheUserIsTold) {
  auto s = Ramp(10);
  const uint64_t before = StoreHash(*s);
  ScriptedPrompts prompts;
  EditHistory history;
  SignalClipboard clipboard{5, 5};
  EXPECT_EQ(SignalDelete(*s, prompts, history), EditResult::Nothing);
  EXPECT_EQ(SignalSmoothly(*s, prompts, history), EditResult::Nothing);
  EXPECT_EQ(SignalZero(*s, prompts, history), EditResult::Nothing);
  EXPECT_EQ(SignalPaste(*s, prompts, clipboard, history), EditResult::Nothing);
  EXPECT_EQ(StoreHash(*s), before);
  EXPECT_EQ(s->FreqDesc, 1000);
  EXPECT_TRUE(s->DataSaved);
  EXPECT_EQ(prompts.messages().size(), 4u);
  EXPECT_FALSE(history.canUndo(*s));
}

TEST(SignalEdit, ShiftAngleIsANumberFromMinus360To360) {
  EXPECT_EQ(ParseShiftAngle(QStringLiteral("-360")), -360.0);
  EXPECT_EQ(ParseShiftAngle(QStringLiteral(" 360 ")), 360.0);
  EXPECT_EQ(ParseShiftAngle(QStringLiteral("90.5")), 90.5);
  EXPECT_FALSE(ParseShiftAngle(QStringLiteral("361")));
  EXPECT_FALSE(ParseShiftAngle(QStringLiteral("400")));
  EXPECT_FALSE(ParseShiftAngle(QStringLiteral("abc")));
}

TEST(SignalEdit, ShiftByAQuarterTurnMovesTheSignalAndUndoBringsItBack) {
  auto s = testing_views::RotorRecording(8, 200, 6, [](int) { return 1.0; });
  const uint64_t before = StoreHash(*s);
  ScriptedPrompts prompts;
  EditHistory history;
  prompts.texts = {QStringLiteral("abc"), QStringLiteral("400")};
  EXPECT_EQ(SignalShift(*s, prompts, history), EditResult::Nothing);
  EXPECT_EQ(SignalShift(*s, prompts, history), EditResult::Nothing);
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Значение угла должно находится в диапазоне от -360 до 360."));
  EXPECT_EQ(StoreHash(*s), before);
  EXPECT_EQ(s->options.signal.Corner, 0.0);

  prompts.texts = {QStringLiteral("90")};
  ASSERT_EQ(SignalShift(*s, prompts, history), EditResult::Changed);
  EXPECT_EQ(s->options.signal.Corner, 90.0);
  ASSERT_GE(s->ShaftMarkCount, 3);
  // Within a revolution of 1600 samples a quarter turn delays by 400.
  auto original = testing_views::RotorRecording(8, 200, 6, [](int) { return 1.0; });
  const int from = s->ShaftMarks[1];
  const int turn = s->ShaftMarks[2] - from;
  ASSERT_EQ(turn, 1600);
  int moved = 0;
  for (int i = 0; i < turn; ++i) {
    const int c = testing_views::kRotorTurn;
    moved += s->SignalData.at(from + (i + 400) % turn, c) == original->SignalData.at(from + i, c) ? 1 : 0;
  }
  EXPECT_EQ(moved, turn);
  EXPECT_TRUE(history.undo(*s));
  EXPECT_EQ(StoreHash(*s), before);
  EXPECT_TRUE(s->DataSaved);
}

TEST(SignalEdit, ReAccountCutsToWholeRevolutionsAndUndoes) {
  auto s = testing_views::RotorRecording(8, 50, 6, [](int) { return 1.0; });
  const uint64_t before = StoreHash(*s);
  const int rate = s->FreqDesc;
  ScriptedPrompts prompts;
  EditHistory history;
  ASSERT_EQ(SetupReAccount(*s, prompts, history), EditResult::Changed);
  EXPECT_GT(s->FreqDesc, rate);
  EXPECT_FALSE(s->DataSaved);
  EXPECT_TRUE(history.undo(*s));
  EXPECT_EQ(StoreHash(*s), before);
  EXPECT_EQ(s->FreqDesc, rate);

  auto noMarks = Ramp(100);
  EXPECT_EQ(SetupReAccount(*noMarks, prompts, history), EditResult::Refreshed);
  EXPECT_EQ(noMarks->FreqDesc, 1000);
  EXPECT_FALSE(history.canUndo(*noMarks));
}

// Twenty edits of every kind on a full store of 32 channels, then twenty
// undos: the store, the rate, the selection and the saved flag come back
// exactly; twenty redos give the edited recording again.
TEST(EditHistory, TwentyEditsAndTwentyUndosOnAFullStoreMillion) {
  auto s = MakeState(kMaxSamples);
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = s->channels.Active[c] = 1;
  RecountChannelUsedCount(*s);
  for (int k = 1; k <= kMaxSamples; ++k)
    for (int c = 1; c <= kMaxChannels; ++c) s->SignalData.at(k, c) = static_cast<int16_t>((k * 7 + c * 131) % 4001 - 2000);
  const uint64_t original = StoreHash(*s);
  ScriptedPrompts prompts;
  EditHistory history;
  SignalClipboard clipboard;
  for (int edit = 0; edit < 20; ++edit) {
    const int first = edit % 5 == 0 ? 1 : 1 + edit * 40000;
    const int last = edit % 5 == 1 ? kMaxSamples : first + 30000;
    Select(*s, first, last);
    s->FirstChannelActive = 1 + edit % kMaxChannels;
    // Two of them cut all 32 channels, which keeps the whole store aside.
    switch (edit == 2 || edit == 12 ? 2 : edit % 4 == 2 ? 1 : edit % 4) {
      case 0: SignalZero(*s, prompts, history); break;
      case 1: SignalSmoothly(*s, prompts, history); break;
      case 2: SignalDelete(*s, prompts, history); break;
      default:
        SignalMemory(*s, prompts, clipboard);
        Select(*s, kMaxSamples - 100, kMaxSamples);
        SignalPaste(*s, prompts, clipboard, history);
    }
  }
  const uint64_t edited = StoreHash(*s);
  const EditValues after = EditValues::Of(*s);
  ASSERT_EQ(history.undoCount(), 20u);
  ASSERT_NE(edited, original);
  for (int k = 0; k < 20; ++k) ASSERT_TRUE(history.undo(*s));
  EXPECT_FALSE(history.canUndo(*s));
  EXPECT_EQ(StoreHash(*s), original);
  EXPECT_EQ(s->FreqDesc, 1000);
  // The selection as the first edit found it.
  EXPECT_EQ(s->SelectFirst, 1);
  EXPECT_EQ(s->SelectLast, 30001);
  EXPECT_TRUE(s->DataSaved);
  for (int k = 0; k < 20; ++k) ASSERT_TRUE(history.redo(*s));
  EXPECT_EQ(StoreHash(*s), edited);
  EXPECT_EQ(s->FreqDesc, after.FreqDesc);
  EXPECT_EQ(s->SelectLast, after.SelectLast);
  EXPECT_FALSE(s->DataSaved);
}

TEST(EditHistory, KeepsTheLastStepsAndForgetsThemWhenTheSamplesAreReplaced) {
  auto s = Ramp(100);
  ScriptedPrompts prompts;
  EditHistory history(3);
  for (int k = 1; k <= 5; ++k) {
    Select(*s, k, k);
    SignalZero(*s, prompts, history);
  }
  EXPECT_EQ(history.undoCount(), 3u);
  EXPECT_LE(history.codeBytes(), 3 * 8u);  // one code a step, packed
  history.undo(*s);
  EXPECT_TRUE(history.canRedo(*s));
  // A new edit takes another road: redo is gone.
  Select(*s, 50, 50);
  SignalZero(*s, prompts, history);
  EXPECT_FALSE(history.canRedo(*s));
  // A load replaces the samples: nothing of before can be undone.
  s->SignalData.markWritten();
  EXPECT_FALSE(history.canUndo(*s));
}

TEST(EditHistory, TheSavedFlagFollowsTheSave) {
  auto s = Ramp(100);
  ScriptedPrompts prompts;
  EditHistory history;
  Select(*s, 10, 20);
  SignalZero(*s, prompts, history);
  s->DataSaved = true;  // saved with the zeros
  Select(*s, 30, 40);
  SignalZero(*s, prompts, history);
  history.undo(*s);
  EXPECT_TRUE(s->DataSaved);  // back at what the file holds
  history.undo(*s);
  EXPECT_FALSE(s->DataSaved);  // before the zeros the file has
  history.redo(*s);
  EXPECT_TRUE(s->DataSaved);
}

TEST(SignalEdit, ValuesTextHasTheHeaderAndOneLinePerSample) {
  auto s = Ramp(3000);
  s->object.Station = QStringLiteral("Саяно-Шушенская");
  s->object.Agregat = 4;
  s->channels.Place[1] = QStringLiteral("ТП");
  s->channels.Ku[1] = 2.5f;  // a code reads 0.5
  s->SignalOffset[1] = 1;
  const QStringList types = {QStringLiteral("Нет"), QStringLiteral("Биение")};
  Select(*s, 2, 4);
  const std::optional<QString> one = SignalValuesText(*s, types, QStringLiteral("500 об/мин"));
  ASSERT_TRUE(one);
  const QStringList lines = one->split(QStringLiteral("\r\n"));
  EXPECT_TRUE(lines[0].startsWith(QStringLiteral("Aquilonix v")));
  EXPECT_EQ(lines[1], QStringLiteral("Станция: Саяно-Шушенская"));
  EXPECT_EQ(lines[2], QStringLiteral("Гидроагрегат №4"));
  EXPECT_EQ(lines[5], QString());
  EXPECT_EQ(lines[6], QStringLiteral("Частота вращения: 500 об/мин"));
  EXPECT_EQ(lines[7], QStringLiteral("Тип измерения: Биение"));
  EXPECT_EQ(lines[8], QStringLiteral("Место: ТП"));
  EXPECT_EQ(lines.mid(10, 3), (QStringList{QStringLiteral("0.5"), QStringLiteral("1"), QStringLiteral("1.5")}));

  // Overlaid: every active channel in its column.
  s->Imposition = true;
  s->channels.Channel[2] = s->channels.Active[2] = 1;
  s->channels.Ku[2] = 1.25f;
  for (int k = 1; k <= 3000; ++k) s->SignalData.at(k, 2) = -7;
  Select(*s, 0, 0);
  int calls = 0;
  const std::optional<QString> both = SignalValuesText(*s, types, QString(), [&](int done, int total) {
    ++calls;
    EXPECT_EQ(total, 3000);
    return done < 2048;  // cancelled after the second block
  });
  EXPECT_FALSE(both);
  EXPECT_EQ(calls, 2);
  const QStringList all = SignalValuesText(*s, types, QString())->split(QStringLiteral("\r\n"));
  EXPECT_EQ(all[7], QStringLiteral("Тип измерения: Биение\tБиение"));
  EXPECT_EQ(all[10], QStringLiteral("0\t-7"));
  EXPECT_EQ(all.size(), 10 + 3000 + 1);
}

}  // namespace
}  // namespace aqx::views
