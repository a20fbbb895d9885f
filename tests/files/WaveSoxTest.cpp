// WAVE files of another program: the files sox made for tests/data/wave
// (see make-wave-files.sh there), and, where sox is installed, files it
// makes now and reads back from this program.

#include "files/Wave.h"

#include "ForeignFileBytes.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx {
namespace {

using testing::NewState;
using testing::WriteBytes;

// The pattern of make-wave-files.sh; frame i and channel c count from 0.
int Pattern16(int i, int c) { return (i * 37 + c * 1000) % 2000 - 1000; }
int Pattern8(int i, int c) { return (i * 7 + c * 50) % 256; }

QString DataFile(const char* name) {
  return QStringLiteral(AQX_TEST_DATA_DIR "/wave/") + QString::fromLatin1(name);
}

// Frame that row k (from 1) of the store takes for P frames in `rows` rows.
int FrameOfRow(int k, int frames, int rows) {
  const double x = (k - 1) * (static_cast<double>(frames) / rows);
  return std::min(frames - 1, static_cast<int>(std::nearbyint(x)));
}

struct Expected {
  const char* file;
  int channels;
  int rate;
  int bits;
  int frames;
};

void ExpectSamples(const AppState& s, const Expected& e) {
  int rows = 1;
  while (rows <= e.frames) rows *= 2;
  ASSERT_EQ(s.SignalDataN, rows);
  EXPECT_EQ(s.ChannelUsedCount, e.channels);
  EXPECT_EQ(s.FreqDesc, static_cast<int>(std::nearbyint(static_cast<double>(e.rate) * rows / e.frames)));
  for (int c = 1; c <= e.channels; ++c)
    for (int k = 1; k <= rows; ++k) {
      const int i = FrameOfRow(k, e.frames, rows);
      const int want = e.bits == 16 ? Pattern16(i, c - 1) : Pattern8(i, c - 1);
      ASSERT_EQ(s.SignalData.at(k, c), want) << "row " << k << " channel " << c;
    }
}

TEST(WaveFromSox, StoredSoxFilesReadWithTheirSamples) {
  const Expected files[] = {
      {"sox-mono16-8000.wav", 1, 8000, 16, 300},
      {"sox-stereo8-11025.wav", 2, 11025, 8, 300},
      {"sox-3ch16-44100.wav", 3, 44100, 16, 300},  // extensible block and "fact"
      {"sox-5ch8-22050.wav", 5, 22050, 8, 200},
  };
  for (const Expected& e : files) {
    SCOPED_TRACE(e.file);
    auto state = NewState();
    ScriptedPrompts prompts;
    state->PathFileData = DataFile(e.file);
    ASSERT_TRUE(ReadFileWave(*state, prompts));
    EXPECT_TRUE(prompts.messages().empty());
    ExpectSamples(*state, e);
  }
}

class WaveWithSox : public ::testing::Test {
 protected:
  void SetUp() override {
    sox = QStandardPaths::findExecutable(QStringLiteral("sox"));
    if (sox.isEmpty()) GTEST_SKIP() << "sox is not installed";
    ASSERT_TRUE(dir.isValid());
  }
  QString run(const QStringList& args) {
    QProcess p;
    p.start(sox, args);
    EXPECT_TRUE(p.waitForFinished(30000));
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
  }
  QString sox;
  QTemporaryDir dir;
};

TEST_F(WaveWithSox, SoxReadsTheProgramsFileWithItsRateChannelsLengthAndCodes) {
  auto state = NewState();
  ScriptedPrompts prompts;
  auto& ch = state->channels;
  for (int c = 1; c <= kMaxChannels; ++c) ch.Channel[c] = c == 2 || c == 5 || c == 32 ? 1 : 0;
  state->SignalDataN = 1024;
  state->FreqDesc = 2677;
  for (int k = 1; k <= 1024; ++k) {
    state->SignalData.at(k, 2) = static_cast<int16_t>(Pattern16(k, 0));
    state->SignalData.at(k, 5) = static_cast<int16_t>(-8192 + k);
    state->SignalData.at(k, 32) = static_cast<int16_t>(k % 2 ? 8191 : -8192);
  }
  const QString out = dir.filePath(QStringLiteral("program.wav"));
  ASSERT_TRUE(WriteWaveFile(*state, out, prompts));

  EXPECT_EQ(run({QStringLiteral("--i"), QStringLiteral("-r"), out}), QStringLiteral("2677"));
  EXPECT_EQ(run({QStringLiteral("--i"), QStringLiteral("-c"), out}), QStringLiteral("3"));
  EXPECT_EQ(run({QStringLiteral("--i"), QStringLiteral("-s"), out}), QStringLiteral("1024"));
  EXPECT_EQ(run({QStringLiteral("--i"), QStringLiteral("-b"), out}), QStringLiteral("16"));

  // sox's own decoding of the samples, as text: one line per frame.
  const QString raw = dir.filePath(QStringLiteral("program.dat"));
  run({out, raw});
  QFile dat(raw);
  ASSERT_TRUE(dat.open(QIODevice::ReadOnly));
  int frame = 0;
  while (!dat.atEnd()) {
    const QString line = QString::fromLatin1(dat.readLine()).trimmed();
    if (line.startsWith(QLatin1Char(';'))) continue;
    const QStringList v = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    ASSERT_EQ(v.size(), 4);  // time, three channels in the range -1..1
    ++frame;
    EXPECT_EQ(std::lround(v[1].toDouble() * 32768), state->SignalData.at(frame, 2));
    EXPECT_EQ(std::lround(v[2].toDouble() * 32768), state->SignalData.at(frame, 5));
    EXPECT_EQ(std::lround(v[3].toDouble() * 32768), state->SignalData.at(frame, 32));
  }
  EXPECT_EQ(frame, 1024);
}

}  // namespace
}  // namespace aqx
