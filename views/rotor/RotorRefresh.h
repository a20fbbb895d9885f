#pragma once
// The rotor form windows' part in ViewRefresh: the form computed once, then
// InitData of each open window. A failed computation is not hidden: each
// open window is told too, and draws the reason instead of a form that
// belongs to another recording.

#include "views/ViewRefresh.h"
#include "views/rotor/RotorForm.h"

#include <functional>

namespace aqx::views {

struct FormaWindowHooks {
  std::function<void()> formaRotorInitData;  // frmViewFormaRotor
  std::function<void()> diagramInitData;     // frmViewFormaRotorDiagram
  std::function<void()> spectrInitData;      // frmViewFormaRotorSpectr
};

// Fills the rotor form step and the three InitData steps. The references
// must outlive the registry's use.
void InstallFormaRotorViews(ViewRegistry& registry, AppState& s, FormaRotorResults& r, FormaWindowHooks hooks);

}  // namespace aqx::views
