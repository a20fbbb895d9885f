#include "engine/acquisition/ReplayModule.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace aqx::acq {

namespace {

// Offsets of the header record of the current layout (minor version 12).
constexpr int kHeaderBytes = 14173;
constexpr int kOffMinor = 14;
constexpr int kOffFreqDescR = 50;
constexpr int kOffChannel = 202;
constexpr int kOffDifferential = 4682;
constexpr int kOffSignalDataN = 6094;
constexpr int kOffSolidMode = 6138;
constexpr int kOffFreqADC = 6165;
constexpr int kCurrentMinor = 12;

int32_t Int32At(const std::vector<unsigned char>& h, int offset) {
  const auto* p = &h[static_cast<size_t>(offset)];
  return static_cast<int32_t>(static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
                              static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24);
}

bool ReadAll(int fd, void* buffer, size_t bytes, off_t offset) {
  auto* p = static_cast<char*>(buffer);
  while (bytes > 0) {
    const ssize_t n = pread(fd, p, bytes, offset);
    if (n <= 0) return false;
    p += n;
    bytes -= static_cast<size_t>(n);
    offset += n;
  }
  return true;
}

}  // namespace

bool OpenReplaySource(const std::string& path, ReplaySource& s) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  std::vector<unsigned char> h(kHeaderBytes);
  struct stat st {};
  if (fstat(fd, &st) != 0 || !ReadAll(fd, h.data(), h.size(), 0) ||
      std::memcmp(h.data(), "Aquilonix", 9) != 0 || Int32At(h, kOffMinor) != kCurrentMinor) {
    close(fd);
    return false;
  }
  const int channelCount = Int32At(h, kOffDifferential) == 1 ? kDifferentialChannels : kSingleEndedChannels;
  s.fileColumn.fill(-1);
  s.columns = 0;
  for (int c = 0; c < channelCount; ++c)
    if (Int32At(h, kOffChannel + 4 * c) == 1) s.fileColumn[static_cast<size_t>(c)] = s.columns++;
  s.solid = static_cast<int16_t>(h[kOffSolidMode] | h[kOffSolidMode + 1] << 8) != 0;
  s.headerBytes = kHeaderBytes;
  if (s.columns == 0) {
    close(fd);
    return false;
  }
  if (s.solid) {
    s.perChannelRateHz = static_cast<double>(Int32At(h, kOffFreqADC)) / s.columns;
    s.rows = (static_cast<int64_t>(st.st_size) - kHeaderBytes) / 2 / s.columns;
    s.fd = fd;
  } else {
    s.perChannelRateHz = Int32At(h, kOffFreqDescR);
    const int64_t n = std::clamp<int64_t>(Int32At(h, kOffSignalDataN), 0, 1048576);
    // Ordinary files overlap the header by one byte.
    const int64_t available = (static_cast<int64_t>(st.st_size) - (kHeaderBytes - 1)) / 2 / s.columns;
    s.rows = std::min(n, std::max<int64_t>(available, 0));
    s.channelMajor.assign(static_cast<size_t>(s.rows * s.columns), 0);
    for (int k = 0; k < s.columns && s.rows > 0; ++k) {
      if (!ReadAll(fd, s.channelMajor.data() + static_cast<size_t>(k * s.rows),
                   static_cast<size_t>(s.rows) * 2, kHeaderBytes - 1 + static_cast<off_t>(k * n * 2))) {
        close(fd);
        return false;
      }
    }
    close(fd);
  }
  return s.rows > 0 && s.perChannelRateHz > 0.0;
}

ReplayModule::ReplayModule(const ModuleSettings& settings, VirtualLines& lines)
    : SimulatedModule(settings, lines) {}

ReplayModule::~ReplayModule() { release(); }

bool ReplayModule::openDevice() { return OpenReplaySource(settings_.replayFile, source_); }

bool ReplayModule::release() {
  if (source_.fd >= 0) close(source_.fd);
  source_.fd = -1;
  return true;
}

bool ReplayModule::readDescription(ModuleDescription& d) {
  d.name = settings_.moduleName;
  d.serialNumber = "REPLAY";
  d.biosVersion = "3.05";
  return true;
}

bool ReplayModule::writeParameters(AdcParameters& p) {
  if (p.table.empty() || p.table.size() > static_cast<size_t>(kSingleEndedChannels)) return false;
  for (const AdcChannelEntry& e : p.table)
    if (e.channel < 0 || e.channel >= kSingleEndedChannels) return false;
  // The file sets the pace: the module runs at the file's rate.
  p.clockDivider = ClockDividerFor(source_.perChannelRateHz * static_cast<double>(p.table.size()));
  parameters_ = p;
  return true;
}

bool ReplayModule::start() {
  beginRun();
  return true;
}

bool ReplayModule::fileRows(int64_t first, int count, std::vector<int16_t>& out) {
  const size_t cols = static_cast<size_t>(source_.columns);
  out.assign(static_cast<size_t>(count) * cols, 0);
  if (!source_.solid) {
    for (int r = 0; r < count; ++r) {
      const int64_t row = (first + r) % source_.rows;
      for (size_t k = 0; k < cols; ++k)
        out[static_cast<size_t>(r) * cols + k] =
            source_.channelMajor[k * static_cast<size_t>(source_.rows) + static_cast<size_t>(row)];
    }
    return true;
  }
  int done = 0;
  while (done < count) {
    const int64_t row = (first + done) % source_.rows;
    const int piece = static_cast<int>(std::min<int64_t>(count - done, source_.rows - row));
    if (!ReadAll(source_.fd, out.data() + static_cast<size_t>(done) * cols,
                 static_cast<size_t>(piece) * cols * 2,
                 source_.headerBytes + static_cast<off_t>(row * static_cast<int64_t>(cols) * 2)))
      return false;
    done += piece;
  }
  return true;
}

bool ReplayModule::readRows(int16_t* codes, int rows) {
  if (rows <= 0) return true;
  const size_t width = parameters_.table.size();
  const double rowRate = TotalRateFor(parameters_.clockDivider) / static_cast<double>(width);
  const double ready = static_cast<double>(rowsDelivered_ + rows) / rowRate;
  if (!waitUntil(realTime(ready))) return false;
  if (!fileRows(rowsDelivered_, rows, fileBuffer_)) return false;
  const size_t cols = static_cast<size_t>(source_.columns);
  for (int r = 0; r < rows; ++r)
    for (size_t j = 0; j < width; ++j) {
      const int k = source_.fileColumn[static_cast<size_t>(parameters_.table[j].channel)];
      codes[static_cast<size_t>(r) * width + j] =
          k < 0 ? int16_t{0} : fileBuffer_[static_cast<size_t>(r) * cols + static_cast<size_t>(k)];
    }
  rowsDelivered_ += rows;
  return true;
}

std::string ReplayModule::backendText() const {
  return "Воспроизведение файла: " + settings_.replayFile;
}

}  // namespace aqx::acq
