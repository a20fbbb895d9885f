#pragma once
// A status bar of keyed panels that double as buttons: each panel shows a
// text in a sunken frame, has its own tooltip and reports clicks with the
// mouse button. Used by the main window and the view windows.

#include "views/parameters/SignalParameters.h"

#include <QWidget>

#include <span>
#include <vector>

namespace aqx::ui {

class PanelBar : public QWidget {
  Q_OBJECT
 public:
  struct Panel {
    QString key;
    QString text;
    QString toolTip;
    bool visible = true;
    bool enabled = true;
    bool stretch = false;  // takes the width the others leave, eliding its text
    int minWidthPx = 0;
    Qt::TextElideMode elide = Qt::ElideRight;
  };

  explicit PanelBar(QWidget* parent = nullptr);

  void setPanels(std::vector<Panel> panels);
  // Empty panels under these keys, the last one taking the spare width: the
  // status bar of a view window before its first texts.
  void setPanelKeys(std::span<const char* const> keys);
  // The parameter bar of a view, a panel per reading.
  void showParameters(const views::ParameterBar& bar);
  const std::vector<Panel>& panels() const { return panels_; }
  // Panels equally wide (the parameter bar), instead of fitting their texts.
  void setEqualWidths(bool equal);

  void setText(const QString& key, const QString& text);
  void setToolTipOf(const QString& key, const QString& toolTip);
  void setVisibleOf(const QString& key, bool visible);
  void setEnabledOf(const QString& key, bool enabled);
  QString text(const QString& key) const;
  bool isPanelVisible(const QString& key) const;
  // Key of the panel under a point, "" if none.
  QString keyAt(const QPoint& pos) const;
  // The geometry the panel of this key has now (empty if hidden).
  QRect panelRect(const QString& key) const;
  // All visible texts, separated by spaces (for copies and tests).
  QString joinedText() const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 signals:
  void panelClicked(const QString& key, Qt::MouseButton button);
  void barClicked(Qt::MouseButton button);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  bool event(QEvent* event) override;

 private:
  std::vector<QRect> layoutPanels() const;
  Panel* find(const QString& key);
  const Panel* find(const QString& key) const;

  std::vector<Panel> panels_;
  bool equalWidths_ = false;
};

}  // namespace aqx::ui
