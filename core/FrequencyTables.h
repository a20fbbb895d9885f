#pragma once
// The probe frequency table (frmSetupProbe, "Проверочные частоты") and the
// filter table (frmSetupFilter, "Фильтр") as the grid their windows edit: a
// first row "Все" and one row per channel, cells as text in hertz or in
// harmonics of the rotor, and Apply, which reads the grid back into the
// state. The windows only mirror the grid.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace aqx {

enum class FrequencyTable { Probe, Filter };

struct FrequencyGrid {
  FrequencyTable table = FrequencyTable::Probe;
  bool harmonic = false;       // optType "Гармоника": cells in rotor harmonics
  QStringList columnTitles;
  QStringList rowTitles;       // "Все", then "3 (place direction)"
  std::vector<int> rowChannels;  // 0 for "Все", else the channel of the row
  std::vector<QStringList> cells;  // [row][column]
};

// Columns of a table: 7 probes, 4 filters.
int FrequencyColumnCount(FrequencyTable table);
// One cell: -1 (or below 0) empty, hertz in "Standard", or in harmonic mode
// the whole number of harmonics (value * 60 / FreqRotorN, half to even).
QString FrequencyCellText(float hz, bool harmonic, double freqRotorN, const QLocale& locale = QLocale());
// Text back to hertz: empty gives -1, below zero -1, harmonics times
// FreqRotorN / 60; nullopt for text that is no number.
std::optional<float> ReadFrequencyCell(const QString& text, bool harmonic, double freqRotorN,
                                       const QLocale& locale = QLocale());

// The grid of the state's table: "Все" and every channel up to ChannelCount,
// with VisibleChannels only those in use.
FrequencyGrid LoadFrequencyGrid(const AppState& s, FrequencyTable table, bool harmonic,
                                const QLocale& locale = QLocale());
// optType changed: the cells read in the old unit and shown in the new one.
// False (and nothing changes) when a cell holds no number.
bool SwitchGridUnit(FrequencyGrid& grid, bool harmonic, double freqRotorN, const QLocale& locale = QLocale());
// cmdClear: all cells empty; the table is untouched until Apply.
void ClearGrid(FrequencyGrid& grid);
// The key filter of the cells: digits, one decimal separator, Backspace.
bool CellKeyAccepted(const QString& cellText, QChar key, const QLocale& locale = QLocale());

enum class GridApply { Applied, Refused, Cancelled };

// cmdApply of the probe window: the rows into the table, the row "Все" into
// every shown channel (and cleared), SaveProbe and the settings. A cell that
// is no number is told and nothing changes.
GridApply ApplyProbeGrid(AppState& s, SettingsStore& store, Prompts& prompts, FrequencyGrid& grid,
                         bool saveAsCommon, const QLocale& locale = QLocale());
// cmdApply of the filter window: as the probes, then the question about the
// shaft marker's channel and SaveFilter; the caller then filters the store
// (views FilterSamples). A high pass above the low pass of the same channel,
// or a cell that is no number, is told and nothing changes; Cancel of the
// question changes nothing either.
GridApply ApplyFilterGrid(AppState& s, SettingsStore& store, Prompts& prompts, FrequencyGrid& grid,
                          bool saveAsCommon, const QLocale& locale = QLocale());

// A channel in use has an entry in the filter table: filtering would change
// its samples.
bool FilterTableActive(const AppState& s);

}  // namespace aqx
