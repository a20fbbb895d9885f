// Mouse, scroll bars, sliders and status panels of the signal view as state
// transitions: each event changes the state and says what the window must
// redo.

#include "core/Numeric.h"
#include "core/ChannelPhysics.h"
#include "views/signal/SignalView.h"

#include <algorithm>
#include <cmath>

namespace aqx::views {

namespace {

int CurrentChannel(const AppState& s) { return std::clamp(s.FirstChannelActive, 1, ChannelCount(s)); }

int SignalN(const AppState& s) { return std::clamp(s.SignalDataN, 1, kMaxSamples); }

double Divisor(const AppState& s) { return s.UnitDivisor != 0.0 ? s.UnitDivisor : 1.0; }

// Reading of the stored code at a sample, in the channel's base unit, as the
// cursor readouts compute it (no division by the gain).
double CursorReading(const AppState& s, int channel, int sample) {
  const double code = static_cast<double>(s.SignalData.at(sample, channel)) - s.SignalOffset[channel];
  return ChannelReading(s.channels, channel, code);
}

// "### ### ###": the integer part grouped by three with blanks.
QString GroupedInteger(double value) {
  const qint64 whole = static_cast<qint64>(std::trunc(value));
  QString digits = QString::number(whole < 0 ? -whole : whole);
  for (int i = static_cast<int>(digits.size()) - 3; i > 0; i -= 3) digits.insert(i, QLatin1Char(' '));
  return whole < 0 ? QStringLiteral("-") + digits : digits;
}

void ApplyHScroll(AppState& s, SignalViewState& v, int position) {
  v.timeScroll = std::clamp(position, v.timeScrollMin, std::max(v.timeScrollMin, v.timeScrollMax));
  s.ViewFirst = v.timeScroll == 1 ? 1 : v.timeScroll * v.ScrollStep;
  if (s.ViewFirst == 0) s.ViewFirst = 1;
  s.ViewLast = RoundHalfEven(s.ViewFirst + std::ldexp(static_cast<double>(SignalN(s)), -v.SliderH) - 1.0);
}

// Applies a zero-line position: within the range it moves the line, outside
// it widens the range, past the 16-bit bounds it is refused.
bool ApplyVScroll(AppState& s, SignalViewState& v, int position) {
  if (position < -32768 || position > 32767) return false;
  v.VScrollMin = std::min(v.VScrollMin, position);
  v.VScrollMax = std::max(v.VScrollMax, position);
  v.VScroll1 = position;
  s.channels.ChannelY[CurrentChannel(s)] = position;
  return true;
}

void ClearSelection(AppState& s) {
  s.SelectFirst = 0;
  s.SelectLast = 0;
}

}  // namespace

SignalAction& SignalAction::operator|=(const SignalAction& o) {
  viewRefresh |= o.viewRefresh;
  cheapRefresh |= o.cheapRefresh;
  redraw |= o.redraw;
  crosshair |= o.crosshair;
  statusBar |= o.statusBar;
  controls |= o.controls;
  popupMenu |= o.popupMenu;
  optionsChanged |= o.optionsChanged;
  colorProperty |= o.colorProperty;
  return *this;
}

QString FreeCursorReading(const AppState& s, const SignalViewState& v, double y) {
  const int current = CurrentChannel(s);
  const bool overlaid = s.Imposition && ActiveUsedCount(s) > 1;
  if (!overlaid) {
    const double ppu = v.PixelsPerUnitFirst != 0.0 ? v.PixelsPerUnitFirst : 1.0;
    const double value = (s.channels.ChannelY[current] - y) / ppu / Divisor(s);
    return (s.UnitDivisor == 1.0 ? GroupedInteger(value) : FormatGrouped(value)) + QStringLiteral(" ") + s.UnitName;
  }
  // Overlaid traces each have their band, scale and unit: the reading is
  // that of the trace whose zero line is nearest.
  int nearest = current;
  for (int c = 1; c <= ChannelCount(s); ++c) {
    if (s.channels.Active[c] != 1 || s.channels.Channel[c] != 1) continue;
    if (std::abs(s.channels.ChannelY[c] - y) < std::abs(s.channels.ChannelY[nearest] - y)) nearest = c;
  }
  const double ppu = PixelsPerUnitFor(v.heightPx, s.channels.Volume[nearest], s.channels.ChannelYm[nearest]);
  const double units = (s.channels.ChannelY[nearest] - y) / (ppu != 0.0 ? ppu : 1.0);
  const LevelUnit unit = UnitOfLevel(s.channels.Type[nearest], s.channels.ChannelYm[nearest]).value_or(LevelUnit{});
  const double value = units / (unit.divisor != 0.0 ? unit.divisor : 1.0);
  return QStringLiteral("№%1: ").arg(nearest) + (unit.divisor == 1.0 ? GroupedInteger(value) : FormatGrouped(value)) +
         QStringLiteral(" ") + unit.name;
}

bool CrossPointer(const AppState& s) { return CursorOf(s) != SignalCursor::None; }

SignalAction MouseDown(AppState& s, SignalViewState& v, MouseButton b, double x,
                       double y) {
  SignalAction a;
  if (b == MouseButton::Right) {
    a.popupMenu = true;
    return a;
  }
  if (b != MouseButton::Left) return a;
  v.DragX = RoundHalfEven(std::max(0.0, x));
  v.DragY = RoundHalfEven(std::max(0.0, y));
  if (CursorOf(s) == SignalCursor::None) {
    ClearSelection(s);
    a.cheapRefresh = a.redraw = a.statusBar = true;
  }
  return a;
}

SignalAction MouseMove(AppState& s, SignalViewState& v, double x, double y,
                       bool leftHeld) {
  SignalAction a;
  x = std::max(0.0, x);
  y = std::max(0.0, y);
  const int current = CurrentChannel(s);
  const int n = SignalN(s);

  if (CursorOf(s) != SignalCursor::None && !leftHeld) {
    if (x > v.widthPx || y > v.heightPx) return a;
    v.CursorX = RoundHalfEven(x);
    v.CursorSample = XToSample(v.CursorX, v.timeScroll, v.ScrollStep, v.PixelsPerSample);
    a.crosshair = a.statusBar = true;
    const bool inStore = v.CursorSample >= 1 && v.CursorSample <= n;
    if (CursorOf(s) == SignalCursor::Free) {
      v.CursorY = RoundHalfEven(y);
      v.CursorValueText = FreeCursorReading(s, v, y);
    }
    // A sample beyond the store ends the event without a word.
    if (!inStore) return a;
    if (v.ColorPropertyOpen) {
      for (int c = 1; c <= ChannelCount(s); ++c) {
        if (s.channels.Active[c] != 1 || s.channels.Channel[c] != 1) continue;
        v.ColorPropertyValues[c] = FormatGrouped(CursorReading(s, c, v.CursorSample) / Divisor(s));
      }
      a.colorProperty = true;
    }
    if (CursorOf(s) == SignalCursor::Bound) {
      const double reading = CursorReading(s, current, v.CursorSample);
      // The line sits on the trace: the reading before the unit's divisor.
      v.CursorY = RoundHalfEven(s.channels.ChannelY[current] - reading * v.PixelsPerUnitFirst);
      const double value = reading / Divisor(s);
      v.CursorValueText = (s.UnitDivisor == 1.0 ? GroupedInteger(value) : FormatGrouped(value)) +
                          QStringLiteral(" ") + s.UnitName;
    }
    return a;
  }

  if (CursorOf(s) != SignalCursor::None && leftHeld) {
    v.CursorValueText.clear();
    const int first = s.ViewFirst;
    const int last = s.ViewLast;
    int selectFirst = SelectionSampleAt(x, first, last, v.widthPx);
    // Anchored where the cross-hair last stood, or where the button went down.
    int selectLast = SelectionSampleAt(v.CursorX >= 0 ? v.CursorX : v.DragX, first, last, v.widthPx);
    if (selectFirst > selectLast) std::swap(selectFirst, selectLast);
    v.SelectSaveFirst = selectFirst;
    v.SelectSaveLast = selectLast;
    s.SelectFirst = std::clamp(selectFirst, first, std::max(first, last));
    s.SelectLast = std::clamp(selectLast, first, std::max(first, last));
    if (s.SelectFirst > 0) v.CentreSample = RoundHalfEven((static_cast<double>(s.SelectFirst) + s.SelectLast) / 2.0);
    a.cheapRefresh = a.redraw = a.crosshair = a.statusBar = true;
    return a;
  }

  if (CursorOf(s) == SignalCursor::None && leftHeld && v.DragX >= 0 && v.SliderH > 0) {
    v.DragLock = true;
    const double pps = v.PixelsPerSample > 0 ? v.PixelsPerSample : 1.0;
    if (RoundHalfEven(x) != v.DragX) {
      ApplyHScroll(s, v, RoundHalfEven(v.timeScroll + ((v.DragX - x) / pps) / v.ScrollStep));
    }
    if (RoundHalfEven(y) != v.DragY) ApplyVScroll(s, v, v.VScroll1 + (RoundHalfEven(y) - v.DragY));
    v.DragX = RoundHalfEven(x);
    v.DragY = RoundHalfEven(y);
    v.DragLock = false;
    a.redraw = a.controls = a.statusBar = true;
  }
  return a;
}

SignalAction MouseUp(AppState&, SignalViewState& v) {
  v.DragX = -1;
  v.DragY = -1;
  SignalAction a;
  a.redraw = a.statusBar = true;
  return a;
}

SignalAction HScrollChanged(AppState& s, SignalViewState& v, int position, bool finished) {
  SignalAction a;
  ApplyHScroll(s, v, position);
  a.statusBar = true;
  if (!v.DragLock) a.redraw = true;
  if (finished) a.viewRefresh = true;
  return a;
}

SignalAction VScrollChanged(AppState& s, SignalViewState& v, int position) {
  SignalAction a;
  if (v.ImpositionLock) return a;
  if (!ApplyVScroll(s, v, position)) return a;
  a.statusBar = true;
  if (!v.DragLock) a.redraw = true;
  return a;
}

SignalAction SliderHChanged(AppState& s, SignalViewState& v, int position, bool scrolling) {
  SignalAction a;
  const int pos = std::clamp(position, 0, v.SliderHMax);
  if (scrolling) {
    v.SliderHToolTip = QStringLiteral("Масштаб: ") + QString::number(qint64{1} << pos) + QStringLiteral(":1");
    a.controls = true;
    return a;
  }
  v.SliderH = pos;
  ConfigSliderH(s, v);
  a.viewRefresh = a.controls = a.statusBar = true;
  return a;
}

SignalAction SliderVChanged(AppState& s, SignalViewState& v, int position) {
  SignalAction a;
  if (v.ImpositionLock) return a;
  const int current = CurrentChannel(s);
  v.SliderV = std::clamp(position, -1, 17);
  if (v.SliderV == -1) {
    s.channels.ChannelYm[current] = AutoScaleOf(s, v, current, ActiveUsedCount(s));
    v.SliderVToolTip = QStringLiteral("Авто");
  } else {
    const int entry = AmplitudeScale(v.SliderV);
    s.channels.ChannelYm[current] = entry;
    SetChannelUnit(s, entry);
    v.SliderVToolTip = QString::number(entry / Divisor(s)) + QStringLiteral(" ") + s.UnitName;
  }
  a.redraw = a.controls = a.statusBar = true;
  return a;
}

SignalAction SetTypeCursorViewSignal(AppState& s, SignalViewState& v, SignalCursor entry) {
  SetCursorSetting(s, CursorOf(s) == entry ? SignalCursor::None : entry);
  ClearSelection(s);
  v.CursorValueText.clear();
  SignalAction a;
  a.optionsChanged = a.redraw = a.statusBar = true;
  return a;
}

SignalAction SignalLineCenter(AppState& s) {
  s.options.signal.LineCenter = !s.options.signal.LineCenter;
  SignalAction a;
  a.optionsChanged = a.redraw = true;
  return a;
}

SignalAction SignalBeginPoint(AppState& s) {
  s.options.signal.BeginPoint = !s.options.signal.BeginPoint;
  SignalAction a;
  a.optionsChanged = a.redraw = true;
  return a;
}

SignalAction StatusPanelClicked(AppState& s, SignalViewState& v, SignalPanel panel,
                                MouseButton b) {
  const bool left = b == MouseButton::Left;
  if (!left && b != MouseButton::Right) return {};
  switch (panel) {
    case SignalPanel::Dimension:
      if (left && v.SliderV < 17) return SliderVChanged(s, v, v.SliderV + 1);
      if (!left && v.SliderV > -1) return SliderVChanged(s, v, v.SliderV - 1);
      return {};
    case SignalPanel::Scale:
      if (left && v.SliderH < v.SliderHMax) return SliderHChanged(s, v, v.SliderH + 1, false);
      if (!left && v.SliderH > 0) return SliderHChanged(s, v, v.SliderH - 1, false);
      return {};
    case SignalPanel::Center:
      return SignalLineCenter(s);
    case SignalPanel::Cursor:
      return SetTypeCursorViewSignal(s, v, left ? SignalCursor::Free : SignalCursor::Bound);
    case SignalPanel::Y0: {
      const int current = CurrentChannel(s);
      const int middle = v.heightPx / 2;
      const int y = s.channels.ChannelY[current];
      const int next = y == middle ? v.heightPx : (y == v.heightPx ? 0 : middle);
      ApplyVScroll(s, v, next);
      SignalAction a;
      a.redraw = a.controls = a.statusBar = true;
      return a;
    }
    case SignalPanel::BeginPoint: {
      const int current = CurrentChannel(s);
      if (!BeginPointApplies(s.channels.Type[current], s.options.parameters.StatusFilterConst, s.AccountOffset)) return {};
      return SignalBeginPoint(s);
    }
    default:
      return {};
  }
}

SignalStatus OutInfoToStatusBar(AppState& s, const SignalViewState& v) {
  SignalStatus st;
  const int current = CurrentChannel(s);
  SetChannelUnit(s, s.channels.ChannelYm[current]);
  const double divisor = Divisor(s);
  auto set = [&](SignalPanel p, const QString& text) { st.text[static_cast<size_t>(p)] = text; };
  auto time = [&](double sample) { return TimeText(SampleSeconds(s, sample)); };

  const double dimension = s.channels.ChannelYm[current] / divisor;
  const QString dimensionText =
      divisor == 1.0 ? QString::number(static_cast<qint64>(std::trunc(dimension))) : FormatGrouped(dimension);
  set(SignalPanel::Dimension, QStringLiteral("D: ") + dimensionText + QStringLiteral(" ") + s.UnitName + QStringLiteral(" "));
  set(SignalPanel::Scale, QStringLiteral("M: ") + QString::number(qint64{1} << std::clamp(v.SliderH, 0, 40)) + QStringLiteral(":1 "));
  set(SignalPanel::Window, QStringLiteral("W: ") + time(s.ViewFirst) + QStringLiteral(" - ") + time(s.ViewLast) + QStringLiteral(" "));
  set(SignalPanel::Center, QStringLiteral("F: ") + time(v.CentreSample) + QStringLiteral(" "));
  switch (CursorOf(s)) {
    case SignalCursor::Free: set(SignalPanel::Cursor, QStringLiteral("C1: ") + time(v.CursorSample) + QStringLiteral(" ")); break;
    case SignalCursor::Bound: set(SignalPanel::Cursor, QStringLiteral("C2: ") + time(v.CursorSample) + QStringLiteral(" ")); break;
    case SignalCursor::None: set(SignalPanel::Cursor, QStringLiteral("C0: - ")); break;
  }
  set(SignalPanel::Level, v.CursorValueText.isEmpty() ? QStringLiteral("V: - ")
                                                      : QStringLiteral("V: ") + v.CursorValueText + QStringLiteral(" "));
  const bool selected = s.SelectFirst > 0;
  st.selectionCommandsEnabled = selected;
  if (selected) {
    set(SignalPanel::Select, QStringLiteral("S: ") + time(s.SelectFirst) + QStringLiteral(" - ") + time(s.SelectLast) + QStringLiteral(" "));
    const double rate = ChannelRateHz(s);
    set(SignalPanel::SelectLen, QStringLiteral("L: ") + TimeText((s.SelectLast - s.SelectFirst) / (rate > 0.0 ? rate : 1.0)) +
                                    QStringLiteral(" "));
  } else {
    set(SignalPanel::Select, QStringLiteral("S: - "));
    set(SignalPanel::SelectLen, QStringLiteral("L: - "));
  }
  const int percent = v.heightPx > 0 ? RoundHalfEven(100.0 * s.channels.ChannelY[current] / v.heightPx) : 0;
  set(SignalPanel::Y0, QStringLiteral("Y0: ") + QString::number(percent) + QStringLiteral("% "));
  st.beginPointEnabled = BeginPointApplies(s.channels.Type[current], s.options.parameters.StatusFilterConst, s.AccountOffset);
  if (st.beginPointEnabled) {
    set(SignalPanel::BeginPoint, QStringLiteral("BP: ") + FormatGrouped(CodesToUnits(s.channels, current, s.channels.KS[current])) +
                                     QStringLiteral(" мкм "));
  } else {
    set(SignalPanel::BeginPoint, QStringLiteral("BP: - "));
  }
  set(SignalPanel::SignalDataN, QStringLiteral("N: ") + QString::number(s.SignalDataN));
  return st;
}

}  // namespace aqx::views
