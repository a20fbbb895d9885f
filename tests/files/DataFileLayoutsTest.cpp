// Files of the thirteen layouts, built byte by byte from offsets written out
// here, open with the fields each layout carries and defaults for the rest.
#include "DataFileTestSupport.h"
#include "files/DataFile.h"
#include "files/Wave.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>

namespace aqx {
namespace {

using testing::FileBytes;

// Offsets of the fields the test fills; -1 where a layout lacks the field.
struct Offsets {
  int minor, H;
  int freqDescR, freqRotorN, station, agregat, recordDate, imposition, firstChannelActive;
  int blockSizeFFT, blockSizeFFTa;
  int channel, type, place, direct, ku, zero, ks, channelColor, volume, sensorName, channelY;
  int channelDifferential, probeFreq, probeEntries, filter, filterEntries;
  int signalDataN, synchroAdChannel, viewStyle, moduleTag, solidFileName, freqADC, remark, markerN;
};

// clang-format off
const Offsets kLayouts[] = {
  // minor H     DescR RotN Stat Agr  Date Imp  FCA  Blk  BlkA Chan Type Place Dir  Ku    Zero  KS    Color Vol   Sens  ChY   Diff  Probe n  Filt  n  N     SyCh  View  Tag   SolN  ADC   Rem   MrkN
  {0,  5238,  -1,  -1,  50,  100, 154, 162, 166, -1,  -1,  170, 426, 554,  2154, 2954, -1,   -1,   3082, -1,   -1,   -1,   -1,   3210, 5, 3850, 3, 4234, -1,   -1,   -1,   -1,   -1,   4238, -1},
  {1,  5366,  -1,  -1,  50,  100, 154, 162, 166, -1,  -1,  170, 426, 554,  2154, 2954, -1,   3082, 3210, -1,   -1,   -1,   -1,   3338, 5, 3978, 3, 4362, -1,   -1,   -1,   -1,   -1,   4366, -1},
  {2,  5514,  -1,  -1,  50,  100, 154, 162, 166, -1,  -1,  170, 426, 554,  2154, 2954, -1,   3082, 3210, 3338, -1,   -1,   -1,   3466, 5, 4106, 3, 4490, 4506, -1,   -1,   -1,   -1,   4514, -1},
  {3,  5534,  50,  54,  70,  120, 174, 182, 186, -1,  -1,  190, 446, 574,  2174, 2974, -1,   3102, 3230, 3358, -1,   -1,   -1,   3486, 5, 4126, 3, 4510, 4526, -1,   -1,   -1,   -1,   4534, -1},
  {4,  6334,  50,  54,  70,  120, 174, 182, 186, -1,  -1,  190, 446, 574,  2174, 2974, -1,   3102, 3230, 3358, 3486, -1,   -1,   4286, 5, 4926, 3, 5310, 5326, -1,   -1,   -1,   -1,   5334, -1},
  {5,  6594,  50,  54,  70,  120, 174, 182, 186, 190, -1,  194, 450, 578,  2178, 2978, -1,   3106, 3234, 3362, 3490, 4290, -1,   4546, 5, 5186, 3, 5570, 5586, -1,   -1,   -1,   -1,   5594, -1},
  {6,  6606,  50,  54,  70,  120, 174, 182, 186, 190, 194, 202, 458, 586,  2186, 2986, -1,   3114, 3242, 3370, 3498, 4298, -1,   4554, 5, 5194, 3, 5578, 5594, 5602, -1,   -1,   -1,   5606, -1},
  {7,  7622,  50,  54,  70,  120, 174, 182, 186, 190, 194, 202, 458, 586,  2186, 2986, -1,   3114, 3242, 3370, 3498, 4298, -1,   4554, 5, 5194, 3, 5578, 5594, 5602, 5606, -1,   -1,   6622, -1},
  {8,  6878,  50,  54,  70,  120, 174, 182, 186, 190, 194, 202, 458, 586,  2186, 2986, -1,   3114, 3242, 3370, 3498, 4298, -1,   4554, 7, 5450, 3, 5834, 5850, 5858, 5862, -1,   -1,   5878, -1},
  {9,  7006,  50,  54,  70,  120, 174, 182, 186, 190, 194, 202, 458, 586,  2186, 2986, -1,   3114, 3242, 3370, 3498, 4298, -1,   4554, 7, 5450, 4, 5962, 5978, 5986, 5990, -1,   -1,   6006, -1},
  {10, 7134,  50,  54,  70,  120, 174, 182, 186, 190, 194, 202, 458, 586,  2186, 2986, 3114, 3242, 3370, 3498, 3626, 4426, -1,   4682, 7, 5578, 4, 6090, 6106, 6114, 6118, -1,   -1,   6134, -1},
  {11, 7169,  50,  54,  70,  120, 174, 182, 186, 190, 194, 202, 458, 586,  2186, 2986, 3114, 3242, 3370, 3498, 3626, 4426, 4682, 4686, 7, 5582, 4, 6094, 6110, 6118, 6122, 6140, 6165, 6169, -1},
  {12, 14173, 50,  54,  70,  120, 174, 182, 186, 190, 194, 202, 458, 586,  2186, 2986, 3114, 3242, 3370, 3498, 3626, 4426, 4682, 4686, 7, 5582, 4, 6094, 6110, 6118, 6122, 6140, 6165, 6169, 7169},
};
// clang-format on

constexpr int kSamples = 3;
const int16_t kCodes2[kSamples] = {100, -101, 8191};
const int16_t kCodes7[kSamples] = {-8192, 6, -7};

size_t At(int offset, int index = 0, int stride = 4) {
  return static_cast<size_t>(offset + index * stride);
}

// Channels 2 and 7 recorded, 7 a shaft marker; every field the layout has
// holds a value that differs from its default.
QByteArray BuildFile(const Offsets& o) {
  FileBytes f(static_cast<size_t>(o.H - 1 + 2 * kSamples * 2));
  f.magic().version(1, o.minor, 5);
  f.i32(22, 36).i32(26, 50).i32(46, 4000);
  if (o.freqDescR >= 0) f.i32(At(o.freqDescR), 3999);
  if (o.freqRotorN >= 0) f.f64(At(o.freqRotorN), 166.5);
  f.text(At(o.station), QStringLiteral("Зейская ГЭС"), 50);
  f.i32(At(o.agregat), 9).f64(At(o.recordDate), 40000.25);
  f.i32(At(o.imposition), 1).i32(At(o.firstChannelActive), 2);
  if (o.blockSizeFFT >= 0) f.i32(At(o.blockSizeFFT), 2048);
  if (o.blockSizeFFTa >= 0) f.i32(At(o.blockSizeFFTa), 4096).i32(At(o.blockSizeFFTa, 1), 512);
  for (int c : {2, 7}) f.i32(At(o.channel, c - 1), 1);
  f.i32(At(o.type, 6), 3);
  f.text(At(o.place, 1, 50), QStringLiteral("ВГП"), 50);
  f.text(At(o.direct, 1, 25), QStringLiteral("НБ"), 25);
  f.f32(At(o.ku, 1), 2.5f).f32(At(o.ku, 6), 9.0f);
  if (o.zero >= 0) f.i32(At(o.zero, 1), 12);
  if (o.ks >= 0) f.f32(At(o.ks, 1), 3.5f);
  f.i32(At(o.channelColor, 1), 0x123456);
  if (o.volume >= 0) f.i32(At(o.volume, 1), 2);
  if (o.sensorName >= 0) f.text(At(o.sensorName, 1, 25), QStringLiteral("Датчик"), 25);
  if (o.channelY >= 0) f.i32(At(o.channelY, 1), 77).i32(At(o.channelY + 128, 1), 250);
  if (o.channelDifferential >= 0) f.i32(At(o.channelDifferential), 2);
  for (int e = 0; e < 32 * o.probeEntries; ++e) f.f32(At(o.probeFreq, e), -1.0f);
  for (int e = 0; e < o.probeEntries; ++e) f.f32(At(o.probeFreq, o.probeEntries + e), 20.0f + e);
  for (int e = 0; e < 32 * o.filterEntries; ++e) f.f32(At(o.filter, e), -1.0f);
  for (int e = 0; e < o.filterEntries; ++e) f.f32(At(o.filter, o.filterEntries + e), 40.0f + e);
  f.i32(At(o.signalDataN), kSamples);
  if (o.synchroAdChannel >= 0) f.i32(At(o.synchroAdChannel), 5);
  if (o.viewStyle >= 0) f.i32(At(o.viewStyle), 4);
  if (o.moduleTag >= 0) f.text(At(o.moduleTag), QStringLiteral("E-440"), 16);
  if (o.minor == 7) f.text(At(o.moduleTag + 16), QStringLiteral("второй текст"), 1000);
  if (o.solidFileName >= 0) f.text(At(o.solidFileName), QStringLiteral("Поток"), 25);
  if (o.freqADC >= 0) f.i32(At(o.freqADC), 64000);
  f.text(At(o.remark), QStringLiteral("р0"), 10).text(At(o.remark + 10), QStringLiteral("р1"), 10);
  f.text(At(o.remark + 270), QStringLiteral("итог"), 729);
  if (o.markerN >= 0) {
    f.i32(At(o.markerN), 1).f64(At(o.markerN + 4), 40000.5);
    f.text(At(o.markerN + 804), QStringLiteral("пуск"), 50);
  }
  for (int i = 0; i < kSamples; ++i) {
    f.i16(At(o.H - 1, i, 2), kCodes2[i]);
    f.i16(At(o.H - 1 + 2 * kSamples, i, 2), kCodes7[i]);
  }
  return f.bytes();
}

class OlderLayouts : public ::testing::TestWithParam<Offsets> {};

TEST_P(OlderLayouts, OpenWithTheirFieldsAndDefaultsForTheRest) {
  const Offsets& o = GetParam();
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("layout%1.aqx").arg(o.minor));
  ASSERT_TRUE(testing::WriteFile(path, BuildFile(o)));

  AppState s;  // Polus 72, FreqSety 50, FreqDesc 2677 before the read
  s.PathFileData = path;
  ScriptedPrompts p;
  ASSERT_TRUE(ReadDataFile(s, p)) << p.lastMessage().toStdString();
  const auto& ch = s.channels;
  auto has = [](int offset) { return offset >= 0; };

  EXPECT_EQ(s.FileVersionMinor, o.minor);
  EXPECT_EQ(s.Polus, 36);
  EXPECT_EQ(s.FreqDesc, 4000);
  EXPECT_EQ(s.FreqDescR, has(o.freqDescR) ? 3999 : 2677);
  EXPECT_DOUBLE_EQ(s.FreqRotorN, has(o.freqRotorN) ? 166.5 : 50 * 120.0 / 72);
  EXPECT_EQ(s.object.Station, QStringLiteral("Зейская ГЭС"));
  EXPECT_EQ(s.object.Agregat, 9);
  EXPECT_EQ(s.object.RecordDate, 40000.25);
  EXPECT_TRUE(s.Imposition);
  EXPECT_EQ(s.FirstChannelActive, 2);
  EXPECT_EQ(s.BlockSizeFFT, has(o.blockSizeFFT) ? 2048 : 1048576);
  EXPECT_EQ(s.BlockSizeFFTa, has(o.blockSizeFFTa) ? 4096 : 1048576);
  EXPECT_EQ(s.BlockSizeFFTr, has(o.blockSizeFFTa) ? 512 : 1048576);
  EXPECT_EQ(s.ChannelUsedCount, 2);
  EXPECT_EQ(ch.Place[2], QStringLiteral("ВГП"));
  EXPECT_EQ(ch.Direct[2], QStringLiteral("НБ"));
  EXPECT_EQ(ch.Ku[2], 2.5f);
  EXPECT_EQ(ch.Ku[7], 1.25f);
  EXPECT_EQ(ch.Zero[2], has(o.zero) ? 12 : 0);
  EXPECT_EQ(ch.KS[2], has(o.ks) ? 3.5f : 0.0f);
  EXPECT_EQ(ch.ChannelColor[2], 0x123456);
  EXPECT_EQ(ch.Volume[2], has(o.volume) ? 2 : 0);
  EXPECT_EQ(ch.SensorName[2], has(o.sensorName) ? QStringLiteral("Датчик") : QString());
  EXPECT_EQ(ch.ChannelY[2], has(o.channelY) ? 77 : 1000000);
  EXPECT_EQ(ch.ChannelYm[2], has(o.channelY) ? 250 : -1);
  EXPECT_EQ(s.ChannelDifferential, has(o.channelDifferential) ? 2 : 0);
  for (int e = 0; e < kProbeEntries; ++e)
    EXPECT_EQ(ch.ProbeFreq[2][static_cast<size_t>(e)], e < o.probeEntries ? 20.0f + e : -1.0f) << e;
  for (int e = 0; e < kFilterEntries; ++e)
    EXPECT_EQ(ch.Filter[2][static_cast<size_t>(e)], e < o.filterEntries ? 40.0f + e : -1.0f) << e;
  EXPECT_EQ(s.SignalDataN, kSamples);
  EXPECT_EQ(s.SynchroAdChannel, has(o.synchroAdChannel) ? 5 : 32);
  EXPECT_EQ(s.ViewStyle, has(o.viewStyle) ? 4 : 1);
  EXPECT_EQ(s.ModuleTag, has(o.moduleTag) ? QStringLiteral("E-440") : QStringLiteral("?"));
  EXPECT_EQ(s.SolidFileName, has(o.solidFileName) ? QStringLiteral("Поток") : QStringLiteral("Aquilonix"));
  EXPECT_EQ(s.FreqADC, has(o.freqADC) ? 64000 : 32000);
  EXPECT_EQ(s.object.Remark[0], QStringLiteral("р0"));
  EXPECT_EQ(s.object.Remark[1], QStringLiteral("р1"));
  EXPECT_EQ(s.object.Remark[27], QStringLiteral("итог"));
  EXPECT_EQ(s.markers.MarkerN, has(o.markerN) ? 1 : 0);
  EXPECT_EQ(s.markers.MarkerRemark[0], has(o.markerN) ? QStringLiteral("пуск") : QString());
  for (int i = 0; i < kSamples; ++i) {
    EXPECT_EQ(s.SignalData.at(i + 1, 2), kCodes2[i]) << i;
    EXPECT_EQ(s.SignalData.at(i + 1, 7), kCodes7[i]) << i;
  }
  const auto messages = p.messages();
  if (o.minor == 12) {
    EXPECT_TRUE(messages.empty());
  } else {
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text,
              QStringLiteral("Файл версии 1.%1 успешно конвертирован до текущей версии %2.%3")
                  .arg(o.minor)
                  .arg(AQX_VERSION_MAJOR)
                  .arg(AQX_VERSION_MINOR));
    EXPECT_EQ(messages[0].title, QStringLiteral("Конвертор"));
  }
}

// A data file converted to the current layout and exported as WAVE, the
// bytes of both; with `leaveInFile` the samples go from the input's area
// and the store is never touched.
struct Converted {
  QByteArray data, wave;
};
Converted ConvertAndExport(const QString& in, const QString& outStem, bool leaveInFile) {
  auto s = std::make_unique<AppState>();
  s->PathFileData = in;
  ScriptedPrompts p;
  std::optional<DataFileArea> area;
  EXPECT_TRUE(leaveInFile ? ReadDataFileLeavingSamples(*s, p, area) : ReadDataFile(*s, p));
  EXPECT_EQ(area.has_value(), leaveInFile);
  const DataFileArea* samplesInFile = area ? &*area : nullptr;
  EXPECT_TRUE(WriteWaveFile(*s, outStem + QStringLiteral(".wav"), p, QStringLiteral("Экспорт"), samplesInFile));
  s->PathFileData = outStem + QStringLiteral(".aqx");
  EXPECT_TRUE(area ? WriteDataFileFrom(*s, *area, p) : WriteDataFile(*s, p));
  if (leaveInFile) {
    EXPECT_EQ(s->SignalData.residentBytes(), 0u);
  }
  return {testing::ReadFile(outStem + QStringLiteral(".aqx")), testing::ReadFile(outStem + QStringLiteral(".wav"))};
}

TEST_P(OlderLayouts, SamplesLeftInTheFileConvertAndExportAsThroughTheStore) {
  const Offsets& o = GetParam();
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("layout%1.aqx").arg(o.minor));
  ASSERT_TRUE(testing::WriteFile(path, BuildFile(o)));
  const Converted stored = ConvertAndExport(path, dir.filePath(QStringLiteral("stored")), false);
  const Converted streamed = ConvertAndExport(path, dir.filePath(QStringLiteral("streamed")), true);
  EXPECT_EQ(stored.data.size(), 14172 + 2 * kSamples * 2);
  EXPECT_TRUE(stored.data == streamed.data);
  EXPECT_EQ(stored.wave.size(), 44 + 2 * kSamples * 2);
  EXPECT_TRUE(stored.wave == streamed.wave);
}

INSTANTIATE_TEST_SUITE_P(AllLayouts, OlderLayouts, ::testing::ValuesIn(kLayouts),
                         [](const auto& layout) { return "Layout" + std::to_string(layout.param.minor); });

TEST(DataFileLayouts, HeaderSizesAreThoseOfTheFormatsHistory) {
  const size_t expected[] = {5238, 5366, 5514, 5534, 6334, 6594, 6606, 7622, 6878, 7006, 7134, 7169, 14173};
  for (int minor = 0; minor <= 12; ++minor)
    EXPECT_EQ(DataFileHeaderBytes(minor), expected[minor]) << minor;
  EXPECT_EQ(DataFileHeaderBytes(13), 0u);
  EXPECT_EQ(DataFileHeaderBytes(-1), 0u);
}

TEST(DataFileLayouts, ConvertedFileIsWrittenInTheCurrentLayout) {
  QTemporaryDir dir;
  const QString oldPath = dir.filePath(QStringLiteral("old.aqx"));
  ASSERT_TRUE(testing::WriteFile(oldPath, BuildFile(kLayouts[0])));
  AppState s;
  s.PathFileData = oldPath;
  ScriptedPrompts p;
  ASSERT_TRUE(ReadDataFile(s, p));
  s.PathFileData = dir.filePath(QStringLiteral("new.aqx"));
  ASSERT_TRUE(WriteDataFile(s, p));
  const QByteArray b = testing::ReadFile(s.PathFileData);
  ASSERT_EQ(b.size(), 14172 + 2 * kSamples * 2);
  EXPECT_EQ(testing::I32At(b, 14), 12);
  EXPECT_EQ(testing::I16At(b, 14172), kCodes2[0]);
  EXPECT_EQ(testing::I16At(b, 14172 + 2 * kSamples), kCodes7[0]);
  EXPECT_EQ(testing::ReadFile(oldPath), BuildFile(kLayouts[0]));  // the old file is untouched
}

TEST(DataFileLayouts, SamplesLeftInALongerFileThanTheStoreKeepTheFirstOfEachChannel) {
  // Channels 1 and 3, more samples than the store holds: the pieces of the
  // copy and of the WAVE rows cross every boundary.
  constexpr size_t kClaimed = 1048576 + 10;
  testing::FileBytes f(14172 + 2 * 2 * kClaimed);
  f.magic().version(1, 12);
  f.i32(202, 1).i32(202 + 8, 1).i32(6094, static_cast<int32_t>(kClaimed)).i32(46, 8000);
  for (size_t i = 0; i < 2 * kClaimed; ++i)
    f.i16(14172 + 2 * i, testing::TestCode(static_cast<int>(i % kClaimed) + 1, i < kClaimed ? 1 : 3));
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("long.aqx"));
  ASSERT_TRUE(testing::WriteFile(path, f.bytes()));
  const Converted stored = ConvertAndExport(path, dir.filePath(QStringLiteral("stored")), false);
  const Converted streamed = ConvertAndExport(path, dir.filePath(QStringLiteral("streamed")), true);
  ASSERT_EQ(stored.data.size(), 14172 + 2 * 2 * 1048576);
  EXPECT_EQ(testing::I16At(stored.data, 14172 + 2 * 1048576), testing::TestCode(1, 3));
  EXPECT_TRUE(stored.data == streamed.data);
  EXPECT_EQ(stored.wave.size(), 44 + 2 * 2 * 1048576);
  EXPECT_TRUE(stored.wave == streamed.wave);
}

}  // namespace
}  // namespace aqx
