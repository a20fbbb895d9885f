// Reading and writing a full recording (1,048,576 samples x 32 channels,
// 64 MiB of samples) through the data file, each against a baseline in the
// same run that moves the same bytes with one buffer of the whole file and a
// plain per-channel loop into or out of SignalData.
#include "core/Prompts.h"
#include "files/DataFile.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
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

void BM_ReadDataFile(benchmark::State& bench) {
  Fixture& f = Shared();
  f.state->PathFileData = f.file;
  for (auto _ : bench) {
    const bool ok = aqx::ReadDataFile(*f.state, f.prompts);
    benchmark::DoNotOptimize(ok);
  }
  bench.SetBytesProcessed(static_cast<int64_t>(bench.iterations()) * static_cast<int64_t>(kFileBytes));
}

// The whole file in one buffer with one read, then channel after channel a
// plain loop into the sample-major store.
void BM_ReadBaseline(benchmark::State& bench) {
  Fixture& f = Shared();
  const QByteArray path = QFile::encodeName(f.file);
  for (auto _ : bench) {
    std::vector<char> buffer(kFileBytes);
    const int fd = ::open(path.constData(), O_RDONLY);
    size_t done = 0;
    while (done < kFileBytes) {
      const ssize_t n = ::read(fd, buffer.data() + done, kFileBytes - done);
      if (n <= 0) break;
      done += static_cast<size_t>(n);
    }
    ::close(fd);
    const auto* samples = reinterpret_cast<const int16_t*>(buffer.data() + kHeaderBytes - 1);
    int16_t* store = f.state->SignalData.data();
    for (int c = 0; c < kChannels; ++c)
      for (int i = 0; i < kSamples; ++i)
        store[static_cast<size_t>(i) * kChannels + static_cast<size_t>(c)] =
            samples[static_cast<size_t>(c) * kSamples + static_cast<size_t>(i)];
    benchmark::DoNotOptimize(store);
  }
  bench.SetBytesProcessed(static_cast<int64_t>(bench.iterations()) * static_cast<int64_t>(kFileBytes));
}

void BM_WriteDataFile(benchmark::State& bench) {
  Fixture& f = Shared();
  f.state->PathFileData = f.dir.filePath(QStringLiteral("written.aqx"));
  for (auto _ : bench) {
    const bool ok = aqx::WriteDataFile(*f.state, f.prompts);
    benchmark::DoNotOptimize(ok);
  }
  f.state->PathFileData = f.file;
  bench.SetBytesProcessed(static_cast<int64_t>(bench.iterations()) * static_cast<int64_t>(kFileBytes));
}

// Header and samples gathered channel after channel with a plain loop into
// one buffer of the whole file, one write, synced like the real save.
void BM_WriteBaseline(benchmark::State& bench) {
  Fixture& f = Shared();
  const QByteArray path = QFile::encodeName(f.dir.filePath(QStringLiteral("baseline.aqx")));
  const QByteArray header = aqx::BuildFileHeaderBytes(*f.state);
  for (auto _ : bench) {
    std::vector<char> buffer(kFileBytes);
    std::copy(header.begin(), header.end() - 1, buffer.begin());
    auto* samples = reinterpret_cast<int16_t*>(buffer.data() + kHeaderBytes - 1);
    const int16_t* store = f.state->SignalData.data();
    for (int c = 0; c < kChannels; ++c)
      for (int i = 0; i < kSamples; ++i)
        samples[static_cast<size_t>(c) * kSamples + static_cast<size_t>(i)] =
            store[static_cast<size_t>(i) * kChannels + static_cast<size_t>(c)];
    const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    size_t done = 0;
    while (done < kFileBytes) {
      const ssize_t n = ::write(fd, buffer.data() + done, kFileBytes - done);
      if (n <= 0) break;
      done += static_cast<size_t>(n);
    }
    ::fsync(fd);
    ::close(fd);
  }
  bench.SetBytesProcessed(static_cast<int64_t>(bench.iterations()) * static_cast<int64_t>(kFileBytes));
}

BENCHMARK(BM_ReadBaseline)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadDataFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WriteBaseline)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WriteDataFile)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
