#include "engine/LaneFilter.h"

#include "engine/Parallel.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace aqx::engine {

namespace {
// The filter's passes wait on every sample's result, so two halves pay off
// on shorter records than a pass bound by reading memory does.
constexpr size_t kFilterSplitLeast = size_t{1} << 17;
}  // namespace

LaneCascade MakeLaneCascade(const std::array<Cascade, kLaneCount>& lanes) {
  LaneCascade c;
  for (int lane = 0; lane < kLaneCount; ++lane) {
    const std::vector<Section>& sections = lanes[static_cast<size_t>(lane)].sections;
    for (int stage = 0; stage < kLaneStages; ++stage) {
      const Section s = stage < static_cast<int>(sections.size()) ? sections[static_cast<size_t>(stage)]
                                                                  : Section{1.0, 0.0, 0.0, 0.0, 0.0};
      c.b0[stage][lane] = s.b0;
      c.b1[stage][lane] = s.b1;
      c.b2[stage][lane] = s.b2;
      c.a1[stage][lane] = s.a1;
      c.a2[stage][lane] = s.a2;
      c.gain[stage][lane] = s.dcGain();
    }
  }
  return c;
}

namespace {

using Lanes = double __attribute__((vector_size(kLaneCount * sizeof(double))));
using StoredLanes = float __attribute__((vector_size(kLaneCount * sizeof(float))));

// The coefficients and the state of the sections, held in registers over a
// pass. The passes are cloned for processors with AVX2 and FMA, where a
// stage costs five fused operations on all four lanes at once.
struct Sections {
  Lanes b0[kLaneStages], b1[kLaneStages], b2[kLaneStages], a1[kLaneStages], a2[kLaneStages];
  Lanes z1[kLaneStages], z2[kLaneStages];
};

void Load(const LaneCascade& c, Sections& s) {
  for (int k = 0; k < kLaneStages; ++k) {
    std::memcpy(&s.b0[k], c.b0[k].data(), sizeof(Lanes));
    std::memcpy(&s.b1[k], c.b1[k].data(), sizeof(Lanes));
    std::memcpy(&s.b2[k], c.b2[k].data(), sizeof(Lanes));
    std::memcpy(&s.a1[k], c.a1[k].data(), sizeof(Lanes));
    std::memcpy(&s.a2[k], c.a2[k].data(), sizeof(Lanes));
  }
}

// Each stage starts in its steady state for a constant input equal to the
// first value, so that a pass does not begin with a step.
void Settle(const LaneCascade& c, Sections& s, const double* first) {
  Lanes level;
  std::memcpy(&level, first, sizeof(Lanes));
  for (int k = 0; k < kLaneStages; ++k) {
    Lanes gain;
    std::memcpy(&gain, c.gain[k].data(), sizeof(Lanes));
    const Lanes out = gain * level;
    s.z2[k] = s.b2[k] * level - s.a2[k] * out;
    s.z1[k] = s.b1[k] * level - s.a1[k] * out + s.z2[k];
    level = out;
  }
}

// Inlined into both clones of each pass, so that it takes their instructions.
__attribute__((always_inline)) inline void RunStages(Sections& s, Lanes& v) {
  for (int k = 0; k < kLaneStages; ++k) {
    const Lanes y = s.b0[k] * v + s.z1[k];
    s.z1[k] = s.b1[k] * v - s.a1[k] * y + s.z2[k];
    s.z2[k] = s.b2[k] * v - s.a2[k] * y;
    v = y;
  }
}

template <class T>
__attribute__((always_inline)) inline void ForwardValues(Sections& state, const T* x, size_t count, float* forward) {
  Sections s = state;  // a local copy stays in registers
  for (size_t i = 0; i < count; ++i) {
    const auto value = static_cast<double>(x[i]);
    Lanes v = {value, value, value, value};
    RunStages(s, v);
    const StoredLanes stored = __builtin_convertvector(v, StoredLanes);
    std::memcpy(forward + i * kLaneCount, &stored, sizeof stored);
  }
  state = s;
}

AQX_CLONED_FOR_AVX2
void ForwardPass(Sections& state, const double* x, size_t count, float* forward) {
  ForwardValues(state, x, count, forward);
}

AQX_CLONED_FOR_AVX2
void ForwardPass(Sections& state, const int16_t* x, size_t count, float* forward) {
  ForwardValues(state, x, count, forward);
}

// Takes the extremes of each run into its slot, keeping what the slot holds
// already, so that a run may come in pieces.
AQX_CLONED_FOR_AVX2
void BackwardPass(Sections& state, const float* forward, const TrackedRun* runs, size_t runCount, double* least,
                  double* largest) {
  Sections s = state;
  for (size_t r = runCount; r-- > 0;) {
    const TrackedRun& run = runs[r];
    Lanes low;
    Lanes high;
    std::memcpy(&low, least + run.slot * kLaneCount, sizeof low);
    std::memcpy(&high, largest + run.slot * kLaneCount, sizeof high);
    for (size_t i = run.end; i-- > run.begin;) {
      StoredLanes stored;
      std::memcpy(&stored, forward + i * kLaneCount, sizeof stored);
      Lanes v = __builtin_convertvector(stored, Lanes);
      RunStages(s, v);
      low = v < low ? v : low;
      high = v > high ? v : high;
    }
    std::memcpy(least + run.slot * kLaneCount, &low, sizeof low);
    std::memcpy(largest + run.slot * kLaneCount, &high, sizeof high);
  }
  state = s;
}

std::array<double, kLaneCount> Broadcast(double v) { return {v, v, v, v}; }

std::array<double, kLaneCount> StoredAt(const float* forward, size_t i) {
  std::array<double, kLaneCount> out{};
  for (int lane = 0; lane < kLaneCount; ++lane) out[lane] = forward[i * kLaneCount + lane];
  return out;
}

double ValueAt(const LaneRecord& r, size_t i) {
  if (i < r.before.size()) return r.before[i];
  i -= r.before.size();
  if (i < r.codes.size()) return r.codes[i];
  return r.after[i - r.codes.size()];
}

// The forward pass over record[begin, end), its values to forward[0..).
void ForwardOver(Sections& s, const LaneRecord& r, size_t begin, size_t end, float* forward) {
  const size_t codesAt = r.before.size();
  const size_t afterAt = codesAt + r.codes.size();
  if (begin < codesAt) {
    const size_t hi = std::min(end, codesAt);
    ForwardPass(s, r.before.data() + begin, hi - begin, forward);
  }
  if (begin < afterAt && end > codesAt) {
    const size_t lo = std::max(begin, codesAt);
    const size_t hi = std::min(end, afterAt);
    ForwardPass(s, r.codes.data() + (lo - codesAt), hi - lo, forward + (lo - begin) * kLaneCount);
  }
  if (end > afterAt) {
    const size_t lo = std::max(begin, afterAt);
    ForwardPass(s, r.after.data() + (lo - afterAt), end - lo, forward + (lo - begin) * kLaneCount);
  }
}

// Values of the record worked out per chunk: one pass from the start,
// keeping only the state at the start of every chunk.
constexpr size_t kChunkValues = size_t{1} << 14;

class ForwardTrack {
 public:
  ForwardTrack(const LaneRecord& r, size_t begin, size_t end)
      : record_(r), begin_(begin), end_(end), states_((end - begin + kChunkValues - 1) / kChunkValues) {}

  // The pass from state s; `scratch` holds a chunk of values.
  void run(Sections s, float* scratch) {
    for (size_t k = 0; k < states_.size(); ++k) {
      states_[k] = s;
      ForwardOver(s, record_, chunkBegin(k), chunkEnd(k), scratch);
    }
    if (!states_.empty()) last_ = StoredAt(scratch, chunkEnd(states_.size() - 1) - chunkBegin(states_.size() - 1) - 1);
  }
  // The state the pass had at the track's start, the value it ended with.
  const Sections& first() const { return states_.front(); }
  const std::array<double, kLaneCount>& last() const { return last_; }

  size_t chunkOf(size_t i) const { return (i - begin_) / kChunkValues; }
  size_t chunkBegin(size_t k) const { return begin_ + k * kChunkValues; }
  size_t chunkEnd(size_t k) const { return std::min(end_, chunkBegin(k) + kChunkValues); }
  // The values of chunk k again, to scratch[0..).
  void values(size_t k, float* scratch) const {
    Sections s = states_[k];
    ForwardOver(s, record_, chunkBegin(k), chunkEnd(k), scratch);
  }

 private:
  const LaneRecord& record_;
  size_t begin_;
  size_t end_;
  std::vector<Sections> states_;
  std::array<double, kLaneCount> last_{};
};

// The backward pass over [begin, end) of a track, from state s, a chunk at a
// time; the extremes of the runs (ascending, inside the track) to their slots.
void BackwardOver(Sections& s, const ForwardTrack& track, size_t begin, size_t end,
                  const std::vector<TrackedRun>& runs, float* scratch, double* least, double* largest) {
  if (begin >= end) return;
  std::vector<TrackedRun> local;
  auto run = std::upper_bound(runs.begin(), runs.end(), end,
                              [](size_t at, const TrackedRun& r) { return at <= r.begin; });
  for (size_t k = track.chunkOf(end - 1) + 1; k-- > track.chunkOf(begin);) {
    const size_t chunkStart = track.chunkBegin(k);
    const size_t lo = std::max(begin, chunkStart);
    const size_t hi = std::min(end, track.chunkEnd(k));
    track.values(k, scratch);
    local.clear();
    // Runs come last first; those reaching below the chunk are kept for the next.
    for (auto r = run; r != runs.begin();) {
      --r;
      if (r->end <= lo) break;
      const size_t b = std::max(r->begin, lo);
      const size_t e = std::min(r->end, hi);
      if (b < e) local.push_back({b - chunkStart, e - chunkStart, r->slot});
      if (r->begin >= lo) run = r;
    }
    std::reverse(local.begin(), local.end());
    BackwardPass(s, scratch, local.data(), local.size(), least, largest);
  }
}

// The runs inside [begin, end), cut at its edges.
std::vector<TrackedRun> Clipped(const std::vector<TrackedRun>& runs, size_t begin, size_t end) {
  std::vector<TrackedRun> out;
  for (const TrackedRun& run : runs) {
    const size_t b = std::max(run.begin, begin);
    const size_t e = std::min(run.end, end);
    if (b < e) out.push_back({b, e, run.slot});
  }
  return out;
}

struct Extremes {
  std::vector<double> least;
  std::vector<double> largest;
  explicit Extremes(size_t slots)
      : least(slots * kLaneCount, std::numeric_limits<double>::infinity()),
        largest(slots * kLaneCount, -std::numeric_limits<double>::infinity()) {}
};

}  // namespace

void FilterLanesZeroPhase(const LaneCascade& c, const LaneRecord& record, const std::vector<TrackedRun>& runs,
                          size_t settleCount, double* least, double* largest) {
  const size_t count = record.size();
  if (count == 0) return;
  size_t slots = 0;
  for (const TrackedRun& run : runs) slots = std::max(slots, run.slot + 1);
  std::fill_n(least, slots * kLaneCount, std::numeric_limits<double>::infinity());
  std::fill_n(largest, slots * kLaneCount, -std::numeric_limits<double>::infinity());
  Sections base;
  Load(c, base);
  auto settled = [&](const std::array<double, kLaneCount>& first) {
    Sections s = base;
    Settle(c, s, first.data());
    return s;
  };

  // A long record is filtered in two halves at once. The second half's
  // passes start `warm` values early, from a settled state, and what they
  // compute there is thrown away: by the half's edge the start has died out
  // to far below the resolution of the samples.
  const size_t warm = 4 * std::max<size_t>(settleCount, 64);
  const size_t half = count / 2;
  if (count < kFilterSplitLeast || warm > count / 8) {
    std::vector<float> scratch(kChunkValues * kLaneCount);
    ForwardTrack track(record, 0, count);
    track.run(settled(Broadcast(ValueAt(record, 0))), scratch.data());
    Sections s = settled(track.last());
    BackwardOver(s, track, 0, count, runs, scratch.data(), least, largest);
    return;
  }

  // Everything the two threads need is allocated here, so that neither can
  // fail inside.
  const size_t scratchValues = std::max(kChunkValues, warm);
  std::vector<float> lowerScratch(scratchValues * kLaneCount);
  std::vector<float> upperScratch(scratchValues * kLaneCount);
  const std::vector<TrackedRun> upper = Clipped(runs, half, count);
  const std::vector<TrackedRun> lower = Clipped(runs, 0, half);
  ForwardTrack lowerTrack(record, 0, half);
  ForwardTrack upperTrack(record, half, count);
  Extremes upperFound(slots);
  Extremes warming(1);
  RunBoth([&] { lowerTrack.run(settled(Broadcast(ValueAt(record, 0))), lowerScratch.data()); },
          [&] {
            Sections s = settled(Broadcast(ValueAt(record, half - warm)));
            ForwardOver(s, record, half - warm, half, upperScratch.data());
            upperTrack.run(s, upperScratch.data());
          });

  RunBoth(
      [&] {
        Sections s = settled(upperTrack.last());
        BackwardOver(s, upperTrack, half, count, upper, upperScratch.data(), upperFound.least.data(),
                     upperFound.largest.data());
      },
      [&] {
        // The lower half's backward pass starts `warm` values into the upper
        // half, on the upper half's forward values.
        const size_t start = std::min(count, half + warm);
        Sections s = upperTrack.first();
        ForwardOver(s, record, half, start, lowerScratch.data());
        s = settled(StoredAt(lowerScratch.data(), start - half - 1));
        const std::vector<TrackedRun> warmRun = {{half, start, 0}};
        BackwardOver(s, upperTrack, half, start, warmRun, lowerScratch.data(), warming.least.data(),
                     warming.largest.data());
        BackwardOver(s, lowerTrack, 0, half, lower, lowerScratch.data(), least, largest);
      });
  for (size_t i = 0; i < slots * kLaneCount; ++i) {
    least[i] = std::min(least[i], upperFound.least[i]);
    largest[i] = std::max(largest[i], upperFound.largest[i]);
  }
}

}  // namespace aqx::engine
