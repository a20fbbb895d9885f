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

AQX_CLONED_FOR_AVX2
void ForwardPass(Sections& state, const double* record, size_t count, float* forward) {
  Sections s = state;  // a local copy stays in registers
  for (size_t i = 0; i < count; ++i) {
    const double x = record[i];
    Lanes v = {x, x, x, x};
    RunStages(s, v);
    const StoredLanes stored = __builtin_convertvector(v, StoredLanes);
    std::memcpy(forward + i * kLaneCount, &stored, sizeof stored);
  }
  state = s;
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

void FilterLanesZeroPhase(const LaneCascade& c, const double* record, size_t count, float* forward,
                          const std::vector<TrackedRun>& runs, size_t settleCount, double* least,
                          double* largest) {
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
    Sections s = settled(Broadcast(record[0]));
    ForwardPass(s, record, count, forward);
    s = settled(StoredAt(forward, count - 1));
    BackwardPass(s, forward, runs.data(), runs.size(), least, largest);
    return;
  }

  // Everything the two threads need is allocated here, so that neither can
  // fail inside.
  std::vector<float> discarded(warm * kLaneCount);
  const std::vector<TrackedRun> upper = Clipped(runs, half, count);
  const std::vector<TrackedRun> lower = Clipped(runs, 0, half);
  Extremes upperFound(slots);
  Extremes warming(1);
  RunBoth(
      [&] {
        Sections s = settled(Broadcast(record[0]));
        ForwardPass(s, record, half, forward);
      },
      [&] {
        Sections s = settled(Broadcast(record[half - warm]));
        ForwardPass(s, record + half - warm, warm, discarded.data());
        ForwardPass(s, record + half, count - half, forward + half * kLaneCount);
      });

  RunBoth(
      [&] {
        Sections s = settled(StoredAt(forward, count - 1));
        BackwardPass(s, forward, upper.data(), upper.size(), upperFound.least.data(), upperFound.largest.data());
      },
      [&] {
        const size_t start = std::min(count, half + warm);
        Sections s = settled(StoredAt(forward, start - 1));
        const TrackedRun warmRun{half, start, 0};
        BackwardPass(s, forward, &warmRun, 1, warming.least.data(), warming.largest.data());
        BackwardPass(s, forward, lower.data(), lower.size(), least, largest);
      });
  for (size_t i = 0; i < slots * kLaneCount; ++i) {
    least[i] = std::min(least[i], upperFound.least[i]);
    largest[i] = std::max(largest[i], upperFound.largest[i]);
  }
}

}  // namespace aqx::engine
