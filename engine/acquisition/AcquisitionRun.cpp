#include "engine/acquisition/AcquisitionRun.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <system_error>

namespace aqx::acq {

namespace {
constexpr auto kSyncInterval = std::chrono::milliseconds(500);
}

// ---- RecordingFile ------------------------------------------------------

RecordingFile::RecordingFile(int fd, int headerBytes, std::vector<char> header, int rowBytes,
                             int64_t dataBytes)
    : fd_(fd),
      headerBytes_(headerBytes),
      header_(std::move(header)),
      rowBytes_(rowBytes),
      dataBytes_(dataBytes),
      lastSync_(std::chrono::steady_clock::now()) {}

RecordingFile::~RecordingFile() {
  if (fd_ >= 0) close(fd_);
}

bool RecordingFile::append(const int16_t* rows, int64_t count) {
  const auto* bytes = reinterpret_cast<const char*>(rows);
  const int64_t total = count * rowBytes_;
  const int64_t at = headerBytes_ + dataBytes_.load();
  int64_t written = 0;
  while (written < total) {
    const ssize_t n = pwrite(fd_, bytes + written, static_cast<size_t>(total - written), at + written);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      // A full disk: keep the rows that made it whole, drop a torn one.
      const int64_t whole = written / rowBytes_ * rowBytes_;
      dataBytes_ += whole;
      if (ftruncate(fd_, headerBytes_ + dataBytes_.load()) != 0) {
        // The file keeps the torn row; readers count whole rows only.
      }
      fdatasync(fd_);
      return false;
    }
    written += n;
  }
  dataBytes_ += total;
  const auto now = std::chrono::steady_clock::now();
  if (now - lastSync_ >= kSyncInterval) {
    fdatasync(fd_);
    lastSync_ = now;
  }
  return true;
}

int32_t RecordingFile::finish(bool injectSealFailure) {
  int32_t result = kOk;
  fdatasync(fd_);
  // The header region leaves the run byte for byte as it came in.
  size_t done = 0;
  while (done < header_.size()) {
    const ssize_t n = pwrite(fd_, header_.data() + done, header_.size() - done, static_cast<off_t>(done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  if (done != header_.size() || injectSealFailure) result = kErrSealHeader;
  if (fdatasync(fd_) != 0 && result == kOk) result = kErrSealHeader;
  close(fd_);
  fd_ = -1;
  return result;
}

// ---- AcquisitionRun -----------------------------------------------------

AcquisitionRun::AcquisitionRun(OpenedModule module, ChannelPlan plan, Config config,
                               std::unique_ptr<RecordingFile> file)
    : module_(std::move(module)), plan_(std::move(plan)), config_(config), file_(std::move(file)) {}

AcquisitionRun::~AcquisitionRun() {
  if (thread_.joinable()) stop();
}

int64_t AcquisitionRun::rowsBeforeFault(int number, int64_t rowsSoFar, int64_t wanted) const {
  if (!module_.faults.at(number)) return wanted;
  return std::clamp<int64_t>(module_.faults.afterRows - rowsSoFar, 0, wanted);
}

int32_t AcquisitionRun::start() {
  const FaultPlan& faults = module_.faults;
  const size_t width = plan_.table.size();
  int32_t result = kOk;
  try {
    if (faults.at(config_.readBufferError)) throw std::bad_alloc();
    transfer_.assign(static_cast<size_t>(config_.rowsPerTransfer) * width, 0);
  } catch (const std::bad_alloc&) {
    result = config_.readBufferError;
  }
  if (result == kOk && (faults.at(config_.storageError) ||
                        !ring_.allocate(config_.ringRows, static_cast<int>(width))))
    result = config_.storageError;
  if (result == kOk && faults.at(kErrChannelOnDll)) result = kErrChannelOnDll;
  if (result == kOk && faults.at(kErrChannelVolumeDll)) result = kErrChannelVolumeDll;
  if (result == kOk) {
    try {
      if (faults.at(kErrThread)) throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
      thread_ = std::thread([this] { threadMain(); });
    } catch (const std::system_error&) {
      result = kErrThread;
    }
  }
  if (result == kOk) {
    std::unique_lock lock(startMutex_);
    startReported_.wait(lock, [&] { return startKnown_; });
    result = startResult_;
  }
  if (result != kOk) {
    if (thread_.joinable()) thread_.join();
    ReleaseModule(module_);
    stopped_ = true;
  }
  return result;
}

void AcquisitionRun::reportStart(int32_t result) {
  std::lock_guard lock(startMutex_);
  startKnown_ = true;
  startResult_ = result;
  startReported_.notify_all();
}

void AcquisitionRun::threadMain() {
  AcquisitionModule& module = *module_.module;
  if (module_.faults.at(kErrStartAdc) || !module.start()) {
    reportStart(kErrStartAdc);
    return;
  }
  reportStart(kOk);
  int64_t rows = 0;
  while (!stopRequested_.load()) {
    const int64_t wanted = config_.rowsPerTransfer;
    const int64_t readable = rowsBeforeFault(kErrReadData, rows, wanted);
    if (readable > 0 && !module.readRows(transfer_.data(), static_cast<int>(readable))) {
      if (!stopRequested_.load()) endCode_ = kErrReadData;
      break;
    }
    const int64_t writable = file_ ? rowsBeforeFault(kErrRecordingThread, rows, readable) : readable;
    if (file_ && writable > 0 && !file_->append(transfer_.data(), writable)) {
      endCode_ = kErrRecordingThread;
      break;
    }
    if (writable > 0 && !ring_.append(transfer_.data(), writable)) break;
    rows += writable;
    if (writable < readable) {
      endCode_ = kErrRecordingThread;
      break;
    }
    if (readable < wanted) {
      endCode_ = kErrReadData;
      break;
    }
  }
}

int64_t AcquisitionRun::copyView(int16_t* SignalData, int32_t* blockCount, int32_t* blockN) {
  const int64_t viewRows = config_.viewRows;
  const auto visit = [&](const int16_t* rows, int64_t count, int64_t index) {
    SpreadRows(rows, count, plan_.columns, SignalData, index);
  };
  std::pair<int64_t, int64_t> range;
  int64_t total = 0;
  if (config_.blockView) {
    range = ring_.read(
        [&](int64_t t) -> std::pair<int64_t, int64_t> {
          total = t;
          if (t == 0) return {0, 0};
          const int64_t first = (t - 1) / viewRows * viewRows;
          return {first, t - first};
        },
        visit);
    const int64_t blocks = std::max<int64_t>(1, (total + viewRows - 1) / viewRows);
    if (blockCount) *blockCount = static_cast<int32_t>(blocks);
    if (blockN) *blockN = static_cast<int32_t>(blocks);
  } else {
    range = ring_.read(
        [&](int64_t t) -> std::pair<int64_t, int64_t> {
          return t < viewRows ? std::pair<int64_t, int64_t>{0, t}
                              : std::pair<int64_t, int64_t>{t - viewRows, viewRows};
        },
        visit);
  }
  if (range.second < viewRows) ClearRows(plan_.columns, SignalData, range.second, viewRows);
  return range.second;
}

int32_t AcquisitionRun::stop() {
  if (stopped_) return kOk;
  stopped_ = true;
  const FaultPlan& faults = module_.faults;
  AcquisitionModule& module = *module_.module;
  stopRequested_ = true;
  int32_t result = kOk;
  const bool stopOk = module.stop();
  if (!stopOk || faults.at(config_.stopAdcError)) result = config_.stopAdcError;
  const bool cancelOk = module.cancelRequests();
  if ((!cancelOk || faults.at(kErrCancelIo)) && result == kOk) result = kErrCancelIo;
  ring_.abort();
  if (thread_.joinable()) thread_.join();
  const int32_t released = ReleaseModule(module_);
  if (released != kOk && result == kOk) result = released;
  if (file_) {
    const int32_t sealed = file_->finish(faults.at(kErrSealHeader));
    if (sealed != kOk && result == kOk) result = sealed;
  }
  if (result == kOk) result = endCode_.load();
  return result;
}

}  // namespace aqx::acq
