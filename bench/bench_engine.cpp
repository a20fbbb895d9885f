// The engine's numeric functions on a full store of 1,048,576 rows, each
// against a baseline in the same run:
// - AccountSpectrFull against a bare FFTW real transform of the same size
//   (out of place, the plain use; the in-place form is listed too);
// - AccountDataBuildSignal into 1920 columns against a plain strided
//   min/max loop over the same memory;
// - Otmetchick and AccountFilter with their time per sample (items/s).

#include "engine/Aquilonix.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>

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
std::vector<int16_t> MakeStore() {
  std::vector<int16_t> store(static_cast<size_t>(kRows) * kColumns);
  uint32_t seed = 1;
  for (int32_t r = 0; r < kRows; ++r) {
    seed = seed * 1664525u + 1013904223u;
    const double noise = (static_cast<double>(seed >> 8) / (1 << 24) - 0.5) * 200;
    store[static_cast<size_t>(r) * kColumns] =
        static_cast<int16_t>(3000 * std::sin(r * 0.0045) + 800 * std::sin(r * 0.21) + noise);
    store[static_cast<size_t>(r) * kColumns + 1] = static_cast<int16_t>(r % 1927 < 40 ? 3000 : 100);
  }
  return store;
}

void BM_BareFftwRealTransform(benchmark::State& state) {
  double* in = fftw_alloc_real(kRows);
  fftw_complex* out = fftw_alloc_complex(kRows / 2 + 1);
  fftw_plan plan = fftw_plan_dft_r2c_1d(kRows, in, out, FFTW_ESTIMATE);
  for (int32_t i = 0; i < kRows; ++i) in[i] = std::sin(i * 0.01);
  for (auto _ : state) {
    fftw_execute(plan);
    benchmark::DoNotOptimize(out[1][0]);
  }
  fftw_destroy_plan(plan);
  fftw_free(in);
  fftw_free(out);
}
BENCHMARK(BM_BareFftwRealTransform)->Unit(benchmark::kMillisecond);

// The in-place form of the same transform, which AccountSpectrFull uses.
void BM_BareFftwRealTransformInPlace(benchmark::State& state) {
  double* data = fftw_alloc_real(2 * (kRows / 2 + 1));
  auto* out = reinterpret_cast<fftw_complex*>(data);
  fftw_plan plan = fftw_plan_dft_r2c_1d(kRows, data, out, FFTW_ESTIMATE);
  for (auto _ : state) {
    state.PauseTiming();
    for (int32_t i = 0; i < kRows; ++i) data[i] = std::sin(i * 0.01);
    state.ResumeTiming();
    fftw_execute(plan);
    benchmark::DoNotOptimize(out[1][0]);
  }
  fftw_destroy_plan(plan);
  fftw_free(data);
}
BENCHMARK(BM_BareFftwRealTransformInPlace)->Unit(benchmark::kMillisecond);

void BM_AccountSpectrFull(benchmark::State& state) {
  std::vector<int16_t> store = MakeStore();
  std::vector<double> amplitude(AQX_SPECTRUM_LINES), phase(AQX_SPECTRUM_LINES), real(AQX_SPECTRUM_LINES);
  std::array<float, 32> ku;
  ku.fill(1.25f);
  double step = 0;
  int32_t lines = 0, largest = 0;
  for (auto _ : state) {
    AccountSpectrFull(nullptr, nullptr, phase.data(), real.data(), amplitude.data(), 0, 0, 1, kRows, kRows, kRows,
                      store.data(), 1, nullptr, nullptr, 1, kRows, &step, 2677, &lines, &largest, ku.data(), 0,
                      nullptr, -1);
    benchmark::DoNotOptimize(amplitude[100]);
  }
}
BENCHMARK(BM_AccountSpectrFull)->Unit(benchmark::kMillisecond);

// Baseline: for each column the plain loop over its rows, then the two
// codes turned into pixels as the view would.
void BM_PlainStridedMinMax(benchmark::State& state) {
  std::vector<int16_t> store = MakeStore();
  std::vector<int32_t> out(2 * kWidth);
  for (auto _ : state) {
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
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(BM_PlainStridedMinMax)->Unit(benchmark::kMillisecond);

void BM_AccountDataBuildSignal(benchmark::State& state) {
  std::vector<int16_t> store = MakeStore();
  std::vector<int32_t> out(2 * kWidth);
  for (auto _ : state) {
    AccountDataBuildSignal(kWidth, 300, static_cast<double>(kWidth) / kRows, 0.01, 1.25, 600, 0, store.data(), kRows, 1,
                           kRows, nullptr, nullptr, nullptr, nullptr, out.data());
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(BM_AccountDataBuildSignal)->Unit(benchmark::kMillisecond);

void BM_Otmetchick(benchmark::State& state) {
  std::vector<int16_t> store = MakeStore();
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
BENCHMARK(BM_Otmetchick)->Unit(benchmark::kMillisecond);

// One channel with a high pass, a low pass, a notch and a tunnel: the most
// work the filter table can ask for.
void BM_AccountFilter(benchmark::State& state) {
  const std::vector<int16_t> original = MakeStore();
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
BENCHMARK(BM_AccountFilter)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
