#include "files/Wave.h"

#include "ForeignFileBytes.h"
#include "PeakMemory.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx {
namespace {

using testing::FileBytes;
using testing::NewState;
using testing::ReadBytes;
using testing::WriteBytes;

// A plain 44-byte PCM header, everything at its literal offset.
FileBytes PcmHeader(int channels, int rate, int bits, int frames) {
  const int align = channels * bits / 8;
  const int dataBytes = frames * align;
  FileBytes f(44);
  f.putRaw(0, "RIFF").put32(4, dataBytes + 36).putRaw(8, "WAVE").putRaw(12, "fmt ");
  f.put32(16, 16).put16(20, 1).put16(22, channels).put32(24, rate).put32(28, rate * align);
  f.put16(32, align).put16(34, bits).putRaw(36, "data").put32(40, dataBytes);
  return f;
}

class WaveTest : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  std::unique_ptr<AppState> state = NewState();
  ScriptedPrompts prompts;

  QString path(const char* name) const { return dir.filePath(QString::fromLatin1(name)); }

  bool open(const QByteArray& bytes, const char* name = "in.wav") {
    state->PathFileData = path(name);
    EXPECT_TRUE(WriteBytes(state->PathFileData, bytes));
    return ReadFileWave(*state, prompts);
  }
};

TEST_F(WaveTest, WrittenFileHasTheHeaderAndInterleavedCodes) {
  auto& ch = state->channels;
  for (int c = 1; c <= kMaxChannels; ++c) ch.Channel[c] = 0;
  ch.Channel[1] = 1;
  ch.Channel[3] = 1;
  state->SignalDataN = 4;
  state->FreqDesc = 1000;
  for (int k = 1; k <= 4; ++k) {
    state->SignalData.at(k, 1) = static_cast<int16_t>(-100 * k);
    state->SignalData.at(k, 2) = 7777;  // off: must not appear
    state->SignalData.at(k, 3) = static_cast<int16_t>(1000 + k);
  }
  ASSERT_TRUE(WriteWaveFile(*state, path("out.wav"), prompts));
  const QByteArray b = ReadBytes(path("out.wav"));

  FileBytes expected = PcmHeader(2, 1000, 16, 4);
  for (int k = 0; k < 4; ++k)
    expected.put16(44 + 4 * k, -100 * (k + 1)).put16(46 + 4 * k, 1000 + k + 1);
  EXPECT_EQ(b, expected.bytes);
  EXPECT_EQ(b.mid(4, 4), QByteArray("\x34\x00\x00\x00", 4));  // 2 * 4 * 2 + 36
  EXPECT_TRUE(prompts.messages().empty());
  EXPECT_TRUE(QDir(dir.path()).entryList(QDir::Files) == QStringList{QStringLiteral("out.wav")})
      << "no temporary file is left behind";

  // One channel at the player's rate.
  ASSERT_TRUE(WriteWaveChannel(*state, 3, path("one.wav"), 22050, prompts));
  FileBytes one = PcmHeader(1, 22050, 16, 4);
  for (int k = 0; k < 4; ++k) one.put16(44 + 2 * k, 1000 + k + 1);
  EXPECT_EQ(ReadBytes(path("one.wav")), one.bytes);
}

TEST_F(WaveTest, ShortFileIsStretchedByNearestSampleToThePowerOfTwo) {
  // P = 4 stored frames of two channels go to 2^(2+1) = 8 rows; row k takes
  // frame round((k - 1) * 0.5), halves to even, the last one held at P - 1.
  FileBytes f = PcmHeader(2, 1000, 16, 4);
  const int16_t left[4] = {-8192, -1, 0, 8191};
  for (int i = 0; i < 4; ++i) f.put16(44 + 4 * i, left[i]).put16(46 + 4 * i, 100 + i);
  state->SignalData.at(9, 1) = 4242;  // sentinel past the new length
  ASSERT_TRUE(open(f.bytes));

  EXPECT_EQ(state->SignalDataN, 8);
  EXPECT_EQ(state->ViewFirst, 1);
  EXPECT_EQ(state->ViewLast, 8);
  const int frameOfRow[8] = {0, 0, 1, 2, 2, 2, 3, 3};
  for (int k = 1; k <= 8; ++k) {
    EXPECT_EQ(state->SignalData.at(k, 1), left[frameOfRow[k - 1]]) << "row " << k;
    EXPECT_EQ(state->SignalData.at(k, 2), 100 + frameOfRow[k - 1]) << "row " << k;
  }
  EXPECT_EQ(state->SignalData.at(9, 1), 4242);
  EXPECT_EQ(state->FreqDesc, 2000);  // the store spans the same time in twice the rows
  EXPECT_EQ(state->ChannelUsedCount, 2);
  const auto& ch = state->channels;
  EXPECT_EQ(ch.Channel[3], 0);
  EXPECT_EQ(ch.Type[1], 5);
  EXPECT_FLOAT_EQ(ch.Ku[2], 1.0f);
  EXPECT_EQ(ch.Volume[2], 0);
  EXPECT_EQ(ch.ChannelColor[1], 0);
  EXPECT_TRUE(ch.Place[1].isEmpty());
  EXPECT_TRUE(prompts.messages().empty());
}

TEST_F(WaveTest, EightBitSamplesKeepTheirUnsignedValue) {
  FileBytes f = PcmHeader(1, 8000, 8, 3);
  f.put8(44, 0).put8(45, 128).put8(46, 255);
  ASSERT_TRUE(open(f.bytes));
  EXPECT_EQ(state->SignalDataN, 4);
  // Rows take frames round(0, 0.75, 1.5, 2.25) = 0, 1, 2, 2.
  const int16_t rows[4] = {0, 128, 255, 255};
  for (int k = 1; k <= 4; ++k) EXPECT_EQ(state->SignalData.at(k, 1), rows[k - 1]) << "row " << k;
}

TEST_F(WaveTest, ChunksBeforeTheSamplesAreSteppedOver) {
  // "PAD " at 36 with its size at 40, then a LIST chunk of odd size with its
  // pad byte, then "data".
  FileBytes f = PcmHeader(1, 8000, 16, 0);
  f.putRaw(36, "PAD ").put32(40, 6);                         // 44..49 padding
  f.putRaw(50, "LIST").put32(54, 9).putRaw(58, "INFOISFT");  // 58..66, pad byte at 67
  f.putRaw(68, "data").put32(72, 4).put16(76, 1234).put16(78, -4321);
  ASSERT_TRUE(open(f.bytes));
  EXPECT_EQ(state->SignalDataN, 4);
  EXPECT_EQ(state->SignalData.at(1, 1), 1234);
  EXPECT_EQ(state->SignalData.at(3, 1), -4321);

  // A streaming writer's unknown length: what the file holds counts.
  FileBytes streamed = PcmHeader(1, 8000, 16, 0);
  streamed.put32(40, -1).put16(44, 11).put16(46, 22).put16(48, 33);
  ASSERT_TRUE(open(streamed.bytes));
  EXPECT_EQ(state->SignalDataN, 4);
  EXPECT_EQ(state->SignalData.at(4, 1), 33);
}

TEST_F(WaveTest, RefusalsTellTheirTextAndChangeNothing) {
  struct Case {
    const char* what;
    QByteArray bytes;
    QString text;
  };
  const QString unknown = QStringLiteral("Файл неизвестного формата.");
  const QString notRiff = QStringLiteral("Файл не RIFF формата.");
  const QString notWave = QStringLiteral("Файл не WAVE формата.");
  auto header = [] { return PcmHeader(1, 8000, 16, 2); };
  const std::vector<Case> cases = {
      {"empty file", QByteArray(), notRiff},
      {"RIFX", header().putRaw(0, "RIFX").bytes, notRiff},
      {"RIFF only", QByteArray("RIFF\x10\0\0\0", 8), notWave},
      {"AVI", header().putRaw(8, "AVI ").bytes, notWave},
      {"no fmt at 12", header().putRaw(12, "LIST").bytes, unknown},
      {"cut in fmt", header().bytes.left(30), unknown},
      {"A-law", header().put16(20, 6).bytes, QStringLiteral("Файл не PCM формата.")},
      {"24 bits", header().put16(34, 24).put16(32, 3).bytes, QStringLiteral("Файл неподдерживаемого 24-битного формата.")},
      {"32 bits", header().put16(34, 32).bytes, QStringLiteral("Файл неподдерживаемого 32-битного формата.")},
      {"no tag at 36", header().putRaw(36, QByteArray(4, '\0')).bytes, unknown},
      {"no data chunk", header().putRaw(36, "PAD ").put32(40, 2).bytes.left(48), unknown},
      {"chunk past the end", header().putRaw(36, "LIST").put32(40, 1000).bytes, unknown},
      {"no channels", header().put16(22, 0).bytes, unknown},
      {"empty data", header().bytes.left(44).replace(40, 4, QByteArray(4, '\0')),
       QStringLiteral("Файл не содержит отсчётов.")},
  };

  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    state->SignalDataN = 32768;
    state->channels.Channel[7] = 1;
    state->SignalData.at(1, 7) = -77;
    prompts.shown.clear();
    EXPECT_FALSE(open(c.bytes));
    const auto shown = prompts.messages();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].text, c.text);
    EXPECT_EQ(shown[0].title, QStringLiteral("Ошибка"));
    EXPECT_EQ(shown[0].icon, PromptIcon::Critical);
    EXPECT_EQ(state->SignalDataN, 32768);
    EXPECT_EQ(state->channels.Channel[7], 1);
    EXPECT_EQ(state->SignalData.at(1, 7), -77);
  }
}

TEST_F(WaveTest, OnlyAFileLongerThanTheStoreIsTooLarge) {
  // Exactly 1,048,576 frames fit without a word.
  const int store = kMaxSamples;
  FileBytes exact = PcmHeader(1, 8000, 8, store);
  exact.grow(44 + store);
  exact.put8(44 + store - 1, 200);
  ASSERT_TRUE(open(exact.bytes));
  EXPECT_TRUE(prompts.messages().empty());
  EXPECT_EQ(state->SignalDataN, store);
  EXPECT_EQ(state->SignalData.at(store, 1), 200);

  // One more frame is thinned into the store, after the warning.
  FileBytes longer = PcmHeader(1, 8000, 8, store + 1);
  longer.grow(44 + store + 1);
  longer.put8(44 + store - 1, 1).put8(44 + store, 2);
  ASSERT_TRUE(open(longer.bytes));
  const auto shown = prompts.messages();
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].text, QStringLiteral("Файл слишком большой!"));
  EXPECT_EQ(shown[0].title, QStringLiteral("Внимание"));
  EXPECT_EQ(shown[0].icon, PromptIcon::Exclamation);
  EXPECT_EQ(state->SignalDataN, store);
  // Row 1048576 takes frame round(1048575 * 1048577 / 1048576) = 1048576.
  EXPECT_EQ(state->SignalData.at(store, 1), 2);
}

// A 3 GiB file was once read whole into memory; only the frames the store
// takes are read now.
TEST_F(WaveTest, AHugeFileCostsTimeNotMemory) {
  const QString huge = path("huge.wav");
  const int64_t dataBytes = int64_t{3} << 30;
  FileBytes header = PcmHeader(1, 44100, 16, 0);
  header.put32(4, 0xFFFFFFFF).put32(40, 0xFFFFFFF0);  // as a streaming writer leaves it
  ASSERT_TRUE(WriteBytes(huge, header.bytes));
  ASSERT_TRUE(QFile::resize(huge, 44 + dataBytes));
  // The store itself is the state's: resident, as after any full recording.
  std::fill_n(state->SignalData.data(), SampleStore::kElements, int16_t{1});
  const int64_t before = testing::PeakResidentBytes();
  state->PathFileData = huge;
  ASSERT_TRUE(ReadFileWave(*state, prompts));
  EXPECT_LT(testing::PeakResidentBytes() - before, 64 * testing::kMiB);
  EXPECT_EQ(state->SignalDataN, kMaxSamples);
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Файл слишком большой!"));
}

TEST_F(WaveTest, DifferentialConnectionTakesSixteenChannelsOfTwenty) {
  state->ChannelDifferential = 1;
  FileBytes f = PcmHeader(20, 8000, 16, 1);
  for (int c = 0; c < 20; ++c) f.put16(44 + 2 * c, c + 1);
  state->channels.Channel[20] = 0;
  ASSERT_TRUE(open(f.bytes));
  EXPECT_EQ(state->ChannelUsedCount, 16);
  EXPECT_EQ(state->channels.Channel[16], 1);
  EXPECT_EQ(state->channels.Channel[17], 0);
  EXPECT_EQ(state->channels.Channel[20], 0);
  EXPECT_EQ(state->SignalData.at(1, 16), 16);
  EXPECT_EQ(state->SignalData.at(2, 16), 16);
}

TEST_F(WaveTest, ExportAsksBeforeReplacingAndWritesOnYes) {
  state->SignalDataN = 2;
  state->InitDirSave = dir.path();
  const QString target = path("export.wav");
  ASSERT_TRUE(WriteBytes(target, "old"));

  prompts.texts.push_back(target);
  prompts.answers.push_back(PromptAnswer::No);
  EXPECT_FALSE(ExportWaveCommand(*state, prompts));
  EXPECT_EQ(ReadBytes(target), QByteArray("old"));
  ASSERT_EQ(prompts.shown.size(), 2u);
  EXPECT_EQ(prompts.shown[0].kind, ShownPrompt::Kind::SaveFile);
  EXPECT_EQ(prompts.shown[0].title, QStringLiteral("Экспорт"));
  EXPECT_TRUE(prompts.shown[0].text.startsWith(dir.path()));
  EXPECT_EQ(prompts.shown[1].text, QStringLiteral("Файл с таким именем уже существует. Заменить?"));
  EXPECT_EQ(prompts.shown[1].title, QStringLiteral("Экспорт"));

  prompts.texts.push_back(target);
  prompts.answers.push_back(PromptAnswer::Yes);
  EXPECT_TRUE(ExportWaveCommand(*state, prompts));
  EXPECT_EQ(ReadBytes(target).left(4), QByteArray("RIFF"));

  prompts.texts.push_back(std::nullopt);  // the dialog cancelled
  EXPECT_FALSE(ExportWaveCommand(*state, prompts));

  // No recorded channel: told, and no file appears.
  for (int c = 1; c <= kMaxChannels; ++c) state->channels.Channel[c] = 0;
  prompts.texts.push_back(path("none.wav"));
  EXPECT_FALSE(ExportWaveCommand(*state, prompts));
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("В записи нет ни одного канала с данными."));
  EXPECT_FALSE(QFile::exists(path("none.wav")));
}

}  // namespace
}  // namespace aqx
