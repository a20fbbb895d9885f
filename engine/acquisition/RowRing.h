#pragma once
// The rows the acquisition thread hands to the application: a ring of whole
// rows with one writer (the thread) and one reader (the application's poll).
// The reader pins the stretch it copies and copies it without holding the
// lock; the writer waits only if it would overwrite a pinned row, so a poll
// never waits for more than a few bookkeeping steps and always sees whole,
// consecutive rows.

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

namespace aqx::acq {

class RowRing {
 public:
  // False when the memory cannot be had.
  bool allocate(int64_t capacityRows, int rowWidth);
  int64_t capacityRows() const { return capacityRows_; }
  int rowWidth() const { return rowWidth_; }

  // Appends rows (at most the capacity at once). Returns false, having
  // written nothing more, when abort() was called while it waited.
  bool append(const int16_t* rows, int64_t count);
  void abort();

  // Rows appended so far.
  int64_t totalRows() const;

  // Chooses a stretch from the number of rows appended, pins it and hands it
  // to `visit` as one or two runs of consecutive rows:
  //   choose(total) -> {first, count}, rows counted from 0 since the start;
  //   visit(rowsPointer, count, indexInStretch).
  // Returns the stretch chosen.
  template <class Choose, class Visit>
  std::pair<int64_t, int64_t> read(Choose&& choose, Visit&& visit);

 private:
  std::pair<int64_t, int64_t> pin(std::pair<int64_t, int64_t> wanted);
  void unpin();

  std::unique_ptr<int16_t[]> rows_;
  int64_t capacityRows_ = 0;
  int rowWidth_ = 0;

  mutable std::mutex mutex_;
  std::condition_variable unpinned_;
  int64_t total_ = 0;
  bool pinned_ = false;
  int64_t pinFirst_ = 0;
  bool aborted_ = false;
};

template <class Choose, class Visit>
std::pair<int64_t, int64_t> RowRing::read(Choose&& choose, Visit&& visit) {
  std::pair<int64_t, int64_t> range;
  {
    std::lock_guard lock(mutex_);
    range = pin(choose(total_));
  }
  const auto [first, count] = range;
  int64_t done = 0;
  while (done < count) {
    const int64_t slot = (first + done) % capacityRows_;
    const int64_t run = std::min(count - done, capacityRows_ - slot);
    visit(rows_.get() + slot * rowWidth_, run, done);
    done += run;
  }
  unpin();
  return range;
}

}  // namespace aqx::acq
