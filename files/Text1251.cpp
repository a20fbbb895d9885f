#include "files/Text1251.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace aqx {

QString DecodeText1251(const char* bytes, size_t length) {
  QStringDecoder decoder("windows-1251");
  QString text = decoder.decode(QByteArrayView(bytes, static_cast<qsizetype>(length)));
  // Zero bytes count as padding: older writers filled with them.
  text.replace(QChar(0), QLatin1Char(' '));
  return text.trimmed();
}

QByteArray EncodeText1251(const QString& text, size_t length) {
  QStringEncoder encoder("windows-1251", QStringConverter::Flag::ConvertInvalidToNull);
  QByteArray bytes = encoder.encode(text);
  bytes.replace('\0', '?');
  bytes.truncate(static_cast<qsizetype>(length));
  if (static_cast<size_t>(bytes.size()) < length)
    bytes.append(QByteArray(static_cast<qsizetype>(length) - bytes.size(), ' '));
  return bytes;
}

}  // namespace aqx
