#include "views/parameters/ParameterSteps.h"
#include "core/ChannelPhysics.h"

#include "views/signal/SignalEngine.h"

#include <algorithm>

namespace aqx::views {

namespace {
ParameterReadings ReadingsOf(const AnalysisResults& r) {
  ParameterReadings readings;
  readings.BandMax = r.BandMax;
  readings.BandMean = r.BandMean;
  readings.ProbeAmplitude = r.ProbeAmplitude[0];
  readings.ProbePhase = r.ProbePhase[0];
  return readings;
}
}  // namespace

ParameterBar OutStatusBarParameter(AppState& s, SignalViewState& v, AnalysisResults& r,
                                   int barWidthPx) {
  AccountChannelVolumeField(s, r, s.FirstChannelActive);
  return BuildParameterBar(s, v, ReadingsOf(r), barWidthPx);
}

QString OutDataParameters(AppState& s, AnalysisResults& r) {
  const int c = std::clamp(s.FirstChannelActive, 1, ChannelCount(s));
  RotorSpeed speed;
  switch (s.channels.Type[c]) {
    case sensor::Runout:
    case sensor::Vibration:
      AccountChannelProbe(s, r, c);
      break;
    case sensor::ShaftMarker:
      speed = RunOtmetchick(s);
      break;
    default:
      AccountSignalMaxAll(s);
      break;
  }
  return ParameterTableText(s, ReadingsOf(r), speed);
}

}  // namespace aqx::views
