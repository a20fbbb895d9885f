#pragma once
// The edit commands of the signal view's menu on the samples in memory: cut,
// smooth, zero, memorise, paste, phase shift, the cut to whole revolutions,
// and the values as text for the clipboard. Each works on SelectFirst..
// SelectLast where it needs a stretch, asks through Prompts, keeps an undo
// step in the history and says whether the views must be refreshed.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "views/edit/EditHistory.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace aqx::views {

// The codes memorised by mnuSignalMemory.
using SignalClipboard = std::vector<int16_t>;

// What a command did.
enum class EditResult {
  Changed,    // the state changed: ViewRefresh
  Refreshed,  // nothing changed, but a refresh follows (memorise)
  Nothing     // refused or cancelled; the user has been told where needed
};

// The stretch the selection commands work on exists.
bool HasSelection(const AppState& s);

// mnuSignalDelete: asks; on Yes every active channel loses the stretch and is
// stretched back to SignalDataN by nearest sample. Whatever the answer, the
// rate rises by the cut's share and the selection is cleared. A selection of
// the whole record is refused before the question.
EditResult SignalDelete(AppState& s, Prompts& prompts, EditHistory& history);
// mnuSignalSmoothly: a straight line over the stretch of FirstChannelActive.
EditResult SignalSmoothly(AppState& s, Prompts& prompts, EditHistory& history);
// mnuSignalZero: raw code 0 over the stretch of FirstChannelActive.
EditResult SignalZero(AppState& s, Prompts& prompts, EditHistory& history);
// mnuSignalMemory: the stretch's codes of FirstChannelActive.
EditResult SignalMemory(const AppState& s, Prompts& prompts, SignalClipboard& clipboard);
// mnuSignalPaste: the memorised codes from SelectFirst on; what passes the
// record's end is dropped after the user agreed.
EditResult SignalPaste(AppState& s, Prompts& prompts, const SignalClipboard& clipboard, EditHistory& history);
// mnuSignalShift: asks for the angle (last one from options.signal.Corner,
// which takes the new one) and shifts FirstChannelActive by that phase of a
// revolution.
EditResult SignalShift(AppState& s, Prompts& prompts, EditHistory& history);
// mnuSetupReAccount: the shaft marks over the whole record, the engine's cut
// to whole revolutions, the marks again.
EditResult SetupReAccount(AppState& s, Prompts& prompts, EditHistory& history);

// The angle text of the shift question as a number in -360..360.
std::optional<double> ParseShiftAngle(const QString& text);

// mnuSignalCopyData: the header and the values of FirstChannelActive, or of
// every active channel with Imposition, over the selection (the whole record
// without one), lines ending CR LF. `progress` gets the rows done and the
// total after each block of 1024 and returns false to cancel: nullopt then.
std::optional<QString> SignalValuesText(const AppState& s, const QStringList& sensorTypeNames,
                                        const QString& rotorSpeedText,
                                        const std::function<bool(int done, int total)>& progress = {});

}  // namespace aqx::views
