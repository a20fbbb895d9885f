#pragma once
// frmViewFiles ("Файлы"): the recordings of a folder with their date,
// station, mode, length and channels read from the headers in a thread of
// its own, the list filling as they come; a double click (or Enter) hands
// the file to OpenFile. frmViewFileProperty: the open recording's
// properties, kept up to date by ViewRefresh.

#include "core/AppState.h"
#include "core/Vocabulary.h"
#include "ui/files/RecordingSummary.h"

#include <QDialog>
#include <QWidget>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

class QFileSystemModel;
class QLabel;
class QLineEdit;
class QTreeView;
class QTreeWidget;
class QTableWidget;

namespace aqx::ui {

class FilesWindow : public QWidget {
  Q_OBJECT
 public:
  // open: OpenFile with the unsaved check; true when the file was loaded.
  FilesWindow(const QString& folder, std::function<bool(const QString&)> open, QWidget* parent = nullptr);
  ~FilesWindow() override;

  // Lists the recordings of a folder; their headers are read in the background.
  void setFolder(const QString& folder);
  QString folder() const { return folder_; }
  // Opens the recording of a row.
  bool openRow(int row);
  // True while headers are still being read.
  bool reading() const;
  int rowCount() const;
  QTreeWidget* list() const { return lstFiles_; }

 signals:
  void readingFinished();

 private:
  void stopReading();
  void addSummaries(int generation, const std::vector<RecordingSummary>& batch);

  std::function<bool(const QString&)> open_;
  QString folder_;
  QLineEdit* txtFolder_ = nullptr;
  QTreeView* folders_ = nullptr;
  QFileSystemModel* model_ = nullptr;
  QTreeWidget* lstFiles_ = nullptr;
  QLabel* lblStatus_ = nullptr;
  int expected_ = 0;
  int received_ = 0;
  int damaged_ = 0;
  int generation_ = 0;
  std::jthread worker_;
};

class FilePropertyWindow : public QDialog {
  Q_OBJECT
 public:
  FilePropertyWindow(const AppState& s, const Vocabulary& vocab, QWidget* parent = nullptr);
  // The rows again from the state.
  void OutData();
  QTableWidget* table() const { return table_; }

 private:
  const AppState& s_;
  const Vocabulary& vocab_;
  QTableWidget* table_ = nullptr;
};

}  // namespace aqx::ui
