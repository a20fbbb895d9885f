// Spectra: the plain transform of a work block (FFT, AccountSpectr), the
// full windowed and averaged spectrum of a channel (AccountSpectrFull), its
// integration (IntegralSpectr) and the readout at probe frequencies
// (AccountProbe).

#include "engine/FftPlans.h"
#include "engine/Parallel.h"
#include "engine/SpectrumKernel.h"
#include "engine/SpectrumMath.h"

#include <array>
#include <complex>
#include <utility>
#include <vector>

using namespace aqx::engine;

namespace {

using Complex = std::complex<double>;

double KuValue(float ku) {
  const double v = ku;
  return (std::isfinite(v) && v != 0.0) ? v : 1.0;
}

double PhaseDegrees(Complex z) {
  double p = -FastAtan2(z.imag(), z.real()) * (180.0 / kPi);
  if (p < 0.0) p += 360.0;
  if (p >= 360.0) p -= 360.0;
  return p;
}

// First shaft mark inside the stretch, else its first row: the instant all
// phases refer to.
int32_t ReferenceRow(Stretch rows, int32_t markCount, const int32_t* marks) {
  if (marks == nullptr) return rows.first;
  const int32_t count = std::clamp(markCount, 0, kMaxMarks);
  for (int32_t i = 0; i < count; ++i) {
    if (marks[i] >= rows.first && marks[i] <= rows.last) return marks[i];
  }
  return rows.first;
}

// exp(-2*pi*i*k*shift/L), exact for any k.
Complex RotationAt(int64_t shift, int32_t L, int32_t k) {
  const int64_t turns = ((static_cast<int64_t>(k) * (shift % L)) % L + L) % L;
  return std::polar(1.0, -2.0 * kPi * static_cast<double>(turns) / L);
}

// Hann-windowed, reference-rotated line k of a transformed block (X holds
// lines 0..L/2 as FFTW leaves them).
Complex WindowedLine(const Complex* x, int32_t L, int32_t k) {
  auto value = [&](int32_t j) -> Complex {
    if (j < 0) return std::conj(x[-j]);
    if (j > L / 2) return std::conj(x[L - j]);
    return x[j];
  };
  return 0.5 * value(k) - 0.25 * (value(k - 1) + value(k + 1));
}

// Lines [first, last) for a share [begin, end) of the lines from 1 on.
std::pair<int32_t, int32_t> LineRange(size_t begin, size_t end) {
  return {static_cast<int32_t>(begin) + 1, static_cast<int32_t>(end) + 1};
}

// A long block as its even and its odd samples, read and transformed at
// once on two threads, then joined by one butterfly a line:
// X[k] = E[k] + exp(-2*pi*i*k/L) * O[k]. False when no memory or plan.
bool TransformInHalves(const int16_t* signalData, int32_t column, int32_t firstRow, int32_t L, double* buffer) {
  const int32_t half = L / 2;
  const auto halfPlan = PlanFor(FftKind::RealToComplex, half);
  std::array<WorkBuffer, 2> parts = {WorkBuffer(RealTransformDoubles(half)), WorkBuffer(RealTransformDoubles(half))};
  if (!halfPlan || parts[0].data() == nullptr || parts[1].data() == nullptr) return false;
  auto transform = [&](int32_t parity) {
    const int16_t* src = CodePtr(signalData, firstRow + parity, column);
    double* out = parts[static_cast<size_t>(parity)].data();
    for (int32_t i = 0; i < half; ++i) out[i] = src[static_cast<size_t>(i) * 2 * kColumns];
    halfPlan->execute(out);
  };
  RunBoth([&] { transform(0); }, [&] { transform(1); });

  const double* even = parts[0].data();
  const double* odd = parts[1].data();
  const size_t quarter = static_cast<size_t>(half) / 2;
  SplitInTwo(static_cast<size_t>(half) + 1, [&](size_t begin, size_t end) {
    constexpr size_t kChunk = 1024;
    std::array<double, 2 * kChunk> twiddle;
    for (size_t chunk = begin; chunk < end; chunk += kChunk) {
      const size_t chunkEnd = std::min(end, chunk + kChunk);
      FillRotation(1, L, static_cast<int32_t>(chunk), static_cast<int32_t>(chunkEnd), twiddle.data());
      for (size_t k = chunk; k < chunkEnd; ++k) {
        // Past a quarter the halves' lines mirror: E[k] = conj(E[L/2 - k]).
        const size_t j = k <= quarter ? k : static_cast<size_t>(half) - k;
        const double sign = k <= quarter ? 1.0 : -1.0;
        const double er = even[2 * j], ei = sign * even[2 * j + 1];
        const double orr = odd[2 * j], oi = sign * odd[2 * j + 1];
        const double wr = twiddle[2 * (k - chunk)], wi = twiddle[2 * (k - chunk) + 1];
        buffer[2 * k] = er + wr * orr - wi * oi;
        buffer[2 * k + 1] = ei + wr * oi + wi * orr;
      }
    }
  });
  return true;
}

// Reads L codes of one column from `firstRow` into the buffer and transforms.
void TransformBlock(const int16_t* signalData, int32_t column, int32_t firstRow, int32_t L,
                    const FftPlan& plan, double* buffer) {
  const bool longBlock = L >= 2 * static_cast<int32_t>(kSplitLeastItems) && L % 4 == 0;
  if (longBlock && TransformInHalves(signalData, column, firstRow, L, buffer)) return;
  ReadColumn(signalData, firstRow, column, L, buffer);
  plan.execute(buffer);
}

}  // namespace

extern "C" void FFT(double* SpectrRe, double* SpectrIm, int32_t n, int32_t direction,
                    int32_t BlockSizeFFT) {
  if (SpectrRe == nullptr || SpectrIm == nullptr) return;
  if (direction != 1 && direction != -1) return;
  const int32_t L = BlockLength(BlockSizeFFT, std::min(n, kRows));
  if (L < 1) return;
  const auto plan = PlanFor(direction == 1 ? FftKind::ComplexForward : FftKind::ComplexBackward, L);
  WorkBuffer work(2 * static_cast<size_t>(L));
  if (!plan || work.data() == nullptr) return;
  double* d = work.data();
  for (int32_t i = 0; i < L; ++i) {
    d[2 * i] = SpectrRe[i];
    d[2 * i + 1] = SpectrIm[i];
  }
  plan->execute(d);
  const double scale = direction == 1 ? 1.0 : 1.0 / L;
  for (int32_t i = 0; i < L; ++i) {
    SpectrRe[i] = d[2 * i] * scale;
    SpectrIm[i] = d[2 * i + 1] * scale;
  }
}

extern "C" void AccountSpectr(const double* SpectrRe, const double* SpectrIm,
                              double* SpectrAmplitude, int32_t BlockSizeFFT, float Ku,
                              int32_t* SpectrMax, int32_t n) {
  if (SpectrRe == nullptr || SpectrIm == nullptr || SpectrAmplitude == nullptr) return;
  const int32_t L = BlockLength(BlockSizeFFT, std::min(n, kRows));
  if (L < 1) {
    if (SpectrMax) *SpectrMax = 0;
    return;
  }
  const int32_t lines = LinesForBlock(L);
  const double units = kMillivoltsPerCode / KuValue(Ku);
  double largest = 0.0;
  for (int32_t k = 0; k < lines; ++k) {
    const double scale = (k == 0 ? 1.0 : 4.0) / L * units;
    const double a = std::hypot(SpectrRe[k], SpectrIm[k]) * scale;
    SpectrAmplitude[k] = a;
    largest = std::max(largest, a);
  }
  if (SpectrMax) *SpectrMax = RoundToInt32(largest);
}

extern "C" void AccountSpectrFull(double* /*SpectrRe*/, double* /*SpectrIm*/, double* SpectrPhase,
                                  double* SpectrReal, double* SpectrAmplitude, int32_t SelectFirst,
                                  int32_t SelectLast, int32_t ViewFirst, int32_t ViewLast,
                                  int32_t maxRows, int32_t SignalDataN,
                                  const int16_t* SignalData, int32_t channel,
                                  const int32_t* /*SignalOffset*/, const int32_t* /*Type*/,
                                  int32_t StatusFilterConst, int32_t BlockSizeFFT,
                                  double* StepDesc, int32_t FreqDesc, int32_t* SpectrLineCount,
                                  int32_t* SpectrMax, const float* Ku, int32_t ShaftMarkCount,
                                  const int32_t* ShaftMarks, int32_t /*flag*/) {
  auto empty = [&] {
    if (SpectrLineCount) *SpectrLineCount = 0;
    if (SpectrMax) *SpectrMax = 0;
  };
  if (SignalData == nullptr || SpectrAmplitude == nullptr || channel < 1 || channel > kColumns) {
    empty();
    return;
  }
  const int32_t rowCount = std::min(ClampSampleCount(SignalDataN), std::clamp(maxRows, 0, kRows));
  const Stretch rows = AnalysisStretch(SelectFirst, SelectLast, ViewFirst, ViewLast, rowCount);
  const int32_t n = rows.count();
  if (n < 2) {
    empty();
    return;
  }
  const int32_t column = channel - 1;
  const int32_t L = BlockLength(BlockSizeFFT, n);
  const int32_t lines = LinesForBlock(L);
  const bool blocks = L < n;
  const int32_t hop = blocks ? std::max(L / 2, 1) : L;
  const int32_t blockCount = blocks ? (n - L) / hop + 1 : 1;
  const int32_t reference = ReferenceRow(rows, ShaftMarkCount, ShaftMarks);
  const double units = kMillivoltsPerCode / SafeKu(Ku, column);
  const double lineScale = 8.0 / L * units;
  const double zeroScale = 2.0 / L * units;

  const auto plan = PlanFor(FftKind::RealToComplex, L);
  WorkBuffer work(RealTransformDoubles(L));
  if (!plan || work.data() == nullptr) {
    empty();
    return;
  }
  Complex* x = work.complexData();
  // Lines 1..inner-1 have both neighbours among the lines the transform gives.
  const int32_t inner = std::max(1, std::min(lines, L / 2));
  WorkBuffer phaseScratch;
  WorkBuffer realScratch;
  if (SpectrPhase == nullptr) phaseScratch = WorkBuffer(static_cast<size_t>(lines));
  if (SpectrReal == nullptr) realScratch = WorkBuffer(static_cast<size_t>(lines));
  double* phase = SpectrPhase ? SpectrPhase : phaseScratch.data();
  double* real = SpectrReal ? SpectrReal : realScratch.data();
  const bool rotate = blockCount > 1 || (static_cast<int64_t>(rows.first) - reference) % L != 0;
  WorkBuffer rotation;
  if (rotate) rotation = WorkBuffer(2 * static_cast<size_t>(inner));
  if (phase == nullptr || real == nullptr || (rotate && rotation.data() == nullptr)) {
    empty();
    return;
  }
  // Line 0 and the one or two lines past L/2 - 1 go the general way.
  std::vector<int32_t> edgeLines{0};
  for (int32_t k = inner; k < lines; ++k) edgeLines.push_back(k);
  auto storeZero = [&](double mean) {
    SpectrAmplitude[0] = std::fabs(mean);
    phase[0] = mean < 0.0 ? 180.0 : 0.0;
    real[0] = mean;
  };

  if (blockCount == 1) {
    TransformBlock(SignalData, column, rows.first, L, *plan, work.data());
    if (StatusFilterConst != 0) x[0] = 0.0;
    const int64_t shift = static_cast<int64_t>(rows.first) - reference;
    SplitInTwo(static_cast<size_t>(inner - 1), [&](size_t begin, size_t end) {
      const auto [first, last] = LineRange(begin, end);
      double* turn = rotate ? rotation.data() + 2 * static_cast<size_t>(first - 1) : nullptr;
      if (turn != nullptr) FillRotation(shift, L, first, last, turn);
      WindowedLines(work.data(), first, last, turn, lineScale, SpectrAmplitude, phase, real);
    });
    for (int32_t k : edgeLines) {
      const Complex z = WindowedLine(x, L, k) * RotationAt(shift, L, k);
      if (k == 0) {
        storeZero(z.real() * zeroScale);
        continue;
      }
      SpectrAmplitude[k] = std::sqrt(std::norm(z)) * lineScale;
      phase[k] = PhaseDegrees(z);
      real[k] = z.real() * lineScale;
    }
  } else {
    // Amplitudes average as magnitudes (so that what does not repeat keeps
    // its level); phases come from the average of the rotated lines.
    WorkBuffer magnitudes(static_cast<size_t>(lines));
    WorkBuffer sums(2 * static_cast<size_t>(lines));
    if (magnitudes.data() == nullptr || sums.data() == nullptr) {
      empty();
      return;
    }
    std::fill_n(magnitudes.data(), lines, 0.0);
    std::fill_n(sums.data(), 2 * static_cast<size_t>(lines), 0.0);
    Complex* sum = sums.complexData();
    for (int32_t b = 0; b < blockCount; ++b) {
      const int32_t start = rows.first + b * hop;
      TransformBlock(SignalData, column, start, L, *plan, work.data());
      if (StatusFilterConst != 0) x[0] = 0.0;
      const int64_t shift = static_cast<int64_t>(start) - reference;
      SplitInTwo(static_cast<size_t>(inner - 1), [&](size_t begin, size_t end) {
        const auto [first, last] = LineRange(begin, end);
        double* turn = rotation.data() + 2 * static_cast<size_t>(first - 1);
        FillRotation(shift, L, first, last, turn);
        AccumulateLines(work.data(), first, last, turn, magnitudes.data(), sums.data());
      });
      for (int32_t k : edgeLines) {
        const Complex z = WindowedLine(x, L, k) * RotationAt(shift, L, k);
        magnitudes.data()[k] += std::sqrt(std::norm(z));
        sum[k] += z;
      }
    }
    const double inverseCount = 1.0 / blockCount;
    storeZero(sum[0].real() * inverseCount * zeroScale);
    for (int32_t k = 1; k < lines; ++k) {
      const double amplitude = magnitudes.data()[k] * inverseCount * lineScale;
      const double length = std::sqrt(std::norm(sum[k]));
      SpectrAmplitude[k] = amplitude;
      phase[k] = PhaseDegrees(sum[k]);
      real[k] = amplitude * (length > 0.0 ? sum[k].real() / length : 1.0);
    }
  }
  const double largest = *std::max_element(SpectrAmplitude, SpectrAmplitude + lines);
  if (StepDesc) *StepDesc = static_cast<double>(std::max(FreqDesc, 1)) / L;
  if (SpectrLineCount) *SpectrLineCount = lines;
  if (SpectrMax) *SpectrMax = RoundToInt32(largest);
}

extern "C" void IntegralSpectr(double* SpectrAmplitude, int32_t SpectrLineCount, double StepDesc,
                               int32_t* SpectrMax) {
  if (SpectrAmplitude == nullptr || !(StepDesc > 0.0) || !std::isfinite(StepDesc)) return;
  const int32_t lines = std::clamp(SpectrLineCount, 0, AQX_SPECTRUM_LINES);
  double largest = 0.0;
  for (int32_t k = 0; k < lines; ++k) {
    SpectrAmplitude[k] = k == 0 ? 0.0 : SpectrAmplitude[k] / (2.0 * kPi * k * StepDesc);
    largest = std::max(largest, SpectrAmplitude[k]);
  }
  if (SpectrMax) *SpectrMax = RoundToInt32(largest);
}

namespace {

struct ProbeReading {
  double amplitude = 0.0;
  double phase = 0.0;
};

// A sinusoid between lines k and k+1 shows on both with the Hann line shape
// and a phase turned by pi per line of distance; both neighbours are weighed
// by how much of it they hold.
ProbeReading ReadAt(double frequency, double step, int32_t lines, const double* amplitude,
                    const double* phase) {
  ProbeReading r;
  if (!(frequency > 0.0) || !std::isfinite(frequency)) return r;
  const double position = frequency / step;
  if (!(position < lines)) return r;
  int32_t k = static_cast<int32_t>(std::floor(position));
  double delta = position - k;
  if (delta > 1.0 - 1e-9 && k + 1 < lines) {
    ++k;
    delta = 0.0;
  }
  const int32_t other = (delta > 1e-9 && k + 1 < lines) ? k + 1 : -1;
  const double wk = HannLineShape(delta);
  double re = 0.0;
  double im = 0.0;
  double amplitudeSum = amplitude[k] * wk;
  double weightSum = wk * wk;
  const double pk = phase[k] + 180.0 * delta;
  re += amplitude[k] * wk * std::cos(pk * kPi / 180.0);
  im += amplitude[k] * wk * std::sin(pk * kPi / 180.0);
  if (other >= 0) {
    const double wo = HannLineShape(1.0 - delta);
    amplitudeSum += amplitude[other] * wo;
    weightSum += wo * wo;
    const double po = phase[other] + 180.0 * (delta - 1.0);
    re += amplitude[other] * wo * std::cos(po * kPi / 180.0);
    im += amplitude[other] * wo * std::sin(po * kPi / 180.0);
  }
  r.amplitude = amplitudeSum / weightSum;
  r.phase = WrapDegrees(std::atan2(im, re) * 180.0 / kPi);
  return r;
}

}  // namespace

extern "C" int32_t AccountProbe(int32_t FirstChannelActive, int32_t SpectrLineCount,
                                int32_t* ProbeAmplitude, int32_t* ProbePhase,
                                const float* ProbeFreq, const int32_t* /*ProbeType*/,
                                const int32_t* /*Type*/, double FreqOneGarmonic, double StepDesc,
                                const double* SpectrAmplitude, const double* SpectrPhase,
                                const double* /*SpectrReal*/) {
  if (ProbeAmplitude == nullptr || ProbePhase == nullptr) return 0;
  std::fill_n(ProbeAmplitude, AQX_PROBE_RESULTS, 0);
  std::fill_n(ProbePhase, AQX_PROBE_RESULTS, 0);
  if (SpectrAmplitude == nullptr || SpectrPhase == nullptr) return 0;
  if (!(StepDesc > 0.0) || !std::isfinite(StepDesc)) return 0;
  const int32_t lines = std::clamp(SpectrLineCount, 0, AQX_SPECTRUM_LINES);
  double frequencies[AQX_PROBE_RESULTS] = {FreqOneGarmonic};
  if (ProbeFreq != nullptr && FirstChannelActive >= 1 && FirstChannelActive <= kColumns) {
    for (int32_t i = 0; i < AQX_PROBE_ENTRIES; ++i) {
      frequencies[i + 1] = ProbeFreq[(FirstChannelActive - 1) * AQX_PROBE_ENTRIES + i];
    }
  }
  for (int32_t i = 0; i < AQX_PROBE_RESULTS; ++i) {
    const ProbeReading r = ReadAt(frequencies[i], StepDesc, lines, SpectrAmplitude, SpectrPhase);
    ProbeAmplitude[i] = RoundToInt32(r.amplitude);
    const int32_t degrees = RoundToInt32(r.phase);
    ProbePhase[i] = r.amplitude > 0.0 ? (degrees >= 360 ? degrees - 360 : degrees) : 0;
  }
  return 0;
}
