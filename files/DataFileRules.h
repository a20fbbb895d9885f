#pragma once
// Pieces shared by the data file's reader and writer: the transfer between
// header record and state, the defaults of older layouts, and the repair of
// values that no recording can hold.

#include "core/AppState.h"
#include "core/PlainFile.h"
#include "files/DataFileLayout.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <span>

namespace aqx {

// Which part of the channel table a header brings into the state.
struct HeaderTransfer {
  int channelCount = kMaxChannels;  // channels 1..channelCount
  bool probeFreq = true;            // false: the user's ProbeFreq stays
  bool filter = true;               // false: the user's Filter stays
};

void CopyHeaderToState(const FileHeader& header, AppState& state, const HeaderTransfer& transfer);

// The values that layouts before the current one lack, for channels
// 1..channelCount and all marker records.
void ResetHeaderDefaults(FileHeader& header, int channelCount);

// Puts values that would index past a table (sensor type, range, window
// style, current channel, marker count, block sizes) back to their defaults;
// returns the names of the fields repaired, for the user.
QStringList RepairHeader(FileHeader& header, int channelCount);

}  // namespace aqx
