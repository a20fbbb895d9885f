// aquilonix-tool fft-wisdom [OUT] [--largest N]: measures the FFT plans of
// the spectra on this machine (every power of two up to N points, 2^20 when
// not told; about a minute) and keeps them in OUT, by default beside the
// settings, where the program reads them at start. A long spectrum's
// transform then runs a quarter to a third faster; its lines stay the same
// to rounding.

#include "core/FftWisdomPath.h"
#include "engine/Aquilonix.h"
#include "tools/ToolCommand.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace aqx::tool {

int RunFftWisdom(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {QStringLiteral("--largest")});
  const auto largest =
      IntOption(ctx.args, QStringLiteral("fft-wisdom"), QStringLiteral("--largest"), AQX_SIGNAL_ROWS, 16, AQX_SIGNAL_ROWS);
  if (paths.size() > 1 || !largest) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool fft-wisdom [OUT] [--largest N]\n"));
    return kExitRefused;
  }
  const QString path = paths.isEmpty() ? DefaultFftWisdomPath() : paths[0];
  QDir().mkpath(QFileInfo(path).absolutePath());
  if (MakeFftWisdom(QFile::encodeName(path).constData(), *largest) == 0) {
    Print(stderr, QStringLiteral("Не удалось записать файл %1\n").arg(path));
    return kExitFailure;
  }
  Print(ctx.out, QStringLiteral("%1: FFT plans up to %2 points\n").arg(path).arg(*largest));
  return kExitOk;
}

}  // namespace aqx::tool
