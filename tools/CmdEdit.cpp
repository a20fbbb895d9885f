// aquilonix-tool edit IN OUT.aqx EDIT ...: the edit commands of the signal
// view on a recording, with the same code as the menu, then a data file of
// the current layout. The stretch is --first/--last (samples from 1), the
// channel --channel. Edits: cut, smooth, zero, copy-to ROW (memorise the
// stretch and paste it from ROW), shift ANGLE, reaccount; "values" prints
// the clipboard text of the stretch instead of writing a file.

#include "files/DataFile.h"
#include "files/FileReaders.h"
#include "tools/ToolCommand.h"
#include "views/edit/SignalEdit.h"

#include "core/Vocabulary.h"

#include <memory>

namespace aqx::tool {

int RunEdit(ToolContext& ctx) {
  const QStringList valueOptions = {QStringLiteral("--first"), QStringLiteral("--last"), QStringLiteral("--channel")};
  const QStringList words = Positionals(ctx.args, valueOptions);
  const QString usage = QStringLiteral(
      "usage: aquilonix-tool edit IN OUT.aqx cut|smooth|zero|copy-to ROW|shift ANGLE|reaccount "
      "[--channel C] [--first A --last B]\n       aquilonix-tool edit IN values [--channel C] [--first A --last B]\n");
  if (words.size() < 3 && !(words.size() == 2 && words[1] == QStringLiteral("values"))) {
    Print(stderr, usage);
    return kExitRefused;
  }
  const FileReadFn read = FindFileReader(StandardFileReaders(), words[0]);
  if (!read) {
    Print(stderr, QStringLiteral("edit: '%1' is not a file type the program reads (aqx, zrk, rsl, wav)\n").arg(words[0]));
    return kExitRefused;
  }
  auto s = std::make_unique<AppState>();
  s->PathFileData = words[0];
  s->BatchMode = true;
  if (!read(*s, *ctx.prompts)) return kExitRefused;
  const auto channel = IntOption(ctx.args, QStringLiteral("edit"), QStringLiteral("--channel"), s->FirstChannelActive, 1, kMaxChannels);
  const auto first = IntOption(ctx.args, QStringLiteral("edit"), QStringLiteral("--first"), 0, 0, s->SignalDataN);
  const auto last = IntOption(ctx.args, QStringLiteral("edit"), QStringLiteral("--last"), first.value_or(0), 0, s->SignalDataN);
  if (!channel || !first || !last) return kExitRefused;
  s->FirstChannelActive = *channel;
  s->SelectFirst = *first;
  s->SelectLast = *last;
  // Without overlaid channels only the chosen one is active.
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Active[c] = c == *channel ? 1 : 0;

  if (words[1] == QStringLiteral("values")) {
    const std::optional<QString> text = views::SignalValuesText(*s, BuildVocabulary().SensorTypeList, QString());
    Print(ctx.out, text.value_or(QString()));
    return kExitOk;
  }
  const QString edit = words[2];
  const QString argument = words.value(3);
  views::EditHistory history;
  views::EditResult result = views::EditResult::Nothing;
  if (edit == QStringLiteral("cut")) {
    result = views::SignalDelete(*s, *ctx.prompts, history);
  } else if (edit == QStringLiteral("smooth")) {
    result = views::SignalSmoothly(*s, *ctx.prompts, history);
  } else if (edit == QStringLiteral("zero")) {
    result = views::SignalZero(*s, *ctx.prompts, history);
  } else if (edit == QStringLiteral("copy-to")) {
    views::SignalClipboard clipboard;
    bool ok = false;
    const int row = argument.toInt(&ok);
    if (!ok || views::SignalMemory(*s, *ctx.prompts, clipboard) == views::EditResult::Nothing) return kExitRefused;
    s->SelectFirst = s->SelectLast = row;
    result = views::SignalPaste(*s, *ctx.prompts, clipboard, history);
  } else if (edit == QStringLiteral("shift")) {
    ScriptedPrompts angle;
    angle.texts = {argument};
    result = views::SignalShift(*s, angle, history);
    for (const ShownPrompt& p : angle.messages()) ctx.prompts->tell(p.text, p.title, p.icon);
  } else if (edit == QStringLiteral("reaccount")) {
    result = views::SetupReAccount(*s, *ctx.prompts, history);
  } else {
    Print(stderr, usage);
    return kExitRefused;
  }
  if (result != views::EditResult::Changed) return kExitRefused;
  s->PathFileData = words[1];
  return WriteDataFile(*s, *ctx.prompts) ? kExitOk : kExitFailure;
}

}  // namespace aqx::tool
