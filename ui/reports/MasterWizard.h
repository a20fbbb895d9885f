#pragma once
// The protocol master: five steps in one window, walked forward and back,
// cancelled at any step. frmReport01Files builds the list of files from a
// file browser, frmReport02SelectFiles puts them in order,
// frmReport03SelectChannels and frmReport04SelectParameters choose and sort
// the channels found in the files and the parameters, frmReport05OK sums
// up. On finish the dialog is accepted and choice() holds the lists.

#include "core/ReaderTable.h"
#include "core/Prompts.h"
#include "reports/ProtocolTable.h"

#include <QDialog>
#include <QStringList>

#include <vector>

class QComboBox;
class QFileSystemModel;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QStackedWidget;
class QTreeView;

namespace aqx::ui {

// A list the user sorts with two buttons; with checks, entries can be left
// out.
class OrderedList : public QWidget {
  Q_OBJECT
 public:
  OrderedList(const QString& objectName, QWidget* parent);
  // New entries; `keepOrder` keeps the order and checks of entries that
  // were there before (matched by text), new ones go at the end.
  void setEntries(const QStringList& texts, bool checkable, bool keepOrder);
  // The original index of each checked entry (each entry without checks),
  // in the order shown.
  std::vector<int> chosen() const;
  QListWidget* list() const { return list_; }
  void move(int row, int delta);
  void setAllChecked(bool checked);

 private:
  QListWidget* list_ = nullptr;
};

class MasterWizard : public QDialog {
  Q_OBJECT
 public:
  static constexpr int kStepCount = 5;

  MasterWizard(Prompts& prompts, const FileReaderTable& readers, const QString& startFolder, QWidget* parent);

  int step() const { return step_; }
  // To the next step; false, with the step's message, when it cannot go on.
  bool next();
  void back();
  // What the finish hands over.
  reports::MasterChoice choice() const;

  // Step 1: files (a folder adds its files of the filter's pattern).
  void addPaths(const QStringList& paths);
  void removeSelectedFiles();
  QStringList files() const;

  // Parts, for the program's own use and for tests.
  QPushButton* nextButton() const { return cmdNext_; }
  QPushButton* backButton() const { return cmdBack_; }
  QPushButton* cancelButton() const { return cmdCancel_; }
  OrderedList* fileOrder() const { return fileOrder_; }
  OrderedList* channelList() const { return channels_; }
  OrderedList* parameterList() const { return parameters_; }
  QString summaryText() const;
  QComboBox* filterBox() const { return cmbFilter_; }

 private:
  QWidget* buildFilesStep();
  QWidget* buildOrderStep(const char* objectName, const QString& text, OrderedList*& list);
  void showStep(int step);
  void addSelectedPaths();
  QString currentPattern() const;
  // The browser shows the files of a folder.
  void setFolder(const QString& folder);

  Prompts& prompts_;
  const FileReaderTable& readers_;
  int step_ = 1;
  QStackedWidget* pages_ = nullptr;
  QFileSystemModel* model_ = nullptr;
  QTreeView* tree_ = nullptr;
  QLineEdit* txtFolder_ = nullptr;
  QComboBox* cmbFilter_ = nullptr;
  QListWidget* lstFiles_ = nullptr;
  OrderedList* fileOrder_ = nullptr;
  OrderedList* channels_ = nullptr;
  OrderedList* parameters_ = nullptr;
  QPlainTextEdit* txtSummary_ = nullptr;
  QPushButton* cmdBack_ = nullptr;
  QPushButton* cmdNext_ = nullptr;
  QPushButton* cmdCancel_ = nullptr;
  // The channels step reads the files once for a list of them.
  QStringList channelFiles_;
  std::vector<reports::MasterChannel> foundChannels_;
};

}  // namespace aqx::ui
