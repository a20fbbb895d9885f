#pragma once
// The list of time marks of frmViewMarker as operations on the state: up to
// 100 marks, each with its stamp, text, colour, visibility and the vertical
// shift of its text. The window shows the rows and calls these.

#include "core/AppState.h"
#include "core/Prompts.h"

#include <QString>
#include <QStringList>

namespace aqx::views {

inline constexpr int kMarkerRemarkChars = 50;
inline constexpr int32_t kDefaultMarkerColor = 255;  // red, blue-green-red word

// cmdAdd: a mark stamped `nowOle` (days since 30 December 1899) named
// "Маркер №" and its number. A full list refuses with a message and keeps
// its marks. True when the mark was added.
bool AddMarker(AppState& s, double nowOle, Prompts& prompts);
// cmdDelete: mark `index` (from 0) after the question; the marks behind it
// move down one place.
bool DeleteMarker(AppState& s, int index, Prompts& prompts);
// cmdClear: all marks after the question.
bool ClearMarkers(AppState& s, Prompts& prompts);
// The description, cut to 50 characters (an empty answer clears it).
void SetMarkerRemark(AppState& s, int index, const QString& text);
// "да" and "нет" swap.
void ToggleMarker(AppState& s, int index);
// The shift of the text in rows; text that is no whole number: false.
bool SetMarkerShift(AppState& s, int index, const QString& text);

// The table's cells of a mark: "№", "Время", "Описание", "Вид", "Сдвиг".
QStringList MarkerRow(const AppState& s, int index);

}  // namespace aqx::views
