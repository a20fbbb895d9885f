#include "ui/editing/ObjectWindow.h"

#include "core/Numeric.h"
#include "views/edit/ObjectForm.h"

#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace aqx::ui {

namespace {

QComboBox* EditableCombo(const char* name, const QStringList& items, QWidget* parent) {
  auto* c = new QComboBox(parent);
  c->setObjectName(QString::fromLatin1(name));
  c->setEditable(true);
  c->addItems(items);
  c->setInsertPolicy(QComboBox::NoInsert);
  return c;
}

}  // namespace

ObjectWindow::ObjectWindow(AppState& state, const Vocabulary& vocabulary, std::function<void()> applied, QWidget* parent)
    : QDialog(parent), s_(state), applied_(std::move(applied)) {
  setObjectName(QStringLiteral("frmSetupObject"));
  setWindowTitle(QStringLiteral("Описание режима"));
  setAttribute(Qt::WA_DeleteOnClose);
  QStringList units;
  for (int k = 1; k <= views::kAgregatChoices; ++k) units << QString::number(k);
  cmbStation_ = EditableCombo("cmbStation", vocabulary.StationList, this);
  cmbAgregat_ = EditableCombo("cmbAgregat", units, this);
  cmbMode_ = EditableCombo("cmbMode", vocabulary.ModeList, this);
  auto* top = new QFormLayout;
  top->addRow(QStringLiteral("Станция"), cmbStation_);
  top->addRow(QStringLiteral("Агрегат"), cmbAgregat_);
  top->addRow(QStringLiteral("Режим"), cmbMode_);

  // The readings in two columns, the comment across the bottom.
  auto* readings = new QGroupBox(QStringLiteral("Показания приборов"), this);
  auto* grid = new QGridLayout(readings);
  const auto& labels = views::ObjectFieldLabels();
  constexpr int kRows = 14;
  for (int i = 0; i < kRemarkCount; ++i) {
    auto* edit = new QLineEdit(this);
    edit->setObjectName(QStringLiteral("txtData%1").arg(i));
    txtData_[static_cast<size_t>(i)] = edit;
    if (i == kRemarkCount - 1) continue;
    edit->setMaxLength(views::kReadingChars);
    edit->setMaximumWidth(110);
    const int column = i < kRows ? 0 : 2;
    grid->addWidget(new QLabel(labels[static_cast<size_t>(i)], this), i % kRows, column);
    grid->addWidget(edit, i % kRows, column + 1);
  }
  grid->setColumnMinimumWidth(1, 90);
  auto* remark = new QFormLayout;
  remark->addRow(labels[kRemarkCount - 1], txtData_[kRemarkCount - 1]);

  auto* buttons = new QDialogButtonBox(this);
  auto add = [&](const char* name, const QString& caption, QDialogButtonBox::ButtonRole role) {
    QPushButton* b = buttons->addButton(caption, role);
    b->setObjectName(QString::fromLatin1(name));
    return b;
  };
  connect(add("cmdClear", QStringLiteral("Очистка"), QDialogButtonBox::ResetRole), &QPushButton::clicked, this,
          &ObjectWindow::cmdClear);
  connect(add("cmdDateTime", QStringLiteral("Дата и время ..."), QDialogButtonBox::ActionRole), &QPushButton::clicked,
          this, &ObjectWindow::dateTimeRequested);
  connect(add("cmdApply", QStringLiteral("Применить"), QDialogButtonBox::ApplyRole), &QPushButton::clicked, this,
          &ObjectWindow::cmdApply);
  connect(add("cmdOK", QStringLiteral("OK"), QDialogButtonBox::AcceptRole), &QPushButton::clicked, this,
          &ObjectWindow::cmdOK);
  connect(add("cmdCancel", QStringLiteral("Отмена"), QDialogButtonBox::RejectRole), &QPushButton::clicked, this,
          &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addWidget(readings);
  layout->addLayout(remark);
  layout->addWidget(buttons);

  const views::ObjectForm form = views::ObjectFormOf(s_);
  cmbStation_->setCurrentText(form.station);
  if (!form.agregat.isEmpty()) cmbAgregat_->setCurrentText(form.agregat);
  cmbMode_->setCurrentText(form.mode);
  for (int i = 0; i < kRemarkCount; ++i) txtData_[static_cast<size_t>(i)]->setText(form.data[static_cast<size_t>(i)]);
}

void ObjectWindow::cmdApply() {
  views::ObjectForm form;
  form.station = cmbStation_->currentText();
  form.agregat = cmbAgregat_->currentText();
  form.mode = cmbMode_->currentText();
  for (int i = 0; i < kRemarkCount; ++i) form.data[static_cast<size_t>(i)] = txtData_[static_cast<size_t>(i)]->text();
  views::ApplyObjectForm(s_, form);
  if (applied_) applied_();
}

void ObjectWindow::cmdOK() {
  cmdApply();
  accept();
}

void ObjectWindow::cmdClear() {
  for (QLineEdit* e : txtData_) e->clear();
}

DateTimeWindow::DateTimeWindow(AppState& state, std::function<void()> applied, QWidget* parent)
    : QDialog(parent), s_(state), applied_(std::move(applied)) {
  setObjectName(QStringLiteral("frmEditDateTime"));
  setWindowTitle(QStringLiteral("Дата и время записи"));
  setAttribute(Qt::WA_DeleteOnClose);
  edit_ = new QDateTimeEdit(this);
  edit_->setObjectName(QStringLiteral("dtpDateTime"));
  edit_->setDisplayFormat(QStringLiteral("dd.MM.yyyy HH:mm:ss"));
  edit_->setCalendarPopup(true);
  const QDateTime now = OleToDateTime(s_.object.RecordDate);
  edit_->setDateTime(s_.object.RecordDate != 0.0 && now.isValid() ? now : QDateTime::currentDateTime());
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Отмена"));
  connect(buttons, &QDialogButtonBox::accepted, this, &DateTimeWindow::cmdOK);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(QStringLiteral("Дата и время начала записи:"), this));
  layout->addWidget(edit_);
  layout->addWidget(buttons);
}

void DateTimeWindow::cmdOK() {
  s_.object.RecordDate = DateTimeToOle(edit_->dateTime());
  s_.DataSaved = false;
  if (applied_) applied_();
  accept();
}

}  // namespace aqx::ui
