#include "core/Startup.h"

#include "core/Config.h"
#include "core/ConfigKeys.h"

#include <QFileInfo>

#include <limits>

namespace aqx {

namespace {
const QLatin1String kConfig(kSectionConfig);

bool IsExistingFile(const QString& path) {
  const QFileInfo info(path);
  return !path.isEmpty() && info.exists() && info.isFile();
}
}  // namespace

int32_t CountStart(SettingsStore& store) {
  const QString section = QString::fromLatin1(kApplicationName);
  int32_t count = 0;
  ReadSetting(store, section, QStringLiteral("Start"), count, 0);
  if (count < std::numeric_limits<int32_t>::max()) ++count;
  WriteSetting(store, section, QStringLiteral("Start"), count);
  return count;
}

int32_t NextStartUpPicture(SettingsStore& store, int32_t pictureCount) {
  if (pictureCount < 1) return 0;
  int32_t shown = 1;
  ReadSetting(store, kConfig, QStringLiteral("StartUpPicture"), shown, 1);
  if (shown < 1 || shown > pictureCount) shown = 1;
  WriteSetting(store, kConfig, QStringLiteral("StartUpPicture"), shown % pictureCount + 1);
  return shown;
}

void SpeedLoad(AppState& s, SettingsStore& store, Vocabulary& vocabulary) {
  CountStart(store);
  vocabulary = BuildVocabulary();
  s.DataSaved = true;
  s.SolidBlockM = 1;
}

void MainLoad(OpenFileContext& ctx) {
  LoadConfig(ctx.state, ctx.store, ctx.prompts);
  if (ctx.hooks.recentFilesChanged) ctx.hooks.recentFilesChanged(ReadRecentFile(ctx.store));
}

QString StartFileFromCommandLine(const QString& commandLine) {
  QString path = commandLine.trimmed();
  if (path.size() >= 2 && path.startsWith(QLatin1Char('"')) && path.endsWith(QLatin1Char('"')))
    path = path.mid(1, path.size() - 2);
  return path;
}

bool LoadStartFile(OpenFileContext& ctx, const QString& commandLine) {
  const QString named = StartFileFromCommandLine(commandLine);
  if (!named.isEmpty()) return IsExistingFile(named) && OpenFile(ctx, named);
  if (!ctx.state.options.parameters.FileLastLoad) return false;
  const QString last = ctx.store.get(kConfig, QStringLiteral("PathFileData"));
  if (!IsExistingFile(last)) return false;
  if (ctx.hooks.pumpMessages) ctx.hooks.pumpMessages();
  return OpenFile(ctx, last);
}

bool RunStartup(OpenFileContext& ctx, Vocabulary& vocabulary, const QString& commandLine) {
  SpeedLoad(ctx.state, ctx.store, vocabulary);
  MainLoad(ctx);
  return LoadStartFile(ctx, commandLine);
}

void MarkCleanExit(SettingsStore& store) {
  WriteSetting(store, kConfig, QStringLiteral("GoodRun"), int32_t{1});
}

}  // namespace aqx
