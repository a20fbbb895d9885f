// Reading the INI form that QSettings writes, straight from the bytes of the
// file. QSettings itself keeps a process-wide cache of parsed files that it
// trusts while size and modification time are equal, so it may hand back a
// stale tree; parsing here needs neither that cache nor a copy on disk.

#include "core/IniText.h"

#include <QDataStream>
#include <QIODevice>
#include <QVariant>

namespace aqx {

namespace {

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Logical lines: a backslash at the very end of a line joins the next one.
QList<QByteArray> LogicalLines(const QByteArray& bytes) {
  QList<QByteArray> lines;
  QByteArray current;
  qsizetype start = 0;
  const qsizetype size = bytes.size();
  while (start <= size) {
    qsizetype end = start;
    while (end < size && bytes[end] != '\n' && bytes[end] != '\r') ++end;
    QByteArray piece = bytes.mid(start, end - start);
    qsizetype next = end + 1;
    if (end < size && bytes[end] == '\r' && end + 1 < size && bytes[end + 1] == '\n') ++next;
    const bool continued = !piece.isEmpty() && piece.back() == '\\' && end < size;
    if (continued) piece.chop(1);
    current += piece;
    if (!continued) {
      lines.append(current);
      current.clear();
    }
    if (end >= size) break;
    start = next;
  }
  if (!current.isEmpty()) lines.append(current);
  return lines;
}

// Keys and section names: %XX is a byte-sized character, %UXXXX a UTF-16
// unit, a backslash stands for the group separator '/'.
QString UnescapedKey(const QByteArray& text) {
  QString key;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\\') {
      key += QLatin1Char('/');
    } else if (c == '%' && i + 5 < text.size() && text[i + 1] == 'U') {
      int unit = 0;
      bool ok = true;
      for (int k = 2; k <= 5 && ok; ++k) {
        const int h = HexValue(text[i + k]);
        ok = h >= 0;
        unit = unit * 16 + h;
      }
      if (!ok) {
        key += QLatin1Char('%');
        continue;
      }
      key += QChar(static_cast<char16_t>(unit));
      i += 5;
    } else if (c == '%' && i + 2 < text.size() && HexValue(text[i + 1]) >= 0 &&
               HexValue(text[i + 2]) >= 0) {
      key += QChar(static_cast<char16_t>(HexValue(text[i + 1]) * 16 + HexValue(text[i + 2])));
      i += 2;
    } else {
      // Runs of plain bytes are UTF-8, as QSettings writes them.
      qsizetype j = i + 1;
      while (j < text.size() && text[j] != '\\' && text[j] != '%') ++j;
      key += QString::fromUtf8(text.mid(i, j - i));
      i = j - 1;
    }
  }
  return key;
}

// A value: items apart by unquoted commas, quotes grouping, C-like escapes,
// an unquoted ';' ending the value, blanks around an item dropped.
QStringList UnescapedItems(const QByteArray& text) {
  QStringList items;
  QByteArray item;       // UTF-8 bytes of the item so far
  QString itemText;      // what was decoded before the latest escape
  qsizetype trailingBlanks = 0;  // unquoted blanks at the end of item
  bool inQuotes = false;
  bool started = false;  // blanks now belong to the item
  const auto flushBytes = [&] {
    itemText += QString::fromUtf8(item);
    item.clear();
  };
  const auto endItem = [&] {
    flushBytes();
    itemText.chop(trailingBlanks);
    items.append(itemText);
    itemText.clear();
    trailingBlanks = 0;
    started = false;
  };
  const auto appendUnit = [&](uint32_t unit) {
    flushBytes();
    itemText += QChar(static_cast<char16_t>(unit & 0xFFFF));
    trailingBlanks = 0;
    started = true;
  };
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') {
      inQuotes = !inQuotes;
      // Blanks right after a closing quote are dropped, as QSettings does.
      started = inQuotes;
      trailingBlanks = 0;
      continue;
    }
    if (!inQuotes && c == ';') break;
    if (!inQuotes && c == ',') {
      endItem();
      continue;
    }
    if (!inQuotes && (c == ' ' || c == '\t')) {
      if (!started) continue;
      item += c;
      ++trailingBlanks;
      continue;
    }
    if (c != '\\') {
      item += c;
      started = true;
      trailingBlanks = 0;
      continue;
    }
    if (++i >= text.size()) break;
    const char e = text[i];
    switch (e) {
      case 'a': appendUnit('\a'); break;
      case 'b': appendUnit('\b'); break;
      case 'f': appendUnit('\f'); break;
      case 'n': appendUnit('\n'); break;
      case 'r': appendUnit('\r'); break;
      case 't': appendUnit('\t'); break;
      case 'v': appendUnit('\v'); break;
      case '"':
      case '\'':
      case '?':
      case '\\':
      case ';':
      case ',': appendUnit(static_cast<unsigned char>(e)); break;
      case 'x': {
        uint32_t unit = 0;
        while (i + 1 < text.size() && HexValue(text[i + 1]) >= 0)
          unit = (unit * 16 + static_cast<uint32_t>(HexValue(text[++i]))) & 0xFFFF;
        appendUnit(unit);
        break;
      }
      default:
        if (e >= '0' && e <= '7') {
          uint32_t unit = static_cast<uint32_t>(e - '0');
          while (i + 1 < text.size() && text[i + 1] >= '0' && text[i + 1] <= '7')
            unit = (unit * 8 + static_cast<uint32_t>(text[++i] - '0')) & 0xFFFF;
          appendUnit(unit);
        }
        // Any other escaped character is dropped, as QSettings does.
        break;
    }
  }
  endItem();
  return items;
}

// "@..." values carry a type: "@@" is a literal '@', "@String(...)" a text
// with awkward characters, "@ByteArray(...)" bytes, "@Variant(...)" a
// streamed value, "@Invalid()" nothing.
QString TypedValue(const QString& text) {
  if (!text.startsWith(QLatin1Char('@'))) return text;
  if (text.startsWith(QLatin1String("@@"))) return text.mid(1);
  const auto inner = [&](QLatin1String prefix) -> std::optional<QString> {
    if (!text.startsWith(prefix) || !text.endsWith(QLatin1Char(')'))) return std::nullopt;
    return text.mid(prefix.size(), text.size() - prefix.size() - 1);
  };
  if (auto s = inner(QLatin1String("@String("))) return *s;
  if (auto s = inner(QLatin1String("@ByteArray("))) return *s;
  if (text == QLatin1String("@Invalid()")) return {};
  if (auto s = inner(QLatin1String("@Variant("))) {
    QByteArray raw = s->toLatin1();
    QDataStream stream(&raw, QIODevice::ReadOnly);
    stream.setVersion(QDataStream::Qt_4_0);
    QVariant v;
    stream >> v;
    if (stream.status() == QDataStream::Ok && v.canConvert<QString>()) return v.toString();
    return {};
  }
  return text;
}

// Letters, digits and "_-." stand as they are, '/' as a backslash, any
// other character as %XX or %UXXXX.
QByteArray EscapedKey(const QString& key) {
  QByteArray out;
  for (const QChar ch : key) {
    const char16_t u = ch.unicode();
    if ((u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_' || u == '-' ||
        u == '.') {
      out += static_cast<char>(u);
    } else if (u == '/') {
      out += '\\';
    } else if (u <= 0xFF) {
      out += '%' + QByteArray::number(u, 16).rightJustified(2, '0').toUpper();
    } else {
      out += "%U" + QByteArray::number(u, 16).rightJustified(4, '0').toUpper();
    }
  }
  return out;
}

bool IsHexDigit(char16_t u) { return (u >= '0' && u <= '9') || (u >= 'a' && u <= 'f') || (u >= 'A' && u <= 'F'); }

// Plain text stands as it is; text that the reader would change (blanks at
// its ends, separators, quotes, backslashes, control characters, a leading
// '@') is quoted and escaped.
QByteArray EscapedValue(const QString& value) {
  const bool typed = value.startsWith(QLatin1Char('@'));
  bool plain = !typed && (value.isEmpty() || (!value.front().isSpace() && !value.back().isSpace()));
  for (const QChar ch : value)
    if (ch.unicode() < 0x20 || ch.unicode() == 0x7F || ch == QLatin1Char(',') || ch == QLatin1Char(';') ||
        ch == QLatin1Char('"') || ch == QLatin1Char('\\'))
      plain = false;
  if (plain) return value.toUtf8();
  QByteArray out = "\"";
  if (typed) out += '@';
  QString run;  // plain characters, written as UTF-8 together so that surrogate pairs stay whole
  const auto flush = [&] {
    out += run.toUtf8();
    run.clear();
  };
  bool escapeHexDigit = false;  // a \x escape would swallow a hex digit after it
  for (const QChar ch : value) {
    const char16_t u = ch.unicode();
    if (u == '"' || u == '\\') {
      flush();
      out += '\\';
      out += static_cast<char>(u);
      escapeHexDigit = false;
    } else if (u < 0x20 || u == 0x7F || (escapeHexDigit && IsHexDigit(u))) {
      flush();
      out += "\\x" + QByteArray::number(u, 16);
      escapeHexDigit = true;
    } else {
      run += ch;
      escapeHexDigit = false;
    }
  }
  flush();
  return out + '"';
}

}  // namespace

IniParse ParseIniText(const QByteArray& bytes) {
  IniParse result;
  SettingsTree& tree = result.tree;
  QString section = QStringLiteral("General");
  for (const QByteArray& raw : LogicalLines(bytes)) {
    const QByteArray line = raw.trimmed();
    if (line.isEmpty() || line.startsWith(';') || line.startsWith('#')) continue;
    if (line.startsWith('[')) {
      qsizetype close = line.indexOf(']');
      if (close < 0) {
        close = line.size();
        result.wellFormed = false;
      }
      section = UnescapedKey(line.mid(1, close - 1).trimmed());
      // A group named General is written as %General, the top level as General.
      if (section == QLatin1String("%General")) section = QStringLiteral("General");
      continue;
    }
    const qsizetype equals = line.indexOf('=');
    if (equals < 0) continue;
    const QString key = UnescapedKey(line.left(equals).trimmed());
    if (key.isEmpty() || section.isEmpty()) continue;
    const QStringList items = UnescapedItems(line.mid(equals + 1));
    // A list ("83,3" edited by hand, without quotes) reads as the text it was.
    tree[section][key] = items.size() == 1 ? TypedValue(items.front()) : items.join(QLatin1Char(','));
  }
  return result;
}

QByteArray IniTextOf(const SettingsTree& tree) {
  QByteArray text;
  for (const auto& [section, keys] : tree) {
    if (keys.empty()) continue;
    if (!text.isEmpty()) text += '\n';
    text += '[' + EscapedKey(section) + "]\n";
    for (const auto& [key, value] : keys) text += EscapedKey(key) + '=' + EscapedValue(value) + '\n';
  }
  return text;
}

}  // namespace aqx
