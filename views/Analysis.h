#pragma once
// The engine's results that the views share, and the application's wrappers
// of the engine calls that compute them. The window program owns one
// AnalysisResults beside its AppState for the life of the process.

#include "core/AppState.h"
#include "views/ViewRefresh.h"
#include "views/rotor/RotorForm.h"
#include "views/signal/SignalView.h"

#include <array>
#include <cstdint>
#include <vector>

namespace aqx::views {

inline constexpr int kSpectrumLines = 524288;  // capacity of the spectrum arrays
inline constexpr int kProbeResults = 8;        // entry 0: first harmonic, 1..7: probe table
inline constexpr int kBandCount = 4;

struct AnalysisResults {
  AnalysisResults();
  AnalysisResults(const AnalysisResults&) = delete;
  AnalysisResults& operator=(const AnalysisResults&) = delete;

  // Spectrum of one channel (AccountSpectrFull). The in-phase part is not
  // kept: no view shows it, and at a million samples it is 4 MiB.
  std::vector<double> SpectrAmplitude;
  std::vector<double> SpectrPhase;
  int32_t SpectrMax = 0;
  int SpectrChannel = 0;  // channel the arrays hold, 0 before the first
  // Probe values of FirstChannelActive (AccountProbe).
  std::array<int32_t, kProbeResults> ProbeAmplitude{};
  std::array<int32_t, kProbeResults> ProbePhase{};
  // Band levels (AccountVolumeField).
  std::array<int32_t, kBandCount> BandMax{};
  std::array<int32_t, kBandCount> BandMean{};
  // Shaft marker detector of the last refresh, and the stretch it ran on:
  // the signal view's build in the same refresh takes it from here instead
  // of running the detector a second time.
  RotorSpeed speed;
  std::array<int32_t, 5> speedStretch{};
  // The rotor form of the last FormaRotorAccount, shared by its three windows.
  FormaRotorResults forma;
};

// What the shaft marker detector depends on besides the samples.
std::array<int32_t, 5> DetectorStretch(const AppState& s);

// AccountChannelSpectrum: the spectrum of a channel over the stretch in
// force; rewrites StepDesc and SpectrLineCount.
void AccountChannelSpectrum(AppState& s, AnalysisResults& r, int channel);
// AccountVolumeField for a channel, after its spectrum.
void AccountChannelVolumeField(AppState& s, AnalysisResults& r, int channel);
// AccountProbe of FirstChannelActive on the spectrum in the arrays.
void AccountChannelProbeValues(AppState& s, AnalysisResults& r);
// AccountChannelProbe: spectrum, band levels, probe values of a channel.
void AccountChannelProbe(AppState& s, AnalysisResults& r, int channel);
// AccountSignalMax over ViewFirst..ViewLast for every channel in use.
void AccountSignalMaxAll(AppState& s);

// Fills the engine steps of ViewRefresh (spectra, probe, peak values, shaft
// marker detector). The references must outlive the registry's use.
void InstallEngineSteps(ViewRegistry& registry, AppState& s, AnalysisResults& r);

}  // namespace aqx::views
