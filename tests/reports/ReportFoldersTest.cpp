// Folders as they come: differential connection, an empty place, two files
// of the same channel filling one tag, a folder that is gone, and the
// workbooks read back by LibreOffice Calc where it is installed.

#include "TemplateFormTest.h"

#include "reports/ReportCommands.h"
#include "reports/TemplateTags.h"
#include "reports/XlsxTemplate.h"
#include "reports/XlsxWorkbook.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

namespace aqx::reports {
namespace {

using namespace testing_reports;

class Folder : public RecordingFolder {
 protected:
  QString Write(const char* name, const AnalyticRecording& r) {
    const QString path = dir.filePath(QString::fromUtf8(name));
    EXPECT_TRUE(WriteAnalyticRecording(path, r, prompts));
    return path;
  }
  std::vector<FileReadings> Walk() {
    ReportContext ctx{*state, prompts, readers, {}};
    return ReadReportFiles(ctx, FolderRecordings(dir.path())).files;
  }
};

TEST_F(Folder, DifferentialConnectionReportsSixteenChannels) {
  AnalyticRecording r;
  r.differential = true;
  Write("diff.aqx", r);
  const std::vector<FileReadings> files = Walk();
  ASSERT_EQ(files.size(), 1u);
  ASSERT_EQ(files[0].channels.size(), 3u);
  EXPECT_EQ(files[0].channels.back().channel, 3);
  // Place, type and direction of the three channels and their 10 parameters.
  EXPECT_EQ(BuildProtocolTable(files, true).columnCount(), 16);
}

TEST_F(Folder, EmptyPlaceKeepsItsSlashAndTheFirstFileFillsATag) {
  AnalyticRecording first;
  first.place.clear();
  Write("a.aqx", first);
  AnalyticRecording second = first;
  second.vibrationPeakToPeak = 400.0;
  Write("b.aqx", second);
  const TemplateTags tags = BuildTemplateTags(Walk());
  const QString* overall = tags.find(QStringLiteral("Aquilonix/Номинал/1//Y/ОУ/С"));
  ASSERT_NE(overall, nullptr);
  EXPECT_NEAR(overall->toInt(), 800, 16);
  const QString* shift = tags.find(QStringLiteral("Aquilonix/Номинал/0//X/См"));
  ASSERT_NE(shift, nullptr);
  EXPECT_EQ(*shift, QStringLiteral("300"));
}

TEST_F(Folder, FolderThatCannotBeReadIsToldBeforeAnything) {
  const QString gone = dir.filePath(QStringLiteral("gone"));
  ReportContext ctx{*state, prompts, readers, {}};
  EXPECT_EQ(MakeFolderProtocol(ctx, gone).outcome, ReportOutcome::Failed);
  EXPECT_EQ(prompts.shown.size(), 1u);
  EXPECT_TRUE(prompts.lastMessage().contains(QStringLiteral("недоступна")));
  if (geteuid() == 0) GTEST_SKIP() << "running as root: a folder closed by its permissions is readable here";
  ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("closed")));
  const QString closed = dir.filePath(QStringLiteral("closed"));
  ASSERT_TRUE(QFile::setPermissions(closed, QFileDevice::WriteOwner));
  prompts.shown.clear();
  EXPECT_EQ(FillFolderTemplate(ctx, closed, closed).outcome, ReportOutcome::Failed);
  EXPECT_EQ(prompts.shown.size(), 1u);
  QFile::setPermissions(closed, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

// --- LibreOffice Calc -------------------------------------------------------

// Rows of a CSV text with quoted fields.
std::vector<QStringList> ParseCsv(const QString& text) {
  std::vector<QStringList> rows;
  QStringList row;
  QString field;
  bool quoted = false;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar ch = text[i];
    if (quoted) {
      if (ch == QLatin1Char('"') && i + 1 < text.size() && text[i + 1] == QLatin1Char('"')) {
        field += ch;
        ++i;
      } else if (ch == QLatin1Char('"')) {
        quoted = false;
      } else {
        field += ch;
      }
    } else if (ch == QLatin1Char('"')) {
      quoted = true;
    } else if (ch == QLatin1Char(',')) {
      row.push_back(field);
      field.clear();
    } else if (ch == QLatin1Char('\n')) {
      row.push_back(field);
      rows.push_back(row);
      row.clear();
      field.clear();
    } else if (ch != QLatin1Char('\r')) {
      field += ch;
    }
  }
  if (!field.isEmpty() || !row.isEmpty()) rows.push_back(row << field);
  return rows;
}

QString CsvCell(const std::vector<QStringList>& rows, int row, int column) {
  if (row < 1 || row > static_cast<int>(rows.size())) return {};
  return rows[static_cast<size_t>(row - 1)].value(column - 1);
}

// Each kind of workbook opened by Calc: converted headless to CSV (Calc
// gives no CSV for a workbook it would have to repair) and compared cell
// by cell with the table it was written from.
TEST_F(Folder, WorkbooksOpenInLibreOfficeCalcAsWritten) {
  const QString soffice = QStandardPaths::findExecutable(QStringLiteral("soffice"));
  if (soffice.isEmpty()) GTEST_SKIP() << "LibreOffice (soffice) is not installed: the round trip through Calc is not checked";
  Write("a.aqx", {});
  ASSERT_TRUE(WriteFile(dir.filePath(QStringLiteral("b.aqx")), "no recording"));
  const std::vector<FileReadings> files = Walk();
  const QString out = dir.filePath(QStringLiteral("out"));
  ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("out")));

  const ProtocolTable protocol = BuildProtocolTable(files, true);
  MasterChoice choice;
  choice.files = {files[0].path, files[1].path};
  choice.channels = MasterChannelsOf(files);
  choice.parameters = MasterParameters();
  const ProtocolTable master = BuildMasterTable(files, choice);
  QString error;
  ASSERT_TRUE(WriteProtocolWorkbook(protocol, out + QStringLiteral("/protocol.xlsx"), error));
  ASSERT_TRUE(WriteProtocolWorkbook(master, out + QStringLiteral("/master.xlsx"), error));
  ASSERT_TRUE(WriteProtocolWorkbook({}, out + QStringLiteral("/empty.xlsx"), error));
  const QString form = dir.filePath(QStringLiteral("form.xlsx"));
  ASSERT_TRUE(Zip(form, FormParts()));
  const std::optional<TemplateWorkbook> opened = TemplateWorkbook::open(form, error);
  ASSERT_TRUE(opened);
  int replaced = 0;
  const std::optional<QByteArray> filled = opened->fill(BuildTemplateTags(files), replaced, error);
  ASSERT_TRUE(filled && WriteFile(out + QStringLiteral("/filled.xlsx"), *filled));

  const QString names[] = {QStringLiteral("protocol"), QStringLiteral("master"), QStringLiteral("empty"),
                           QStringLiteral("filled")};
  QStringList args = {QStringLiteral("-env:UserInstallation=file://") + dir.filePath(QStringLiteral("profile")),
                      QStringLiteral("--headless"), QStringLiteral("--convert-to"),
                      QStringLiteral("csv:Text - txt - csv (StarCalc):44,34,76"), QStringLiteral("--outdir"), out};
  for (const QString& name : names) args << out + QLatin1Char('/') + name + QStringLiteral(".xlsx");
  QProcess calc;
  calc.start(soffice, args);
  ASSERT_TRUE(calc.waitForFinished(180000)) << calc.errorString().toStdString();
  const auto csv = [&](const QString& name) {
    return ParseCsv(QString::fromUtf8(ReadFile(out + QLatin1Char('/') + name + QStringLiteral(".csv"))));
  };

  for (const ProtocolTable* table : {&protocol, &master}) {
    const std::vector<QStringList> rows = csv(table == &protocol ? names[0] : names[1]);
    ASSERT_EQ(static_cast<int>(rows.size()), table->rowCount());
    for (const auto& [at, cell] : table->cells())
      EXPECT_EQ(CsvCell(rows, at.row, at.column), cell.text) << at.row << "," << at.column;
  }
  EXPECT_TRUE(QFileInfo::exists(out + QStringLiteral("/empty.csv")));
  EXPECT_EQ(ReadFile(out + QStringLiteral("/empty.csv")).trimmed(), QByteArray());
  // The form's first sheet: the tags filled, its own text kept.
  const std::vector<QStringList> sheet = csv(names[3]);
  EXPECT_EQ(CsvCell(sheet, 1, 1), QStringLiteral("Общий уровень"));
  EXPECT_NEAR(CsvCell(sheet, 1, 2).toInt(), 800, 16);
  EXPECT_EQ(CsvCell(sheet, 3, 2), QStringLiteral("300"));
  EXPECT_EQ(CsvCell(sheet, 2, 4), QString::fromUtf8(kTagUnusedProbe));
}

}  // namespace
}  // namespace aqx::reports
