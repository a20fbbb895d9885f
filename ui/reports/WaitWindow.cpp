#include "ui/reports/WaitWindow.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace aqx::ui {

WaitWindow::WaitWindow(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmWait"));
  setWindowTitle(QStringLiteral("Подождите"));
  setWindowModality(Qt::ApplicationModal);
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  lblText_ = new QLabel(this);
  lblText_->setObjectName(QStringLiteral("lblText"));
  lblCount_ = new QLabel(this);
  lblCount_->setObjectName(QStringLiteral("lblCount"));
  bar_ = new QProgressBar(this);
  bar_->setMinimumWidth(360);
  cmdCancel_ = new QPushButton(QStringLiteral("Отмена"), this);
  cmdCancel_->setObjectName(QStringLiteral("cmdCancel"));
  connect(cmdCancel_, &QPushButton::clicked, this, &WaitWindow::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblText_);
  layout->addWidget(bar_);
  layout->addWidget(lblCount_);
  layout->addWidget(cmdCancel_, 0, Qt::AlignRight);
}

void WaitWindow::start(const QString& text) {
  lblText_->setText(text);
  lblCount_->clear();
  bar_->setRange(0, 1);
  bar_->setValue(0);
  cancelled_ = false;
  cmdCancel_->setEnabled(true);
}

bool WaitWindow::progress(int filesDone, int fileCount) {
  if (!isVisible()) {
    adjustSize();
    show();
    raise();
  }
  bar_->setRange(0, std::max(fileCount, 1));
  bar_->setValue(filesDone);
  lblCount_->setText(QStringLiteral("Обработано файлов: %1 из %2").arg(filesDone).arg(fileCount));
  QApplication::processEvents();
  emit progressed(filesDone, fileCount);
  QApplication::processEvents();
  return !cancelled_;
}

void WaitWindow::finish() { hide(); }

QString WaitWindow::countText() const { return lblCount_->text(); }

void WaitWindow::reject() {
  // The window stays until the command has stopped at the next file.
  cancelled_ = true;
  cmdCancel_->setEnabled(false);
  lblCount_->setText(QStringLiteral("Отмена..."));
}

}  // namespace aqx::ui
