#include "ui/common/Icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QtMath>

namespace aqx::ui {

namespace {

constexpr int kSizePx = 24;

const QColor kInk(40, 40, 48);
const QColor kBlue(30, 90, 200);
const QColor kGreen(20, 140, 60);
const QColor kRed(210, 30, 30);
const QColor kPaper(250, 250, 245);

QPen InkPen(const QColor& c, double w = 1.6) {
  QPen p(c, w);
  p.setCapStyle(Qt::RoundCap);
  p.setJoinStyle(Qt::RoundJoin);
  return p;
}

void Page(QPainter& p, QRectF r) {
  QPainterPath path;
  path.moveTo(r.left(), r.top());
  path.lineTo(r.right() - 5, r.top());
  path.lineTo(r.right(), r.top() + 5);
  path.lineTo(r.right(), r.bottom());
  path.lineTo(r.left(), r.bottom());
  path.closeSubpath();
  p.setPen(InkPen(kInk, 1.2));
  p.setBrush(kPaper);
  p.drawPath(path);
}

void Axes(QPainter& p) {
  p.setPen(InkPen(kInk, 1.2));
  p.drawLine(QPointF(3, 3), QPointF(3, 21));
  p.drawLine(QPointF(3, 21), QPointF(21, 21));
}

void Bars(QPainter& p, const QRectF& area, const std::initializer_list<double>& heights, const QColor& c) {
  const double w = area.width() / static_cast<double>(heights.size());
  double x = area.left();
  p.setPen(Qt::NoPen);
  p.setBrush(c);
  for (double h : heights) {
    p.drawRect(QRectF(x + 0.5, area.bottom() - h * area.height(), w - 1.0, h * area.height()));
    x += w;
  }
}

void Polar(QPainter& p, const QPointF& c, double r) {
  p.setPen(InkPen(QColor(150, 150, 150), 0.8));
  p.setBrush(Qt::NoBrush);
  p.drawEllipse(c, r, r);
  p.drawEllipse(c, r / 2, r / 2);
  p.drawLine(QPointF(c.x() - r, c.y()), QPointF(c.x() + r, c.y()));
  p.drawLine(QPointF(c.x(), c.y() - r), QPointF(c.x(), c.y() + r));
}

QPolygonF RotorShape(const QPointF& c, double r, double ripple) {
  QPolygonF poly;
  for (int i = 0; i <= 48; ++i) {
    const double a = 2 * M_PI * i / 48;
    const double rr = r * (1.0 + ripple * std::sin(3 * a) + 0.5 * ripple * std::cos(2 * a));
    poly << QPointF(c.x() + rr * std::cos(a), c.y() + rr * std::sin(a));
  }
  return poly;
}

void Arrow(QPainter& p, bool right, bool bar) {
  QPolygonF tri;
  if (right) {
    tri << QPointF(7, 5) << QPointF(17, 12) << QPointF(7, 19);
  } else {
    tri << QPointF(17, 5) << QPointF(7, 12) << QPointF(17, 19);
  }
  p.setPen(Qt::NoPen);
  p.setBrush(kBlue);
  p.drawPolygon(tri);
  if (bar) {
    p.setBrush(kInk);
    p.drawRect(right ? QRectF(18, 5, 2.5, 14) : QRectF(3.5, 5, 2.5, 14));
  }
}

void Magnifier(QPainter& p, bool plus) {
  p.setPen(InkPen(kInk, 2.0));
  p.setBrush(kPaper);
  p.drawEllipse(QPointF(10, 10), 6.5, 6.5);
  p.drawLine(QPointF(15, 15), QPointF(21, 21));
  p.setPen(InkPen(kBlue, 2.0));
  p.drawLine(QPointF(7, 10), QPointF(13, 10));
  if (plus) p.drawLine(QPointF(10, 7), QPointF(10, 13));
}

void DrawIcon(QPainter& p, ToolIcon which) {
  switch (which) {
    case ToolIcon::Record:
      p.setPen(InkPen(QColor(120, 0, 0), 1.2));
      p.setBrush(kRed);
      p.drawEllipse(QPointF(12, 12), 8, 8);
      break;
    case ToolIcon::Stop:
      p.setPen(InkPen(kInk, 1.2));
      p.setBrush(QColor(60, 60, 70));
      p.drawRoundedRect(QRectF(5, 5, 14, 14), 2, 2);
      break;
    case ToolIcon::Open: {
      p.setPen(InkPen(QColor(140, 100, 20), 1.2));
      p.setBrush(QColor(240, 200, 90));
      p.drawRect(QRectF(2.5, 6.5, 17, 13));
      p.drawRect(QRectF(2.5, 4.5, 7, 3));
      QPolygonF flap;
      flap << QPointF(5, 11) << QPointF(22, 11) << QPointF(19, 19.5) << QPointF(2.5, 19.5);
      p.setBrush(QColor(250, 220, 120));
      p.drawPolygon(flap);
      break;
    }
    case ToolIcon::Save:
      p.setPen(InkPen(QColor(20, 40, 90), 1.2));
      p.setBrush(kBlue);
      p.drawRoundedRect(QRectF(3.5, 3.5, 17, 17), 2, 2);
      p.setBrush(kPaper);
      p.drawRect(QRectF(7, 3.5, 10, 6));
      p.setBrush(QColor(200, 210, 230));
      p.drawRect(QRectF(6.5, 13, 11, 7.5));
      break;
    case ToolIcon::FileData:
      Page(p, QRectF(4.5, 2.5, 15, 19));
      p.setPen(InkPen(kBlue, 2.2));
      p.drawPoint(QPointF(12, 7.5));
      p.drawLine(QPointF(12, 11), QPointF(12, 18));
      break;
    case ToolIcon::Copy:
      Page(p, QRectF(2.5, 2.5, 12, 15));
      Page(p, QRectF(9.5, 7.5, 12, 15));
      break;
    case ToolIcon::Signal: {
      Axes(p);
      QPainterPath wave;
      for (int x = 4; x <= 21; ++x) {
        const QPointF pt(x, 12 - 6 * std::sin((x - 4) * 2 * M_PI / 9.0));
        x == 4 ? wave.moveTo(pt) : wave.lineTo(pt);
      }
      p.setPen(InkPen(kGreen, 1.6));
      p.setBrush(Qt::NoBrush);
      p.drawPath(wave);
      break;
    }
    case ToolIcon::Spectr:
      Axes(p);
      Bars(p, QRectF(4, 4, 17, 16), {0.2, 0.9, 0.3, 0.55, 0.15, 0.35, 0.1}, kBlue);
      break;
    case ToolIcon::Spectrum:
      p.setPen(InkPen(kBlue, 1.3));
      for (int k = 0; k < 4; ++k) {
        QPainterPath line;
        const double dx = 4.0 * k, dy = -3.5 * k;
        line.moveTo(2 + dx, 20 + dy);
        line.lineTo(5 + dx, 20 + dy);
        line.lineTo(6.5 + dx, 13 + dy + k);
        line.lineTo(8 + dx, 20 + dy);
        line.lineTo(10 + dx, 17 + dy);
        line.lineTo(12 + dx, 20 + dy);
        p.drawPath(line);
      }
      break;
    case ToolIcon::Traectoria:
      Polar(p, QPointF(12, 12), 9.5);
      p.setPen(InkPen(kRed, 1.6));
      p.setBrush(Qt::NoBrush);
      p.save();
      p.translate(12, 12);
      p.rotate(-30);
      p.drawEllipse(QPointF(0, 0), 7.5, 4);
      p.restore();
      break;
    case ToolIcon::FormaRotor:
      p.setPen(InkPen(kInk, 1.2));
      p.setBrush(QColor(210, 215, 225));
      p.drawEllipse(QPointF(12, 12), 9.5, 9.5);
      p.setPen(InkPen(kRed, 1.5));
      p.setBrush(Qt::NoBrush);
      p.drawPolygon(RotorShape(QPointF(12, 12), 7, 0.08));
      break;
    case ToolIcon::FormaRotorDiagram:
      Polar(p, QPointF(12, 12), 9.5);
      p.setPen(InkPen(kRed, 1.5));
      p.setBrush(Qt::NoBrush);
      p.drawPolygon(RotorShape(QPointF(12, 12), 6.5, 0.18));
      break;
    case ToolIcon::FormaRotorSpectr:
      Polar(p, QPointF(8, 8), 6);
      p.setPen(InkPen(kRed, 1.2));
      p.drawPolygon(RotorShape(QPointF(8, 8), 4, 0.15));
      Bars(p, QRectF(11, 12, 11, 10), {0.4, 1.0, 0.3, 0.6}, kBlue);
      break;
    case ToolIcon::Parameters: {
      p.setPen(InkPen(kInk, 1.2));
      p.setBrush(kPaper);
      p.drawRoundedRect(QRectF(2.5, 4.5, 19, 15), 2, 2);
      QFont f;
      f.setPixelSize(11);
      f.setBold(true);
      p.setFont(f);
      p.setPen(kBlue);
      p.drawText(QRectF(2.5, 4.5, 19, 15), Qt::AlignCenter, QStringLiteral("123"));
      break;
    }
    case ToolIcon::ADC:
      p.setPen(InkPen(kInk, 1.2));
      for (int i = 0; i < 4; ++i) {
        const double y = 6 + 4 * i;
        p.drawLine(QPointF(2, y), QPointF(6, y));
        p.drawLine(QPointF(18, y), QPointF(22, y));
      }
      p.setBrush(QColor(50, 55, 65));
      p.drawRoundedRect(QRectF(5.5, 3.5, 13, 17), 1.5, 1.5);
      p.setPen(QColor(230, 230, 230));
      {
        QFont f;
        f.setPixelSize(7);
        f.setBold(true);
        p.setFont(f);
        p.drawText(QRectF(5.5, 3.5, 13, 17), Qt::AlignCenter, QStringLiteral("АЦП"));
      }
      break;
    case ToolIcon::Imposition: {
      Axes(p);
      QPainterPath a, b;
      for (int x = 4; x <= 21; ++x) {
        const QPointF pa(x, 11 - 5 * std::sin((x - 4) * 2 * M_PI / 12.0));
        const QPointF pb(x, 13 - 4 * std::cos((x - 4) * 2 * M_PI / 7.0));
        x == 4 ? a.moveTo(pa) : a.lineTo(pa);
        x == 4 ? b.moveTo(pb) : b.lineTo(pb);
      }
      p.setBrush(Qt::NoBrush);
      p.setPen(InkPen(kRed, 1.5));
      p.drawPath(a);
      p.setPen(InkPen(kBlue, 1.5));
      p.drawPath(b);
      break;
    }
    case ToolIcon::BlockFirst: Arrow(p, false, true); break;
    case ToolIcon::BlockPrevious: Arrow(p, false, false); break;
    case ToolIcon::BlockNext: Arrow(p, true, false); break;
    case ToolIcon::BlockLast: Arrow(p, true, true); break;
    case ToolIcon::BlockMinus: Magnifier(p, false); break;
    case ToolIcon::BlockPlus: Magnifier(p, true); break;
    case ToolIcon::BlockMin:
      p.setPen(InkPen(kInk, 1.3));
      p.setBrush(QColor(200, 215, 240));
      p.drawRect(QRectF(2.5, 8.5, 19, 7));
      p.setPen(InkPen(kBlue, 1.6));
      p.drawLine(QPointF(5, 12), QPointF(19, 12));
      break;
    case ToolIcon::BlockMax:
      p.setPen(InkPen(kInk, 1.3));
      p.setBrush(QColor(200, 215, 240));
      p.drawRect(QRectF(8.5, 8.5, 7, 7));
      p.setPen(InkPen(kBlue, 1.6));
      p.drawLine(QPointF(2, 12), QPointF(7, 12));
      p.drawLine(QPointF(17, 12), QPointF(22, 12));
      break;
    case ToolIcon::Application:
      p.setPen(InkPen(QColor(20, 60, 120), 1.2));
      p.setBrush(QColor(70, 130, 210));
      p.drawEllipse(QPointF(12, 12), 10, 10);
      p.setPen(InkPen(Qt::white, 1.8));
      p.setBrush(Qt::NoBrush);
      for (int k = 0; k < 3; ++k) {
        p.save();
        p.translate(12, 12);
        p.rotate(120.0 * k);
        QPainterPath blade;
        blade.moveTo(0, 0);
        blade.cubicTo(3, -2, 6, -5, 4, -8);
        p.drawPath(blade);
        p.restore();
      }
      break;
  }
}

}  // namespace

QIcon MakeToolIcon(ToolIcon which) {
  QIcon icon;
  for (int scale : {1, 2}) {
    QPixmap pix(kSizePx * scale, kSizePx * scale);
    pix.setDevicePixelRatio(scale);
    pix.fill(Qt::transparent);
    QPainter p(&pix);
    p.setRenderHint(QPainter::Antialiasing);
    DrawIcon(p, which);
    p.end();
    icon.addPixmap(pix);
  }
  return icon;
}

QIcon MakeChannelIcon(int channel, const QColor& face, bool current) {
  QPixmap pix(kSizePx, kSizePx);
  pix.fill(Qt::transparent);
  QPainter p(&pix);
  p.setRenderHint(QPainter::Antialiasing);
  p.setPen(QPen(face.darker(170), 1));
  p.setBrush(face);
  p.drawRoundedRect(QRectF(1.5, 1.5, 21, 21), 3, 3);
  QFont f;
  f.setPixelSize(channel >= 10 ? 11 : 13);
  f.setBold(true);
  p.setFont(f);
  const QColor ink = face.lightness() > 140 ? QColor(20, 20, 20) : QColor(255, 255, 255);
  p.setPen(ink);
  p.drawText(QRectF(0, 0, kSizePx, current ? 19 : kSizePx), Qt::AlignCenter, QString::number(channel));
  if (current) {
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawRect(QRectF(6, 18, 12, 2.5));
  }
  return QIcon(pix);
}

}  // namespace aqx::ui
