// Walks the main menus and lists every command that still stands disabled
// because its window is not built yet. The list is printed for all; the test
// fails only for the commands whose windows exist (the supporting windows).

#include "UiTestSupport.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include <gtest/gtest.h>

#include <cstdio>

namespace aqx {
namespace {

void Walk(const QMenu* menu, const QString& path, QStringList& waiting) {
  for (QAction* a : menu->actions()) {
    if (a->isSeparator()) continue;
    const QString here = path + QStringLiteral(" → ") + a->text().remove(QLatin1Char('&'));
    if (a->menu()) {
      Walk(a->menu(), here, waiting);
    } else if (a->property("later").toBool()) {
      waiting << a->objectName() + QStringLiteral("  (") + here + QStringLiteral(")");
    }
  }
}

TEST(MenuWalk, NoCommandOfTheSupportingWindowsWaitsForAWindow) {
  uitest::Workbench w;
  QStringList waiting;
  for (QAction* top : w.window->menuBar()->actions())
    if (top->menu()) Walk(top->menu(), top->text().remove(QLatin1Char('&')), waiting);
  std::printf("Commands still waiting for their windows: %lld\n", static_cast<long long>(waiting.size()));
  for (const QString& line : waiting) std::printf("  %s\n", line.toUtf8().constData());
  const char* const ours[] = {"mnuFileFiles",    "mnuFileProperty", "mnuSetupConfigs", "mnuSetupParameters",
                              "mnuHelpContents", "mnuHelpSearch",   "mnuHelpOnHelp",   "mnuHelpAdvice"};
  for (const char* name : ours) {
    QAction* a = w.window->action(QString::fromLatin1(name));
    ASSERT_NE(a, nullptr) << name;
    EXPECT_FALSE(a->property("later").toBool()) << name;
    for (const QString& line : waiting) EXPECT_FALSE(line.startsWith(QString::fromLatin1(name) + QLatin1Char(' '))) << name;
  }
}

}  // namespace
}  // namespace aqx
