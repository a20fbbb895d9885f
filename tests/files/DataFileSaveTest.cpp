// The command "save" and the safety of a save: the old file is replaced only
// by a complete new one.
#include "DataFileTestSupport.h"
#include "files/DataFile.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace aqx {
namespace {

class SaveCommand : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  AppState s;
  ScriptedPrompts p;
  QString path(const QString& name) const { return dir.filePath(name); }

  void SetUp() override {
    s.SignalDataN = 1000;
    for (int i = 1; i <= 1000; ++i) s.SignalData.at(i, 1) = testing::TestCode(i, 1);
    s.DataSaved = false;
    s.InitDirSave = QStringLiteral("/начало");
    s.PathFileData = QStringLiteral("/начало/запись.aqx");
  }
  int64_t ExpectedSize() const { return 14172 + 2 * 1000 * 32; }
};

TEST_F(SaveCommand, DialogChoosesTheFileAndTheRecordingIsSaved) {
  p.texts.push_back(path("новая.aqx"));
  ASSERT_TRUE(SaveDataFileCommand(s, p));
  ASSERT_EQ(p.shown.size(), 1u);
  EXPECT_EQ(p.shown[0].kind, ShownPrompt::Kind::SaveFile);
  EXPECT_EQ(p.shown[0].title, QStringLiteral("Сохранение"));
  EXPECT_EQ(p.shown[0].text, QStringLiteral("/начало|/начало/запись.aqx"));
  EXPECT_EQ(s.PathFileData, path("новая.aqx"));
  EXPECT_EQ(s.InitDirSave, dir.path());
  EXPECT_TRUE(s.DataSaved);
  EXPECT_EQ(QFileInfo(path("новая.aqx")).size(), ExpectedSize());
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 1);  // no temporary left
}

TEST_F(SaveCommand, CancelledDialogChangesNothing) {
  EXPECT_FALSE(SaveDataFileCommand(s, p));
  EXPECT_FALSE(s.DataSaved);
  EXPECT_EQ(s.PathFileData, QStringLiteral("/начало/запись.aqx"));
}

TEST_F(SaveCommand, ExistingFileIsReplacedOnlyAfterTheQuestion) {
  testing::WriteFile(path("old.aqx"), QByteArray("old contents"));
  p.texts.push_back(path("old.aqx"));
  p.answers.push_back(PromptAnswer::Cancel);  // back to the dialog...
  p.texts.push_back(path("old.aqx"));
  p.answers.push_back(PromptAnswer::Ok);  // ...and then replace
  ASSERT_TRUE(SaveDataFileCommand(s, p));
  const auto messages = p.messages();
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0].text, QStringLiteral("Файл с таким именем уже существует. Заменить?"));
  EXPECT_EQ(messages[0].title, QStringLiteral("Сохранение"));
  EXPECT_EQ(messages[0].buttons, PromptButtons::OkCancel);
  EXPECT_EQ(QFileInfo(path("old.aqx")).size(), ExpectedSize());
}

TEST_F(SaveCommand, FailedWriteLeavesTheOldFileAndSaysWhy) {
  testing::WriteFile(path("keep.aqx"), QByteArray("old contents"));
  // A file size limit makes the write fail part way, whoever runs the test.
  struct rlimit old {};
  getrlimit(RLIMIT_FSIZE, &old);
  const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
  struct rlimit small = old;
  small.rlim_cur = 20000;
  setrlimit(RLIMIT_FSIZE, &small);
  p.texts.push_back(path("keep.aqx"));
  const bool saved = SaveDataFileCommand(s, p);
  setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, previousHandler);

  EXPECT_FALSE(saved);
  EXPECT_FALSE(s.DataSaved);
  EXPECT_EQ(s.PathFileData, QStringLiteral("/начало/запись.aqx"));
  EXPECT_EQ(testing::ReadFile(path("keep.aqx")), QByteArray("old contents"));
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 1);
  ASSERT_FALSE(p.messages().empty());
  const ShownPrompt told = p.messages().back();
  EXPECT_EQ(told.title, QStringLiteral("Сохранение"));
  EXPECT_TRUE(told.text.startsWith(QStringLiteral("Не удалось сохранить файл"))) << told.text.toStdString();
  EXPECT_TRUE(told.text.endsWith(QStringLiteral("Прежний файл не изменён.")));
}

// A save killed part way once left "NAME.tmp-XXXXXXXX" beside the file.
TEST_F(SaveCommand, ASaveKilledPartWayLeavesNothingBehind) {
  testing::WriteFile(path("keep.aqx"), QByteArray("old contents"));
  s.PathFileData = path("keep.aqx");
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // The file size limit's signal kills the writer in the middle.
    struct rlimit small {20000, 20000};
    setrlimit(RLIMIT_FSIZE, &small);
    std::signal(SIGXFSZ, SIG_DFL);
    WriteDataFile(s, p);
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGXFSZ);
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("keep.aqx")});
  EXPECT_EQ(testing::ReadFile(path("keep.aqx")), QByteArray("old contents"));
}

TEST_F(SaveCommand, StaleTemporariesOfTheTargetAreCleared) {
  const QString stale = path("keep.aqx.tmp-0badcafe");
  const QString fresh = path("keep.aqx.tmp-1badcafe");
  const QString stranger = path("other.aqx.tmp-0badcafe");
  for (const QString& f : {stale, fresh, stranger}) testing::WriteFile(f, QByteArray("left"));
  for (const QString& f : {stale, stranger}) {
    QFile file(f);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.setFileTime(QDateTime::currentDateTime().addSecs(-300), QFileDevice::FileModificationTime);
  }
  s.PathFileData = path("keep.aqx");
  ASSERT_TRUE(WriteDataFile(s, p));
  EXPECT_FALSE(QFileInfo::exists(stale));
  EXPECT_TRUE(QFileInfo::exists(fresh)) << "another program may be writing it now";
  EXPECT_TRUE(QFileInfo::exists(stranger)) << "another file's";
  EXPECT_EQ(QFileInfo(path("keep.aqx")).size(), ExpectedSize());
}

TEST_F(SaveCommand, ReadOnlyFolderIsTold) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser writes into read-only folders";
  QDir(dir.path()).mkdir(QStringLiteral("ro"));
  QFile::setPermissions(path("ro"), QFile::ReadOwner | QFile::ExeOwner);
  s.PathFileData = path("ro/x.aqx");
  EXPECT_FALSE(WriteDataFile(s, p));
  EXPECT_TRUE(p.lastMessage().endsWith(QStringLiteral("нет прав на запись.")));
}

TEST_F(SaveCommand, ContinuousRecordingRenewsOnlyItsHeader) {
  // A header followed by samples the engine streamed: they must stay.
  QByteArray file(14173 + 100, '\x33');
  testing::WriteFile(path("solid.aqx"), file);
  s.SolidMode = true;
  s.PathFileData = path("solid.aqx");
  s.object.Station = QStringLiteral("ГЭС");
  ASSERT_TRUE(SaveDataFileCommand(s, p));
  EXPECT_TRUE(p.shown.empty());  // no dialog
  EXPECT_TRUE(s.DataSaved);
  const QByteArray after = testing::ReadFile(path("solid.aqx"));
  ASSERT_EQ(after.size(), file.size());
  EXPECT_EQ(after.left(10), QByteArray("Aquilonix "));
  EXPECT_EQ(testing::TextAt(after, 70, 3), QStringLiteral("ГЭС"));
  EXPECT_EQ(testing::I16At(after, 6138), -1);
  EXPECT_EQ(after.mid(14173), file.mid(14173));
}

}  // namespace
}  // namespace aqx
