#pragma once
// Files of two older measuring systems, read only: ".zrk" of the ЗОР-16 and
// ".rsl" of the РУСЛО-8. Each reader fills the state as if a recording of
// this program had been opened: channels, samples as ADC codes, a shaft
// marker channel 32 built from the marks stored in the file, the rotor data
// derived, view defaults set.

#include "core/AppState.h"
#include "core/Prompts.h"

namespace aqx {

// Read state.PathFileData. The whole file is checked before the state is
// touched: a short or damaged file is told to the user under "Открытие" and
// the recording in memory stays as it was. True when it was replaced.
bool ReadFileZRK(AppState& state, Prompts& prompts);
bool ReadFileRSL(AppState& state, Prompts& prompts);

}  // namespace aqx
