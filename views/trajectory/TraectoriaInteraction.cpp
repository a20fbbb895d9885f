// Status bar, copy header, mouse, bars and sliders of the trajectory view,
// and where the bars go around the picture.

#include "core/ChannelPhysics.h"
#include "core/Numeric.h"
#include "views/CopyHeaderText.h"
#include "views/signal/SignalView.h"
#include "views/trajectory/TraectoriaView.h"

#include <QTime>

#include <algorithm>
#include <cmath>

namespace aqx::views {

namespace {

int ActiveChannel(const AppState& s) { return std::clamp(s.FirstChannelActive, 1, ChannelCount(s)); }

// hh:mm:ss.zzz of a sample.
QString SampleTime(const AppState& s, int sample) {
  constexpr qint64 kDayMs = 86400000;
  qint64 ms = std::llround(SampleSeconds(s, sample) * 1000.0) % kDayMs;
  if (ms < 0) ms += kDayMs;
  return QTime::fromMSecsSinceStartOfDay(static_cast<int>(ms)).toString(QStringLiteral("hh:mm:ss.zzz"));
}

QString MicronText(const AppState& s, int c) {
  if (c < 1 || c > kMaxChannels) return QStringLiteral("0");
  return QString::number(IntFloor(CodesToUnits(s.channels, c, s.channels.KS[c])));
}

}  // namespace

TraectoriaStatus OutInfoToStatusBar(const AppState& s, const TraectoriaViewState& v) {
  TraectoriaStatus st;
  auto set = [&](TraectoriaPanel p, const QString& text) { st.text[static_cast<size_t>(p)] = text; };
  const double divider = v.UnitDivisor != 0.0 ? v.UnitDivisor : 1.0;
  set(TraectoriaPanel::Dimension, QStringLiteral("D: ") + GridNumber(v.ScaleXY / divider).trimmed() + QStringLiteral(" ") +
                                      v.UnitName + QStringLiteral(" "));
  set(TraectoriaPanel::Window, QStringLiteral("W: ") + SampleTime(s, v.BeginSample) + QStringLiteral(" - ") +
                                   SampleTime(s, v.EndSample) + QStringLiteral(" "));
  set(TraectoriaPanel::Cursor, s.options.traectoria.Cursor
                                   ? QStringLiteral("C1 = X: ") + v.CursorTextX + QStringLiteral("мкм Y: ") + v.CursorTextY +
                                         QStringLiteral("мкм ")
                                   : QStringLiteral("C0 "));
  set(TraectoriaPanel::BeginPoint, QStringLiteral("BP = X: ") + MicronText(s, v.ChannelX) + QStringLiteral("мкм Y: ") +
                                       MicronText(s, v.ChannelY) + QStringLiteral("мкм "));
  return st;
}

QStringList TraectoriaCopyHeader(const AppState& s, const Vocabulary& vocab, const TraectoriaViewState& v) {
  QStringList lines = ObjectHeaderLines(s, v.RotorSpeedText);
  const int f = ActiveChannel(s);
  for (int c = f; c <= std::min(f + 1, ChannelCount(s)); ++c) lines << ChannelHeaderLine(s, vocab, c);
  const TraectoriaStatus st = OutInfoToStatusBar(s, v);
  lines << QStringLiteral("Траектория") +
               (s.options.traectoria.TraectoriaFirstGarmonic ? QStringLiteral(" оборотная") : QString()) +
               QStringLiteral(": ") + st[TraectoriaPanel::Dimension].trimmed() + QStringLiteral(", ") +
               st[TraectoriaPanel::Window].trimmed();
  return lines;
}

TraectoriaPointer PointerOf(const AppState& s, const TraectoriaViewState& v) {
  if (s.options.traectoria.Cursor) return TraectoriaPointer::Arrow;
  return v.DragX >= 0 ? TraectoriaPointer::ClosedHand : TraectoriaPointer::OpenHand;
}

TraectoriaAction TraectoriaMouseDown(const AppState& s, TraectoriaViewState& v, TraectoriaButton b, int x, int y) {
  TraectoriaAction a;
  if (b == TraectoriaButton::Right) {
    v.CursorX = v.CursorY = -1;
    a.popupMenu = a.crosshair = true;
    return a;
  }
  if (b != TraectoriaButton::Left) return a;
  v.CursorX = v.DragX = x;
  v.CursorY = v.DragY = y;
  a.pointer = !s.options.traectoria.Cursor;
  return a;
}

TraectoriaAction TraectoriaMouseMove(const AppState& s, TraectoriaViewState& v, int x, int y, bool leftHeld) {
  TraectoriaAction a;
  a.statusBar = true;
  const bool cursorMode = s.options.traectoria.Cursor;
  if (!cursorMode && leftHeld && v.DragX >= 0) {
    auto pan = [](int value, int delta, int& low, int& high) {
      const int moved = static_cast<int>(std::clamp<long long>(static_cast<long long>(value) + delta, -32768, 32767));
      low = std::min(low, moved);
      high = std::max(high, moved);
      return moved;
    };
    v.FlatScrollBarH = pan(v.FlatScrollBarH, x - v.DragX, v.FlatScrollBarHMin, v.FlatScrollBarHMax);
    v.FlatScrollBarV = pan(v.FlatScrollBarV, y - v.DragY, v.FlatScrollBarVMin, v.FlatScrollBarVMax);
    v.CenterX = v.FlatScrollBarH;
    v.CenterY = v.FlatScrollBarV;
    v.DragX = x;
    v.DragY = y;
    v.CursorX = v.CursorY = -1;
    a.redraw = a.controls = true;
    return a;
  }
  if (cursorMode && !leftHeld && x >= 0 && x < v.widthPx && y >= 0 && y < v.heightPx) {
    v.CursorX = x;
    v.CursorY = y;
    v.CursorTextX = QString::number(IntFloor((v.CenterX - x) * v.UnitsPerPixel));
    v.CursorTextY = QString::number(IntFloor((v.CenterY - y) * v.UnitsPerPixel));
    a.crosshair = true;
  }
  return a;
}

TraectoriaAction TraectoriaMouseUp(TraectoriaViewState& v) {
  TraectoriaAction a;
  v.DragX = v.DragY = -1;
  v.CursorX = v.CursorY = -1;
  a.pointer = a.redraw = a.crosshair = true;
  return a;
}

TraectoriaAction TraectoriaDoubleClick(TraectoriaViewState& v) {
  TraectoriaAction a;
  v.DragX = v.DragY = -1;
  a.slowDraw = a.pointer = true;
  return a;
}

TraectoriaAction TraectoriaSliderVChanged(TraectoriaViewState& v, int position) {
  TraectoriaAction a;
  v.SliderV = std::clamp(position, -1, kAmplitudeScaleCount - 1);
  v.ScaleXY = v.SliderV == -1 ? -1 : AmplitudeScale(v.SliderV);
  a.redraw = a.statusBar = a.controls = true;
  return a;
}

namespace {

// One end of the stretch: the bar moved, its sample, and the other bar held
// on this side of it.
TraectoriaAction StretchEndMoved(TraectoriaViewState& v, int value, int& bar, int low, int high, int& sample,
                                 int& otherBound) {
  TraectoriaAction a;
  bar = std::clamp(value, low, std::max(low, high));
  sample = std::clamp(bar * v.ScrollStep, 1, std::max(1, v.StretchSamples));
  otherBound = bar;
  a.redraw = a.statusBar = a.controls = true;
  return a;
}

}  // namespace

TraectoriaAction TraectoriaHScrollLChanged(TraectoriaViewState& v, int value) {
  return StretchEndMoved(v, value, v.HScrollL, v.HScrollLMin, v.HScrollLMax, v.BeginSample, v.HScrollRMin);
}

TraectoriaAction TraectoriaHScrollRChanged(TraectoriaViewState& v, int value) {
  return StretchEndMoved(v, value, v.HScrollR, v.HScrollRMin, v.HScrollRMax, v.EndSample, v.HScrollLMax);
}

TraectoriaAction TraectoriaFlatScrollChanged(TraectoriaViewState& v, bool horizontal, int value) {
  TraectoriaAction a;
  if (horizontal) {
    v.FlatScrollBarH = value;
    v.CenterX = value;
  } else {
    v.FlatScrollBarV = value;
    v.CenterY = value;
  }
  a.redraw = true;
  return a;
}

TraectoriaAction TraectoriaCursorChange(AppState& s, TraectoriaViewState& v) {
  TraectoriaAction a;
  s.options.traectoria.Cursor = !s.options.traectoria.Cursor;
  v.CursorX = v.CursorY = -1;
  a.optionsChanged = a.pointer = a.redraw = a.statusBar = a.crosshair = true;
  return a;
}

TraectoriaAction TraectoriaBeginPointView(AppState& s) {
  TraectoriaAction a;
  s.options.traectoria.BeginPoint = !s.options.traectoria.BeginPoint;
  a.optionsChanged = a.redraw = true;
  return a;
}

TraectoriaAction TraectoriaPanelClicked(AppState& s, TraectoriaViewState& v, TraectoriaPanel panel) {
  if (panel == TraectoriaPanel::Cursor) return TraectoriaCursorChange(s, v);
  if (panel == TraectoriaPanel::BeginPoint) return TraectoriaBeginPointView(s);
  return {};
}

TraectoriaLayout TraectoriaLayoutForSize(int innerWidthPx, int innerHeightPx, bool statusBar, const TraectoriaBarSizes& bars) {
  TraectoriaLayout l;
  int bottom = innerHeightPx;
  if (statusBar) {
    bottom -= bars.statusBarPx;
    l.statusBar = {0, bottom, innerWidthPx, bars.statusBarPx, true};
  }
  const int pictureW = std::max(0, innerWidthPx - bars.scrollPx - bars.sliderPx);
  const int pictureH = std::max(0, bottom - 2 * bars.scrollPx);
  l.picture = {0, 0, pictureW, pictureH, true};
  l.flatScrollBarV = {pictureW, 0, bars.scrollPx, pictureH, true};
  l.sliderV = {pictureW + bars.scrollPx, 0, bars.sliderPx, std::max(0, bottom), true};
  l.flatScrollBarH = {0, pictureH, pictureW, bars.scrollPx, true};
  const int stretchTop = pictureH + bars.scrollPx;
  l.hScrollL = {0, stretchTop, pictureW / 2, bars.scrollPx, true};
  l.hScrollR = {pictureW / 2, stretchTop, pictureW - pictureW / 2, bars.scrollPx, true};
  l.progressBar = {0, stretchTop, pictureW, bars.scrollPx, false};
  return l;
}

}  // namespace aqx::views
