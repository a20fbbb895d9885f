// Band levels of one channel over the analysed stretch: AccountVolumeField.

#include "engine/SpectrumMath.h"
#include "engine/ZeroPhase.h"

#include <array>
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

  std::vector<double> samples(static_cast<size_t>(n));
  const int16_t* src = CodePtr(SignalData, rows.first, column);
  for (int32_t i = 0; i < n; ++i) samples[static_cast<size_t>(i)] = src[static_cast<size_t>(i) * kColumns];

  const std::vector<Piece> revolutions =
      Revolutions(rows, ShaftMarkCount, ShaftMarks, sampleHz, FreqRotorN);
  std::vector<double> band;
  std::vector<double> work;
  for (int32_t b = 0; b < AQX_BANDS; ++b) {
    const double low = kBands[b].lowHz;
    const double high = (b == 1 && runout) ? kRunoutBandHz : kBands[b].highHz;
    if (low > 0.0 && !Usable(low, sampleHz)) continue;  // the band lies above what was sampled
    Cascade cascade;
    if (low > 0.0) AddButterworth(cascade, Pass::HighPass, low, sampleHz);
    if (Usable(high, sampleHz)) AddButterworth(cascade, Pass::LowPass, high, sampleHz);
    band = samples;
    FilterZeroPhase(cascade, band.data(), n, work);

    const std::vector<Piece> pieces =
        (b == 1 && !runout) ? JoinedTo(revolutions, kSlowBandSeconds * sampleHz) : revolutions;
    double largest = 0.0;
    double sum = 0.0;
    for (const Piece& p : pieces) {
      const auto [lo, hi] = std::minmax_element(band.begin() + p.begin, band.begin() + p.end);
      const double swing = (*hi - *lo) * units;
      largest = std::max(largest, swing);
      sum += swing;
    }
    BandMax[b] = RoundToInt32(largest);
    BandMean[b] = RoundToInt32(sum / static_cast<double>(pieces.size()));
  }
}
