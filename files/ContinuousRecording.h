#pragma once
// The steps of a continuous recording, shared by the window program's run
// and the command-line tool: the file with its header, the library's file
// recording thread started on it, the newest stretch polled into the store,
// and the stop, after which the header gets the module's tag.

#include "core/AppState.h"
#include "core/Prompts.h"

#include <QString>

namespace aqx {

// Writes the header into a new file at `path` (replacing one there) and
// starts the recording into it. On a refusal it tells why, removes the file
// and returns false; the store is untouched then.
bool StartContinuousRecording(AppState& s, Prompts& p, const QString& path, bool clearData);

// The newest stretch into SignalData with the block count and number; true
// once the recording has ended by itself.
bool PollContinuousRecording(AppState& s);

// Ends the recording, tells a failure of the recording thread with its text,
// and writes the header again with what the run learnt, so that the file
// opens either way. False when the thread failed or the header cannot be
// written (told already).
bool StopContinuousRecording(AppState& s, Prompts& p);

// "Error: " and the number, for a failure to stop a run; nothing for 0.
void TellStopFailure(Prompts& p, int32_t result);

// The module's tag out of the start call's 17-byte buffer.
QString ModuleTagOf(const char* moduleText);

}  // namespace aqx
