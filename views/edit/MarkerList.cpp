#include "views/edit/MarkerList.h"

#include "core/Numeric.h"

#include <QDateTime>

#include <algorithm>

namespace aqx::views {

namespace {

const QString kTitle = QStringLiteral("Маркеры");

bool ValidIndex(const AppState& s, int index) { return index >= 0 && index < std::clamp(s.markers.MarkerN, 0, kMaxMarkers); }

}  // namespace

bool AddMarker(AppState& s, double nowOle, Prompts& prompts) {
  Markers& m = s.markers;
  if (m.MarkerN >= kMaxMarkers) {
    prompts.tell(QStringLiteral("Список полон: маркеров не может быть больше %1.\n"
                                "Удалите ненужные маркеры, чтобы добавить новый.")
                     .arg(kMaxMarkers),
                 kTitle, PromptIcon::Exclamation);
    return false;
  }
  const auto i = static_cast<size_t>(std::max(m.MarkerN, 0));
  m.MarkerN = static_cast<int32_t>(i) + 1;
  if (m.MarkerColor[i] == 0) m.MarkerColor[i] = kDefaultMarkerColor;
  m.MarkerOn[i] = 1;
  m.MarkerDate[i] = nowOle;
  m.MarkerRemark[i] = QStringLiteral("Маркер №%1").arg(m.MarkerN);
  m.MarkerShift[i] = 0;
  return true;
}

bool DeleteMarker(AppState& s, int index, Prompts& prompts) {
  if (!ValidIndex(s, index)) return false;
  if (prompts.message(QStringLiteral("Вы действительно хотите удалить маркер?"), kTitle, PromptButtons::OkCancel,
                      PromptIcon::Exclamation) != PromptAnswer::Ok)
    return false;
  Markers& m = s.markers;
  for (int k = index; k + 1 < m.MarkerN; ++k) {
    const auto to = static_cast<size_t>(k);
    m.MarkerDate[to] = m.MarkerDate[to + 1];
    m.MarkerRemark[to] = m.MarkerRemark[to + 1];
    m.MarkerColor[to] = m.MarkerColor[to + 1];
    m.MarkerOn[to] = m.MarkerOn[to + 1];
    m.MarkerShift[to] = m.MarkerShift[to + 1];
  }
  --m.MarkerN;
  return true;
}

bool ClearMarkers(AppState& s, Prompts& prompts) {
  if (prompts.message(QStringLiteral("Вы действительно хотите очистить все маркеры?"), kTitle,
                      PromptButtons::OkCancel, PromptIcon::Exclamation) != PromptAnswer::Ok)
    return false;
  s.markers.MarkerN = 0;
  return true;
}

void SetMarkerRemark(AppState& s, int index, const QString& text) {
  if (ValidIndex(s, index)) s.markers.MarkerRemark[static_cast<size_t>(index)] = text.left(kMarkerRemarkChars);
}

void ToggleMarker(AppState& s, int index) {
  if (!ValidIndex(s, index)) return;
  int32_t& on = s.markers.MarkerOn[static_cast<size_t>(index)];
  on = on != 0 ? 0 : 1;
}

bool SetMarkerShift(AppState& s, int index, const QString& text) {
  bool ok = false;
  const int shift = text.trimmed().toInt(&ok);
  if (!ok || !ValidIndex(s, index)) return false;
  s.markers.MarkerShift[static_cast<size_t>(index)] = shift;
  return true;
}

QStringList MarkerRow(const AppState& s, int index) {
  if (!ValidIndex(s, index)) return {};
  const auto i = static_cast<size_t>(index);
  const QDateTime when = OleToDateTime(s.markers.MarkerDate[i]);
  return {QString::number(index + 1), when.isValid() ? when.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss")) : QString(),
          s.markers.MarkerRemark[i], s.markers.MarkerOn[i] != 0 ? QStringLiteral("да") : QStringLiteral("нет"),
          QString::number(s.markers.MarkerShift[i])};
}

}  // namespace aqx::views
