#include "ui/main/SplashPictures.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QtMath>

namespace aqx::ui {

namespace {

int Normalised(int picture) {
  const int m = ((picture - 1) % kSplashPictureCount + kSplashPictureCount) % kSplashPictureCount;
  return m + 1;
}

void Sky(QPainter& p, const QRectF& r, const QColor& top, const QColor& bottom) {
  QLinearGradient g(r.topLeft(), r.bottomLeft());
  g.setColorAt(0, top);
  g.setColorAt(1, bottom);
  p.fillRect(r, g);
}

void Water(QPainter& p, const QRectF& r) {
  QLinearGradient g(r.topLeft(), r.bottomLeft());
  g.setColorAt(0, QColor(60, 120, 170));
  g.setColorAt(1, QColor(20, 60, 110));
  p.fillRect(r, g);
  p.setPen(QPen(QColor(190, 220, 240, 120), 1));
  for (double y = r.top() + 6; y < r.bottom(); y += 7)
    for (double x = r.left() + std::fmod(y * 3, 23); x < r.right(); x += 23) p.drawLine(QPointF(x, y), QPointF(x + 9, y));
}

void Hills(QPainter& p, const QRectF& r, double baseY, const QColor& c, double phase) {
  QPainterPath hill;
  hill.moveTo(r.left(), baseY);
  for (double x = r.left(); x <= r.right(); x += 4)
    hill.lineTo(x, baseY - 18 - 14 * std::sin((x - r.left()) / r.width() * 5 + phase) -
                       8 * std::sin((x - r.left()) / r.width() * 13 + phase * 2));
  hill.lineTo(r.right(), baseY);
  hill.closeSubpath();
  p.setPen(Qt::NoPen);
  p.setBrush(c);
  p.drawPath(hill);
}

void PowerLine(QPainter& p, QPointF base, double h) {
  p.setPen(QPen(QColor(70, 70, 80), 1.2));
  p.drawLine(base, base + QPointF(0, -h));
  p.drawLine(base + QPointF(-5, 0), base + QPointF(0, -h));
  p.drawLine(base + QPointF(5, 0), base + QPointF(0, -h));
  p.drawLine(base + QPointF(-7, -h * 0.75), base + QPointF(7, -h * 0.75));
  p.drawLine(base + QPointF(-5, -h * 0.9), base + QPointF(5, -h * 0.9));
}

// A river barrage: spillway gates, machine hall, lines leaving the station.
void DrawDam(QPainter& p, const QRectF& r) {
  Sky(p, r, QColor(120, 170, 225), QColor(225, 235, 245));
  Hills(p, r, r.top() + r.height() * 0.55, QColor(100, 140, 90), 0.4);
  Water(p, QRectF(r.left(), r.top() + r.height() * 0.52, r.width(), r.height() * 0.48));
  const double top = r.top() + r.height() * 0.42, bottom = r.top() + r.height() * 0.8;
  p.setPen(QPen(QColor(90, 90, 90), 1));
  p.setBrush(QColor(205, 200, 190));
  p.drawRect(QRectF(r.left(), top, r.width(), bottom - top));
  // Spillway bays with white water under each gate.
  const int bays = 9;
  const double bayW = r.width() * 0.55 / bays;
  for (int i = 0; i < bays; ++i) {
    const double x = r.left() + r.width() * 0.42 + i * bayW;
    p.setBrush(QColor(150, 150, 150));
    p.drawRect(QRectF(x + 2, top + 6, bayW - 4, (bottom - top) * 0.45));
    QLinearGradient foam(QPointF(x, bottom), QPointF(x, r.bottom()));
    foam.setColorAt(0, QColor(245, 250, 255));
    foam.setColorAt(1, QColor(120, 170, 210, 0));
    p.fillRect(QRectF(x + 3, bottom, bayW - 6, r.bottom() - bottom), foam);
  }
  // Machine hall with windows.
  const QRectF hall(r.left() + r.width() * 0.05, top - r.height() * 0.12, r.width() * 0.34, r.height() * 0.2);
  p.setBrush(QColor(235, 230, 215));
  p.drawRect(hall);
  p.setBrush(QColor(80, 110, 150));
  for (int i = 0; i < 8; ++i)
    p.drawRect(QRectF(hall.left() + 6 + i * (hall.width() - 12) / 8, hall.top() + 6, (hall.width() - 12) / 8 - 4, hall.height() * 0.4));
  p.setBrush(QColor(170, 60, 50));
  p.drawRect(QRectF(hall.left() - 3, hall.top() - 5, hall.width() + 6, 5));
  // Crane on the dam crest.
  p.setPen(QPen(QColor(200, 120, 20), 2));
  const double cx = r.left() + r.width() * 0.62;
  p.drawLine(QPointF(cx, top), QPointF(cx, top - 22));
  p.drawLine(QPointF(cx + 16, top), QPointF(cx + 16, top - 22));
  p.drawLine(QPointF(cx - 4, top - 22), QPointF(cx + 20, top - 22));
  for (int i = 0; i < 4; ++i) PowerLine(p, QPointF(r.left() + r.width() * (0.1 + 0.09 * i), top - r.height() * 0.12 - 2 - i * 3), 34 - i * 5);
}

// Section through a unit: generator on top, shaft, runner, spiral case and
// draft tube below.
void DrawUnitSection(QPainter& p, const QRectF& r) {
  Sky(p, r, QColor(235, 238, 242), QColor(210, 215, 222));
  const double cx = r.center().x();
  const double s = r.height() / 220.0;
  p.setPen(QPen(QColor(60, 60, 70), 1.2));
  // Concrete.
  p.setBrush(QColor(190, 185, 175));
  p.drawRect(QRectF(r.left() + 10, r.top() + 120 * s, r.width() - 20, r.height() - 125 * s));
  // Spiral case and draft tube.
  QPainterPath spiral;
  spiral.addEllipse(QPointF(cx, r.top() + 135 * s), 95 * s, 22 * s);
  p.setBrush(QColor(110, 150, 190));
  p.drawPath(spiral);
  QPainterPath tube;
  tube.moveTo(cx - 30 * s, r.top() + 150 * s);
  tube.cubicTo(cx - 40 * s, r.top() + 200 * s, cx - 120 * s, r.top() + 205 * s, cx - 170 * s, r.top() + 200 * s);
  tube.lineTo(cx - 170 * s, r.top() + 215 * s);
  tube.cubicTo(cx - 100 * s, r.top() + 220 * s, cx + 20 * s, r.top() + 215 * s, cx + 30 * s, r.top() + 150 * s);
  tube.closeSubpath();
  p.setBrush(QColor(90, 130, 175));
  p.drawPath(tube);
  // Runner blades.
  p.setBrush(QColor(200, 160, 60));
  for (int k = -2; k <= 2; ++k) {
    QPainterPath blade;
    const double x = cx + k * 14 * s;
    blade.moveTo(x, r.top() + 128 * s);
    blade.cubicTo(x + 10 * s, r.top() + 135 * s, x + 6 * s, r.top() + 148 * s, x - 4 * s, r.top() + 150 * s);
    blade.lineTo(x - 6 * s, r.top() + 130 * s);
    p.drawPath(blade);
  }
  // Shaft.
  p.setBrush(QColor(150, 155, 165));
  p.drawRect(QRectF(cx - 7 * s, r.top() + 60 * s, 14 * s, 75 * s));
  // Generator: stator, rotor, upper bracket.
  p.setBrush(QColor(70, 110, 80));
  p.drawRoundedRect(QRectF(cx - 110 * s, r.top() + 40 * s, 220 * s, 50 * s), 4, 4);
  p.setBrush(QColor(180, 70, 50));
  p.drawRect(QRectF(cx - 85 * s, r.top() + 45 * s, 170 * s, 40 * s));
  p.setPen(QPen(QColor(240, 200, 120), 1));
  for (int i = 0; i < 14; ++i) {
    const double x = cx - 80 * s + i * 160 * s / 13;
    p.drawLine(QPointF(x, r.top() + 48 * s), QPointF(x, r.top() + 82 * s));
  }
  p.setPen(QPen(QColor(60, 60, 70), 1.2));
  p.setBrush(QColor(120, 125, 135));
  p.drawRect(QRectF(cx - 120 * s, r.top() + 30 * s, 240 * s, 10 * s));
  p.drawRect(QRectF(cx - 25 * s, r.top() + 18 * s, 50 * s, 12 * s));
  // Sensors on the shaft: the program's business.
  p.setBrush(QColor(230, 40, 40));
  for (double y : {65.0, 100.0})
    p.drawEllipse(QPointF(cx + 16 * s, r.top() + y * s), 3.5 * s, 3.5 * s);
}

// Pumped storage: upper basin on the hill, penstocks down to the hall.
void DrawPumpedStorage(QPainter& p, const QRectF& r) {
  Sky(p, r, QColor(250, 200, 150), QColor(250, 235, 210));
  QRadialGradient sun(QPointF(r.left() + r.width() * 0.8, r.top() + r.height() * 0.22), 30);
  sun.setColorAt(0, QColor(255, 240, 180));
  sun.setColorAt(1, QColor(255, 200, 120, 0));
  p.fillRect(r, sun);
  QPainterPath hill;
  hill.moveTo(r.left(), r.bottom());
  hill.lineTo(r.left(), r.top() + r.height() * 0.28);
  hill.lineTo(r.left() + r.width() * 0.4, r.top() + r.height() * 0.28);
  hill.cubicTo(r.left() + r.width() * 0.6, r.top() + r.height() * 0.35, r.left() + r.width() * 0.7,
               r.top() + r.height() * 0.7, r.left() + r.width() * 0.8, r.top() + r.height() * 0.72);
  hill.lineTo(r.right(), r.top() + r.height() * 0.72);
  hill.lineTo(r.right(), r.bottom());
  hill.closeSubpath();
  p.setPen(Qt::NoPen);
  p.setBrush(QColor(95, 130, 80));
  p.drawPath(hill);
  Water(p, QRectF(r.left() + 8, r.top() + r.height() * 0.22, r.width() * 0.32, r.height() * 0.06));
  Water(p, QRectF(r.left() + r.width() * 0.78, r.top() + r.height() * 0.8, r.width() * 0.22, r.height() * 0.2));
  p.setPen(QPen(QColor(60, 60, 70), 3));
  for (int i = 0; i < 3; ++i) {
    const double d = i * 6;
    QPainterPath pipe;
    pipe.moveTo(r.left() + r.width() * 0.38 + d, r.top() + r.height() * 0.29);
    pipe.cubicTo(r.left() + r.width() * 0.55 + d, r.top() + r.height() * 0.36 + d, r.left() + r.width() * 0.64 + d,
                 r.top() + r.height() * 0.64, r.left() + r.width() * 0.72 + d, r.top() + r.height() * 0.68);
    p.setBrush(Qt::NoBrush);
    p.drawPath(pipe);
  }
  p.setPen(QPen(QColor(70, 70, 70), 1));
  p.setBrush(QColor(230, 225, 215));
  p.drawRect(QRectF(r.left() + r.width() * 0.7, r.top() + r.height() * 0.6, r.width() * 0.16, r.height() * 0.14));
  p.setBrush(QColor(70, 100, 140));
  for (int i = 0; i < 4; ++i)
    p.drawRect(QRectF(r.left() + r.width() * 0.71 + i * r.width() * 0.037, r.top() + r.height() * 0.63, r.width() * 0.025, r.height() * 0.05));
}

// The machine hall: a row of generator covers under the gantry crane.
void DrawMachineHall(QPainter& p, const QRectF& r) {
  Sky(p, r, QColor(200, 205, 210), QColor(150, 155, 160));
  const double floorY = r.top() + r.height() * 0.62;
  // Floor in perspective.
  QPolygonF floor;
  floor << QPointF(r.left(), floorY) << QPointF(r.right(), floorY) << QPointF(r.right(), r.bottom()) << QPointF(r.left(), r.bottom());
  p.setPen(Qt::NoPen);
  p.setBrush(QColor(170, 150, 120));
  p.drawPolygon(floor);
  // Windows in the back wall.
  p.setBrush(QColor(225, 235, 245));
  for (int i = 0; i < 7; ++i)
    p.drawRect(QRectF(r.left() + 12 + i * (r.width() - 24) / 7, r.top() + 30, (r.width() - 24) / 7 - 10, r.height() * 0.22));
  // Crane girder.
  p.setBrush(QColor(230, 170, 30));
  p.drawRect(QRectF(r.left(), r.top() + 14, r.width(), 9));
  p.setPen(QPen(QColor(60, 60, 60), 1));
  p.drawLine(QPointF(r.center().x(), r.top() + 23), QPointF(r.center().x(), r.top() + 60));
  // Generator covers, nearer ones larger.
  for (int i = 0; i < 4; ++i) {
    const double scale = 0.6 + 0.15 * i;
    const double cx = r.left() + r.width() * (0.14 + 0.24 * i);
    const double cy = floorY + 10 + 14 * i;
    const double rx = 38 * scale * r.width() / 360, ry = 11 * scale * r.height() / 220;
    p.setPen(QPen(QColor(50, 50, 50), 1));
    p.setBrush(QColor(180, 40, 40));
    p.drawEllipse(QPointF(cx, cy), rx, ry);
    p.setPen(Qt::NoPen);
    p.drawRect(QRectF(cx - rx, cy - 14 * scale, 2 * rx, 14 * scale));
    p.setPen(QPen(QColor(50, 50, 50), 1));
    p.drawLine(QPointF(cx - rx, cy - 14 * scale), QPointF(cx - rx, cy));
    p.drawLine(QPointF(cx + rx, cy - 14 * scale), QPointF(cx + rx, cy));
    p.setBrush(QColor(210, 70, 60));
    p.drawEllipse(QPointF(cx, cy - 14 * scale), rx, ry);
    p.setBrush(QColor(160, 165, 175));
    p.drawEllipse(QPointF(cx, cy - 14 * scale), rx * 0.35, ry * 0.35);
  }
}

}  // namespace

void DrawSplashPicture(QPainter& painter, const QRect& area, int picture) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setClipRect(area);
  const QRectF r(area);
  switch (Normalised(picture)) {
    case 1: DrawDam(painter, r); break;
    case 2: DrawUnitSection(painter, r); break;
    case 3: DrawPumpedStorage(painter, r); break;
    default: DrawMachineHall(painter, r); break;
  }
  painter.setPen(QPen(QColor(60, 60, 60), 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(r.adjusted(0, 0, -1, -1));
  painter.restore();
}

SplashCaption SplashPictureCaption(int picture) {
  switch (Normalised(picture)) {
    case 1: return {QStringLiteral("Волжская ГЭС"), QStringLiteral("Плотина и здание станции")};
    case 2: return {QStringLiteral("Жигулевская ГЭС"), QStringLiteral("Гидроагрегат в разрезе")};
    case 3: return {QStringLiteral("Загорская ГАЭС"), QStringLiteral("Верхний бассейн и водоводы")};
    default: return {QStringLiteral("Саратовская ГЭС"), QStringLiteral("Машинный зал")};
  }
}

int NextSplashPicture(int picture) { return Normalised(picture) % kSplashPictureCount + 1; }

}  // namespace aqx::ui
