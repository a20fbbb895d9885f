#pragma once
// The parameter bar below the signal picture (OutStatusBarParameter) and the
// large-type reading of frmViewParameters (OutData), as texts the window
// shows. The engine results they print come in a plain struct, so the text
// rules are testable without the engine.

#include "core/AppState.h"
#include "views/Primitives.h"
#include "views/signal/SignalView.h"

#include <QString>

#include <array>
#include <vector>

namespace aqx::views {

// Engine results the bar prints for FirstChannelActive.
struct ParameterReadings {
  std::array<int32_t, 4> BandMax{};   // 0-200 Hz, 0-1 Hz, 1-30 Hz, 30-200 Hz
  std::array<int32_t, 4> BandMean{};
  int32_t ProbeAmplitude = 0;  // first entry
  int32_t ProbePhase = 0;
};

struct ParameterPanel {
  QString text;
  QString toolTip;
};

struct ParameterBar {
  std::vector<ParameterPanel> panels;  // empty: the bar is cleared
  int panelWidthPx = 0;                // bar width / panel count, rounded
};

// The shaft's shift toward a run-out sensor, in the channel's units: its
// constant part over the stretch, less the clearance KS when AccountOffset
// is on. Needs SignalOffset of the last AccountSignalMax.
double RunoutShift(const AppState& s, int channel);

// The panels of FirstChannelActive by its type. Sets UnitDivisor 0 to 1 and
// calls SetChannelUnit for level texts; fills v.ChannelParameterText of the
// channel.
ParameterBar BuildParameterBar(AppState& s, SignalViewState& v,
                               const ParameterReadings& r, int barWidthPx);

// frmViewParameters: the one line of the active channel's main reading, from
// the band levels (run-out and vibration), the detector's speeds (shaft
// marker) or SignalMaxValue (every other type).
QString ParameterTableText(AppState& s, const ParameterReadings& r,
                           const RotorSpeed& speed);
// The line in large type centred in the picture pctOut; the font size
// follows the picture so that the line fits.
DrawList BuildParameterTable(const QString& line, int widthPx, int heightPx, BgrColor background,
                             BgrColor textColor, const FontMetrics& fm);

}  // namespace aqx::views
