// The .aqx data file in any of its layouts. An accepted ordinary recording
// must come back the same after a write in the current layout and a read.
#include "fuzz/FuzzSupport.h"

#include <cstdlib>

namespace {
std::unique_ptr<aqx::fuzz::FuzzWorld> world;
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
  world = std::make_unique<aqx::fuzz::FuzzWorld>(argc, argv);
  // Gone before Qt's own statics are, which outlive this pointer otherwise.
  std::atexit([] { world.reset(); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!aqx::fuzz::OpenAndCheck(*world, QStringLiteral("input.aqx"), data, size)) return 0;
  // A continuous recording stays in its file; its own target writes it back.
  if (!world->state().SolidMode) aqx::fuzz::CheckDataFileRoundTrip(*world);
  return 0;
}
