#include "files/ForeignFiles.h"

#include "ForeignFileBytes.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <random>

namespace aqx {
namespace {

using testing::FileBytes;

constexpr int kBlock = 1078;  // channel 1, text 44, type 1, two floats 8, samples 1024

// Header fields at their literal offsets; marks as given (from offset 228).
FileBytes RslHeader(std::initializer_list<int32_t> marks) {
  FileBytes f(557);
  f.put8(2, 4);                    // Agregat
  f.put8(18, 145);                 // Polus = round(72.5) = 72, half to even
  f.putFloat(28, 1.5f);            // remark 0
  f.putFloat(32, 2.0f);            // remarks 8, 9
  f.putFloat(36, 3.75f);           // remarks 2, 7
  f.putFloat(52, 10.0f);           // remarks 10, 11
  f.putFloat(56, -1.0f);           // remarks 12, 13
  f.putFloat(60, 0.125f);          // remark 27
  f.putRaw(64, QByteArray("\xC2\xFB\xE1\xE5\xE3\0garbage", 13));  // "Выбег", cut at zero
  for (int i = 0; i < 3; ++i) f.putFloat(144 + 4 * i, 11.0f + i);  // channel 1
  f.putFloat(224, 73.0f);          // channel 7, entry 3
  int at = 228;
  for (int32_t m : marks) {
    f.put32(at, m);
    at += 4;
  }
  return f;
}

void PutBlock(FileBytes& f, qsizetype at, int channel, int type, float ku, const QByteArray& samples) {
  f.put8(at, static_cast<unsigned>(channel));
  f.putRaw(at + 1, QByteArray(44, 'T'));
  f.put8(at + 45, static_cast<unsigned>(type));
  f.putFloat(at + 46, ku);
  f.putFloat(at + 50, 5.5f);  // not used
  f.putRaw(at + 54, samples);
}

QByteArray Ramp(int start) {
  QByteArray b(1024, '\0');
  for (int n = 0; n < 1024; ++n) b[n] = static_cast<char>((start + n) & 0xFF);
  return b;
}

int V(int byte) { return byte >= 128 ? byte : byte + 256; }

class RslTest : public testing::ForeignFileTest<ReadFileRSL> {
 protected:
  RslTest() : ForeignFileTest("rec.rsl") {}
  void SetUp() override {
    QLocale::setDefault(QLocale::c());
    for (int r = 1; r <= 1100; ++r) state->SignalData.at(r, 32) = 999;
    state->object.Station = QStringLiteral("before");
    state->SignalDataN = 4096;
  }
};

TEST_F(RslTest, HeaderChannelsAndMarksComeFromTheirOffsets) {
  // First mark 500; 500 again sets nothing; 600, 700, 800 are rows 100, 200,
  // 300; 1600 lies past the record, 400 before it; empty slots give -500.
  FileBytes f = RslHeader({500, 500, 600, 700, 800, 1600, 400});
  PutBlock(f, 556, 2, 0, 1.25f, Ramp(0));
  PutBlock(f, 556 + kBlock, 6, 1, 5.0f, Ramp(100));
  f.put8(556 + 2 * kBlock, 0);  // end of the list
  PutBlock(f, 557 + 2 * kBlock, 3, 0, 1.25f, Ramp(7));  // behind the end: not read
  ASSERT_TRUE(open(f.bytes));
  EXPECT_TRUE(prompts.messages().empty());

  const AppState& s = *state;
  EXPECT_EQ(s.object.Agregat, 4);
  EXPECT_EQ(s.Polus, 72);
  EXPECT_EQ(s.object.Mode, QStringLiteral("Выбег"));
  EXPECT_TRUE(s.object.Station.isEmpty());
  const char* remarks[14] = {"1.5", "0", "3.75", "0", "0", "0", "0", "3.75", "2", "2", "10", "10", "-1", "-1"};
  for (int i = 0; i < 14; ++i) EXPECT_EQ(s.object.Remark[i], QString::fromLatin1(remarks[i])) << i;
  EXPECT_EQ(s.object.Remark[27], QStringLiteral("Биение вала: 0.125"));

  const auto& ch = s.channels;
  EXPECT_EQ(ch.ProbeFreq[1][0], 11.0f);
  EXPECT_EQ(ch.ProbeFreq[1][2], 13.0f);
  EXPECT_EQ(ch.ProbeFreq[1][3], -1.0f);
  EXPECT_EQ(ch.ProbeFreq[7][2], 73.0f);

  EXPECT_EQ(s.SignalDataN, 1024);
  EXPECT_EQ(s.ViewLast, 1024);
  EXPECT_EQ(s.ChannelUsedCount, 3);
  EXPECT_EQ(ch.Channel[3], 0);
  EXPECT_EQ(s.FirstChannelActive, 2);
  EXPECT_EQ(ch.Active[2], 1);
  EXPECT_FLOAT_EQ(ch.Ku[6], 1.0f);
  for (int n = 1; n <= 1024; ++n) {
    ASSERT_EQ(s.SignalData.at(n, 2), V((n - 1) & 0xFF)) << "row " << n;
    ASSERT_EQ(s.SignalData.at(n, 6), std::lrint(V((99 + n) & 0xFF) / 1.25)) << "row " << n;
  }

  EXPECT_EQ(ch.Type[32], 3);
  EXPECT_FLOAT_EQ(ch.Ku[32], 1.25f);
  std::vector<int> markRows;
  for (int n = 1; n <= 1024; ++n)
    if (s.SignalData.at(n, 32) == 1000) markRows.push_back(n);
  EXPECT_EQ(markRows, (std::vector<int>{100, 200, 300}));
  EXPECT_EQ(s.SignalData.at(1, 32), 0);
  EXPECT_EQ(s.SignalData.at(1025, 32), 999);

  // 100 samples a revolution at 50 * 2 / 72 revolutions a second.
  EXPECT_EQ(s.FreqDesc, 139);
  EXPECT_EQ(s.NumberRotorRecord, 10);
  EXPECT_NEAR(s.FreqRotorN, 6000.0 / 72, 1e-9);
}

TEST_F(RslTest, ListEndsAfterSevenBlocksOrAtAChannelAboveSeven) {
  FileBytes f = RslHeader({0});
  for (int i = 0; i < 7; ++i) PutBlock(f, 556 + i * kBlock, i + 1, 0, 1.25f, Ramp(i));
  PutBlock(f, 556 + 7 * kBlock, 1, 0, 1.25f, Ramp(200));  // an eighth block is not read
  ASSERT_TRUE(open(f.bytes));
  EXPECT_EQ(state->ChannelUsedCount, 8);
  EXPECT_EQ(state->SignalData.at(1, 1), V(0));

  FileBytes g = RslHeader({0});
  PutBlock(g, 556, 5, 0, 1.25f, Ramp(0));
  g.put8(556 + kBlock, 9);  // not a channel of this system: the list ends
  ASSERT_TRUE(open(g.bytes));
  EXPECT_EQ(state->ChannelUsedCount, 2);

  FileBytes h = RslHeader({0});
  PutBlock(h, 556, 5, 0, 1.25f, Ramp(0));  // the file ends with the block
  ASSERT_TRUE(open(h.bytes));
  EXPECT_EQ(state->channels.Channel[5], 1);
  EXPECT_EQ(state->FreqDesc, 1422);  // no mark inside: the record is one revolution
}

TEST_F(RslTest, ShortOrDamagedFilesAreRefusedAndChangeNothing) {
  auto good = [] {
    FileBytes f = RslHeader({0});
    PutBlock(f, 556, 1, 0, 1.25f, Ramp(0));
    return f;
  };
  const QString truncated = QStringLiteral(
      "Файл rec.rsl системы РУСЛО-8 неполный: данные обрываются раньше, чем указано в его заголовке.");
  const QString prefix = QStringLiteral("Файл rec.rsl не является файлом системы РУСЛО-8 или повреждён: ");
  const struct {
    const char* what;
    QByteArray bytes;
    QString text;
  } cases[] = {
      {"header cut", good().bytes.left(556), truncated},
      {"samples cut", good().bytes.chopped(1), truncated},
      {"no channel", good().put8(556, 0).bytes, prefix + QStringLiteral("нет ни одного канала.")},
      {"no poles", good().put8(18, 1).bytes, prefix + QStringLiteral("число полюсов 0.")},
      {"type 10", good().put8(556 + 45, 10).bytes, prefix + QStringLiteral("тип датчика 10 канала 1.")},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    prompts.shown.clear();
    EXPECT_FALSE(open(c.bytes));
    const auto shown = prompts.messages();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].text, c.text);
    EXPECT_EQ(shown[0].title, QStringLiteral("Открытие"));
    EXPECT_EQ(state->object.Station, QStringLiteral("before"));
    EXPECT_EQ(state->SignalDataN, 4096);
    EXPECT_EQ(state->SignalData.at(1, 32), 999);
  }

  std::mt19937 random(11);
  for (int round = 0; round < 200; ++round) {
    QByteArray bytes(static_cast<qsizetype>(random() % 9000), '\0');
    for (char& b : bytes) b = static_cast<char>(random());
    prompts.shown.clear();
    const bool read = open(bytes);
    EXPECT_EQ(prompts.messages().size(), read ? 0u : 1u);
  }
}

}  // namespace
}  // namespace aqx
