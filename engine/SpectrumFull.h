#pragma once
// The full spectrum of one channel over a stretch of the store, typed: the
// computation behind AccountSpectrFull.

#include "engine/EngineApi.h"

#include <cstdint>
#include <optional>
#include <span>

namespace aqx::engine {

struct SpectrumRequest {
  int32_t column = 0;       // 0..31
  int32_t firstRow = 1;     // rows (from 1) of the stretch, at least two
  int32_t lastRow = 0;
  int32_t blockSizeFFT = 0; // <= 0 or >= the stretch: one block
  bool removeMean = false;  // line 0 of every block becomes 0
  double unitsPerCode = 1.25;
  int32_t referenceRow = 1; // the instant phases refer to
  double sampleHz = 1.0;
};

// Lines 0..lines-1 go to the three spans. An empty phase span asks for the
// amplitudes alone; the in-phase part may be left out (empty) in any case.
struct SpectrumLinesOut {
  std::span<double> amplitude;
  std::span<double> phase;
  std::span<double> real;
};

struct SpectrumSummary {
  int32_t blockLength = 0;
  int32_t lines = 0;
  double stepHz = 0.0;   // sampleHz / blockLength
  double largest = 0.0;  // largest amplitude
};

// Lines a request gives (0 for a stretch of fewer than two rows).
AQX_TYPED_API int32_t SpectrumLineCount(const SpectrumRequest& request);

// Nothing when the stretch lies outside the store (whole rows of 32 codes),
// has fewer than two rows, a span is shorter than the lines, or no memory or
// plan can be had; the spans are then untouched.
AQX_TYPED_API std::optional<SpectrumSummary> ComputeSpectrum(std::span<const int16_t> store,
                                                             const SpectrumRequest& request,
                                                             SpectrumLinesOut out);

}  // namespace aqx::engine
