// Continuous recording to a file: the module's rows go straight behind the
// header region the application has written, and the application watches
// the newest block.

#include "engine/Aquilonix.h"
#include "engine/acquisition/AcquisitionRun.h"
#include "engine/acquisition/Library.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <new>

using namespace aqx::acq;

namespace {

bool ReadHeader(int fd, std::vector<char>& header) {
  size_t done = 0;
  while (done < header.size()) {
    const ssize_t n = pread(fd, header.data() + done, header.size() - done, static_cast<off_t>(done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

bool WriteHeader(int fd, const std::vector<char>& header) {
  size_t done = 0;
  while (done < header.size()) {
    const ssize_t n = pwrite(fd, header.data() + done, header.size() - done, static_cast<off_t>(done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

}  // namespace

extern "C" int32_t ReadDataToFile(const char* fileName, int32_t headerBytes, int32_t RecordBuffer,
                                  int32_t maxModuleFrequencyHz, double frequencyKHz,
                                  int32_t ChannelUsedCount, const int32_t* Channel,
                                  const int32_t* Volume, int32_t InputMode, int32_t SynchroAdType,
                                  int32_t SynchroAdMode, int32_t SynchroAdChannel,
                                  int32_t SynchroAdPorog, char* ModuleText,
                                  int32_t ChannelDifferential, int32_t maxRows,
                                  int32_t SolidClerData) {
  LibraryState& lib = Library();
  std::lock_guard lock(lib.mutex);
  if (lib.cyclic || lib.recording) return kErrThread;
  const ModuleSettings settings = LoadModuleSettings();
  const FaultPlan faults = FaultPlan::From(settings);
  const double totalRateHz = frequencyKHz * 1000.0;
  if (!(totalRateHz <= maxModuleFrequencyHz) || faults.at(kErrFrequency)) return kErrFrequency;
  ChannelPlan plan = PlanChannels(ChannelUsedCount, Channel, Volume, ChannelDifferential);
  const int rowBytes = static_cast<int>(std::max<size_t>(plan.table.size(), 1) * 2);

  // The header region as the application wrote it.
  std::vector<char> header;
  try {
    if (headerBytes < 0 || faults.at(kErrHeaderBuffer)) throw std::bad_alloc();
    header.assign(static_cast<size_t>(headerBytes), 0);
  } catch (const std::bad_alloc&) {
    return kErrHeaderBuffer;
  }
  const int readFd = fileName ? open(fileName, O_RDONLY | O_CLOEXEC) : -1;
  if (readFd < 0 || faults.at(kErrOpenHeader)) {
    if (readFd >= 0) close(readFd);
    return kErrOpenHeader;
  }
  const bool headerRead = ReadHeader(readFd, header);
  close(readFd);
  if (!headerRead || faults.at(kErrReadHeader)) return kErrReadHeader;

  const int fd = open(fileName, O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
  if (fd < 0 || faults.at(kErrCreateFile)) {
    if (fd >= 0) close(fd);
    return kErrCreateFile;
  }
  // Earlier data stay unless they are to be cleared; a torn last row goes.
  struct stat st {};
  int64_t dataBytes = 0;
  bool fileOk = fstat(fd, &st) == 0;
  if (fileOk) {
    const int64_t existing = std::max<int64_t>(0, static_cast<int64_t>(st.st_size) - headerBytes);
    dataBytes = SolidClerData != 0 ? 0 : existing / rowBytes * rowBytes;
    if (headerBytes + dataBytes != static_cast<int64_t>(st.st_size))
      fileOk = ftruncate(fd, headerBytes + dataBytes) == 0;
  }
  if (!fileOk) {
    close(fd);
    return kErrCreateFile;
  }
  if (!WriteHeader(fd, header) || faults.at(kErrSaveFileHeader)) {
    close(fd);
    return kErrSaveFileHeader;
  }
  auto file = std::make_unique<RecordingFile>(fd, headerBytes, std::move(header), rowBytes, dataBytes);

  OpenedModule m;
  int32_t result = OpenModule(settings, lib.lines, m);
  if (result != kOk) return result;
  AdcParameters p = RunParameters(plan.table, ClockDividerFor(totalRateHz), InputMode, SynchroAdType, SynchroAdMode,
                                  SynchroAdChannel, SynchroAdPorog);
  result = ConfigureModule(m, p);
  if (result == kOk && maxRows <= 0) result = kErrDataStorage;
  if (result != kOk) {
    ReleaseModule(m);
    return result;
  }
  const double width = static_cast<double>(plan.table.size());
  const double rowRate = TotalRateFor(p.clockDivider) / width;
  AcquisitionRun::Config config;
  // Pieces of at most a tenth of a second reach the file, so a crash loses
  // little; the buffer the application sized bounds them too.
  const int64_t bufferRows = std::max<int64_t>(1, RecordBuffer / static_cast<int64_t>(width));
  config.rowsPerTransfer = std::clamp<int64_t>(
      std::min<int64_t>(bufferRows, static_cast<int64_t>(rowRate / 10.0)),
      static_cast<int64_t>(std::ceil(rowRate / 1000.0)), maxRows);
  config.ringRows = maxRows;
  config.viewRows = maxRows;
  config.blockView = true;
  config.stopAdcError = kErrStopAdcRecording;
  config.readBufferError = kErrDataBuffer;
  config.storageError = kErrDataStorage;
  FillModuleText(m, ModuleText);
  auto run = std::make_unique<AcquisitionRun>(std::move(m), std::move(plan), config, std::move(file));
  result = run->start();
  if (result != kOk) return result;
  for (int c = 0; c < kSingleEndedChannels; ++c) {
    lib.channelOn[static_cast<size_t>(c)] = Channel ? Channel[c] : 0;
    lib.channelVolume[static_cast<size_t>(c)] = Volume ? Volume[c] : 0;
  }
  lib.differential = ChannelDifferential;
  lib.listsKnown = true;
  lib.recording = std::move(run);
  return kOk;
}

extern "C" void CopySignalDataDllRDTF(int16_t* SignalData, int32_t maxRows, int32_t* SolidBlockCount,
                                      int32_t* SolidBlockN, const int32_t* Channel) {
  (void)maxRows;  // the block size is the one the recording started with
  (void)Channel;  // so is the channel table
  LibraryState& lib = Library();
  std::lock_guard lock(lib.mutex);
  if (lib.recording && SignalData) lib.recording->copyView(SignalData, SolidBlockCount, SolidBlockN);
}

extern "C" int32_t EndRDTF(void) {
  LibraryState& lib = Library();
  std::lock_guard lock(lib.mutex);
  return lib.recording ? lib.recording->endCode() : 0;
}

extern "C" int32_t StopRDTF(void) {
  LibraryState& lib = Library();
  std::lock_guard lock(lib.mutex);
  if (!lib.recording) return kOk;
  const int32_t result = lib.recording->stop();
  lib.lastFileBytes = lib.recording->fileBytes();
  lib.recording.reset();
  return result;
}

extern "C" double InformationFileData(void) {
  LibraryState& lib = Library();
  std::lock_guard lock(lib.mutex);
  return lib.recording ? lib.recording->fileBytes() : lib.lastFileBytes;
}
