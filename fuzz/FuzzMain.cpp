// The start every fuzz target shares: the world its inputs run in.
#include "fuzz/FuzzSupport.h"

#include <cstdlib>
#include <memory>

namespace {
std::unique_ptr<aqx::fuzz::FuzzWorld> world;
}  // namespace

aqx::fuzz::FuzzWorld& aqx::fuzz::World() { return *world; }

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  world = std::make_unique<aqx::fuzz::FuzzWorld>(argc, argv);
  // Gone before Qt's own statics are, which outlive this pointer otherwise.
  std::atexit([] { world.reset(); });
  return 0;
}
