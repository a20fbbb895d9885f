#include "ui/common/PanelBar.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QToolTip>

namespace aqx::ui {

namespace {
constexpr int kPaddingPx = 6;
constexpr int kGapPx = 2;
}  // namespace

PanelBar::PanelBar(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setMouseTracking(true);
}

void PanelBar::setPanelKeys(std::span<const char* const> keys) {
  std::vector<Panel> panels;
  for (const char* key : keys) panels.push_back({QString::fromLatin1(key), {}, {}});
  if (!panels.empty()) panels.back().stretch = true;
  setPanels(std::move(panels));
}

void PanelBar::showParameters(const views::ParameterBar& bar) {
  std::vector<Panel> panels;
  for (const views::ParameterPanel& p : bar.panels) panels.push_back({QString::number(panels.size()), p.text, p.toolTip});
  setPanels(std::move(panels));
}

void PanelBar::setPanels(std::vector<Panel> panels) {
  panels_ = std::move(panels);
  updateGeometry();
  update();
}

void PanelBar::setEqualWidths(bool equal) {
  equalWidths_ = equal;
  update();
}

PanelBar::Panel* PanelBar::find(const QString& key) {
  for (Panel& p : panels_)
    if (p.key == key) return &p;
  return nullptr;
}

const PanelBar::Panel* PanelBar::find(const QString& key) const {
  for (const Panel& p : panels_)
    if (p.key == key) return &p;
  return nullptr;
}

void PanelBar::setText(const QString& key, const QString& text) {
  if (Panel* p = find(key); p && p->text != text) {
    p->text = text;
    update();
  }
}

void PanelBar::setToolTipOf(const QString& key, const QString& toolTip) {
  if (Panel* p = find(key)) p->toolTip = toolTip;
}

void PanelBar::setVisibleOf(const QString& key, bool visible) {
  if (Panel* p = find(key); p && p->visible != visible) {
    p->visible = visible;
    update();
  }
}

void PanelBar::setEnabledOf(const QString& key, bool enabled) {
  if (Panel* p = find(key); p && p->enabled != enabled) {
    p->enabled = enabled;
    update();
  }
}

QString PanelBar::text(const QString& key) const {
  const Panel* p = find(key);
  return p ? p->text : QString();
}

bool PanelBar::isPanelVisible(const QString& key) const {
  const Panel* p = find(key);
  return p && p->visible;
}

QString PanelBar::joinedText() const {
  QStringList parts;
  for (const Panel& p : panels_)
    if (p.visible && !p.text.trimmed().isEmpty()) parts << p.text.trimmed();
  return parts.join(QLatin1Char(' '));
}

std::vector<QRect> PanelBar::layoutPanels() const {
  std::vector<QRect> rects(panels_.size());
  const QFontMetrics fm = fontMetrics();
  int visibleCount = 0;
  for (const Panel& p : panels_) visibleCount += p.visible ? 1 : 0;
  if (visibleCount == 0) return rects;
  const int h = height() - 2;
  if (equalWidths_) {
    const int w = (width() - kGapPx * (visibleCount - 1)) / visibleCount;
    int x = 0;
    for (size_t i = 0; i < panels_.size(); ++i) {
      if (!panels_[i].visible) continue;
      rects[i] = QRect(x, 1, std::max(1, w), h);
      x += w + kGapPx;
    }
    return rects;
  }
  std::vector<int> widths(panels_.size(), 0);
  int fixed = 0, stretchCount = 0;
  for (size_t i = 0; i < panels_.size(); ++i) {
    if (!panels_[i].visible) continue;
    if (panels_[i].stretch) {
      widths[i] = panels_[i].minWidthPx;
      ++stretchCount;
    } else {
      widths[i] = std::max(panels_[i].minWidthPx, fm.horizontalAdvance(panels_[i].text) + 2 * kPaddingPx);
      fixed += widths[i];
    }
  }
  const int spare = width() - fixed - kGapPx * (visibleCount - 1);
  int x = 0;
  for (size_t i = 0; i < panels_.size(); ++i) {
    if (!panels_[i].visible) continue;
    int w = widths[i];
    if (panels_[i].stretch) w = std::max(w, spare / std::max(1, stretchCount));
    rects[i] = QRect(x, 1, w, h);
    x += w + kGapPx;
  }
  return rects;
}

QString PanelBar::keyAt(const QPoint& pos) const {
  const std::vector<QRect> rects = layoutPanels();
  for (size_t i = 0; i < panels_.size(); ++i)
    if (panels_[i].visible && rects[i].contains(pos)) return panels_[i].key;
  return {};
}

QRect PanelBar::panelRect(const QString& key) const {
  const std::vector<QRect> rects = layoutPanels();
  for (size_t i = 0; i < panels_.size(); ++i)
    if (panels_[i].visible && panels_[i].key == key) return rects[i];
  return {};
}

QSize PanelBar::sizeHint() const { return {200, fontMetrics().height() + 8}; }
QSize PanelBar::minimumSizeHint() const { return {20, fontMetrics().height() + 8}; }

void PanelBar::paintEvent(QPaintEvent*) {
  QPainter p(this);
  const std::vector<QRect> rects = layoutPanels();
  const QPalette pal = palette();
  p.fillRect(rect(), pal.window());
  for (size_t i = 0; i < panels_.size(); ++i) {
    const Panel& panel = panels_[i];
    if (!panel.visible) continue;
    const QRect r = rects[i].intersected(rect());
    if (r.isEmpty()) continue;
    p.setPen(pal.color(QPalette::Mid));
    p.drawLine(r.topLeft(), r.topRight());
    p.drawLine(r.topLeft(), r.bottomLeft());
    p.setPen(pal.color(QPalette::Light));
    p.drawLine(r.bottomLeft(), r.bottomRight());
    p.drawLine(r.topRight(), r.bottomRight());
    p.setPen(pal.color(panel.enabled ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    const QRect textRect = r.adjusted(kPaddingPx, 0, -kPaddingPx / 2, 0);
    p.drawText(textRect, Qt::AlignVCenter | Qt::AlignLeft,
               fontMetrics().elidedText(panel.text, panel.elide, textRect.width()));
  }
}

void PanelBar::mousePressEvent(QMouseEvent* event) {
  const QString key = keyAt(event->position().toPoint());
  emit barClicked(event->button());
  if (key.isEmpty()) return;
  if (const Panel* p = find(key); p && p->enabled) emit panelClicked(key, event->button());
}

bool PanelBar::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    auto* help = static_cast<QHelpEvent*>(event);
    const Panel* p = find(keyAt(help->pos()));
    if (p && !p->toolTip.isEmpty()) {
      QToolTip::showText(help->globalPos(), p->toolTip, this, panelRect(p->key));
    } else {
      QToolTip::hideText();
      event->ignore();
    }
    return true;
  }
  return QWidget::event(event);
}

}  // namespace aqx::ui
