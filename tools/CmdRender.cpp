// aquilonix-tool render signal FILE OUT.png [--width W --height H --channel C
// --first A --last B --block N --scale M|min]: draws the signal view of a
// recording without a window, with the view code of the window program, and
// writes it as a PNG image. --block and --scale choose the block of a
// continuous recording as the block commands of the main window do. The
// trajectory and the rotor form windows are drawn by CmdRenderShaft.cpp.

#include "core/Numeric.h"
#include "files/FileReaders.h"
#include "files/SolidFile.h"
#include "tools/SpectrumSupport.h"
#include "tools/RenderSupport.h"
#include "tools/ToolCommand.h"
#include "views/Analysis.h"
#include "views/parameters/ParameterSteps.h"
#include "views/signal/SignalView.h"

#include "ui/paint/PaintDrawList.h"

#include <cmath>
#include <memory>
#include <optional>

namespace aqx::tool {

namespace {

const QStringList kValueOptions = {QStringLiteral("--width"), QStringLiteral("--height"), QStringLiteral("--channel"),
                                   QStringLiteral("--first"), QStringLiteral("--last"), QStringLiteral("--block"),
                                   QStringLiteral("--scale"), QStringLiteral("--parts"), QStringLiteral("--fft"),
                                   QStringLiteral("--form")};

// The channel to draw: the one asked for, else the file's current one, else
// the first channel in use. 0 when the recording has no channel in use.
int ChooseChannel(AppState& s, int asked) {
  int c = asked;
  if (c == 0) {
    c = s.FirstChannelActive;
    if (c < 1 || c > ChannelCount(s) || s.channels.Channel[c] != 1) c = FirstUsedChannel(s);
  }
  if (c == 0) return 0;
  if (asked != 0 || !s.Imposition) {
    for (int k = 1; k <= kMaxChannels; ++k) s.channels.Active[k] = k == c ? 1 : 0;
  }
  s.FirstChannelActive = c;
  return c;
}

// Zoom and position that show A..B: the deepest power of two whose window
// still holds the stretch, centred on it.
void ShowStretch(AppState& s, views::SignalViewState& v, int first, int last) {
  const int n = std::max(1, s.SignalDataN);
  const double wanted = static_cast<double>(last) - first + 1.0;
  int zoom = 0;
  while (zoom < v.SliderHMax && std::ldexp(static_cast<double>(n), -(zoom + 1)) >= wanted) ++zoom;
  v.SliderH = zoom;
  v.CentreSample = RoundHalfEven((static_cast<double>(first) + last) / 2.0);
  views::ConfigSliderH(s, v);
}

// The block of a continuous recording asked for by --block and --scale ("min"
// for the whole file in one block). False after a message.
bool ChooseSolidBlock(ToolContext& ctx, AppState& s) {
  const bool asked = ctx.args.contains(QStringLiteral("--block")) || ctx.args.contains(QStringLiteral("--scale"));
  if (!asked) return true;
  if (!s.SolidMode) {
    Print(stderr, QStringLiteral("render: --block and --scale are for continuous recordings\n"));
    return false;
  }
  const int minimal = MinimalBlockScale(s.SolidBlockCount);
  const QString scaleText = OptionValue(ctx.args, QStringLiteral("--scale"));
  if (scaleText == QStringLiteral("min")) {
    ApplySolidBlockCommand(s, SolidBlockCommand::Min);
  } else {
    const auto scale = IntOption(ctx.args, QStringLiteral("--scale"), 1, 1, minimal);
    if (!scale) return false;
    if ((*scale & (*scale - 1)) != 0) {
      Print(stderr, QStringLiteral("render: --scale takes a power of two, not %1\n").arg(*scale));
      return false;
    }
    s.SolidBlockM = *scale;
  }
  const auto block = IntOption(ctx.args, QStringLiteral("--block"), 1, 1,
                               std::max(1, ScaledBlockCount(s.SolidBlockCount, s.SolidBlockM)));
  if (!block) return false;
  s.SolidBlockN = *block;
  return SubReadSolidBlock(s, *ctx.prompts) == 0;
}

}  // namespace

bool CommandNeedsGui(const QString& name) { return name == QStringLiteral("render"); }

int RunRender(ToolContext& ctx) {
  const QStringList positionals = Positionals(ctx.args, kValueOptions);
  if (positionals.size() == 3 && (positionals[0] == QStringLiteral("spectrum") || positionals[0] == QStringLiteral("cascade")))
    return RunRenderSpectrum(ctx, positionals);
  if (positionals.size() == 3 && IsShaftView(positionals[0])) return RenderShaftView(ctx, positionals);
  if (positionals.size() != 3 || positionals[0] != QStringLiteral("signal")) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool render signal|spectrum|cascade|trajectory|rotor-form|rotor-diagram|"
                                 "rotor-spectrum FILE OUT.png [--width W --height H --channel C --first A --last B "
                                 "--block N --scale M|min --parts N --fft N --form N]\n"));
    return kExitRefused;
  }
  const QString input = positionals[1];
  const QString output = positionals[2];
  const auto width = IntOption(ctx.args, QStringLiteral("--width"), kDefaultWidthPx, views::kMinPicturePx, kMaxSidePx);
  const auto height = IntOption(ctx.args, QStringLiteral("--height"), kDefaultHeightPx, views::kMinPicturePx, kMaxSidePx);
  const auto channel = IntOption(ctx.args, QStringLiteral("--channel"), 0, 1, kMaxChannels);
  if (!width || !height || !channel) return kExitRefused;

  const std::unique_ptr<AppState> state = ReadRecording(ctx, input, "render");
  if (!state) return kExitRefused;
  AppState& s = *state;
  if (!ChooseSolidBlock(ctx, s)) return kExitRefused;

  const auto first = IntOption(ctx.args, QStringLiteral("--first"), 1, 1, std::max(1, s.SignalDataN));
  const auto last = IntOption(ctx.args, QStringLiteral("--last"), s.SignalDataN, 1, std::max(1, s.SignalDataN));
  if (!first || !last) return kExitRefused;
  if (*first > *last) {
    Print(stderr, QStringLiteral("render: --first %1 lies past --last %2\n").arg(*first).arg(*last));
    return kExitRefused;
  }
  if (*channel != 0 && (*channel > ChannelCount(s) || s.channels.Channel[*channel] != 1)) {
    Print(stderr, QStringLiteral("render: channel %1 holds no data in '%2'\n").arg(*channel).arg(input));
    return kExitRefused;
  }
  const int shown = ChooseChannel(s, *channel);

  views::SignalViewState view;
  view.widthPx = *width;
  view.heightPx = *height;
  views::InitSignalView(s, view);
  ShowStretch(s, view, *first, *last);
  auto analysis = std::make_unique<views::AnalysisResults>();
  views::AccountSignalMaxAll(s);
  views::AccountChannelY0(s, view);
  views::SetY0(s, view);

  const ui::QtFontMetrics font(ui::DefaultViewFont());
  const views::FontMetrics& metrics = font.metrics();
  const views::DrawList picture = views::BuildSignal(s, view, metrics);
  if (!SavePicture(picture, output)) return kExitFailure;

  const views::SignalStatus status = views::OutInfoToStatusBar(s, view);
  Print(ctx.out, QStringLiteral("%1: %2 x %3, channel %4, samples %5 - %6 of %7\n")
                     .arg(output)
                     .arg(view.widthPx)
                     .arg(view.heightPx)
                     .arg(shown)
                     .arg(s.ViewFirst)
                     .arg(s.ViewLast)
                     .arg(s.SignalDataN));
  if (s.SolidMode) {
    const SolidBlockControls block = SolidBlockControlState(s, false);
    Print(ctx.out, QStringLiteral("block %1 at %2, %3 Hz\n").arg(block.blockText, block.scaleText).arg(ChannelRateHz(s)));
  }
  Print(ctx.out, status[views::SignalPanel::Window] + status[views::SignalPanel::Scale] +
                     status[views::SignalPanel::Dimension] + QLatin1Char('\n'));
  if (shown != 0) {
    views::AccountChannelSpectrum(s, *analysis, shown);
    views::AccountChannelProbeValues(s, *analysis);
    const views::ParameterBar bar = views::OutStatusBarParameter(s, view, *analysis, view.widthPx);
    if (!bar.panels.empty()) Print(ctx.out, view.ChannelParameterText[shown] + QLatin1Char('\n'));
  }
  return kExitOk;
}

}  // namespace aqx::tool
