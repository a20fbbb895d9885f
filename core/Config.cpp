#include "core/Config.h"

#include "core/ConfigKeys.h"
#include "core/Vocabulary.h"

#include <QDateTime>

#include <algorithm>
#include <optional>

namespace aqx {

namespace {

const QLatin1String kConfig(kSectionConfig);
const QLatin1String kChannel(kSectionChannel);
constexpr int kRecentCount = 9;

// An integer key with bounds: missing gives def, anything else outside
// [lo, hi] or not a number leaves the field.
void ReadBounded(const SettingsStore& store, const QString& section, const QString& key,
                 int32_t& field, int32_t def, int32_t lo, int32_t hi) {
  int32_t v = field;
  if (ReadSetting(store, section, key, v, def) && v >= lo && v <= hi) field = v;
}

void ReadChannelTable(AppState& s, const SettingsStore& store) {
  const QString probeSection = QLatin1String(kSectionProbeFreq);
  const QString filterSection = QLatin1String(kSectionFilter);
  for (int c = 1; c <= ChannelCount(s); ++c) {
    for (const ChannelSettingKey& key : ChannelSettingKeys())
      ReadChannelSettingKey(store, key, s.channels, c);
    for (int e = 1; e <= kProbeEntries; ++e)
      ReadSetting(store, probeSection, ProbeFreqKey(c, e), s.channels.ProbeFreq[c][e - 1], -1.0f);
    for (int e = 1; e <= kFilterEntries; ++e)
      ReadSetting(store, filterSection, FilterKey(c, e), s.channels.Filter[c][e - 1], -1.0f);
  }
}

void ReadMarkers(AppState& s, const SettingsStore& store) {
  const QString section = QLatin1String(kSectionMarker);
  Markers& m = s.markers;
  ReadBounded(store, section, QStringLiteral("MarkerN"), m.MarkerN, 0, 0, kMaxMarkers);
  for (int i = 1; i <= m.MarkerN; ++i) {
    const size_t at = static_cast<size_t>(i - 1);
    ReadSetting(store, section, MarkerKey("MarkerDate", i), m.MarkerDate[at], 0.0);
    ReadSetting(store, section, MarkerKey("MarkerRemark", i), m.MarkerRemark[at],
                QStringLiteral("0"));
    ReadSetting(store, section, MarkerKey("MarkerColor", i), m.MarkerColor[at], 0);
    ReadSetting(store, section, MarkerKey("MarkerOn", i), m.MarkerOn[at], 1);
    ReadSetting(store, section, MarkerKey("MarkerShift", i), m.MarkerShift[at], 0);
  }
}

// With no channel both recorded and active, the first recorded one becomes
// active and current, as selecting it on the channel toolbar would do.
void CheckCurrentChannel(AppState& s) {
  if (ActiveUsedCount(s) == 0) {
    const int c = FirstUsedChannel(s);
    if (c == 0) return;
    s.channels.Active[c] = 1;
    s.FirstChannelActive = c;
    return;
  }
  if (s.FirstChannelActive < 1 || s.FirstChannelActive > ChannelCount(s)) {
    for (int c = 1; c <= ChannelCount(s); ++c)
      if (s.channels.Channel[c] == 1 && s.channels.Active[c] == 1) {
        s.FirstChannelActive = c;
        break;
      }
  }
}

void WriteScalar(SettingsStore& store, const AppState& s, const char* section, const char* key) {
  if (const SettingKey* k = FindSettingKey(QLatin1String(section), QLatin1String(key)))
    WriteSettingKey(store, *k, s);
}

}  // namespace

QString ProtectedStartQuestion() {
  return QStringLiteral(
      "Последний раз программа Aquilonix была завершена не корректно.\n"
      "Запустить программу в защищенном режиме?");
}

QString ResetQuestion() {
  return QStringLiteral("Удалить все настройки и восстановить все параметры по умолчанию?");
}

QString ResetDoneNotice() {
  return QStringLiteral(
      "Настройки удалены и восстановлены все параметры по умолчанию,\n"
      "необходимо перезапустить программу.");
}

void LoadConfig(AppState& s, SettingsStore& store, Prompts& prompts) {
  const std::optional<int32_t> goodRun =
      ParseSettingInt(store.get(kConfig, QStringLiteral("GoodRun"), QStringLiteral("1")),
                      store.locale());
  if (goodRun && *goodRun == 0) {
    const PromptAnswer a = prompts.message(ProtectedStartQuestion(), QStringLiteral("Внимание"),
                                           PromptButtons::YesNo, PromptIcon::Exclamation);
    if (a == PromptAnswer::Yes) ResetSettings(store);
  }
  WriteSetting(store, kConfig, QStringLiteral("GoodRun"), int32_t{0});
  LoadConfigReg(s, store);
}

void LoadConfigReg(AppState& s, const SettingsStore& store) {
  ConfigOptions& config = s.options.config;
  ReadBounded(store, kConfig, QStringLiteral("ScaleSpectr"), config.ScaleSpectr, 2, 0, 3);
  const BandLabelResult band = BandLabel(config.ScaleSpectr);
  config.BandLabelText = band.label;
  config.BandTickCount = band.tickCount;
  const ConfigOptions defaults;
  for (int t = 0; t < kColorTypeKitCount; ++t)
    ReadBounded(store, kConfig, ColorTypeKitKey(t), config.ColorTypeKit[static_cast<size_t>(t)],
                defaults.ColorTypeKit[static_cast<size_t>(t)], 0, kColorListCount - 1);

  ReadChannelTable(s, store);
  ReadSetting(store, kChannel, QStringLiteral("ChannelDifferential"), s.ChannelDifferential, 0);
  RecountChannelUsedCount(s);

  // The store is sized once; a larger count is cut to it, a count below one
  // is no count at all.
  int32_t n = s.SignalDataN;
  if (ReadSetting(store, kConfig, QStringLiteral("SignalDataN"), n, 32768) && n >= 1)
    s.SignalDataN = std::min(n, kMaxSamples);
  s.ViewFirst = 1;
  s.ViewLast = s.SignalDataN;
  ApplyBlockRule(s);
  ReadBounded(store, kConfig, QStringLiteral("BlockSizeFFTa"), s.BlockSizeFFTa, kMaxSamples, 0,
              kMaxSamples);
  ReadBounded(store, kConfig, QStringLiteral("BlockSizeFFTr"), s.BlockSizeFFTr, kMaxSamples, 0,
              kMaxSamples);
  s.BlockSizeFFT = s.BlockSizeFFTa;

  for (const SettingKey& key : ScalarSettingKeys()) ReadSettingKey(store, key, s);
  for (int set = 0; set < kColorBackKitSets; ++set)
    for (int part = 0; part < kColorBackKitParts; ++part)
      ReadSetting(store, kConfig, ColorBackKitKey(set, part),
                  config.ColorBackKit[static_cast<size_t>(set)][static_cast<size_t>(part)],
                  defaults.ColorBackKit[static_cast<size_t>(set)][static_cast<size_t>(part)]);
  const QString remarkSection = QLatin1String(kSectionRemark);
  for (int i = 0; i < kRemarkCount; ++i)
    ReadSetting(store, remarkSection, RemarkKey(i), s.object.Remark[static_cast<size_t>(i)], {});
  ReadMarkers(s, store);
  CheckCurrentChannel(s);
}

void SaveConfig(SettingsStore& store, const AppState& s) {
  SettingsStore::Batch batch(store);
  for (const char* key : {"Polus", "FreqSety", "FreqRotorN", "FreqOneGarmonic", "NumberRotorRecord",
                          "StepDesc", "FreqDesc", "FreqDescR", "Station", "Agregat", "Mode",
                          "Imposition", "FirstChannelActive", "ViewStyle", "SolidMode", "FreqADC",
                          "TimeRefresh", "Clearance", "SaveProbe", "SaveFilter", "InitDirOpen"})
    WriteScalar(store, s, kSectionConfig, key);
  for (const char* key :
       {"InputMode", "SynchroAdType", "SynchroAdMode", "SynchroAdChannel", "SynchroAdPorog"})
    WriteScalar(store, s, kSectionSynchro, key);
  WriteSetting(store, kConfig, QStringLiteral("BlockSizeFFTa"), s.BlockSizeFFTa);
  WriteSetting(store, kConfig, QStringLiteral("BlockSizeFFTr"), s.BlockSizeFFTr);
  WriteSetting(store, kConfig, QStringLiteral("SignalDataN"), s.SignalDataN);
  WriteSetting(store, kConfig, QStringLiteral("PathFileData"), s.PathFileData);
  WriteSetting(store, kChannel, QStringLiteral("ChannelDifferential"), s.ChannelDifferential);

  const QString probeSection = QLatin1String(kSectionProbeFreq);
  const QString filterSection = QLatin1String(kSectionFilter);
  for (int c = 1; c <= ChannelCount(s); ++c) {
    for (const ChannelSettingKey& key : ChannelSettingKeys())
      WriteChannelSettingKey(store, key, s.channels, c);
    for (int e = 1; e <= kProbeEntries; ++e)
      WriteSetting(store, probeSection, ProbeFreqKey(c, e), s.channels.ProbeFreq[c][e - 1]);
    for (int e = 1; e <= kFilterEntries; ++e)
      WriteSetting(store, filterSection, FilterKey(c, e), s.channels.Filter[c][e - 1]);
  }
  const QString remarkSection = QLatin1String(kSectionRemark);
  for (int i = 0; i < kRemarkCount; ++i)
    WriteSetting(store, remarkSection, RemarkKey(i), s.object.Remark[static_cast<size_t>(i)]);
}

void ResetSettings(SettingsStore& store) {
  const QString recent = QLatin1String(kSectionRecent);
  std::vector<std::pair<QString, QString>> kept;
  for (int k = 1; k <= kRecentCount; ++k) {
    const QString key = QString::number(k);
    if (store.contains(recent, key)) kept.emplace_back(key, store.get(recent, key));
  }
  SettingsStore::Batch batch(store);
  store.deleteAll();
  for (const auto& [key, path] : kept) store.save(recent, key, path);
  store.save(kChannel, QStringLiteral("Active1"), QStringLiteral("1"));
}

ResetOutcome ResetSettingsCommand(SettingsStore& store, Prompts& prompts) {
  const QString title = QStringLiteral("Внимание");
  if (prompts.message(ResetQuestion(), title, PromptButtons::OkCancel, PromptIcon::None) !=
      PromptAnswer::Ok)
    return ResetOutcome::Cancelled;
  ResetSettings(store);
  const PromptAnswer a =
      prompts.message(ResetDoneNotice(), title, PromptButtons::OkCancel, PromptIcon::Information);
  return a == PromptAnswer::Ok ? ResetOutcome::CloseProgram : ResetOutcome::KeepRunning;
}

}  // namespace aqx
