#pragma once
// Stepwise calibration of a run-out sensor (frmServiceDetectSensor,
// "Тарировка датчиков биения"): the sensor is set at gaps 0, 500 .. 5000
// micrometres, the level of each step is read, a factor is found for each
// 500-micrometre interval, and the factor recommended is the mean that
// holds within the permitted deviation over the widest range from zero.

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace aqx {

inline constexpr int kCalibrationSteps = 11;
inline constexpr int kCalibrationStepMicrometres = 500;

// Factor of one interval in mV per micrometre, truncated to hundredths.
// The sign of the slope is the probe's wiring: the size is what counts.
float IntervalKu(int16_t previousLevel, int16_t level);
// A factor this small means the sensor does not respond.
bool SensorDead(float ku);

struct KuRecommendation {
  double ku = 0.0;                // mean of the factors of the range
  int32_t rangeMicrometres = 0;   // 0 when no factor is known yet
  std::vector<int32_t> deviationPercent;  // each factor against ku, rounded
};
// The widest range 0..k*500 whose factors all lie within razbrosPercent of
// their mean; the first k that fails ends the search.
KuRecommendation RecommendKu(const std::vector<float>& factors, int32_t razbrosPercent);

// txtInfo.
QString RecommendationText(const KuRecommendation& r, int32_t razbrosPercent);

struct SensorCalibration {
  std::vector<int16_t> levels;  // one per step done
  std::vector<float> factors;   // one per interval
  bool dead = false;
  int step() const { return static_cast<int>(levels.size()) + 1; }
  bool finished() const { return static_cast<int>(levels.size()) >= kCalibrationSteps || dead; }
  // The level of the step just read; the interval's factor from the second on.
  void addLevel(int16_t level);
};

// cmdCopy: "Время: ", "Датчик: " and the grid, cells separated by tabs.
QString CalibrationCopyText(const SensorCalibration& c, const KuRecommendation& r, const QString& sensor,
                            const QDateTime& when);

}  // namespace aqx
