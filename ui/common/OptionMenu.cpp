#include "ui/common/OptionMenu.h"

#include "core/ConfigKeys.h"

#include <QAction>
#include <QMenu>

namespace aqx::ui {

void AddOptionToggles(QMenu* menu, const char* section, int group, AppState& s, SettingsStore& store,
                      QHash<QString, QAction*>& actions, std::function<void()> changed) {
  for (const SettingKey* key : MenuOptions(section)) {
    if (key->menu.group != group) continue;
    auto* a = new QAction(QString::fromUtf8(key->menu.caption), menu);
    a->setObjectName(QString::fromLatin1(key->menu.objectName));
    a->setCheckable(true);
    a->setChecked(OptionFlag(s, *key));
    QObject::connect(a, &QAction::triggered, menu, [key, &s, &store, changed, a] {
      FlipOptionFlag(s, store, *key);
      a->setChecked(OptionFlag(s, *key));
      if (changed) changed();
    });
    menu->addAction(a);
    actions.insert(a->objectName(), a);
  }
}

void RefreshOptionChecks(const QHash<QString, QAction*>& actions, const AppState& s, const char* section) {
  for (const SettingKey* key : MenuOptions(section))
    if (QAction* a = actions.value(QString::fromLatin1(key->menu.objectName))) a->setChecked(OptionFlag(s, *key));
}

}  // namespace aqx::ui
