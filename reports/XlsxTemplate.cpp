#include "reports/XlsxTemplate.h"

#include "core/PlainFile.h"
#include "reports/XmlSplice.h"

#include <QDir>
#include <QFileInfo>

#include <pugixml.hpp>
#include <zip.h>

#include <cstdio>
#include <functional>
#include <list>
#include <memory>
#include <span>

namespace aqx::reports {

namespace {

constexpr char kContentTypesPart[] = "[Content_Types].xml";
constexpr char kSheetType[] = "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml";
constexpr char kStringsType[] = "application/vnd.openxmlformats-officedocument.spreadsheetml.sharedStrings+xml";
constexpr char kWorkbookType[] = "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";
constexpr char kTemplateType[] = "application/vnd.openxmlformats-officedocument.spreadsheetml.template.main+xml";
constexpr char kMacroWorkbookType[] = "application/vnd.ms-excel.sheet.macroEnabled.main+xml";
constexpr char kMacroTemplateType[] = "application/vnd.ms-excel.template.macroEnabled.main+xml";
// The start of an OLE compound file: Excel 97-2003 workbooks.
constexpr char kBinaryWorkbookMagic[] = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";

QString Native(const QString& path) { return QDir::toNativeSeparators(path); }

// A zip package in memory, opened for reading or for changes that close()
// turns into the bytes of the new package. Unchanged entries are copied
// as they are stored.
class Package {
 public:
  Package(const Package&) = delete;
  Package& operator=(const Package&) = delete;
  ~Package() {
    if (archive_) zip_discard(archive_);
    if (source_) zip_source_free(source_);
  }

  static std::unique_ptr<Package> open(const QByteArray& bytes, bool writable) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source =
        zip_source_buffer_create(bytes.constData(), static_cast<zip_uint64_t>(bytes.size()), 0, &error);
    zip_error_fini(&error);
    if (!source) return nullptr;
    zip_t* archive = zip_open_from_source(source, writable ? 0 : ZIP_RDONLY, nullptr);
    if (!archive) {
      zip_source_free(source);
      return nullptr;
    }
    // One reference for the archive, one kept here to read the result.
    zip_source_keep(source);
    return std::unique_ptr<Package>(new Package(source, archive));
  }

  std::optional<zip_uint64_t> locate(const std::string& name) const {
    const zip_int64_t index = zip_name_locate(archive_, name.c_str(), ZIP_FL_NOCASE);
    if (index < 0) return std::nullopt;
    return static_cast<zip_uint64_t>(index);
  }

  std::optional<std::string> read(zip_uint64_t index) const {
    zip_stat_t st;
    zip_stat_init(&st);
    if (zip_stat_index(archive_, index, 0, &st) != 0 || !(st.valid & ZIP_STAT_SIZE)) return std::nullopt;
    std::string data(static_cast<size_t>(st.size), '\0');
    const std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> file(zip_fopen_index(archive_, index, 0), zip_fclose);
    if (!file) return std::nullopt;
    if (zip_fread(file.get(), data.data(), st.size) != static_cast<zip_int64_t>(st.size)) return std::nullopt;
    return data;
  }

  std::optional<std::string> read(const std::string& name) const {
    const std::optional<zip_uint64_t> index = locate(name);
    return index ? read(*index) : std::nullopt;
  }

  // New contents of an entry, with its time kept.
  bool replace(zip_uint64_t index, std::string contents) {
    zip_stat_t st;
    zip_stat_init(&st);
    zip_stat_index(archive_, index, 0, &st);
    const std::string& kept = kept_.emplace_back(std::move(contents));
    zip_source_t* source = zip_source_buffer(archive_, kept.data(), kept.size(), 0);
    if (!source) return false;
    if (zip_file_replace(archive_, index, source, 0) != 0) {
      zip_source_free(source);
      return false;
    }
    if (st.valid & ZIP_STAT_MTIME) zip_file_set_mtime(archive_, index, st.mtime, 0);
    return true;
  }

  std::optional<QByteArray> close() {
    if (zip_close(archive_) != 0) return std::nullopt;
    archive_ = nullptr;
    if (zip_source_open(source_) != 0) return std::nullopt;
    QByteArray out;
    if (zip_source_seek(source_, 0, SEEK_END) == 0) {
      const zip_int64_t size = zip_source_tell(source_);
      if (size >= 0 && zip_source_seek(source_, 0, SEEK_SET) == 0) {
        out.resize(static_cast<qsizetype>(size));
        if (zip_source_read(source_, out.data(), static_cast<zip_uint64_t>(size)) != size) out.clear();
      }
    }
    zip_source_close(source_);
    if (out.isEmpty()) return std::nullopt;
    return out;
  }

 private:
  Package(zip_source_t* source, zip_t* archive) : source_(source), archive_(archive) {}

  zip_source_t* source_;
  zip_t* archive_;
  std::list<std::string> kept_;  // the data of replaced entries, until the close
};

// Rewrites the strings of one part that hold tags; the number replaced.
int FillPart(Package& package, const std::string& name, std::string_view element, const TemplateTags& tags,
             QStringList& unknown, bool& failed) {
  const std::optional<zip_uint64_t> index = package.locate(name);
  if (!index) return 0;
  const std::optional<std::string> xml = package.read(*index);
  if (!xml) {
    failed = true;
    return 0;
  }
  int replaced = 0;
  std::string out;
  size_t copied = 0;
  for (const XmlElement& found : FindXmlElements(*xml, element)) {
    const std::optional<CellString> old = ReadCellString(std::string_view(*xml).substr(found.begin, found.end - found.begin));
    if (!old) continue;
    QString text = old->text;
    const int here = tags.replaceIn(text);
    unknown += tags.unknownIn(text);
    if (here == 0) continue;
    out.append(*xml, copied, found.begin - copied);
    out += CellStringElement(*xml, found, *old, text);
    copied = found.end;
    replaced += here;
  }
  if (replaced == 0) return 0;
  out.append(*xml, copied);
  if (!package.replace(*index, std::move(out))) failed = true;
  return replaced;
}

bool ReplaceEntry(Package& package, const std::string& name, const std::function<std::string(const std::string&)>& edit) {
  const std::optional<zip_uint64_t> index = package.locate(name);
  if (!index) return true;
  const std::optional<std::string> xml = package.read(*index);
  if (!xml) return false;
  std::string changed = edit(*xml);
  return changed == *xml || package.replace(*index, std::move(changed));
}

}  // namespace

std::optional<TemplateWorkbook> TemplateWorkbook::open(const QString& path, QString& error) {
  PlainFile file;
  if (!file.openRead(path)) {
    error = QStringLiteral("Не удалось открыть файл %1: %2.").arg(Native(path), ReasonOfError(file.lastError(), false));
    return std::nullopt;
  }
  TemplateWorkbook t;
  t.path_ = path;
  t.bytes_.resize(static_cast<qsizetype>(std::max<int64_t>(file.size(), 0)));
  if (!file.readAt(0, std::span(t.bytes_.data(), static_cast<size_t>(t.bytes_.size())))) {
    error = QStringLiteral("Ошибка чтения файла %1: %2.").arg(Native(path), ReasonOfError(file.lastError(), false));
    return std::nullopt;
  }
  const bool zip = t.bytes_.startsWith("PK");
  if (t.bytes_.startsWith(QByteArray(kBinaryWorkbookMagic, 8)) ||
      (!zip && QFileInfo(path).suffix().compare(QStringLiteral("xls"), Qt::CaseInsensitive) == 0)) {
    error = QStringLiteral("Шаблон %1 сохранён в старом формате Excel 97-2003 (*.xls), который программа не "
                           "заполняет. Откройте его в программе электронных таблиц, сохраните как книгу Excel "
                           "(*.xlsx) и выберите снова.")
                .arg(Native(path));
    return std::nullopt;
  }
  const QString notWorkbook = QStringLiteral("Файл %1 не является книгой Excel (*.xlsx).").arg(Native(path));
  const std::unique_ptr<Package> package = Package::open(t.bytes_, false);
  const std::optional<std::string> types = package ? package->read(kContentTypesPart) : std::nullopt;
  pugi::xml_document doc;
  if (!types || !doc.load_buffer(types->data(), types->size())) {
    error = notWorkbook;
    return std::nullopt;
  }
  for (const pugi::xml_node& o : doc.document_element().children("Override")) {
    std::string part = o.attribute("PartName").value();
    if (part.starts_with('/')) part.erase(0, 1);
    const std::string_view type = o.attribute("ContentType").value();
    if (type == kSheetType) {
      t.sheetParts_.push_back(part);
    } else if (type == kStringsType) {
      t.stringParts_.push_back(part);
    } else if (type == kWorkbookType || type == kTemplateType) {
      t.workbookPart_ = part;
      t.isTemplate_ = type == kTemplateType;
    } else if (type == kMacroWorkbookType || type == kMacroTemplateType) {
      error = QStringLiteral("Шаблон %1 содержит макросы. Сохраните его как книгу Excel (*.xlsx) без макросов и "
                             "выберите снова.")
                  .arg(Native(path));
      return std::nullopt;
    }
  }
  if (t.workbookPart_.empty()) {
    error = notWorkbook;
    return std::nullopt;
  }
  return t;
}

std::optional<QByteArray> TemplateWorkbook::fill(const TemplateTags& tags, int& replaced, QString& error,
                                                 QStringList* unknownTags) const {
  replaced = 0;
  QStringList unknown;
  const QString damaged = QStringLiteral("шаблон повреждён");
  const std::unique_ptr<Package> package = Package::open(bytes_, true);
  if (!package) {
    error = damaged;
    return std::nullopt;
  }
  bool failed = false;
  for (const std::string& part : stringParts_) replaced += FillPart(*package, part, "si", tags, unknown, failed);
  for (const std::string& part : sheetParts_) replaced += FillPart(*package, part, "is", tags, unknown, failed);
  unknown.removeDuplicates();
  if (unknownTags) *unknownTags = unknown;
  if (replaced > 0)
    failed |= !ReplaceEntry(*package, workbookPart_, [](const std::string& xml) { return WithFullCalcOnLoad(xml); });
  // Saved under a workbook's name, a template must say it is a workbook.
  if (isTemplate_)
    failed |= !ReplaceEntry(*package, kContentTypesPart, [](const std::string& xml) {
      std::string out = xml;
      const size_t at = out.find(kTemplateType);
      if (at != std::string::npos) out.replace(at, std::char_traits<char>::length(kTemplateType), kWorkbookType);
      return out;
    });
  std::optional<QByteArray> bytes = failed ? std::nullopt : package->close();
  if (!bytes) error = damaged;
  return bytes;
}

}  // namespace aqx::reports
