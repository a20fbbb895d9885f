#include "core/PlainFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace aqx {

namespace {

QByteArray Native(const QString& path) { return QFile::encodeName(path); }

void SyncFolderOf(const QString& path) {
  const int dir = ::open(Native(QFileInfo(path).absolutePath()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir < 0) return;
  ::fsync(dir);
  ::close(dir);
}

QString NamedTemporaryFor(const QString& target) {
  return target + QStringLiteral(".tmp-%1").arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0'));
}

// Temporaries of this target that a process killed in the middle of a
// replacement left behind; a minute old at least, so that another program
// writing the same target right now keeps its own.
void RemoveStaleTemporaries(const QString& target) {
  const QFileInfo info(target);
  const QRegularExpression own(QRegularExpression::anchoredPattern(
      QRegularExpression::escape(info.fileName()) + QStringLiteral("\\.tmp-[0-9a-f]{8}")));
  const QDateTime oldEnough = QDateTime::currentDateTimeUtc().addSecs(-60);
  const QDir folder = info.absoluteDir();
  for (const QFileInfo& f : folder.entryInfoList({info.fileName() + QStringLiteral(".tmp-*")}, QDir::Files | QDir::Hidden))
    if (own.match(f.fileName()).hasMatch() && f.lastModified().toUTC() < oldEnough)
      ::unlink(Native(f.absoluteFilePath()).constData());
}

}  // namespace

PlainFile::~PlainFile() {
  if (fd_ >= 0) ::close(fd_);
  discardTemporary();
}

void PlainFile::discardTemporary() {
  if (!namedTemporary_.isEmpty()) ::unlink(Native(namedTemporary_).constData());
  namedTemporary_.clear();
  replacement_ = false;
}

bool PlainFile::openRead(const QString& path) {
  path_ = path;
  fd_ = ::open(Native(path).constData(), O_RDONLY | O_CLOEXEC);
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
  fd_ = ::open(Native(path).constData(), O_WRONLY | O_CLOEXEC);
  if (fd_ < 0) error_ = errno;
  return fd_ >= 0;
}

bool PlainFile::createReplacementFor(const QString& target) {
  path_ = target;
  replacement_ = true;
  RemoveStaleTemporaries(target);
  const QString folder = QFileInfo(target).absolutePath();
  // Permissions as for any new file: the umask applies.
  fd_ = ::open(Native(folder).constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
  if (fd_ >= 0) return true;
  if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) {
    error_ = errno;
    return false;
  }
  for (int attempt = 0; attempt < 16; ++attempt) {
    namedTemporary_ = NamedTemporaryFor(target);
    fd_ = ::open(Native(namedTemporary_).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd_ >= 0) return true;
    error_ = errno;
    namedTemporary_.clear();
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

bool PlainFile::commit() {
  if (!replacement_ || fd_ < 0 || !sync()) return false;
  if (namedTemporary_.isEmpty()) {
    // linkat cannot replace a name: the unnamed file gets a fresh name of
    // its own first, which the rename then moves over the target.
    const QString linked = NamedTemporaryFor(path_);
    const QByteArray procPath = "/proc/self/fd/" + QByteArray::number(fd_);
    if (::linkat(AT_FDCWD, procPath.constData(), AT_FDCWD, Native(linked).constData(), AT_SYMLINK_FOLLOW) != 0) {
      error_ = errno;
      return false;
    }
    namedTemporary_ = linked;
  }
  if (!close()) return false;
  if (::rename(Native(namedTemporary_).constData(), Native(path_).constData()) != 0) {
    error_ = errno;
    return false;
  }
  namedTemporary_.clear();
  replacement_ = false;
  SyncFolderOf(path_);
  return true;
}

bool PlainFile::close() {
  if (fd_ < 0) return true;
  const int result = ::close(fd_);
  fd_ = -1;
  if (result == 0) return true;
  error_ = errno;
  return false;
}

bool ReplaceFileContents(const QString& path, std::span<const char> bytes, int& error) {
  PlainFile file;
  const bool done = file.createReplacementFor(path) && file.writeAt(0, bytes) && file.commit();
  error = file.lastError();
  return done;
}

bool RemoveFile(const QString& path) { return ::unlink(Native(path).constData()) == 0; }

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
