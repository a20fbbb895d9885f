// The picture of the signal view, drawn whole in a fixed order: centre line,
// shaft marker lines, zero line, time grid, user markers, per channel the
// level grid, thresholds and the trace, then begin point, selection, frame.

#include "core/Numeric.h"
#include "core/ChannelPhysics.h"
#include "views/DrawSupport.h"
#include "views/signal/SignalEngine.h"
#include "views/signal/SignalView.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <limits>

namespace aqx::views {

namespace {

Pen InvertPen() {
  Pen p = MakePen(0xFFFFFF);
  p.xorMode = true;
  return p;
}

// Level labels are plain decimal numbers: no exponent, no grouping.
QString PlainNumber(double value) {
  if (std::fabs(value - std::round(value)) < 1e-9) return QString::number(static_cast<qint64>(std::llround(value)));
  QString text = QString::number(value, 'f', 3);
  while (text.endsWith(QLatin1Char('0'))) text.chop(1);
  return text;
}

int SecondsOfDay(double oleDays) {
  const QDateTime t = OleToDateTime(oleDays);
  if (!t.isValid()) return 0;
  const QTime time = t.time();
  return time.hour() * 3600 + time.minute() * 60 + time.second();
}

int CurrentChannel(const AppState& s) {
  return std::clamp(s.FirstChannelActive, 1, ChannelCount(s));
}

bool SelectionDragInProgress(const AppState& s, const SignalViewState& v) {
  return CursorOf(s) != SignalCursor::None && v.DragX >= 0;
}

void DrawTimeGrid(const AppState& s, const SignalViewState& v, const FontMetrics& fm,
                  double step, DrawList& list, std::vector<Text>& labels) {
  const double freq = ChannelRateHz(s);
  const double pps = v.PixelsPerSample;
  const double stepPx = freq * pps * step;
  if (stepPx <= 0.0) return;
  const double origin = static_cast<double>(v.timeScroll) * v.ScrollStep;
  const int firstTick = RoundHalfEven(origin / freq / step - 1.0);
  double t = firstTick * step;
  const double offset = ClockOffsetSeconds(s);
  const Pen pen = MakePen(s.options.color.ColorGrid, 1, DashStyle::Dot);
  int labelEnd = std::numeric_limits<int>::min();
  for (double x = stepPx - RoundHalfEven(origin * pps - freq * pps * t); x <= v.widthPx; x += stepPx) {
    t += step;
    const int xi = RoundHalfEven(x);
    list.add(Line{xi, 0, xi, v.heightPx, pen});
    // A label that would run into the one before it is left out; the tick
    // stays.
    // So is one that the right edge would cut.
    const QString label = TimeText(t + offset);
    const int width = fm.widthOf(label.toStdString());
    if (xi + 1 < labelEnd || xi + 1 + width > v.widthPx) continue;
    labels.push_back(MakeText(xi + 1, v.heightPx - fm.lineHeight - 1, label, s.options.color.ColorText));
    labelEnd = xi + 1 + width + fm.charWidth;
  }
}

void DrawUserMarkers(const AppState& s, const SignalViewState& v, const FontMetrics& fm, DrawList& list) {
  const int count = std::clamp(s.markers.MarkerN, 0, kMaxMarkers);
  // A cyclic record is dated when its run stopped, a continuous one when it
  // started: marks stamped during the last cycle of a run must land on it.
  const double rateHz = ChannelRateHz(s);
  const double start = SecondsOfDay(s.object.RecordDate) -
                       (s.SolidMode || !(rateHz > 0.0) ? 0.0 : s.SignalDataN / rateHz);
  for (int i = 0; i < count; ++i) {
    if (s.markers.MarkerOn[static_cast<size_t>(i)] == 0) continue;
    const double seconds = SecondsOfDay(s.markers.MarkerDate[static_cast<size_t>(i)]) - start;
    const double x = (seconds * ChannelRateHz(s) - s.ViewFirst - (s.SolidBlockN - 1.0) * s.SignalDataN) * v.PixelsPerSample;
    if (x <= 0.0 || x >= v.widthPx) continue;
    const BgrColor color = s.markers.MarkerColor[static_cast<size_t>(i)];
    const int xi = RoundHalfEven(x);
    list.add(Line{xi, 0, xi, v.heightPx, MakePen(color)});
    const int y = RoundHalfEven(s.markers.MarkerShift[static_cast<size_t>(i)] * fm.lineHeight / 15.0);
    list.add(MakeText(xi + 1, y, s.markers.MarkerRemark[static_cast<size_t>(i)].left(50).trimmed(), color));
  }
}

void DrawLevelGrid(const AppState& s, const SignalViewState& v, const FontMetrics& fm,
                   int channel, DrawList& list, std::vector<Text>& labels) {
  const int stepPx = std::max(1, RoundHalfEven(v.heightPx / 10.0));
  const int stepUnits = RoundHalfEven(s.channels.ChannelYm[channel] / 5.0);
  const double divisor = s.UnitDivisor != 0.0 ? s.UnitDivisor : 1.0;
  const int64_t y0 = s.channels.ChannelY[channel];
  const Pen pen = MakePen(s.options.color.ColorGrid, 1, DashStyle::Dot);
  // Labels sit above their line, below it at the top edge, and keep clear of
  // the time labels along the bottom.
  const int labelFloor = s.options.signal.ScaleX ? v.heightPx - fm.lineHeight - 1 : v.heightPx;
  // The topmost label names the unit.
  bool unitTold = false;
  auto add = [&](int64_t k, int64_t y) {
    const int yi = static_cast<int>(y);
    list.add(Line{0, yi, v.widthPx, yi, pen});
    QString label = PlainNumber(static_cast<double>(k * stepUnits) / divisor);
    if (!unitTold && yi <= labelFloor) {
      label += QLatin1Char(' ') + s.UnitName;
      unitTold = true;
    }
    if (yi < fm.lineHeight) {
      labels.push_back(MakeText(2, yi + 1, label, s.options.color.ColorText, TextAnchor::TopLeft));
    } else if (yi <= labelFloor) {
      labels.push_back(MakeText(2, yi, label, s.options.color.ColorText, TextAnchor::BottomLeft));
    }
  };
  // Upward from the zero line, positive values, while on the picture.
  for (int64_t k = std::max<int64_t>(1, (y0 - v.heightPx + stepPx - 1) / stepPx);; ++k) {
    const int64_t y = y0 - k * stepPx;
    if (y < 0) break;
    if (y <= v.heightPx) add(k, y);
  }
  // Downward, negative values.
  for (int64_t k = std::max<int64_t>(1, (-y0 + stepPx - 1) / stepPx);; ++k) {
    const int64_t y = y0 + k * stepPx;
    if (y > v.heightPx) break;
    if (y >= 0) add(-k, y);
  }
}

// Labels go over the traces on a patch of the background, so that a trace
// never makes them unreadable.
void AddLabels(const std::vector<Text>& labels, BgrColor background, const FontMetrics& fm, DrawList& list) {
  for (const Text& t : labels) {
    const int width = fm.widthOf(t.utf8);
    const bool bottom = t.anchor == TextAnchor::BottomLeft || t.anchor == TextAnchor::BottomRight;
    const bool right = t.anchor == TextAnchor::BottomRight || t.anchor == TextAnchor::TopRight;
    const int left = right ? t.x - width : t.x;
    const int top = bottom ? t.y - fm.lineHeight : t.y;
    list.add(Rect{left - 1, top, left + width + 1, top + fm.lineHeight, Pen{background}, true, background});
    list.add(t);
  }
}

// With channels overlaid, a legend names each trace in its colour.
void DrawLegend(const AppState& s, const FontMetrics& fm, std::vector<Text>& labels, int widthPx) {
  int row = 0;
  for (int c = 1; c <= ChannelCount(s); ++c) {
    if (s.channels.Active[c] != 1 || s.channels.Channel[c] != 1) continue;
    const QString where = (s.channels.Place[c].trimmed() + QLatin1Char(' ') + s.channels.Direct[c].trimmed()).trimmed();
    const QString text = QStringLiteral("№%1").arg(c) + (where.isEmpty() ? QString() : QLatin1Char(' ') + where);
    labels.push_back(MakeText(widthPx - 4, 2 + row++ * fm.lineHeight, text, s.channels.ChannelColor[c], TextAnchor::TopRight));
  }
}

void DrawThreshold(const SignalViewState& v, int y, BgrColor color, const QString& caption, DrawList& list) {
  list.add(Line{0, y, v.widthPx, y, MakePen(color)});
  list.add(MakeText(v.widthPx - 15, y - 3, caption, color, TextAnchor::BottomRight));
}

void DrawTrace(const AppState& s, const SignalViewState& v, int channel, double pixelsPerUnit, DrawList& list) {
  Polyline trace;
  trace.pen = MakePen(s.channels.ChannelColor[channel], s.channels.ChannelLineWidthSignal[channel]);
  // During a run the cycle fills from its first row: what is not acquired
  // yet is not signal and is not drawn.
  const int n = s.RunRowsAcquired > 0 ? std::clamp(s.RunRowsAcquired, 1, kMaxSamples)
                                      : std::clamp(s.SignalDataN, 1, kMaxSamples);
  const int channelY = s.channels.ChannelY[channel];
  const double pps = v.PixelsPerSample;
  if (pps >= 1.0) {
    const CodeOrdinate ord =
        ChannelOrdinate(s.channels, channel, pixelsPerUnit, channelY, s.AccountOffset ? s.SignalOffset[channel] : 0);
    const int first = std::clamp(s.ViewFirst, 1, kMaxSamples);
    // The first sample is scaled to millivolts and those after it taken as
    // raw codes: that difference is part of how this view has always drawn.
    const int y0 = ord.y(kMillivoltsPerCode * s.SignalData.at(first, channel));
    double x = pps / 2.0;
    trace.xs = {0, RoundHalfEven(x)};
    trace.ys = {y0, y0};
    const int last = static_cast<int>(std::min<int64_t>(int64_t{s.ViewLast} + 1, n));
    if (last > first) {
      trace.xs.reserve(static_cast<size_t>(last - first) * 2 + 2);
      trace.ys.reserve(static_cast<size_t>(last - first) * 2 + 2);
    }
    for (int sample = first + 1; sample <= last; ++sample) {
      const int y = ord.y(s.SignalData.at(sample, channel));
      trace.xs.push_back(RoundHalfEven(x));
      trace.ys.push_back(y);
      x += pps;
      trace.xs.push_back(RoundHalfEven(x));
      trace.ys.push_back(y);
    }
  } else {
    const int lastRow = std::min(s.ViewLast, n);
    const int w = std::clamp(static_cast<int>(std::ceil((lastRow - s.ViewFirst + 1) * pps)), 10, std::max(10, v.widthPx));
    std::vector<int32_t> columns;
    ThinChannel(s, channel, w, lastRow, v.heightPx, channelY, pps, pixelsPerUnit, columns);
    trace.xs.reserve(static_cast<size_t>(w) * 2 + 1);
    trace.ys.reserve(static_cast<size_t>(w) * 2 + 1);
    trace.xs.push_back(0);
    trace.ys.push_back(columns[0]);
    for (int x = 1; x <= w; ++x) {
      const size_t row = static_cast<size_t>(x - 1) * 2;
      trace.xs.push_back(x);
      trace.ys.push_back(columns[row]);
      trace.xs.push_back(x);
      trace.ys.push_back(columns[row + 1]);
    }
  }
  list.add(std::move(trace));
}

}  // namespace

void PrepareSignal(AppState& s, SignalViewState& v) {
  if (v.widthPx < kMinPicturePx || v.heightPx < kMinPicturePx) return;
  // A selection drag keeps its anchor over the redraw.
  if (!SelectionDragInProgress(s, v)) {
    v.CursorX = -1;
    v.CursorY = -1;
  }
  v.PixelsPerSample = PixelsPerSampleFor(v.SliderH, v.widthPx, std::clamp(s.SignalDataN, 1, kMaxSamples));
  v.FreqRotorVisible = FirstMarkerChannel(s) != 0;
  if (v.FreqRotorVisible) v.RotorSpeedText = RotorSpeedText(v.speed);
  const int current = CurrentChannel(s);
  const int activeCount = ActiveUsedCount(s);
  for (int c = 1; c <= ChannelCount(s); ++c) {
    if (s.channels.Active[c] != 1 || s.channels.Channel[c] != 1) continue;
    if (s.channels.ChannelY[c] == kChannelUnplaced) s.channels.ChannelY[c] = RoundHalfEven(v.heightPx / 2.0);
    if (s.channels.ChannelYm[c] <= 0)
      s.channels.ChannelYm[c] = AutoScaleOf(s, v, c, activeCount);
    v.PixelsPerUnit = PixelsPerUnitFor(v.heightPx, s.channels.Volume[c], s.channels.ChannelYm[c]);
    if (c == current) {
      v.PixelsPerUnitFirst = v.PixelsPerUnit;
      SetChannelUnit(s, s.channels.ChannelYm[c]);
    }
  }
}

DrawList DrawSignal(const AppState& s, const SignalViewState& v, const FontMetrics& fm) {
  DrawList list;
  list.width = std::max(0, v.widthPx);
  list.height = std::max(0, v.heightPx);
  list.background = ViewBackground(s);
  if (v.widthPx < kMinPicturePx || v.heightPx < kMinPicturePx) return list;
  const int w = v.widthPx;
  const int h = v.heightPx;
  const int current = CurrentChannel(s);
  const SignalOptions& o = s.options.signal;
  const ColorOptions& colors = s.options.color;
  std::vector<Text> labels;

  if (o.LineCenter) {
    const double span = std::max(1.0, static_cast<double>(s.ViewLast) - s.ViewFirst + 1.0);
    const int x = RoundHalfEven((static_cast<double>(v.CentreSample) - s.ViewFirst) * w / span);
    list.add(Line{x, 0, x, h, MakePen(colors.ColorLineCenterSignal)});
  }

  const int markerChannel = FirstMarkerChannel(s);
  if (markerChannel != 0 && o.OtmetchickLine) {
    const Pen pen = MakePen(colors.ColorLineOtmetchick);
    const int count = std::clamp(s.ShaftMarkCount, 0, kMaxShaftMarks);
    for (int i = 0; i < count; ++i) {
      const double x = SampleToX(s.ShaftMarks[static_cast<size_t>(i)], s.ViewFirst, v.PixelsPerSample);
      if (x < 0.0 || x > w) continue;
      const int xi = RoundHalfEven(x);
      list.add(Line{xi, 0, xi, h, pen});
    }
  }

  if (o.LineZero) {
    const int y = s.channels.ChannelY[current];
    list.add(Line{0, y, w, y, MakePen(colors.ColorLineY0Signal)});
  }

  if (o.ScaleX && ChannelRateHz(s) > 0.0) {
    const double step = NiceTimeStep(w / (ChannelRateHz(s) * v.PixelsPerSample));
    // No step for more than ten hours in view: the picture ends here.
    if (step <= 0.0) return list;
    DrawTimeGrid(s, v, fm, step, list, labels);
  }

  DrawUserMarkers(s, v, fm, list);

  for (int c = 1; c <= ChannelCount(s); ++c) {
    if (s.channels.Active[c] != 1 || s.channels.Channel[c] != 1) continue;
    const double ppu = PixelsPerUnitFor(h, s.channels.Volume[c], s.channels.ChannelYm[c]);
    if (c == current && o.ScaleY) DrawLevelGrid(s, v, fm, c, list, labels);
    if (s.channels.Type[c] == sensor::ShaftMarker && markerChannel != 0) {
      const int markerY = s.channels.ChannelY[markerChannel];
      const OtmetchickOptions& detector = s.options.otmetchick;
      if (o.Otmetchick) {
        const int level = detector.OtmetchickAuto != 0 ? v.speed.OtmetchickLevel : detector.OtmetchickLevel;
        DrawThreshold(v, RoundHalfEven(markerY - level * ppu), colors.ColorLinePorogOtmetchick,
                      QStringLiteral("Порог срабатывания отметчика"), list);
      }
      if (s.InputMode == 3) {
        DrawThreshold(v, RoundHalfEven(markerY - s.SynchroAdPorog * ppu), colors.ColorLineSynchro,
                      QStringLiteral("Порог срабатывания синхронизации"), list);
      }
    }
    DrawTrace(s, v, c, ppu, list);
  }

  if (o.BeginPoint && BeginPointApplies(s.channels.Type[current], s.options.parameters.StatusFilterConst, s.AccountOffset)) {
    const int y = RoundHalfEven(s.channels.ChannelY[current] -
                                CodesToUnits(s.channels, current, s.channels.KS[current]) * v.PixelsPerUnitFirst);
    list.add(Line{0, y, w, y, MakePen(colors.ColorBeginPoint, 1, DashStyle::Dash)});
  }

  if (s.Imposition && ActiveUsedCount(s) > 1) DrawLegend(s, fm, labels, w);
  AddLabels(labels, list.background, fm, list);
  BuildSelectRegion(s, v, list);
  list.add(Rect{0, 0, w, h, MakePen(colors.ColorGrid), false, 0});
  return list;
}

DrawList BuildSignal(AppState& s, SignalViewState& v, const FontMetrics& fm) {
  if (v.widthPx >= kMinPicturePx && v.heightPx >= kMinPicturePx) v.speed = RunOtmetchick(s);
  PrepareSignal(s, v);
  return DrawSignal(s, v, fm);
}

void BuildSelectRegion(const AppState& s, const SignalViewState& v, DrawList& list) {
  if (s.SelectFirst <= 0 && s.SelectLast <= 0) return;
  double span = static_cast<double>(s.ViewLast) - s.ViewFirst;
  if (span == 0.0) span = 1.0;
  const int x1 = RoundHalfEven((static_cast<double>(s.SelectFirst) - s.ViewFirst) * v.widthPx / span);
  const int x2 = RoundHalfEven((static_cast<double>(s.SelectLast) - s.ViewFirst) * v.widthPx / span);
  if (std::abs(x2 - x1) < 2) {
    list.add(Line{x1, 0, x1, v.heightPx, InvertPen()});
  } else {
    list.add(Rect{std::min(x1, x2), 0, std::max(x1, x2), v.heightPx, InvertPen(), true, 0xFFFFFF});
  }
}

void AppendCrosshair(const SignalViewState& v, DrawList& list) {
  if (v.CursorX < 0) return;
  list.add(Line{v.CursorX, 0, v.CursorX, v.heightPx, InvertPen()});
  if (v.CursorY < 0) return;
  list.add(Line{0, v.CursorY, v.widthPx, v.CursorY, InvertPen()});
  constexpr int kBoxHalfPx = 3;
  list.add(Rect{v.CursorX - kBoxHalfPx, v.CursorY - kBoxHalfPx, v.CursorX + kBoxHalfPx + 1,
                v.CursorY + kBoxHalfPx + 1, InvertPen(), false, 0});
}

}  // namespace aqx::views
