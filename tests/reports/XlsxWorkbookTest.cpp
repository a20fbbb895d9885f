// The new workbook read back as a spreadsheet program reads it: the sheet's
// name, every cell a string, the comments, "A1" selected, the text format.

#include "ReportTestSupport.h"

#include "reports/XlsxWorkbook.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx::reports {
namespace {

using namespace testing_reports;

int Count(const std::string& text, const QString& pattern) {
  return static_cast<int>(QString::fromStdString(text).count(QRegularExpression(pattern)));
}

TEST(ProtocolWorkbook, HoldsTheTableAsTextWithCommentsAndA1Selected) {
  ProtocolTable table;
  table.set(3, 1, QStringLiteral("Номинал"), QStringLiteral("Файл: a.aqx"));
  table.set(2, 3, QStringLiteral("ОУ"), QStringLiteral("Максимальное/Cреднее"));
  table.set(3, 3, QStringLiteral("812/790"));
  table.set(3, 4, QStringLiteral("0/-"));
  table.set(3, 5, QStringLiteral("a & b < c\x01"));
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("Протокол.xlsx"));
  QString error;
  ASSERT_TRUE(WriteProtocolWorkbook(table, path, error)) << error.toStdString();

  const std::map<std::string, std::string> parts = Unzip(path);
  ASSERT_TRUE(parts.contains("xl/workbook.xml"));
  EXPECT_NE(parts.at("xl/workbook.xml").find("name=\"Протокол\""), std::string::npos);
  const std::string& sheet = parts.at("xl/worksheets/sheet1.xml");
  // Five cells, each a shared or inline string, none a number.
  EXPECT_EQ(Count(sheet, QStringLiteral("<c ")), 5);
  EXPECT_EQ(Count(sheet, QStringLiteral("<c [^>]*t=\"(s|inlineStr)\"")), 5);
  EXPECT_NE(sheet.find("r=\"A3\""), std::string::npos);
  EXPECT_NE(sheet.find("r=\"C2\""), std::string::npos);
  const std::string& strings = parts.at("xl/sharedStrings.xml");
  EXPECT_NE(strings.find("812/790"), std::string::npos);
  EXPECT_NE(strings.find("0/-"), std::string::npos);
  EXPECT_NE(strings.find("a &amp; b &lt; c<"), std::string::npos);  // the control character left out
  const std::string& comments = parts.at("xl/comments1.xml");
  EXPECT_NE(comments.find("Файл: a.aqx"), std::string::npos);
  EXPECT_NE(comments.find("Максимальное/Cреднее"), std::string::npos);
  // "A1" selected: either said so or left as the default.
  const bool selectsA1 = sheet.find("activeCell=\"A1\"") != std::string::npos;
  EXPECT_TRUE(selectsA1 || sheet.find("<selection") == std::string::npos);
  // The text format "@" (built-in number format 49) on the sheet's columns.
  EXPECT_NE(parts.at("xl/styles.xml").find("numFmtId=\"49\""), std::string::npos);
  EXPECT_NE(sheet.find("<cols>"), std::string::npos);
}

TEST(ProtocolWorkbook, EmptyTableGivesTheNamedSheet) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("empty.xlsx"));
  QString error;
  ASSERT_TRUE(WriteProtocolWorkbook(ProtocolTable(), path, error));
  const std::map<std::string, std::string> parts = Unzip(path);
  EXPECT_NE(parts.at("xl/workbook.xml").find("name=\"Протокол\""), std::string::npos);
  EXPECT_EQ(Count(parts.at("xl/worksheets/sheet1.xml"), QStringLiteral("<c ")), 0);
}

TEST(ProtocolWorkbook, WriteIntoAMissingFolderSaysWhy) {
  QTemporaryDir dir;
  const QString missing = dir.filePath(QStringLiteral("нет/Протокол.xlsx"));
  QString error;
  EXPECT_FALSE(WriteProtocolWorkbook(ProtocolTable(), missing, error));
  EXPECT_TRUE(error.startsWith(QStringLiteral("Не удалось записать протокол в файл ")));
  EXPECT_FALSE(QFile::exists(missing));
}

}  // namespace
}  // namespace aqx::reports
