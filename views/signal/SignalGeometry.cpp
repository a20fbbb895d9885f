// Pure geometry of the signal view: scroll and zoom arithmetic, pixel and
// sample mapping, the time grid's step, and the time texts.

#include "core/Numeric.h"
#include "core/ChannelPhysics.h"
#include "core/Vocabulary.h"
#include "views/signal/SignalView.h"

#include <QDateTime>
#include <QTime>

#include <algorithm>
#include <cmath>
#include <limits>

namespace aqx::views {

namespace {
// Visible time bound and its grid step, seconds; past the last bound the
// step is 0 and the tick loop gives up.
struct TimeStepRow {
  double bound;
  double step;
};
constexpr TimeStepRow kTimeSteps[] = {
    {0.01, 0.001}, {0.02, 0.002}, {0.05, 0.005}, {0.1, 0.01},   {0.2, 0.02},    {0.5, 0.05},
    {1, 0.1},      {2, 0.2},      {5, 0.5},      {10, 1},       {20, 2},        {50, 5},
    {100, 10},     {200, 20},     {300, 30},     {600, 60},     {1200, 120},    {3000, 300},
    {6000, 600},   {12000, 1200}, {18000, 1800}, {36000, 3600},
};

constexpr int kAmplitudeScales[kAmplitudeScaleCount] = {10,     20,     50,     100,     200,     500,
                                                        1000,   2000,   5000,   10000,   20000,   50000,
                                                        100000, 200000, 500000, 1000000, 2000000, 5000000};
}  // namespace

int AmplitudeScale(int index) {
  return kAmplitudeScales[std::clamp(index, 0, kAmplitudeScaleCount - 1)];
}

double NiceTimeStep(double visibleSeconds) {
  for (const TimeStepRow& row : kTimeSteps)
    if (visibleSeconds <= row.bound) return row.step;
  return 0.0;
}

int ScrollStepFor(int signalDataN) {
  return signalDataN > 32768 ? std::max(1, RoundHalfEven(signalDataN / 32768.0)) : 1;
}

int SliderHMaxFor(int signalDataN) {
  if (signalDataN < 1) return 0;
  return std::max(0, RoundHalfEven(std::log2(static_cast<double>(signalDataN)) - 1.0));
}

double PixelsPerSampleFor(int sliderH, int widthPx, int signalDataN) {
  return std::ldexp(static_cast<double>(widthPx), sliderH) / std::max(1, signalDataN);
}

double PixelsPerUnitFor(int heightPx, int volume, int channelYm) {
  const double gain = std::pow(4.0, std::clamp(volume, 0, 3));
  const double ym = channelYm > 0 ? channelYm : 1;
  return 0.5 * heightPx / (gain * ym);
}

double SampleToX(int sample, int viewFirst, double pixelsPerSample) {
  return (static_cast<double>(sample) - viewFirst) * pixelsPerSample;
}

int XToSample(int x, int hScroll1, int scrollStep, double pixelsPerSample) {
  const double pps = pixelsPerSample > 0 ? pixelsPerSample : 1.0;
  if (hScroll1 == 1) return RoundHalfEven(x / pps + 1.0);
  return RoundHalfEven(static_cast<double>(hScroll1) * scrollStep + x / pps);
}

int SelectionSampleAt(double x, int viewFirst, int viewLast, int widthPx) {
  const double d = static_cast<double>(viewLast) - viewFirst;
  return RoundHalfEven(viewFirst + d * x / std::max(1, widthPx));
}

std::vector<int> BandCentres(int heightPx, int activeCount) {
  std::vector<int> centres;
  if (activeCount <= 0) return centres;
  const double band = static_cast<double>(heightPx) / activeCount;
  for (int k = 0; k < activeCount; ++k) centres.push_back(RoundHalfEven(band * k + band / 2.0));
  return centres;
}

namespace {

// Step k of the scales: the table's entries, then the same 1-2-5 steps on.
int64_t ScaleStep(int k) {
  if (k < kAmplitudeScaleCount) return kAmplitudeScales[k];
  const int past = k - kAmplitudeScaleCount;
  int64_t step = kAmplitudeScales[kAmplitudeScaleCount - 3 + past % 3];
  for (int decade = 0; decade <= past / 3; ++decade) step *= 10;
  return step;
}

}  // namespace

int AutoChannelYm(double peakUnits, int activeCount) {
  const int64_t channels = std::max(1, activeCount);
  int64_t largest = ScaleStep(0);
  for (int k = 0; ScaleStep(k) * channels <= std::numeric_limits<int32_t>::max(); ++k) {
    largest = ScaleStep(k);
    if (peakUnits < largest) break;
  }
  return static_cast<int>(largest * channels);
}

double DisplayPeak(const ChannelSetup& ch, int c, double fromCode, double toCode, double offsetCodes) {
  const double gain = RangeGain(ch.Volume[c]);
  const double zero = gain * ch.Zero[c];
  const auto units = [&](double code) {
    return std::fabs((code - offsetCodes) * kMillivoltsPerCode - zero) / SafeKu(ch.Ku[c]) / gain;
  };
  return std::max(units(fromCode), units(toCode));
}

QString TimeText(double seconds) {
  if (!std::isfinite(seconds)) seconds = 0.0;
  constexpr qint64 kDayMs = 86400000;
  qint64 ms = std::llround(seconds * 1000.0) % kDayMs;
  if (ms < 0) ms += kDayMs;
  const QTime t = QTime::fromMSecsSinceStartOfDay(static_cast<int>(ms));
  QString text = t.toString(QStringLiteral("H:mm:ss"));
  if (t.msec() != 0) text += QStringLiteral(".") + QStringLiteral("%1").arg(t.msec(), 3, 10, QLatin1Char('0'));
  return text;
}

SignalCursor CursorOf(const AppState& s) {
  switch (s.options.signal.Cursor) {
    case 0: return SignalCursor::Free;
    case 1: return SignalCursor::Bound;
    default: return SignalCursor::None;
  }
}

void SetCursorSetting(AppState& s, SignalCursor cursor) {
  s.options.signal.Cursor = cursor == SignalCursor::Free ? 0 : cursor == SignalCursor::Bound ? 1 : -1;
}

BgrColor ViewBackground(const AppState& s) {
  const auto& kit = s.options.config.ColorBackKit;
  return ColorBackBgr(kit[static_cast<size_t>(std::clamp(s.options.config.ColorBackKitSel, 0, kColorBackKitSets - 1))]);
}

double ClockOffsetSeconds(const AppState& s) {
  double seconds = 0.0;
  if (s.options.parameters.ViewRealTime) {
    const QDateTime start = OleToDateTime(s.object.RecordDate);
    if (start.isValid()) seconds += start.time().msecsSinceStartOfDay() / 1000.0;
  }
  if (s.SolidMode && s.ChannelUsedCount > 0 && s.FreqADC > 0) {
    const double blockRate = static_cast<double>(s.FreqADC) / s.ChannelUsedCount;
    seconds += RoundHalfEven((s.SolidBlockN - 1) * static_cast<double>(kMaxSamples) / blockRate);
  }
  return seconds;
}

double SampleSeconds(const AppState& s, double sample) {
  const double rate = ChannelRateHz(s);
  return sample / (rate > 0.0 ? rate : 1.0) + ClockOffsetSeconds(s);
}

QString RotorSpeedText(const RotorSpeed& speed) {
  const double low = std::max(0.0, speed.RotorSpeedMin);
  const double high = std::max(0.0, speed.RotorSpeedMax);
  const int lowPercent = std::max(0, speed.RotorPercentMin);
  const int highPercent = std::max(0, speed.RotorPercentMax);
  const QString whole = speed.WholeRecord ? QStringLiteral("по всей записи ") : QString();
  if (low == high)
    return FormatStandard(low) + QStringLiteral(" об/мин (") + QString::number(lowPercent) + QStringLiteral("%) ") + whole;
  return FormatStandard(low) + QStringLiteral("-") + FormatStandard(high) + QStringLiteral(" об/мин (") +
         QString::number(lowPercent) + QStringLiteral("-") + QString::number(highPercent) + QStringLiteral("%) ") + whole;
}

}  // namespace aqx::views
