#pragma once
// Protocol tables as plain data: cells by row and column (from 1, as a
// spreadsheet counts them) with their text and an optional comment, built
// from the readings of the recordings and apart from any workbook writer.

#include "reports/ReportReadings.h"

#include <QString>
#include <QStringList>

#include <compare>
#include <map>
#include <vector>

namespace aqx::reports {

struct CellRef {
  int row = 1;
  int column = 1;
  auto operator<=>(const CellRef&) const = default;
};

struct ProtocolCell {
  QString text;
  QString comment;  // empty: no comment
};

class ProtocolTable {
 public:
  void set(int row, int column, const QString& text, const QString& comment = {});
  // The cell, or null where nothing was written.
  const ProtocolCell* find(int row, int column) const;
  QString text(int row, int column) const;
  // Every written cell, row by row.
  const std::map<CellRef, ProtocolCell>& cells() const { return cells_; }
  int rowCount() const;     // the last row written, 0 for an empty table
  int columnCount() const;  // the last column written

 private:
  std::map<CellRef, ProtocolCell> cells_;
};

// The protocol of a folder: three rows a file (i from 0: rows 3i+1..3i+3),
// the mode in column 1 with the file's name as comment, then per recorded
// channel its place, type and direction and a column for each parameter of
// its type. signalParameterMax: vibration levels as max/mean, else mean.
ProtocolTable BuildProtocolTable(const std::vector<FileReadings>& files, bool signalParameterMax);

// --- The protocol master ----------------------------------------------------

enum class MasterParameter {
  RotorSpeed,
  Revolutions,
  OverallMax,
  OverallMean,
  Band1Max,
  Band1Mean,
  Band30Max,
  Band30Mean,
  Band200Max,
  Band200Mean,
  Band20,
  HarmonicAmplitude,
  HarmonicPhase,
  Shift,
};

// The parameters in the order the master offers them.
std::vector<MasterParameter> MasterParameters();
QString MasterParameterName(MasterParameter p);

// A channel as the master lists it: by kind, place and direction, so that
// the same sensor is found in every file whatever its channel number.
struct MasterChannel {
  int32_t type = 0;
  QString place;
  QString direct;
  bool operator==(const MasterChannel&) const = default;
};
// Kind + " - " + place + " - " + direction, e.g. "Отметчик - ВГП - X".
QString MasterChannelCaption(const MasterChannel& c);
// The channels of the files, each once, in the order first met.
std::vector<MasterChannel> MasterChannelsOf(const std::vector<FileReadings>& files);

struct MasterChoice {
  QStringList files;
  std::vector<MasterChannel> channels;
  std::vector<MasterParameter> parameters;
};

// The value of a parameter for a channel, "" where it does not apply to the
// channel's type.
QString MasterValue(const ChannelReadings& r, MasterParameter p);

// The master's table: row 1 the channel captions over their runs of
// columns, row 2 "Файл", "Режим" and the parameter names, then a row a file
// in the chosen order (an unread file keeps only its name). A channel
// missing from a file leaves its cells empty.
ProtocolTable BuildMasterTable(const std::vector<FileReadings>& files, const MasterChoice& choice);

}  // namespace aqx::reports
