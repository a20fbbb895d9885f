#pragma once
// One run of the module on a thread of the library: the cyclic run that the
// live view copies from, or the continuous recording that also appends every
// row to a file behind its header.

#include "engine/acquisition/Library.h"
#include "engine/acquisition/RowRing.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace aqx::acq {

// The file of a continuous recording: raw rows appended behind the header
// region, forced to the disk at least twice a second.
class RecordingFile {
 public:
  RecordingFile(int fd, int headerBytes, std::vector<char> header, int rowBytes, int64_t dataBytes);
  ~RecordingFile();
  RecordingFile(const RecordingFile&) = delete;
  RecordingFile& operator=(const RecordingFile&) = delete;

  // Appends whole rows; on failure cuts the file back to whole rows.
  bool append(const int16_t* rows, int64_t count);
  // Flushes, writes the header region back as it was and closes; 0 or 32.
  int32_t finish(bool injectSealFailure);
  // Size of the file in bytes.
  double sizeBytes() const { return static_cast<double>(headerBytes_ + dataBytes_.load()); }

 private:
  int fd_;
  int headerBytes_;
  std::vector<char> header_;
  int rowBytes_;
  std::atomic<int64_t> dataBytes_;
  std::chrono::steady_clock::time_point lastSync_;
};

class AcquisitionRun {
 public:
  struct Config {
    int64_t rowsPerTransfer = 1;
    int64_t ringRows = 0;     // rows kept for the application
    int64_t viewRows = 0;     // cyclic: rows of a cycle; recording: rows of a block
    bool blockView = false;   // recording: the view is the block being written
    int32_t stopAdcError = kErrStopAdc;
    int32_t readBufferError = kErrReadBuffer;
    int32_t storageError = kErrSignalDataDll;
  };

  AcquisitionRun(OpenedModule module, ChannelPlan plan, Config config,
                 std::unique_ptr<RecordingFile> file);
  ~AcquisitionRun();
  AcquisitionRun(const AcquisitionRun&) = delete;
  AcquisitionRun& operator=(const AcquisitionRun&) = delete;

  // Allocates the buffers, starts the thread and waits until the module has
  // started; 0 or the error number (the module is then released).
  int32_t start();
  // Newest cycle, or the block being written, into SignalData. Never waits
  // for the module; returns the rows the stretch holds.
  int64_t copyView(int16_t* SignalData, int32_t* blockCount = nullptr, int32_t* blockN = nullptr);
  // Non-zero once the thread has ended by itself: the error number.
  int32_t endCode() const { return endCode_.load(); }
  double fileBytes() const { return file_ ? file_->sizeBytes() : 0.0; }
  int64_t rowsAcquired() const { return ring_.totalRows(); }
  // Stops the module and the thread, releases the module, closes the file.
  int32_t stop();
  const ChannelPlan& plan() const { return plan_; }

 private:
  void threadMain();
  void reportStart(int32_t result);
  // Rows of this transfer that may pass before an injected fault strikes.
  int64_t rowsBeforeFault(int number, int64_t rowsSoFar, int64_t wanted) const;

  OpenedModule module_;
  ChannelPlan plan_;
  Config config_;
  std::unique_ptr<RecordingFile> file_;
  RowRing ring_;
  std::vector<int16_t> transfer_;
  std::thread thread_;

  std::mutex startMutex_;
  std::condition_variable startReported_;
  bool startKnown_ = false;
  int32_t startResult_ = 0;

  std::atomic<bool> stopRequested_{false};
  std::atomic<int32_t> endCode_{0};
  bool stopped_ = false;
};

}  // namespace aqx::acq
