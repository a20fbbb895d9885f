#include "core/ArtificialMarker.h"

#include "core/ChannelPhysics.h"
#include "core/ConfigKeys.h"
#include "core/Numeric.h"

#include <algorithm>

namespace aqx {

namespace {

constexpr int16_t kPulseCode = 8190;
const QString kTitle = QStringLiteral("Искусственный отметчик");

}  // namespace

ArtificialMarkerSettings ReadArtificialMarkerSettings(const SettingsStore& store) {
  ArtificialMarkerSettings m;
  const QLatin1String section(kSectionOtmetchick);
  ReadSetting(store, section, QStringLiteral("PeriodN"), m.PeriodN, 16);
  ReadSetting(store, section, QStringLiteral("ChannelA"), m.ChannelA, 1);
  ReadSetting(store, section, QStringLiteral("ChannelO"), m.ChannelO, 32);
  ReadSetting(store, section, QStringLiteral("ShiftF"), m.ShiftF, 0);
  ReadSetting(store, section, QStringLiteral("Front"), m.Front, 1);
  ReadSetting(store, section, QStringLiteral("OnZero"), m.OnZero, 1);
  m.PeriodN = std::clamp(m.PeriodN, 1, kMaxShaftMarks - 1);
  m.ChannelA = std::clamp(m.ChannelA, 1, kMaxChannels);
  m.ChannelO = std::clamp(m.ChannelO, 1, kMaxChannels);
  m.ShiftF = std::clamp(m.ShiftF, 0, 359);
  return m;
}

void SaveArtificialMarkerSettings(SettingsStore& store, const ArtificialMarkerSettings& m) {
  SettingsStore::Batch batch(store);
  const QLatin1String section(kSectionOtmetchick);
  WriteSetting(store, section, QStringLiteral("PeriodN"), m.PeriodN);
  WriteSetting(store, section, QStringLiteral("ChannelA"), m.ChannelA);
  WriteSetting(store, section, QStringLiteral("ChannelO"), m.ChannelO);
  WriteSetting(store, section, QStringLiteral("ShiftF"), m.ShiftF);
  WriteSetting(store, section, QStringLiteral("Front"), m.Front);
  WriteSetting(store, section, QStringLiteral("OnZero"), m.OnZero);
}

std::vector<int32_t> ArtificialMarkerRows(int32_t rows, int32_t periodN, double shiftDegrees) {
  std::vector<int32_t> out;
  if (rows <= 0 || periodN <= 0) return out;
  const double period = static_cast<double>(rows) / periodN;
  for (double t = period / 360.0 * shiftDegrees + 1.0; t <= rows; t += period) {
    const int32_t row = RoundHalfEven(t);
    if (row >= 1 && row <= rows) out.push_back(row);
  }
  return out;
}

bool MakeArtificialMarker(AppState& s, Prompts& prompts, const ArtificialMarkerSettings& m) {
  if (m.ChannelO < 1 || m.ChannelO > ChannelCount(s) || m.ChannelA < 1 || m.ChannelA > ChannelCount(s) ||
      m.PeriodN < 1) {
    prompts.message(QStringLiteral("Номера каналов должны быть от 1 до %1, количество периодов - больше нуля.")
                        .arg(ChannelCount(s)),
                    kTitle, PromptButtons::Ok, PromptIcon::Exclamation);
    return false;
  }
  if (s.channels.Channel[m.ChannelO] == 1 &&
      prompts.ask(QStringLiteral("Предлагаемый канал отметчика, занят. Заменить?"), kTitle, PromptButtons::YesNo,
                  PromptIcon::Question) != PromptAnswer::Yes)
    return false;
  if (s.channels.Channel[m.ChannelA] != 1) {
    prompts.message(QStringLiteral("Опорный канал отключен!"), kTitle, PromptButtons::Ok, PromptIcon::Exclamation);
    return false;
  }
  const int32_t rows = std::clamp(s.SignalDataN, 0, kMaxSamples);
  for (int32_t row = 1; row <= rows; ++row) s.SignalData.at(row, m.ChannelO) = 0;
  for (int32_t row : ArtificialMarkerRows(rows, m.PeriodN, m.ShiftF)) s.SignalData.at(row, m.ChannelO) = kPulseCode;
  s.SignalData.markWritten();
  s.channels.Channel[m.ChannelO] = 1;
  s.channels.Type[m.ChannelO] = sensor::ShaftMarker;
  s.channels.Place[m.ChannelO].clear();
  s.channels.Direct[m.ChannelO].clear();
  s.channels.Ku[m.ChannelO] = kShaftMarkerKu;
  s.channels.SensorName[m.ChannelO] = QStringLiteral("Исскуственный");
  RecountChannelUsedCount(s);
  s.DataSaved = false;
  return true;
}

}  // namespace aqx
