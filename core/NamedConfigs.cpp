#include "core/NamedConfigs.h"

#include "core/Config.h"
#include "core/ConfigKeys.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace aqx {

namespace {
const char* const kTitle = "Конфигурации";

QString Title() { return QString::fromUtf8(kTitle); }

QString PathOf(const QString& folder, const QString& name) {
  return folder + QLatin1Char('/') + name;
}

bool Exists(const QString& folder, const QString& name) {
  return QFileInfo(PathOf(folder, name)).isFile();
}

void TellInvalidName(Prompts& prompts, const QString& name) {
  prompts.tell(QStringLiteral("Недопустимое название конфигурации: ") + name, Title(),
               PromptIcon::Exclamation);
}

bool AskReplace(Prompts& prompts) {
  return prompts.ask(QStringLiteral("Конфигурация с таким названием уже существует, заменить её?"),
                     Title()) == PromptAnswer::Yes;
}
}  // namespace

bool IsSettingsSnapshot(const SettingsTree& tree) {
  const char* const known[] = {kApplicationName, kSectionConfig, kSectionChannel, kSectionParameters,
                               kSectionColor,    kSectionSignal, kSectionSpectr,  kSectionRecent};
  for (const char* section : known)
    if (tree.count(QString::fromLatin1(section)) != 0) return true;
  return false;
}

QString ConfigsFolder(const QString& settingsFilePath) {
  return QFileInfo(settingsFilePath).absolutePath() + QStringLiteral("/Configs");
}

QStringList ListConfigs(const QString& folder) {
  const QDir dir(folder);
  return dir.entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
}

bool IsValidConfigName(const QString& name) {
  return !name.trimmed().isEmpty() && !name.startsWith(QLatin1Char('.')) &&
         !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\')) &&
         !name.contains(QChar(0)) && name.toUtf8().size() <= 200;
}

ConfigResult SaveNamedConfig(const SettingsStore& store, const QString& folder,
                             const QString& name, bool replace) {
  if (!IsValidConfigName(name)) return ConfigResult::InvalidName;
  if (!replace && Exists(folder, name)) return ConfigResult::Exists;
  // A snapshot of settings read in part would pass for the whole.
  if (store.readWasIncomplete()) return ConfigResult::Failed;
  // The new snapshot goes to a temporary and is renamed over the old one.
  return WriteSettingsFile(PathOf(folder, name), store.tree()) ? ConfigResult::Done
                                                               : ConfigResult::Failed;
}

ConfigResult RestoreNamedConfig(SettingsStore& store, const QString& folder, const QString& name) {
  if (!IsValidConfigName(name)) return ConfigResult::InvalidName;
  if (!Exists(folder, name)) return ConfigResult::NotFound;
  SettingsFileRead read = ReadSettingsFile(PathOf(folder, name));
  if (!read.complete || !read.wellFormed) return ConfigResult::Failed;
  // The reader passes over lines it cannot use, so a file of another program
  // would read as an empty tree and wipe every setting.
  if (!IsSettingsSnapshot(read.tree)) return ConfigResult::Failed;
  return store.replaceAll(std::move(read.tree)) ? ConfigResult::Done : ConfigResult::Failed;
}

ConfigResult RenameNamedConfig(const QString& folder, const QString& from, const QString& to,
                               bool replace) {
  if (!IsValidConfigName(from) || !IsValidConfigName(to)) return ConfigResult::InvalidName;
  if (!Exists(folder, from)) return ConfigResult::NotFound;
  if (from == to) return ConfigResult::Done;
  if (Exists(folder, to)) {
    if (!replace) return ConfigResult::Exists;
    // Through a full copy first, so that a failure loses neither file.
    const SettingsFileRead read = ReadSettingsFile(PathOf(folder, from));
    if (!read.complete || !read.wellFormed || !WriteSettingsFile(PathOf(folder, to), read.tree))
      return ConfigResult::Failed;
    QFile::remove(PathOf(folder, from));
    return ConfigResult::Done;
  }
  return QFile::rename(PathOf(folder, from), PathOf(folder, to)) ? ConfigResult::Done
                                                                 : ConfigResult::Failed;
}

ConfigResult DeleteNamedConfig(const QString& folder, const QString& name) {
  if (!IsValidConfigName(name)) return ConfigResult::InvalidName;
  if (!Exists(folder, name)) return ConfigResult::NotFound;
  return QFile::remove(PathOf(folder, name)) ? ConfigResult::Done : ConfigResult::Failed;
}

ConfigResult ConfigSaveCommand(const SettingsStore& store, const QString& folder, Prompts& prompts) {
  const std::optional<QString> answer =
      prompts.input(QStringLiteral("Введите название сохраняемой конфигурации:"), Title(), {});
  if (!answer || answer->trimmed().isEmpty()) return ConfigResult::Cancelled;
  const QString name = answer->trimmed();
  if (!IsValidConfigName(name)) {
    TellInvalidName(prompts, name);
    return ConfigResult::InvalidName;
  }
  if (Exists(folder, name) && !AskReplace(prompts)) return ConfigResult::Cancelled;
  const ConfigResult r = SaveNamedConfig(store, folder, name, true);
  if (r == ConfigResult::Failed)
    prompts.tell(QStringLiteral("Не удалось сохранить конфигурацию: ") + name, Title(),
                 PromptIcon::Exclamation);
  return r;
}

ConfigResult ConfigOpenCommand(AppState& s, SettingsStore& store, const QString& folder,
                               const QString& name, Prompts& prompts,
                               const std::function<void(AppState&)>& viewRefresh) {
  const ConfigResult r = RestoreNamedConfig(store, folder, name);
  if (r == ConfigResult::InvalidName) TellInvalidName(prompts, name);
  if (r == ConfigResult::Failed || r == ConfigResult::NotFound)
    prompts.tell(QStringLiteral("Не удалось восстановить конфигурацию: ") + name +
                     QStringLiteral("\nНастройки остались без изменений."),
                 Title(), PromptIcon::Exclamation);
  if (r != ConfigResult::Done) return r;
  LoadConfigReg(s, store);
  if (viewRefresh) viewRefresh(s);
  return r;
}

ConfigResult ConfigRenameCommand(const QString& folder, const QString& name, Prompts& prompts) {
  const std::optional<QString> answer =
      prompts.input(QStringLiteral("Введите новое название конфигурации:"), Title(), name);
  if (!answer || answer->trimmed().isEmpty()) return ConfigResult::Cancelled;
  const QString to = answer->trimmed();
  if (!IsValidConfigName(to)) {
    TellInvalidName(prompts, to);
    return ConfigResult::InvalidName;
  }
  const bool replace = to != name && Exists(folder, to);
  if (replace && !AskReplace(prompts)) return ConfigResult::Cancelled;
  return RenameNamedConfig(folder, name, to, replace);
}

ConfigResult ConfigDeleteCommand(const QString& folder, const QString& name, Prompts& prompts) {
  if (prompts.ask(QStringLiteral("Удалить конфигурацию: ") + name, Title()) != PromptAnswer::Yes)
    return ConfigResult::Cancelled;
  return DeleteNamedConfig(folder, name);
}

}  // namespace aqx
