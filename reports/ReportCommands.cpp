#include "reports/ReportCommands.h"

#include "core/OpenFile.h"
#include "reports/TemplateTags.h"
#include "reports/XlsxTemplate.h"
#include "reports/XlsxWorkbook.h"

#include <QDir>
#include <QFileInfo>

#include <functional>
#include <optional>

namespace aqx::reports {

namespace {

const QString kWorkbookFileName = QStringLiteral("Протокол.xlsx");
const QString kWorkbookFilter = QStringLiteral("Книга Excel (*.xlsx)|*.xlsx");

QString Native(const QString& path) { return QDir::toNativeSeparators(path); }

bool FolderKnown(const ReportContext& ctx) {
  if (!ctx.state.PathFileData.isEmpty()) return true;
  ctx.prompts.tell(QStringLiteral("Выберите путь расположения файлов данных, для составления протокола!"),
                   kProtocolTitle, PromptIcon::Information);
  return false;
}

// A folder that is gone or closed to us would give an empty protocol, as if
// it held no recording.
bool FolderReadable(const ReportContext& ctx, const QString& folder) {
  const QFileInfo info(folder);
  if (info.isDir() && info.isReadable() && info.isExecutable()) return true;
  ctx.prompts.tell(QStringLiteral("Папка %1 недоступна для чтения: протокол не составлен.").arg(Native(folder)),
                   kProtocolTitle, PromptIcon::Exclamation);
  return false;
}

QString FolderOfOpenFile(const ReportContext& ctx) { return QFileInfo(ctx.state.PathFileData).absolutePath(); }

// The save dialog; a name without the workbook's ending gets it. A folder
// that cannot take the workbook is told before any file is read.
std::optional<QString> ChooseWorkbookPath(Prompts& prompts, const QString& folder, const QString& title) {
  const std::optional<QString> chosen =
      prompts.chooseSaveFile(QStringLiteral("Сохранить протокол"), folder, kWorkbookFileName, kWorkbookFilter);
  if (!chosen || chosen->isEmpty()) return std::nullopt;
  const QString path = QFileInfo(*chosen).suffix().compare(QStringLiteral("xlsx"), Qt::CaseInsensitive) == 0
                           ? *chosen
                           : *chosen + QStringLiteral(".xlsx");
  const QFileInfo target(QFileInfo(path).absolutePath());
  if (target.isDir() && target.isWritable()) return path;
  prompts.tell(QStringLiteral("Не удалось записать протокол в файл %1: папка %2 недоступна для записи.")
                   .arg(Native(path), Native(target.filePath())),
               title, PromptIcon::Exclamation);
  return std::nullopt;
}

bool SameFile(const QString& a, const QString& b) {
  const QFileInfo fa(a);
  const QFileInfo fb(b);
  if (fa.exists() && fb.exists()) return fa.canonicalFilePath() == fb.canonicalFilePath();
  return QDir::cleanPath(fa.absoluteFilePath()) == QDir::cleanPath(fb.absoluteFilePath());
}

ReportResult Stopped(const ReportWalk& walk) {
  return {ReportOutcome::Cancelled, {}, walk.recordingReplaced()};
}

ReportResult Written(const ReportWalk& walk, const QString& path) {
  return {ReportOutcome::Written, path, walk.recordingReplaced()};
}

ReportResult Failed(ReportContext& ctx, const ReportWalk& walk, const QString& message, const QString& title) {
  ctx.prompts.tell(message, title, PromptIcon::Exclamation);
  return {ReportOutcome::Failed, {}, walk.recordingReplaced()};
}

// The walk and the table into the chosen workbook.
ReportResult WriteTable(ReportContext& ctx, const QStringList& files, const QString& path, const QString& title,
                        const std::function<ProtocolTable(const std::vector<FileReadings>&)>& build) {
  const ReportWalk walk = ReadReportFiles(ctx, files);
  if (walk.cancelled) return Stopped(walk);
  QString error;
  if (!WriteProtocolWorkbook(build(walk.files), path, error)) return Failed(ctx, walk, error, title);
  return Written(walk, path);
}

}  // namespace

ReportResult ReportProtokolCommand(ReportContext& ctx) {
  if (!FolderKnown(ctx)) return {};
  return MakeFolderProtocol(ctx, FolderOfOpenFile(ctx));
}

ReportResult MakeFolderProtocol(ReportContext& ctx, const QString& folder) {
  if (!FolderReadable(ctx, folder)) return {ReportOutcome::Failed, {}, false};
  if (ctx.prompts.ask(QStringLiteral("Сформировать протокол?"), kProtocolTitle) != PromptAnswer::Yes) return {};
  if (!ConfirmReplaceData(ctx.state, ctx.prompts)) return {};
  const std::optional<QString> path = ChooseWorkbookPath(ctx.prompts, folder, kProtocolTitle);
  if (!path) return {};
  const bool signalParameterMax = ctx.state.options.parameters.SignalParameterMax;
  return WriteTable(ctx, FolderRecordings(folder), *path, kProtocolTitle,
                    [&](const std::vector<FileReadings>& files) { return BuildProtocolTable(files, signalParameterMax); });
}

ReportResult ReportPatternCommand(ReportContext& ctx) {
  if (!FolderKnown(ctx)) return {};
  const QString folder = FolderOfOpenFile(ctx);
  const std::optional<QString> form = ctx.prompts.chooseOpenFile(kTemplateOpenTitle, folder, kTemplateFilter);
  if (!form || form->isEmpty()) return {};
  return FillFolderTemplate(ctx, folder, *form);
}

ReportResult FillFolderTemplate(ReportContext& ctx, const QString& folder, const QString& templatePath) {
  if (!FolderReadable(ctx, folder)) return {ReportOutcome::Failed, {}, false};
  QString error;
  const std::optional<TemplateWorkbook> form = TemplateWorkbook::open(templatePath, error);
  if (!form) {
    ctx.prompts.tell(error, kProtocolTitle, PromptIcon::Exclamation);
    return {ReportOutcome::Failed, {}, false};
  }
  if (!ConfirmReplaceData(ctx.state, ctx.prompts)) return {};
  const std::optional<QString> path = ChooseWorkbookPath(ctx.prompts, folder, kProtocolTitle);
  if (!path) return {};
  if (SameFile(*path, templatePath)) {
    ctx.prompts.tell(QStringLiteral("Заполненный протокол нельзя записать поверх шаблона %1: выберите другое имя "
                                    "файла.")
                         .arg(Native(templatePath)),
                     kProtocolTitle, PromptIcon::Exclamation);
    return {ReportOutcome::Failed, {}, false};
  }
  const ReportWalk walk = ReadReportFiles(ctx, FolderRecordings(folder));
  if (walk.cancelled) return Stopped(walk);
  int replaced = 0;
  QStringList unknown;
  const std::optional<QByteArray> bytes = form->fill(BuildTemplateTags(walk.files), replaced, error, &unknown);
  if (!bytes)
    return Failed(ctx, walk,
                  QStringLiteral("Не удалось записать протокол в файл %1: %2.").arg(Native(*path), error),
                  kProtocolTitle);
  if (!ReplaceWorkbookFile(*path, *bytes, error)) return Failed(ctx, walk, error, kProtocolTitle);
  if (replaced == 0)
    ctx.prompts.tell(QStringLiteral("В шаблоне %1 не найдено ни одной метки, которую можно заполнить по файлам "
                                    "папки %2; протокол записан без изменений.")
                         .arg(Native(templatePath), Native(folder)),
                     kProtocolTitle, PromptIcon::Information);
  if (!unknown.isEmpty()) {
    constexpr qsizetype kListedTags = 10;
    ctx.prompts.tell(QStringLiteral("В шаблоне %1 есть метки с неизвестным параметром; они оставлены как есть:\n%2")
                         .arg(Native(templatePath), unknown.mid(0, kListedTags).join(QLatin1Char('\n'))),
                     kProtocolTitle, PromptIcon::Exclamation);
  }
  return Written(walk, *path);
}

bool MasterFilesReady(const QStringList& files, Prompts& prompts) {
  if (!files.isEmpty()) return true;
  prompts.tell(QStringLiteral("Отсутствуют файлы для формирования протокола!"), kMasterTitle,
               PromptIcon::Exclamation);
  return false;
}

std::vector<MasterChannel> MasterChannelsOfFiles(const QStringList& files, const FileReaderTable& readers,
                                                 Prompts& prompts) {
  return MasterChannelsOf(ReadChannelTables(files, readers, prompts));
}

QString MasterStepCaption(int step, int stepCount) {
  return kMasterTitle + QStringLiteral(" (Шаг ") + QString::number(step) + QStringLiteral("/") +
         QString::number(stepCount) + QStringLiteral(")");
}

QString MasterSummary(const MasterChoice& choice) {
  QString text = QStringLiteral("Обрабатываемые файлы:\n");
  for (const QString& f : choice.files) text += QStringLiteral("\t") + Native(f) + QStringLiteral("\n");
  text += QStringLiteral("Обрабатываемые каналы:\n");
  for (const MasterChannel& c : choice.channels) text += QStringLiteral("\t") + MasterChannelCaption(c) + QStringLiteral("\n");
  text += QStringLiteral("Обрабатываемые параметры:\n");
  for (const MasterParameter p : choice.parameters)
    text += QStringLiteral("\t") + MasterParameterName(p) + QStringLiteral("\n");
  return text;
}

ReportResult ReportMasterCommand(ReportContext& ctx, const MasterChoice& choice) {
  if (!MasterFilesReady(choice.files, ctx.prompts)) return {};
  if (!ConfirmReplaceData(ctx.state, ctx.prompts)) return {};
  const std::optional<QString> path = ChooseWorkbookPath(ctx.prompts, QFileInfo(choice.files.front()).absolutePath(), kMasterTitle);
  if (!path) return {};
  const ReportResult result = WriteTable(ctx, choice.files, *path, kMasterTitle,
                                         [&](const std::vector<FileReadings>& files) { return BuildMasterTable(files, choice); });
  if (result.outcome == ReportOutcome::Written)
    ctx.prompts.tell(QStringLiteral("Протокол успешно сформирован."), kMasterTitle, PromptIcon::Information);
  return result;
}

}  // namespace aqx::reports
