// Undo of the signal edits. Targets: an undo of a cut over a full store
// (1,048,576 x 32) at no more than twice a plain copy of the store; the
// memory of 20 undo steps of single-channel edits under 10 % of the store.

#include "Compare.h"

#include "core/AppState.h"
#include "views/edit/EditHistory.h"
#include "views/edit/SignalEdit.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

using namespace aqx;

std::unique_ptr<AppState> FullStore() {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = s->channels.Active[c] = 1;
  RecountChannelUsedCount(*s);
  s->SignalDataN = kMaxSamples;
  s->ViewFirst = 1;
  s->ViewLast = kMaxSamples;
  for (int k = 1; k <= kMaxSamples; ++k)
    for (int c = 1; c <= kMaxChannels; ++c) s->SignalData.at(k, c) = static_cast<int16_t>((k * 7 + c * 131) % 4001 - 2000);
  return s;
}

// One undo (or the redo after it: the same exchange) of a cut of all 32
// channels, against one memcpy of the whole store into a second buffer.
void BM_UndoCutFullStore(benchmark::State& state) {
  auto s = FullStore();
  ScriptedPrompts prompts;
  views::EditHistory history;
  s->SelectFirst = 400000;
  s->SelectLast = 500000;
  views::SignalDelete(*s, prompts, history);
  std::vector<int16_t> copy(SampleStore::kElements);
  bench::Compare(
      state,
      [&] {
        if (history.canUndo(*s)) {
          history.undo(*s);
        } else {
          history.redo(*s);
        }
        benchmark::DoNotOptimize(s->SignalData.data());
      },
      [&] {
        std::memcpy(copy.data(), s->SignalData.data(), SampleStore::kBytes);
        benchmark::DoNotOptimize(copy.data());
      });
}
BENCHMARK(BM_UndoCutFullStore)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);

// The memory twenty undo steps keep, in percent of the store: zero, smooth
// and paste over a stretch of 65,536 samples of one channel each; and for
// comparison the phase shift, which changes a whole channel.
void BM_TwentySingleChannelEditsMemory(benchmark::State& state) {
  auto s = FullStore();
  ScriptedPrompts prompts;
  const bool wholeChannel = state.range(0) != 0;
  size_t bytes = 0;
  for (auto _ : state) {
    views::EditHistory history;
    views::SignalClipboard clipboard(65536, 5);
    for (int edit = 0; edit < 20; ++edit) {
      s->FirstChannelActive = 1 + edit % kMaxChannels;
      s->SelectFirst = wholeChannel ? 1 : 1 + edit * 50000;
      s->SelectLast = wholeChannel ? kMaxSamples : s->SelectFirst + 65535;
      switch (edit % 3) {
        case 0: views::SignalZero(*s, prompts, history); break;
        case 1: views::SignalSmoothly(*s, prompts, history); break;
        default: views::SignalPaste(*s, prompts, clipboard, history);
      }
    }
    bytes = history.codeBytes();
    while (history.undo(*s)) {
    }
  }
  state.counters["undo_MiB"] = static_cast<double>(bytes) / (1024.0 * 1024.0);
  state.counters["percent_of_store"] = 100.0 * static_cast<double>(bytes) / SampleStore::kBytes;
}
BENCHMARK(BM_TwentySingleChannelEditsMemory)->Arg(0)->Arg(1)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
