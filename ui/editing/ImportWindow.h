#pragma once
// frmImport ("Импорт"): a source recording opened beside the open one, its
// channels and the open recording's in two lists; "Импорт" copies the
// chosen source channel into the chosen destination channel.

#include "core/AppState.h"
#include "core/ReaderTable.h"
#include "core/Prompts.h"

#include <QDialog>

#include <functional>
#include <memory>

class QLabel;
class QListWidget;
class QPushButton;

namespace aqx::ui {

class ImportWindow : public QDialog {
  Q_OBJECT
 public:
  ImportWindow(AppState& state, const FileReaderTable& readers, const QStringList& sensorTypeNames, Prompts& prompts,
               std::function<void()> imported, QWidget* parent);
  ~ImportWindow() override;

  void cmdOpen();
  // The source as cmdOpen takes it after the dialog.
  bool openSource(const QString& path);
  void cmdOK();
  QListWidget* sources() const { return lstSource_; }
  QListWidget* destinations() const { return lstDestination_; }

 private:
  void ListBuild();

  AppState& s_;
  const FileReaderTable& readers_;
  QStringList typeNames_;
  Prompts& prompts_;
  std::function<void()> imported_;
  std::unique_ptr<AppState> source_;
  QLabel* lblSource_ = nullptr;
  QListWidget* lstSource_ = nullptr;
  QListWidget* lstDestination_ = nullptr;
  QPushButton* cmdOK_ = nullptr;
};

}  // namespace aqx::ui
