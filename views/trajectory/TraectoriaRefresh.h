#pragma once
// The trajectory view's part in ViewRefresh: its step BuildTraectoria. The
// window program gives the hooks that put the results on screen.

#include "views/Analysis.h"
#include "views/ViewRefresh.h"
#include "views/trajectory/TraectoriaView.h"

#include <functional>

namespace aqx::views {

struct TraectoriaWindowHooks {
  FontMetrics fm;
  std::function<void(DrawList&&)> showPicture;
  std::function<void(TraectoriaStatus&&)> showStatus;
  std::function<void()> controlsChanged;  // caption, sliders and bars to the widgets
};

// Fills BuildTraectoria. The references must outlive the registry's use.
void InstallTraectoriaView(ViewRegistry& registry, AppState& s, TraectoriaViewState& v, AnalysisResults& r,
                           TraectoriaWindowHooks hooks);

}  // namespace aqx::views
