// info, dump, convert and export-wav of aquilonix-tool on recordings written here.
#include "files/DataFile.h"
#include "files/Wave.h"
#include "tests/tools/ToolTestSupport.h"
#include "tools/Commands.h"
#include "tools/ToolCommand.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace aqx::tool {

namespace {

class FileCommands : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  ScriptedPrompts prompts;
  QString out;

  QString path(const QString& name) const { return dir.filePath(name); }

  int Run(int (*command)(ToolContext&), const QStringList& args) {
    return RunToolCommand(command, args, prompts, out);
  }

  // Channels 1 and 4 recorded, a ramp of codes, two markers.
  QString WriteRecording() {
    auto s = std::make_unique<AppState>();
    for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = (c == 1 || c == 4) ? 1 : 0;
    s->SignalDataN = 100;
    for (int i = 1; i <= 100; ++i) {
      s->SignalData.at(i, 1) = static_cast<int16_t>(i - 50);
      s->SignalData.at(i, 4) = static_cast<int16_t>(-8192 + i);
    }
    s->object.Station = QStringLiteral("Братская \"ГЭС\"");
    s->channels.Ku[4] = 0.1f;
    s->markers.MarkerN = 2;
    s->markers.MarkerRemark[1] = QStringLiteral("второй");
    s->PathFileData = path(QStringLiteral("rec.aqx"));
    EXPECT_TRUE(WriteDataFile(*s, prompts));
    return s->PathFileData;
  }
};

TEST_F(FileCommands, InfoJsonCarriesTheRecordingOnOneLine) {
  const QString file = WriteRecording();
  ASSERT_EQ(Run(RunInfo, {file, QStringLiteral("--json")}), kExitOk);
  QJsonParseError error;
  const QJsonObject o = QJsonDocument::fromJson(out.toUtf8(), &error).object();
  ASSERT_EQ(error.error, QJsonParseError::NoError) << out.toStdString();
  EXPECT_EQ(o["Station"].toString(), QStringLiteral("Братская \"ГЭС\""));
  EXPECT_EQ(o["SignalDataN"].toInt(), 100);
  EXPECT_EQ(o["ChannelUsedCount"].toInt(), 2);
  EXPECT_EQ(o["Markers"].toArray()[1].toObject()["MarkerRemark"].toString(), QStringLiteral("второй"));
  const QJsonObject four = o["Channels"].toArray()[3].toObject();
  EXPECT_EQ(four["number"].toInt(), 4);
  EXPECT_EQ(four["Ku"].toDouble(), 0.1);  // written in the shortest form of the float
  EXPECT_EQ(out.count(QLatin1Char('\n')), 1);
}

TEST_F(FileCommands, InfoTextAndRefusals) {
  const QString file = WriteRecording();
  ASSERT_EQ(Run(RunInfo, {file}), kExitOk);
  EXPECT_TRUE(out.contains(QStringLiteral("SignalDataN: 100\n")));
  EXPECT_TRUE(out.contains(QStringLiteral("\n4\t1\t0\t1\t")));  // channel 4 row

  QFile bad(path(QStringLiteral("bad.aqx")));
  ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
  bad.write("not a recording");
  bad.close();
  EXPECT_EQ(Run(RunInfo, {bad.fileName(), QStringLiteral("--json")}), kExitRefused);
  EXPECT_TRUE(out.isEmpty());
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Указанный файл не является файлом данных Aquilonix!"));
  EXPECT_EQ(Run(RunInfo, {path(QStringLiteral("x.txt"))}), kExitRefused);
  EXPECT_EQ(Run(RunInfo, {}), kExitRefused);
}

TEST_F(FileCommands, DumpPrintsOneChannelsCodesInTheRangeAsked) {
  const QString file = WriteRecording();
  ASSERT_EQ(Run(RunDump, {file, QStringLiteral("--channel"), QStringLiteral("4")}), kExitOk);
  const QStringList lines = out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  ASSERT_EQ(lines.size(), 100);
  EXPECT_EQ(lines.front(), QStringLiteral("-8191"));
  EXPECT_EQ(lines.back(), QStringLiteral("-8092"));
  ASSERT_EQ(Run(RunDump, {file, QStringLiteral("--channel"), QStringLiteral("1"), QStringLiteral("--first"),
                          QStringLiteral("49"), QStringLiteral("--last"), QStringLiteral("51")}),
            kExitOk);
  EXPECT_EQ(out, QStringLiteral("-1\n0\n1\n"));
  EXPECT_EQ(Run(RunDump, {file, QStringLiteral("--channel"), QStringLiteral("2")}), kExitRefused);
  EXPECT_EQ(Run(RunDump, {file, QStringLiteral("--channel"), QStringLiteral("1"), QStringLiteral("--last"),
                          QStringLiteral("101")}),
            kExitRefused);
  EXPECT_EQ(Run(RunDump, {file}), kExitRefused);
}

TEST_F(FileCommands, ConvertWritesTheCurrentLayout) {
  // A layout 3 file: channel 1 recorded, 2 samples from byte number 5534.
  QByteArray old(5533 + 4, '\0');
  std::memcpy(old.data(), "Aquilonix ", 10);
  const int32_t version[3] = {1, 3, 0};
  std::memcpy(old.data() + 10, version, 12);
  const int32_t one = 1, two = 2;
  std::memcpy(old.data() + 190, &one, 4);    // Channel(1)
  std::memcpy(old.data() + 4510, &two, 4);   // SignalDataN
  const int16_t codes[2] = {-5, 7};
  std::memcpy(old.data() + 5533, codes, 4);
  QFile f(path(QStringLiteral("old.aqx")));
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.write(old);
  f.close();

  ASSERT_EQ(Run(RunConvert, {f.fileName(), path(QStringLiteral("new.aqx"))}), kExitOk);
  EXPECT_EQ(prompts.lastMessage(),
            QStringLiteral("Файл версии 1.3 успешно конвертирован до текущей версии %1.%2")
                .arg(AQX_VERSION_MAJOR)
                .arg(AQX_VERSION_MINOR));
  EXPECT_EQ(QFileInfo(path(QStringLiteral("new.aqx"))).size(), 14172 + 4);
  ASSERT_EQ(Run(RunDump, {path(QStringLiteral("new.aqx")), QStringLiteral("--channel"), QStringLiteral("1")}),
            kExitOk);
  EXPECT_EQ(out, QStringLiteral("-5\n7\n"));
  EXPECT_EQ(Run(RunConvert, {f.fileName(), path(QStringLiteral("no/such/new.aqx"))}), kExitFailure);
  EXPECT_EQ(prompts.messages().back().title, QStringLiteral("Сохранение"));
}

TEST_F(FileCommands, ExportWavWritesTheRecordedChannelsOrNothing) {
  const QString file = WriteRecording();
  const QString wav = path(QStringLiteral("out.wav"));
  ASSERT_EQ(Run(RunExportWav, {file, wav}), kExitOk);
  QFile written(wav);
  ASSERT_TRUE(written.open(QIODevice::ReadOnly));
  const QByteArray bytes = written.readAll();
  WaveContents contents;
  QString refusal;
  ASSERT_TRUE(ParseWave(std::span<const char>(bytes.constData(), static_cast<size_t>(bytes.size())), contents,
                        refusal))
      << refusal.toStdString();
  EXPECT_EQ(contents.channels, 2);
  EXPECT_EQ(contents.frameCount, 100u);
  int16_t first[2] = {};
  std::memcpy(first, bytes.constData() + contents.dataOffset, sizeof first);
  EXPECT_EQ(first[0], -49);
  EXPECT_EQ(first[1], -8191);
  // The same bytes as the export of the recording read into the store.
  auto stored = std::make_unique<AppState>();
  stored->PathFileData = file;
  ASSERT_TRUE(ReadDataFile(*stored, prompts));
  ASSERT_TRUE(WriteWaveFile(*stored, path(QStringLiteral("stored.wav")), prompts));
  QFile storedWave(path(QStringLiteral("stored.wav")));
  ASSERT_TRUE(storedWave.open(QIODevice::ReadOnly));
  EXPECT_TRUE(storedWave.readAll() == bytes);
  ASSERT_TRUE(storedWave.remove());

  EXPECT_EQ(Run(RunExportWav, {file}), kExitRefused);
  EXPECT_EQ(Run(RunExportWav, {path(QStringLiteral("notes.txt")), wav}), kExitRefused);
  EXPECT_EQ(Run(RunExportWav, {file, path(QStringLiteral("no/such/out.wav"))}), kExitFailure);
  EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("no/such/out.wav"))));
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);  // no temporary left behind
}

TEST_F(FileCommands, ConvertOntoItselfKeepsTheRecordingAndACutFileWritesNothing) {
  const QString file = WriteRecording();
  auto stored = std::make_unique<AppState>();
  stored->PathFileData = file;
  ASSERT_TRUE(ReadDataFile(*stored, prompts));
  stored->PathFileData = path(QStringLiteral("stored.aqx"));
  ASSERT_TRUE(WriteDataFile(*stored, prompts));
  QFile expected(stored->PathFileData);
  ASSERT_TRUE(expected.open(QIODevice::ReadOnly));
  const QByteArray storedBytes = expected.readAll();
  ASSERT_TRUE(expected.remove());
  // The samples are copied from the file that the result then replaces.
  ASSERT_EQ(Run(RunConvert, {file, file}), kExitOk);
  QFile in(file);
  ASSERT_TRUE(in.open(QIODevice::ReadOnly));
  EXPECT_TRUE(in.readAll() == storedBytes);
  in.close();

  ASSERT_TRUE(in.resize(storedBytes.size() - 1));
  const QString converted = path(QStringLiteral("new.aqx"));
  const QString wav = path(QStringLiteral("new.wav"));
  for (const auto& [command, output] : {std::pair{&RunConvert, converted}, std::pair{&RunExportWav, wav}}) {
    prompts.shown.clear();
    EXPECT_EQ(Run(command, {file, output}), kExitRefused);
    EXPECT_TRUE(prompts.lastMessage().startsWith(
        QStringLiteral("Файл данных повреждён: по заголовку в нём 100 отсчётов по 2 каналам")))
        << prompts.lastMessage().toStdString();
    EXPECT_FALSE(QFileInfo::exists(output));
  }
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 1);
}

}  // namespace
}  // namespace aqx::tool
