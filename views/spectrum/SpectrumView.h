#pragma once
// The spectrum view (frmViewSpectr) without a toolkit: the decade axis, the
// amplitude scale, the picture as a DrawList, the info bar and parameter bar
// texts, the cross-hair read-out and every panel and mouse event as a state
// transition. The spectrum itself is computed by the refresh's spectrum step
// (AccountChannelSpectrum) into AnalysisResults; the view only reads it.

#include "core/AppState.h"
#include "views/Analysis.h"
#include "views/Primitives.h"
#include "views/parameters/SignalParameters.h"
#include "views/signal/SignalView.h"

#include <QString>

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace aqx::views {

// ---------------------------------------------------------------------------
// Decade axis: 0-10 Hz takes 10 of G divisions, each further decade 9, and
// each decade is linear inside.
// ---------------------------------------------------------------------------

inline constexpr int kScaleSpectrMax = 3;
inline constexpr double kSpectrTopHz = 10000.0;

// SpectrGridN of ScaleSpectr 0..3: 10, 19, 28, 37 (held to the range).
int SpectrGridN(int scaleSpectr);
// "0-10Гц", "0-100Гц", "0-1кГц", "0-10кГц".
QString SpectrRangeLabel(int scaleSpectr);
// Highest frequency the range shows: 10, 100, 1000, 10000 Hz.
double SpectrRangeTopHz(int scaleSpectr);
// x of frequency f on a picture W wide with G divisions; f above 10 kHz or
// below 0 has no place (nullopt). Frequencies past the range still map (to
// the right of W).
std::optional<double> FrequencyToX(double frequencyHz, double widthPx, int gridDivisions);
// The inverse: frequency under x (0 at x <= 0).
double XToFrequency(double x, double widthPx, int gridDivisions);
// Label values of grid lines 1..G: 1..10, 20..100, 200..1000, 2000..10000.
std::vector<int> SpectrGridLabels(int gridDivisions);
// The amplitude scale E: the first AmplitudeScales entry above
// round(maxUnits / 4^volume); 0 when none is.
int SpectrScaleFor(double maxUnits, int volume);

// ---------------------------------------------------------------------------
// Window members.
// ---------------------------------------------------------------------------

enum class SpectrCursor { None, Free, Bound };  // key Cursor: -1, 0, 1
SpectrCursor SpectrCursorOf(const AppState& s);

struct SpectrViewState {
  int widthPx = 0;
  int heightPx = 0;
  int Scale = 0;              // E of the last drawing, 0: nothing drawn
  double UnitsPerPixel = 0.0;  // U of the last drawing
  bool Copying = false;        // drawn for the clipboard: guide lines in mask mode
  bool Integrated = false;     // mnuSpectrIntegral applied since the last refresh
  // Cross-hair.
  int CursorX = -1;
  int CursorY = -1;
  int CursorLine = -1;         // spectral line read, -1 none
  double CursorFrequency = 0.0;
  double CursorAmplitude = 0.0;
  double CursorPhase = 0.0;
  QString CursorText;          // "C1: ..." panel text
  QString LevelText;           // "L: ..." panel text
};

// ---------------------------------------------------------------------------
// Picture.
// ---------------------------------------------------------------------------

// Amplitude scale and unit for the current spectrum, cursor memory cleared.
void PrepareSpectr(AppState& s, SpectrViewState& v, const AnalysisResults& r);
// The picture in its fixed order: grids, harmonic lines, probe lines,
// evaluation curves, trace, frame. Empty below 50 pixels a side or with no
// block size at all; only the cleared ground when no scale fits.
DrawList DrawSpectr(const AppState& s, const SpectrViewState& v, const AnalysisResults& r, const FontMetrics& fm);
DrawList BuildSpectr(AppState& s, SpectrViewState& v, const AnalysisResults& r, const FontMetrics& fm);
// The cross-hair and its read-out beside it, inverted over the picture.
void AppendSpectrCrosshair(const SpectrViewState& v, DrawList& list, const FontMetrics& fm);

// ---------------------------------------------------------------------------
// Info bar (StatusBar1) and parameter bar (StatusBarParameter).
// ---------------------------------------------------------------------------

enum class SpectrPanel { Dimension, Cursor, Level, TypeDiagram, BlockSizeFFT, Scale, kCount };
struct SpectrStatus {
  std::array<QString, static_cast<size_t>(SpectrPanel::kCount)> text;
  const QString& operator[](SpectrPanel p) const { return text[static_cast<size_t>(p)]; }
};
SpectrStatus OutInfoToStatusBar(const AppState& s, const SpectrViewState& v);

// One panel for the first harmonic and for each probe frequency of the
// channel, from the last AccountProbe.
ParameterBar OutSpectrStatusBarParameter(const AppState& s, const AnalysisResults& r, int barWidthPx);

// ---------------------------------------------------------------------------
// Events.
// ---------------------------------------------------------------------------

struct SpectrAction {
  bool viewRefresh = false;     // ViewRefresh of all open views
  bool redraw = false;          // BuildSpectr
  bool crosshair = false;       // the overlay
  bool statusBar = false;       // OutInfoToStatusBar
  bool popupMenu = false;       // mnuSpectr at the pointer
  bool optionsChanged = false;  // a Spectr option changed: save the section
  bool scaleChanged = false;    // ScaleSpectr changed: save it
  bool analyserSettings = false;  // open frmSetupSpectrumAnalyser
};

SpectrAction SpectrPanelClicked(AppState& s, SpectrViewState& v, SpectrPanel panel, MouseButton b);
SpectrAction SpectrMouseDown(AppState& s, SpectrViewState& v, MouseButton b);
SpectrAction SpectrMouseMove(AppState& s, SpectrViewState& v, const AnalysisResults& r, double x, double y);
SpectrAction SpectrMouseLeave(SpectrViewState& v);
// mnuSpectrCursor: the entry flips between itself and none.
SpectrAction SetSpectrCursor(AppState& s, SpectrViewState& v, SpectrCursor entry);
// mnuSpectrViewType, the TypeDiagram panel.
SpectrAction SpectrViewTypeChange(AppState& s);
// mnuSpectrEvaluation entry 1..3: ticks it, or unticks it when it was.
SpectrAction SpectrEvaluationChange(AppState& s, int entry);
// mnuSpectrGarmonicaN 1..10.
SpectrAction SpectrGarmonicaN(AppState& s, int count);
// mnuSpectrIntegral: one integration of the spectrum in the arrays, until the
// next refresh.
SpectrAction SpectrIntegral(AppState& s, SpectrViewState& v, AnalysisResults& r);

// ---------------------------------------------------------------------------
// Numbers read off the spectrum.
// ---------------------------------------------------------------------------

// The cursor's line for a frequency: the nearest line (free), or the
// strongest line within `snapLines` of it (bound).
int SpectrLineAt(const AnalysisResults& r, int lineCount, double stepHz, double frequencyHz, bool bound,
                 int snapLines);
// Harmonic cursor: the whole order n >= 1 whose frequency n*f1 lies within
// half a line of f, else 0.
int HarmonicOrderAt(double frequencyHz, double firstHarmonicHz, double stepHz);
// Local maxima of the spectrum (lines 1..), strongest first, at most `count`.
std::vector<int> StrongestLines(const AnalysisResults& r, int lineCount, int count);
// Every line as "frequency<separator>amplitude", one per line of text,
// with a header row; decimals with a point for CSV, the locale's for the
// clipboard.
QString SpectrumLinesText(const AnalysisResults& r, int lineCount, double stepHz, QChar separator,
                          bool localeDecimals);

}  // namespace aqx::views
