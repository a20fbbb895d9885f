#include "views/trajectory/TraectoriaRefresh.h"

#include <memory>

namespace aqx::views {

void InstallTraectoriaView(ViewRegistry& registry, AppState& s, TraectoriaViewState& v, AnalysisResults& r,
                           TraectoriaWindowHooks hooks) {
  auto h = std::make_shared<TraectoriaWindowHooks>(std::move(hooks));
  registry[RefreshStep::BuildTraectoria] = [&s, &v, &r, h] {
    DrawList picture = BuildTraectoria(s, r, v, h->fm);
    if (h->showPicture) h->showPicture(std::move(picture));
    if (h->showStatus) h->showStatus(OutInfoToStatusBar(s, v));
    if (h->controlsChanged) h->controlsChanged();
  };
}

}  // namespace aqx::views
