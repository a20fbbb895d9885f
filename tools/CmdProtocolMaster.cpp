// aquilonix-tool protocol-master OUT.xlsx FILE... [--channels "A;B"]
// [--parameters "P;Q"] [--list]: the protocol master's table for the files
// in the order given, of the channels named as the master lists them
// ("Вибрация - ВГП - Y") and the parameters by their names, in the order
// given; all of them when left out. --list prints the channels of the files
// and the parameters instead.

#include "files/FileReaders.h"
#include "tools/ReportToolSupport.h"

#include <algorithm>

namespace aqx::tool {

namespace {

QStringList ListOption(const QStringList& args, const QString& name) {
  return OptionValue(args, name).split(QLatin1Char(';'), Qt::SkipEmptyParts);
}

// The named entries of `offered` in the order named, all when none is named.
template <class T, class NameOf>
bool Pick(const QStringList& names, const std::vector<T>& offered, NameOf nameOf, const char* what,
          std::vector<T>& picked) {
  if (names.isEmpty()) {
    picked = offered;
    return true;
  }
  for (const QString& name : names) {
    const auto it = std::find_if(offered.begin(), offered.end(), [&](const T& t) { return nameOf(t) == name; });
    if (it == offered.end()) {
      Print(stderr, QStringLiteral("protocol-master: no %1 '%2' (see --list)\n").arg(QLatin1String(what), name));
      return false;
    }
    picked.push_back(*it);
  }
  return true;
}

}  // namespace

int RunProtocolMaster(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {QStringLiteral("--channels"), QStringLiteral("--parameters")});
  const bool list = HasFlag(ctx.args, QStringLiteral("--list"));
  if (paths.size() < (list ? 1 : 2)) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool protocol-master OUT.xlsx FILE... [--channels \"A;B\"] "
                                 "[--parameters \"P;Q\"] [--list]\n"));
    return kExitRefused;
  }
  const FileReaderTable readers = StandardFileReaders();
  reports::MasterChoice choice;
  choice.files = list ? paths : paths.mid(1);
  const std::vector<reports::MasterChannel> channels = reports::MasterChannelsOfFiles(choice.files, readers, *ctx.prompts);
  if (list) {
    for (const reports::MasterChannel& c : channels) Print(ctx.out, reports::MasterChannelCaption(c) + QLatin1Char('\n'));
    for (const reports::MasterParameter p : reports::MasterParameters())
      Print(ctx.out, reports::MasterParameterName(p) + QLatin1Char('\n'));
    return kExitOk;
  }
  if (!Pick(ListOption(ctx.args, QStringLiteral("--channels")), channels, reports::MasterChannelCaption, "channel",
            choice.channels) ||
      !Pick(ListOption(ctx.args, QStringLiteral("--parameters")), reports::MasterParameters(),
            reports::MasterParameterName, "parameter", choice.parameters))
    return kExitRefused;
  return RunReport(ctx, paths[0], [&](reports::ReportContext& report) { return reports::ReportMasterCommand(report, choice); });
}

}  // namespace aqx::tool
