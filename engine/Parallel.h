#pragma once
// Work over long stretches of the sample store, shared between the caller's
// thread and one helper. Reading one channel out of the store touches a
// whole row for every sample, so such a pass is bound by memory latency,
// which two cores hide better than one.
//
// The work is cut into pieces that both threads take in turn, the next one
// not yet taken. A helper the system cannot run at once simply takes fewer
// pieces, or none, and the caller does the rest. No helper is started while
// every core already has a thread waiting to run (another program keeps the
// second core busy): it would get a share of that core and, holding a piece,
// make the caller wait for it, so the call would take longer than on one
// thread.

#include "engine/EngineCommon.h"

#include <atomic>
#include <cstdio>
#include <system_error>
#include <thread>

namespace aqx::engine {

// True when fewer threads are ready to run than the machine has cores, this
// one counted: a helper would find a core of its own. The count is the
// system's own (the fourth field of /proc/loadavg, "running/total").
inline bool CoreFreeForHelper(unsigned cores) {
  std::FILE* f = std::fopen("/proc/loadavg", "re");
  if (f == nullptr) return true;
  double averages[3];
  unsigned running = 0;
  const int read = std::fscanf(f, "%lf %lf %lf %u/", &averages[0], &averages[1], &averages[2], &running);
  std::fclose(f);
  return read != 4 || running < cores;
}

// Below this many rows of the store a helper thread costs more than it
// saves (measured with bench_engine: at 2^17 rows the spectrum, the thinning
// and the peak values were no faster on two threads than on one).
inline constexpr size_t kSplitLeastItems = size_t{1} << 18;
// Pieces a long pass is cut into.
inline constexpr size_t kPiecesPerPass = 8;

// True when a helper thread would have a core of its own now.
inline bool HelperCanRun() {
  const unsigned cores = std::thread::hardware_concurrency();
  return cores >= 2 && CoreFreeForHelper(cores);
}

// Runs task(i) for every i in [0, count) once, on this thread and one helper,
// and returns when all are done. Tasks must not throw.
template <class Task>
void RunTasks(size_t count, const Task& task) {
  std::atomic<size_t> next{0};
  auto takeTurns = [&next, &task, count] {
    for (size_t i = next.fetch_add(1, std::memory_order_relaxed); i < count;
         i = next.fetch_add(1, std::memory_order_relaxed)) {
      task(i);
    }
  };
  std::thread helper;
  if (count > 1 && HelperCanRun()) {
    try {
      helper = std::thread(takeTurns);
    } catch (const std::system_error&) {
      helper = std::thread();
    }
  }
  takeTurns();
  if (helper.joinable()) helper.join();
}

// Runs `first` and `second`, each on whichever thread comes to it first,
// and returns when both are done. Neither may throw.
template <class First, class Second>
void RunBoth(const First& first, const Second& second) {
  RunTasks(2, [&](size_t i) {
    if (i == 0) {
      first();
    } else {
      second();
    }
  });
}

// Runs work(begin, end) over pieces covering [0, count): shared between two
// threads when the count is large, else whole on this thread. `work` must
// not throw; `piece` (from 0) tells which piece a call is.
template <class Work>
void SplitInPieces(size_t count, const Work& work, size_t leastItems = kSplitLeastItems) {
  if (count < leastItems || count < kPiecesPerPass) {
    work(size_t{0}, count, size_t{0});
    return;
  }
  RunTasks(kPiecesPerPass, [&](size_t piece) {
    work(count * piece / kPiecesPerPass, count * (piece + 1) / kPiecesPerPass, piece);
  });
}

// The same when the pieces need not be told apart.
template <class Work>
void SplitInTwo(size_t count, const Work& work, size_t leastItems = kSplitLeastItems) {
  SplitInPieces(count, [&work](size_t begin, size_t end, size_t) { work(begin, end); }, leastItems);
}

// Copies `count` codes of one column (from 0), rows from `firstRow` (from 1)
// on, into `out`, converted to T.
template <class T>
void ReadColumn(const int16_t* signalData, int32_t firstRow, int32_t column, int32_t count, T* out) {
  const int16_t* src = CodePtr(signalData, firstRow, column);
  SplitInTwo(static_cast<size_t>(std::max(count, 0)), [src, out](size_t begin, size_t end) {
    for (size_t i = begin; i < end; ++i) out[i] = static_cast<T>(src[i * kColumns]);
  });
}

}  // namespace aqx::engine
