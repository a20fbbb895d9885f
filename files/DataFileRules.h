#pragma once
// Pieces shared by the data file's reader and writer: the transfer between
// header record and state, the defaults of older layouts, the repair of
// values that no recording can hold, and plain file access with reasons in
// the user's words.

#include "core/AppState.h"
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

// A file opened for plain reads or writes at offsets; closed on destruction.
// Failures keep errno for ReasonOfError.
class PlainFile {
 public:
  PlainFile() = default;
  PlainFile(const PlainFile&) = delete;
  PlainFile& operator=(const PlainFile&) = delete;
  ~PlainFile();

  bool openRead(const QString& path);
  bool openWrite(const QString& path);  // existing file, not truncated
  // A new file with a unique name next to `target`.
  bool createTemporaryNextTo(const QString& target);
  bool isOpen() const { return fd_ >= 0; }
  int64_t size() const;
  // Whole spans or false.
  bool readAt(int64_t offset, std::span<char> bytes);
  bool writeAt(int64_t offset, std::span<const char> bytes);
  // Reserves the space up front, so that a full disk shows before writing.
  bool reserve(int64_t bytes);
  bool sync();
  bool close();
  const QString& path() const { return path_; }
  int lastError() const { return error_; }

 private:
  int fd_ = -1;
  int error_ = 0;
  QString path_;
};

// Replaces `target` by `temporary` and makes the change durable.
bool RenameOver(const QString& temporary, const QString& target, int& error);
bool RemoveFile(const QString& path);

// An errno in the user's words: "нет прав на запись" and so on.
QString ReasonOfError(int error, bool writing);

}  // namespace aqx
