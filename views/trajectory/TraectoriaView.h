#pragma once
// The trajectory view (frmViewTraectoria) without a toolkit: the path of the
// shaft in the bearing plane from the active channel and the one after it.
// The window members are plain data; a prepare step runs the engine and
// fixes scale, pairing and centres, a draw step turns a const state into a
// DrawList, and every event says what the window must do next.

#include "core/AppState.h"
#include "core/Vocabulary.h"
#include "views/Analysis.h"
#include "views/Primitives.h"

#include <QString>
#include <QStringList>

#include <array>
#include <climits>
#include <vector>

namespace aqx::views {

// ---------------------------------------------------------------------------
// Pure geometry.
// ---------------------------------------------------------------------------

// How two directions of the station ("ВБ", "НБ" vertical, "ЛБ", "ПБ"
// horizontal) make the axes of the plane.
struct DirectionPair {
  bool paired = false;
  bool nextIsX = false;  // the channel after the active one gives the horizontal axis
  int signX = 1;
  int signY = 1;
};
DirectionPair PairByDirection(const QString& directActive, const QString& directNext);

// Half the shorter side in units: the first AmplitudeScales entry above both
// extents, or `current` when none is.
int AutoScaleXY(int extentActive, int extentNext, int current);
// 2 * ScaleXY / min(W, H).
double UnitsPerPixelFor(int scaleXY, int widthPx, int heightPx);
// Compass angle in degrees, 0 along +y, rising toward +x, 0 <= angle < 360.
double CartesianToPolar(double x, double y);
// The dart toward a trajectory centre outside the picture: the strokes from
// the middle of the picture; empty while the centre lies inside.
std::vector<Line> DirectionDart(int widthPx, int heightPx, int trajectoryX, int trajectoryY);
// The analytic ellipse of the first harmonics: peak-to-peak amplitudes and
// phases (degrees) of the horizontal and the vertical channel.
Polyline FirstHarmonicEllipse(double amplitudeX, double phaseXDeg, double amplitudeY, double phaseYDeg, int signX,
                              int signY, double unitsPerPixel, int centerX, int centerY);
// A number as the grid writes it: a blank before a value that is not negative.
QString GridNumber(double value);

// ---------------------------------------------------------------------------
// Window members and control values.
// ---------------------------------------------------------------------------

struct TraectoriaViewState {
  int widthPx = 0;  // picture, pixels
  int heightPx = 0;
  int CenterX = 0;  // pixel of the plane's zero
  int CenterY = 0;
  int ScaleXY = -1;  // half the shorter side in units; -1 none chosen yet
  double UnitsPerPixel = 1.0;
  int BeginSample = 1;
  int EndSample = 1;
  int StretchSamples = 0;  // SignalDataN the stretch was set for
  bool SlowDraw = false;
  int ChannelX = 0;
  int ChannelY = 0;
  int SignX = 1;
  int SignY = 1;
  int TrajectoryX = 0;
  int TrajectoryY = 0;
  int BeginPointX = 0;
  int BeginPointY = 0;
  int CursorX = -1;
  int CursorY = -1;
  int DragX = -1;
  int DragY = -1;
  QString CursorTextX;
  QString CursorTextY;

  // Controls.
  int SliderV = -1;  // AmplitudeScales index, -1 "Авто"
  QString SliderVToolTip = QStringLiteral("Авто");
  int FlatScrollBarH = 0;
  int FlatScrollBarHMin = 0;
  int FlatScrollBarHMax = 0;
  int FlatScrollBarV = 0;
  int FlatScrollBarVMin = 0;
  int FlatScrollBarVMax = 0;
  int ScrollStep = 1;  // samples per unit of HScrollL and HScrollR
  int HScrollL = 1;
  int HScrollLMin = 1;
  int HScrollLMax = 1;
  int HScrollR = 1;
  int HScrollRMin = 1;
  int HScrollRMax = 1;
  bool ControlsEnabled = false;
  QString Caption = QStringLiteral("Траектория движения вала");

  // What the prepare step found.
  bool Buildable = false;
  bool Paired = false;
  QString UnitName;
  double UnitDivisor = 1.0;
  double ZeroCodeX = 0.0;  // cX, cY
  double ZeroCodeY = 0.0;
  double FactorX = 0.0;  // kX, kY: pixels per code with the sign
  double FactorY = 0.0;
  double AmplitudeX = 0.0;  // first harmonic, peak to peak, and phase
  double PhaseX = 0.0;
  double AmplitudeY = 0.0;
  double PhaseY = 0.0;
  QString RotorSpeedText;  // for the copy header
};

// ---------------------------------------------------------------------------
// Window operations.
// ---------------------------------------------------------------------------

// On load: the stretch of the signal view, the sliders, the stored ScaleXY.
void InitTraectoriaView(const AppState& s, TraectoriaViewState& v);
// A picture of a new size: the plane centred, the bars set to it.
void ResizeTraectoria(TraectoriaViewState& v, int widthPx, int heightPx);
// Pairing, scale, unit and centres for the next drawing; in the
// first-harmonic mode the probe values of both channels (the active
// channel's last, so that they stay in the shared arrays).
void PrepareTraectoria(AppState& s, AnalysisResults& r, TraectoriaViewState& v);
// The picture from a prepared state. lastSample cuts the orbit and its
// spokes (the slow drawing); W or H under 50 gives only a note.
DrawList DrawTraectoria(const AppState& s, const TraectoriaViewState& v, const FontMetrics& fm,
                        int lastSample = INT_MAX);
// PrepareTraectoria and DrawTraectoria.
DrawList BuildTraectoria(AppState& s, AnalysisResults& r, TraectoriaViewState& v, const FontMetrics& fm);
// Why no trajectory stands in the picture: the refusal and, when it helps,
// its reason; empty when one is drawn.
QStringList TraectoriaRefusal(const AppState& s, const TraectoriaViewState& v);
// The cross-hair of the cursor mode, drawn inverted over the picture.
void AppendTraectoriaCrosshair(const TraectoriaViewState& v, DrawList& list);

// The orbit as the pixels it covers, row by row: what one-pixel strokes from
// sample to sample would paint. lastSample cuts it.
std::vector<Line> OrbitRuns(const AppState& s, const TraectoriaViewState& v, int lastSample = INT_MAX);

// ---------------------------------------------------------------------------
// Status bar and copy header.
// ---------------------------------------------------------------------------

enum class TraectoriaPanel { Dimension, Window, Cursor, BeginPoint, kCount };

struct TraectoriaStatus {
  std::array<QString, static_cast<size_t>(TraectoriaPanel::kCount)> text;
  const QString& operator[](TraectoriaPanel p) const { return text[static_cast<size_t>(p)]; }
};

TraectoriaStatus OutInfoToStatusBar(const AppState& s, const TraectoriaViewState& v);
// The text block above the copied picture.
QStringList TraectoriaCopyHeader(const AppState& s, const Vocabulary& vocab, const TraectoriaViewState& v);

// ---------------------------------------------------------------------------
// Events.
// ---------------------------------------------------------------------------

struct TraectoriaAction {
  bool redraw = false;      // BuildTraectoria
  bool crosshair = false;   // repaint the cross-hair overlay
  bool statusBar = false;   // OutInfoToStatusBar
  bool controls = false;    // copy control values to the widgets
  bool popupMenu = false;   // mnuTraectoria at the pointer
  bool pointer = false;     // SetTypeMouseCursor
  bool optionsChanged = false;  // a Traectoria option flipped: save it
  bool slowDraw = false;    // draw sample by sample with the progress bar
};

enum class TraectoriaButton { Left, Right, Other };
// The pointer over the picture: arrow in cursor mode, else an open hand
// (closed while a left button drags).
enum class TraectoriaPointer { Arrow, OpenHand, ClosedHand };
TraectoriaPointer PointerOf(const AppState& s, const TraectoriaViewState& v);

TraectoriaAction TraectoriaMouseDown(const AppState& s, TraectoriaViewState& v, TraectoriaButton b, int x, int y);
TraectoriaAction TraectoriaMouseMove(const AppState& s, TraectoriaViewState& v, int x, int y, bool leftHeld);
TraectoriaAction TraectoriaMouseUp(TraectoriaViewState& v);
TraectoriaAction TraectoriaDoubleClick(TraectoriaViewState& v);
TraectoriaAction TraectoriaSliderVChanged(TraectoriaViewState& v, int position);
TraectoriaAction TraectoriaHScrollLChanged(TraectoriaViewState& v, int value);
TraectoriaAction TraectoriaHScrollRChanged(TraectoriaViewState& v, int value);
TraectoriaAction TraectoriaFlatScrollChanged(TraectoriaViewState& v, bool horizontal, int value);
// mnuTraectoriaCursor and the panel "Cursor" (TraectoriaCursorChange);
// mnuTraectoriaBeginPoint and the panel "BeginPoint" (TraectoriaBeginPointView).
TraectoriaAction TraectoriaCursorChange(AppState& s, TraectoriaViewState& v);
TraectoriaAction TraectoriaBeginPointView(AppState& s);
TraectoriaAction TraectoriaPanelClicked(AppState& s, TraectoriaViewState& v, TraectoriaPanel panel);

// ---------------------------------------------------------------------------
// LayoutForSize: the bars around the picture.
// ---------------------------------------------------------------------------

struct TraectoriaRect {
  int left = 0, top = 0, width = 0, height = 0;
  bool visible = false;
};

struct TraectoriaLayout {
  TraectoriaRect picture, sliderV, flatScrollBarH, flatScrollBarV, hScrollL, hScrollR, progressBar, statusBar;
};

struct TraectoriaBarSizes {
  int statusBarPx = 22;
  int scrollPx = 17;
  int sliderPx = 24;
};

TraectoriaLayout TraectoriaLayoutForSize(int innerWidthPx, int innerHeightPx, bool statusBar,
                                      const TraectoriaBarSizes& bars = {});

}  // namespace aqx::views
