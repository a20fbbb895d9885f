#include "views/rotor/RotorRefresh.h"

#include <memory>

namespace aqx::views {

void InstallFormaRotorViews(ViewRegistry& registry, AppState& s, FormaRotorResults& r, FormaWindowHooks hooks) {
  auto h = std::make_shared<FormaWindowHooks>(std::move(hooks));
  registry.formaRotorAccount = [&s, &r, h] {
    const int result = RunFormaRotorAccount(s, r);
    if (result != 0) {
      for (const auto* hook : {&h->formaRotorInitData, &h->diagramInitData, &h->spectrInitData})
        if (*hook) (*hook)();
    }
    return result;
  };
  registry[RefreshStep::FormaRotorInitData] = h->formaRotorInitData;
  registry[RefreshStep::FormaRotorDiagramInitData] = h->diagramInitData;
  registry[RefreshStep::FormaRotorSpectrInitData] = h->spectrInitData;
}

}  // namespace aqx::views
