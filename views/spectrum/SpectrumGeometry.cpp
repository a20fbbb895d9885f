// The decade axis of the spectrum, its amplitude scale, and the numbers a
// user reads off the spectrum (the cursor's line, the harmonic order, the
// strongest lines, the lines as text).

#include "core/Numeric.h"
#include "core/Vocabulary.h"
#include "views/spectrum/SpectrumView.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace aqx::views {

namespace {
constexpr int kFirstDecadeDivisions = 10;
constexpr int kDecadeDivisions = 9;
}  // namespace

int SpectrGridN(int scaleSpectr) {
  return kFirstDecadeDivisions + kDecadeDivisions * std::clamp(scaleSpectr, 0, kScaleSpectrMax);
}

QString SpectrRangeLabel(int scaleSpectr) { return BandLabel(std::clamp(scaleSpectr, 0, kScaleSpectrMax)).label; }

double SpectrRangeTopHz(int scaleSpectr) { return std::pow(10.0, std::clamp(scaleSpectr, 0, kScaleSpectrMax) + 1); }

std::optional<double> FrequencyToX(double frequencyHz, double widthPx, int gridDivisions) {
  if (!(frequencyHz >= 0.0) || frequencyHz > kSpectrTopHz || gridDivisions <= 0) return std::nullopt;
  const double first = widthPx * kFirstDecadeDivisions / gridDivisions;
  if (frequencyHz <= 10.0) return first * frequencyHz / 10.0;
  const double decade = widthPx * kDecadeDivisions / gridDivisions;
  // Decade d (1..3) runs from 10^d to 10^(d+1).
  const int d = std::min(3, static_cast<int>(std::floor(std::log10(frequencyHz))));
  const double low = std::pow(10.0, d);
  return first + (d - 1) * decade + decade * (frequencyHz - low) / (9.0 * low);
}

double XToFrequency(double x, double widthPx, int gridDivisions) {
  if (!(x > 0.0) || widthPx <= 0.0 || gridDivisions <= 0) return 0.0;
  const double first = widthPx * kFirstDecadeDivisions / gridDivisions;
  if (x <= first) return 10.0 * x / first;
  const double decade = widthPx * kDecadeDivisions / gridDivisions;
  const int d = std::min(3, 1 + static_cast<int>(std::floor((x - first) / decade)));
  const double low = std::pow(10.0, d);
  return std::min(kSpectrTopHz, low + 9.0 * low * (x - first - (d - 1) * decade) / decade);
}

std::vector<int> SpectrGridLabels(int gridDivisions) {
  std::vector<int> labels;
  int value = 0;
  for (int i = 1; i <= gridDivisions; ++i) {
    value += value < 10 ? 1 : value < 100 ? 10 : value < 1000 ? 100 : 1000;
    labels.push_back(value);
  }
  return labels;
}

int SpectrScaleFor(double maxUnits, int volume) {
  const int target = RoundHalfEven(maxUnits / std::pow(4.0, std::clamp(volume, 0, 3)));
  for (int i = 0; i < kAmplitudeScaleCount; ++i)
    if (AmplitudeScale(i) > target) return AmplitudeScale(i);
  return 0;
}

int SpectrLineAt(const AnalysisResults& r, int lineCount, double stepHz, double frequencyHz, bool bound, int snapLines) {
  if (lineCount <= 0 || !(stepHz > 0.0) || !(frequencyHz >= 0.0)) return -1;
  const int nearest = std::clamp(RoundHalfEven(frequencyHz / stepHz), 0, lineCount - 1);
  if (!bound) return nearest;
  const int first = std::max(1, nearest - snapLines);
  const int last = std::min(lineCount - 1, nearest + snapLines);
  int best = nearest;
  for (int k = first; k <= last; ++k)
    if (r.SpectrAmplitude[static_cast<size_t>(k)] > r.SpectrAmplitude[static_cast<size_t>(best)]) best = k;
  return best;
}

int HarmonicOrderAt(double frequencyHz, double firstHarmonicHz, double stepHz) {
  if (!(firstHarmonicHz > 0.0) || !(frequencyHz > 0.0)) return 0;
  const int n = RoundHalfEven(frequencyHz / firstHarmonicHz);
  if (n < 1) return 0;
  return std::fabs(frequencyHz - n * firstHarmonicHz) <= std::max(stepHz, 0.0) / 2.0 + 1e-9 ? n : 0;
}

std::vector<int> StrongestLines(const AnalysisResults& r, int lineCount, int count) {
  std::vector<int> peaks;
  const auto a = [&](int k) { return r.SpectrAmplitude[static_cast<size_t>(k)]; };
  const int lines = std::clamp(lineCount, 0, kSpectrumLines);
  for (int k = 1; k < lines; ++k) {
    const bool left = a(k) > a(k - 1);
    const bool right = k + 1 >= lines || a(k) >= a(k + 1);
    if (left && right && a(k) > 0.0) peaks.push_back(k);
  }
  const size_t keep = std::min(peaks.size(), static_cast<size_t>(std::max(count, 0)));
  std::partial_sort(peaks.begin(), peaks.begin() + static_cast<std::ptrdiff_t>(keep), peaks.end(),
                    [&](int x, int y) { return a(x) > a(y); });
  peaks.resize(keep);
  return peaks;
}

QString SpectrumLinesText(const AnalysisResults& r, int lineCount, double stepHz, QChar separator, bool localeDecimals) {
  QLocale locale = localeDecimals ? QLocale() : QLocale::c();
  locale.setNumberOptions(QLocale::OmitGroupSeparator);
  QString text = QStringLiteral("Частота, Гц") + separator + QStringLiteral("Амплитуда\n");
  const int lines = std::clamp(lineCount, 0, kSpectrumLines);
  text.reserve(text.size() + lines * 24);
  for (int k = 0; k < lines; ++k) {
    text += locale.toString(k * stepHz, 'f', 6);
    text += separator;
    text += locale.toString(r.SpectrAmplitude[static_cast<size_t>(k)], 'g', 10);
    text += QLatin1Char('\n');
  }
  return text;
}

}  // namespace aqx::views
