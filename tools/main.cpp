#include "tools/ToolCommand.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include <memory>

using namespace aqx::tool;

namespace {
void PrintUsage(FILE* stream) {
  Print(stream, QStringLiteral("usage: aquilonix-tool [--settings FILE] COMMAND [ARGS]\n"));
  for (const ToolCommand& c : CommandTable())
    Print(stream, QStringLiteral("  ") + QString::fromUtf8(c.usage) + QLatin1Char('\n'));
}

// The command's name: the first argument that is not --settings FILE.
QString CommandName(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (QByteArray(argv[i]) == "--settings") {
      ++i;
      continue;
    }
    return QString::fromLocal8Bit(argv[i]);
  }
  return {};
}

// Painting needs a GUI application; without a display it draws offscreen.
std::unique_ptr<QCoreApplication> MakeApplication(int& argc, char** argv) {
  if (!CommandNeedsGui(CommandName(argc, argv))) return std::make_unique<QCoreApplication>(argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
      qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  return std::make_unique<QGuiApplication>(argc, argv);
}
}  // namespace

int main(int argc, char** argv) {
  const std::unique_ptr<QCoreApplication> app = MakeApplication(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("Aquilonix"));
  QStringList args = QCoreApplication::arguments().mid(1);
  ToolContext ctx;
  const int settingsAt = static_cast<int>(args.indexOf(QStringLiteral("--settings")));
  if (settingsAt >= 0) {
    if (settingsAt + 1 >= args.size()) {
      PrintUsage(stderr);
      return kExitRefused;
    }
    ctx.settingsFile = args[settingsAt + 1];
    args.remove(settingsAt, 2);
  }
  if (args.isEmpty() || args[0] == QStringLiteral("--help") || args[0] == QStringLiteral("help")) {
    PrintUsage(args.isEmpty() ? stderr : stdout);
    return args.isEmpty() ? kExitRefused : kExitOk;
  }
  aqx::StderrPrompts prompts;
  ctx.prompts = &prompts;
  const QString name = args.takeFirst();
  ctx.args = args;
  for (const ToolCommand& c : CommandTable())
    if (name == QString::fromUtf8(c.name)) return c.run(ctx);
  Print(stderr, QStringLiteral("aquilonix-tool: unknown command '%1'\n").arg(name));
  PrintUsage(stderr);
  return kExitRefused;
}
