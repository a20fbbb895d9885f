#include "ui/acquisition/MeasurementRun.h"

#include "core/EngineErrors.h"
#include "core/Numeric.h"
#include "core/RecordSetup.h"
#include "core/VirtualUnit.h"
#include "engine/Aquilonix.h"
#include "files/ContinuousRecording.h"
#include "files/DataFile.h"
#include "ui/common/Icons.h"

#include <QApplication>
#include <QDateTime>
#include <QFile>
#include <QSystemTrayIcon>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cmath>

namespace aqx::ui {

MeasurementRun::MeasurementRun(AppState& state, Prompts& prompts, Hooks hooks, QObject* parent)
    : QObject(parent), s_(state), prompts_(prompts), hooks_(std::move(hooks)) {
  timer1_ = new QTimer(this);
  timer1_->setInterval(1);
  connect(timer1_, &QTimer::timeout, this, &MeasurementRun::tick);
  timerIcon_ = new QTimer(this);
  timerIcon_->setInterval(100);
  connect(timerIcon_, &QTimer::timeout, this, &MeasurementRun::blinkTray);
  trayIcon_ = MakeToolIcon(ToolIcon::Application);
  tray_ = new QSystemTrayIcon(trayIcon_, this);
  tray_->setToolTip(QStringLiteral("Aquilonix"));
}

MeasurementRun::~MeasurementRun() {
  // The engine's thread must not outlive the window that polls it.
  if (!running_) return;
  if (continuous_) {
    StopRDTF();
  } else {
    StopPotok();
  }
}

bool MeasurementRun::trayBlinking() const { return timerIcon_->isActive(); }

void MeasurementRun::blinkTray() {
  trayLit_ = !trayLit_;
  tray_->setIcon(trayLit_ ? trayIcon_ : MakeToolIcon(ToolIcon::Record));
}

void MeasurementRun::press() {
  if (requested_) {
    // Stop: the next tick winds the run down.
    requested_ = false;
    if (hooks_.refreshToolbars) hooks_.refreshToolbars();
    return;
  }
  if (running_) return;  // still winding down
  requested_ = true;
  if (hooks_.refreshToolbars) hooks_.refreshToolbars();
  auto refuse = [this] {
    requested_ = false;
    if (hooks_.refreshToolbars) hooks_.refreshToolbars();
  };
  if (!s_.DataSaved && s_.ReminderFileSave && !s_.SolidMode &&
      prompts_.ask(QStringLiteral("Данные не сохранены, продолжить?"), QStringLiteral("Внимание"),
                   PromptButtons::YesNo, PromptIcon::Question) != PromptAnswer::Yes) {
    refuse();
    return;
  }
  RecountChannelUsedCount(s_);
  continuous_ = s_.SolidMode;
  const bool started = continuous_ ? startContinuous() : startCyclic();
  if (!started) {
    s_.BlockSizeFFT = s_.BlockSizeFFTa;
    refuse();
    return;
  }
  s_.FreqDesc = s_.FreqDescR;
  s_.StepDesc = static_cast<double>(s_.FreqDescR) / std::max(s_.SignalDataN, 1);
  firstTick_ = true;
  running_ = true;
  if (hooks_.activateElements) hooks_.activateElements(true);
  trayLit_ = true;
  tray_->setIcon(trayIcon_);
  if (QSystemTrayIcon::isSystemTrayAvailable()) tray_->show();
  timerIcon_->start();
  timer1_->start();
  if (hooks_.showRunState) hooks_.showRunState();
  runStateShown_.start();
}

bool MeasurementRun::startCyclic() {
  s_.SelectFirst = 0;
  s_.SelectLast = 0;
  s_.BlockSizeFFT = s_.BlockSizeFFTr;
  std::array<char, 17> moduleText{};
  // The virtual module learns the channel types and the unit from the state.
  ExportVirtualUnit(s_);
  const int32_t started =
      StartPotok(s_.ChannelUsedCount, s_.channels.Channel.data(), s_.channels.Volume.data(), s_.SignalDataN,
                 &s_.FreqDescR, RecordBufferLength(s_.options.config.TimeRefresh, s_.FreqDescR), s_.InputMode,
                 s_.SynchroAdType, s_.SynchroAdMode, s_.SynchroAdChannel, s_.SynchroAdPorog, moduleText.data(),
                 s_.ChannelDifferential);
  if (started != 0) {
    ShowEngineError(prompts_, started);
    return false;
  }
  s_.ModuleTag = ModuleTagOf(moduleText.data());
  // The cycle coming in is a new recording of no file yet.
  s_.PathFileData.clear();
  return true;
}

bool MeasurementRun::startContinuous() {
  const QString path = SolidFilePath(SolidFolder(s_), s_.SolidFileName);
  if (QFile::exists(path) &&
      prompts_.ask(QStringLiteral("Имеется файл:\n%1\nЗаменить файл?").arg(path), QStringLiteral("Внимание"),
                   PromptButtons::OkCancel, PromptIcon::Question) != PromptAnswer::Ok)
    return false;
  // A disk that cannot take one second of rows past the header is refused
  // before anything is deleted or created.
  const DiskSpace disk = DiskSpaceOf(SolidFolder(s_));
  const double needBytes = static_cast<double>(BuildFileHeaderBytes(s_).size()) + 2.0 * s_.FreqADC;
  if (disk.known && disk.freeBytes < needBytes) {
    prompts_.message(QStringLiteral("Недостаточно места на диске для записи файла данных:\n%1\nСвободно: %2")
                         .arg(path, FormatFileSize(disk.freeBytes)),
                     QStringLiteral("Внимание"), PromptButtons::Ok, PromptIcon::Exclamation);
    return false;
  }
  s_.BlockSizeFFT = s_.BlockSizeFFTr;
  if (!StartContinuousRecording(s_, prompts_, path, s_.options.parameters.SolidClerData)) return false;
  // The views follow the newest rows of the block being written.
  s_.ViewFirst = liveFirst_ = 1;
  s_.ViewLast = liveLast_ = 1;
  following_ = liveStart_ = true;
  liveBlock_ = 0;
  s_.DataSaved = true;
  if (hooks_.statusFile) hooks_.statusFile(true);
  return true;
}

namespace {
// The live stretch at the start of a continuous run: about two seconds.
int32_t LiveStartRows(const AppState& s) { return std::clamp(2 * s.FreqDescR, 4096, kMaxSamples); }
}  // namespace

void MeasurementRun::followNewestRows(double fileBytes) {
  const int used = std::max(s_.ChannelUsedCount, 1);
  const double dataBytes = fileBytes - s_.SolidDataStart;
  const auto fileRows = static_cast<int64_t>(std::max(0.0, dataBytes) / (2.0 * used));
  const int64_t blockStart = static_cast<int64_t>(std::max(s_.SolidBlockN, 1) - 1) * kMaxSamples;
  const auto rowsInBlock = static_cast<int32_t>(std::clamp<int64_t>(fileRows - blockStart, 1, kMaxSamples));
  // The views show the newest rows, as wide as the user zooms; a pan back
  // into the block holds his stretch until he pans to its end again or the
  // next block begins. A stretch that stays as wide whatever the run's
  // length keeps each refresh as quick at the tenth minute as at the first.
  if (s_.ViewFirst != liveFirst_ || s_.ViewLast != liveLast_) {
    const bool zoomed = s_.ViewLast - s_.ViewFirst + 1 != liveWidth_;
    following_ = zoomed || s_.ViewLast >= rowsInBlock;
  }
  if (s_.SolidBlockN != liveBlock_) following_ = true;
  liveBlock_ = s_.SolidBlockN;
  if (following_) {
    const int32_t startRows = liveStart_ ? LiveStartRows(s_) : 0;
    if (!hooks_.followNewestRow || !hooks_.followNewestRow(rowsInBlock, startRows)) {
      // No signal view to zoom: the width the run started with.
      const int32_t width = LiveStartRows(s_);
      s_.ViewLast = std::max(rowsInBlock, width);
      s_.ViewFirst = s_.ViewLast - width + 1;
    }
    liveWidth_ = s_.ViewLast - s_.ViewFirst + 1;
    // Until the block holds as many rows as the stretch is wide, the rows
    // past the newest are zeros, not signal: nothing is computed over them.
    s_.ViewLast = std::clamp(rowsInBlock, s_.ViewFirst, s_.ViewLast);
    liveStart_ = false;
  }
  liveFirst_ = s_.ViewFirst;
  liveLast_ = s_.ViewLast;
  s_.RunRowsAcquired = rowsInBlock < kMaxSamples ? rowsInBlock : 0;
}

void MeasurementRun::tick() {
  if (!running_) {
    timer1_->stop();
    return;
  }
  if (continuous_) {
    // The length before the copy: the copy holds at least these rows, where
    // rows written after it would count rows the store does not have yet.
    const double fileBytes = InformationFileData();
    if (PollContinuousRecording(s_)) {
      // The recording has ended by itself (a full disk, a failed module).
      requested_ = false;
      if (hooks_.refreshToolbars) hooks_.refreshToolbars();
    }
    s_.SignalData.markWritten();
    followNewestRows(fileBytes);
  } else {
    CopySignalData(s_.SignalData.data());
    s_.SignalData.markWritten();
    // Once full, the cycle stays full: a row of zeros later is signal.
    if (s_.RunRowsAcquired != 0 || firstTick_) s_.RunRowsAcquired = AcquiredRows(s_);
  }
  firstTick_ = false;
  checkWarnings();
  if (!requested_) finish();
  if (hooks_.viewRefresh) hooks_.viewRefresh();
  if (hooks_.showRunState && (!running_ || runStateShown_.elapsed() >= 500)) {
    hooks_.showRunState();
    runStateShown_.restart();
  }
}

void MeasurementRun::finish() {
  QApplication::setOverrideCursor(Qt::WaitCursor);
  timer1_->stop();
  timerIcon_->stop();
  tray_->setIcon(trayIcon_);
  tray_->hide();
  running_ = false;
  if (continuous_) {
    // A failure of the recording thread is told by its text; the rows
    // written before it stay and the header is written again.
    StopContinuousRecording(s_, prompts_);
    if (hooks_.statusFile) hooks_.statusFile(false);
  } else {
    s_.object.RecordDate = DateTimeToOle(QDateTime::currentDateTime());
    TellStopFailure(prompts_, StopPotok());
  }
  if (!warnings_.isEmpty()) {
    warnings_.clear();
    prompts_.closeNotice();
  }
  s_.FreqDesc = s_.FreqDescR;
  s_.StepDesc = static_cast<double>(s_.FreqDescR) / std::max(s_.SignalDataN, 1);
  if (s_.options.parameters.StatusFilterBienie && !continuous_) {
    prompts_.notice({QStringLiteral("Подождите, идет фильтрация сигналов датчиков биения ...")});
    FilterSensorBienie(s_.channels.Channel.data(), s_.channels.Type.data(), s_.SignalDataN, nullptr, nullptr,
                       s_.SignalData.data(), s_.FreqDesc);
    s_.SignalData.markWritten();
    prompts_.closeNotice();
  }
  if (!continuous_) s_.DataSaved = false;
  s_.RunRowsAcquired = 0;
  s_.BlockSizeFFT = s_.BlockSizeFFTa;
  if (hooks_.activateElements) hooks_.activateElements(false);
  QApplication::restoreOverrideCursor();
  // The file as written, with its blocks to walk through.
  if (continuous_ && hooks_.openRecordedFile) hooks_.openRecordedFile(s_.PathFileData);
}

void MeasurementRun::checkWarnings() {
  std::array<int32_t, kMaxChannels> low{}, high{};
  // A continuous run looks at the rows in view: the block holds zeros past them.
  const int32_t first = continuous_ ? std::max(s_.ViewFirst, 1) : 1;
  const int32_t rows = continuous_ ? std::max(s_.ViewLast - first + 1, 0) : s_.SignalDataN;
  const int32_t overload =
      ControlClearance(rows, s_.SignalData.data() + static_cast<size_t>(first - 1) * kMaxChannels,
                       s_.channels.Channel.data(), s_.channels.Type.data(), s_.channels.KS.data(),
                       s_.channels.Ku.data(), s_.Clearance, low.data(), high.data(), s_.SignalMaxValue.data(),
                       s_.options.parameters.ValueClearenceMin, s_.options.parameters.ValueClearenceMax);
  const ParameterOptions& o = s_.options.parameters;
  auto listOf = [this](const std::array<int32_t, kMaxChannels>& marks) {
    QStringList numbers;
    for (int c = 1; c <= ChannelCount(s_); ++c)
      if (marks[static_cast<size_t>(c - 1)] != 0) numbers << QString::number(c);
    return numbers.join(QStringLiteral(", "));
  };
  QStringList lines{QString(), QString(), QString()};
  if (overload == 1 && o.ReminderOverload) lines[0] = QStringLiteral("ПЕРЕГРУЗКА !!!");
  if (o.ReminderClearenceMin && !listOf(low).isEmpty())
    lines[1] = QStringLiteral("В канале №") + listOf(low) + QStringLiteral(" возможно задевание датчика о вал!");
  if (o.ReminderClearenceMax && !listOf(high).isEmpty())
    lines[2] = QStringLiteral("В канале №") + listOf(high) +
               QStringLiteral(" возможно вал находится вне измеряемого диапазона!");
  const bool any = std::any_of(lines.begin(), lines.end(), [](const QString& l) { return !l.isEmpty(); });
  if (!any) {
    if (!warnings_.isEmpty()) prompts_.closeNotice();
    warnings_.clear();
    return;
  }
  if (lines != warnings_) prompts_.notice(lines);
  warnings_ = lines;
}

}  // namespace aqx::ui
