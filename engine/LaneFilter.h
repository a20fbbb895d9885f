#pragma once
// Four zero-phase cascades run side by side, one in each lane of a vector,
// for the band levels. A lane waits only on its own previous sample, so one
// pass of four lanes costs about what one pass of one lane does.

#include "engine/ZeroPhase.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace aqx::engine {

inline constexpr int kLaneCount = 4;
inline constexpr int kLaneStages = 4;

// Coefficients by [stage][lane]. A lane with fewer sections than stages
// passes its signal through unit sections.
struct LaneCascade {
  using Table = std::array<std::array<double, kLaneCount>, kLaneStages>;
  Table b0{}, b1{}, b2{}, a1{}, a2{};
  Table gain{};  // at zero frequency: each stage starts settled on its input
};

// Cascades of at most kLaneStages sections each.
LaneCascade MakeLaneCascade(const std::array<Cascade, kLaneCount>& lanes);

// A stretch [begin, end) of the record whose least and largest filtered value
// per lane go to `slot`.
struct TrackedRun {
  size_t begin = 0;
  size_t end = 0;
  size_t slot = 0;
};

// The record the lanes run over: values predicted before the codes of the
// channel, the codes, and values predicted after them.
struct LaneRecord {
  std::span<const double> before;
  std::span<const int16_t> codes;
  std::span<const double> after;
  size_t size() const { return before.size() + codes.size() + after.size(); }
};

// Runs the cascades forward over the record (the same input in every lane)
// and then backward, and leaves the extremes of the backward result over
// each run in least[slot * kLaneCount + lane] and largest[...], for every slot
// up to the highest one named. Runs are in ascending order and do not
// overlap. settleCount: values after which a start of the cascades has died
// out. The forward values are not kept: the backward pass has each piece of
// them worked out again from the state the forward pass had at its start,
// which gives the same values in a few hundred kilobytes instead of sixteen
// bytes a sample.
void FilterLanesZeroPhase(const LaneCascade& c, const LaneRecord& record, const std::vector<TrackedRun>& runs,
                          size_t settleCount, double* least, double* largest);

}  // namespace aqx::engine
