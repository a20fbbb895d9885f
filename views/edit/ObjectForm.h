#pragma once
// frmSetupObject without its widgets: the station, unit, mode, the 27
// instrument readings and the comment as the form edits them, and the
// rules by which Apply writes them into ObjectInfo.

#include "core/AppState.h"

#include <QString>
#include <QStringList>

#include <array>

namespace aqx::views {

// The labels of txtData 0..27, in their order.
const std::array<QString, kRemarkCount>& ObjectFieldLabels();
// Readings 0..26 hold at most this many characters in a data file.
inline constexpr int kReadingChars = 10;
// The unit numbers cmbAgregat offers.
inline constexpr int kAgregatChoices = 23;

struct ObjectForm {
  QString station;
  QString agregat;  // as typed; blank when the state holds 0
  QString mode;
  std::array<QString, kRemarkCount> data;
};

ObjectForm ObjectFormOf(const AppState& s);
// cmdApply's state part: trimmed texts, a unit that is no number becomes 0,
// and the recording counts as changed.
void ApplyObjectForm(AppState& s, const ObjectForm& form);

}  // namespace aqx::views
