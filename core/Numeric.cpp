#include "core/Numeric.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace aqx {

int32_t IntFloor(double v) {
  if (std::isnan(v)) return 0;
  const double f = std::floor(v);
  if (f >= 2147483647.0) return std::numeric_limits<int32_t>::max();
  if (f <= -2147483648.0) return std::numeric_limits<int32_t>::min();
  return static_cast<int32_t>(f);
}

namespace {
QDate OleEpochDate() { return QDate(1899, 12, 30); }
constexpr double kMsPerDay = 86400000.0;
}  // namespace

double DateTimeToOle(const QDateTime& t) {
  // Local wall-clock time, as the recording's date has always been kept.
  const QDateTime local = t.toLocalTime();
  const qint64 days = OleEpochDate().daysTo(local.date());
  const double dayFraction = local.time().msecsSinceStartOfDay() / kMsPerDay;
  return static_cast<double>(days) + dayFraction;
}

QDateTime OleToDateTime(double oleDays) {
  if (!std::isfinite(oleDays) || std::fabs(oleDays) > 3.0e6) return {};
  const double whole = std::floor(oleDays);
  const double fraction = oleDays - whole;
  const QDate date = OleEpochDate().addDays(static_cast<qint64>(whole));
  const int ms = static_cast<int>(std::llround(fraction * kMsPerDay));
  return QDateTime(date, QTime(0, 0), Qt::LocalTime).addMSecs(ms);
}

QString FormatStandard(double v, const QLocale& locale) {
  QLocale l = locale;
  l.setNumberOptions(l.numberOptions() & ~QLocale::OmitGroupSeparator);
  return l.toString(v, 'f', 2);
}

QString FormatGrouped(double v, const QLocale& locale) {
  QLocale plain = locale;
  plain.setNumberOptions(QLocale::OmitGroupSeparator);
  QString text = plain.toString(std::fabs(v), 'f', 3);
  const QString point = locale.decimalPoint();
  int dot = text.indexOf(point);
  if (dot < 0) {
    text += point + QStringLiteral("0");
    dot = text.indexOf(point);
  }
  // Trailing zeros past the first decimal go.
  while (text.size() > dot + 2 && text.endsWith(QLatin1Char('0'))) text.chop(1);
  QString integer = text.left(dot);
  const QString fraction = text.mid(dot);
  for (int i = static_cast<int>(integer.size()) - 3; i > 0; i -= 3) integer.insert(i, QLatin1Char(' '));
  QString out = integer + fraction;
  const bool negative = v < 0 && out.contains(QRegularExpression(QStringLiteral("[1-9]")));
  return negative ? QStringLiteral("-") + out : out;
}

QString FormatFileSize(double bytes, const QLocale& locale) {
  if (bytes < 1024.0) return QString::number(static_cast<qint64>(bytes)) + QStringLiteral(" байт");
  if (bytes < 1048576.0) return FormatStandard(bytes / 1024.0, locale) + QStringLiteral(" Кб");
  if (bytes < 1073741824.0) return FormatStandard(bytes / 1048576.0, locale) + QStringLiteral("Мб");
  return FormatStandard(bytes / 1073741824.0, locale) + QStringLiteral("Гб");
}

QString FormatFileSizeShort(double bytes, const QLocale& locale) {
  if (bytes < 1024.0) return QString::number(static_cast<qint64>(bytes)) + QStringLiteral(" байт");
  QLocale plain = locale;
  plain.setNumberOptions(QLocale::OmitGroupSeparator);
  return plain.toString(bytes / 1024.0, 'f', 1) + QStringLiteral(" Кб");
}

int FilterNumericKey(int keyAscii) {
  if (keyAscii <= 26) return keyAscii;
  static constexpr char kAllowed[] = "0123456789,-+";
  for (const char* p = kAllowed; *p; ++p)
    if (keyAscii == *p) return keyAscii;
  return 0;
}

std::optional<double> ParseLocaleNumber(const QString& text, const QLocale& locale) {
  const QString t = text.trimmed();
  if (t.isEmpty()) return std::nullopt;
  bool ok = false;
  double v = locale.toDouble(t, &ok);
  if (!ok) {
    QString alt = t;
    alt.replace(QLatin1Char(','), QLatin1Char('.'));
    v = QLocale::c().toDouble(alt, &ok);
  }
  if (!ok || !std::isfinite(v)) return std::nullopt;
  return v;
}

}  // namespace aqx
