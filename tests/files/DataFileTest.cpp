// The current layout: writing, reading back, and the rules of the format.
#include "DataFileTestSupport.h"
#include "files/DataFile.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx {
namespace {

using testing::F32At;
using testing::FileBytes;
using testing::I16At;
using testing::I32At;
using testing::ReadFile;
using testing::TestCode;
using testing::TextAt;

class DataFileTest : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  QString path(const QString& name) const { return dir.filePath(name); }

  // A recording that uses every kind of field; channels 2 and 5 unused.
  static void FillRecording(AppState& s, int samples) {
    s.Polus = 48;
    s.FreqSety = 60;
    s.NumberRotorRecord = 9;
    s.StepDesc = 1.25;  // FreqDesc / BlockSizeFFT, as the block rule gives it
    s.FreqRotorReal = 149.9;
    s.FreqDesc = 5120;
    s.FreqDescR = 5000;
    s.FreqRotorN = 150.0;
    s.FreqOneGarmonic = 2.5;
    s.object.Station = QStringLiteral("Саяно-Шушенская ГЭС");
    s.object.Agregat = 7;
    s.object.Mode = QStringLiteral("Холостой ход без возбуждения");
    s.object.RecordDate = 45123.5;
    s.Imposition = true;
    s.FirstChannelActive = 3;
    s.BlockSizeFFT = 4096;
    s.BlockSizeFFTa = 8192;
    s.BlockSizeFFTr = 2048;
    for (int c = 1; c <= kMaxChannels; ++c) {
      auto& ch = s.channels;
      ch.Channel[c] = (c == 2 || c == 5) ? 0 : 1;
      ch.Active[c] = c % 3 == 0 ? 1 : 0;
      ch.Type[c] = c % 10 == 3 ? 4 : c % 10;
      ch.Place[c] = QStringLiteral("Статор %1 стык").arg(c);
      ch.Direct[c] = QStringLiteral("ВБ");
      ch.Ku[c] = 0.5f * static_cast<float>(c);
      ch.Zero[c] = -c;
      ch.KS[c] = 100.25f + static_cast<float>(c);
      ch.ChannelColor[c] = 0x010203 * c;
      ch.Volume[c] = c % 4;
      ch.SensorName[c] = QStringLiteral("ДВ-%1").arg(c);
      ch.ChannelY[c] = 40 * c;
      ch.ChannelYm[c] = 500 + c;
      for (int e = 0; e < kProbeEntries; ++e) ch.ProbeFreq[c][static_cast<size_t>(e)] = static_cast<float>(c * 10 + e);
      for (int e = 0; e < kFilterEntries; ++e) ch.Filter[c][static_cast<size_t>(e)] = static_cast<float>(c * 100 + e);
    }
    s.SignalDataN = samples;
    s.InputMode = 1;
    s.SynchroAdType = 2;
    s.SynchroAdMode = 1;
    s.SynchroAdChannel = 4;
    s.SynchroAdPorog = 1234;
    s.ViewStyle = 5;
    s.ModuleTag = QStringLiteral("E14-140");
    s.SolidFileName = QStringLiteral("Пуск");
    s.FreqADC = 100000;
    for (int r = 0; r < kRemarkCount; ++r) s.object.Remark[static_cast<size_t>(r)] = QStringLiteral("п%1").arg(r);
    s.object.Remark[27] = QStringLiteral("Свободный комментарий к записи");
    s.markers.MarkerN = 3;
    for (size_t m = 0; m < 3; ++m) {
      s.markers.MarkerDate[m] = 45123.5 + static_cast<double>(m);
      s.markers.MarkerRemark[m] = QStringLiteral("Метка %1").arg(m + 1);
      s.markers.MarkerColor[m] = 0xFF00 + static_cast<int>(m);
      s.markers.MarkerOn[m] = 1;
      s.markers.MarkerShift[m] = 100 * static_cast<int>(m);
    }
    for (int i = 1; i <= samples; ++i)
      for (int c = 1; c <= kMaxChannels; ++c) s.SignalData.at(i, c) = TestCode(i, c);
    RecountChannelUsedCount(s);
  }

  bool Read(AppState& s, const QString& file, ScriptedPrompts& p) {
    s.PathFileData = file;
    return ReadDataFile(s, p);
  }
  bool Write(AppState& s, const QString& file, ScriptedPrompts& p) {
    s.PathFileData = file;
    return WriteDataFile(s, p);
  }
};

TEST_F(DataFileTest, WrittenFileReadsBackAndWritesAgainByteForByte) {
  constexpr int kSamples = 40000;  // more than one block of the sample move
  ScriptedPrompts p;
  AppState a;
  FillRecording(a, kSamples);
  ASSERT_TRUE(Write(a, path("a.aqx"), p));
  const QByteArray first = ReadFile(path("a.aqx"));
  ASSERT_EQ(first.size(), 14172 + 2 * kSamples * 30);

  AppState b;
  ASSERT_TRUE(Read(b, path("a.aqx"), p));
  EXPECT_TRUE(p.messages().empty()) << p.lastMessage().toStdString();
  ASSERT_TRUE(Write(b, path("b.aqx"), p));
  EXPECT_EQ(ReadFile(path("b.aqx")), first);

  EXPECT_EQ(b.object.Station, a.object.Station);
  EXPECT_EQ(b.object.Mode, a.object.Mode);
  EXPECT_EQ(b.object.Remark, a.object.Remark);
  EXPECT_EQ(b.channels.Place[17], QStringLiteral("Статор 17 стык"));
  EXPECT_EQ(b.channels.ProbeFreq[32], a.channels.ProbeFreq[32]);
  EXPECT_EQ(b.channels.Filter[32], a.channels.Filter[32]);
  EXPECT_EQ(b.markers.MarkerRemark[2], QStringLiteral("Метка 3"));
  EXPECT_TRUE(b.Imposition);
  EXPECT_EQ(b.FreqRotorN, 150.0);
  EXPECT_EQ(b.FreqRotorReal, static_cast<double>(149.9f));
  EXPECT_EQ(b.SignalDataN, kSamples);
  EXPECT_EQ(b.ChannelUsedCount, 30);
  EXPECT_EQ(b.ViewFirst, 1);
  EXPECT_EQ(b.ViewLast, kSamples);
  EXPECT_DOUBLE_EQ(b.StepDesc, 5120.0 / 4096);  // block rule after the load
  for (int c : {1, 3, 4, 6, 32})
    for (int i : {1, 2, 16384, 16385, kSamples}) ASSERT_EQ(b.SignalData.at(i, c), TestCode(i, c)) << c << ' ' << i;
}

TEST_F(DataFileTest, HeaderReadGivesTheStateOfAFullReadAndLeavesTheStoreUntouched) {
  constexpr int kSamples = 40000;
  ScriptedPrompts p;
  AppState a;
  FillRecording(a, kSamples);
  ASSERT_TRUE(Write(a, path("a.aqx"), p));

  AppState full;
  ASSERT_TRUE(Read(full, path("a.aqx"), p));
  AppState header;
  EXPECT_EQ(header.SignalData.residentBytes(), 0u);  // a fresh store holds no memory
  header.PathFileData = path("a.aqx");
  ASSERT_TRUE(ReadDataFileHeader(header, p));
  EXPECT_EQ(header.SignalData.residentBytes(), 0u);
  EXPECT_EQ(BuildFileHeaderBytes(header), BuildFileHeaderBytes(full));
  EXPECT_EQ(header.SignalDataN, kSamples);
  EXPECT_EQ(header.ViewLast, kSamples);
  EXPECT_EQ(header.ChannelUsedCount, 30);
  EXPECT_DOUBLE_EQ(header.StepDesc, full.StepDesc);

  // A sample area shorter than the header says is refused all the same.
  QFile file(path("a.aqx"));
  ASSERT_TRUE(file.resize(file.size() - 2));
  AppState cut;
  cut.PathFileData = path("a.aqx");
  EXPECT_FALSE(ReadDataFileHeader(cut, p));
}

TEST_F(DataFileTest, WrittenHeaderLiesAtTheDocumentedOffsets) {
  ScriptedPrompts p;
  AppState s;
  FillRecording(s, 8);
  ASSERT_TRUE(Write(s, path("h.aqx"), p));
  const QByteArray b = ReadFile(path("h.aqx"));
  EXPECT_EQ(b.left(10), QByteArray("Aquilonix "));
  EXPECT_EQ(I32At(b, 10), AQX_VERSION_MAJOR);
  EXPECT_EQ(I32At(b, 14), 12);
  EXPECT_EQ(I32At(b, 22), 48);
  EXPECT_EQ(F32At(b, 42), 149.9f);
  EXPECT_EQ(TextAt(b, 70, 50).trimmed(), QStringLiteral("Саяно-Шушенская ГЭС"));
  EXPECT_EQ(I32At(b, 182), -1);  // Imposition true
  EXPECT_EQ(I32At(b, 202 + 4), 0);  // Channel(2)
  EXPECT_EQ(F32At(b, 2986 + 4 * 9), 5.0f);  // Ku(10)
  EXPECT_EQ(I32At(b, 3114 + 4 * 3), -4);  // Zero(4)
  EXPECT_EQ(F32At(b, 4686 + 28 * 1 + 4 * 6), 26.0f);  // ProbeFreq(2), entry 7
  EXPECT_EQ(F32At(b, 5582 + 16 * 31 + 12), 3203.0f);  // Filter(32), entry 4
  EXPECT_EQ(I32At(b, 6094), 8);
  EXPECT_EQ(TextAt(b, 6122, 16).trimmed(), QStringLiteral("E14-140"));
  EXPECT_EQ(I16At(b, 6138), 0);
  EXPECT_EQ(I32At(b, 6165), 100000);
  EXPECT_EQ(TextAt(b, 6169, 10), QStringLiteral("п0        "));
  EXPECT_EQ(TextAt(b, 6439, 30), QStringLiteral("Свободный комментарий к записи"));
  EXPECT_EQ(I32At(b, 7169), 3);
  // Samples from byte number 14173: channel 1, then 3 (2 is unused).
  EXPECT_EQ(I16At(b, 14172), TestCode(1, 1));
  EXPECT_EQ(I16At(b, 14172 + 2 * 8), TestCode(1, 3));
}

TEST_F(DataFileTest, OnlyTheRecordingsMarkersAreWrittenAndTheLastHeaderByteIsLost) {
  ScriptedPrompts p;
  AppState s;
  FillRecording(s, 4);
  s.markers.MarkerColor[3] = 77;  // marker 4, beyond MarkerN = 3
  QByteArray header = BuildFileHeaderBytes(s);
  ASSERT_EQ(header.size(), 14173);
  EXPECT_EQ(I32At(header, 12973 + 4 * 2), 0xFF02);
  EXPECT_EQ(I32At(header, 12973 + 4 * 3), 0);

  s.markers.MarkerN = 100;
  s.markers.MarkerShift[99] = 0x11223344;
  s.SignalData.at(1, 1) = 0x0155;
  ASSERT_TRUE(Write(s, path("m.aqx"), p));
  AppState back;
  ASSERT_TRUE(Read(back, path("m.aqx"), p));
  EXPECT_EQ(back.markers.MarkerShift[99], 0x00223344);  // its high byte was the first sample's
  EXPECT_EQ(back.SignalData.at(1, 1), 0x0155);
}

TEST_F(DataFileTest, RecordingWithoutUsedChannelIsAHeaderOneByteShort) {
  ScriptedPrompts p;
  AppState s;
  for (int c = 1; c <= kMaxChannels; ++c) s.channels.Channel[c] = 0;
  ASSERT_TRUE(Write(s, path("empty.aqx"), p));
  EXPECT_EQ(ReadFile(path("empty.aqx")).size(), 14172);
  AppState back;
  ASSERT_TRUE(Read(back, path("empty.aqx"), p));
  EXPECT_EQ(back.ChannelUsedCount, 0);
  EXPECT_TRUE(p.messages().empty());
}

TEST_F(DataFileTest, MarkerChannelReadsWithKuOfOneAndAQuarter) {
  ScriptedPrompts p;
  AppState s;
  s.channels.Type[4] = 3;
  s.channels.Ku[4] = 7.0f;
  s.channels.Ku[5] = 7.0f;
  ASSERT_TRUE(Write(s, path("k.aqx"), p));
  EXPECT_EQ(F32At(ReadFile(path("k.aqx")), 2986 + 12), 7.0f);
  AppState back;
  ASSERT_TRUE(Read(back, path("k.aqx"), p));
  EXPECT_EQ(back.channels.Ku[4], 1.25f);
  EXPECT_EQ(back.channels.Ku[5], 7.0f);
}

TEST_F(DataFileTest, SaveProbeAndSaveFilterKeepTheUsersTables) {
  ScriptedPrompts p;
  AppState s;
  FillRecording(s, 4);
  ASSERT_TRUE(Write(s, path("f.aqx"), p));
  AppState user;
  user.SaveProbe = true;
  user.channels.ProbeFreq[2] = {1, 2, 3, 4, 5, 6, 7};
  ASSERT_TRUE(Read(user, path("f.aqx"), p));
  EXPECT_EQ(user.channels.ProbeFreq[2], (std::array<float, 7>{1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(user.channels.Filter[2], s.channels.Filter[2]);
  ASSERT_TRUE(Write(user, path("g.aqx"), p));
  EXPECT_EQ(F32At(ReadFile(path("g.aqx")), 4686 + 28 + 24), 7.0f);

  AppState other;
  other.SaveFilter = true;
  other.channels.Filter[1] = {9, 9, 9, 9};
  ASSERT_TRUE(Read(other, path("f.aqx"), p));
  EXPECT_EQ(other.channels.Filter[1], (std::array<float, 4>{9, 9, 9, 9}));
  EXPECT_EQ(other.channels.ProbeFreq[1], s.channels.ProbeFreq[1]);
}

TEST_F(DataFileTest, DifferentialModeReadsTheChannelTableOnlyUpToSixteen) {
  ScriptedPrompts p;
  AppState s;
  FillRecording(s, 4);
  ASSERT_TRUE(Write(s, path("d.aqx"), p));
  AppState diff;
  diff.ChannelDifferential = 1;
  diff.channels.Place[20] = QStringLiteral("прежнее");
  diff.channels.Channel[20] = 0;
  diff.channels.SensorName[20] = QStringLiteral("прежний");
  ASSERT_TRUE(Read(diff, path("d.aqx"), p));
  EXPECT_EQ(diff.ChannelDifferential, 0);
  EXPECT_EQ(diff.channels.Place[16], QStringLiteral("Статор 16 стык"));
  EXPECT_EQ(diff.channels.Place[20], QStringLiteral("прежнее"));
  EXPECT_EQ(diff.channels.SensorName[20], QStringLiteral("прежний"));
  // The samples go by the flags after the read: channel 20 now counts as
  // unused, so the channels behind it take their neighbours' rows.
  EXPECT_EQ(diff.ChannelUsedCount, 29);
  EXPECT_EQ(diff.SignalData.at(1, 21), TestCode(1, 20));
}

TEST_F(DataFileTest, VersionRulesRefuseNewerMinorAndReadAnyMajor) {
  ScriptedPrompts p;
  AppState s;
  FillRecording(s, 4);
  ASSERT_TRUE(Write(s, path("v.aqx"), p));
  QByteArray bytes = ReadFile(path("v.aqx"));

  FileBytes newer(static_cast<size_t>(bytes.size()));
  newer.bytes() = bytes;
  newer.version(1, 13);
  testing::WriteFile(path("v13.aqx"), newer.bytes());
  AppState before;
  before.object.Station = QStringLiteral("прежняя");
  before.SignalData.at(1, 1) = 4321;
  before.channels.Zero[1] = 17;
  ScriptedPrompts refused;
  EXPECT_FALSE(Read(before, path("v13.aqx"), refused));
  ASSERT_EQ(refused.messages().size(), 1u);
  EXPECT_EQ(refused.messages()[0].text,
            QStringLiteral("Файл данных неизвестной или старшей версии (v1.13).\nЗагрузка невозможна!"));
  EXPECT_EQ(refused.messages()[0].title, QStringLiteral("Открытие"));
  EXPECT_EQ(before.object.Station, QStringLiteral("прежняя"));
  EXPECT_EQ(before.SignalData.at(1, 1), 4321);
  EXPECT_EQ(before.channels.Zero[1], 17);

  newer.version(7, 12, 3);
  testing::WriteFile(path("v7.aqx"), newer.bytes());
  AppState seven;
  ScriptedPrompts told;
  ASSERT_TRUE(Read(seven, path("v7.aqx"), told));
  EXPECT_EQ(seven.object.Station, s.object.Station);
  ASSERT_EQ(told.messages().size(), 1u);
  EXPECT_EQ(told.messages()[0].text,
            QStringLiteral("Файл версии 7.12 успешно конвертирован до текущей версии %1.%2")
                .arg(AQX_VERSION_MAJOR)
                .arg(AQX_VERSION_MINOR));
  EXPECT_EQ(told.messages()[0].title, QStringLiteral("Конвертор"));
  EXPECT_EQ(seven.FileVersionMajor, 7);

  AppState quiet;
  quiet.ReminderConvertFile = false;
  ScriptedPrompts none;
  ASSERT_TRUE(Read(quiet, path("v7.aqx"), none));
  EXPECT_TRUE(none.messages().empty());
}

TEST_F(DataFileTest, WrongMagicIsRefusedAndTheNoticeClosesUnlessInBatch) {
  FileBytes other(20000, ' ');
  other.text(0, QStringLiteral("Aquilon"), 10).version(1, 12);
  testing::WriteFile(path("x.aqx"), other.bytes());
  AppState s;
  s.SignalData.at(5, 5) = 55;
  ScriptedPrompts p;
  EXPECT_FALSE(Read(s, path("x.aqx"), p));
  ASSERT_EQ(p.shown.size(), 3u);
  EXPECT_EQ(p.shown[0].kind, ShownPrompt::Kind::Notice);
  EXPECT_EQ(p.shown[0].text, QStringLiteral("Подождите, идет чтение файла ..."));
  EXPECT_EQ(p.shown[1].text, QStringLiteral("Указанный файл не является файлом данных Aquilonix!"));
  EXPECT_EQ(p.shown[1].title, QStringLiteral("Открытие"));
  EXPECT_EQ(p.shown[2].kind, ShownPrompt::Kind::Notice);
  EXPECT_TRUE(p.shown[2].text.isEmpty());
  EXPECT_EQ(s.SignalData.at(5, 5), 55);

  s.BatchMode = true;
  ScriptedPrompts batch;
  EXPECT_FALSE(Read(s, path("x.aqx"), batch));
  ASSERT_EQ(batch.shown.size(), 1u);
  EXPECT_EQ(batch.shown[0].kind, ShownPrompt::Kind::Message);
}

TEST_F(DataFileTest, ContinuousRecordingTakesItsRateFromTheModuleRate) {
  ScriptedPrompts p;
  AppState s;
  for (int c = 4; c <= kMaxChannels; ++c) s.channels.Channel[c] = 0;
  s.SolidMode = true;
  s.FreqADC = 32000;
  ASSERT_TRUE(Write(s, path("solid.aqx"), p));
  AppState back;
  Read(back, path("solid.aqx"), p);
  EXPECT_TRUE(back.SolidMode);
  EXPECT_EQ(back.ChannelUsedCount, 3);
  EXPECT_EQ(back.FreqDesc, 10667);
  EXPECT_EQ(back.FreqDescR, 10667);
}

}  // namespace
}  // namespace aqx
