#include "views/signal/SignalRefresh.h"

#include "views/Analysis.h"
#include "views/parameters/ParameterSteps.h"

#include <memory>

namespace aqx::views {

void InstallSignalView(ViewRegistry& registry, AppState& s, SignalViewState& v,
                       AnalysisResults& r, SignalWindowHooks hooks) {
  auto h = std::make_shared<SignalWindowHooks>(std::move(hooks));
  registry[RefreshStep::SignalSetMaxValueMas] = [&s, &v, h] {
    SetMaxValueMas(s, v);
    if (h->controlsChanged) h->controlsChanged();
  };
  registry[RefreshStep::SignalAccountChannelY0] = [&s, &v, h] {
    AccountChannelY0(s, v);
    if (h->controlsChanged) h->controlsChanged();
  };
  registry[RefreshStep::BuildSignal] = [&s, &v, &r, h] {
    // The refresh has just run the detector on this stretch.
    const bool marksFresh = r.speedStretch == DetectorStretch(s);
    if (marksFresh) {
      v.speed = r.speed;
      PrepareSignal(s, v);
    }
    DrawList picture = marksFresh ? DrawSignal(s, v, h->fm) : BuildSignal(s, v, h->fm);
    if (h->showPicture) h->showPicture(std::move(picture));
    if (h->showStatus) h->showStatus(OutInfoToStatusBar(s, v));
  };
  registry[RefreshStep::SignalStatusBarParameter] = [&s, &v, &r, h] {
    const int width = h->parameterBarWidthPx ? h->parameterBarWidthPx() : 0;
    ParameterBar bar = OutStatusBarParameter(s, v, r, width);
    if (h->showParameterBar) h->showParameterBar(std::move(bar));
  };
}

}  // namespace aqx::views
