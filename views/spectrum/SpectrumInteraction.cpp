// The spectrum view's info bar, parameter bar, cross-hair read-out and its
// panel, mouse and menu events as state transitions.

#include "core/Numeric.h"
#include "core/Vocabulary.h"
#include "engine/Aquilonix.h"
#include "views/spectrum/SpectrumView.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace aqx::views {

namespace {

int ChannelOf(const AppState& s) { return std::clamp(s.FirstChannelActive, 1, ChannelCount(s)); }

QString DiagramText(int viewType) {
  return viewType == 0 ? QStringLiteral("G: Гистограмма ") : QStringLiteral("G: График ");
}

// Pixels either side of the pointer in which the bound cursor looks for
// the strongest line.
constexpr int kSnapPx = 4;

// Whole harmonics print without decimals, others with two.
QString OrderText(double order) {
  if (std::fabs(order - std::round(order)) < 1e-6) return QString::number(static_cast<qint64>(std::llround(order)));
  return FormatStandard(order);
}

}  // namespace

SpectrStatus OutInfoToStatusBar(const AppState& s, const SpectrViewState& v) {
  SpectrStatus st;
  auto set = [&](SpectrPanel p, const QString& text) { st.text[static_cast<size_t>(p)] = text; };
  set(SpectrPanel::Dimension, QStringLiteral("D: ") + s.UnitName + QLatin1Char(' '));
  const bool cursorOn = SpectrCursorOf(s) != SpectrCursor::None;
  const QString cursorLabel = SpectrCursorOf(s) == SpectrCursor::Bound ? QStringLiteral("C2: ") : QStringLiteral("C1: ");
  set(SpectrPanel::Cursor, !cursorOn ? QStringLiteral("C0: - ")
                                     : v.CursorLine >= 0 ? v.CursorText : cursorLabel + QStringLiteral("- "));
  set(SpectrPanel::Level, cursorOn && v.CursorLine >= 0 ? v.LevelText : QStringLiteral("L: - "));
  set(SpectrPanel::TypeDiagram, DiagramText(s.options.spectr.SpectrViewType));
  set(SpectrPanel::BlockSizeFFT, QStringLiteral("FFT: ") +
                                     (s.BlockSizeFFT > 0 ? QString::number(s.BlockSizeFFT) : QStringLiteral("Нет")) +
                                     QLatin1Char(' '));
  set(SpectrPanel::Scale, QStringLiteral("М: ") + SpectrRangeLabel(s.options.config.ScaleSpectr) + QLatin1Char(' '));
  return st;
}

ParameterBar OutSpectrStatusBarParameter(const AppState& s, const AnalysisResults& r, int barWidthPx) {
  ParameterBar bar;
  const int c = ChannelOf(s);
  const double f1 = s.FreqOneGarmonic;
  for (int i = 0; i < kProbeResults; ++i) {
    const double hz = i == 0 ? f1 : s.channels.ProbeFreq[c][static_cast<size_t>(i - 1)];
    if (!(hz > 0.0)) continue;
    const double order = f1 > 0.0 ? hz / f1 : 0.0;
    const bool whole = std::fabs(order - std::round(order)) < 1e-6;
    QString head = OrderText(order) + QStringLiteral(" гарм.");
    head += whole ? QStringLiteral(": ") : QStringLiteral(" (") + FormatStandard(hz) + QStringLiteral("Гц): ");
    const int amplitude = r.ProbeAmplitude[static_cast<size_t>(i)];
    const QString values = amplitude > 1 ? QString::number(amplitude) + QStringLiteral("мкм / ") +
                                               QString::number(r.ProbePhase[static_cast<size_t>(i)]) + QStringLiteral("° ")
                                         : QStringLiteral("? / ?° ");
    bar.panels.push_back({head + values, QStringLiteral("Частота %1 Гц").arg(FormatStandard(hz))});
  }
  if (!bar.panels.empty()) bar.panelWidthPx = RoundHalfEven(static_cast<double>(barWidthPx) / bar.panels.size());
  return bar;
}

SpectrAction SpectrPanelClicked(AppState& s, SpectrViewState& v, SpectrPanel panel, MouseButton b) {
  SpectrAction a;
  switch (panel) {
    case SpectrPanel::Cursor:
      s.options.spectr.Cursor = SpectrCursorOf(s) == SpectrCursor::Free ? 1 : 0;
      v.CursorLine = -1;
      a.optionsChanged = a.statusBar = a.crosshair = true;
      break;
    case SpectrPanel::TypeDiagram: a = SpectrViewTypeChange(s); break;
    case SpectrPanel::BlockSizeFFT: a.analyserSettings = true; break;
    case SpectrPanel::Scale: {
      int& scale = s.options.config.ScaleSpectr;
      const int wanted = std::clamp(scale + (b == MouseButton::Right ? -1 : b == MouseButton::Left ? 1 : 0), 0,
                                    kScaleSpectrMax);
      if (wanted == scale) break;
      scale = wanted;
      const BandLabelResult band = BandLabel(scale);
      s.options.config.BandLabelText = band.label;
      s.options.config.BandTickCount = band.tickCount;
      v.CursorLine = -1;
      a.scaleChanged = a.redraw = a.statusBar = true;
      break;
    }
    default: break;
  }
  return a;
}

SpectrAction SpectrMouseDown(AppState&, SpectrViewState&, MouseButton b) {
  SpectrAction a;
  a.popupMenu = b == MouseButton::Right;
  return a;
}

SpectrAction SpectrMouseMove(AppState& s, SpectrViewState& v, const AnalysisResults& r, double x, double y) {
  SpectrAction a;
  const SpectrCursor cursor = SpectrCursorOf(s);
  if (cursor == SpectrCursor::None || v.widthPx <= 0 || v.Scale == 0) return a;
  const int g = SpectrGridN(s.options.config.ScaleSpectr);
  const double step = s.StepDesc;
  const int lines = std::clamp(s.SpectrLineCount, 0, kSpectrumLines);
  const double hz = XToFrequency(x, v.widthPx, g);
  // Lines within a few pixels: the decade's pixels per hertz tell how many.
  const double hzPerPx = std::max(XToFrequency(x + 1.0, v.widthPx, g) - hz, 1e-12);
  const int snapLines = std::max(1, RoundHalfEven(kSnapPx * hzPerPx / std::max(step, 1e-12)));
  const int k = SpectrLineAt(r, lines, step, hz, cursor == SpectrCursor::Bound, snapLines);
  a.crosshair = a.statusBar = true;
  if (k < 0) {
    v.CursorLine = -1;
    v.CursorX = -1;
    return a;
  }
  v.CursorLine = k;
  v.CursorFrequency = k * step;
  v.CursorAmplitude = r.SpectrAmplitude[static_cast<size_t>(k)];
  v.CursorPhase = r.SpectrPhase[static_cast<size_t>(k)];
  const auto lineX = FrequencyToX(v.CursorFrequency, v.widthPx, g);
  v.CursorX = cursor == SpectrCursor::Bound && lineX ? std::clamp(RoundHalfEven(*lineX), 0, v.widthPx - 1)
                                                     : std::clamp(RoundHalfEven(x), 0, v.widthPx - 1);
  v.CursorY = cursor == SpectrCursor::Bound && v.UnitsPerPixel > 0.0
                  ? std::clamp(RoundHalfEven(v.heightPx - 1 - v.CursorAmplitude / v.UnitsPerPixel), 0, v.heightPx - 1)
                  : std::clamp(RoundHalfEven(y), 0, v.heightPx - 1);
  const QString label = cursor == SpectrCursor::Bound ? QStringLiteral("C2: ") : QStringLiteral("C1: ");
  const int order = HarmonicOrderAt(v.CursorFrequency, s.FreqOneGarmonic, step);
  const QString hzText = FormatStandard(v.CursorFrequency);
  if (order > 0) {
    v.CursorText = label + QString::number(order) + QStringLiteral(" гарм. (") + hzText + QStringLiteral(" Гц) ");
  } else if (s.FreqOneGarmonic > 0.0) {
    v.CursorText = label + hzText + QStringLiteral(" Гц (") + FormatStandard(v.CursorFrequency / s.FreqOneGarmonic) +
                   QStringLiteral(" гарм.) ");
  } else {
    v.CursorText = label + hzText + QStringLiteral(" Гц ");
  }
  const double divisor = s.UnitDivisor != 0.0 ? s.UnitDivisor : 1.0;
  v.LevelText = QStringLiteral("L: ") + FormatStandard(v.CursorAmplitude / divisor) + QLatin1Char(' ') + s.UnitName;
  if (order > 0 && v.CursorAmplitude > 1.0)
    v.LevelText += QStringLiteral(" / ") + QString::number(RoundHalfEven(v.CursorPhase) % 360) + QStringLiteral("°");
  v.LevelText += QLatin1Char(' ');
  return a;
}

SpectrAction SpectrMouseLeave(SpectrViewState& v) {
  SpectrAction a;
  v.CursorX = v.CursorY = v.CursorLine = -1;
  a.crosshair = a.statusBar = true;
  return a;
}

SpectrAction SetSpectrCursor(AppState& s, SpectrViewState& v, SpectrCursor entry) {
  SpectrAction a;
  const int wanted = entry == SpectrCursor::Free ? 0 : entry == SpectrCursor::Bound ? 1 : -1;
  s.options.spectr.Cursor = s.options.spectr.Cursor == wanted ? -1 : wanted;
  v.CursorX = v.CursorY = v.CursorLine = -1;
  a.optionsChanged = a.statusBar = a.crosshair = true;
  return a;
}

SpectrAction SpectrViewTypeChange(AppState& s) {
  SpectrAction a;
  s.options.spectr.SpectrViewType = s.options.spectr.SpectrViewType == 0 ? 1 : 0;
  a.optionsChanged = a.redraw = a.statusBar = true;
  return a;
}

SpectrAction SpectrEvaluationChange(AppState& s, int entry) {
  SpectrAction a;
  if (entry < 1 || entry > 3) return a;
  s.options.spectr.Evaluation = s.options.spectr.Evaluation == entry ? 0 : entry;
  a.optionsChanged = a.redraw = true;
  return a;
}

SpectrAction SpectrGarmonicaN(AppState& s, int count) {
  SpectrAction a;
  s.options.spectr.GarmonicaN = std::clamp(count, 1, 10);
  a.optionsChanged = a.redraw = true;
  return a;
}

SpectrAction SpectrIntegral(AppState& s, SpectrViewState& v, AnalysisResults& r) {
  SpectrAction a;
  IntegralSpectr(r.SpectrAmplitude.data(), std::clamp(s.SpectrLineCount, 0, kSpectrumLines), s.StepDesc, &r.SpectrMax);
  v.Integrated = true;
  a.redraw = a.statusBar = true;
  return a;
}

}  // namespace aqx::views
