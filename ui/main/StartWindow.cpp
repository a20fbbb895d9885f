#include "ui/main/StartWindow.h"

#include "ui/main/SplashPictures.h"

#include <QGuiApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QProgressBar>
#include <QRegion>
#include <QScreen>
#include <QTimer>

namespace aqx::ui {

namespace {

constexpr int kWidthPx = 560;
constexpr int kHeightPx = 360;
constexpr int kCornerPx = 24;
const QRect kPictureArea(20, 70, 330, 230);

QLabel* MakeLabel(QWidget* parent, const QString& text, int pixelSize, bool bold, const QColor& color) {
  auto* label = new QLabel(text, parent);
  QFont f = label->font();
  f.setPixelSize(pixelSize);
  f.setBold(bold);
  label->setFont(f);
  QPalette pal = label->palette();
  pal.setColor(QPalette::WindowText, color);
  label->setPalette(pal);
  // A click on a label is a click on the window.
  label->setAttribute(Qt::WA_TransparentForMouseEvents);
  return label;
}

}  // namespace

StartWindow::StartWindow(int picture, int waitMs, QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint), picture_(picture) {
  setObjectName(QStringLiteral("frmStart"));
  setFixedSize(kWidthPx, kHeightPx);
  const SplashCaption caption = SplashPictureCaption(picture);
  lblNameProduct_ = MakeLabel(this, QStringLiteral("Aquilonix"), 34, true, QColor(250, 250, 255));
  lblNameProduct_->setGeometry(22, 12, 330, 46);
  lblVer_ = MakeLabel(this, QStringLiteral("v %1.%2").arg(AQX_VERSION_MAJOR).arg(AQX_VERSION_MINOR), 16, false,
                      QColor(220, 230, 250));
  lblVer_->setGeometry(370, 28, 170, 24);
  lblVer_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  lblRemark_ = MakeLabel(this, QStringLiteral("Комплекс наблюдения\nза гидроагрегатом"), 13, true,
                         QColor(30, 40, 70));
  lblRemark_->setGeometry(366, 78, 186, 48);
  lblPropertyMain_ = MakeLabel(this, caption.description, 13, false, QColor(60, 60, 70));
  lblPropertyMain_->setGeometry(370, 200, 175, 40);
  lblPropertyMain_->setWordWrap(true);
  lblProperty_ = MakeLabel(this, caption.station, 15, true, QColor(20, 60, 130));
  lblProperty_->setGeometry(370, 240, 175, 40);
  lblProperty_->setWordWrap(true);
  progressBar1_ = new QProgressBar(this);
  progressBar1_->setGeometry(20, 316, kWidthPx - 40, 14);
  progressBar1_->setRange(0, 100);
  progressBar1_->setTextVisible(false);
  progressBar1_->setAttribute(Qt::WA_TransparentForMouseEvents);

  timer1_ = new QTimer(this);
  timer1_->setSingleShot(true);
  timer1_->setInterval(waitMs);
  connect(timer1_, &QTimer::timeout, this, &StartWindow::fire);
  timer1_->start();
  if (QScreen* screen = QGuiApplication::primaryScreen())
    move(screen->availableGeometry().center() - rect().center());
}

void StartWindow::setProgress(int percent) { progressBar1_->setValue(std::clamp(percent, 0, 100)); }

QString StartWindow::productText() const { return lblNameProduct_->text(); }
QString StartWindow::versionText() const { return lblVer_->text(); }
QString StartWindow::stationText() const { return lblProperty_->text(); }

void StartWindow::fire() {
  if (fired_) return;
  fired_ = true;
  timer1_->stop();
  emit speedLoad();
}

void StartWindow::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing);
  QLinearGradient g(0, 0, 0, height());
  g.setColorAt(0, QColor(40, 80, 150));
  g.setColorAt(0.2, QColor(90, 140, 200));
  g.setColorAt(0.21, QColor(236, 240, 246));
  g.setColorAt(1, QColor(214, 222, 234));
  p.fillRect(rect(), g);
  DrawSplashPicture(p, kPictureArea, picture_);
  p.setPen(QPen(QColor(40, 60, 100), 2));
  p.setBrush(Qt::NoBrush);
  p.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), kCornerPx, kCornerPx);
}

void StartWindow::mousePressEvent(QMouseEvent* event) {
  event->accept();
  fire();
}

void StartWindow::resizeEvent(QResizeEvent*) {
  QPainterPath path;
  path.addRoundedRect(QRectF(rect()), kCornerPx, kCornerPx);
  setMask(QRegion(path.toFillPolygon().toPolygon()));
}

}  // namespace aqx::ui
