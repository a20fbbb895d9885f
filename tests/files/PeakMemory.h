#pragma once
// The peak resident memory of the test process so far, for checks that a
// reader's memory stays bounded whatever the size of its file.

#include <cstdint>

#include <sys/resource.h>

namespace aqx::testing {

inline int64_t PeakResidentBytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return int64_t{usage.ru_maxrss} * 1024;
}

inline constexpr int64_t kMiB = 1 << 20;

}  // namespace aqx::testing
