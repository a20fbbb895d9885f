#include "tools/ToolCommand.h"

namespace aqx::tool {

// One declaration and one row per command.
int RunVersion(ToolContext& ctx);

namespace {
const ToolCommand kCommands[] = {
    {"version", "version                      program version", RunVersion},
};
}  // namespace

std::span<const ToolCommand> CommandTable() { return kCommands; }

}  // namespace aqx::tool
