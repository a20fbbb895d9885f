#include "files/ForeignFiles.h"

#include "ForeignFileBytes.h"
#include "PeakMemory.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace aqx {
namespace {

using testing::FileBytes;

// Windows-1251 bytes written out: "Саяно ГЭС", "Выбег", "ТП ВБ".
const QByteArray kStation("\xD1\xE0\xFF\xED\xEE \xC3\xDD\xD1");
const QByteArray kMode("\xC2\xFB\xE1\xE5\xE3");
const QByteArray kTpVb("\xD2\xCF \xC2\xC1");

constexpr int kBlockHead = 668;  // 1+1+80+1+1+4+20+4+4+40+53+459

struct ZrkShape {
  int channels = 1;
  int32_t samples = 8;
  int16_t polus = 72;
  float rotorHz = 1.5f;
  int16_t numberRotorRecord = 2;
};

// Header fields at their literal offsets.
FileBytes ZrkHeader(const ZrkShape& z) {
  FileBytes f(1417);
  f.putRaw(0, QByteArray(16, 'x'));
  f.put8(16, static_cast<unsigned>(kStation.size())).putRaw(17, kStation + "TAIL");
  f.put8(57, static_cast<unsigned>(kMode.size())).putRaw(58, kMode + "TAIL");
  f.put16(260, 3);                 // Agregat
  f.put16(262, z.polus);
  f.putFloat(264, 83.0f);          // FreqRotorN
  f.putFloat(272, 12.5f);          // remark 0
  f.put32(280, 123456);            // remark 2
  f.put16(284, 24);                // remark 24
  f.put16(286, -7);                // remark 7
  f.put16(288, 42);                // remarks 10, 11
  f.put16(292, z.numberRotorRecord);
  f.putDouble(296, 45000.5);       // RecordDate
  f.putFloat(308, 0.25f);          // StepDesc
  f.putFloat(316, z.rotorHz);      // f
  f.put8(322, static_cast<unsigned>(z.channels));
  f.put32(324, z.samples);
  for (int i = 0; i < 4; ++i) f.putFloat(328 + 4 * i, 999.0f);           // group 0: not used
  for (int i = 0; i < 4; ++i) f.putFloat(344 + 4 * i, 10.0f * (i + 1));  // channel 1
  f.putFloat(568, 1.5f);                                                 // channel 15, entry 1
  f.putFloat(1392, 1.0e6f);        // remark 8
  f.putFloat(1396, 0.0025f);       // remarks 12, 13
  f.putFloat(1400, -3.25f);        // remarks 3, 4, 5
  f.putFloat(1404, 0.1f);          // remark 1
  return f;
}

void PutBlock(FileBytes& f, qsizetype at, int channel, int type, float ku, float scale,
              const QByteArray& samples, const QByteArray& name = kTpVb) {
  f.put8(at, static_cast<unsigned>(channel));
  f.put8(at + 1, static_cast<unsigned>(name.size()));
  f.putRaw(at + 2, name + " junk");
  f.put8(at + 82, 0xEE);  // skipped byte
  f.put8(at + 83, static_cast<unsigned>(type));
  f.putFloat(at + 84, ku);
  f.putFloat(at + 108, scale);
  f.putFloat(at + 112, 77.0f);  // not used
  f.putRaw(at + kBlockHead, samples);
}

class ZrkTest : public testing::ForeignFileTest<ReadFileZRK> {
 protected:
  ZrkTest() : ForeignFileTest("rec.zrk") {}
  void SetUp() override {
    QLocale::setDefault(QLocale::c());
    // What a recording before this one leaves behind.
    for (int c = 1; c <= kMaxChannels; ++c)
      for (int r = 1; r <= 40; ++r) state->SignalData.at(r, c) = 999;
    state->SolidMode = true;
    state->object.Station = QStringLiteral("before");
    state->SignalDataN = 4096;
  }
};

TEST_F(ZrkTest, HeaderChannelsAndSamplesComeFromTheirOffsets) {
  ZrkShape z;
  z.channels = 2;
  FileBytes f = ZrkHeader(z);
  // Marks in half samples: 6 -> row 3, 9 -> 4.5 -> row 4 (half to even).
  f.put32(584, 6).put32(588, 9).put32(592, 0).put32(1384, 100);
  const QByteArray bytes3("\x00\x7F\x80\xFF\x01\xC8\x40\x82", 8);
  PutBlock(f, 1416, 3, 0, 2.0f, 0.5f, bytes3);
  PutBlock(f, 1416 + kBlockHead + 8, 5, 1, 9.0f, 1.25f, bytes3, "single");
  ASSERT_TRUE(open(f.bytes));
  EXPECT_TRUE(prompts.messages().empty());

  const AppState& s = *state;
  EXPECT_EQ(s.object.Station, QStringLiteral("Саяно ГЭС"));
  EXPECT_EQ(s.object.Mode, QStringLiteral("Выбег"));
  EXPECT_EQ(s.object.Agregat, 3);
  EXPECT_EQ(s.Polus, 72);
  EXPECT_EQ(s.NumberRotorRecord, 2);
  EXPECT_DOUBLE_EQ(s.object.RecordDate, 45000.5);
  EXPECT_EQ(s.FreqSety, 50);
  EXPECT_NEAR(s.FreqRotorN, 50 * 120 / 72.0, 1e-9);
  EXPECT_NEAR(s.FreqOneGarmonic, 50 * 2 / 72.0, 1e-9);
  EXPECT_EQ(s.FreqDesc, 6);  // 8 samples over 2 revolutions at 1.5 Hz

  const QStringList remarks = {"12.5", "0.1", "123456", "-3.25", "-3.25", "-3.25", "0", "-7",
                               "1000000", "0", "42", "42", "0.0025", "0.0025"};
  for (int i = 0; i < remarks.size(); ++i) EXPECT_EQ(s.object.Remark[i], remarks[i]) << "remark " << i;
  EXPECT_EQ(s.object.Remark[24], QStringLiteral("24"));
  EXPECT_EQ(s.object.Remark[27], QStringLiteral("0"));

  const auto& ch = s.channels;
  EXPECT_EQ(ch.ProbeFreq[1], (std::array<float, 7>{10, 20, 30, 40, -1, -1, -1}));
  EXPECT_EQ(ch.ProbeFreq[15][0], 1.5f);
  EXPECT_EQ(ch.ProbeFreq[16][0], -1.0f);

  EXPECT_EQ(s.ChannelUsedCount, 3);
  EXPECT_EQ(ch.Channel[1], 0);
  EXPECT_EQ(ch.Channel[3], 1);
  EXPECT_EQ(ch.Type[3], 0);
  EXPECT_EQ(ch.Place[3], QStringLiteral("ТП"));
  EXPECT_EQ(ch.Direct[3], QStringLiteral("ВБ"));
  EXPECT_EQ(ch.Place[5], QStringLiteral("single"));
  EXPECT_TRUE(ch.Direct[5].isEmpty());
  EXPECT_FLOAT_EQ(ch.Ku[3], 2.0f);
  EXPECT_FLOAT_EQ(ch.Ku[5], 1.0f);  // type 1 reads with 1.0 whatever the file holds
  // The byte at 1416 is both the last header field and the first channel.
  EXPECT_EQ(s.FirstChannelActive, 3);
  EXPECT_EQ(ch.Active[3], 1);
  EXPECT_EQ(ch.Active[5], 0);

  // Bytes 00 7F 80 FF 01 C8 40 82 read as v = 256 383 128 255 257 200 320 130.
  const int v[8] = {256, 383, 128, 255, 257, 200, 320, 130};
  for (int n = 1; n <= 8; ++n) {
    EXPECT_EQ(s.SignalData.at(n, 3), std::lrint(0.5 * v[n - 1] / 1.25 * 2.0)) << "row " << n;
    EXPECT_EQ(s.SignalData.at(n, 5), v[n - 1]) << "row " << n;
  }
  EXPECT_EQ(s.SignalData.at(1, 3), 205);  // 204.8
  EXPECT_EQ(s.SignalData.at(5, 3), 206);  // 205.6

  // 8 samples are shown in 2^(3+1) rows; the rows behind them are cleared.
  EXPECT_EQ(s.SignalDataN, 16);
  EXPECT_EQ(s.ViewFirst, 1);
  EXPECT_EQ(s.ViewLast, 16);
  for (int r = 9; r <= 16; ++r) {
    EXPECT_EQ(s.SignalData.at(r, 3), 0);
    EXPECT_EQ(s.SignalData.at(r, 32), 0);
  }
  EXPECT_EQ(s.SignalData.at(17, 3), 999);
  EXPECT_EQ(s.SignalData.at(1, 1), 999);  // channels not in the file keep their rows

  // Marker channel: marks, the first and the last sample.
  EXPECT_EQ(ch.Channel[32], 1);
  EXPECT_EQ(ch.Type[32], 3);
  EXPECT_FLOAT_EQ(ch.Ku[32], 1.25f);
  const int marker[9] = {0, 1000, 0, 1000, 1000, 0, 0, 0, 1000};
  for (int r = 1; r <= 8; ++r) EXPECT_EQ(s.SignalData.at(r, 32), marker[r]) << "row " << r;
  EXPECT_EQ(s.SignalData.at(50, 32), 1000);  // mark 100: inside the 32768 rows

  EXPECT_FALSE(s.SolidMode);
  EXPECT_FALSE(s.Imposition);
  EXPECT_TRUE(s.DataSaved);
  EXPECT_EQ(s.ChannelDifferential, 0);
}

TEST_F(ZrkTest, FortyThousandSamplesAreThinnedTo32768Rows) {
  ZrkShape z;
  z.samples = 40000;
  z.rotorHz = 2.0f;
  z.numberRotorRecord = 10;
  FileBytes f = ZrkHeader(z);
  f.put32(584, 60000);  // row 30000
  f.put32(588, 80000);  // row 40000: past the shown rows, not rescaled, dropped
  QByteArray samples(40000, '\0');
  for (int n = 0; n < 40000; ++n) samples[n] = static_cast<char>(128 + n % 128);  // v = b
  PutBlock(f, 1416, 1, 0, 1.0f, 1.25f, samples);  // code = v
  state->SignalData.at(32769, 1) = -1;
  state->SignalData.at(40000, 32) = -1;
  ASSERT_TRUE(open(f.bytes));

  const AppState& s = *state;
  EXPECT_EQ(s.SignalDataN, 32768);
  EXPECT_EQ(s.ViewLast, 32768);
  EXPECT_EQ(s.FreqDesc, 8000);  // 40000 samples over 10 revolutions at 2 Hz
  // Position 1 + (n-1) * 0.8192: row 1 takes sample 1, row 2 sample 2, and
  // row 3 sample 4 (sample 3 at 2.64 is overwritten by sample 4 at 3.46).
  EXPECT_EQ(s.SignalData.at(1, 1), 128);
  EXPECT_EQ(s.SignalData.at(2, 1), 129);
  EXPECT_EQ(s.SignalData.at(3, 1), 131);
  std::vector<int> expected(32769, -100);
  for (int n = 1; n <= 40000; ++n)
    expected[static_cast<size_t>(std::lround(1 + (n - 1) * 0.8192))] = 128 + (n - 1) % 128;
  int mismatches = 0;
  for (int r = 1; r <= 32768; ++r) mismatches += s.SignalData.at(r, 1) != expected[static_cast<size_t>(r)];
  EXPECT_EQ(mismatches, 0);
  EXPECT_EQ(s.SignalData.at(32769, 1), -1);

  EXPECT_EQ(s.SignalData.at(30000, 32), 1000);
  EXPECT_EQ(s.SignalData.at(1, 32), 1000);
  EXPECT_EQ(s.SignalData.at(32768, 32), 1000);
  EXPECT_EQ(s.SignalData.at(40000, 32), -1);
}

// A recording of 300 million samples was once read whole into memory.
TEST_F(ZrkTest, AHugeRecordingCostsTimeNotMemory) {
  ZrkShape z;
  z.samples = 300'000'000;
  FileBytes f = ZrkHeader(z);
  PutBlock(f, 1416, 1, 0, 1.0f, 1.25f, QByteArray());
  state->PathFileData = dir.filePath(QStringLiteral("huge.zrk"));
  ASSERT_TRUE(testing::WriteBytes(state->PathFileData, f.bytes));
  ASSERT_TRUE(QFile::resize(state->PathFileData, 1416 + kBlockHead + z.samples));
  const int64_t before = testing::PeakResidentBytes();
  ASSERT_TRUE(ReadFileZRK(*state, prompts));
  EXPECT_LT(testing::PeakResidentBytes() - before, 64 * testing::kMiB);
  EXPECT_EQ(state->SignalDataN, 32768);
}

TEST_F(ZrkTest, ZeroOrNegativePolusIsDerivedFromTheRotorFrequency) {
  const struct {
    int16_t polus;
    float hz;
    int want;
  } cases[] = {{0, 1.5f, 67}, {-4, 2.5f, 40}, {0, 40.0f, 2} /* 2.5 to even */, {48, 1.5f, 48}};
  for (const auto& c : cases) {
    ZrkShape z;
    z.polus = c.polus;
    z.rotorHz = c.hz;
    FileBytes f = ZrkHeader(z);
    PutBlock(f, 1416, 1, 0, 1.0f, 1.0f, QByteArray(8, '\x80'));
    ASSERT_TRUE(open(f.bytes));
    EXPECT_EQ(state->Polus, c.want) << "f = " << c.hz;
    EXPECT_NEAR(state->FreqRotorN, 6000.0 / c.want, 1e-9);
  }
}

TEST_F(ZrkTest, KeptProbeTableSurvivesTheLoad) {
  state->SaveProbe = true;
  state->channels.ProbeFreq[1] = {1, 2, 3, 4, 5, 6, 7};
  FileBytes f = ZrkHeader({});
  PutBlock(f, 1416, 1, 0, 1.0f, 1.0f, QByteArray(8, '\x80'));
  ASSERT_TRUE(open(f.bytes));
  EXPECT_EQ(state->channels.ProbeFreq[1], (std::array<float, 7>{1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(ZrkTest, ShortOrDamagedFilesAreRefusedAndChangeNothing) {
  auto good = [](ZrkShape z = {}) {
    FileBytes f = ZrkHeader(z);
    for (int i = 0; i < z.channels; ++i)
      PutBlock(f, 1416 + i * (kBlockHead + z.samples), i + 1, 0, 1.0f, 1.0f,
               QByteArray(z.samples, '\x80'));
    return f;
  };
  const QString truncated =
      QStringLiteral("Файл rec.zrk системы ЗОР-16 неполный: данные обрываются раньше, чем указано в его заголовке.");
  auto damaged = [](const char* reason) {
    return QStringLiteral("Файл rec.zrk не является файлом системы ЗОР-16 или повреждён: %1.")
        .arg(QString::fromUtf8(reason));
  };
  ZrkShape two;
  two.channels = 2;
  const struct {
    const char* what;
    QByteArray bytes;
    QString text;
  } cases[] = {
      {"empty", QByteArray(), truncated},
      {"samples cut", good().bytes.chopped(1), truncated},
      {"second block missing", good(two).bytes.left(1416 + kBlockHead + 8), truncated},
      {"huge sample count", good().put32(324, std::numeric_limits<int32_t>::max()).bytes, truncated},
      {"no samples", good().put32(324, 0).bytes, damaged("число отсчётов 0")},
      {"no channels", good().put8(322, 0).bytes, damaged("нет ни одного канала")},
      {"channel 33", good().put8(1416, 33).bytes, damaged("номер канала 33")},
      {"type 12", good().put8(1416 + 83, 12).bytes, damaged("тип датчика 12 канала 1")},
      {"no rotor frequency", good().putFloat(316, 0.0f).bytes, damaged("частота вращения 0 Гц")},
      {"rotor frequency NaN", good().putFloat(316, std::nanf("")).bytes, damaged("частота вращения nan Гц")},
      {"no revolutions", good().put16(292, 0).bytes, damaged("число оборотов записи 0")},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    prompts.shown.clear();
    EXPECT_FALSE(open(c.bytes));
    const auto shown = prompts.messages();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].text, c.text);
    EXPECT_EQ(shown[0].title, QStringLiteral("Открытие"));
    EXPECT_EQ(shown[0].icon, PromptIcon::Critical);
    EXPECT_EQ(state->object.Station, QStringLiteral("before"));
    EXPECT_EQ(state->SignalDataN, 4096);
    EXPECT_TRUE(state->SolidMode);
    EXPECT_EQ(state->SignalData.at(1, 1), 999);
  }
}

TEST_F(ZrkTest, RandomBytesNeverCrashAndAreEitherReadOrTold) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    QByteArray bytes(static_cast<qsizetype>(random() % 6000), '\0');
    for (char& b : bytes) b = static_cast<char>(random());
    if (round % 2 && bytes.size() > 1416) bytes[1416] = 1;  // a plausible first channel
    prompts.shown.clear();
    const bool read = open(bytes);
    EXPECT_EQ(prompts.messages().size(), read ? 0u : 1u);
  }
}

}  // namespace
}  // namespace aqx
