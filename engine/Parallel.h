#pragma once
// Work over long stretches of the sample store, split between the caller's
// thread and one helper. Reading one channel out of the store touches a
// whole row for every sample, so such a pass is bound by memory latency,
// which two cores hide better than one.

#include "engine/EngineCommon.h"

#include <system_error>
#include <thread>

namespace aqx::engine {

// Below this many items a helper thread costs more than it saves.
inline constexpr size_t kSplitLeastItems = size_t{1} << 16;

// Runs `first` on a helper thread and `second` on this one, and returns when
// both are done; both on this thread when no helper can be had. Neither may
// throw.
template <class First, class Second>
void RunBoth(const First& first, const Second& second) {
  std::thread helper;
  if (std::thread::hardware_concurrency() >= 2) {
    try {
      helper = std::thread([&first] { first(); });
    } catch (const std::system_error&) {
      helper = std::thread();
    }
  }
  if (!helper.joinable()) first();
  second();
  if (helper.joinable()) helper.join();
}

// Runs work(begin, end) over [0, count): in two halves on two threads when
// the count is large, else whole on this thread. `work` must not throw.
template <class Work>
void SplitInTwo(size_t count, const Work& work, size_t leastItems = kSplitLeastItems) {
  if (count < leastItems) {
    work(size_t{0}, count);
    return;
  }
  const size_t half = count / 2;
  RunBoth([&work, half] { work(size_t{0}, half); }, [&work, half, count] { work(half, count); });
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
