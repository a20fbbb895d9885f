#pragma once
// Plain file access at offsets with errno kept for the user's message, and
// the replacement of a file that shows either the old or the complete new
// contents: the new bytes go to an unnamed temporary in the target's folder
// (O_TMPFILE), which is given a name only once it is complete and synced.
// Where the file system has no unnamed files, a named temporary
// "<target>.tmp-XXXXXXXX" is used, and the ones a killed process left
// behind are removed at the next replacement of the same target.

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <span>

namespace aqx {

class PlainFile {
 public:
  PlainFile() = default;
  PlainFile(const PlainFile&) = delete;
  PlainFile& operator=(const PlainFile&) = delete;
  // Closes the file; a temporary that was never committed disappears.
  ~PlainFile();

  bool openRead(const QString& path);
  bool openWrite(const QString& path);  // existing file, not truncated
  // A new file that will replace `target` at commitOver.
  bool createReplacementFor(const QString& target);
  bool isOpen() const { return fd_ >= 0; }
  int64_t size() const;
  // Whole spans or false.
  bool readAt(int64_t offset, std::span<char> bytes);
  bool writeAt(int64_t offset, std::span<const char> bytes);
  // Reserves the space up front, so that a full disk shows before writing.
  bool reserve(int64_t bytes);
  bool sync();
  // Syncs, closes and puts the replacement in place of its target, durably.
  bool commit();
  bool close();
  // The file opened, or the target of a replacement.
  const QString& path() const { return path_; }
  int lastError() const { return error_; }

 private:
  void discardTemporary();

  int fd_ = -1;
  int error_ = 0;
  QString path_;
  QString namedTemporary_;  // a replacement on a file system without O_TMPFILE
  bool replacement_ = false;
};

// Writes the bytes as the new contents of `path` (see PlainFile); false
// with errno in `error` when anything failed, the old file then untouched.
bool ReplaceFileContents(const QString& path, std::span<const char> bytes, int& error);

bool RemoveFile(const QString& path);

// An errno in the user's words: "нет прав на запись" and so on.
QString ReasonOfError(int error, bool writing);

}  // namespace aqx
