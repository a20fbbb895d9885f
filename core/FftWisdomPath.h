#pragma once
// Where the measured FFT plans of this machine are kept (aquilonix-tool
// fft-wisdom writes them, the program reads them at start): beside the
// settings.

#include "core/Settings.h"

#include <QFileInfo>
#include <QString>

namespace aqx {

inline QString DefaultFftWisdomPath() {
  return QFileInfo(DefaultSettingsPath()).absolutePath() + QStringLiteral("/fft-wisdom");
}

}  // namespace aqx
