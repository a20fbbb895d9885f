#pragma once
// What the protocol commands of aquilonix-tool share: the state with the
// user's settings (the max/mean switch, the offset rule, the shaft marker
// detector), the master's choices by name, the progress line, and the
// outcome as an exit code and a line.

#include "reports/ReportCommands.h"
#include "tools/ToolCommand.h"

#include <functional>

namespace aqx::tool {

// Runs a report command on a state with the user's settings, the save
// dialog answered by `output`; prints what was written and returns the exit
// code of the outcome. On a long folder a progress line goes to stderr.
int RunReport(ToolContext& ctx, const QString& output,
              const std::function<reports::ReportResult(reports::ReportContext&)>& command);

// The entries of an option's list, separated by ';', or by ',' where no ';'
// stands (so that a name with a comma can still be given).
QStringList ListOption(const QStringList& args, const QString& name);

// The master's channels and parameters named in --channels and
// --parameters ("Вибрация - ВГП - Y", "ОУ (макс.)"), in the order named,
// all of them when an option is left out; false, with the unknown name on
// stderr, when one is not offered. `command` names the tool command.
bool PickMasterChoice(const QStringList& args, const QString& command, reports::MasterChoice& choice,
                      Prompts& prompts);

}  // namespace aqx::tool
