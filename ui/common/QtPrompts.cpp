#include "ui/common/QtPrompts.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFrame>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QVBoxLayout>

namespace aqx::ui {

namespace {

// Russian captions on the standard buttons, whatever translations the
// system has.
void SetRussianButtonTexts(QMessageBox& box) {
  const std::pair<QMessageBox::StandardButton, const char*> texts[] = {
      {QMessageBox::Ok, "ОК"},     {QMessageBox::Cancel, "Отмена"}, {QMessageBox::Yes, "Да"},
      {QMessageBox::No, "Нет"},    {QMessageBox::Retry, "Повтор"},
  };
  for (const auto& [button, text] : texts)
    if (QAbstractButton* b = box.button(button)) b->setText(QString::fromUtf8(text));
}

QMessageBox::StandardButtons ToQtButtons(PromptButtons buttons) {
  switch (buttons) {
    case PromptButtons::Ok: return QMessageBox::Ok;
    case PromptButtons::OkCancel: return QMessageBox::Ok | QMessageBox::Cancel;
    case PromptButtons::YesNo: return QMessageBox::Yes | QMessageBox::No;
    case PromptButtons::YesNoCancel: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case PromptButtons::RetryCancel: return QMessageBox::Retry | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

QMessageBox::Icon ToQtIcon(PromptIcon icon) {
  switch (icon) {
    case PromptIcon::Information: return QMessageBox::Information;
    case PromptIcon::Exclamation: return QMessageBox::Warning;
    case PromptIcon::Critical: return QMessageBox::Critical;
    case PromptIcon::Question: return QMessageBox::Question;
    case PromptIcon::None: break;
  }
  return QMessageBox::NoIcon;
}

// The answer when the box is closed by its frame or Escape: the cancelling
// button of the set.
PromptAnswer FromQtButton(int button, PromptButtons buttons) {
  switch (button) {
    case QMessageBox::Ok: return PromptAnswer::Ok;
    case QMessageBox::Yes: return PromptAnswer::Yes;
    case QMessageBox::No: return PromptAnswer::No;
    case QMessageBox::Retry: return PromptAnswer::Retry;
    case QMessageBox::Cancel: return PromptAnswer::Cancel;
    default: break;
  }
  switch (buttons) {
    case PromptButtons::Ok: return PromptAnswer::Ok;
    case PromptButtons::YesNo: return PromptAnswer::No;
    default: return PromptAnswer::Cancel;
  }
}

// Folders stored in the settings may come from another system ("C:\"):
// start such a dialog in the home folder.
QString UsableFolder(const QString& folder) {
  if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
  return QDir::homePath();
}

}  // namespace

QString ToQtFileFilter(const QString& filter) {
  const QStringList parts = filter.split(QLatin1Char('|'));
  QStringList entries;
  for (int i = 0; i + 1 < parts.size(); i += 2) {
    QString description = parts[i].trimmed();
    const QString patterns = parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts).join(QLatin1Char(' '));
    description.remove(QRegularExpression(QStringLiteral("\\s*\\([^()]*\\)\\s*$")));
    entries << QStringLiteral("%1 (%2)").arg(description, patterns);
  }
  if (entries.isEmpty() && !filter.trimmed().isEmpty()) entries << filter.trimmed();
  return entries.join(QStringLiteral(";;"));
}

NoticeWindow::NoticeWindow(QWidget* owner)
    : QWidget(owner, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
  setAttribute(Qt::WA_ShowWithoutActivating);
  setObjectName(QStringLiteral("frmWarning"));
  auto* frame = new QFrame(this);
  frame->setFrameShape(QFrame::Box);
  frame->setLineWidth(2);
  frame->setStyleSheet(QStringLiteral("QFrame { background: #FFFFE1; border: 2px solid #7A7A7A; }"
                                      "QLabel { border: none; }"));
  label_ = new QLabel(frame);
  label_->setAlignment(Qt::AlignCenter);
  QFont f = label_->font();
  f.setPointSizeF(f.pointSizeF() * 1.2);
  label_->setFont(f);
  auto* inner = new QVBoxLayout(frame);
  inner->setContentsMargins(24, 16, 24, 16);
  inner->addWidget(label_);
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(0, 0, 0, 0);
  outer->addWidget(frame);
}

void NoticeWindow::showLines(const QStringList& lines) {
  QStringList shown;
  for (const QString& line : lines.mid(0, 3))
    if (!line.isEmpty()) shown << line;
  label_->setText(shown.join(QLatin1Char('\n')));
  adjustSize();
  const QWidget* owner = parentWidget();
  QRect area = owner ? owner->frameGeometry() : QRect();
  if (area.isEmpty() && QApplication::primaryScreen()) area = QApplication::primaryScreen()->availableGeometry();
  move(area.center() - rect().center());
  show();
  raise();
}

QStringList NoticeWindow::lines() const { return label_->text().split(QLatin1Char('\n')); }

QtPrompts::~QtPrompts() { delete notice_.data(); }

void QtPrompts::hideNotice() {
  if (notice_) notice_->hide();
}

PromptAnswer QtPrompts::message(const QString& text, const QString& title, PromptButtons buttons,
                                PromptIcon icon) {
  hideNotice();
  QMessageBox box(ToQtIcon(icon), title, text, ToQtButtons(buttons), owner_);
  SetRussianButtonTexts(box);
  if (buttons == PromptButtons::YesNo || buttons == PromptButtons::YesNoCancel)
    box.setDefaultButton(QMessageBox::Yes);
  box.exec();
  return FromQtButton(box.standardButton(box.clickedButton()), buttons);
}

std::optional<QString> QtPrompts::input(const QString& prompt, const QString& title,
                                        const QString& defaultText) {
  hideNotice();
  QInputDialog dialog(owner_);
  dialog.setWindowTitle(title);
  dialog.setLabelText(prompt);
  dialog.setTextValue(defaultText);
  dialog.setOkButtonText(QStringLiteral("ОК"));
  dialog.setCancelButtonText(QStringLiteral("Отмена"));
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.textValue();
}

std::optional<QString> QtPrompts::chooseOpenFile(const QString& title, const QString& folder,
                                                 const QString& filter) {
  hideNotice();
  const QString path = QFileDialog::getOpenFileName(owner_, title, UsableFolder(folder), ToQtFileFilter(filter));
  if (path.isEmpty()) return std::nullopt;
  return path;
}

std::optional<QString> QtPrompts::chooseSaveFile(const QString& title, const QString& folder,
                                                 const QString& fileName, const QString& filter) {
  hideNotice();
  const QString start = QDir(UsableFolder(folder)).filePath(fileName);
  const QString path = QFileDialog::getSaveFileName(owner_, title, start, ToQtFileFilter(filter));
  if (path.isEmpty()) return std::nullopt;
  return path;
}

void QtPrompts::notice(const QStringList& lines) {
  const bool empty = std::all_of(lines.begin(), lines.end(), [](const QString& l) { return l.isEmpty(); });
  if (empty) {
    hideNotice();
    return;
  }
  if (!notice_) notice_ = new NoticeWindow(owner_);
  notice_->showLines(lines);
  // The notice must be seen before the work that it announces starts.
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace aqx::ui
