// The shaft and rotor views against plain passes over the same samples.
// Targets: the rotor form of 1,048,576 samples with 96 poles at no more than
// five times one pass that reads the turn probe and sums squares per pole
// window; a trajectory refresh at 1,048,576 samples on 1920 x 1080 at 20 a
// second or more.

#include "core/AppState.h"
#include "ui/paint/PaintDrawList.h"
#include "views/Analysis.h"
#include "views/ViewRefresh.h"
#include "views/rotor/RotorForm.h"
#include "views/trajectory/TraectoriaRefresh.h"

#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

namespace {

using namespace aqx;

constexpr int kSamples = 1048576;
constexpr int kPoles = 96;
constexpr int kPerPole = 208;  // 19,968 samples a revolution: 52 revolutions
constexpr int kWidthPx = 1920;
constexpr int kHeightPx = 1080;

// Marker on channel 1, turn probe on 2 (half sines, every seventh pole 4 %
// strong), run-out ВБ and ЛБ on 3 and 4 (a 1x circle, a 2x and noise).
std::unique_ptr<AppState> Recording() {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = s->channels.Active[c] = 0;
  const int types[] = {3, 4, 0, 0};
  for (int c = 1; c <= 4; ++c) {
    s->channels.Channel[c] = 1;
    s->channels.Type[c] = types[c - 1];
    s->channels.Ku[c] = c == 1 ? 1.25f : 8.0f;
  }
  s->channels.Active[3] = 1;
  s->channels.Direct[3] = QStringLiteral("ВБ");
  s->channels.Direct[4] = QStringLiteral("ЛБ");
  RecountChannelUsedCount(*s);
  s->FirstChannelActive = 3;
  s->Polus = kPoles;
  s->SignalDataN = kSamples;
  s->ViewFirst = 1;
  s->ViewLast = kSamples;
  s->FreqDesc = 20000;
  s->FreqOneGarmonic = 20000.0 / (kPoles * kPerPole);
  const int turn = kPoles * kPerPole;
  uint32_t noise = 12345;
  for (int i = 0; i < kSamples; ++i) {
    const int t = i - kPerPole;
    const int inTurn = ((t % turn) + turn) % turn;
    const int pole = inTurn / kPerPole + 1;
    const double strength = pole % 7 == 0 ? 1.04 : 1.0;
    const double emf = (pole % 2 ? 1 : -1) * 2000 * strength * std::sin(std::numbers::pi * (inTurn % kPerPole) / kPerPole);
    s->SignalData.at(i + 1, 2) = static_cast<int16_t>(std::lround(emf));
    s->SignalData.at(i + 1, 1) = ((t + kPerPole / 2) % turn + turn) % turn < 20 ? 3000 : 0;
    const double w = 2 * std::numbers::pi * inTurn / turn;
    noise = noise * 1664525u + 1013904223u;
    const double jitter = static_cast<double>(noise >> 24) / 32.0 - 4.0;
    s->SignalData.at(i + 1, 3) = static_cast<int16_t>(std::lround(3200 + 320 * std::sin(w) + 80 * std::sin(2 * w) + jitter));
    s->SignalData.at(i + 1, 4) = static_cast<int16_t>(std::lround(3200 + 320 * std::cos(w) - 80 * std::sin(2 * w) - jitter));
  }
  return s;
}

void BM_FormaRotorAccount(benchmark::State& state) {
  auto s = Recording();
  auto r = std::make_unique<views::FormaRotorResults>();
  for (auto _ : state) {
    const int result = views::RunFormaRotorAccount(*s, *r);
    benchmark::DoNotOptimize(result);
    if (result != 0) state.SkipWithError("no rotor form");
  }
  state.counters["forms"] = r->FormaRotorN;
}

// Baseline: one pass over the turn probe, the squares summed per pole window.
void BM_PoleWindowSquares(benchmark::State& state) {
  auto s = Recording();
  std::vector<double> sums(static_cast<size_t>(kSamples / kPerPole + 1));
  for (auto _ : state) {
    std::fill(sums.begin(), sums.end(), 0.0);
    const int16_t* row = s->SignalData.data() + 1;
    for (int i = 0; i < kSamples; ++i, row += SampleStore::kColumns) {
      const double v = *row;
      sums[static_cast<size_t>(i / kPerPole)] += v * v;
    }
    benchmark::DoNotOptimize(sums.data());
  }
}

struct TraectoriaBench {
  std::unique_ptr<AppState> s = Recording();
  std::unique_ptr<views::AnalysisResults> r = std::make_unique<views::AnalysisResults>();
  views::TraectoriaViewState v;
  views::ViewRegistry registry;
  QImage image{kWidthPx, kHeightPx, QImage::Format_RGB32};
  QFont font = ui::DefaultViewFont();
  std::unique_ptr<ui::QtFontMetrics> metrics = std::make_unique<ui::QtFontMetrics>(font);

  TraectoriaBench() {
    s->ViewOpenFlags[frmViewTraectoria] = true;
    views::AccountSignalMaxAll(*s);
    views::InitTraectoriaView(*s, v);
    views::ResizeTraectoria(v, kWidthPx, kHeightPx);
    registry.runOn = true;  // no notice window in a benchmark
    views::InstallEngineSteps(registry, *s, *r);
    views::TraectoriaWindowHooks hooks;
    hooks.fm = metrics->metrics();
    hooks.showPicture = [this](views::DrawList&& list) {
      QPainter painter(&image);
      ui::PaintDrawList(painter, list, font);
    };
    views::InstallTraectoriaView(registry, *s, v, *r, std::move(hooks));
  }
};

void BM_ViewRefreshTraectoria(benchmark::State& state) {
  TraectoriaBench b;
  for (auto _ : state) {
    views::ViewRefresh(*b.s, b.registry);
    benchmark::DoNotOptimize(b.image.constBits());
  }
  state.counters["refreshes_per_s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// The trajectory's own step alone: prepare, draw, paint.
void BM_BuildTraectoria(benchmark::State& state) {
  TraectoriaBench b;
  views::ViewRefresh(*b.s, b.registry);
  for (auto _ : state) {
    b.registry[views::RefreshStep::BuildTraectoria]();
    benchmark::DoNotOptimize(b.image.constBits());
  }
  state.counters["builds_per_s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// Baseline: one pass over the pair, each sample mapped to its pixel.
void BM_PairPixelPass(benchmark::State& state) {
  auto s = Recording();
  std::vector<uint8_t> covered(static_cast<size_t>(kWidthPx) * kHeightPx);
  for (auto _ : state) {
    std::fill(covered.begin(), covered.end(), 0);
    const int16_t* row = s->SignalData.data() + 2;
    for (int i = 0; i < kSamples; ++i, row += SampleStore::kColumns) {
      const int x = std::clamp(kWidthPx / 2 + (row[1] - 3200) / 4, 0, kWidthPx - 1);
      const int y = std::clamp(kHeightPx / 2 - (row[0] - 3200) / 4, 0, kHeightPx - 1);
      covered[static_cast<size_t>(y) * kWidthPx + static_cast<size_t>(x)] = 1;
    }
    benchmark::DoNotOptimize(covered.data());
  }
}

// Wall-clock time: the engine hands long stretches to a second thread.
BENCHMARK(BM_PoleWindowSquares)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_FormaRotorAccount)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PairPixelPass)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_BuildTraectoria)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ViewRefreshTraectoria)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
