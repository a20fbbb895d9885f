// aquilonix-tool protocol FOLDER OUT.xlsx: the protocol of the recordings
// of a folder, through the same command as the menu, with its question
// answered yes and the save dialog answered by OUT.

#include "files/FileReaders.h"
#include "tools/ChosenOutput.h"
#include "tools/ReportToolSupport.h"

#include <QFileInfo>

namespace aqx::tool {

int RunProtocol(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {});
  if (paths.size() != 2 || !QFileInfo(paths[0]).isDir()) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool protocol FOLDER OUT.xlsx (FOLDER holds the recordings)\n"));
    return kExitRefused;
  }
  const std::unique_ptr<AppState> state = ReportToolState(ctx);
  ChosenOutput prompts(*ctx.prompts, paths[1]);
  const FileReaderTable readers = StandardFileReaders();
  reports::ReportContext report{*state, prompts, readers, {}};
  return ReportExit(ctx, reports::MakeFolderProtocol(report, paths[0]));
}

}  // namespace aqx::tool
