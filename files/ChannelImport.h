#pragma once
// Channel import (frmImport): single channels of another recording copied
// into the open one, so that measurements of two runs stand side by side.
// The source is read whole into a state of its own; the open recording is
// not touched until a channel is imported.

#include "core/AppState.h"
#include "core/ReaderTable.h"
#include "core/Prompts.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace aqx {

inline const QString kImportTitle = QStringLiteral("Импорт");
inline const QString kImportFilter = QStringLiteral(
    "Все поддерживаемые типы|*.rsl;*.zrk;*.aqx;*.wav|Aquilonix (*.aqx)|*.aqx|ЗОР-16 (*.zrk)|*.zrk|"
    "РУСЛО-8 (*.rsl)|*.rsl|WAVE файлы (*.wav)|*.wav|Все файлы (*.*)|*.*");

// Reads a source for import: a type the readers know (every layout of the
// data file, .zrk, .rsl, WAVE), then the comparison with the open
// recording. Refusals and the question about differences go through
// prompts; null when the source is not taken.
std::unique_ptr<AppState> OpenImportSource(const AppState& destination, const QString& path,
                                           const FileReaderTable& readers, Prompts& prompts);

// The lines "name: source / destination" of every header value that differs.
QStringList ImportDifferences(const AppState& source, const AppState& destination);

// The channels of a recording for the lists: "03 Биение ТП ВБ" of each
// channel in use, with its number.
struct ImportChannelEntry {
  int channel = 0;
  QString text;
};
std::vector<ImportChannelEntry> ImportChannelList(const AppState& s, const QStringList& sensorTypeNames);

// cmdOK: after the question, channel `to` of the open recording takes the
// settings and the samples of channel `from` of the source. True when done.
bool ImportChannel(AppState& destination, const AppState& source, int from, int to, Prompts& prompts);

}  // namespace aqx
