#include "core/VirtualUnit.h"

#include <QStringList>

#include <algorithm>
#include <cstdlib>

namespace aqx {

namespace {
void SetIfUnset(const char* key, const QString& value) { setenv(key, value.toUtf8().constData(), 0); }
}  // namespace

void SetVirtualGap(double micrometres) {
  // Our own marker tells our gap from one the user set.
  const char* ours = std::getenv("AQX_VIRTUAL_GAP_BY_PROGRAM");
  if (std::getenv("AQX_VIRTUAL_GAP_UM") && !ours) return;
  if (micrometres < 0) {
    unsetenv("AQX_VIRTUAL_GAP_UM");
    unsetenv("AQX_VIRTUAL_GAP_BY_PROGRAM");
    return;
  }
  setenv("AQX_VIRTUAL_GAP_UM", QString::number(micrometres, 'g', 10).toUtf8().constData(), 1);
  setenv("AQX_VIRTUAL_GAP_BY_PROGRAM", "1", 1);
}

void ExportVirtualUnit(const AppState& s) {
  QStringList types;
  for (int c = 1; c <= kMaxChannels; ++c) types << QString::number(std::clamp(s.channels.Type[c], 0, 9));
  SetIfUnset("AQX_VIRTUAL_CHANNELS", types.join(QLatin1Char(',')));
  if (s.FreqRotorN > 0) SetIfUnset("AQX_VIRTUAL_RPM", QString::number(s.FreqRotorN, 'g', 10));
  if (s.Polus >= 2) SetIfUnset("AQX_VIRTUAL_POLES", QString::number(s.Polus));
  if (s.FreqSety > 0) SetIfUnset("AQX_VIRTUAL_MAINS_HZ", QString::number(s.FreqSety));
}

}  // namespace aqx
