// WAVE files of 8 and 16 bits, any number of channels. What it reads must also
// survive a write as a data file and a read back.
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
  if (aqx::fuzz::OpenAndCheck(*world, QStringLiteral("input.wav"), data, size))
    aqx::fuzz::CheckDataFileRoundTrip(*world);
  return 0;
}
