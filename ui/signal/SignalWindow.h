#pragma once
// frmViewSignal: the time-signal view. Paints what the view logic draws and
// hands every mouse, keyboard, scroll-bar, slider and status-panel event to
// the view's interaction rules, then does what they ask.

#include "ui/paint/PaintDrawList.h"
#include "ui/main/ViewHost.h"
#include "views/ViewRefresh.h"
#include "views/parameters/SignalParameters.h"

#include <QElapsedTimer>
#include <QImage>
#include <QWidget>

#include <functional>
#include <memory>

class QScrollBar;
class QSlider;

namespace aqx::ui {

class PanelBar;
class SignalPicture;

class SignalWindow : public QWidget {
  Q_OBJECT
 public:
  explicit SignalWindow(ViewHost& host, QWidget* parent = nullptr);
  ~SignalWindow() override;

  // Fills the signal view's steps of ViewRefresh; valid while the window lives.
  void installRefresh(views::ViewRegistry& registry);
  bool parameterBarTicked() const { return s_.options.signal.StatusBarParameter; }
  // Redraw and parameter bar outside a refresh.
  void BuildSignal();
  void OutStatusBarParameter();
  // OpenFile: a new recording resets the sample window.
  void ResetValueElements();
  // A continuous run: the stretch ends at the newest row (startRows > 0:
  // at the widest zoom of at most that many rows first).
  void FollowNewestRow(int newestRow, int startRows);
  // The current channel changed: controls follow it.
  void RefreshElementsImposition();
  // Options changed outside (menu): relayout and redraw.
  void optionsChanged();
  // Menu commands of mnuSignal that the view handles.
  void SetTypeCursor(views::SignalCursor entry);
  void SignalLineCenter();
  void SignalBeginPoint();
  // The zoom before the last one, and the whole record.
  void ZoomBack();
  void ShowAll();

  // The picture with its text header, as it goes to the clipboard.
  QImage CopyPictureImage();
  void CopyPicture();

  // frmViewColorProperty: while open, cursor moves fill its values and
  // call colorPropertyChanged.
  void setColorPropertyOpen(bool open) { v_.ColorPropertyOpen = open; }
  std::function<void()> colorPropertyChanged;

  // For tests and the window's owner.
  const views::SignalViewState& viewState() const { return v_; }
  const views::DrawList& picture() const;
  QWidget* pictureWidget() const;
  PanelBar* statusBar() const { return statusBar_; }
  PanelBar* parameterBar() const { return parameterBar_; }
  QSlider* sliderH() const { return sliderH_; }
  QSlider* sliderV() const { return sliderV_; }
  QScrollBar* hScroll() const { return hScroll_; }
  QScrollBar* vScroll() const { return vScroll_; }

  // Picture events, in picture pixels.
  void pictureMousePress(Qt::MouseButton button, QPointF pos, bool zoomBox = false);
  void pictureMouseMove(QPointF pos, bool leftHeld);
  void pictureMouseRelease();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void apply(const views::SignalAction& a);
  void layoutBars();
  void syncControls();
  void outInfoToStatusBar();
  void showPicture(views::DrawList&& list);
  void showStatus(const views::SignalStatus& st);
  void showParameterBar(const views::ParameterBar& bar);
  void updateCrosshair();
  void refreshOptions();
  void saveOptions();
  void onHScroll(int value, bool finished);
  void onSliderH(int value, bool scrolling);
  void statusPanelClicked(const QString& key, Qt::MouseButton button);

  ViewHost& host_;
  AppState& s_;
  views::SignalViewState v_;
  QFont font_;
  std::unique_ptr<QtFontMetrics> metrics_;
  SignalPicture* picture_ = nullptr;
  QSlider* sliderH_ = nullptr;
  QSlider* sliderV_ = nullptr;
  QScrollBar* hScroll_ = nullptr;
  QScrollBar* vScroll_ = nullptr;
  PanelBar* statusBar_ = nullptr;
  PanelBar* parameterBar_ = nullptr;
  bool syncing_ = false;
  bool initialised_ = false;
  // During a run: since the parameter bar was last computed.
  QElapsedTimer parameterBarAge_;
};

}  // namespace aqx::ui
