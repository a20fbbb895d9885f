#include "reports/ProtocolTable.h"

#include "core/ChannelPhysics.h"
#include "core/Vocabulary.h"

#include <QFileInfo>

#include <algorithm>

namespace aqx::reports {

void ProtocolTable::set(int row, int column, const QString& text, const QString& comment) {
  if (text.isEmpty() && comment.isEmpty()) return;
  cells_[{row, column}] = {text, comment};
}

const ProtocolCell* ProtocolTable::find(int row, int column) const {
  const auto it = cells_.find({row, column});
  return it == cells_.end() ? nullptr : &it->second;
}

QString ProtocolTable::text(int row, int column) const {
  const ProtocolCell* cell = find(row, column);
  return cell ? cell->text : QString();
}

int ProtocolTable::rowCount() const { return cells_.empty() ? 0 : cells_.rbegin()->first.row; }

int ProtocolTable::columnCount() const {
  int last = 0;
  for (const auto& [ref, cell] : cells_) last = std::max(last, ref.column);
  return last;
}

namespace {

struct ParameterColumn {
  QString head;
  QString comment;
  QString value;
};

QString Number(int32_t v) { return QString::number(v); }

QString TypeName(const Vocabulary& vocab, int32_t type) {
  return type >= 0 && type < vocab.SensorTypeList.size() ? vocab.SensorTypeList[type] : QString::number(type);
}

void AddVibrationColumns(const ChannelReadings& r, bool signalParameterMax, std::vector<ParameterColumn>& out) {
  // The overall level's comments have always carried a Latin C in "Cреднее",
  // the bands' a Cyrillic one; stations search their protocols by them.
  const QString overallComment =
      signalParameterMax ? QStringLiteral("Максимальное/C") + QStringLiteral("реднее") : QStringLiteral("C") + QStringLiteral("реднее");
  const QString bandComment = signalParameterMax ? QStringLiteral("Максимальное/Среднее") : QStringLiteral("Среднее");
  const QString heads[views::kBandCount] = {QStringLiteral("ОУ"), QStringLiteral("0-1 Гц"), QStringLiteral("1-30 Гц"),
                                            QStringLiteral("30-200 Гц")};
  for (size_t k = 0; k < views::kBandCount; ++k) {
    const QString value = signalParameterMax ? Number(r.bandMax[k]) + QStringLiteral("/") + Number(r.bandMean[k])
                                             : Number(r.bandMean[k]);
    out.push_back({heads[k], k == 0 ? overallComment : bandComment, value});
  }
  for (int e = 1; e <= kProbeEntries; ++e) {
    const float hz = r.probeFreq[static_cast<size_t>(e - 1)];
    if (!(hz > 0.0f)) continue;
    const int32_t amplitude = r.probeAmplitude[static_cast<size_t>(e)];
    const QString value = amplitude == 0 ? QStringLiteral("0/-")
                                         : Number(amplitude) + QStringLiteral("/") + Number(r.probePhase[static_cast<size_t>(e)]);
    out.push_back({ProbeFrequencyText(hz) + QStringLiteral(" Гц"), QStringLiteral("Амплитуда/Фаза"), value});
  }
}

std::vector<ParameterColumn> ParameterColumns(const ChannelReadings& r, bool signalParameterMax) {
  std::vector<ParameterColumn> out;
  switch (r.type) {
    case sensor::ShaftMarker:
      out.push_back({QStringLiteral("n, об/мин"), QStringLiteral("Частота вращения"), RotorSpeedValue(r)});
      out.push_back({QStringLiteral("N"), QStringLiteral("Количество оборотов"), Number(r.revolutions)});
      break;
    case sensor::Vibration:
      AddVibrationColumns(r, signalParameterMax, out);
      break;
    case sensor::Runout:
      out.push_back({QStringLiteral("0-20Гц"), {}, Number(r.bandMax[1])});
      out.push_back({QStringLiteral("1 гарм.(А)"), {}, Number(r.probeAmplitude[0])});
      out.push_back({QStringLiteral("1 гарм.(Ф)"), {}, Number(r.probePhase[0])});
      out.push_back({QStringLiteral("Смещение"), {}, ShiftValue(r)});
      break;
    default:
      break;
  }
  return out;
}

}  // namespace

ProtocolTable BuildProtocolTable(const std::vector<FileReadings>& files, bool signalParameterMax) {
  const Vocabulary vocab = BuildVocabulary();
  ProtocolTable t;
  for (size_t i = 0; i < files.size(); ++i) {
    const FileReadings& f = files[i];
    if (!f.read) continue;
    const int r = 3 * static_cast<int>(i);
    t.set(r + 3, 1, f.mode, QStringLiteral("Файл: ") + QFileInfo(f.path).fileName());
    int column = 2;
    for (const ChannelReadings& ch : f.channels) {
      t.set(r + 1, column, ch.place);
      t.set(r + 2, column, TypeName(vocab, ch.type));
      t.set(r + 3, column, ch.direct);
      ++column;
      for (const ParameterColumn& p : ParameterColumns(ch, signalParameterMax)) {
        t.set(r + 2, column, p.head, p.comment);
        t.set(r + 3, column, p.value);
        ++column;
      }
    }
  }
  return t;
}

std::vector<MasterParameter> MasterParameters() {
  using P = MasterParameter;
  return {P::RotorSpeed, P::Revolutions, P::OverallMax, P::OverallMean, P::Band1Max,
          P::Band1Mean,  P::Band30Max,   P::Band30Mean, P::Band200Max,  P::Band200Mean,
          P::Band20,     P::HarmonicAmplitude, P::HarmonicPhase, P::Shift};
}

QString MasterParameterName(MasterParameter p) {
  switch (p) {
    case MasterParameter::RotorSpeed: return QStringLiteral("Частота вращения");
    case MasterParameter::Revolutions: return QStringLiteral("Количество оборотов");
    case MasterParameter::OverallMax: return QStringLiteral("ОУ (макс.)");
    case MasterParameter::OverallMean: return QStringLiteral("ОУ (сред.)");
    case MasterParameter::Band1Max: return QStringLiteral("0-1 Гц (макс.)");
    case MasterParameter::Band1Mean: return QStringLiteral("0-1 Гц (сред.)");
    case MasterParameter::Band30Max: return QStringLiteral("1-30 Гц (макс.)");
    case MasterParameter::Band30Mean: return QStringLiteral("1-30 Гц (сред.)");
    case MasterParameter::Band200Max: return QStringLiteral("30-200 Гц (макс.)");
    case MasterParameter::Band200Mean: return QStringLiteral("30-200 Гц (сред.)");
    case MasterParameter::Band20: return QStringLiteral("0-20 Гц");
    case MasterParameter::HarmonicAmplitude: return QStringLiteral("1 гармоника (Амплитуда)");
    case MasterParameter::HarmonicPhase: return QStringLiteral("1 гармоника (Фаза)");
    case MasterParameter::Shift: return QStringLiteral("Смещение");
  }
  return {};
}

QString MasterChannelCaption(const MasterChannel& c) {
  QString kind;
  switch (c.type) {
    case sensor::Strain: kind = QStringLiteral("Тензо"); break;
    case sensor::ShaftMarker: kind = QStringLiteral("Отметчик"); break;
    case sensor::TurnProbe: kind = QStringLiteral("Виток"); break;
    default: kind = TypeName(BuildVocabulary(), c.type); break;
  }
  return kind + QStringLiteral(" - ") + c.place + QStringLiteral(" - ") + c.direct;
}

std::vector<MasterChannel> MasterChannelsOf(const std::vector<FileReadings>& files) {
  std::vector<MasterChannel> channels;
  for (const FileReadings& f : files)
    for (const ChannelReadings& r : f.channels) {
      const MasterChannel c{r.type, r.place, r.direct};
      if (std::find(channels.begin(), channels.end(), c) == channels.end()) channels.push_back(c);
    }
  return channels;
}

QString MasterValue(const ChannelReadings& r, MasterParameter p) {
  const bool marker = r.type == sensor::ShaftMarker;
  const bool vibration = r.type == sensor::Vibration;
  const bool runout = r.type == sensor::Runout;
  const auto band = [&](size_t k, bool max) { return vibration ? Number(max ? r.bandMax[k] : r.bandMean[k]) : QString(); };
  switch (p) {
    case MasterParameter::RotorSpeed: return marker ? RotorSpeedValue(r) : QString();
    case MasterParameter::Revolutions: return marker ? Number(r.revolutions) : QString();
    case MasterParameter::OverallMax: return band(0, true);
    case MasterParameter::OverallMean: return band(0, false);
    case MasterParameter::Band1Max: return band(1, true);
    case MasterParameter::Band1Mean: return band(1, false);
    case MasterParameter::Band30Max: return band(2, true);
    case MasterParameter::Band30Mean: return band(2, false);
    case MasterParameter::Band200Max: return band(3, true);
    case MasterParameter::Band200Mean: return band(3, false);
    case MasterParameter::Band20: return runout ? Number(r.bandMax[1]) : QString();
    case MasterParameter::HarmonicAmplitude: return runout || vibration ? Number(r.probeAmplitude[0]) : QString();
    case MasterParameter::HarmonicPhase: return runout || vibration ? Number(r.probePhase[0]) : QString();
    case MasterParameter::Shift: return runout ? ShiftValue(r) : QString();
  }
  return {};
}

ProtocolTable BuildMasterTable(const std::vector<FileReadings>& files, const MasterChoice& choice) {
  ProtocolTable t;
  constexpr int kFirstRunColumn = 3;
  const int runWidth = static_cast<int>(choice.parameters.size());
  t.set(2, 1, QStringLiteral("Файл"));
  t.set(2, 2, QStringLiteral("Режим"));
  for (size_t k = 0; k < choice.channels.size() && runWidth > 0; ++k) {
    const int first = kFirstRunColumn + static_cast<int>(k) * runWidth;
    t.set(1, first, MasterChannelCaption(choice.channels[k]));
    for (int j = 0; j < runWidth; ++j) t.set(2, first + j, MasterParameterName(choice.parameters[static_cast<size_t>(j)]));
  }
  for (size_t i = 0; i < files.size(); ++i) {
    const FileReadings& f = files[i];
    const int row = 3 + static_cast<int>(i);
    t.set(row, 1, QFileInfo(f.path).fileName());
    if (!f.read) continue;
    t.set(row, 2, f.mode);
    for (size_t k = 0; k < choice.channels.size(); ++k) {
      const MasterChannel& wanted = choice.channels[k];
      const auto found = std::find_if(f.channels.begin(), f.channels.end(), [&](const ChannelReadings& r) {
        return MasterChannel{r.type, r.place, r.direct} == wanted;
      });
      if (found == f.channels.end()) continue;
      const int first = kFirstRunColumn + static_cast<int>(k) * runWidth;
      for (int j = 0; j < runWidth; ++j)
        t.set(row, first + j, MasterValue(*found, choice.parameters[static_cast<size_t>(j)]));
    }
  }
  return t;
}

}  // namespace aqx::reports
