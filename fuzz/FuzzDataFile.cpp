// The .aqx data file in any of its layouts. An accepted ordinary recording
// must come back the same after a write in the current layout and a read.
#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!aqx::fuzz::OpenAndCheck(aqx::fuzz::World(), QStringLiteral("input.aqx"), data, size)) return 0;
  // A continuous recording stays in its file; its own target writes it back.
  if (!aqx::fuzz::World().state().SolidMode) aqx::fuzz::CheckDataFileRoundTrip(aqx::fuzz::World());
  return 0;
}
