#include "reports/TemplateTags.h"

#include "core/ChannelPhysics.h"

#include <QRegularExpression>

#include <algorithm>

namespace aqx::reports {

QString TagPrefix(const QString& mode, int32_t type, const QString& place, const QString& direct) {
  const QString slash = QStringLiteral("/");
  return QString::fromUtf16(kTagRoot) + mode + slash + QString::number(type) + slash + place + slash + direct + slash;
}

void TemplateTags::add(const QString& tag, const QString& value) {
  if (values_.contains(tag)) return;
  values_.insert(tag, value);
  const auto at = std::lower_bound(lengths_.begin(), lengths_.end(), tag.size(), std::greater<>());
  if (at == lengths_.end() || *at != tag.size()) lengths_.insert(at, tag.size());
}

const QString* TemplateTags::find(const QString& tag) const {
  const auto it = values_.constFind(tag);
  return it == values_.constEnd() ? nullptr : &it.value();
}

namespace {
// Whether the text at `end` would carry a tag's name on.
bool ContinuesName(const QString& text, qsizetype end) {
  if (end >= text.size()) return false;
  const QChar next = text[end];
  if (next.isLetterOrNumber() || next == u'/') return true;
  return (next == u',' || next == u'.') && end + 1 < text.size() && text[end + 1].isDigit();
}
}  // namespace

int TemplateTags::replaceIn(QString& text) const {
  const QString root = QString::fromUtf16(kTagRoot);
  int replaced = 0;
  qsizetype from = 0;
  qsizetype at = 0;
  while ((at = text.indexOf(root, from)) >= 0) {
    from = at + 1;
    for (const qsizetype length : lengths_) {
      if (at + length > text.size() || ContinuesName(text, at + length)) continue;
      const QString* value = find(text.mid(at, length));
      if (!value) continue;
      text.replace(at, length, *value);
      from = at + value->size();
      ++replaced;
      break;
    }
  }
  return replaced;
}

void TemplateTags::addChannel(const QString& prefix) {
  if (!prefixes_.contains(prefix)) prefixes_.append(prefix);
}

namespace {

// The parameter names of the tag grammar: levels, bands with their mean or
// maximum, the harmonic and shift, and probes by their frequency.
QRegularExpression ParameterNamePattern() {
  return QRegularExpression(QStringLiteral("^(ОУ|А|Ф|См|(ОУ|1Гц|30Гц|200Гц)/[СМ]|[АФ]\\d+([.,]\\d+)?)$"));
}

}  // namespace

QStringList TemplateTags::unknownIn(const QString& text) const {
  QStringList unknown;
  const QString root = QString::fromUtf16(kTagRoot);
  const QRegularExpression parameterName = ParameterNamePattern();
  for (qsizetype at = text.indexOf(root); at >= 0; at = text.indexOf(root, at + 1)) {
    for (const QString& prefix : prefixes_) {
      if (text.mid(at, prefix.size()) != prefix) continue;
      qsizetype end = at + prefix.size();
      while (end < text.size() && !text[end].isSpace()) ++end;
      const QString name = text.mid(at + prefix.size(), end - at - prefix.size());
      if (!parameterName.match(name).hasMatch()) unknown.append(text.mid(at, end - at));
      break;
    }
  }
  return unknown;
}

namespace {

QString Number(int32_t v) { return QString::number(v); }

void AddChannelTags(const QString& prefix, const ChannelReadings& r, TemplateTags& tags) {
  const auto add = [&](const QString& name, const QString& value) { tags.add(prefix + name, value); };
  if (r.type == sensor::Runout) {
    add(QStringLiteral("ОУ"), Number(r.bandMax[1]));
    add(QStringLiteral("А"), Number(r.probeAmplitude[0]));
    add(QStringLiteral("Ф"), Number(r.probePhase[0]));
    add(QStringLiteral("См"), ShiftValue(r));
    return;
  }
  if (r.type != sensor::Vibration) return;
  const QString bands[views::kBandCount] = {QStringLiteral("ОУ"), QStringLiteral("1Гц"), QStringLiteral("30Гц"),
                                            QStringLiteral("200Гц")};
  for (size_t k = 0; k < views::kBandCount; ++k) {
    add(bands[k] + QStringLiteral("/С"), Number(r.bandMean[k]));
    add(bands[k] + QStringLiteral("/М"), Number(r.bandMax[k]));
  }
  add(QStringLiteral("А"), Number(r.probeAmplitude[0]));
  add(QStringLiteral("Ф"), Number(r.probePhase[0]));
  for (size_t e = 1; e <= kProbeEntries; ++e) {
    const float hz = r.probeFreq[e - 1];
    if (!(hz > 0.0f)) continue;
    add(QStringLiteral("А") + ProbeFrequencyText(hz), Number(r.probeAmplitude[e]));
    add(QStringLiteral("Ф") + ProbeFrequencyText(hz), Number(r.probePhase[e]));
  }
}

}  // namespace

TemplateTags BuildTemplateTags(const std::vector<FileReadings>& files) {
  TemplateTags tags;
  for (const FileReadings& f : files)
    for (const ChannelReadings& r : f.channels) {
      const QString prefix = TagPrefix(f.mode, r.type, r.place, r.direct);
      tags.addChannel(prefix);
      AddChannelTags(prefix, r, tags);
    }
  return tags;
}

}  // namespace aqx::reports
