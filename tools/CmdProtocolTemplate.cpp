// aquilonix-tool protocol-template FOLDER FORM.xlsx OUT.xlsx: a station's
// form filled from the recordings of a folder, as the menu's template
// protocol does, with the save dialog answered by OUT.

#include "tools/ReportToolSupport.h"

#include <QFileInfo>

namespace aqx::tool {

int RunProtocolTemplate(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {});
  if (paths.size() != 3 || !QFileInfo(paths[0]).isDir()) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool protocol-template FOLDER FORM.xlsx OUT.xlsx\n"));
    return kExitRefused;
  }
  return RunReport(ctx, paths[2], [&](reports::ReportContext& report) { return reports::FillFolderTemplate(report, paths[0], paths[1]); });
}

}  // namespace aqx::tool
