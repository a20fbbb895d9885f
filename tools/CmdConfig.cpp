// aquilonix-tool config: named configurations of the settings, and a look
// at single keys, on the user's settings or the file given with --settings.

#include "core/Config.h"
#include "core/ConfigKeys.h"
#include "core/NamedConfigs.h"
#include "tools/ToolCommand.h"
#include "tools/ToolSettings.h"

namespace aqx::tool {

namespace {

int ExitCode(ConfigResult r, const QString& name) {
  switch (r) {
    case ConfigResult::Done: return kExitOk;
    case ConfigResult::Cancelled: return kExitOk;
    case ConfigResult::InvalidName:
      Print(stderr, QStringLiteral("config: invalid configuration name '%1'\n").arg(name));
      return kExitRefused;
    case ConfigResult::Exists:
      Print(stderr, QStringLiteral("config: configuration '%1' exists (add --replace)\n").arg(name));
      return kExitRefused;
    case ConfigResult::NotFound:
      Print(stderr, QStringLiteral("config: no configuration '%1'\n").arg(name));
      return kExitRefused;
    case ConfigResult::Failed:
      Print(stderr, QStringLiteral("config: configuration '%1' could not be written or read; "
                                   "the settings are unchanged\n").arg(name));
      return kExitFailure;
  }
  return kExitFailure;
}

int Usage() {
  Print(stderr, QStringLiteral(
                    "usage: aquilonix-tool [--settings FILE] config list\n"
                    "       config save NAME [--replace] | restore NAME | delete NAME\n"
                    "       config rename OLD NEW [--replace]\n"
                    "       config get SECTION KEY | set SECTION KEY VALUE | reset | path\n"));
  return kExitRefused;
}

}  // namespace

int RunConfig(ToolContext& ctx) {
  const QStringList args = Positionals(ctx.args, {});
  if (args.isEmpty()) return Usage();
  const QString verb = args[0];
  const bool replace = HasFlag(ctx.args, QStringLiteral("--replace"));
  auto store = OpenToolSettings(ctx);
  const QString folder = ConfigsFolder(store->filePath());

  if (verb == QLatin1String("list") && args.size() == 1) {
    for (const QString& name : ListConfigs(folder)) Print(ctx.out, name + QLatin1Char('\n'));
    return kExitOk;
  }
  if (verb == QLatin1String("path") && args.size() == 1) {
    Print(ctx.out, store->filePath() + QLatin1Char('\n') + folder + QLatin1Char('\n'));
    return kExitOk;
  }
  if (verb == QLatin1String("save") && args.size() == 2)
    return ExitCode(SaveNamedConfig(*store, folder, args[1], replace), args[1]);
  if (verb == QLatin1String("restore") && args.size() == 2)
    return ExitCode(RestoreNamedConfig(*store, folder, args[1]), args[1]);
  if (verb == QLatin1String("delete") && args.size() == 2)
    return ExitCode(DeleteNamedConfig(folder, args[1]), args[1]);
  if (verb == QLatin1String("rename") && args.size() == 3)
    return ExitCode(RenameNamedConfig(folder, args[1], args[2], replace), args[2]);
  if (verb == QLatin1String("get") && args.size() == 3) {
    if (!store->contains(args[1], args[2])) return kExitFailure;
    Print(ctx.out, store->get(args[1], args[2]) + QLatin1Char('\n'));
    return kExitOk;
  }
  if (verb == QLatin1String("set") && args.size() == 4) {
    if (!SettingTextAccepted(args[1], args[2], args[3], store->locale())) {
      Print(stderr, QStringLiteral("config: недопустимое значение %1 ключа %2 раздела %3\n")
                        .arg(args[3], args[2], args[1]));
      return kExitRefused;
    }
    store->save(args[1], args[2], args[3]);
    return store->lastWriteFailed() ? kExitFailure : kExitOk;
  }
  if (verb == QLatin1String("reset") && args.size() == 1) {
    ResetSettings(*store);
    return store->lastWriteFailed() ? kExitFailure : kExitOk;
  }
  return Usage();
}

}  // namespace aqx::tool
