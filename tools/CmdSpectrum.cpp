// aquilonix-tool spectrum FILE --channel C [--first A --last B --fft N]
// [--json] [--csv OUT.csv]: what the spectrum window shows for a stretch of a
// channel, with the analyser settings' block size and window: the line
// spacing, the lines, the largest line, the strongest lines and the probe
// read-outs; --csv writes every line as frequency;amplitude.

#include "core/Numeric.h"
#include "core/PlainFile.h"
#include "core/SpectrumSetup.h"
#include "tools/SpectrumSupport.h"
#include "views/Analysis.h"
#include "views/spectrum/SpectrumView.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>

namespace aqx::tool {

namespace {

constexpr int kStrongestLines = 10;

const QStringList kValueOptions = {QStringLiteral("--channel"), QStringLiteral("--first"), QStringLiteral("--last"),
                                   QStringLiteral("--fft"), QStringLiteral("--csv")};

bool WriteCsv(const QString& path, const QString& text) {
  const QByteArray bytes = text.toUtf8();
  int error = 0;
  if (ReplaceFileContents(path, std::span<const char>(bytes.constData(), static_cast<size_t>(bytes.size())), error)) return true;
  Print(stderr, QStringLiteral("spectrum: cannot write '%1': %2\n").arg(path, ReasonOfError(error, true)));
  return false;
}

}  // namespace

int RunSpectrum(ToolContext& ctx) {
  const QStringList positionals = Positionals(ctx.args, kValueOptions);
  if (positionals.size() != 1) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool spectrum FILE --channel C [--first A --last B --fft N] "
                                 "[--json] [--csv OUT.csv]\n"));
    return kExitRefused;
  }
  auto state = std::make_unique<AppState>();
  AppState& s = *state;
  SpectrumRequest request;
  if (!LoadForSpectrum(ctx, QStringLiteral("spectrum"), positionals[0], s, request)) return kExitRefused;
  auto r = std::make_unique<views::AnalysisResults>();
  views::AccountChannelSpectrum(s, *r, request.channel);
  views::AccountChannelProbeValues(s, *r);
  SetChannelUnit(s, 0.0);
  const QString unit = s.UnitName;

  const QString csvPath = OptionValue(ctx.args, QStringLiteral("--csv"));
  if (!csvPath.isEmpty() &&
      !WriteCsv(csvPath, views::SpectrumLinesText(*r, s.SpectrLineCount, s.StepDesc, QLatin1Char(';'), false)))
    return kExitFailure;

  const std::vector<int> strongest = views::StrongestLines(*r, s.SpectrLineCount, kStrongestLines);
  const auto& probes = s.channels.ProbeFreq[request.channel];
  if (HasFlag(ctx.args, QStringLiteral("--json"))) {
    QJsonObject o;
    o[QStringLiteral("file")] = positionals[0];
    o[QStringLiteral("channel")] = request.channel;
    o[QStringLiteral("first")] = request.first;
    o[QStringLiteral("last")] = request.last;
    o[QStringLiteral("unit")] = unit;
    o[QStringLiteral("BlockSizeFFT")] = s.BlockSizeFFT;
    o[QStringLiteral("SmoothingWindow")] = SmoothingWindowNames().value(s.options.config.SmoothingWindow);
    o[QStringLiteral("StepDesc")] = s.StepDesc;
    o[QStringLiteral("SpectrLineCount")] = s.SpectrLineCount;
    o[QStringLiteral("SpectrMax")] = r->SpectrMax;
    o[QStringLiteral("FreqOneGarmonic")] = s.FreqOneGarmonic;
    QJsonArray lines;
    for (int k : strongest) {
      QJsonObject line;
      line[QStringLiteral("frequency")] = k * s.StepDesc;
      line[QStringLiteral("amplitude")] = r->SpectrAmplitude[static_cast<size_t>(k)];
      line[QStringLiteral("phase")] = r->SpectrPhase[static_cast<size_t>(k)];
      lines.append(line);
    }
    o[QStringLiteral("lines")] = lines;
    QJsonArray freq, amplitude, phase;
    freq.append(s.FreqOneGarmonic);
    for (float hz : probes) freq.append(static_cast<double>(hz));
    for (int i = 0; i < views::kProbeResults; ++i) {
      amplitude.append(r->ProbeAmplitude[static_cast<size_t>(i)]);
      phase.append(r->ProbePhase[static_cast<size_t>(i)]);
    }
    o[QStringLiteral("ProbeFreq")] = freq;
    o[QStringLiteral("ProbeAmplitude")] = amplitude;
    o[QStringLiteral("ProbePhase")] = phase;
    Print(ctx.out, QString::fromUtf8(QJsonDocument(o).toJson(QJsonDocument::Indented)));
    return kExitOk;
  }
  Print(ctx.out, QStringLiteral("channel %1, samples %2 - %3, block %4, window %5\n")
                     .arg(request.channel)
                     .arg(request.first)
                     .arg(request.last)
                     .arg(s.BlockSizeFFT)
                     .arg(SmoothingWindowNames().value(s.options.config.SmoothingWindow)));
  Print(ctx.out, QStringLiteral("StepDesc %1 Hz, SpectrLineCount %2, SpectrMax %3 %4, FreqOneGarmonic %5 Hz\n")
                     .arg(s.StepDesc, 0, 'g', 10)
                     .arg(s.SpectrLineCount)
                     .arg(r->SpectrMax)
                     .arg(unit)
                     .arg(s.FreqOneGarmonic, 0, 'g', 10));
  Print(ctx.out, QStringLiteral("strongest lines (peak to peak, %1):\n").arg(unit));
  for (int k : strongest)
    Print(ctx.out, QStringLiteral("  %1 Hz  %2\n").arg(k * s.StepDesc, 10, 'f', 4).arg(r->SpectrAmplitude[static_cast<size_t>(k)], 0, 'f', 3));
  Print(ctx.out, QStringLiteral("probes (Hz: amplitude / phase):\n"));
  for (int i = 0; i < views::kProbeResults; ++i) {
    const double hz = i == 0 ? s.FreqOneGarmonic : probes[static_cast<size_t>(i - 1)];
    if (!(hz > 0.0)) continue;
    Print(ctx.out, QStringLiteral("  %1: %2 / %3\n").arg(hz, 0, 'f', 3).arg(r->ProbeAmplitude[static_cast<size_t>(i)]).arg(r->ProbePhase[static_cast<size_t>(i)]));
  }
  return kExitOk;
}

}  // namespace aqx::tool
