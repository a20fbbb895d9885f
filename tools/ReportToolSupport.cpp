#include "tools/ReportToolSupport.h"

#include "core/Config.h"
#include "tools/ToolSettings.h"

#include <QDir>

namespace aqx::tool {

std::unique_ptr<AppState> ReportToolState(const ToolContext& ctx) {
  auto state = std::make_unique<AppState>();
  const auto store = OpenToolSettings(ctx);
  LoadConfigReg(*state, *store);
  state->PathFileData.clear();
  return state;
}

int ReportExit(const ToolContext& ctx, const reports::ReportResult& result) {
  switch (result.outcome) {
    case reports::ReportOutcome::Written:
      Print(ctx.out, QDir::toNativeSeparators(result.workbookPath) + QLatin1Char('\n'));
      return kExitOk;
    case reports::ReportOutcome::Failed:
      return kExitFailure;
    case reports::ReportOutcome::Declined:
    case reports::ReportOutcome::Cancelled:
      break;
  }
  return kExitRefused;
}

}  // namespace aqx::tool
