#pragma once
// Bringing the settings into the shared state and back: the load at start
// with the crash check, the full read, the recording's values after each
// file load, and the reset to defaults.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"

namespace aqx {

// Start-up step: reads GoodRun; a 0 there means the last run did not end
// cleanly, and the user is offered the protected start (Yes: ResetSettings,
// so defaults come up with the recent list kept). Then GoodRun = 0 is
// written for the length of the run and LoadConfigReg reads everything.
// A missing or garbled GoodRun counts as a clean run.
void LoadConfig(AppState& s, SettingsStore& store, Prompts& prompts);

// Reads every setting of the state at once: ScaleSpectr and its band label,
// ColorTypeKit, the per-channel keys (over ChannelCount as it stands),
// ChannelDifferential and the recount of used channels, SignalDataN with
// ViewFirst/ViewLast and the block rule, the block sizes (BlockSizeFFT =
// BlockSizeFFTa), then the rest, the remarks and the markers. Missing keys
// give defaults; a garbled value leaves its field as it was. Finally, with
// no shown channel, the first used one becomes active and current.
// Writes nothing.
void LoadConfigReg(AppState& s, const SettingsStore& store);

// Writes the recording's part of the state, so that the recording just
// opened is what the next start comes up with: rotor and sampling values,
// the description, Imposition, FirstChannelActive, block sizes, the channel
// table with ProbeFreq and Filter, remarks, ChannelDifferential, SignalDataN,
// the Synchro keys, ViewStyle, SolidMode, FreqADC, TimeRefresh, Clearance,
// SaveProbe, SaveFilter, InitDirOpen and PathFileData. One file write.
void SaveConfig(SettingsStore& store, const AppState& s);

// Deletes the whole tree but the recent list, and writes Active1 = 1 so that
// the next start shows one channel.
void ResetSettings(SettingsStore& store);

// The option sheet's reset button: asks, resets, tells that a restart is
// needed.
enum class ResetOutcome {
  Cancelled,      // nothing changed
  CloseProgram,   // reset done and the user confirmed: close the program now
  KeepRunning,    // reset done, the user cancelled the restart notice
};
ResetOutcome ResetSettingsCommand(SettingsStore& store, Prompts& prompts);

// The question texts.
QString ProtectedStartQuestion();
QString ResetQuestion();
QString ResetDoneNotice();

}  // namespace aqx
