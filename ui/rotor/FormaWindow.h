#pragma once
// frmViewFormaRotor, frmViewFormaRotorDiagram and frmViewFormaRotorSpectr:
// one window class for the three readings of the rotor form. Each has its
// picture, the form bar HScroll, the range bar VScroll (not the spectrum)
// and the status panels "Form", "PrPi", "NobForm".

#include "ui/main/ViewHost.h"
#include "ui/paint/PaintDrawList.h"
#include "views/rotor/RotorView.h"

#include <QImage>
#include <QWidget>

#include <functional>
#include <memory>

class QScrollBar;

namespace aqx::ui {

class PanelBar;
class PictureWidget;

enum class FormaKind { Rotor, Diagram, Spectr };

class FormaWindow : public QWidget {
  Q_OBJECT
 public:
  // popup shows the window's menu at a screen point.
  FormaWindow(ViewHost& host, FormaKind kind, std::function<void(QPoint)> popup, QWidget* parent = nullptr);
  ~FormaWindow() override;

  // Public operations.
  void InitData();
  void PrintToStatusbar();
  void Build();
  QImage CopyPictureImage() const;
  void CopyPicture();

  FormaKind kind() const { return kind_; }
  static ViewWindow windowOf(FormaKind kind);
  const views::FormaViewState& viewState() const { return v_; }
  const views::DrawList& picture() const;
  PanelBar* statusBar() const { return statusBar_; }
  QScrollBar* hScroll() const { return hScroll_; }
  QScrollBar* vScroll() const { return vScroll_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void layoutBars();
  void syncControls();
  QStringList copyHeader() const;

  ViewHost& host_;
  AppState& s_;
  FormaKind kind_;
  std::function<void(QPoint)> popup_;
  views::FormaViewState v_;
  QFont font_;
  std::unique_ptr<QtFontMetrics> metrics_;
  PictureWidget* picture_ = nullptr;
  QScrollBar* hScroll_ = nullptr;
  QScrollBar* vScroll_ = nullptr;
  PanelBar* statusBar_ = nullptr;
  bool syncing_ = false;
};

}  // namespace aqx::ui
