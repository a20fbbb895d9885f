#include "ui/acquisition/ShaftMarkerWindows.h"

#include "core/ConfigWriters.h"
#include "views/signal/SignalEngine.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
namespace aqx::ui {

namespace {

QLineEdit* Digits(const char* name, int top, QWidget* parent) {
  auto* edit = new QLineEdit(parent);
  edit->setObjectName(QString::fromLatin1(name));
  // The key filter of the old boxes: digits only.
  edit->setValidator(new QIntValidator(0, top, edit));
  return edit;
}

QHBoxLayout* DialogButtons(QDialog* dialog, const std::function<bool()>& apply) {
  auto* ok = new QPushButton(QStringLiteral("OK"), dialog);
  ok->setObjectName(QStringLiteral("cmdOK"));
  auto* cancel = new QPushButton(QStringLiteral("Отмена"), dialog);
  cancel->setObjectName(QStringLiteral("cmdCancel"));
  auto* applyButton = new QPushButton(QStringLiteral("Применить"), dialog);
  applyButton->setObjectName(QStringLiteral("cmdApply"));
  QObject::connect(ok, &QPushButton::clicked, dialog, [dialog, apply] {
    if (apply()) dialog->accept();
  });
  QObject::connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
  QObject::connect(applyButton, &QPushButton::clicked, dialog, [apply] { apply(); });
  auto* row = new QHBoxLayout;
  row->addStretch(1);
  row->addWidget(ok);
  row->addWidget(cancel);
  row->addWidget(applyButton);
  return row;
}

QSpinBox* UpDown(const char* name, int low, int high, int value, QWidget* parent) {
  auto* box = new QSpinBox(parent);
  box->setObjectName(QString::fromLatin1(name));
  box->setRange(low, high);
  box->setValue(std::clamp(value, low, high));
  return box;
}

}  // namespace

SetupOtmetchickWindow::SetupOtmetchickWindow(MeasureContext ctx, QWidget* parent)
    : QDialog(parent), ctx_(std::move(ctx)) {
  setObjectName(QStringLiteral("frmSetupOtmetchick"));
  setWindowTitle(QStringLiteral("Отметчик"));
  const OtmetchickOptions& o = ctx_.s.options.otmetchick;
  chkOtmetchickAuto_ = new QCheckBox(QStringLiteral("Автоматическая настройка уровня срабатывания"), this);
  chkOtmetchickAuto_->setObjectName(QStringLiteral("chkOtmetchickAuto"));
  chkOtmetchickAuto_->setChecked(o.OtmetchickAuto == 1);
  txtOtmetchickLevel_ = Digits("txtOtmetchickLevel", 8191, this);
  txtOtmetchickLevel_->setText(QString::number(o.OtmetchickLevel));
  lblOtmetchick_ = new QLabel(QStringLiteral("Уровень срабатывания отметчика"), this);
  lblOtmetchick_->setObjectName(QStringLiteral("lblOtmetchick"));
  optOtmetchick_[0] = new QRadioButton(QStringLiteral("При увеличении уровня"), this);
  optOtmetchick_[1] = new QRadioButton(QStringLiteral("При уменьшении уровня"), this);
  optOtmetchick_[o.OtmetchickDirect == 1 ? 0 : 1]->setChecked(true);
  txtOtmetchickDrebezg_ = Digits("txtOtmetchickDrebezg", 1000000, this);
  txtOtmetchickDrebezg_->setText(QString::number(o.OtmetchickDrebezg));
  txtOtmetchickNoise_ = Digits("txtOtmetchickNoise", 16383, this);
  txtOtmetchickNoise_->setText(QString::number(o.OtmetchickNoise));
  auto* form = new QFormLayout;
  form->addRow(chkOtmetchickAuto_);
  form->addRow(lblOtmetchick_, txtOtmetchickLevel_);
  form->addRow(optOtmetchick_[0]);
  form->addRow(optOtmetchick_[1]);
  form->addRow(QStringLiteral("Отстройка от дребезга срабатывания"), txtOtmetchickDrebezg_);
  form->addRow(QStringLiteral("Отстройка от шума"), txtOtmetchickNoise_);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addLayout(DialogButtons(this, [this] { return Apply(); }));
  connect(chkOtmetchickAuto_, &QCheckBox::toggled, this, [this] { autoChanged(); });
  autoChanged();
}

void SetupOtmetchickWindow::autoChanged() {
  const bool manual = !chkOtmetchickAuto_->isChecked();
  txtOtmetchickLevel_->setEnabled(manual);
  lblOtmetchick_->setEnabled(manual);
  for (QRadioButton* b : optOtmetchick_) b->setEnabled(manual);
}

bool SetupOtmetchickWindow::Apply() {
  bool levelOk = false, drebezgOk = false, noiseOk = false;
  const int level = txtOtmetchickLevel_->text().toInt(&levelOk);
  const int drebezg = txtOtmetchickDrebezg_->text().toInt(&drebezgOk);
  const int noise = txtOtmetchickNoise_->text().toInt(&noiseOk);
  const bool automatic = chkOtmetchickAuto_->isChecked();
  if (!drebezgOk || !noiseOk || (!automatic && !levelOk)) {
    ctx_.prompts.message(QStringLiteral("Значения настройки отметчика должны быть целыми неотрицательными числами."),
                         QStringLiteral("Отметчик"), PromptButtons::Ok, PromptIcon::Exclamation);
    return false;
  }
  OtmetchickOptions& o = ctx_.s.options.otmetchick;
  o.OtmetchickAuto = automatic ? 1 : 0;
  o.OtmetchickDrebezg = drebezg;
  o.OtmetchickNoise = noise;
  if (!automatic) {
    o.OtmetchickLevel = level;
    o.OtmetchickDirect = optOtmetchick_[0]->isChecked() ? 1 : 0;
  }
  const views::RotorSpeed found = views::RunOtmetchick(ctx_.s);
  if (automatic && FirstMarkerChannel(ctx_.s) != 0) {
    o.OtmetchickLevel = found.OtmetchickLevel;
    o.OtmetchickDirect = found.OtmetchickDirect;
    txtOtmetchickLevel_->setText(QString::number(o.OtmetchickLevel));
    optOtmetchick_[o.OtmetchickDirect == 1 ? 0 : 1]->setChecked(true);
  }
  SaveOtmetchick(ctx_.store, ctx_.s);
  if (ctx_.viewRefresh) ctx_.viewRefresh();
  return true;
}

ServiceOtmetchickWindow::ServiceOtmetchickWindow(MeasureContext ctx, QWidget* parent)
    : QDialog(parent), ctx_(std::move(ctx)) {
  setObjectName(QStringLiteral("frmServiceOtmetchick"));
  setWindowTitle(QStringLiteral("Искусственный отметчик"));
  const ArtificialMarkerSettings m = ReadArtificialMarkerSettings(ctx_.store);
  const int channels = ChannelCount(ctx_.s);
  udPeriodN_ = UpDown("udPeriodN", 1, kMaxShaftMarks - 1, m.PeriodN, this);
  udChannelO_ = UpDown("udChannelO", 1, channels, m.ChannelO, this);
  udChannelA_ = UpDown("udChannelA", 1, channels, m.ChannelA, this);
  udShiftF_ = UpDown("udShiftF", 0, 359, m.ShiftF, this);
  lblChannelA_ = new QLabel(QStringLiteral("Опорный канал"), this);
  lblShiftF_ = new QLabel(QStringLiteral("Фазовый сдвиг"), this);
  fraFront_ = new QGroupBox(this);
  fraFront_->setObjectName(QStringLiteral("fraFront"));
  optFront_[0] = new QRadioButton(QStringLiteral("Срабатывание отметчика по спаду"), fraFront_);
  optFront_[1] = new QRadioButton(QStringLiteral("Срабатывание отметчика по фронту"), fraFront_);
  optFront_[m.Front == 1 ? 1 : 0]->setChecked(true);
  auto* front = new QVBoxLayout(fraFront_);
  front->addWidget(optFront_[0]);
  front->addWidget(optFront_[1]);
  chkOnZero_ = new QCheckBox(QStringLiteral("Срабатывание отметчика при переходе через ноль"), this);
  chkOnZero_->setObjectName(QStringLiteral("chkOnZero"));
  chkOnZero_->setChecked(m.OnZero == 1);
  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("Количество периодов"), udPeriodN_);
  form->addRow(QStringLiteral("Канал отметчика"), udChannelO_);
  form->addRow(chkOnZero_);
  form->addRow(lblChannelA_, udChannelA_);
  form->addRow(fraFront_);
  form->addRow(lblShiftF_, udShiftF_);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addLayout(DialogButtons(this, [this] {
    // OK stores the six settings with the channel made.
    const bool made = Apply();
    if (made) SaveArtificialMarkerSettings(ctx_.store, settings());
    return made;
  }));
  connect(chkOnZero_, &QCheckBox::toggled, this, [this] { onZeroChanged(); });
  onZeroChanged();
}

ArtificialMarkerSettings ServiceOtmetchickWindow::settings() const {
  ArtificialMarkerSettings m;
  m.PeriodN = udPeriodN_->value();
  m.ChannelO = udChannelO_->value();
  m.ChannelA = udChannelA_->value();
  m.ShiftF = udShiftF_->value();
  m.Front = optFront_[1]->isChecked() ? 1 : 0;
  m.OnZero = chkOnZero_->isChecked() ? 1 : 0;
  return m;
}

void ServiceOtmetchickWindow::onZeroChanged() {
  const bool onZero = chkOnZero_->isChecked();
  for (QWidget* w : std::initializer_list<QWidget*>{lblChannelA_, udChannelA_, fraFront_}) w->setEnabled(onZero);
  for (QWidget* w : std::initializer_list<QWidget*>{lblShiftF_, udShiftF_}) w->setEnabled(!onZero);
}

bool ServiceOtmetchickWindow::Apply() {
  if (!MakeArtificialMarker(ctx_.s, ctx_.prompts, settings())) return false;
  if (ctx_.refreshFrame) ctx_.refreshFrame();
  if (ctx_.viewRefresh) ctx_.viewRefresh();
  ctx_.prompts.message(QStringLiteral("Искусственный отметчик успешно сформирован."),
                       QStringLiteral("Искусственный отметчик"), PromptButtons::Ok, PromptIcon::Information);
  return true;
}

}  // namespace aqx::ui
