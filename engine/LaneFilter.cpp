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

// The coefficients and the state of the sections, as a pass starts and
// leaves them (a pass holds them in registers). The passes are cloned for
// processors with AVX2 and FMA, where a stage costs five fused operations on
// all four lanes at once.
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

// A pass holds the four stages as named values, which the compiler keeps in
// registers; indexed by stage, they stayed in memory, and every sample then
// waited on a store and a load of each stage's state.
static_assert(kLaneStages == 4);

struct Coefficients {
  Lanes b0, b1, b2, a1, a2;
};

struct Delays {
  Lanes z1, z2;
};

struct HeldCoefficients {
  Coefficients s0, s1, s2, s3;
};

struct HeldDelays {
  Delays s0, s1, s2, s3;
};

HeldCoefficients HeldFrom(const Sections& s) {
  auto stage = [&](int k) { return Coefficients{s.b0[k], s.b1[k], s.b2[k], s.a1[k], s.a2[k]}; };
  return {stage(0), stage(1), stage(2), stage(3)};
}

HeldDelays DelaysFrom(const Sections& s) {
  auto stage = [&](int k) { return Delays{s.z1[k], s.z2[k]}; };
  return {stage(0), stage(1), stage(2), stage(3)};
}

void PutDelays(const HeldDelays& d, Sections& s) {
  const Delays* stages[kLaneStages] = {&d.s0, &d.s1, &d.s2, &d.s3};
  for (int k = 0; k < kLaneStages; ++k) {
    s.z1[k] = stages[k]->z1;
    s.z2[k] = stages[k]->z2;
  }
}

// Inlined into every clone of each pass, so that it takes their instructions.
// The next state takes y last, so that it waits on y through one fused
// multiply-add: y, then z1, then the next sample's y is the whole chain.
__attribute__((always_inline)) inline void RunStage(const Coefficients& c, Delays& d, Lanes& v) {
  const Lanes y = c.b0 * v + d.z1;
  d.z1 = (c.b1 * v + d.z2) - c.a1 * y;
  d.z2 = c.b2 * v - c.a2 * y;
  v = y;
}

__attribute__((always_inline)) inline void RunStages(const HeldCoefficients& c, HeldDelays& d, Lanes& v) {
  RunStage(c.s0, d.s0, v);
  RunStage(c.s1, d.s1, v);
  RunStage(c.s2, d.s2, v);
  RunStage(c.s3, d.s3, v);
}

// One forward step on x: its values to out[0..kLaneCount).
__attribute__((always_inline)) inline void ForwardStep(const HeldCoefficients& c, HeldDelays& d, double x,
                                                       float* out) {
  Lanes v = {x, x, x, x};
  RunStages(c, d, v);
  const StoredLanes stored = __builtin_convertvector(v, StoredLanes);
  std::memcpy(out, &stored, sizeof stored);
}

// One backward step on the stored forward values at `in`, into the extremes.
__attribute__((always_inline)) inline void BackwardStep(const HeldCoefficients& c, HeldDelays& d, const float* in,
                                                        Lanes& low, Lanes& high) {
  StoredLanes stored;
  std::memcpy(&stored, in, sizeof stored);
  Lanes v = __builtin_convertvector(stored, Lanes);
  RunStages(c, d, v);
  low = v < low ? v : low;
  high = v > high ? v : high;
}

template <class T>
__attribute__((always_inline)) inline void ForwardValues(Sections& state, const T* x, size_t count, float* forward) {
  const HeldCoefficients c = HeldFrom(state);
  HeldDelays d = DelaysFrom(state);
  for (size_t i = 0; i < count; ++i) ForwardStep(c, d, static_cast<double>(x[i]), forward + i * kLaneCount);
  PutDelays(d, state);
}

AQX_CLONED_FOR_AVX2
void ForwardPass(Sections& state, const double* x, size_t count, float* forward) {
  ForwardValues(state, x, count, forward);
}

AQX_CLONED_FOR_AVX2
void ForwardPass(Sections& state, const int16_t* x, size_t count, float* forward) {
  ForwardValues(state, x, count, forward);
}

// Runs over the stretches of `runs` from the last down, with the extremes of
// each taken into its slot (keeping what the slot holds already, so that a
// run may come in pieces); step(i, low, high) takes sample i.
template <class Step>
__attribute__((always_inline)) inline void OverRunsDown(const TrackedRun* runs, size_t runCount, double* least,
                                                        double* largest, const Step& step) {
  for (size_t r = runCount; r-- > 0;) {
    const TrackedRun& run = runs[r];
    Lanes low;
    Lanes high;
    std::memcpy(&low, least + run.slot * kLaneCount, sizeof low);
    std::memcpy(&high, largest + run.slot * kLaneCount, sizeof high);
    for (size_t i = run.end; i-- > run.begin;) step(i, low, high);
    std::memcpy(least + run.slot * kLaneCount, &low, sizeof low);
    std::memcpy(largest + run.slot * kLaneCount, &high, sizeof high);
  }
}

AQX_CLONED_FOR_AVX2
void BackwardPass(Sections& state, const float* forward, const TrackedRun* runs, size_t runCount, double* least,
                  double* largest) {
  const HeldCoefficients c = HeldFrom(state);
  HeldDelays d = DelaysFrom(state);
  OverRunsDown(runs, runCount, least, largest,
               [&](size_t i, Lanes& low, Lanes& high) __attribute__((always_inline)) {
                 BackwardStep(c, d, forward + i * kLaneCount, low, high);
               });
  PutDelays(d, state);
}

// BackwardPass with the forward pass of the next piece down in the same
// loop: each waits on its own previous value only, so the processor runs the
// two side by side. `next` is the forward state at that piece's start; its
// nextCount inputs give its values to nextValues.
AQX_CLONED_FOR_AVX512
void BackwardPassBesideForward(Sections& state, const float* forward, const TrackedRun* runs, size_t runCount,
                               double* least, double* largest, Sections& next, const double* nextInput,
                               size_t nextCount, float* nextValues) {
  const HeldCoefficients c = HeldFrom(state);
  HeldDelays d = DelaysFrom(state);
  HeldDelays f = DelaysFrom(next);
  size_t j = 0;
  OverRunsDown(runs, runCount, least, largest, [&](size_t i, Lanes& low, Lanes& high) __attribute__((always_inline)) {
    BackwardStep(c, d, forward + i * kLaneCount, low, high);
    if (j < nextCount) {
      ForwardStep(c, f, nextInput[j], nextValues + j * kLaneCount);
      ++j;
    }
  });
  for (; j < nextCount; ++j) ForwardStep(c, f, nextInput[j], nextValues + j * kLaneCount);
  PutDelays(d, state);
  PutDelays(f, next);
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

// Calls visit(values, count, at) for the parts of record[begin, end) in each
// of its three pieces, `at` counted from begin.
template <class Visit>
void ForEachPiece(const LaneRecord& r, size_t begin, size_t end, const Visit& visit) {
  const size_t codesAt = r.before.size();
  const size_t afterAt = codesAt + r.codes.size();
  if (begin < codesAt) visit(r.before.data() + begin, std::min(end, codesAt) - begin, size_t{0});
  if (begin < afterAt && end > codesAt) {
    const size_t lo = std::max(begin, codesAt);
    visit(r.codes.data() + (lo - codesAt), std::min(end, afterAt) - lo, lo - begin);
  }
  if (end > afterAt) {
    const size_t lo = std::max(begin, afterAt);
    visit(r.after.data() + (lo - afterAt), end - lo, lo - begin);
  }
}

// The forward pass over record[begin, end), its values to forward[0..).
void ForwardOver(Sections& s, const LaneRecord& r, size_t begin, size_t end, float* forward) {
  ForEachPiece(r, begin, end,
               [&](const auto* x, size_t n, size_t at) { ForwardPass(s, x, n, forward + at * kLaneCount); });
}

// Values of the record worked out per piece: one pass from the start keeps
// only the state at the start of every piece.
constexpr size_t kChunkValues = size_t{1} << 14;

// The same pass where its values are not wanted, a piece at a time.
void Advance(Sections& s, const LaneRecord& r, size_t begin, size_t end, float* scratch) {
  for (size_t at = begin; at < end; at += kChunkValues) ForwardOver(s, r, at, std::min(end, at + kChunkValues), scratch);
}

// What a thread's backward pass works in: the values of the piece it is on,
// those of the next piece down as they are worked out, and its inputs.
struct PassScratch {
  std::vector<float> current = std::vector<float>(kChunkValues * kLaneCount);
  std::vector<float> next = std::vector<float>(kChunkValues * kLaneCount);
  std::vector<double> input = std::vector<double>(kChunkValues);
};

class ForwardTrack {
 public:
  ForwardTrack(const LaneRecord& r, size_t begin, size_t end)
      : record_(r), begin_(begin), end_(end), states_((end - begin + kChunkValues - 1) / kChunkValues) {}

  // The pass from state s.
  void run(Sections s, PassScratch& w) {
    for (size_t k = 0; k < states_.size(); ++k) {
      states_[k] = s;
      ForwardOver(s, record_, chunkBegin(k), chunkEnd(k), w.current.data());
    }
    if (!states_.empty()) last_ = StoredAt(w.current.data(), length(states_.size() - 1) - 1);
  }
  // The state the pass had at the start of piece k, the value it ended with.
  const Sections& state(size_t k) const { return states_[k]; }
  const std::array<double, kLaneCount>& last() const { return last_; }

  size_t chunkOf(size_t i) const { return (i - begin_) / kChunkValues; }
  size_t chunkBegin(size_t k) const { return begin_ + k * kChunkValues; }
  size_t chunkEnd(size_t k) const { return std::min(end_, chunkBegin(k) + kChunkValues); }
  size_t length(size_t k) const { return chunkEnd(k) - chunkBegin(k); }
  // The values of piece k again.
  void values(size_t k, float* out) const {
    Sections s = states_[k];
    ForwardOver(s, record_, chunkBegin(k), chunkEnd(k), out);
  }
  // The inputs of piece k as doubles.
  void inputs(size_t k, double* out) const {
    ForEachPiece(record_, chunkBegin(k), chunkEnd(k),
                 [&](const auto* x, size_t n, size_t at) { std::copy(x, x + n, out + at); });
  }

 private:
  const LaneRecord& record_;
  size_t begin_;
  size_t end_;
  std::vector<Sections> states_;
  std::array<double, kLaneCount> last_{};
};

// Whether w.current holds the values of the piece a backward pass starts in
// (the forward pass or a look-up has just worked them out).
enum class TopPiece { Ready, ToWorkOut };

// The backward pass over [begin, end) of a track, from state s, a piece at a
// time, each piece's values worked out beside the piece above it; the
// extremes of the runs (ascending, inside the track) to their slots.
void BackwardOver(Sections& s, const ForwardTrack& track, size_t begin, size_t end,
                  const std::vector<TrackedRun>& runs, PassScratch& w, double* least, double* largest,
                  TopPiece topPiece) {
  if (begin >= end) return;
  std::vector<TrackedRun> local;
  auto run = std::upper_bound(runs.begin(), runs.end(), end,
                              [](size_t at, const TrackedRun& r) { return at <= r.begin; });
  const size_t bottom = track.chunkOf(begin);
  const size_t top = track.chunkOf(end - 1);
  if (topPiece == TopPiece::ToWorkOut) track.values(top, w.current.data());
  for (size_t k = top + 1; k-- > bottom;) {
    const size_t chunkStart = track.chunkBegin(k);
    const size_t lo = std::max(begin, chunkStart);
    const size_t hi = std::min(end, track.chunkEnd(k));
    local.clear();
    // Runs come last first; one reaching below the piece is kept for the next.
    for (auto r = run; r != runs.begin();) {
      --r;
      if (r->end <= lo) break;
      const size_t b = std::max(r->begin, lo);
      const size_t e = std::min(r->end, hi);
      if (b < e) local.push_back({b - chunkStart, e - chunkStart, r->slot});
      if (r->begin >= lo) run = r;
    }
    std::reverse(local.begin(), local.end());
    if (k == bottom) {
      BackwardPass(s, w.current.data(), local.data(), local.size(), least, largest);
      break;
    }
    Sections next = track.state(k - 1);
    track.inputs(k - 1, w.input.data());
    BackwardPassBesideForward(s, w.current.data(), local.data(), local.size(), least, largest, next,
                              w.input.data(), track.length(k - 1), w.next.data());
    std::swap(w.current, w.next);
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
    PassScratch w;
    ForwardTrack track(record, 0, count);
    track.run(settled(Broadcast(ValueAt(record, 0))), w);
    Sections s = settled(track.last());
    BackwardOver(s, track, 0, count, runs, w, least, largest, TopPiece::Ready);
    return;
  }

  // Everything the two threads need is allocated here, so that neither can
  // fail inside.
  PassScratch lowerWork;
  PassScratch upperWork;
  const std::vector<TrackedRun> upper = Clipped(runs, half, count);
  const std::vector<TrackedRun> lower = Clipped(runs, 0, half);
  const size_t start = std::min(count, half + warm);
  const std::vector<TrackedRun> warmRun = {{half, start, 0}};
  ForwardTrack lowerTrack(record, 0, half);
  ForwardTrack upperTrack(record, half, count);
  Extremes upperFound(slots);
  Extremes warming(1);
  RunBoth([&] { lowerTrack.run(settled(Broadcast(ValueAt(record, 0))), lowerWork); },
          [&] {
            Sections s = settled(Broadcast(ValueAt(record, half - warm)));
            Advance(s, record, half - warm, half, upperWork.current.data());
            upperTrack.run(s, upperWork);
          });

  RunBoth(
      [&] {
        Sections s = settled(upperTrack.last());
        BackwardOver(s, upperTrack, half, count, upper, upperWork, upperFound.least.data(),
                     upperFound.largest.data(), TopPiece::Ready);
      },
      [&] {
        // The lower half's backward pass starts `warm` values into the upper
        // half, on the upper half's forward values.
        const size_t piece = upperTrack.chunkOf(start - 1);
        upperTrack.values(piece, lowerWork.current.data());
        Sections s = settled(StoredAt(lowerWork.current.data(), start - 1 - upperTrack.chunkBegin(piece)));
        BackwardOver(s, upperTrack, half, start, warmRun, lowerWork, warming.least.data(), warming.largest.data(),
                     TopPiece::Ready);
        BackwardOver(s, lowerTrack, 0, half, lower, lowerWork, least, largest, TopPiece::ToWorkOut);
      });
  for (size_t i = 0; i < slots * kLaneCount; ++i) {
    least[i] = std::min(least[i], upperFound.least[i]);
    largest[i] = std::max(largest[i], upperFound.largest[i]);
  }
}

}  // namespace aqx::engine
