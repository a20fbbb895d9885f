// aquilonix-tool record-rates --poles P --mains F --revolutions N --samples S
// [--channels C] [--refresh T]: what the record settings window derives from
// the generator's poles and the mains frequency, for a cyclic run.

#include "core/Numeric.h"
#include "core/RecordSetup.h"
#include "tools/ToolCommand.h"

namespace aqx::tool {

int RunRecordRates(ToolContext& ctx) {
  const QString command = QStringLiteral("record-rates");
  const auto poles = IntOption(ctx.args, command, QStringLiteral("--poles"), 72, 1, 100000);
  const auto mains = IntOption(ctx.args, command, QStringLiteral("--mains"), 50, 1, 1000);
  const auto revolutions = IntOption(ctx.args, command, QStringLiteral("--revolutions"), 17, 1, 1 << 19);
  const auto samples = IntOption(ctx.args, command, QStringLiteral("--samples"), 32768, 1, kMaxSamples);
  const auto channels = IntOption(ctx.args, command, QStringLiteral("--channels"), 1, 1, kMaxChannels);
  const auto refresh = ParseLocaleNumber(OptionValue(ctx.args, QStringLiteral("--refresh"), QStringLiteral("0.25")));
  if (!poles || !mains || !revolutions || !samples || !channels || !refresh || !(*refresh > 0)) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool record-rates --poles P --mains F --revolutions N --samples S "
                                 "[--channels C] [--refresh T]\n"));
    return kExitRefused;
  }
  const RotorRates r = *AccountRotorRates(*poles, *mains, *revolutions, *samples, *refresh, *channels);
  Print(ctx.out, QStringLiteral("FreqRotorN %1 rev/min\nrevolution %2 s\nFreqOneGarmonic %3 Hz\nspectrum step %4 Hz\n"
                                "FreqDescR %5 Hz\ncycle %6 s\nmodule %7 Hz (%8)\nBufferLength %9\n")
                     .arg(r.freqRotorN, 0, 'f', 3)
                     .arg(r.revolutionSeconds, 0, 'f', 6)
                     .arg(r.firstHarmonicHz, 0, 'f', 6)
                     .arg(r.spectrumStepHz, 0, 'f', 6)
                     .arg(r.freqDescR)
                     .arg(r.cycleSeconds, 0, 'f', 6)
                     .arg(r.moduleRateHz)
                     .arg(r.moduleRateOk ? QStringLiteral("within 122..100000") : QStringLiteral("outside 122..100000"))
                     .arg(r.bufferLength));
  return r.moduleRateOk ? kExitOk : kExitRefused;
}

}  // namespace aqx::tool
