#include "core/OpenFile.h"

#include "SettingsTestSupport.h"

#include <gtest/gtest.h>

namespace aqx {
namespace {

// A program with an empty memory store whose hooks log what OpenFile does.
struct Program {
  Program() {
    hooks.setBusyCursor = [this](bool busy) { log << (busy ? "busy" : "idle"); };
    hooks.recentFilesChanged = [this](const QStringList&) { log << "recent"; };
    hooks.detectShaftMarker = [this](AppState&) { log << "marker"; };
    hooks.resetSignalViewBlock = [this](AppState&) { log << "signalBlock"; };
    hooks.refreshToolbars = [this](AppState&) { log << "toolbars"; };
    hooks.setViewStyle = [this](AppState&) { log << "style"; };
    hooks.updateFileInfo = [this](AppState&) { log << "fileInfo"; };
    hooks.viewRefresh = [this](AppState& s) {
      log << (store.get(QStringLiteral("Config"), QStringLiteral("PathFileData")) == s.PathFileData
                  ? "refresh(saved)"
                  : "refresh(unsaved)");
    };
  }
  OpenFileContext context() { return {state, store, prompts, readers, hooks}; }

  MemorySettingsStore store;
  AppState state;
  ScriptedPrompts prompts;
  FileReaderTable readers = testing::FakeReaders();
  OpenFileHooks hooks;
  QStringList log;
};

TEST(OpenFile, ReadsByTheLastThreeLettersThenRunsTheStepsInOrder) {
  Program p;
  p.state.ViewOpenFlags[frmViewSignal] = true;
  p.state.SelectFirst = 10;
  p.state.SelectLast = 20;
  p.state.DataSaved = false;
  auto ctx = p.context();
  EXPECT_TRUE(OpenFile(ctx, QStringLiteral("/data/REC.AQX")));
  EXPECT_EQ(p.log, QStringList({"busy", "recent", "marker", "signalBlock", "toolbars", "style",
                                "fileInfo", "refresh(saved)", "idle"}));
  EXPECT_EQ(p.state.PathFileData, QStringLiteral("/data/REC.AQX"));
  EXPECT_EQ(p.state.Polus, 48);
  EXPECT_EQ(p.state.SelectFirst, 0);
  EXPECT_EQ(p.state.SelectLast, 0);
  EXPECT_TRUE(p.state.DataSaved);
  EXPECT_EQ(p.state.SpectrLineCount, 2048) << "block rule for 4096 samples";

  p.log.clear();
  p.state.ViewOpenFlags[frmViewSignal] = false;
  EXPECT_TRUE(OpenFile(ctx, QStringLiteral("/data/rec2.aqx")));
  EXPECT_FALSE(p.log.contains(QStringLiteral("signalBlock")));
}

TEST(OpenFile, AnUnknownEndingOrAFailedReadChangesNothing) {
  for (const QString& path : {QStringLiteral("/data/notes.txt"), QStringLiteral("/data/old.zrk"),
                              QStringLiteral("aq")}) {
    Program p;
    p.state.PathFileData = QStringLiteral("/data/before.aqx");
    auto ctx = p.context();
    EXPECT_FALSE(OpenFile(ctx, path));
    EXPECT_EQ(p.state.PathFileData, QStringLiteral("/data/before.aqx"));
    EXPECT_EQ(p.state.Polus, 72);
    EXPECT_EQ(p.log.last(), QStringLiteral("idle")) << "the cursor is reset";
    EXPECT_FALSE(p.log.contains(QStringLiteral("marker")));
    EXPECT_FALSE(p.store.contains(QStringLiteral("Config"), QStringLiteral("PathFileData")));
  }
  Program p;
  auto ctx = p.context();
  OpenFile(ctx, QStringLiteral("/data/old.zrk"));
  EXPECT_EQ(p.prompts.lastMessage(),
            QStringLiteral("Указанный файл не является файлом данных Aquilonix!"));
}

TEST(RecentFiles, AReopenedFileMovesToTheTopWithoutRepeating) {
  MemorySettingsStore store;
  for (int k = 1; k <= 10; ++k) AddNewRecentFile(store, QStringLiteral("/r/%1.aqx").arg(k));
  QStringList list = RecentFiles(store);
  ASSERT_EQ(list.size(), 9);
  EXPECT_EQ(list.first(), QStringLiteral("/r/10.aqx"));
  EXPECT_EQ(list.last(), QStringLiteral("/r/2.aqx")) << "the oldest fell out";

  AddNewRecentFile(store, QStringLiteral("/r/5.aqx"));
  list = RecentFiles(store);
  EXPECT_EQ(list, QStringList({"/r/5.aqx", "/r/10.aqx", "/r/9.aqx", "/r/8.aqx", "/r/7.aqx",
                               "/r/6.aqx", "/r/4.aqx", "/r/3.aqx", "/r/2.aqx"}));
  AddNewRecentFile(store, QStringLiteral("/r/5.aqx"));
  EXPECT_EQ(RecentFiles(store), list);
}

TEST(UnsavedData, TheQuestionsComeOnlyWhenDataCouldBeLost) {
  AppState s;
  ScriptedPrompts prompts;
  EXPECT_TRUE(ConfirmReplaceData(s, prompts));
  s.DataSaved = false;
  s.SolidMode = true;
  EXPECT_TRUE(ConfirmReplaceData(s, prompts)) << "a solid file is on disk already";
  s.SolidMode = false;
  s.ReminderFileSave = false;
  EXPECT_TRUE(ConfirmCloseProgram(s, prompts));
  EXPECT_TRUE(prompts.shown.empty());

  s.ReminderFileSave = true;
  prompts.answers = {PromptAnswer::No, PromptAnswer::Cancel};
  EXPECT_FALSE(ConfirmReplaceData(s, prompts));
  EXPECT_FALSE(ConfirmCloseProgram(s, prompts));
  ASSERT_EQ(prompts.messages().size(), 2u);
  EXPECT_EQ(prompts.messages()[0].text, QStringLiteral("Данные не сохранены, продолжить?"));
  EXPECT_EQ(prompts.messages()[0].title, QStringLiteral("Внимание"));
  EXPECT_EQ(prompts.messages()[1].text,
            QStringLiteral("Данные не сохранены, закончить работу с программой?"));
  EXPECT_EQ(prompts.messages()[1].buttons, PromptButtons::OkCancel);
}

TEST(OpenCommands, TwoDroppedFilesLoadNothingAndSaySo) {
  Program p;
  auto ctx = p.context();
  EXPECT_FALSE(DropFilesCommand(ctx, {QStringLiteral("/d/a.aqx"), QStringLiteral("/d/b.aqx")}));
  EXPECT_EQ(p.state.Polus, 72);
  EXPECT_TRUE(RecentFiles(p.store).first().isEmpty());
  ASSERT_EQ(p.prompts.messages().size(), 1u);
  EXPECT_EQ(p.prompts.messages()[0].text, QStringLiteral("Невозможно загрузить больше одного файла!"));
  EXPECT_EQ(p.prompts.messages()[0].title, QStringLiteral("DragDrop"));

  p.state.DataSaved = false;
  p.prompts.answers = {PromptAnswer::No};
  EXPECT_FALSE(DropFilesCommand(ctx, {QStringLiteral("/d/a.aqx")}));
  EXPECT_EQ(p.state.Polus, 72) << "No to the unsaved question keeps the data";
  EXPECT_TRUE(DropFilesCommand(ctx, {QStringLiteral("/d/a.aqx")}));
  EXPECT_EQ(p.state.PathFileData, QStringLiteral("/d/a.aqx"));
}

TEST(OpenCommands, TheOpenDialogAndTheRecentMenu) {
  QTemporaryDir dir;
  const QString file = dir.filePath(QStringLiteral("sub/Запись.aqx"));
  testing::WriteBytes(file, "x");
  Program p;
  auto ctx = p.context();
  p.prompts.texts = {std::nullopt};
  EXPECT_FALSE(FileOpenCommand(ctx));
  ASSERT_EQ(p.prompts.shown.size(), 1u);
  EXPECT_EQ(p.prompts.shown[0].title, QStringLiteral("Открыть"));
  EXPECT_EQ(p.prompts.shown[0].text, QStringLiteral("C:\\")) << "opens in InitDirOpen";

  p.prompts.texts = {file};
  EXPECT_TRUE(FileOpenCommand(ctx));
  EXPECT_EQ(p.state.InitDirOpen, dir.filePath(QStringLiteral("sub")));
  EXPECT_EQ(p.store.get(QStringLiteral("Config"), QStringLiteral("InitDirOpen")),
            dir.filePath(QStringLiteral("sub")));

  AddNewRecentFile(p.store, dir.filePath(QStringLiteral("gone.aqx")));
  EXPECT_FALSE(OpenRecentFileCommand(ctx, 1));
  EXPECT_EQ(p.prompts.lastMessage(), QStringLiteral("Файл по указанному Вами пути отсутствует."));
  EXPECT_EQ(p.prompts.messages().back().title, QStringLiteral("Открытие"));
  EXPECT_TRUE(OpenRecentFileCommand(ctx, 2));
  EXPECT_EQ(RecentFiles(p.store).first(), file);
  EXPECT_FALSE(OpenRecentFileCommand(ctx, 10));
}

}  // namespace
}  // namespace aqx
