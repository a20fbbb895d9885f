#include "views/signal/SignalEngine.h"
#include "core/ChannelPhysics.h"

#include "engine/Aquilonix.h"

#include <algorithm>

namespace aqx::views {

void ThinChannel(const AppState& s, int channel, int widthPx, int heightPx, int channelY, double pixelsPerSample,
                 double pixelsPerUnit, std::vector<int32_t>& columns) {
  const int w = std::max(10, widthPx);
  columns.assign(static_cast<size_t>(w) * 2, channelY);
  // The offset takes part only with AccountOffset; the engine reads one per
  // channel.
  PerChannel<int32_t> offsets;
  if (s.AccountOffset) offsets = s.SignalOffset;
  AccountDataBuildSignal(w, channelY, pixelsPerSample, pixelsPerUnit, kMillivoltsPerCode, heightPx, channel - 1, s.SignalData.data(),
                         std::clamp(s.SignalDataN, 0, kMaxSamples), s.ViewFirst, s.ViewLast, s.channels.Ku.data(),
                         s.channels.Zero.data(), s.channels.Volume.data(), offsets.data(), columns.data());
}

RotorSpeed RunOtmetchick(AppState& s, const SignalViewOptions& o) {
  RotorSpeed speed;
  speed.OtmetchickLevel = o.OtmetchickLevel;
  speed.OtmetchickDirect = o.OtmetchickDirect;
  PerChannel<int32_t> used = s.channels.Channel;
  for (int c = ChannelCount(s) + 1; c <= kMaxChannels; ++c) used[c] = 0;
  int32_t count = 0;
  Otmetchick(s.SignalData.data(), std::clamp(s.SignalDataN, 0, kMaxSamples), used.data(), s.channels.Type.data(),
             &count, s.ShaftMarks.data(), s.FreqDesc, s.FreqRotorN, &speed.RotorSpeedMin, &speed.RotorSpeedMax,
             &speed.RotorPercentMin, &speed.RotorPercentMax, o.OtmetchickAuto, &speed.OtmetchickLevel,
             &speed.OtmetchickDirect, s.ViewFirst, s.ViewLast, s.SelectFirst, s.SelectLast, o.OtmetchickDrebezg,
             o.OtmetchickNoise);
  s.ShaftMarkCount = std::clamp(count, 0, kMaxShaftMarks);
  return speed;
}

SignalViewOptions EngineOptionsFromSettings(const AppState& s) {
  SignalViewOptions o;
  o.StatusFilterConst = s.options.parameters.StatusFilterConst;
  o.SignalParameterMax = s.options.parameters.SignalParameterMax;
  const OtmetchickOptions& otm = s.options.otmetchick;
  o.OtmetchickAuto = otm.OtmetchickAuto;
  o.OtmetchickLevel = otm.OtmetchickLevel;
  o.OtmetchickDirect = otm.OtmetchickDirect;
  o.OtmetchickDrebezg = otm.OtmetchickDrebezg;
  o.OtmetchickNoise = otm.OtmetchickNoise;
  return o;
}

}  // namespace aqx::views
