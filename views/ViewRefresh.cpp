#include "views/ViewRefresh.h"

namespace aqx::views {

std::vector<RefreshStep> PlanViewRefresh(const AppState& s, const ViewRegistry& r, bool cheap) {
  using S = RefreshStep;
  auto open = [&](ViewWindow w) { return s.ViewOpenFlags[static_cast<size_t>(w)]; };
  const bool signal = open(frmViewSignal);
  const bool spectr = open(frmViewSpectr);
  const bool traectoria = open(frmViewTraectoria);
  std::vector<RefreshStep> plan;
  const bool notice = !cheap && !r.runOn && !r.noticeUp;
  if (notice) plan.push_back(S::ShowNotice);
  if (signal || spectr || traectoria) plan.push_back(S::SpectrumFirst);
  // These limits pair the other way round from ChannelCount, and stay so.
  const int lastForNext = s.ChannelDifferential == 1 ? 32 : 16;
  if (traectoria && s.FirstChannelActive != lastForNext) plan.push_back(S::SpectrumNext);
  if (r.signalStatusBarParameter || r.spectrStatusBarParameter) plan.push_back(S::Probe);
  if (!cheap && (signal || traectoria)) {
    plan.push_back(S::SignalMax);
    plan.push_back(S::Otmetchick);
  }
  if (spectr) {
    plan.push_back(S::BuildSpectr);
    if (r.spectrStatusBarParameter) plan.push_back(S::SpectrStatusBarParameter);
  }
  if (open(frmViewSpectrum)) plan.push_back(S::BuildCascadeSpectrum);
  if (signal) {
    if (!cheap) {
      plan.push_back(S::SignalSetMaxValueMas);
      plan.push_back(S::SignalAccountChannelY0);
      plan.push_back(S::BuildSignal);
    }
    if (r.signalStatusBarParameter) plan.push_back(S::SignalStatusBarParameter);
  }
  if (traectoria) plan.push_back(S::BuildTraectoria);
  if (!cheap) {
    if (open(frmViewFormaRotor) || open(frmViewFormaRotorDiagram) || open(frmViewFormaRotorSpectr)) {
      plan.push_back(S::FormaRotorAccount);
      if (open(frmViewFormaRotor)) plan.push_back(S::FormaRotorInitData);
      if (open(frmViewFormaRotorDiagram)) plan.push_back(S::FormaRotorDiagramInitData);
      if (open(frmViewFormaRotorSpectr)) plan.push_back(S::FormaRotorSpectrInitData);
    }
    if (r.filePropertyOpen) plan.push_back(S::FilePropertyOutData);
    if (r.playerSoundOpen) plan.push_back(S::PlayerBuildWaveFile);
    if (!r.runOn && (r.setupProbeOpen || r.setupFilterOpen)) plan.push_back(S::ReloadSetupProbeFilter);
  }
  if (r.colorPropertyOpen) plan.push_back(S::ColorPropertyOutInfo);
  if (r.parametersOpen) plan.push_back(S::ParametersOutData);
  if (notice) plan.push_back(S::CloseNotice);
  return plan;
}

namespace {
void Run(const AppState& s, const ViewRegistry& r, bool cheap) {
  bool formaRotorOk = true;
  for (RefreshStep step : PlanViewRefresh(s, r, cheap)) {
    switch (step) {
      case RefreshStep::FormaRotorAccount:
        formaRotorOk = !r.formaRotorAccount || r.formaRotorAccount() == 0;
        continue;
      case RefreshStep::FormaRotorInitData:
      case RefreshStep::FormaRotorDiagramInitData:
      case RefreshStep::FormaRotorSpectrInitData:
        if (!formaRotorOk) continue;
        break;
      default:
        break;
    }
    if (const auto& action = r[step]) action();
  }
}
}  // namespace

void ViewRefresh(const AppState& s, const ViewRegistry& r) { Run(s, r, false); }

void ViewRefreshCheap(const AppState& s, const ViewRegistry& r) { Run(s, r, true); }

}  // namespace aqx::views
