#include "core/Settings.h"

#include "core/IniText.h"
#include "core/Numeric.h"
#include "core/PlainFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <limits>

namespace aqx {

namespace {
// A settings file is a few dozen kilobytes; anything far larger is not one.
constexpr qint64 kMaxSettingsFileBytes = 16 * 1024 * 1024;

QString WriteFailureText(const QString& path) {
  QString text = QStringLiteral("Не удалось сохранить настройки программы");
  if (!path.isEmpty()) text += QStringLiteral(" в файл\n") + QDir::toNativeSeparators(path);
  text += QStringLiteral(".\nИзменения настроек не будут сохранены после завершения программы.");
  return text;
}
}  // namespace

// ---------------------------------------------------------------------------
// The store
// ---------------------------------------------------------------------------

SettingsStore::SettingsStore(SettingsTree initial) : tree_(std::move(initial)) {}

QString SettingsStore::get(const QString& section, const QString& key,
                           const QString& defaultValue) const {
  const auto s = tree_.find(section);
  if (s == tree_.end()) return defaultValue;
  const auto k = s->second.find(key);
  return k == s->second.end() ? defaultValue : k->second;
}

bool SettingsStore::contains(const QString& section, const QString& key) const {
  const auto s = tree_.find(section);
  return s != tree_.end() && s->second.count(key) != 0;
}

void SettingsStore::save(const QString& section, const QString& key, const QString& value) {
  if (section.isEmpty() || key.isEmpty()) return;
  SettingsSection& s = tree_[section];
  const auto k = s.find(key);
  if (k != s.end() && k->second == value) return;
  s[key] = value;
  changed();
}

void SettingsStore::deleteKey(const QString& section, const QString& key) {
  const auto s = tree_.find(section);
  if (s == tree_.end() || s->second.erase(key) == 0) return;
  if (s->second.empty()) tree_.erase(s);
  changed();
}

void SettingsStore::deleteSection(const QString& section) {
  if (tree_.erase(section) != 0) changed();
}

void SettingsStore::deleteAll() {
  if (tree_.empty()) return;
  tree_.clear();
  changed();
}

bool SettingsStore::replaceAll(SettingsTree tree) {
  SettingsTree previous = std::move(tree_);
  tree_ = std::move(tree);
  if (!reportWrite(writeTree(tree_))) {
    tree_ = std::move(previous);
    return false;
  }
  dirty_ = false;
  return true;
}

void SettingsStore::changed() {
  dirty_ = true;
  flush();
}

bool SettingsStore::flush() {
  if (batchDepth_ > 0 || !dirty_) return !lastWriteFailed_;
  // A failed write stays pending and is tried again with the next change.
  if (reportWrite(writeTree(tree_))) dirty_ = false;
  return !lastWriteFailed_;
}

bool SettingsStore::reportWrite(bool ok) {
  lastWriteFailed_ = !ok;
  if (ok) {
    failureTold_ = false;
    return true;
  }
  if (!failureTold_ && reporter_)
    reporter_->tell(writeFailureText(), QStringLiteral("Ошибка"), PromptIcon::Exclamation);
  failureTold_ = true;
  return false;
}

QString SettingsStore::writeFailureText() const { return WriteFailureText(filePath()); }

void SettingsStore::reportReadProblem() {
  if (!readWasIncomplete() || failureTold_ || !reporter_) return;
  reporter_->tell(writeFailureText(), QStringLiteral("Ошибка"), PromptIcon::Exclamation);
  failureTold_ = true;
}

// ---------------------------------------------------------------------------
// INI files
// ---------------------------------------------------------------------------

QString DefaultSettingsPath() {
  const QString name = QString::fromLatin1(kApplicationName);
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QLatin1Char('/') +
         name + QLatin1Char('/') + name + QStringLiteral(".conf");
}

SettingsFileRead ReadSettingsFile(const QString& path) {
  SettingsFileRead r;
  const QFileInfo info(path);
  if (!info.exists()) return r;
  r.exists = true;
  const auto fail = [&r](const QString& problem) {
    r.complete = false;
    r.problem = problem;
    return r;
  };
  if (!info.isFile()) return fail(QStringLiteral("это не файл"));
  if (info.size() > kMaxSettingsFileBytes)
    return fail(QStringLiteral("файл слишком велик для файла настроек (%1 байт)").arg(info.size()));
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return fail(file.errorString());
  const QByteArray bytes = file.read(kMaxSettingsFileBytes + 1);
  if (file.error() != QFileDevice::NoError) return fail(file.errorString());
  if (bytes.size() > kMaxSettingsFileBytes)
    return fail(QStringLiteral("файл слишком велик для файла настроек (%1 байт)").arg(bytes.size()));
  IniParse parsed = ParseIniText(bytes);
  r.tree = std::move(parsed.tree);
  r.wellFormed = parsed.wellFormed;
  return r;
}

bool WriteSettingsFile(const QString& path, const SettingsTree& tree) {
  if (!QDir().mkpath(QFileInfo(path).absolutePath())) return false;
  const QByteArray text = IniTextOf(tree);
  int error = 0;
  return ReplaceFileContents(path, std::span(text.constData(), static_cast<size_t>(text.size())), error);
}

IniSettingsStore::IniSettingsStore(const QString& filePath)
    : IniSettingsStore(filePath, ReadSettingsFile(filePath)) {}

IniSettingsStore::IniSettingsStore(const QString& filePath, SettingsFileRead read)
    : SettingsStore(std::move(read.tree)), filePath_(filePath),
      readProblem_(read.complete ? QString() : read.problem.isEmpty() ? QStringLiteral("?") : read.problem) {}

bool IniSettingsStore::writeTree(const SettingsTree& tree) {
  // Writing a tree read in part would replace the file by that part.
  if (readWasIncomplete()) return false;
  return WriteSettingsFile(filePath_, tree);
}

QString IniSettingsStore::writeFailureText() const {
  if (!readWasIncomplete()) return SettingsStore::writeFailureText();
  return QStringLiteral("Не удалось прочитать настройки программы из файла\n%1\n(%2).\n"
                        "Чтобы они не были потеряны, программа не изменяет этот файл: "
                        "изменения настроек не будут сохранены.")
      .arg(QDir::toNativeSeparators(filePath_), readProblem_);
}

// ---------------------------------------------------------------------------
// Values as text
// ---------------------------------------------------------------------------

QString SettingText(int32_t v) { return QString::number(v); }

namespace {
template <class Float>
QString FractionText(Float v, const QLocale& locale) {
  std::array<char, 400> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), v,
                                    std::chars_format::fixed);
  if (result.ec != std::errc()) return QStringLiteral("0");
  QString text = QString::fromLatin1(buffer.data(), result.ptr - buffer.data());
  text.replace(QLatin1Char('.'), locale.decimalPoint());
  return text;
}
}  // namespace

QString SettingText(double v, const QLocale& locale) { return FractionText(v, locale); }
QString SettingText(float v, const QLocale& locale) { return FractionText(v, locale); }
QString SettingText(bool v) { return v ? QStringLiteral("1") : QStringLiteral("0"); }

std::optional<double> ParseSettingDouble(const QString& text, const QLocale& locale) {
  return ParseLocaleNumber(text, locale);
}

std::optional<int32_t> ParseSettingInt(const QString& text, const QLocale& locale) {
  const std::optional<double> v = ParseLocaleNumber(text, locale);
  if (!v || *v < std::numeric_limits<int32_t>::min() - 0.5 ||
      *v > std::numeric_limits<int32_t>::max() + 0.5)
    return std::nullopt;
  return RoundHalfEven(*v);
}

std::optional<bool> ParseSettingBool(const QString& text, const QLocale& locale) {
  const QString t = text.trimmed();
  if (t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0) return true;
  if (t.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0) return false;
  const std::optional<double> v = ParseLocaleNumber(t, locale);
  if (!v) return std::nullopt;
  return *v != 0.0;
}

bool ReadSetting(const SettingsStore& store, const QString& section, const QString& key,
                 int32_t& field, int32_t def) {
  if (!store.contains(section, key)) {
    field = def;
    return true;
  }
  const auto v = ParseSettingInt(store.get(section, key), store.locale());
  if (v) field = *v;
  return v.has_value();
}

bool ReadSetting(const SettingsStore& store, const QString& section, const QString& key,
                 double& field, double def) {
  if (!store.contains(section, key)) {
    field = def;
    return true;
  }
  const auto v = ParseSettingDouble(store.get(section, key), store.locale());
  if (v) field = *v;
  return v.has_value();
}

bool ReadSetting(const SettingsStore& store, const QString& section, const QString& key,
                 float& field, float def) {
  if (!store.contains(section, key)) {
    field = def;
    return true;
  }
  const auto v = ParseSettingDouble(store.get(section, key), store.locale());
  if (!v || std::fabs(*v) > std::numeric_limits<float>::max()) return false;
  field = static_cast<float>(*v);
  return true;
}

bool ReadSetting(const SettingsStore& store, const QString& section, const QString& key,
                 bool& field, bool def) {
  if (!store.contains(section, key)) {
    field = def;
    return true;
  }
  const auto v = ParseSettingBool(store.get(section, key), store.locale());
  if (v) field = *v;
  return v.has_value();
}

void ReadSetting(const SettingsStore& store, const QString& section, const QString& key,
                 QString& field, const QString& def) {
  field = store.get(section, key, def);
}

void WriteSetting(SettingsStore& store, const QString& section, const QString& key, int32_t v) {
  store.save(section, key, SettingText(v));
}
void WriteSetting(SettingsStore& store, const QString& section, const QString& key, double v) {
  store.save(section, key, SettingText(v, store.locale()));
}
void WriteSetting(SettingsStore& store, const QString& section, const QString& key, float v) {
  store.save(section, key, SettingText(v, store.locale()));
}
void WriteSetting(SettingsStore& store, const QString& section, const QString& key, bool v) {
  store.save(section, key, SettingText(v));
}
void WriteSetting(SettingsStore& store, const QString& section, const QString& key,
                  const QString& v) {
  store.save(section, key, v);
}

}  // namespace aqx
