// The typed computations under the C interface refuse what they cannot hold
// instead of writing past it.

#include "EngineTestSupport.h"

#include "engine/RotorForm.h"
#include "engine/SpectrumFull.h"

#include <gtest/gtest.h>

namespace aqx::test {
namespace {

using engine::ComputeSpectrum;
using engine::SpectrumRequest;

SpectrumRequest SineRequest(int32_t rows) {
  SpectrumRequest r;
  r.column = 0;
  r.firstRow = 1;
  r.lastRow = rows;
  r.referenceRow = 1;
  r.sampleHz = 1024.0;
  return r;
}

TEST(EngineTypedSpectrum, GivesTheSineAtItsLineAndRefusesShortSpansOrStretchesOutsideTheStore) {
  constexpr int32_t kRows = 1024;
  Store store(kRows);
  store.fill(1, kRows, [](int32_t row) { return 1000.0 * std::cos(2.0 * kPi * 64.0 * (row - 1) / kRows); });
  const SpectrumRequest request = SineRequest(kRows);
  ASSERT_EQ(engine::SpectrumLineCount(request), kRows / 2);

  std::vector<double> amplitude(kRows / 2), phase(kRows / 2), real(kRows / 2);
  const auto summary = ComputeSpectrum(store.codes, request, {amplitude, phase, real});
  ASSERT_TRUE(summary.has_value());
  EXPECT_EQ(summary->lines, kRows / 2);
  EXPECT_DOUBLE_EQ(summary->stepHz, 1.0);
  EXPECT_NEAR(amplitude[64], 2000.0 * 1.25, 0.5);  // peak-to-peak in units
  EXPECT_NEAR(summary->largest, amplitude[64], 1e-9);

  std::vector<double> shortPhase(kRows / 2 - 1, kSentinelValue);
  EXPECT_FALSE(ComputeSpectrum(store.codes, request, {amplitude, shortPhase, real}).has_value());
  EXPECT_EQ(shortPhase.front(), kSentinelValue);

  SpectrumRequest past = request;
  past.lastRow = kRows + 1;
  EXPECT_FALSE(ComputeSpectrum(store.codes, past, {amplitude, phase, real}).has_value());
}

TEST(EngineTypedRotorForm, RefusesAStoreShorterThanTheRowsAskedFor) {
  Store store(2048);
  engine::RotorFormRequest request;
  request.turnColumn = 0;
  request.markerColumn = 1;
  request.rows = 4096;
  request.sampleHz = 1000.0;
  request.poles = 8;
  EXPECT_EQ(engine::ComputeRotorForm(store.codes, request).status, AQX_FORMA_BAD_ARGUMENTS);
}

}  // namespace
}  // namespace aqx::test
