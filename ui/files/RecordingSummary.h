#pragma once
// What the file browser and the properties window show of a recording, read
// from its header alone: the description, sampling and channels.

#include "core/AppState.h"
#include "core/Vocabulary.h"

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace aqx::ui {

struct RecordingSummary {
  QString path;
  bool readable = false;
  QString problem;      // why not, in the reader's words
  QString date;         // "" when the file has none
  QString station;
  int agregat = 0;
  QString mode;
  double seconds = 0.0;
  int channels = 0;
  int sampleRateHz = 0;
  qint64 bytes = 0;
};

// The header of one file; never asks the user anything and changes no file.
RecordingSummary ReadRecordingSummary(const QString& path, AppState& scratch);
// The same from a state that holds a recording.
RecordingSummary SummaryOf(const AppState& s, const QString& path);

// Name and value rows of the open recording, for frmViewFileProperty.
std::vector<std::pair<QString, QString>> RecordingProperties(const AppState& s, const Vocabulary& vocab);

// Seconds as "12,5 с" or "1 мин 05 с".
QString DurationText(double seconds);

}  // namespace aqx::ui
