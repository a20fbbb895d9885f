// Per-channel statistics over the sample store and the plain copy of one
// channel: AccountSignalMax, ControlClearance, CopyData.

#include "engine/EngineCommon.h"

#include <array>

using namespace aqx::engine;

namespace {

constexpr int32_t kCodeTop = 8191;
constexpr int32_t kCodeBottom = -8192;

struct ChannelExtremes {
  int32_t least = 32767;
  int32_t greatest = -32768;
};

// Least and greatest code of every wanted column over the rows, one pass row
// by row so that the store is read in its own order.
std::array<ChannelExtremes, kColumns> ExtremesOver(const int16_t* signalData, Stretch rows,
                                                    const std::array<bool, kColumns>& wanted) {
  std::array<ChannelExtremes, kColumns> out{};
  std::array<int16_t, kColumns> least;
  std::array<int16_t, kColumns> greatest;
  least.fill(32767);
  greatest.fill(-32768);
  for (int32_t row = rows.first; row <= rows.last; ++row) {
    const int16_t* line = signalData + static_cast<size_t>(row - 1) * kColumns;
    for (int32_t c = 0; c < kColumns; ++c) {
      least[c] = std::min(least[c], line[c]);
      greatest[c] = std::max(greatest[c], line[c]);
    }
  }
  for (int32_t c = 0; c < kColumns; ++c) {
    if (!wanted[c]) continue;
    out[c].least = least[c];
    out[c].greatest = greatest[c];
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
  std::array<int64_t, kColumns> sums{};
  std::array<int32_t, kColumns> peaks{};
  for (int32_t row = rows.first; row <= rows.last; ++row) {
    const int16_t* line = SignalData + static_cast<size_t>(row - 1) * kColumns;
    for (int32_t c = 0; c < kColumns; ++c) {
      const int32_t v = line[c];
      sums[c] += v;
      peaks[c] = std::max(peaks[c], v < 0 ? -v : v);
    }
  }
  const int32_t count = rows.count();
  for (int32_t c = 0; c < kColumns; ++c) {
    if (Channel[c] != 1) continue;
    const int32_t mean =
        count > 0 ? RoundToInt32(static_cast<double>(sums[c]) / static_cast<double>(count)) : 0;
    const int32_t current = count > 0 ? CodeAt(SignalData, rows.last, c) : 0;
    if (SignalMaxValue) SignalMaxValue[c] = count > 0 ? peaks[c] : 0;
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
  std::array<bool, kColumns> wanted{};
  for (int32_t c = 0; c < kColumns; ++c) wanted[c] = Channel[c] == 1;
  const auto extremes = ExtremesOver(SignalData, rows, wanted);

  int32_t overloaded = 0;
  for (int32_t c = 0; c < kColumns; ++c) {
    if (!wanted[c]) continue;
    if (extremes[c].greatest >= kCodeTop || extremes[c].least <= kCodeBottom) overloaded = 1;
    if (Type == nullptr || Type[c] != kTypeRunout) continue;
    const double ks = (KS != nullptr && std::isfinite(KS[c])) ? KS[c] : 0.0;
    const double micrometresPerCode = kMillivoltsPerCode / SafeKu(Ku, c);
    const double gapA = Clearance + (extremes[c].least - ks) * micrometresPerCode;
    const double gapB = Clearance + (extremes[c].greatest - ks) * micrometresPerCode;
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
  const int16_t* src = SignalData + static_cast<size_t>(rows.first - 1) * kColumns + (channel - 1);
  const int32_t count = rows.count();
  for (int32_t i = 0; i < count; ++i) destination[i] = src[static_cast<size_t>(i) * kColumns];
}
