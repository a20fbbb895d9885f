#include "ui/setup/SetupDialogs.h"

#include "core/Evaluation.h"
#include "core/Numeric.h"
#include "core/SpectrumSetup.h"
#include "views/spectrum/SpectrumEngine.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIntValidator>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QTableWidget>
#include <QVBoxLayout>

namespace aqx::ui {

// ---------------------------------------------------------------------------
// frmSetupSpectrumAnalyser.
// ---------------------------------------------------------------------------

SpectrumAnalyserDialog::SpectrumAnalyserDialog(SetupContext ctx, QWidget* parent) : QDialog(parent), ctx_(ctx) {
  setObjectName(QStringLiteral("frmSetupSpectrumAnalyser"));
  setWindowTitle(QStringLiteral("Спектральный анализ"));
  auto* layout = new QVBoxLayout(this);
  auto* blocks = new QGroupBox(QStringLiteral("Размер блока БПФ"), this);
  auto* blockForm = new QFormLayout(blocks);
  cmbBlockSizeFFTr_ = new QComboBox(blocks);
  cmbBlockSizeFFTr_->setObjectName(QStringLiteral("cmbBlockSizeFFTr"));
  cmbBlockSizeFFTa_ = new QComboBox(blocks);
  cmbBlockSizeFFTa_->setObjectName(QStringLiteral("cmbBlockSizeFFTa"));
  for (QComboBox* box : {cmbBlockSizeFFTr_, cmbBlockSizeFFTa_}) box->addItems(BlockSizeTexts());
  cmbBlockSizeFFTr_->setCurrentIndex(BlockSizeIndex(ctx_.s.BlockSizeFFTr));
  cmbBlockSizeFFTa_->setCurrentIndex(BlockSizeIndex(ctx_.s.BlockSizeFFTa));
  blockForm->addRow(QStringLiteral("Сбор"), cmbBlockSizeFFTr_);
  blockForm->addRow(QStringLiteral("Анализ"), cmbBlockSizeFFTa_);
  layout->addWidget(blocks);

  auto* form = new QFormLayout;
  cmbSmoothingWindow_ = new QComboBox(this);
  cmbSmoothingWindow_->setObjectName(QStringLiteral("cmbSmoothingWindow"));
  cmbSmoothingWindow_->addItems(SmoothingWindowNames());
  cmbSmoothingWindow_->setCurrentIndex(std::clamp(ctx_.s.options.config.SmoothingWindow, 0, kSmoothingWindowCount - 1));
  form->addRow(QStringLiteral("Окно сглаживания"), cmbSmoothingWindow_);
  txtAlphaParametr_ = new QLineEdit(AlphaText(ctx_.s.options.config.AlphaParametr), this);
  txtAlphaParametr_->setObjectName(QStringLiteral("txtAlphaParametr"));
  txtAlphaParametr_->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*[.,]?[0-9]*")), this));
  connect(txtAlphaParametr_, &QLineEdit::editingFinished, this,
          [this] { txtAlphaParametr_->setText(AlphaText(AlphaOfText(txtAlphaParametr_->text()))); });
  form->addRow(QStringLiteral("Альфа - параметр"), txtAlphaParametr_);
  txtOverlapping_ = new QLineEdit(QString::number(ctx_.s.options.config.Overlapping), this);
  txtOverlapping_->setObjectName(QStringLiteral("txtOverlapping"));
  txtOverlapping_->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), this));
  connect(txtOverlapping_, &QLineEdit::textEdited, this, [this](const QString& text) {
    const int32_t held = OverlapOfText(text);
    if (!text.isEmpty() && QString::number(held) != text) txtOverlapping_->setText(QString::number(held));
  });
  form->addRow(QStringLiteral("Перекрытие, %"), txtOverlapping_);
  layout->addLayout(form);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("cmdOK"));
  buttons->button(QDialogButtonBox::Apply)->setObjectName(QStringLiteral("cmdApply"));
  buttons->button(QDialogButtonBox::Apply)->setText(QStringLiteral("Применить"));
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
  buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Отмена"));
  connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this, &SpectrumAnalyserDialog::Apply);
  connect(buttons, &QDialogButtonBox::accepted, this, [this] {
    Apply();
    accept();
  });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

void SpectrumAnalyserDialog::Apply() {
  SpectrumAnalyserChoice choice;
  choice.BlockSizeFFTa = BlockSizeOfText(cmbBlockSizeFFTa_->currentText()).value_or(ctx_.s.BlockSizeFFTa);
  choice.BlockSizeFFTr = BlockSizeOfText(cmbBlockSizeFFTr_->currentText()).value_or(ctx_.s.BlockSizeFFTr);
  choice.SmoothingWindow = cmbSmoothingWindow_->currentIndex();
  choice.AlphaParametr = AlphaOfText(txtAlphaParametr_->text());
  choice.Overlapping = OverlapOfText(txtOverlapping_->text());
  ApplySpectrumAnalyser(ctx_.s, ctx_.store, choice, ctx_.recordChecked && ctx_.recordChecked());
  if (ctx_.viewRefresh) ctx_.viewRefresh();
}

// ---------------------------------------------------------------------------
// frmSetupProbe and frmSetupFilter.
// ---------------------------------------------------------------------------

FrequencyTableDialog::FrequencyTableDialog(FrequencyTable table, SetupContext ctx, QWidget* parent)
    : QDialog(parent), table_(table), ctx_(ctx) {
  const bool probe = table == FrequencyTable::Probe;
  setObjectName(probe ? QStringLiteral("frmSetupProbe") : QStringLiteral("frmSetupFilter"));
  setWindowTitle(probe ? QStringLiteral("Проверочные частоты") : QStringLiteral("Фильтр"));
  resize(probe ? 720 : 520, 480);
  auto* layout = new QVBoxLayout(this);
  auto* types = new QHBoxLayout;
  optType_ = new QButtonGroup(this);
  const char* const captions[] = {"Частота", "Гармоника"};
  for (int i = 0; i < 2; ++i) {
    auto* option = new QRadioButton(QString::fromUtf8(captions[i]), this);
    option->setObjectName(QStringLiteral("optType%1").arg(i));
    optType_->addButton(option, i);
    types->addWidget(option);
  }
  types->addStretch(1);
  layout->addLayout(types);
  grid_ = new QTableWidget(this);
  grid_->setObjectName(QStringLiteral("MSFlexGrid1"));
  grid_->installEventFilter(this);
  layout->addWidget(grid_, 1);
  chkSave_ = new QCheckBox(QStringLiteral("Сохранение настроек как общих"), this);
  chkSave_->setObjectName(probe ? QStringLiteral("chkSaveProbe") : QStringLiteral("chkSaveFilter"));
  chkSave_->setChecked(probe ? ctx_.s.SaveProbe : ctx_.s.SaveFilter);
  layout->addWidget(chkSave_);
  auto* buttons = new QHBoxLayout;
  auto add = [&](const char* name, const QString& caption) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(QString::fromLatin1(name));
    buttons->addWidget(b);
    return b;
  };
  QPushButton* clear = add("cmdClear", QStringLiteral("Очистка"));
  buttons->addStretch(1);
  QPushButton* apply = add("cmdApply", QStringLiteral("Применить"));
  QPushButton* ok = add("cmdOK", QStringLiteral("OK"));
  QPushButton* cancel = add("cmdCancel", QStringLiteral("Отмена"));
  layout->addLayout(buttons);
  connect(clear, &QPushButton::clicked, this, &FrequencyTableDialog::Clear);
  connect(apply, &QPushButton::clicked, this, [this] { Apply(); });
  connect(ok, &QPushButton::clicked, this, [this] {
    if (Apply()) accept();
  });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  const bool harmonic = (probe ? ctx_.s.options.config.ProbeType : ctx_.s.options.config.FilterType) == 1;
  optType_->button(harmonic ? 1 : 0)->setChecked(true);
  connect(optType_, &QButtonGroup::idClicked, this, [this](int id) { SetUnit(id == 1); });
  model_ = LoadFrequencyGrid(ctx_.s, table_, harmonic);
  showGrid();
}

void FrequencyTableDialog::showGrid() {
  showing_ = true;
  grid_->clear();
  grid_->setColumnCount(static_cast<int>(model_.columnTitles.size()));
  grid_->setRowCount(static_cast<int>(model_.cells.size()));
  grid_->setHorizontalHeaderLabels(model_.columnTitles);
  grid_->setVerticalHeaderLabels(model_.rowTitles);
  for (int row = 0; row < grid_->rowCount(); ++row)
    for (int col = 0; col < grid_->columnCount(); ++col)
      grid_->setItem(row, col, new QTableWidgetItem(model_.cells[static_cast<size_t>(row)].value(col)));
  grid_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  showing_ = false;
}

void FrequencyTableDialog::readCells() {
  for (int row = 0; row < grid_->rowCount() && row < static_cast<int>(model_.cells.size()); ++row)
    for (int col = 0; col < grid_->columnCount(); ++col) {
      const QTableWidgetItem* item = grid_->item(row, col);
      model_.cells[static_cast<size_t>(row)][col] = item ? item->text() : QString();
    }
}

bool FrequencyTableDialog::eventFilter(QObject* watched, QEvent* event) {
  // Typing into a cell: digits, one separator and Backspace, as the old grid.
  if (watched == grid_ && event->type() == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    QTableWidgetItem* item = grid_->currentItem();
    const QString text = key->text();
    if (item && text.size() == 1 && text[0].isPrint()) {
      if (CellKeyAccepted(item->text(), text[0])) item->setText(item->text() + text);
      return true;
    }
    if (item && key->key() == Qt::Key_Backspace) {
      item->setText(item->text().chopped(std::min<qsizetype>(1, item->text().size())));
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

bool FrequencyTableDialog::Apply() {
  readCells();
  const bool probe = table_ == FrequencyTable::Probe;
  const GridApply result = probe ? ApplyProbeGrid(ctx_.s, ctx_.store, ctx_.prompts, model_, chkSave_->isChecked())
                                 : ApplyFilterGrid(ctx_.s, ctx_.store, ctx_.prompts, model_, chkSave_->isChecked());
  if (result != GridApply::Applied) return false;
  if (!probe) views::FilterSamples(ctx_.s, ctx_.history);
  showGrid();
  if (ctx_.viewRefresh) ctx_.viewRefresh();
  return true;
}

void FrequencyTableDialog::Clear() {
  ClearGrid(model_);
  showGrid();
}

void FrequencyTableDialog::SetUnit(bool harmonic) {
  readCells();
  if (!SwitchGridUnit(model_, harmonic, ctx_.s.FreqRotorN)) {
    ctx_.prompts.tell(QStringLiteral("В таблице есть ячейка, в которой не число. Исправьте её перед сменой единиц."),
                      windowTitle(), PromptIcon::Exclamation);
    optType_->button(model_.harmonic ? 1 : 0)->setChecked(true);
    return;
  }
  int32_t& type = table_ == FrequencyTable::Probe ? ctx_.s.options.config.ProbeType : ctx_.s.options.config.FilterType;
  type = harmonic ? 1 : 0;
  WriteSetting(ctx_.store, QStringLiteral("Config"),
               table_ == FrequencyTable::Probe ? QStringLiteral("ProbeType") : QStringLiteral("FilterType"), type);
  showGrid();
}

void FrequencyTableDialog::Reload() {
  model_ = LoadFrequencyGrid(ctx_.s, table_, model_.harmonic);
  showGrid();
}

// ---------------------------------------------------------------------------
// frmServiceEvaluation.
// ---------------------------------------------------------------------------

EvaluationDialog::EvaluationDialog(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmServiceEvaluation"));
  setWindowTitle(QStringLiteral("Оценка вибрационного состояния"));
  auto* layout = new QVBoxLayout(this);
  auto* classes = new QGroupBox(QStringLiteral("Тип конструкции"), this);
  auto* classLayout = new QVBoxLayout(classes);
  optType_ = new QButtonGroup(this);
  const QStringList names = EvaluationClassNames();
  for (int i = 0; i < names.size(); ++i) {
    auto* option = new QRadioButton(names[i], classes);
    option->setObjectName(QStringLiteral("optType%1").arg(i));
    optType_->addButton(option, i);
    classLayout->addWidget(option);
  }
  optType_->button(0)->setChecked(true);
  layout->addWidget(classes);
  auto* form = new QFormLayout;
  txtFreg_ = new QLineEdit(lastGood_, this);
  txtFreg_->setObjectName(QStringLiteral("txtFreg"));
  form->addRow(QStringLiteral("Частота, Гц"), txtFreg_);
  const QStringList grades = EvaluationGradeNames();
  // Best grade on top.
  for (int g = 5; g >= 1; --g) {
    auto* label = new QLabel(this);
    label->setObjectName(QStringLiteral("lblEvaluation%1").arg(g));
    label->setMinimumWidth(90);
    label->setFrameShape(QFrame::StyledPanel);
    lblEvaluation_[static_cast<size_t>(g - 1)] = label;
    form->addRow(grades[g - 1] + QStringLiteral(", мкм"), label);
  }
  layout->addLayout(form);
  auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
  close->setObjectName(QStringLiteral("cmdClose"));
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  layout->addWidget(close, 0, Qt::AlignRight);
  connect(optType_, &QButtonGroup::idClicked, this, &EvaluationDialog::setClass);
  connect(txtFreg_, &QLineEdit::textEdited, this, [this](const QString& text) {
    // Digits and one decimal separator; anything else brings back the last
    // good text.
    bool good = true;
    int separators = 0;
    for (QChar ch : text) {
      if (ch == QLatin1Char(',') || ch == QLatin1Char('.')) ++separators;
      else if (!ch.isDigit()) good = false;
    }
    if (!good || separators > 1) {
      txtFreg_->setText(lastGood_);
      return;
    }
    lastGood_ = text;
    AccountEvaluation();
  });
  AccountEvaluation();
}

void EvaluationDialog::setClass(int option) {
  optType_->button(std::clamp(option, 0, kEvaluationClassCount - 1))->setChecked(true);
  if (option == 2) {
    txtFreg_->setText(QStringLiteral("100"));
    txtFreg_->selectAll();
    lastGood_ = txtFreg_->text();
  }
  AccountEvaluation();
}

void EvaluationDialog::AccountEvaluation() {
  const float f = static_cast<float>(ParseLocaleNumber(txtFreg_->text()).value_or(0.0));
  const auto texts = aqx::AccountEvaluation(f, optType_->checkedId());
  for (size_t i = 0; i < texts.size(); ++i) lblEvaluation_[i]->setText(texts[i]);
}

}  // namespace aqx::ui
