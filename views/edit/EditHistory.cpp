#include "views/edit/EditHistory.h"

#include "views/edit/CodePacking.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

namespace aqx::views {

EditValues EditValues::Of(const AppState& s) {
  EditValues v;
  v.FreqDesc = s.FreqDesc;
  v.StepDesc = s.StepDesc;
  v.SpectrLineCount = s.SpectrLineCount;
  v.FreqOneGarmonic = s.FreqOneGarmonic;
  v.SelectFirst = s.SelectFirst;
  v.SelectLast = s.SelectLast;
  v.DataSaved = s.DataSaved;
  return v;
}

void EditValues::applyTo(AppState& s) const {
  s.FreqDesc = FreqDesc;
  s.StepDesc = StepDesc;
  s.SpectrLineCount = SpectrLineCount;
  s.FreqOneGarmonic = FreqOneGarmonic;
  s.SelectFirst = SelectFirst;
  s.SelectLast = SelectLast;
  s.DataSaved = DataSaved;
}

namespace {

bool AllChannels(const std::vector<int>& channels) {
  if (channels.size() != static_cast<size_t>(kMaxChannels)) return false;
  for (size_t i = 0; i < channels.size(); ++i)
    if (channels[i] != static_cast<int>(i) + 1) return false;
  return true;
}

// Exchanges two equal stretches of memory in one pass: each byte is read
// and written once on either side, in blocks the compiler keeps in vector
// registers.
void SwapBytes(int16_t* a, int16_t* b, size_t count) {
  constexpr size_t kBlockCodes = 16;
  size_t i = 0;
  for (; i + kBlockCodes <= count; i += kBlockCodes) {
    std::array<int16_t, kBlockCodes> x, y;
    std::memcpy(x.data(), a + i, sizeof(x));
    std::memcpy(y.data(), b + i, sizeof(y));
    std::memcpy(a + i, y.data(), sizeof(y));
    std::memcpy(b + i, x.data(), sizeof(x));
  }
  for (; i < count; ++i) std::swap(a[i], b[i]);
}

size_t RowOffset(int row) { return static_cast<size_t>(row - 1) * SampleStore::kColumns; }

// The channels as columns of the store, from 0.
std::vector<size_t> StoreColumns(const std::vector<int>& channels) {
  std::vector<size_t> columns;
  for (int c : channels) columns.push_back(static_cast<size_t>(c - 1));
  return columns;
}

}  // namespace

void EditHistory::noteSaved(const AppState& s) {
  if (s.DataSaved) savedPosition_ = static_cast<long>(position_);
}

void EditHistory::pack(Step& step) {
  if (step.packed) return;
  std::vector<size_t> columns(step.channels.size());
  std::iota(columns.begin(), columns.end(), size_t{0});
  step.columns = PackColumns(step.codes.data(), step.rows(), columns.size(), columns);
  std::vector<int16_t>().swap(step.codes);
  step.packed = true;
}

void EditHistory::begin(const AppState& s, int firstRow, int lastRow, std::vector<int> channels) {
  if (!matches(s)) clear();
  noteSaved(s);
  // What redo could bring back is gone once the recording takes another road.
  steps_.erase(steps_.begin() + static_cast<long>(position_), steps_.end());
  if (savedPosition_ > static_cast<long>(position_)) savedPosition_ = -1;
  // A large step kept unpacked for a quick undo is no longer the newest.
  for (Step& older : steps_) pack(older);
  Step step;
  step.firstRow = std::clamp(firstRow, 1, kMaxSamples);
  step.lastRow = std::clamp(lastRow, step.firstRow - 1, kMaxSamples);
  step.channels = std::move(channels);
  step.values = EditValues::Of(s);
  const size_t rows = step.rows();
  const size_t width = step.channels.size();
  const int16_t* store = s.SignalData.data() + RowOffset(step.firstRow);
  if (rows * width <= kUnpackedStepCodes) {
    step.packed = true;
    step.columns = PackColumns(store, rows, SampleStore::kColumns, StoreColumns(step.channels));
  } else if (AllChannels(step.channels)) {
    step.codes.assign(store, store + rows * width);
  } else {
    step.codes.resize(rows * width);
    for (size_t r = 0; r < rows; ++r)
      for (size_t k = 0; k < width; ++k)
        step.codes[r * width + k] = s.SignalData.at(step.firstRow + static_cast<int>(r), step.channels[k]);
  }
  steps_.push_back(std::move(step));
  pending_ = true;
}

void EditHistory::commit(AppState& s) {
  if (!pending_) return;
  pending_ = false;
  s.SignalData.markWritten();
  writeCount_ = s.SignalData.writeCount();
  position_ = steps_.size();
  while (steps_.size() > depth_) {
    steps_.pop_front();
    --position_;
    --savedPosition_;
  }
  if (savedPosition_ < -1) savedPosition_ = -1;
}

void EditHistory::abandon() {
  if (!pending_) return;
  pending_ = false;
  steps_.pop_back();
}

bool EditHistory::matches(const AppState& s) const {
  return !steps_.empty() && s.SignalData.writeCount() == writeCount_;
}

bool EditHistory::canUndo(const AppState& s) const { return matches(s) && position_ > 0; }

bool EditHistory::canRedo(const AppState& s) const { return matches(s) && position_ < steps_.size(); }

void EditHistory::swapWithState(Step& step, AppState& s) {
  const size_t rows = step.rows();
  const size_t width = step.channels.size();
  if (step.packed) {
    int16_t* store = s.SignalData.data() + RowOffset(step.firstRow);
    const std::vector<size_t> columns = StoreColumns(step.channels);
    std::vector<std::vector<uint8_t>> present = PackColumns(store, rows, SampleStore::kColumns, columns);
    UnpackColumns(step.columns, store, rows, SampleStore::kColumns, columns);
    step.columns = std::move(present);
  } else if (AllChannels(step.channels)) {
    SwapBytes(step.codes.data(), s.SignalData.data() + RowOffset(step.firstRow), rows * width);
  } else {
    for (size_t r = 0; r < rows; ++r)
      for (size_t k = 0; k < width; ++k)
        std::swap(step.codes[r * width + k], s.SignalData.at(step.firstRow + static_cast<int>(r), step.channels[k]));
  }
  const EditValues now = EditValues::Of(s);
  step.values.applyTo(s);
  step.values = now;
}

bool EditHistory::undo(AppState& s) {
  if (!canUndo(s)) return false;
  noteSaved(s);
  --position_;
  swapWithState(steps_[position_], s);
  s.DataSaved = savedPosition_ == static_cast<long>(position_);
  s.SignalData.markWritten();
  writeCount_ = s.SignalData.writeCount();
  return true;
}

bool EditHistory::redo(AppState& s) {
  if (!canRedo(s)) return false;
  noteSaved(s);
  swapWithState(steps_[position_], s);
  ++position_;
  s.DataSaved = savedPosition_ == static_cast<long>(position_);
  s.SignalData.markWritten();
  writeCount_ = s.SignalData.writeCount();
  return true;
}

void EditHistory::clear() {
  steps_.clear();
  position_ = 0;
  pending_ = false;
  savedPosition_ = -1;
}

size_t EditHistory::codeBytes() const {
  return std::accumulate(steps_.begin(), steps_.end(), size_t{0},
                         [](size_t sum, const Step& st) {
                           sum += st.codes.capacity() * sizeof(int16_t);
                           for (const std::vector<uint8_t>& column : st.columns) sum += column.capacity();
                           return sum;
                         });
}

}  // namespace aqx::views
