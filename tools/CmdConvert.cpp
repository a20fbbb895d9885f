// aquilonix-tool convert IN OUT: reads a recording of any layout (or any
// file type the program reads) and writes it as a data file of the current
// layout.

#include "files/DataFile.h"
#include "files/FileReaders.h"
#include "tools/ToolCommand.h"

#include <memory>
#include <optional>

namespace aqx::tool {

int RunConvert(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {});
  if (paths.size() != 2) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool convert IN OUT\n"));
    return kExitRefused;
  }
  const FileReadFn read = FindFileReader(StandardFileReaders(), paths[0]);
  if (!read) {
    Print(stderr, QStringLiteral("convert: '%1' is not a file type the program reads\n").arg(paths[0]));
    return kExitRefused;
  }
  auto state = std::make_unique<AppState>();
  state->PathFileData = paths[0];
  // An ordinary data file's samples go from file to file as they lie.
  std::optional<DataFileArea> area;
  if (!ReadLeavingDataFileSamples(read, *state, *ctx.prompts, area)) return kExitRefused;
  if (area) {
    state->PathFileData = paths[1];
    return WriteDataFileFrom(*state, *area, *ctx.prompts) ? kExitOk : kExitFailure;
  }
  if (state->SolidMode) {
    // Only the block in memory goes out, as an ordinary recording.
    Print(stderr, QStringLiteral("convert: continuous recording, block %1 (%2 samples) is written "
                                 "as an ordinary recording\n")
                      .arg(state->SolidBlockN)
                      .arg(state->SignalDataN));
    state->SolidMode = false;
  }
  state->PathFileData = paths[1];
  if (!WriteDataFile(*state, *ctx.prompts)) return kExitFailure;
  return kExitOk;
}

}  // namespace aqx::tool
