#include "ui/files/FilesWindow.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileSystemModel>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QTreeView>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace aqx::ui {

namespace {

enum Column { ColName, ColDate, ColStation, ColAgregat, ColMode, ColLength, ColChannels, ColRate, ColSize, ColCount };

// Rows sort by the value they stand for, not by its text.
class FileItem : public QTreeWidgetItem {
 public:
  using QTreeWidgetItem::QTreeWidgetItem;
  bool operator<(const QTreeWidgetItem& other) const override {
    const int column = treeWidget() ? treeWidget()->sortColumn() : 0;
    const QVariant a = data(column, Qt::UserRole + 1);
    const QVariant b = other.data(column, Qt::UserRole + 1);
    if (a.isValid() && b.isValid()) return a.toDouble() < b.toDouble();
    return text(column).localeAwareCompare(other.text(column)) < 0;
  }
};

const QStringList kPatterns = {QStringLiteral("*.aqx"), QStringLiteral("*.zrk"), QStringLiteral("*.rsl"),
                               QStringLiteral("*.wav")};

}  // namespace

FilesWindow::FilesWindow(const QString& folder, std::function<bool(const QString&)> open, QWidget* parent)
    : QWidget(parent, Qt::Window), open_(std::move(open)) {
  setObjectName(QStringLiteral("frmViewFiles"));
  setWindowTitle(QStringLiteral("Файлы"));
  resize(1100, 600);
  auto* layout = new QVBoxLayout(this);
  auto* top = new QHBoxLayout;
  txtFolder_ = new QLineEdit(this);
  txtFolder_->setObjectName(QStringLiteral("txtFolder"));
  auto* up = new QPushButton(QStringLiteral("Вверх"), this);
  up->setObjectName(QStringLiteral("cmdUp"));
  auto* again = new QPushButton(QStringLiteral("Обновить"), this);
  again->setObjectName(QStringLiteral("cmdRefresh"));
  auto* openButton = new QPushButton(QStringLiteral("Открыть"), this);
  openButton->setObjectName(QStringLiteral("cmdOpen"));
  top->addWidget(new QLabel(QStringLiteral("Папка:"), this));
  top->addWidget(txtFolder_, 1);
  top->addWidget(up);
  top->addWidget(again);
  top->addWidget(openButton);
  layout->addLayout(top);
  auto* split = new QSplitter(this);
  model_ = new QFileSystemModel(this);
  model_->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
  model_->setRootPath(QDir::rootPath());
  folders_ = new QTreeView(split);
  folders_->setObjectName(QStringLiteral("dirFolders"));
  folders_->setModel(model_);
  for (int c = 1; c < model_->columnCount(); ++c) folders_->hideColumn(c);
  folders_->setHeaderHidden(true);
  lstFiles_ = new QTreeWidget(split);
  lstFiles_->setObjectName(QStringLiteral("lstFiles"));
  lstFiles_->setRootIsDecorated(false);
  lstFiles_->setUniformRowHeights(true);
  lstFiles_->setHeaderLabels({QStringLiteral("Файл"), QStringLiteral("Дата записи"), QStringLiteral("Станция"),
                              QStringLiteral("Агрегат"), QStringLiteral("Режим"), QStringLiteral("Длительность"),
                              QStringLiteral("Каналы"), QStringLiteral("Частота, Гц"), QStringLiteral("Размер")});
  lstFiles_->setSortingEnabled(true);
  lstFiles_->sortByColumn(ColName, Qt::AscendingOrder);
  lstFiles_->header()->setSectionResizeMode(QHeaderView::Interactive);
  lstFiles_->setColumnWidth(ColName, 220);
  lstFiles_->setColumnWidth(ColDate, 140);
  split->addWidget(folders_);
  split->addWidget(lstFiles_);
  split->setSizes({250, 850});
  layout->addWidget(split, 1);
  lblStatus_ = new QLabel(this);
  lblStatus_->setObjectName(QStringLiteral("lblStatus"));
  layout->addWidget(lblStatus_);

  connect(txtFolder_, &QLineEdit::returnPressed, this, [this] { setFolder(txtFolder_->text()); });
  connect(up, &QPushButton::clicked, this, [this] {
    QDir d(folder_);
    if (d.cdUp()) setFolder(d.absolutePath());
  });
  connect(again, &QPushButton::clicked, this, [this] { setFolder(folder_); });
  connect(folders_, &QTreeView::clicked, this, [this](const QModelIndex& i) { setFolder(model_->filePath(i)); });
  connect(lstFiles_, &QTreeWidget::itemActivated, this,
          [this](QTreeWidgetItem* item) { openRow(lstFiles_->indexOfTopLevelItem(item)); });
  connect(openButton, &QPushButton::clicked, this,
          [this] { openRow(lstFiles_->indexOfTopLevelItem(lstFiles_->currentItem())); });
  setFolder(folder);
}

FilesWindow::~FilesWindow() { stopReading(); }

void FilesWindow::stopReading() {
  if (worker_.joinable()) {
    worker_.request_stop();
    worker_.join();
  }
}

bool FilesWindow::reading() const { return received_ < expected_; }

int FilesWindow::rowCount() const { return lstFiles_->topLevelItemCount(); }

void FilesWindow::setFolder(const QString& folder) {
  stopReading();
  ++generation_;
  const QDir dir(folder.isEmpty() ? QDir::homePath() : folder);
  folder_ = dir.absolutePath();
  txtFolder_->setText(QDir::toNativeSeparators(folder_));
  const QModelIndex index = model_->index(folder_);
  if (index.isValid()) {
    folders_->setCurrentIndex(index);
    folders_->scrollTo(index);
  }
  lstFiles_->clear();
  if (!dir.exists()) {
    expected_ = received_ = 0;
    lblStatus_->setText(QStringLiteral("Папка не найдена: ") + QDir::toNativeSeparators(folder_));
    emit readingFinished();
    return;
  }
  const QStringList names = dir.entryList(kPatterns, QDir::Files | QDir::Readable, QDir::Name | QDir::IgnoreCase);
  expected_ = static_cast<int>(names.size());
  received_ = 0;
  damaged_ = 0;
  // The names come first, at once; the header values follow as they are read.
  lstFiles_->setSortingEnabled(false);
  QList<QTreeWidgetItem*> items;
  for (const QString& n : names) {
    auto* item = new FileItem;
    item->setText(ColName, n);
    item->setData(ColName, Qt::UserRole, dir.filePath(n));
    item->setForeground(ColDate, Qt::gray);
    item->setText(ColDate, QStringLiteral("..."));
    items << item;
  }
  lstFiles_->addTopLevelItems(items);
  lstFiles_->setSortingEnabled(true);
  lblStatus_->setText(expected_ == 0 ? QStringLiteral("В папке нет файлов записей")
                                     : QStringLiteral("Файлов: %1, читаются заголовки ...").arg(expected_));
  if (expected_ == 0) {
    emit readingFinished();
    return;
  }
  QStringList paths;
  for (const QString& n : names) paths << dir.filePath(n);
  const int generation = generation_;
  worker_ = std::jthread([this, paths, generation](std::stop_token stop) {
    auto scratch = std::make_unique<AppState>();
    std::vector<RecordingSummary> batch;
    QElapsedTimer sinceSent;
    sinceSent.start();
    for (const QString& path : paths) {
      if (stop.stop_requested()) return;
      batch.push_back(ReadRecordingSummary(path, *scratch));
      if (sinceSent.elapsed() >= 100 || batch.size() >= 200) {
        QMetaObject::invokeMethod(this, [this, generation, b = std::move(batch)] { addSummaries(generation, b); },
                                  Qt::QueuedConnection);
        batch.clear();
        sinceSent.restart();
      }
    }
    QMetaObject::invokeMethod(this, [this, generation, b = std::move(batch)] { addSummaries(generation, b); },
                              Qt::QueuedConnection);
  });
}

void FilesWindow::addSummaries(int generation, const std::vector<RecordingSummary>& batch) {
  if (generation != generation_) return;
  const QLocale locale;
  QHash<QString, QTreeWidgetItem*> byPath;
  for (int i = 0; i < lstFiles_->topLevelItemCount(); ++i) {
    QTreeWidgetItem* item = lstFiles_->topLevelItem(i);
    byPath.insert(item->data(ColName, Qt::UserRole).toString(), item);
  }
  lstFiles_->setSortingEnabled(false);
  for (const RecordingSummary& r : batch) {
    QTreeWidgetItem* item = byPath.value(r.path);
    ++received_;
    if (!item) continue;
    item->setForeground(ColDate, palette().color(QPalette::Text));
    item->setText(ColSize, locale.formattedDataSize(r.bytes, 1, QLocale::DataSizeTraditionalFormat));
    item->setData(ColSize, Qt::UserRole + 1, static_cast<double>(r.bytes));
    if (!r.readable) {
      ++damaged_;
      item->setText(ColDate, QStringLiteral("не читается"));
      item->setForeground(ColDate, Qt::red);
      item->setText(ColStation, r.problem);
      item->setToolTip(ColName, r.problem);
      item->setToolTip(ColStation, r.problem);
      continue;
    }
    item->setText(ColDate, r.date);
    item->setText(ColStation, r.station);
    item->setText(ColAgregat, QString::number(r.agregat));
    item->setData(ColAgregat, Qt::UserRole + 1, r.agregat);
    item->setText(ColMode, r.mode);
    item->setText(ColLength, DurationText(r.seconds));
    item->setData(ColLength, Qt::UserRole + 1, r.seconds);
    item->setText(ColChannels, QString::number(r.channels));
    item->setData(ColChannels, Qt::UserRole + 1, r.channels);
    item->setText(ColRate, QString::number(r.sampleRateHz));
    item->setData(ColRate, Qt::UserRole + 1, r.sampleRateHz);
  }
  lstFiles_->setSortingEnabled(true);
  QString status = received_ < expected_
                       ? QStringLiteral("Файлов: %1, прочитано %2 ...").arg(expected_).arg(received_)
                       : QStringLiteral("Файлов: %1").arg(expected_);
  if (damaged_ > 0) status += QStringLiteral(", не читаются: %1").arg(damaged_);
  lblStatus_->setText(status);
  if (received_ >= expected_) emit readingFinished();
}

bool FilesWindow::openRow(int row) {
  QTreeWidgetItem* item = lstFiles_->topLevelItem(row);
  if (!item || !open_) return false;
  return open_(item->data(ColName, Qt::UserRole).toString());
}

FilePropertyWindow::FilePropertyWindow(const AppState& s, const Vocabulary& vocab, QWidget* parent)
    : QDialog(parent), s_(s), vocab_(vocab) {
  setObjectName(QStringLiteral("frmViewFileProperty"));
  setWindowTitle(QStringLiteral("Свойства"));
  resize(560, 520);
  auto* layout = new QVBoxLayout(this);
  table_ = new QTableWidget(this);
  table_->setObjectName(QStringLiteral("grdProperty"));
  table_->setColumnCount(2);
  table_->horizontalHeader()->setVisible(false);
  table_->verticalHeader()->setVisible(false);
  table_->horizontalHeader()->setStretchLastSection(true);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setWordWrap(true);
  layout->addWidget(table_);
  auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
  close->setObjectName(QStringLiteral("cmdClose"));
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  layout->addWidget(close, 0, Qt::AlignRight);
  OutData();
}

void FilePropertyWindow::OutData() {
  const auto rows = RecordingProperties(s_, vocab_);
  table_->setRowCount(static_cast<int>(rows.size()));
  for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
    auto* name = new QTableWidgetItem(rows[static_cast<size_t>(i)].first);
    QFont bold = name->font();
    bold.setBold(true);
    name->setFont(bold);
    table_->setItem(i, 0, name);
    table_->setItem(i, 1, new QTableWidgetItem(rows[static_cast<size_t>(i)].second));
  }
  table_->resizeColumnToContents(0);
}

}  // namespace aqx::ui
