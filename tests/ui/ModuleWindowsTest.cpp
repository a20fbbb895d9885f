// The module's service windows on the virtual module: its description, the
// loop-back of the digital lines, and failures told without losing anything.

#include "ui/acquisition/ModuleWindows.h"

#include <QCheckBox>

#include <gtest/gtest.h>

namespace aqx {
namespace {

// The virtual module fails the step with this number while it lives.
class FailingStep {
 public:
  explicit FailingStep(int number) { qputenv("AQX_VIRTUAL_FAIL", QByteArray::number(number)); }
  ~FailingStep() { qunsetenv("AQX_VIRTUAL_FAIL"); }
  FailingStep(const FailingStep&) = delete;
  FailingStep& operator=(const FailingStep&) = delete;
};

TEST(InfoAdcWindow, TellsTheLibraryAndTheModule) {
  ScriptedPrompts prompts;
  ui::InfoAdcWindow window(prompts);
  const QString text = window.text();
  EXPECT_TRUE(text.startsWith(QStringLiteral("Библиотека libAquilonix.so.%1 версии %1.%2.%3\n")
                                  .arg(AQX_VERSION_MAJOR)
                                  .arg(AQX_VERSION_MINOR)
                                  .arg(AQX_VERSION_PATCH)));
  EXPECT_TRUE(text.contains(QStringLiteral("Модуль: ")));
  // The fifth block runs on into the sixth; the others stand apart.
  EXPECT_TRUE(text.contains(QStringLiteral("напряжения: ±10.0В")));
  EXPECT_TRUE(text.contains(QStringLiteral("\n\nЦифровые линии: 16 входных")));
  EXPECT_TRUE(prompts.messages().empty());

  const FailingStep noModule(3);
  const QString failed = ui::AdcInformationText(prompts);
  EXPECT_TRUE(failed.endsWith(QStringLiteral("\n> Нет данных АЦП!!!")));
  ASSERT_EQ(prompts.messages().size(), 1u);
  EXPECT_TRUE(prompts.lastMessage().startsWith(QStringLiteral("Error #3\n")));
}

TEST(DigitalLinesWindow, DrivenOutputsReadBackOnTheInputs) {
  ScriptedPrompts prompts;
  ui::DigitalLinesWindow window(prompts);
  for (int line : {0, 3, 15}) window.output(line)->setChecked(true);
  window.enable()->click();
  window.cmdRecord();
  window.cmdRead();
  for (int line = 0; line < 16; ++line)
    EXPECT_EQ(window.input(line)->isChecked(), line == 0 || line == 3 || line == 15) << line;

  {
    // A failed read leaves the boxes as they were.
    const FailingStep noInputs(25);
    window.output(3)->setChecked(false);
    window.cmdRecord();
    window.cmdRead();
    EXPECT_TRUE(window.input(3)->isChecked());
    ASSERT_EQ(prompts.messages().size(), 1u);
    EXPECT_TRUE(prompts.lastMessage().startsWith(QStringLiteral("Error #25\n")));
  }
  window.enable()->click();  // outputs floating again
  EXPECT_EQ(prompts.messages().size(), 1u);
}

}  // namespace
}  // namespace aqx
