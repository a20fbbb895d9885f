#pragma once
// A station's form as a spreadsheet program saves it, written out part by
// part: two sheets, shared strings with tags (one in rich text, one used by
// two cells), an inline string tag, formulas and a bold style.

#include "ReportTestSupport.h"

#include <string>
#include <utility>
#include <vector>

namespace aqx::testing_reports {

inline constexpr char kFormDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n";
inline constexpr char kMainNs[] = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

inline std::string FormContentTypes(const std::string& workbookType =
                                        "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml") {
  const std::string sml = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
  return std::string(kFormDeclaration) +
         "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
         "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
         "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
         "<Override PartName=\"/xl/workbook.xml\" ContentType=\"" + workbookType + "\"/>"
         "<Override PartName=\"/xl/worksheets/sheet1.xml\" ContentType=\"" + sml + "worksheet+xml\"/>"
         "<Override PartName=\"/xl/worksheets/sheet2.xml\" ContentType=\"" + sml + "worksheet+xml\"/>"
         "<Override PartName=\"/xl/styles.xml\" ContentType=\"" + sml + "styles+xml\"/>"
         "<Override PartName=\"/xl/sharedStrings.xml\" ContentType=\"" + sml + "sharedStrings+xml\"/>"
         "</Types>";
}

// The tags of the form, as a vibration channel "ВГП"/"Y" and a run-out
// channel "ВГП"/"X" of mode "Номинал" name them.
inline constexpr char kTagOverallMax[] = "Aquilonix/Номинал/1/ВГП/Y/ОУ/М";
inline constexpr char kTagOverallMean[] = "Aquilonix/Номинал/1/ВГП/Y/ОУ/С";
inline constexpr char kTagProbe[] = "Aquilonix/Номинал/1/ВГП/Y/А2.00";
inline constexpr char kTagHarmonic[] = "Aquilonix/Номинал/1/ВГП/Y/А";
inline constexpr char kTagUnusedProbe[] = "Aquilonix/Номинал/1/ВГП/Y/А12.50";
inline constexpr char kTagOtherMode[] = "Aquilonix/Пуск/1/ВГП/Y/ОУ/М";
inline constexpr char kTagShift[] = "Aquilonix/Номинал/0/ВГП/X/См";
inline constexpr char kTagRunoutHarmonic[] = "Aquilonix/Номинал/0/ВГП/X/А";

inline std::vector<std::string> FormSharedStrings() {
  return {
      "<si><t>Общий уровень</t></si>",
      std::string("<si><t>") + kTagOverallMax + "</t></si>",
      std::string("<si><r><rPr><b/><sz val=\"11\"/></rPr><t xml:space=\"preserve\">Вибрация: </t></r>"
                  "<r><t xml:space=\"preserve\">") + kTagOverallMean + " мкм</t></r></si>",
      std::string("<si><t>") + kTagProbe + "</t></si>",
      std::string("<si><t>") + kTagHarmonic + "</t></si>",
      std::string("<si><t>") + kTagUnusedProbe + "</t></si>",
      std::string("<si><t>") + kTagOtherMode + "</t></si>",
      std::string("<si><t>") + kTagShift + "</t></si>",
  };
}

inline std::string FormSharedStringsPart(const std::vector<std::string>& items) {
  std::string xml = std::string(kFormDeclaration) + "<sst xmlns=\"" + kMainNs + "\" count=\"9\" uniqueCount=\"8\">";
  for (const std::string& si : items) xml += si;
  return xml + "</sst>";
}

inline std::string FormSheet1() {
  return std::string(kFormDeclaration) + "<worksheet xmlns=\"" + kMainNs +
         "\"><dimension ref=\"A1:D3\"/><sheetData>"
         "<row r=\"1\"><c r=\"A1\" t=\"s\"><v>0</v></c><c r=\"B1\" s=\"1\" t=\"s\"><v>1</v></c>"
         "<c r=\"C1\"><f>LEN(B1)</f><v>31</v></c></row>"
         "<row r=\"2\"><c r=\"A2\" t=\"s\"><v>2</v></c><c r=\"B2\" t=\"s\"><v>3</v></c>"
         "<c r=\"C2\" t=\"s\"><v>4</v></c><c r=\"D2\" t=\"s\"><v>5</v></c></row>"
         "<row r=\"3\"><c r=\"A3\" s=\"1\" t=\"s\"><v>6</v></c><c r=\"B3\" t=\"s\"><v>7</v></c>"
         "<c r=\"C3\" t=\"s\"><v>7</v></c><c r=\"D3\" s=\"1\"><v>42</v></c></row>"
         "</sheetData></worksheet>";
}

inline std::string FormInlineTag(const std::string& text) {
  return "<is><t>" + text + "</t></is>";
}

inline std::string FormSheet2(const std::string& inlineTag) {
  return std::string(kFormDeclaration) + "<worksheet xmlns=\"" + kMainNs +
         "\"><sheetData><row r=\"1\"><c r=\"A1\" t=\"inlineStr\">" + inlineTag +
         "</c><c r=\"B1\"><f>A1*2</f><v>0</v></c><c r=\"C1\" t=\"inlineStr\"><is><t>Биение</t></is></c></row>"
         "</sheetData></worksheet>";
}

inline std::string FormWorkbook() {
  return std::string(kFormDeclaration) + "<workbook xmlns=\"" + kMainNs +
         "\" xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
         "<sheets><sheet name=\"Вибрация\" sheetId=\"1\" r:id=\"rId1\"/>"
         "<sheet name=\"Биение\" sheetId=\"2\" r:id=\"rId2\"/></sheets></workbook>";
}

inline std::vector<std::pair<std::string, std::string>> FormParts(
    const std::string& workbookType = "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml") {
  const std::string rel = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
  return {
      {"[Content_Types].xml", FormContentTypes(workbookType)},
      {"_rels/.rels", std::string(kFormDeclaration) +
                          "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
                          "<Relationship Id=\"rId1\" Type=\"" + rel + "officeDocument\" Target=\"xl/workbook.xml\"/>"
                          "</Relationships>"},
      {"xl/workbook.xml", FormWorkbook()},
      {"xl/_rels/workbook.xml.rels",
       std::string(kFormDeclaration) +
           "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
           "<Relationship Id=\"rId1\" Type=\"" + rel + "worksheet\" Target=\"worksheets/sheet1.xml\"/>"
           "<Relationship Id=\"rId2\" Type=\"" + rel + "worksheet\" Target=\"worksheets/sheet2.xml\"/>"
           "<Relationship Id=\"rId3\" Type=\"" + rel + "styles\" Target=\"styles.xml\"/>"
           "<Relationship Id=\"rId4\" Type=\"" + rel + "sharedStrings\" Target=\"sharedStrings.xml\"/>"
           "</Relationships>"},
      {"xl/styles.xml",
       std::string(kFormDeclaration) + "<styleSheet xmlns=\"" + kMainNs +
           "\"><fonts count=\"2\"><font><sz val=\"11\"/><name val=\"Calibri\"/></font>"
           "<font><b/><sz val=\"11\"/><name val=\"Calibri\"/></font></fonts>"
           "<fills count=\"2\"><fill><patternFill patternType=\"none\"/></fill>"
           "<fill><patternFill patternType=\"gray125\"/></fill></fills>"
           "<borders count=\"1\"><border><left/><right/><top/><bottom/><diagonal/></border></borders>"
           "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs>"
           "<cellXfs count=\"2\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>"
           "<xf numFmtId=\"0\" fontId=\"1\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyFont=\"1\"/></cellXfs>"
           "<cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/></cellStyles>"
           "</styleSheet>"},
      {"xl/sharedStrings.xml", FormSharedStringsPart(FormSharedStrings())},
      {"xl/worksheets/sheet1.xml", FormSheet1()},
      {"xl/worksheets/sheet2.xml", FormSheet2(FormInlineTag(kTagRunoutHarmonic))},
  };
}

}  // namespace aqx::testing_reports
