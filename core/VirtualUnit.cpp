#include "core/VirtualUnit.h"

#include <QStringList>

#include <algorithm>
#include <cstdlib>

namespace aqx {

namespace {
void SetIfUnset(const char* key, const QString& value) { setenv(key, value.toUtf8().constData(), 0); }
}  // namespace

void ExportVirtualUnit(const AppState& s) {
  QStringList types;
  for (int c = 1; c <= kMaxChannels; ++c) types << QString::number(std::clamp(s.channels.Type[c], 0, 9));
  SetIfUnset("AQX_VIRTUAL_CHANNELS", types.join(QLatin1Char(',')));
  if (s.FreqRotorN > 0) SetIfUnset("AQX_VIRTUAL_RPM", QString::number(s.FreqRotorN, 'g', 10));
  if (s.Polus >= 2) SetIfUnset("AQX_VIRTUAL_POLES", QString::number(s.Polus));
  if (s.FreqSety > 0) SetIfUnset("AQX_VIRTUAL_MAINS_HZ", QString::number(s.FreqSety));
}

}  // namespace aqx
