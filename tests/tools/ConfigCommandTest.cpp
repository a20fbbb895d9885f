// aquilonix-tool config on a settings file of the test's own: the named
// configurations round trip, refusals and their exit codes.
#include "tests/tools/ToolTestSupport.h"
#include "tools/Commands.h"
#include "tools/ToolCommand.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx::tool {

namespace {

class ConfigCommand : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  ScriptedPrompts prompts;
  QString out;
  QString settings = dir.filePath(QStringLiteral("aquilonix.ini"));

  int Run(const QStringList& args) { return RunToolCommand(RunConfig, args, prompts, out, settings); }

  QString Get(const QString& section, const QString& key) {
    EXPECT_EQ(Run({QStringLiteral("get"), section, key}), kExitOk);
    return out.trimmed();
  }

  QByteArray SettingsBytes() const {
    QFile f(settings);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
  }
};

TEST_F(ConfigCommand, NamedConfigurationsRoundTrip) {
  ASSERT_EQ(Run({QStringLiteral("set"), QStringLiteral("Config"), QStringLiteral("Clearance"), QStringLiteral("2600")}),
            kExitOk);
  ASSERT_EQ(Run({QStringLiteral("save"), QStringLiteral("station-a")}), kExitOk);
  EXPECT_EQ(Run({QStringLiteral("save"), QStringLiteral("station-a")}), kExitRefused);  // exists
  EXPECT_EQ(Run({QStringLiteral("save"), QStringLiteral("station-a"), QStringLiteral("--replace")}), kExitOk);

  ASSERT_EQ(Run({QStringLiteral("set"), QStringLiteral("Config"), QStringLiteral("Clearance"), QStringLiteral("900")}),
            kExitOk);
  EXPECT_EQ(Get(QStringLiteral("Config"), QStringLiteral("Clearance")), QStringLiteral("900"));
  ASSERT_EQ(Run({QStringLiteral("rename"), QStringLiteral("station-a"), QStringLiteral("station-b")}), kExitOk);
  ASSERT_EQ(Run({QStringLiteral("list")}), kExitOk);
  EXPECT_EQ(out, QStringLiteral("station-b\n"));
  ASSERT_EQ(Run({QStringLiteral("restore"), QStringLiteral("station-b")}), kExitOk);
  EXPECT_EQ(Get(QStringLiteral("Config"), QStringLiteral("Clearance")), QStringLiteral("2600"));

  ASSERT_EQ(Run({QStringLiteral("delete"), QStringLiteral("station-b")}), kExitOk);
  ASSERT_EQ(Run({QStringLiteral("list")}), kExitOk);
  EXPECT_TRUE(out.isEmpty());
}

TEST_F(ConfigCommand, RefusalsLeaveTheSettingsAsTheyWere) {
  ASSERT_EQ(Run({QStringLiteral("set"), QStringLiteral("Config"), QStringLiteral("Clearance"), QStringLiteral("2600")}),
            kExitOk);
  const QByteArray before = SettingsBytes();
  ASSERT_FALSE(before.isEmpty());

  EXPECT_EQ(Run({QStringLiteral("set"), QStringLiteral("Config"), QStringLiteral("Clearance"), QStringLiteral("abc")}),
            kExitRefused);
  EXPECT_EQ(Run({QStringLiteral("restore"), QStringLiteral("nothing-here")}), kExitRefused);
  EXPECT_EQ(Run({QStringLiteral("save"), QStringLiteral("a/b")}), kExitRefused);
  EXPECT_EQ(Run({QStringLiteral("rename"), QStringLiteral("nothing-here"), QStringLiteral("other")}), kExitRefused);
  EXPECT_EQ(Run({}), kExitRefused);
  EXPECT_EQ(Run({QStringLiteral("frobnicate")}), kExitRefused);
  EXPECT_EQ(Run({QStringLiteral("get"), QStringLiteral("Config"), QStringLiteral("NoSuchKey")}), kExitFailure);
  EXPECT_EQ(SettingsBytes(), before);
}

}  // namespace
}  // namespace aqx::tool
