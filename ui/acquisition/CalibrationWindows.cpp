#include "ui/acquisition/CalibrationWindows.h"

#include "core/ChannelPhysics.h"
#include "core/ConfigWriters.h"
#include "core/EngineErrors.h"
#include "core/Numeric.h"
#include "core/VirtualUnit.h"
#include "engine/Aquilonix.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QCursor>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <array>
#include <cmath>

namespace aqx::ui {

namespace {

const QString kSensorSection = QStringLiteral("Sensor");
const QString kLinekaSection = QStringLiteral("Lineka");
constexpr int kStepRows = 1024;
constexpr int kRulerBorderPixels = 8;
constexpr int kRulerCaptionPixels = 22;
const QSize kRulerLeast(120, 80);

}  // namespace

DetectSensorWindow::DetectSensorWindow(MeasureContext ctx, QWidget* parent) : QDialog(parent), ctx_(std::move(ctx)) {
  setObjectName(QStringLiteral("frmServiceDetectSensor"));
  setWindowTitle(QStringLiteral("Тарировка датчиков биения"));
  cmbChannel_ = new QComboBox(this);
  cmbChannel_->setObjectName(QStringLiteral("cmbChannel"));
  for (int c = 1; c <= ChannelCount(ctx_.s); ++c) cmbChannel_->addItem(QString::number(c), c);
  int chosen = ReadWindowSetting(ctx_.store, kSensorSection, QStringLiteral("Sensor"), 0);
  if (chosen < 1 || chosen > ChannelCount(ctx_.s)) {
    chosen = 1;
    for (int c = ChannelCount(ctx_.s); c >= 1; --c)
      if (ctx_.s.channels.Channel[c] == 1 && ctx_.s.channels.Type[c] == sensor::Runout) chosen = c;
  }
  cmbChannel_->setCurrentIndex(chosen - 1);
  QString name, remark;
  ReadSetting(ctx_.store, kSensorSection, QStringLiteral("SensorName"), name, QStringLiteral("-"));
  ReadSetting(ctx_.store, kSensorSection, QStringLiteral("SensorRem"), remark, QString());
  int32_t razbros = 10;
  ReadSetting(ctx_.store, kSensorSection, QStringLiteral("RazbrosIOP"), razbros, 10);
  txtSensor_ = new QLineEdit(name, this);
  txtSensor_->setObjectName(QStringLiteral("txtSensor"));
  txtRemark_ = new QLineEdit(remark, this);
  txtRemark_->setObjectName(QStringLiteral("txtRemark"));
  txtRazbros_ = new QLineEdit(QString::number(std::clamp(razbros, 0, 100)), this);
  txtRazbros_->setObjectName(QStringLiteral("txtRazbros"));
  txtRazbros_->setValidator(new QIntValidator(0, 100, txtRazbros_));
  grid_ = new QTableWidget(kCalibrationSteps, 4, this);
  grid_->setObjectName(QStringLiteral("MSFlexGrid"));
  grid_->setHorizontalHeaderLabels({QStringLiteral("Зазор, мкм"), QStringLiteral("Уровень, мВ"),
                                    QStringLiteral("Ку, мВ/мкм"), QStringLiteral("Разброс, %")});
  grid_->verticalHeader()->hide();
  grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  txtInfo_ = new QPlainTextEdit(this);
  txtInfo_->setObjectName(QStringLiteral("txtInfo"));
  txtInfo_->setReadOnly(true);
  txtInfo_->setMaximumHeight(70);
  statusInfo_ = new QLabel(this);
  statusInfo_->setObjectName(QStringLiteral("StatusBar"));
  statusInfo_->setFrameShape(QFrame::StyledPanel);
  cmdOK_ = new QPushButton(QStringLiteral("Измерить"), this);
  cmdOK_->setObjectName(QStringLiteral("cmdOK"));
  cmdReset_ = new QPushButton(QStringLiteral("Сброс"), this);
  cmdReset_->setObjectName(QStringLiteral("cmdReset"));
  cmdCopy_ = new QPushButton(QStringLiteral("Копировать"), this);
  cmdCopy_->setObjectName(QStringLiteral("cmdCopy"));
  cmdClose_ = new QPushButton(QStringLiteral("Закрыть"), this);
  cmdClose_->setObjectName(QStringLiteral("cmdClose"));
  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("Канал №"), cmbChannel_);
  form->addRow(QStringLiteral("Датчик"), txtSensor_);
  form->addRow(QStringLiteral("Примечание"), txtRemark_);
  form->addRow(QStringLiteral("Допустимое значение отклонения (%)"), txtRazbros_);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdOK_);
  buttons->addWidget(cmdReset_);
  buttons->addWidget(cmdCopy_);
  buttons->addStretch(1);
  buttons->addWidget(cmdClose_);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(grid_, 1);
  layout->addWidget(txtInfo_);
  layout->addLayout(buttons);
  layout->addWidget(statusInfo_);
  connect(cmdOK_, &QPushButton::clicked, this, [this] { Step(); });
  connect(cmdReset_, &QPushButton::clicked, this, [this] { Reset(); });
  connect(cmdCopy_, &QPushButton::clicked, this, [this] { Copy(); });
  connect(cmdClose_, &QPushButton::clicked, this, &QDialog::reject);
  connect(txtRazbros_, &QLineEdit::textChanged, this, [this] {
    WriteSetting(ctx_.store, kSensorSection, QStringLiteral("RazbrosIOP"), txtRazbros_->text().toInt());
    showRecommendation();
  });
  Reset();
  resize(560, 560);
}

DetectSensorWindow::~DetectSensorWindow() {
  WriteSetting(ctx_.store, kSensorSection, QStringLiteral("SensorName"), txtSensor_->text());
  WriteSetting(ctx_.store, kSensorSection, QStringLiteral("SensorRem"), txtRemark_->text());
  SaveWindowSetting(ctx_.store, kSensorSection, QStringLiteral("Sensor"), selectedChannel());
  SetVirtualGap(-1);
}

int DetectSensorWindow::selectedChannel() const { return cmbChannel_->currentData().toInt(); }

QString DetectSensorWindow::info() const { return txtInfo_->toPlainText(); }
QString DetectSensorWindow::status() const { return statusInfo_->text(); }

void DetectSensorWindow::lockSteps(bool inProgress) {
  cmbChannel_->setEnabled(!inProgress);
  cmdReset_->setEnabled(true);
  cmdCopy_->setEnabled(!calibration_.levels.empty());
}

void DetectSensorWindow::Reset() {
  calibration_ = SensorCalibration{};
  grid_->clearContents();
  for (int row = 0; row < kCalibrationSteps; ++row)
    grid_->setItem(row, 0, new QTableWidgetItem(QString::number(row * kCalibrationStepMicrometres)));
  txtInfo_->clear();
  statusInfo_->setText(QStringLiteral("Установите зазор: 0 мкм"));
  cmdOK_->setEnabled(true);
  lockSteps(false);
}

void DetectSensorWindow::Step() {
  if (calibration_.finished()) return;
  cmdOK_->setEnabled(false);
  cmdClose_->setEnabled(false);
  const int channel = selectedChannel();
  std::array<double, kMaxChannels> means{};
  QApplication::setOverrideCursor(Qt::WaitCursor);
  // The virtual module's probe stands where the status line asked for.
  SetVirtualGap((calibration_.step() - 1) * kCalibrationStepMicrometres);
  const int32_t result = ReadDataChannels(means.data(), kStepRows);
  QApplication::restoreOverrideCursor();
  QApplication::beep();
  cmdClose_->setEnabled(true);
  if (result != 0) {
    ShowEngineError(ctx_.prompts, result);
    cmdOK_->setEnabled(true);
    return;
  }
  const int row = calibration_.step() - 1;
  const auto level = static_cast<int16_t>(std::clamp(RoundHalfEven(means[static_cast<size_t>(channel - 1)]), -8192, 8191));
  calibration_.addLevel(level);
  lockSteps(true);
  grid_->setItem(row, 1, new QTableWidgetItem(FormatStandard(level * kMillivoltsPerCode)));
  if (row >= 1) {
    const float ku = calibration_.factors.back();
    grid_->setItem(row, 2, new QTableWidgetItem(FormatStandard(ku)));
    if (calibration_.dead) {
      const QString text = QStringLiteral("Датчик неработает (Ку=%1 мВ/мкм)!").arg(FormatStandard(ku));
      statusInfo_->setText(text);
      ctx_.prompts.message(text, QStringLiteral("Ошибка"), PromptButtons::Ok, PromptIcon::Critical);
      return;
    }
  }
  showRecommendation();
  if (calibration_.finished()) {
    statusInfo_->setText(QStringLiteral("Тарировка закончена, копия в буфере обмена."));
    Copy();
    return;
  }
  statusInfo_->setText(
      QStringLiteral("Установите зазор: %1 мкм").arg((calibration_.step() - 1) * kCalibrationStepMicrometres));
  cmdOK_->setEnabled(true);
}

void DetectSensorWindow::showRecommendation() {
  if (calibration_.factors.empty()) return;
  const int razbros = txtRazbros_->text().toInt();
  const KuRecommendation r = RecommendKu(calibration_.factors, razbros);
  for (size_t i = 0; i < r.deviationPercent.size(); ++i)
    grid_->setItem(static_cast<int>(i) + 1, 3, new QTableWidgetItem(QString::number(r.deviationPercent[i])));
  txtInfo_->setPlainText(RecommendationText(r, razbros));
}

void DetectSensorWindow::Copy() {
  const KuRecommendation r = RecommendKu(calibration_.factors, txtRazbros_->text().toInt());
  QApplication::clipboard()->setText(
      CalibrationCopyText(calibration_, r, txtSensor_->text(), QDateTime::currentDateTime()));
}

QString LinekaCaption(int mouseX, int leftPixels, int widthPixels) {
  const int x = mouseX - leftPixels;
  if (widthPixels <= 0 || x < 0 || x > widthPixels) return QStringLiteral("Линейка");
  return QStringLiteral("%1°").arg(IntFloor(static_cast<double>(x) / widthPixels * 361.0));
}

LinekaWindow::LinekaWindow(SettingsStore& store, QWidget* owner)
    : QWidget(owner, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint), store_(store) {
  setObjectName(QStringLiteral("frmServiceLineka"));
  setWindowTitle(QStringLiteral("Линейка"));
  setAttribute(Qt::WA_DeleteOnClose);
  setMouseTracking(true);
  caption_ = QStringLiteral("Линейка");
  const int l = ReadWindowSetting(store_, kLinekaSection, QStringLiteral("LinekaL"), -1);
  const int t = ReadWindowSetting(store_, kLinekaSection, QStringLiteral("LinekaT"), -1);
  const int w = ReadWindowSetting(store_, kLinekaSection, QStringLiteral("LinekaW"), -1);
  const int h = ReadWindowSetting(store_, kLinekaSection, QStringLiteral("LinekaH"), -1);
  resize(w > 0 ? std::max(w, kRulerLeast.width()) : 500, h > 0 ? std::max(h, kRulerLeast.height()) : 200);
  if (l != -1 && t != -1) {
    move(l, t);
  } else if (owner) {
    move(owner->geometry().center() - rect().center());
  }
  timer1_ = new QTimer(this);
  timer1_->setInterval(50);
  connect(timer1_, &QTimer::timeout, this, &LinekaWindow::tick);
  timer1_->start();
}

LinekaWindow::~LinekaWindow() {
  SaveWindowSetting(store_, kLinekaSection, QStringLiteral("LinekaL"), x());
  SaveWindowSetting(store_, kLinekaSection, QStringLiteral("LinekaT"), y());
  SaveWindowSetting(store_, kLinekaSection, QStringLiteral("LinekaW"), width());
  SaveWindowSetting(store_, kLinekaSection, QStringLiteral("LinekaH"), height());
}

QRect LinekaWindow::inside() const {
  return rect().adjusted(kRulerBorderPixels, kRulerCaptionPixels, -kRulerBorderPixels, -kRulerBorderPixels);
}

void LinekaWindow::tick() {
  const int x = QCursor::pos().x();
  if (x == lastX_) return;
  lastX_ = x;
  caption_ = LinekaCaption(x, mapToGlobal(inside().topLeft()).x(), inside().width());
  setWindowTitle(caption_);
  update();
}

void LinekaWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (width() < kRulerLeast.width() || height() < kRulerLeast.height()) {
    resize(std::max(width(), kRulerLeast.width()), std::max(height(), kRulerLeast.height()));
    return;
  }
  // Hollow: only the frame belongs to the window, the chart shows through.
  setMask(QRegion(rect()).subtracted(QRegion(inside())));
}

void LinekaWindow::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), QColor(255, 255, 225));
  p.setPen(QColor(40, 40, 40));
  p.drawRect(rect().adjusted(0, 0, -1, -1));
  p.drawRect(inside().adjusted(-1, -1, 0, 0));
  const QRect in = inside();
  for (int degrees = 0; degrees <= 360; degrees += 10) {
    const int x = in.left() + RoundHalfEven(in.width() * degrees / 360.0);
    const int tick = degrees % 90 == 0 ? 10 : degrees % 30 == 0 ? 6 : 3;
    p.drawLine(x, in.top() - 1, x, in.top() - 1 - tick);
    p.drawLine(x, in.bottom() + 1, x, in.bottom() + 1 + std::min(tick, kRulerBorderPixels - 2));
  }
  p.drawText(QRect(0, 0, width(), kRulerCaptionPixels - 8), Qt::AlignCenter, caption_);
}

void LinekaWindow::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const QPoint at = event->position().toPoint();
  // The lower right corner stretches, the rest of the frame moves.
  resizing_ = at.x() > width() - 2 * kRulerBorderPixels && at.y() > height() - 2 * kRulerBorderPixels;
  pressOffset_ = event->globalPosition().toPoint() - (resizing_ ? QPoint(width(), height()) : pos());
  pressSize_ = size();
}

void LinekaWindow::mouseMoveEvent(QMouseEvent* event) {
  const QPoint at = event->position().toPoint();
  const bool corner = at.x() > width() - 2 * kRulerBorderPixels && at.y() > height() - 2 * kRulerBorderPixels;
  setCursor(corner ? Qt::SizeFDiagCursor : Qt::SizeAllCursor);
  if (!(event->buttons() & Qt::LeftButton)) return;
  const QPoint g = event->globalPosition().toPoint() - pressOffset_;
  if (resizing_) {
    resize(std::max(g.x(), kRulerLeast.width()), std::max(g.y(), kRulerLeast.height()));
  } else {
    move(g);
  }
}

}  // namespace aqx::ui
