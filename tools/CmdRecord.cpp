// aquilonix-tool record OUT.aqx --mode cyclic|solid --seconds S: a
// measurement run with the channel and record settings of the settings
// store, as the record button would start it, written to OUT.aqx.

#include "core/Config.h"
#include "core/EngineErrors.h"
#include "core/Numeric.h"
#include "core/VirtualUnit.h"
#include "engine/Aquilonix.h"
#include "files/ContinuousRecording.h"
#include "files/DataFile.h"
#include "tools/RecordRun.h"
#include "tools/ToolCommand.h"
#include "tools/ToolSettings.h"

#include <QFile>
#include <QFileInfo>

#include <signal.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>

namespace aqx::tool {

namespace {

constexpr auto kPollInterval = std::chrono::milliseconds(50);

// Ctrl-C and SIGTERM are held back while a run is on and taken as a request
// to stop; the library's threads inherit the mask and never see them.
class StopSignals {
 public:
  StopSignals() {
    sigemptyset(&set_);
    sigaddset(&set_, SIGINT);
    sigaddset(&set_, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &set_, &previous_);
  }
  ~StopSignals() {
    // A request that came in the last moment is dropped, not delivered.
    const timespec none{0, 0};
    while (sigtimedwait(&set_, nullptr, &none) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
  }
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  // Waits one poll interval; true when a stop was asked for.
  bool waitForStop() {
    const timespec wait{0, std::chrono::nanoseconds(kPollInterval).count()};
    if (sigtimedwait(&set_, nullptr, &wait) > 0) stopAsked_ = true;
    return stopAsked_;
  }
  bool stopAsked() const { return stopAsked_; }

 private:
  sigset_t set_{};
  sigset_t previous_{};
  bool stopAsked_ = false;
};

double Seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

}  // namespace

bool RunCyclicMeasurement(AppState& s, Prompts& p, double seconds, FILE* progress) {
  RecountChannelUsedCount(s);
  ExportVirtualUnit(s);
  s.SelectFirst = s.SelectLast = 0;
  s.BlockSizeFFT = s.BlockSizeFFTr;
  const double refreshSeconds = std::max(static_cast<double>(s.options.config.TimeRefresh), 0.01);
  const int32_t bufferLength =
      1 << std::clamp(IntFloor(std::log2(std::max(refreshSeconds * s.FreqDescR, 1.0))), 0, 20);
  char moduleText[17] = {};
  StopSignals stop;
  const int32_t started = StartPotok(s.ChannelUsedCount, s.channels.Channel.data(), s.channels.Volume.data(),
                                     s.SignalDataN, &s.FreqDescR, bufferLength, s.InputMode, s.SynchroAdType,
                                     s.SynchroAdMode, s.SynchroAdChannel, s.SynchroAdPorog, moduleText,
                                     s.ChannelDifferential);
  if (started != 0) {
    ShowEngineError(p, started);
    s.BlockSizeFFT = s.BlockSizeFFTa;
    return false;
  }
  s.ModuleTag = ModuleTagOf(moduleText);
  s.FreqDesc = s.FreqDescR;
  s.StepDesc = static_cast<double>(s.FreqDescR) / std::max(s.SignalDataN, 1);
  // A cycle is whole once SignalDataN rows have come.
  const double cycleSeconds = static_cast<double>(s.SignalDataN) / std::max(s.FreqDescR, 1);
  const double runSeconds = std::max(seconds, cycleSeconds * 1.05 + 0.1);
  if (progress && runSeconds > seconds)
    std::fprintf(progress, "record: a cycle of %d samples at %d Hz takes %.1f s\n", s.SignalDataN, s.FreqDescR,
                 cycleSeconds);
  const auto since = std::chrono::steady_clock::now();
  while (Seconds(since) < runSeconds && !stop.waitForStop()) CopySignalData(s.SignalData.data());
  CopySignalData(s.SignalData.data());
  s.object.RecordDate = DateTimeToOle(QDateTime::currentDateTime());
  TellStopFailure(p, StopPotok());
  if (progress && stop.stopAsked()) std::fprintf(progress, "record: stopped after %.1f s\n", Seconds(since));
  s.FreqDesc = s.FreqDescR;
  s.StepDesc = static_cast<double>(s.FreqDescR) / std::max(s.SignalDataN, 1);
  s.DataSaved = false;
  s.BlockSizeFFT = s.BlockSizeFFTa;
  ApplyBlockRule(s);
  s.ViewFirst = 1;
  s.ViewLast = s.SignalDataN;
  return true;
}

bool RunContinuousRecording(AppState& s, Prompts& p, double seconds, bool clearData, FILE* progress) {
  s.SolidFileName = QFileInfo(s.PathFileData).completeBaseName().left(25);
  StopSignals stop;
  if (!StartContinuousRecording(s, p, s.PathFileData, clearData)) return false;
  const auto since = std::chrono::steady_clock::now();
  double lastReport = 0.0;
  bool ended = false;
  while (Seconds(since) < seconds && !stop.waitForStop()) {
    ended = PollContinuousRecording(s);
    if (ended) break;
    if (progress && Seconds(since) - lastReport >= 1.0) {
      lastReport = Seconds(since);
      std::fprintf(progress, "record: %.0f s, %s, block %d\n", lastReport,
                   FormatFileSize(InformationFileData()).toUtf8().constData(), s.SolidBlockN);
    }
  }
  if (progress && stop.stopAsked()) std::fprintf(progress, "record: stopped after %.1f s\n", Seconds(since));
  if (progress && ended) std::fprintf(progress, "record: the recording ended by itself\n");
  return StopContinuousRecording(s, p);
}

int RunRecord(ToolContext& ctx) {
  const QStringList valueOptions{QStringLiteral("--mode"), QStringLiteral("--seconds")};
  const QStringList paths = Positionals(ctx.args, valueOptions);
  const QString mode = OptionValue(ctx.args, QStringLiteral("--mode"), QStringLiteral("cyclic"));
  bool secondsOk = false;
  const double seconds = OptionValue(ctx.args, QStringLiteral("--seconds"), QStringLiteral("10")).toDouble(&secondsOk);
  if (paths.size() != 1 || (mode != QStringLiteral("cyclic") && mode != QStringLiteral("solid")) || !secondsOk ||
      !(seconds > 0.0)) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool record OUT.aqx --mode cyclic|solid --seconds S\n"));
    return kExitRefused;
  }
  auto state = std::make_unique<AppState>();
  AppState& s = *state;
  const auto store = OpenToolSettings(ctx);
  LoadConfigReg(s, *store);
  RecountChannelUsedCount(s);
  if (s.ChannelUsedCount == 0) {
    Print(stderr, QStringLiteral("record: no channel is on in the settings\n"));
    return kExitRefused;
  }
  s.PathFileData = paths[0];
  if (mode == QStringLiteral("solid")) {
    if (!RunContinuousRecording(s, *ctx.prompts, seconds, s.options.parameters.SolidClerData, stderr))
      return kExitFailure;
  } else {
    DeriveRotorParameters(s);
    if (s.FreqDescR * s.ChannelUsedCount > 100000) {
      Print(stderr, QStringLiteral("record: %1 Hz over %2 channels exceeds the module's 100 kHz\n")
                        .arg(s.FreqDescR)
                        .arg(s.ChannelUsedCount));
      return kExitRefused;
    }
    if (!RunCyclicMeasurement(s, *ctx.prompts, seconds, stderr)) return kExitFailure;
    if (!WriteDataFile(s, *ctx.prompts)) return kExitFailure;
  }
  Print(ctx.out, QStringLiteral("%1\n").arg(s.PathFileData));
  return kExitOk;
}

}  // namespace aqx::tool
