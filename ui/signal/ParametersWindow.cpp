#include "ui/signal/ParametersWindow.h"

#include "ui/paint/PaintDrawList.h"
#include "views/parameters/ParameterSteps.h"

#include <QPainter>

namespace aqx::ui {

ParametersWindow::ParametersWindow(ViewHost& host, QWidget* parent) : QWidget(parent), host_(host) {
  setObjectName(QStringLiteral("frmViewParameters"));
  setWindowTitle(QStringLiteral("Параметры"));
  setMinimumSize(160, 80);
  setAttribute(Qt::WA_OpaquePaintEvent);
  // "Arial Cyr" where it exists; any sans face with Cyrillic letters will do.
  font_ = QFont(QStringLiteral("Arial Cyr"));
  font_.setStyleHint(QFont::SansSerif);
  font_.setFamilies({QStringLiteral("Arial Cyr"), QStringLiteral("Arial"), QStringLiteral("DejaVu Sans")});
  font_.setPointSize(10);
}

ParametersWindow::~ParametersWindow() = default;

void ParametersWindow::OutData() {
  AppState& s = host_.state();
  line_ = views::OutDataParameters(s, host_.analysis());
  // Measured as drawn: in bold.
  QFont measured = font_;
  measured.setBold(true);
  const QtFontMetrics metrics(measured);
  // The line's size is chosen in the unit of the text's point size: the
  // measured width belongs to the font at its own point size.
  views::FontMetrics inPoints = metrics.metrics();
  inPoints.lineHeight = std::max(1, font_.pointSize());
  list_ = views::BuildParameterTable(line_, width(), height(), views::ViewBackground(s), s.options.color.ColorText, inPoints);
  update();
}

void ParametersWindow::paintEvent(QPaintEvent*) {
  QPainter p(this);
  if (list_.width != width() || list_.height != height()) p.fillRect(rect(), Qt::white);
  PaintDrawList(p, list_, font_);
}

void ParametersWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  OutData();
}

}  // namespace aqx::ui
