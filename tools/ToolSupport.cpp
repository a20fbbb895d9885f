#include "tools/ToolCommand.h"

namespace aqx::tool {

QString OptionValue(const QStringList& args, const QString& name, const QString& fallback) {
  const int i = static_cast<int>(args.indexOf(name));
  if (i >= 0 && i + 1 < args.size()) return args[i + 1];
  return fallback;
}

bool HasFlag(const QStringList& args, const QString& name) { return args.contains(name); }

QStringList Positionals(const QStringList& args, const QStringList& valueOptions) {
  QStringList out;
  for (int i = 0; i < args.size(); ++i) {
    if (valueOptions.contains(args[i])) {
      ++i;
      continue;
    }
    if (args[i].startsWith(QStringLiteral("--"))) continue;
    out << args[i];
  }
  return out;
}

std::optional<int> IntOption(const QStringList& args, const QString& command, const QString& name, int fallback,
                             int low, int high) {
  const QString text = OptionValue(args, name);
  if (text.isEmpty() && !args.contains(name)) return fallback;
  bool ok = false;
  const int value = text.toInt(&ok);
  if (!ok || value < low || value > high) {
    Print(stderr, QStringLiteral("%1: %2 takes a whole number from %3 to %4, not '%5'\n")
                      .arg(command, name)
                      .arg(low)
                      .arg(high)
                      .arg(text));
    return std::nullopt;
  }
  return value;
}

void Print(FILE* stream, const QString& text) {
  const QByteArray bytes = text.toUtf8();
  std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
}

int RunVersion(ToolContext& ctx) {
  Print(ctx.out, QStringLiteral("aquilonix-tool %1.%2.%3\n")
                     .arg(AQX_VERSION_MAJOR)
                     .arg(AQX_VERSION_MINOR)
                     .arg(AQX_VERSION_PATCH));
  return kExitOk;
}

}  // namespace aqx::tool
