#pragma once
// An unattended measurement run from the command line: the library steps of
// the program's record button and timer without a window. Ctrl-C (or
// SIGTERM) ends a run early and cleanly.

#include "core/AppState.h"
#include "core/Prompts.h"

#include <cstdio>

namespace aqx::tool {

// Both tell the virtual module the unit first (ExportVirtualUnit).

// Cyclic run of `seconds` (at least one whole cycle unless interrupted);
// the newest cycle ends up in SignalData. Returns false after telling the
// failure.
bool RunCyclicMeasurement(AppState& s, Prompts& p, double seconds, FILE* progress);

// Continuous recording into s.PathFileData for `seconds`: header first, then
// the engine streams the rows behind it; the header is written again at the
// end with the module's tag. Returns false after telling the failure.
bool RunContinuousRecording(AppState& s, Prompts& p, double seconds, bool clearData, FILE* progress);

}  // namespace aqx::tool
