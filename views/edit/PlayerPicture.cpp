#include "views/edit/PlayerPicture.h"

#include "core/Numeric.h"
#include "views/DrawSupport.h"

#include <QLocale>

#include <algorithm>

namespace aqx::views {

int WaveRateRow(const AppState& s) {
  return std::clamp(s.options.config.FreqDescWaveN, 0, static_cast<int>(kWaveRates.size()) - 1);
}

double PlaySeconds(const AppState& s, int row) {
  const int rate = kWaveRates[static_cast<size_t>(std::clamp(row, 0, static_cast<int>(kWaveRates.size()) - 1))].samplesPerSecond;
  return static_cast<double>(std::clamp(s.SignalDataN, 0, kMaxSamples)) / rate;
}

QString PlayerInfoText(const AppState& s, int row) {
  const int rate = kWaveRates[static_cast<size_t>(std::clamp(row, 0, static_cast<int>(kWaveRates.size()) - 1))].samplesPerSecond;
  return QStringLiteral("Частота дескритизации: %1 Гц").arg(rate) + QStringLiteral("\nДлительность звучания: %1 с")
                                                                     .arg(QLocale().toString(PlaySeconds(s, row), 'f', 1));
}

DrawList PlayerPicture(const AppState& s, int channel, int widthPx, int heightPx, double position) {
  DrawList list;
  list.width = std::max(widthPx, 0);
  list.height = std::max(heightPx, 0);
  list.background = 0x000000;
  const int n = std::clamp(s.SignalDataN, 0, kMaxSamples);
  if (widthPx < 2 || heightPx < 2 || n < 1 || channel < 1 || channel > kMaxChannels) return list;
  // The trace fills the height around its own middle: a probe's offset
  // would otherwise push it against an edge.
  int least = s.SignalData.at(1, channel), greatest = least;
  for (int k = 2; k <= n; ++k) {
    least = std::min<int>(least, s.SignalData.at(k, channel));
    greatest = std::max<int>(greatest, s.SignalData.at(k, channel));
  }
  const double span = std::max(1.0, (greatest - least) / 2.0);
  const double centreCode = (greatest + least) / 2.0;
  const double middle = heightPx / 2.0;
  const auto y = [&](int code) { return RoundHalfEven(middle - (code - centreCode) / span * (middle - 2)); };
  const BgrColor trace = 0x00FF00;
  for (int x = 0; x < widthPx; ++x) {
    const int from = 1 + static_cast<int>(static_cast<int64_t>(x) * n / widthPx);
    const int to = std::max(from, static_cast<int>(static_cast<int64_t>(x + 1) * n / widthPx));
    int lo = s.SignalData.at(from, channel), hi = lo;
    for (int k = from + 1; k <= to; ++k) {
      lo = std::min<int>(lo, s.SignalData.at(k, channel));
      hi = std::max<int>(hi, s.SignalData.at(k, channel));
    }
    list.add(Line{x, y(hi), x, y(lo) + 1, MakePen(trace)});
  }
  if (position >= 0.0) {
    const int x = std::clamp(RoundHalfEven(position * (widthPx - 1)), 0, widthPx - 1);
    list.add(Line{x, 0, x, heightPx, MakePen(0x0000FF, 2)});
  }
  return list;
}

}  // namespace aqx::views
