// Pure geometry of the trajectory view: pairing of directions, the scale,
// the compass angle and the dart, the first-harmonic ellipse, grid numbers.

#include "core/Numeric.h"
#include "views/signal/SignalView.h"
#include "views/trajectory/TraectoriaView.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace aqx::views {

namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

enum class Axis { None, Vertical, Horizontal };

// The axis of a direction and where it points: ВБ up, НБ down, ЛБ and ПБ
// the two sides.
Axis AxisOf(const QString& direct) {
  if (direct == QStringLiteral("ВБ") || direct == QStringLiteral("НБ")) return Axis::Vertical;
  if (direct == QStringLiteral("ЛБ") || direct == QStringLiteral("ПБ")) return Axis::Horizontal;
  return Axis::None;
}

// Pixels grow downward: a channel toward ВБ reads upward (-1), toward НБ
// downward (+1); ЛБ reads to the right, ПБ to the left.
int SignOf(const QString& direct) {
  return direct == QStringLiteral("ВБ") || direct == QStringLiteral("ПБ") ? -1 : 1;
}

struct PointD {
  double x, y;
};

PointD Unit(double degrees) { return {std::sin(degrees * kDegree), std::cos(degrees * kDegree)}; }

}  // namespace

DirectionPair PairByDirection(const QString& directActive, const QString& directNext) {
  DirectionPair pair;
  const Axis a = AxisOf(directActive);
  const Axis b = AxisOf(directNext);
  if (a == Axis::None || b == Axis::None || a == b) return pair;
  pair.paired = true;
  pair.nextIsX = a == Axis::Vertical;
  const QString& x = pair.nextIsX ? directNext : directActive;
  const QString& y = pair.nextIsX ? directActive : directNext;
  pair.signX = SignOf(x);
  pair.signY = SignOf(y);
  return pair;
}

int AutoScaleXY(int extentActive, int extentNext, int current) {
  for (int i = 0; i < kAmplitudeScaleCount; ++i) {
    const int entry = AmplitudeScale(i);
    if (entry > extentActive && entry > extentNext) return entry;
  }
  return current;
}

double UnitsPerPixelFor(int scaleXY, int widthPx, int heightPx) {
  return 2.0 * scaleXY / std::max(1, std::min(widthPx, heightPx));
}

double CartesianToPolar(double x, double y) {
  constexpr double kToDegrees = 180.0 / std::numbers::pi;
  if (x == 0.0) return y < 0.0 ? 180.0 : 0.0;
  if (y == 0.0) return x > 0.0 ? 90.0 : 270.0;
  if (x > 0.0 && y > 0.0) return std::atan(x / y) * kToDegrees;
  if (x > 0.0) return 90.0 + std::atan(-y / x) * kToDegrees;
  if (y < 0.0) return 180.0 + std::atan(x / y) * kToDegrees;
  return 270.0 + std::atan(y / -x) * kToDegrees;
}

std::vector<Line> DirectionDart(int widthPx, int heightPx, int trajectoryX, int trajectoryY) {
  std::vector<Line> strokes;
  const bool inside = trajectoryX >= 0 && trajectoryX <= widthPx && trajectoryY >= 0 && trajectoryY <= heightPx;
  if (inside) return strokes;
  const double midX = widthPx / 2.0;
  const double midY = heightPx / 2.0;
  const int theta = RoundHalfEven(CartesianToPolar(midX - trajectoryX, midY - trajectoryY));
  const PointD along = Unit(theta - 180.0);
  Pen pen;
  pen.color = 0xFFFF00;
  auto step = [](int x, int y, const PointD& u, double length) {
    return std::array<int, 2>{x + RoundHalfEven(length * u.x), y + RoundHalfEven(length * u.y)};
  };
  const std::array<int, 2> p0{RoundHalfEven(midX - 30.0 * along.x), RoundHalfEven(midY - 30.0 * along.y)};
  const std::array<int, 2> p4 = step(p0[0], p0[1], along, 60.0);
  for (const double side : {theta - 90.0, theta - 270.0}) {
    const PointD across = Unit(side);
    const auto p1 = step(p0[0], p0[1], across, 10.0);
    const auto p2 = step(p1[0], p1[1], along, 40.0);
    const auto p3 = step(p2[0], p2[1], across, 10.0);
    strokes.push_back(Line{p0[0], p0[1], p1[0], p1[1], pen});
    strokes.push_back(Line{p1[0], p1[1], p2[0], p2[1], pen});
    strokes.push_back(Line{p2[0], p2[1], p3[0], p3[1], pen});
    strokes.push_back(Line{p3[0], p3[1], p4[0], p4[1], pen});
  }
  return strokes;
}

Polyline FirstHarmonicEllipse(double amplitudeX, double phaseXDeg, double amplitudeY, double phaseYDeg, int signX,
                              int signY, double unitsPerPixel, int centerX, int centerY) {
  constexpr int kSteps = 1000;
  const double step = 2.0 * std::numbers::pi / kSteps;
  const double upp = unitsPerPixel != 0.0 ? unitsPerPixel : 1.0;
  const double rx = signX / upp / 2.0 * amplitudeX;
  const double ry = signY / upp / 2.0 * amplitudeY;
  const double px = (phaseXDeg + 90.0) * kDegree;
  const double py = (phaseYDeg + 90.0) * kDegree;
  Polyline curve;
  curve.xs.reserve(kSteps + 2);
  curve.ys.reserve(kSteps + 2);
  for (int i = 0; i <= kSteps + 1; ++i) {
    const double t = i * step;
    curve.xs.push_back(RoundHalfEven(centerX + rx * std::cos(px + t)));
    curve.ys.push_back(RoundHalfEven(centerY + ry * std::cos(py + t)));
  }
  return curve;
}

QString GridNumber(double value) {
  QString text;
  if (std::fabs(value - std::round(value)) < 1e-9) {
    text = QString::number(static_cast<qint64>(std::llround(value)));
  } else {
    text = QString::number(value, 'f', 6);
    while (text.endsWith(QLatin1Char('0'))) text.chop(1);
  }
  return value < 0.0 && text != QStringLiteral("0") ? text : QStringLiteral(" ") + text;
}

}  // namespace aqx::views
