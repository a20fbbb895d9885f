#pragma once
// frmWait: the window that stands over a long report while it reads the
// files of a folder, with the text of the command, the files done and a
// cancel button. It pumps the event queue itself, and being modal it lets
// only its own button through.

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;

namespace aqx::ui {

class WaitWindow : public QDialog {
  Q_OBJECT
 public:
  explicit WaitWindow(QWidget* parent);

  // The progress callback of a report: shows the window at the first call,
  // moves the bar, lets pending events run; false once cancel was pressed.
  bool progress(int filesDone, int fileCount);
  // Before a command: the text and a fresh cancel flag.
  void start(const QString& text);
  // After the command, however it ended.
  void finish();
  bool cancelled() const { return cancelled_; }
  QPushButton* cancelButton() const { return cmdCancel_; }
  QString countText() const;

 signals:
  // After the window took a step, before the next file is read.
  void progressed(int filesDone, int fileCount);

 protected:
  void reject() override;

 private:
  QLabel* lblText_ = nullptr;
  QLabel* lblCount_ = nullptr;
  QProgressBar* bar_ = nullptr;
  QPushButton* cmdCancel_ = nullptr;
  bool cancelled_ = false;
};

}  // namespace aqx::ui
