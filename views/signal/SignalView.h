#pragma once
// The signal view (frmViewSignal) without a toolkit: its window members as
// plain data, the picture as a DrawList, and every mouse, scroll-bar, slider
// and status-panel event as a state transition that tells the window what to
// do next. The window owns one SignalViewState, mirrors its control values
// into the real widgets and paints what BuildSignal returns.

#include "core/AppState.h"
#include "views/Primitives.h"

#include <QString>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace aqx::views {

inline constexpr int kChannelUnplaced = 1000000;  // ChannelY before the first layout
inline constexpr int kMinPicturePx = 50;           // smaller pictures are not drawn

// The view reads its options from the state: section Signal
// (s.options.signal), the option sheet (s.options.parameters), the detector
// (s.options.otmetchick) and the colours (s.options.color).
enum class SignalCursor { None, Free, Bound };  // mnuSignalCursor: neither, "Свободный", "Привязанный"

// The cursor setting (key Cursor: -1 none, 0 free, 1 bound) as the view
// uses it, and back.
SignalCursor CursorOf(const AppState& s);
void SetCursorSetting(AppState& s, SignalCursor cursor);
// The pictures' background: the colour set ColorBackKitSel.
BgrColor ViewBackground(const AppState& s);

// Results of the shaft marker detector for the drawn range. With
// OtmetchickAuto the detector's own level and direction come back here.
struct RotorSpeed {
  double RotorSpeedMin = 0.0;  // rpm
  double RotorSpeedMax = 0.0;
  int RotorPercentMin = 0;     // percent of FreqRotorN
  int RotorPercentMax = 0;
  int OtmetchickLevel = 100;
  int OtmetchickDirect = 1;
  // The stretch in force held fewer than two marks: the speed is the whole
  // record's.
  bool WholeRecord = false;
};

// ---------------------------------------------------------------------------
// Window members and control values. The window keeps one of these and
// copies the control fields into its widgets after each call.
// ---------------------------------------------------------------------------

struct SignalViewState {
  int widthPx = 0;  // picture size, pixels
  int heightPx = 0;

  // Controls.
  int SliderH = 0;  // horizontal zoom 2^SliderH
  int SliderHMax = 14;
  QString SliderHToolTip;
  int SliderV = -1;  // index into AmplitudeScales, -1 "Авто"
  QString SliderVToolTip = QStringLiteral("Авто");
  int timeScroll = 1;  // position in time, in ScrollStep units
  int timeScrollMin = 1;
  int timeScrollMax = 1;
  int timeScrollLargeChange = 1;
  int VScroll1 = 0;  // zero line of FirstChannelActive, pixels
  int VScrollMin = 0;
  int VScrollMax = 0;
  int ScrollStep = 1;

  // Drawing members.
  int CentreSample = 16384;
  double PixelsPerSample = 1.0;
  double PixelsPerUnit = 1.0;
  double PixelsPerUnitFirst = 1.0;

  // Cross-hair and dragging.
  int CursorX = -1;
  int CursorY = -1;
  int CursorSample = 0;
  QString CursorValueText;
  int DragX = -1;
  int DragY = -1;
  bool DragLock = false;
  bool ImpositionLock = false;  // set while RefreshElementsImposition moves controls
  int SelectSaveFirst = 0;
  int SelectSaveLast = 0;

  // Shaft marker results of the last build and the speed text made from them.
  RotorSpeed speed;
  QString RotorSpeedText;
  bool FreqRotorVisible = false;

  // frmViewColorProperty is open: a cursor move fills ColorPropertyValues.
  bool ColorPropertyOpen = false;

  // Least and greatest code of each channel over ViewFirst..ViewLast, kept
  // while neither the samples nor the stretch change (SampleStore's write
  // count): the automatic scales read them.
  struct Extremes {
    uint64_t writeCount = ~uint64_t{0};
    int first = 0, last = 0, rows = 0;
    PerChannel<int16_t> least, greatest;
  } extremes;

  // Zooms taken back by ZoomBack, newest last: zoom and centre sample.
  std::vector<std::pair<int, int>> zoomHistory;
  // The box of a zoom drawn with Ctrl held, pixel columns; -1 when none.
  int ZoomBoxFrom = -1;
  int ZoomBoxTo = -1;

  // One parameter line per channel for the copy header.
  PerChannel<QString> ChannelParameterText;
  // Value texts for frmViewColorProperty, per active channel, from the last
  // cursor move.
  PerChannel<QString> ColorPropertyValues;
};

// ---------------------------------------------------------------------------
// Pure geometry.
// ---------------------------------------------------------------------------

// Entry 0..17 of AmplitudeScales (held to the table).
int AmplitudeScale(int index);
// Step of the time grid, seconds, for visible time T seconds; 0 above 36000 s.
double NiceTimeStep(double visibleSeconds);
// Samples per unit of timeScroll: round(N / 32768) above 32768, else 1.
int ScrollStepFor(int signalDataN);
// Top of SliderH: round(log2(N) - 1), at least 0.
int SliderHMaxFor(int signalDataN);
// 2^SliderH * W / SignalDataN.
double PixelsPerSampleFor(int sliderH, int widthPx, int signalDataN);
// 0.5*H / (4^Volume * ChannelYm), the vertical factor of a channel.
double PixelsPerUnitFor(int heightPx, int volume, int channelYm);
// Pixel column of a sample: (sample - ViewFirst) * PixelsPerSample.
double SampleToX(int sample, int viewFirst, double pixelsPerSample);
// Sample under pixel column x (CursorSample).
int XToSample(int x, int hScroll1, int scrollStep, double pixelsPerSample);
// Sample under x for a selection edge: round(ViewFirst + (ViewLast-ViewFirst) * x / W).
int SelectionSampleAt(double x, int viewFirst, int viewLast, int widthPx);
// Zero lines of the active used channels sharing the height in equal bands:
// round(H*k/n + (H/n)/2) for k = 0..n-1.
std::vector<int> BandCentres(int heightPx, int activeCount);
// Auto scale: the smallest step above the channel's peak in display units,
// times the number of active channels. The steps are the AmplitudeScales
// entries and, past them, the same 1-2-5 steps on, as far as the value fits
// 32 bits; a peak above all of them gets the largest.
int AutoChannelYm(double peakUnits, int activeCount);
// The peak a channel shows between its least and greatest code, in display
// units (no gain): what is drawn is (code - offset) × 1.25 - 4^Volume × Zero
// over Ku, and the offset counts only with AccountOffset.
double DisplayPeak(const ChannelSetup& ch, int channel, double leastCode, double greatestCode, double offsetCodes);
// Time of day text of a moment in seconds: long time form, "." and three
// digits of milliseconds when these are not zero.
QString TimeText(double seconds);
// What the view's clock adds to a time from the start of the store: the
// recording's time of day with ViewRealTime, the block's place in SolidMode.
double ClockOffsetSeconds(const AppState& s);
// Seconds of the view's clock at a sample: sample / FreqDesc plus the offset.
double SampleSeconds(const AppState& s, double sample);
// The speed text of the status panel FreqRotor and the parameter bar.
QString RotorSpeedText(const RotorSpeed& speed);

// ---------------------------------------------------------------------------
// Window operations (no argument in the window; here the state is explicit).
// ---------------------------------------------------------------------------

// On load of the window: the controls for the stored SliderH and timeScroll.
void InitSignalView(const AppState& s, SignalViewState& v);
// Top of SliderH from SignalDataN.
void SetMaxValueMas(const AppState& s, SignalViewState& v);
// Tooltip, ScrollStep, timeScroll range and position, ViewFirst and ViewLast
// from SliderH and CentreSample.
void ConfigSliderH(AppState& s, SignalViewState& v);
// VScroll1 to mid-height, SliderH to 0, timeScroll to 1.
void ResetValueElements(SignalViewState& v);
// Unplaced channels to mid-height; VScroll1 to FirstChannelActive.
void SetY0(AppState& s, SignalViewState& v);
// Controls in line with a new FirstChannelActive.
void RefreshElementsImposition(const AppState& s, SignalViewState& v);
// Equal bands and auto scales (only with AutoY0).
void AccountChannelY0(AppState& s, SignalViewState& v);
// The automatic scale of channel c, from the channel's extremes over the
// stretch in view (worked out anew only when samples or stretch changed).
int AutoScaleOf(const AppState& s, SignalViewState& v, int channel, int activeCount);

// What a drawing needs in the state and the window: places unplaced
// channels, sets PixelsPerSample, PixelsPerUnitFirst, the unit and the speed
// text, and clears the cursor memory. The shaft marks are taken as they are.
void PrepareSignal(AppState& s, SignalViewState& v);
// The picture in the fixed order, from a prepared state. W or H below 50
// gives an empty list.
DrawList DrawSignal(const AppState& s, const SignalViewState& v, const FontMetrics& fm);
// The shaft marker detector for the current range, PrepareSignal and
// DrawSignal.
DrawList BuildSignal(AppState& s, SignalViewState& v, const FontMetrics& fm);
// The selection as an inverted region (appended to a list).
void BuildSelectRegion(const AppState& s, const SignalViewState& v, DrawList& list);
// The cross-hair at CursorX, CursorY, drawn inverted over the picture.
void AppendCrosshair(const SignalViewState& v, DrawList& list);

// ---------------------------------------------------------------------------
// Status bar StatusBar1.
// ---------------------------------------------------------------------------

enum class SignalPanel { Dimension, Scale, Window, Center, Cursor, Level, Select, SelectLen, Y0, BeginPoint, SignalDataN, kCount };

struct SignalStatus {
  std::array<QString, static_cast<size_t>(SignalPanel::kCount)> text;
  bool beginPointEnabled = false;  // also mnuSignalBeginPoint
  bool selectionCommandsEnabled = false;  // mnuSignalDelete, Smoothly, Zero, Memory, Paste
  const QString& operator[](SignalPanel p) const { return text[static_cast<size_t>(p)]; }
};

// The panel texts (calls SetChannelUnit first).
SignalStatus OutInfoToStatusBar(AppState& s, const SignalViewState& v);

// ---------------------------------------------------------------------------
// Events. Each returns what the window must do afterwards, in this order:
// the cheaper or full ViewRefresh, a redraw (BuildSignal), the cross-hair,
// the status bar, the controls.
// ---------------------------------------------------------------------------

struct SignalAction {
  bool viewRefresh = false;   // ViewRefresh of all open views
  bool cheapRefresh = false;  // the cheaper ViewRefresh
  bool redraw = false;        // BuildSignal
  bool crosshair = false;     // repaint the cross-hair overlay
  bool statusBar = false;     // OutInfoToStatusBar
  bool controls = false;      // copy control values to the widgets
  bool popupMenu = false;     // show mnuSignal at the pointer
  bool optionsChanged = false;  // a Signal option flipped: save it
  bool colorProperty = false;   // frmViewColorProperty rows changed
  SignalAction& operator|=(const SignalAction& o);
};

enum class MouseButton { Left, Right, Other };

SignalAction MouseDown(AppState& s, SignalViewState& v, MouseButton b, double x, double y);
// leftHeld: the left button is down during the move.
SignalAction MouseMove(AppState& s, SignalViewState& v, double x, double y, bool leftHeld);
SignalAction MouseUp(AppState& s, SignalViewState& v);
// finished: the scroll bar was released (Change), not dragged (Scroll).
SignalAction HScrollChanged(AppState& s, SignalViewState& v, int position, bool finished);
SignalAction VScrollChanged(AppState& s, SignalViewState& v, int position);
// scrolling: the thumb is still being dragged (only the tooltip follows).
SignalAction SliderHChanged(AppState& s, SignalViewState& v, int position, bool scrolling);
SignalAction SliderVChanged(AppState& s, SignalViewState& v, int position);
SignalAction StatusPanelClicked(AppState& s, SignalViewState& v, SignalPanel panel, MouseButton b);
// SetTypeCursorViewSignal: flips entry Free or Bound, clears the selection.
SignalAction SetTypeCursorViewSignal(AppState& s, SignalViewState& v, SignalCursor entry);
// SignalLineCenter, SignalBeginPoint.
SignalAction SignalLineCenter(AppState& s);
SignalAction SignalBeginPoint(AppState& s);
// What the free cursor reads at pixel row y: the current channel's level, or
// with channels overlaid, the level of the trace whose zero line is nearest,
// in that trace's own unit ("№3: 12 мкм").
QString FreeCursorReading(const AppState& s, const SignalViewState& v, double y);
// Pointer over the picture: true for the cross icon.
bool CrossPointer(const AppState& s);

// Zoom by `steps` powers of two (in for positive), the sample under pixel
// column x staying under it; each zoom is remembered for ZoomBack.
SignalAction ZoomAround(AppState& s, SignalViewState& v, double x, int steps);
// The deepest zoom that shows samples first..last, centred on them.
SignalAction ZoomToStretch(AppState& s, SignalViewState& v, int first, int last);
// Back to the zoom and place before the last zoom; nothing when none.
SignalAction ZoomBack(AppState& s, SignalViewState& v);
// The whole store in view.
SignalAction ShowAll(AppState& s, SignalViewState& v);
// Moves the view by a number of pixels (positive: later in time).
SignalAction PanBy(AppState& s, SignalViewState& v, double pixels);
// A continuous recording: the stretch in view ends at newestRow, or begins at
// the first row while fewer rows than its width are in, so that what each
// refresh computes over it costs as much at the tenth minute of the run as
// at the first second. startRows > 0: first the widest zoom whose stretch
// holds at most that many rows.
void FollowNewestRow(AppState& s, SignalViewState& v, int newestRow, int startRows);
// The zoom box drawn with Ctrl held: start, drag, and on release the zoom to
// its stretch. AppendZoomBox puts it over the picture.
void StartZoomBox(SignalViewState& v, double x);
void DragZoomBox(SignalViewState& v, double x);
SignalAction EndZoomBox(AppState& s, SignalViewState& v);
void AppendZoomBox(const SignalViewState& v, DrawList& list);

// ---------------------------------------------------------------------------
// LayoutForSize: where the bars go in the window's inner area.
// ---------------------------------------------------------------------------

struct PixelRect {
  int left = 0, top = 0, width = 0, height = 0;
  bool visible = false;
};

struct SignalLayout {
  PixelRect picture, sliderH, sliderV, hScroll, vScroll, statusBar, statusBarParameter;
  bool moved = false;  // false: the inner area was too small, nothing moves
};

struct SignalBarSizes {
  int statusBarPx = 22;
  int parameterBarPx = 22;
  int scrollPx = 17;
  int sliderPx = 24;
};

SignalLayout LayoutForSize(int innerWidthPx, int innerHeightPx, const SignalOptions& o, const SignalBarSizes& bars = {});

}  // namespace aqx::views
