// aquilonix-tool protocol FOLDER OUT.xlsx: the protocol of the recordings
// of a folder, through the same command as the menu, with its question
// answered yes and the save dialog answered by OUT.

#include "tools/ReportToolSupport.h"

#include <QFileInfo>

namespace aqx::tool {

int RunProtocol(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {});
  if (paths.size() != 2 || !QFileInfo(paths[0]).isDir()) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool protocol FOLDER OUT.xlsx (FOLDER holds the recordings)\n"));
    return kExitRefused;
  }
  return RunReport(ctx, paths[1], [&](reports::ReportContext& report) { return reports::MakeFolderProtocol(report, paths[0]); });
}

}  // namespace aqx::tool
