// Damaged and hostile files: a clear message, no crash, no read past a
// buffer, and the recording in memory untouched when the file is refused.
#include "DataFileTestSupport.h"
#include "files/DataFile.h"
#include "files/Wave.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace aqx {
namespace {

using testing::FileBytes;

class DamagedFiles : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  AppState s;
  ScriptedPrompts p;

  void SetUp() override { Prime(); }
  // The recording in memory that a refused file must leave as it is.
  void Prime() {
    s.object.Station = QStringLiteral("прежняя запись");
    s.SignalDataN = 1000;
    s.SignalData.at(1, 1) = 1111;
    s.SignalData.at(1000, 32) = -2222;
    s.channels.Zero[3] = 42;
  }
  // A current-layout file with channel 1 only; N samples claimed.
  static FileBytes CurrentFile(int32_t claimedSamples, size_t sampleBytes) {
    FileBytes f(14172 + sampleBytes);
    f.magic().version(1, 12);
    f.i32(202, 1);  // Channel(1)
    f.i32(6094, claimedSamples);
    return f;
  }
  bool Open(const QByteArray& bytes) {
    const QString path = dir.filePath(QStringLiteral("f.aqx"));
    testing::WriteFile(path, bytes);
    s.PathFileData = path;
    return ReadDataFile(s, p);
  }
  void ExpectUntouched() {
    EXPECT_EQ(s.object.Station, QStringLiteral("прежняя запись"));
    EXPECT_EQ(s.SignalDataN, 1000);
    EXPECT_EQ(s.SignalData.at(1, 1), 1111);
    EXPECT_EQ(s.SignalData.at(1000, 32), -2222);
    EXPECT_EQ(s.channels.Zero[3], 42);
  }
  void ExpectRefusedWith(const QString& start) {
    const auto messages = p.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_TRUE(messages[0].text.startsWith(start)) << messages[0].text.toStdString();
    EXPECT_EQ(messages[0].title, QStringLiteral("Открытие"));
  }
};

TEST_F(DamagedFiles, FilesOfAFewBytesAreNoDataFiles) {
  for (int size : {0, 1, 5, 9, 10, 21}) {
    p.shown.clear();
    FileBytes f(static_cast<size_t>(size));
    if (size >= 10) f.magic();
    EXPECT_FALSE(Open(f.bytes().left(size))) << size;
    ExpectRefusedWith(size < 10 ? QStringLiteral("Указанный файл не является файлом данных Aquilonix!")
                                : QStringLiteral("Файл данных повреждён: заголовок версии 0.0 обрезан"));
    ExpectUntouched();
  }
  // Magic and a version but the header cut short.
  for (int size : {22, 100, 5236, 14171}) {
    p.shown.clear();
    FileBytes f(static_cast<size_t>(size));
    f.magic().version(1, size < 6000 ? 0 : 12);
    EXPECT_FALSE(Open(f.bytes())) << size;
    ExpectRefusedWith(QStringLiteral("Файл данных повреждён: заголовок версии"));
    ExpectUntouched();
  }
}

TEST_F(DamagedFiles, SampleCountsTheFileCannotHoldAreRefusedBeforeAnythingChanges) {
  const struct {
    int32_t claimed;
    size_t sampleBytes;
    const char* message;
  } cases[] = {
      {1000, 2 * 999, "Файл данных повреждён: по заголовку в нём 1000 отсчётов по 1 каналам"},
      {2147483647, 4096, "Файл данных повреждён: по заголовку"},
      {0, 64, "Файл данных повреждён: неверное число отсчётов в заголовке"},
      {-1, 64, "Файл данных повреждён: неверное число отсчётов в заголовке"},
      {-2147483647 - 1, 64, "Файл данных повреждён: неверное число отсчётов в заголовке"},
  };
  for (const auto& c : cases) {
    p.shown.clear();
    EXPECT_FALSE(Open(CurrentFile(c.claimed, c.sampleBytes).bytes())) << c.claimed;
    ExpectRefusedWith(QString::fromUtf8(c.message));
    ExpectUntouched();
  }
}

TEST_F(DamagedFiles, SampleCountAboveTheStoreKeepsTheFirstSamplesOfEachChannel) {
  constexpr int kClaimed = 1048576 + 10;
  FileBytes f = CurrentFile(kClaimed, 2 * 2 * static_cast<size_t>(kClaimed));
  f.i32(202 + 4, 1);  // Channel(2) too
  f.i16(14172, 17).i16(14172 + 2 * 1048575, 18);
  f.i16(14172 + 2 * kClaimed, -19);  // first sample of channel 2
  ASSERT_TRUE(Open(f.bytes())) << p.lastMessage().toStdString();
  EXPECT_EQ(s.SignalDataN, 1048576);
  EXPECT_EQ(s.ViewLast, 1048576);
  EXPECT_EQ(s.SignalData.at(1, 1), 17);
  EXPECT_EQ(s.SignalData.at(1048576, 1), 18);
  EXPECT_EQ(s.SignalData.at(1, 2), -19);
}

TEST_F(DamagedFiles, ValuesThatWouldIndexPastATableAreRepairedAndTold) {
  FileBytes f = CurrentFile(4, 8);
  f.i32(458, 77);       // Type(1)
  f.i32(3498, -3);      // Volume(1)
  f.i32(6118, 99);      // ViewStyle
  f.i32(186, 5000);     // FirstChannelActive
  f.i32(190, -8);       // BlockSizeFFT
  f.i32(7169, 100000);  // MarkerN
  ASSERT_TRUE(Open(f.bytes()));
  EXPECT_EQ(s.channels.Type[1], 1);
  EXPECT_EQ(s.channels.Volume[1], 0);
  EXPECT_EQ(s.ViewStyle, 1);
  EXPECT_EQ(s.FirstChannelActive, 1);
  EXPECT_EQ(s.BlockSizeFFT, 1048576);
  EXPECT_EQ(s.markers.MarkerN, 100);
  ExpectRefusedWith(QStringLiteral("В заголовке файла недопустимые значения (тип датчика, диапазон входа"));
}

// Every byte of the header random but magic and version: whatever comes
// out, the reader stays inside its buffers (the sanitizers watch) and
// either refuses with a message or leaves values in their ranges.
TEST_F(DamagedFiles, GarbageInEveryFieldNeverCrashes) {
  QRandomGenerator random(20240607);
  for (int round = 0; round < 200; ++round) {
    p.shown.clear();
    Prime();
    const int minor = static_cast<int>(random.bounded(13));
    const size_t size = static_cast<size_t>(random.bounded(16000)) + 22;
    FileBytes f(size);
    for (size_t i = 22; i < size; ++i) f.bytes()[static_cast<qsizetype>(i)] = static_cast<char>(random.bounded(256));
    if (round % 2 && size >= 6098) f.i32(6094, static_cast<int32_t>(random.bounded(8)));  // small counts get through
    f.magic().version(static_cast<int32_t>(random.generate()), minor);
    if (Open(f.bytes())) {
      if (!s.SolidMode) {  // a continuous recording counts its samples itself
        EXPECT_GE(s.SignalDataN, 1);
        EXPECT_LE(s.SignalDataN, 1048576);
      }
      EXPECT_GE(s.markers.MarkerN, 0);
      EXPECT_LE(s.markers.MarkerN, 100);
      for (int c = 1; c <= ChannelCount(s); ++c) {
        EXPECT_GE(s.channels.Type[c], 0);
        EXPECT_LE(s.channels.Type[c], 9);
      }
    } else {
      ExpectRefusedWith(QStringLiteral("Файл данных повреждён"));
      ExpectUntouched();
    }
  }
}

TEST_F(DamagedFiles, MissingFileAndFolderAreTold) {
  s.PathFileData = dir.filePath(QStringLiteral("нет.aqx"));
  EXPECT_FALSE(ReadDataFile(s, p));
  ExpectRefusedWith(QStringLiteral("Не удалось открыть файл"));
  EXPECT_TRUE(p.lastMessage().endsWith(QStringLiteral("файл не найден.")));
  p.shown.clear();
  s.PathFileData = dir.path();
  EXPECT_FALSE(ReadDataFile(s, p));
  ExpectRefusedWith(QStringLiteral("Не удалось открыть файл"));
  ExpectUntouched();
}

TEST_F(DamagedFiles, AFileCutAfterItsHeaderWasReadWritesNothingFromItsSamples) {
  FileBytes f = CurrentFile(1000, 2 * 1000);
  ASSERT_TRUE(testing::WriteFile(dir.filePath(QStringLiteral("f.aqx")), f.bytes()));
  s.PathFileData = dir.filePath(QStringLiteral("f.aqx"));
  std::optional<DataFileArea> area;
  ASSERT_TRUE(ReadDataFileLeavingSamples(s, p, area));
  ASSERT_TRUE(area.has_value());
  p.shown.clear();  // what the read repaired in the header
  ASSERT_TRUE(QFile::resize(s.PathFileData, 14172 + 1000));
  const QString wav = dir.filePath(QStringLiteral("f.wav"));
  EXPECT_FALSE(WriteWaveFile(s, wav, p, QStringLiteral("Экспорт"), &*area));
  ExpectRefusedWith(QStringLiteral("Ошибка чтения файла"));
  p.shown.clear();
  s.PathFileData = dir.filePath(QStringLiteral("new.aqx"));
  EXPECT_FALSE(WriteDataFileFrom(s, *area, p));
  ExpectRefusedWith(QStringLiteral("Ошибка чтения файла"));
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("f.aqx")});
}

}  // namespace
}  // namespace aqx
