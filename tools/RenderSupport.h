#pragma once
// What the commands that read a recording and paint a view share: reading
// any readable file, integer options within bounds, and writing a picture
// whole or not at all.

#include "core/AppState.h"
#include "tools/ToolCommand.h"
#include "views/Primitives.h"
#include "views/rotor/RotorForm.h"

#include <memory>
#include <optional>

namespace aqx::tool {

inline constexpr int kDefaultWidthPx = 1024;
inline constexpr int kDefaultHeightPx = 600;
inline constexpr int kMaxSidePx = 16384;

// The recording of a data file, a foreign file or a WAVE file; nullptr after
// a message (prefixed with the command's name).
std::unique_ptr<AppState> ReadRecording(ToolContext& ctx, const QString& path, const char* command);
// An integer option within bounds: the fallback when it is not given,
// nullopt (and a message) when it is given but no such number.
std::optional<int> IntOption(const QStringList& args, const QString& name, int fallback, int low, int high,
                             const char* command = "render");
// The picture as a PNG, through a temporary beside the target.
bool SavePicture(const views::DrawList& picture, const QString& path);

// The rotor form for rotor-form and render: --channel picks the turn probe.
// False after a message.
bool ComputeRotorForm(ToolContext& ctx, AppState& s, views::FormaRotorResults& r, const char* command);

// render trajectory|rotor-form|rotor-diagram|rotor-spectrum FILE OUT.png.
bool IsShaftView(const QString& kind);
int RenderShaftView(ToolContext& ctx, const QStringList& positionals);

}  // namespace aqx::tool
