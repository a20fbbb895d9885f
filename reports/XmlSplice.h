#pragma once
// Edits of spreadsheet XML that leave every byte outside the edited element
// as it was: the elements are found by a light scan of the tags (comments,
// processing instructions and CDATA passed over), only the text of a found
// element is parsed, and a changed element is spliced back in its place.

#include <QString>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace aqx::reports {

// One element of a document: bytes [begin, end), its content [contentBegin,
// contentEnd) (empty for <x/>), and its name with any prefix.
struct XmlElement {
  size_t begin = 0;
  size_t end = 0;
  size_t contentBegin = 0;
  size_t contentEnd = 0;
  std::string_view name;
};

// Every element whose name without prefix is localName, in document order;
// one found inside another of the same name is not listed again.
std::vector<XmlElement> FindXmlElements(std::string_view xml, std::string_view localName);

// A string of cells (a shared string <si> or an inline string <is>): its
// text runs joined, phonetic runs left out, escapes "_xHHHH_" decoded.
struct CellString {
  QString text;
  std::string firstRunProperties;  // <rPr> of the first run as written, or ""
};
std::optional<CellString> ReadCellString(std::string_view element);

// The element `found` of `xml` rewritten with `text` as its one run: the
// same start tag, the first run's properties kept, and what XML or the
// format cannot hold escaped.
std::string CellStringElement(std::string_view xml, const XmlElement& found, const CellString& old,
                              const QString& text);

// The workbook part with <calcPr fullCalcOnLoad="1">, so that formulas over
// filled cells are worked out again when the workbook opens.
std::string WithFullCalcOnLoad(std::string_view workbookXml);

}  // namespace aqx::reports
