// aquilonix-tool demo OUT.aqx [--seconds S]: a demonstration recording of a
// running hydro unit, made by a cyclic run of the built-in virtual module
// over a typical channel table: shaft marker, three pairs of run-out probes,
// bracket vibration, a stator turn probe and the active power.

#include "core/AppState.h"
#include "core/ChannelPhysics.h"
#include "core/Numeric.h"
#include "files/DataFile.h"
#include "tools/RecordRun.h"
#include "tools/ToolCommand.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace aqx::tool {

namespace {

struct DemoChannel {
  int type;
  const char* place;
  const char* direct;
  float ku;  // mV per unit of the type
  const char* sensor;
};

// Run-out probes stand in pairs at right angles at each guide bearing.
constexpr DemoChannel kDemoChannels[] = {
    {sensor::ShaftMarker, "ВГП", "", kShaftMarkerKu, "Отметчик оборота"},
    {sensor::Runout, "ВГП", "ВБ", 8.0f, "Вихретоковый датчик"},
    {sensor::Runout, "ВГП", "ПБ", 8.0f, "Вихретоковый датчик"},
    {sensor::Runout, "НГП", "ВБ", 8.0f, "Вихретоковый датчик"},
    {sensor::Runout, "НГП", "ПБ", 8.0f, "Вихретоковый датчик"},
    {sensor::Runout, "ТП", "ВБ", 8.0f, "Вихретоковый датчик"},
    {sensor::Runout, "ТП", "ПБ", 8.0f, "Вихретоковый датчик"},
    {sensor::Vibration, "ВК", "Горизонтальное", 10.0f, "Вибродатчик"},
    {sensor::Vibration, "ВК", "Вертикальное", 10.0f, "Вибродатчик"},
    {sensor::TurnProbe, "Статор", "", 1.0f, "Витковый датчик"},
    {sensor::Power, "Статор", "", 6.6667e-5f, "Преобразователь мощности"},  // 4000 mV at 60 MW
};

// The largest cycle length of the list (2^9 .. 2^20) that keeps the module
// within 100 kHz for the record's duration.
int32_t CycleSamples(double recordSeconds, int used) {
  int32_t n = 512;
  while (n < kMaxSamples && (2.0 * n / recordSeconds) * used <= 100000.0) n *= 2;
  return n;
}

void SetUpDemo(AppState& s, double seconds) {
  s.object.Station = QStringLiteral("Демонстрационная ГЭС");
  s.object.Agregat = 2;
  s.object.Mode = QStringLiteral("Нагрузка 60 МВт, виртуальный модуль");
  s.object.Remark[0] = QStringLiteral("Демо");
  s.object.Remark[27] = QStringLiteral("Запись виртуального модуля: отметчик, биение вала, вибрация, виток, мощность");
  s.Polus = 40;
  s.FreqSety = 50;
  s.FreqRotorN = s.FreqSety * 120.0 / s.Polus;
  s.NumberRotorRecord = std::max(1, RoundHalfEven(seconds * s.FreqRotorN / 60.0));
  auto& ch = s.channels;
  for (int c = 1; c <= kMaxChannels; ++c) {
    ch.Channel[c] = 0;
    ch.Active[c] = 0;
  }
  int c = 1;
  for (const DemoChannel& d : kDemoChannels) {
    ch.Channel[c] = 1;
    ch.Active[c] = 1;
    ch.Type[c] = d.type;
    ch.Place[c] = QString::fromUtf8(d.place);
    ch.Direct[c] = QString::fromUtf8(d.direct);
    ch.Ku[c] = d.ku;
    ch.Zero[c] = 0;
    ch.KS[c] = 0.0f;
    ch.Volume[c] = 0;
    ch.SensorName[c] = QString::fromUtf8(d.sensor);
    ++c;
  }
  s.ChannelDifferential = 0;
  s.InputMode = 0;
  s.SolidMode = false;
  s.FirstChannelActive = 2;
  const int used = RecountChannelUsedCount(s);
  s.SignalDataN = CycleSamples(s.NumberRotorRecord * 60.0 / s.FreqRotorN, used);
  s.BlockSizeFFT = s.BlockSizeFFTa = s.BlockSizeFFTr = kMaxSamples;
  DeriveRotorParameters(s);
  s.FreqDesc = s.FreqDescR;
  s.FreqRotorReal = s.FreqRotorN;
}

}  // namespace

int RunDemo(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {QStringLiteral("--seconds")});
  bool ok = false;
  const double seconds = OptionValue(ctx.args, QStringLiteral("--seconds"), QStringLiteral("8")).toDouble(&ok);
  if (paths.size() != 1 || !ok || !(seconds > 0.0) || seconds > 3600.0) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool demo OUT.aqx [--seconds S]\n"));
    return kExitRefused;
  }
  auto state = std::make_unique<AppState>();
  AppState& s = *state;
  SetUpDemo(s, seconds);
  s.PathFileData = paths[0];
  if (!RunCyclicMeasurement(s, *ctx.prompts, seconds, stderr)) return kExitFailure;
  if (!WriteDataFile(s, *ctx.prompts)) return kExitFailure;
  Print(ctx.out, QStringLiteral("%1: %2 channels, %3 samples at %4 Hz\n")
                     .arg(s.PathFileData)
                     .arg(s.ChannelUsedCount)
                     .arg(s.SignalDataN)
                     .arg(s.FreqDescR));
  return kExitOk;
}

}  // namespace aqx::tool
