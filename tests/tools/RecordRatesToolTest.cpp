// record-rates of aquilonix-tool: the record settings' arithmetic from the
// command line.
#include "tests/tools/ToolTestSupport.h"

#include <gtest/gtest.h>

namespace aqx::tool {
namespace {

TEST(RecordRatesTool, FourPolesAtFiftyHertzAndTheModuleLimit) {
  const ToolRun ok = RunTool({QStringLiteral("record-rates"), QStringLiteral("--poles"), QStringLiteral("4"),
                              QStringLiteral("--mains"), QStringLiteral("50"), QStringLiteral("--revolutions"),
                              QStringLiteral("64"), QStringLiteral("--samples"), QStringLiteral("16384"),
                              QStringLiteral("--channels"), QStringLiteral("4")});
  EXPECT_EQ(ok.exitCode, 0) << ok.err.toStdString();
  EXPECT_TRUE(ok.out.contains(QStringLiteral("FreqRotorN 1500.000 rev/min")));
  EXPECT_TRUE(ok.out.contains(QStringLiteral("FreqDescR 6400 Hz")));
  EXPECT_TRUE(ok.out.contains(QStringLiteral("module 25600 Hz (within 122..100000)")));
  const ToolRun over = RunTool({QStringLiteral("record-rates"), QStringLiteral("--poles"), QStringLiteral("2"),
                                QStringLiteral("--revolutions"), QStringLiteral("1"), QStringLiteral("--samples"),
                                QStringLiteral("4096")});
  EXPECT_EQ(over.exitCode, 2);
  const ToolRun bad = RunTool({QStringLiteral("record-rates"), QStringLiteral("--poles"), QStringLiteral("x")});
  EXPECT_EQ(bad.exitCode, 2);
}

}  // namespace
}  // namespace aqx::tool
