#include "ui/options/ChannelLooks.h"

#include "core/ConfigKeys.h"

#include <QPixmap>
#include <QIcon>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QSpinBox>
#include <QVBoxLayout>

#include <cstring>

#include <algorithm>

namespace aqx::ui {

namespace {

constexpr int kMaxPenWidth = 5;

QIcon Swatch(const QColor& c) {
  QPixmap face(28, 12);
  face.fill(c);
  return QIcon(face);
}

void PaintButton(QPushButton* b, const QColor& c) {
  b->setIcon(Swatch(c));
  b->setIconSize(QSize(40, 14));
  b->setProperty("color", c);
}

// OK, Cancel and Apply under a dialog; OK applies and closes.
void AddButtons(QDialog* d, QVBoxLayout* layout, const std::function<void()>& apply) {
  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply, d);
  box->button(QDialogButtonBox::Ok)->setText(QStringLiteral("ОК"));
  box->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Отмена"));
  box->button(QDialogButtonBox::Apply)->setText(QStringLiteral("Применить"));
  box->button(QDialogButtonBox::Apply)->setObjectName(QStringLiteral("cmdApply"));
  QObject::connect(box, &QDialogButtonBox::accepted, d, [d, apply] {
    apply();
    d->accept();
  });
  QObject::connect(box, &QDialogButtonBox::rejected, d, &QDialog::reject);
  QObject::connect(box->button(QDialogButtonBox::Apply), &QPushButton::clicked, d, apply);
  layout->addWidget(box);
}

const ChannelSettingKey* ChannelRow(const char* key) {
  for (const ChannelSettingKey& k : ChannelSettingKeys())
    if (std::strcmp(k.key, key) == 0) return &k;
  return nullptr;
}

}  // namespace

ColorTypeDialog::ColorTypeDialog(AppState& s, SettingsStore& store, const Vocabulary& vocab,
                                 std::function<void()> applied, QWidget* parent)
    : QDialog(parent), s_(s), store_(store), applied_(std::move(applied)) {
  setObjectName(QStringLiteral("frmSetupColorType"));
  setWindowTitle(QStringLiteral("Цвета типов каналов"));
  auto* layout = new QVBoxLayout(this);
  auto* grid = new QGridLayout;
  for (int type = 0; type < kColorTypeKitCount; ++type) {
    auto* combo = new QComboBox(this);
    combo->setObjectName(QStringLiteral("cmbColorType%1").arg(type));
    for (int k = 0; k < kColorListCount; ++k) {
      const uint32_t rgb = vocab.ColorList[static_cast<size_t>(k)];
      combo->addItem(Swatch(QColor::fromRgb(rgb)), vocab.ColorNameList.value(k).section(QLatin1Char('/'), 0, 0).trimmed());
    }
    combo->setCurrentIndex(std::clamp(s_.options.config.ColorTypeKit[static_cast<size_t>(type)], 0, kColorListCount - 1));
    grid->addWidget(new QLabel(vocab.SensorTypeList.value(type), this), type, 0);
    grid->addWidget(combo, type, 1);
    combos_[static_cast<size_t>(type)] = combo;
  }
  layout->addLayout(grid);
  AddButtons(this, layout, [this] { Apply(); });
}

void ColorTypeDialog::Apply() {
  SettingsStore::Batch batch(store_);
  for (int type = 0; type < kColorTypeKitCount; ++type) {
    const int index = combos_[static_cast<size_t>(type)]->currentIndex();
    s_.options.config.ColorTypeKit[static_cast<size_t>(type)] = index;
    WriteSetting(store_, QString::fromLatin1(kSectionConfig), ColorTypeKitKey(type), static_cast<int32_t>(index));
  }
  if (applied_) applied_();
}

LineDialog::LineDialog(AppState& s, SettingsStore& store, const Vocabulary& vocab, std::function<void()> applied,
                       QWidget* parent)
    : QDialog(parent), s_(s), store_(store), applied_(std::move(applied)), chooser_(StandardColorChooser(this)) {
  setObjectName(QStringLiteral("frmSetupLine"));
  setWindowTitle(QStringLiteral("Цвет и толщина линий каналов"));
  auto* layout = new QVBoxLayout(this);
  auto* area = new QScrollArea(this);
  auto* inner = new QWidget(area);
  auto* grid = new QGridLayout(inner);
  grid->addWidget(new QLabel(QStringLiteral("Канал"), inner), 0, 0);
  grid->addWidget(new QLabel(QStringLiteral("Цвет"), inner), 0, 1);
  grid->addWidget(new QLabel(QStringLiteral("Линия сигнала"), inner), 0, 2);
  grid->addWidget(new QLabel(QStringLiteral("Линия спектра"), inner), 0, 3);
  int row = 1;
  for (int c = 1; c <= ChannelCount(s_); ++c) {
    if (s_.channels.Channel[c] != 1) continue;
    QString name = QStringLiteral("№%1  %2").arg(c).arg(vocab.SensorTypeList.value(s_.channels.Type[c]));
    if (!s_.channels.Place[c].isEmpty()) name += QStringLiteral(", ") + s_.channels.Place[c];
    grid->addWidget(new QLabel(name, inner), row, 0);
    auto* color = new QPushButton(inner);
    color->setObjectName(QStringLiteral("cmdChannelColor%1").arg(c));
    PaintButton(color, ColorFromWord(s_.channels.ChannelColor[c]));
    connect(color, &QPushButton::clicked, this, [this, color, c] {
      if (const auto chosen = chooser_(color->property("color").value<QColor>(), QStringLiteral("Канал №%1").arg(c)))
        PaintButton(color, *chosen);
    });
    auto spin = [inner](const QString& objectName, int value) {
      auto* box = new QSpinBox(inner);
      box->setObjectName(objectName);
      box->setRange(1, kMaxPenWidth);
      box->setValue(std::clamp(value, 1, kMaxPenWidth));
      return box;
    };
    QSpinBox* sig = spin(QStringLiteral("udLineWidthSignal%1").arg(c), s_.channels.ChannelLineWidthSignal[c]);
    QSpinBox* spe = spin(QStringLiteral("udLineWidthSpectr%1").arg(c), s_.channels.ChannelLineWidthSpectr[c]);
    grid->addWidget(color, row, 1);
    grid->addWidget(sig, row, 2);
    grid->addWidget(spe, row, 3);
    colors_[static_cast<size_t>(c - 1)] = color;
    signalWidths_[static_cast<size_t>(c - 1)] = sig;
    spectrWidths_[static_cast<size_t>(c - 1)] = spe;
    ++row;
  }
  if (row == 1) grid->addWidget(new QLabel(QStringLiteral("Нет каналов в записи"), inner), row++, 0, 1, 4);
  grid->setRowStretch(row, 1);
  area->setWidget(inner);
  area->setWidgetResizable(true);
  area->setMinimumSize(480, std::min(560, 60 + row * 34));
  layout->addWidget(area);
  AddButtons(this, layout, [this] { Apply(); });
}

void LineDialog::Apply() {
  const ChannelSettingKey* color = ChannelRow("ChannelColor");
  const ChannelSettingKey* sig = ChannelRow("ChannelLineWidthSignal");
  const ChannelSettingKey* spe = ChannelRow("ChannelLineWidthSpectr");
  SettingsStore::Batch batch(store_);
  for (int c = 1; c <= kMaxChannels; ++c) {
    if (!colors_[static_cast<size_t>(c - 1)]) continue;
    s_.channels.ChannelColor[c] = WordFromColor(colors_[static_cast<size_t>(c - 1)]->property("color").value<QColor>());
    s_.channels.ChannelLineWidthSignal[c] = signalWidths_[static_cast<size_t>(c - 1)]->value();
    s_.channels.ChannelLineWidthSpectr[c] = spectrWidths_[static_cast<size_t>(c - 1)]->value();
    for (const ChannelSettingKey* k : {color, sig, spe})
      if (k) WriteChannelSettingKey(store_, *k, s_.channels, c);
  }
  if (applied_) applied_();
}

ColorPropertyWindow::ColorPropertyWindow(const AppState& s, const Vocabulary& vocab, QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::WindowStaysOnTopHint), s_(s), vocab_(vocab) {
  setObjectName(QStringLiteral("frmViewColorProperty"));
  setWindowTitle(QStringLiteral("Значения"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(6, 6, 6, 6);
  lblRows_ = new QLabel(this);
  lblRows_->setObjectName(QStringLiteral("lblValues"));
  lblRows_->setTextFormat(Qt::RichText);
  layout->addWidget(lblRows_);
  OutInfoColor({});
}

void ColorPropertyWindow::OutInfoColor(const PerChannel<QString>& values) {
  QString html = QStringLiteral("<table cellspacing=2>");
  for (int c = 1; c <= ChannelCount(s_); ++c) {
    if (s_.channels.Active[c] != 1 || s_.channels.Channel[c] != 1) continue;
    const QColor color = ColorFromWord(s_.channels.ChannelColor[c]);
    const QString value = values[c].isEmpty() ? QStringLiteral("-") : values[c];
    html += QStringLiteral("<tr><td bgcolor='%1'>&nbsp;&nbsp;&nbsp;</td><td>№%2 %3 %4</td>"
                           "<td align=right>&nbsp;<b>%5</b></td></tr>")
                .arg(color.name())
                .arg(c)
                .arg(vocab_.SensorTypeList.value(s_.channels.Type[c]).toHtmlEscaped(),
                     s_.channels.Place[c].toHtmlEscaped(), value.toHtmlEscaped());
  }
  lblRows_->setText(html + QStringLiteral("</table>"));
  adjustSize();
}

QStringList ColorPropertyWindow::rows() const {
  QString plain = lblRows_->text();
  plain.replace(QStringLiteral("</tr>"), QStringLiteral("\n"));
  plain.remove(QRegularExpression(QStringLiteral("<[^>]*>")));
  plain.replace(QStringLiteral("&nbsp;"), QStringLiteral(" "));
  QStringList out;
  for (const QString& line : plain.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) out << line.simplified();
  return out;
}

QStringList AdviceTips() {
  return {
      QStringLiteral("Файл записи можно открыть, перетащив его мышью в окно программы."),
      QStringLiteral("Правая кнопка мыши над окном «Сигнал» открывает его меню: курсор, шкалы, линии отметчика."),
      QStringLiteral("Панели строки состояния окна «Сигнал» — это кнопки: щелчок по «M» меняет масштаб, по «D» — "
                     "шкалу уровня, по «Y0» — положение нулевой линии."),
      QStringLiteral("Выделите участок сигнала левой кнопкой мыши при включенном курсоре — спектр, траектория и "
                     "параметры пересчитаются для выделенного участка."),
      QStringLiteral("Кнопка «Наложение сигналов» на панели каналов позволяет показать несколько каналов сразу."),
      QStringLiteral("Меню «Вид» → «Стиль» открывает готовые наборы окон: сигнал и спектр, форма ротора, параметры."),
      QStringLiteral("Конфигурации («Настройка» → «Конфигурации») хранят все настройки программы — удобно держать "
                     "отдельную конфигурацию для каждого гидроагрегата."),
      QStringLiteral("Окно «Файлы» показывает записи папки с датой, режимом и длительностью; двойной щелчок открывает "
                     "запись."),
      QStringLiteral("Клавиша F1 открывает раздел руководства о том окне, которое сейчас впереди."),
      QStringLiteral("Протокол по всем записям папки создается командой «Отчет» → «Протокол»."),
      QStringLiteral("Ctrl+0 показывает всю запись, Backspace возвращает предыдущий масштаб окна «Сигнал»."),
      QStringLiteral("Цвет и толщину линий каждого канала можно задать в окне «Параметры», вкладка «Цвета»."),
  };
}

AdviceWindow::AdviceWindow(AppState& s, SettingsStore& store, QWidget* parent)
    : QDialog(parent), s_(s), store_(store) {
  setObjectName(QStringLiteral("frmAdvice"));
  setWindowTitle(QStringLiteral("Совет дня"));
  auto* layout = new QVBoxLayout(this);
  auto* head = new QLabel(QStringLiteral("<b>Знаете ли вы, что ...</b>"), this);
  layout->addWidget(head);
  lblTip_ = new QLabel(this);
  lblTip_->setObjectName(QStringLiteral("lblAdvice"));
  lblTip_->setWordWrap(true);
  lblTip_->setMinimumSize(420, 90);
  lblTip_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  lblTip_->setFrameShape(QFrame::StyledPanel);
  lblTip_->setMargin(10);
  layout->addWidget(lblTip_, 1);
  auto* bottom = new QHBoxLayout;
  chkAdvice_ = new QCheckBox(QStringLiteral("Показывать советы при запуске"), this);
  chkAdvice_->setObjectName(QStringLiteral("chkAdvice"));
  chkAdvice_->setChecked(s_.options.config.Advice);
  bottom->addWidget(chkAdvice_, 1);
  auto* next = new QPushButton(QStringLiteral("Следующий совет"), this);
  next->setObjectName(QStringLiteral("cmdNext"));
  auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
  close->setObjectName(QStringLiteral("cmdClose"));
  close->setDefault(true);
  bottom->addWidget(next);
  bottom->addWidget(close);
  layout->addLayout(bottom);
  connect(next, &QPushButton::clicked, this, &AdviceWindow::NextTip);
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  connect(chkAdvice_, &QCheckBox::toggled, this, [this](bool on) {
    s_.options.config.Advice = on;
    if (const SettingKey* k = FindSettingKey(QString::fromLatin1(kSectionConfig), QStringLiteral("Advice")))
      WriteSettingKey(store_, *k, s_);
  });
  NextTip();
}

QString AdviceWindow::tipText() const { return lblTip_->text(); }

void AdviceWindow::NextTip() {
  const QStringList tips = AdviceTips();
  int& n = s_.options.config.AdviceN;
  if (n < 0 || n >= tips.size()) n = 0;
  lblTip_->setText(tips[n]);
  n = (n + 1) % static_cast<int>(tips.size());
  if (const SettingKey* k = FindSettingKey(QString::fromLatin1(kSectionConfig), QStringLiteral("AdviceN")))
    WriteSettingKey(store_, *k, s_);
}

}  // namespace aqx::ui
