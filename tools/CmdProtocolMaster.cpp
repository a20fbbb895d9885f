// aquilonix-tool protocol-master OUT.xlsx FILE... [--channels "A;B"]
// [--parameters "P;Q"] [--list]: the protocol master's table for the files
// in the order given, of the channels named as the master lists them
// ("Вибрация - ВГП - Y") and the parameters by their names, in the order
// given; all of them when left out. --list prints the channels of the files
// and the parameters instead.

#include "files/FileReaders.h"
#include "tools/ReportToolSupport.h"

namespace aqx::tool {

int RunProtocolMaster(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {QStringLiteral("--channels"), QStringLiteral("--parameters")});
  const bool list = HasFlag(ctx.args, QStringLiteral("--list"));
  if (paths.size() < (list ? 1 : 2)) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool protocol-master OUT.xlsx FILE... [--channels \"A;B\"] "
                                 "[--parameters \"P;Q\"] [--list]\n"));
    return kExitRefused;
  }
  reports::MasterChoice choice;
  choice.files = list ? paths : paths.mid(1);
  if (list) {
    for (const reports::MasterChannel& c : reports::MasterChannelsOfFiles(choice.files, StandardFileReaders(), *ctx.prompts))
      Print(ctx.out, reports::MasterChannelCaption(c) + QLatin1Char('\n'));
    for (const reports::MasterParameter p : reports::MasterParameters())
      Print(ctx.out, reports::MasterParameterName(p) + QLatin1Char('\n'));
    return kExitOk;
  }
  if (!PickMasterChoice(ctx.args, QStringLiteral("protocol-master"), choice, *ctx.prompts)) return kExitRefused;
  return RunReport(ctx, paths[0], [&](reports::ReportContext& report) { return reports::ReportMasterCommand(report, choice); });
}

}  // namespace aqx::tool
