// The engine's numeric functions, each row against its baseline in the same
// run (bench/Compare.h prints process CPU and wall ratios):
// - AccountSpectrFull of 2^20 and 2^17 rows against one in-place FFTW real
//   transform of the same size, with the second core free and with it kept
//   busy by a spinning process of the benchmark's own (busy:1), and against
//   the read of the channel out of the store followed by that transform,
//   the call with estimated plans and with measured ones (wisdom:1);
// - AccountDataBuildSignal of 2^20 rows into 1920 columns against a plain
//   strided min/max loop over the same memory;
// - Otmetchick and AccountFilter with their time per sample (items/s).

#include "Compare.h"

#include "engine/Aquilonix.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

constexpr int32_t kRows = AQX_SIGNAL_ROWS;
constexpr int32_t kColumns = AQX_SIGNAL_COLUMNS;
constexpr int32_t kWidth = 1920;

// Channel 1: vibration with noise; channel 2: a shaft marker once per 1927 rows.
const std::vector<int16_t>& Store() {
  static const std::vector<int16_t> store = [] {
    std::vector<int16_t> s(static_cast<size_t>(kRows) * kColumns);
    uint32_t seed = 1;
    for (int32_t r = 0; r < kRows; ++r) {
      seed = seed * 1664525u + 1013904223u;
      const double noise = (static_cast<double>(seed >> 8) / (1 << 24) - 0.5) * 200;
      s[static_cast<size_t>(r) * kColumns] =
          static_cast<int16_t>(3000 * std::sin(r * 0.0045) + 800 * std::sin(r * 0.21) + noise);
      s[static_cast<size_t>(r) * kColumns + 1] = static_cast<int16_t>(r % 1927 < 40 ? 3000 : 100);
    }
    return s;
  }();
  return store;
}

// A process of our own that keeps one core busy while it lives.
class SpinningProcess {
 public:
  explicit SpinningProcess(bool wanted) {
    if (!wanted) return;
    pid_ = fork();
    if (pid_ == 0) {
      freopen("/dev/null", "w", stdout);
      execlp("yes", "yes", static_cast<char*>(nullptr));
      _exit(127);
    }
    usleep(100000);
  }
  ~SpinningProcess() {
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
  }
  SpinningProcess(const SpinningProcess&) = delete;
  SpinningProcess& operator=(const SpinningProcess&) = delete;

 private:
  pid_t pid_ = -1;
};

void CallSpectrumFull(int32_t rows, std::vector<double>& amplitude, std::vector<double>& phase,
                      std::vector<double>& real) {
  std::array<float, 32> ku;
  ku.fill(1.25f);
  double step = 0;
  int32_t lines = 0, largest = 0;
  AccountSpectrFull(nullptr, nullptr, phase.data(), real.data(), amplitude.data(), 0, 0, 1, rows, kRows, kRows,
                    Store().data(), 1, nullptr, nullptr, 1, rows, &step, 2677, &lines, &largest, ku.data(), 0,
                    nullptr, -1);
}

// Measured plans for the call (wisdom:1), made once into the working
// directory (about a minute) and read from there on later runs.
void LoadBenchWisdom() {
  const char* path = "bench-fft-wisdom";
  if (LoadFftWisdom(path) == 0 && MakeFftWisdom(path, kRows) == 1) LoadFftWisdom(path);
}

// The call against one transform of the same size, always the estimated
// plan; with `gather`, the baseline first reads the channel out of the
// store as the call must (each sample on a cache line of its own), the part
// of the call no transform can save.
void SpectrumFullRow(benchmark::State& state, bool gather) {
  const auto rows = static_cast<int32_t>(state.range(0));
  const std::vector<int16_t>& store = Store();
  std::vector<double> amplitude(AQX_SPECTRUM_LINES), phase(AQX_SPECTRUM_LINES), real(AQX_SPECTRUM_LINES);
  double* data = fftw_alloc_real(2 * (static_cast<size_t>(rows) / 2 + 1));
  auto* out = reinterpret_cast<fftw_complex*>(data);
  // FFTW_ESTIMATE takes wisdom held in memory: the baseline is planned
  // without any.
  LoadFftWisdom(nullptr);
  const fftw_plan plan = fftw_plan_dft_r2c_1d(rows, data, out, FFTW_ESTIMATE);
  if (state.range(2) != 0) LoadBenchWisdom();
  for (int32_t i = 0; i < rows; ++i) data[i] = store[static_cast<size_t>(i) * kColumns];
  // Both sides warm: the plan and work memory of the call are made once.
  CallSpectrumFull(rows, amplitude, phase, real);
  const SpinningProcess busy(state.range(1) != 0);
  aqx::bench::Compare(
      state,
      [&] {
        CallSpectrumFull(rows, amplitude, phase, real);
        benchmark::DoNotOptimize(amplitude[100]);
      },
      [&] {
        if (gather) {
          for (int32_t i = 0; i < rows; ++i) data[i] = store[static_cast<size_t>(i) * kColumns];
        }
        fftw_execute(plan);
        benchmark::DoNotOptimize(out[1][0]);
      });
  fftw_destroy_plan(plan);
  fftw_free(data);
  LoadFftWisdom(nullptr);
}

void BM_SpectrumFullAgainstFftw(benchmark::State& state) { SpectrumFullRow(state, false); }
BENCHMARK(BM_SpectrumFullAgainstFftw)
    ->ArgsProduct({{1 << 20, 1 << 17}, {0, 1}, {0, 1}})
    ->ArgNames({"rows", "busy", "wisdom"})
    ->Iterations(41)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void BM_SpectrumFullAgainstGatherAndFftw(benchmark::State& state) { SpectrumFullRow(state, true); }
BENCHMARK(BM_SpectrumFullAgainstGatherAndFftw)
    ->ArgsProduct({{1 << 20, 1 << 17}, {0, 1}, {0, 1}})
    ->ArgNames({"rows", "busy", "wisdom"})
    ->Iterations(41)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// Baseline: for each column the plain loop over its rows, then the two
// codes turned into pixels as the view would.
void BM_ThinningAgainstStridedMinMax(benchmark::State& state) {
  const std::vector<int16_t>& store = Store();
  std::vector<int32_t> out(2 * kWidth);
  const SpinningProcess busy(state.range(0) != 0);
  aqx::bench::Compare(
      state,
      [&] {
        AccountDataBuildSignal(kWidth, 300, static_cast<double>(kWidth) / kRows, 0.01, 1.25, 600, 0, store.data(),
                               kRows, 1, kRows, nullptr, nullptr, nullptr, nullptr, out.data());
        benchmark::DoNotOptimize(out.data());
      },
      [&] {
        for (int32_t x = 0; x < kWidth; ++x) {
          const int64_t begin = static_cast<int64_t>(x) * kRows / kWidth;
          const int64_t end = static_cast<int64_t>(x + 1) * kRows / kWidth;
          int16_t lo = store[static_cast<size_t>(begin) * kColumns];
          int16_t hi = lo;
          for (int64_t r = begin; r < end; ++r) {
            const int16_t v = store[static_cast<size_t>(r) * kColumns];
            lo = std::min(lo, v);
            hi = std::max(hi, v);
          }
          out[2 * x] = static_cast<int32_t>(std::nearbyint(300 - 0.01 * hi));
          out[2 * x + 1] = static_cast<int32_t>(std::nearbyint(300 - 0.01 * lo));
        }
        benchmark::DoNotOptimize(out.data());
      });
}
BENCHMARK(BM_ThinningAgainstStridedMinMax)
    ->Arg(0)
    ->Arg(1)
    ->ArgName("busy")
    ->Iterations(41)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void BM_Otmetchick(benchmark::State& state) {
  const std::vector<int16_t>& store = Store();
  std::array<int32_t, 32> channel, type;
  channel.fill(0);
  type.fill(1);
  channel[1] = 1;
  type[1] = 3;
  std::vector<int32_t> marks(AQX_MAX_SHAFT_MARKS);
  int32_t count = 0, level = 0, direct = 1, pmin = 0, pmax = 0;
  double smin = 0, smax = 0;
  for (auto _ : state) {
    Otmetchick(store.data(), kRows, channel.data(), type.data(), &count, marks.data(), 2677, 83.3, &smin, &smax, &pmin,
               &pmax, 1, &level, &direct, 1, kRows, 0, 0, 10, 100);
    benchmark::DoNotOptimize(count);
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(BM_Otmetchick)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

// One channel with a high pass, a low pass, a notch and a tunnel: the most
// work the filter table can ask for.
void BM_AccountFilter(benchmark::State& state) {
  const std::vector<int16_t>& original = Store();
  std::vector<int16_t> store = original;
  std::array<int32_t, 32> channel;
  channel.fill(0);
  channel[0] = 1;
  std::array<float, 128> filter;
  filter.fill(-1.0f);
  filter[0] = 1.0f;
  filter[1] = 200.0f;
  filter[2] = 50.0f;
  filter[3] = 1.38f;
  for (auto _ : state) {
    state.PauseTiming();
    store = original;
    state.ResumeTiming();
    AccountFilter(channel.data(), filter.data(), nullptr, nullptr, store.data(), kRows, 2677, 0);
    benchmark::DoNotOptimize(store.data());
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(BM_AccountFilter)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

}  // namespace

BENCHMARK_MAIN();
