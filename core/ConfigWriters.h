#pragma once
// Each option is written at the moment it changes, by the command that
// changes it. The command changes the state first, then calls its writer
// here; every writer is one file write.

#include "core/AppState.h"
#include "core/Settings.h"

#include <QString>

namespace aqx {

// Any option of the key table by its section and key, from the state: the
// view menu check marks (section Signal, Spectr, Spectrum, Traectoria,
// FormaRotor), ViewToolbarMain and the other Config switches, the detector
// keys, a single colour. False for a key that is not in the table.
bool SaveOption(SettingsStore& store, const AppState& s, const QString& section,
                const QString& key);

// Every key of one section, from the state (a window's options after one of
// its events changed some of them); unchanged values cost no write.
void SaveOptionSection(SettingsStore& store, const AppState& s, const QString& section);
// SetViewStyle.
void SaveViewStyle(SettingsStore& store, const AppState& s);
// SelectActiveChannel: the Active key of one channel and FirstChannelActive.
void SaveChannelActive(SettingsStore& store, const AppState& s, int channel);
void SaveFirstChannelActive(SettingsStore& store, const AppState& s);
// mnuViewImposition (with the Active keys it cleared).
void SaveImposition(SettingsStore& store, const AppState& s);
// mnuViewColorBack: the chosen set and all stored sets.
void SaveColorBack(SettingsStore& store, const AppState& s);
// frmSetupParameters, Apply: every key of sections Parameters and Color.
void SaveParameterSheet(SettingsStore& store, const AppState& s);
// The save dialogs: the folder chosen last.
void SaveInitDirSave(SettingsStore& store, const AppState& s);
// Spectrum band (ScaleSpectr).
void SaveScaleSpectr(SettingsStore& store, const AppState& s);
// frmSetupColorType: the colour of each sensor type.
void SaveColorTypeKit(SettingsStore& store, const AppState& s);
// Shaft marker settings, Apply: every key of section Otmetchick in the state.
void SaveOtmetchick(SettingsStore& store, const AppState& s);
// Probe and filter tables with their flags SaveProbe / SaveFilter.
void SaveProbeTable(SettingsStore& store, const AppState& s);
void SaveFilterTable(SettingsStore& store, const AppState& s);
// Channel settings, Apply: the whole channel table and ChannelDifferential.
void SaveChannelSetup(SettingsStore& store, const AppState& s);
// frmViewMarker: MarkerN and each mark's keys.
void SaveMarker(SettingsStore& store, const AppState& s);

// Keys that only a window reads back (positions, tabs, slider), as numbers.
int32_t ReadWindowSetting(const SettingsStore& store, const QString& section, const QString& key,
                          int32_t def);
void SaveWindowSetting(SettingsStore& store, const QString& section, const QString& key,
                       int32_t value);

}  // namespace aqx
