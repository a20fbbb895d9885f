// Walks the main menus: no command may stand there as a placeholder waiting
// for a window; each one prints with its path when it does.

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

TEST(MenuWalk, EveryCommandHasItsWindow) {
  uitest::Workbench w;
  QStringList waiting;
  for (QAction* top : w.window->menuBar()->actions())
    if (top->menu()) Walk(top->menu(), top->text().remove(QLatin1Char('&')), waiting);
  std::printf("Commands still waiting for their windows: %lld\n", static_cast<long long>(waiting.size()));
  for (const QString& line : waiting) std::printf("  %s\n", line.toUtf8().constData());
  EXPECT_TRUE(waiting.isEmpty());
}

}  // namespace
}  // namespace aqx
