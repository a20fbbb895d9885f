// aquilonix-tool render spectrum|cascade FILE OUT.png [--width --height
// --channel --first --last --fft N --parts N]: the spectrum window or the
// cascade drawn without a window, with the views' own code.

#include "tools/RenderSupport.h"
#include "tools/SpectrumSupport.h"
#include "ui/paint/PaintDrawList.h"
#include "views/Analysis.h"
#include "views/signal/SignalEngine.h"
#include "views/spectrum/CascadeView.h"
#include "views/spectrum/SpectrumView.h"

#include <memory>

namespace aqx::tool {

int RunRenderSpectrum(ToolContext& ctx, const QStringList& positionals) {
  const bool cascade = positionals[0] == QStringLiteral("cascade");
  const QString command = QStringLiteral("render");
  const auto width = IntOption(ctx.args, command, QStringLiteral("--width"), 1024, views::kMinPicturePx, 16384);
  const auto height = IntOption(ctx.args, command, QStringLiteral("--height"), 600, views::kMinPicturePx, 16384);
  const auto parts = IntOption(ctx.args, command, QStringLiteral("--parts"), 8, views::kCascadeMinParts, 64);
  if (!width || !height || !parts) return kExitRefused;
  auto state = std::make_unique<AppState>();
  AppState& s = *state;
  SpectrumRequest request;
  if (!LoadForSpectrum(ctx, command, positionals[1], s, request)) return kExitRefused;
  const ui::QtFontMetrics font(ui::DefaultViewFont());
  views::DrawList picture;
  if (cascade) {
    views::CascadeViewState v;
    v.widthPx = *width;
    v.heightPx = *height;
    v.CascadeN = *parts;
    views::PlaceCorner(v, 0.0, 0.0);
    views::PrepareCascade(s, v);
    picture = views::DrawCascade(s, v);
    Print(ctx.out, QStringLiteral("%1: %2 x %3, channel %4, %5\n")
                       .arg(positionals[2])
                       .arg(v.widthPx)
                       .arg(v.heightPx)
                       .arg(request.channel)
                       .arg(views::CascadeCaption(v.CascadeN)));
  } else {
    auto r = std::make_unique<views::AnalysisResults>();
    // The phases are read from the shaft marks, as in the window.
    r->speed = views::RunOtmetchick(s);
    views::AccountChannelSpectrum(s, *r, request.channel);
    views::AccountChannelProbeValues(s, *r);
    views::SpectrViewState v;
    v.widthPx = *width;
    v.heightPx = *height;
    picture = views::BuildSpectr(s, v, *r, font.metrics());
    const views::SpectrStatus status = views::OutInfoToStatusBar(s, v);
    QString line;
    for (const QString& text : status.text) line += text;
    Print(ctx.out, QStringLiteral("%1: %2 x %3, channel %4\n%5\n").arg(positionals[2]).arg(v.widthPx).arg(v.heightPx).arg(request.channel).arg(line));
    for (const views::ParameterPanel& p : views::OutSpectrStatusBarParameter(s, *r, v.widthPx).panels) Print(ctx.out, p.text + QLatin1Char('\n'));
  }
  return SavePicture(picture, positionals[2]) ? kExitOk : kExitFailure;
}

}  // namespace aqx::tool
