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

}  // namespace aqx
