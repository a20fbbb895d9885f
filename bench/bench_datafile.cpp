// Reading and writing a full recording (1,048,576 samples x 32 channels,
// 64 MiB of samples) through the data file, each row against its baseline in
// the same run (bench/Compare.h prints the ratios):
// - save: WriteDataFile against the same bytes gathered channel after
//   channel with a plain loop into one reused buffer of the whole file, one
//   write and an fsync, as the save syncs;
// - load: ReadDataFile against one read of the whole file into a reused
//   buffer and a plain per-channel loop into the store.
// Both baselines reuse buffers that are touched before the run, so that the
// page faults of a fresh 64 MiB buffer do not flatter the program.
#include "Compare.h"

#include "core/Prompts.h"
#include "files/DataFile.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <memory>
#include <vector>

namespace {

using aqx::AppState;

constexpr int kSamples = aqx::kMaxSamples;
constexpr int kChannels = aqx::kMaxChannels;
constexpr size_t kHeaderBytes = 14173;
constexpr size_t kFileBytes = kHeaderBytes - 1 + size_t{2} * kSamples * kChannels;

// One folder and one full recording for the whole run.
struct Fixture {
  QTemporaryDir dir{QDir::currentPath() + QStringLiteral("/bench_datafile_XXXXXX")};
  std::unique_ptr<AppState> state = std::make_unique<AppState>();
  aqx::ScriptedPrompts prompts;
  QString file;
  std::vector<char> buffer = std::vector<char>(kFileBytes, 1);  // the baselines' whole file

  Fixture() {
    state->BatchMode = true;
    state->SignalDataN = kSamples;
    for (int c = 1; c <= kChannels; ++c) state->channels.Channel[c] = 1;
    aqx::RecountChannelUsedCount(*state);
    int16_t* codes = state->SignalData.data();
    for (size_t i = 0; i < aqx::SampleStore::kElements; ++i)
      codes[i] = static_cast<int16_t>(static_cast<int>(i * 2654435761u % 16384) - 8192);
    file = dir.filePath(QStringLiteral("full.aqx"));
    state->PathFileData = file;
    aqx::WriteDataFile(*state, prompts);
  }
};

Fixture& Shared() {
  static Fixture fixture;  // built once: the recording is 64 MiB
  return fixture;
}

bool WriteWhole(const QByteArray& path, const std::vector<char>& bytes) {
  const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  if (fd < 0) return false;
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  const bool ok = done == bytes.size() && ::fsync(fd) == 0;
  ::close(fd);
  return ok;
}

bool ReadWhole(const QByteArray& path, std::vector<char>& bytes) {
  const int fd = ::open(path.constData(), O_RDONLY);
  if (fd < 0) return false;
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::read(fd, bytes.data() + done, bytes.size() - done);
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  ::close(fd);
  return done == bytes.size();
}

void BM_SaveFullRecording(benchmark::State& bench) {
  Fixture& f = Shared();
  const QString written = f.dir.filePath(QStringLiteral("written.aqx"));
  const QByteArray baseline = QFile::encodeName(f.dir.filePath(QStringLiteral("baseline.aqx")));
  const QByteArray header = aqx::BuildFileHeaderBytes(*f.state);
  bool ok = true;
  aqx::bench::Compare(
      bench,
      [&] {
        f.state->PathFileData = written;
        ok = aqx::WriteDataFile(*f.state, f.prompts) && ok;
      },
      [&] {
        std::copy(header.begin(), header.end() - 1, f.buffer.begin());
        auto* samples = reinterpret_cast<int16_t*>(f.buffer.data() + kHeaderBytes - 1);
        const int16_t* store = f.state->SignalData.data();
        for (int c = 0; c < kChannels; ++c)
          for (int i = 0; i < kSamples; ++i)
            samples[static_cast<size_t>(c) * kSamples + static_cast<size_t>(i)] =
                store[static_cast<size_t>(i) * kChannels + static_cast<size_t>(c)];
        ok = WriteWhole(baseline, f.buffer) && ok;
      });
  f.state->PathFileData = f.file;
  if (!ok) bench.SkipWithError("a write failed");
  // The two files must hold the same bytes.
  std::vector<char> ours(kFileBytes);
  if (!ReadWhole(QFile::encodeName(written), ours) || !ReadWhole(baseline, f.buffer) || ours != f.buffer)
    bench.SkipWithError("the saved file differs from the baseline's");
}

void BM_LoadFullRecording(benchmark::State& bench) {
  Fixture& f = Shared();
  const QByteArray path = QFile::encodeName(f.file);
  bool ok = true;
  aqx::bench::Compare(
      bench,
      [&] {
        f.state->PathFileData = f.file;
        ok = aqx::ReadDataFile(*f.state, f.prompts) && ok;
      },
      [&] {
        ok = ReadWhole(path, f.buffer) && ok;
        const auto* samples = reinterpret_cast<const int16_t*>(f.buffer.data() + kHeaderBytes - 1);
        int16_t* store = f.state->SignalData.data();
        for (int c = 0; c < kChannels; ++c)
          for (int i = 0; i < kSamples; ++i)
            store[static_cast<size_t>(i) * kChannels + static_cast<size_t>(c)] =
                samples[static_cast<size_t>(c) * kSamples + static_cast<size_t>(i)];
        benchmark::DoNotOptimize(store);
      });
  if (!ok) bench.SkipWithError("a read failed");
}

BENCHMARK(BM_SaveFullRecording)->Iterations(9)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadFullRecording)->Iterations(9)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
