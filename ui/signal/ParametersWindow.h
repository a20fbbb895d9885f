#pragma once
// frmViewParameters: the main reading of the active channel in large type.

#include "ui/main/ViewHost.h"

#include <QWidget>

namespace aqx::ui {

class ParametersWindow : public QWidget {
  Q_OBJECT
 public:
  explicit ParametersWindow(ViewHost& host, QWidget* parent = nullptr);
  ~ParametersWindow() override;
  // Recomputes the line and redraws.
  void OutData();
  QString line() const { return line_; }
  const views::DrawList& picture() const { return list_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  ViewHost& host_;
  QFont font_;
  QString line_;
  views::DrawList list_;
};

}  // namespace aqx::ui
