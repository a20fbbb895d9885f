// aquilonix-tool export-wav IN OUT.wav: opens any file the program reads and
// writes its recorded channels as a 16-bit WAVE file, through the same
// export command as the menu, with the save dialog answered by OUT.

#include "files/FileReaders.h"
#include "files/Wave.h"
#include "tools/ToolCommand.h"

#include <memory>

namespace aqx::tool {

namespace {

// Passes everything on to the tool's prompts, but chooses OUT where the
// command would show the save dialog.
class ChosenOutput : public Prompts {
 public:
  ChosenOutput(Prompts& inner, QString output) : inner_(inner), output_(std::move(output)) {}
  PromptAnswer message(const QString& text, const QString& title, PromptButtons buttons,
                       PromptIcon icon) override {
    return inner_.message(text, title, buttons, icon);
  }
  std::optional<QString> input(const QString& prompt, const QString& title,
                               const QString& defaultText) override {
    return inner_.input(prompt, title, defaultText);
  }
  std::optional<QString> chooseOpenFile(const QString& title, const QString& folder,
                                        const QString& filter) override {
    return inner_.chooseOpenFile(title, folder, filter);
  }
  std::optional<QString> chooseSaveFile(const QString&, const QString&, const QString&,
                                        const QString&) override {
    return output_;
  }
  void notice(const QStringList& lines) override { inner_.notice(lines); }

 private:
  Prompts& inner_;
  QString output_;
};

}  // namespace

int RunExportWav(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {});
  if (paths.size() != 2) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool export-wav IN OUT.wav\n"));
    return kExitRefused;
  }
  const FileReadFn read = FindFileReader(StandardFileReaders(), paths[0]);
  if (!read) {
    Print(stderr, QStringLiteral("export-wav: '%1' is not a file type the program reads "
                                 "(aqx, zrk, rsl, wav)\n").arg(paths[0]));
    return kExitRefused;
  }
  auto state = std::make_unique<AppState>();
  state->PathFileData = paths[0];
  state->BatchMode = true;  // no "reading" notice on a terminal
  if (!read(*state, *ctx.prompts)) return kExitRefused;
  ChosenOutput prompts(*ctx.prompts, paths[1]);
  return ExportWaveCommand(*state, prompts) ? kExitOk : kExitFailure;
}

}  // namespace aqx::tool
