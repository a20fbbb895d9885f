#include "ui/options/ConfigDialog.h"

#include "core/NamedConfigs.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace aqx::ui {

ConfigDialog::ConfigDialog(AppState& s, SettingsStore& store, Prompts& prompts, QString folder,
                           std::function<void()> restored, QWidget* parent)
    : QDialog(parent), s_(s), store_(store), prompts_(prompts), folder_(std::move(folder)),
      restored_(std::move(restored)) {
  setObjectName(QStringLiteral("frmConfig"));
  setWindowTitle(QStringLiteral("Конфигурации"));
  auto* layout = new QHBoxLayout(this);
  auto* left = new QVBoxLayout;
  auto* hint = new QLabel(QStringLiteral("Сохраненные конфигурации:"), this);
  left->addWidget(hint);
  lstConfig_ = new QListWidget(this);
  lstConfig_->setObjectName(QStringLiteral("lstConfig"));
  lstConfig_->setMinimumSize(260, 220);
  left->addWidget(lstConfig_);
  auto* where = new QLabel(QDir::toNativeSeparators(folder_), this);
  where->setObjectName(QStringLiteral("lblFolder"));
  where->setTextInteractionFlags(Qt::TextSelectableByMouse);
  where->setStyleSheet(QStringLiteral("color: gray"));
  left->addWidget(where);
  layout->addLayout(left, 1);
  auto* right = new QVBoxLayout;
  auto button = [this, right](const char* name, const QString& caption, void (ConfigDialog::*run)()) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(QString::fromLatin1(name));
    b->setAutoDefault(false);
    connect(b, &QPushButton::clicked, this, run);
    right->addWidget(b);
    return b;
  };
  button("cmdOpen", QStringLiteral("Открыть"), &ConfigDialog::Open);
  button("cmdSave", QStringLiteral("Сохранить"), &ConfigDialog::Save);
  button("cmdRename", QStringLiteral("Изменить"), &ConfigDialog::Rename);
  button("cmdDelete", QStringLiteral("Удалить"), &ConfigDialog::Delete);
  right->addStretch(1);
  auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
  close->setObjectName(QStringLiteral("cmdClose"));
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  right->addWidget(close);
  layout->addLayout(right);
  connect(lstConfig_, &QListWidget::itemDoubleClicked, this, [this] { Open(); });
  Refresh();
}

QString ConfigDialog::selected() const {
  const QListWidgetItem* item = lstConfig_->currentItem();
  return item ? item->text() : QString();
}

void ConfigDialog::Refresh(const QString& select) {
  const QString keep = select.isEmpty() ? selected() : select;
  lstConfig_->clear();
  lstConfig_->addItems(ListConfigs(folder_));
  const QList<QListWidgetItem*> found = lstConfig_->findItems(keep, Qt::MatchExactly);
  if (!found.isEmpty()) {
    lstConfig_->setCurrentItem(found.first());
  } else if (lstConfig_->count() > 0) {
    lstConfig_->setCurrentRow(0);
  }
  for (const char* name : {"cmdOpen", "cmdRename", "cmdDelete"})
    if (auto* b = findChild<QPushButton*>(QString::fromLatin1(name))) b->setEnabled(lstConfig_->count() > 0);
}

void ConfigDialog::Open() {
  const QString name = selected();
  if (name.isEmpty()) return;
  if (ConfigOpenCommand(s_, store_, folder_, name, prompts_, {}) == ConfigResult::Done && restored_) restored_();
}

void ConfigDialog::Save() {
  const QStringList before = ListConfigs(folder_);
  ConfigSaveCommand(store_, folder_, prompts_);
  QString added;
  for (const QString& n : ListConfigs(folder_))
    if (!before.contains(n)) added = n;
  Refresh(added);
}

void ConfigDialog::Rename() {
  const QString name = selected();
  if (name.isEmpty()) return;
  const QStringList before = ListConfigs(folder_);
  if (ConfigRenameCommand(folder_, name, prompts_) == ConfigResult::Failed)
    prompts_.tell(QStringLiteral("Не удалось переименовать конфигурацию: ") + name, QStringLiteral("Конфигурации"),
                  PromptIcon::Exclamation);
  QString renamed;
  for (const QString& n : ListConfigs(folder_))
    if (!before.contains(n)) renamed = n;
  Refresh(renamed);
}

void ConfigDialog::Delete() {
  const QString name = selected();
  if (name.isEmpty()) return;
  ConfigDeleteCommand(folder_, name, prompts_);
  Refresh();
}

}  // namespace aqx::ui
