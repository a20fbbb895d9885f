#include "ui/acquisition/SetupRecWindow.h"

#include "core/Numeric.h"

#include <QApplication>
#include <QComboBox>
#include <QFileSystemModel>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <QTreeView>
#include <QVBoxLayout>

#include <cmath>
namespace aqx::ui {

namespace {

QString Grouped(double v) {
  QString t = QString::number(static_cast<qint64>(std::llround(v)));
  for (int i = static_cast<int>(t.size()) - 3; i > 0 && t[i - 1] != QLatin1Char('-'); i -= 3)
    t.insert(i, QLatin1Char(' '));
  return t;
}

QComboBox* EditableNumbers(const QStringList& items, QWidget* parent) {
  auto* box = new QComboBox(parent);
  box->setEditable(true);
  box->addItems(items);
  box->setInsertPolicy(QComboBox::NoInsert);
  // Digits only, as the key filter of the old boxes.
  box->lineEdit()->setValidator(new QIntValidator(0, 999999999, box));
  return box;
}

QLabel* Value(const char* name, QWidget* parent) {
  auto* l = new QLabel(parent);
  l->setObjectName(QString::fromLatin1(name));
  l->setFrameShape(QFrame::StyledPanel);
  l->setMinimumWidth(120);
  return l;
}

}  // namespace

SetupRecWindow::SetupRecWindow(MeasureContext ctx, QWidget* parent) : QDialog(parent), ctx_(std::move(ctx)) {
  setObjectName(QStringLiteral("frmSetupRec"));
  setWindowTitle(QStringLiteral("Настройка измерений"));
  tabs_ = new QTabWidget(this);
  tabs_->setObjectName(QStringLiteral("SSTab1"));

  auto* cyclic = new QWidget(tabs_);
  auto* form = new QFormLayout(cyclic);
  const char* dataNames[] = {"cmbData0", "cmbData1", "cmbData2"};
  const QStringList dataItems[] = {{QStringLiteral("2"), QStringLiteral("4"), QStringLiteral("8"), QStringLiteral("12"),
                                    QStringLiteral("24"), QStringLiteral("40"), QStringLiteral("48"),
                                    QStringLiteral("72"), QStringLiteral("96")},
                                   {QStringLiteral("50"), QStringLiteral("60")},
                                   RevolutionChoices()};
  for (int k = 0; k < 3; ++k) {
    cmbData_[static_cast<size_t>(k)] = EditableNumbers(dataItems[k], cyclic);
    cmbData_[static_cast<size_t>(k)]->setObjectName(QString::fromLatin1(dataNames[k]));
  }
  cmbSignalDataN_ = new QComboBox(cyclic);
  cmbSignalDataN_->setObjectName(QStringLiteral("cmbSignalDataN"));
  cmbSignalDataN_->addItems(SampleCountChoices());
  cmbTimeRefresh_ = new QComboBox(cyclic);
  cmbTimeRefresh_->setObjectName(QStringLiteral("cmbTimeRefresh"));
  cmbTimeRefresh_->addItems(RefreshTimeChoices());
  lblFR_ = Value("lblFR", cyclic);
  lblOneRotor_ = Value("lblOneRotor", cyclic);
  lblFG_ = Value("lblFG", cyclic);
  lblStepDesc_ = Value("lblStepDesc", cyclic);
  lblFreqDesc_ = Value("lblFreqDesc", cyclic);
  lblFreqDescADC_ = Value("lblFreqDescADC", cyclic);
  lblFreqDescADC_->setAutoFillBackground(true);
  lblTimeRec_ = Value("lblTimeRec", cyclic);
  lblBuffer_ = Value("lblBuffer", cyclic);
  form->addRow(QStringLiteral("Количество полюсов:"), cmbData_[0]);
  form->addRow(QStringLiteral("Частота сети, Гц:"), cmbData_[1]);
  form->addRow(QStringLiteral("Номинальная частота вращения, об/мин:"), lblFR_);
  form->addRow(QStringLiteral("Длительность одного оборота:"), lblOneRotor_);
  form->addRow(QStringLiteral("Частота первой гармоники, Гц:"), lblFG_);
  form->addRow(QStringLiteral("Количество оборотов в цикле записи:"), cmbData_[2]);
  form->addRow(QStringLiteral("Шаг спектра, Гц:"), lblStepDesc_);
  form->addRow(QStringLiteral("Количество отсчетов цикла записи:"), cmbSignalDataN_);
  form->addRow(QStringLiteral("Длительность цикла записи:"), lblTimeRec_);
  form->addRow(QStringLiteral("Частота дискретизации канала, Гц:"), lblFreqDesc_);
  form->addRow(QStringLiteral("Частота работы АЦП, Гц:"), lblFreqDescADC_);
  form->addRow(QStringLiteral("Время обновления данных, сек:"), cmbTimeRefresh_);
  form->addRow(QStringLiteral("Буфер передачи, отсчетов:"), lblBuffer_);
  tabs_->addTab(cyclic, QStringLiteral("Циклическая запись"));

  auto* solid = new QWidget(tabs_);
  auto* grid = new QGridLayout(solid);
  sldFreq_ = new QSlider(Qt::Horizontal, solid);
  sldFreq_->setObjectName(QStringLiteral("sldFreq"));
  sldFreq_->setRange(1, kFreqSliderPositions);
  sldFreq_->setInvertedAppearance(true);  // higher frequencies to the right
  sldFreq_->setTickPosition(QSlider::TicksBelow);
  lblFreqADC_ = Value("lblFreqADC", solid);
  lblFreqChannel_ = Value("lblFreqChannel", solid);
  txtSolidFileName_ = new QLineEdit(solid);
  txtSolidFileName_->setObjectName(QStringLiteral("txtSolidFileName"));
  txtSolidFileName_->setMaxLength(64);
  txtSolidPath_ = new QLineEdit(solid);
  txtSolidPath_->setObjectName(QStringLiteral("txtSolidPath"));
  dirModel_ = new QFileSystemModel(this);
  dirModel_->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
  dirModel_->setRootPath(QStringLiteral("/"));
  dir1_ = new QTreeView(solid);
  dir1_->setObjectName(QStringLiteral("Dir1"));
  dir1_->setModel(dirModel_);
  for (int column = 1; column < dirModel_->columnCount(); ++column) dir1_->hideColumn(column);
  dir1_->header()->hide();
  txtInformation_ = new QPlainTextEdit(solid);
  txtInformation_->setObjectName(QStringLiteral("txtInformation"));
  txtInformation_->setReadOnly(true);
  grid->addWidget(new QLabel(QStringLiteral("Частота работы АЦП:"), solid), 0, 0);
  grid->addWidget(sldFreq_, 0, 1, 1, 2);
  grid->addWidget(new QLabel(QStringLiteral("Частота АЦП:"), solid), 1, 0);
  grid->addWidget(lblFreqADC_, 1, 1);
  grid->addWidget(new QLabel(QStringLiteral("Частота канала:"), solid), 2, 0);
  grid->addWidget(lblFreqChannel_, 2, 1);
  grid->addWidget(new QLabel(QStringLiteral("Имя файла данных:"), solid), 3, 0);
  grid->addWidget(txtSolidFileName_, 3, 1, 1, 2);
  grid->addWidget(new QLabel(QStringLiteral("Папка:"), solid), 4, 0);
  grid->addWidget(txtSolidPath_, 4, 1, 1, 2);
  grid->addWidget(dir1_, 5, 0, 1, 2);
  grid->addWidget(txtInformation_, 5, 2);
  grid->setColumnStretch(2, 1);
  tabs_->addTab(solid, QStringLiteral("Непрерывная запись"));

  cmdOK_ = new QPushButton(QStringLiteral("OK"), this);
  cmdOK_->setObjectName(QStringLiteral("cmdOK"));
  auto* cmdCancel = new QPushButton(QStringLiteral("Отмена"), this);
  cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
  auto* cmdApply = new QPushButton(QStringLiteral("Применить"), this);
  cmdApply->setObjectName(QStringLiteral("cmdApply"));
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(cmdOK_);
  buttons->addWidget(cmdCancel);
  buttons->addWidget(cmdApply);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabs_);
  layout->addLayout(buttons);

  // Nothing reaches the state but through Apply: Cancel only closes.
  fill(CurrentRecordSettings(ctx_.s));

  for (QComboBox* box : cmbData_) connect(box, &QComboBox::currentTextChanged, this, [this] { AccountData(); });
  connect(cmbSignalDataN_, &QComboBox::currentTextChanged, this, [this] {
    const int32_t n = cmbSignalDataN_->currentText().toInt();
    if (n > 32768 && n != lastSignalDataN_)
      ctx_.prompts.message(LargeCycleWarning(), QStringLiteral("Внимание"), PromptButtons::Ok,
                           PromptIcon::Exclamation);
    lastSignalDataN_ = n;
    AccountData();
  });
  connect(cmbTimeRefresh_, &QComboBox::currentTextChanged, this, [this] { AccountData(); });
  connect(tabs_, &QTabWidget::currentChanged, this, [this] { AccountData(); });
  connect(sldFreq_, &QSlider::valueChanged, this, [this] { FreqChanged(); });
  connect(sldFreq_, &QSlider::sliderReleased, this, [this] { DiskEstimate(); });
  connect(dir1_, &QTreeView::clicked, this, [this](const QModelIndex& index) {
    txtSolidPath_->setText(dirModel_->filePath(index));
    DiskEstimate();
  });
  connect(txtSolidPath_, &QLineEdit::editingFinished, this, [this] {
    const QModelIndex folder = dirModel_->index(txtSolidPath_->text().trimmed());
    if (folder.isValid()) {
      dir1_->setCurrentIndex(folder);
      dir1_->scrollTo(folder);
    }
    DiskEstimate();
  });
  connect(cmdOK_, &QPushButton::clicked, this, [this] {
    if (Apply()) accept();
  });
  connect(cmdCancel, &QPushButton::clicked, this, &SetupRecWindow::reject);
  connect(cmdApply, &QPushButton::clicked, this, [this] { Apply(); });
  resize(720, 520);
}

void SetupRecWindow::fill(const RecordSettingsInput& in) {
  const QSignalBlocker b0(cmbData_[0]), b1(cmbData_[1]), b2(cmbData_[2]), b3(cmbSignalDataN_), b4(cmbTimeRefresh_),
      b5(sldFreq_);
  cmbData_[0]->setEditText(in.polus);
  cmbData_[1]->setEditText(in.freqSety);
  cmbData_[2]->setEditText(in.numberRotorRecord);
  const int sampleIndex = cmbSignalDataN_->findText(QString::number(in.signalDataN));
  cmbSignalDataN_->setCurrentIndex(sampleIndex >= 0 ? sampleIndex : cmbSignalDataN_->findText(QStringLiteral("32768")));
  lastSignalDataN_ = cmbSignalDataN_->currentText().toInt();
  int refreshIndex = 0;
  const QStringList refresh = RefreshTimeChoices();
  for (int k = 0; k < refresh.size(); ++k)
    if (std::abs(ParseLocaleNumber(refresh[k]).value_or(0) - in.timeRefresh) <
        std::abs(ParseLocaleNumber(refresh[refreshIndex]).value_or(0) - in.timeRefresh))
      refreshIndex = k;
  cmbTimeRefresh_->setCurrentIndex(refreshIndex);
  sldFreq_->setValue(FreqSliderPosition(in.freqADC));
  txtSolidFileName_->setText(in.solidFileName);
  txtSolidPath_->setText(in.solidPath);
  dir1_->setCurrentIndex(dirModel_->index(in.solidPath));
  dir1_->scrollTo(dirModel_->index(in.solidPath));
  tabs_->setCurrentIndex(in.solidMode ? 1 : 0);
  AccountData();
  FreqChanged();
  DiskEstimate();
}

RecordSettingsInput SetupRecWindow::input() const {
  RecordSettingsInput in;
  in.polus = cmbData_[0]->currentText();
  in.freqSety = cmbData_[1]->currentText();
  in.numberRotorRecord = cmbData_[2]->currentText();
  in.signalDataN = cmbSignalDataN_->currentText().toInt();
  in.timeRefresh = static_cast<float>(ParseLocaleNumber(cmbTimeRefresh_->currentText()).value_or(0.25));
  in.freqADC = FreqADCAt(sldFreq_->value());
  in.solidMode = tabs_->currentIndex() == 1;
  in.solidFileName = txtSolidFileName_->text();
  in.solidPath = txtSolidPath_->text().trimmed();
  return in;
}

void SetupRecWindow::AccountData() {
  const RecordSettingsInput in = input();
  const int used = RecountChannelUsedCount(ctx_.s);
  const auto rates = AccountRotorRates(in.polus.toInt(), in.freqSety.toInt(), in.numberRotorRecord.toInt(),
                                       in.signalDataN, in.timeRefresh, used);
  const QList<QLabel*> labels{lblFR_, lblOneRotor_, lblFG_, lblStepDesc_, lblFreqDesc_,
                              lblFreqDescADC_, lblTimeRec_, lblBuffer_};
  QPalette face = palette();
  if (!rates) {
    for (QLabel* l : labels) l->setText(QStringLiteral("—"));
    face.setColor(QPalette::Window, QColor(255, 0, 0));
    lblFreqDescADC_->setPalette(face);
    cmdOK_->setEnabled(in.solidMode);
    return;
  }
  lblFR_->setText(FormatStandard(rates->freqRotorN));
  QString revolution = TimeText(rates->revolutionSeconds);
  if (revolution.isEmpty()) revolution = QLocale().toString(rates->revolutionSeconds, 'f', 3) + QStringLiteral(" сек");
  lblOneRotor_->setText(revolution.trimmed());
  lblFG_->setText(FormatStandard(rates->firstHarmonicHz));
  lblStepDesc_->setText(QLocale().toString(rates->spectrumStepHz, 'f', 3));
  QString cycle = TimeText(rates->cycleSeconds);
  if (cycle.isEmpty()) cycle = QLocale().toString(rates->cycleSeconds, 'f', 3) + QStringLiteral(" сек");
  lblTimeRec_->setText(cycle.trimmed());
  lblFreqDesc_->setText(Grouped(rates->freqDescR));
  lblFreqDescADC_->setText(Grouped(static_cast<double>(rates->moduleRateHz)));
  lblBuffer_->setText(Grouped(rates->bufferLength));
  if (!rates->moduleRateOk) face.setColor(QPalette::Window, QColor(255, 0, 0));
  lblFreqDescADC_->setPalette(face);
  cmdOK_->setEnabled(rates->moduleRateOk || in.solidMode);
}

void SetupRecWindow::FreqChanged() {
  const int32_t freqADC = FreqADCAt(sldFreq_->value());
  const int used = std::max(RecountChannelUsedCount(ctx_.s), 1);
  lblFreqADC_->setText(Grouped(freqADC) + QStringLiteral(" Гц"));
  sldFreq_->setToolTip(lblFreqADC_->text());
  lblFreqChannel_->setText(Grouped(static_cast<double>(freqADC) / used) + QStringLiteral(" Гц"));
  if (!sldFreq_->isSliderDown()) DiskEstimate();
}

void SetupRecWindow::DiskEstimate() {
  const RecordSettingsInput in = input();
  txtInformation_->setPlainText(
      DiskEstimateLines(DiskSpaceOf(in.solidPath), in.freqADC, RecountChannelUsedCount(ctx_.s)).join(QLatin1Char('\n')));
}

QString SetupRecWindow::information() const { return txtInformation_->toPlainText(); }

QLabel* SetupRecWindow::label(const QString& name) const { return findChild<QLabel*>(name); }

void SetupRecWindow::focusField(RecordField field) {
  switch (field) {
    case RecordField::Polus:
    case RecordField::FreqSety:
    case RecordField::NumberRotorRecord: {
      tabs_->setCurrentIndex(0);
      const int k = field == RecordField::Polus ? 0 : field == RecordField::FreqSety ? 1 : 2;
      cmbData_[static_cast<size_t>(k)]->setFocus();
      cmbData_[static_cast<size_t>(k)]->lineEdit()->selectAll();
      break;
    }
    case RecordField::SolidFileName:
      txtSolidFileName_->setFocus();
      txtSolidFileName_->selectAll();
      break;
    case RecordField::SolidPath:
      txtSolidPath_->setFocus();
      break;
    case RecordField::Frequency:
    case RecordField::None:
      break;
  }
}

bool SetupRecWindow::Apply() {
  const RecordSettingsInput in = input();
  const bool solidTab = in.solidMode;
  QApplication::setOverrideCursor(Qt::WaitCursor);
  const RecordApply result = ApplyRecordSettings(ctx_.s, ctx_.store, ctx_.prompts, in);
  QApplication::restoreOverrideCursor();
  if (!result.applied) {
    // A cyclic value refused from the continuous tab: show where it is.
    if (solidTab && (result.field == RecordField::Polus || result.field == RecordField::FreqSety ||
                     result.field == RecordField::NumberRotorRecord))
      tabs_->setCurrentIndex(0);
    focusField(result.field);
    return false;
  }
  if (ctx_.resetSignalBlock) ctx_.resetSignalBlock();
  if (ctx_.refreshFrame) ctx_.refreshFrame();
  if (ctx_.viewRefresh) ctx_.viewRefresh();
  return true;
}

}  // namespace aqx::ui
