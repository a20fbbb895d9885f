#pragma once
// frmViewTraectoria: the shaft's path in the bearing plane. Paints what the
// view logic draws, mirrors its sliders and bars, and hands every event to
// the view's rules.

#include "ui/main/ViewHost.h"
#include "ui/paint/PaintDrawList.h"
#include "views/ViewRefresh.h"
#include "views/trajectory/TraectoriaView.h"

#include <QImage>
#include <QWidget>

#include <functional>
#include <memory>

class QProgressBar;
class QScrollBar;
class QSlider;

namespace aqx::ui {

class PanelBar;
class PictureWidget;

class TraectoriaWindow : public QWidget {
  Q_OBJECT
 public:
  // popup shows mnuTraectoria at a screen point.
  TraectoriaWindow(ViewHost& host, std::function<void(QPoint)> popup, QWidget* parent = nullptr);
  ~TraectoriaWindow() override;

  void installRefresh(views::ViewRegistry& registry);
  // Public operations.
  void BuildTraectoria();
  void LayoutForSize();
  void OutInfoToStatusBar();
  void SetTypeMouseCursor();
  QImage CopyPictureImage() const;
  void CopyPicture();
  // A Traectoria option changed in the menu.
  void optionsChanged();

  // For tests and the owner.
  const views::TraectoriaViewState& viewState() const { return v_; }
  const views::DrawList& picture() const;
  PictureWidget* pictureWidget() const { return picture_; }
  PanelBar* statusBar() const { return statusBar_; }
  QSlider* sliderV() const { return sliderV_; }
  QScrollBar* flatScrollBar(bool horizontal) const { return horizontal ? flatH_ : flatV_; }
  QScrollBar* hScroll(bool left) const { return left ? hScrollL_ : hScrollR_; }
  // The double click's drawing sample by sample.
  void slowDraw();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void apply(const views::TraectoriaAction& a);
  void show(views::DrawList&& list);
  void showStatus(const views::TraectoriaStatus& st);
  void syncControls();
  void updateCrosshair();

  ViewHost& host_;
  AppState& s_;
  std::function<void(QPoint)> popup_;
  views::TraectoriaViewState v_;
  QFont font_;
  std::unique_ptr<QtFontMetrics> metrics_;
  PictureWidget* picture_ = nullptr;
  QSlider* sliderV_ = nullptr;
  QScrollBar* flatH_ = nullptr;
  QScrollBar* flatV_ = nullptr;
  QScrollBar* hScrollL_ = nullptr;
  QScrollBar* hScrollR_ = nullptr;
  QProgressBar* progress_ = nullptr;
  PanelBar* statusBar_ = nullptr;
  bool syncing_ = false;
};

}  // namespace aqx::ui
