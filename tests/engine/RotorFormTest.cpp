// The rotor form from a synthetic turn-probe EMF with known pole deviations.

#include "EngineTestSupport.h"

#include <gtest/gtest.h>

using namespace aqx::test;

namespace {

constexpr int32_t kPoles = 12;
constexpr int32_t kPerPole = 100;  // samples; 1200 per revolution at 1200 Hz: 60 rpm
constexpr int32_t kRowsUsed = 8000;

double Theta(int pole) { return 2 * kPi * (pole - 1) / kPoles; }

// Percent deviation of a pole in revolution r: a first harmonic of 3 + r
// percent at 40 degrees and a third harmonic of 1.5 percent at 100 degrees.
double Deviation(int pole, int r) {
  return (3 + r) * std::cos(Theta(pole) + 40 * kPi / 180) + 1.5 * std::cos(3 * Theta(pole) + 100 * kPi / 180);
}

// Poles start at t = 1000 + 1200 r + 100 (p - 1), each a half sine of
// alternating sign; the marks stand 50 samples before pole 1, inside pole 12.
Store RotorRecord(bool withMarker = true) {
  Store store(kRowsUsed);
  store.fill(5, kRowsUsed, [&](int32_t row) {
    const int t = row - 1 - 1000 + 1200 * 2;  // two revolutions earlier keeps it positive
    const int r = t / 1200 - 2;
    const int pole = (t % 1200) / kPerPole + 1;
    const double amplitude = 2000 * (1 + Deviation(pole, std::clamp(r, 0, 4)) / 100);
    return (pole % 2 ? 1 : -1) * amplitude * std::sin(kPi * (t % kPerPole) / kPerPole);
  });
  store.fill(2, kRowsUsed, [&](int32_t row) {
    const int t = row - 1 - 950;
    return withMarker && t >= 0 && t % 1200 < 20 ? 3000.0 : 0.0;
  });
  return store;
}

struct Form {
  int32_t polus = kPoles, forms = -1, result = -1;
  std::vector<double> speed = std::vector<double>(100), rms = std::vector<double>(100), distortion = std::vector<double>(100);
  std::vector<double> poleRms = std::vector<double>(20000), percent = std::vector<double>(20000);
  std::vector<double> poleMin = std::vector<double>(200), poleMax = std::vector<double>(200);
  std::vector<double> amplitude = std::vector<double>(1000), phase = std::vector<double>(1000);
  double fullScale = -1;
};

Form Compute(Store& store, int32_t polus, bool markerOn = true) {
  auto channel = PerChannel(1);
  auto type = PerChannel(1);
  type[1] = markerOn ? 3 : 1;
  type[4] = 4;
  Form f;
  f.polus = polus;
  f.result = FormaRotorAccount(0, store.data(), store.rows, channel.data(), type.data(), 1200, &f.polus, &f.forms,
                               f.speed.data(), f.poleRms.data(), f.percent.data(), f.rms.data(), f.distortion.data(),
                               f.poleMin.data(), f.poleMax.data(), f.amplitude.data(), f.phase.data(), &f.fullScale);
  return f;
}

}  // namespace

TEST(EngineRotorForm, GivesTheKnownPoleDeviationsBack) {
  Store store = RotorRecord();
  const Form f = Compute(store, kPoles);
  ASSERT_EQ(f.result, 0);
  ASSERT_EQ(f.forms, 5);
  for (int r = 0; r < 5; ++r) {
    SCOPED_TRACE(r);
    const int form = r + 1;
    EXPECT_NEAR(f.speed[form], 60.0, 1e-6);
    EXPECT_NEAR(f.rms[form], 2000 / std::sqrt(2.0) * 1.25, 1.0);  // millivolts
    double least = 1e9, greatest = -1e9;
    for (int p = 1; p <= kPoles; ++p) {
      EXPECT_NEAR(f.percent[form * 200 + p], Deviation(p, r), 0.03) << "pole " << p;
      least = std::min(least, Deviation(p, r));
      greatest = std::max(greatest, Deviation(p, r));
    }
    EXPECT_NEAR(f.distortion[form], greatest - least, 0.05);
    EXPECT_NEAR(f.amplitude[form * 10 + 1], 3 + r, 0.03);
    EXPECT_NEAR(AngleDifference(f.phase[form * 10 + 1], 40), 0, 1);
    EXPECT_NEAR(f.amplitude[form * 10 + 3], 1.5, 0.03);
    EXPECT_NEAR(AngleDifference(f.phase[form * 10 + 3], 100), 0, 1);
    EXPECT_NEAR(f.amplitude[form * 10 + 2], 0, 0.03);
  }
  // Form 0 averages the five: a first harmonic of 5 percent.
  EXPECT_NEAR(f.amplitude[1], 5, 0.03);
  EXPECT_NEAR(f.speed[0], 60.0, 1e-6);
  for (int p = 1; p <= kPoles; ++p) {
    EXPECT_NEAR(f.poleMin[p], std::min(Deviation(p, 0), Deviation(p, 4)), 0.03);
    EXPECT_NEAR(f.poleMax[p], std::max(Deviation(p, 0), Deviation(p, 4)), 0.03);
  }
  EXPECT_NEAR(f.fullScale, 7, 0.03);
  EXPECT_EQ(f.percent[13], 0.0);  // past the last pole
}

TEST(EngineRotorForm, CorrectsThePoleCountFromTheEmf) {
  Store store = RotorRecord();
  EXPECT_EQ(Compute(store, 0).polus, kPoles);
  EXPECT_EQ(Compute(store, 10).polus, kPoles);
}

TEST(EngineRotorForm, TellsWhyNoFormCanBeBuilt) {
  Store store = RotorRecord();
  Form f = Compute(store, kPoles, false);
  EXPECT_EQ(f.result, AQX_FORMA_NO_MARKER);
  EXPECT_EQ(f.forms, 0);
  EXPECT_EQ(f.fullScale, 0.0);
  Store flat = RotorRecord(false);
  EXPECT_EQ(Compute(flat, kPoles).result, AQX_FORMA_NO_REVOLUTION);
  auto channel = PerChannel(1);
  auto type = PerChannel(3);
  int32_t polus = kPoles, forms = -1;
  double scale = -1;
  std::vector<double> a(20000);
  EXPECT_EQ(FormaRotorAccount(0, store.data(), store.rows, channel.data(), type.data(), 1200, &polus, &forms, a.data(),
                              a.data(), a.data(), a.data(), a.data(), a.data(), a.data(), a.data(), a.data(), &scale),
            AQX_FORMA_NO_TURN_PROBE);
  EXPECT_EQ(forms, 0);
}
