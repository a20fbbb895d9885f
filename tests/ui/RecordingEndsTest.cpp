// How a continuous recording from the window ends when things go wrong: a
// disk that fills up during the run, and a program killed in the middle.
// Each runs the window program as a child process of this test program; the
// row counters of the virtual module on channels 1 and 2 tell whether every
// row the file holds is the module's, in order.
//
// The small disk is a 1 MiB tmpfs mounted in a user and mount namespace of
// the child's own (unshare -r -m). Where namespaces are not allowed, the
// child gets a file-size limit instead, with SIGXFSZ ignored: the writes
// fail with EFBIG at the limit as they would with ENOSPC at a full disk.

#include "UiTestSupport.h"

#include "ui/acquisition/MeasurementRun.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>

namespace aqx {
namespace {

constexpr int kChannels = 4;
constexpr qint64 kSmallDiskBytes = 1024 * 1024;

void PumpFor(int milliseconds) {
  QElapsedTimer clock;
  clock.start();
  while (clock.elapsed() < milliseconds) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

// The window program set for a continuous recording of the counters at the
// module's full rate into `folder`.
void UseCounters(uitest::Workbench& w, const QString& folder) {
  qputenv("AQX_VIRTUAL_CHANNELS", "counter,counterhigh,marker,runout");
  AppState& s = *w.state;
  for (int c = 1; c <= kMaxChannels; ++c) s.channels.Channel[c] = c <= kChannels ? 1 : 0;
  RecountChannelUsedCount(s);
  s.SolidMode = true;
  s.SolidFileName = QStringLiteral("ends");
  s.InitDirSave = folder;
  s.FreqADC = 100000;
}

QString ChildFile(const QString& folder) { return QDir(folder).filePath(QStringLiteral("ends.aqx")); }

// Starts this test program as the child `test` with AQX_TEST_RECORD_DIR set;
// through `wrapper` (unshare ... sh -c) when one is given.
void StartChild(QProcess& child, const QString& test, const QString& folder, const QStringList& wrapper = {},
                const QString& fileSizeLimit = {}) {
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert(QStringLiteral("AQX_TEST_RECORD_DIR"), folder);
  if (!fileSizeLimit.isEmpty()) env.insert(QStringLiteral("AQX_TEST_FILE_SIZE_LIMIT"), fileSizeLimit);
  child.setProcessEnvironment(env);
  child.setProcessChannelMode(QProcess::MergedChannels);
  const QStringList args{QStringLiteral("--gtest_filter=RecordingEndsChild.") + test};
  if (wrapper.isEmpty()) {
    child.start(QCoreApplication::applicationFilePath(), args);
  } else {
    child.start(wrapper.first(), wrapper.mid(1) + QStringList{QCoreApplication::applicationFilePath()} + args);
  }
}

bool NamespacesAllowed() {
  return QProcess::execute(QStringLiteral("unshare"), {QStringLiteral("-r"), QStringLiteral("-m"), QStringLiteral("true")}) == 0;
}

// Child: records until the run ends by itself (the disk is full), then
// checks what the window program shows and what the file holds.
TEST(RecordingEndsChild, RecordsUntilTheDiskIsFull) {
  const QString folder = qEnvironmentVariable("AQX_TEST_RECORD_DIR");
  if (folder.isEmpty()) GTEST_SKIP() << "runs only as the child of RecordingEnds";
  const qint64 limit = qEnvironmentVariableIntValue("AQX_TEST_FILE_SIZE_LIMIT");
  if (limit > 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit bytes{static_cast<rlim_t>(limit), static_cast<rlim_t>(limit)};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &bytes), 0);
  }
  uitest::Workbench w;
  UseCounters(w, folder);
  QAction* record = w.window->action(QStringLiteral("mnuFileRecord"));
  record->trigger();
  ui::MeasurementRun* run = w.window->measurementRun();
  ASSERT_TRUE(run->running()) << w.prompts.lastMessage().toStdString();
  QElapsedTimer clock;
  clock.start();
  while (run->running() && clock.elapsed() < 60000) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  ASSERT_FALSE(run->running());
  // Told by its number and text, once; the program goes on.
  ASSERT_EQ(w.prompts.messages().size(), 1u);
  EXPECT_TRUE(w.prompts.lastMessage().startsWith(QStringLiteral("Error #27\n"))) << w.prompts.lastMessage().toStdString();
  if (limit == 0) {
    EXPECT_TRUE(w.prompts.lastMessage().contains(QStringLiteral("Диск заполнен")));
  }
  EXPECT_TRUE(record->isEnabled());
  // The file is open in the views, with every row written before the disk
  // filled, and whole rows only.
  const QString path = ChildFile(folder);
  EXPECT_EQ(w.state->PathFileData, path);
  EXPECT_GE(w.state->SolidBlockCount, 1);
  const uitest::CounterRows rows = uitest::CheckCounterRows(path, w.state->SolidDataStart, kChannels);
  EXPECT_EQ(rows.firstWrongRow, -1);
  EXPECT_FALSE(rows.tornRow);
  const qint64 size = QFileInfo(path).size();
  EXPECT_EQ(size, w.state->SolidDataStart + rows.rows * 2 * kChannels);
  // The disk (or the limit) was filled to within the last transfer.
  EXPECT_GT(size, (limit > 0 ? limit : kSmallDiskBytes) - 256 * 1024);
  std::printf("small disk: %lld rows, %lld bytes\n", static_cast<long long>(rows.rows), static_cast<long long>(size));
}

// Child: records until it is killed.
TEST(RecordingEndsChild, RecordsUntilKilled) {
  const QString folder = qEnvironmentVariable("AQX_TEST_RECORD_DIR");
  if (folder.isEmpty()) GTEST_SKIP() << "runs only as the child of RecordingEnds";
  uitest::Workbench w;
  UseCounters(w, folder);
  w.window->action(QStringLiteral("mnuFileRecord"))->trigger();
  ASSERT_TRUE(w.window->measurementRun()->running());
  PumpFor(60000);
}

TEST(RecordingEnds, AFullDiskEndsTheRunWithAMessageAndAFileThatOpens) {
  QTemporaryDir dir;
  QProcess child;
  if (NamespacesAllowed()) {
    const QString script = QStringLiteral("mount -t tmpfs -o size=%1 tmpfs \"$0\" && exec \"$@\"").arg(kSmallDiskBytes);
    StartChild(child, QStringLiteral("RecordsUntilTheDiskIsFull"), dir.path(),
               {QStringLiteral("unshare"), QStringLiteral("-r"), QStringLiteral("-m"), QStringLiteral("sh"),
                QStringLiteral("-c"), script, dir.path()});
  } else {
    StartChild(child, QStringLiteral("RecordsUntilTheDiskIsFull"), dir.path(), {}, QString::number(kSmallDiskBytes));
  }
  ASSERT_TRUE(child.waitForFinished(120000));
  const QByteArray output = child.readAll();
  EXPECT_EQ(child.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(child.exitCode(), 0) << output.toStdString();
  EXPECT_TRUE(output.contains("small disk:")) << output.toStdString();
}

TEST(RecordingEnds, AKilledProgramLosesAtMostASecondAndItsFileOpens) {
  QTemporaryDir dir;
  const QString path = ChildFile(dir.path());
  QProcess child;
  StartChild(child, QStringLiteral("RecordsUntilKilled"), dir.path());
  ASSERT_TRUE(child.waitForStarted());
  // The run is on once rows follow the header.
  QElapsedTimer clock;
  clock.start();
  qint64 headerBytes = -1;
  while (clock.elapsed() < 30000) {
    QThread::msleep(5);
    const qint64 size = QFileInfo(path).size();
    if (headerBytes < 0 && size > 0) headerBytes = size;
    if (headerBytes > 0 && size > headerBytes) break;
  }
  ASSERT_GT(headerBytes, 0);
  QElapsedTimer recording;
  recording.start();
  QThread::msleep(2500);
  const double seconds = recording.elapsed() / 1000.0;
  child.kill();
  ASSERT_TRUE(child.waitForFinished(10000));

  uitest::Workbench w;
  ASSERT_TRUE(w.window->OpenFile(path)) << w.prompts.lastMessage().toStdString();
  EXPECT_TRUE(w.prompts.messages().empty()) << w.prompts.lastMessage().toStdString();
  EXPECT_EQ(w.state->PathFileData, path);
  const uitest::CounterRows rows = uitest::CheckCounterRows(path, w.state->SolidDataStart, kChannels);
  EXPECT_EQ(rows.firstWrongRow, -1);
  // 25,000 rows a second; at most the last second may be missing.
  EXPECT_GE(rows.rows, static_cast<int64_t>((seconds - 1.0) * 25000.0));
  std::printf("killed after %.1f s of rows: %lld rows in the file\n", seconds, static_cast<long long>(rows.rows));
}

}  // namespace
}  // namespace aqx
