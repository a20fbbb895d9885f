// The controls of the signal view: zoom slider, time and zero-line scroll
// bars, the amplitude slider, the channels' vertical layout, and where the
// bars sit in the window.

#include "core/Numeric.h"
#include "views/signal/SignalView.h"

#include <algorithm>
#include <array>
#include <limits>
#include <cmath>

namespace aqx::views {

namespace {

int CurrentChannel(const AppState& s) { return std::clamp(s.FirstChannelActive, 1, ChannelCount(s)); }

int SignalN(const AppState& s) { return std::clamp(s.SignalDataN, 1, kMaxSamples); }

// The zero-line scroll bar takes a position, widening its range to hold it.
void HoldVScroll(SignalViewState& v, int position) {
  v.VScrollMin = std::min(v.VScrollMin, position);
  v.VScrollMax = std::max(v.VScrollMax, position);
  v.VScroll1 = position;
}

}  // namespace

void InitSignalView(const AppState& s, SignalViewState& v) {
  SetMaxValueMas(s, v);
  v.SliderV = -1;
  v.SliderVToolTip = QStringLiteral("Авто");
  v.ScrollStep = ScrollStepFor(SignalN(s));
  v.timeScroll = std::max(1, v.timeScroll);
  v.CentreSample =
      RoundHalfEven(static_cast<double>(v.timeScroll) * v.ScrollStep + std::ldexp(SignalN(s), -v.SliderH) / 2.0 - 1.0);
  v.VScrollMin = 0;
  v.VScrollMax = std::max(0, v.heightPx);
  RefreshElementsImposition(s, v);
}

void SetMaxValueMas(const AppState& s, SignalViewState& v) {
  v.SliderHMax = SliderHMaxFor(SignalN(s));
  v.SliderH = std::clamp(v.SliderH, 0, v.SliderHMax);
}

void ConfigSliderH(AppState& s, SignalViewState& v) {
  const int n = SignalN(s);
  v.SliderH = std::clamp(v.SliderH, 0, v.SliderHMax);
  v.SliderHToolTip = QStringLiteral("Масштаб: ") + QString::number(qint64{1} << v.SliderH) + QStringLiteral(":1");
  v.ScrollStep = ScrollStepFor(n);
  const double visible = std::ldexp(static_cast<double>(n), -v.SliderH);
  v.timeScrollMin = 1;
  v.timeScrollMax = std::clamp(RoundHalfEven((n - visible) / v.ScrollStep), 1, 32767);
  if (v.timeScrollMax == 1) {
    v.timeScroll = 1;
    v.timeScrollLargeChange = 1;
  } else {
    v.timeScrollLargeChange = std::min(RoundHalfEven(visible / v.ScrollStep), v.timeScrollMax);
    v.timeScroll = std::clamp(RoundHalfEven((v.CentreSample - visible / 2.0 + 1.0) / v.ScrollStep), v.timeScrollMin,
                            v.timeScrollMax);
  }
  s.ViewFirst = v.timeScroll == 1 ? 1 : v.timeScroll * v.ScrollStep;
  s.ViewLast = RoundHalfEven(s.ViewFirst + visible - 1.0);
}

void ResetValueElements(SignalViewState& v) {
  v.VScroll1 = RoundHalfEven(v.heightPx / 2.0);
  v.SliderH = 0;
  v.timeScroll = 1;
}

void SetY0(AppState& s, SignalViewState& v) {
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.ChannelY[c] == kChannelUnplaced) s.channels.ChannelY[c] = RoundHalfEven(v.heightPx / 2.0);
  HoldVScroll(v, s.channels.ChannelY[CurrentChannel(s)]);
}

void RefreshElementsImposition(const AppState& s, SignalViewState& v) {
  v.ImpositionLock = true;
  const int c = CurrentChannel(s);
  const int y = s.channels.ChannelY[c];
  if (y == kChannelUnplaced) {
    v.VScrollMin = 0;
    v.VScrollMax = std::max(0, v.heightPx);
    v.VScroll1 = RoundHalfEven(v.heightPx / 2.0);
  } else {
    HoldVScroll(v, y);
  }
  if (v.SliderV != -1) {
    v.SliderV = -1;
    for (int i = 0; i < 18; ++i)
      if (AmplitudeScale(i) == s.channels.ChannelYm[c]) v.SliderV = i;
  }
  v.ImpositionLock = false;
}

void AccountChannelY0(AppState& s, SignalViewState& v) {
  if (!s.options.parameters.AutoY0 || v.heightPx <= 0) return;
  const int n = ActiveUsedCount(s);
  const std::vector<int> centres = BandCentres(v.heightPx, n);
  size_t k = 0;
  for (int c = 1; c <= ChannelCount(s) && k < centres.size(); ++c) {
    if (s.channels.Channel[c] != 1 || s.channels.Active[c] != 1) continue;
    s.channels.ChannelY[c] = centres[k++];
    if (v.SliderV == -1) s.channels.ChannelYm[c] = AutoScaleOf(s, v, c, n);
  }
  if (n > 0) HoldVScroll(v, s.channels.ChannelY[CurrentChannel(s)]);
}

namespace {

// One pass over the rows for every channel at once: a row is 32 codes side
// by side, so the whole store is read once, whatever the channel count.
void FindExtremes(const AppState& s, SignalViewState::Extremes& e) {
  const int16_t* row = s.SignalData.data() + static_cast<size_t>(e.first - 1) * kMaxChannels;
  std::array<int16_t, kMaxChannels> least, greatest;
  least.fill(std::numeric_limits<int16_t>::max());
  greatest.fill(std::numeric_limits<int16_t>::min());
  for (int r = e.first; r <= e.last; ++r, row += kMaxChannels) {
    for (size_t c = 0; c < kMaxChannels; ++c) {
      least[c] = std::min(least[c], row[c]);
      greatest[c] = std::max(greatest[c], row[c]);
    }
  }
  for (int c = 1; c <= kMaxChannels; ++c) {
    e.least[c] = e.last >= e.first ? least[static_cast<size_t>(c - 1)] : 0;
    e.greatest[c] = e.last >= e.first ? greatest[static_cast<size_t>(c - 1)] : 0;
  }
}

}  // namespace

int AutoScaleOf(const AppState& s, SignalViewState& v, int channel, int activeCount) {
  const int rows = std::clamp(s.SignalDataN, 1, kMaxSamples);
  const int first = std::clamp(s.ViewFirst, 1, rows);
  const int last = std::clamp(s.ViewLast, first, rows);
  SignalViewState::Extremes& e = v.extremes;
  if (e.writeCount != s.SignalData.writeCount() || e.first != first || e.last != last || e.rows != rows) {
    e.writeCount = s.SignalData.writeCount();
    e.first = first;
    e.last = last;
    e.rows = rows;
    FindExtremes(s, e);
  }
  const double offset = s.AccountOffset ? s.SignalOffset[channel] : 0.0;
  return AutoChannelYm(DisplayPeak(s.channels, channel, e.least[channel], e.greatest[channel], offset), activeCount);
}

SignalLayout LayoutForSize(int innerWidthPx, int innerHeightPx, const SignalOptions& o, const SignalBarSizes& bars) {
  SignalLayout layout;
  int bottom = innerHeightPx;
  if (o.StatusBar) {
    bottom -= bars.statusBarPx;
    layout.statusBar = {0, bottom, innerWidthPx, bars.statusBarPx, true};
  }
  if (o.StatusBarParameter) {
    bottom -= bars.parameterBarPx;
    layout.statusBarParameter = {0, bottom, innerWidthPx, bars.parameterBarPx, true};
    bottom -= 15;
  }
  int right = innerWidthPx;
  if (o.Control) {
    bottom -= bars.scrollPx + bars.sliderPx;
    right -= bars.scrollPx + bars.sliderPx;
  }
  if (right < 11 || bottom < 11) return layout;
  layout.moved = true;
  layout.picture = {0, 0, right, bottom, true};
  if (o.Control) {
    layout.hScroll = {0, bottom, right, bars.scrollPx, true};
    layout.sliderH = {0, bottom + bars.scrollPx, right, bars.sliderPx, true};
    layout.vScroll = {right, 0, bars.scrollPx, bottom, true};
    layout.sliderV = {right + bars.scrollPx, 0, bars.sliderPx, bottom, true};
  }
  return layout;
}

}  // namespace aqx::views
