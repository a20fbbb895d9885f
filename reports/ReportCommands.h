#pragma once
// The report commands without a window: the protocol of a folder
// (mnuReportProtokol), the last step of the protocol master
// (mnuReportMaster) with the checks and texts of its steps, and the filling
// of a station's own form (mnuReportPattern). Every question goes through
// Prompts; the wait window follows the progress callback of the context,
// standing from its first call until the command returns. The workbook is
// written to a file the user chooses and its path comes back, for the window
// to open in the desktop's spreadsheet program.
//
// The files are read into the recording in memory, so the last one stays
// there as after opening it; unsaved data is asked about first. When
// recordingReplaced comes back true, the window refreshes as after opening a
// file.

#include "reports/ProtocolTable.h"
#include "reports/ReportReadings.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace aqx::reports {

inline const QString kProtocolTitle = QStringLiteral("Протокол");
inline const QString kMasterTitle = QStringLiteral("Мастер протокола");
inline const QString kReportWaitText = QStringLiteral("Подождите, идет формирование протокола.");
inline const QString kMasterFileFilter = QStringLiteral("Файлы Aquilonix (*.aqx)|*.aqx|Все файлы (*.*)|*.*");
inline const QString kMasterParametersPrompt = QStringLiteral("Выберите и отсортируйте необходимые параметры: ");
inline const QString kTemplateOpenTitle = QStringLiteral("Открыть шаблон");

enum class ReportOutcome {
  Written,    // workbookPath holds the new workbook
  Declined,   // the user said no, chose no file, or there was nothing to do
  Cancelled,  // stopped in the wait window; nothing written
  Failed,     // told to the user; nothing written, an old file of that name untouched
};

struct ReportResult {
  ReportOutcome outcome = ReportOutcome::Declined;
  QString workbookPath;
  bool recordingReplaced = false;
};

// mnuReportProtokol: the folder of the open file, or the message that none
// is known.
ReportResult ReportProtokolCommand(ReportContext& ctx);
// The protocol of the "*.aqx" files of `folder`: "Сформировать протокол?",
// the save dialog (default "Протокол.xlsx" in the folder), the walk, the
// workbook.
ReportResult MakeFolderProtocol(ReportContext& ctx, const QString& folder);

// mnuReportPattern: the folder check, the open dialog "Открыть шаблон".
ReportResult ReportPatternCommand(ReportContext& ctx);
// The form `templatePath` filled from the "*.aqx" files of `folder`: the form
// is checked first, then the save dialog (never over the form itself).
ReportResult FillFolderTemplate(ReportContext& ctx, const QString& folder, const QString& templatePath);

// --- The protocol master's steps -------------------------------------------

// Going past the file step: false, with the box, when the list is empty.
bool MasterFilesReady(const QStringList& files, Prompts& prompts);
// The channels step: the channels of the files, each once, read apart from
// the recording in memory.
std::vector<MasterChannel> MasterChannelsOfFiles(const QStringList& files, const FileReaderTable& readers,
                                                 Prompts& prompts);
// "Мастер протокола (Шаг 4/5)".
QString MasterStepCaption(int step, int stepCount);
// The summary step: the three lists under their headings, tab-indented.
QString MasterSummary(const MasterChoice& choice);
// mnuReportMaster after the wizard's finish: the save dialog (default
// "Протокол.xlsx" beside the first file), the walk, the table in the chosen
// order, and "Протокол успешно сформирован.".
ReportResult ReportMasterCommand(ReportContext& ctx, const MasterChoice& choice);

}  // namespace aqx::reports
