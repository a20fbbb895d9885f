// A reader of a file kind the program imports: .zrk, .rsl of the РУСЛО-8
// system, or WAVE of 8 and 16 bits, chosen by the input's name, which the
// build sets per target (AQX_FUZZ_INPUT). What it reads must also survive a
// write as a data file and a read back.
#include "fuzz/FuzzSupport.h"

#include <cstdlib>

#ifndef AQX_FUZZ_INPUT
#error "AQX_FUZZ_INPUT names the input file, and with it the reader"
#endif

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
  if (aqx::fuzz::OpenAndCheck(*world, QStringLiteral(AQX_FUZZ_INPUT), data, size))
    aqx::fuzz::CheckDataFileRoundTrip(*world);
  return 0;
}
