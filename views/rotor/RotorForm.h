#pragma once
// The results of the rotor form as the engine leaves them, the call that
// computes them for the recording in memory, what a user is told when no
// form can be made, and the text report of all forms (the console).

#include "core/AppState.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace aqx::views {

inline constexpr int kFormaForms = 100;    // form 0 the average, 1..99 single forms
inline constexpr int kFormaPoles = 200;    // poles 1..199
inline constexpr int kFormaHarmonics = 10;  // harmonics 1..9
inline constexpr int kFormaHarmonicCount = 9;
inline constexpr int kFormaMinPolus = 2;
inline constexpr int kFormaMaxPolus = kFormaPoles - 1;
// No form computed yet.
inline constexpr int kFormaNotComputed = -1;

// FormaRotorAccount's arrays in the engine's layout: per form (0..99), per
// form and pole (form * 200 + pole), per pole, per form and harmonic
// (form * 10 + harmonic).
struct FormaRotorResults {
  FormaRotorResults();

  int32_t Polus = 0;
  int32_t FormaRotorN = 0;
  double FormaRotorResult = 0.0;
  std::vector<double> FormaSpeed;
  std::vector<double> FormaPoleRms;
  std::vector<double> FormaPolePercent;
  std::vector<double> FormaRms;
  std::vector<double> FormaDistortion;
  std::vector<double> FormaPoleMin;
  std::vector<double> FormaPoleMax;
  std::vector<double> FormaGarmonicAmplitude;
  std::vector<double> FormaGarmonicPhase;
  // 0 when the arrays hold the forms of the recording in memory, else why not.
  int Failure = kFormaNotComputed;

  bool valid() const { return Failure == 0; }
  // Form held to 0..FormaRotorN, pole to 1..199, harmonic to 1..9.
  double percent(int form, int pole) const;
  double poleRms(int form, int pole) const;
  double poleMin(int pole) const;
  double poleMax(int pole) const;
  double amplitude(int form, int harmonic) const;
  double phase(int form, int harmonic) const;
  double speed(int form) const;
  double rms(int form) const;
  double distortion(int form) const;
};

// The turn-probe channel the form is made from: the active channel when it
// is one, else the first recorded one; 0 when there is none.
int FormaRotorChannel(const AppState& s);

// FormaRotorAccount over the whole store. Refuses a pole count outside
// 2..199 before the engine sees it; the engine may correct Polus from the
// EMF, and a corrected count is taken into the recording. Returns 0 or the
// reason (the engine's AQX_FORMA_* numbers); on failure the recording is left
// as it was and the results are marked as holding no form.
int RunFormaRotorAccount(AppState& s, FormaRotorResults& r);

// What the user is told when no form can be made.
QString FormaRotorFailureText(int failure, const AppState& s);
inline const char kFormaRotorTitle[] = "Форма ротора";

// The text report of all forms: six sections, fields tab-separated, lines
// ended by CR LF.
QString FormaRotorConsoleText(const AppState& s, const FormaRotorResults& r);

}  // namespace aqx::views
