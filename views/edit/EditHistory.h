#pragma once
// Undo and redo of the edits of a recording in memory. Each step keeps only
// what its edit touches: a stretch of rows of the channels it changed, and
// the handful of recording values an edit may change (rate, selection,
// rotor values, the saved flag). Undo exchanges the kept codes with those in
// the store, so the step then holds what redo puts back.
//
// The codes are kept packed without loss (CodePacking.h), channel by
// channel. A step of a large share of the store (a cut of every channel)
// stays as it is while it is the newest, so that undoing it at once is one
// exchange of memory; the next edit packs it.

#include "core/AppState.h"

#include <cstdint>
#include <deque>
#include <vector>

namespace aqx::views {

// The recording values an edit may change besides the samples.
struct EditValues {
  int32_t FreqDesc = 0;
  double StepDesc = 0.0;
  int32_t SpectrLineCount = 0;
  double FreqOneGarmonic = 0.0;
  int32_t SelectFirst = 0;
  int32_t SelectLast = 0;
  bool DataSaved = true;

  static EditValues Of(const AppState& s);
  void applyTo(AppState& s) const;
};

class EditHistory {
 public:
  static constexpr size_t kDefaultDepth = 20;
  explicit EditHistory(size_t depth = kDefaultDepth) : depth_(depth) {}

  // Before an edit: keeps rows firstRow..lastRow (1-based, held to the
  // store) of the listed channels and the recording values. Channels may be
  // empty when only values change. Drops what redo could still bring back.
  void begin(const AppState& s, int firstRow, int lastRow, std::vector<int> channels);
  // After the edit: the step is complete (the store's write count is taken,
  // so a load or a run in between makes the history stale).
  void commit(AppState& s);
  // The edit did nothing after all: forget its step.
  void abandon();

  // False when the samples were replaced by anything but the history's own
  // edits since (a load, a block, a run): the history is then of no use.
  bool matches(const AppState& s) const;
  bool canUndo(const AppState& s) const;
  bool canRedo(const AppState& s) const;
  bool undo(AppState& s);
  bool redo(AppState& s);
  void clear();

  size_t undoCount() const { return position_; }
  size_t redoCount() const { return steps_.size() - position_; }
  // Bytes held by the kept codes of all steps.
  size_t codeBytes() const;

 private:
  struct Step {
    int firstRow = 1;
    int lastRow = 0;
    std::vector<int> channels;
    bool packed = false;
    std::vector<int16_t> codes;               // unpacked: rows x channels, row-major
    std::vector<std::vector<uint8_t>> columns;  // packed: one per channel
    EditValues values;

    size_t rows() const { return static_cast<size_t>(lastRow - firstRow + 1); }
  };
  // Steps of more codes than this stay unpacked while they are the newest.
  static constexpr size_t kUnpackedStepCodes = SampleStore::kElements / 4;

  static void pack(Step& step);
  // Exchanges the kept codes and values with the state's.
  static void swapWithState(Step& step, AppState& s);
  // A save since the last look makes the present position the saved one.
  void noteSaved(const AppState& s);

  size_t depth_;
  std::deque<Step> steps_;
  size_t position_ = 0;       // steps before it can be undone
  bool pending_ = false;      // begin() without commit() yet
  uint64_t writeCount_ = 0;   // store's count after the last own change
  // Position whose store matches the file on disk; -1 when none does.
  long savedPosition_ = -1;
};

}  // namespace aqx::views
