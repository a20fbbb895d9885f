// Acquisition in the engine, each case against a baseline in the same run:
//
// - ReadSolidBlock of one block (1,048,576 rows of 16 channels) at scale 1
//   and at scale 64 from a continuous recording of several gigabytes made
//   here, with the file's pages dropped from the cache before each read,
//   against reading the same rows' bytes as one sequential stretch, and for
//   scale 64 also against reading the whole stretch the block spans.
// - The virtual module at 100 kHz in total (16 channels at 6250 Hz) with the
//   consumer copying the newest cycle every millisecond as the program's
//   timer does, against the same polling loop copying the same rows out of
//   a plain buffer. Counters: rows a second the run delivered, the CPU share
//   of the library's threads and of the consumer (percent of one core), and
//   what every copy shows: two channels of the module's signal count its
//   rows, so each copy is checked row by row and rows missing between two
//   neighbours (lost_rows) or out of order (disordered_rows) are counted.
//   The check's own time is left out of the consumer's share.
//
// AQX_BENCH_DIR chooses the folder of the big file (default: the current
// one), AQX_BENCH_SOLID_GB its size (default 3). The file is removed at the
// end.
#include "engine/Aquilonix.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr int kChannels = 16;
constexpr int64_t kRowBytes = 2 * kChannels;
constexpr int32_t kHeaderBytes = 14173;
constexpr int32_t kBlockRows = AQX_SIGNAL_ROWS;

struct SolidFile {
  std::string path;
  int64_t rows = 0;
};

std::array<int32_t, 32> FirstChannelsOn(int count) {
  std::array<int32_t, 32> on{};
  for (int c = 0; c < count; ++c) on[static_cast<size_t>(c)] = 1;
  return on;
}

// A continuous recording: a header region, then rows whose codes tell their
// row and channel.
SolidFile MakeSolidFile() {
  const char* dir = std::getenv("AQX_BENCH_DIR");
  const char* gb = std::getenv("AQX_BENCH_SOLID_GB");
  const double gigabytes = gb ? std::max(0.1, std::atof(gb)) : 3.0;
  SolidFile f;
  f.path = (std::filesystem::path(dir ? dir : ".") / "bench_acquisition_solid.aqx").string();
  f.rows = static_cast<int64_t>(gigabytes * 1024 * 1024 * 1024) / kRowBytes;
  const int fd = open(f.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (fd < 0) return {};
  std::vector<char> header(kHeaderBytes, ' ');
  bool ok = write(fd, header.data(), header.size()) == static_cast<ssize_t>(header.size());
  const int64_t chunkRows = 1 << 18;
  std::vector<int16_t> chunk(static_cast<size_t>(chunkRows * kChannels));
  for (int64_t first = 0; ok && first < f.rows; first += chunkRows) {
    const int64_t n = std::min(chunkRows, f.rows - first);
    for (int64_t r = 0; r < n; ++r)
      for (int c = 0; c < kChannels; ++c)
        chunk[static_cast<size_t>(r * kChannels + c)] = static_cast<int16_t>((first + r) * 7 + c);
    ok = write(fd, chunk.data(), static_cast<size_t>(n * kRowBytes)) == n * kRowBytes;
  }
  fsync(fd);
  close(fd);
  if (!ok) {
    std::remove(f.path.c_str());
    return {};
  }
  return f;
}

// Reads come from the disk, not from the page cache.
void DropFromCache(const std::string& path) {
  const int fd = open(path.c_str(), O_RDONLY);
  if (fd < 0) return;
  posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
  close(fd);
}

void ReadStretch(const std::string& path, int64_t offset, int64_t bytes, std::vector<char>& buffer) {
  const int fd = open(path.c_str(), O_RDONLY);
  posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
  int64_t done = 0;
  while (done < bytes) {
    const ssize_t n = pread(fd, buffer.data(), static_cast<size_t>(std::min<int64_t>(bytes - done,
                                static_cast<int64_t>(buffer.size()))), offset + done);
    if (n <= 0) break;
    done += n;
  }
  close(fd);
  benchmark::DoNotOptimize(buffer.data());
}

void BM_ReadSolidBlock(benchmark::State& bench, const SolidFile* f, int32_t scale) {
  auto store = std::make_unique<int16_t[]>(size_t{kBlockRows} * AQX_SIGNAL_COLUMNS);
  const std::array<int32_t, 32> on = FirstChannelsOn(kChannels);
  for (auto _ : bench) {
    bench.PauseTiming();
    DropFromCache(f->path);
    bench.ResumeTiming();
    const int32_t result = ReadSolidBlock(kBlockRows, kChannels, kHeaderBytes, 1, f->path.c_str(), 0, on.data(),
                                          store.get(), scale);
    if (result != 0) bench.SkipWithError("ReadSolidBlock failed");
  }
  // The last row taken must be the one the scale asks for.
  const int64_t lastRow = int64_t{kBlockRows - 1} * scale;
  if (lastRow < f->rows && store[size_t{kBlockRows - 1} * AQX_SIGNAL_COLUMNS] != static_cast<int16_t>(lastRow * 7))
    bench.SkipWithError("wrong row");
  bench.SetBytesProcessed(bench.iterations() * int64_t{kBlockRows} * kRowBytes);
  bench.counters["span_MiB"] = static_cast<double>(std::min(lastRow + 1, f->rows) * kRowBytes) / (1 << 20);
}

// Baseline: the same number of bytes as one sequential stretch, or the whole
// stretch the scaled block spans.
void BM_SequentialRead(benchmark::State& bench, const SolidFile* f, int64_t bytes) {
  std::vector<char> buffer(4 << 20);
  bytes = std::min(bytes, f->rows * kRowBytes);
  for (auto _ : bench) {
    bench.PauseTiming();
    DropFromCache(f->path);
    bench.ResumeTiming();
    ReadStretch(f->path, kHeaderBytes, bytes, buffer);
  }
  bench.SetBytesProcessed(bench.iterations() * int64_t{kBlockRows} * kRowBytes);
  bench.counters["span_MiB"] = static_cast<double>(bytes) / (1 << 20);
}

double ProcessCpuSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + t.tv_nsec * 1e-9;
}
double ThreadCpuSeconds() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + t.tv_nsec * 1e-9;
}

constexpr double kRunSeconds = 5.0;
constexpr auto kPoll = std::chrono::milliseconds(1);

// The count of the row at index r of a copy: a counter code is its count
// modulo 16384, kept in -8192..8191.
int64_t CountAt(const int16_t* store, int32_t r) {
  const int16_t* row = store + static_cast<size_t>(r) * AQX_SIGNAL_COLUMNS;
  return ((row[1] + 16384) % 16384) * 16384 + (row[0] + 16384) % 16384;
}

// The number of rows a copy shows: channels 1 and 2 count the rows, channel
// 3 is a constant that marks the rows already there (a cycle fills from its
// start until it is whole).
int64_t RowsShown(const int16_t* store, int32_t cycleRows) {
  const auto present = [&](int32_t r) { return store[static_cast<size_t>(r) * AQX_SIGNAL_COLUMNS + 2] != 0; };
  if (!present(0)) return 0;
  int32_t lo = 0, hi = cycleRows - 1;  // the last present row
  while (lo < hi) {
    const int32_t mid = lo + (hi - lo + 1) / 2;
    if (present(mid)) lo = mid;
    else hi = mid - 1;
  }
  return CountAt(store, lo) + 1;
}

struct CopyCheck {
  int64_t copies = 0;
  int64_t lostRows = 0;
  int64_t disorderedRows = 0;

  // Every present row of a copy must count one past the row before it.
  void check(const int16_t* store, int32_t cycleRows) {
    ++copies;
    int64_t previous = -1;
    for (int32_t r = 0; r < cycleRows && store[static_cast<size_t>(r) * AQX_SIGNAL_COLUMNS + 2] != 0; ++r) {
      const int64_t count = CountAt(store, r);
      if (previous >= 0 && count > previous + 1) lostRows += count - previous - 1;
      if (previous >= 0 && count <= previous) ++disorderedRows;
      previous = count;
    }
  }
};

// Polls as the program's timer does until a new transfer shows; the moment
// it showed and the rows.
std::pair<std::chrono::steady_clock::time_point, int64_t> NextTransfer(int16_t* store, int32_t cycleRows) {
  CopySignalData(store);
  const int64_t before = RowsShown(store, cycleRows);
  for (;;) {
    std::this_thread::sleep_for(kPoll);
    CopySignalData(store);
    const int64_t now = RowsShown(store, cycleRows);
    if (now != before) return {std::chrono::steady_clock::now(), now};
  }
}

void BM_VirtualModule100kHz(benchmark::State& bench, int32_t cycleRows) {
  setenv("AQX_VIRTUAL_CHANNELS", "counter,counterhigh,dc:1000", 1);
  auto store = std::make_unique<int16_t[]>(size_t{kBlockRows} * AQX_SIGNAL_COLUMNS);
  const std::array<int32_t, 32> on = FirstChannelsOn(kChannels);
  const std::array<int32_t, 32> volume{};
  double rowsPerSecond = 0, libraryShare = 0, consumerShare = 0, polls = 0;
  CopyCheck check;
  for (auto _ : bench) {
    int32_t freq = 6250;  // 16 x 6250 Hz = 100 kHz, divider 80
    char moduleText[17];
    // TimeRefresh 0.05 s: BufferLength 2^Int(log2(0.05 * 6250)) = 256.
    if (StartPotok(kChannels, on.data(), volume.data(), cycleRows, &freq, 256, 0, 0, 0, 32, 1000, moduleText, 0) != 0) {
      bench.SkipWithError("StartPotok failed");
      break;
    }
    // Rows are counted between the arrivals of two transfers, so that the
    // transfer size does not blur the rate.
    const auto [t0, rows0] = NextTransfer(store.get(), cycleRows);
    const double cpu0 = ProcessCpuSeconds(), own0 = ThreadCpuSeconds();
    int64_t n = 0;
    double checking = 0.0;
    while (std::chrono::steady_clock::now() - t0 < std::chrono::duration<double>(kRunSeconds)) {
      CopySignalData(store.get());
      const double c0 = ThreadCpuSeconds();
      check.check(store.get(), cycleRows);
      checking += ThreadCpuSeconds() - c0;
      ++n;
      std::this_thread::sleep_for(kPoll);
    }
    const double own = ThreadCpuSeconds() - own0 - checking, all = ProcessCpuSeconds() - cpu0 - checking;
    const double busy = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    const auto [t1, rows1] = NextTransfer(store.get(), cycleRows);
    const double wall = std::chrono::duration<double>(t1 - t0).count();
    rowsPerSecond = static_cast<double>(rows1 - rows0) / wall;
    libraryShare = 100.0 * (all - own) / busy;
    consumerShare = 100.0 * own / busy;
    polls = static_cast<double>(n) / busy;
    StopPotok();
    bench.SetIterationTime(busy);
  }
  unsetenv("AQX_VIRTUAL_CHANNELS");
  bench.counters["rows_per_s"] = rowsPerSecond;
  bench.counters["total_Hz"] = rowsPerSecond * kChannels;
  bench.counters["cpu_library_pct"] = libraryShare;
  bench.counters["cpu_consumer_pct"] = consumerShare;
  bench.counters["polls_per_s"] = polls;
  bench.counters["copies_checked"] = static_cast<double>(check.copies);
  bench.counters["lost_rows"] = static_cast<double>(check.lostRows);
  bench.counters["disordered_rows"] = static_cast<double>(check.disorderedRows);
}

// Baseline: the same poll, copying the same rows out of a plain buffer.
void BM_PollCopyBaseline(benchmark::State& bench, int32_t cycleRows) {
  auto store = std::make_unique<int16_t[]>(size_t{kBlockRows} * AQX_SIGNAL_COLUMNS);
  std::vector<int16_t> packed(static_cast<size_t>(cycleRows) * kChannels, 1);
  double consumerShare = 0, polls = 0;
  for (auto _ : bench) {
    const double own0 = ThreadCpuSeconds();
    const auto t0 = std::chrono::steady_clock::now();
    int64_t n = 0;
    while (std::chrono::steady_clock::now() - t0 < std::chrono::duration<double>(kRunSeconds)) {
      for (int32_t r = 0; r < cycleRows; ++r)
        std::memcpy(store.get() + size_t(r) * AQX_SIGNAL_COLUMNS, packed.data() + size_t(r) * kChannels,
                    kChannels * sizeof(int16_t));
      benchmark::ClobberMemory();
      ++n;
      std::this_thread::sleep_for(kPoll);
    }
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    consumerShare = 100.0 * (ThreadCpuSeconds() - own0) / wall;
    polls = static_cast<double>(n) / wall;
    bench.SetIterationTime(wall);
  }
  bench.counters["cpu_consumer_pct"] = consumerShare;
  bench.counters["polls_per_s"] = polls;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

  for (int32_t cycle : {32768, 1048576}) {
    const std::string suffix = "/cycle:" + std::to_string(cycle);
    benchmark::RegisterBenchmark(("BM_VirtualModule100kHz" + suffix).c_str(), BM_VirtualModule100kHz, cycle)
        ->UseManualTime()->Iterations(1)->Unit(benchmark::kSecond);
    benchmark::RegisterBenchmark(("BM_PollCopyBaseline" + suffix).c_str(), BM_PollCopyBaseline, cycle)
        ->UseManualTime()->Iterations(1)->Unit(benchmark::kSecond);
  }

  const SolidFile file = MakeSolidFile();
  if (file.rows == 0) {
    std::fprintf(stderr, "bench_acquisition: cannot write the solid file (AQX_BENCH_DIR)\n");
  } else {
    const int64_t blockBytes = int64_t{kBlockRows} * kRowBytes;
    benchmark::RegisterBenchmark("BM_ReadSolidBlock/scale:1", BM_ReadSolidBlock, &file, 1)
        ->Iterations(5)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("BM_SequentialRead/same_bytes", BM_SequentialRead, &file, blockBytes)
        ->Iterations(5)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("BM_ReadSolidBlock/scale:64", BM_ReadSolidBlock, &file, 64)
        ->Iterations(3)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("BM_SequentialRead/same_bytes_scale:64", BM_SequentialRead, &file, blockBytes)
        ->Iterations(3)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("BM_SequentialRead/span_scale:64", BM_SequentialRead, &file, blockBytes * 64)
        ->Iterations(3)->Unit(benchmark::kMillisecond);
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  if (file.rows != 0) std::remove(file.path.c_str());
  return 0;
}
