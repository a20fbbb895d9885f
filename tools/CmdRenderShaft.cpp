// aquilonix-tool render trajectory|rotor-form|rotor-diagram|rotor-spectrum
// FILE OUT.png [--width W --height H --channel C --first A --last B --form N
// --first-harmonic]: the trajectory or a rotor form window's picture drawn by
// the windows' own view code. For the trajectory --channel is the active
// channel (paired with the next), --first and --last the stretch and
// --first-harmonic the ellipse of the first harmonic; for the rotor form
// --channel is the turn probe and --form the form, 0 the average.

#include "core/ChannelPhysics.h"
#include "tools/RenderSupport.h"
#include "ui/paint/PaintDrawList.h"
#include "views/Analysis.h"
#include "views/rotor/RotorView.h"
#include "views/signal/SignalEngine.h"
#include "views/trajectory/TraectoriaView.h"

#include <memory>

namespace aqx::tool {

namespace {

const QStringList kKinds = {QStringLiteral("trajectory"), QStringLiteral("rotor-form"), QStringLiteral("rotor-diagram"),
                            QStringLiteral("rotor-spectrum")};

int RenderTrajectory(ToolContext& ctx, AppState& s, int widthPx, int heightPx, const QString& output,
                     const views::FontMetrics& fm) {
  const auto channel = IntOption(ctx.args, QStringLiteral("--channel"), 0, 1, kMaxChannels);
  const auto first = IntOption(ctx.args, QStringLiteral("--first"), 1, 1, std::max(1, s.SignalDataN));
  const auto last = IntOption(ctx.args, QStringLiteral("--last"), s.SignalDataN, 1, std::max(1, s.SignalDataN));
  if (!channel || !first || !last) return kExitRefused;
  if (*first > *last) {
    Print(stderr, QStringLiteral("render: --first %1 lies past --last %2\n").arg(*first).arg(*last));
    return kExitRefused;
  }
  int f = *channel != 0 ? *channel : s.FirstChannelActive;
  if (f < 1 || f > ChannelCount(s) || s.channels.Channel[f] != 1) f = *channel != 0 ? f : FirstUsedChannel(s);
  if (f < 1 || f > ChannelCount(s) || s.channels.Channel[f] != 1) {
    Print(stderr, QStringLiteral("render: channel %1 holds no data in '%2'\n").arg(f).arg(s.PathFileData));
    return kExitRefused;
  }
  s.FirstChannelActive = f;
  s.ViewFirst = *first;
  s.ViewLast = *last;
  s.options.traectoria.TraectoriaFirstGarmonic = HasFlag(ctx.args, QStringLiteral("--first-harmonic"));
  auto analysis = std::make_unique<views::AnalysisResults>();
  views::AccountSignalMaxAll(s);
  if (FirstMarkerChannel(s) != 0) analysis->speed = views::RunOtmetchick(s);
  views::TraectoriaViewState v;
  views::InitTraectoriaView(s, v);
  views::ResizeTraectoria(v, widthPx, heightPx);
  const views::DrawList picture = views::BuildTraectoria(s, *analysis, v, fm);
  if (const QStringList refusal = views::TraectoriaRefusal(s, v); !refusal.isEmpty()) {
    // The window writes the refusal into its picture; here it is the message.
    Print(stderr, QStringLiteral("render: ") + refusal.join(QStringLiteral(": ")) + QLatin1Char('\n'));
    return kExitRefused;
  }
  if (!SavePicture(picture, output)) return kExitFailure;
  const views::TraectoriaStatus st = views::OutInfoToStatusBar(s, v);
  Print(ctx.out, QStringLiteral("%1: %2 x %3, %4, channels %5 and %6\n")
                     .arg(output)
                     .arg(v.widthPx)
                     .arg(v.heightPx)
                     .arg(v.Caption)
                     .arg(v.ChannelX)
                     .arg(v.ChannelY));
  Print(ctx.out, st.text[0] + st.text[1] + st.text[3] + QLatin1Char('\n'));
  return kExitOk;
}

int RenderForma(ToolContext& ctx, AppState& s, const QString& kind, int widthPx, int heightPx, const QString& output,
                const views::FontMetrics& fm) {
  auto results = std::make_unique<views::FormaRotorResults>();
  if (!ComputeRotorForm(ctx, s, *results, "render")) return kExitRefused;
  const auto form = IntOption(ctx.args, QStringLiteral("--form"), 0, 0, results->FormaRotorN);
  if (!form) return kExitRefused;
  views::FormaViewState v;
  v.widthPx = widthPx;
  v.heightPx = heightPx;
  v.HScroll = *form;
  views::InitFormaData(*results, v);
  const views::DrawList picture = kind == QStringLiteral("rotor-form")      ? views::DrawFormaRotor(s, *results, v, fm)
                                  : kind == QStringLiteral("rotor-diagram") ? views::DrawFormaRotorDiagram(s, *results, v, fm)
                                                                            : views::DrawFormaSpectrForms(s, *results, v, fm);
  if (!SavePicture(picture, output)) return kExitFailure;
  const views::FormaStatus st = views::PrintToStatusbar(*results, v.HScroll);
  Print(ctx.out, QStringLiteral("%1: %2 x %3, %4 of %5, %6 poles, distortion %7, %8\n")
                     .arg(output)
                     .arg(v.widthPx)
                     .arg(v.heightPx)
                     .arg(st.Form)
                     .arg(results->FormaRotorN)
                     .arg(results->Polus)
                     .arg(st.PrPi, st.NobForm));
  return kExitOk;
}

}  // namespace

bool IsShaftView(const QString& kind) { return kKinds.contains(kind); }

int RenderShaftView(ToolContext& ctx, const QStringList& positionals) {
  const QString& kind = positionals[0];
  const auto width = IntOption(ctx.args, QStringLiteral("--width"), kDefaultWidthPx, views::kMinPicturePx, kMaxSidePx);
  const auto height = IntOption(ctx.args, QStringLiteral("--height"), kDefaultHeightPx, views::kMinPicturePx, kMaxSidePx);
  if (!width || !height) return kExitRefused;
  const std::unique_ptr<AppState> state = ReadRecording(ctx, positionals[1], "render");
  if (!state) return kExitRefused;
  const ui::QtFontMetrics font(ui::DefaultViewFont());
  if (kind == QStringLiteral("trajectory"))
    return RenderTrajectory(ctx, *state, *width, *height, positionals[2], font.metrics());
  return RenderForma(ctx, *state, kind, *width, *height, positionals[2], font.metrics());
}

}  // namespace aqx::tool
