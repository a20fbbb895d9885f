#include "ui/editing/SoundOutput.h"

#include <QCoreApplication>
#include <QLibrary>
#include <QStringList>

namespace aqx::ui {

OpenSoundOutputEntry LoadSoundModule() {
  // Where the build put the module, else beside the program.
  const QStringList places = {QString::fromUtf8(AQX_SOUND_MODULE),
                              QCoreApplication::applicationDirPath() + QStringLiteral("/libAquilonixSound.so")};
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
