#include "core/FrequencyTables.h"

#include "core/ChannelPhysics.h"
#include "core/ConfigWriters.h"
#include "core/Numeric.h"

#include <algorithm>

namespace aqx {

namespace {

const QString kAllRow = QStringLiteral("Все");

// The table of a channel as one run of floats: seven probes or four filters.
std::vector<float> TableOf(const AppState& s, FrequencyTable table, int channel) {
  if (table == FrequencyTable::Probe) {
    const auto& row = s.channels.ProbeFreq[channel];
    return {row.begin(), row.end()};
  }
  const auto& row = s.channels.Filter[channel];
  return {row.begin(), row.end()};
}

void StoreTable(AppState& s, FrequencyTable table, int channel, const std::vector<float>& values) {
  if (table == FrequencyTable::Probe) {
    std::copy_n(values.begin(), kProbeEntries, s.channels.ProbeFreq[channel].begin());
  } else {
    std::copy_n(values.begin(), kFilterEntries, s.channels.Filter[channel].begin());
  }
}

QString CellName(const FrequencyGrid& grid, size_t row, int column) {
  return QStringLiteral("«%1», %2").arg(grid.rowTitles.value(static_cast<int>(row)), grid.columnTitles.value(column));
}

// The grid read in its unit into per-channel tables (starting from the
// state's, so that hidden rows keep theirs), "Все" spread over the shown rows.
// nullopt after telling the first cell that holds no number.
std::optional<PerChannel<std::vector<float>>> ReadGrid(const AppState& s, const FrequencyGrid& grid,
                                                      Prompts& prompts, const QString& title,
                                                      const QLocale& locale) {
  PerChannel<std::vector<float>> tables;
  for (int c = 1; c <= kMaxChannels; ++c) tables[c] = TableOf(s, grid.table, c);
  const int columns = FrequencyColumnCount(grid.table);
  std::vector<std::optional<float>> all(static_cast<size_t>(columns));
  for (size_t row = 0; row < grid.cells.size() && row < grid.rowChannels.size(); ++row) {
    for (int col = 0; col < columns; ++col) {
      const QString text = grid.cells[row].value(col);
      const auto value = ReadFrequencyCell(text, grid.harmonic, s.FreqRotorN, locale);
      if (!value) {
        prompts.tell(QStringLiteral("В ячейке %1 не число: \"%2\".\nВведите частоту цифрами или очистите ячейку.")
                         .arg(CellName(grid, row, col), text.trimmed()),
                     title, PromptIcon::Exclamation);
        return std::nullopt;
      }
      const int channel = grid.rowChannels[row];
      if (channel == 0) {
        if (!text.trimmed().isEmpty()) all[static_cast<size_t>(col)] = *value;
      } else {
        tables[channel][static_cast<size_t>(col)] = *value;
      }
    }
  }
  for (int col = 0; col < columns; ++col) {
    if (!all[static_cast<size_t>(col)]) continue;
    for (int channel : grid.rowChannels)
      if (channel != 0) tables[channel][static_cast<size_t>(col)] = *all[static_cast<size_t>(col)];
  }
  return tables;
}

void ClearAllRow(FrequencyGrid& grid) {
  for (size_t row = 0; row < grid.rowChannels.size() && row < grid.cells.size(); ++row)
    if (grid.rowChannels[row] == 0) grid.cells[row].fill(QString());
}

bool HasEntry(const std::vector<float>& table) {
  return std::any_of(table.begin(), table.end(), [](float v) { return v > 0.0f; });
}

}  // namespace

bool FilterTableActive(const AppState& s) {
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.Channel[c] == 1 && HasEntry(TableOf(s, FrequencyTable::Filter, c))) return true;
  return false;
}

int FrequencyColumnCount(FrequencyTable table) {
  return table == FrequencyTable::Probe ? kProbeEntries : kFilterEntries;
}

QString FrequencyCellText(float hz, bool harmonic, double freqRotorN, const QLocale& locale) {
  if (!(hz >= 0.0f)) return {};
  if (!harmonic) return FormatStandard(hz, locale);
  if (!(freqRotorN > 0.0)) return {};
  return QString::number(RoundHalfEven(hz * 60.0 / freqRotorN));
}

std::optional<float> ReadFrequencyCell(const QString& text, bool harmonic, double freqRotorN, const QLocale& locale) {
  if (text.trimmed().isEmpty()) return -1.0f;
  const auto v = ParseLocaleNumber(text, locale);
  if (!v) return std::nullopt;
  double hz = *v;
  if (harmonic) hz = freqRotorN > 0.0 ? hz * freqRotorN / 60.0 : -1.0;
  if (hz < 0.0 || hz > 1e9) return -1.0f;
  return static_cast<float>(hz);
}

FrequencyGrid LoadFrequencyGrid(const AppState& s, FrequencyTable table, bool harmonic, const QLocale& locale) {
  FrequencyGrid grid;
  grid.table = table;
  grid.harmonic = harmonic;
  const int columns = FrequencyColumnCount(table);
  if (table == FrequencyTable::Probe) {
    for (int i = 1; i <= columns; ++i)
      grid.columnTitles << (harmonic ? QStringLiteral("N%1").arg(i) : QStringLiteral("F%1, Гц").arg(i));
  } else {
    grid.columnTitles = {QStringLiteral("ФВЧ"), QStringLiteral("ФНЧ"), QStringLiteral("Фикс"), QStringLiteral("Тунель")};
  }
  QStringList empty;
  for (int i = 0; i < columns; ++i) empty << QString();
  grid.rowTitles << kAllRow;
  grid.rowChannels.push_back(0);
  grid.cells.push_back(empty);
  for (int c = 1; c <= ChannelCount(s); ++c) {
    if (s.options.parameters.VisibleChannels && s.channels.Channel[c] != 1) continue;
    grid.rowTitles << QStringLiteral("%1 (%2 %3)").arg(c).arg(s.channels.Place[c].trimmed(), s.channels.Direct[c].trimmed());
    grid.rowChannels.push_back(c);
    QStringList row;
    for (float v : TableOf(s, table, c)) row << FrequencyCellText(v, harmonic, s.FreqRotorN, locale);
    grid.cells.push_back(row);
  }
  return grid;
}

bool SwitchGridUnit(FrequencyGrid& grid, bool harmonic, double freqRotorN, const QLocale& locale) {
  if (grid.harmonic == harmonic) return true;
  std::vector<QStringList> cells = grid.cells;
  for (QStringList& row : cells) {
    for (QString& cell : row) {
      const auto hz = ReadFrequencyCell(cell, grid.harmonic, freqRotorN, locale);
      if (!hz) return false;
      cell = FrequencyCellText(*hz, harmonic, freqRotorN, locale);
    }
  }
  grid.cells = std::move(cells);
  grid.harmonic = harmonic;
  if (grid.table == FrequencyTable::Probe) {
    for (int i = 0; i < grid.columnTitles.size(); ++i)
      grid.columnTitles[i] = harmonic ? QStringLiteral("N%1").arg(i + 1) : QStringLiteral("F%1, Гц").arg(i + 1);
  }
  return true;
}

void ClearGrid(FrequencyGrid& grid) {
  for (QStringList& row : grid.cells) row.fill(QString());
}

bool CellKeyAccepted(const QString& cellText, QChar key, const QLocale& locale) {
  if (key == QChar(8)) return true;
  if (key.isDigit()) return true;
  const bool separator = key == QLatin1Char(',') || key == QLatin1Char('.') || key == locale.decimalPoint().front();
  return separator && !cellText.contains(QLatin1Char(',')) && !cellText.contains(QLatin1Char('.')) &&
         !cellText.contains(locale.decimalPoint());
}

GridApply ApplyProbeGrid(AppState& s, SettingsStore& store, Prompts& prompts, FrequencyGrid& grid,
                         bool saveAsCommon, const QLocale& locale) {
  const auto tables = ReadGrid(s, grid, prompts, QStringLiteral("Проверочные частоты"), locale);
  if (!tables) return GridApply::Refused;
  for (int c = 1; c <= kMaxChannels; ++c) StoreTable(s, FrequencyTable::Probe, c, (*tables)[c]);
  ClearAllRow(grid);
  s.SaveProbe = saveAsCommon;
  SaveProbeTable(store, s);
  return GridApply::Applied;
}

GridApply ApplyFilterGrid(AppState& s, SettingsStore& store, Prompts& prompts, FrequencyGrid& grid,
                          bool saveAsCommon, const QLocale& locale) {
  const QString title = QStringLiteral("Фильтр");
  auto tables = ReadGrid(s, grid, prompts, title, locale);
  if (!tables) return GridApply::Refused;
  for (int c = 1; c <= ChannelCount(s); ++c) {
    const std::vector<float>& f = (*tables)[c];
    if (f[0] > 0.0f && f[1] > 0.0f && f[0] >= f[1]) {
      prompts.tell(QStringLiteral("Канал %1: частота ФВЧ (%2 Гц) не ниже частоты ФНЧ (%3 Гц), полоса пуста.\n"
                                  "Для полосового фильтра ФВЧ должна быть ниже ФНЧ.")
                       .arg(c)
                       .arg(FormatStandard(f[0], locale), FormatStandard(f[1], locale)),
                   title, PromptIcon::Exclamation);
      return GridApply::Refused;
    }
  }
  const int marker = FirstMarkerChannel(s);
  if (marker != 0 && HasEntry((*tables)[marker])) {
    const PromptAnswer answer = prompts.message(QStringLiteral("Фильтровать сигнал отметчика?"), title,
                                                PromptButtons::YesNoCancel, PromptIcon::Exclamation);
    if (answer == PromptAnswer::Cancel) return GridApply::Cancelled;
    if (answer == PromptAnswer::No) std::fill((*tables)[marker].begin(), (*tables)[marker].end(), -1.0f);
  }
  for (int c = 1; c <= kMaxChannels; ++c) StoreTable(s, FrequencyTable::Filter, c, (*tables)[c]);
  ClearAllRow(grid);
  s.SaveFilter = saveAsCommon;
  SaveFilterTable(store, s);
  return GridApply::Applied;
}

}  // namespace aqx
