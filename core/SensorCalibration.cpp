#include "core/SensorCalibration.h"

#include "core/ChannelPhysics.h"
#include "core/Numeric.h"

#include <cmath>
#include <cstdlib>
#include <numeric>

namespace aqx {

float IntervalKu(int16_t previousLevel, int16_t level) {
  const double perMicrometre =
      std::abs(static_cast<int>(previousLevel) - level) * kMillivoltsPerCode / kCalibrationStepMicrometres;
  return static_cast<float>(std::floor(perMicrometre * 100.0 + 1e-9) / 100.0);
}

bool SensorDead(float ku) { return ku <= 0.01f + 1e-6f; }

KuRecommendation RecommendKu(const std::vector<float>& factors, int32_t razbrosPercent) {
  KuRecommendation r;
  for (size_t k = 1; k <= factors.size(); ++k) {
    const double mean = std::accumulate(factors.begin(), factors.begin() + static_cast<long>(k), 0.0) / k;
    if (mean == 0.0) break;
    bool within = true;
    for (size_t i = 0; i < k; ++i)
      if (std::abs(RoundHalfEven(factors[i] / mean * 100.0 - 100.0)) > razbrosPercent) within = false;
    if (!within) break;
    r.ku = mean;
    r.rangeMicrometres = static_cast<int32_t>(k) * kCalibrationStepMicrometres;
  }
  for (float f : factors)
    r.deviationPercent.push_back(r.ku > 0.0 ? RoundHalfEven(f / r.ku * 100.0 - 100.0) : 0);
  return r;
}

QString RecommendationText(const KuRecommendation& r, int32_t razbrosPercent) {
  return QStringLiteral("Рекомендуемый Ку = ") + FormatStandard(r.ku) + QStringLiteral(",\nдля диапазона 0-") +
         QString::number(r.rangeMicrometres) + QStringLiteral(" мкм\nпри допустимом отклонении: ±") +
         QString::number(razbrosPercent) + QStringLiteral("%");
}

void SensorCalibration::addLevel(int16_t level) {
  if (finished()) return;
  if (!levels.empty()) {
    factors.push_back(IntervalKu(levels.back(), level));
    dead = SensorDead(factors.back());
  }
  levels.push_back(level);
}

QString CalibrationCopyText(const SensorCalibration& c, const KuRecommendation& r, const QString& sensor,
                            const QDateTime& when) {
  QStringList lines{QStringLiteral("Время: ") + when.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss")),
                    QStringLiteral("Датчик: ") + sensor,
                    QStringLiteral("Зазор, мкм\tУровень, мВ\tКу, мВ/мкм\tРазброс, %")};
  for (int row = 0; row < kCalibrationSteps; ++row) {
    QStringList cells{QString::number(row * kCalibrationStepMicrometres)};
    const auto at = static_cast<size_t>(row);
    cells << (at < c.levels.size() ? FormatStandard(c.levels[at] * kMillivoltsPerCode) : QString());
    cells << (row >= 1 && at - 1 < c.factors.size() ? FormatStandard(c.factors[at - 1]) : QString());
    cells << (row >= 1 && at - 1 < r.deviationPercent.size() ? FormatStandard(r.deviationPercent[at - 1]) : QString());
    lines << cells.join(QLatin1Char('\t'));
  }
  return lines.join(QLatin1Char('\n'));
}

}  // namespace aqx
