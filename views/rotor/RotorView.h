#pragma once
// The three rotor form windows without a toolkit: frmViewFormaRotor (one
// form as a polar plot around the poles), frmViewFormaRotorDiagram (the same
// percents laid out flat) and frmViewFormaRotorSpectr (the first nine
// harmonics of a form). Each draws a const state and the results of the
// last FormaRotorAccount into a DrawList.

#include "core/AppState.h"
#include "core/Vocabulary.h"
#include "views/Primitives.h"
#include "views/rotor/RotorForm.h"

#include <QString>
#include <QStringList>

namespace aqx::views {

// ---------------------------------------------------------------------------
// Geometry and colours.
// ---------------------------------------------------------------------------

inline constexpr BgrColor kOneColour = 0xFFFF00;  // every stroke of the one-colour option
inline constexpr BgrColor kLimitGreen = 0x00FF00;
inline constexpr BgrColor kLimitYellow = 0x00FFFF;
inline constexpr BgrColor kLimitRed = 0x0000FF;

// Green when both |a| and |b| are at most 3 percent, red when either is at
// least 8, yellow between.
BgrColor ColorByLimits(double a, double b);

// The polar plot of a picture: centre, outer radius R (that of +V percent),
// ring step s = R/6 and the zero ring r0 = round(R - s).
struct RotorGeometry {
  int cx = 0;
  int cy = 0;
  double R = 0.0;
  double ringStep = 0.0;
  int zeroRadius = 0;
};
RotorGeometry RotorGeometryFor(int widthPx, int heightPx, int textHeightPx);
// Radius of a percent value at V percent a ring, the value held to -5V..V.
double PercentRadius(const RotorGeometry& g, double percent, int percentPerRing);
// Angle of pole 1..Polus in radians: pole 1 at the top, clockwise on screen.
double PoleAngle(int pole, int polus);
// Angle of spoke 1..SpicaN: the first on pole SpicaP, the rest 2π/SpicaN
// apart, clockwise for "правое" (SpicaD non-zero), else the other way.
double SpokeAngle(int spoke, int spicaP, int spicaN, int spicaD, int polus);
// Where the first-harmonic cross stands: radius A s / V at the phase + π,
// sine for x and cosine for y.
struct PointF {
  double x = 0.0;
  double y = 0.0;
};
PointF FirstHarmonicPoint(const RotorGeometry& g, double amplitude, double phaseDeg, int percentPerRing);

// ---------------------------------------------------------------------------
// Window members.
// ---------------------------------------------------------------------------

inline constexpr int kPercentPerRingMin = 1;
inline constexpr int kPercentPerRingMax = 20;
inline constexpr int kPercentPerRingStart = 5;

// One struct serves the three windows; the spectrum has no VScroll.
struct FormaViewState {
  int widthPx = 0;
  int heightPx = 0;
  int HScroll = 0;     // form index 0..FormaRotorN
  int HScrollMax = 0;
  int VScroll = kPercentPerRingStart;  // percent per ring (range), 1..20
};

// InitData: the form brought back within 0..FormaRotorN.
void InitFormaData(const FormaRotorResults& r, FormaViewState& v);

struct FormaStatus {
  QString Form;     // "Средняя форма" or "Форма №" + number
  QString PrPi;     // distortion "Standard" + "%"
  QString NobForm;  // speed "Standard" + " об/мин"
};
FormaStatus PrintToStatusbar(const FormaRotorResults& r, int form);

// The text block above a copied picture: the object, the form's speed, the
// turn probe, and the window's caption with the form and its distortion.
QStringList FormaCopyHeader(const AppState& s, const Vocabulary& vocab, const FormaRotorResults& r, int form,
                            const QString& caption);

// The pictures. Under 50 pixels in width or height only a short note; with
// no form, the reason in the middle of the frame.
DrawList DrawFormaRotor(const AppState& s, const FormaRotorResults& r, const FormaViewState& v, const FontMetrics& fm);
DrawList DrawFormaRotorDiagram(const AppState& s, const FormaRotorResults& r, const FormaViewState& v,
                               const FontMetrics& fm);
DrawList DrawFormaSpectrForms(const AppState& s, const FormaRotorResults& r, const FormaViewState& v,
                              const FontMetrics& fm);

// The start the three pictures share: size, background and, when there is
// nothing to draw, the note or the reason with the frame. False: the list is
// complete.
bool FormaPictureStart(const AppState& s, const FormaRotorResults& r, const FormaViewState& v, const FontMetrics& fm,
                       DrawList& list);

// The opening rule of the three windows: the data stand while one of them
// is open; otherwise FormaRotorAccount runs first and a window opens on 0.
bool FormaRotorDataStands(const AppState& s);

}  // namespace aqx::views
