// aquilonix-tool rotor-form FILE [--channel C] [--json]: the rotor form of a
// recording computed as its windows compute it, printed as the console's
// text report, or with --json as the results under their own names, form 0
// being the average.

#include "core/ChannelPhysics.h"
#include "tools/RenderSupport.h"
#include "tools/ToolCommand.h"
#include "views/rotor/RotorForm.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>

namespace aqx::tool {

namespace {

QJsonArray PerForm(const views::FormaRotorResults& r, double (views::FormaRotorResults::*value)(int) const) {
  QJsonArray a;
  for (int f = 0; f <= r.FormaRotorN; ++f) a.append((r.*value)(f));
  return a;
}

QJsonArray PerFormAndPole(const views::FormaRotorResults& r, double (views::FormaRotorResults::*value)(int, int) const) {
  QJsonArray forms;
  for (int f = 0; f <= r.FormaRotorN; ++f) {
    QJsonArray poles;
    for (int p = 1; p <= r.Polus; ++p) poles.append((r.*value)(f, p));
    forms.append(poles);
  }
  return forms;
}

QJsonArray PerFormAndHarmonic(const views::FormaRotorResults& r, double (views::FormaRotorResults::*value)(int, int) const) {
  QJsonArray forms;
  for (int f = 0; f <= r.FormaRotorN; ++f) {
    QJsonArray harmonics;
    for (int n = 1; n <= views::kFormaHarmonicCount; ++n) harmonics.append((r.*value)(f, n));
    forms.append(harmonics);
  }
  return forms;
}

QJsonArray PerPole(const views::FormaRotorResults& r, double (views::FormaRotorResults::*value)(int) const) {
  QJsonArray a;
  for (int p = 1; p <= r.Polus; ++p) a.append((r.*value)(p));
  return a;
}

QJsonObject ResultsJson(const AppState& s, const views::FormaRotorResults& r) {
  QJsonObject o;
  o[QStringLiteral("file")] = s.PathFileData;
  o[QStringLiteral("channel")] = views::FormaRotorChannel(s);
  o[QStringLiteral("Polus")] = r.Polus;
  o[QStringLiteral("FormaRotorN")] = r.FormaRotorN;
  o[QStringLiteral("FormaRotorResult")] = r.FormaRotorResult;
  o[QStringLiteral("FormaSpeed")] = PerForm(r, &views::FormaRotorResults::speed);
  o[QStringLiteral("FormaRms")] = PerForm(r, &views::FormaRotorResults::rms);
  o[QStringLiteral("FormaDistortion")] = PerForm(r, &views::FormaRotorResults::distortion);
  o[QStringLiteral("FormaPoleRms")] = PerFormAndPole(r, &views::FormaRotorResults::poleRms);
  o[QStringLiteral("FormaPolePercent")] = PerFormAndPole(r, &views::FormaRotorResults::percent);
  o[QStringLiteral("FormaPoleMin")] = PerPole(r, &views::FormaRotorResults::poleMin);
  o[QStringLiteral("FormaPoleMax")] = PerPole(r, &views::FormaRotorResults::poleMax);
  o[QStringLiteral("FormaGarmonicAmplitude")] = PerFormAndHarmonic(r, &views::FormaRotorResults::amplitude);
  o[QStringLiteral("FormaGarmonicPhase")] = PerFormAndHarmonic(r, &views::FormaRotorResults::phase);
  return o;
}

}  // namespace

bool ComputeRotorForm(ToolContext& ctx, AppState& s, views::FormaRotorResults& r, const char* command) {
  const auto channel = IntOption(ctx.args, QStringLiteral("--channel"), 0, 1, kMaxChannels, command);
  if (!channel) return false;
  if (*channel != 0) {
    const int c = *channel;
    if (c > ChannelCount(s) || s.channels.Channel[c] != 1 || s.channels.Type[c] != sensor::TurnProbe) {
      Print(stderr, QStringLiteral("%1: channel %2 of '%3' is no recorded turn probe (\"Виток\")\n")
                        .arg(QString::fromLatin1(command))
                        .arg(c)
                        .arg(s.PathFileData));
      return false;
    }
    s.FirstChannelActive = c;
  }
  if (views::RunFormaRotorAccount(s, r) != 0) {
    Print(stderr, QStringLiteral("%1: %2\n").arg(QString::fromLatin1(command), views::FormaRotorFailureText(r.Failure, s)));
    return false;
  }
  return true;
}

int RunRotorForm(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {QStringLiteral("--channel")});
  if (paths.size() != 1) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool rotor-form FILE [--channel C] [--json]\n"));
    return kExitRefused;
  }
  const std::unique_ptr<AppState> state = ReadRecording(ctx, paths[0], "rotor-form");
  if (!state) return kExitRefused;
  auto results = std::make_unique<views::FormaRotorResults>();
  if (!ComputeRotorForm(ctx, *state, *results, "rotor-form")) return kExitRefused;
  if (HasFlag(ctx.args, QStringLiteral("--json"))) {
    Print(ctx.out, QString::fromUtf8(QJsonDocument(ResultsJson(*state, *results)).toJson(QJsonDocument::Indented)));
  } else {
    Print(ctx.out, views::FormaRotorConsoleText(*state, *results));
  }
  return kExitOk;
}

}  // namespace aqx::tool
