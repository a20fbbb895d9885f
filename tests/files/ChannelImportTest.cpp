// Channel import between recordings built in the test: same and different
// lengths and rates, WAVE as a source, damaged and foreign files.

#include "files/ChannelImport.h"
#include "files/DataFile.h"
#include "files/FileReaders.h"
#include "files/Wave.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx {
namespace {

// Channels 1 and 2 in use: 1 a run-out probe, 2 a vibration sensor.
std::unique_ptr<AppState> Recording(int samples, int rate, int16_t base) {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = 0;
  for (int c : {1, 2}) {
    s->channels.Channel[c] = 1;
    s->channels.Type[c] = c;
    s->channels.Ku[c] = 2.0f * static_cast<float>(c);
    s->channels.Place[c] = QStringLiteral("Место %1").arg(c);
    for (int k = 1; k <= samples; ++k) s->SignalData.at(k, c) = static_cast<int16_t>(base + c * 100 + k % 50);
  }
  RecountChannelUsedCount(*s);
  s->SignalDataN = samples;
  s->FreqDesc = rate;
  s->object.Station = QStringLiteral("Станция");
  return s;
}

class ChannelImport : public ::testing::Test {
 protected:
  QString write(const QString& name, int samples, int rate, int16_t base) {
    auto s = Recording(samples, rate, base);
    s->PathFileData = dir.filePath(name);
    ScriptedPrompts p;
    EXPECT_TRUE(WriteDataFile(*s, p));
    return s->PathFileData;
  }
  // A recording as the program holds it after opening its file.
  std::unique_ptr<AppState> opened(const QString& path) {
    auto s = std::make_unique<AppState>();
    s->PathFileData = path;
    ScriptedPrompts p;
    EXPECT_TRUE(FindFileReader(readers, path)(*s, p));
    s->DataSaved = true;
    return s;
  }
  QTemporaryDir dir;
  FileReaderTable readers = StandardFileReaders();
  ScriptedPrompts prompts;
};

TEST_F(ChannelImport, SameRateAndLengthCopiesSettingsAndSamplesIntoTheChosenChannel) {
  auto open = opened(write(QStringLiteral("open.aqx"), 4096, 2000, 0));
  const QString path = write(QStringLiteral("source.aqx"), 4096, 2000, 5000);
  std::unique_ptr<AppState> source = OpenImportSource(*open, path, readers, prompts);
  ASSERT_NE(source, nullptr);
  EXPECT_TRUE(prompts.messages().empty());
  const auto list = ImportChannelList(*source, {QStringLiteral("Нет"), QStringLiteral("Биение"), QStringLiteral("Вибрация")});
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[1].text, QStringLiteral("02 Вибрация Место 2"));

  prompts.answers = {PromptAnswer::No};
  EXPECT_FALSE(ImportChannel(*open, *source, 2, 5, prompts));
  EXPECT_EQ(open->channels.Channel[5], 0);
  EXPECT_TRUE(ImportChannel(*open, *source, 2, 5, prompts));
  EXPECT_EQ(prompts.messages().back().text, QStringLiteral("Импортировать данные в канал №5"));
  EXPECT_EQ(open->channels.Channel[5], 1);
  EXPECT_EQ(open->channels.Type[5], 2);
  EXPECT_EQ(open->channels.Ku[5], 4.0f);
  EXPECT_EQ(open->channels.Place[5], QStringLiteral("Место 2"));
  EXPECT_EQ(open->SignalData.at(1, 5), 5201);
  EXPECT_EQ(open->SignalData.at(4096, 5), 5200 + 4096 % 50);
  EXPECT_EQ(open->SignalData.at(1, 1), 101);  // the others stay
  EXPECT_FALSE(open->DataSaved);
}

TEST_F(ChannelImport, DifferentRateAsksAndDifferentLengthRefuses) {
  auto open = opened(write(QStringLiteral("open.aqx"), 4096, 2000, 0));
  const QString faster = write(QStringLiteral("faster.aqx"), 4096, 4000, 1);
  prompts.answers = {PromptAnswer::No};
  EXPECT_EQ(OpenImportSource(*open, faster, readers, prompts), nullptr);
  const QString asked = prompts.lastMessage();
  EXPECT_TRUE(asked.startsWith(QStringLiteral("Источник отличается от приемника!")));
  EXPECT_TRUE(asked.contains(QStringLiteral("Частота дискретизации (Гц): 4000 / 2000")));
  EXPECT_TRUE(asked.endsWith(QStringLiteral("Продолжить?")));
  EXPECT_NE(OpenImportSource(*open, faster, readers, prompts), nullptr);  // Yes

  const QString longer = write(QStringLiteral("longer.aqx"), 8192, 2000, 1);
  EXPECT_EQ(OpenImportSource(*open, longer, readers, prompts), nullptr);
  EXPECT_TRUE(prompts.lastMessage().startsWith(QStringLiteral("Размерность данных источника отличается от приемника.")));
}

TEST_F(ChannelImport, WaveSourceAndBadFilesLeaveTheOpenRecordingAlone) {
  auto wave = Recording(4096, 8000, 300);
  const QString wavPath = dir.filePath(QStringLiteral("sound.wav"));
  ASSERT_TRUE(WriteWaveFile(*wave, wavPath, prompts));
  // The open recording has the length the WAVE reader gives the file.
  const int samples = opened(wavPath)->SignalDataN;
  auto open = opened(write(QStringLiteral("open.aqx"), samples, 8000, 0));
  prompts.answers = {PromptAnswer::Yes};  // its header values differ
  std::unique_ptr<AppState> source = OpenImportSource(*open, wavPath, readers, prompts);
  ASSERT_NE(source, nullptr);
  EXPECT_EQ(source->SignalData.at(1, 2), 300 + 200 + 1);

  const int16_t before = open->SignalData.at(10, 1);
  const QString damaged = dir.filePath(QStringLiteral("damaged.aqx"));
  QFile f(damaged);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.write("Aquilonix but nothing more");
  f.close();
  const size_t shown = prompts.messages().size();
  EXPECT_EQ(OpenImportSource(*open, damaged, readers, prompts), nullptr);
  EXPECT_GT(prompts.messages().size(), shown);
  EXPECT_EQ(OpenImportSource(*open, dir.filePath(QStringLiteral("table.xls")), readers, prompts), nullptr);
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Файл неподдерживаемого формата для импорта."));
  EXPECT_EQ(open->SignalData.at(10, 1), before);
  EXPECT_TRUE(open->DataSaved);
}

}  // namespace
}  // namespace aqx
