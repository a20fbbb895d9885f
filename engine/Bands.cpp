// Band levels of one channel over the analysed stretch: AccountVolumeField.
//
// The four bands are filtered at once, one per lane (LaneFilter.h). The
// backward pass keeps the extremes of every piece between the boundaries of
// revolutions, and the swing of a revolution, or of revolutions joined into
// a longer piece, follows from those without a further pass.

#include "engine/FftPlans.h"
#include "engine/LaneFilter.h"
#include "engine/Parallel.h"
#include "engine/SpectrumMath.h"

#include <array>
#include <limits>
#include <span>
#include <vector>

using namespace aqx::engine;

namespace {

struct Band {
  double lowHz;   // 0: no high pass
  double highHz;
};

constexpr std::array<Band, AQX_BANDS> kBands = {{{0.0, 200.0}, {0.0, 1.0}, {1.0, 30.0}, {30.0, 200.0}}};
constexpr double kRunoutBandHz = 20.0;
constexpr double kSlowBandSeconds = 1.0;

// Half-open pieces [begin, end) of the stretch (indices from 0).
struct Piece {
  int32_t begin;
  int32_t end;
};

std::vector<Piece> Revolutions(Stretch rows, int32_t markCount, const int32_t* marks,
                               double sampleHz, double ratedRpm) {
  std::vector<Piece> pieces;
  const int32_t n = rows.count();
  if (marks != nullptr) {
    int32_t previous = -1;
    const int32_t count = std::clamp(markCount, 0, kMaxMarks);
    for (int32_t i = 0; i < count; ++i) {
      const int32_t m = marks[i];
      if (m < rows.first || m > rows.last) continue;
      const int32_t at = m - rows.first;
      if (previous >= 0 && at > previous + 1) pieces.push_back({previous, at});
      if (previous < 0 || at > previous) previous = at;
    }
  }
  if (pieces.empty() && ratedRpm > 0.0 && std::isfinite(ratedRpm)) {
    const double length = 60.0 * sampleHz / ratedRpm;
    if (length >= 2.0 && length <= n) {
      const int32_t step = RoundToInt32(length);
      for (int32_t begin = 0; begin + step <= n; begin += step) pieces.push_back({begin, begin + step});
    }
  }
  if (pieces.empty()) pieces.push_back({0, n});
  return pieces;
}

// Joins neighbouring pieces until each lasts at least `samples`; a short rest
// is dropped unless it is all there is.
std::vector<Piece> JoinedTo(const std::vector<Piece>& pieces, double samples) {
  std::vector<Piece> out;
  Piece current{pieces.front().begin, pieces.front().begin};
  for (const Piece& p : pieces) {
    if (p.begin != current.end) current = {p.begin, p.begin};
    current.end = p.end;
    if (current.end - current.begin >= samples) {
      out.push_back(current);
      current = {current.end, current.end};
    }
  }
  if (out.empty()) out.push_back({pieces.front().begin, pieces.back().end});
  return out;
}

}  // namespace

extern "C" void AccountVolumeField(int32_t channel, const float* Ku, const int32_t* Type,
                                   int32_t ViewFirst, int32_t ViewLast, int32_t SelectFirst,
                                   int32_t SelectLast, const int16_t* SignalData,
                                   int32_t* BandMax, int32_t* BandMean, int32_t SignalDataN,
                                   double* /*SpectrRe*/, double* /*SpectrIm*/,
                                   double* /*SpectrPhase*/, double* /*SpectrReal*/,
                                   double StepDesc, int32_t /*SpectrLineCount*/,
                                   double FreqRotorN, int32_t BlockSizeFFT,
                                   int32_t ShaftMarkCount, const int32_t* ShaftMarks) {
  if (BandMax == nullptr || BandMean == nullptr) return;
  std::fill_n(BandMax, AQX_BANDS, 0);
  std::fill_n(BandMean, AQX_BANDS, 0);
  if (SignalData == nullptr || channel < 1 || channel > kColumns) return;
  const int32_t column = channel - 1;
  const Stretch rows =
      AnalysisStretch(SelectFirst, SelectLast, ViewFirst, ViewLast, ClampSampleCount(SignalDataN));
  const int32_t n = rows.count();
  if (n < 2 || !(StepDesc > 0.0) || !std::isfinite(StepDesc)) return;
  const double sampleHz = StepDesc * BlockLength(BlockSizeFFT, n);
  const double units = kMillivoltsPerCode / SafeKu(Ku, column);
  const bool runout = Type != nullptr && Type[column] == kTypeRunout;

  std::array<Cascade, AQX_BANDS> cascades;
  std::array<bool, AQX_BANDS> computed{};
  int32_t pad = 0;
  for (int32_t b = 0; b < AQX_BANDS; ++b) {
    const double low = kBands[b].lowHz;
    const double high = (b == 1 && runout) ? kRunoutBandHz : kBands[b].highHz;
    if (low > 0.0 && !Usable(low, sampleHz)) continue;  // the band lies above what was sampled
    computed[b] = true;
    if (low > 0.0) AddButterworth(cascades[b], Pass::HighPass, low, sampleHz);
    if (Usable(high, sampleHz)) AddButterworth(cascades[b], Pass::LowPass, high, sampleHz);
    pad = std::max(pad, ExtensionFor(cascades[b]));
  }

  // The channel's codes as they are, and doubles only for the values
  // predicted beyond its ends.
  const size_t total = static_cast<size_t>(n) + 2 * static_cast<size_t>(pad);
  // From the engine's pool, so that a refresh after refresh does not fault
  // its pages in again.
  WorkBuffer codeBuffer((static_cast<size_t>(n) * sizeof(int16_t) + sizeof(double) - 1) / sizeof(double));
  if (codeBuffer.data() == nullptr) return;
  const std::span<int16_t> codes(reinterpret_cast<int16_t*>(codeBuffer.data()), static_cast<size_t>(n));
  ReadColumn(SignalData, rows.first, column, n, codes.data());
  const auto edge = static_cast<size_t>(PredictionWindow(n));
  const std::vector<double> head(codes.begin(), codes.begin() + static_cast<std::ptrdiff_t>(edge));
  const std::vector<double> tail(codes.end() - static_cast<std::ptrdiff_t>(edge), codes.end());
  std::vector<double> before(static_cast<size_t>(pad));
  std::vector<double> after(static_cast<size_t>(pad));
  PredictEdges(head, tail, pad, before.data(), after.data());
  const LaneRecord record{before, codes, after};

  const std::vector<Piece> revolutions =
      Revolutions(rows, ShaftMarkCount, ShaftMarks, sampleHz, FreqRotorN);
  const std::vector<Piece> joined =
      runout ? revolutions : JoinedTo(revolutions, kSlowBandSeconds * sampleHz);
  std::vector<int32_t> bounds = {0, n};
  for (const std::vector<Piece>* pieces : {&revolutions, &joined}) {
    for (const Piece& p : *pieces) {
      bounds.push_back(p.begin);
      bounds.push_back(p.end);
    }
  }
  std::sort(bounds.begin(), bounds.end());
  bounds.erase(std::unique(bounds.begin(), bounds.end()), bounds.end());
  const size_t segments = bounds.size() - 1;
  const size_t unused = segments;  // the slot of the extensions
  std::vector<TrackedRun> runs = {{0, static_cast<size_t>(pad), unused}};
  for (size_t i = 0; i < segments; ++i) {
    runs.push_back({pad + static_cast<size_t>(bounds[i]), pad + static_cast<size_t>(bounds[i + 1]), i});
  }
  runs.push_back({static_cast<size_t>(pad) + n, total, unused});
  std::vector<double> least((segments + 1) * kLaneCount);
  std::vector<double> largest((segments + 1) * kLaneCount);
  FilterLanesZeroPhase(MakeLaneCascade(cascades), record, runs, static_cast<size_t>(pad), least.data(),
                       largest.data());

  auto segment = [&](int32_t at) {
    return static_cast<size_t>(std::lower_bound(bounds.begin(), bounds.end(), at) - bounds.begin());
  };
  for (int32_t b = 0; b < AQX_BANDS; ++b) {
    if (!computed[b]) continue;
    const std::vector<Piece>& pieces = b == 1 ? joined : revolutions;
    double widest = 0.0;
    double sum = 0.0;
    for (const Piece& p : pieces) {
      double lo = std::numeric_limits<double>::infinity();
      double hi = -lo;
      for (size_t i = segment(p.begin); i < segment(p.end); ++i) {
        lo = std::min(lo, least[i * kLaneCount + b]);
        hi = std::max(hi, largest[i * kLaneCount + b]);
      }
      const double swing = (hi - lo) * units;
      widest = std::max(widest, swing);
      sum += swing;
    }
    BandMax[b] = RoundToInt32(widest);
    BandMean[b] = RoundToInt32(sum / static_cast<double>(pieces.size()));
  }
}
