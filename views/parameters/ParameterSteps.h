#pragma once
// The parameter bar and the parameter window with their engine calls: what
// the windows call at ViewRefresh, on resize and on their menu toggles.

#include "views/Analysis.h"
#include "views/parameters/SignalParameters.h"

namespace aqx::views {

// OutStatusBarParameter of the signal view: AccountVolumeField for
// FirstChannelActive, then the panels of its type with the probe values of
// the last AccountProbe.
ParameterBar OutStatusBarParameter(AppState& s, SignalViewState& v, AnalysisResults& r,
                                   int barWidthPx);

// OutData of frmViewParameters: runs the engine call of the channel's type
// (AccountChannelProbe, Otmetchick or AccountSignalMax) and gives the line.
QString OutDataParameters(AppState& s, AnalysisResults& r);

}  // namespace aqx::views
