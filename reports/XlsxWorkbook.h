#pragma once
// A protocol table as a new workbook: one sheet "Протокол", every cell text
// (the sheet's cells take the text format "@", so that values typed later
// stay text too), the comments of the table as cell comments, "A1"
// selected. The workbook is made in a temporary folder and put in place of
// the target only when complete.

#include "reports/ProtocolTable.h"

#include <QByteArray>
#include <QString>

namespace aqx::reports {

inline const QString kProtocolSheetName = QStringLiteral("Протокол");

// The bytes of the workbook, or an empty array with the reason in `error`
// (a lower-case phrase to follow a colon).
QByteArray ProtocolWorkbookBytes(const ProtocolTable& table, QString& error);

// Writes the bytes as the file `path` through a temporary and a rename; on
// failure the old file stays and `error` holds the user's message.
bool ReplaceWorkbookFile(const QString& path, const QByteArray& bytes, QString& error);

// Both in one: false with the user's message in `error`.
bool WriteProtocolWorkbook(const ProtocolTable& table, const QString& path, QString& error);

}  // namespace aqx::reports
