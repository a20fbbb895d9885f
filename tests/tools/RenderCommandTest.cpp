// render of aquilonix-tool, run as the user runs it: arguments, exit codes,
// the picture, and the coarsest block of a very long continuous recording.
#include "core/AppState.h"
#include "files/DataFile.h"
#include "tests/tools/ToolTestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace aqx {
namespace {

using tool::RunTool;
using tool::ToolRun;

// A continuous recording of three channels at 32 kHz, `bytes` long, its
// samples a hole of the file system.
QString SparseContinuousRecording(const QString& path, int64_t bytes) {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = c <= 3 ? 1 : 0;
  s->channels.Active[1] = 1;
  s->SolidMode = true;
  s->FreqADC = 32000;
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly) || !file.resize(bytes)) return {};
  file.close();
  ScriptedPrompts prompts;
  return WriteFileHeader(*s, path, prompts) ? path : QString();
}

TEST(RenderCommand, DrawsAPictureAndRefusesWhatItCannotDraw) {
  QTemporaryDir dir;
  const QString recording = SparseContinuousRecording(dir.filePath(QStringLiteral("запись.aqx")), 14172 + 6 * 40000);
  ASSERT_FALSE(recording.isEmpty());
  const QString picture = dir.filePath(QStringLiteral("signal.png"));
  const ToolRun ok = RunTool({QStringLiteral("render"), QStringLiteral("signal"), recording, picture,
                              QStringLiteral("--width"), QStringLiteral("640"), QStringLiteral("--height"),
                              QStringLiteral("300")});
  ASSERT_EQ(ok.exitCode, 0) << ok.err.toStdString();
  EXPECT_EQ(QImage(picture).size(), QSize(640, 300));
  EXPECT_TRUE(ok.out.contains(QStringLiteral("block 1 at 1:1,"))) << ok.out.toStdString();

  const QStringList refused[] = {
      {QStringLiteral("render"), QStringLiteral("signal"), recording},
      {QStringLiteral("render"), QStringLiteral("signal"), recording, picture, QStringLiteral("--width"),
       QStringLiteral("10")},
      {QStringLiteral("render"), QStringLiteral("signal"), recording, picture, QStringLiteral("--channel"),
       QStringLiteral("9")},
      {QStringLiteral("render"), QStringLiteral("signal"), recording, picture, QStringLiteral("--scale"),
       QStringLiteral("3")},
      {QStringLiteral("render"), QStringLiteral("signal"), dir.filePath(QStringLiteral("нет.aqx")), picture},
  };
  for (const QStringList& args : refused) {
    const ToolRun run = RunTool(args);
    EXPECT_EQ(run.exitCode, 2) << args.join(QLatin1Char(' ')).toStdString();
    EXPECT_FALSE(run.err.isEmpty());
  }
}

// At the coarsest scale of 100 GiB the rounded rate of a channel is 0 Hz;
// the clock, the grid and the spectrum must still count with the true one.
TEST(RenderCommand, TheCoarsestBlockOfAHundredGibibytesKeepsItsClock) {
  QTemporaryDir dir;
  const QString recording =
      SparseContinuousRecording(dir.filePath(QStringLiteral("длинная.aqx")), int64_t{100} << 30);
  ASSERT_FALSE(recording.isEmpty());
  const QString picture = dir.filePath(QStringLiteral("whole.png"));
  const ToolRun run = RunTool({QStringLiteral("render"), QStringLiteral("signal"), recording, picture,
                               QStringLiteral("--scale"), QStringLiteral("min")});
  ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
  // 107374168419 bytes of rows: 17,895,694,736 rows a channel, 17,067
  // blocks, scale 32768 = 2^15: 32000 / 3 / 32768 Hz.
  EXPECT_TRUE(run.out.contains(QStringLiteral("block 1 / 1 at 1:32768, 0.325521 Hz"))) << run.out.toStdString();
  // Row 1 is 3.072 s in; 1,048,576 rows end 37 days and 6:47:05.472 later,
  // shown as a time of day.
  EXPECT_TRUE(run.out.contains(QStringLiteral("W: 0:00:03.072 - 6:47:05.472"))) << run.out.toStdString();
  for (const char* wrong : {"nan", "inf"}) EXPECT_FALSE(run.out.contains(QLatin1String(wrong))) << run.out.toStdString();
  EXPECT_TRUE(QFileInfo::exists(picture));
}

}  // namespace
}  // namespace aqx
