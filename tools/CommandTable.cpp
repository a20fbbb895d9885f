#include "tools/ToolCommand.h"

namespace aqx::tool {

// One declaration and one row per command.
int RunVersion(ToolContext& ctx);
int RunExportWav(ToolContext& ctx);

namespace {
const ToolCommand kCommands[] = {
    {"version", "version                      program version", RunVersion},
    {"export-wav", "export-wav IN OUT.wav         recorded channels of any readable file as WAVE", RunExportWav},
};
}  // namespace

std::span<const ToolCommand> CommandTable() { return kCommands; }

}  // namespace aqx::tool
