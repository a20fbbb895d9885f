#include "reports/XmlSplice.h"

#include <pugixml.hpp>

#include <algorithm>
#include <array>

namespace aqx::reports {

namespace {

struct XmlTag {
  size_t begin = 0;
  size_t end = 0;
  std::string_view name;
  bool closing = false;
  bool selfClosing = false;
};

std::string_view LocalName(std::string_view name) {
  const size_t colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

std::string_view Prefix(std::string_view name) { return name.substr(0, name.size() - LocalName(name).size()); }

// Calls visit(tag) for each start, end and empty-element tag in order until
// it returns false; markup that is no element is passed over. Quoted
// attribute values may hold '>'.
template <class Visit>
void ScanTags(std::string_view xml, Visit visit) {
  size_t pos = 0;
  const auto skipPast = [&](size_t from, std::string_view marker) {
    const size_t at = xml.find(marker, from);
    return at == std::string_view::npos ? xml.size() : at + marker.size();
  };
  while ((pos = xml.find('<', pos)) != std::string_view::npos) {
    const std::string_view rest = xml.substr(pos);
    if (rest.starts_with("<!--")) {
      pos = skipPast(pos + 4, "-->");
      continue;
    }
    if (rest.starts_with("<![CDATA[")) {
      pos = skipPast(pos + 9, "]]>");
      continue;
    }
    if (rest.starts_with("<?")) {
      pos = skipPast(pos + 2, "?>");
      continue;
    }
    if (rest.starts_with("<!")) {
      pos = skipPast(pos + 2, ">");
      continue;
    }
    XmlTag t;
    t.begin = pos;
    t.closing = rest.starts_with("</");
    const size_t nameStart = pos + (t.closing ? 2 : 1);
    const size_t nameEnd = xml.find_first_of(" \t\r\n/>", nameStart);
    if (nameEnd == std::string_view::npos) return;
    t.name = xml.substr(nameStart, nameEnd - nameStart);
    size_t i = nameEnd;
    char quote = 0;
    for (; i < xml.size(); ++i) {
      const char ch = xml[i];
      if (quote) {
        if (ch == quote) quote = 0;
      } else if (ch == '"' || ch == '\'') {
        quote = ch;
      } else if (ch == '>') {
        break;
      }
    }
    if (i >= xml.size()) return;
    t.end = i + 1;
    t.selfClosing = !t.closing && xml[i - 1] == '/';
    if (!visit(t)) return;
    pos = t.end;
  }
}

std::string TextOf(const pugi::xml_node& t) {
  std::string text;
  for (const pugi::xml_node& part : t.children())
    if (part.type() == pugi::node_pcdata || part.type() == pugi::node_cdata) text += part.value();
  return text;
}

int HexDigit(QChar c) {
  const char16_t u = c.unicode();
  if (u >= '0' && u <= '9') return u - '0';
  if (u >= 'a' && u <= 'f') return u - 'a' + 10;
  if (u >= 'A' && u <= 'F') return u - 'A' + 10;
  return -1;
}

// "_xHHHH_" at i: the code it stands for, or -1.
int EscapeAt(const QString& s, qsizetype i) {
  if (i + 7 > s.size() || s[i] != u'_' || s[i + 1] != u'x' || s[i + 6] != u'_') return -1;
  int code = 0;
  for (qsizetype k = i + 2; k < i + 6; ++k) {
    const int d = HexDigit(s[k]);
    if (d < 0) return -1;
    code = code * 16 + d;
  }
  return code;
}

QString DecodeEscapes(const QString& s) {
  QString out;
  out.reserve(s.size());
  for (qsizetype i = 0; i < s.size();) {
    const int code = EscapeAt(s, i);
    if (code >= 0) {
      out += QChar(static_cast<char16_t>(code));
      i += 7;
    } else {
      out += s[i++];
    }
  }
  return out;
}

QString EscapeCode(char16_t code) {
  return QStringLiteral("_x") + QString::number(code, 16).toUpper().rightJustified(4, QLatin1Char('0')) +
         QStringLiteral("_");
}

// Text for <t>: XML's three specials, the format's own escape for control
// characters and for an underscore that would read as one; characters XML
// cannot carry at all are left out.
std::string EscapeText(const QString& text) {
  QString out;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    const char16_t u = c.unicode();
    if (c.isSurrogate()) {
      const bool pair = c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
      if (pair) {
        out += c;
        out += text[++i];
      }
    } else if (u == '&') {
      out += QStringLiteral("&amp;");
    } else if (u == '<') {
      out += QStringLiteral("&lt;");
    } else if (u == '>') {
      out += QStringLiteral("&gt;");
    } else if ((u < 0x20 && u != '\t' && u != '\n') || u == 0xFFFE || u == 0xFFFF) {
      if (u < 0x20) out += EscapeCode(u);
    } else if (u == '_' && EscapeAt(text, i) >= 0) {
      out += EscapeCode(u);
    } else {
      out += c;
    }
  }
  return out.toStdString();
}

}  // namespace

std::vector<XmlElement> FindXmlElements(std::string_view xml, std::string_view localName) {
  std::vector<XmlElement> found;
  std::optional<XmlElement> open;
  int depth = 0;
  ScanTags(xml, [&](const XmlTag& t) {
    if (LocalName(t.name) != localName) return true;
    if (t.closing) {
      if (open && t.name == open->name && --depth == 0) {
        open->contentEnd = t.begin;
        open->end = t.end;
        found.push_back(*open);
        open.reset();
      }
    } else if (t.selfClosing) {
      if (!open) found.push_back({t.begin, t.end, t.end, t.end, t.name});
    } else if (!open) {
      open = XmlElement{t.begin, 0, t.end, 0, t.name};
      depth = 1;
    } else if (t.name == open->name) {
      ++depth;
    }
    return true;
  });
  return found;
}

std::optional<CellString> ReadCellString(std::string_view element) {
  pugi::xml_document doc;
  if (!doc.load_buffer(element.data(), element.size(), pugi::parse_default | pugi::parse_ws_pcdata,
                       pugi::encoding_utf8))
    return std::nullopt;
  CellString s;
  std::string utf8;
  for (const pugi::xml_node& child : doc.document_element().children()) {
    const std::string_view name = LocalName(child.name());
    if (name == "t") {
      utf8 += TextOf(child);
    } else if (name == "r") {
      for (const pugi::xml_node& part : child.children())
        if (LocalName(part.name()) == "t") utf8 += TextOf(part);
    }
  }
  s.text = DecodeEscapes(QString::fromStdString(utf8));
  // The first run's properties as written.
  const std::vector<XmlElement> runs = FindXmlElements(element, "r");
  if (!runs.empty()) {
    const std::string_view run = element.substr(runs[0].begin, runs[0].end - runs[0].begin);
    const std::vector<XmlElement> properties = FindXmlElements(run, "rPr");
    if (!properties.empty())
      s.firstRunProperties = run.substr(properties[0].begin, properties[0].end - properties[0].begin);
  }
  return s;
}

std::string CellStringElement(std::string_view xml, const XmlElement& found, const CellString& old,
                              const QString& text) {
  const std::string name(found.name);
  const std::string prefix(Prefix(found.name));
  const bool empty = found.contentBegin == found.end;
  std::string out = empty ? "<" + name + ">" : std::string(xml.substr(found.begin, found.contentBegin - found.begin));
  const std::string t = "<" + prefix + "t xml:space=\"preserve\">" + EscapeText(text) + "</" + prefix + "t>";
  if (old.firstRunProperties.empty())
    out += t;
  else
    out += "<" + prefix + "r>" + old.firstRunProperties + t + "</" + prefix + "r>";
  out += "</" + name + ">";
  return out;
}

std::string WithFullCalcOnLoad(std::string_view xml) {
  std::string out(xml);
  const std::vector<XmlElement> calc = FindXmlElements(xml, "calcPr");
  if (!calc.empty()) {
    const XmlElement& e = calc.front();
    std::string tag(xml.substr(e.begin, e.contentBegin - e.begin));
    const size_t at = tag.find("fullCalcOnLoad");
    const size_t open = at == std::string::npos ? std::string::npos : tag.find_first_of("\"'", at);
    const size_t close = open == std::string::npos ? std::string::npos : tag.find(tag[open], open + 1);
    if (close != std::string::npos) {
      tag.replace(open + 1, close - open - 1, "1");
    } else {
      const size_t end = tag.size() - (tag.ends_with("/>") ? 2 : 1);
      tag.insert(end, " fullCalcOnLoad=\"1\"");
    }
    out.replace(e.begin, e.contentBegin - e.begin, tag);
    return out;
  }
  // calcPr goes after definedNames, before the first of these children of
  // the workbook, or at its end.
  constexpr std::array<std::string_view, 9> kAfterCalc = {
      "oleSize",       "customWorkbookViews", "pivotCaches",       "smartTagPr", "smartTagTypes",
      "webPublishing", "fileRecoveryPr",      "webPublishObjects", "extLst"};
  std::string_view rootName;
  size_t insertAt = std::string::npos;
  int depth = 0;
  ScanTags(xml, [&](const XmlTag& t) {
    if (t.closing) {
      if (--depth == 0) {
        insertAt = t.begin;
        return false;
      }
      return true;
    }
    if (depth == 0) rootName = t.name;
    if (depth == 1 && std::find(kAfterCalc.begin(), kAfterCalc.end(), LocalName(t.name)) != kAfterCalc.end()) {
      insertAt = t.begin;
      return false;
    }
    if (!t.selfClosing) ++depth;
    return true;
  });
  if (insertAt == std::string::npos) return out;
  out.insert(insertAt, "<" + std::string(Prefix(rootName)) + "calcPr fullCalcOnLoad=\"1\"/>");
  return out;
}

}  // namespace aqx::reports
