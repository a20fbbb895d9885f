// Whole commands as processes, each row against its baseline in the same run
// (bench/Compare.h prints the ratios; CPU is the child's user + system time):
// - aquilonix-tool convert of a full recording (1,048,576 x 32, 64 MiB)
//   against dd of the same file with bs=1M conv=fsync;
// - aquilonix-tool info on that file against info on a 366 KB recording,
//   with the peak memory of the first;
// - aquilonix-tool export-wav of that file against sox copying a WAVE file
//   of the same size followed by sync of the copy, with the peak memory
//   against the store's 64 MiB;
// - the window program opening that file (offscreen, ended after
//   AQX_BENCH_WINDOW_SECONDS, default 8), its peak memory against the file.
// AQX_TOOL and AQX_APP name other builds of the two programs.
#include "Compare.h"

#include "core/Prompts.h"
#include "files/DataFile.h"
#include "files/Wave.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <climits>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

using aqx::AppState;
using aqx::bench::ChildRun;
using aqx::bench::RunChild;

std::string ExeDir() {
  char path[PATH_MAX] = {};
  const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
  std::string s(path, n > 0 ? static_cast<size_t>(n) : 0);
  return s.substr(0, s.rfind('/'));
}

std::string Program(const char* variable, const char* relative) {
  const char* set = std::getenv(variable);
  return set ? std::string(set) : ExeDir() + relative;
}

std::string Local(const QString& path) { return QFile::encodeName(path).toStdString(); }

std::unique_ptr<AppState> Recording(int samples) {
  auto s = std::make_unique<AppState>();
  s->BatchMode = true;
  s->SignalDataN = samples;
  for (int c = 1; c <= aqx::kMaxChannels; ++c) s->channels.Channel[c] = 1;
  aqx::RecountChannelUsedCount(*s);
  for (int row = 1; row <= samples; ++row)
    for (int c = 1; c <= aqx::kMaxChannels; ++c)
      s->SignalData.at(row, c) = static_cast<int16_t>(static_cast<int>((row * 2654435761u + c * 40503u) % 16384) - 8192);
  return s;
}

struct Fixture {
  QTemporaryDir dir{QDir::currentPath() + QStringLiteral("/bench_commands_XXXXXX")};
  std::string tool = Program("AQX_TOOL", "/../tools/aquilonix-tool");
  std::string app = Program("AQX_APP", "/../app/aquilonix");
  std::string full, small, wave;
  double fileBytes = 0.0;

  std::string path(const char* name) const { return Local(dir.filePath(QString::fromLatin1(name))); }

  Fixture() {
    aqx::ScriptedPrompts prompts;
    auto big = Recording(aqx::kMaxSamples);
    big->PathFileData = dir.filePath(QStringLiteral("full.aqx"));
    aqx::WriteDataFile(*big, prompts);
    aqx::WriteWaveFile(*big, dir.filePath(QStringLiteral("full.wav")), prompts);
    auto little = Recording(5500);  // 366,172 bytes
    little->PathFileData = dir.filePath(QStringLiteral("small.aqx"));
    aqx::WriteDataFile(*little, prompts);
    full = Local(big->PathFileData);
    small = Local(little->PathFileData);
    wave = path("full.wav");
    fileBytes = static_cast<double>(QFileInfo(big->PathFileData).size());
  }
};

Fixture& Shared() {
  static Fixture fixture;  // built once: the recording is 64 MiB
  return fixture;
}

// Ours and the baseline alternately, as Compare does for calls.
template <class Ours, class Base>
void CompareChildren(benchmark::State& bench, const Ours& ours, const Base& base) {
  aqx::bench::Timings o, b;
  bool ok = true;
  bool baseFirst = false;
  for (auto _ : bench) {
    ChildRun r;
    if (baseFirst) {
      r = base();
      ok = ok && r.ok;
      aqx::bench::Record(b, r);
    }
    r = ours();
    ok = ok && r.ok;
    aqx::bench::Record(o, r);
    bench.SetIterationTime(r.wallSeconds);
    if (!baseFirst) {
      r = base();
      ok = ok && r.ok;
      aqx::bench::Record(b, r);
    }
    baseFirst = !baseFirst;
  }
  aqx::bench::Report(bench, o, b);
  if (!ok) bench.SkipWithError("a command failed");
}

void BM_ConvertFullRecording(benchmark::State& bench) {
  const Fixture& f = Shared();
  CompareChildren(
      bench, [&] { return RunChild({f.tool, "convert", f.full, f.path("converted.aqx")}); },
      [&] { return RunChild({"dd", "if=" + f.full, "of=" + f.path("dd.aqx"), "bs=1M", "conv=fsync", "status=none"}); });
}

void BM_InfoFullAgainstSmall(benchmark::State& bench) {
  const Fixture& f = Shared();
  CompareChildren(bench, [&] { return RunChild({f.tool, "info", f.full}); },
                  [&] { return RunChild({f.tool, "info", f.small}); });
}

void BM_ExportWavAgainstSox(benchmark::State& bench) {
  const Fixture& f = Shared();
  const std::string out = f.path("exported.wav");
  const std::string copy = f.path("sox.wav");
  CompareChildren(
      bench, [&] { return RunChild({f.tool, "export-wav", f.full, out}); },
      [&] { return RunChild({"sh", "-c", "sox \"$0\" \"$1\" && sync \"$1\"", f.wave, copy}); });
  bench.counters["ours_peak_per_store"] =
      bench.counters["ours_peak_MiB"] / (static_cast<double>(aqx::SampleStore::kBytes) / (1 << 20));
}

void BM_WindowProgramPeakMemory(benchmark::State& bench) {
  const Fixture& f = Shared();
  const char* seconds = std::getenv("AQX_BENCH_WINDOW_SECONDS");
  const double wait = seconds ? std::atof(seconds) : 8.0;
  aqx::bench::Timings o;
  bool ok = true;
  int run = 0;
  for (auto _ : bench) {
    // A fresh settings folder each time: the window program ended from
    // outside would offer a protected start to the next one.
    const std::string home = f.path("home-") + std::to_string(run++);
    QDir().mkpath(QString::fromStdString(home));
    const ChildRun r = RunChild({f.app, f.full}, wait,
                                {"QT_QPA_PLATFORM=offscreen", "HOME=" + home, "XDG_CONFIG_HOME=" + home});
    ok = ok && r.ok;
    aqx::bench::Record(o, r);
    bench.SetIterationTime(r.wallSeconds);
  }
  const double peak = *std::max_element(o.peakKiB.begin(), o.peakKiB.end()) * 1024.0;
  bench.counters["ours_peak_MiB"] = peak / (1 << 20);
  bench.counters["file_MiB"] = f.fileBytes / (1 << 20);
  bench.counters["peak_per_file"] = peak / f.fileBytes;
  if (!ok) bench.SkipWithError("the window program failed");
}

BENCHMARK(BM_ConvertFullRecording)->Iterations(7)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_InfoFullAgainstSmall)->Iterations(9)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportWavAgainstSox)->Iterations(7)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WindowProgramPeakMemory)->Iterations(2)->UseManualTime()->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
