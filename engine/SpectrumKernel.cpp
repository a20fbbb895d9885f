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

// Lines k and M - k (M = L/2) come out of the complex lines k and M - k:
// with a = Z[k] and b = conj(Z[M - k]), the even samples' line is
// e = (a + b)/2, the odd samples' o = (a - b)/2i, and X[k] = e + w^k o,
// X[M - k] = conj(e - w^k o). `low` walks up from line k, `high` down from
// line M - k, so the two never meet.
[[gnu::always_inline]] inline void SeparateLoop(double* __restrict low, double* __restrict high, int32_t count,
                                                const double* fine, double coarseCos, double coarseSin) {
  for (int32_t j = 0; j < count; ++j) {
    const double wr = coarseCos * fine[2 * j] - coarseSin * fine[2 * j + 1];
    const double wi = coarseCos * fine[2 * j + 1] + coarseSin * fine[2 * j];
    const double ar = low[2 * j];
    const double ai = low[2 * j + 1];
    const double br = high[-2 * j];
    const double bi = -high[-2 * j + 1];
    const double er = 0.5 * (ar + br);
    const double ei = 0.5 * (ai + bi);
    const double orr = 0.5 * (ai - bi);
    const double oi = -0.5 * (ar - br);
    const double wor = wr * orr - wi * oi;
    const double woi = wr * oi + wi * orr;
    low[2 * j] = er + wor;
    low[2 * j + 1] = ei + woi;
    high[-2 * j] = er - wor;
    high[-2 * j + 1] = woi - ei;
  }
}

[[gnu::always_inline]] inline void SeparateAny(double* x, int32_t L, const double* fine, const double* coarse) {
  const int32_t M = L / 2;
  const double r0 = x[0];
  const double i0 = x[1];
  x[0] = r0 + i0;
  x[1] = 0.0;
  x[2 * static_cast<size_t>(M)] = r0 - i0;
  x[2 * static_cast<size_t>(M) + 1] = 0.0;
  // The middle line, its own partner, is its conjugate (w^(M/2) = -i).
  if (M % 2 == 0) x[M + 1] = -x[M + 1];
  // Pairs k < M - k, in runs that share one coarse turn.
  const int32_t pairsEnd = (M + 1) / 2;
  for (int32_t start = 0; start < pairsEnd; start += kFineTurns) {
    const int32_t first = std::max(start, 1);
    const int32_t end = std::min(start + kFineTurns, pairsEnd);
    const int32_t run = start / kFineTurns;
    SeparateLoop(x + 2 * static_cast<size_t>(first), x + 2 * static_cast<size_t>(M - first), end - first,
                 fine + 2 * (first - start), coarse[2 * run], coarse[2 * run + 1]);
  }
}

[[gnu::target("arch=x86-64-v4")]] void SeparateWidest(double* x, int32_t L, const double* fine,
                                                      const double* coarse) {
  SeparateAny(x, L, fine, coarse);
}

[[gnu::target("arch=x86-64-v3")]] void SeparateWide(double* x, int32_t L, const double* fine,
                                                    const double* coarse) {
  SeparateAny(x, L, fine, coarse);
}

void SeparateBase(double* x, int32_t L, const double* fine, const double* coarse) {
  SeparateAny(x, L, fine, coarse);
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

void SeparateHalves(double* x, int32_t L, const double* fine, const double* coarse) {
  if (Widest()) {
    SeparateWidest(x, L, fine, coarse);
  } else if (Wide()) {
    SeparateWide(x, L, fine, coarse);
  } else {
    SeparateBase(x, L, fine, coarse);
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
