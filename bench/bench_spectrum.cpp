// The spectrum window's refresh at 1920 x 1080 over 1,048,576 samples (the
// spectrum, the probes, the picture painted, the parameter bar) against the
// bare AccountSpectrFull of the same stretch; and a cascade of 64 parts over
// the same store against 64 bare spectra of its parts. Targets: at most 1.5
// times the baseline each, and 20 refreshes a second.

#include "Compare.h"

#include "core/AppState.h"
#include "engine/Aquilonix.h"
#include "ui/paint/PaintDrawList.h"
#include "views/Analysis.h"
#include "views/ViewRefresh.h"
#include "views/spectrum/SpectrumRefresh.h"

#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace {

using namespace aqx;

constexpr int kWidthPx = 1920;
constexpr int kHeightPx = 1080;
constexpr int kSamples = 1048576;
constexpr int kParts = 64;

// Vibration on channel 1: the rotor's harmonics and a blade tone, 2677
// samples a second.
std::unique_ptr<AppState> Recording() {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = s->channels.Active[c] = 0;
  s->channels.Channel[1] = s->channels.Active[1] = 1;
  s->channels.Type[1] = 1;
  s->channels.Ku[1] = 8.0f;
  RecountChannelUsedCount(*s);
  s->FirstChannelActive = 1;
  s->SignalDataN = kSamples;
  s->ViewFirst = 1;
  s->ViewLast = kSamples;
  s->FreqDesc = 2677;
  s->BlockSizeFFT = kMaxSamples;
  s->options.spectr.ViewGarmonic = true;
  s->channels.ProbeFreq[1] = {2.76f, 4.14f, 50.0f, 100.0f, -1.0f, -1.0f, -1.0f};
  for (int i = 1; i <= kSamples; ++i) {
    const double w = 2 * std::numbers::pi * s->FreqOneGarmonic * i / s->FreqDesc;
    s->SignalData.at(i, 1) = static_cast<int16_t>(std::lround(2000 * std::sin(w) + 300 * std::sin(2 * w) + 80 * std::sin(16 * w)));
  }
  return s;
}

void Rate(benchmark::State& state, const char* name) {
  state.counters[name] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void BM_AccountSpectrFull(benchmark::State& state) {
  auto s = Recording();
  auto r = std::make_unique<views::AnalysisResults>();
  for (auto _ : state) {
    AccountSpectrFull(nullptr, nullptr, r->SpectrPhase.data(), nullptr, r->SpectrAmplitude.data(), 0, 0, 1,
                      kSamples, kMaxSamples, kSamples, s->SignalData.data(), 1, nullptr, nullptr, 1, s->BlockSizeFFT,
                      &s->StepDesc, s->FreqDesc, &s->SpectrLineCount, &r->SpectrMax, s->channels.Ku.data(), 0, nullptr, -1);
    benchmark::DoNotOptimize(r->SpectrAmplitude.data());
  }
  Rate(state, "calls_per_s");
}

void BM_ViewRefreshSpectr(benchmark::State& state) {
  auto s = Recording();
  s->ViewOpenFlags[frmViewSpectr] = true;
  auto r = std::make_unique<views::AnalysisResults>();
  views::SpectrViewState v;
  v.widthPx = kWidthPx;
  v.heightPx = kHeightPx;
  QImage image(kWidthPx, kHeightPx, QImage::Format_RGB32);
  const QFont font = ui::DefaultViewFont();
  const ui::QtFontMetrics metrics(font);
  views::ViewRegistry registry;
  registry.runOn = true;  // no notice window in a benchmark
  views::InstallEngineSteps(registry, *s, *r);
  int64_t panels = 0;
  views::SpectrWindowHooks hooks;
  hooks.fm = metrics.metrics();
  hooks.showPicture = [&](views::DrawList&& list) {
    QPainter painter(&image);
    ui::PaintDrawList(painter, list, font);
  };
  hooks.showParameterBar = [&](views::ParameterBar&& bar) { panels += static_cast<int64_t>(bar.panels.size()); };
  hooks.parameterBarWidthPx = [] { return kWidthPx; };
  views::InstallSpectrView(registry, *s, v, *r, std::move(hooks));
  for (auto _ : state) {
    views::ViewRefresh(*s, registry);
    benchmark::DoNotOptimize(image.constBits());
  }
  Rate(state, "refreshes_per_s");
  state.counters["panels"] = static_cast<double>(panels) / static_cast<double>(std::max<int64_t>(1, state.iterations()));
}

// The cascade's refresh (64 spectra, their columns, the picture painted)
// against the bare spectra of its 64 parts, alternately in the same run.
void BM_CascadeAgainstBareSpectra(benchmark::State& state) {
  auto s = Recording();
  s->ViewOpenFlags[frmViewSpectrum] = true;
  s->options.spectrum.SpectrumViewType = static_cast<int32_t>(state.range(0));
  auto r = std::make_unique<views::AnalysisResults>();
  views::CascadeViewState v;
  v.widthPx = kWidthPx;
  v.heightPx = kHeightPx;
  v.CascadeN = kParts;
  views::PlaceCorner(v, 0.0, 0.0);
  QImage image(kWidthPx, kHeightPx, QImage::Format_RGB32);
  const QFont font = ui::DefaultViewFont();
  views::ViewRegistry registry;
  registry.runOn = true;
  views::CascadeWindowHooks hooks;
  hooks.showPicture = [&](views::DrawList&& list) {
    QPainter painter(&image);
    ui::PaintDrawList(painter, list, font);
  };
  views::InstallCascadeView(registry, *s, v, std::move(hooks));
  const int per = kSamples / kParts;
  views::ViewRefresh(*s, registry);
  aqx::bench::Compare(
      state,
      [&] {
        views::ViewRefresh(*s, registry);
        benchmark::DoNotOptimize(image.constBits());
      },
      [&] {
        for (int part = 0; part < kParts; ++part) {
          AccountSpectrFull(nullptr, nullptr, nullptr, nullptr, r->SpectrAmplitude.data(), 0, 0, part * per + 1,
                            (part + 1) * per, kMaxSamples, kSamples, s->SignalData.data(), 1, nullptr, nullptr, 1,
                            s->BlockSizeFFT, &s->StepDesc, s->FreqDesc, &s->SpectrLineCount, &r->SpectrMax,
                            s->channels.Ku.data(), 0, nullptr, 0);
          benchmark::DoNotOptimize(r->SpectrAmplitude.data());
        }
      });
  state.counters["cascades_per_s"] = 1e3 / state.counters["ours_wall_ms"];
}

// Wall-clock time: the engine hands long transforms to a second thread.
// The first transform of a size makes its plan; a few seconds each keep that
// out of the figures.
BENCHMARK(BM_AccountSpectrFull)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);
BENCHMARK(BM_ViewRefreshSpectr)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);
BENCHMARK(BM_CascadeAgainstBareSpectra)
    ->ArgName("histogram0_graph1")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(61)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
