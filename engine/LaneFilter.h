#pragma once
// Four zero-phase cascades run side by side, one in each lane of a vector,
// for the band levels. A lane waits only on its own previous sample, so one
// pass of four lanes costs about what one pass of one lane does.

#include "engine/ZeroPhase.h"

#include <array>
#include <cstddef>
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

// Runs the cascades forward over record[0..count) (the same input in every
// lane) and then backward, and leaves the extremes of the backward result over
// each run in least[slot * kLaneCount + lane] and largest[...], for every slot
// up to the highest one named. `forward` is scratch of kLaneCount * count.
// settleCount: values after which a start of the cascades has died out.
void FilterLanesZeroPhase(const LaneCascade& c, const double* record, size_t count, float* forward,
                          const std::vector<TrackedRun>& runs, size_t settleCount, double* least,
                          double* largest);

}  // namespace aqx::engine
