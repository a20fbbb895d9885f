#include "core/Settings.h"

#include "core/Numeric.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryFile>

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
    reporter_->tell(WriteFailureText(filePath()), QStringLiteral("Ошибка"), PromptIcon::Exclamation);
  failureTold_ = true;
  return false;
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
  QFile file(path);
  if (!info.isFile() || info.size() > kMaxSettingsFileBytes || !file.open(QIODevice::ReadOnly)) {
    r.complete = false;
    return r;
  }
  const QByteArray bytes = file.read(kMaxSettingsFileBytes);
  file.close();
  // Qt keeps parsed INI files in a process-wide cache keyed by name that it
  // trusts while size and modification time (to the millisecond) are equal;
  // parsing a private copy with a fresh name always sees the file as it is.
  QTemporaryFile copy(QDir::tempPath() + QStringLiteral("/aquilonix-settings-XXXXXX.conf"));
  if (!copy.open() || copy.write(bytes) != bytes.size() || !copy.flush()) {
    r.complete = false;
    return r;
  }
  QSettings ini(copy.fileName(), QSettings::IniFormat);
  for (const QString& fullKey : ini.allKeys()) {
    const qsizetype slash = fullKey.indexOf(QLatin1Char('/'));
    const QString section = slash < 0 ? QStringLiteral("General") : fullKey.left(slash);
    const QString key = slash < 0 ? fullKey : fullKey.mid(slash + 1);
    if (section.isEmpty() || key.isEmpty()) continue;
    const QVariant v = ini.value(fullKey);
    // An unquoted comma makes a list ("83,3" edited by hand).
    if (v.typeId() == QMetaType::QStringList)
      r.tree[section][key] = v.toStringList().join(QLatin1Char(','));
    else if (v.canConvert<QString>())
      r.tree[section][key] = v.toString();
  }
  if (ini.status() != QSettings::NoError) r.complete = false;
  return r;
}

bool WriteSettingsFile(const QString& path, const SettingsTree& tree) {
  const QFileInfo info(path);
  const QString folder = info.absolutePath();
  if (!QDir().mkpath(folder)) return false;
  // Hidden, so that a temporary left by a crash is never listed as a
  // configuration.
  QTemporaryFile temp(folder + QStringLiteral("/.") + info.fileName() + QStringLiteral(".XXXXXX"));
  if (!temp.open()) return false;
  temp.close();
  {
    QSettings ini(temp.fileName(), QSettings::IniFormat);
    ini.clear();
    for (const auto& [section, keys] : tree) {
      ini.beginGroup(section);
      for (const auto& [key, value] : keys) ini.setValue(key, value);
      ini.endGroup();
    }
    ini.sync();
    if (ini.status() != QSettings::NoError) return false;
  }
  std::error_code error;
  std::filesystem::rename(temp.fileName().toStdString(), path.toStdString(), error);
  if (error) return false;
  temp.setAutoRemove(false);
  return true;
}

IniSettingsStore::IniSettingsStore(const QString& filePath)
    : IniSettingsStore(filePath, ReadSettingsFile(filePath)) {}

IniSettingsStore::IniSettingsStore(const QString& filePath, SettingsFileRead read)
    : SettingsStore(std::move(read.tree)), filePath_(filePath), readIncomplete_(!read.complete) {}

bool IniSettingsStore::writeTree(const SettingsTree& tree) { return WriteSettingsFile(filePath_, tree); }

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
