#include "core/OpenFile.h"

#include "core/Config.h"
#include "core/ConfigKeys.h"

#include <QFileInfo>

namespace aqx {

namespace {
const QLatin1String kRecent(kSectionRecent);

// Resets the busy cursor however the command ends.
class BusyCursor {
 public:
  explicit BusyCursor(const OpenFileHooks& hooks) : hooks_(hooks) {
    if (hooks_.setBusyCursor) hooks_.setBusyCursor(true);
  }
  ~BusyCursor() {
    if (hooks_.setBusyCursor) hooks_.setBusyCursor(false);
  }
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;

 private:
  const OpenFileHooks& hooks_;
};

void Run(const std::function<void(AppState&)>& hook, AppState& s) {
  if (hook) hook(s);
}

bool UnsavedDataAtRisk(const AppState& s) {
  return !s.DataSaved && s.ReminderFileSave && !s.SolidMode;
}

bool IsExistingFile(const QString& path) {
  const QFileInfo info(path);
  return !path.isEmpty() && info.exists() && info.isFile();
}
}  // namespace

bool OpenFile(OpenFileContext& ctx, const QString& path) {
  AppState& s = ctx.state;
  const BusyCursor busy(ctx.hooks);
  AddNewRecentFile(ctx.store, path);
  if (ctx.hooks.recentFilesChanged) ctx.hooks.recentFilesChanged(ReadRecentFile(ctx.store));

  const FileReadFn read = FindFileReader(ctx.readers, path);
  if (!read) return false;
  const QString previousPath = s.PathFileData;
  s.PathFileData = path;
  if (!read(s, ctx.prompts)) {
    s.PathFileData = previousPath;
    return false;
  }
  ShowReadRecording(ctx);
  return true;
}

void ShowReadRecording(OpenFileContext& ctx) {
  AppState& s = ctx.state;
  s.SignalData.markWritten();
  s.DataSaved = true;

  Run(ctx.hooks.detectShaftMarker, s);
  if (s.ViewOpenFlags[frmViewSignal]) Run(ctx.hooks.resetSignalViewBlock, s);
  s.SelectFirst = 0;
  s.SelectLast = 0;
  ApplyBlockRule(s);
  Run(ctx.hooks.refreshToolbars, s);
  Run(ctx.hooks.setViewStyle, s);
  Run(ctx.hooks.updateFileInfo, s);
  SaveConfig(ctx.store, s);
  Run(ctx.hooks.viewRefresh, s);
}

bool ConfirmReplaceData(const AppState& s, Prompts& prompts) {
  if (!UnsavedDataAtRisk(s)) return true;
  return prompts.message(QStringLiteral("Данные не сохранены, продолжить?"),
                         QStringLiteral("Внимание"), PromptButtons::YesNo,
                         PromptIcon::Exclamation) == PromptAnswer::Yes;
}

bool ConfirmCloseProgram(const AppState& s, Prompts& prompts) {
  if (!UnsavedDataAtRisk(s)) return true;
  return prompts.message(QStringLiteral("Данные не сохранены, закончить работу с программой?"),
                         QStringLiteral("Внимание"), PromptButtons::OkCancel,
                         PromptIcon::Exclamation) == PromptAnswer::Ok;
}

QString OpenFileFilter() {
  return QStringLiteral(
      "Все поддерживаемые типы|*.rsl;*.zrk;*.aqx;*.wav|Aquilonix (*.aqx)|*.aqx|"
      "ЗОР-16 (*.zrk)|*.zrk|РУСЛО-8 (*.rsl)|*.rsl|WAVE файлы (*.wav)|*.wav|"
      "Все файлы (*.*)|*.*");
}

bool FileOpenCommand(OpenFileContext& ctx) {
  if (!ConfirmReplaceData(ctx.state, ctx.prompts)) return false;
  const std::optional<QString> chosen =
      ctx.prompts.chooseOpenFile(QStringLiteral("Открыть"), ctx.state.InitDirOpen, OpenFileFilter());
  if (!chosen || chosen->isEmpty()) return false;
  ctx.state.InitDirOpen = QFileInfo(*chosen).absolutePath();
  return OpenFile(ctx, *chosen);
}

bool OpenRecentFileCommand(OpenFileContext& ctx, int k) {
  if (k < 1 || k > kRecentFileCount) return false;
  if (!ConfirmReplaceData(ctx.state, ctx.prompts)) return false;
  const QString path = ctx.store.get(kRecent, QString::number(k));
  if (!IsExistingFile(path)) {
    ctx.prompts.tell(QStringLiteral("Файл по указанному Вами пути отсутствует."),
                     QStringLiteral("Открытие"), PromptIcon::Exclamation);
    return false;
  }
  return OpenFile(ctx, path);
}

bool DropFilesCommand(OpenFileContext& ctx, const QStringList& paths) {
  if (paths.size() > 1) {
    ctx.prompts.tell(QStringLiteral("Невозможно загрузить больше одного файла!"),
                     QStringLiteral("DragDrop"), PromptIcon::Exclamation);
    return false;
  }
  if (paths.isEmpty()) return false;
  if (!ConfirmReplaceData(ctx.state, ctx.prompts)) return false;
  return OpenFile(ctx, paths.front());
}

QStringList RecentFiles(const SettingsStore& store) {
  QStringList list;
  for (int k = 1; k <= kRecentFileCount; ++k) list << store.get(kRecent, QString::number(k));
  return list;
}

void AddNewRecentFile(SettingsStore& store, const QString& path) {
  if (path.isEmpty()) return;
  QStringList list = RecentFiles(store);
  const qsizetype at = list.indexOf(path);
  // Found: the entries above it shift down by one; otherwise all do and the
  // ninth falls out.
  list.removeAt(at >= 0 ? at : kRecentFileCount - 1);
  list.prepend(path);
  SettingsStore::Batch batch(store);
  for (int k = 1; k <= kRecentFileCount; ++k) {
    const QString& entry = list[k - 1];
    if (!entry.isEmpty() || store.contains(kRecent, QString::number(k)))
      store.save(kRecent, QString::number(k), entry);
  }
}

QString ShortenPathMiddle(const QString& path, int maxChars) {
  const QString gap = QStringLiteral(" ... ");
  if (path.size() <= maxChars || maxChars <= gap.size() + 2) return path;
  const qsizetype keep = maxChars - gap.size();
  const qsizetype head = keep / 2;
  const qsizetype tail = keep - head;
  return path.left(head) + gap + path.right(tail);
}

QStringList ReadRecentFile(const SettingsStore& store, int maxChars) {
  QStringList captions;
  const QStringList list = RecentFiles(store);
  for (int k = 1; k <= kRecentFileCount; ++k) {
    const QString& path = list[k - 1];
    captions << (path.isEmpty() ? QString()
                                : QStringLiteral("&%1 %2").arg(QString::number(k),
                                                               ShortenPathMiddle(path, maxChars)));
  }
  return captions;
}

}  // namespace aqx
