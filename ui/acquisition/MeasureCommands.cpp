#include "ui/acquisition/MeasureCommands.h"

#include "ui/acquisition/CalibrationWindows.h"
#include "ui/acquisition/SetupChannelsWindow.h"
#include "ui/acquisition/SetupRecWindow.h"
#include "ui/acquisition/ShaftMarkerWindows.h"
#include "ui/acquisition/StatusFileWindow.h"

#include <QAction>
#include <QMenu>

#include <algorithm>
#include <array>
#include <cstring>

namespace aqx::ui {

namespace {

using Command = void (MeasureCommands::*)();

struct CommandEntry {
  const char* name;
  Command command;
};

constexpr std::array<CommandEntry, 7> kCommands{{
    {"mnuSetupRecord", &MeasureCommands::onSetupRecord},
    {"mnuSetupChannels", &MeasureCommands::onSetupChannels},
    {"mnuSetupOtmetchick", &MeasureCommands::onSetupOtmetchick},
    {"mnuServiceOtm", &MeasureCommands::onServiceOtm},
    {"mnuServiceDetectSensor", &MeasureCommands::onServiceDetectSensor},
    {"mnuServiceLineka", &MeasureCommands::onServiceLineka},
    {"mnuViewStatusFile", &MeasureCommands::onViewStatusFile},
}};

}  // namespace

MeasureCommands::MeasureCommands(MeasureContext ctx, const Vocabulary& vocabulary, QHash<QString, QAction*>& actions,
                                 QWidget* frame)
    : QObject(frame), ctx_(std::move(ctx)), vocab_(vocabulary), actions_(actions), frame_(frame) {}

MeasureCommands::~MeasureCommands() {
  // Their settings go to the store while it is still there.
  delete statusFile_.data();
  delete lineka_.data();
  delete detectSensor_.data();
}

SetupRecWindow* MeasureCommands::setupRec() const { return setupRec_; }
SetupChannelsWindow* MeasureCommands::setupChannels() const { return setupChannels_; }
SetupOtmetchickWindow* MeasureCommands::setupOtmetchick() const { return setupOtmetchick_; }
ServiceOtmetchickWindow* MeasureCommands::serviceOtmetchick() const { return serviceOtmetchick_; }
DetectSensorWindow* MeasureCommands::detectSensor() const { return detectSensor_; }
LinekaWindow* MeasureCommands::lineka() const { return lineka_; }
StatusFileWindow* MeasureCommands::statusFile() const { return statusFile_; }

void MeasureCommands::connectCommand(QAction* a) {
  const QByteArray name = a->objectName().toLatin1();
  const auto it = std::find_if(kCommands.begin(), kCommands.end(),
                               [&](const CommandEntry& e) { return std::strcmp(e.name, name.constData()) == 0; });
  if (it == kCommands.end()) return;
  const Command command = it->command;
  a->setProperty("later", QVariant());
  a->setToolTip(a->text());
  a->setEnabled(true);
  connect(a, &QAction::triggered, this, [this, command] { (this->*command)(); });
}

QAction* MeasureCommands::addCommand(QMenu* menu, const char* name, const QString& caption) {
  auto* a = new QAction(caption, frame_);
  a->setObjectName(QString::fromLatin1(name));
  menu->addAction(a);
  actions_.insert(a->objectName(), a);
  connectCommand(a);
  if (a->objectName() == QStringLiteral("mnuViewStatusFile") || a->objectName() == QStringLiteral("mnuServiceLineka"))
    a->setCheckable(true);
  return a;
}

void MeasureCommands::adoptSetupCommands() {
  for (const char* name : {"mnuSetupRecord", "mnuSetupChannels", "mnuSetupOtmetchick"})
    if (QAction* a = actions_.value(QString::fromLatin1(name))) connectCommand(a);
}

void MeasureCommands::refreshCommands(bool data, bool measuring, bool continuousRun) {
  auto enable = [this](const char* name, bool on) {
    if (QAction* a = actions_.value(QString::fromLatin1(name))) a->setEnabled(on);
  };
  enable("mnuSetupRecord", !measuring);
  enable("mnuSetupChannels", !measuring);
  enable("mnuSetupOtmetchick", true);
  enable("mnuServiceOtm", data && !measuring);
  enable("mnuServiceDetectSensor", !measuring);
  enable("mnuServiceLineka", true);
  recording_ = measuring && continuousRun;
  enable("mnuViewStatusFile", recording_);
  if (QAction* a = actions_.value(QStringLiteral("mnuViewStatusFile"))) a->setChecked(statusFile_ != nullptr);
  if (QAction* a = actions_.value(QStringLiteral("mnuServiceLineka"))) a->setChecked(lineka_ != nullptr);
}

template <class Window>
void MeasureCommands::showDialog(QPointer<Window>& slot, Window* created) {
  if (slot) {
    delete created;
    slot->raise();
    slot->activateWindow();
    return;
  }
  slot = created;
  slot->setAttribute(Qt::WA_DeleteOnClose);
  slot->setWindowModality(Qt::ApplicationModal);
  slot->show();
}

void MeasureCommands::onSetupRecord() {
  if (!setupRec_) showDialog(setupRec_, new SetupRecWindow(ctx_, frame_));
}

void MeasureCommands::onSetupChannels() {
  if (!setupChannels_) showDialog(setupChannels_, new SetupChannelsWindow(ctx_, vocab_, frame_));
}

void MeasureCommands::onSetupOtmetchick() {
  if (!setupOtmetchick_) showDialog(setupOtmetchick_, new SetupOtmetchickWindow(ctx_, frame_));
}

void MeasureCommands::onServiceOtm() {
  if (!serviceOtmetchick_) showDialog(serviceOtmetchick_, new ServiceOtmetchickWindow(ctx_, frame_));
}

void MeasureCommands::onServiceDetectSensor() {
  if (!detectSensor_) showDialog(detectSensor_, new DetectSensorWindow(ctx_, frame_));
}

void MeasureCommands::onServiceLineka() {
  if (lineka_) {
    lineka_->close();
  } else {
    lineka_ = new LinekaWindow(ctx_.store, frame_);
    connect(lineka_, &QObject::destroyed, this, [this] {
      if (QAction* a = actions_.value(QStringLiteral("mnuServiceLineka"))) a->setChecked(false);
    });
    lineka_->show();
  }
  if (QAction* a = actions_.value(QStringLiteral("mnuServiceLineka"))) a->setChecked(lineka_ && lineka_->isVisible());
}

void MeasureCommands::onViewStatusFile() {
  showStatusFile(!statusFile_ && recording_);
}

void MeasureCommands::showStatusFile(bool show) {
  if (show && !statusFile_) {
    statusFile_ = new StatusFileWindow(ctx_.s, ctx_.store, frame_);
    connect(statusFile_, &QObject::destroyed, this, [this] {
      if (QAction* a = actions_.value(QStringLiteral("mnuViewStatusFile"))) a->setChecked(false);
    });
    statusFile_->show();
  } else if (!show && statusFile_) {
    statusFile_->close();
  }
  if (QAction* a = actions_.value(QStringLiteral("mnuViewStatusFile"))) a->setChecked(show && statusFile_);
}

}  // namespace aqx::ui
