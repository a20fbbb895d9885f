#include "ui/rotor/SpicaWindow.h"

#include "core/ConfigKeys.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace aqx::ui {

namespace {

QComboBox* Numbers(const char* name, int last, int value, QWidget* parent) {
  auto* box = new QComboBox(parent);
  box->setObjectName(QString::fromLatin1(name));
  for (int n = 1; n <= last; ++n) box->addItem(QString::number(n));
  box->setCurrentIndex(std::clamp(value, 1, last) - 1);
  return box;
}

}  // namespace

SpicaWindow::SpicaWindow(AppState& state, SettingsStore& store, std::function<void()> redraw, QWidget* parent)
    : QDialog(parent), s_(state), store_(store), redraw_(std::move(redraw)), before_(state.options.formaRotor) {
  setObjectName(QStringLiteral("frmSetupFormaRotorSpicaView"));
  setWindowTitle(QStringLiteral("Установка спиц ротора"));
  setAttribute(Qt::WA_DeleteOnClose);
  const FormaRotorOptions& o = s_.options.formaRotor;
  cmbSpicaN_ = Numbers("cmbSpicaN", 36, o.SpicaN, this);
  cmbSpicaPolus_ = Numbers("cmbSpicaPolus", 360, o.SpicaP, this);
  cmbSpicaDirection_ = new QComboBox(this);
  cmbSpicaDirection_->setObjectName(QStringLiteral("cmbSpicaDirection"));
  cmbSpicaDirection_->addItems({QStringLiteral("левое"), QStringLiteral("правое")});
  cmbSpicaDirection_->setCurrentIndex(o.SpicaD == 0 ? 0 : 1);
  chkVisible_ = new QCheckBox(QStringLiteral("Показывать спицы"), this);
  chkVisible_->setObjectName(QStringLiteral("chkVisible"));
  chkVisible_->setChecked(o.SpicaV);

  auto* form = new QFormLayout;
  form->addRow(QStringLiteral("Количество спиц"), cmbSpicaN_);
  form->addRow(QStringLiteral("Первая спица на полюсе"), cmbSpicaPolus_);
  form->addRow(QStringLiteral("Направление"), cmbSpicaDirection_);
  form->addRow(chkVisible_);
  auto* buttons = new QDialogButtonBox(this);
  QPushButton* ok = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
  ok->setObjectName(QStringLiteral("cmdOK"));
  QPushButton* applyButton = buttons->addButton(QStringLiteral("Применить"), QDialogButtonBox::ApplyRole);
  applyButton->setObjectName(QStringLiteral("cmdApply"));
  QPushButton* cancel = buttons->addButton(QStringLiteral("Отмена"), QDialogButtonBox::RejectRole);
  cancel->setObjectName(QStringLiteral("cmdCancel"));
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(buttons);

  for (QComboBox* box : {cmbSpicaN_, cmbSpicaPolus_, cmbSpicaDirection_})
    connect(box, &QComboBox::currentIndexChanged, this, [this] { takeControls(); });
  connect(chkVisible_, &QCheckBox::toggled, this, [this] { takeControls(); });
  connect(applyButton, &QPushButton::clicked, this, [this] { apply(); });
  connect(ok, &QPushButton::clicked, this, [this] {
    apply();
    accept();
  });
  connect(cancel, &QPushButton::clicked, this, [this] { reject(); });
}

void SpicaWindow::takeControls() {
  FormaRotorOptions& o = s_.options.formaRotor;
  o.SpicaN = cmbSpicaN_->currentIndex() + 1;
  o.SpicaP = cmbSpicaPolus_->currentIndex() + 1;
  o.SpicaD = cmbSpicaDirection_->currentIndex();
  o.SpicaV = chkVisible_->isChecked();
  if (redraw_) redraw_();
}

void SpicaWindow::apply() {
  takeControls();
  SettingsStore::Batch batch(store_);
  for (const char* key : {"SpicaN", "SpicaP", "SpicaD", "SpicaV"})
    if (const SettingKey* k = FindSettingKey(QString::fromLatin1(kSectionFormaRotor), QString::fromLatin1(key)))
      WriteSettingKey(store_, *k, s_);
  before_ = s_.options.formaRotor;
}

void SpicaWindow::reject() {
  FormaRotorOptions& o = s_.options.formaRotor;
  o.SpicaN = before_.SpicaN;
  o.SpicaP = before_.SpicaP;
  o.SpicaD = before_.SpicaD;
  o.SpicaV = before_.SpicaV;
  if (redraw_) redraw_();
  QDialog::reject();
}

}  // namespace aqx::ui
