#include "tools/ToolSettings.h"

namespace aqx::tool {

QString ToolSettingsPath(const ToolContext& ctx) {
  return ctx.settingsFile.isEmpty() ? DefaultSettingsPath() : ctx.settingsFile;
}

std::unique_ptr<IniSettingsStore> OpenToolSettings(const ToolContext& ctx) {
  auto store = std::make_unique<IniSettingsStore>(ToolSettingsPath(ctx));
  store->setFailureReporter(ctx.prompts);
  store->reportReadProblem();
  return store;
}

}  // namespace aqx::tool
