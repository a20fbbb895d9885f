#pragma once
// Numeric rules shared by every part of the program: rounding, dates and the
// text formats of readouts.

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace aqx {

// Floating point to integer: half to even, clamped to the 32-bit range
// (NaN gives 0), so no conversion is ever undefined. Inline: drawing calls
// it for every column of every trace.
inline int32_t RoundHalfEven(double v) {
  if (std::isnan(v)) return 0;
  if (v >= 2147483647.0) return std::numeric_limits<int32_t>::max();
  if (v <= -2147483648.0) return std::numeric_limits<int32_t>::min();
  // nearbyint follows the current rounding mode, which is to-nearest-even
  // unless someone changed it; do the rule by hand to be independent of that.
  const double below = std::floor(v);
  const double diff = v - below;
  auto r = static_cast<int64_t>(below);
  if (diff > 0.5 || (diff == 0.5 && (r & 1) != 0)) ++r;
  return static_cast<int32_t>(std::min<int64_t>(r, std::numeric_limits<int32_t>::max()));
}
// Rounds down.
int32_t IntFloor(double v);

// Days since 30 December 1899 (the files' date form) and back.
double DateTimeToOle(const QDateTime& t);
QDateTime OleToDateTime(double days);

// "Standard": two decimals with grouped thousands, in the locale's form.
QString FormatStandard(double v, const QLocale& locale = QLocale());
// "### ### ##0.0##": digits grouped by three with a blank, at least one and at
// most three decimals, the locale's decimal separator.
QString FormatGrouped(double v, const QLocale& locale = QLocale());

// Sizes: " байт" below 1 KiB, " Кб", "Мб", "Гб" above.
QString FormatFileSize(double bytes, const QLocale& locale = QLocale());
// Short form of the file lists: " байт", and " Кб" with one decimal.
QString FormatFileSizeShort(double bytes, const QLocale& locale = QLocale());

// Keyboard filter of numeric boxes: returns the character code to keep, or 0
// when the key is dropped.
int FilterNumericKey(int keyAscii);

// Number from text in the locale's form (a point is accepted too); nullopt for
// anything that is no number.
std::optional<double> ParseLocaleNumber(const QString& text, const QLocale& locale = QLocale());

}  // namespace aqx
