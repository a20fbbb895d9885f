// The protocol of a folder of 100 recordings of 32,768 samples x 32 channels
// (run-out, vibration and a shaft marker) against its baseline in the same
// run: the same files read by the data file reader with, per file, the
// shaft marks, the signal maxima, and per channel the spectrum, band and
// probe values and the run-out shift, as the parameter bar computes them,
// and no workbook. The protocol may take at most 1.5 times the baseline.
#include "Compare.h"

#include "core/ChannelPhysics.h"
#include "core/Prompts.h"
#include "files/DataFile.h"
#include "files/FileReaders.h"
#include "reports/ReportCommands.h"
#include "views/Analysis.h"
#include "views/parameters/SignalParameters.h"
#include "views/signal/SignalEngine.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <memory>
#include <numbers>

namespace {

using aqx::AppState;

constexpr int kFiles = 100;
constexpr int kSamples = 32768;
constexpr int kSampleHz = 5000;

// A run-out, a vibration channel and a shaft marker in turn over the 32
// channels: a 2 Hz harmonic with some 50 Hz on it, a pulse a revolution.
bool WriteFolder(const QString& folder) {
  auto s = std::make_unique<AppState>();
  s->FreqDesc = s->FreqDescR = kSampleHz;
  s->SignalDataN = kSamples;
  s->object.Mode = QStringLiteral("Номинал");
  for (int c = 1; c <= aqx::kMaxChannels; ++c) {
    s->channels.Channel[c] = 1;
    s->channels.Type[c] = c == 1 ? aqx::sensor::ShaftMarker : c % 2 == 0 ? aqx::sensor::Runout : aqx::sensor::Vibration;
    s->channels.Place[c] = QStringLiteral("Подшипник %1").arg(c);
    s->channels.Direct[c] = c % 4 < 2 ? QStringLiteral("X") : QStringLiteral("Y");
    s->channels.Ku[c] = static_cast<float>(aqx::kMillivoltsPerCode);
    s->channels.ProbeFreq[c] = {2.0f, 4.0f, 50.0f, -1.0f, -1.0f, -1.0f, -1.0f};
    for (int i = 1; i <= kSamples; ++i) {
      const double t = static_cast<double>(i - 1) / kSampleHz;
      const double code = c == 1 ? ((i - 1) % (kSampleHz / 2) < 25 ? 4000.0 : 0.0)
                                 : 300.0 * std::cos(2 * std::numbers::pi * 2.0 * t + c) +
                                       80.0 * std::cos(2 * std::numbers::pi * 50.0 * t);
      s->SignalData.at(i, c) = static_cast<int16_t>(std::lround(code));
    }
  }
  aqx::RecountChannelUsedCount(*s);
  aqx::ScriptedPrompts prompts;
  for (int k = 0; k < kFiles; ++k) {
    s->PathFileData = QDir(folder).filePath(QStringLiteral("rec%1.aqx").arg(k, 3, 10, QLatin1Char('0')));
    if (!aqx::WriteDataFile(*s, prompts)) return false;
  }
  return true;
}

void BM_ProtocolOfAFolder(benchmark::State& bench) {
  const QTemporaryDir dir(QDir::currentPath() + QStringLiteral("/bench_reports_XXXXXX"));
  const QString folder = dir.path();
  if (!WriteFolder(folder)) {
    bench.SkipWithError("the recordings could not be written");
    return;
  }
  const QString output = QDir(folder).filePath(QStringLiteral("Протокол.xlsx"));
  const QStringList files = aqx::reports::FolderRecordings(folder);
  const aqx::FileReaderTable readers = aqx::StandardFileReaders();
  auto state = std::make_unique<AppState>();
  auto analysis = std::make_unique<aqx::views::AnalysisResults>();
  aqx::ScriptedPrompts prompts;
  bool ok = true;
  aqx::bench::Compare(
      bench,
      [&] {
        prompts.answers = {aqx::PromptAnswer::Yes};
        prompts.texts = {output};
        aqx::reports::ReportContext ctx{*state, prompts, readers, {}};
        ok = aqx::reports::MakeFolderProtocol(ctx, folder).outcome == aqx::reports::ReportOutcome::Written && ok;
      },
      [&] {
        AppState& s = *state;
        s.BatchMode = true;
        for (const QString& path : files) {
          s.PathFileData = path;
          ok = aqx::FindFileReader(readers, path)(s, prompts) && ok;
          s.SelectFirst = 0;
          s.SelectLast = 0;
          aqx::ApplyBlockRule(s);
          benchmark::DoNotOptimize(aqx::views::RunOtmetchick(s));
          aqx::views::AccountSignalMaxAll(s);
          for (int c = 1; c <= aqx::ChannelCount(s); ++c) {
            const int32_t type = s.channels.Type[c];
            if (type != aqx::sensor::Runout && type != aqx::sensor::Vibration) continue;
            s.FirstChannelActive = c;
            aqx::views::AccountChannelProbe(s, *analysis, c);
            benchmark::DoNotOptimize(analysis->BandMax);
            if (type == aqx::sensor::Runout) benchmark::DoNotOptimize(aqx::views::RunoutShift(s, c));
          }
        }
        s.BatchMode = false;
      });
  if (!ok || files.size() != kFiles) bench.SkipWithError("a file could not be read or the protocol not written");
}

}  // namespace

BENCHMARK(BM_ProtocolOfAFolder)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(4);
BENCHMARK_MAIN();
