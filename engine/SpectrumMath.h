#pragma once
// Pieces of spectrum arithmetic shared by the spectrum, probe and band
// routines of the library.

#include "engine/EngineCommon.h"

#include <complex>

namespace aqx::engine {

// atan2 in radians to within 1e-9, branch-light so that the loop over half
// a million lines vectorises; the library's phases are printed in whole
// degrees, so the polynomial is far more than enough.
inline double FastAtan2(double y, double x) {
  const double ax = std::fabs(x);
  const double ay = std::fabs(y);
  const double big = std::max(ax, ay);
  const double small = std::min(ax, ay);
  const double t = big > 0.0 ? small / big : 0.0;
  const double t2 = t * t;
  double p = -0.001509272692577432;
  p = p * t2 + 0.009567221710005833;
  p = p * t2 - 0.028490600149330234;
  p = p * t2 + 0.0550279882947884;
  p = p * t2 - 0.08213760701276929;
  p = p * t2 + 0.10878012685558813;
  p = p * t2 - 0.1424722427827574;
  p = p * t2 + 0.19996437184517057;
  p = p * t2 - 0.33333180413535923;
  p = p * t2 + 0.9999999805715616;
  double r = p * t;
  r = ay > ax ? kPi / 2 - r : r;
  r = x < 0.0 ? kPi - r : r;
  return y < 0.0 ? -r : r;
}

// Line shape of the periodic Hann window: the amplitude a sinusoid
// nu lines away from a line shows there, relative to its own (1 at nu = 0).
inline double HannLineShape(double nu) {
  const double a = std::fabs(nu);
  if (a < 1e-9) return 1.0;
  if (std::fabs(a - 1.0) < 1e-9) return 0.5;
  const double sinc = std::sin(kPi * a) / (kPi * a);
  return sinc / (1.0 - a * a);
}

// Block length in force for n samples: n itself when no blocks are asked for
// or the block is as long as the stretch.
inline int32_t BlockLength(int32_t blockSizeFFT, int32_t n) {
  return (blockSizeFFT <= 0 || blockSizeFFT >= n) ? n : blockSizeFFT;
}

// Spectrum lines of a block of L samples: round(L / 2), within the arrays.
inline int32_t LinesForBlock(int32_t blockLength) {
  return std::min(RoundToInt32(blockLength / 2.0), AQX_SPECTRUM_LINES);
}

}  // namespace aqx::engine
