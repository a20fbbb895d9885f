#pragma once
// The measurement commands of the main window: record and channel
// settings, the shaft marker windows, the sensor calibration, the ruler and
// the monitor of a continuous recording. The main window owns one; it turns
// the menu entries of these commands into working ones and keeps their
// enabled state with the rest of the menus.

#include "core/Vocabulary.h"
#include "ui/acquisition/MeasureContext.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

class QAction;
class QDialog;
class QMenu;
class QWidget;

namespace aqx::ui {

class DetectSensorWindow;
class LinekaWindow;
class ServiceOtmetchickWindow;
class SetupChannelsWindow;
class SetupOtmetchickWindow;
class SetupRecWindow;
class StatusFileWindow;

class MeasureCommands : public QObject {
  Q_OBJECT
 public:
  MeasureCommands(MeasureContext ctx, const Vocabulary& vocabulary, QHash<QString, QAction*>& actions, QWidget* frame);
  ~MeasureCommands() override;

  // A command of the service or view menu, added where it stands.
  QAction* addCommand(QMenu* menu, const char* name, const QString& caption);
  // The setup menu's entries of these commands, made by the menu's table:
  // they become working commands.
  void adoptSetupCommands();
  // The enabled state: the setup windows wait while a run is on, the
  // module's tools too, the marker needs a recording.
  void refreshCommands(bool data, bool measuring, bool continuousRun);

  // The commands.
  void onSetupRecord();
  void onSetupChannels();
  void onSetupOtmetchick();
  void onServiceOtm();
  void onServiceDetectSensor();
  void onServiceLineka();
  // mnuViewStatusFile: shows and hides the monitor during a recording.
  void onViewStatusFile();
  // The run's start and stop.
  void showStatusFile(bool show);

  // For tests.
  SetupRecWindow* setupRec() const;
  SetupChannelsWindow* setupChannels() const;
  SetupOtmetchickWindow* setupOtmetchick() const;
  ServiceOtmetchickWindow* serviceOtmetchick() const;
  DetectSensorWindow* detectSensor() const;
  LinekaWindow* lineka() const;
  StatusFileWindow* statusFile() const;

 private:
  void connectCommand(QAction* a);
  template <class Window>
  void showDialog(QPointer<Window>& slot, Window* created);

  MeasureContext ctx_;
  const Vocabulary& vocab_;
  QHash<QString, QAction*>& actions_;
  QWidget* frame_;
  bool recording_ = false;  // a continuous recording runs
  QPointer<SetupRecWindow> setupRec_;
  QPointer<SetupChannelsWindow> setupChannels_;
  QPointer<SetupOtmetchickWindow> setupOtmetchick_;
  QPointer<ServiceOtmetchickWindow> serviceOtmetchick_;
  QPointer<DetectSensorWindow> detectSensor_;
  QPointer<LinekaWindow> lineka_;
  QPointer<StatusFileWindow> statusFile_;
};

}  // namespace aqx::ui
