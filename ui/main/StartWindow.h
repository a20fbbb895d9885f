#pragma once
// frmStart: the splash window shown while the program starts. It asks for
// the start routine once, by its timer or at once on a click.

#include <QWidget>

class QLabel;
class QProgressBar;
class QTimer;

namespace aqx::ui {

class StartWindow : public QWidget {
  Q_OBJECT
 public:
  // picture: StartUpPicture, the picture to show now.
  explicit StartWindow(int picture, int waitMs = 1200, QWidget* parent = nullptr);
  void setProgress(int percent);
  int picture() const { return picture_; }
  QString productText() const;
  QString versionText() const;
  QString stationText() const;

 signals:
  // SpeedLoad: emitted once.
  void speedLoad();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void fire();

  int picture_;
  bool fired_ = false;
  QTimer* timer1_ = nullptr;
  QLabel* lblNameProduct_ = nullptr;
  QLabel* lblVer_ = nullptr;
  QLabel* lblRemark_ = nullptr;
  QLabel* lblPropertyMain_ = nullptr;
  QLabel* lblProperty_ = nullptr;
  QProgressBar* progressBar1_ = nullptr;
};

}  // namespace aqx::ui
