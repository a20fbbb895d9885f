#include "reports/XlsxWorkbook.h"

#include "core/PlainFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <xlsxwriter.h>

#include <algorithm>
#include <map>
#include <span>

namespace aqx::reports {

namespace {

constexpr double kMinColumnChars = 8.43;
constexpr double kMaxColumnChars = 60.0;
constexpr uint8_t kTextFormatIndex = 49;  // the built-in number format "@"

// Characters XML cannot carry are left out; a recording's texts come from
// older files and may hold anything.
std::string CellText(const QString& text) {
  QString out;
  out.reserve(text.size());
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    const char16_t u = c.unicode();
    if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      out += c;
      out += text[++i];
    } else if (!c.isSurrogate() && (u >= 0x20 || u == '\t' || u == '\n') && u != 0xFFFE && u != 0xFFFF) {
      out += c;
    }
  }
  return out.toStdString();
}

// Closes the workbook however the writing ends; libxlsxwriter writes the
// file at the close.
class Workbook {
 public:
  explicit Workbook(const std::string& path) : book_(workbook_new(path.c_str())) {}
  ~Workbook() {
    if (book_) workbook_close(book_);
  }
  Workbook(const Workbook&) = delete;
  Workbook& operator=(const Workbook&) = delete;
  lxw_workbook* get() const { return book_; }
  lxw_error close() {
    lxw_workbook* book = std::exchange(book_, nullptr);
    return book ? workbook_close(book) : LXW_ERROR_MEMORY_MALLOC_FAILED;
  }

 private:
  lxw_workbook* book_;
};

// Column widths from the longest text in each, in characters.
std::map<int, double> ColumnWidths(const ProtocolTable& table) {
  std::map<int, double> widths;
  for (const auto& [ref, cell] : table.cells()) {
    const double chars = std::clamp(static_cast<double>(cell.text.size()) + 1.0, kMinColumnChars, kMaxColumnChars);
    double& width = widths[ref.column];
    width = std::max(width, chars);
  }
  return widths;
}

QString WorkbookError(lxw_error e) {
  return QStringLiteral("ошибка формирования книги: %1").arg(QString::fromUtf8(lxw_strerror(e)));
}

}  // namespace

QByteArray ProtocolWorkbookBytes(const ProtocolTable& table, QString& error) {
  const QTemporaryDir folder;
  if (!folder.isValid()) {
    error = QStringLiteral("не удалось создать временную папку");
    return {};
  }
  const QString path = folder.filePath(QStringLiteral("protocol.xlsx"));
  {
    Workbook book(QFile::encodeName(path).toStdString());
    if (!book.get()) {
      error = WorkbookError(LXW_ERROR_MEMORY_MALLOC_FAILED);
      return {};
    }
    char title[] = "Протокол";
    char author[] = "Aquilonix";
    lxw_doc_properties properties{};
    properties.title = title;
    properties.author = author;
    workbook_set_properties(book.get(), &properties);
    lxw_worksheet* sheet = workbook_add_worksheet(book.get(), kProtocolSheetName.toUtf8().constData());
    lxw_format* text = workbook_add_format(book.get());
    format_set_num_format_index(text, kTextFormatIndex);
    worksheet_set_comments_author(sheet, author);
    int nextColumn = 0;
    for (const auto& [column, width] : ColumnWidths(table)) {
      const auto c = static_cast<lxw_col_t>(column - 1);
      if (c > nextColumn) worksheet_set_column(sheet, static_cast<lxw_col_t>(nextColumn), c - 1, LXW_DEF_COL_WIDTH, text);
      worksheet_set_column(sheet, c, c, width, text);
      nextColumn = c + 1;
    }
    worksheet_set_column(sheet, static_cast<lxw_col_t>(nextColumn), LXW_COL_MAX - 1, LXW_DEF_COL_WIDTH, text);
    for (const auto& [ref, cell] : table.cells()) {
      const auto row = static_cast<lxw_row_t>(ref.row - 1);
      const auto column = static_cast<lxw_col_t>(ref.column - 1);
      lxw_error e = worksheet_write_string(sheet, row, column, CellText(cell.text).c_str(), text);
      if (e == LXW_NO_ERROR && !cell.comment.isEmpty())
        e = worksheet_write_comment(sheet, row, column, CellText(cell.comment).c_str());
      if (e != LXW_NO_ERROR) {
        error = WorkbookError(e);
        return {};
      }
    }
    worksheet_set_selection(sheet, 0, 0, 0, 0);
    worksheet_activate(sheet);
    if (const lxw_error e = book.close(); e != LXW_NO_ERROR) {
      error = WorkbookError(e);
      return {};
    }
  }
  QFile made(path);
  if (!made.open(QIODevice::ReadOnly)) {
    error = QStringLiteral("не удалось прочитать сформированную книгу");
    return {};
  }
  return made.readAll();
}

bool ReplaceWorkbookFile(const QString& path, const QByteArray& bytes, QString& error) {
  int errorCode = 0;
  if (ReplaceFileContents(path, std::span(bytes.constData(), static_cast<size_t>(bytes.size())), errorCode))
    return true;
  error = QStringLiteral("Не удалось записать протокол в файл %1: %2.")
              .arg(QDir::toNativeSeparators(path), ReasonOfError(errorCode, true));
  return false;
}

bool WriteProtocolWorkbook(const ProtocolTable& table, const QString& path, QString& error) {
  QString reason;
  const QByteArray bytes = ProtocolWorkbookBytes(table, reason);
  if (bytes.isEmpty()) {
    error = QStringLiteral("Не удалось записать протокол в файл %1: %2.")
                .arg(QDir::toNativeSeparators(path), reason);
    return false;
  }
  return ReplaceWorkbookFile(path, bytes, error);
}

}  // namespace aqx::reports
