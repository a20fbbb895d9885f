#pragma once
// The settings store a tool command works on: the file given with
// --settings, or the user's own. Write failures are told once on stderr.

#include "core/Settings.h"
#include "tools/ToolCommand.h"

#include <memory>

namespace aqx::tool {

QString ToolSettingsPath(const ToolContext& ctx);
std::unique_ptr<IniSettingsStore> OpenToolSettings(const ToolContext& ctx);

}  // namespace aqx::tool
