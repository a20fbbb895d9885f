#include "views/Analysis.h"

#include "engine/Aquilonix.h"
#include "views/signal/SignalEngine.h"
#include "views/spectrum/SpectrumEngine.h"

#include <algorithm>

namespace aqx::views {

AnalysisResults::AnalysisResults()
    : SpectrAmplitude(kSpectrumLines), SpectrPhase(kSpectrumLines) {}

namespace {
int ValidChannel(const AppState& s, int channel) { return std::clamp(channel, 1, ChannelCount(s)); }
}  // namespace

void AccountChannelSpectrum(AppState& s, AnalysisResults& r, int channel) {
  const int c = ValidChannel(s, channel);
  SpectrumOut out{r.SpectrAmplitude.data(), r.SpectrPhase.data(), nullptr};
  SpectrumOfRows(s, c, s.SelectFirst, s.SelectLast, s.ViewFirst, s.ViewLast, out);
  if (out.SpectrLineCount > 0) s.StepDesc = out.StepDesc;
  s.SpectrLineCount = out.SpectrLineCount;
  r.SpectrMax = out.SpectrMax;
  r.SpectrChannel = c;
}

void AccountChannelVolumeField(AppState& s, AnalysisResults& r, int channel) {
  const int c = ValidChannel(s, channel);
  AccountVolumeField(c, s.channels.Ku.data(), s.channels.Type.data(), s.ViewFirst, s.ViewLast, s.SelectFirst,
                     s.SelectLast, s.SignalData.data(), r.BandMax.data(), r.BandMean.data(), s.SignalDataN, nullptr,
                     nullptr, nullptr, nullptr, s.StepDesc, s.SpectrLineCount, s.FreqRotorN, s.BlockSizeFFT,
                     std::clamp(s.ShaftMarkCount, 0, kMaxShaftMarks), s.ShaftMarks.data());
}

void AccountChannelProbeValues(AppState& s, AnalysisResults& r) {
  // The probe table as the engine takes it: seven entries per channel in a row.
  std::array<float, kMaxChannels * kProbeEntries> probeFreq{};
  for (int c = 1; c <= kMaxChannels; ++c)
    std::copy(s.channels.ProbeFreq[c].begin(), s.channels.ProbeFreq[c].end(),
              probeFreq.begin() + (c - 1) * kProbeEntries);
  AccountProbe(ValidChannel(s, s.FirstChannelActive), s.SpectrLineCount, r.ProbeAmplitude.data(),
               r.ProbePhase.data(), probeFreq.data(), nullptr, s.channels.Type.data(), s.FreqOneGarmonic, s.StepDesc,
               r.SpectrAmplitude.data(), r.SpectrPhase.data(), nullptr);
}

void AccountChannelProbe(AppState& s, AnalysisResults& r, int channel) {
  AccountChannelSpectrum(s, r, channel);
  AccountChannelVolumeField(s, r, channel);
  AccountChannelProbeValues(s, r);
}

void AccountSignalMaxAll(AppState& s) {
  // Channels past ChannelCount take no part.
  PerChannel<int32_t> used = s.channels.Channel;
  for (int c = ChannelCount(s) + 1; c <= kMaxChannels; ++c) used[c] = 0;
  AccountSignalMax(s.SignalData.data(), s.ViewFirst, std::min(s.ViewLast, s.SignalDataN), s.SignalMaxValue.data(),
                   used.data(), s.SignalOffset.data(), s.SignalMeanValue.data(), s.SignalCurrentValue.data());
}

std::array<int32_t, 5> DetectorStretch(const AppState& s) {
  return {s.SignalDataN, s.ViewFirst, s.ViewLast, s.SelectFirst, s.SelectLast};
}

void InstallEngineSteps(ViewRegistry& registry, AppState& s, AnalysisResults& r) {
  registry[RefreshStep::SpectrumFirst] = [&s, &r] { AccountChannelSpectrum(s, r, s.FirstChannelActive); };
  // SpectrumNext stays empty: the trajectory reads its second channel's
  // first harmonic itself, and a spectrum of that channel here would take
  // the active channel's place in the arrays that the probe values and the
  // spectrum view read next.
  registry[RefreshStep::Probe] = [&s, &r] { AccountChannelProbeValues(s, r); };
  registry[RefreshStep::SignalMax] = [&s] { AccountSignalMaxAll(s); };
  registry[RefreshStep::Otmetchick] = [&s, &r] {
    r.speed = RunOtmetchick(s);
    r.speedStretch = DetectorStretch(s);
  };
}

}  // namespace aqx::views
