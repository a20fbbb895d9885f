#include "ui/options/ParametersDialog.h"

#include "core/Config.h"
#include "core/OptionSheet.h"
#include "core/Vocabulary.h"

#include <QPixmap>
#include <QIcon>
#include <QCheckBox>
#include <QColorDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace aqx::ui {

namespace {

const char kTitle[] = "Параметры";

void PaintSwatch(QPushButton* b, const QColor& c) {
  QPixmap face(40, 14);
  face.fill(c);
  b->setIcon(QIcon(face));
  b->setIconSize(face.size());
  b->setProperty("color", c);
  b->setToolTip(c.name());
}

}  // namespace

ColorChooser StandardColorChooser(QWidget* parent) {
  return [parent](const QColor& current, const QString& title) -> std::optional<QColor> {
    const QColor c = QColorDialog::getColor(current, parent, title);
    if (!c.isValid()) return std::nullopt;
    return c;
  };
}

QColor ColorFromWord(int32_t bgr) { return QColor(BgrRed(bgr), BgrGreen(bgr), BgrBlue(bgr)); }

int32_t WordFromColor(const QColor& c) { return BgrWord(c.red(), c.green(), c.blue()); }

ParametersDialog::ParametersDialog(AppState& s, SettingsStore& store, Prompts& prompts, Hooks hooks, QWidget* parent)
    : QDialog(parent), s_(s), store_(store), prompts_(prompts), hooks_(std::move(hooks)),
      chooser_(StandardColorChooser(this)) {
  setObjectName(QStringLiteral("frmSetupParameters"));
  setWindowTitle(QString::fromUtf8(kTitle));
  auto* layout = new QVBoxLayout(this);
  tabs_ = new QTabWidget(this);
  tabs_->setObjectName(QStringLiteral("tabParameters"));
  layout->addWidget(tabs_);
  std::vector<QFormLayout*> forms;
  for (int tab = 0; tab < kOptionSheetTabCount; ++tab) {
    auto* page = new QWidget(tabs_);
    auto* form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    tabs_->addTab(page, OptionSheetTabCaption(tab));
    forms.push_back(form);
  }
  for (const SettingKey* key : OptionSheetRows()) {
    const int tab = std::clamp(key->menu.group, 0, kOptionSheetTabCount - 1);
    QFormLayout* form = forms[static_cast<size_t>(tab)];
    QWidget* page = tabs_->widget(tab);
    const QString caption = QString::fromUtf8(key->menu.caption);
    const QString name = QString::fromLatin1(key->menu.objectName);
    const SettingField field = key->field(s_);
    QWidget* control = nullptr;
    if (std::holds_alternative<bool*>(field)) {
      auto* box = new QCheckBox(caption, page);
      form->addRow(box);
      control = box;
    } else if (name.startsWith(QLatin1String("cmd"))) {
      auto* button = new QPushButton(page);
      form->addRow(caption, button);
      control = button;
    } else {
      auto* edit = new QLineEdit(page);
      edit->setMaximumWidth(100);
      // Belongs to the reminder above it.
      form->addRow(QStringLiteral("      ") + caption, edit);
      control = edit;
    }
    control->setObjectName(name);
    rows_.push_back({key, control});
  }
  for (const Row& row : rows_) {
    if (auto* b = qobject_cast<QPushButton*>(row.control))
      connect(b, &QPushButton::clicked, this, [this, row] { chooseColor(row); });
  }
  // The per-channel and per-type choosers stand beside the named colours.
  auto* more = new QHBoxLayout;
  auto* colorType = new QPushButton(QStringLiteral("Цвета типов каналов ..."), tabs_->widget(3));
  colorType->setObjectName(QStringLiteral("cmdSetupColorType"));
  auto* line = new QPushButton(QStringLiteral("Цвет и толщина линий каналов ..."), tabs_->widget(3));
  line->setObjectName(QStringLiteral("cmdSetupLine"));
  more->addWidget(colorType);
  more->addWidget(line);
  forms[3]->addRow(more);
  connect(colorType, &QPushButton::clicked, this, [this] {
    if (hooks_.setupColorType) hooks_.setupColorType();
  });
  connect(line, &QPushButton::clicked, this, [this] {
    if (hooks_.setupLine) hooks_.setupLine();
  });

  auto* buttons = new QHBoxLayout;
  auto button = [this, buttons](const char* name, const QString& caption) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(QString::fromLatin1(name));
    b->setAutoDefault(false);
    buttons->addWidget(b);
    return b;
  };
  QPushButton* reset = button("cmdReset", QStringLiteral("Сброс"));
  buttons->addStretch(1);
  QPushButton* ok = button("cmdOK", QStringLiteral("ОК"));
  QPushButton* cancel = button("cmdCancel", QStringLiteral("Отмена"));
  QPushButton* apply = button("cmdApply", QStringLiteral("Применить"));
  ok->setDefault(true);
  layout->addLayout(buttons);
  connect(reset, &QPushButton::clicked, this, &ParametersDialog::Reset);
  connect(apply, &QPushButton::clicked, this, &ParametersDialog::Apply);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(ok, &QPushButton::clicked, this, [this] {
    if (Apply()) accept();
  });

  Reload();
  tabs_->setCurrentIndex(std::clamp(s_.options.config.ParametersTab, 0, kOptionSheetTabCount - 1));
  connect(tabs_, &QTabWidget::currentChanged, this, [this](int tab) {
    s_.options.config.ParametersTab = tab;
    if (const SettingKey* k = FindSettingKey(QString::fromLatin1(kSectionConfig), QStringLiteral("ParametersTab")))
      WriteSettingKey(store_, *k, s_);
  });
}

void ParametersDialog::Reload() {
  for (const Row& row : rows_) {
    const QString text = OptionSheetText(s_, *row.key);
    if (auto* box = qobject_cast<QCheckBox*>(row.control)) {
      box->setChecked(text == QLatin1String("1"));
    } else if (auto* button = qobject_cast<QPushButton*>(row.control)) {
      PaintSwatch(button, ColorFromWord(text.toInt()));
    } else if (auto* edit = qobject_cast<QLineEdit*>(row.control)) {
      edit->setText(text);
    }
  }
}

void ParametersDialog::chooseColor(const Row& row) {
  auto* button = qobject_cast<QPushButton*>(row.control);
  const QColor current = button->property("color").value<QColor>();
  if (const std::optional<QColor> c = chooser_(current, QString::fromUtf8(row.key->menu.caption)))
    PaintSwatch(button, *c);
}

bool ParametersDialog::Apply() {
  std::vector<OptionSheetEntry> entries;
  for (const Row& row : rows_) {
    QString text;
    if (auto* box = qobject_cast<QCheckBox*>(row.control)) {
      text = SettingText(box->isChecked());
    } else if (auto* button = qobject_cast<QPushButton*>(row.control)) {
      text = SettingText(WordFromColor(button->property("color").value<QColor>()));
    } else if (auto* edit = qobject_cast<QLineEdit*>(row.control)) {
      text = edit->text();
    }
    entries.push_back({row.key, text});
  }
  const QString problem = ApplyOptionSheet(s_, store_, entries);
  if (!problem.isEmpty()) {
    prompts_.tell(problem, QString::fromUtf8(kTitle), PromptIcon::Exclamation);
    return false;
  }
  if (hooks_.applied) hooks_.applied();
  return true;
}

void ParametersDialog::Reset() {
  const ResetOutcome outcome = ResetSettingsCommand(store_, prompts_);
  if (outcome == ResetOutcome::Cancelled) return;
  // The sheet's own options show their defaults at once.
  for (const Row& row : rows_) ReadSettingKey(store_, *row.key, s_);
  Reload();
  if (hooks_.applied) hooks_.applied();
  if (outcome == ResetOutcome::CloseProgram && hooks_.closeProgram) {
    reject();
    hooks_.closeProgram();
  }
}

}  // namespace aqx::ui
