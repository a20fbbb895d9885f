#pragma once
// A station's own protocol form (.xlsx, or an .xltx template), filled by
// editing its package: the cell texts that hold tags are rewritten in the
// shared strings and in inline strings, and nothing else is touched. Parts
// without a tag are copied as they are, compressed bytes and all; a part
// with one keeps every byte outside the rewritten strings. The workbook is
// told to work its formulas out again on opening, as their cached results
// may read the tags. A form that is an .xltx comes out as a workbook.
// Tags inside formulas, comments, headers or drawings are not filled.

#include "reports/TemplateTags.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace aqx::reports {

// The open dialog's filter for forms.
inline const QString kTemplateFilter =
    QStringLiteral("Шаблон протокола|*.xlsx;*.xltx;*.xls|Все файлы (*.*)|*.*");

class TemplateWorkbook {
 public:
  // Reads and checks the form. nullopt with the user's message in `error`
  // for a file that cannot be read, an old binary .xls, a workbook with
  // macros, or anything that is no spreadsheet package.
  static std::optional<TemplateWorkbook> open(const QString& path, QString& error);

  // The filled workbook's bytes; `replaced` counts the tags replaced. nullopt
  // with the reason (a phrase to follow a colon) in `error`.
  // `unknownTags` gets the tags of channels read whose parameter the tag
  // grammar does not know; they stay as written.
  std::optional<QByteArray> fill(const TemplateTags& tags, int& replaced, QString& error,
                                 QStringList* unknownTags = nullptr) const;

  const QString& path() const { return path_; }

 private:
  QString path_;
  QByteArray bytes_;
  std::vector<std::string> stringParts_;  // shared strings: <si>
  std::vector<std::string> sheetParts_;   // worksheets: inline <is>
  std::string workbookPart_;
  bool isTemplate_ = false;  // the main part is an .xltx's
};

}  // namespace aqx::reports
