#pragma once
// What the protocol commands of aquilonix-tool share: the state with the
// user's settings (the max/mean switch, the offset rule, the shaft marker
// detector), and the outcome as an exit code and a line.

#include "reports/ReportCommands.h"
#include "tools/ToolCommand.h"

#include <functional>

namespace aqx::tool {

// Runs a report command on a state with the user's settings, the save
// dialog answered by `output`; prints what was written and returns the exit
// code of the outcome.
int RunReport(ToolContext& ctx, const QString& output,
              const std::function<reports::ReportResult(reports::ReportContext&)>& command);

}  // namespace aqx::tool
