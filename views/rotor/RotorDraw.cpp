// frmViewFormaRotor: one form as a polar plot. Rings of V percent, the poles
// clockwise from the top, the limit circles, the rotor's spokes, the form as
// sectors or as a line coloured by the limits, and the cross of its first
// harmonic.

#include "core/Numeric.h"
#include "views/CopyHeaderText.h"
#include "views/DrawSupport.h"
#include "views/rotor/RotorView.h"
#include "views/signal/SignalView.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace aqx::views {

namespace {

constexpr double kPi = std::numbers::pi;

int RoundedX(const RotorGeometry& g, double radius, double angle) { return RoundHalfEven(g.cx + radius * std::cos(angle)); }
int RoundedY(const RotorGeometry& g, double radius, double angle) { return RoundHalfEven(g.cy + radius * std::sin(angle)); }

void Circle(const RotorGeometry& g, int radius, const Pen& pen, DrawList& list) {
  list.add(Ellipse{g.cx - radius, g.cy - radius, g.cx + radius + 1, g.cy + radius + 1, pen, false, 0});
}

QString PlainInteger(int v) { return QString::number(v); }

void DrawRings(const AppState& s, const RotorGeometry& g, int percentPerRing, DrawList& list) {
  const BgrColor grid = s.options.color.ColorGrid;
  for (int i = 6; i >= 0; --i) {
    const int label = percentPerRing * (i - 5);
    const int radius = RoundHalfEven(i * g.ringStep);
    Circle(g, radius, MakePen(grid, label == 0 ? 2 : 1), list);
    list.add(MakeText(g.cx - radius, g.cy, PlainInteger(label), s.options.color.ColorText));
  }
}

void DrawPoles(const AppState& s, const RotorGeometry& g, int polus, const FontMetrics& fm, DrawList& list) {
  const Pen pen = MakePen(s.options.color.ColorGrid);
  // Numbers stand just outside the plot, centred on their pole's line.
  const double labelRadius = g.R + fm.lineHeight / 2.0;
  for (int p = 1; p <= polus; ++p) {
    const double theta = PoleAngle(p, polus);
    list.add(Line{g.cx, g.cy, RoundedX(g, g.R, theta), RoundedY(g, g.R, theta), pen});
    list.add(MakeText(RoundedX(g, labelRadius, theta), RoundedY(g, labelRadius, theta), PlainInteger(p),
                      s.options.color.ColorText, TextAnchor::Center));
  }
}

void DrawLimits(const RotorGeometry& g, int percentPerRing, DrawList& list) {
  const std::pair<double, BgrColor> limits[] = {{3.0, kLimitYellow}, {8.0, kLimitRed}};
  for (const auto& [limit, color] : limits) {
    if (percentPerRing < limit) continue;
    Circle(g, RoundHalfEven(PercentRadius(g, limit, percentPerRing)), MakePen(color), list);
    const double inner = PercentRadius(g, -limit, percentPerRing);
    if (inner > 0.0) Circle(g, RoundHalfEven(inner), MakePen(color), list);
  }
}

void DrawSpokes(const FormaRotorOptions& o, const RotorGeometry& g, int polus, const FontMetrics& fm, DrawList& list) {
  const int count = std::clamp(o.SpicaN, 1, 36);
  const double labelRadius = g.R - fm.lineHeight;
  for (int k = 1; k <= count; ++k) {
    const double theta = SpokeAngle(k, o.SpicaP, count, o.SpicaD, polus);
    list.add(Line{g.cx, g.cy, RoundedX(g, g.R, theta), RoundedY(g, g.R, theta), MakePen(0xFFFFFF, 3)});
    list.add(MakeText(RoundedX(g, labelRadius, theta), RoundedY(g, labelRadius, theta), PlainInteger(k), 0x000000,
                      TextAnchor::Center));
  }
}

struct FormStrokes {
  const FormaRotorResults& r;
  const RotorGeometry& g;
  int form;
  int percentPerRing;
  int polus;
  bool oneColour;

  double value(int pole) const { return r.percent(form, pole); }
  double radius(int pole) const { return PercentRadius(g, value(pole), percentPerRing); }
  BgrColor colour(double a, double b) const { return oneColour ? kOneColour : ColorByLimits(a, b); }
  int previous(int pole) const { return pole == 1 ? polus : pole - 1; }
};

void DrawSectors(const FormStrokes& f, const AppState& s, DrawList& list) {
  const double half = kPi / f.polus;
  for (int p = 1; p <= f.polus; ++p) {
    const double theta = PoleAngle(p, f.polus);
    const double r = f.radius(p);
    const double before = f.radius(f.previous(p));
    const int x0 = RoundedX(f.g, r, theta - half), y0 = RoundedY(f.g, r, theta - half);
    // The step from the previous pole's chord, the last pole's included.
    list.add(Line{RoundedX(f.g, before, theta - half), RoundedY(f.g, before, theta - half), x0, y0,
                  MakePen(f.colour(f.value(f.previous(p)), f.value(p)), 2)});
    const int x1 = RoundedX(f.g, r, theta + half), y1 = RoundedY(f.g, r, theta + half);
    list.add(Line{x0, y0, x1, y1, MakePen(f.colour(f.value(p), f.value(p)), 2)});
    if (s.options.formaRotor.FormaValue)
      list.add(MakeText((x0 + x1) / 2, (y0 + y1) / 2, FormatStandard(f.value(p)), s.options.color.ColorGrid,
                        TextAnchor::Center));
  }
}

void DrawLineForm(const FormStrokes& f, const AppState& s, DrawList& list) {
  auto x = [&](int p) { return RoundedX(f.g, f.radius(p), PoleAngle(p, f.polus)); };
  auto y = [&](int p) { return RoundedY(f.g, f.radius(p), PoleAngle(p, f.polus)); };
  for (int p = 1; p <= f.polus; ++p) {
    const int q = f.previous(p);
    list.add(Line{x(q), y(q), x(p), y(p), MakePen(f.colour(f.value(q), f.value(p)), 2)});
  }
  for (int p = 1; p <= f.polus; ++p) {
    if (s.options.formaRotor.FormaValue)
      list.add(MakeText(x(p), y(p), FormatStandard(f.value(p)), s.options.color.ColorGrid, TextAnchor::Center));
    list.add(MakeDot(x(p), y(p), 2, f.colour(f.value(p), f.value(p))));
  }
}

}  // namespace

BgrColor ColorByLimits(double a, double b) {
  if (std::fabs(a) <= 3.0 && std::fabs(b) <= 3.0) return kLimitGreen;
  if (std::fabs(a) >= 8.0 || std::fabs(b) >= 8.0) return kLimitRed;
  return kLimitYellow;
}

RotorGeometry RotorGeometryFor(int widthPx, int heightPx, int textHeightPx) {
  RotorGeometry g;
  g.cx = RoundHalfEven(widthPx / 2.0);
  g.cy = RoundHalfEven(heightPx / 2.0);
  g.R = std::max(0, std::min(g.cx, g.cy) - textHeightPx);
  g.ringStep = g.R / 6.0;
  g.zeroRadius = RoundHalfEven(g.R - g.ringStep);
  return g;
}

double PercentRadius(const RotorGeometry& g, double percent, int percentPerRing) {
  const int v = std::max(1, percentPerRing);
  const double held = std::clamp(percent, -5.0 * v, static_cast<double>(v));
  return held * g.ringStep / v + g.zeroRadius;
}

double PoleAngle(int pole, int polus) { return -kPi / 2.0 + (pole - 1) * 2.0 * kPi / std::max(1, polus); }

double SpokeAngle(int spoke, int spicaP, int spicaN, int spicaD, int polus) {
  const double first = (spicaP - 1) * 2.0 * kPi / std::max(1, polus) - kPi / 2.0;
  const double step = (spicaD == 0 ? -1.0 : 1.0) * 2.0 * kPi / std::max(1, spicaN);
  return first + (spoke - 1) * step;
}

PointF FirstHarmonicPoint(const RotorGeometry& g, double amplitude, double phaseDeg, int percentPerRing) {
  const double radius = amplitude * g.ringStep / std::max(1, percentPerRing);
  const double alpha = phaseDeg * kPi / 180.0 + kPi;
  return {g.cx + radius * std::sin(alpha), g.cy + radius * std::cos(alpha)};
}

void InitFormaData(const FormaRotorResults& r, FormaViewState& v) {
  v.HScrollMax = r.valid() ? std::max(0, r.FormaRotorN) : 0;
  v.HScroll = std::clamp(v.HScroll, 0, v.HScrollMax);
  v.VScroll = std::clamp(v.VScroll, kPercentPerRingMin, kPercentPerRingMax);
}

FormaStatus PrintToStatusbar(const FormaRotorResults& r, int form) {
  FormaStatus st;
  st.Form = form == 0 ? QStringLiteral("Средняя форма") : QStringLiteral("Форма №") + QString::number(form);
  if (!r.valid()) return st;
  st.PrPi = FormatStandard(r.distortion(form)) + QStringLiteral("%");
  st.NobForm = FormatStandard(r.speed(form)) + QStringLiteral(" об/мин");
  return st;
}

QStringList FormaCopyHeader(const AppState& s, const Vocabulary& vocab, const FormaRotorResults& r, int form,
                            const QString& caption) {
  const FormaStatus st = PrintToStatusbar(r, form);
  QStringList lines = ObjectHeaderLines(s, st.NobForm);
  lines << ChannelHeaderLine(s, vocab, FormaRotorChannel(s));
  lines << caption + QStringLiteral(": ") + st.Form + (st.PrPi.isEmpty() ? QString() : QStringLiteral(", искажение ") + st.PrPi);
  return lines;
}

bool FormaRotorDataStands(const AppState& s) {
  return s.ViewOpenFlags[frmViewFormaRotor] || s.ViewOpenFlags[frmViewFormaRotorDiagram] ||
         s.ViewOpenFlags[frmViewFormaRotorSpectr];
}

// Shared by the three pictures: the empty list of a picture too small, or
// the frame with the reason there is no form.
bool FormaPictureStart(const AppState& s, const FormaRotorResults& r, const FormaViewState& v, const FontMetrics& fm,
                       DrawList& list) {
  list.width = std::max(0, v.widthPx);
  list.height = std::max(0, v.heightPx);
  list.background = ViewBackground(s);
  if (v.widthPx < kMinPicturePx || v.heightPx < kMinPicturePx) {
    list.add(MakeText(v.widthPx / 2, v.heightPx / 2, QString::fromUtf8(kTooSmallNote), s.options.color.ColorText, TextAnchor::Center));
    return false;
  }
  if (r.valid() && r.Polus >= kFormaMinPolus) return true;
  list.add(Rect{0, 0, v.widthPx, v.heightPx, MakePen(s.options.color.ColorGrid), false, 0});
  // Long reasons break at a blank near the middle to fit narrow windows.
  QString text = FormaRotorFailureText(r.Failure, s);
  QStringList lines{text};
  if (fm.widthOf(text.toStdString()) > v.widthPx - 10) {
    const int split = static_cast<int>(text.lastIndexOf(QLatin1Char(' '), text.size() / 2 + 8));
    if (split > 0) lines = QStringList{text.left(split), text.mid(split + 1)};
  }
  for (int i = 0; i < lines.size(); ++i)
    list.add(MakeText(v.widthPx / 2, v.heightPx / 3 + i * fm.lineHeight, lines[i], s.options.color.ColorText, TextAnchor::TopCenter));
  return false;
}

DrawList DrawFormaRotor(const AppState& s, const FormaRotorResults& r, const FormaViewState& v, const FontMetrics& fm) {
  DrawList list;
  if (!FormaPictureStart(s, r, v, fm, list)) return list;
  const FormaRotorOptions& o = s.options.formaRotor;
  const int percentPerRing = std::clamp(v.VScroll, kPercentPerRingMin, kPercentPerRingMax);
  const int form = std::clamp(v.HScroll, 0, r.FormaRotorN);
  const RotorGeometry g = RotorGeometryFor(v.widthPx, v.heightPx, fm.lineHeight);
  DrawRings(s, g, percentPerRing, list);
  DrawPoles(s, g, r.Polus, fm, list);
  if (o.FormaViewScale) DrawLimits(g, percentPerRing, list);
  if (o.SpicaV) DrawSpokes(o, g, r.Polus, fm, list);
  const FormStrokes strokes{r, g, form, percentPerRing, r.Polus, o.FormaViewColor};
  if (o.FormaView == 0) {
    DrawSectors(strokes, s, list);
  } else {
    DrawLineForm(strokes, s, list);
  }
  const double amplitude = r.amplitude(form, 1);
  const PointF cross = FirstHarmonicPoint(g, amplitude, r.phase(form, 1), percentPerRing);
  const int x = RoundHalfEven(cross.x), y = RoundHalfEven(cross.y);
  const Pen pen = MakePen(strokes.colour(amplitude, amplitude));
  list.add(Line{x - 10, y, x + 10, y, pen});
  list.add(Line{x, y - 10, x, y + 10, pen});
  list.add(MakeText(x + 10, y, FormatStandard(amplitude), pen.color));
  list.add(Rect{0, 0, v.widthPx, v.heightPx, MakePen(s.options.color.ColorGrid), false, 0});
  return list;
}

}  // namespace aqx::views
