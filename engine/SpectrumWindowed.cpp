// The spectrum of a channel with the smoothing window and the block overlap
// chosen in the spectrum analyser settings (AccountSpectrWindow). The Hann
// window at half overlap is AccountSpectrFull's own, faster path; this one
// takes any window by multiplying each block before its transform.

#include "engine/FftPlans.h"
#include "engine/Parallel.h"
#include "engine/SpectrumMath.h"
#include "engine/WindowShapes.h"

#include <complex>
#include <vector>

using namespace aqx::engine;

namespace {

using Complex = std::complex<double>;

// The instant phases refer to: the first shaft mark inside the stretch, else
// its first row (as in AccountSpectrFull).
int32_t PhaseReference(Stretch rows, int32_t markCount, const int32_t* marks) {
  if (marks == nullptr) return rows.first;
  for (int32_t i = 0; i < std::clamp(markCount, 0, kMaxMarks); ++i)
    if (marks[i] >= rows.first && marks[i] <= rows.last) return marks[i];
  return rows.first;
}

// exp(-2*pi*i*k*shift/L) with the product reduced first, exact for any k.
Complex Turn(int64_t shift, int32_t L, int32_t k) {
  const int64_t turns = ((static_cast<int64_t>(k) * (shift % L)) % L + L) % L;
  return std::polar(1.0, -2.0 * kPi * static_cast<double>(turns) / L);
}

double Degrees(Complex z) {
  if (z == Complex(0.0, 0.0)) return 0.0;
  return WrapDegrees(-std::atan2(z.imag(), z.real()) * 180.0 / kPi);
}

}  // namespace

extern "C" void AccountSpectrWindow(double* SpectrPhase, double* SpectrReal, double* SpectrAmplitude,
                                    int32_t SelectFirst, int32_t SelectLast, int32_t ViewFirst,
                                    int32_t ViewLast, int32_t SignalDataN, const int16_t* SignalData,
                                    int32_t channel, int32_t StatusFilterConst, int32_t BlockSizeFFT,
                                    int32_t windowIndex, int32_t overlapPercent, double* StepDesc,
                                    int32_t FreqDesc, int32_t* SpectrLineCount, int32_t* SpectrMax,
                                    const float* Ku, int32_t ShaftMarkCount, const int32_t* ShaftMarks) {
  auto empty = [&] {
    if (SpectrLineCount) *SpectrLineCount = 0;
    if (SpectrMax) *SpectrMax = 0;
  };
  if (SignalData == nullptr || SpectrAmplitude == nullptr || channel < 1 || channel > kColumns) {
    empty();
    return;
  }
  const Stretch rows = AnalysisStretch(SelectFirst, SelectLast, ViewFirst, ViewLast, ClampSampleCount(SignalDataN));
  const int32_t n = rows.count();
  if (n < 2) {
    empty();
    return;
  }
  const int32_t column = channel - 1;
  const int32_t L = BlockLength(BlockSizeFFT, n);
  const int32_t lines = LinesForBlock(L);
  const int32_t overlap = std::clamp(overlapPercent, 0, 99);
  const int32_t hop = L < n ? std::max(1, RoundToInt32(L * (100 - overlap) / 100.0)) : L;
  const int32_t blockCount = L < n ? (n - L) / hop + 1 : 1;
  const int32_t reference = PhaseReference(rows, ShaftMarkCount, ShaftMarks);

  std::vector<double> window(static_cast<size_t>(L));
  double windowSum = 0.0;
  for (int32_t j = 0; j < L; ++j) {
    window[static_cast<size_t>(j)] = SmoothingWindowValue(windowIndex, j, L);
    windowSum += window[static_cast<size_t>(j)];
  }
  const auto plan = PlanFor(FftKind::RealToComplex, L);
  WorkBuffer work(RealTransformDoubles(L));
  if (!plan || work.data() == nullptr || !(windowSum > 0.0)) {
    empty();
    return;
  }
  const double units = kMillivoltsPerCode / SafeKu(Ku, column);
  // A sinusoid of peak A on a line gives |X| = A * sum(w) / 2: its swing 2A
  // is 4|X| / sum(w); the constant part is X[0] / sum(w).
  const double lineScale = 4.0 / windowSum * units;
  const double zeroScale = 1.0 / windowSum * units;

  std::vector<double> magnitudes(static_cast<size_t>(lines), 0.0);
  std::vector<Complex> sums(static_cast<size_t>(lines));
  double* x = work.data();
  const Complex* spectrum = work.complexData();
  for (int32_t b = 0; b < blockCount; ++b) {
    const int32_t start = rows.first + b * hop;
    ReadColumn(SignalData, start, column, L, x);
    double mean = 0.0;
    if (StatusFilterConst != 0) {
      for (int32_t j = 0; j < L; ++j) mean += x[j];
      mean /= L;
    }
    for (int32_t j = 0; j < L; ++j) x[j] = (x[j] - mean) * window[static_cast<size_t>(j)];
    plan->execute(x);
    const int64_t shift = static_cast<int64_t>(start) - reference;
    for (int32_t k = 0; k < lines; ++k) {
      const Complex z = spectrum[k] * Turn(shift, L, k);
      magnitudes[static_cast<size_t>(k)] += std::abs(z);
      sums[static_cast<size_t>(k)] += z;
    }
  }

  const double inverseCount = 1.0 / blockCount;
  double largest = 0.0;
  for (int32_t k = 0; k < lines; ++k) {
    const Complex sum = sums[static_cast<size_t>(k)];
    double amplitude = 0.0;
    double phase = 0.0;
    double real = 0.0;
    if (k == 0) {
      real = sum.real() * inverseCount * zeroScale;
      amplitude = std::fabs(real);
      phase = real < 0.0 ? 180.0 : 0.0;
    } else {
      amplitude = magnitudes[static_cast<size_t>(k)] * inverseCount * lineScale;
      const double length = std::abs(sum);
      phase = Degrees(sum);
      real = amplitude * (length > 0.0 ? sum.real() / length : 1.0);
    }
    SpectrAmplitude[k] = amplitude;
    if (SpectrPhase) SpectrPhase[k] = phase;
    if (SpectrReal) SpectrReal[k] = real;
    largest = std::max(largest, amplitude);
  }
  if (StepDesc) *StepDesc = static_cast<double>(std::max(FreqDesc, 1)) / L;
  if (SpectrLineCount) *SpectrLineCount = lines;
  if (SpectrMax) *SpectrMax = RoundToInt32(largest);
}
