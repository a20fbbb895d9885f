#include "engine/acquisition/RowRing.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace aqx::acq {

bool RowRing::allocate(int64_t capacityRows, int rowWidth) {
  if (capacityRows <= 0 || rowWidth <= 0) return false;
  try {
    rows_ = std::make_unique<int16_t[]>(static_cast<size_t>(capacityRows) * static_cast<size_t>(rowWidth));
  } catch (const std::bad_alloc&) {
    return false;
  }
  capacityRows_ = capacityRows;
  rowWidth_ = rowWidth;
  std::lock_guard lock(mutex_);
  total_ = 0;
  pinned_ = false;
  aborted_ = false;
  return true;
}

bool RowRing::append(const int16_t* rows, int64_t count) {
  count = std::min(count, capacityRows_);
  int64_t start = 0;
  {
    std::unique_lock lock(mutex_);
    // The new rows take the slots of rows [total - capacity, ...): wait while
    // any of those is pinned.
    unpinned_.wait(lock, [&] {
      return aborted_ || !pinned_ || total_ + count <= pinFirst_ + capacityRows_;
    });
    if (aborted_) return false;
    start = total_;
  }
  int64_t done = 0;
  while (done < count) {
    const int64_t slot = (start + done) % capacityRows_;
    const int64_t run = std::min(count - done, capacityRows_ - slot);
    std::memcpy(rows_.get() + slot * rowWidth_, rows + done * rowWidth_,
                static_cast<size_t>(run) * static_cast<size_t>(rowWidth_) * 2);
    done += run;
  }
  std::lock_guard lock(mutex_);
  total_ += count;
  return true;
}

void RowRing::abort() {
  std::lock_guard lock(mutex_);
  aborted_ = true;
  unpinned_.notify_all();
}

int64_t RowRing::totalRows() const {
  std::lock_guard lock(mutex_);
  return total_;
}

std::pair<int64_t, int64_t> RowRing::pin(std::pair<int64_t, int64_t> wanted) {
  // Only rows still in the ring can be had.
  int64_t first = std::max<int64_t>({wanted.first, total_ - capacityRows_, 0});
  int64_t end = std::min(wanted.first + wanted.second, total_);
  if (end < first) end = first;
  pinned_ = end > first;
  pinFirst_ = first;
  return {first, end - first};
}

void RowRing::unpin() {
  std::lock_guard lock(mutex_);
  pinned_ = false;
  unpinned_.notify_all();
}

}  // namespace aqx::acq
