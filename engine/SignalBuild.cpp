// Reduction of samples and spectra to pixel columns for drawing:
// AccountDataBuildSignal and AccountDataBuildSpectr.

#include "engine/EngineCommon.h"
#include "engine/Parallel.h"

#include <array>

using namespace aqx::engine;

namespace {

// Pixel ordinate of a code, as the signal view places a sample.
struct Ordinate {
  double base = 0.0;
  double zero = 0.0;
  double perCode = 0.0;  // millivolts per code
  double k = 0.0;        // pixels per millivolt
  double low = std::numeric_limits<int32_t>::min();
  double high = std::numeric_limits<int32_t>::max();

  int32_t at(int32_t code) const {
    const double y = std::nearbyint(base - (perCode * code - zero) * k);
    return RoundToInt32(std::clamp(y, low, high));
  }
};

double FiniteOr(double v, double fallback) { return std::isfinite(v) ? v : fallback; }

constexpr size_t kPrefetchRows = 96;

}  // namespace

extern "C" int32_t AccountDataBuildSignal(int32_t widthPixels, int32_t centreLine,
                                          double PixelsPerSample, double PixelsPerUnit,
                                          double millivoltsPerCode, double heightPixels,
                                          int32_t channel, const int16_t* SignalData,
                                          int32_t SignalDataN, int32_t firstRow, int32_t lastRow,
                                          const float* Ku, const int32_t* Zero,
                                          const int32_t* Volume, const int32_t* SignalOffset,
                                          int32_t* output) {
  if (output == nullptr) return 0;
  const int32_t width = std::clamp(widthPixels, 1, kRows);
  const bool usable = SignalData != nullptr && channel >= 0 && channel < kColumns;
  const Stretch rows = ClampStretch(firstRow, lastRow, ClampSampleCount(SignalDataN));
  const int32_t n = usable ? rows.count() : 0;
  if (n == 0) {
    std::fill_n(output, 2 * static_cast<size_t>(width), centreLine);
    return 0;
  }

  Ordinate ord;
  ord.perCode = FiniteOr(millivoltsPerCode, kMillivoltsPerCode);
  ord.k = FiniteOr(PixelsPerUnit, 0.0) / SafeKu(Ku, channel);
  const double offset = SignalOffset ? SignalOffset[channel] : 0.0;
  const int32_t volume = Volume ? std::clamp(Volume[channel], 0, 3) : 0;
  const double zero = Zero ? Zero[channel] : 0.0;
  ord.base = std::nearbyint(FiniteOr(offset * ord.perCode * ord.k + centreLine, centreLine));
  ord.zero = std::nearbyint(std::pow(4.0, volume) * zero);
  if (heightPixels > 0.0 && std::isfinite(heightPixels)) {
    ord.low = -heightPixels;
    ord.high = 2.0 * heightPixels;
  }

  double pps = PixelsPerSample;
  if (!(pps > 0.0) || !std::isfinite(pps)) pps = static_cast<double>(width) / n;
  auto columnOf = [&](int32_t i) {
    const double c = std::floor(i * pps);
    return c >= width - 1 ? width - 1 : static_cast<int32_t>(c);
  };
  // First sample of column x: the least i with columnOf(i) >= x.
  auto firstSampleOf = [&](int32_t x) {
    int64_t i = static_cast<int64_t>(std::ceil(x / pps));
    i = std::clamp<int64_t>(i, 0, n);
    while (i > 0 && columnOf(static_cast<int32_t>(i - 1)) >= x) --i;
    while (i < n && columnOf(static_cast<int32_t>(i)) < x) ++i;
    return static_cast<int32_t>(i);
  };

  const int16_t* src = CodePtr(SignalData, rows.first, channel);
  // Columns [xBegin, xEnd); an empty column (zoomed in past a sample a pixel)
  // repeats the bottom of the one before.
  auto fillColumns = [&](int32_t xBegin, int32_t xEnd) {
    int32_t previous = centreLine;
    int32_t start = firstSampleOf(xBegin);
    for (int32_t x = xBegin; x < xEnd; ++x) {
      const int32_t end = x == width - 1 ? n : firstSampleOf(x + 1);
      int32_t top = previous;
      int32_t bottom = previous;
      if (end > start) {
        // Two running extremes per parity let the loads of neighbouring rows
        // overlap instead of waiting on one compare chain.
        const int16_t* p = src + static_cast<size_t>(start) * kColumns;
        int16_t lo0 = *p, hi0 = *p, lo1 = *p, hi1 = *p;
        int32_t i = start;
        for (; i + 1 < end; i += 2, p += 2 * kColumns) {
          // Rows a few pages ahead are asked for early: each row is a cache
          // line of its own, and the loads, not the compares, set the pace.
          __builtin_prefetch(p + kPrefetchRows * kColumns);
          __builtin_prefetch(p + (kPrefetchRows + 1) * kColumns);
          lo0 = std::min(lo0, p[0]);
          hi0 = std::max(hi0, p[0]);
          lo1 = std::min(lo1, p[kColumns]);
          hi1 = std::max(hi1, p[kColumns]);
        }
        if (i < end) {
          lo0 = std::min(lo0, p[0]);
          hi0 = std::max(hi0, p[0]);
        }
        const int32_t ya = ord.at(std::min(lo0, lo1));
        const int32_t yb = ord.at(std::max(hi0, hi1));
        top = std::min(ya, yb);
        bottom = std::max(ya, yb);
      }
      output[2 * static_cast<size_t>(x)] = top;
      output[2 * static_cast<size_t>(x) + 1] = bottom;
      previous = bottom;
      start = std::max(start, end);
    }
  };
  // With a sample in every column the columns do not depend on each other,
  // and a long stretch is read in two halves at once.
  const bool everyColumnFilled = pps <= 1.0 && columnOf(n - 1) >= width - 1;
  if (!everyColumnFilled || n < static_cast<int32_t>(kSplitLeastItems)) {
    fillColumns(0, width);
  } else {
    SplitInTwo(
        static_cast<size_t>(width),
        [&](size_t begin, size_t end) { fillColumns(static_cast<int32_t>(begin), static_cast<int32_t>(end)); }, 2);
  }
  return 0;
}

namespace {

constexpr std::array<double, 4> kDecadeLow = {0.0, 10.0, 100.0, 1000.0};
constexpr std::array<double, 4> kDecadeHigh = {10.0, 100.0, 1000.0, 10000.0};
constexpr std::array<int32_t, 4> kDecadeDivisions = {10, 9, 9, 9};

struct DecadeAxis {
  std::array<double, 4> start{};  // x where each decade begins
  std::array<double, 4> width{};  // pixels of each shown decade, 0 when not shown
  int32_t shown = 0;

  // Frequency at pixel position x (may be fractional), up to the last shown decade.
  double frequencyAt(double x) const {
    for (int32_t d = 0; d < shown; ++d) {
      if (x <= start[d] + width[d] || d == shown - 1) {
        const double part = std::clamp((x - start[d]) / width[d], 0.0, 1.0);
        return kDecadeLow[d] + part * (kDecadeHigh[d] - kDecadeLow[d]);
      }
    }
    return 0.0;
  }
};

}  // namespace

extern "C" int32_t AccountDataBuildSpectr(int32_t /*FreqDesc*/, int32_t widthPixels,
                                          int32_t heightPixels, double unitsPerPixel,
                                          int32_t gridDivisions, int32_t /*SignalDataN*/,
                                          const double* SpectrAmplitude, int32_t SpectrLineCount,
                                          int32_t /*ViewFirst*/, int32_t /*ViewLast*/,
                                          double StepDesc, int32_t viewType,
                                          double* decadeStartPixels, int32_t* decadeDivisions,
                                          int32_t* ViewFlag, int32_t* columnY) {
  if (ViewFlag) *ViewFlag = 0;
  const int32_t lines = std::clamp(SpectrLineCount, 0, AQX_SPECTRUM_LINES);
  const bool usable = SpectrAmplitude != nullptr && columnY != nullptr && widthPixels > 0 &&
                      heightPixels > 0 && unitsPerPixel > 0.0 && std::isfinite(unitsPerPixel) &&
                      gridDivisions > 0 && StepDesc > 0.0 && std::isfinite(StepDesc) && lines > 1;
  const int32_t width = std::clamp(widthPixels, 1, AQX_SPECTRUM_COLUMNS);
  const double height = heightPixels;

  DecadeAxis axis;
  int32_t divisionsSoFar = 0;
  for (int32_t d = 0; d < 4; ++d) {
    const int32_t asked = decadeDivisions ? decadeDivisions[d] : 0;
    const int32_t divisions = asked > 0 ? asked : kDecadeDivisions[d];
    axis.start[d] = gridDivisions > 0 ? static_cast<double>(width) * divisionsSoFar / gridDivisions
                                      : width;
    if (gridDivisions > 0 && axis.shown == d && divisionsSoFar + divisions <= gridDivisions) {
      axis.width[d] = static_cast<double>(width) * divisions / gridDivisions;
      axis.shown = d + 1;
      divisionsSoFar += divisions;
    } else {
      axis.start[d] = width;
    }
    if (decadeDivisions) decadeDivisions[d] = axis.width[d] > 0.0 ? divisions : 0;
    if (decadeStartPixels) decadeStartPixels[d] = axis.start[d];
  }
  if (!usable || axis.shown == 0) return 0;

  auto yOf = [&](double amplitude) {
    return RoundToInt32(std::clamp(height - amplitude / unitsPerPixel, 0.0, height));
  };
  const double shownEnd = axis.start[axis.shown - 1] + axis.width[axis.shown - 1];
  for (int32_t x = 0; x < width; ++x) {
    if (x >= shownEnd) {
      columnY[x] = heightPixels;
      continue;
    }
    const double f0 = axis.frequencyAt(x);
    const double f1 = axis.frequencyAt(x + 1.0);
    const int64_t kFirst = std::max<int64_t>(1, static_cast<int64_t>(std::ceil(f0 / StepDesc)));
    const int64_t kEnd = std::min<int64_t>(lines, static_cast<int64_t>(std::ceil(f1 / StepDesc)));
    if (kEnd > kFirst) {
      double largest = 0.0;
      for (int64_t k = kFirst; k < kEnd; ++k) largest = std::max(largest, SpectrAmplitude[k]);
      columnY[x] = yOf(largest);
      continue;
    }
    const double position = axis.frequencyAt(x + 0.5) / StepDesc;
    if (viewType == 0 || position > lines - 1) {
      columnY[x] = heightPixels;
      continue;
    }
    const int32_t k = std::clamp(static_cast<int32_t>(std::floor(position)), 1, lines - 1);
    const int32_t next = std::min(k + 1, lines - 1);
    const double part = std::clamp(position - k, 0.0, 1.0);
    columnY[x] = yOf(SpectrAmplitude[k] + part * (SpectrAmplitude[next] - SpectrAmplitude[k]));
  }
  if (ViewFlag) *ViewFlag = 1;
  return 0;
}
