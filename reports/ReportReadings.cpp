#include "reports/ReportReadings.h"

#include "core/ChannelPhysics.h"
#include "core/Numeric.h"
#include "views/parameters/SignalParameters.h"
#include "views/signal/SignalEngine.h"

#include <QDir>

#include <algorithm>
#include <cmath>
#include <memory>

namespace aqx::reports {

namespace {

// Holds the batch flag up while a report reads, and the reminder about
// converted files down: a folder of older files would otherwise stop at a box
// for each. Both are put back however the walk ends.
class BatchReading {
 public:
  explicit BatchReading(AppState& s) : s_(s), batch_(s.BatchMode), reminder_(s.ReminderConvertFile) {
    s.BatchMode = true;
    s.ReminderConvertFile = false;
  }
  ~BatchReading() {
    s_.BatchMode = batch_;
    s_.ReminderConvertFile = reminder_;
  }
  BatchReading(const BatchReading&) = delete;
  BatchReading& operator=(const BatchReading&) = delete;

 private:
  AppState& s_;
  bool batch_;
  bool reminder_;
};

// What OpenFile does to a file without the windows: the reader of its
// ending, then the selection cleared and the block rule. A failed read has
// told the user and left the state and its path as they were.
bool ReadRecording(AppState& s, const FileReaderTable& readers, Prompts& prompts, const QString& path) {
  const FileReadFn read = FindFileReader(readers, path);
  if (!read) return false;
  const QString previousPath = s.PathFileData;
  s.PathFileData = path;
  if (!read(s, prompts)) {
    s.PathFileData = previousPath;
    return false;
  }
  s.DataSaved = true;
  s.SelectFirst = 0;
  s.SelectLast = 0;
  ApplyBlockRule(s);
  return true;
}

bool HasSpectrumReadings(int32_t type) { return type == sensor::Runout || type == sensor::Vibration; }

ChannelReadings ChannelTable(const AppState& s, int c) {
  ChannelReadings ch;
  ch.channel = c;
  ch.type = s.channels.Type[c];
  ch.place = s.channels.Place[c];
  ch.direct = s.channels.Direct[c];
  ch.probeFreq = s.channels.ProbeFreq[c];
  ch.revolutions = s.NumberRotorRecord;
  return ch;
}

// The readings of every recorded channel of the recording in memory. The
// probe values are those of FirstChannelActive, so each channel is made the
// current one for its turn; the file's own current channel comes back after.
FileReadings AccountReadings(AppState& s, views::AnalysisResults& r) {
  FileReadings f;
  f.path = s.PathFileData;
  f.read = true;
  f.mode = s.object.Mode;
  const views::RotorSpeed speed = views::RunOtmetchick(s);
  views::AccountSignalMaxAll(s);
  const int current = s.FirstChannelActive;
  for (int c = 1; c <= ChannelCount(s); ++c) {
    if (s.channels.Channel[c] != 1) continue;
    ChannelReadings ch = ChannelTable(s, c);
    ch.rotorSpeedMin = speed.RotorSpeedMin;
    ch.rotorSpeedMax = speed.RotorSpeedMax;
    if (HasSpectrumReadings(ch.type)) {
      s.FirstChannelActive = c;
      views::AccountChannelProbe(s, r, c);
      ch.bandMax = r.BandMax;
      ch.bandMean = r.BandMean;
      ch.probeAmplitude = r.ProbeAmplitude;
      ch.probePhase = r.ProbePhase;
    }
    if (ch.type == sensor::Runout) ch.shift = views::RunoutShift(s, c);
    f.channels.push_back(std::move(ch));
  }
  s.FirstChannelActive = current;
  return f;
}

}  // namespace

QStringList FolderRecordings(const QString& folder) {
  if (folder.isEmpty()) return {};
  const QDir dir(folder);
  QStringList paths;
  for (const QString& name : dir.entryList({QStringLiteral("*.aqx")}, QDir::Files,
                                           QDir::Name | QDir::IgnoreCase))
    paths << dir.filePath(name);
  return paths;
}

bool ReportWalk::recordingReplaced() const {
  return std::any_of(files.begin(), files.end(), [](const FileReadings& f) { return f.read; });
}

ReportWalk ReadReportFiles(ReportContext& ctx, const QStringList& files) {
  AppState& s = ctx.state;
  const BatchReading batch(s);
  auto analysis = std::make_unique<views::AnalysisResults>();
  ReportWalk walk;
  const int count = static_cast<int>(files.size());
  for (int i = 0; i < count; ++i) {
    if (ctx.progress && !ctx.progress(i, count)) {
      walk.cancelled = true;
      return walk;
    }
    const QString& path = files[i];
    if (ReadRecording(s, ctx.readers, ctx.prompts, path)) {
      walk.files.push_back(AccountReadings(s, *analysis));
    } else {
      FileReadings unread;
      unread.path = path;
      walk.files.push_back(std::move(unread));
    }
  }
  if (ctx.progress) ctx.progress(count, count);
  return walk;
}

std::vector<FileReadings> ReadChannelTables(const QStringList& files, const FileReaderTable& readers,
                                            Prompts& prompts) {
  auto scratch = std::make_unique<AppState>();
  AppState& s = *scratch;
  const BatchReading batch(s);
  std::vector<FileReadings> tables;
  for (const QString& path : files) {
    FileReadings f;
    f.path = path;
    if (ReadRecording(s, readers, prompts, path)) {
      f.read = true;
      f.mode = s.object.Mode;
      for (int c = 1; c <= ChannelCount(s); ++c)
        if (s.channels.Channel[c] == 1) f.channels.push_back(ChannelTable(s, c));
    }
    tables.push_back(std::move(f));
  }
  return tables;
}

QString RotorSpeedValue(const ChannelReadings& r) {
  const double low = std::max(0.0, r.rotorSpeedMin);
  const double high = std::max(0.0, r.rotorSpeedMax);
  if (low == high) return FormatStandard(low);
  return FormatStandard(low) + QStringLiteral("-") + FormatStandard(high);
}

QString ShiftValue(const ChannelReadings& r) { return QString::number(static_cast<qint64>(std::trunc(r.shift))); }

QString ProbeFrequencyText(float hz) { return FormatStandard(hz); }

}  // namespace aqx::reports
