#pragma once
// ViewRefresh: the one procedure that ends every data-changing command and
// every tick of a run. It recomputes through the engine what the open views
// need and has each open window redraw itself, in a fixed order. Windows plug
// in by filling the action of their step in the registry; a closed window, or
// an empty action, costs nothing.

#include "core/AppState.h"

#include <array>
#include <functional>
#include <vector>

namespace aqx::views {

// The steps, in their order. Each step runs the registry's action of that name;
// the engine steps are filled by InstallEngineSteps (views/Analysis.h).
enum class RefreshStep {
  ShowNotice,               // "Подождите, идет обработка данных ..."
  SpectrumFirst,            // engine: AccountSpectrFull of FirstChannelActive
  SpectrumNext,             // engine: the same for the next channel (trajectory)
  Probe,                    // engine: AccountProbe
  SignalMax,                // engine: AccountSignalMax
  Otmetchick,               // engine: shaft marker detector
  BuildSpectr,              // frmViewSpectr
  SpectrStatusBarParameter,
  BuildCascadeSpectrum,     // frmViewSpectrum
  SignalSetMaxValueMas,     // frmViewSignal
  SignalAccountChannelY0,
  BuildSignal,
  SignalStatusBarParameter,
  BuildTraectoria,          // frmViewTraectoria
  FormaRotorAccount,        // engine: rotor form, then InitData on success
  FormaRotorInitData,
  FormaRotorDiagramInitData,
  FormaRotorSpectrInitData,
  FilePropertyOutData,      // frmViewFileProperty
  PlayerBuildWaveFile,      // frmPlayerSound
  ReloadSetupProbeFilter,   // frmSetupProbe, frmSetupFilter closed and shown again
  ColorPropertyOutInfo,     // frmViewColorProperty
  ParametersOutData,        // frmViewParameters
  CloseNotice,
  kCount
};
inline constexpr size_t kRefreshStepCount = static_cast<size_t>(RefreshStep::kCount);

// What ViewRefresh needs to know besides AppState::ViewOpenFlags, and what
// each window does at its step. The window program fills it.
struct ViewRegistry {
  bool runOn = false;        // a measurement run is on
  bool noticeUp = false;     // frmWarning already shows something
  bool signalStatusBarParameter = false;  // mnuSignalStatusBarParameter ticked
  bool spectrStatusBarParameter = false;  // mnuSpectrStatusBarParameter ticked
  bool filePropertyOpen = false;
  bool playerSoundOpen = false;
  bool setupProbeOpen = false;
  bool setupFilterOpen = false;
  bool colorPropertyOpen = false;
  bool parametersOpen = false;

  // One action per step. The rotor form step returns the engine's result
  // instead: the windows' InitData follow only on 0.
  std::function<int()> formaRotorAccount;
  std::array<std::function<void()>, kRefreshStepCount> actions;

  std::function<void()>& operator[](RefreshStep step) { return actions[static_cast<size_t>(step)]; }
  const std::function<void()>& operator[](RefreshStep step) const { return actions[static_cast<size_t>(step)]; }
};

// The steps that a refresh runs for this state, in order. cheap: the variant
// for a change of the active channel alone.
std::vector<RefreshStep> PlanViewRefresh(const AppState& s, const ViewRegistry& r, bool cheap = false);

// Runs the plan: each step's action, if filled.
void ViewRefresh(const AppState& s, const ViewRegistry& r);
void ViewRefreshCheap(const AppState& s, const ViewRegistry& r);

}  // namespace aqx::views
