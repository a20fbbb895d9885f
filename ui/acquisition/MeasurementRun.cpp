#include "ui/acquisition/MeasurementRun.h"

#include "core/EngineErrors.h"
#include "core/Numeric.h"
#include "core/VirtualUnit.h"
#include "engine/Aquilonix.h"
#include "files/ContinuousRecording.h"

#include <QApplication>
#include <QDateTime>
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
}

MeasurementRun::~MeasurementRun() {
  // The engine's thread must not outlive the window that polls it.
  if (running_) StopPotok();
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
  s_.SelectFirst = 0;
  s_.SelectLast = 0;
  s_.BlockSizeFFT = s_.BlockSizeFFTr;
  // Rows per transfer: about one refresh interval's worth, a power of two.
  const double refreshSeconds = std::max(static_cast<double>(s_.options.config.TimeRefresh), 0.01);
  const int32_t bufferLength =
      1 << std::clamp(IntFloor(std::log2(std::max(refreshSeconds * s_.FreqDescR, 1.0))), 0, 20);
  std::array<char, 17> moduleText{};
  // The virtual module learns the channel types and the unit from the state.
  ExportVirtualUnit(s_);
  const int32_t started =
      StartPotok(s_.ChannelUsedCount, s_.channels.Channel.data(), s_.channels.Volume.data(), s_.SignalDataN,
                 &s_.FreqDescR, bufferLength, s_.InputMode, s_.SynchroAdType, s_.SynchroAdMode, s_.SynchroAdChannel,
                 s_.SynchroAdPorog, moduleText.data(), s_.ChannelDifferential);
  if (started != 0) {
    s_.BlockSizeFFT = s_.BlockSizeFFTa;
    ShowEngineError(prompts_, started);
    refuse();
    return;
  }
  s_.ModuleTag = ModuleTagOf(moduleText.data());
  s_.FreqDesc = s_.FreqDescR;
  s_.StepDesc = static_cast<double>(s_.FreqDescR) / std::max(s_.SignalDataN, 1);
  // The cycle coming in is a new recording of no file yet.
  s_.PathFileData.clear();
  firstTick_ = true;
  running_ = true;
  if (hooks_.activateElements) hooks_.activateElements(true);
  timer1_->start();
}

void MeasurementRun::tick() {
  if (!running_) {
    timer1_->stop();
    return;
  }
  CopySignalData(s_.SignalData.data());
  s_.SignalData.markWritten();
  // Once full, the cycle stays full: a row of zeros later is signal.
  if (s_.RunRowsAcquired != 0 || firstTick_) s_.RunRowsAcquired = AcquiredRows(s_);
  firstTick_ = false;
  checkWarnings();
  if (!requested_) finish();
  if (hooks_.viewRefresh) hooks_.viewRefresh();
}

void MeasurementRun::finish() {
  QApplication::setOverrideCursor(Qt::WaitCursor);
  timer1_->stop();
  s_.object.RecordDate = DateTimeToOle(QDateTime::currentDateTime());
  const int32_t stopped = StopPotok();
  running_ = false;
  TellStopFailure(prompts_, stopped);
  if (!warnings_.isEmpty()) {
    warnings_.clear();
    prompts_.closeNotice();
  }
  s_.FreqDesc = s_.FreqDescR;
  s_.StepDesc = static_cast<double>(s_.FreqDescR) / std::max(s_.SignalDataN, 1);
  if (s_.options.parameters.StatusFilterBienie) {
    prompts_.notice({QStringLiteral("Подождите, идет фильтрация сигналов датчиков биения ...")});
    FilterSensorBienie(s_.channels.Channel.data(), s_.channels.Type.data(), s_.SignalDataN, nullptr, nullptr,
                       s_.SignalData.data(), s_.FreqDesc);
    s_.SignalData.markWritten();
    prompts_.closeNotice();
  }
  s_.DataSaved = false;
  s_.RunRowsAcquired = 0;
  s_.BlockSizeFFT = s_.BlockSizeFFTa;
  if (hooks_.activateElements) hooks_.activateElements(false);
  QApplication::restoreOverrideCursor();
}

void MeasurementRun::checkWarnings() {
  std::array<int32_t, kMaxChannels> low{}, high{};
  const int32_t overload = ControlClearance(
      s_.SignalDataN, s_.SignalData.data(), s_.channels.Channel.data(), s_.channels.Type.data(), s_.channels.KS.data(),
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
