// A reader of a file kind the program imports: .zrk, .rsl of the РУСЛО-8
// system, or WAVE of 8 and 16 bits, chosen by the input's name, which the
// build sets per target (AQX_FUZZ_INPUT). What it reads must also survive a
// write as a data file and a read back.
#include "fuzz/FuzzSupport.h"

#ifndef AQX_FUZZ_INPUT
#error "AQX_FUZZ_INPUT names the input file, and with it the reader"
#endif

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (aqx::fuzz::OpenAndCheck(aqx::fuzz::World(), QStringLiteral(AQX_FUZZ_INPUT), data, size))
    aqx::fuzz::CheckDataFileRoundTrip(aqx::fuzz::World());
  return 0;
}
