// protocol, protocol-master and protocol-template of aquilonix-tool on
// recordings written here.
#include "tests/reports/ReportTestSupport.h"
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

}  // namespace
}  // namespace aqx::tool
