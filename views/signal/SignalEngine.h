#pragma once
// The engine calls of the signal view, each in one place: thinning of a
// channel to pixel columns and the shaft marker detector.

#include "core/AppState.h"
#include "views/signal/SignalView.h"

#include <cstdint>
#include <vector>

namespace aqx::views {

// AccountDataBuildSignal for one channel over ViewFirst..ViewLast: fills
// `columns` with widthPx rows of (top, bottom) pixel ordinates, the extremes
// of the samples that fall on each column. widthPx is held to 10 at least;
// ordinates far off the picture are held to -heightPx..2*heightPx.
void ThinChannel(const AppState& s, int channel, int widthPx, int heightPx, int channelY, double pixelsPerSample,
                 double pixelsPerUnit, std::vector<int32_t>& columns);

// Otmetchick over the current range: fills ShaftMarks and ShaftMarkCount and
// returns speeds, and level and direction when the detector sets them itself.
RotorSpeed RunOtmetchick(AppState& s, const SignalViewOptions& o);

// What the engine steps read from the options (the constant part filter, the
// max/mean switch, the shaft marker detector), taken from the settings in the
// state: the options of a command that has no window.
SignalViewOptions EngineOptionsFromSettings(const AppState& s);

}  // namespace aqx::views
