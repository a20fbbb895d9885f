#include "ui/editing/RecordingEdits.h"

#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "core/Config.h"
#include "files/Wave.h"
#include "ui/editing/ImportWindow.h"
#include "ui/editing/ObjectWindow.h"
#include "ui/editing/PlayerWindow.h"
#include "ui/main/Workspace.h"
#include "ui/markers/MarkerWindow.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QProgressDialog>

namespace aqx::ui {

namespace {

struct EditCommand {
  const char* name;
  const char* caption;
  bool needsSelection;
};

// In the order of the menu; the first five follow the selection.
constexpr EditCommand kEditCommands[] = {
    {"mnuSignalDelete", "Вырезать", true},   {"mnuSignalSmoothly", "Сгладить", true},
    {"mnuSignalZero", "Обнулить", true},     {"mnuSignalMemory", "Запомнить", true},
    {"mnuSignalPaste", "Вставить", true},    {"mnuSignalShift", "Сдвинуть", false},
    {"mnuSignalCopyData", "Копировать значения", false}};

}  // namespace

RecordingEdits::RecordingEdits(ViewHost& host, Prompts& prompts, const FileReaderTable& readers,
                               QHash<QString, QAction*>& actions, QWidget* frame, Hooks hooks)
    : QObject(frame), host_(host), s_(host.state()), prompts_(prompts), readers_(readers), actions_(actions),
      frame_(frame), hooks_(std::move(hooks)) {}

RecordingEdits::~RecordingEdits() { closeAll(); }

void RecordingEdits::closeAll() {
  // The windows save their places as they go, while the store is there.
  delete markers_.data();
  delete object_.data();
  delete import_.data();
  delete player_.data();
}

namespace {

double MarkerSignature(const AppState& s) {
  double sum = s.markers.MarkerN;
  for (int i = 0; i < std::clamp(s.markers.MarkerN, 0, kMaxMarkers); ++i) sum += s.markers.MarkerDate[static_cast<size_t>(i)] * (i + 2);
  return sum;
}

}  // namespace

void RecordingEdits::installRefresh(views::ViewRegistry& registry) {
  if (player_) {
    registry.playerSoundOpen = true;
    registry[views::RefreshStep::PlayerBuildWaveFile] = [this] {
      if (player_ && !player_->playing() && !(hooks_.measuring && hooks_.measuring())) player_->BuildWaveFile();
    };
  }
  if (markers_ && MarkerSignature(s_) != markerSignature_) {
    markerSignature_ = MarkerSignature(s_);
    markers_->SetDataFlexGrid();
  }
}

QAction* RecordingEdits::addCommand(QMenu* menu, const char* name, const QString& caption) {
  auto* a = new QAction(caption, frame_);
  a->setObjectName(QString::fromLatin1(name));
  if (menu) menu->addAction(a);
  actions_.insert(a->objectName(), a);
  connectCommand(a);
  return a;
}

void RecordingEdits::adoptCommand(const char* name) {
  QAction* a = actions_.value(QString::fromLatin1(name));
  if (!a) return;
  a->setProperty("later", QVariant());
  a->setToolTip(a->text());
  a->setEnabled(true);
  connectCommand(a);
}

void RecordingEdits::connectCommand(QAction* a) {
  const QString name = a->objectName();
  if (name == QStringLiteral("mnuSignalUndo")) {
    connect(a, &QAction::triggered, this, &RecordingEdits::undo);
  } else if (name == QStringLiteral("mnuSignalRedo")) {
    connect(a, &QAction::triggered, this, &RecordingEdits::redo);
  } else if (name == QStringLiteral("mnuSignalCopyData")) {
    connect(a, &QAction::triggered, this, &RecordingEdits::copyValues);
  } else if (name == QStringLiteral("mnuViewMarker")) {
    connect(a, &QAction::triggered, this, &RecordingEdits::showMarkers);
  } else if (name == QStringLiteral("mnuSetupObject")) {
    connect(a, &QAction::triggered, this, &RecordingEdits::setupObject);
  } else if (name == QStringLiteral("mnuFileImport")) {
    connect(a, &QAction::triggered, this, &RecordingEdits::importChannels);
  } else if (name == QStringLiteral("mnuFileExport")) {
    connect(a, &QAction::triggered, this, &RecordingEdits::exportWave);
  } else if (name == QStringLiteral("mnuServicePlayerSound")) {
    connect(a, &QAction::triggered, this, &RecordingEdits::showPlayer);
  } else {
    connect(a, &QAction::triggered, this, [this, name] { runSignalEdit(name); });
  }
}

void RecordingEdits::addSignalCommands(QMenu* menu) {
  QAction* undoAction = addCommand(menu, "mnuSignalUndo", QStringLiteral("Отменить"));
  undoAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
  QAction* redoAction = addCommand(menu, "mnuSignalRedo", QStringLiteral("Повторить"));
  redoAction->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
  frame_->addAction(undoAction);
  frame_->addAction(redoAction);
  menu->addSeparator();
  for (const EditCommand& e : kEditCommands) addCommand(menu, e.name, QString::fromUtf8(e.caption));
}

void RecordingEdits::refreshCommands(bool data) {
  const bool idle = !(hooks_.measuring && hooks_.measuring());
  const bool editable = data && idle;
  for (const EditCommand& e : kEditCommands) {
    if (QAction* a = actions_.value(QString::fromLatin1(e.name)))
      a->setEnabled(editable && (!e.needsSelection || selection_) &&
                    (e.name != std::string_view("mnuSignalPaste") || !clipboard_.empty()));
  }
  if (QAction* a = actions_.value(QStringLiteral("mnuSignalUndo"))) a->setEnabled(idle && history_.canUndo(s_));
  if (QAction* a = actions_.value(QStringLiteral("mnuSignalRedo"))) a->setEnabled(idle && history_.canRedo(s_));
  for (const char* name : {"mnuSetupReAccount", "mnuFileImport", "mnuFileExport", "mnuServicePlayerSound"})
    if (QAction* a = actions_.value(QString::fromLatin1(name))) a->setEnabled(editable);
}

void RecordingEdits::selectionChanged(bool selection) {
  selection_ = selection;
  refreshCommands(HasData(s_));
}

void RecordingEdits::afterEdit(views::EditResult result) {
  if (result == views::EditResult::Nothing) {
    refreshCommands(HasData(s_));
    return;
  }
  if (hooks_.viewRefresh) hooks_.viewRefresh();
  if (hooks_.refreshFrame) hooks_.refreshFrame();
  refreshCommands(HasData(s_));
}

void RecordingEdits::runSignalEdit(const QString& name) {
  if (!HasData(s_) || (hooks_.measuring && hooks_.measuring())) return;
  views::EditResult result = views::EditResult::Nothing;
  if (name == QStringLiteral("mnuSignalDelete")) {
    result = views::SignalDelete(s_, prompts_, history_);
  } else if (name == QStringLiteral("mnuSignalSmoothly")) {
    result = views::SignalSmoothly(s_, prompts_, history_);
  } else if (name == QStringLiteral("mnuSignalZero")) {
    result = views::SignalZero(s_, prompts_, history_);
  } else if (name == QStringLiteral("mnuSignalMemory")) {
    result = views::SignalMemory(s_, prompts_, clipboard_);
  } else if (name == QStringLiteral("mnuSignalPaste")) {
    result = views::SignalPaste(s_, prompts_, clipboard_, history_);
  } else if (name == QStringLiteral("mnuSignalShift")) {
    const double corner = s_.options.signal.Corner;
    result = views::SignalShift(s_, prompts_, history_);
    if (s_.options.signal.Corner != corner) SaveOption(host_.settings(), s_, QLatin1String(kSectionSignal), QStringLiteral("Corner"));
  } else if (name == QStringLiteral("mnuSetupReAccount")) {
    result = views::SetupReAccount(s_, prompts_, history_);
  }
  afterEdit(result);
}

void RecordingEdits::undo() {
  if (hooks_.measuring && hooks_.measuring()) return;
  afterEdit(history_.undo(s_) ? views::EditResult::Changed : views::EditResult::Nothing);
}

void RecordingEdits::redo() {
  if (hooks_.measuring && hooks_.measuring()) return;
  afterEdit(history_.redo(s_) ? views::EditResult::Changed : views::EditResult::Nothing);
}

void RecordingEdits::copyValues() {
  if (!HasData(s_)) return;
  QProgressDialog wait(QStringLiteral("Копирование значений ..."), QStringLiteral("Отмена"), 0, 100, frame_);
  wait.setWindowTitle(QStringLiteral("Копирование данных сигнала в буфер обмена"));
  wait.setObjectName(QStringLiteral("frmWait"));
  wait.setWindowModality(Qt::WindowModal);
  wait.setMinimumDuration(300);
  const QString speed = hooks_.rotorSpeedText ? hooks_.rotorSpeedText() : QString();
  const std::optional<QString> text =
      views::SignalValuesText(s_, host_.vocabulary().SensorTypeList, speed, [&wait](int done, int total) {
        wait.setValue(total > 0 ? static_cast<int>(100LL * done / total) : 100);
        QCoreApplication::processEvents();
        return !wait.wasCanceled();
      });
  if (text) QApplication::clipboard()->setText(*text);
}

}  // namespace aqx::ui

namespace aqx::ui {

MarkerWindow* RecordingEdits::markerWindow() const { return markers_; }
ObjectWindow* RecordingEdits::objectWindow() const { return object_; }
ImportWindow* RecordingEdits::importWindow() const { return import_; }
PlayerWindow* RecordingEdits::playerWindow() const { return player_; }

void RecordingEdits::showMarkers() {
  if (!markers_) {
    markers_ = new MarkerWindow(s_, host_.settings(), prompts_, hooks_.buildSignal, frame_);
    markerSignature_ = MarkerSignature(s_);
  }
  markers_->show();
  markers_->raise();
  markers_->activateWindow();
}

void RecordingEdits::setupObject() {
  if (!object_) {
    const auto applied = [this] {
      SaveConfig(host_.settings(), s_);
      if (hooks_.refreshFrame) hooks_.refreshFrame();
      if (hooks_.viewRefresh) hooks_.viewRefresh();
    };
    object_ = new ObjectWindow(s_, host_.vocabulary(), applied, frame_);
    connect(object_, &ObjectWindow::dateTimeRequested, this, &RecordingEdits::editDateTime);
  }
  object_->open();
}

void RecordingEdits::editDateTime() {
  auto* w = new DateTimeWindow(s_, [this] { if (hooks_.refreshFrame) hooks_.refreshFrame(); }, object_ ? static_cast<QWidget*>(object_.data()) : frame_);
  w->open();
}

void RecordingEdits::importChannels() {
  if (!HasData(s_) || (hooks_.measuring && hooks_.measuring())) return;
  if (!s_.DataSaved && prompts_.ask(QStringLiteral("Данные не сохранены, продолжить?"), QStringLiteral("Импорт")) !=
                           PromptAnswer::Yes)
    return;
  if (!import_) {
    const auto imported = [this] {
      // The samples changed beside the history: what it kept is old now.
      history_.clear();
      if (hooks_.refreshFrame) hooks_.refreshFrame();
      if (hooks_.viewRefresh) hooks_.viewRefresh();
    };
    import_ = new ImportWindow(s_, readers_, host_.vocabulary().SensorTypeList, prompts_, imported, frame_);
  }
  import_->show();
  import_->raise();
}

void RecordingEdits::exportWave() {
  if (!HasData(s_) || (hooks_.measuring && hooks_.measuring())) return;
  ExportWaveCommand(s_, prompts_);
}

void RecordingEdits::showPlayer() {
  if (!HasData(s_) || (hooks_.measuring && hooks_.measuring())) return;
  if (!player_) player_ = new PlayerWindow(s_, host_.settings(), prompts_, frame_);
  player_->show();
  player_->raise();
}

}  // namespace aqx::ui
