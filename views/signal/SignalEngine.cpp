#include "views/signal/SignalEngine.h"
#include "core/ChannelPhysics.h"

#include "engine/Aquilonix.h"

#include <algorithm>

namespace aqx::views {

void ThinChannel(const AppState& s, int channel, int widthPx, int lastRow, int heightPx, int channelY,
                 double pixelsPerSample, double pixelsPerUnit, std::vector<int32_t>& columns) {
  const int w = std::max(10, widthPx);
  columns.assign(static_cast<size_t>(w) * 2, channelY);
  // The offset takes part only with AccountOffset; the engine reads one per
  // channel.
  PerChannel<int32_t> offsets;
  if (s.AccountOffset) offsets = s.SignalOffset;
  AccountDataBuildSignal(w, channelY, pixelsPerSample, pixelsPerUnit, kMillivoltsPerCode, heightPx, channel - 1, s.SignalData.data(),
                         std::clamp(s.SignalDataN, 0, kMaxSamples), s.ViewFirst, lastRow, s.channels.Ku.data(),
                         s.channels.Zero.data(), s.channels.Volume.data(), offsets.data(), columns.data());
}

namespace {

RotorSpeed Detect(AppState& s, int viewFirst, int viewLast, int selectFirst, int selectLast) {
  const OtmetchickOptions& o = s.options.otmetchick;
  RotorSpeed speed;
  speed.OtmetchickLevel = o.OtmetchickLevel;
  speed.OtmetchickDirect = o.OtmetchickDirect;
  PerChannel<int32_t> used = s.channels.Channel;
  for (int c = ChannelCount(s) + 1; c <= kMaxChannels; ++c) used[c] = 0;
  int32_t count = 0;
  Otmetchick(s.SignalData.data(), std::clamp(s.SignalDataN, 0, kMaxSamples), used.data(), s.channels.Type.data(),
             &count, s.ShaftMarks.data(), s.FreqDesc, s.FreqRotorN, &speed.RotorSpeedMin, &speed.RotorSpeedMax,
             &speed.RotorPercentMin, &speed.RotorPercentMax, o.OtmetchickAuto, &speed.OtmetchickLevel,
             &speed.OtmetchickDirect, viewFirst, viewLast, selectFirst, selectLast, o.OtmetchickDrebezg,
             o.OtmetchickNoise);
  s.ShaftMarkCount = std::clamp(count, 0, kMaxShaftMarks);
  return speed;
}

}  // namespace

RotorSpeed RunOtmetchick(AppState& s) {
  const RotorSpeed speed = Detect(s, s.ViewFirst, s.ViewLast, s.SelectFirst, s.SelectLast);
  const bool wholeRecord = s.ViewFirst <= 1 && s.ViewLast >= s.SignalDataN && s.SelectFirst <= 0;
  if (s.ShaftMarkCount >= 2 || wholeRecord || FirstMarkerChannel(s) == 0) return speed;
  // A stretch shorter than two revolutions has no speed of its own: the
  // whole record's stands in, said as such, and its marks stay drawn.
  RotorSpeed whole = Detect(s, 1, s.SignalDataN, 0, 0);
  whole.WholeRecord = true;
  return whole;
}

}  // namespace aqx::views
