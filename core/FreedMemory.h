#pragma once
// How the programs' allocator treats large freed blocks.

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace aqx {

// Large blocks get pages of their own and go back to the system when freed.
// By default glibc raises both thresholds after the first large block is
// freed, and from then on keeps up to twice that block's size of freed
// memory in its heap: after a million-sample spectrum, 8 to 16 MiB that no
// one used stayed resident beside the 64 MiB store. Call before anything
// is allocated in bulk (fixed thresholds also stop the raising).
inline void ReturnLargeFreedBlocks() {
#if defined(__GLIBC__)
  mallopt(M_MMAP_THRESHOLD, 256 * 1024);
  mallopt(M_TRIM_THRESHOLD, 512 * 1024);
#endif
}

}  // namespace aqx
