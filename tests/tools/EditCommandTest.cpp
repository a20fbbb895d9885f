// aquilonix-tool edit on a recording written here: an edit reaches the
// written file, a refused one writes nothing.
#include "files/DataFile.h"
#include "tests/tools/ToolTestSupport.h"
#include "tools/Commands.h"
#include "tools/ToolCommand.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace aqx::tool {

namespace {

TEST(EditCommand, ZeroAndCopyReachTheFileAndBadInputWritesNothing) {
  QTemporaryDir dir;
  ScriptedPrompts prompts;
  QString out;
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = c <= 2 ? 1 : 0;
  s->SignalDataN = 100;
  for (int i = 1; i <= 100; ++i) s->SignalData.at(i, 2) = static_cast<int16_t>(i);
  s->PathFileData = dir.filePath(QStringLiteral("in.aqx"));
  ASSERT_TRUE(WriteDataFile(*s, prompts));
  const QString edited = dir.filePath(QStringLiteral("out.aqx"));

  ASSERT_EQ(RunToolCommand(RunEdit, {s->PathFileData, edited, QStringLiteral("zero"), QStringLiteral("--channel"),
                                     QStringLiteral("2"), QStringLiteral("--first"), QStringLiteral("10"),
                                     QStringLiteral("--last"), QStringLiteral("12")}, prompts, out),
            kExitOk);
  auto back = std::make_unique<AppState>();
  back->PathFileData = edited;
  ASSERT_TRUE(ReadDataFile(*back, prompts));
  EXPECT_EQ(back->SignalData.at(9, 2), 9);
  EXPECT_EQ(back->SignalData.at(10, 2), 0);
  EXPECT_EQ(back->SignalData.at(13, 2), 13);

  ASSERT_EQ(RunToolCommand(RunEdit, {s->PathFileData, edited, QStringLiteral("copy-to"), QStringLiteral("99"),
                                     QStringLiteral("--channel"), QStringLiteral("2"), QStringLiteral("--first"),
                                     QStringLiteral("1"), QStringLiteral("--last"), QStringLiteral("5")}, prompts, out),
            kExitOk);
  ASSERT_TRUE(ReadDataFile(*back, prompts));
  EXPECT_EQ(back->SignalData.at(100, 2), 2);  // truncated at the end of the record

  QFile::remove(edited);
  EXPECT_EQ(RunToolCommand(RunEdit, {s->PathFileData, edited, QStringLiteral("smooth")}, prompts, out), kExitRefused);
  EXPECT_EQ(RunToolCommand(RunEdit, {s->PathFileData, edited, QStringLiteral("shift"), QStringLiteral("abc")}, prompts, out),
            kExitRefused);
  EXPECT_FALSE(QFile::exists(edited));

  ASSERT_EQ(RunToolCommand(RunEdit, {s->PathFileData, QStringLiteral("values"), QStringLiteral("--channel"),
                                     QStringLiteral("2"), QStringLiteral("--first"), QStringLiteral("3"),
                                     QStringLiteral("--last"), QStringLiteral("4")}, prompts, out),
            kExitOk);
  EXPECT_TRUE(out.startsWith(QStringLiteral("Aquilonix v")));
  EXPECT_TRUE(out.endsWith(QStringLiteral("\r\n")));
}

}  // namespace
}  // namespace aqx::tool
