#pragma once
// frmViewSpectr: the spectrum view. Paints what the view logic draws, keeps
// its popup menu mnuSpectr, and hands mouse and panel events to the view's
// rules.

#include "core/Prompts.h"
#include "ui/main/ViewHost.h"
#include "ui/paint/PaintDrawList.h"
#include "views/ViewRefresh.h"
#include "views/spectrum/SpectrumView.h"

#include <QHash>
#include <QImage>
#include <QWidget>

#include <functional>
#include <memory>

class QAction;
class QMenu;

namespace aqx::ui {

class PanelBar;
class ViewPicture;

class SpectrWindow : public QWidget {
  Q_OBJECT
 public:
  // openAnalyserSettings: the BlockSizeFFT panel's window.
  SpectrWindow(ViewHost& host, Prompts& prompts, std::function<void()> openAnalyserSettings,
               QWidget* parent = nullptr);
  ~SpectrWindow() override;

  void installRefresh(views::ViewRegistry& registry);
  bool parameterBarTicked() const { return s_.options.spectr.StatusBarParameter; }
  // Redraw from the spectrum in the arrays (no engine call).
  void BuildSpectr();
  void OutStatusBarParameter();
  QImage CopyPictureImage();
  void CopyPicture();
  // Beyond the old window: the lines as tab-separated text and as a CSV file.
  void CopyLines();
  void SaveLinesCsv();

  const views::SpectrViewState& viewState() const { return v_; }
  const views::DrawList& picture() const;
  QWidget* pictureWidget() const;
  PanelBar* statusBar() const { return statusBar_; }
  PanelBar* parameterBar() const { return parameterBar_; }
  QMenu* popupMenu() const { return menu_; }
  QAction* action(const QString& name) const { return actions_.value(name); }

  void pictureMousePress(Qt::MouseButton button);
  void pictureMouseMove(QPointF pos);
  void pictureLeave();
  void panelClicked(const QString& key, Qt::MouseButton button);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void buildMenu();
  void refreshMenuChecks();
  void apply(const views::SpectrAction& a);
  void layoutBars();
  void showPicture(views::DrawList&& list);
  void showStatus(const views::SpectrStatus& st);
  void showParameterBar(const views::ParameterBar& bar);
  void updateCrosshair();

  ViewHost& host_;
  AppState& s_;
  Prompts& prompts_;
  std::function<void()> openAnalyserSettings_;
  views::SpectrViewState v_;
  QFont font_;
  std::unique_ptr<QtFontMetrics> metrics_;
  ViewPicture* picture_ = nullptr;
  PanelBar* statusBar_ = nullptr;
  PanelBar* parameterBar_ = nullptr;
  QMenu* menu_ = nullptr;
  QHash<QString, QAction*> actions_;
  bool shown_ = false;
};

}  // namespace aqx::ui
