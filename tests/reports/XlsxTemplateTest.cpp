// A station's form filled: tags found where a spreadsheet program keeps cell
// texts, every other byte kept, forms that cannot be filled refused.

#include "TemplateFormTest.h"

#include "reports/XlsxTemplate.h"
#include "reports/XmlSplice.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx::reports {
namespace {

using namespace testing_reports;

QString Q(const char* utf8) { return QString::fromUtf8(utf8); }

TemplateTags FormValues() {
  TemplateTags tags;
  tags.add(Q(kTagOverallMax), QStringLiteral("812"));
  tags.add(Q(kTagOverallMean), QStringLiteral("790"));
  tags.add(Q(kTagProbe), QStringLiteral("799"));
  tags.add(Q(kTagHarmonic), QStringLiteral("800"));
  tags.add(Q(kTagShift), QStringLiteral("300"));
  tags.add(Q(kTagRunoutHarmonic), QStringLiteral("600"));
  return tags;
}

std::string Filled(const char* value) { return std::string("<t xml:space=\"preserve\">") + value + "</t>"; }

class TemplateForm : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  QString formPath = dir.filePath(QStringLiteral("Форма.xlsx"));
  QString error;

  std::map<std::string, std::string> FillForm(const std::vector<std::pair<std::string, std::string>>& parts,
                                              int& replaced) {
    EXPECT_TRUE(Zip(formPath, parts));
    const std::optional<TemplateWorkbook> form = TemplateWorkbook::open(formPath, error);
    EXPECT_TRUE(form) << error.toStdString();
    if (!form) return {};
    const std::optional<QByteArray> bytes = form->fill(FormValues(), replaced, error);
    EXPECT_TRUE(bytes) << error.toStdString();
    const QString out = dir.filePath(QStringLiteral("out.xlsx"));
    EXPECT_TRUE(bytes && WriteFile(out, *bytes));
    return Unzip(out);
  }
};

TEST_F(TemplateForm, EveryTagIsFilledAndEverythingElseKeptByteForByte) {
  const auto original = FormParts();
  const QByteArray formBytes = [&] {
    EXPECT_TRUE(Zip(formPath, original));
    return ReadFile(formPath);
  }();
  int replaced = 0;
  std::map<std::string, std::string> parts = FillForm(original, replaced);
  EXPECT_EQ(replaced, 6);
  EXPECT_EQ(parts.size(), original.size());
  // The sheet of shared-string cells, its formula and bold cells, the styles
  // and the package's own parts stay as they were.
  for (const char* name : {"[Content_Types].xml", "_rels/.rels", "xl/_rels/workbook.xml.rels", "xl/styles.xml",
                           "xl/worksheets/sheet1.xml"}) {
    const auto it = std::find_if(original.begin(), original.end(), [&](const auto& p) { return p.first == name; });
    EXPECT_EQ(parts[name], it->second) << name;
  }
  // Only the tagged strings are rewritten: the whole-cell tags, the one in
  // bold rich text with the text around it, the one two cells share. The
  // tag of a probe not in use is not mistaken for the harmonic's, and an
  // unknown mode's tag stays.
  std::vector<std::string> strings = FormSharedStrings();
  strings[1] = "<si>" + Filled("812") + "</si>";
  strings[2] = "<si><r><rPr><b/><sz val=\"11\"/></rPr>" + Filled("Вибрация: 790 мкм") + "</r></si>";
  strings[3] = "<si>" + Filled("799") + "</si>";
  strings[4] = "<si>" + Filled("800") + "</si>";
  strings[7] = "<si>" + Filled("300") + "</si>";
  EXPECT_EQ(parts["xl/sharedStrings.xml"], FormSharedStringsPart(strings));
  EXPECT_EQ(parts["xl/worksheets/sheet2.xml"], FormSheet2("<is>" + Filled("600") + "</is>"));
  // Formulas over filled cells are worked out again on opening.
  std::string workbook = FormWorkbook();
  workbook.insert(workbook.find("</workbook>"), "<calcPr fullCalcOnLoad=\"1\"/>");
  EXPECT_EQ(parts["xl/workbook.xml"], workbook);
  EXPECT_EQ(ReadFile(formPath), formBytes);
}

TEST_F(TemplateForm, ExcelTemplateComesOutAsAWorkbook) {
  const std::string sml = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
  int replaced = 0;
  std::map<std::string, std::string> parts = FillForm(FormParts(sml + "template.main+xml"), replaced);
  EXPECT_EQ(parts["[Content_Types].xml"], FormContentTypes(sml + "sheet.main+xml"));
}

TEST_F(TemplateForm, FormsThatCannotBeFilledAreRefusedWithTheReason) {
  QByteArray binary("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
  binary.append(512, '\0');
  const QString xls = dir.filePath(QStringLiteral("Форма.xls"));
  ASSERT_TRUE(WriteFile(xls, binary));
  EXPECT_FALSE(TemplateWorkbook::open(xls, error));
  EXPECT_TRUE(error.contains(QStringLiteral("старом формате Excel 97-2003 (*.xls)")));
  EXPECT_TRUE(error.contains(QStringLiteral("сохраните как книгу Excel (*.xlsx)")));

  ASSERT_TRUE(Zip(formPath, FormParts("application/vnd.ms-excel.sheet.macroEnabled.main+xml")));
  EXPECT_FALSE(TemplateWorkbook::open(formPath, error));
  EXPECT_TRUE(error.contains(QStringLiteral("содержит макросы")));

  ASSERT_TRUE(Zip(formPath, {{"word/document.xml", "<document/>"}}));
  EXPECT_FALSE(TemplateWorkbook::open(formPath, error));
  EXPECT_TRUE(error.endsWith(QStringLiteral("не является книгой Excel (*.xlsx).")));

  EXPECT_FALSE(TemplateWorkbook::open(dir.filePath(QStringLiteral("нет.xlsx")), error));
  EXPECT_TRUE(error.startsWith(QStringLiteral("Не удалось открыть файл ")));
}

TEST(TemplateTagText, TagsAreWholeNamesInsideAnyText) {
  TemplateTags tags;
  const QString harmonic = Q(kTagHarmonic);
  tags.add(harmonic, QStringLiteral("800"));
  tags.add(harmonic, QStringLiteral("1"));  // a later file finds the tag taken
  tags.add(harmonic + QStringLiteral("2.00"), QStringLiteral("799"));
  QString text = harmonic;
  EXPECT_EQ(tags.replaceIn(text), 1);
  EXPECT_EQ(text, QStringLiteral("800"));
  // Longest name first; no tag inside a longer name; the text around stays.
  text = QStringLiteral("А=") + harmonic + QStringLiteral("2.00 мкм, ") + harmonic + QStringLiteral("; ") + harmonic +
         QStringLiteral("12.50 ") + harmonic + QStringLiteral("/М ") + harmonic + QStringLiteral("Б");
  EXPECT_EQ(tags.replaceIn(text), 2);
  EXPECT_EQ(text, QStringLiteral("А=799 мкм, 800; ") + harmonic + QStringLiteral("12.50 ") + harmonic +
                      QStringLiteral("/М ") + harmonic + QStringLiteral("Б"));
  // An empty place keeps its slash.
  EXPECT_EQ(TagPrefix(QStringLiteral("Пуск"), 0, QString(), QStringLiteral("X")), QStringLiteral("Aquilonix/Пуск/0//X/"));
}

TEST(TemplateTagText, ATypingErrorInTheParameterOfAChannelReadIsNamed) {
  TemplateTags tags;
  const QString prefix = TagPrefix(QStringLiteral("Номинал"), 1, QStringLiteral("ВГП"), QStringLiteral("X"));
  tags.addChannel(prefix);
  // Known names (a probe not in use included) pass; a channel that was not
  // read is no typing error; a name the grammar lacks is told.
  const QString text = prefix + QStringLiteral("ОУ/М ") + prefix + QStringLiteral("Ф12,50 ") + prefix +
                       QStringLiteral("ОУ/Х; ") + TagPrefix(QStringLiteral("Пуск"), 1, QStringLiteral("ВГП"),
                                                           QStringLiteral("X")) + QStringLiteral("XYZ ") +
                       prefix + QStringLiteral("Амплитуда");
  EXPECT_EQ(tags.unknownIn(text), (QStringList{prefix + QStringLiteral("ОУ/Х;"), prefix + QStringLiteral("Амплитуда")}));
}

TEST(TemplateXml, StringsAreFoundByNameOnlyInMarkup) {
  const std::string xml =
      "<x:sst xmlns:x=\"m\"><!-- <x:si>no</x:si> --><x:si><x:t><![CDATA[<x:si>]]>a&amp;b_x000D_</x:t></x:si>"
      "<x:si/><x:si><x:t attr=\"a>b\">c</x:t></x:si></x:sst>";
  const std::vector<XmlElement> found = FindXmlElements(xml, "si");
  ASSERT_EQ(found.size(), 3u);
  const std::optional<CellString> first = ReadCellString(std::string_view(xml).substr(found[0].begin, found[0].end - found[0].begin));
  ASSERT_TRUE(first);
  EXPECT_EQ(first->text, QStringLiteral("<x:si>a&b\r"));
  EXPECT_EQ(found[1].contentBegin, found[1].end);  // <x:si/>
  // A rewritten string keeps the prefix; what XML or the format cannot hold
  // is escaped.
  EXPECT_EQ(CellStringElement(xml, found[2], {}, QStringLiteral("1 < 2 &\r_x0041_")),
            "<x:si><x:t xml:space=\"preserve\">1 &lt; 2 &amp;_x000D__x005F_x0041_</x:t></x:si>");
}

TEST(TemplateXml, FullCalculationOnLoadGoesWhereTheWorkbookAllowsIt) {
  EXPECT_EQ(WithFullCalcOnLoad("<workbook><calcPr calcId=\"1\"/></workbook>"),
            "<workbook><calcPr calcId=\"1\" fullCalcOnLoad=\"1\"/></workbook>");
  EXPECT_EQ(WithFullCalcOnLoad("<workbook><calcPr fullCalcOnLoad='0'></calcPr></workbook>"),
            "<workbook><calcPr fullCalcOnLoad='1'></calcPr></workbook>");
  // Before the workbook's own extLst, not inside a view's.
  EXPECT_EQ(WithFullCalcOnLoad("<w:workbook><w:bookViews><w:workbookView><w:extLst/></w:workbookView></w:bookViews>"
                               "<w:sheets/><w:extLst><w:ext/></w:extLst></w:workbook>"),
            "<w:workbook><w:bookViews><w:workbookView><w:extLst/></w:workbookView></w:bookViews>"
            "<w:sheets/><w:calcPr fullCalcOnLoad=\"1\"/><w:extLst><w:ext/></w:extLst></w:workbook>");
}

}  // namespace
}  // namespace aqx::reports
