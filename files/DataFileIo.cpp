// Plain file access for the data file: reads and writes at offsets, a
// temporary file next to the target, and the rename that replaces the
// target only once the new file is complete.
#include "files/DataFileRules.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace aqx {

PlainFile::~PlainFile() {
  if (fd_ >= 0) ::close(fd_);
}

bool PlainFile::openRead(const QString& path) {
  path_ = path;
  fd_ = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
  if (fd_ < 0) {
    error_ = errno;
    return false;
  }
  struct stat st {};
  if (::fstat(fd_, &st) == 0 && S_ISDIR(st.st_mode)) {
    error_ = EISDIR;
    ::close(fd_);
    fd_ = -1;
    return false;
  }
  return true;
}

bool PlainFile::openWrite(const QString& path) {
  path_ = path;
  fd_ = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CLOEXEC);
  if (fd_ < 0) error_ = errno;
  return fd_ >= 0;
}

bool PlainFile::createTemporaryNextTo(const QString& target) {
  // O_EXCL with a random suffix; the usual mode, so that the umask applies
  // as for any new file.
  for (int attempt = 0; attempt < 16; ++attempt) {
    path_ = target + QStringLiteral(".tmp-%1").arg(QRandomGenerator::global()->generate(), 8, 16,
                                                   QLatin1Char('0'));
    fd_ = ::open(QFile::encodeName(path_).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                 0666);
    if (fd_ >= 0) return true;
    error_ = errno;
    if (error_ != EEXIST) return false;
  }
  return false;
}

int64_t PlainFile::size() const {
  struct stat st {};
  if (fd_ < 0 || ::fstat(fd_, &st) != 0) return -1;
  return static_cast<int64_t>(st.st_size);
}

bool PlainFile::readAt(int64_t offset, std::span<char> bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::pread(fd_, bytes.data() + done, bytes.size() - done,
                              static_cast<off_t>(offset + static_cast<int64_t>(done)));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      error_ = n < 0 ? errno : EIO;  // end of file where the size promised bytes
      return false;
    }
    done += static_cast<size_t>(n);
  }
  return true;
}

bool PlainFile::writeAt(int64_t offset, std::span<const char> bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::pwrite(fd_, bytes.data() + done, bytes.size() - done,
                               static_cast<off_t>(offset + static_cast<int64_t>(done)));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      error_ = n < 0 ? errno : EIO;
      return false;
    }
    done += static_cast<size_t>(n);
  }
  return true;
}

bool PlainFile::reserve(int64_t bytes) {
  if (bytes <= 0) return true;
  if (::fallocate(fd_, 0, 0, static_cast<off_t>(bytes)) == 0) return true;
  // File systems without reservation find out at the writes.
  if (errno == EOPNOTSUPP || errno == ENOSYS || errno == EINVAL) return true;
  error_ = errno;
  return false;
}

bool PlainFile::sync() {
  if (::fsync(fd_) == 0) return true;
  error_ = errno;
  return false;
}

bool PlainFile::close() {
  if (fd_ < 0) return true;
  const int result = ::close(fd_);
  fd_ = -1;
  if (result == 0) return true;
  error_ = errno;
  return false;
}

bool RenameOver(const QString& temporary, const QString& target, int& error) {
  if (::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(target).constData()) != 0) {
    error = errno;
    return false;
  }
  // The new directory entry must reach the disk too.
  const QString folder = QFileInfo(target).absolutePath();
  const int dir = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir >= 0) {
    ::fsync(dir);
    ::close(dir);
  }
  return true;
}

bool RemoveFile(const QString& path) { return ::unlink(QFile::encodeName(path).constData()) == 0; }

QString ReasonOfError(int error, bool writing) {
  switch (error) {
    case EACCES:
    case EPERM:
      return writing ? QStringLiteral("нет прав на запись") : QStringLiteral("нет прав на чтение");
    case ENOENT:
      return writing ? QStringLiteral("папка не существует") : QStringLiteral("файл не найден");
    case ENOTDIR: return QStringLiteral("путь к файлу указан неверно");
    case EISDIR: return QStringLiteral("по этому пути находится папка, а не файл");
    case ENOSPC:
    case EDQUOT: return QStringLiteral("недостаточно места на диске");
    case EROFS: return QStringLiteral("диск защищён от записи");
    case ENAMETOOLONG: return QStringLiteral("слишком длинное имя файла");
    case EFBIG: return QStringLiteral("файл слишком велик для этого диска");
    default: return QStringLiteral("ошибка ввода-вывода (код %1)").arg(error);
  }
}

}  // namespace aqx
