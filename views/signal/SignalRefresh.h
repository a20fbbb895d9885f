#pragma once
// The signal view's part in ViewRefresh: what its window does at steps 7 of
// the refresh (scale, layout, picture, parameter bar). The window program
// gives the hooks that put results on screen.

#include "views/Analysis.h"
#include "views/ViewRefresh.h"
#include "views/parameters/SignalParameters.h"
#include "views/signal/SignalView.h"

#include <functional>

namespace aqx::views {

struct SignalWindowHooks {
  FontMetrics fm;
  std::function<void(DrawList&&)> showPicture;          // the new picture
  std::function<void(SignalStatus&&)> showStatus;       // StatusBar1 after the picture
  std::function<void(ParameterBar&&)> showParameterBar;  // StatusBarParameter
  std::function<int()> parameterBarWidthPx;
  std::function<void()> controlsChanged;                // sliders and bars to the widgets
};

// Fills SignalSetMaxValueMas, SignalAccountChannelY0, BuildSignal and
// SignalStatusBarParameter. The references must outlive the registry's use.
void InstallSignalView(ViewRegistry& registry, AppState& s, SignalViewState& v,
                       AnalysisResults& r, SignalWindowHooks hooks);

}  // namespace aqx::views
