#include "ui/options/SupportWindows.h"

#include "core/NamedConfigs.h"
#include "ui/files/FilesWindow.h"
#include "ui/help/HelpWindow.h"
#include "ui/options/ChannelLooks.h"
#include "ui/options/ConfigDialog.h"
#include "ui/options/ParametersDialog.h"
#include "ui/signal/SignalWindow.h"
#include "views/signal/SignalView.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>

#include <cstring>

namespace aqx::ui {

namespace {

// Brings a window that may stand behind others to the front.
void Raise(QWidget* w) {
  w->show();
  w->raise();
  w->activateWindow();
}

}  // namespace

SupportWindows::SupportWindows(ViewHost& host, Prompts& prompts, QHash<QString, QAction*>& actions, QWidget* frame,
                               Hooks hooks)
    : QObject(frame), host_(host), prompts_(prompts), actions_(actions), frame_(frame), hooks_(std::move(hooks)) {
  // F1 anywhere in the program, dialogs included.
  qApp->installEventFilter(this);
}

SupportWindows::~SupportWindows() {
  qApp->removeEventFilter(this);
  // The browser's reading thread ends before the state goes.
  delete files_.data();
  delete help_.data();
}

ParametersDialog* SupportWindows::parameters() const { return parameters_; }
ConfigDialog* SupportWindows::configs() const { return configs_; }
FilesWindow* SupportWindows::files() const { return files_; }
FilePropertyWindow* SupportWindows::fileProperty() const { return fileProperty_; }
AdviceWindow* SupportWindows::advice() const { return advice_; }
HelpWindow* SupportWindows::help() const { return help_; }
ColorPropertyWindow* SupportWindows::colorProperty() const { return colorProperty_; }

QAction* SupportWindows::addCommand(QMenu* menu, const char* name, const QString& caption) {
  struct Entry {
    const char* name;
    void (SupportWindows::*run)();
  };
  static constexpr Entry kCommands[] = {
      {"mnuSetupParameters", &SupportWindows::showParameters}, {"mnuSetupConfigs", &SupportWindows::showConfigs},
      {"mnuFileFiles", &SupportWindows::showFiles},            {"mnuFileProperty", &SupportWindows::showFileProperty},
      {"mnuHelpSearch", &SupportWindows::showHelpSearch},      {"mnuHelpAdvice", &SupportWindows::showAdvice},
  };
  QAction* a = nullptr;
  for (const Entry& e : kCommands) {
    if (std::strcmp(e.name, name) != 0) continue;
    a = new QAction(caption, menu);
    connect(a, &QAction::triggered, this, e.run);
  }
  if (!a && std::strcmp(name, "mnuHelpContents") == 0) {
    a = new QAction(caption, menu);
    connect(a, &QAction::triggered, this, [this] { showHelp(); });
  }
  if (!a && std::strcmp(name, "mnuHelpOnHelp") == 0) {
    a = new QAction(caption, menu);
    connect(a, &QAction::triggered, this, [this] { showHelp(QStringLiteral("help.md")); });
  }
  if (!a) return nullptr;
  a->setObjectName(QString::fromLatin1(name));
  if (std::strcmp(name, "mnuHelpContents") == 0) a->setShortcut(QKeySequence(Qt::Key_F1));
  a->setShortcutContext(Qt::WidgetShortcut);  // F1 itself goes through the event filter
  menu->addAction(a);
  actions_.insert(a->objectName(), a);
  return a;
}

void SupportWindows::refreshCommands(bool data, bool measuring) {
  if (QAction* a = actions_.value(QStringLiteral("mnuFileProperty"))) a->setEnabled(data);
  if (QAction* a = actions_.value(QStringLiteral("mnuSetupConfigs"))) a->setEnabled(!measuring);
  if (QAction* a = actions_.value(QStringLiteral("mnuSetupParameters"))) a->setEnabled(!measuring);
  if (QAction* a = actions_.value(QStringLiteral("mnuFileFiles"))) a->setEnabled(!measuring);
  syncColorProperty();
}

void SupportWindows::viewRefreshed() {
  if (fileProperty_) fileProperty_->OutData();
  syncColorProperty();
}

void SupportWindows::syncColorProperty() {
  SignalWindow* signal = hooks_.signalWindow ? hooks_.signalWindow() : nullptr;
  const AppState& s = host_.state();
  const bool wanted = signal && s.options.signal.SignalViewColorProperty &&
                      views::CursorOf(s) != views::SignalCursor::None;
  if (!wanted) {
    if (signal) {
      signal->setColorPropertyOpen(false);
      signal->colorPropertyChanged = nullptr;
    }
    delete colorProperty_.data();
    return;
  }
  if (!colorProperty_) {
    colorProperty_ = new ColorPropertyWindow(s, host_.vocabulary(), frame_);
    const QRect frame = frame_->geometry();
    colorProperty_->move(frame.right() - 320, frame.top() + 140);
    colorProperty_->show();
  }
  signal->setColorPropertyOpen(true);
  signal->colorPropertyChanged = [this, signal] {
    if (colorProperty_) colorProperty_->OutInfoColor(signal->viewState().ColorPropertyValues);
  };
  colorProperty_->OutInfoColor(signal->viewState().ColorPropertyValues);
}

void SupportWindows::startUp() {
  if (host_.state().options.config.Advice) showAdvice();
}

QString SupportWindows::configsFolder() const {
  if (!configsFolder_.isEmpty()) return configsFolder_;
  const QString settings = host_.settings().filePath();
  return ConfigsFolder(settings.isEmpty() ? DefaultSettingsPath() : settings);
}

void SupportWindows::showParameters() {
  if (!parameters_) {
    ParametersDialog::Hooks h;
    h.applied = hooks_.settingsChanged;
    h.closeProgram = hooks_.closeProgram;
    h.setupColorType = [this] { showSetupColorType(); };
    h.setupLine = [this] { showSetupLine(); };
    parameters_ = new ParametersDialog(host_.state(), host_.settings(), prompts_, std::move(h), frame_);
    parameters_->setAttribute(Qt::WA_DeleteOnClose);
    parameters_->setWindowModality(Qt::WindowModal);
  }
  Raise(parameters_);
}

void SupportWindows::showConfigs() {
  if (!configs_) {
    configs_ = new ConfigDialog(host_.state(), host_.settings(), prompts_, configsFolder(), hooks_.settingsChanged, frame_);
    configs_->setAttribute(Qt::WA_DeleteOnClose);
    configs_->setWindowModality(Qt::WindowModal);
  }
  Raise(configs_);
}

void SupportWindows::showFiles() {
  if (!files_) {
    const AppState& s = host_.state();
    QString folder = s.PathFileData.isEmpty() ? s.InitDirOpen : QFileInfo(s.PathFileData).absolutePath();
    if (folder.isEmpty() || !QDir(folder).exists()) folder = QDir::homePath();
    files_ = new FilesWindow(folder, hooks_.openFile, frame_);
    files_->setAttribute(Qt::WA_DeleteOnClose);
  }
  Raise(files_);
}

void SupportWindows::showFileProperty() {
  if (!fileProperty_) {
    fileProperty_ = new FilePropertyWindow(host_.state(), host_.vocabulary(), frame_);
    fileProperty_->setAttribute(Qt::WA_DeleteOnClose);
  }
  fileProperty_->OutData();
  Raise(fileProperty_);
}

void SupportWindows::showAdvice() {
  if (!advice_) {
    advice_ = new AdviceWindow(host_.state(), host_.settings(), frame_);
    advice_->setAttribute(Qt::WA_DeleteOnClose);
  } else {
    advice_->NextTip();
  }
  Raise(advice_);
}

void SupportWindows::showSetupColorType() {
  if (!setupColorType_) {
    auto* d = new ColorTypeDialog(host_.state(), host_.settings(), host_.vocabulary(), hooks_.settingsChanged,
                                  QApplication::activeModalWidget() ? QApplication::activeModalWidget() : frame_);
    d->setAttribute(Qt::WA_DeleteOnClose);
    d->setWindowModality(Qt::WindowModal);
    setupColorType_ = d;
  }
  Raise(setupColorType_);
}

void SupportWindows::showSetupLine() {
  if (!setupLine_) {
    auto* d = new LineDialog(host_.state(), host_.settings(), host_.vocabulary(), hooks_.settingsChanged,
                             QApplication::activeModalWidget() ? QApplication::activeModalWidget() : frame_);
    d->setAttribute(Qt::WA_DeleteOnClose);
    d->setWindowModality(Qt::WindowModal);
    setupLine_ = d;
  }
  Raise(setupLine_);
}

void SupportWindows::showHelp(const QString& page) {
  if (!help_) {
    // A window of its own, so that it can be read beside a modal dialog.
    help_ = new HelpWindow(HelpManual::load(HelpManual::findFolder(HelpFolderCandidates())));
    help_->setAttribute(Qt::WA_DeleteOnClose);
  }
  help_->showPage(page);
  Raise(help_);
}

void SupportWindows::showHelpSearch() {
  showHelp();
  help_->search({});
}

void SupportWindows::helpForWindowInFront(QWidget* target) {
  QWidget* front = target ? target->window() : QApplication::activeModalWidget();
  if (!front) front = QApplication::activeWindow();
  QString name = front ? front->objectName() : QString();
  if (!front || front == frame_) name = hooks_.activeViewName ? hooks_.activeViewName() : QString();
  if (front && front == help_) name = QStringLiteral("frmHelp");
  if (name.isEmpty()) name = frame_->objectName();
  const HelpManual manual = help_ ? help_->manual() : HelpManual::load(HelpManual::findFolder(HelpFolderCandidates()));
  showHelp(manual.pageForWindow(name));
}

bool SupportWindows::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1 &&
      static_cast<QKeyEvent*>(event)->modifiers() == Qt::NoModifier && watched->isWidgetType()) {
    helpForWindowInFront(static_cast<QWidget*>(watched));
    return true;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace aqx::ui
