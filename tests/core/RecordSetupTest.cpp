#include "core/RecordSetup.h"

#include "core/Settings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace aqx {
namespace {

void UseChannels(AppState& s, int count) {
  for (int c = 1; c <= kMaxChannels; ++c) s.channels.Channel[c] = c <= count ? 1 : 0;
  RecountChannelUsedCount(s);
}

TEST(RecordRates, FourPolesAtFiftyHertzTurnAtFifteenHundred) {
  const auto r = AccountRotorRates(4, 50, 16, 32768, 0.25, 4);
  ASSERT_TRUE(r);
  EXPECT_DOUBLE_EQ(r->freqRotorN, 1500.0);
  EXPECT_DOUBLE_EQ(r->firstHarmonicHz, 25.0);
  EXPECT_DOUBLE_EQ(r->revolutionSeconds, 0.04);
  EXPECT_DOUBLE_EQ(r->spectrumStepHz, 1500.0 / 16 / 60);
  // 16 revolutions of 0.04 s hold 32768 samples: 51200 Hz per channel.
  EXPECT_EQ(r->freqDescR, 51200);
  EXPECT_DOUBLE_EQ(r->cycleSeconds, 0.64);
  EXPECT_EQ(r->moduleRateHz, 204800);
  EXPECT_FALSE(r->moduleRateOk);
  // 0.25 s of 51200 Hz is 12800 rows: the power of two below.
  EXPECT_EQ(r->bufferLength, 8192);
}

TEST(RecordRates, RoundsHalfToEvenAndNeverBelowOneHertz) {
  // 72 poles at 50 Hz: 83.33 rev/min; 17 revolutions in 512 samples.
  const auto slow = AccountRotorRates(72, 50, 524288, 512, 0.25, 1);
  ASSERT_TRUE(slow);
  EXPECT_EQ(slow->freqDescR, 1);
  // 120 poles at 50 Hz: 50 rev/min, 1.2 s a revolution; 2 revolutions in
  // 1024 samples give 426.67 Hz, and 3 in 1024 give 284.44 Hz.
  EXPECT_EQ(AccountRotorRates(120, 50, 2, 1024, 0.25, 1)->freqDescR, 427);
  EXPECT_EQ(AccountRotorRates(120, 50, 3, 1024, 0.25, 1)->freqDescR, 284);
  // 2 poles at 1 Hz: one revolution a second, so halves are exact.
  EXPECT_EQ(AccountRotorRates(2, 1, 2, 5, 0.25, 1)->freqDescR, 2);
  EXPECT_EQ(AccountRotorRates(2, 1, 2, 7, 0.25, 1)->freqDescR, 4);
  EXPECT_FALSE(AccountRotorRates(0, 50, 16, 1024, 0.25, 1));
  EXPECT_FALSE(AccountRotorRates(4, 0, 16, 1024, 0.25, 1));
  EXPECT_FALSE(AccountRotorRates(4, 50, 0, 1024, 0.25, 1));
}

TEST(RecordRates, ModuleLimitsAreInclusive) {
  // 2 poles, 50 Hz: 50 rev/s. 1 revolution of 2000 samples = 100000 Hz.
  EXPECT_TRUE(AccountRotorRates(2, 50, 1, 2000, 0.25, 1)->moduleRateOk);
  EXPECT_FALSE(AccountRotorRates(2, 50, 1, 2002, 0.25, 1)->moduleRateOk);
  // 122 Hz exactly: 50 revolutions are one second.
  EXPECT_TRUE(AccountRotorRates(2, 50, 50, 122, 0.25, 1)->moduleRateOk);
  EXPECT_FALSE(AccountRotorRates(2, 50, 50, 121, 0.25, 1)->moduleRateOk);
}

TEST(RecordRates, SliderRunsFromTheClockOverEightyDownTo122Hertz) {
  EXPECT_EQ(FreqADCAt(1), 100000);
  EXPECT_EQ(FreqADCAt(6), 32000);
  EXPECT_EQ(FreqADCAt(31), 122);  // 8 MHz / 65535 = 122.07
  EXPECT_EQ(FreqSliderPosition(32000), 6);
  EXPECT_EQ(FreqSliderPosition(122), 31);
  EXPECT_EQ(FreqSliderPosition(99999), 1);
  EXPECT_EQ(SolidFreqDescR(100000, 3), 33333);
  EXPECT_EQ(SolidFreqDescR(122, 200), 1);
}

TEST(RecordRates, TimeTextsAndTheDiskEstimate) {
  EXPECT_EQ(TimeText(0.4), QString());
  EXPECT_EQ(TimeText(3661), QStringLiteral(" 1 ч 1 мин 1 сек"));
  EXPECT_EQ(TimeText(90061), QStringLiteral(" 1 дн 1 ч 1 мин 1 сек"));
  DiskSpace full{1024.0 * 1024 * 1024, 0.0, true};
  const QStringList lines = DiskEstimateLines(full, 1000, 2, QLocale::c());
  ASSERT_EQ(lines.size(), 7);
  EXPECT_EQ(lines[2], QStringLiteral("Свободно: 0 байт ( 0 сек)"));
  EXPECT_EQ(lines[3], QStringLiteral("Скорость: 1.95 Кб/сек"));
  // 1048576 rows at 500 Hz a channel: 2097 s.
  EXPECT_EQ(lines[6], QStringLiteral("Продолжительность блока:  34 мин 57 сек"));
}

TEST(RecordRates, ContinuousFileNameLosesAFileNamePartOfTheFolder) {
  QTemporaryDir dir;
  QFile file(dir.filePath(QStringLiteral("old.aqx")));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.close();
  EXPECT_EQ(SolidFilePath(dir.path(), QStringLiteral("  run ")), QDir(dir.path()).filePath(QStringLiteral("run.aqx")));
  EXPECT_EQ(SolidFilePath(file.fileName(), QStringLiteral("run")), QDir(dir.path()).filePath(QStringLiteral("run.aqx")));
}

struct ApplyFixture : ::testing::Test {
  std::unique_ptr<AppState> s = std::make_unique<AppState>();
  MemorySettingsStore store;
  ScriptedPrompts prompts;
  QTemporaryDir dir;
  RecordSettingsInput in;
  void SetUp() override {
    UseChannels(*s, 4);
    in = CurrentRecordSettings(*s);
    in.polus = QStringLiteral("4");
    in.freqSety = QStringLiteral("50");
    in.numberRotorRecord = QStringLiteral("64");
    in.signalDataN = 16384;
    in.solidPath = dir.path();
  }
  RecordApply apply() { return ApplyRecordSettings(*s, store, prompts, in); }
};

TEST_F(ApplyFixture, CyclicValuesAreTakenAndStoredAndTheRecordIsDiscarded) {
  s->SignalData.at(5, 1) = 123;
  ASSERT_TRUE(apply().applied);
  EXPECT_FALSE(s->SolidMode);
  EXPECT_DOUBLE_EQ(s->FreqRotorN, 1500.0);
  EXPECT_EQ(s->FreqDescR, 6400);  // 64 revolutions of 0.04 s in 16384 rows
  EXPECT_EQ(s->FreqDesc, 6400);
  EXPECT_EQ(s->ViewLast, 16384);
  EXPECT_EQ(s->SignalData.at(5, 1), 0);
  EXPECT_EQ(store.get(QStringLiteral("Config"), QStringLiteral("Polus"), {}), QStringLiteral("4"));
  EXPECT_EQ(store.get(QStringLiteral("Config"), QStringLiteral("SignalDataN"), {}), QStringLiteral("16384"));
}

TEST_F(ApplyFixture, ContinuousTabTakesTheModuleRateOverTheChannels) {
  in.solidMode = true;
  in.freqADC = 100000;
  in.solidFileName = QStringLiteral("Запись-1");
  ASSERT_TRUE(apply().applied);
  EXPECT_TRUE(s->SolidMode);
  EXPECT_EQ(s->SignalDataN, kMaxSamples);
  EXPECT_EQ(s->FreqDescR, 25000);
  EXPECT_EQ(store.get(QStringLiteral("Config"), QStringLiteral("SolidFileName"), {}), QStringLiteral("Запись-1"));
  EXPECT_EQ(store.get(QStringLiteral("Config"), QStringLiteral("SolidMode"), {}), QStringLiteral("1"));
}

TEST_F(ApplyFixture, BadValuesAreRefusedWithTheirMessageAndChangeNothing) {
  const double speed = s->FreqRotorN;
  struct Case {
    void (*edit)(RecordSettingsInput&);
    RecordField field;
    const char* message;
  };
  const Case cases[] = {
      {[](RecordSettingsInput& i) { i.polus = QStringLiteral("abc"); }, RecordField::Polus, "Число полюсов"},
      {[](RecordSettingsInput& i) { i.polus = QStringLiteral("0"); }, RecordField::Polus, "Число полюсов"},
      {[](RecordSettingsInput& i) { i.freqSety = QStringLiteral("-5"); }, RecordField::FreqSety, "Частота сети"},
      {[](RecordSettingsInput& i) { i.numberRotorRecord = {}; }, RecordField::NumberRotorRecord, "Количество"},
      // 2 poles at 50 Hz, 1 revolution of 16384 rows: 819 kHz over 4 channels.
      {[](RecordSettingsInput& i) { i.polus = QStringLiteral("2"), i.numberRotorRecord = QStringLiteral("1"); },
       RecordField::Frequency, "Выбрана частота работы АЦП превышающая допустимое значениее - 100 кГц."},
      {[](RecordSettingsInput& i) { i.numberRotorRecord = QStringLiteral("524288"), i.signalDataN = 512; },
       RecordField::Frequency, "Выбрана частота работы АЦП меньше допустимого значения - 122 Гц."},
      {[](RecordSettingsInput& i) { i.solidMode = true, i.solidFileName = QStringLiteral("   "); },
       RecordField::SolidFileName, "Не указано имя файла данных!"},
      {[](RecordSettingsInput& i) { i.solidMode = true, i.solidFileName = QString(26, QLatin1Char('a')); },
       RecordField::SolidFileName, "Длина имени файла данных, не должна превышать 25 символов!"},
      {[](RecordSettingsInput& i) { i.solidMode = true, i.solidFileName = QStringLiteral("a/b"); },
       RecordField::SolidFileName, "Имя файла данных"},
      {[](RecordSettingsInput& i) {
         i.solidMode = true, i.solidFileName = QStringLiteral("x"), i.solidPath = QStringLiteral("/proc/1");
       },
       RecordField::SolidPath, "Запись в папку невозможна"},
  };
  for (const Case& c : cases) {
    RecordSettingsInput saved = in;
    c.edit(in);
    const RecordApply r = apply();
    EXPECT_FALSE(r.applied) << c.message;
    EXPECT_EQ(r.field, c.field) << c.message;
    EXPECT_TRUE(prompts.lastMessage().startsWith(QString::fromUtf8(c.message))) << prompts.lastMessage().toStdString();
    in = saved;
  }
  EXPECT_DOUBLE_EQ(s->FreqRotorN, speed);
  EXPECT_FALSE(s->SolidMode);
}

TEST_F(ApplyFixture, FullModuleRateIsAcceptedWhateverTheChannelCount) {
  // 100000 / 11 rounds to 9091 a channel, 100001 in all: still the module's 100 kHz.
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = c <= 11 ? 1 : 0;
  in.solidMode = true;
  in.freqADC = 100000;
  in.solidFileName = QStringLiteral("x");
  EXPECT_TRUE(apply().applied);
}

TEST_F(ApplyFixture, ANameOfTwentyFiveCharactersIsAccepted) {
  in.solidMode = true;
  in.solidFileName = QString(25, QLatin1Char('z'));
  EXPECT_TRUE(apply().applied);
}

}  // namespace
}  // namespace aqx
