#include "core/ConfigWriters.h"

#include "core/ConfigKeys.h"

#include <algorithm>

namespace aqx {

namespace {
const QLatin1String kConfig(kSectionConfig);
const QLatin1String kChannel(kSectionChannel);

void SaveSection(SettingsStore& store, const AppState& s, const char* section) {
  for (const SettingKey& key : ScalarSettingKeys())
    if (qstrcmp(key.section, section) == 0) WriteSettingKey(store, key, s);
}
}  // namespace

bool SaveOption(SettingsStore& store, const AppState& s, const QString& section,
                const QString& key) {
  const SettingKey* k = FindSettingKey(section, key);
  if (!k) return false;
  WriteSettingKey(store, *k, s);
  return true;
}

void SaveOptionSection(SettingsStore& store, const AppState& s, const QString& section) {
  SettingsStore::Batch batch(store);
  for (const SettingKey& k : ScalarSettingKeys())
    if (section == QLatin1String(k.section)) WriteSettingKey(store, k, s);
}

void SaveViewStyle(SettingsStore& store, const AppState& s) {
  WriteSetting(store, kConfig, QStringLiteral("ViewStyle"), s.ViewStyle);
}

void SaveChannelActive(SettingsStore& store, const AppState& s, int channel) {
  if (channel < 1 || channel > kMaxChannels) return;
  SettingsStore::Batch batch(store);
  WriteSetting(store, kChannel, ChannelKey("Active", channel), s.channels.Active[channel]);
  SaveFirstChannelActive(store, s);
}

void SaveFirstChannelActive(SettingsStore& store, const AppState& s) {
  WriteSetting(store, kConfig, QStringLiteral("FirstChannelActive"), s.FirstChannelActive);
}

void SaveImposition(SettingsStore& store, const AppState& s) {
  SettingsStore::Batch batch(store);
  WriteSetting(store, kConfig, QStringLiteral("Imposition"), s.Imposition);
  for (int c = 1; c <= ChannelCount(s); ++c)
    WriteSetting(store, kChannel, ChannelKey("Active", c), s.channels.Active[c]);
}

void SaveColorBack(SettingsStore& store, const AppState& s) {
  SettingsStore::Batch batch(store);
  const ConfigOptions& config = s.options.config;
  WriteSetting(store, kConfig, QStringLiteral("ColorBackKitSel"), config.ColorBackKitSel);
  for (int set = 0; set < kColorBackKitSets; ++set)
    for (int part = 0; part < kColorBackKitParts; ++part)
      WriteSetting(store, kConfig, ColorBackKitKey(set, part),
                   config.ColorBackKit[static_cast<size_t>(set)][static_cast<size_t>(part)]);
}

void SaveParameterSheet(SettingsStore& store, const AppState& s) {
  SettingsStore::Batch batch(store);
  SaveSection(store, s, kSectionParameters);
  SaveSection(store, s, kSectionColor);
}

void SaveInitDirSave(SettingsStore& store, const AppState& s) {
  WriteSetting(store, kConfig, QStringLiteral("InitDirSave"), s.InitDirSave);
}

void SaveScaleSpectr(SettingsStore& store, const AppState& s) {
  WriteSetting(store, kConfig, QStringLiteral("ScaleSpectr"), s.options.config.ScaleSpectr);
}

void SaveColorTypeKit(SettingsStore& store, const AppState& s) {
  SettingsStore::Batch batch(store);
  for (int t = 0; t < kColorTypeKitCount; ++t)
    WriteSetting(store, kConfig, ColorTypeKitKey(t),
                 s.options.config.ColorTypeKit[static_cast<size_t>(t)]);
}

void SaveOtmetchick(SettingsStore& store, const AppState& s) {
  SettingsStore::Batch batch(store);
  SaveSection(store, s, kSectionOtmetchick);
}

void SaveProbeTable(SettingsStore& store, const AppState& s) {
  SettingsStore::Batch batch(store);
  WriteSetting(store, kConfig, QStringLiteral("SaveProbe"), s.SaveProbe);
  const QLatin1String section(kSectionProbeFreq);
  for (int c = 1; c <= ChannelCount(s); ++c)
    for (int e = 1; e <= kProbeEntries; ++e)
      WriteSetting(store, section, ProbeFreqKey(c, e), s.channels.ProbeFreq[c][e - 1]);
}

void SaveFilterTable(SettingsStore& store, const AppState& s) {
  SettingsStore::Batch batch(store);
  WriteSetting(store, kConfig, QStringLiteral("SaveFilter"), s.SaveFilter);
  const QLatin1String section(kSectionFilter);
  for (int c = 1; c <= ChannelCount(s); ++c)
    for (int e = 1; e <= kFilterEntries; ++e)
      WriteSetting(store, section, FilterKey(c, e), s.channels.Filter[c][e - 1]);
}

void SaveChannelSetup(SettingsStore& store, const AppState& s) {
  SettingsStore::Batch batch(store);
  WriteSetting(store, kChannel, QStringLiteral("ChannelDifferential"), s.ChannelDifferential);
  for (int c = 1; c <= ChannelCount(s); ++c)
    for (const ChannelSettingKey& key : ChannelSettingKeys())
      WriteChannelSettingKey(store, key, s.channels, c);
}

void SaveMarker(SettingsStore& store, const AppState& s) {
  SettingsStore::Batch batch(store);
  const QLatin1String section(kSectionMarker);
  const Markers& m = s.markers;
  WriteSetting(store, section, QStringLiteral("MarkerN"), m.MarkerN);
  for (int i = 1; i <= std::min(m.MarkerN, kMaxMarkers); ++i) {
    const size_t at = static_cast<size_t>(i - 1);
    WriteSetting(store, section, MarkerKey("MarkerDate", i), m.MarkerDate[at]);
    WriteSetting(store, section, MarkerKey("MarkerRemark", i), m.MarkerRemark[at]);
    WriteSetting(store, section, MarkerKey("MarkerColor", i), m.MarkerColor[at]);
    WriteSetting(store, section, MarkerKey("MarkerOn", i), m.MarkerOn[at]);
    WriteSetting(store, section, MarkerKey("MarkerShift", i), m.MarkerShift[at]);
  }
}

int32_t ReadWindowSetting(const SettingsStore& store, const QString& section, const QString& key,
                          int32_t def) {
  int32_t v = def;
  ReadSetting(store, section, key, v, def);
  return v;
}

void SaveWindowSetting(SettingsStore& store, const QString& section, const QString& key,
                       int32_t value) {
  WriteSetting(store, section, key, value);
}

}  // namespace aqx
