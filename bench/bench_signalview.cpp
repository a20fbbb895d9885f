// A full ViewRefresh of the signal view with its parameter bar, painted
// offscreen at 1920 x 1080, against the bare thinning call of the same
// stretch. Targets: 60 refreshes a second at 32,768 samples, 20 at 1,048,576,
// and 20 with eight run-out channels overlaid at 1,048,576.
//
// The refresh row also reports the milliseconds of each of its steps, and
// BM_StorePassesOfARefresh times the reads of the sample store that the
// refresh's engine calls make, each reading its columns out of the whole
// row-major store: the part of a refresh that no faster arithmetic removes.

#include "core/AppState.h"
#include "engine/Aquilonix.h"
#include "ui/paint/PaintDrawList.h"
#include "views/Analysis.h"
#include "views/ViewRefresh.h"
#include "views/signal/SignalRefresh.h"

#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

namespace {

using namespace aqx;

constexpr int kWidthPx = 1920;
constexpr int kHeightPx = 1080;

// Run-out on channel 1 (1.38 Hz and its harmonics), a marker pulse each
// revolution on channel 2, 2677 samples a second.
std::unique_ptr<AppState> Recording(int samples, int overlaid = 1) {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = s->channels.Active[c] = 0;
  s->channels.Channel[1] = s->channels.Active[1] = 1;
  s->channels.Type[1] = 0;
  s->channels.Ku[1] = 8.0f;
  s->channels.Channel[2] = 1;
  s->channels.Type[2] = 3;
  s->channels.Ku[2] = 1.25f;
  RecountChannelUsedCount(*s);
  s->FirstChannelActive = 1;
  s->SignalDataN = samples;
  s->ViewFirst = 1;
  s->ViewLast = samples;
  s->FreqDesc = 2677;
  const double revolution = s->FreqDesc / s->FreqOneGarmonic;
  for (int i = 1; i <= samples; ++i) {
    const double t = i / static_cast<double>(s->FreqDesc);
    const double w = 2 * std::numbers::pi * s->FreqOneGarmonic * t;
    s->SignalData.at(i, 1) = static_cast<int16_t>(std::lround(3000 * std::sin(w) + 400 * std::sin(3 * w) + 50 * std::sin(97 * w)));
    s->SignalData.at(i, 2) = std::fmod(i, revolution) < 3.0 ? 4000 : 0;
  }
  // Further run-out channels 3.., each a shifted copy of channel 1.
  for (int c = 3; c < 2 + overlaid; ++c) {
    s->channels.Channel[c] = s->channels.Active[c] = 1;
    s->channels.Type[c] = 0;
    s->channels.Ku[c] = 8.0f;
    for (int i = 1; i <= samples; ++i) s->SignalData.at(i, c) = s->SignalData.at((i + 97 * c - 1) % samples + 1, 1);
  }
  s->Imposition = overlaid > 1;
  RecountChannelUsedCount(*s);
  s->ViewOpenFlags[frmViewSignal] = true;
  return s;
}

struct Bench {
  std::unique_ptr<AppState> s;
  views::SignalViewState v;
  std::unique_ptr<views::AnalysisResults> r = std::make_unique<views::AnalysisResults>();
  views::ViewRegistry registry;
  QImage image{kWidthPx, kHeightPx, QImage::Format_RGB32};
  QFont font = ui::DefaultViewFont();
  std::unique_ptr<ui::QtFontMetrics> metrics = std::make_unique<ui::QtFontMetrics>(font);
  int64_t panels = 0;

  explicit Bench(int samples, int overlaid = 1) : s(Recording(samples, overlaid)) {
    v.widthPx = kWidthPx;
    v.heightPx = kHeightPx;
    views::InitSignalView(*s, v);
    views::ConfigSliderH(*s, v);
    registry.runOn = true;  // no notice window in a benchmark
    registry.signalStatusBarParameter = true;
    views::InstallEngineSteps(registry, *s, *r);
    views::SignalWindowHooks hooks;
    hooks.fm = metrics->metrics();
    hooks.showPicture = [this](views::DrawList&& list) {
      QPainter painter(&image);
      ui::PaintDrawList(painter, list, font);
    };
    hooks.showParameterBar = [this](views::ParameterBar&& bar) { panels += static_cast<int64_t>(bar.panels.size()); };
    hooks.parameterBarWidthPx = [] { return kWidthPx; };
    views::InstallSignalView(registry, *s, v, *r, std::move(hooks));
  }
};

// Wraps the registry's actions so that each step's wall time adds up in
// `spent` under its counter name.
void TimeSteps(views::ViewRegistry& registry, std::map<std::string, double>& spent) {
  using S = views::RefreshStep;
  const std::pair<S, const char*> named[] = {
      {S::SpectrumFirst, "ms_spectrum"},       {S::Probe, "ms_probe"},
      {S::SignalMax, "ms_signal_max"},         {S::Otmetchick, "ms_marks"},
      {S::SignalSetMaxValueMas, "ms_scale"},   {S::SignalAccountChannelY0, "ms_layout"},
      {S::BuildSignal, "ms_thin_and_paint"},   {S::SignalStatusBarParameter, "ms_bands_and_bar"}};
  for (const auto& [step, name] : named) {
    std::function<void()> action = std::move(registry[step]);
    if (!action) continue;
    registry[step] = [action, &total = spent[name]] {
      const auto t0 = std::chrono::steady_clock::now();
      action();
      total += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
    };
  }
}

void BM_ViewRefreshSignal(benchmark::State& state) {
  Bench b(static_cast<int>(state.range(0)));
  std::map<std::string, double> spent;
  TimeSteps(b.registry, spent);
  // The first refresh finds each channel's extremes for the automatic
  // scales, which later ones keep while the samples stay: left out of the
  // steps' times.
  views::ViewRefresh(*b.s, b.registry);
  for (auto& entry : spent) entry.second = 0.0;
  b.panels = 0;
  for (auto _ : state) {
    views::ViewRefresh(*b.s, b.registry);
    benchmark::DoNotOptimize(b.image.constBits());
  }
  const double runs = static_cast<double>(std::max<int64_t>(1, state.iterations()));
  state.counters["refreshes_per_s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["panels"] = static_cast<double>(b.panels) / runs;
  for (const auto& [name, ms] : spent) state.counters[name] = ms / runs;
}

// The column reads of one refresh of the recording above, as plain strided
// loops: the spectrum's (to doubles), the band levels' and the marker
// detector's (to codes), the signal statistics' (both channels in one pass)
// and the thinning's (one pass a channel).
void BM_StorePassesOfARefresh(benchmark::State& state) {
  const int samples = static_cast<int>(state.range(0));
  auto s = Recording(samples);
  const int16_t* store = s->SignalData.data();
  std::vector<double> doubles(static_cast<size_t>(samples));
  std::vector<int16_t> codes(static_cast<size_t>(samples));
  auto column = [&](int channel, auto* out) {
    const int16_t* at = store + (channel - 1);
    for (int i = 0; i < samples; ++i) out[i] = at[static_cast<size_t>(i) * kMaxChannels];
    benchmark::DoNotOptimize(out);
  };
  auto extremes = [&](int channel) {
    const int16_t* at = store + (channel - 1);
    int16_t least = at[0], greatest = at[0];
    for (int i = 0; i < samples; ++i) {
      least = std::min(least, at[static_cast<size_t>(i) * kMaxChannels]);
      greatest = std::max(greatest, at[static_cast<size_t>(i) * kMaxChannels]);
    }
    benchmark::DoNotOptimize(least);
    benchmark::DoNotOptimize(greatest);
  };
  for (auto _ : state) {
    column(1, doubles.data());
    column(1, codes.data());
    column(2, codes.data());
    int64_t sum1 = 0, sum2 = 0;
    for (int i = 0; i < samples; ++i) {
      sum1 += store[static_cast<size_t>(i) * kMaxChannels];
      sum2 += store[static_cast<size_t>(i) * kMaxChannels + 1];
    }
    benchmark::DoNotOptimize(sum1);
    benchmark::DoNotOptimize(sum2);
    extremes(1);
    extremes(2);
  }
}

void BM_ViewRefreshSignalEightOverlaid(benchmark::State& state) {
  Bench b(static_cast<int>(state.range(0)), 8);
  for (auto _ : state) {
    views::ViewRefresh(*b.s, b.registry);
    benchmark::DoNotOptimize(b.image.constBits());
  }
  state.counters["refreshes_per_s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// Baseline: the engine's thinning of the same stretch to the same width.
void BM_AccountDataBuildSignal(benchmark::State& state) {
  const int samples = static_cast<int>(state.range(0));
  auto s = Recording(samples);
  std::vector<int32_t> columns(static_cast<size_t>(kWidthPx) * 2);
  const double pixelsPerSample = static_cast<double>(kWidthPx) / samples;
  for (auto _ : state) {
    AccountDataBuildSignal(kWidthPx, kHeightPx / 2, pixelsPerSample, 0.05, 1.25, kHeightPx, 0, s->SignalData.data(),
                           samples, 1, samples, s->channels.Ku.data(), s->channels.Zero.data(), s->channels.Volume.data(),
                           s->SignalOffset.data(), columns.data());
    benchmark::DoNotOptimize(columns.data());
  }
  state.counters["calls_per_s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// Wall-clock time: the engine hands long stretches to a second thread.
BENCHMARK(BM_AccountDataBuildSignal)->Arg(32768)->Arg(1048576)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ViewRefreshSignal)->Arg(32768)->Arg(1048576)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_StorePassesOfARefresh)->Arg(1048576)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ViewRefreshSignalEightOverlaid)->Arg(1048576)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
