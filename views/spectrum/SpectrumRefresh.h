#pragma once
// The spectrum family's part in ViewRefresh: what the spectrum window does
// at BuildSpectr and SpectrStatusBarParameter, and the cascade at
// BuildCascadeSpectrum. The window program gives the hooks that put results
// on screen.

#include "views/Analysis.h"
#include "views/ViewRefresh.h"
#include "views/spectrum/CascadeView.h"
#include "views/spectrum/SpectrumView.h"

#include <functional>

namespace aqx::views {

struct SpectrWindowHooks {
  FontMetrics fm;
  std::function<void(DrawList&&)> showPicture;
  std::function<void(SpectrStatus&&)> showStatus;
  std::function<void(ParameterBar&&)> showParameterBar;
  std::function<int()> parameterBarWidthPx;
};

// Fills BuildSpectr and SpectrStatusBarParameter. The references must outlive
// the registry's use.
void InstallSpectrView(ViewRegistry& registry, AppState& s, SpectrViewState& v, AnalysisResults& r,
                       SpectrWindowHooks hooks);

struct CascadeWindowHooks {
  std::function<void(DrawList&&)> showPicture;
  std::function<void()> showStatus;
};

// Fills BuildCascadeSpectrum.
void InstallCascadeView(ViewRegistry& registry, AppState& s, CascadeViewState& v, CascadeWindowHooks hooks);

}  // namespace aqx::views
