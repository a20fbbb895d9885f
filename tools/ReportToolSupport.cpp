#include "tools/ReportToolSupport.h"

#include "core/Config.h"
#include "files/FileReaders.h"
#include "tools/ChosenOutput.h"
#include "tools/ToolSettings.h"

#include <QDir>

#include <memory>

namespace aqx::tool {

int RunReport(ToolContext& ctx, const QString& output,
              const std::function<reports::ReportResult(reports::ReportContext&)>& command) {
  auto state = std::make_unique<AppState>();
  LoadConfigReg(*state, *OpenToolSettings(ctx));
  state->PathFileData.clear();
  ChosenOutput prompts(*ctx.prompts, output);
  const FileReaderTable readers = StandardFileReaders();
  reports::ReportContext report{*state, prompts, readers, {}};
  const reports::ReportResult result = command(report);
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
