// Per-channel statistics over the sample store and the plain copy of one
// channel: AccountSignalMax, ControlClearance, CopyData.

#include "engine/EngineCommon.h"
#include "engine/Parallel.h"

#include <array>
#include <cstring>

using namespace aqx::engine;

namespace {

constexpr int32_t kCodeTop = 8191;
constexpr int32_t kCodeBottom = -8192;

struct ColumnStats {
  std::array<int16_t, kColumns> least;
  std::array<int16_t, kColumns> greatest;
  std::array<int64_t, kColumns> sum;
};

// Least, greatest and sum of every column over the rows, in one pass row by
// row so that the store is read in its own order: a row is two vectors of
// 16 codes. The sums run in 32 bits over blocks short enough not to overflow.
AQX_CLONED_FOR_AVX2
ColumnStats StatsOfRows(const int16_t* signalData, Stretch rows) {
  constexpr int kHalf = kColumns / 2;
  using Codes = int16_t __attribute__((vector_size(kHalf * sizeof(int16_t))));
  using Sums = int32_t __attribute__((vector_size(kHalf * sizeof(int32_t) / 2)));
  constexpr int32_t kBlockRows = 32768;
  Codes least[2];
  Codes greatest[2];
  for (int h = 0; h < 2; ++h) {
    for (int c = 0; c < kHalf; ++c) {
      least[h][c] = 32767;
      greatest[h][c] = -32768;
    }
  }
  ColumnStats out{};
  for (int32_t first = rows.first; first <= rows.last; first += kBlockRows) {
    const int32_t last = std::min(rows.last, first + kBlockRows - 1);
    Sums partial[4] = {};
    for (int32_t row = first; row <= last; ++row) {
      const int16_t* line = signalData + static_cast<size_t>(row - 1) * kColumns;
      for (int h = 0; h < 2; ++h) {
        Codes v;
        std::memcpy(&v, line + h * kHalf, sizeof v);
        least[h] = v < least[h] ? v : least[h];
        greatest[h] = v > greatest[h] ? v : greatest[h];
        using Quarter = int16_t __attribute__((vector_size(kHalf * sizeof(int16_t) / 2)));
        Quarter lowPart;
        Quarter highPart;
        std::memcpy(&lowPart, &v, sizeof lowPart);
        std::memcpy(&highPart, reinterpret_cast<const char*>(&v) + sizeof lowPart, sizeof highPart);
        partial[2 * h] += __builtin_convertvector(lowPart, Sums);
        partial[2 * h + 1] += __builtin_convertvector(highPart, Sums);
      }
    }
    for (int q = 0; q < 4; ++q) {
      for (int c = 0; c < kHalf / 2; ++c) out.sum[q * (kHalf / 2) + c] += partial[q][c];
    }
  }
  for (int h = 0; h < 2; ++h) {
    for (int c = 0; c < kHalf; ++c) {
      out.least[h * kHalf + c] = least[h][c];
      out.greatest[h * kHalf + c] = greatest[h][c];
    }
  }
  return out;
}

// The same over a long stretch in pieces on two threads.
ColumnStats StatsOver(const int16_t* signalData, Stretch rows) {
  // Every piece starts as the result of no rows, in case the stretch goes whole.
  std::array<ColumnStats, kPiecesPerPass> pieces;
  pieces.fill(StatsOfRows(signalData, Stretch{}));
  SplitInPieces(static_cast<size_t>(rows.count()), [&](size_t begin, size_t end, size_t piece) {
    const Stretch part{rows.first + static_cast<int32_t>(begin), rows.first + static_cast<int32_t>(end) - 1};
    pieces[piece] = StatsOfRows(signalData, part);
  });
  ColumnStats out = pieces[0];
  for (size_t p = 1; p < pieces.size(); ++p) {
    for (int32_t c = 0; c < kColumns; ++c) {
      out.least[c] = std::min(out.least[c], pieces[p].least[c]);
      out.greatest[c] = std::max(out.greatest[c], pieces[p].greatest[c]);
      out.sum[c] += pieces[p].sum[c];
    }
  }
  return out;
}

}  // namespace

extern "C" int32_t AccountSignalMax(const int16_t* SignalData, int32_t ViewFirst, int32_t ViewLast,
                                    int32_t* SignalMaxValue, const int32_t* Channel,
                                    int32_t* SignalOffset, int32_t* SignalMeanValue,
                                    int32_t* SignalCurrentValue) {
  if (SignalData == nullptr || Channel == nullptr) return 0;
  const Stretch rows = ClampStretch(ViewFirst, ViewLast, kRows);
  const ColumnStats stats = StatsOver(SignalData, rows);
  const int32_t count = rows.count();
  for (int32_t c = 0; c < kColumns; ++c) {
    if (Channel[c] != 1) continue;
    const int32_t mean =
        count > 0 ? RoundToInt32(static_cast<double>(stats.sum[c]) / static_cast<double>(count)) : 0;
    const int32_t current = count > 0 ? CodeAt(SignalData, rows.last, c) : 0;
    if (SignalMaxValue) SignalMaxValue[c] = count > 0 ? std::max<int32_t>(stats.greatest[c], -stats.least[c]) : 0;
    if (SignalOffset) SignalOffset[c] = mean;
    if (SignalMeanValue) SignalMeanValue[c] = mean;
    if (SignalCurrentValue) SignalCurrentValue[c] = current;
  }
  return 0;
}

extern "C" int32_t ControlClearance(int32_t SignalDataN, const int16_t* SignalData,
                                    const int32_t* Channel, const int32_t* Type, const float* KS,
                                    const float* Ku, int32_t Clearance, int32_t* ClearanceLow,
                                    int32_t* ClearanceHigh, const int32_t* /*SignalMaxValue*/,
                                    int32_t ValueClearenceMin, int32_t ValueClearenceMax) {
  if (SignalData == nullptr || Channel == nullptr) return 0;
  const Stretch rows{1, ClampSampleCount(SignalDataN)};
  if (rows.empty()) return 0;
  const ColumnStats extremes = StatsOver(SignalData, rows);

  int32_t overloaded = 0;
  for (int32_t c = 0; c < kColumns; ++c) {
    if (Channel[c] != 1) continue;
    if (extremes.greatest[c] >= kCodeTop || extremes.least[c] <= kCodeBottom) overloaded = 1;
    if (Type == nullptr || Type[c] != kTypeRunout) continue;
    const double ks = (KS != nullptr && std::isfinite(KS[c])) ? KS[c] : 0.0;
    const double micrometresPerCode = kMillivoltsPerCode / SafeKu(Ku, c);
    const double gapA = Clearance + (extremes.least[c] - ks) * micrometresPerCode;
    const double gapB = Clearance + (extremes.greatest[c] - ks) * micrometresPerCode;
    const double leastGap = std::min(gapA, gapB);
    const double greatestGap = std::max(gapA, gapB);
    if (ClearanceLow != nullptr && leastGap < ValueClearenceMin) ClearanceLow[c] = 1;
    if (ClearanceHigh != nullptr && greatestGap > ValueClearenceMax) ClearanceHigh[c] = 1;
  }
  return overloaded;
}

extern "C" void CopyData(double* destination, const int16_t* SignalData, int32_t firstRow,
                         int32_t lastRow, int32_t channel) {
  if (destination == nullptr || SignalData == nullptr) return;
  if (channel < 1 || channel > kColumns) return;
  const Stretch rows = ClampStretch(firstRow, lastRow, kRows);
  ReadColumn(SignalData, rows.first, channel - 1, rows.count(), destination);
}
