// Edits of the store by revolutions: ShiftSignal and CutSignal.

#include "engine/EngineCommon.h"

#include <vector>

using namespace aqx::engine;

namespace {

// Marks inside rows 1..rowCount, each later than the one before.
std::vector<int32_t> UsableMarks(int32_t markCount, const int32_t* marks, int32_t rowCount) {
  std::vector<int32_t> out;
  if (marks == nullptr) return out;
  const int32_t count = std::clamp(markCount, 0, kMaxMarks);
  for (int32_t i = 0; i < count; ++i) {
    const int32_t m = marks[i];
    if (m < 1 || m > rowCount) continue;
    if (!out.empty() && m <= out.back()) continue;
    out.push_back(m);
  }
  return out;
}

std::vector<int16_t> ColumnCopy(const int16_t* signalData, int32_t column, int32_t rowCount) {
  std::vector<int16_t> out(static_cast<size_t>(rowCount));
  for (int32_t row = 1; row <= rowCount; ++row) out[static_cast<size_t>(row - 1)] = CodeAt(signalData, row, column);
  return out;
}

}  // namespace

extern "C" void ShiftSignal(int16_t* SignalData, int32_t SignalDataN, int32_t channel,
                            double angleDegrees, int32_t ShaftMarkCount,
                            const int32_t* ShaftMarks) {
  if (SignalData == nullptr || channel < 1 || channel > kColumns || !std::isfinite(angleDegrees)) {
    return;
  }
  const int32_t n = ClampSampleCount(SignalDataN);
  const std::vector<int32_t> marks = UsableMarks(ShaftMarkCount, ShaftMarks, n);
  if (marks.size() < 2) return;
  const int32_t column = channel - 1;
  const double part = WrapDegrees(angleDegrees) / 360.0;
  const std::vector<int16_t> old = ColumnCopy(SignalData, column, n);
  auto source = [&](int32_t row) { return old[static_cast<size_t>(row - 1)]; };
  auto shiftOf = [&](int32_t length) {
    return static_cast<int32_t>(std::nearbyint(part * length)) % length;
  };

  // Whole revolutions turn within themselves.
  for (size_t r = 0; r + 1 < marks.size(); ++r) {
    const int32_t start = marks[r];
    const int32_t length = marks[r + 1] - start;
    const int32_t shift = shiftOf(length);
    for (int32_t j = 0; j < length; ++j) {
      const int32_t from = start + ((j - shift) % length + length) % length;
      *CodePtr(SignalData, start + j, column) = source(from);
    }
  }
  // The partial revolutions at both ends move in time, by the nearest whole
  // revolution's length.
  auto shiftEdge = [&](int32_t firstRow, int32_t lastRow, int32_t length) {
    const int32_t shift = shiftOf(length);
    for (int32_t row = firstRow; row <= lastRow; ++row) {
      int32_t from = row - shift;
      if (from < 1) from += length;
      *CodePtr(SignalData, row, column) = source(std::clamp(from, 1, n));
    }
  };
  shiftEdge(1, marks.front() - 1, marks[1] - marks[0]);
  shiftEdge(marks.back(), n, marks.back() - marks[marks.size() - 2]);
}

extern "C" void CutSignal(int16_t* SignalData, int32_t SignalDataN, const int32_t* Channel,
                          int32_t ShaftMarkCount, const int32_t* ShaftMarks, int32_t* CutResult,
                          int32_t* FreqDesc, int32_t /*FreqDescR*/, double* StepDesc,
                          double* FreqOneGarmonic, double /*FreqRotorN*/, int32_t* CutFlag) {
  if (CutResult) *CutResult = 0;
  if (CutFlag) *CutFlag = 0;
  if (SignalData == nullptr || Channel == nullptr || FreqDesc == nullptr) return;
  const int32_t n = ClampSampleCount(SignalDataN);
  const std::vector<int32_t> marks = UsableMarks(ShaftMarkCount, ShaftMarks, n);
  if (marks.size() < 2) return;
  const int32_t first = marks.front();
  const int32_t span = marks.back() - first;
  if (span < 2) return;
  const int32_t revolutions = static_cast<int32_t>(marks.size()) - 1;

  // Row j of the result stands at first + (j-1) * span / n of the old record.
  const double step = static_cast<double>(span) / n;
  for (int32_t c = 0; c < kColumns; ++c) {
    if (Channel[c] != 1) continue;
    const std::vector<int16_t> old = ColumnCopy(SignalData, c, n);
    for (int32_t j = 1; j <= n; ++j) {
      const double position = first + (j - 1) * step;
      const int32_t below = std::min(static_cast<int32_t>(std::floor(position)), n);
      const int32_t above = std::min(below + 1, n);
      const double part = position - below;
      const double a = old[static_cast<size_t>(below - 1)];
      const double b = old[static_cast<size_t>(above - 1)];
      *CodePtr(SignalData, j, c) = RoundToCode(a + part * (b - a));
    }
  }
  const int32_t oldFrequency = *FreqDesc;
  *FreqDesc = RoundToInt32(static_cast<double>(oldFrequency) * n / span);
  if (StepDesc) *StepDesc = static_cast<double>(*FreqDesc) / n;
  if (FreqOneGarmonic) *FreqOneGarmonic = static_cast<double>(revolutions) * *FreqDesc / n;
  if (CutResult) *CutResult = revolutions;
  if (CutFlag) *CutFlag = 1;
}
