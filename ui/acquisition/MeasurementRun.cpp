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
  s_.DataSaved = true;
  if (hooks_.statusFile) hooks_.statusFile(true);
  return true;
}

void MeasurementRun::followNewestRows() {
  const int used = std::max(s_.ChannelUsedCount, 1);
  const double dataBytes = InformationFileData() - s_.SolidDataStart;
  const auto fileRows = static_cast<int64_t>(std::max(0.0, dataBytes) / (2.0 * used));
  const int64_t blockStart = static_cast<int64_t>(std::max(s_.SolidBlockN, 1) - 1) * kMaxSamples;
  const auto rowsInBlock = static_cast<int32_t>(std::clamp<int64_t>(fileRows - blockStart, 1, kMaxSamples));
  // The views take the rows of the block written so far, as a cyclic run
  // fills its cycle; once the user zooms or pans, his stretch stays.
  if (s_.ViewFirst == liveFirst_ && s_.ViewLast == liveLast_) {
    s_.ViewFirst = liveFirst_ = 1;
    s_.ViewLast = liveLast_ = rowsInBlock;
  }
  s_.RunRowsAcquired = rowsInBlock < kMaxSamples ? rowsInBlock : 0;
}

void MeasurementRun::tick() {
  if (!running_) {
    timer1_->stop();
    return;
  }
  if (continuous_) {
    if (PollContinuousRecording(s_)) {
      // The recording has ended by itself (a full disk, a failed module).
      requested_ = false;
      if (hooks_.refreshToolbars) hooks_.refreshToolbars();
    }
    s_.SignalData.markWritten();
    followNewestRows();
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
