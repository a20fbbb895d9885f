#pragma once
// The per-line loops of the spectrum, kept apart so that they can be built
// for vectorisation: a million-sample spectrum has half a million lines, and
// their amplitudes and phases would otherwise cost as much as the transform.

#include <cstdint>

namespace aqx::engine {

// exp(-2*pi*i*k*shift/L) for k in [first, last), as interleaved cos, sin.
void FillRotation(int64_t shift, int32_t blockLength, int32_t first, int32_t last, double* out);

// Lines [first, last) of a transformed block (x: lines 0..L/2 as interleaved
// complex; 1 <= first, last <= L/2), Hann-windowed from their neighbours,
// turned by `rotation` (from FillRotation over the same lines, or null) and
// scaled: peak-to-peak amplitude, phase in degrees 0..360, in-phase part.
// Without `phase` only the amplitudes are written; `real` may be null.
void WindowedLines(const double* x, int32_t first, int32_t last, const double* rotation,
                   double lineScale, double* amplitude, double* phase, double* real);

// The same lines added into running sums for block averaging: magnitude into
// `magnitudes`, the complex value into `sums` (interleaved), unscaled.
void AccumulateLines(const double* x, int32_t first, int32_t last, const double* rotation,
                     double* magnitudes, double* sums);

// Finishes a real transform of L points (L even) done as the complex
// transform of its L/2 pairs (even samples as real parts, odd ones as
// imaginary): x holds that complex result on entry and lines 0..L/2, as
// FFTW's real transform leaves them, on return (L + 2 doubles). The turns
// exp(-2*pi*i*k/L) for k up to L/4 are coarse[k / kFineTurns] times
// fine[k % kFineTurns], both interleaved cos, sin.
inline constexpr int32_t kFineTurns = 512;
void SeparateHalves(double* x, int32_t L, const double* fine, const double* coarse);

// The largest of count values (0 for none), in lanes that vectorise.
double LargestOf(const double* values, int32_t count);

}  // namespace aqx::engine
