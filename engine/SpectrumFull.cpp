// The full spectrum of one channel: Hann-windowed blocks, their lines
// referred to one instant and averaged (behind AccountSpectrFull).

#include "engine/SpectrumFull.h"

#include "engine/FftPlans.h"
#include "engine/Parallel.h"
#include "engine/SpectrumKernel.h"
#include "engine/SpectrumMath.h"

#include <array>
#include <complex>
#include <utility>
#include <vector>

namespace aqx::engine {

namespace {

using Complex = std::complex<double>;

double* Optional(std::span<double> lines) { return lines.empty() ? nullptr : lines.data(); }

double PhaseDegrees(Complex z) {
  double p = -FastAtan2(z.imag(), z.real()) * (180.0 / kPi);
  if (p < 0.0) p += 360.0;
  if (p >= 360.0) p -= 360.0;
  return p;
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

// Lines [first, last) in chunks short enough for their rotation to stay in
// the first-level cache: each(chunkFirst, chunkLast, rotation or null).
template <class Each>
void InRotatedChunks(int64_t shift, int32_t L, bool rotate, int32_t first, int32_t last, const Each& each) {
  constexpr int32_t kChunk = 1024;
  std::array<double, 2 * kChunk> turn;
  for (int32_t chunk = first; chunk < last; chunk += kChunk) {
    const int32_t chunkEnd = std::min(last, chunk + kChunk);
    if (rotate) FillRotation(shift, L, chunk, chunkEnd, turn.data());
    each(chunk, chunkEnd, rotate ? turn.data() : nullptr);
  }
}

// Reads L codes of one column from `firstRow` into the buffer and transforms.
// One transform on one thread: two transforms of the even and odd samples
// on two threads cost a third more in all, since each thread then reads
// every row of the store for half the samples (bench_engine), and the read,
// shared by the two threads, is what a long block costs most.
void TransformBlock(const int16_t* signalData, int32_t column, int32_t firstRow, int32_t L,
                    const FftPlan& plan, double* buffer) {
  ReadColumn(signalData, firstRow, column, L, buffer);
  plan.execute(buffer);
}

// The shape of a request: block length, lines, blocks and their hop.
struct Blocks {
  int32_t n = 0;
  int32_t length = 0;  // L
  int32_t lines = 0;
  int32_t hop = 0;
  int32_t count = 0;
  // Lines 1..inner-1 have both neighbours among the lines the transform gives.
  int32_t inner = 1;
};

Blocks BlocksOf(const SpectrumRequest& r) {
  Blocks b;
  b.n = r.lastRow >= r.firstRow ? r.lastRow - r.firstRow + 1 : 0;
  if (b.n < 2) return b;
  b.length = BlockLength(r.blockSizeFFT, b.n);
  b.lines = LinesForBlock(b.length);
  const bool several = b.length < b.n;
  b.hop = several ? std::max(b.length / 2, 1) : b.length;
  b.count = several ? (b.n - b.length) / b.hop + 1 : 1;
  b.inner = std::max(1, std::min(b.lines, b.length / 2));
  return b;
}

// What every block shares: the plan, the work block and the line scales.
struct BlockWork {
  const int16_t* signalData;
  const SpectrumRequest& request;
  const Blocks& blocks;
  const FftPlan& plan;
  WorkBuffer& work;
  bool rotate;  // lines are turned to the reference instant
  double lineScale;
  double zeroScale;
  // Line 0 and the one or two lines past L/2 - 1 go the general way.
  std::vector<int32_t> edgeLines;

  Complex* x() { return work.complexData(); }

  // Transforms the block from `start` and returns its shift from the
  // reference instant.
  int64_t transform(int32_t start) {
    TransformBlock(signalData, request.column, start, blocks.length, plan, work.data());
    if (request.removeMean) x()[0] = 0.0;
    return static_cast<int64_t>(start) - request.referenceRow;
  }
};

void StoreZeroLine(double mean, const SpectrumLinesOut& out) {
  out.amplitude[0] = std::fabs(mean);
  if (!out.phase.empty()) out.phase[0] = mean < 0.0 ? 180.0 : 0.0;
  if (!out.real.empty()) out.real[0] = mean;
}

void SingleBlock(BlockWork& w, const SpectrumLinesOut& out) {
  const int32_t L = w.blocks.length;
  const int64_t shift = w.transform(w.request.firstRow);
  SplitInTwo(static_cast<size_t>(w.blocks.inner - 1), [&](size_t begin, size_t end) {
    const auto [first, last] = LineRange(begin, end);
    InRotatedChunks(shift, L, w.rotate, first, last, [&](int32_t lo, int32_t hi, const double* turn) {
      WindowedLines(w.work.data(), lo, hi, turn, w.lineScale, out.amplitude.data(), Optional(out.phase),
                    Optional(out.real));
    });
  });
  for (int32_t k : w.edgeLines) {
    const Complex z = WindowedLine(w.x(), L, k) * RotationAt(shift, L, k);
    if (k == 0) {
      StoreZeroLine(z.real() * w.zeroScale, out);
      continue;
    }
    out.amplitude[k] = std::sqrt(std::norm(z)) * w.lineScale;
    if (!out.phase.empty()) out.phase[k] = PhaseDegrees(z);
    if (!out.real.empty()) out.real[k] = z.real() * w.lineScale;
  }
}

// Amplitudes average as magnitudes (so that what does not repeat keeps its
// level); phases come from the average of the rotated lines.
bool AveragedBlocks(BlockWork& w, const SpectrumLinesOut& out) {
  const int32_t L = w.blocks.length;
  const int32_t lines = w.blocks.lines;
  WorkBuffer magnitudes(static_cast<size_t>(lines));
  WorkBuffer sums(2 * static_cast<size_t>(lines));
  if (magnitudes.data() == nullptr || sums.data() == nullptr) return false;
  std::fill_n(magnitudes.data(), lines, 0.0);
  std::fill_n(sums.data(), 2 * static_cast<size_t>(lines), 0.0);
  Complex* sum = sums.complexData();
  for (int32_t b = 0; b < w.blocks.count; ++b) {
    const int64_t shift = w.transform(w.request.firstRow + b * w.blocks.hop);
    SplitInTwo(static_cast<size_t>(w.blocks.inner - 1), [&](size_t begin, size_t end) {
      const auto [first, last] = LineRange(begin, end);
      InRotatedChunks(shift, L, true, first, last, [&](int32_t lo, int32_t hi, const double* turn) {
        AccumulateLines(w.work.data(), lo, hi, turn, magnitudes.data(), sums.data());
      });
    });
    for (int32_t k : w.edgeLines) {
      const Complex z = WindowedLine(w.x(), L, k) * RotationAt(shift, L, k);
      magnitudes.data()[k] += std::sqrt(std::norm(z));
      sum[k] += z;
    }
  }
  const double inverseCount = 1.0 / w.blocks.count;
  StoreZeroLine(sum[0].real() * inverseCount * w.zeroScale, out);
  for (int32_t k = 1; k < lines; ++k) {
    const double amplitude = magnitudes.data()[k] * inverseCount * w.lineScale;
    const double length = std::sqrt(std::norm(sum[k]));
    out.amplitude[k] = amplitude;
    if (!out.phase.empty()) out.phase[k] = PhaseDegrees(sum[k]);
    if (!out.real.empty()) out.real[k] = amplitude * (length > 0.0 ? sum[k].real() / length : 1.0);
  }
  return true;
}

}  // namespace

int32_t SpectrumLineCount(const SpectrumRequest& request) { return BlocksOf(request).lines; }

std::optional<SpectrumSummary> ComputeSpectrum(std::span<const int16_t> store, const SpectrumRequest& r,
                                               SpectrumLinesOut out) {
  const Blocks blocks = BlocksOf(r);
  const size_t storeRows = store.size() / kColumns;
  const bool inside = r.column >= 0 && r.column < kColumns && r.firstRow >= 1 &&
                      static_cast<size_t>(std::max(r.lastRow, 0)) <= storeRows;
  const auto lines = static_cast<size_t>(blocks.lines);
  auto fits = [lines](std::span<double> a) { return a.empty() || a.size() >= lines; };
  if (blocks.n < 2 || !inside || out.amplitude.size() < lines || !fits(out.phase) || !fits(out.real) ||
      (out.phase.empty() && !out.real.empty())) {
    return std::nullopt;
  }
  const int32_t L = blocks.length;
  const auto plan = PlanFor(FftKind::RealToComplex, L);
  WorkBuffer work(RealTransformDoubles(L));
  if (!plan || work.data() == nullptr) return std::nullopt;
  const bool rotate = !out.phase.empty() &&
                     (blocks.count > 1 || (static_cast<int64_t>(r.firstRow) - r.referenceRow) % L != 0);
  BlockWork w{store.data(), r, blocks, *plan, work, rotate, 8.0 / L * r.unitsPerCode, 2.0 / L * r.unitsPerCode, {0}};
  for (int32_t k = blocks.inner; k < blocks.lines; ++k) w.edgeLines.push_back(k);
  if (blocks.count == 1) {
    SingleBlock(w, out);
  } else if (!AveragedBlocks(w, out)) {
    return std::nullopt;
  }
  SpectrumSummary summary;
  summary.blockLength = L;
  summary.lines = blocks.lines;
  summary.stepHz = r.sampleHz / L;
  summary.largest = LargestOf(out.amplitude.data(), blocks.lines);
  return summary;
}

}  // namespace aqx::engine
