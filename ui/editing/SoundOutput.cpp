#include "ui/editing/SoundOutput.h"

#include <QCoreApplication>
#include <QLibrary>
#include <QStringList>

namespace aqx::ui {

OpenSoundOutputEntry LoadSoundModule() {
  // Where an installation puts the module, else where the build did.
  const QString programDir = QCoreApplication::applicationDirPath() + QLatin1Char('/');
  const QStringList places = {programDir + QStringLiteral(AQX_SOUND_MODULE_FROM_BIN),
                              QString::fromUtf8(AQX_SOUND_MODULE)};
  for (const QString& place : places) {
    QLibrary module(place);
    if (!module.load()) continue;
    // A loaded module stays for the life of the process.
    const auto open = reinterpret_cast<OpenSoundOutputEntry>(module.resolve(kSoundOutputEntry));
    if (open != nullptr) return open;
  }
  return nullptr;
}

std::unique_ptr<SoundOutput> OpenSoundOutput() {
  const OpenSoundOutputEntry open = LoadSoundModule();
  return std::unique_ptr<SoundOutput>(open != nullptr ? open() : nullptr);
}

}  // namespace aqx::ui
