#pragma once
// Byte-level building of data files for the tests, at offsets written out
// in the tests themselves.

#include "core/AppState.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringDecoder>
#include <QStringEncoder>

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace aqx::testing {

class FileBytes {
 public:
  explicit FileBytes(size_t size, char fill = '\0') : bytes_(static_cast<qsizetype>(size), fill) {}

  FileBytes& i16(size_t at, int16_t v) { return raw(at, &v, 2); }
  FileBytes& i32(size_t at, int32_t v) { return raw(at, &v, 4); }
  FileBytes& f32(size_t at, float v) { return raw(at, &v, 4); }
  FileBytes& f64(size_t at, double v) { return raw(at, &v, 8); }
  // Windows-1251, blank-padded to `length`.
  FileBytes& text(size_t at, const QString& s, size_t length) {
    QByteArray b = QStringEncoder("windows-1251").encode(s);
    b = b.left(static_cast<qsizetype>(length));
    b.append(QByteArray(static_cast<qsizetype>(length) - b.size(), ' '));
    return raw(at, b.constData(), length);
  }
  FileBytes& magic() { return text(0, QStringLiteral("Aquilonix"), 10); }
  FileBytes& version(int32_t major, int32_t minor, int32_t revision = 0) {
    return i32(10, major).i32(14, minor).i32(18, revision);
  }
  QByteArray& bytes() { return bytes_; }
  size_t size() const { return static_cast<size_t>(bytes_.size()); }

 private:
  FileBytes& raw(size_t at, const void* p, size_t n) {
    if (at > size() || n > size() - at) throw std::out_of_range("FileBytes: write past the end");
    std::memcpy(bytes_.data() + at, p, n);  // the tests run on little-endian machines
    return *this;
  }
  QByteArray bytes_;
};

inline int32_t I32At(const QByteArray& b, size_t at) {
  int32_t v;
  std::memcpy(&v, b.constData() + at, 4);
  return v;
}
inline int16_t I16At(const QByteArray& b, size_t at) {
  int16_t v;
  std::memcpy(&v, b.constData() + at, 2);
  return v;
}
inline float F32At(const QByteArray& b, size_t at) {
  float v;
  std::memcpy(&v, b.constData() + at, 4);
  return v;
}
inline QString TextAt(const QByteArray& b, size_t at, size_t length) {
  return QStringDecoder("windows-1251").decode(b.mid(static_cast<qsizetype>(at), static_cast<qsizetype>(length)));
}

inline bool WriteFile(const QString& path, const QByteArray& bytes) {
  QFile f(path);
  return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}
inline QByteArray ReadFile(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The code of sample i (1-based) of channel c in the tests' recordings: a
// ramp that differs per channel and spans the code range.
inline int16_t TestCode(int i, int c) {
  return static_cast<int16_t>(((i * 37 + c * 1013) % 16384) - 8192);
}

}  // namespace aqx::testing
