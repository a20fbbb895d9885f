// The report commands as the windows and the tool run them: their questions
// and messages, the save dialog, the wait window's cancel, and what stays in
// memory.

#include "TemplateFormTest.h"

#include "reports/ReportCommands.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx::reports {
namespace {

using namespace testing_reports;

class ReportCommand : public RecordingFolder {
 protected:
  std::vector<std::pair<int, int>> progress;
  int cancelAt = -1;
  ReportContext ctx{*state, prompts, readers, [this](int done, int count) {
                      progress.emplace_back(done, count);
                      return done != cancelAt;
                    }};

  void SetUp() override {
    ASSERT_TRUE(WriteAnalyticRecording(dir.filePath(QStringLiteral("a.aqx")), {}, prompts));
    AnalyticRecording second;
    second.mode = QStringLiteral("Пуск");
    ASSERT_TRUE(WriteAnalyticRecording(dir.filePath(QStringLiteral("b.aqx")), second, prompts));
    state->PathFileData = dir.filePath(QStringLiteral("a.aqx"));
    prompts.shown.clear();
  }
  QString Out(const QString& name) const { return dir.filePath(name); }
  std::vector<ShownPrompt::Kind> Kinds() const {
    std::vector<ShownPrompt::Kind> kinds;
    for (const ShownPrompt& p : prompts.shown) kinds.push_back(p.kind);
    return kinds;
  }
};

TEST_F(ReportCommand, ProtocolOfTheOpenFilesFolderGoesToTheChosenWorkbook) {
  prompts.answers = {PromptAnswer::Yes};
  prompts.texts = {Out(QStringLiteral("итог"))};
  const ReportResult result = ReportProtokolCommand(ctx);
  EXPECT_EQ(result.outcome, ReportOutcome::Written);
  EXPECT_EQ(result.workbookPath, Out(QStringLiteral("итог.xlsx")));  // the ending added
  EXPECT_TRUE(result.recordingReplaced);
  ASSERT_EQ(prompts.shown.size(), 2u);
  EXPECT_EQ(prompts.shown[0].text, QStringLiteral("Сформировать протокол?"));
  EXPECT_EQ(prompts.shown[0].title, QStringLiteral("Протокол"));
  EXPECT_EQ(prompts.shown[0].buttons, PromptButtons::YesNo);
  EXPECT_EQ(prompts.shown[1].kind, ShownPrompt::Kind::SaveFile);
  EXPECT_EQ(prompts.shown[1].text, dir.path() + QStringLiteral("|Протокол.xlsx"));  // beside the recordings
  EXPECT_EQ(progress, (std::vector<std::pair<int, int>>{{0, 2}, {1, 2}, {2, 2}}));
  const std::string sheet = Unzip(result.workbookPath)["xl/sharedStrings.xml"];
  EXPECT_NE(sheet.find("Пуск"), std::string::npos);
  EXPECT_EQ(state->PathFileData, dir.filePath(QStringLiteral("b.aqx")));
}

TEST_F(ReportCommand, ProtocolStopsAtEachRefusal) {
  state->PathFileData.clear();
  EXPECT_EQ(ReportProtokolCommand(ctx).outcome, ReportOutcome::Declined);
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Выберите путь расположения файлов данных, для составления протокола!"));
  EXPECT_EQ(prompts.shown.back().icon, PromptIcon::Information);

  state->PathFileData = dir.filePath(QStringLiteral("a.aqx"));
  prompts.shown.clear();
  prompts.answers = {PromptAnswer::No};
  EXPECT_EQ(ReportProtokolCommand(ctx).outcome, ReportOutcome::Declined);
  EXPECT_EQ(Kinds(), std::vector<ShownPrompt::Kind>{ShownPrompt::Kind::Message});

  // Unsaved data in memory is asked about before anything is read.
  state->DataSaved = false;
  prompts.shown.clear();
  prompts.answers = {PromptAnswer::Yes, PromptAnswer::No};
  EXPECT_EQ(ReportProtokolCommand(ctx).outcome, ReportOutcome::Declined);
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Данные не сохранены, продолжить?"));
  EXPECT_TRUE(progress.empty());
  EXPECT_EQ(state->PathFileData, dir.filePath(QStringLiteral("a.aqx")));
}

TEST_F(ReportCommand, CancelInTheWaitWindowWritesNothing) {
  cancelAt = 1;
  prompts.answers = {PromptAnswer::Yes};
  prompts.texts = {Out(QStringLiteral("Протокол.xlsx"))};
  const ReportResult result = ReportProtokolCommand(ctx);
  EXPECT_EQ(result.outcome, ReportOutcome::Cancelled);
  EXPECT_TRUE(result.recordingReplaced);  // the first file was read
  EXPECT_FALSE(QFile::exists(Out(QStringLiteral("Протокол.xlsx"))));
}

TEST_F(ReportCommand, MasterNeedsFilesAndTellsWhenDone) {
  EXPECT_FALSE(MasterFilesReady({}, prompts));
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Отсутствуют файлы для формирования протокола!"));
  EXPECT_EQ(prompts.shown.back().title, QStringLiteral("Мастер протокола"));

  MasterChoice choice;
  choice.files = {dir.filePath(QStringLiteral("b.aqx"))};
  choice.channels = MasterChannelsOfFiles(choice.files, readers, prompts);
  choice.parameters = {MasterParameter::Shift};
  EXPECT_EQ(MasterSummary(choice),
            QStringLiteral("Обрабатываемые файлы:\n\t") + QDir::toNativeSeparators(choice.files[0]) +
                QStringLiteral("\nОбрабатываемые каналы:\n\tБиение - ВГП - X\n\tВибрация - ВГП - Y\n\tОтметчик - ВГП - \n"
                               "Обрабатываемые параметры:\n\tСмещение\n"));
  EXPECT_EQ(MasterStepCaption(4, 5), QStringLiteral("Мастер протокола (Шаг 4/5)"));
  prompts.texts = {Out(QStringLiteral("master.xlsx"))};
  const ReportResult result = ReportMasterCommand(ctx, choice);
  EXPECT_EQ(result.outcome, ReportOutcome::Written);
  EXPECT_EQ(prompts.lastMessage(), QStringLiteral("Протокол успешно сформирован."));
  EXPECT_NE(Unzip(result.workbookPath)["xl/sharedStrings.xml"].find(">300<"), std::string::npos);
}

TEST_F(ReportCommand, TemplateIsFilledFromTheFolderAndNeverOverwritten) {
  const QString form = Out(QStringLiteral("Форма.xlsx"));
  ASSERT_TRUE(Zip(form, FormParts()));
  const QByteArray formBytes = ReadFile(form);
  prompts.texts = {form, form};
  EXPECT_EQ(ReportPatternCommand(ctx).outcome, ReportOutcome::Failed);
  EXPECT_EQ(prompts.shown[0].title, QStringLiteral("Открыть шаблон"));
  EXPECT_TRUE(prompts.lastMessage().startsWith(QStringLiteral("Заполненный протокол нельзя записать поверх шаблона")));
  EXPECT_EQ(ReadFile(form), formBytes);

  prompts.texts = {form, Out(QStringLiteral("filled.xlsx"))};
  const ReportResult result = ReportPatternCommand(ctx);
  ASSERT_EQ(result.outcome, ReportOutcome::Written);
  // Each file fills the tags of its own mode; the tag of a probe not in use
  // stays as written.
  const std::string strings = Unzip(result.workbookPath)["xl/sharedStrings.xml"];
  EXPECT_NE(strings.find(">300<"), std::string::npos);
  EXPECT_EQ(strings.find(kTagOtherMode), std::string::npos);
  EXPECT_NE(strings.find(kTagUnusedProbe), std::string::npos);
  EXPECT_EQ(ReadFile(form), formBytes);
}

TEST_F(ReportCommand, TemplateWithoutTagsOrInTheOldFormatIsTold) {
  const QString xls = Out(QStringLiteral("old.xls"));
  ASSERT_TRUE(WriteFile(xls, QByteArray("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8)));
  EXPECT_EQ(FillFolderTemplate(ctx, dir.path(), xls).outcome, ReportOutcome::Failed);
  EXPECT_EQ(Kinds(), std::vector<ShownPrompt::Kind>{ShownPrompt::Kind::Message});  // before any dialog
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("(*.xlsx)")));

  const QString plain = Out(QStringLiteral("plain.xlsx"));
  std::vector<std::pair<std::string, std::string>> parts = FormParts();
  parts[5].second = FormSharedStringsPart({"<si><t>Итог</t></si>"});
  parts[7].second = FormSheet2(FormInlineTag("Итог"));
  ASSERT_TRUE(Zip(plain, parts));
  prompts.texts = {Out(QStringLiteral("copy.xlsx"))};
  EXPECT_EQ(FillFolderTemplate(ctx, dir.path(), plain).outcome, ReportOutcome::Written);
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("не найдено ни одной метки")));
}

}  // namespace
}  // namespace aqx::reports
