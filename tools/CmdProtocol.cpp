// aquilonix-tool protocol FOLDER OUT.xlsx: the protocol of the recordings
// of a folder, through the same command as the menu, with its question
// answered yes and the save dialog answered by OUT. With --files,
// --channels or --parameters it is the master's table of those choices
// (files by name in FOLDER, in the order given; all when left out); with
// --template FORM.xlsx the station's form filled from the folder.

#include "tools/ReportToolSupport.h"

#include <QDir>
#include <QFileInfo>

namespace aqx::tool {

int RunProtocol(ToolContext& ctx) {
  const QString files = QStringLiteral("--files");
  const QString channels = QStringLiteral("--channels");
  const QString parameters = QStringLiteral("--parameters");
  const QString form = QStringLiteral("--template");
  const QStringList paths = Positionals(ctx.args, {files, channels, parameters, form});
  const bool master = ctx.args.contains(files) || ctx.args.contains(channels) || ctx.args.contains(parameters);
  if (paths.size() != 2 || !QFileInfo(paths[0]).isDir() || (master && ctx.args.contains(form)) ||
      (ctx.args.contains(form) && OptionValue(ctx.args, form).isEmpty())) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool protocol FOLDER OUT.xlsx [--files A,B] [--channels \"A;B\"] "
                                 "[--parameters \"P;Q\"] | [--template FORM.xlsx]  (FOLDER holds the recordings)\n"));
    return kExitRefused;
  }
  const QString folder = paths[0];
  if (ctx.args.contains(form)) {
    const QString formPath = OptionValue(ctx.args, form);
    return RunReport(ctx, paths[1],
                     [&](reports::ReportContext& report) { return reports::FillFolderTemplate(report, folder, formPath); });
  }
  if (!master)
    return RunReport(ctx, paths[1], [&](reports::ReportContext& report) { return reports::MakeFolderProtocol(report, folder); });

  reports::MasterChoice choice;
  const QStringList named = ListOption(ctx.args, files);
  for (const QString& name : named) choice.files.push_back(QDir(folder).filePath(name));
  if (named.isEmpty()) choice.files = reports::FolderRecordings(folder);
  for (const QString& file : choice.files)
    if (!QFileInfo(file).isFile()) {
      Print(stderr, QStringLiteral("protocol: no file %1\n").arg(QDir::toNativeSeparators(file)));
      return kExitRefused;
    }
  if (!PickMasterChoice(ctx.args, QStringLiteral("protocol"), choice, *ctx.prompts)) return kExitRefused;
  return RunReport(ctx, paths[1], [&](reports::ReportContext& report) { return reports::ReportMasterCommand(report, choice); });
}

}  // namespace aqx::tool
