#include "ui/acquisition/SetupChannelsWindow.h"

#include "core/ConfigWriters.h"
#include "core/VirtualUnit.h"
#include "engine/Aquilonix.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace aqx::ui {

namespace {

constexpr int kRowsPerPage = 16;
const QString kConfigSection = QStringLiteral("Config");

QIcon ColorSwatch(int32_t bgr) {
  QPixmap pixmap(22, 14);
  pixmap.fill(QColor(BgrRed(bgr), BgrGreen(bgr), BgrBlue(bgr)));
  QPainter p(&pixmap);
  p.setPen(Qt::black);
  p.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
  return QIcon(pixmap);
}

QComboBox* Choices(const QStringList& items, bool editable, QWidget* parent) {
  auto* box = new QComboBox(parent);
  box->addItems(items);
  box->setEditable(editable);
  if (editable) box->setInsertPolicy(QComboBox::NoInsert);
  return box;
}

QStringList VolumeNames() {
  return {QStringLiteral("±10.0В"), QStringLiteral("±2.5В"), QStringLiteral("±0.625В"), QStringLiteral("±0.15625В")};
}

}  // namespace

SetupChannelsWindow::SetupChannelsWindow(MeasureContext ctx, const Vocabulary& vocabulary, QWidget* parent)
    : QDialog(parent), ctx_(std::move(ctx)), vocab_(vocabulary) {
  setObjectName(QStringLiteral("frmSetupChannels"));
  setWindowTitle(QStringLiteral("Настройка каналов"));
  sstab1_ = new QTabWidget(this);
  sstab1_->setObjectName(QStringLiteral("SSTab1"));
  const QStringList headers{QStringLiteral("Канал"), QStringLiteral("Тип"), QStringLiteral("Место"),
                            QStringLiteral("Направление"), QStringLiteral("Кпр, мВ/ед"), QStringLiteral("К0, мВ"),
                            QString(), QStringLiteral("Диапазон"), QStringLiteral("Описание датчика"),
                            QStringLiteral("Цвет")};
  for (int page = 0; page < 2; ++page) {
    auto* sheet = new QWidget(sstab1_);
    auto* grid = new QGridLayout(sheet);
    grid->setVerticalSpacing(2);
    for (int column = 0; column < headers.size(); ++column)
      grid->addWidget(new QLabel(QStringLiteral("<b>%1</b>").arg(headers[column]), sheet), 0, column);
    for (int k = 0; k < kRowsPerPage; ++k) {
      const int c = page * kRowsPerPage + k + 1;
      RowControls& r = rows_[static_cast<size_t>(c - 1)];
      r.on = new QCheckBox(QString::number(c), sheet);
      r.on->setObjectName(QStringLiteral("chkChannel%1").arg(c));
      r.on->setToolTip(QStringLiteral("Порядковый номер канала"));
      r.type = Choices(vocab_.SensorTypeList, false, sheet);
      r.type->setToolTip(QStringLiteral("Тип канала"));
      r.place = Choices(vocab_.PlaceList, true, sheet);
      r.place->setToolTip(QStringLiteral("Место расположения канала"));
      r.direct = Choices(vocab_.DirectList, true, sheet);
      r.direct->setToolTip(QStringLiteral("Направление расположения канала"));
      r.ku = new QLineEdit(sheet);
      r.ku->setToolTip(QStringLiteral("Коэффициент преобразования, мВ/"));
      r.ku->setMaximumWidth(80);
      r.zero = new QLineEdit(sheet);
      r.zero->setToolTip(QStringLiteral("Установка нуля, мВ"));
      r.zero->setMaximumWidth(70);
      r.setKu = new QToolButton(sheet);
      r.setKu->setText(QStringLiteral("…"));
      r.setKu->setToolTip(QStringLiteral("Настройка чувствительности канала"));
      r.volume = Choices(VolumeNames(), false, sheet);
      r.volume->setToolTip(QStringLiteral("Диапазон входного напряжения"));
      r.sensorName = new QLineEdit(sheet);
      r.sensorName->setToolTip(QStringLiteral("Описание датчика"));
      r.color = new QToolButton(sheet);
      r.color->setToolTip(QStringLiteral("Цвет представления на графиках"));
      r.color->setPopupMode(QToolButton::InstantPopup);
      auto* colors = new QMenu(r.color);
      for (int i = 0; i < vocab_.ColorNameList.size() && i < kColorListCount; ++i) {
        const uint32_t rgb = vocab_.ColorList[static_cast<size_t>(i)];
        const int32_t bgr = BgrWord(static_cast<int>((rgb >> 16) & 0xFF), static_cast<int>((rgb >> 8) & 0xFF),
                                    static_cast<int>(rgb & 0xFF));
        colors->addAction(ColorSwatch(bgr), vocab_.ColorNameList[i], this, [this, c, bgr] {
          rows_[static_cast<size_t>(c - 1)].colorWord = bgr;
          showColor(c);
        });
      }
      r.color->setMenu(colors);
      const QList<QWidget*> cells{r.on, r.type, r.place, r.direct, r.ku, r.zero, r.setKu, r.volume, r.sensorName, r.color};
      for (int column = 0; column < cells.size(); ++column) grid->addWidget(cells[column], k + 1, column);
      connect(r.setKu, &QToolButton::clicked, this, [this, c] { CalibrateChannel(c); });
      connect(r.type, &QComboBox::currentIndexChanged, this, [this, c] {
        rows_[static_cast<size_t>(c - 1)].setKu->setEnabled(rows_[static_cast<size_t>(c - 1)].type->currentIndex() == 0);
      });
    }
    grid->setColumnStretch(8, 1);
    sstab1_->addTab(sheet, page == 0 ? QStringLiteral("Каналы 1-16") : QStringLiteral("Каналы 17-32"));
  }

  chkChannelDifferential_ = new QCheckBox(QStringLiteral("Дифференциальный режим"), this);
  chkChannelDifferential_->setObjectName(QStringLiteral("chkChannelDifferential"));
  imageCombo1_ = Choices(ColorSetNames(), false, this);
  imageCombo1_->setObjectName(QStringLiteral("ImageCombo1"));
  imageCombo1_->insertItem(0, QStringLiteral("Цвета каналов ..."));
  imageCombo1_->setCurrentIndex(0);

  auto* synchro = new QGroupBox(QStringLiteral("Синхронизация"), this);
  cmbInputMode_ = Choices(InputModeNames(), false, synchro);
  cmbInputMode_->setObjectName(QStringLiteral("cmbInputMode"));
  cmbSynchroAdType_ = Choices({QStringLiteral("По уровню"), QStringLiteral("По переходу")}, false, synchro);
  cmbSynchroAdType_->setObjectName(QStringLiteral("cmbSynchroAdType"));
  cmbSynchroAdMode_ = Choices(SynchroAdModeNames(), false, synchro);
  cmbSynchroAdMode_->setObjectName(QStringLiteral("cmbSynchroAdMode"));
  QStringList numbers;
  for (int c = 1; c <= kMaxChannels; ++c) numbers << QString::number(c);
  cmbSynchroAdChannel_ = Choices(numbers, false, synchro);
  cmbSynchroAdChannel_->setObjectName(QStringLiteral("cmbSynchroAdChannel"));
  txtSynchroAdPorog_ = new QLineEdit(synchro);
  txtSynchroAdPorog_->setObjectName(QStringLiteral("txtSynchroAdPorog"));
  txtSynchroAdPorog_->setValidator(new QIntValidator(-8191, 8191, txtSynchroAdPorog_));
  txtInfo_ = new QPlainTextEdit(synchro);
  txtInfo_->setObjectName(QStringLiteral("txtInfo"));
  txtInfo_->setReadOnly(true);
  txtInfo_->setMaximumHeight(90);
  auto* sync = new QGridLayout(synchro);
  sync->addWidget(new QLabel(QStringLiteral("Режим:"), synchro), 0, 0);
  sync->addWidget(cmbInputMode_, 0, 1);
  sync->addWidget(new QLabel(QStringLiteral("Тип:"), synchro), 0, 2);
  sync->addWidget(cmbSynchroAdType_, 0, 3);
  sync->addWidget(new QLabel(QStringLiteral("Подрежим:"), synchro), 0, 4);
  sync->addWidget(cmbSynchroAdMode_, 0, 5);
  sync->addWidget(new QLabel(QStringLiteral("Канал:"), synchro), 0, 6);
  sync->addWidget(cmbSynchroAdChannel_, 0, 7);
  sync->addWidget(new QLabel(QStringLiteral("Порог:"), synchro), 0, 8);
  sync->addWidget(txtSynchroAdPorog_, 0, 9);
  sync->addWidget(txtInfo_, 1, 0, 1, 10);

  cmdClearance_ = new QPushButton(this);
  cmdClearance_->setObjectName(QStringLiteral("cmdClearance"));
  auto* cmdSetup = new QPushButton(QStringLiteral("Одновременная настройка всех каналов биения"), this);
  cmdSetup->setObjectName(QStringLiteral("cmdSetup"));
  auto* cmdReset = new QPushButton(QStringLiteral("Сброс"), this);
  cmdReset->setObjectName(QStringLiteral("cmdReset"));
  auto* cmdOK = new QPushButton(QStringLiteral("OK"), this);
  auto* cmdCancel = new QPushButton(QStringLiteral("Отмена"), this);
  auto* cmdApply = new QPushButton(QStringLiteral("Применить"), this);
  cmdApply->setObjectName(QStringLiteral("cmdApply"));
  auto* top = new QHBoxLayout;
  top->addWidget(chkChannelDifferential_);
  top->addStretch(1);
  top->addWidget(imageCombo1_);
  auto* calibration = new QHBoxLayout;
  calibration->addWidget(cmdClearance_);
  calibration->addWidget(cmdSetup);
  calibration->addStretch(1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdReset);
  buttons->addStretch(1);
  buttons->addWidget(cmdOK);
  buttons->addWidget(cmdCancel);
  buttons->addWidget(cmdApply);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addWidget(sstab1_, 1);
  layout->addWidget(synchro);
  layout->addLayout(calibration);
  layout->addLayout(buttons);

  Reset();
  sstab1_->setCurrentIndex(std::clamp(ReadWindowSetting(ctx_.store, kConfigSection, QStringLiteral("SetupChannelTab"), 0), 0, 1));
  connect(sstab1_, &QTabWidget::currentChanged, this, [this](int tab) {
    SaveWindowSetting(ctx_.store, kConfigSection, QStringLiteral("SetupChannelTab"), tab);
  });
  connect(chkChannelDifferential_, &QCheckBox::toggled, this, [this] { differentialChanged(); });
  connect(cmbInputMode_, &QComboBox::currentIndexChanged, this, [this] { synchroChanged(); });
  connect(cmbSynchroAdMode_, &QComboBox::currentIndexChanged, this, [this] { synchroChanged(); });
  connect(imageCombo1_, &QComboBox::activated, this, [this](int index) {
    if (index > 0) applyColorSet(index - 1);
    imageCombo1_->setCurrentIndex(0);
  });
  connect(cmdClearance_, &QPushButton::clicked, this, [this] { SetClearance(); });
  connect(cmdSetup, &QPushButton::clicked, this, [this] { CalibrateAll(); });
  connect(cmdReset, &QPushButton::clicked, this, [this] { Reset(); });
  connect(cmdOK, &QPushButton::clicked, this, [this] {
    if (Apply()) accept();
  });
  connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(cmdApply, &QPushButton::clicked, this, [this] { Apply(); });
  resize(1100, 720);
}

void SetupChannelsWindow::fill(const ChannelSetupInput& in) {
  for (int c = 1; c <= kMaxChannels; ++c) {
    const ChannelRow& row = in.rows[static_cast<size_t>(c - 1)];
    RowControls& r = rows_[static_cast<size_t>(c - 1)];
    r.on->setChecked(row.on);
    r.type->setCurrentIndex(row.type);
    r.place->setEditText(row.place);
    r.direct->setEditText(row.direct);
    r.ku->setText(row.ku);
    r.zero->setText(row.zero);
    r.volume->setCurrentIndex(row.volume);
    r.sensorName->setText(row.sensorName);
    r.colorWord = row.color;
    r.setKu->setEnabled(row.type == 0);
    showColor(c);
  }
  const QSignalBlocker block(chkChannelDifferential_);
  chkChannelDifferential_->setChecked(in.differential);
  cmbInputMode_->setCurrentIndex(in.inputMode);
  cmbSynchroAdType_->setCurrentIndex(std::clamp(in.synchroAdType, 0, 1));
  cmbSynchroAdMode_->setCurrentIndex(in.synchroAdMode);
  cmbSynchroAdChannel_->setCurrentIndex(in.synchroAdChannel - 1);
  txtSynchroAdPorog_->setText(in.synchroAdPorog);
  differentialChanged();
  synchroChanged();
}

ChannelSetupInput SetupChannelsWindow::input() const {
  ChannelSetupInput in;
  for (int c = 1; c <= kMaxChannels; ++c) {
    const RowControls& r = rows_[static_cast<size_t>(c - 1)];
    ChannelRow& row = in.rows[static_cast<size_t>(c - 1)];
    row.on = r.on->isChecked();
    row.type = r.type->currentIndex();
    row.place = r.place->currentText().trimmed();
    row.direct = r.direct->currentText().trimmed();
    row.ku = r.ku->text();
    row.zero = r.zero->text();
    row.volume = r.volume->currentIndex();
    row.sensorName = r.sensorName->text();
    row.color = r.colorWord;
  }
  in.differential = chkChannelDifferential_->isChecked();
  in.inputMode = cmbInputMode_->currentIndex();
  in.synchroAdType = cmbSynchroAdType_->currentIndex();
  in.synchroAdMode = cmbSynchroAdMode_->currentIndex();
  in.synchroAdChannel = cmbSynchroAdChannel_->currentIndex() + 1;
  in.synchroAdPorog = txtSynchroAdPorog_->text();
  return in;
}

void SetupChannelsWindow::showColor(int c) {
  RowControls& r = rows_[static_cast<size_t>(c - 1)];
  r.color->setIcon(ColorSwatch(r.colorWord));
}

void SetupChannelsWindow::differentialChanged() {
  const bool differential = chkChannelDifferential_->isChecked();
  sstab1_->setTabVisible(1, !differential);
  if (differential) {
    sstab1_->setCurrentIndex(0);
    for (int c = kRowsPerPage + 1; c <= kMaxChannels; ++c) rows_[static_cast<size_t>(c - 1)].on->setChecked(false);
  }
}

void SetupChannelsWindow::synchroChanged() {
  const bool analogue = cmbInputMode_->currentIndex() == 3;
  for (QWidget* w : std::initializer_list<QWidget*>{cmbSynchroAdType_, cmbSynchroAdMode_, cmbSynchroAdChannel_,
                                                    txtSynchroAdPorog_})
    w->setEnabled(analogue);
  txtInfo_->setPlainText(SynchroInfoText(cmbInputMode_->currentIndex(), cmbSynchroAdMode_->currentIndex()));
}

QString SetupChannelsWindow::info() const { return txtInfo_->toPlainText(); }

void SetupChannelsWindow::applyColorSet(int set) {
  for (int c = 1; c <= kMaxChannels; ++c) {
    RowControls& r = rows_[static_cast<size_t>(c - 1)];
    // xorshift: a fresh colour per channel for "Случайный".
    randomState_ ^= randomState_ << 13;
    randomState_ ^= randomState_ >> 17;
    randomState_ ^= randomState_ << 5;
    r.colorWord = ColorOfSet(set, c, r.type->currentIndex(), vocab_, ctx_.s.options.config.ColorTypeKit, randomState_);
    showColor(c);
  }
}

void SetupChannelsWindow::Reset() {
  fill(CurrentChannelSetup(ctx_.s));
  cmdClearance_->setText(
      QStringLiteral("Установка тарировочного зазора. Установлен зазор - %1мкм").arg(ctx_.s.Clearance));
}

bool SetupChannelsWindow::Apply() {
  if (!ApplyChannelSetup(ctx_.s, ctx_.store, ctx_.prompts, input())) return false;
  if (ctx_.refreshFrame) ctx_.refreshFrame();
  if (ctx_.viewRefresh) ctx_.viewRefresh();
  return true;
}

void SetupChannelsWindow::SetClearance() {
  const auto answer = ctx_.prompts.input(CalibrationGapPrompt(), QStringLiteral("Зазор"), QString::number(ctx_.s.Clearance));
  if (!answer) return;
  const GapCheck check = CheckCalibrationGap(*answer);
  if (!check.gap) {
    ctx_.prompts.message(check.refusal, QStringLiteral("Внимание"), PromptButtons::Ok, PromptIcon::Exclamation);
    return;
  }
  ctx_.s.Clearance = *check.gap;
  WriteSetting(ctx_.store, kConfigSection, QStringLiteral("Clearance"), ctx_.s.Clearance);
  ctx_.prompts.message(QStringLiteral("Величина тарировочного зазора принята - %1 мкм.").arg(ctx_.s.Clearance),
                       QStringLiteral("Зазор"), PromptButtons::Ok, PromptIcon::Information);
  cmdClearance_->setText(
      QStringLiteral("Установка тарировочного зазора. Установлен зазор - %1мкм").arg(ctx_.s.Clearance));
}

CalibrationHooks SetupChannelsWindow::calibrationHooks() {
  CalibrationHooks hooks;
  // Against the shaft first, then at the gap the user confirms: the virtual
  // module's probes follow the same two steps.
  auto step = std::make_shared<int>(0);
  hooks.read = [this, step](std::array<double, kMaxChannels>& means, int32_t rows) {
    ExportVirtualUnit(ctx_.s);
    SetVirtualGap((*step)++ == 0 ? 0.0 : ctx_.s.Clearance);
    const int32_t result = ReadDataChannels(means.data(), rows);
    SetVirtualGap(-1);
    return result;
  };
  hooks.pump = [] { QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents); };
  hooks.busy = [](bool busy) {
    if (busy) {
      QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
      QApplication::restoreOverrideCursor();
    }
  };
  return hooks;
}

void SetupChannelsWindow::CalibrateAll() { CalibrateChannel(0); }

void SetupChannelsWindow::CalibrateChannel(int channel) {
  // The calibration works on the channels as applied; the rows on screen
  // come back with the new factors.
  const std::vector<int> written = CalibrateRunOutSensors(ctx_.s, ctx_.prompts, channel, calibrationHooks());
  if (written.empty()) return;
  SaveChannelSetup(ctx_.store, ctx_.s);
  WriteSetting(ctx_.store, kConfigSection, QStringLiteral("Clearance"), ctx_.s.Clearance);
  for (int c : written)
    rows_[static_cast<size_t>(c - 1)].ku->setText(QLocale().toString(static_cast<double>(ctx_.s.channels.Ku[c]), 'f', 2));
  cmdClearance_->setText(
      QStringLiteral("Установка тарировочного зазора. Установлен зазор - %1мкм").arg(ctx_.s.Clearance));
}

}  // namespace aqx::ui
