// The picture of the trajectory view, drawn whole: the direction texts, axes
// and frame, the measuring grid, then the first-harmonic ellipse or the raw
// orbit with its spokes and crosses, and the dart toward a centre that has
// left the picture.

#include "core/ChannelPhysics.h"
#include "core/Numeric.h"
#include "views/DrawSupport.h"
#include "views/signal/SignalView.h"
#include "views/trajectory/TraectoriaView.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace aqx::views {

namespace {

int ActiveChannel(const AppState& s) { return std::clamp(s.FirstChannelActive, 1, ChannelCount(s)); }

int SampleCount(const AppState& s) { return std::clamp(s.SignalDataN, 1, kMaxSamples); }

// Why no trajectory can be built, for the line under the refusal; empty when
// one can.
QString RefusalReason(const AppState& s) {
  const int f = ActiveChannel(s);
  if (f >= ChannelCount(s)) return QStringLiteral("Канал №%1 последний: второго канала для пары нет").arg(f);
  if (s.channels.Channel[f] != 1 || s.channels.Channel[f + 1] != 1)
    return QStringLiteral("Канал №%1 не записан").arg(s.channels.Channel[f] != 1 ? f : f + 1);
  if (s.channels.Type[f] != s.channels.Type[f + 1])
    return QStringLiteral("Каналы №%1 и №%2 измеряют разные величины").arg(f).arg(f + 1);
  return {};
}

// The extent a channel needs on the plane, in units, rounded.
int ExtentOf(const AppState& s, int c) {
  const double codes = s.AccountOffset ? std::fabs(s.channels.KS[c] + s.SignalMaxValue[c]) : s.SignalMaxValue[c];
  return RoundHalfEven(CodesToUnits(s.channels, c, codes));
}

// The code the plane's zero stands for: 0, the constant part of the
// channel, or with the offset option its clearance zero.
double ZeroCode(const AppState& s, int c) {
  double zero = 0.0;
  if (s.options.parameters.StatusFilterConst) zero = s.SignalOffset[c];
  if (s.AccountOffset) zero = RoundHalfEven(s.channels.KS[c]);
  return zero;
}

void AddCentredNote(const TraectoriaViewState& v, const FontMetrics& fm, const QString& text, const QString& reason,
                    BgrColor color, DrawList& list) {
  const int x = (v.widthPx - fm.widthOf(text.toStdString())) / 2;
  const int y = (v.heightPx - fm.lineHeight) / 3;
  list.add(MakeText(x, y, text, color));
  if (!reason.isEmpty()) list.add(MakeText(v.widthPx / 2, y + fm.lineHeight + 2, reason, color, TextAnchor::TopCenter));
}

void DrawAxesAndFrame(const AppState& s, const TraectoriaViewState& v, DrawList& list) {
  const Pen pen = MakePen(s.options.color.ColorGrid);
  list.add(Line{0, v.CenterY, v.widthPx, v.CenterY, pen});
  list.add(Line{v.CenterX, 0, v.CenterX, v.heightPx, pen});
  list.add(Rect{0, 0, v.widthPx, v.heightPx, pen, false, 0});
}

void DrawDirections(const AppState& s, const TraectoriaViewState& v, const FontMetrics& fm, DrawList& list) {
  const BgrColor color = s.options.color.ColorText;
  list.add(MakeText(v.CenterX + 2, 0, QStringLiteral("ВБ"), color));
  list.add(MakeText(1, v.CenterY - fm.lineHeight, QStringLiteral("ПБ"), color));
  list.add(MakeText(v.widthPx - 2, v.CenterY - fm.lineHeight, QStringLiteral("ЛБ"), color, TextAnchor::TopRight));
  list.add(MakeText(v.CenterX + 2, v.heightPx - fm.lineHeight - 2, QStringLiteral("НБ"), color));
}

// Lines every tenth of the shorter side from the zero outward, with their
// values in the units shown, signed as the axes read.
void DrawGrid(const AppState& s, const TraectoriaViewState& v, const FontMetrics& fm, DrawList& list) {
  const double stepPx = std::min(v.widthPx, v.heightPx) / 10.0;
  if (stepPx < 1.0 || v.ScaleXY <= 0) return;
  const double divider = v.UnitDivisor != 0.0 ? v.UnitDivisor : 1.0;
  const Pen pen = MakePen(s.options.color.ColorGrid, 1, DashStyle::Dot);
  const BgrColor color = s.options.color.ColorText;
  const int letterHeight = fm.lineHeight;
  int value = RoundHalfEven(v.ScaleXY / 5.0);
  for (double d = stepPx; d <= std::abs(v.CenterY) + v.heightPx; d += stepPx) {
    const int up = RoundHalfEven(v.CenterY - d);
    if (up > 0 && up <= v.heightPx) {
      list.add(Line{v.widthPx, up, 0, up, pen});
      if (letterHeight < up) {
        const QString text = GridNumber(-(v.SignY * static_cast<double>(value)) / divider);
        list.add(MakeText(0, up, text, color));
        list.add(MakeText(v.widthPx, up, text, color, TextAnchor::TopRight));
      }
    }
    const int down = RoundHalfEven(v.CenterY + d);
    if (down > 0 && down <= v.heightPx) {
      list.add(Line{v.widthPx, down, 0, down, pen});
      if (down < v.heightPx - letterHeight) {
        const QString text = GridNumber(v.SignY * static_cast<double>(value) / divider);
        list.add(MakeText(0, down, text, color, TextAnchor::BottomLeft));
        list.add(MakeText(v.widthPx, down, text, color, TextAnchor::BottomRight));
      }
    }
    value = RoundHalfEven(v.ScaleXY / 5.0 + value);
  }
  value = RoundHalfEven(v.ScaleXY / 5.0);
  for (double d = stepPx; d <= std::abs(v.CenterX) + v.widthPx; d += stepPx) {
    const int left = RoundHalfEven(v.CenterX - d);
    if (left > 0 && left <= v.widthPx) {
      list.add(Line{left, v.heightPx, left, 0, pen});
      const QString text = GridNumber(-(v.SignX * static_cast<double>(value)) / divider);
      if (fm.widthOf(text.toStdString()) / 2 < left) {
        list.add(MakeText(left, 0, text, color));
        list.add(MakeText(left, v.heightPx, text, color, TextAnchor::BottomLeft));
      }
    }
    const int right = RoundHalfEven(v.CenterX + d);
    if (right > 0 && right <= v.widthPx) {
      list.add(Line{right, v.heightPx, right, 0, pen});
      const QString text = GridNumber(v.SignX * static_cast<double>(value) / divider);
      if (right < v.widthPx - fm.widthOf(text.toStdString()) / 2) {
        list.add(MakeText(right, 0, text, color, TextAnchor::TopRight));
        list.add(MakeText(right, v.heightPx, text, color, TextAnchor::BottomRight));
      }
    }
    value = RoundHalfEven(v.ScaleXY / 5.0 + value);
  }
}

struct OrbitMap {
  double zeroX, zeroY, kX, kY;
  int centerX, centerY;
  int x(double code) const { return RoundHalfEven((code - zeroX) * kX + centerX); }
  int y(double code) const { return RoundHalfEven((code - zeroY) * kY + centerY); }
};

OrbitMap MapOf(const TraectoriaViewState& v) {
  return {v.ZeroCodeX, v.ZeroCodeY, v.FactorX, v.FactorY, v.CenterX, v.CenterY};
}

void Cross(int x, int y, BgrColor color, DrawList& list) {
  list.add(Line{x - 10, y, x + 10, y, MakePen(color)});
  list.add(Line{x, y - 10, x, y + 10, MakePen(color)});
}

// Pixels of the picture touched by the strokes, one byte a pixel.
class Coverage {
 public:
  Coverage(int widthPx, int heightPx)
      : w_(widthPx), h_(heightPx), pixels_(static_cast<size_t>(widthPx) * static_cast<size_t>(heightPx), 0) {}

  bool inside(int x, int y) const { return x >= 0 && y >= 0 && x < w_ && y < h_; }
  void mark(int x, int y) { pixels_[static_cast<size_t>(y) * static_cast<size_t>(w_) + static_cast<size_t>(x)] = 1; }

  // A one-pixel stroke from a to b, both ends included, clipped to the picture.
  void stroke(int ax, int ay, int bx, int by) {
    if (std::abs(bx - ax) <= 1 && std::abs(by - ay) <= 1) {
      if (inside(ax, ay)) mark(ax, ay);
      if (inside(bx, by)) mark(bx, by);
      return;
    }
    double x0 = ax, y0 = ay, x1 = bx, y1 = by;
    if (!(inside(ax, ay) && inside(bx, by)) && !Clip(x0, y0, x1, y1)) return;
    Bresenham(RoundHalfEven(x0), RoundHalfEven(y0), RoundHalfEven(x1), RoundHalfEven(y1));
  }

  std::vector<Line> runs(const Pen& pen) const {
    std::vector<Line> out;
    for (int y = 0; y < h_; ++y) {
      const uint8_t* row = pixels_.data() + static_cast<size_t>(y) * static_cast<size_t>(w_);
      for (int x = 0; x < w_; ++x) {
        if (row[x] == 0) continue;
        int end = x;
        while (end + 1 < w_ && row[end + 1] != 0) ++end;
        out.push_back(Line{x, y, end, y, pen});
        x = end;
      }
    }
    return out;
  }

 private:
  // Liang-Barsky against the picture's pixel box; false when nothing is left.
  bool Clip(double& x0, double& y0, double& x1, double& y1) const {
    const double dx = x1 - x0, dy = y1 - y0;
    double t0 = 0.0, t1 = 1.0;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {x0, (w_ - 1) - x0, y0, (h_ - 1) - y0};
    for (int i = 0; i < 4; ++i) {
      if (p[i] == 0.0) {
        if (q[i] < 0.0) return false;
        continue;
      }
      const double t = q[i] / p[i];
      if (p[i] < 0.0) {
        t0 = std::max(t0, t);
      } else {
        t1 = std::min(t1, t);
      }
      if (t0 > t1) return false;
    }
    x1 = x0 + t1 * dx;
    y1 = y0 + t1 * dy;
    x0 = x0 + t0 * dx;
    y0 = y0 + t0 * dy;
    return true;
  }

  void Bresenham(int x0, int y0, int x1, int y1) {
    const int dx = std::abs(x1 - x0), sx = x0 < x1 ? 1 : -1;
    const int dy = -std::abs(y1 - y0), sy = y0 < y1 ? 1 : -1;
    int err = dx + dy;
    for (;;) {
      if (inside(x0, y0)) mark(x0, y0);
      if (x0 == x1 && y0 == y1) return;
      const int e2 = 2 * err;
      if (e2 >= dy) {
        err += dy;
        x0 += sx;
      }
      if (e2 <= dx) {
        err += dx;
        y0 += sy;
      }
    }
  }

  int w_, h_;
  std::vector<uint8_t> pixels_;
};

}  // namespace

void InitTraectoriaView(const AppState& s, TraectoriaViewState& v) {
  const int n = SampleCount(s);
  v.StretchSamples = s.SignalDataN;
  v.ScrollStep = ScrollStepFor(n);
  v.BeginSample = std::clamp(s.ViewFirst, 1, n);
  v.EndSample = std::clamp(s.ViewLast, v.BeginSample, n);
  // The two bars reach from before the first sample to past the last, so
  // that the ends of the stretch stay within reach.
  v.HScrollLMin = v.HScrollRMin = 0;
  v.HScrollLMax = v.HScrollRMax = (v.EndSample + v.ScrollStep - 1) / v.ScrollStep;
  v.HScrollL = v.BeginSample / v.ScrollStep;
  v.HScrollR = v.HScrollRMax;
  v.ScaleXY = s.options.traectoria.ScaleXY;
  v.CursorX = v.CursorY = -1;
}

void ResizeTraectoria(TraectoriaViewState& v, int widthPx, int heightPx) {
  v.widthPx = std::max(0, widthPx);
  v.heightPx = std::max(0, heightPx);
  v.CenterX = v.widthPx / 2;
  v.CenterY = v.heightPx / 2;
  v.FlatScrollBarHMin = v.FlatScrollBarVMin = 0;
  v.FlatScrollBarHMax = v.widthPx;
  v.FlatScrollBarVMax = v.heightPx;
  v.FlatScrollBarH = v.CenterX;
  v.FlatScrollBarV = v.CenterY;
}

void PrepareTraectoria(AppState& s, AnalysisResults& r, TraectoriaViewState& v) {
  // A new recording brings its whole stretch.
  if (v.StretchSamples != s.SignalDataN) InitTraectoriaView(s, v);
  const int f = ActiveChannel(s);
  v.Buildable = RefusalReason(s).isEmpty();
  v.ControlsEnabled = v.Buildable;
  v.Paired = false;
  v.Caption = QStringLiteral("Траектория движения вала");
  v.RotorSpeedText = FirstMarkerChannel(s) != 0 ? RotorSpeedText(r.speed) : QString();
  if (!v.Buildable) return;

  const DirectionPair pair = PairByDirection(s.channels.Direct[f], s.channels.Direct[f + 1]);
  v.Caption += QStringLiteral(" (") + s.channels.Direct[f] + QStringLiteral("-") + s.channels.Direct[f + 1] +
               QStringLiteral(")");
  v.Paired = pair.paired;
  v.ChannelX = pair.nextIsX ? f + 1 : f;
  v.ChannelY = pair.nextIsX ? f : f + 1;
  v.SignX = pair.paired ? pair.signX : 1;
  v.SignY = pair.paired ? pair.signY : 1;

  if (v.SliderV == -1) {
    v.ScaleXY = AutoScaleXY(ExtentOf(s, f), ExtentOf(s, f + 1), v.ScaleXY);
  } else {
    v.ScaleXY = AmplitudeScale(v.SliderV);
  }
  // A peak past every scale on the first drawing: the largest scale.
  if (v.ScaleXY <= 0) v.ScaleXY = AmplitudeScale(kAmplitudeScaleCount - 1);
  SetChannelUnit(s, v.ScaleXY);
  v.UnitName = s.UnitName;
  v.UnitDivisor = s.UnitDivisor != 0.0 ? s.UnitDivisor : 1.0;
  v.UnitsPerPixel = UnitsPerPixelFor(v.ScaleXY, v.widthPx, v.heightPx);
  v.SliderVToolTip = v.SliderV == -1 ? QStringLiteral("Авто")
                                     : GridNumber(v.ScaleXY / v.UnitDivisor).trimmed() + QStringLiteral(" ") + v.UnitName;
  if (!v.Paired) return;

  if (s.options.traectoria.TraectoriaFirstGarmonic) {
    v.TrajectoryX = v.CenterX;
    v.TrajectoryY = v.CenterY;
    AccountChannelProbe(s, r, v.ChannelX);
    v.AmplitudeX = r.ProbeAmplitude[0];
    v.PhaseX = r.ProbePhase[0];
    AccountChannelProbe(s, r, v.ChannelY);
    v.AmplitudeY = r.ProbeAmplitude[0];
    v.PhaseY = r.ProbePhase[0];
    // The probe values of the active channel stay in the shared arrays.
    if (v.ChannelY != f) AccountChannelProbe(s, r, f);
    return;
  }
  v.ZeroCodeX = ZeroCode(s, v.ChannelX);
  v.ZeroCodeY = ZeroCode(s, v.ChannelY);
  v.FactorX = v.SignX * kMillivoltsPerCode / SafeKu(s.channels.Ku[v.ChannelX]) / v.UnitsPerPixel;
  v.FactorY = v.SignY * kMillivoltsPerCode / SafeKu(s.channels.Ku[v.ChannelY]) / v.UnitsPerPixel;
  const OrbitMap map = MapOf(v);
  v.TrajectoryX = map.x(s.SignalMeanValue[v.ChannelX]);
  v.TrajectoryY = map.y(s.SignalMeanValue[v.ChannelY]);
  v.BeginPointX = map.x(s.channels.KS[v.ChannelX]);
  v.BeginPointY = map.y(s.channels.KS[v.ChannelY]);
}

std::vector<Line> OrbitRuns(const AppState& s, const TraectoriaViewState& v, int lastSample) {
  const int first = std::clamp(v.BeginSample, 1, SampleCount(s));
  const int last = std::min({v.EndSample, lastSample, SampleCount(s)});
  if (v.widthPx <= 0 || v.heightPx <= 0 || last < first) return {};
  // Codes are 16-bit: each maps to its pixel once.
  const OrbitMap map = MapOf(v);
  std::vector<int32_t> toX(65536), toY(65536);
  for (int code = -32768; code <= 32767; ++code) {
    toX[static_cast<size_t>(code + 32768)] = map.x(code);
    toY[static_cast<size_t>(code + 32768)] = map.y(code);
  }
  Coverage coverage(v.widthPx, v.heightPx);
  const int16_t* row = s.SignalData.data() + static_cast<size_t>(first - 1) * SampleStore::kColumns;
  const size_t cx = static_cast<size_t>(v.ChannelX - 1), cy = static_cast<size_t>(v.ChannelY - 1);
  int px = toX[static_cast<size_t>(row[cx] + 32768)];
  int py = toY[static_cast<size_t>(row[cy] + 32768)];
  if (coverage.inside(px, py)) coverage.mark(px, py);
  for (int sample = first + 1; sample <= last; ++sample) {
    row += SampleStore::kColumns;
    const int x = toX[static_cast<size_t>(row[cx] + 32768)];
    const int y = toY[static_cast<size_t>(row[cy] + 32768)];
    if (x == px && y == py) continue;
    coverage.stroke(px, py, x, y);
    px = x;
    py = y;
  }
  return coverage.runs(MakePen(s.channels.ChannelColor[ActiveChannel(s)]));
}

DrawList DrawTraectoria(const AppState& s, const TraectoriaViewState& v, const FontMetrics& fm, int lastSample) {
  DrawList list;
  list.width = std::max(0, v.widthPx);
  list.height = std::max(0, v.heightPx);
  list.background = ViewBackground(s);
  const ColorOptions& colors = s.options.color;
  if (v.widthPx < kMinPicturePx || v.heightPx < kMinPicturePx) {
    list.add(MakeText(v.widthPx / 2, v.heightPx / 2, QString::fromUtf8(kTooSmallNote), colors.ColorText, TextAnchor::Center));
    return list;
  }
  const QStringList refusal = TraectoriaRefusal(s, v);
  if (!v.Buildable) {
    DrawAxesAndFrame(s, v, list);
    AddCentredNote(v, fm, refusal.value(0), refusal.value(1), colors.ColorText, list);
    return list;
  }
  DrawDirections(s, v, fm, list);
  DrawAxesAndFrame(s, v, list);
  DrawGrid(s, v, fm, list);
  if (!v.Paired) {
    AddCentredNote(v, fm, refusal.value(0), {}, colors.ColorText, list);
    return list;
  }
  const int f = ActiveChannel(s);
  const TraectoriaOptions& o = s.options.traectoria;
  if (o.TraectoriaFirstGarmonic) {
    Polyline ellipse = FirstHarmonicEllipse(v.AmplitudeX, v.PhaseX, v.AmplitudeY, v.PhaseY, v.SignX, v.SignY,
                                            v.UnitsPerPixel, v.CenterX, v.CenterY);
    ellipse.pen = MakePen(s.channels.ChannelColor[f], 2);
    list.add(std::move(ellipse));
  } else {
    for (Line& run : OrbitRuns(s, v, lastSample)) list.add(std::move(run));
    if (o.TraectoriaOtmetchick) {
      const OrbitMap map = MapOf(v);
      const Pen pen = MakePen(colors.ColorLineOtmetchick);
      const int count = std::clamp(s.ShaftMarkCount, 0, kMaxShaftMarks);
      const int last = std::min(v.EndSample, lastSample);
      for (int i = 0; i < count; ++i) {
        const int mark = s.ShaftMarks[static_cast<size_t>(i)];
        if (mark < v.BeginSample || mark > last || mark < 1 || mark > SampleCount(s)) continue;
        const int x = map.x(s.SignalData.at(mark, v.ChannelX));
        const int y = map.y(s.SignalData.at(mark, v.ChannelY));
        list.add(Line{v.TrajectoryX, v.TrajectoryY, v.TrajectoryX + 2 * (x - v.TrajectoryX),
                      v.TrajectoryY + 2 * (y - v.TrajectoryY), pen});
      }
    }
    if (o.CenterRotor) Cross(v.TrajectoryX, v.TrajectoryY, s.channels.ChannelColor[f], list);
    if (o.BeginPoint) Cross(v.BeginPointX, v.BeginPointY, colors.ColorBeginPoint, list);
  }
  const std::vector<Line> dart = DirectionDart(v.widthPx, v.heightPx, v.TrajectoryX, v.TrajectoryY);
  if (!dart.empty()) {
    for (const Line& stroke : dart) list.add(stroke);
    list.add(MakeText(v.widthPx / 2, v.heightPx / 2, QStringLiteral("Центр траектории"), dart.front().pen.color, TextAnchor::Center));
  }
  return list;
}

QStringList TraectoriaRefusal(const AppState& s, const TraectoriaViewState& v) {
  if (!v.Buildable) return {QStringLiteral("Построение траектории невозможно"), RefusalReason(s)};
  if (v.Paired) return {};
  const int f = ActiveChannel(s);
  return {QStringLiteral("Траекторию невозможно построить по направлениям: ") + s.channels.Direct[f] +
          QStringLiteral("-") + s.channels.Direct[f + 1]};
}

DrawList BuildTraectoria(AppState& s, AnalysisResults& r, TraectoriaViewState& v, const FontMetrics& fm) {
  PrepareTraectoria(s, r, v);
  return DrawTraectoria(s, v, fm);
}

void AppendTraectoriaCrosshair(const TraectoriaViewState& v, DrawList& list) {
  if (v.CursorX < 0 || v.CursorY < 0) return;
  Pen pen = MakePen(0xFFFFFF);
  pen.xorMode = true;
  list.add(Line{v.CursorX, 0, v.CursorX, v.heightPx, pen});
  list.add(Line{0, v.CursorY, v.widthPx, v.CursorY, pen});
}

}  // namespace aqx::views
