// protocol, protocol-master and protocol-template of aquilonix-tool on
// recordings written here.
#include "tests/reports/TemplateFormTest.h"
#include "tests/tools/ToolTestSupport.h"
#include "tools/Commands.h"
#include "tools/ToolCommand.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx::tool {

namespace {

class ProtocolCommands : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  ScriptedPrompts prompts;
  QString out;

  void SetUp() override {
    ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("rec")));
    ASSERT_TRUE(testing_reports::WriteAnalyticRecording(path(QStringLiteral("rec/a.aqx")), {}, prompts));
  }
  QString path(const QString& name) const { return dir.filePath(name); }
  int Run(int (*command)(ToolContext&), const QStringList& args) {
    return RunToolCommand(command, args, prompts, out, path(QStringLiteral("settings.ini")));
  }
};

TEST_F(ProtocolCommands, WriteTheirWorkbooksAndSayWhere) {
  const QString protocol = path(QStringLiteral("p.xlsx"));
  ASSERT_EQ(Run(RunProtocol, {path(QStringLiteral("rec")), protocol}), kExitOk);
  EXPECT_EQ(out.trimmed(), protocol);
  EXPECT_TRUE(QFileInfo(protocol).size() > 0);

  ASSERT_EQ(Run(RunProtocolMaster, {QStringLiteral("--list"), path(QStringLiteral("rec/a.aqx"))}), kExitOk);
  EXPECT_TRUE(out.startsWith(QStringLiteral("Биение - ВГП - X\nВибрация - ВГП - Y\nОтметчик - ВГП - \nЧастота вращения\n")));
  const QString master = path(QStringLiteral("m.xlsx"));
  EXPECT_EQ(Run(RunProtocolMaster, {master, path(QStringLiteral("rec/a.aqx")), QStringLiteral("--channels"),
                                    QStringLiteral("Биение - ВГП - X"), QStringLiteral("--parameters"),
                                    QStringLiteral("Смещение;0-20 Гц")}),
            kExitOk);
  EXPECT_TRUE(QFileInfo::exists(master));
  EXPECT_EQ(Run(RunProtocolMaster, {master, path(QStringLiteral("rec/a.aqx")), QStringLiteral("--parameters"),
                                    QStringLiteral("Скорость")}),
            kExitRefused);
}

TEST_F(ProtocolCommands, TemplateInTheOldFormatIsRefusedWithNothingWritten) {
  const QString xls = path(QStringLiteral("form.xls"));
  ASSERT_TRUE(testing_reports::WriteFile(xls, QByteArray("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8)));
  EXPECT_EQ(Run(RunProtocolTemplate, {path(QStringLiteral("rec")), xls, path(QStringLiteral("out.xlsx"))}),
            kExitFailure);
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("(*.xls)")));
  EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("out.xlsx"))));
  EXPECT_EQ(Run(RunProtocolTemplate, {path(QStringLiteral("nowhere")), xls, path(QStringLiteral("out.xlsx"))}),
            kExitRefused);
}

TEST_F(ProtocolCommands, ProtocolTakesTheMastersChoicesOrAForm) {
  ASSERT_TRUE(testing_reports::WriteAnalyticRecording(path(QStringLiteral("rec/b.aqx")), {}, prompts));
  const QString out = path(QStringLiteral("chosen.xlsx"));
  ASSERT_EQ(Run(RunProtocol, {path(QStringLiteral("rec")), out, QStringLiteral("--files"), QStringLiteral("b.aqx,a.aqx"),
                              QStringLiteral("--channels"), QStringLiteral("Биение - ВГП - X"),
                              QStringLiteral("--parameters"), QStringLiteral("Смещение,0-20 Гц")}),
            kExitOk);
  std::map<std::string, std::string> parts = testing_reports::Unzip(out);
  const std::string& strings = parts["xl/sharedStrings.xml"];
  EXPECT_LT(strings.find(">b.aqx<"), strings.find(">a.aqx<"));
  EXPECT_NE(strings.find(">Смещение<"), std::string::npos);
  EXPECT_EQ(strings.find(">ОУ (макс.)<"), std::string::npos);

  const QString form = path(QStringLiteral("form.xlsx"));
  ASSERT_TRUE(testing_reports::Zip(form, testing_reports::FormParts()));
  const QByteArray formBytes = testing_reports::ReadFile(form);
  const QString filled = path(QStringLiteral("filled.xlsx"));
  ASSERT_EQ(Run(RunProtocol, {path(QStringLiteral("rec")), filled, QStringLiteral("--template"), form}), kExitOk);
  EXPECT_NE(testing_reports::Unzip(filled)["xl/sharedStrings.xml"].find(">300<"), std::string::npos);
  EXPECT_EQ(testing_reports::ReadFile(form), formBytes);
}

TEST_F(ProtocolCommands, BadInputIsRefusedWithNothingWritten) {
  const QString rec = path(QStringLiteral("rec"));
  const QString out = path(QStringLiteral("out.xlsx"));
  // Unknown names and files, both forms at once, a form that is no workbook.
  EXPECT_EQ(Run(RunProtocol, {rec, out, QStringLiteral("--parameters"), QStringLiteral("Скорость")}), kExitRefused);
  EXPECT_EQ(Run(RunProtocol, {rec, out, QStringLiteral("--files"), QStringLiteral("nothing.aqx")}), kExitRefused);
  EXPECT_EQ(Run(RunProtocol, {rec, out, QStringLiteral("--files"), QStringLiteral("a.aqx"), QStringLiteral("--template"),
                              path(QStringLiteral("rec/a.aqx"))}),
            kExitRefused);
  const QString broken = path(QStringLiteral("broken.xlsx"));
  ASSERT_TRUE(testing_reports::WriteFile(broken, "PK\x03\x04 cut short"));
  EXPECT_EQ(Run(RunProtocol, {rec, out, QStringLiteral("--template"), broken}), kExitFailure);
  EXPECT_FALSE(prompts.lastMessage().isEmpty());
  EXPECT_EQ(testing_reports::ReadFile(broken), QByteArray("PK\x03\x04 cut short"));
  EXPECT_FALSE(QFileInfo::exists(out));

  // An output into a folder that is not there: told before any file is read.
  prompts.shown.clear();
  EXPECT_EQ(Run(RunProtocol, {rec, path(QStringLiteral("nowhere/out.xlsx"))}), kExitRefused);
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("недоступна для записи")));
  EXPECT_FALSE(QDir(path(QStringLiteral("nowhere"))).exists());

  // An output that cannot be written (a folder stands there): told, and
  // nothing left beside it.
  const QString taken = path(QStringLiteral("taken.xlsx"));
  ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("taken.xlsx/inside")));
  const QStringList before = QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
  prompts.shown.clear();
  EXPECT_EQ(Run(RunProtocol, {rec, taken}), kExitFailure);
  EXPECT_FALSE(prompts.lastMessage().isEmpty());
  EXPECT_TRUE(QFileInfo(taken).isDir());
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), before);
}

}  // namespace
}  // namespace aqx::tool
