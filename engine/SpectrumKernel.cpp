// Built with the options of engine/CMakeLists.txt that let these loops
// vectorise (nothing in the library reads errno or floating-point traps).

#include "engine/SpectrumKernel.h"

#include "engine/SpectrumMath.h"

#include <algorithm>
#include <array>

namespace aqx::engine {

void FillRotation(int64_t shift, int32_t blockLength, int32_t first, int32_t last, double* out) {
  const int64_t L = blockLength;
  const int64_t m = ((shift % L) + L) % L;
  const double stepAngle = -2.0 * kPi * static_cast<double>(m) / L;
  const double stepCos = std::cos(stepAngle);
  const double stepSin = std::sin(stepAngle);
  auto exactAt = [&](int32_t k, double& c, double& s) {
    const int64_t turns = (static_cast<int64_t>(k) * m) % L;
    const double angle = -2.0 * kPi * static_cast<double>(turns) / L;
    c = std::cos(angle);
    s = std::sin(angle);
  };
  // Exact every 256th line, by recurrence in between, always from the same
  // exact lines: a line's value does not depend on where a piece of the
  // lines starts, so the lines come out the same in pieces or whole.
  constexpr int32_t kExactEvery = 256;
  double c = 1.0;
  double s = 0.0;
  int32_t k = first - first % kExactEvery;
  exactAt(k, c, s);
  for (; k < last; ++k) {
    if (k % kExactEvery == 0) exactAt(k, c, s);
    if (k >= first) {
      double* o = out + 2 * static_cast<size_t>(k - first);
      o[0] = c;
      o[1] = s;
    }
    const double nc = c * stepCos - s * stepSin;
    s = c * stepSin + s * stepCos;
    c = nc;
  }
}

namespace {

// One loop per case, so that neither carries a branch that keeps it from
// vectorising.
template <bool kRotate, bool kPhase, bool kReal>
[[gnu::always_inline]] inline void WindowedLinesLoop(const double* x, int32_t first, int32_t last, const double* rotation,
                       double lineScale, double* amplitude, double* phase, double* real) {
  constexpr double toDegrees = 180.0 / kPi;
  for (int32_t k = first; k < last; ++k) {
    double zr = 0.5 * x[2 * k] - 0.25 * (x[2 * k - 2] + x[2 * k + 2]);
    double zi = 0.5 * x[2 * k + 1] - 0.25 * (x[2 * k - 1] + x[2 * k + 3]);
    if constexpr (kRotate) {
      const double c = rotation[2 * (k - first)];
      const double s = rotation[2 * (k - first) + 1];
      const double r = zr * c - zi * s;
      zi = zr * s + zi * c;
      zr = r;
    }
    amplitude[k] = std::sqrt(zr * zr + zi * zi) * lineScale;
    if constexpr (kPhase) {
      const double p = -FastAtan2(zi, zr) * toDegrees;
      phase[k] = p < 0.0 ? p + 360.0 : p;
    }
    if constexpr (kReal) real[k] = zr * lineScale;
  }
}

// The accumulation of one block's lines into the running sums.
[[gnu::always_inline]] inline void AccumulateLinesLoop(const double* x, int32_t first, int32_t last,
                                                       const double* rotation, double* magnitudes,
                                                       double* sums) {
  for (int32_t k = first; k < last; ++k) {
    double zr = 0.5 * x[2 * k] - 0.25 * (x[2 * k - 2] + x[2 * k + 2]);
    double zi = 0.5 * x[2 * k + 1] - 0.25 * (x[2 * k - 1] + x[2 * k + 3]);
    const double c = rotation[2 * (k - first)];
    const double s = rotation[2 * (k - first) + 1];
    const double r = zr * c - zi * s;
    zi = zr * s + zi * c;
    zr = r;
    magnitudes[k] += std::sqrt(zr * zr + zi * zi);
    sums[2 * k] += zr;
    sums[2 * k + 1] += zi;
  }
}

// An amplitude does not change with the turn, so amplitudes alone skip it.
[[gnu::always_inline]] inline void WindowedAny(const double* x, int32_t first, int32_t last,
                                                const double* rotation, double lineScale,
                                                double* amplitude, double* phase, double* real) {
  if (phase == nullptr) {
    WindowedLinesLoop<false, false, false>(x, first, last, rotation, lineScale, amplitude, phase, real);
  } else if (rotation != nullptr && real != nullptr) {
    WindowedLinesLoop<true, true, true>(x, first, last, rotation, lineScale, amplitude, phase, real);
  } else if (rotation != nullptr) {
    WindowedLinesLoop<true, true, false>(x, first, last, rotation, lineScale, amplitude, phase, real);
  } else if (real != nullptr) {
    WindowedLinesLoop<false, true, true>(x, first, last, rotation, lineScale, amplitude, phase, real);
  } else {
    WindowedLinesLoop<false, true, false>(x, first, last, rotation, lineScale, amplitude, phase, real);
  }
}

// Each loop three times: for processors with AVX-512, four times as wide,
// with AVX2 and FMA, twice as wide, and for the rest, chosen at run time (a
// function-multiversioning dispatcher would be exported from the library;
// these stay internal).
[[gnu::target("arch=x86-64-v4")]] void WindowedWidest(const double* x, int32_t first, int32_t last,
                                                      const double* rotation, double lineScale,
                                                      double* amplitude, double* phase, double* real) {
  WindowedAny(x, first, last, rotation, lineScale, amplitude, phase, real);
}

[[gnu::target("arch=x86-64-v3")]] void WindowedWide(const double* x, int32_t first, int32_t last,
                                                    const double* rotation, double lineScale,
                                                    double* amplitude, double* phase, double* real) {
  WindowedAny(x, first, last, rotation, lineScale, amplitude, phase, real);
}

void WindowedBase(const double* x, int32_t first, int32_t last, const double* rotation,
                  double lineScale, double* amplitude, double* phase, double* real) {
  WindowedAny(x, first, last, rotation, lineScale, amplitude, phase, real);
}

[[gnu::target("arch=x86-64-v3")]] void AccumulateWide(const double* x, int32_t first, int32_t last,
                                                      const double* rotation, double* magnitudes,
                                                      double* sums) {
  AccumulateLinesLoop(x, first, last, rotation, magnitudes, sums);
}

[[gnu::target("arch=x86-64-v4")]] void AccumulateWidest(const double* x, int32_t first, int32_t last,
                                                        const double* rotation, double* magnitudes,
                                                        double* sums) {
  AccumulateLinesLoop(x, first, last, rotation, magnitudes, sums);
}

void AccumulateBase(const double* x, int32_t first, int32_t last, const double* rotation,
                    double* magnitudes, double* sums) {
  AccumulateLinesLoop(x, first, last, rotation, magnitudes, sums);
}

bool Widest() {
  return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
         __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw");
}

bool Wide() { return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"); }

}  // namespace

void WindowedLines(const double* x, int32_t first, int32_t last, const double* rotation,
                   double lineScale, double* amplitude, double* phase, double* real) {
  if (Widest()) {
    WindowedWidest(x, first, last, rotation, lineScale, amplitude, phase, real);
  } else if (Wide()) {
    WindowedWide(x, first, last, rotation, lineScale, amplitude, phase, real);
  } else {
    WindowedBase(x, first, last, rotation, lineScale, amplitude, phase, real);
  }
}

void AccumulateLines(const double* x, int32_t first, int32_t last, const double* rotation,
                     double* magnitudes, double* sums) {
  if (Widest()) {
    AccumulateWidest(x, first, last, rotation, magnitudes, sums);
  } else if (Wide()) {
    AccumulateWide(x, first, last, rotation, magnitudes, sums);
  } else {
    AccumulateBase(x, first, last, rotation, magnitudes, sums);
  }
}

double LargestOf(const double* values, int32_t count) {
  constexpr int32_t kLanes = 8;
  std::array<double, kLanes> lanes{};
  int32_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    for (int32_t j = 0; j < kLanes; ++j) lanes[j] = values[i + j] > lanes[j] ? values[i + j] : lanes[j];
  }
  double largest = 0.0;
  for (; i < count; ++i) largest = std::max(largest, values[i]);
  for (double v : lanes) largest = std::max(largest, v);
  return largest;
}

}  // namespace aqx::engine
