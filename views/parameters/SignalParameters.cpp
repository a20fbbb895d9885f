// Texts of the signal parameter bar and of the large-type parameter window.

#include "views/parameters/SignalParameters.h"
#include "core/ChannelPhysics.h"

#include "core/Numeric.h"

#include <algorithm>
#include <cmath>

namespace aqx::views {

namespace {

int CurrentChannel(const AppState& s) { return std::clamp(s.FirstChannelActive, 1, ChannelCount(s)); }

// Level of a code as the bar shows it: no division by the gain; at divisor 1
// cut to its integer part unless told otherwise.
QString LevelText(const AppState& s, int channel, double code, bool cutToInteger = true) {
  double level = ChannelReading(s.channels, channel, code) / s.UnitDivisor;
  if (cutToInteger && s.UnitDivisor == 1.0) level = std::trunc(level);
  return FormatStandard(level) + QStringLiteral(" ") + s.UnitName + QStringLiteral(" ");
}

QString HarmonicText(const ParameterReadings& r) {
  if (r.ProbeAmplitude > 1)
    return QStringLiteral("1 гарм.: ") + QString::number(r.ProbeAmplitude) + QStringLiteral("мкм / ") +
           QString::number(r.ProbePhase) + QStringLiteral("° ");
  return QStringLiteral("1 гарм.: ") + QStringLiteral("?");
}

void AddVibrationPanels(const AppState& s, const ParameterReadings& r, std::vector<ParameterPanel>& panels) {
  struct Band {
    const char* prefix;
    const char* tipName;
  };
  static constexpr Band kBands[4] = {
      {"ОУ (0-200Гц): ", "Общий уровень"}, {"0-1Гц: ", "НЧ"}, {"1-30Гц: ", "СЧ"}, {"30-200Гц: ", "ВЧ"}};
  for (size_t i = 0; i < 4; ++i) {
    const QString prefix = QString::fromUtf8(kBands[i].prefix);
    const QString tip = QString::fromUtf8(kBands[i].tipName);
    if (s.options.parameters.SignalParameterMax) {
      panels.push_back({prefix + QString::number(r.BandMax[i]) + QStringLiteral(" / ") + QString::number(r.BandMean[i]) +
                            QStringLiteral("мкм "),
                        tip + QStringLiteral(": максимальное / среднее значение")});
    } else {
      panels.push_back({prefix + QString::number(r.BandMean[i]) + QStringLiteral("мкм "),
                        tip + QStringLiteral(": среднее значение")});
    }
  }
  panels.push_back({HarmonicText(r), QStringLiteral("1 гармоника: амлитуда / фаза")});
}

void AddLevelPanels(const AppState& s, int channel, int count, std::vector<ParameterPanel>& panels) {
  const int n = std::clamp(s.SignalDataN, 1, kMaxSamples);
  panels.push_back({QStringLiteral("Начальное: ") + LevelText(s, channel, s.SignalData.at(1, channel)),
                    QStringLiteral("Начальное")});
  panels.push_back({QStringLiteral("Конечное: ") + LevelText(s, channel, s.SignalData.at(n, channel)),
                    QStringLiteral("Конечное")});
  panels.push_back({QStringLiteral("Максимальное: ") + LevelText(s, channel, s.SignalMaxValue[channel]),
                    QStringLiteral("Максимальное")});
  panels.push_back({QStringLiteral("Среднее: ") + LevelText(s, channel, s.SignalMeanValue[channel]),
                    QStringLiteral("Среднее")});
  if (count == 5)
    panels.push_back({QStringLiteral("Текущее: ") + LevelText(s, channel, s.SignalCurrentValue[channel], false),
                      QStringLiteral("Текущее")});
}

}  // namespace

double RunoutShift(const AppState& s, int channel) {
  const double codes = s.AccountOffset ? s.SignalOffset[channel] - s.channels.KS[channel] : s.SignalOffset[channel];
  return CodesToUnits(s.channels, channel, codes);
}

ParameterBar BuildParameterBar(AppState& s, SignalViewState& v,
                               const ParameterReadings& r, int barWidthPx) {
  if (s.UnitDivisor == 0.0) s.UnitDivisor = 1.0;
  const int c = CurrentChannel(s);
  ParameterBar bar;
  std::vector<ParameterPanel>& panels = bar.panels;
  switch (s.channels.Type[c]) {
    case sensor::Runout: {
      panels.push_back({QStringLiteral("ОУ (0-20Гц): ") + QString::number(r.BandMax[1]) + QStringLiteral("мкм "),
                        QStringLiteral("Общий уровень - максимальное значение")});
      panels.push_back({HarmonicText(r), QStringLiteral("Усредненная амплитуда 1 гармоники")});
      panels.push_back({QStringLiteral("Смещение: ") + QString::number(static_cast<qint64>(std::trunc(RunoutShift(s, c)))) +
                            QStringLiteral("мкм "),
                        QStringLiteral("Смещение вала в сторону датчика")});
      break;
    }
    case sensor::Vibration:
      AddVibrationPanels(s, r, panels);
      break;
    case sensor::ShaftMarker: {
      panels.push_back({QStringLiteral("Частота вращения: ") + v.RotorSpeedText, QStringLiteral("Частота вращения")});
      const int count = s.ShaftMarkCount - 1 >= 1 ? s.ShaftMarkCount - 1 : s.NumberRotorRecord;
      panels.push_back({QStringLiteral("Количество оборотов: ") + QString::number(count) + QStringLiteral(" "),
                        QStringLiteral("Количество оборотов")});
      panels.push_back({QStringLiteral("Частота 1 гармоники: ") + FormatStandard(s.FreqOneGarmonic) + QStringLiteral(" Гц "),
                        QStringLiteral("Частота 1 гармоники")});
      break;
    }
    case 4:
      panels.push_back({QStringLiteral("Максимальное: ") + LevelText(s, c, s.SignalMaxValue[c]),
                        QStringLiteral("Максимальное")});
      break;
    case 5:
    case 6:
      AddLevelPanels(s, c, 5, panels);
      break;
    case 7:
      AddLevelPanels(s, c, 4, panels);
      break;
    default:
      break;
  }
  QString line;
  for (const ParameterPanel& p : panels) {
    if (!line.isEmpty()) line += QStringLiteral(" ");
    line += p.text;
  }
  v.ChannelParameterText[c] = line;
  if (!panels.empty()) bar.panelWidthPx = RoundHalfEven(static_cast<double>(barWidthPx) / panels.size());
  return bar;
}

QString ParameterTableText(AppState& s, const ParameterReadings& r,
                           const RotorSpeed& speed) {
  const int c = CurrentChannel(s);
  switch (s.channels.Type[c]) {
    case sensor::Runout:
      return FormatStandard(r.BandMax[1]) + QStringLiteral(" мкм");
    case sensor::Vibration:
      return FormatStandard(s.options.parameters.SignalParameterMax ? r.BandMax[0] : r.BandMean[0]) + QStringLiteral(" мкм");
    case sensor::ShaftMarker:
      return RotorSpeedText(speed);
    default: {
      const double value = ChannelReading(s.channels, c, s.SignalMaxValue[c]);
      SetChannelUnit(s, value);
      const double divisor = s.UnitDivisor != 0.0 ? s.UnitDivisor : 1.0;
      return FormatStandard(value / divisor) + QStringLiteral(" ") + s.UnitName;
    }
  }
}

DrawList BuildParameterTable(const QString& line, int widthPx, int heightPx, BgrColor background,
                             BgrColor textColor, const FontMetrics& fm) {
  DrawList list;
  list.width = std::max(0, widthPx);
  list.height = std::max(0, heightPx);
  list.background = background;
  if (widthPx <= 0 || heightPx <= 0 || line.isEmpty()) return list;
  // Point size from the height, shrunk until the line fits the width; the
  // measured font stands for the view's at its own size.
  const std::string utf8 = line.toStdString();
  const int measured = std::max(1, fm.widthOf(utf8));
  const int baseSize = std::max(1, fm.lineHeight);
  int size = std::max(6, heightPx / 3);
  const int fitting = (widthPx * 9 / 10) * baseSize / measured;
  size = std::max(6, std::min(size, fitting));
  Text t;
  t.x = widthPx / 2;
  t.y = heightPx / 2;
  t.utf8 = utf8;
  t.color = textColor;
  t.anchor = TextAnchor::Center;
  t.pointSize = size;
  t.bold = true;
  list.add(std::move(t));
  return list;
}

}  // namespace aqx::views
