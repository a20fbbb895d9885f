// The cascade of spectra: its parts' spectra, the box and the planes.

#include "views/spectrum/CascadeView.h"

#include "core/ChannelPhysics.h"
#include "core/Numeric.h"
#include "views/Analysis.h"
#include "views/DrawSupport.h"
#include "views/spectrum/SpectrumEngine.h"
#include "views/spectrum/SpectrumView.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <thread>

namespace aqx::views {

namespace {

// Room left at the top and the right of the farthest plane.
constexpr int kFarMarginPx = 6;
constexpr double kDefaultRatioX = 1.4;
constexpr double kDefaultRatioY = 1.9;

int ChannelOf(const AppState& s) { return std::clamp(s.FirstChannelActive, 1, ChannelCount(s)); }

bool DrawsNothing(const AppState& s) { return s.Imposition || s.channels.Type[ChannelOf(s)] == sensor::ShaftMarker; }

void DrawBox(const AppState& s, const CascadeViewState& v, const CascadeBox& box, DrawList& list) {
  const Pen pen = MakePen(s.options.color.ColorCarsetSpectrum);
  const BgrColor text = s.options.color.ColorText;
  const int left = kCascadeMarginPx;
  const int bottom = v.heightPx - kCascadeMarginPx;
  const int g = SpectrGridN(s.options.config.ScaleSpectr);
  list.add(Line{left, bottom, left + box.BoxW, bottom, pen});
  list.add(Line{left, bottom, left, bottom - box.BoxH, pen});
  const std::vector<int> labels = SpectrGridLabels(g);
  // On a narrow box the crowded upper decades keep only the labels that do
  // not run into the one before: labels never overprint. The view's font
  // has digits about as wide as the default measure.
  const FontMetrics fm;
  const int gapPx = 4;
  int labelledUpTo = std::numeric_limits<int>::min();
  for (int i = 1; i <= g; ++i) {
    const int x = left + RoundHalfEven(static_cast<double>(i) * box.BoxW / g);
    list.add(Line{x, bottom, x, bottom + 4, pen});
    std::string label = QString::number(labels[static_cast<size_t>(i - 1)]).toStdString();
    const int halfPx = (fm.widthOf(label) + 1) / 2;
    if (x - halfPx < labelledUpTo + gapPx) continue;
    labelledUpTo = x + halfPx;
    list.add(Text{x, bottom + 5, std::move(label), text, TextAnchor::TopCenter});
  }
  const double divisor = s.UnitDivisor != 0.0 ? s.UnitDivisor : 1.0;
  for (int j = 0; j <= 10; ++j) {
    const int y = bottom - RoundHalfEven(j * box.BoxH / 10.0);
    list.add(Line{left - 4, y, left, y, pen});
    const double value = j * v.Scale / 10.0 / divisor;
    QString label = std::fabs(value - std::round(value)) < 1e-9 ? QString::number(std::llround(value))
                                                                : QString::number(value, 'g', 4);
    list.add(Text{left - 5, y, label.toStdString(), text, TextAnchor::MiddleRight});
  }
  // The depth edge from the near bottom corner to the far one, and the far
  // plane's two edges from there.
  const int farX = RoundHalfEven(left + box.depthX);
  const int farY = RoundHalfEven(bottom + box.depthY);
  list.add(Line{left, bottom, farX, farY, pen});
  list.add(Line{farX, farY, farX, farY - box.BoxH, pen});
  list.add(Line{farX, farY, farX + box.BoxW, farY, pen});
}

void DrawPart(const AppState& s, const CascadeViewState& v, const CascadeBox& box, int part, DrawList& list) {
  const auto [ox, oy] = PlaneOrigin(box, v.heightPx, part, v.CascadeN);
  const int left = RoundHalfEven(ox);
  const int bottom = RoundHalfEven(oy);
  const std::vector<float>& columns = v.parts[static_cast<size_t>(part)];
  const int c = ChannelOf(s);
  const Pen pen = MakePen(s.channels.ChannelColor[c], s.channels.ChannelLineWidthSpectr[c]);
  const auto yOf = [&](float a) { return bottom - std::min(box.BoxH, RoundHalfEven(a / v.UnitsPerPixel)); };
  const int count = std::min(static_cast<int>(columns.size()), box.BoxW);
  // What lies behind this plane's trace is hidden by the ground under it;
  // the rest of the plane stays see-through.
  ColumnArea ground;
  ground.left = left;
  ground.baseY = bottom;
  ground.color = ViewBackground(s);
  ground.tops.assign(static_cast<size_t>(count), ColumnArea::kNoColumn);
  for (int x = 0; x < count; ++x)
    if (columns[static_cast<size_t>(x)] >= 0.0f) ground.tops[static_cast<size_t>(x)] = yOf(columns[static_cast<size_t>(x)]);
  ground.joined = true;
  if (s.options.spectrum.SpectrumViewType == 0) {
    std::vector<int> tops = ground.tops;
    list.add(std::move(ground));
    AddBars(left, bottom, std::move(tops), pen, list);
    return;
  }
  list.add(std::move(ground));
  Polyline line;
  line.pen = pen;
  line.xs.reserve(static_cast<size_t>(count) + 1);
  line.ys.reserve(static_cast<size_t>(count) + 1);
  line.xs.push_back(left);
  line.ys.push_back(bottom);
  for (int x = 0; x < count; ++x) {
    if (columns[static_cast<size_t>(x)] < 0.0f) continue;
    line.xs.push_back(left + x);
    line.ys.push_back(yOf(columns[static_cast<size_t>(x)]));
  }
  list.add(std::move(line));
}

}  // namespace

CascadeBox CascadeBoxFor(int widthPx, int heightPx, int xc, int yc) {
  CascadeBox box;
  box.BoxW = std::max(0, xc - kCascadeMarginPx);
  box.BoxH = std::max(0, heightPx - yc - kCascadeMarginPx);
  box.depthX = (widthPx - kFarMarginPx) - xc;
  box.depthY = kFarMarginPx - yc;
  return box;
}

std::pair<double, double> PlaneOrigin(const CascadeBox& box, int heightPx, int part, int count) {
  const double t = count > 1 ? static_cast<double>(count - 1 - part) / (count - 1) : 0.0;
  return {kCascadeMarginPx + t * box.depthX, heightPx - kCascadeMarginPx + t * box.depthY};
}

bool CornerAccepted(int widthPx, int heightPx, double x, double y) {
  return x >= kCascadeMarginPx && y >= kCascadeMarginPx && x <= widthPx - kCascadeMarginPx &&
         y <= heightPx - kCascadeMarginPx;
}

void PlaceCorner(CascadeViewState& v, double ratioX, double ratioY) {
  const double rx = ratioX >= 1.0 ? ratioX : kDefaultRatioX;
  const double ry = ratioY >= 1.0 ? ratioY : kDefaultRatioY;
  v.Xc = RoundHalfEven(v.widthPx / rx);
  v.Yc = RoundHalfEven(v.heightPx / ry);
}

std::pair<double, double> CornerRatios(const CascadeViewState& v) {
  if (v.Xc <= 0 || v.Yc <= 0) return {kDefaultRatioX, kDefaultRatioY};
  return {static_cast<double>(v.widthPx) / v.Xc, static_cast<double>(v.heightPx) / v.Yc};
}

QString CascadeCaption(int count) { return QStringLiteral("Каскад спектров (Спектров: %1)").arg(count); }

int CascadePlus(int count) { return std::min(kCascadeMaxParts, std::max(kCascadeMinParts, count * 2)); }
int CascadeMinus(int count) { return std::max(kCascadeMinParts, std::min(kCascadeMaxParts, count / 2)); }

int CascadePartSamples(int signalDataN, int count) {
  return count > 0 ? RoundHalfEven(static_cast<double>(std::clamp(signalDataN, 0, kMaxSamples)) / count) : 0;
}

void PrepareCascade(AppState& s, CascadeViewState& v) {
  v.parts.clear();
  v.CascadeMax = 0.0;
  v.Scale = 0;
  const CascadeBox box = CascadeBoxFor(v.widthPx, v.heightPx, v.Xc, v.Yc);
  v.PartWidthPx = box.BoxW;
  if (DrawsNothing(s) || box.BoxW <= 0 || box.BoxH <= 0 || v.CascadeN <= 0) return;
  const int c = ChannelOf(s);
  const int per = CascadePartSamples(s.SignalDataN, v.CascadeN);
  const int g = SpectrGridN(s.options.config.ScaleSpectr);
  const double top = SpectrRangeTopHz(s.options.config.ScaleSpectr);
  v.parts.resize(static_cast<size_t>(v.CascadeN));
  std::vector<double> partMax(static_cast<size_t>(v.CascadeN), 0.0);
  const AppState& recording = s;
  const auto account = [&](int from, int to) {
    // One spectrum's lines, reused part after part: a part of `per` samples
    // has at most per/2 (rounded) lines, so the buffer stays small and warm.
    std::vector<double> amplitude(static_cast<size_t>(std::min(kSpectrumLines, per / 2 + 1)));
    for (int part = from; part < to; ++part) {
      SpectrumOut out{amplitude.data(), nullptr, nullptr};
      out.amplitudeOnly = true;
      const int first = part * per + 1;
      SpectrumOfRows(recording, c, 0, 0, first, first + per - 1, out);
      partMax[static_cast<size_t>(part)] = out.SpectrMax;
      v.parts[static_cast<size_t>(part)] =
          DecadeColumnMaxima(amplitude.data(), out.SpectrLineCount, out.StepDesc, box.BoxW, g, top);
    }
  };
  {
    // The parts are independent: the later half goes to a second thread, so
    // that a cascade of a million samples takes about half the wait on two
    // cores (and one thread's time when the other core is busy).
    const int half = v.CascadeN / 2;
    const std::jthread later(account, half, v.CascadeN);
    account(0, half);
  }
  v.CascadeMax = *std::max_element(partMax.begin(), partMax.end());
  v.Scale = SpectrScaleFor(v.CascadeMax, s.channels.Volume[c]);
  if (v.Scale == 0) return;
  v.UnitsPerPixel = v.Scale * RangeGain(s.channels.Volume[c]) / box.BoxH;
  SetChannelUnit(s, v.Scale);
}

DrawList DrawCascade(const AppState& s, const CascadeViewState& v) {
  DrawList list;
  list.width = v.widthPx;
  list.height = v.heightPx;
  list.background = ViewBackground(s);
  if (v.widthPx < kMinPicturePx || v.heightPx < kMinPicturePx) return list;
  const Rect frame{0, 0, v.widthPx, v.heightPx, MakePen(s.options.color.ColorText), false, 0};
  const CascadeBox box = CascadeBoxFor(v.widthPx, v.heightPx, v.Xc, v.Yc);
  const bool parts = !DrawsNothing(s) && v.Scale > 0 && v.UnitsPerPixel > 0.0 &&
                     static_cast<int>(v.parts.size()) == v.CascadeN && v.PartWidthPx == box.BoxW;
  if (parts) {
    for (int part = 0; part < v.CascadeN; ++part) DrawPart(s, v, box, part, list);
  }
  if (!DrawsNothing(s) && v.Scale > 0) DrawBox(s, v, box, list);
  list.add(frame);
  return list;
}

std::pair<QString, QString> CascadeStatusTexts(const AppState& s) {
  return {QStringLiteral("D: ") + s.UnitName,
          s.options.spectrum.SpectrumViewType == 0 ? QStringLiteral("G: Гистограмма ") : QStringLiteral("G: График ")};
}

}  // namespace aqx::views
