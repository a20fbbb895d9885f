#pragma once
// What the spectrum commands of the tool share: a recording read with the
// settings' analyser choices, the channel and stretch asked for, and the
// picture writer of render.

#include "core/AppState.h"
#include "tools/ToolCommand.h"
#include "views/Primitives.h"

namespace aqx::tool {

struct SpectrumRequest {
  int channel = 0;  // the channel in use that was asked for (or the file's current one)
  int first = 1;    // the stretch, rows
  int last = 0;
};

// Reads the settings (--settings or the user's), the recording, and takes
// --channel, --first, --last and --fft (else the settings' analysis
// block); the state then holds the stretch as its view. False after a
// message on stderr (no such file, a channel that is off, an empty stretch).
bool LoadForSpectrum(ToolContext& ctx, const QString& command, const QString& path, AppState& s, SpectrumRequest& r);

// render spectrum|cascade FILE OUT.png.
int RunRenderSpectrum(ToolContext& ctx, const QStringList& positionals);

}  // namespace aqx::tool
