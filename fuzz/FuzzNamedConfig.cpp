// Restoring a named configuration: a file that cannot be restored must leave
// the settings, their file and the state exactly as they were; one that is
// restored must be what the store and its file then hold.
#include "fuzz/FuzzSupport.h"

#include "core/Config.h"
#include "core/IniText.h"
#include "core/NamedConfigs.h"
#include "core/Settings.h"

#include <QDir>

namespace {
// The settings as the program writes them for a fresh state, made at the
// first input (before any input changed the state).
QByteArray settingsText;
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using aqx::fuzz::Expect;
  if (settingsText.isEmpty()) {
    aqx::MemorySettingsStore fresh;
    aqx::SaveConfig(fresh, aqx::fuzz::World().state());
    settingsText = aqx::IniTextOf(fresh.tree());
  }
  const QString settingsPath = aqx::fuzz::World().path(QStringLiteral("Aquilonix.conf"));
  aqx::fuzz::FuzzWorld::writeFile(settingsPath, settingsText);
  const QString folder = aqx::ConfigsFolder(settingsPath);
  Expect(QDir().mkpath(folder), "configurations folder created");
  const QString name = QStringLiteral("Агрегат 3");
  const QByteArray text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  aqx::fuzz::FuzzWorld::writeFile(QDir(folder).filePath(name), text);

  aqx::IniSettingsStore store(settingsPath);
  const aqx::SettingsTree treeBefore = store.tree();
  aqx::AppState& s = aqx::fuzz::World().state();
  const uint64_t stateBefore = aqx::fuzz::StateDigest(s);
  aqx::ScriptedPrompts prompts;
  const aqx::ConfigResult result = aqx::ConfigOpenCommand(s, store, folder, name, prompts, {});
  if (result != aqx::ConfigResult::Done) {
    Expect(!prompts.messages().empty(), "a failed restore tells the user why");
    Expect(store.tree() == treeBefore, "a failed restore leaves the settings as they were");
    Expect(aqx::fuzz::FuzzWorld::readFile(settingsPath) == settingsText,
           "a failed restore leaves the settings file as it was");
    Expect(aqx::fuzz::StateDigest(s) == stateBefore, "a failed restore leaves the state as it was");
    return 0;
  }
  const aqx::IniParse parsed = aqx::ParseIniText(text);
  Expect(parsed.wellFormed, "only a well-formed configuration is restored");
  Expect(store.tree() == parsed.tree, "the restored settings are the configuration's");
  const aqx::SettingsFileRead written = aqx::ReadSettingsFile(settingsPath);
  Expect(written.complete && written.wellFormed && written.tree == parsed.tree,
         "the settings file holds the restored configuration");
  aqx::fuzz::CheckRecordingLimits(s);
  return 0;
}
