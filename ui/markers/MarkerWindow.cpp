#include "ui/markers/MarkerWindow.h"

#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "core/Numeric.h"
#include "views/edit/MarkerList.h"

#include <QColorDialog>
#include <QDateTime>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace aqx::ui {

namespace {

QColor FromBgr(int32_t bgr) { return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }
int32_t ToBgr(const QColor& c) { return c.red() | (c.green() << 8) | (c.blue() << 16); }

const QString kPlace[] = {QStringLiteral("ViewMarkerX"), QStringLiteral("ViewMarkerY"), QStringLiteral("ViewMarkerW"),
                          QStringLiteral("ViewMarkerH")};

}  // namespace

MarkerWindow::MarkerWindow(AppState& state, SettingsStore& store, Prompts& prompts, std::function<void()> redrawSignal,
                           QWidget* parent)
    : QDialog(parent), s_(state), store_(store), prompts_(prompts), redrawSignal_(std::move(redrawSignal)) {
  setObjectName(QStringLiteral("frmViewMarker"));
  setWindowTitle(QStringLiteral("Маркеры"));
  setAttribute(Qt::WA_DeleteOnClose);
  chooseColor = [this](const QColor& current) -> std::optional<QColor> {
    const QColor c = QColorDialog::getColor(current, this, QStringLiteral("Цвет маркера"));
    if (!c.isValid()) return std::nullopt;
    return c;
  };
  grid_ = new QTableWidget(0, 5, this);
  grid_->setObjectName(QStringLiteral("MSFlexGrid1"));
  grid_->setHorizontalHeaderLabels({QStringLiteral("№"), QStringLiteral("Время"), QStringLiteral("Описание"),
                                    QStringLiteral("Вид"), QStringLiteral("Сдвиг")});
  grid_->verticalHeader()->setVisible(false);
  grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grid_->setSelectionMode(QAbstractItemView::SingleSelection);
  grid_->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
  grid_->setToolTip(QStringLiteral("Двойной щелчок: №: цвет, Описание: текст, Вид: показать или скрыть, Сдвиг: строк вниз"));
  connect(grid_, &QTableWidget::cellDoubleClicked, this, &MarkerWindow::cellDoubleClicked);
  auto button = [this](const char* name, const QString& caption, void (MarkerWindow::*slot)()) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(QString::fromLatin1(name));
    b->setAutoDefault(false);
    connect(b, &QPushButton::clicked, this, slot);
    return b;
  };
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(button("cmdAdd", QStringLiteral("Добавить"), &MarkerWindow::cmdAdd));
  buttons->addWidget(button("cmdDelete", QStringLiteral("Удалить"), &MarkerWindow::cmdDelete));
  buttons->addWidget(button("cmdClear", QStringLiteral("Очистить"), &MarkerWindow::cmdClear));
  buttons->addStretch(1);
  auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
  close->setObjectName(QStringLiteral("cmdClose"));
  close->setAutoDefault(false);
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(grid_);
  layout->addLayout(buttons);
  resize(560, 320);
  const QString section = QLatin1String(kSectionConfig);
  const int x = ReadWindowSetting(store_, section, kPlace[0], -1), y = ReadWindowSetting(store_, section, kPlace[1], -1);
  const int w = ReadWindowSetting(store_, section, kPlace[2], -1), h = ReadWindowSetting(store_, section, kPlace[3], -1);
  if (w > 100 && h > 100) resize(w, h);
  if (x >= 0 && y >= 0) move(x, y);
  SetDataFlexGrid();
}

MarkerWindow::~MarkerWindow() {
  const QString section = QLatin1String(kSectionConfig);
  const int values[] = {x(), y(), width(), height()};
  for (int k = 0; k < 4; ++k) SaveWindowSetting(store_, section, kPlace[k], values[k]);
}

void MarkerWindow::SetDataFlexGrid() {
  const int count = std::clamp(s_.markers.MarkerN, 0, kMaxMarkers);
  grid_->setRowCount(count);
  for (int r = 0; r < count; ++r) {
    const QStringList cells = views::MarkerRow(s_, r);
    for (int c = 0; c < cells.size(); ++c) {
      auto* item = new QTableWidgetItem(cells[c]);
      if (c == 0) {
        const QColor color = FromBgr(s_.markers.MarkerColor[static_cast<size_t>(r)]);
        item->setBackground(color);
        item->setForeground(color.lightness() < 128 ? Qt::white : Qt::black);
      }
      grid_->setItem(r, c, item);
    }
  }
  grid_->resizeColumnToContents(0);
  grid_->resizeColumnToContents(1);
}

void MarkerWindow::changed() {
  SetDataFlexGrid();
  SaveMarker(store_, s_);
  if (redrawSignal_) redrawSignal_();
}

void MarkerWindow::cmdAdd() {
  if (!views::AddMarker(s_, DateTimeToOle(QDateTime::currentDateTime()), prompts_)) return;
  changed();
  grid_->selectRow(s_.markers.MarkerN - 1);
}

void MarkerWindow::cmdDelete() {
  const int row = grid_->currentRow();
  if (views::DeleteMarker(s_, row, prompts_)) changed();
}

void MarkerWindow::cmdClear() {
  if (views::ClearMarkers(s_, prompts_)) changed();
}

void MarkerWindow::cellDoubleClicked(int row, int column) {
  if (row < 0 || row >= s_.markers.MarkerN) return;
  const auto i = static_cast<size_t>(row);
  const QString title = QStringLiteral("Маркер");
  switch (column) {
    case 0: {
      const std::optional<QColor> c = chooseColor(FromBgr(s_.markers.MarkerColor[i]));
      if (!c) return;
      s_.markers.MarkerColor[i] = ToBgr(*c);
      break;
    }
    case 2: {
      const std::optional<QString> text = prompts_.input(
          QStringLiteral("Введите описание маркера\r\n(не более 50 символов)"), title, s_.markers.MarkerRemark[i]);
      if (!text) return;
      views::SetMarkerRemark(s_, row, *text);
      break;
    }
    case 3: views::ToggleMarker(s_, row); break;
    case 4: {
      const std::optional<QString> text = prompts_.input(
          QStringLiteral("Введите величину вертикального сдвига текста маркера"), title,
          QString::number(s_.markers.MarkerShift[i]));
      if (!text) return;
      if (!views::SetMarkerShift(s_, row, *text)) {
        prompts_.tell(QStringLiteral("Сдвиг текста маркера задаётся целым числом строк."), title,
                      PromptIcon::Exclamation);
        return;
      }
      break;
    }
    default: return;  // the stamp stays as it was taken
  }
  changed();
  grid_->selectRow(row);
}

}  // namespace aqx::ui
