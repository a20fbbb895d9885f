#pragma once
// Zero-phase IIR filtering shared by the filter table, the run-out filter
// and the band levels.
//
// A filter is a cascade of second-order sections run forward and then
// backward over the record, which squares the magnitude and cancels the
// phase. The record is extended at both ends by a prediction from its edge
// (an autoregressive model): sinusoids go on with their phase and the mean
// stays, where a reflection would either shift the mean of an oscillation or
// break its slope, and either shows as a transient at the record's edge.
// Every pass starts in the steady state of its first value, and the extension
// is long enough for what is left of that start to die out before the record.

#include "engine/EngineCommon.h"

#include <span>
#include <vector>

namespace aqx::engine {

// y = (b0 + b1 z^-1 + b2 z^-2) / (1 + a1 z^-1 + a2 z^-2) x
struct Section {
  double b0, b1, b2, a1, a2;
  double dcGain() const {
    const double den = 1.0 + a1 + a2;
    return den != 0.0 ? (b0 + b1 + b2) / den : 0.0;
  }
};

struct Cascade {
  std::vector<Section> sections;
  int32_t settleSamples = 0;  // reflection length that lets the passes settle
};

enum class Pass { LowPass, HighPass };

// Usable edge: positive, finite, below half the sampling frequency.
bool Usable(double hz, double sampleHz);

// Butterworth of order 4 by the bilinear transform, its cut-off placed so
// that the forward-backward response is down 3 dB at cutoffHz.
void AddButterworth(Cascade& c, Pass pass, double cutoffHz, double sampleHz);

// Second-order notch (notch = true) or resonator at centreHz with quality q.
void AddResonance(Cascade& c, bool notch, double centreHz, double q, double sampleHz);

// Values each side of a record that let the passes of the cascade settle.
int32_t ExtensionFor(const Cascade& cascade);

// Writes x[0..count-1] to extended[pad..pad+count) (x may already lie there)
// and continues it by `pad` predicted values on both sides.
void ExtendByPrediction(const double* x, int32_t count, int32_t pad, double* extended);

// The same continuation from the record's edges alone: head and tail hold
// its first and last PredictionWindow(count) values; `pad` values go to
// before[0..pad) (in the record's order, the last just before x[0]) and to
// after[0..pad).
int32_t PredictionWindow(int32_t count);
void PredictEdges(std::span<const double> head, std::span<const double> tail, int32_t pad, double* before,
                  double* after);

// Filters x[0..count-1] in place; `work` is reused scratch.
void FilterZeroPhase(const Cascade& cascade, double* x, int32_t count, std::vector<double>& work);

}  // namespace aqx::engine
