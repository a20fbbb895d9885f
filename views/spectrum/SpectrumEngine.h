#pragma once
// The engine calls of the spectrum family, each in one place: a channel's
// spectrum over rows with the settings' window and overlap, the decade map
// of its lines onto pixel columns, and the filter over the store.

#include "core/AppState.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace aqx::views {

class EditHistory;

struct SpectrumOut {
  double* amplitude = nullptr;  // kSpectrumLines each; phase and real may be null
  double* phase = nullptr;
  double* real = nullptr;
  double StepDesc = 0.0;
  int32_t SpectrLineCount = 0;
  int32_t SpectrMax = 0;
  // Amplitudes alone: the phases need not be turned to the shaft marks, which
  // saves a rotation per line and leaves every amplitude as it is.
  bool amplitudeOnly = false;
};

// The spectrum of `channel` over the selection when both ends are set, else
// over first..last, with BlockSizeFFT, the smoothing window and overlap of
// the settings (Hanning at half overlap being the engine's own path). Step,
// lines and maximum come back in `out`; the state is not changed.
void SpectrumOfRows(const AppState& s, int channel, int selectFirst, int selectLast, int first, int last,
                    SpectrumOut& out);

// Calls visit(line, x) for the lines 0.. whose frequency k*step lies on the
// decade axis of widthPx with G divisions up to topHz, x in pixels (double),
// decade by decade without a logarithm per line.
template <class Visit>
void ForEachLineX(int lineCount, double stepHz, double widthPx, int gridDivisions, double topHz, Visit visit) {
  if (lineCount <= 0 || !(stepHz > 0.0) || gridDivisions <= 0) return;
  const double first = widthPx * 10.0 / gridDivisions;
  const double decade = widthPx * 9.0 / gridDivisions;
  int k = 0;
  for (; k < lineCount && k * stepHz <= std::min(10.0, topHz); ++k) visit(k, first * (k * stepHz) / 10.0);
  double low = 10.0;
  double origin = first;
  while (low < topHz && k < lineCount) {
    const double high = std::min(low * 10.0, topHz);
    const double pixelsPerHz = decade / (9.0 * low);
    for (; k < lineCount && k * stepHz <= high; ++k) visit(k, origin + (k * stepHz - low) * pixelsPerHz);
    origin += decade;
    low *= 10.0;
  }
}

// Largest amplitude per pixel column (-1 where no line falls) of a spectrum
// on the decade axis: the cascade's parts, kept instead of their spectra.
std::vector<float> DecadeColumnMaxima(const double* amplitude, int lineCount, double stepHz, int widthPx,
                                      int gridDivisions, double topHz);

// Runs the filter table over the store when a channel in use has an entry;
// the recording then counts as not saved. False when nothing was filtered.
// With a history the filtering is a step that can be undone.
bool FilterSamples(AppState& s, EditHistory* history = nullptr);

}  // namespace aqx::views
