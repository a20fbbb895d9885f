#include "engine/acquisition/HydroUnitModel.h"

#include "engine/acquisition/AcquisitionModule.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace aqx::acq {

namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;
// Two slow periods of the speed wander, Hz, and their shares.
constexpr double kWanderHz1 = 0.07, kWanderShare1 = 0.6;
constexpr double kWanderHz2 = 0.019, kWanderShare2 = 0.4;
constexpr double kMarkerDutyTurns = 0.03;  // pulse length, part of a revolution
constexpr double kPoleWidth = 0.12;        // pulse width, part of a pole pitch
constexpr double kHumMv = 2.0;             // mains hum of a single-ended input
constexpr double kOverloadFactor = 40.0;
constexpr double kOverloadSwingMv = 15000.0;

uint64_t Mix(uint64_t x) {
  x += 0x9E3779B97F4A7C15ull;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
  return x ^ (x >> 31);
}

// Uniform in (0, 1).
double Uniform(uint64_t bits) { return (static_cast<double>(bits >> 11) + 0.5) * 0x1.0p-53; }

}  // namespace

HydroUnitModel::HydroUnitModel(const ModuleSettings& settings)
    : settings_(settings), rotationHz_(settings.rpm / 60.0) {
  poleDeviation_.resize(static_cast<size_t>(settings_.poles));
  for (int p = 0; p < settings_.poles; ++p) {
    const double u = Uniform(Mix(settings_.seed * 7919u + static_cast<uint64_t>(p))) * 2.0 - 1.0;
    poleDeviation_[static_cast<size_t>(p)] = settings_.poleSpreadPercent / 100.0 * u;
  }
  for (const auto& [pole, percent] : settings_.poleDeviations)
    if (pole >= 1 && pole <= settings_.poles) poleDeviation_[static_cast<size_t>(pole - 1)] = percent / 100.0;
  int runOut = 0, vibration = 0;
  for (int c = 0; c < kScenarioChannels; ++c) {
    const SignalKind k = settings_.channels[static_cast<size_t>(c)].kind;
    runOutOrder_[static_cast<size_t>(c)] = k == SignalKind::RunOut ? runOut++ : 0;
    vibrationOrder_[static_cast<size_t>(c)] = k == SignalKind::Vibration ? vibration++ : 0;
  }
}

double HydroUnitModel::shaftTurns(double t) const {
  const double w = settings_.wanderPercent / 100.0;
  const double o1 = kTwoPi * kWanderHz1, o2 = kTwoPi * kWanderHz2;
  const double wander = kWanderShare1 * (1.0 - std::cos(o1 * t)) / o1 +
                        kWanderShare2 * (1.0 - std::cos(o2 * t)) / o2;
  return rotationHz_ * (t + w * wander);
}

double HydroUnitModel::turnStartSeconds(double turn) const {
  // The speed stays within a few percent of nominal: Newton converges at once.
  double t = turn / rotationHz_;
  for (int i = 0; i < 8; ++i) {
    const double w = settings_.wanderPercent / 100.0;
    const double speed = rotationHz_ * (1.0 + w * (kWanderShare1 * std::sin(kTwoPi * kWanderHz1 * t) +
                                                   kWanderShare2 * std::sin(kTwoPi * kWanderHz2 * t)));
    t -= (shaftTurns(t) - turn) / speed;
  }
  return t;
}

double HydroUnitModel::gaussian(uint64_t key) const {
  const uint64_t a = Mix(key ^ (settings_.seed * 0xD1B54A32D192ED03ull));
  const uint64_t b = Mix(a);
  return std::sqrt(-2.0 * std::log(Uniform(a))) * std::cos(kTwoPi * Uniform(b));
}

double HydroUnitModel::millivolts(int channel, bool differential, double t, uint64_t sampleIndex) const {
  const size_t c = static_cast<size_t>(channel);
  const ChannelScenario& sc = settings_.channels[c];
  const double turns = shaftTurns(t);
  const double theta = kTwoPi * turns;
  const double noise = settings_.noiseMv * gaussian(sampleIndex);
  double v = 0.0;
  switch (sc.kind) {
    case SignalKind::RunOut: {
      if (settings_.gapMicrometres >= 0.0) {
        const double g = settings_.gapMicrometres;
        const double linear = std::min(g, settings_.gapLinearMicrometres);
        const double beyond = std::max(0.0, g - settings_.gapLinearMicrometres);
        v = -8000.0 + settings_.gapMvPerMicrometre * (linear + 0.5 * beyond) + noise;
        break;
      }
      // Pairs of probes stand at right angles; further pairs sit lower on
      // the shaft with a somewhat larger and turned run-out. The first pair
      // sees a known orbit: x = A sin θ + B sin(2θ + 0.8) and
      // y = A cos θ - B sin(2θ + 0.8) around the gap voltage, A = runOutMv
      // (a circle of the first harmonic), B = runOut2Mv.
      const int order = runOutOrder_[c];
      const double phase = (order % 2) * std::numbers::pi / 2.0 + (order / 2) * 0.35;
      const double scale = 1.0 + 0.15 * (order / 2);
      v = settings_.runOutOffsetMv + scale * settings_.runOutMv * std::sin(theta + phase) +
          scale * settings_.runOut2Mv * std::sin(2.0 * (theta + phase) + 0.8) + noise;
      break;
    }
    case SignalKind::Vibration: {
      const double phase = vibrationOrder_[c] * std::numbers::pi / 2.0;
      const double a = settings_.vibrationMv;
      v = a * std::sin(theta + phase) + 0.3 * a * std::sin(settings_.blades * theta) +
          0.25 * a * std::sin(kTwoPi * 2.0 * settings_.mainsHz * t + phase) +
          settings_.broadbandMv * gaussian(sampleIndex * 2654435761u + 17u) + noise;
      break;
    }
    case SignalKind::Strain:
      v = 300.0 + 150.0 * std::sin(theta + 0.4) + 20.0 * std::sin(settings_.blades * theta) + noise;
      break;
    case SignalKind::Marker: {
      const double frac = turns - std::floor(turns);
      v = (frac < kMarkerDutyTurns ? settings_.markerMv : 0.0) + noise;
      break;
    }
    case SignalKind::TurnProbe: {
      // The shaft mark stands in the middle of the last pole's pitch, so
      // that pole 1 is the first whole pole after it, beyond doubt.
      const int poles = settings_.poles;
      double pos = (turns - std::floor(turns)) * poles - 0.5;
      if (pos < 0.0) pos += poles;
      const int pole = std::clamp(static_cast<int>(pos), 0, poles - 1);
      const double x = (pos - pole - 0.5) / kPoleWidth;
      const double sign = pole % 2 == 0 ? 1.0 : -1.0;
      v = sign * settings_.turnMv * (1.0 + poleDeviation_[static_cast<size_t>(pole)]) *
              std::exp(-0.5 * x * x) + noise;
      break;
    }
    case SignalKind::Voltage:
    case SignalKind::Pressure:
    case SignalKind::Temperature:
    case SignalKind::Displacement:
    case SignalKind::Power: {
      // Slow process values: a level, a drift over tens of seconds, a little noise.
      const int k = static_cast<int>(sc.kind) - static_cast<int>(SignalKind::Voltage);
      const double levels[5] = {3000.0, 2500.0, 1200.0, 800.0, 4000.0};
      const double periods[5] = {45.0, 30.0, 120.0, 60.0, 40.0};
      v = levels[k] * (1.0 + 0.03 * std::sin(kTwoPi * t / periods[k] + k)) + 0.3 * noise;
      break;
    }
    case SignalKind::Dc: v = sc.millivolts; break;
    case SignalKind::Sine: v = sc.millivolts * std::sin(kTwoPi * sc.frequencyHz * t); break;
    case SignalKind::Counter:
    case SignalKind::CounterHigh:
    case SignalKind::Zero: return 0.0;
  }
  if (!differential) v += kHumMv * std::sin(kTwoPi * settings_.mainsHz * t);
  // An overloaded input swings far past every range once a revolution.
  if (settings_.overload[c]) v = v * kOverloadFactor + kOverloadSwingMv * std::sin(theta);
  return v;
}

int16_t HydroUnitModel::code(int channel, int range, bool differential, double t, int64_t row,
                             uint64_t sampleIndex) const {
  const SignalKind kind = settings_.channels[static_cast<size_t>(channel)].kind;
  const auto wrap14 = [](int64_t n) {
    return static_cast<int16_t>(((n % 16384) + 16384 + 8192) % 16384 - 8192);
  };
  if (kind == SignalKind::Counter) return wrap14(row);
  if (kind == SignalKind::CounterHigh) return wrap14(row / 16384);
  return MillivoltsToCode(millivolts(channel, differential, t, sampleIndex), range);
}

}  // namespace aqx::acq
