// Continuous recordings: sizing on opening through the data file reader,
// block commands and controls, reading a block at a scale, failures told
// through the engine's reporter.

#include "DataFileTestSupport.h"
#include "files/DataFile.h"
#include "files/SolidFile.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

using namespace aqx;
using aqx::testing::FileBytes;

namespace {

constexpr size_t kHeader = 14173;
// Layout 11, the first with continuous recordings, has no markers.
constexpr size_t kHeaderOfLayout11 = 7169;

int16_t Code(int64_t row, int k) { return static_cast<int16_t>(row * 3 + k); }

// A continuous recording of the current layout (or layout 11): channels 2, 5
// and 9 on (or channel 1 alone), FreqADC 30000, `rows` rows behind the
// 14173 (7169) header bytes. The fields filled lie at the same offsets in both.
QByteArray SolidFile(int64_t rows, bool oneChannel = false, int minor = 12) {
  const int used = oneChannel ? 1 : 3;
  const size_t header = minor == 11 ? kHeaderOfLayout11 : kHeader;
  FileBytes b(header + static_cast<size_t>(rows * used * 2));
  b.magic().version(1, minor);
  b.i32(22, 40).i32(26, 50).i32(30, 16);  // Polus, FreqSety, NumberRotorRecord
  if (oneChannel) {
    b.i32(202, 1);
  } else {
    b.i32(202 + 4 * 1, 1).i32(202 + 4 * 4, 1).i32(202 + 4 * 8, 1);
  }
  for (int c = 0; c < 32; ++c) b.f32(2986 + 4 * static_cast<size_t>(c), 1.0f);  // Ku
  b.i32(6094, 32768).i32(6110, 32).i32(6114, 1000);
  b.i16(6138, -1).i32(6165, 30000);
  for (int64_t r = 0; r < rows; ++r)
    for (int k = 0; k < used; ++k) b.i16(header + static_cast<size_t>((r * used + k) * 2), Code(r, k));
  return b.bytes();
}

class SolidFileTest : public ::testing::Test {
 protected:
  void open(const QByteArray& bytes) {
    s.PathFileData = dir.filePath(QStringLiteral("непрерывная.aqx"));
    ASSERT_TRUE(aqx::testing::WriteFile(s.PathFileData, bytes));
    ASSERT_TRUE(ReadDataFile(s, prompts)) << prompts.lastMessage().toStdString();
  }
  QTemporaryDir dir;
  AppState s;
  ScriptedPrompts prompts;
};

}  // namespace

TEST(SolidFileRules, SizingBlocksAndScales) {
  EXPECT_EQ(SizeSolidFile(0).SignalDataN, 2);
  EXPECT_EQ(SizeSolidFile(1000).SignalDataN, 1024);
  EXPECT_EQ(SizeSolidFile(1024).SignalDataN, 2048);  // the next power of two above
  EXPECT_EQ(SizeSolidFile(1000).SolidBlockCount, 1);
  EXPECT_EQ(SizeSolidFile(1048576).SignalDataN, 1048576);
  EXPECT_EQ(SizeSolidFile(1048576).SolidBlockCount, 1);
  EXPECT_EQ(SizeSolidFile(1048577).SolidBlockCount, 2);
  EXPECT_EQ(SizeSolidFile(1048577).SignalDataN, 1048576);
  EXPECT_EQ(SizeSolidFile(int64_t{3} * 1048576 - 1).SolidBlockCount, 3);
  EXPECT_EQ(SizeSolidFile(int64_t{2400000}).SolidBlockCount, 3);
  EXPECT_EQ(SizeSolidFile(int64_t{3} * 1048576).SolidBlockCount, 3);

  EXPECT_EQ(ScaledBlockCount(5, 1), 5);
  EXPECT_EQ(ScaledBlockCount(5, 2), 3);
  EXPECT_EQ(ScaledBlockCount(5, 4), 2);
  EXPECT_EQ(ScaledBlockCount(3, 8), 1);
  EXPECT_EQ(MinimalBlockScale(1), 2);
  EXPECT_EQ(MinimalBlockScale(3), 4);
  EXPECT_EQ(MinimalBlockScale(4), 8);
}

TEST(SolidFileRules, CommandsAndControls) {
  AppState s;
  s.SolidMode = true;
  s.SolidBlockCount = 5;
  SolidBlockControls c = SolidBlockControlState(s, false);
  EXPECT_EQ(c.blockText, QStringLiteral("1 / 5"));
  EXPECT_EQ(c.scaleText, QStringLiteral("1:1"));
  EXPECT_FALSE(c.first || c.previous || c.plus || c.max);
  EXPECT_TRUE(c.next && c.last && c.minus && c.min);

  ApplySolidBlockCommand(s, SolidBlockCommand::Last);
  EXPECT_EQ(s.SolidBlockN, 5);
  c = SolidBlockControlState(s, false);
  EXPECT_TRUE(c.first && c.previous);
  EXPECT_FALSE(c.next || c.last);
  ApplySolidBlockCommand(s, SolidBlockCommand::Previous);
  EXPECT_EQ(s.SolidBlockN, 4);

  ApplySolidBlockCommand(s, SolidBlockCommand::Minus);
  EXPECT_EQ(s.SolidBlockM, 2);
  EXPECT_EQ(s.SolidBlockN, 1);
  EXPECT_EQ(SolidBlockControlState(s, false).blockText, QStringLiteral("1 / 3"));
  EXPECT_EQ(SolidBlockControlState(s, false).scaleText, QStringLiteral("1:2"));
  ApplySolidBlockCommand(s, SolidBlockCommand::Min);
  EXPECT_EQ(s.SolidBlockM, 8);
  c = SolidBlockControlState(s, false);
  EXPECT_EQ(c.blockText, QStringLiteral("1 / 1"));
  EXPECT_FALSE(c.minus || c.min || c.next);
  EXPECT_TRUE(c.plus && c.max);
  ApplySolidBlockCommand(s, SolidBlockCommand::Minus);  // already the whole file
  EXPECT_EQ(s.SolidBlockM, 8);
  ApplySolidBlockCommand(s, SolidBlockCommand::Plus);
  EXPECT_EQ(s.SolidBlockM, 4);
  ApplySolidBlockCommand(s, SolidBlockCommand::Next);
  EXPECT_EQ(s.SolidBlockN, 2);
  ApplySolidBlockCommand(s, SolidBlockCommand::Max);
  EXPECT_EQ(s.SolidBlockM, 1);
  EXPECT_EQ(s.SolidBlockN, 1);

  // While measuring, the block being written, and the group is off.
  s.SolidBlockN = 7;
  c = SolidBlockControlState(s, true);
  EXPECT_EQ(c.blockText, QStringLiteral("7"));
  EXPECT_EQ(c.scaleText, QStringLiteral("1:1"));
  EXPECT_FALSE(c.first || c.next || c.minus || c.plus || c.min || c.max);
  // An ordinary file, and a continuous one of a single block.
  s.SolidMode = false;
  c = SolidBlockControlState(s, false);
  EXPECT_EQ(c.blockText, QStringLiteral("1"));
  EXPECT_FALSE(c.first || c.next || c.minus || c.plus || c.min || c.max);
  s.SolidMode = true;
  s.SolidBlockCount = 1;
  s.SolidBlockN = 1;
  c = SolidBlockControlState(s, false);
  EXPECT_EQ(c.blockText, QStringLiteral("1"));
  EXPECT_EQ(c.scaleText, QStringLiteral("1:1"));
  EXPECT_TRUE(c.minus);
}

TEST_F(SolidFileTest, ShortFileIsOneBlockOfTheNextPowerOfTwo) {
  open(SolidFile(1000));
  EXPECT_TRUE(s.SolidMode);
  EXPECT_EQ(s.ChannelUsedCount, 3);
  EXPECT_EQ(s.SignalDataN, 1024);
  EXPECT_EQ(s.SolidBlockCount, 1);
  EXPECT_EQ(s.SolidBlockN, 1);
  EXPECT_EQ(s.SolidDataStart, 14173);
  EXPECT_EQ(s.FreqDesc, 10000);
  EXPECT_EQ(s.ViewLast, 1024);
  for (int64_t r : {0, 1, 500, 999}) {
    EXPECT_EQ(s.SignalData.at(static_cast<int>(r + 1), 2), Code(r, 0));
    EXPECT_EQ(s.SignalData.at(static_cast<int>(r + 1), 5), Code(r, 1));
    EXPECT_EQ(s.SignalData.at(static_cast<int>(r + 1), 9), Code(r, 2));
  }
  EXPECT_EQ(s.SignalData.at(1001, 2), 0);
  EXPECT_EQ(s.SignalData.at(1024, 9), 0);

  const SolidFileFigures f = DescribeSolidFile(s, 14173);
  EXPECT_EQ(f.fileBytes, 14173 + 6000);
  EXPECT_EQ(f.samplesPerChannel, 1000);
  EXPECT_EQ(f.blockCount, 1);
  EXPECT_DOUBLE_EQ(f.recordSeconds, 0.1);
}

TEST_F(SolidFileTest, ACommandThatLeavesSamplesInTheFileStillGetsTheBlock) {
  s.PathFileData = dir.filePath(QStringLiteral("непрерывная.aqx"));
  ASSERT_TRUE(aqx::testing::WriteFile(s.PathFileData, SolidFile(1000)));
  std::optional<DataFileArea> area = DataFileArea{};
  ASSERT_TRUE(ReadDataFileLeavingSamples(s, prompts, area)) << prompts.lastMessage().toStdString();
  EXPECT_FALSE(area.has_value());
  EXPECT_TRUE(s.SolidMode);
  EXPECT_EQ(s.SignalDataN, 1024);
  EXPECT_EQ(s.SignalData.at(1000, 9), Code(999, 2));
}

TEST_F(SolidFileTest, SavingTheHeaderOfAnOlderLayoutKeepsEveryRow) {
  open(SolidFile(1000, false, 11));
  ASSERT_EQ(s.SolidDataStart, static_cast<int32_t>(kHeaderOfLayout11));
  s.object.Station = QStringLiteral("Нижне-Бурейская");
  ASSERT_TRUE(SaveDataFileCommand(s, prompts)) << prompts.lastMessage().toStdString();

  // Now a file of the current layout: the header, then the same rows.
  const QByteArray saved = aqx::testing::ReadFile(s.PathFileData);
  ASSERT_EQ(saved.size(), static_cast<qsizetype>(kHeader + 1000 * 3 * 2));
  EXPECT_EQ(aqx::testing::I32At(saved, 14), 12);
  EXPECT_EQ(aqx::testing::TextAt(saved, 70, 15), QStringLiteral("Нижне-Бурейская"));
  for (int64_t r = 0; r < 1000; ++r)
    for (int k = 0; k < 3; ++k)
      ASSERT_EQ(aqx::testing::I16At(saved, kHeader + static_cast<size_t>((r * 3 + k) * 2)), Code(r, k))
          << "row " << r << " channel " << k;
  EXPECT_EQ(s.SolidDataStart, static_cast<int32_t>(kHeader));

  // And it opens with the same rows, and saves in place from now on.
  ASSERT_TRUE(ReadDataFile(s, prompts));
  EXPECT_EQ(s.SolidDataStart, static_cast<int32_t>(kHeader));
  EXPECT_EQ(s.SignalData.at(1, 2), Code(0, 0));
  EXPECT_EQ(s.SignalData.at(1000, 9), Code(999, 2));
  ASSERT_TRUE(SaveDataFileCommand(s, prompts));
  EXPECT_EQ(aqx::testing::ReadFile(s.PathFileData).size(), saved.size());
}

TEST_F(SolidFileTest, ExactlyOneMebisampleIsOneBlockAndOneMoreIsTwo) {
  open(SolidFile(1048576, true));
  EXPECT_EQ(s.SignalDataN, 1048576);
  EXPECT_EQ(s.SolidBlockCount, 1);
  EXPECT_EQ(s.SignalData.at(1048576, 1), Code(1048575, 0));

  open(SolidFile(1048577, true));
  EXPECT_EQ(s.SignalDataN, 1048576);
  EXPECT_EQ(s.SolidBlockCount, 2);
  EXPECT_EQ(SolidBlockControlState(s, false).blockText, QStringLiteral("1 / 2"));
  ASSERT_EQ(RunSolidBlockCommand(s, SolidBlockCommand::Next, prompts), 0);
  EXPECT_EQ(s.SolidBlockN, 2);
  EXPECT_EQ(s.SignalData.at(1, 1), Code(1048576, 0));
  EXPECT_EQ(s.SignalData.at(2, 1), 0);  // past the end of the file
}

TEST_F(SolidFileTest, ScaledBlockTakesEveryMthRowAtItsFrequency) {
  open(SolidFile(5000));
  s.SignalDataN = 512;  // smaller blocks make a scale worth testing
  s.SolidBlockCount = 10;
  prompts.shown.clear();
  ApplySolidBlockCommand(s, SolidBlockCommand::Minus);
  ApplySolidBlockCommand(s, SolidBlockCommand::Minus);
  ASSERT_EQ(RunSolidBlockCommand(s, SolidBlockCommand::Next, prompts), 0);
  EXPECT_EQ(s.SolidBlockM, 4);
  EXPECT_EQ(s.SolidBlockN, 2);
  EXPECT_EQ(s.FreqDesc, 2500);  // 30000 / 3 channels / 4
  EXPECT_EQ(s.FreqDescR, 2500);
  for (int i = 0; i < 512; ++i) {
    const int64_t row = 512 * 4 + int64_t{i} * 4;
    ASSERT_EQ(s.SignalData.at(i + 1, 5), row < 5000 ? Code(row, 1) : 0) << i;
  }
  // The notice was shown while reading and closed after.
  ASSERT_EQ(prompts.shown.size(), 2u);
  EXPECT_EQ(prompts.shown[0].kind, ShownPrompt::Kind::Notice);
  EXPECT_EQ(prompts.shown[0].text, QStringLiteral("Подождите, идет чтение данных ..."));
  EXPECT_EQ(prompts.shown[1].kind, ShownPrompt::Kind::Notice);
  EXPECT_TRUE(prompts.shown[1].text.isEmpty());
}

TEST_F(SolidFileTest, AFailedReadIsToldByTheReporter) {
  open(SolidFile(100));
  ASSERT_TRUE(QFile::remove(s.PathFileData));
  prompts.shown.clear();
  EXPECT_EQ(RunSolidBlockCommand(s, SolidBlockCommand::First, prompts), 35);
  ASSERT_EQ(prompts.messages().size(), 1u);
  EXPECT_EQ(prompts.messages()[0].title, QStringLiteral("Aquilonix"));
  EXPECT_EQ(prompts.messages()[0].text,
            QStringLiteral("Error #35\nНевозможно открыть файл для чтения данных!"));
}

// A continuous file refused at its block read once left its header in the
// state: the unsaved recording then passed for saved and continuous.
TEST(SolidFileRefusal, AFailedBlockReadLeavesTheUnsavedRecordingWhole) {
  QTemporaryDir dir;
  const QString solidPath = dir.filePath(QStringLiteral("непрерывная.aqx"));
  ASSERT_TRUE(aqx::testing::WriteFile(solidPath, SolidFile(5000)));
  for (const int failure : {33, 35, 36}) {
    AppState s;
    ScriptedPrompts prompts;
    s.PathFileData = dir.filePath(QStringLiteral("прежняя.aqx"));
    s.SignalDataN = 3000;
    s.FreqDesc = 2000;
    s.DataSaved = false;
    for (int i = 1; i <= kMaxSamples; i += 997) s.SignalData.at(i, 2) = static_cast<int16_t>(i);
    qputenv("AQX_VIRTUAL_FAIL", QByteArray::number(failure));
    s.PathFileData = solidPath;
    EXPECT_FALSE(ReadDataFile(s, prompts));
    qunsetenv("AQX_VIRTUAL_FAIL");
    EXPECT_FALSE(s.SolidMode) << failure;
    EXPECT_FALSE(s.DataSaved) << failure;
    EXPECT_EQ(s.SignalDataN, 3000) << failure;
    EXPECT_EQ(s.FreqDesc, 2000) << failure;
    EXPECT_EQ(s.Polus, AppState().Polus) << failure;
    bool samplesKept = true;
    for (int i = 1; i <= kMaxSamples; i += 997) samplesKept = samplesKept && s.SignalData.at(i, 2) == static_cast<int16_t>(i);
    EXPECT_TRUE(samplesKept) << failure;
    EXPECT_EQ(prompts.messages().size(), 1u) << failure;
  }
}
