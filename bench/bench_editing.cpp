// Undo of the signal edits. Targets: an undo of a cut over a full store
// (1,048,576 x 32) at no more than twice a plain copy of the store; the
// memory of 20 undo steps of single-channel edits under 10 % of the store.
// The memory depends on how well the codes pack: with AQX_BENCH_RECORDING
// naming a recording (aquilonix-tool demo makes one), its channels tiled
// over the store are measured as well.

#include "Compare.h"

#include "core/AppState.h"
#include "files/DataFile.h"
#include "views/edit/EditHistory.h"
#include "views/edit/SignalEdit.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
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

// The used channels of the recording named by AQX_BENCH_RECORDING repeated
// over every row and channel of a full store; null without one.
std::unique_ptr<AppState> RecordingStore() {
  const char* path = std::getenv("AQX_BENCH_RECORDING");
  if (!path) return nullptr;
  auto recording = std::make_unique<AppState>();
  recording->PathFileData = QString::fromLocal8Bit(path);
  recording->BatchMode = true;
  ScriptedPrompts prompts;
  if (!ReadDataFile(*recording, prompts) || recording->SignalDataN < 1) return nullptr;
  std::vector<int> used;
  for (int c = 1; c <= kMaxChannels; ++c)
    if (recording->channels.Channel[c] == 1) used.push_back(c);
  if (used.empty()) return nullptr;
  auto s = FullStore();
  for (int k = 1; k <= kMaxSamples; ++k)
    for (int c = 1; c <= kMaxChannels; ++c)
      s->SignalData.at(k, c) = recording->SignalData.at((k - 1) % recording->SignalDataN + 1,
                                                        used[static_cast<size_t>(c - 1) % used.size()]);
  return s;
}

// One undo (or the redo after it: the same exchange) of a cut of all 32
// channels, against one memcpy of the whole store into a second buffer.
// With `older`, another edit follows the cut and is undone first: the cut
// is then no longer the newest step and its codes are packed, so the
// exchange unpacks them and packs what the store holds.
void UndoCutAgainstStoreCopy(benchmark::State& state, bool older) {
  auto s = FullStore();
  ScriptedPrompts prompts;
  views::EditHistory history;
  s->SelectFirst = 400000;
  s->SelectLast = 500000;
  views::SignalDelete(*s, prompts, history);
  if (older) {
    s->FirstChannelActive = 1;
    s->SelectFirst = s->SelectLast = 10;
    views::SignalZero(*s, prompts, history);
    history.undo(*s);
  }
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

void BM_UndoCutFullStore(benchmark::State& state) { UndoCutAgainstStoreCopy(state, false); }
BENCHMARK(BM_UndoCutFullStore)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);

void BM_UndoOlderCutFullStore(benchmark::State& state) { UndoCutAgainstStoreCopy(state, true); }
BENCHMARK(BM_UndoOlderCutFullStore)->UseManualTime()->Iterations(6)->Unit(benchmark::kMillisecond);

// The memory twenty undo steps keep, in percent of the store: zero, smooth
// and paste over a stretch of 65,536 samples of one channel each, or over
// whole channels (the paste then still 65,536 samples). Second argument:
// 0 the synthetic store, 1 the recording of AQX_BENCH_RECORDING.
void BM_TwentySingleChannelEditsMemory(benchmark::State& state) {
  auto s = state.range(1) != 0 ? RecordingStore() : FullStore();
  if (!s) {
    state.SkipWithError("AQX_BENCH_RECORDING names no readable recording");
    return;
  }
  ScriptedPrompts prompts;
  const bool wholeChannel = state.range(0) != 0;
  size_t bytes = 0;
  size_t redoBytes = 0;
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
    redoBytes = history.codeBytes();
  }
  state.counters["undo_MiB"] = static_cast<double>(bytes) / (1024.0 * 1024.0);
  state.counters["percent_of_store"] = 100.0 * static_cast<double>(bytes) / SampleStore::kBytes;
  state.counters["redo_percent_of_store"] = 100.0 * static_cast<double>(redoBytes) / SampleStore::kBytes;
}
BENCHMARK(BM_TwentySingleChannelEditsMemory)
    ->Args({0, 0})
    ->Args({1, 0})
    ->Args({0, 1})
    ->Args({1, 1})
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
