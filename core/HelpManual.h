#pragma once
// The user manual that comes with the program: Markdown pages in one folder,
// in the order of its contents page. Each page names the windows it explains
// in a comment line "<!-- windows: frmViewSignal frmSetupParameters -->", so
// that F1 over a window finds its page.

#include <QString>
#include <QStringList>

#include <vector>

namespace aqx {

struct HelpPage {
  QString fileName;  // "signal.md"
  QString title;     // its first "# " heading
  QStringList windows;
  QString text;      // the Markdown
};

struct HelpHit {
  QString fileName;
  QString title;
  QString excerpt;   // the line around the first match
  int matches = 0;
};

class HelpManual {
 public:
  // Reads every page of the folder; the contents page "index.md" first, then
  // the pages in the order the contents links to them, then any others.
  static HelpManual load(const QString& folder);
  // The first folder of the list that holds the manual (an index.md).
  static QString findFolder(const QStringList& candidates);

  bool empty() const { return pages_.empty(); }
  const std::vector<HelpPage>& pages() const { return pages_; }
  QString folder() const { return folder_; }
  const HelpPage* page(const QString& fileName) const;
  // The page that explains a window, or the contents for a window no page
  // names.
  QString pageForWindow(const QString& windowObjectName) const;
  // Pages holding every word of the query (case-insensitive), most matches
  // first; an empty query finds nothing.
  std::vector<HelpHit> search(const QString& query) const;

 private:
  QString folder_;
  std::vector<HelpPage> pages_;
};

}  // namespace aqx
