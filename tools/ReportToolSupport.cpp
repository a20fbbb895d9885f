#include "tools/ReportToolSupport.h"

#include "core/Config.h"
#include "files/FileReaders.h"
#include "tools/ChosenOutput.h"
#include "tools/ToolSettings.h"

#include <QDir>

#include <algorithm>
#include <memory>

namespace aqx::tool {

namespace {

// Folders longer than this get a progress line.
constexpr int kProgressLineFiles = 10;

// The named entries of `offered` in the order named, all when none is named.
template <class T, class NameOf>
bool Pick(const QStringList& names, const std::vector<T>& offered, NameOf nameOf, const QString& command,
          const char* what, std::vector<T>& picked) {
  if (names.isEmpty()) {
    picked = offered;
    return true;
  }
  for (const QString& name : names) {
    const auto it = std::find_if(offered.begin(), offered.end(), [&](const T& t) { return nameOf(t) == name; });
    if (it == offered.end()) {
      Print(stderr, QStringLiteral("%1: no %2 '%3' (see protocol-master --list)\n").arg(command, QLatin1String(what), name));
      return false;
    }
    picked.push_back(*it);
  }
  return true;
}

// "files read: 37/100" over itself on stderr, ended by a line break.
bool PrintProgress(int filesDone, int fileCount) {
  if (fileCount <= kProgressLineFiles) return true;
  Print(stderr, QStringLiteral("\rfiles read: %1/%2").arg(filesDone).arg(fileCount));
  if (filesDone == fileCount) Print(stderr, QStringLiteral("\n"));
  return true;
}

}  // namespace

QStringList ListOption(const QStringList& args, const QString& name) {
  const QString value = OptionValue(args, name);
  QStringList items = value.split(value.contains(QLatin1Char(';')) ? QLatin1Char(';') : QLatin1Char(','), Qt::SkipEmptyParts);
  for (QString& item : items) item = item.trimmed();
  return items;
}

bool PickMasterChoice(const QStringList& args, const QString& command, reports::MasterChoice& choice,
                      Prompts& prompts) {
  const std::vector<reports::MasterChannel> channels =
      reports::MasterChannelsOfFiles(choice.files, StandardFileReaders(), prompts);
  return Pick(ListOption(args, QStringLiteral("--channels")), channels, reports::MasterChannelCaption, command,
              "channel", choice.channels) &&
         Pick(ListOption(args, QStringLiteral("--parameters")), reports::MasterParameters(),
              reports::MasterParameterName, command, "parameter", choice.parameters);
}

int RunReport(ToolContext& ctx, const QString& output,
              const std::function<reports::ReportResult(reports::ReportContext&)>& command) {
  auto state = std::make_unique<AppState>();
  LoadConfigReg(*state, *OpenToolSettings(ctx));
  state->PathFileData.clear();
  ChosenOutput prompts(*ctx.prompts, output);
  const FileReaderTable readers = StandardFileReaders();
  reports::ReportContext report{*state, prompts, readers, PrintProgress};
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
