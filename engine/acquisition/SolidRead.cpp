// Reading one block of a continuous recording: SignalDataN rows from the
// block's first row, every SolidBlockM-th row, without reading the rest of
// the file. Close rows are read in large sequential pieces; rows far apart
// are fetched one by one.

#include "engine/Aquilonix.h"
#include "engine/acquisition/Library.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <cerrno>
#include <new>
#include <vector>

using namespace aqx::acq;

namespace {

constexpr int64_t kPieceBytes = 4 << 20;
// Rows further apart than this are fetched one by one: reading the gap would
// cost more than a request each.
constexpr int64_t kDenseStrideBytes = 64 << 10;

// Reads up to `bytes`; the count read, short only at the end of the file; -1
// on a read error.
int64_t ReadAt(int fd, char* buffer, int64_t bytes, int64_t offset) {
  int64_t done = 0;
  while (done < bytes) {
    const ssize_t n = pread(fd, buffer + done, static_cast<size_t>(bytes - done), offset + done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return -1;
    if (n == 0) break;
    done += n;
  }
  return done;
}

}  // namespace

extern "C" int32_t ReadSolidBlock(int32_t SignalDataN, int32_t ChannelUsedCount, int32_t dataOffset,
                                  int32_t blockNumber, const char* fileName,
                                  int32_t ChannelDifferential, const int32_t* Channel,
                                  int16_t* SignalData, int32_t SolidBlockM) {
  const FaultPlan faults = FaultPlan::From(LoadModuleSettings());
  const int64_t rows = std::clamp<int64_t>(SignalDataN, 0, AQX_SIGNAL_ROWS);
  const int64_t scale = std::max(SolidBlockM, 1);
  const int64_t block = std::max(blockNumber, 1);
  const int64_t width = std::max(ChannelUsedCount, 0);
  const int64_t offset = std::max(dataOffset, 0);
  const ChannelPlan plan = PlanChannels(ChannelUsedCount, Channel, nullptr, ChannelDifferential);
  const int fd = fileName ? open(fileName, O_RDONLY | O_CLOEXEC) : -1;
  if (fd < 0 || faults.at(kErrOpenDataFile)) {
    if (fd >= 0) close(fd);
    return kErrOpenDataFile;
  }
  struct stat st {};
  const int64_t rowBytes = width * 2;
  const int64_t fileRows =
      fstat(fd, &st) == 0 && rowBytes > 0
          ? std::max<int64_t>(0, (static_cast<int64_t>(st.st_size) - offset) / rowBytes)
          : 0;
  // A recording of no channel has rows of no bytes: nothing to place, and
  // no stride to count pieces by.
  if (rowBytes == 0) {
    close(fd);
    return kOk;
  }
  const int64_t strideBytes = scale * rowBytes;
  const bool dense = strideBytes <= kDenseStrideBytes;
  std::vector<char> piece;
  try {
    if (faults.at(kErrDataStorage)) throw std::bad_alloc();
    piece.resize(static_cast<size_t>(dense ? std::max(kPieceBytes, strideBytes) : std::max<int64_t>(rowBytes, 2)));
  } catch (const std::bad_alloc&) {
    close(fd);
    return kErrDataStorage;
  }
  posix_fadvise(fd, 0, 0, dense ? POSIX_FADV_SEQUENTIAL : POSIX_FADV_RANDOM);

  const int64_t firstFileRow = (block - 1) * rows * scale;
  // The file is little-endian; channels side by side from the first move in
  // one piece.
  bool contiguous = std::endian::native == std::endian::little && !plan.columns.empty();
  for (size_t j = 1; j < plan.columns.size(); ++j)
    contiguous = contiguous && plan.columns[j] == plan.columns[0] + static_cast<int>(j);
  const auto place = [&](int64_t i, const char* row) {
    int16_t* dst = SignalData + i * AQX_SIGNAL_COLUMNS;
    if (contiguous) {
      std::memcpy(dst + plan.columns[0], row, plan.columns.size() * sizeof(int16_t));
      return;
    }
    for (size_t j = 0; j < plan.columns.size(); ++j) {
      const unsigned char* b = reinterpret_cast<const unsigned char*>(row) + 2 * j;
      dst[plan.columns[j]] = static_cast<int16_t>(b[0] | b[1] << 8);
    }
  };
  const auto clear = [&](int64_t i) {
    int16_t* dst = SignalData + i * AQX_SIGNAL_COLUMNS;
    for (int c : plan.columns) dst[c] = 0;
  };

  int32_t result = kOk;
  const int64_t rowsPerPiece = dense ? std::max<int64_t>(1, static_cast<int64_t>(piece.size()) / strideBytes) : 1;
  for (int64_t i = 0; i < rows && result == kOk; i += rowsPerPiece) {
    const int64_t count = std::min(rowsPerPiece, rows - i);
    const int64_t fileRow = firstFileRow + i * scale;
    // Rows of this piece that lie in the file.
    const int64_t present = fileRow >= fileRows ? 0 : std::min(count, (fileRows - fileRow + scale - 1) / scale);
    if (present > 0) {
      const int64_t span = (present - 1) * strideBytes + rowBytes;
      const int64_t got = ReadAt(fd, piece.data(), span, offset + fileRow * rowBytes);
      if (got != span || faults.at(kErrReadDataFile)) {
        result = kErrReadDataFile;
        break;
      }
      for (int64_t k = 0; k < present; ++k) place(i + k, piece.data() + k * strideBytes);
    }
    // The end of the file: the rest of the block stays empty.
    for (int64_t k = present; k < count; ++k) clear(i + k);
  }
  close(fd);
  return result;
}
