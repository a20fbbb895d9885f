#include "ui/reports/MasterWizard.h"

#include "reports/ReportCommands.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace aqx::ui {

namespace {

constexpr int kIndexRole = Qt::UserRole;

const char* const kStepNames[MasterWizard::kStepCount] = {"frmReport01Files", "frmReport02SelectFiles",
                                                           "frmReport03SelectChannels",
                                                           "frmReport04SelectParameters", "frmReport05OK"};

QPushButton* Button(const QString& caption, const char* name, QWidget* parent) {
  auto* b = new QPushButton(caption, parent);
  b->setObjectName(QString::fromLatin1(name));
  return b;
}

QLabel* Caption(const QString& text, QWidget* parent) {
  auto* l = new QLabel(text, parent);
  l->setWordWrap(true);
  return l;
}

// The files of a folder that match a pattern of the filter, by name.
QStringList FolderFiles(const QString& folder, const QString& pattern) {
  if (pattern == QStringLiteral("*.aqx")) return reports::FolderRecordings(folder);
  QStringList files;
  const QDir dir(folder);
  for (const QString& name : dir.entryList(QDir::Files, QDir::Name)) files.push_back(dir.filePath(name));
  return files;
}

}  // namespace

OrderedList::OrderedList(const QString& objectName, QWidget* parent) : QWidget(parent) {
  setObjectName(objectName);
  list_ = new QListWidget(this);
  list_->setObjectName(QStringLiteral("lst"));
  auto* up = Button(QStringLiteral("Вверх"), "cmdUp", this);
  auto* down = Button(QStringLiteral("Вниз"), "cmdDown", this);
  connect(up, &QPushButton::clicked, this, [this] { move(list_->currentRow(), -1); });
  connect(down, &QPushButton::clicked, this, [this] { move(list_->currentRow(), 1); });
  auto* buttons = new QVBoxLayout;
  buttons->addWidget(up);
  buttons->addWidget(down);
  buttons->addStretch();
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(list_, 1);
  layout->addLayout(buttons);
}

void OrderedList::setEntries(const QStringList& texts, bool checkable, bool keepOrder) {
  struct Kept {
    QString text;
    bool checked;
  };
  std::vector<Kept> kept;
  if (keepOrder)
    for (int row = 0; row < list_->count(); ++row) {
      const QListWidgetItem* item = list_->item(row);
      if (texts.contains(item->text())) kept.push_back({item->text(), item->checkState() == Qt::Checked});
    }
  list_->clear();
  const auto add = [&](const QString& text, bool checked) {
    auto* item = new QListWidgetItem(text, list_);
    item->setData(kIndexRole, static_cast<int>(texts.indexOf(text)));
    if (checkable) item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
  };
  for (const Kept& k : kept) add(k.text, k.checked);
  for (const QString& text : texts)
    if (std::none_of(kept.begin(), kept.end(), [&](const Kept& k) { return k.text == text; })) add(text, true);
  list_->setCurrentRow(0);
}

std::vector<int> OrderedList::chosen() const {
  std::vector<int> indices;
  for (int row = 0; row < list_->count(); ++row) {
    const QListWidgetItem* item = list_->item(row);
    const bool checkable = item->data(Qt::CheckStateRole).isValid();
    if (!checkable || item->checkState() == Qt::Checked) indices.push_back(item->data(kIndexRole).toInt());
  }
  return indices;
}

void OrderedList::move(int row, int delta) {
  const int target = row + delta;
  if (row < 0 || target < 0 || target >= list_->count()) return;
  QListWidgetItem* item = list_->takeItem(row);
  list_->insertItem(target, item);
  list_->setCurrentRow(target);
}

void OrderedList::setAllChecked(bool checked) {
  for (int row = 0; row < list_->count(); ++row) list_->item(row)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
}

MasterWizard::MasterWizard(Prompts& prompts, const FileReaderTable& readers, const QString& startFolder,
                           QWidget* parent)
    : QDialog(parent), prompts_(prompts), readers_(readers) {
  setObjectName(QStringLiteral("frmReportMaster"));
  setWindowModality(Qt::ApplicationModal);
  pages_ = new QStackedWidget(this);
  pages_->addWidget(buildFilesStep());
  pages_->addWidget(buildOrderStep(kStepNames[1], QStringLiteral("Расположите файлы в порядке их следования в протоколе:"),
                                   fileOrder_));
  pages_->addWidget(buildOrderStep(kStepNames[2],
                                   QStringLiteral("Выберите и отсортируйте каналы, найденные в файлах: "), channels_));
  pages_->addWidget(buildOrderStep(kStepNames[3], reports::kMasterParametersPrompt, parameters_));
  auto* summary = new QWidget(this);
  summary->setObjectName(QString::fromLatin1(kStepNames[4]));
  txtSummary_ = new QPlainTextEdit(summary);
  txtSummary_->setReadOnly(true);
  txtSummary_->setTabStopDistance(24);
  auto* summaryLayout = new QVBoxLayout(summary);
  summaryLayout->addWidget(Caption(QStringLiteral("Протокол будет составлен так:"), summary));
  summaryLayout->addWidget(txtSummary_);
  pages_->addWidget(summary);

  QStringList parameterNames;
  for (const reports::MasterParameter p : reports::MasterParameters())
    parameterNames.push_back(reports::MasterParameterName(p));
  parameters_->setEntries(parameterNames, true, false);

  cmdBack_ = Button(QStringLiteral("< Назад"), "cmdBack", this);
  cmdNext_ = Button(QStringLiteral("Далее >"), "cmdNext", this);
  cmdCancel_ = Button(QStringLiteral("Отмена"), "cmdCancel", this);
  cmdNext_->setDefault(true);
  connect(cmdBack_, &QPushButton::clicked, this, &MasterWizard::back);
  connect(cmdNext_, &QPushButton::clicked, this, [this] {
    if (step_ == kStepCount) {
      accept();
    } else {
      next();
    }
  });
  connect(cmdCancel_, &QPushButton::clicked, this, &MasterWizard::reject);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cmdBack_);
  buttons->addWidget(cmdNext_);
  buttons->addSpacing(12);
  buttons->addWidget(cmdCancel_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(pages_, 1);
  layout->addLayout(buttons);

  setFolder(QFileInfo(startFolder).isDir() ? startFolder : QDir::homePath());
  resize(820, 520);
  showStep(1);
}

QWidget* MasterWizard::buildFilesStep() {
  auto* page = new QWidget(this);
  page->setObjectName(QString::fromLatin1(kStepNames[0]));
  model_ = new QFileSystemModel(page);
  model_->setFilter(QDir::AllDirs | QDir::Files | QDir::NoDotAndDotDot);
  model_->setNameFilterDisables(false);
  tree_ = new QTreeView(page);
  tree_->setObjectName(QStringLiteral("tvwBrowser"));
  tree_->setModel(model_);
  tree_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  for (int column = 1; column < model_->columnCount(); ++column) tree_->hideColumn(column);
  tree_->header()->hide();
  // A folder opens, a file joins the list.
  connect(tree_, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
    if (model_->isDir(index)) {
      setFolder(model_->filePath(index));
    } else {
      addPaths({model_->filePath(index)});
    }
  });
  txtFolder_ = new QLineEdit(page);
  txtFolder_->setObjectName(QStringLiteral("txtFolder"));
  connect(txtFolder_, &QLineEdit::returnPressed, this, [this] {
    if (QFileInfo(txtFolder_->text()).isDir()) setFolder(txtFolder_->text());
  });
  auto* up = Button(QStringLiteral("Вверх"), "cmdFolderUp", page);
  connect(up, &QPushButton::clicked, this, [this] { setFolder(QFileInfo(model_->rootPath()).path()); });
  cmbFilter_ = new QComboBox(page);
  cmbFilter_->setObjectName(QStringLiteral("cmbFilter"));
  const QStringList filter = reports::kMasterFileFilter.split(QLatin1Char('|'));
  for (int k = 0; k + 1 < filter.size(); k += 2) cmbFilter_->addItem(filter[k], filter[k + 1]);
  const auto applyFilter = [this] { model_->setNameFilters({currentPattern()}); };
  connect(cmbFilter_, &QComboBox::currentIndexChanged, this, applyFilter);
  applyFilter();

  lstFiles_ = new QListWidget(page);
  lstFiles_->setObjectName(QStringLiteral("lstFiles"));
  lstFiles_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  auto* add = Button(QStringLiteral("Добавить >"), "cmdAdd", page);
  auto* remove = Button(QStringLiteral("< Убрать"), "cmdRemove", page);
  auto* clear = Button(QStringLiteral("Очистить"), "cmdClear", page);
  connect(add, &QPushButton::clicked, this, &MasterWizard::addSelectedPaths);
  connect(remove, &QPushButton::clicked, this, &MasterWizard::removeSelectedFiles);
  connect(clear, &QPushButton::clicked, lstFiles_, &QListWidget::clear);

  auto* left = new QVBoxLayout;
  left->addWidget(Caption(QStringLiteral("Выберите файлы или папку:"), page));
  auto* folderRow = new QHBoxLayout;
  folderRow->addWidget(txtFolder_, 1);
  folderRow->addWidget(up);
  left->addLayout(folderRow);
  left->addWidget(tree_, 1);
  left->addWidget(cmbFilter_);
  auto* middle = new QVBoxLayout;
  middle->addStretch();
  middle->addWidget(add);
  middle->addWidget(remove);
  middle->addWidget(clear);
  middle->addStretch();
  auto* right = new QVBoxLayout;
  right->addWidget(Caption(QStringLiteral("Файлы протокола:"), page));
  right->addWidget(lstFiles_, 1);
  auto* layout = new QHBoxLayout(page);
  layout->addLayout(left, 3);
  layout->addLayout(middle);
  layout->addLayout(right, 3);
  return page;
}

QWidget* MasterWizard::buildOrderStep(const char* objectName, const QString& text, OrderedList*& list) {
  auto* page = new QWidget(this);
  page->setObjectName(QString::fromLatin1(objectName));
  list = new OrderedList(QStringLiteral("lst"), page);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(Caption(text, page));
  layout->addWidget(list, 1);
  return page;
}

void MasterWizard::setFolder(const QString& folder) {
  const QString clean = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
  model_->setRootPath(clean);
  tree_->setRootIndex(model_->index(clean));
  txtFolder_->setText(QDir::toNativeSeparators(clean));
}

QString MasterWizard::currentPattern() const { return cmbFilter_->currentData().toString(); }

void MasterWizard::addSelectedPaths() {
  QStringList paths;
  for (const QModelIndex& index : tree_->selectionModel()->selectedRows()) paths.push_back(model_->filePath(index));
  addPaths(paths);
}

void MasterWizard::addPaths(const QStringList& paths) {
  const QStringList present = files();
  QStringList added;
  for (const QString& path : paths) {
    const QStringList some = QFileInfo(path).isDir() ? FolderFiles(path, currentPattern()) : QStringList{path};
    for (const QString& file : some) {
      const QString clean = QDir::cleanPath(QFileInfo(file).absoluteFilePath());
      if (!present.contains(clean) && !added.contains(clean)) added.push_back(clean);
    }
  }
  for (const QString& file : added) {
    auto* item = new QListWidgetItem(QDir::toNativeSeparators(file), lstFiles_);
    item->setData(kIndexRole, file);
    item->setToolTip(QDir::toNativeSeparators(file));
  }
}

void MasterWizard::removeSelectedFiles() { qDeleteAll(lstFiles_->selectedItems()); }

QStringList MasterWizard::files() const {
  QStringList paths;
  for (int row = 0; row < lstFiles_->count(); ++row) paths.push_back(lstFiles_->item(row)->data(kIndexRole).toString());
  return paths;
}

reports::MasterChoice MasterWizard::choice() const {
  reports::MasterChoice c;
  const QStringList paths = files();
  for (const int k : fileOrder_->chosen()) c.files.push_back(paths.value(k));
  for (const int k : channels_->chosen())
    if (k >= 0 && k < static_cast<int>(foundChannels_.size())) c.channels.push_back(foundChannels_[static_cast<size_t>(k)]);
  const std::vector<reports::MasterParameter> offered = reports::MasterParameters();
  for (const int k : parameters_->chosen()) c.parameters.push_back(offered[static_cast<size_t>(k)]);
  return c;
}

bool MasterWizard::next() {
  switch (step_) {
    case 1: {
      if (!reports::MasterFilesReady(files(), prompts_)) return false;
      QStringList shown;
      for (const QString& f : files()) shown.push_back(QDir::toNativeSeparators(f));
      fileOrder_->setEntries(shown, false, true);
      break;
    }
    case 2: {
      const QStringList ordered = choice().files;
      QStringList sorted = ordered;
      sorted.sort();
      if (sorted != channelFiles_) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        foundChannels_ = reports::MasterChannelsOfFiles(ordered, readers_, prompts_);
        QApplication::restoreOverrideCursor();
        channelFiles_ = sorted;
        QStringList captions;
        for (const reports::MasterChannel& c : foundChannels_) captions.push_back(reports::MasterChannelCaption(c));
        channels_->setEntries(captions, true, true);
      }
      if (foundChannels_.empty()) {
        prompts_.tell(QStringLiteral("В выбранных файлах не найдено ни одного канала!"), reports::kMasterTitle,
                      PromptIcon::Exclamation);
        return false;
      }
      break;
    }
    case 3:
      if (channels_->chosen().empty()) {
        prompts_.tell(QStringLiteral("Выберите хотя бы один канал!"), reports::kMasterTitle, PromptIcon::Exclamation);
        return false;
      }
      break;
    case 4:
      if (parameters_->chosen().empty()) {
        prompts_.tell(QStringLiteral("Выберите хотя бы один параметр!"), reports::kMasterTitle,
                      PromptIcon::Exclamation);
        return false;
      }
      txtSummary_->setPlainText(reports::MasterSummary(choice()));
      break;
    default:
      return false;
  }
  showStep(step_ + 1);
  return true;
}

void MasterWizard::back() {
  if (step_ > 1) showStep(step_ - 1);
}

QString MasterWizard::summaryText() const { return txtSummary_->toPlainText(); }

void MasterWizard::showStep(int step) {
  step_ = step;
  pages_->setCurrentIndex(step - 1);
  setWindowTitle(reports::MasterStepCaption(step, kStepCount));
  cmdBack_->setEnabled(step > 1);
  cmdNext_->setText(step == kStepCount ? QStringLiteral("Готово") : QStringLiteral("Далее >"));
}

}  // namespace aqx::ui
