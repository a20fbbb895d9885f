// The picture of the spectrum view, drawn whole in a fixed order: frequency
// and level grids, harmonic lines, probe lines, evaluation curves, the
// trace, the frame.

#include "core/ChannelPhysics.h"
#include "core/Evaluation.h"
#include "core/Numeric.h"
#include "engine/Aquilonix.h"
#include "views/DrawSupport.h"
#include "views/spectrum/SpectrumEngine.h"
#include "views/spectrum/SpectrumView.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace aqx::views {

namespace {

int ChannelOf(const AppState& s) { return std::clamp(s.FirstChannelActive, 1, ChannelCount(s)); }

QString LevelLabel(double value) {
  if (std::fabs(value - std::round(value)) < 1e-9) return QString::number(static_cast<qint64>(std::llround(value)));
  QString text = QString::number(value, 'f', 3);
  while (text.endsWith(QLatin1Char('0'))) text.chop(1);
  return text;
}

void DrawGrids(const AppState& s, const SpectrViewState& v, int g, const FontMetrics& fm, DrawList& list) {
  const Pen pen = MakePen(s.options.color.ColorGrid, 1, DashStyle::Dot);
  const BgrColor text = s.options.color.ColorText;
  const std::vector<int> labels = SpectrGridLabels(g);
  for (int i = 1; i <= g; ++i) {
    const int x = RoundHalfEven(static_cast<double>(i) * v.widthPx / g);
    list.add(Line{x, 0, x, v.heightPx, pen});
    list.add(MakeText(x - 1, v.heightPx - fm.lineHeight, QString::number(labels[static_cast<size_t>(i - 1)]), text,
                      TextAnchor::TopRight));
  }
  const double divisor = s.UnitDivisor != 0.0 ? s.UnitDivisor : 1.0;
  // On a low picture only every second (or third...) level is labelled, and
  // none that would run into the top one: labels never overprint.
  const double levelPx = v.heightPx / 10.0;
  const int labelEvery = std::max(1, static_cast<int>(std::ceil(fm.lineHeight / std::max(1.0, levelPx))));
  for (int j = 1; j <= 10; ++j) {
    const int y = RoundHalfEven(v.heightPx - j * levelPx);
    list.add(Line{0, y, v.widthPx, y, pen});
    const QString label = LevelLabel(j * v.Scale / 10.0 / divisor);
    if (j == 10) {
      list.add(MakeText(2, 1, label, text, TextAnchor::TopLeft));
    } else if (j % labelEvery == 0 && y - fm.lineHeight >= 1 + fm.lineHeight) {
      list.add(MakeText(2, y, label, text, TextAnchor::BottomLeft));
    }
  }
}

void DrawGuide(const SpectrViewState& v, int g, double frequencyHz, BgrColor color, DrawList& list) {
  if (!(frequencyHz > 0.0) || frequencyHz > kSpectrTopHz) return;
  const auto x = FrequencyToX(frequencyHz, v.widthPx, g);
  if (!x || *x > v.widthPx) return;
  const int xi = RoundHalfEven(*x);
  list.add(Line{xi, 0, xi, v.heightPx, MakePen(color)});
}

void DrawEvaluation(const SpectrViewState& v, int g, DrawList& list) {
  for (const EvaluationCurve& curve : EvaluationCurves()) {
    Polyline line;
    line.pen = MakePen(curve.color);
    for (const auto& [hz, micrometres] : curve.points) {
      const auto x = FrequencyToX(hz, v.widthPx, g);
      if (!x) continue;
      line.xs.push_back(RoundHalfEven(*x));
      line.ys.push_back(RoundHalfEven(v.heightPx - micrometres / v.UnitsPerPixel));
    }
    if (curve.extendsRight && !line.ys.empty()) {
      line.xs.push_back(v.widthPx);
      line.ys.push_back(line.ys.back());
    }
    list.add(std::move(line));
  }
}

// Thinned by the engine: one y per column, for spectra with more lines than
// the first decade has pixels.
void DrawThinnedTrace(const AppState& s, const SpectrViewState& v, const AnalysisResults& r, int g, int h, Pen pen,
                      DrawList& list) {
  const int width = std::min(v.widthPx, AQX_SPECTRUM_COLUMNS);
  std::vector<int32_t> columnY(AQX_SPECTRUM_COLUMNS, h);
  std::array<double, 4> decadeStart{};
  std::array<int32_t, 4> decadeDivisions{10, 9, 9, 9};
  int32_t flag = 0;
  const int histogram = s.options.spectr.SpectrViewType == 0 ? 0 : 1;
  AccountDataBuildSpectr(s.FreqDesc, width, h, v.UnitsPerPixel, g, s.SignalDataN, r.SpectrAmplitude.data(),
                         std::clamp(s.SpectrLineCount, 0, kSpectrumLines), s.ViewFirst, s.ViewLast, s.StepDesc,
                         histogram, decadeStart.data(), decadeDivisions.data(), &flag, columnY.data());
  if (flag == 0) return;
  if (histogram == 0) {
    std::vector<int> tops(static_cast<size_t>(width), ColumnArea::kNoColumn);
    for (int x = 0; x < width; ++x)
      if (columnY[static_cast<size_t>(x)] < h) tops[static_cast<size_t>(x)] = columnY[static_cast<size_t>(x)];
    AddBars(0, h, std::move(tops), pen, list);
    return;
  }
  Polyline line;
  line.pen = pen;
  line.xs.reserve(static_cast<size_t>(width) + 1);
  line.ys.reserve(static_cast<size_t>(width) + 1);
  line.xs.push_back(0);
  line.ys.push_back(h);
  for (int x = 0; x < width; ++x) {
    line.xs.push_back(x);
    line.ys.push_back(columnY[static_cast<size_t>(x)]);
  }
  list.add(std::move(line));
}

// Line by line: each line at its own x; lines that share a column in the
// denser decades keep the strongest.
void DrawLineTrace(const AppState& s, const SpectrViewState& v, const AnalysisResults& r, int g, int h, Pen pen,
                   DrawList& list) {
  constexpr int kNoLine = std::numeric_limits<int>::max();
  std::vector<int> topOfColumn(static_cast<size_t>(v.widthPx) + 1, kNoLine);
  ForEachLineX(std::clamp(s.SpectrLineCount, 0, kSpectrumLines), s.StepDesc, v.widthPx, g,
               SpectrRangeTopHz(s.options.config.ScaleSpectr), [&](int k, double x) {
                 const size_t xi = static_cast<size_t>(std::clamp(RoundHalfEven(x), 0, v.widthPx));
                 const int y = RoundHalfEven(h - r.SpectrAmplitude[static_cast<size_t>(k)] / v.UnitsPerPixel);
                 topOfColumn[xi] = std::min(topOfColumn[xi], y);
               });
  if (s.options.spectr.SpectrViewType == 0) {
    // A bar stops one pixel above its level, as it always has.
    for (int& top : topOfColumn) top = top == kNoLine ? ColumnArea::kNoColumn : top - 1;
    AddBars(0, h, std::move(topOfColumn), pen, list);
    return;
  }
  Polyline line;
  line.pen = pen;
  line.xs.push_back(0);
  line.ys.push_back(h);
  for (int x = 0; x <= v.widthPx; ++x) {
    if (topOfColumn[static_cast<size_t>(x)] == kNoLine) continue;
    line.xs.push_back(x);
    line.ys.push_back(topOfColumn[static_cast<size_t>(x)]);
  }
  list.add(std::move(line));
}

}  // namespace

SpectrCursor SpectrCursorOf(const AppState& s) {
  switch (s.options.spectr.Cursor) {
    case 0: return SpectrCursor::Free;
    case 1: return SpectrCursor::Bound;
    default: return SpectrCursor::None;
  }
}

void PrepareSpectr(AppState& s, SpectrViewState& v, const AnalysisResults& r) {
  v.CursorX = v.CursorY = v.CursorLine = -1;
  v.CursorText.clear();
  v.LevelText.clear();
  const int c = ChannelOf(s);
  v.Scale = SpectrScaleFor(r.SpectrMax, s.channels.Volume[c]);
  v.UnitsPerPixel = v.Scale > 0 && v.heightPx > 0 ? v.Scale * RangeGain(s.channels.Volume[c]) / v.heightPx : 0.0;
  if (v.Scale > 0) SetChannelUnit(s, v.Scale);
}

DrawList DrawSpectr(const AppState& s, const SpectrViewState& v, const AnalysisResults& r, const FontMetrics& fm) {
  DrawList list;
  list.width = v.widthPx;
  list.height = v.heightPx;
  list.background = ViewBackground(s);
  if (v.widthPx < kMinPicturePx || v.heightPx < kMinPicturePx) return list;
  if (s.BlockSizeFFTa == 0 && s.BlockSizeFFTr == 0) return list;
  if (v.Scale == 0 || !(v.UnitsPerPixel > 0.0)) return list;
  const int g = SpectrGridN(s.options.config.ScaleSpectr);
  const int c = ChannelOf(s);
  DrawGrids(s, v, g, fm, list);
  if (s.options.spectr.ViewGarmonic) {
    for (int n = 1; n <= std::clamp(s.options.spectr.GarmonicaN, 1, 10); ++n)
      DrawGuide(v, g, n * s.FreqOneGarmonic, s.options.color.ColorLinesGarmonic, list);
  }
  if (s.options.spectr.ViewLinesProbeFreq) {
    for (float hz : s.channels.ProbeFreq[c]) DrawGuide(v, g, hz, s.options.color.ColorLinesProbeFreq, list);
  }
  if (s.options.spectr.Evaluation == 1 && s.channels.Type[c] == sensor::Vibration) DrawEvaluation(v, g, list);
  if (s.channels.Type[c] != sensor::ShaftMarker && s.SpectrLineCount > 0 && s.StepDesc > 0.0) {
    const Pen pen = MakePen(s.channels.ChannelColor[c], s.channels.ChannelLineWidthSpectr[c]);
    const int h = v.heightPx - 1;
    const int firstDecadeLines = std::min(RoundHalfEven(10.0 / s.StepDesc), s.SpectrLineCount);
    const double pixelsPerLine = firstDecadeLines > 0 ? (v.widthPx * 10.0 / g) / firstDecadeLines : 1.0;
    if (pixelsPerLine < 1.0) {
      DrawThinnedTrace(s, v, r, g, h, pen, list);
    } else {
      DrawLineTrace(s, v, r, g, h, pen, list);
    }
  }
  list.add(Rect{0, 0, v.widthPx, v.heightPx, MakePen(s.options.color.ColorText), false, 0});
  return list;
}

DrawList BuildSpectr(AppState& s, SpectrViewState& v, const AnalysisResults& r, const FontMetrics& fm) {
  PrepareSpectr(s, v, r);
  return DrawSpectr(s, v, r, fm);
}

void AppendSpectrCrosshair(const SpectrViewState& v, DrawList& list, const FontMetrics& fm) {
  if (v.CursorX < 0) return;
  Pen invert = MakePen(0xFFFFFF);
  invert.xorMode = true;
  list.add(Line{v.CursorX, 0, v.CursorX, v.heightPx, invert});
  if (v.CursorY >= 0) list.add(Line{0, v.CursorY, v.widthPx, v.CursorY, invert});
  // The read-out stands beside the cross, on the side with room.
  const QString text = (v.CursorText.mid(4) + QStringLiteral("| ") + v.LevelText.mid(3)).trimmed();
  const int widthPx = fm.widthOf(text.toStdString()) + 6;
  const bool left = v.CursorX + widthPx + 8 > v.widthPx;
  const int x = left ? v.CursorX - widthPx - 4 : v.CursorX + 4;
  const int y = std::clamp(v.CursorY >= 0 ? v.CursorY - fm.lineHeight - 6 : 4, 2, std::max(2, v.heightPx - fm.lineHeight - 6));
  list.add(Rect{x, y, x + widthPx, y + fm.lineHeight + 4, MakePen(0x000000), true, 0xFFFFE0});
  list.add(MakeText(x + 3, y + 2, text, 0x000000, TextAnchor::TopLeft));
}

}  // namespace aqx::views
