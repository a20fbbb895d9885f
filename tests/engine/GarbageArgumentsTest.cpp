// Arguments out of range never reach outside the arrays (run this under
// AddressSanitizer) and give the documented results.

#include "EngineTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

using namespace aqx::test;

namespace {

constexpr int32_t kHuge = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

class EngineGarbage : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    store_ = new Store();
    store_->fill(1, AQX_SIGNAL_ROWS, [](int32_t row) { return row % 1000 < 10 ? 3000 : 0; });
    store_->fill(2, AQX_SIGNAL_ROWS, [](int32_t row) { return 1000 * std::sin(row * 0.01); });
  }
  static void TearDownTestSuite() {
    delete store_;
    store_ = nullptr;
  }
  static Store* store_;
  std::array<int32_t, 32> on = PerChannel(1);
  std::array<int32_t, 32> types = [] {
    auto t = PerChannel(1);
    t[0] = 3;
    return t;
  }();
};
Store* EngineGarbage::store_ = nullptr;

}  // namespace

TEST_F(EngineGarbage, StatisticsCopiesAndFilters) {
  int16_t* data = store_->data();
  auto peak = PerChannel(kSentinel);
  AccountSignalMax(data, kLeast, kHuge, peak.data(), on.data(), nullptr, nullptr, nullptr);
  EXPECT_EQ(peak[0], 3000);
  AccountSignalMax(data, 500, 10, peak.data(), on.data(), nullptr, nullptr, nullptr);
  EXPECT_EQ(peak[0], 0);  // reversed stretch: empty
  EXPECT_EQ(ControlClearance(kHuge, data, on.data(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, nullptr, 0, 0), 0);
  EXPECT_EQ(ControlClearance(-4, data, on.data(), types.data(), nullptr, nullptr, 0, nullptr, nullptr, nullptr, 0, 0), 0);

  Guarded<double> copy(3, kSentinelValue);
  CopyData(copy.data(), data, -10, 3, 2);  // rows 1..3
  CopyData(copy.data(), data, 5, 7, 40);   // no such channel
  CopyData(copy.data(), data, AQX_SIGNAL_ROWS - 2, kHuge, 2);
  EXPECT_TRUE(copy.guardIntact());

  const std::vector<int16_t> before(data, data + 64);
  std::array<float, 128> filter;
  filter.fill(std::numeric_limits<float>::quiet_NaN());
  AccountFilter(on.data(), filter.data(), nullptr, nullptr, data, kHuge, 1000, kLeast);
  AccountFilter(on.data(), filter.data(), nullptr, nullptr, data, 100, -5, 0);
  FilterSensorBienie(on.data(), types.data(), kHuge, nullptr, nullptr, data, 0);
  FillBpfWindow(data, kHuge, 9);
  FillBpfWindow(data, 100, -1);
  EXPECT_EQ(std::vector<int16_t>(data, data + 64), before);

  ShiftSignal(data, kHuge, 33, 90, 3, nullptr);
  ShiftSignal(data, 100, 1, kNaN, 0, nullptr);
  std::vector<int32_t> marks(AQX_MAX_SHAFT_MARKS, 5);
  int32_t result = -1, flag = -1;
  CutSignal(data, kHuge, on.data(), kHuge, marks.data(), &result, nullptr, 0, nullptr, nullptr, kNaN, &flag);
  EXPECT_EQ(result + flag, 0);
  EXPECT_EQ(std::vector<int16_t>(data, data + 64), before);
}

TEST_F(EngineGarbage, MarkerAndDrawing) {
  int16_t* data = store_->data();
  Guarded<int32_t> marks(AQX_MAX_SHAFT_MARKS, kSentinel);
  int32_t count = -1, pmin = -1, pmax = -1;
  double smin = -1, smax = -1;
  Otmetchick(data, kHuge, on.data(), types.data(), &count, marks.data(), 1000, kNaN, &smin, &smax, &pmin, &pmax, 1,
             nullptr, nullptr, kLeast, kHuge, kHuge, kLeast, kLeast, kLeast);
  EXPECT_EQ(count, 1048);  // one pulse per 1000 rows of the whole store
  EXPECT_NEAR(smin, 60.0, 1e-9);
  EXPECT_EQ(pmax, 0);  // no rated speed
  EXPECT_TRUE(marks.guardIntact());
  Otmetchick(data, 100, on.data(), types.data(), &count, nullptr, -5, 83.3, nullptr, nullptr, nullptr, nullptr, 0,
             nullptr, nullptr, 50, 10, 0, 0, 0, 0);
  EXPECT_EQ(count, 0);

  Guarded<int32_t> columns(2, kSentinel);
  AccountDataBuildSignal(-5, 7, kNaN, kNaN, kNaN, kNaN, 0, data, kHuge, kLeast, kHuge, nullptr, nullptr, nullptr,
                         nullptr, columns.data());
  EXPECT_TRUE(columns.guardIntact());
  AccountDataBuildSignal(1, 7, 1, 1, 1.25, 10, 99, data, kHuge, 1, 10, nullptr, nullptr, nullptr, nullptr,
                         columns.data());
  EXPECT_EQ(columns[0], 7);  // no such channel: the centre line

  Guarded<int32_t> spectrumColumns(AQX_SPECTRUM_COLUMNS, kSentinel);
  std::vector<double> lines(AQX_SPECTRUM_LINES, 1.0);
  int32_t viewFlag = -1;
  AccountDataBuildSpectr(0, kHuge, 100, 1.0, 37, 0, lines.data(), kHuge, 0, 0, 1e-3, 1, nullptr, nullptr, &viewFlag,
                         spectrumColumns.data());
  EXPECT_EQ(viewFlag, 1);
  EXPECT_TRUE(spectrumColumns.guardIntact());
}

TEST_F(EngineGarbage, Spectra) {
  int16_t* data = store_->data();
  Guarded<double> amplitude(AQX_SPECTRUM_LINES, kSentinelValue);
  double step = 7.0;
  int32_t lines = -1, largest = -1;
  AccountSpectrFull(nullptr, nullptr, nullptr, nullptr, amplitude.data(), kLeast, kHuge, kLeast, kHuge, kHuge, kHuge,
                    data, 2, nullptr, nullptr, 1, kLeast, &step, 0, &lines, &largest, nullptr, kHuge, nullptr, 0);
  EXPECT_EQ(lines, AQX_SPECTRUM_LINES);  // the whole store in one block
  EXPECT_DOUBLE_EQ(step, 1.0 / AQX_SIGNAL_ROWS);
  EXPECT_TRUE(amplitude.guardIntact());
  AccountSpectrFull(nullptr, nullptr, nullptr, nullptr, amplitude.data(), 0, 0, 10, 5, -1, 100, data, 33, nullptr,
                    nullptr, 1, 0, &step, 1000, &lines, &largest, nullptr, 0, nullptr, 0);
  EXPECT_EQ(lines, 0);
  EXPECT_EQ(largest, 0);

  std::vector<double> re(AQX_SIGNAL_ROWS, 0.0), im(AQX_SIGNAL_ROWS, 0.0);
  FFT(re.data(), im.data(), kHuge, 1, 0);
  FFT(re.data(), im.data(), -3, 1, 0);
  FFT(re.data(), im.data(), 16, 7, 0);
  AccountSpectr(re.data(), im.data(), amplitude.data(), kLeast, 0.0f, &largest, kHuge);
  IntegralSpectr(amplitude.data(), kHuge, 0.5, &largest);
  IntegralSpectr(amplitude.data(), 10, kNaN, &largest);
  EXPECT_TRUE(amplitude.guardIntact());

  Guarded<int32_t> probeAmplitude(8, kSentinel), probePhase(8, kSentinel);
  AccountProbe(99, kHuge, probeAmplitude.data(), probePhase.data(), nullptr, nullptr, nullptr, 1e30, 1.0,
               amplitude.data(), amplitude.data(), nullptr);
  EXPECT_EQ(probeAmplitude[0], 0);
  EXPECT_TRUE(probeAmplitude.guardIntact() && probePhase.guardIntact());

  Guarded<int32_t> bandMax(4, kSentinel), bandMean(4, kSentinel);
  AccountVolumeField(2, nullptr, nullptr, kLeast, kHuge, 5, 3, data, bandMax.data(), bandMean.data(), kHuge, nullptr,
                     nullptr, nullptr, nullptr, -1.0, 0, kNaN, kHuge, kHuge, nullptr);
  EXPECT_EQ(bandMax[0], 0);
  EXPECT_TRUE(bandMax.guardIntact() && bandMean.guardIntact());

  int32_t polus = 12, forms = -1;
  double scale = -1;
  EXPECT_EQ(FormaRotorAccount(0, data, kHuge, on.data(), types.data(), 1000, &polus, &forms, nullptr, nullptr, nullptr,
                              nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &scale),
            AQX_FORMA_BAD_ARGUMENTS);
  EXPECT_EQ(forms, 0);
}
