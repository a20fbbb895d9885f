// aquilonix-tool protocol-template FOLDER FORM.xlsx OUT.xlsx: a station's
// form filled from the recordings of a folder, as the menu's template
// protocol does, with the save dialog answered by OUT.

#include "files/FileReaders.h"
#include "tools/ChosenOutput.h"
#include "tools/ReportToolSupport.h"

#include <QFileInfo>

namespace aqx::tool {

int RunProtocolTemplate(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {});
  if (paths.size() != 3 || !QFileInfo(paths[0]).isDir()) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool protocol-template FOLDER FORM.xlsx OUT.xlsx\n"));
    return kExitRefused;
  }
  const std::unique_ptr<AppState> state = ReportToolState(ctx);
  ChosenOutput prompts(*ctx.prompts, paths[2]);
  const FileReaderTable readers = StandardFileReaders();
  reports::ReportContext report{*state, prompts, readers, {}};
  return ReportExit(ctx, reports::FillFolderTemplate(report, paths[0], paths[1]));
}

}  // namespace aqx::tool
