#include "tools/SpectrumSupport.h"

#include "core/Config.h"
#include "files/FileReaders.h"
#include "tools/ToolSettings.h"

#include <algorithm>

namespace aqx::tool {

bool LoadForSpectrum(ToolContext& ctx, const QString& command, const QString& path, AppState& s, SpectrumRequest& r) {
  const auto store = OpenToolSettings(ctx);
  LoadConfigReg(s, *store);
  const int settingsBlock = s.BlockSizeFFTa;
  const FileReadFn read = FindFileReader(StandardFileReaders(), path);
  if (!read) {
    Print(stderr, QStringLiteral("%1: '%2' is not a file type the program reads (aqx, zrk, rsl, wav)\n").arg(command, path));
    return false;
  }
  s.PathFileData = path;
  s.BatchMode = true;
  if (!read(s, *ctx.prompts)) return false;
  RecountChannelUsedCount(s);
  const auto channel = IntOption(ctx.args, command, QStringLiteral("--channel"), 0, 1, kMaxChannels);
  const auto block = IntOption(ctx.args, command, QStringLiteral("--fft"), settingsBlock, 0, kMaxSamples);
  const int n = std::max(1, s.SignalDataN);
  const auto first = IntOption(ctx.args, command, QStringLiteral("--first"), 1, 1, n);
  const auto last = IntOption(ctx.args, command, QStringLiteral("--last"), n, 1, n);
  if (!channel || !block || !first || !last) return false;
  if (s.SignalDataN < 2) {
    Print(stderr, QStringLiteral("%1: '%2' holds fewer than two samples: no spectrum\n").arg(command, path));
    return false;
  }
  if (*first >= *last) {
    Print(stderr, QStringLiteral("%1: the stretch --first %2 --last %3 is empty: a spectrum needs two samples or more\n")
                      .arg(command)
                      .arg(*first)
                      .arg(*last));
    return false;
  }
  r.channel = *channel != 0 ? *channel : s.FirstChannelActive;
  if (r.channel < 1 || r.channel > ChannelCount(s) || s.channels.Channel[r.channel] != 1) {
    if (*channel != 0) {
      Print(stderr, QStringLiteral("%1: channel %2 is off in '%3' (no samples recorded)\n").arg(command).arg(*channel).arg(path));
      return false;
    }
    r.channel = FirstUsedChannel(s);
    if (r.channel == 0) {
      Print(stderr, QStringLiteral("%1: '%2' has no channel in use\n").arg(command, path));
      return false;
    }
  }
  for (int c = 1; c <= kMaxChannels; ++c) s.channels.Active[c] = c == r.channel ? 1 : 0;
  s.FirstChannelActive = r.channel;
  s.Imposition = false;
  s.BlockSizeFFT = *block;
  s.ViewFirst = r.first = *first;
  s.ViewLast = r.last = *last;
  s.SelectFirst = s.SelectLast = 0;
  return true;
}

}  // namespace aqx::tool
