// aquilonix-tool dump FILE --channel C [--first A] [--last B]: the codes of
// one recorded channel, one per line, samples A..B (1-based, default the
// whole recording).

#include "files/FileReaders.h"
#include "tools/ToolCommand.h"

#include <charconv>
#include <memory>
#include <optional>
#include <vector>

namespace aqx::tool {

namespace {

std::optional<int> IntegerOption(const QStringList& args, const QString& name, int fallback) {
  if (!args.contains(name)) return fallback;
  bool ok = false;
  const int v = OptionValue(args, name).toInt(&ok);
  return ok ? std::optional<int>(v) : std::nullopt;
}

}  // namespace

int RunDump(ToolContext& ctx) {
  const QString usage =
      QStringLiteral("usage: aquilonix-tool dump FILE --channel C [--first A] [--last B]\n");
  const QStringList valueOptions{QStringLiteral("--channel"), QStringLiteral("--first"),
                                 QStringLiteral("--last")};
  const QStringList paths = Positionals(ctx.args, valueOptions);
  const std::optional<int> channel = IntegerOption(ctx.args, QStringLiteral("--channel"), 0);
  if (paths.size() != 1 || !channel || *channel == 0) {
    Print(stderr, usage);
    return kExitRefused;
  }
  const FileReadFn read = FindFileReader(StandardFileReaders(), paths[0]);
  if (!read) {
    Print(stderr, QStringLiteral("dump: '%1' is not a file type the program reads\n").arg(paths[0]));
    return kExitRefused;
  }
  auto state = std::make_unique<AppState>();
  state->PathFileData = paths[0];
  if (!read(*state, *ctx.prompts)) return kExitRefused;
  const AppState& s = *state;

  const int c = *channel;
  if (c < 1 || c > ChannelCount(s) || s.channels.Channel[c] != 1) {
    Print(stderr, QStringLiteral("dump: channel %1 is not recorded in this file\n").arg(c));
    return kExitRefused;
  }
  const std::optional<int> first = IntegerOption(ctx.args, QStringLiteral("--first"), 1);
  const std::optional<int> last = IntegerOption(ctx.args, QStringLiteral("--last"), s.SignalDataN);
  if (!first || !last || *first < 1 || *last > s.SignalDataN || *first > *last) {
    Print(stderr, QStringLiteral("dump: samples run from 1 to %1\n").arg(s.SignalDataN));
    Print(stderr, usage);
    return kExitRefused;
  }
  // One buffer per 64 KiB of text: a million lines go out in a few writes.
  std::vector<char> text;
  text.reserve(1 << 16);
  for (int i = *first; i <= *last; ++i) {
    char digits[8];
    const auto end = std::to_chars(digits, digits + sizeof digits, s.SignalData.at(i, c)).ptr;
    text.insert(text.end(), digits, end);
    text.push_back('\n');
    if (text.size() > (1 << 16) - 16 || i == *last) {
      std::fwrite(text.data(), 1, text.size(), ctx.out);
      text.clear();
    }
  }
  return std::ferror(ctx.out) ? kExitFailure : kExitOk;
}

}  // namespace aqx::tool
