#include "ui/help/HelpWindow.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QTabWidget>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace aqx::ui {

QStringList HelpFolderCandidates() {
  const QString app = QCoreApplication::applicationDirPath();
  return {QDir(app).filePath(QStringLiteral("../share/doc/aquilonix/manual")),
          QDir(app).filePath(QStringLiteral("../../doc/manual")),
#ifdef AQX_MANUAL_SOURCE_DIR
          QStringLiteral(AQX_MANUAL_SOURCE_DIR),
#endif
  };
}

HelpWindow::HelpWindow(HelpManual manual, QWidget* parent) : QWidget(parent, Qt::Window), manual_(std::move(manual)) {
  setObjectName(QStringLiteral("frmHelp"));
  setWindowTitle(QStringLiteral("Справка Aquilonix"));
  resize(1000, 700);
  auto* layout = new QHBoxLayout(this);
  auto* split = new QSplitter(this);
  layout->addWidget(split);
  tabs_ = new QTabWidget(split);
  tabs_->setObjectName(QStringLiteral("tabHelp"));
  contents_ = new QListWidget(tabs_);
  contents_->setObjectName(QStringLiteral("lstContents"));
  for (const HelpPage& p : manual_.pages()) {
    auto* item = new QListWidgetItem(p.title, contents_);
    item->setData(Qt::UserRole, p.fileName);
  }
  tabs_->addTab(contents_, QStringLiteral("Содержание"));
  auto* searchPage = new QWidget(tabs_);
  auto* searchLayout = new QVBoxLayout(searchPage);
  auto* row = new QHBoxLayout;
  query_ = new QLineEdit(searchPage);
  query_->setObjectName(QStringLiteral("txtSearch"));
  query_->setPlaceholderText(QStringLiteral("Слова для поиска"));
  auto* go = new QPushButton(QStringLiteral("Найти"), searchPage);
  go->setObjectName(QStringLiteral("cmdSearch"));
  row->addWidget(query_);
  row->addWidget(go);
  searchLayout->addLayout(row);
  results_ = new QListWidget(searchPage);
  results_->setObjectName(QStringLiteral("lstResults"));
  results_->setWordWrap(true);
  searchLayout->addWidget(results_);
  tabs_->addTab(searchPage, QStringLiteral("Поиск"));
  browser_ = new QTextBrowser(split);
  browser_->setObjectName(QStringLiteral("txtPage"));
  browser_->setOpenExternalLinks(true);
  browser_->setSearchPaths({manual_.folder()});
  split->addWidget(tabs_);
  split->addWidget(browser_);
  split->setStretchFactor(1, 3);
  split->setSizes({260, 740});

  connect(contents_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
    if (item && item->data(Qt::UserRole).toString() != currentPage()) showPage(item->data(Qt::UserRole).toString());
  });
  const auto run = [this] { search(query_->text()); };
  connect(go, &QPushButton::clicked, this, run);
  connect(query_, &QLineEdit::returnPressed, this, run);
  connect(results_, &QListWidget::itemActivated, this,
          [this](QListWidgetItem* item) { showPage(item->data(Qt::UserRole).toString()); });
  connect(results_, &QListWidget::itemClicked, this,
          [this](QListWidgetItem* item) { showPage(item->data(Qt::UserRole).toString()); });
  connect(browser_, &QTextBrowser::sourceChanged, this, [this] {
    const QString page = currentPage();
    for (int i = 0; i < contents_->count(); ++i) {
      if (contents_->item(i)->data(Qt::UserRole).toString() == page) {
        const QSignalBlocker block(contents_);
        contents_->setCurrentRow(i);
      }
    }
  });
  if (manual_.empty()) {
    browser_->setHtml(QStringLiteral("<h2>Руководство не найдено</h2><p>Файлы руководства пользователя "
                                     "не установлены. Ожидалась папка:</p><p><tt>%1</tt></p>")
                          .arg(HelpFolderCandidates().value(0).toHtmlEscaped()));
  }
}

void HelpWindow::showPage(const QString& fileName) {
  if (manual_.empty()) return;
  const QString name = manual_.page(fileName) ? fileName : manual_.pages().front().fileName;
  browser_->setSource(QUrl::fromLocalFile(QDir(manual_.folder()).filePath(name)), QTextDocument::MarkdownResource);
}

QString HelpWindow::currentPage() const { return QFileInfo(browser_->source().toLocalFile()).fileName(); }

void HelpWindow::search(const QString& query) {
  tabs_->setCurrentIndex(1);
  query_->setText(query);
  query_->setFocus();
  results_->clear();
  if (query.trimmed().isEmpty()) return;
  const std::vector<HelpHit> hits = manual_.search(query);
  for (const HelpHit& h : hits) {
    auto* item = new QListWidgetItem(h.title + QStringLiteral("\n    ") + h.excerpt, results_);
    item->setData(Qt::UserRole, h.fileName);
  }
  if (hits.empty()) {
    auto* none = new QListWidgetItem(QStringLiteral("Ничего не найдено"), results_);
    none->setFlags(Qt::NoItemFlags);
  } else {
    results_->setCurrentRow(0);
    showPage(hits.front().fileName);
  }
}

}  // namespace aqx::ui
