#include "files/ForeignCommon.h"

#include "core/Numeric.h"
#include "core/Vocabulary.h"
#include "files/DataFile.h"
#include "files/Text1251.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <bit>
#include <cmath>

namespace aqx::foreign {

QString CountedText(const QByteArray& field, int length) {
  const auto n = static_cast<size_t>(std::clamp<qsizetype>(length, 0, field.size()));
  return DecodeText1251(field.constData(), n);
}

QString TextCutAtZero(const QByteArray& field) {
  const qsizetype zero = field.indexOf('\0');
  const qsizetype n = zero < 0 ? field.size() : zero;
  return DecodeText1251(field.constData(), static_cast<size_t>(n));
}

void SplitChannelName(const QString& name, QString& place, QString& direct) {
  const QString text = name.simplified();
  const qsizetype blank = text.lastIndexOf(QLatin1Char(' '));
  if (blank < 0) {
    place = text.left(50);
    direct.clear();
    return;
  }
  place = text.left(blank).left(50);
  direct = text.mid(blank + 1).left(25);
}

QString RemarkNumberText(float value, const QLocale& locale) {
  if (!std::isfinite(value)) return QStringLiteral("0");
  int digits = 1;
  while (digits < 9 &&
         static_cast<float>(QString::number(static_cast<double>(value), 'g', digits).toDouble()) != value)
    ++digits;
  QLocale plain(locale);
  plain.setNumberOptions(QLocale::OmitGroupSeparator);
  const double v = static_cast<double>(value);
  const int exponent = v == 0.0 ? 0 : static_cast<int>(std::floor(std::log10(std::fabs(v))));
  if (exponent < -5 || exponent >= 15) return plain.toString(v, 'g', digits);
  // Positional form, as a person would write the value down.
  QString text = plain.toString(v, 'f', std::max(0, digits - 1 - exponent));
  const QString point = plain.decimalPoint();
  if (text.contains(point)) {
    while (text.endsWith(QLatin1Char('0'))) text.chop(1);
    if (text.endsWith(point)) text.chop(point.size());
  }
  return text;
}

QString RemarkNumberText(int value) { return QString::number(value); }

QString ShortRemark(const QString& text) { return text.left(10); }

int16_t ByteSampleCode(uint8_t b, double scale, double ku) {
  const int v = b >= 128 ? b : b + 256;
  const int32_t code = RoundHalfEven(scale * v / kMillivoltsPerCode * ku);
  return static_cast<int16_t>(std::clamp<int32_t>(code, INT16_MIN, INT16_MAX));
}

int PowerOfTwoAbove(int n, int cap) {
  if (n >= cap) return cap;
  if (n < 1) return 1;
  const auto p = static_cast<int>(std::bit_floor(static_cast<unsigned>(n)) * 2u);
  return std::min(p, cap);
}

bool OpenForeignFile(PlainFile& file, const QString& path, Prompts& prompts) {
  if (file.openRead(path)) return true;
  prompts.message(QStringLiteral("Не удалось открыть файл %1.").arg(QDir::toNativeSeparators(path)),
                  kOpenTitle, PromptButtons::Ok, PromptIcon::Critical);
  return false;
}

void TellUnreadable(Prompts& prompts, const PlainFile& file) {
  prompts.message(QStringLiteral("Ошибка чтения файла %1: %2.")
                      .arg(QDir::toNativeSeparators(file.path()), ReasonOfError(file.lastError(), false)),
                  kOpenTitle, PromptButtons::Ok, PromptIcon::Critical);
}

std::optional<QByteArray> ReadFileStart(const QString& path, size_t maxBytes, Prompts& prompts) {
  PlainFile file;
  if (!OpenForeignFile(file, path, prompts)) return std::nullopt;
  const int64_t size = file.size();
  QByteArray bytes(static_cast<qsizetype>(std::clamp<int64_t>(size, 0, static_cast<int64_t>(maxBytes))), '\0');
  if (size < 0 || !file.readAt(0, std::span(bytes.data(), static_cast<size_t>(bytes.size())))) {
    TellUnreadable(prompts, file);
    return std::nullopt;
  }
  return bytes;
}

void TellDamaged(Prompts& prompts, const QString& path, const QString& systemName,
                 const QString& reason) {
  prompts.message(QStringLiteral("Файл %1 не является файлом системы %2 или повреждён: %3.")
                      .arg(QFileInfo(path).fileName(), systemName, reason),
                  kOpenTitle, PromptButtons::Ok, PromptIcon::Critical);
}

void TellTruncated(Prompts& prompts, const QString& path, const QString& systemName) {
  prompts.message(QStringLiteral("Файл %1 системы %2 неполный: данные обрываются раньше, чем "
                                 "указано в его заголовке.")
                      .arg(QFileInfo(path).fileName(), systemName),
                  kOpenTitle, PromptButtons::Ok, PromptIcon::Critical);
}

ForeignLoad::ForeignLoad(AppState& state)
    : state_(state),
      keepProbe_(state.SaveProbe),
      keepFilter_(state.SaveFilter),
      probe_(state.channels.ProbeFreq),
      filter_(state.channels.Filter) {
  ResetFileDefaults(state_);
  ClearApplicationData(state_);
}

void ForeignLoad::finish() {
  AppState& s = state_;
  auto& ch = s.channels;
  if (keepProbe_) ch.ProbeFreq = probe_;
  if (keepFilter_) ch.Filter = filter_;
  for (int c = 1; c <= kMaxChannels; ++c) {
    ch.ChannelColor[c] = ChannelColorDefault(c);
    if (ch.Channel[c] != 1) continue;
    // Signs for the signal view to lay the channel out anew.
    ch.ChannelY[c] = 1000000;
    ch.ChannelYm[c] = -1;
    if (ch.Type[c] == sensor::ShaftMarker) ch.Ku[c] = kShaftMarkerKu;
  }
  const int current = s.FirstChannelActive;
  if (current < 1 || current > ChannelCount(s) || ch.Channel[current] != 1)
    s.FirstChannelActive = FirstUsedChannel(s);
  if (s.FirstChannelActive > 0) ch.Active[s.FirstChannelActive] = 1;

  s.ViewFirst = 1;
  s.ViewLast = s.SignalDataN;
  s.SelectFirst = 0;
  s.SelectLast = 0;
  s.Imposition = false;
  s.SolidMode = false;
  RecountChannelUsedCount(s);
  DeriveRotorParameters(s);
  s.DataSaved = true;
}

}  // namespace aqx::foreign
