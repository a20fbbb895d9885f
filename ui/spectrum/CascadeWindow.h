#pragma once
// frmViewSpectrum: the cascade of spectra, with its Plus and Minus buttons,
// the info bar, and the corner of the box moved with the mouse.

#include "ui/main/ViewHost.h"
#include "ui/paint/PaintDrawList.h"
#include "views/ViewRefresh.h"
#include "views/spectrum/CascadeView.h"

#include <QWidget>

class QAction;
class QMenu;
class QToolBar;

namespace aqx::ui {

class PanelBar;
class ViewPicture;

class CascadeWindow : public QWidget {
  Q_OBJECT
 public:
  explicit CascadeWindow(ViewHost& host, QWidget* parent = nullptr);
  ~CascadeWindow() override;

  void installRefresh(views::ViewRegistry& registry);
  // FindSpectrDataMax and BuildCascadeSpectrum outside a refresh.
  void BuildCascadeSpectrum();
  QImage CopyPictureImage();
  void CopyPicture();
  void Plus();
  void Minus();

  const views::CascadeViewState& viewState() const { return v_; }
  const views::DrawList& picture() const;
  QWidget* pictureWidget() const;
  PanelBar* statusBar() const { return statusBar_; }
  QAction* plusAction() const { return plus_; }
  QAction* minusAction() const { return minus_; }

  void pictureMousePress(Qt::MouseButton button, QPointF pos);
  void pictureMouseMove(QPointF pos, bool leftHeld);
  void pictureMouseRelease();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void layoutBars();
  void OutCaption();
  void OutInfoToStatusBar();
  void SaveCordinates();
  void showPicture(views::DrawList&& list);

  ViewHost& host_;
  AppState& s_;
  views::CascadeViewState v_;
  QFont font_;
  QToolBar* toolbar_ = nullptr;
  QAction* plus_ = nullptr;
  QAction* minus_ = nullptr;
  ViewPicture* picture_ = nullptr;
  PanelBar* statusBar_ = nullptr;
  QMenu* menu_ = nullptr;
  double ratioX_ = 0.0;  // the stored corner, placed at the first layout
  double ratioY_ = 0.0;
  bool placed_ = false;
};

}  // namespace aqx::ui
