#include "ui/editing/ImportWindow.h"

#include "files/ChannelImport.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace aqx::ui {

ImportWindow::ImportWindow(AppState& state, const FileReaderTable& readers, const QStringList& sensorTypeNames,
                           Prompts& prompts, std::function<void()> imported, QWidget* parent)
    : QDialog(parent), s_(state), readers_(readers), typeNames_(sensorTypeNames), prompts_(prompts),
      imported_(std::move(imported)) {
  setObjectName(QStringLiteral("frmImport"));
  setWindowTitle(kImportTitle);
  setAttribute(Qt::WA_DeleteOnClose);
  lstSource_ = new QListWidget(this);
  lstSource_->setObjectName(QStringLiteral("lstSource"));
  lstDestination_ = new QListWidget(this);
  lstDestination_->setObjectName(QStringLiteral("lstDestination"));
  lblSource_ = new QLabel(QStringLiteral("Откройте файл-источник кнопкой \"Открыть\"."), this);
  lblSource_->setObjectName(QStringLiteral("lblSource"));
  lblSource_->setWordWrap(true);
  auto* open = new QPushButton(QStringLiteral("Открыть"), this);
  open->setObjectName(QStringLiteral("cmdOpen"));
  connect(open, &QPushButton::clicked, this, &ImportWindow::cmdOpen);
  cmdOK_ = new QPushButton(QStringLiteral("Импорт"), this);
  cmdOK_->setObjectName(QStringLiteral("cmdOK"));
  connect(cmdOK_, &QPushButton::clicked, this, &ImportWindow::cmdOK);
  auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
  close->setObjectName(QStringLiteral("cmdClose"));
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  const auto refreshOk = [this] {
    cmdOK_->setEnabled(source_ && lstSource_->currentItem() && lstDestination_->currentItem());
  };
  connect(lstSource_, &QListWidget::currentRowChanged, this, refreshOk);
  connect(lstDestination_, &QListWidget::currentRowChanged, this, refreshOk);

  auto* lists = new QGridLayout;
  lists->addWidget(new QLabel(QStringLiteral("Источник"), this), 0, 0);
  lists->addWidget(new QLabel(QStringLiteral("Приёмник"), this), 0, 1);
  lists->addWidget(lstSource_, 1, 0);
  lists->addWidget(lstDestination_, 1, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(open);
  buttons->addStretch(1);
  buttons->addWidget(cmdOK_);
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblSource_);
  layout->addLayout(lists, 1);
  layout->addLayout(buttons);
  resize(620, 380);
  ListBuild();
}

ImportWindow::~ImportWindow() = default;

void ImportWindow::cmdOpen() {
  const std::optional<QString> path = prompts_.chooseOpenFile(kImportTitle, s_.InitDirOpen, kImportFilter);
  if (path && !path->isEmpty()) openSource(*path);
}

bool ImportWindow::openSource(const QString& path) {
  std::unique_ptr<AppState> source = OpenImportSource(s_, path, readers_, prompts_);
  if (!source) return false;
  source_ = std::move(source);
  lblSource_->setText(QStringLiteral("Источник: ") + QDir::toNativeSeparators(path));
  ListBuild();
  return true;
}

void ImportWindow::ListBuild() {
  const auto fill = [this](QListWidget* list, const AppState* s) {
    const int row = list->currentRow();
    list->clear();
    if (!s) return;
    for (const ImportChannelEntry& e : ImportChannelList(*s, typeNames_)) {
      auto* item = new QListWidgetItem(e.text, list);
      item->setData(Qt::UserRole, e.channel);
    }
    list->setCurrentRow(std::min(row, list->count() - 1));
  };
  fill(lstSource_, source_.get());
  // The destination offers every channel of the connection: an unused one
  // can take an imported channel too.
  const int row = lstDestination_->currentRow();
  lstDestination_->clear();
  const auto used = ImportChannelList(s_, typeNames_);
  for (int c = 1; c <= ChannelCount(s_); ++c) {
    QString text = QStringLiteral("%1").arg(c, 2, 10, QLatin1Char('0'));
    for (const ImportChannelEntry& e : used)
      if (e.channel == c) text = e.text;
    if (s_.channels.Channel[c] != 1) text += QStringLiteral(" (не используется)");
    auto* item = new QListWidgetItem(text, lstDestination_);
    item->setData(Qt::UserRole, c);
  }
  lstDestination_->setCurrentRow(row);
  cmdOK_->setEnabled(source_ && lstSource_->currentItem() && lstDestination_->currentItem());
}

void ImportWindow::cmdOK() {
  if (!source_ || !lstSource_->currentItem() || !lstDestination_->currentItem()) return;
  const int from = lstSource_->currentItem()->data(Qt::UserRole).toInt();
  const int to = lstDestination_->currentItem()->data(Qt::UserRole).toInt();
  if (!ImportChannel(s_, *source_, from, to, prompts_)) return;
  if (imported_) imported_();
  ListBuild();
}

}  // namespace aqx::ui
