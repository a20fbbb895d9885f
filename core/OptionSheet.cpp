#include "core/OptionSheet.h"

#include <QLocale>

#include <cstring>
#include <limits>
#include <optional>

namespace aqx {

namespace {

bool Ranged(const SettingKey& key) {
  return key.minValue != std::numeric_limits<int32_t>::min() ||
         key.maxValue != std::numeric_limits<int32_t>::max();
}

// The user types numbers in either form; the store keeps them plainly.
std::optional<int32_t> ParseTyped(const QString& text) {
  bool ok = false;
  const QString plain = text.trimmed().remove(QLatin1Char(' ')).remove(QChar(0xA0));
  const int v = plain.toInt(&ok);
  if (!ok) return std::nullopt;
  return v;
}

QString Caption(const SettingKey& key) { return QString::fromUtf8(key.menu.caption); }

}  // namespace

std::vector<const SettingKey*> OptionSheetRows() {
  std::vector<const SettingKey*> rows = MenuOptions(kSectionParameters);
  for (const SettingKey* k : MenuOptions(kSectionColor)) rows.push_back(k);
  return rows;
}

QString OptionSheetTabCaption(int tab) {
  switch (tab) {
    case 0: return QStringLiteral("Общие");
    case 1: return QStringLiteral("Сигнал");
    case 2: return QStringLiteral("Напоминания");
    case 3: return QStringLiteral("Цвета");
    default: return {};
  }
}

QString OptionSheetText(const AppState& s, const SettingKey& key) {
  const SettingField field = key.field(const_cast<AppState&>(s));
  if (const auto* b = std::get_if<bool*>(&field)) return SettingText(**b);
  if (const auto* i = std::get_if<int32_t*>(&field)) return SettingText(**i);
  if (const auto* q = std::get_if<QString*>(&field)) return **q;
  return {};
}

QString ApplyOptionSheet(AppState& s, SettingsStore& store, const std::vector<OptionSheetEntry>& entries) {
  struct Parsed {
    const SettingKey* key;
    bool flag = false;
    int32_t number = 0;
  };
  std::vector<Parsed> parsed;
  std::optional<int32_t> clearanceMin;
  std::optional<int32_t> clearanceMax;
  for (const OptionSheetEntry& e : entries) {
    if (!e.key) continue;
    const SettingField field = e.key->field(s);
    Parsed p{e.key};
    if (std::holds_alternative<bool*>(field)) {
      const QString t = e.text.trimmed();
      if (t != QLatin1String("0") && t != QLatin1String("1"))
        return QStringLiteral("«%1»: ожидается «да» или «нет».").arg(Caption(*e.key));
      p.flag = t == QLatin1String("1");
    } else if (std::holds_alternative<int32_t*>(field)) {
      const std::optional<int32_t> v = ParseTyped(e.text);
      if (!v || (Ranged(*e.key) && (*v < e.key->minValue || *v > e.key->maxValue))) {
        if (!Ranged(*e.key)) return QStringLiteral("«%1»: введите целое число.").arg(Caption(*e.key));
        return QStringLiteral("«%1»: введите целое число от %2 до %3.")
            .arg(Caption(*e.key))
            .arg(e.key->minValue)
            .arg(e.key->maxValue);
      }
      p.number = *v;
      if (std::strcmp(e.key->key, "ValueClearenceMin") == 0) clearanceMin = *v;
      if (std::strcmp(e.key->key, "ValueClearenceMax") == 0) clearanceMax = *v;
    } else {
      continue;  // the sheet shows no other kind
    }
    parsed.push_back(p);
  }
  if (clearanceMin && clearanceMax && *clearanceMin >= *clearanceMax)
    return QStringLiteral("Величина минимального зазора должна быть меньше максимального.");

  SettingsStore::Batch batch(store);
  for (const Parsed& p : parsed) {
    const SettingField field = p.key->field(s);
    if (auto* b = std::get_if<bool*>(&field)) **b = p.flag;
    if (auto* i = std::get_if<int32_t*>(&field)) **i = p.number;
    WriteSettingKey(store, *p.key, s);
  }
  return {};
}

}  // namespace aqx
