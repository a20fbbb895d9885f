#pragma once
// The commands of aquilonix-tool, one function each: CommandTable() lists
// them for the command line, and tests call them directly.

#include "tools/ToolCommand.h"

namespace aqx::tool {

int RunVersion(ToolContext& ctx);
int RunRender(ToolContext& ctx);
int RunInfo(ToolContext& ctx);
int RunDump(ToolContext& ctx);
int RunConvert(ToolContext& ctx);
int RunExportWav(ToolContext& ctx);
int RunConfig(ToolContext& ctx);
int RunDemo(ToolContext& ctx);
int RunFftWisdom(ToolContext& ctx);
int RunRecord(ToolContext& ctx);
int RunProtocol(ToolContext& ctx);
int RunProtocolMaster(ToolContext& ctx);
int RunProtocolTemplate(ToolContext& ctx);
int RunSpectrum(ToolContext& ctx);
int RunRotorForm(ToolContext& ctx);
int RunEdit(ToolContext& ctx);
int RunRecordRates(ToolContext& ctx);

}  // namespace aqx::tool
