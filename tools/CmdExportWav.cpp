// aquilonix-tool export-wav IN OUT.wav: opens any file the program reads and
// writes its recorded channels as a 16-bit WAVE file, through the same
// export command as the menu, with the save dialog answered by OUT.

#include "files/DataFile.h"
#include "files/FileReaders.h"
#include "files/Wave.h"
#include "tools/ChosenOutput.h"
#include "tools/ToolCommand.h"

#include <memory>
#include <optional>

namespace aqx::tool {

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
  // An ordinary data file's samples are read from it a block at a time.
  std::optional<DataFileArea> area;
  if (!ReadLeavingDataFileSamples(read, *state, *ctx.prompts, area)) return kExitRefused;
  ChosenOutput prompts(*ctx.prompts, paths[1]);
  return ExportWaveCommand(*state, prompts, area ? &*area : nullptr) ? kExitOk : kExitFailure;
}

}  // namespace aqx::tool
