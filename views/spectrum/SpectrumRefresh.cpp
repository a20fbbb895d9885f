#include "views/spectrum/SpectrumRefresh.h"

#include <algorithm>
#include <memory>

namespace aqx::views {

void InstallSpectrView(ViewRegistry& registry, AppState& s, SpectrViewState& v, AnalysisResults& r,
                       SpectrWindowHooks hooks) {
  auto h = std::make_shared<SpectrWindowHooks>(std::move(hooks));
  registry.spectrStatusBarParameter = s.options.spectr.StatusBarParameter;
  registry[RefreshStep::BuildSpectr] = [&s, &v, &r, h] {
    // A refresh brings the spectrum as computed; an integration is undone.
    v.Integrated = false;
    // The trajectory's step leaves the next channel's spectrum in the
    // arrays; this view shows the active channel's.
    if (r.SpectrChannel != std::clamp(s.FirstChannelActive, 1, ChannelCount(s))) {
      AccountChannelSpectrum(s, r, s.FirstChannelActive);
      AccountChannelProbeValues(s, r);
    }
    DrawList picture = BuildSpectr(s, v, r, h->fm);
    if (h->showPicture) h->showPicture(std::move(picture));
    if (h->showStatus) h->showStatus(OutInfoToStatusBar(s, v));
  };
  registry[RefreshStep::SpectrStatusBarParameter] = [&s, &r, h] {
    const int width = h->parameterBarWidthPx ? h->parameterBarWidthPx() : 0;
    if (h->showParameterBar) h->showParameterBar(OutSpectrStatusBarParameter(s, r, width));
  };
}

void InstallCascadeView(ViewRegistry& registry, AppState& s, CascadeViewState& v, CascadeWindowHooks hooks) {
  auto h = std::make_shared<CascadeWindowHooks>(std::move(hooks));
  registry[RefreshStep::BuildCascadeSpectrum] = [&s, &v, h] {
    PrepareCascade(s, v);
    if (h->showPicture) h->showPicture(DrawCascade(s, v));
    if (h->showStatus) h->showStatus();
  };
}

}  // namespace aqx::views
