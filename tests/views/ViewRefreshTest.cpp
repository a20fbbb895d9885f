// The order of ViewRefresh and its cheaper variant, by open windows.

#include "SignalTestSupport.h"

#include "views/ViewRefresh.h"

#include <gtest/gtest.h>

namespace aqx {
namespace {

using namespace views;
using S = RefreshStep;

struct RefreshPlan : ::testing::Test {
  std::unique_ptr<AppState> s = testing_views::MakeState(100);
  ViewRegistry r;
  void Open(ViewWindow w) { s->ViewOpenFlags[static_cast<size_t>(w)] = true; }
};

TEST_F(RefreshPlan, NothingOpenOnlyTheNotice) {
  EXPECT_EQ(PlanViewRefresh(*s, r), (std::vector<S>{S::ShowNotice, S::CloseNotice}));
  r.runOn = true;
  EXPECT_TRUE(PlanViewRefresh(*s, r).empty());
  r.runOn = false;
  r.noticeUp = true;
  EXPECT_TRUE(PlanViewRefresh(*s, r).empty());
}

TEST_F(RefreshPlan, SignalViewWithItsParameterBar) {
  Open(frmViewSignal);
  r.signalStatusBarParameter = true;
  r.parametersOpen = true;
  EXPECT_EQ(PlanViewRefresh(*s, r),
            (std::vector<S>{S::ShowNotice, S::SpectrumFirst, S::Probe, S::SignalMax, S::Otmetchick,
                            S::SignalSetMaxValueMas, S::SignalAccountChannelY0, S::BuildSignal,
                            S::SignalStatusBarParameter, S::ParametersOutData, S::CloseNotice}));
  EXPECT_EQ(PlanViewRefresh(*s, r, true),
            (std::vector<S>{S::SpectrumFirst, S::Probe, S::SignalStatusBarParameter, S::ParametersOutData}));
}

TEST_F(RefreshPlan, EveryWindowInItsPlace) {
  for (int w = 0; w < kViewWindowCount; ++w) Open(static_cast<ViewWindow>(w));
  r.signalStatusBarParameter = r.spectrStatusBarParameter = true;
  r.filePropertyOpen = r.playerSoundOpen = r.setupProbeOpen = r.setupFilterOpen = true;
  r.colorPropertyOpen = r.parametersOpen = true;
  EXPECT_EQ(PlanViewRefresh(*s, r),
            (std::vector<S>{S::ShowNotice, S::SpectrumFirst, S::SpectrumNext, S::Probe, S::SignalMax, S::Otmetchick,
                            S::BuildSpectr, S::SpectrStatusBarParameter, S::BuildCascadeSpectrum,
                            S::SignalSetMaxValueMas, S::SignalAccountChannelY0, S::BuildSignal,
                            S::SignalStatusBarParameter, S::BuildTraectoria, S::FormaRotorAccount,
                            S::FormaRotorInitData, S::FormaRotorDiagramInitData, S::FormaRotorSpectrInitData,
                            S::FilePropertyOutData, S::PlayerBuildWaveFile, S::ReloadSetupProbeFilter,
                            S::ColorPropertyOutInfo, S::ParametersOutData, S::CloseNotice}));
  EXPECT_EQ(PlanViewRefresh(*s, r, true),
            (std::vector<S>{S::SpectrumFirst, S::SpectrumNext, S::Probe, S::BuildSpectr, S::SpectrStatusBarParameter,
                            S::BuildCascadeSpectrum, S::SignalStatusBarParameter, S::BuildTraectoria,
                            S::ColorPropertyOutInfo, S::ParametersOutData}));
  r.runOn = true;  // the setup windows are left alone during a run
  const auto plan = PlanViewRefresh(*s, r);
  EXPECT_EQ(std::count(plan.begin(), plan.end(), S::ReloadSetupProbeFilter), 0);
}

TEST_F(RefreshPlan, TrajectorySecondChannelLimitsPairTheOtherWayRound) {
  Open(frmViewTraectoria);
  auto hasNext = [&] {
    const auto plan = PlanViewRefresh(*s, r);
    return std::count(plan.begin(), plan.end(), S::SpectrumNext) == 1;
  };
  s->FirstChannelActive = 16;
  EXPECT_FALSE(hasNext());
  s->FirstChannelActive = 32;
  EXPECT_TRUE(hasNext());
  s->ChannelDifferential = 1;
  EXPECT_FALSE(hasNext());
  s->FirstChannelActive = 16;
  EXPECT_TRUE(hasNext());
}

TEST_F(RefreshPlan, RunsTheActionsInOrderAndRotorWindowsOnlyOnSuccess) {
  Open(frmViewSignal);
  Open(frmViewFormaRotor);
  std::vector<S> ran;
  for (size_t i = 0; i < kRefreshStepCount; ++i) {
    const S step = static_cast<S>(i);
    r[step] = [&ran, step] { ran.push_back(step); };
  }
  int result = 0;
  r.formaRotorAccount = [&result] { return result; };
  ViewRefresh(*s, r);
  EXPECT_EQ(ran, (std::vector<S>{S::ShowNotice, S::SpectrumFirst, S::SignalMax, S::Otmetchick,
                                 S::SignalSetMaxValueMas, S::SignalAccountChannelY0, S::BuildSignal,
                                 S::FormaRotorInitData, S::CloseNotice}));
  ran.clear();
  result = 103;
  ViewRefreshCheap(*s, r);
  ViewRefresh(*s, r);
  EXPECT_EQ(std::count(ran.begin(), ran.end(), S::FormaRotorInitData), 0);
  EXPECT_EQ(std::count(ran.begin(), ran.end(), S::BuildSignal), 1);
}

}  // namespace
}  // namespace aqx
