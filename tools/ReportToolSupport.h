#pragma once
// What the protocol commands of aquilonix-tool share: the state with the
// user's settings (the max/mean switch, the offset rule, the shaft marker
// detector), and the outcome as an exit code and a line.

#include "core/AppState.h"
#include "reports/ReportCommands.h"
#include "tools/ToolCommand.h"

#include <memory>

namespace aqx::tool {

std::unique_ptr<AppState> ReportToolState(const ToolContext& ctx);

// Prints what was written and returns the exit code of the outcome.
int ReportExit(const ToolContext& ctx, const reports::ReportResult& result);

}  // namespace aqx::tool
