#include "ui/rotor/ConsoleWindow.h"

#include "ui/common/PanelBar.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace aqx::ui {

ConsoleWindow::ConsoleWindow(AppState& state, QWidget* parent) : QWidget(parent, Qt::Window), s_(state) {
  setObjectName(QStringLiteral("frmViewConsole"));
  setWindowTitle(QStringLiteral("Консоль"));
  setAttribute(Qt::WA_DeleteOnClose);
  txtConsole_ = new QPlainTextEdit(this);
  txtConsole_->setObjectName(QStringLiteral("txtConsole"));
  txtConsole_->setReadOnly(true);
  txtConsole_->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtConsole_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  // Wide enough for a form number a column.
  txtConsole_->setTabStopDistance(txtConsole_->fontMetrics().horizontalAdvance(QStringLiteral("-000,00 ")));
  statusBar_ = new PanelBar(this);
  statusBar_->setObjectName(QStringLiteral("StatusBar"));
  statusBar_->setPanels({{QStringLiteral("Lines"), {}, QStringLiteral("Строк в отчете"), true, true, true}});
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(txtConsole_, 1);
  layout->addWidget(statusBar_);
  resize(720, 480);
  s_.ViewOpenFlags[frmViewConsole] = true;
}

ConsoleWindow::~ConsoleWindow() { s_.ViewOpenFlags[frmViewConsole] = false; }

void ConsoleWindow::showText(const QString& title, const QString& text) {
  setWindowTitle(QStringLiteral("Консоль - ") + title);
  // CR LF ends each line of the report; the box takes plain line breaks.
  QString shown = text;
  shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  txtConsole_->setPlainText(shown);
  statusBar_->setText(QStringLiteral("Lines"), QStringLiteral("Строк: %1").arg(txtConsole_->blockCount()));
}

QString ConsoleWindow::text() const { return txtConsole_->toPlainText(); }

}  // namespace aqx::ui
