// Ways about the record beyond the sliders: the wheel zooms round the
// pointer, a box drawn with Ctrl held zooms to its stretch, and each zoom can
// be taken back.

#include "core/Numeric.h"
#include "views/signal/SignalView.h"

#include <algorithm>
#include <cmath>

namespace aqx::views {

namespace {

constexpr size_t kZoomHistory = 50;

int SignalN(const AppState& s) { return std::clamp(s.SignalDataN, 1, kMaxSamples); }

void Remember(SignalViewState& v) {
  if (v.zoomHistory.size() == kZoomHistory) v.zoomHistory.erase(v.zoomHistory.begin());
  v.zoomHistory.push_back({v.SliderH, v.CentreSample});
}

SignalAction Zoomed(AppState& s, SignalViewState& v, int zoom, double centre) {
  v.SliderH = std::clamp(zoom, 0, v.SliderHMax);
  v.CentreSample = RoundHalfEven(std::clamp(centre, 1.0, static_cast<double>(SignalN(s))));
  ConfigSliderH(s, v);
  SignalAction a;
  a.viewRefresh = a.controls = a.statusBar = true;
  return a;
}

}  // namespace

SignalAction ZoomAround(AppState& s, SignalViewState& v, double x, int steps) {
  const int zoom = std::clamp(v.SliderH + steps, 0, v.SliderHMax);
  if (zoom == v.SliderH || v.widthPx <= 0) return {};
  Remember(v);
  const int n = SignalN(s);
  const double pointed = s.ViewFirst + std::clamp(x, 0.0, static_cast<double>(v.widthPx)) / PixelsPerSampleFor(v.SliderH, v.widthPx, n);
  const double pps = PixelsPerSampleFor(zoom, v.widthPx, n);
  const double first = pointed - std::clamp(x, 0.0, static_cast<double>(v.widthPx)) / pps;
  return Zoomed(s, v, zoom, first + std::ldexp(static_cast<double>(n), -zoom) / 2.0);
}

SignalAction ZoomToStretch(AppState& s, SignalViewState& v, int first, int last) {
  if (first > last) std::swap(first, last);
  const int n = SignalN(s);
  const double wanted = std::max(1.0, static_cast<double>(last) - first + 1.0);
  int zoom = 0;
  while (zoom < v.SliderHMax && std::ldexp(static_cast<double>(n), -(zoom + 1)) >= wanted) ++zoom;
  if (zoom == v.SliderH && std::abs(v.CentreSample - (first + last) / 2) < 1) return {};
  Remember(v);
  return Zoomed(s, v, zoom, (static_cast<double>(first) + last) / 2.0);
}

SignalAction ZoomBack(AppState& s, SignalViewState& v) {
  if (v.zoomHistory.empty()) return {};
  const auto [zoom, centre] = v.zoomHistory.back();
  v.zoomHistory.pop_back();
  return Zoomed(s, v, zoom, centre);
}

SignalAction ShowAll(AppState& s, SignalViewState& v) {
  if (v.SliderH == 0) return {};
  Remember(v);
  return Zoomed(s, v, 0, SignalN(s) / 2.0);
}

SignalAction PanBy(AppState& s, SignalViewState& v, double pixels) {
  const double pps = v.PixelsPerSample > 0.0 ? v.PixelsPerSample : 1.0;
  const int position = RoundHalfEven(v.timeScroll + pixels / pps / std::max(1, v.ScrollStep));
  return HScrollChanged(s, v, std::clamp(position, v.timeScrollMin, v.timeScrollMax), true);
}

void FollowNewestRow(AppState& s, SignalViewState& v, int newestRow, int startRows) {
  SetMaxValueMas(s, v);
  const double n = SignalN(s);
  if (startRows > 0) {
    v.SliderH = 0;
    while (v.SliderH < v.SliderHMax && std::ldexp(n, -v.SliderH) > startRows) ++v.SliderH;
  }
  const double visible = std::ldexp(n, -v.SliderH);
  const double last = std::clamp(static_cast<double>(newestRow), visible, n);
  // The scroll bar moves in steps: the step at or before the first row
  // keeps the stretch from reaching past the newest row.
  const int step = ScrollStepFor(static_cast<int>(n));
  const double position = std::floor((last - visible + 1.0) / step);
  v.CentreSample = RoundHalfEven(position * step + visible / 2.0 - 1.0);
  ConfigSliderH(s, v);
}

void StartZoomBox(SignalViewState& v, double x) { v.ZoomBoxFrom = RoundHalfEven(std::max(0.0, x)); }

void DragZoomBox(SignalViewState& v, double x) { v.ZoomBoxTo = RoundHalfEven(std::clamp(x, 0.0, static_cast<double>(v.widthPx))); }

SignalAction EndZoomBox(AppState& s, SignalViewState& v) {
  const int from = v.ZoomBoxFrom;
  const int to = v.ZoomBoxTo;
  v.ZoomBoxFrom = v.ZoomBoxTo = -1;
  SignalAction a;
  a.crosshair = true;
  // A box a few pixels wide is a slip of the hand, not a stretch.
  if (from < 0 || to < 0 || std::abs(to - from) < 4) return a;
  a |= ZoomToStretch(s, v, SelectionSampleAt(from, s.ViewFirst, s.ViewLast, v.widthPx),
                     SelectionSampleAt(to, s.ViewFirst, s.ViewLast, v.widthPx));
  return a;
}

void AppendZoomBox(const SignalViewState& v, DrawList& list) {
  if (v.ZoomBoxFrom < 0 || v.ZoomBoxTo < 0) return;
  Pen pen;
  pen.color = 0x808080;
  pen.dash = DashStyle::Dash;
  pen.xorMode = true;
  list.add(Rect{std::min(v.ZoomBoxFrom, v.ZoomBoxTo), 0, std::max(v.ZoomBoxFrom, v.ZoomBoxTo), v.heightPx, pen, false, 0});
}

}  // namespace aqx::views
