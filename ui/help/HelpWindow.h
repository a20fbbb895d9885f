#pragma once
// The built-in manual: contents on the left, a search over all pages, the
// page on the right. One window for the program; F1 brings it up at the page
// of the window in front.

#include "core/HelpManual.h"

#include <QWidget>

class QLineEdit;
class QListWidget;
class QTabWidget;
class QTextBrowser;

namespace aqx::ui {

// Where the manual is looked for: beside the installed program, then in the
// source tree the program was built from.
QStringList HelpFolderCandidates();

class HelpWindow : public QWidget {
  Q_OBJECT
 public:
  explicit HelpWindow(HelpManual manual, QWidget* parent = nullptr);

  // Shows a page ("signal.md"); the contents page for an unknown one.
  void showPage(const QString& fileName);
  // The search tab with the query run (an empty one just shows the tab).
  void search(const QString& query);
  QString currentPage() const;
  const HelpManual& manual() const { return manual_; }
  QListWidget* contents() const { return contents_; }
  QListWidget* results() const { return results_; }
  QTextBrowser* browser() const { return browser_; }

 private:
  HelpManual manual_;
  QTabWidget* tabs_ = nullptr;
  QListWidget* contents_ = nullptr;
  QLineEdit* query_ = nullptr;
  QListWidget* results_ = nullptr;
  QTextBrowser* browser_ = nullptr;
};

}  // namespace aqx::ui
