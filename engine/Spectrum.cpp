// Spectra: the plain transform of a work block (FFT, AccountSpectr), the
// full windowed and averaged spectrum of a channel (AccountSpectrFull), its
// integration (IntegralSpectr) and the readout at probe frequencies
// (AccountProbe).

#include "engine/FftPlans.h"
#include "engine/SpectrumFull.h"
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
  SpectrumRequest request;
  request.column = channel - 1;
  request.firstRow = rows.first;
  request.lastRow = rows.last;
  request.blockSizeFFT = BlockSizeFFT;
  request.removeMean = StatusFilterConst != 0;
  request.unitsPerCode = kMillivoltsPerCode / SafeKu(Ku, request.column);
  request.referenceRow = ReferenceRow(rows, ShaftMarkCount, ShaftMarks);
  request.sampleHz = static_cast<double>(std::max(FreqDesc, 1));
  const auto lines = static_cast<size_t>(SpectrumLineCount(request));
  // Only what is asked for is worked out; an in-phase part without the
  // phase needs the phase on the way.
  WorkBuffer phaseScratch;
  if (lines > 0 && SpectrPhase == nullptr && SpectrReal != nullptr) phaseScratch = WorkBuffer(lines);
  double* phase = SpectrPhase ? SpectrPhase : phaseScratch.data();
  if (lines == 0 || (SpectrReal != nullptr && phase == nullptr)) {
    empty();
    return;
  }
  auto span = [lines](double* p) { return p ? std::span<double>(p, lines) : std::span<double>(); };
  const std::span<const int16_t> store(SignalData, static_cast<size_t>(rowCount) * kColumns);
  const auto summary = ComputeSpectrum(store, request, {{SpectrAmplitude, lines}, span(phase), span(SpectrReal)});
  if (!summary) {
    empty();
    return;
  }
  if (StepDesc) *StepDesc = summary->stepHz;
  if (SpectrLineCount) *SpectrLineCount = summary->lines;
  if (SpectrMax) *SpectrMax = RoundToInt32(summary->largest);
}

extern "C" int32_t LoadFftWisdom(const char* path) { return ImportFftWisdom(path) ? 1 : 0; }

extern "C" int32_t MakeFftWisdom(const char* path, int32_t largestSize) {
  return MeasureFftWisdom(path, std::min(largestSize, kRows)) ? 1 : 0;
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
