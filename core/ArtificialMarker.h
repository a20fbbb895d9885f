#pragma once
// The artificial shaft marker (frmServiceOtmetchick, "Искусственный
// отметчик"): a marker channel made by arithmetic when none was recorded,
// one pulse per period laid out by phase alone.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"

#include <vector>

namespace aqx {

struct ArtificialMarkerSettings {
  int32_t PeriodN = 16;   // revolutions in the record
  int32_t ChannelA = 1;   // reference channel, stored and shown only
  int32_t ChannelO = 32;  // the channel that becomes the marker
  int32_t ShiftF = 0;     // phase of the first pulse, degrees
  int32_t Front = 1;      // 1 on the rising edge, 0 on the falling one
  int32_t OnZero = 1;     // on the reference's zero crossing
};

ArtificialMarkerSettings ReadArtificialMarkerSettings(const SettingsStore& store);
void SaveArtificialMarkerSettings(SettingsStore& store, const ArtificialMarkerSettings& m);

// Rows (from 1) of the pulses: from P / 360 * ShiftF + 1 in steps of
// P = rows / PeriodN, each rounded half to even.
std::vector<int32_t> ArtificialMarkerRows(int32_t rows, int32_t periodN, double shiftDegrees);

// Apply: the questions and refusals, then channel ChannelO cleared, its
// pulses set to 8190 and the channel made a marker. False when nothing was
// made (told, or declined). The recording counts as changed.
bool MakeArtificialMarker(AppState& s, Prompts& prompts, const ArtificialMarkerSettings& m);

}  // namespace aqx
