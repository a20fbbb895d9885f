#include "core/HelpManual.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>

namespace aqx {

namespace {

constexpr qint64 kMaxPageBytes = 1 << 20;
const char kContentsPage[] = "index.md";

HelpPage ReadPage(const QString& path, const QString& fileName) {
  HelpPage p;
  p.fileName = fileName;
  QFile f(path);
  if (!f.open(QIODevice::ReadOnly)) return p;
  p.text = QString::fromUtf8(f.read(kMaxPageBytes));
  const QRegularExpression windows(QStringLiteral("<!--\\s*windows:([^>]*)-->"));
  const QRegularExpressionMatch m = windows.match(p.text);
  if (m.hasMatch()) p.windows = m.captured(1).split(QLatin1Char(' '), Qt::SkipEmptyParts);
  for (const QString& line : p.text.split(QLatin1Char('\n'))) {
    if (line.startsWith(QLatin1String("# "))) {
      p.title = line.mid(2).trimmed();
      break;
    }
  }
  if (p.title.isEmpty()) p.title = fileName;
  return p;
}

// The first line of running text that holds the word, as a reader sees it:
// without link targets, heading marks and emphasis.
QString Excerpt(const QString& text, const QString& word) {
  QString heading;
  for (const QString& raw : text.split(QLatin1Char('\n'))) {
    if (!raw.contains(word, Qt::CaseInsensitive) || raw.startsWith(QLatin1String("<!--"))) continue;
    QString line = raw.trimmed();
    line.replace(QRegularExpression(QStringLiteral("\\[([^\\]]*)\\]\\([^)]*\\)")), QStringLiteral("\\1"));
    line.remove(QStringLiteral("**"));
    if (line.startsWith(QLatin1Char('#'))) {
      if (heading.isEmpty()) heading = line.remove(QRegularExpression(QStringLiteral("^#+\\s*")));
      continue;
    }
    return line.left(160);
  }
  return heading;
}

}  // namespace

QString HelpManual::findFolder(const QStringList& candidates) {
  for (const QString& c : candidates)
    if (!c.isEmpty() && QFile::exists(QDir(c).filePath(QString::fromLatin1(kContentsPage)))) return QDir(c).absolutePath();
  return {};
}

HelpManual HelpManual::load(const QString& folder) {
  HelpManual m;
  m.folder_ = folder;
  const QDir dir(folder);
  if (folder.isEmpty() || !dir.exists()) return m;
  QStringList names = dir.entryList({QStringLiteral("*.md")}, QDir::Files, QDir::Name);
  const QString contents = QString::fromLatin1(kContentsPage);
  if (!names.contains(contents)) return m;
  HelpPage index = ReadPage(dir.filePath(contents), contents);
  // The contents page gives the order: "](page.md)" links as they stand.
  QStringList order{contents};
  const QRegularExpression link(QStringLiteral("\\]\\(([\\w\\-]+\\.md)(#[^)]*)?\\)"));
  for (auto it = link.globalMatch(index.text); it.hasNext();) {
    const QString name = it.next().captured(1);
    if (names.contains(name) && !order.contains(name)) order << name;
  }
  for (const QString& n : names)
    if (!order.contains(n)) order << n;
  for (const QString& n : order) m.pages_.push_back(n == contents ? index : ReadPage(dir.filePath(n), n));
  return m;
}

const HelpPage* HelpManual::page(const QString& fileName) const {
  for (const HelpPage& p : pages_)
    if (p.fileName == fileName) return &p;
  return nullptr;
}

QString HelpManual::pageForWindow(const QString& windowObjectName) const {
  for (const HelpPage& p : pages_)
    if (p.windows.contains(windowObjectName)) return p.fileName;
  return pages_.empty() ? QString() : pages_.front().fileName;
}

std::vector<HelpHit> HelpManual::search(const QString& query) const {
  const QStringList words = query.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
  std::vector<HelpHit> hits;
  if (words.isEmpty()) return hits;
  for (const HelpPage& p : pages_) {
    HelpHit hit{p.fileName, p.title, {}, 0};
    bool all = true;
    for (const QString& w : words) {
      const int n = static_cast<int>(p.text.count(w, Qt::CaseInsensitive));
      if (n == 0) {
        all = false;
        break;
      }
      hit.matches += n;
    }
    if (!all) continue;
    hit.excerpt = Excerpt(p.text, words.front());
    hits.push_back(hit);
  }
  // The contents page names every subject; it comes after the pages
  // themselves.
  const QString contents = QString::fromLatin1(kContentsPage);
  std::stable_sort(hits.begin(), hits.end(), [&contents](const HelpHit& a, const HelpHit& b) {
    if ((a.fileName == contents) != (b.fileName == contents)) return b.fileName == contents;
    return a.matches > b.matches;
  });
  return hits;
}

}  // namespace aqx
