// The settings file: the INI text must read back as the same tree once the
// program wrote it, the store must hold what the text says and keep it
// through a change, and the state must stay within its limits whatever the
// settings hold.
#include "fuzz/FuzzSupport.h"

#include "core/Config.h"
#include "core/IniText.h"
#include "core/Settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using aqx::fuzz::Expect;
  const QByteArray text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const aqx::IniParse parsed = aqx::ParseIniText(text);
  const aqx::IniParse again = aqx::ParseIniText(aqx::IniTextOf(parsed.tree));
  Expect(again.wellFormed, "the program's own INI text is well formed");
  Expect(again.tree == parsed.tree, "the INI text of a tree reads back as the same tree");

  const QString path = aqx::fuzz::World().path(QStringLiteral("Aquilonix.conf"));
  aqx::fuzz::FuzzWorld::writeFile(path, text);
  aqx::IniSettingsStore store(path);
  Expect(!store.readWasIncomplete(), "a readable settings file is read whole");
  Expect(store.tree() == parsed.tree, "the store holds what the file says");

  aqx::AppState& s = aqx::fuzz::World().state();
  aqx::LoadConfigReg(s, store);
  aqx::fuzz::CheckRecordingLimits(s);

  store.save(QStringLiteral("Start"), QStringLiteral("GoodRun"), QStringLiteral("0"));
  Expect(!store.lastWriteFailed(), "a change of the settings is written");
  const aqx::SettingsFileRead written = aqx::ReadSettingsFile(path);
  Expect(written.complete && written.wellFormed, "the written settings file reads whole");
  Expect(written.tree == store.tree(), "the written settings file holds the store's tree");
  return 0;
}
