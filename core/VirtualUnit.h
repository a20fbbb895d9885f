#pragma once
// The built-in virtual module imitates a running hydro unit. The engine's
// start functions carry no channel types, so before a run the program tells
// the module, through its environment settings (AQX_VIRTUAL_*), what each
// channel is and how the unit runs. Settings the user has made already win.

#include "core/AppState.h"

namespace aqx {

// AQX_VIRTUAL_CHANNELS from the channel types, AQX_VIRTUAL_RPM from the rated
// speed, AQX_VIRTUAL_POLES and AQX_VIRTUAL_MAINS_HZ from the unit; each only
// when it is not set.
void ExportVirtualUnit(const AppState& s);

// During a calibration the engineer sets the run-out probes at known gaps;
// the virtual module follows: its probes read the level of this gap on a
// standing shaft. A negative gap lets the shaft turn again. A gap the user
// fixed in the environment before the start wins.
void SetVirtualGap(double micrometres);

}  // namespace aqx
