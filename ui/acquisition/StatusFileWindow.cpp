#include "ui/acquisition/StatusFileWindow.h"

#include "core/ConfigWriters.h"
#include "core/Numeric.h"
#include "engine/Aquilonix.h"

#include <QDateTime>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace aqx::ui {

namespace {

const QString kSection = QStringLiteral("Config");
constexpr int kBarHeightPixels = 14;
constexpr int kCornerInsetPixels = 40;

QString GroupedBytes(double bytes) {
  QString t = QString::number(static_cast<qint64>(bytes));
  for (int i = static_cast<int>(t.size()) - 3; i > 0; i -= 3) t.insert(i, QLatin1Char(' '));
  return t;
}

}  // namespace

StatusFileWindow::StatusFileWindow(AppState& state, SettingsStore& store, QWidget* owner)
    : QWidget(owner, Qt::Tool | Qt::FramelessWindowHint), s_(state), store_(store) {
  setObjectName(QStringLiteral("frmStatusFileRecord"));
  setWindowTitle(QStringLiteral("Информация файла данных"));
  setAttribute(Qt::WA_DeleteOnClose);
  setAttribute(Qt::WA_ShowWithoutActivating);
  auto* title = new QLabel(QStringLiteral("<b>Информация файла данных</b>"), this);
  auto* imgClose = new QToolButton(this);
  imgClose->setObjectName(QStringLiteral("imgClose"));
  imgClose->setText(QStringLiteral("×"));
  imgClose->setAutoRaise(true);
  imgClose->setToolTip(QStringLiteral("Закрыть (запись продолжается)"));
  connect(imgClose, &QToolButton::clicked, this, &QWidget::close);
  lblInfo_ = new QLabel(this);
  lblInfo_->setObjectName(QStringLiteral("lblInfo"));
  lblFreeSpase_ = new QLabel(this);
  lblFreeSpase_->setObjectName(QStringLiteral("lblFreeSpase"));
  txtTimeRecord_ = new QLabel(this);
  txtTimeRecord_->setObjectName(QStringLiteral("txtTimeRecord"));
  auto* top = new QHBoxLayout;
  top->addWidget(title, 1);
  top->addWidget(imgClose);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addWidget(lblInfo_);
  layout->addWidget(lblFreeSpase_);
  layout->addSpacing(kBarHeightPixels + 4);
  layout->addWidget(txtTimeRecord_);
  setMinimumWidth(380);
  timer1_ = new QTimer(this);
  timer1_->setInterval(500);
  connect(timer1_, &QTimer::timeout, this, &StatusFileWindow::tick);
  tick();
  adjustSize();
  const int x = ReadWindowSetting(store_, kSection, QStringLiteral("ViewStatusFileRecordX"), -1);
  const int y = ReadWindowSetting(store_, kSection, QStringLiteral("ViewStatusFileRecordY"), -1);
  const QScreen* screen = owner ? owner->screen() : QGuiApplication::primaryScreen();
  const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
  if (x == -1 || y == -1 || !area.intersects(QRect(x, y, width(), height()))) {
    move(area.right() - width() - kCornerInsetPixels, area.bottom() - height() - kCornerInsetPixels);
  } else {
    move(x, y);
  }
  timer1_->start();
}

StatusFileWindow::~StatusFileWindow() {
  SaveWindowSetting(store_, kSection, QStringLiteral("ViewStatusFileRecordX"), x());
  SaveWindowSetting(store_, kSection, QStringLiteral("ViewStatusFileRecordY"), y());
}

void StatusFileWindow::tick() {
  // A failed query keeps the previous figures.
  const DiskSpace now = DiskSpaceOf(QFileInfo(s_.PathFileData).absolutePath());
  if (now.known) disk_ = now;
  const double size = InformationFileData();
  lblInfo_->setText(QStringLiteral("Длина файла данных: ") + FormatFileSize(size) + QStringLiteral(" (") +
                    GroupedBytes(size) + QStringLiteral(" байт)"));
  const double percent = disk_.freeBytes > 0 ? size * 100.0 / disk_.freeBytes : 0.0;
  lblFreeSpase_->setText(QStringLiteral("Занимаемое место на диске: ") + FormatStandard(percent) +
                         QStringLiteral("%"));
  progress_ = std::clamp(percent / 100.0, 0.0, 1.0);
  const qint64 seconds = OleToDateTime(s_.object.RecordDate).secsTo(QDateTime::currentDateTime());
  const QTime elapsed = QTime(0, 0).addSecs(static_cast<int>(std::max<qint64>(0, seconds) % 86400));
  txtTimeRecord_->setText(QStringLiteral("Продолжительность: ") + elapsed.toString(QStringLiteral("HH:mm:ss")));
  update();
}

QString StatusFileWindow::infoText() const { return lblInfo_->text(); }
QString StatusFileWindow::freeSpaceText() const { return lblFreeSpase_->text(); }
QString StatusFileWindow::timeText() const { return txtTimeRecord_->text(); }

void StatusFileWindow::paintEvent(QPaintEvent* event) {
  QWidget::paintEvent(event);
  QPainter p(this);
  p.setPen(palette().color(QPalette::Mid));
  p.drawRect(rect().adjusted(0, 0, -1, -1));
  // pctProgress, between the disk line and the duration.
  const QRect bar(lblFreeSpase_->geometry().left(), lblFreeSpase_->geometry().bottom() + 3,
                  lblFreeSpase_->width(), kBarHeightPixels);
  p.drawRect(bar);
  const QColor fill = progress_ * 100.0 <= 90.0 ? QColor(255, 153, 153) : QColor(255, 102, 102);
  p.fillRect(QRect(bar.left() + 1, bar.top() + 1, static_cast<int>((bar.width() - 1) * progress_), bar.height() - 1),
             fill);
}

void StatusFileWindow::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) dragOffset_ = event->globalPosition().toPoint() - frameGeometry().topLeft();
}

void StatusFileWindow::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() & Qt::LeftButton) move(event->globalPosition().toPoint() - dragOffset_);
}

}  // namespace aqx::ui
