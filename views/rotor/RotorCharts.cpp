// frmViewFormaRotorDiagram and frmViewFormaRotorSpectr: the percents of one
// form laid out flat, a column per pole, and the first nine harmonics of a
// form as bars.

#include "core/Numeric.h"
#include "views/DrawSupport.h"
#include "views/rotor/RotorView.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace aqx::views {

namespace {

// Labels along a row that would run into the one before them are left out.
class LabelRow {
 public:
  bool fits(int centre, int width) {
    const int left = centre - width / 2;
    if (left < end_) return false;
    end_ = left + width + 4;
    return true;
  }

 private:
  int end_ = std::numeric_limits<int>::min();
};

int MarginFor(const FontMetrics& fm, const QString& widest) {
  return std::max(fm.lineHeight, fm.widthOf(widest.toStdString()) + 6);
}

}  // namespace

DrawList DrawFormaRotorDiagram(const AppState& s, const FormaRotorResults& r, const FormaViewState& v,
                               const FontMetrics& fm) {
  DrawList list;
  if (!FormaPictureStart(s, r, v, fm, list)) return list;
  const FormaRotorOptions& o = s.options.formaRotor;
  const BgrColor grid = s.options.color.ColorGrid;
  const BgrColor text = s.options.color.ColorText;
  const int range = std::clamp(v.VScroll, kPercentPerRingMin, kPercentPerRingMax);
  const int form = std::clamp(v.HScroll, 0, r.FormaRotorN);
  const int th = fm.lineHeight;
  const int margin = MarginFor(fm, QStringLiteral("-") + QString::number(range));
  const int mid = v.heightPx / 2;
  const double step = std::max(1.0, static_cast<double>(mid - th)) / range;
  auto yOf = [&](double percent) { return RoundHalfEven(mid - std::clamp(percent, -1.0 * range, 1.0 * range) * step); };
  const int right = v.widthPx - margin;

  const int top = mid - RoundHalfEven(range * step), bottom = mid + RoundHalfEven(range * step);
  list.add(Line{margin, top, margin, bottom, MakePen(grid)});
  list.add(Line{right, top, right, bottom, MakePen(grid)});
  // Every line; its number where the lines stand far enough apart.
  const int labelEvery = std::max(1, static_cast<int>(std::ceil(th / step)));
  for (int i = -range; i <= range; ++i) {
    const int y = yOf(i);
    list.add(Line{margin, y, right, y, MakePen(grid)});
    if (i % labelEvery != 0) continue;
    list.add(MakeText(margin / 2, y, QString::number(i), text, TextAnchor::Center));
    list.add(MakeText(v.widthPx - margin / 2, y, QString::number(i), text, TextAnchor::Center));
  }
  if (o.DiagramaViewScale) {
    const std::pair<int, BgrColor> limits[] = {{3, kLimitYellow}, {8, kLimitRed}};
    for (const auto& [limit, color] : limits) {
      if (range < limit) continue;
      for (const int sign : {1, -1}) list.add(Line{margin, yOf(sign * limit), right, yOf(sign * limit), MakePen(color)});
    }
  }

  const int polus = r.Polus;
  const double pw = (v.widthPx - 2.0 * margin) / (polus + 0.5);
  auto colour = [&](double a, double b) { return o.DiagramaViewColor ? kOneColour : ColorByLimits(a, b); };
  auto left = [&](int pole) { return pw / 2.0 + margin + (pole - 1) * pw; };
  auto centre = [&](int pole) { return RoundHalfEven(left(pole) + pw / 4.0); };
  const bool lineMode = o.DiagramaViewType == 2;
  const bool extended = o.DiagramaView == 2;
  if (lineMode) {
    for (int p = 2; p <= polus; ++p) {
      const double a = r.percent(form, p - 1), b = r.percent(form, p);
      list.add(Line{centre(p - 1), yOf(a), centre(p), yOf(b), MakePen(colour(a, b), 2)});
    }
  }
  LabelRow valueRow;
  LabelRow numberRow;
  for (int p = 1; p <= polus; ++p) {
    const double value = r.percent(form, p);
    const int x0 = RoundHalfEven(left(p)), x1 = RoundHalfEven(left(p) + pw / 2.0);
    const int y = yOf(value);
    if (lineMode) {
      list.add(MakeDot(centre(p), y, 2, colour(value, value)));
      if (extended) {
        for (const double extreme : {r.poleMax(p), r.poleMin(p)})
          list.add(MakeDot(centre(p), yOf(extreme), 2, colour(extreme, extreme)));
      }
    } else {
      const BgrColor c = colour(value, value);
      list.add(Rect{x0, std::min(y, mid), std::max(x1, x0 + 1), std::max(y, mid) + 1, MakePen(c), true, c});
      if (extended) {
        // Wider than the bar, so that both extremes show around it.
        const int wing = std::max(1, RoundHalfEven(pw / 8.0));
        for (const double extreme : {r.poleMax(p), r.poleMin(p)}) {
          const int ye = yOf(extreme);
          list.add(Rect{x0 - wing, std::min(ye, mid), x1 + wing, std::max(ye, mid) + 1,
                        MakePen(colour(extreme, extreme)), false, 0});
        }
      }
    }
    if (o.DiagramaValue) {
      const QString label = FormatStandard(value) + (lineMode ? QStringLiteral("  ") : QString());
      if (valueRow.fits(centre(p), fm.widthOf(label.toStdString())))
        list.add(MakeText(centre(p), (lineMode ? y : std::min(y, mid)) - 3, label, text, TextAnchor::BottomCenter));
    }
    const QString number = QString::number(p);
    if (numberRow.fits(centre(p), fm.widthOf(number.toStdString())))
      list.add(MakeText(centre(p), v.heightPx - 1, number, text, TextAnchor::BottomCenter));
  }
  list.add(Rect{0, 0, v.widthPx, v.heightPx, MakePen(grid), false, 0});
  return list;
}

DrawList DrawFormaSpectrForms(const AppState& s, const FormaRotorResults& r, const FormaViewState& v,
                              const FontMetrics& fm) {
  DrawList list;
  if (!FormaPictureStart(s, r, v, fm, list)) return list;
  const BgrColor grid = s.options.color.ColorGrid;
  const BgrColor text = s.options.color.ColorText;
  const int form = std::clamp(v.HScroll, 0, r.FormaRotorN);
  const int th = fm.lineHeight;
  const int margin = MarginFor(fm, QStringLiteral("100"));
  // Two lines below the plot: the harmonic numbers and the axis caption.
  const int top = th;
  const int yB = v.heightPx - 2 * th - 1;
  const double step = (yB - top) / 5.0;
  for (int i = 1; i <= 6; ++i) {
    const int y = RoundHalfEven(yB - (i - 1) * step);
    list.add(Line{margin, y, v.widthPx - margin, y, MakePen(grid)});
    const QString label = QString::number((i - 1) * 20);
    list.add(MakeText(margin / 2, y, label, text, TextAnchor::Center));
    list.add(MakeText(v.widthPx - margin / 2, y, label, text, TextAnchor::Center));
  }
  const double cw = (v.widthPx - 2.0 * margin) / 10.0;
  const double k = r.FormaRotorResult > 0.0 ? (yB - top) / r.FormaRotorResult : 0.0;
  for (int n = 1; n <= kFormaHarmonicCount; ++n) {
    const int x = RoundHalfEven(margin + n * cw);
    list.add(MakeText(x, yB + 2, QString::number(n), text, TextAnchor::TopCenter));
    const double amplitude = r.amplitude(form, n);
    const int y = RoundHalfEven(yB - k * amplitude);
    list.add(Rect{RoundHalfEven(x - cw / 3.0), y, RoundHalfEven(x + cw / 3.0), yB + 1, MakePen(grid), true, kOneColour});
    if (s.options.formaRotor.SpectrFormsValue) {
      const QString label = FormatStandard(amplitude) + QStringLiteral("/") +
                            QString::number(IntFloor(r.phase(form, n))) + QStringLiteral("°");
      list.add(MakeText(x, y - 2, label, text, TextAnchor::BottomCenter));
    }
  }
  list.add(MakeText(v.widthPx / 2, v.heightPx - 1, QStringLiteral("Номер гармоники"), text, TextAnchor::BottomCenter));
  list.add(Rect{0, 0, v.widthPx, v.heightPx, MakePen(grid), false, 0});
  return list;
}

}  // namespace aqx::views
