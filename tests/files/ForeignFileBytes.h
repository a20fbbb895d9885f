#pragma once
// Test helpers: binary files put together at literal offsets, and a state
// that reads them from a temporary folder.

#include "core/AppState.h"
#include "core/Prompts.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>

namespace aqx::testing {

// A zero-filled byte image; the put functions write little-endian values at
// the offset given.
struct FileBytes {
  QByteArray bytes;

  explicit FileBytes(qsizetype size = 0) : bytes(size, '\0') {}

  FileBytes& put8(qsizetype at, unsigned value) {
    grow(at + 1);
    bytes[at] = static_cast<char>(value & 0xFF);
    return *this;
  }
  FileBytes& put16(qsizetype at, int value) {
    const auto v = static_cast<uint16_t>(value);
    return put8(at, v & 0xFF).put8(at + 1, v >> 8);
  }
  FileBytes& put32(qsizetype at, int64_t value) {
    const auto v = static_cast<uint32_t>(value);
    for (int i = 0; i < 4; ++i) put8(at + i, (v >> (8 * i)) & 0xFF);
    return *this;
  }
  FileBytes& putFloat(qsizetype at, float value) { return put32(at, std::bit_cast<uint32_t>(value)); }
  FileBytes& putDouble(qsizetype at, double value) {
    const auto v = std::bit_cast<uint64_t>(value);
    put32(at, static_cast<uint32_t>(v & 0xFFFFFFFFu));
    return put32(at + 4, static_cast<uint32_t>(v >> 32));
  }
  // Raw bytes as given (for Windows-1251 text pass the encoded bytes).
  FileBytes& putRaw(qsizetype at, const QByteArray& raw) {
    grow(at + raw.size());
    std::memcpy(bytes.data() + at, raw.constData(), static_cast<size_t>(raw.size()));
    return *this;
  }
  void grow(qsizetype size) {
    if (bytes.size() < size) bytes.append(QByteArray(size - bytes.size(), '\0'));
  }
};

inline bool WriteBytes(const QString& path, const QByteArray& bytes) {
  QFile f(path);
  return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

inline QByteArray ReadBytes(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The state is 64 MiB of samples; tests keep it on the heap.
inline std::unique_ptr<AppState> NewState() { return std::make_unique<AppState>(); }

// A foreign file written to a temporary folder and read into the state by
// the reader of its format.
template <bool (*Read)(AppState&, Prompts&)>
class ForeignFileTest : public ::testing::Test {
 protected:
  explicit ForeignFileTest(const char* fileName) : fileName_(QString::fromLatin1(fileName)) {}
  bool open(const QByteArray& bytes) {
    state->PathFileData = dir.filePath(fileName_);
    EXPECT_TRUE(WriteBytes(state->PathFileData, bytes));
    return Read(*state, prompts);
  }
  QTemporaryDir dir;
  std::unique_ptr<AppState> state = NewState();
  ScriptedPrompts prompts;

 private:
  QString fileName_;
};

}  // namespace aqx::testing
