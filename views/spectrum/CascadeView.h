#pragma once
// The cascade of spectra (frmViewSpectrum) without a toolkit: the store of
// the active channel in equal parts, a spectrum each, drawn one behind the
// other in a three-sided box whose corner the user moves with the mouse.

#include "core/AppState.h"
#include "views/Primitives.h"
#include "views/signal/SignalView.h"

#include <QString>

#include <utility>
#include <vector>

namespace aqx::views {

inline constexpr int kCascadeMarginPx = 30;
inline constexpr int kCascadeMinParts = 2;
inline constexpr int kCascadeMaxParts = 32;

struct CascadeViewState {
  int widthPx = 0;
  int heightPx = 0;
  int CascadeN = 4;  // parts, a power of two
  int Xc = 0;        // the box's corner the mouse moves: top right of the
  int Yc = 0;        // nearest plane, pixels
  double CascadeMax = 0.0;  // largest amplitude over all parts
  int Scale = 0;            // amplitude scale E, 0: none fits
  double UnitsPerPixel = 0.0;
  // Each part's spectrum as the largest amplitude per column of the plane
  // (-1 where no line falls), made for PartWidthPx columns.
  std::vector<std::vector<float>> parts;
  int PartWidthPx = 0;
  bool Dragging = false;
};

// Geometry of the box: each plane is BoxW x BoxH; the nearest stands on the
// margins at the left and the bottom with its top right at (Xc, Yc), the
// farthest has its top right in the picture's top right corner.
struct CascadeBox {
  int BoxW = 0;
  int BoxH = 0;
  double depthX = 0.0;  // from the nearest plane to the farthest
  double depthY = 0.0;  // (upwards: negative)
};
CascadeBox CascadeBoxFor(int widthPx, int heightPx, int xc, int yc);
// Bottom left of the plane of part k (0 the first part of the store, the
// farthest), of count parts.
std::pair<double, double> PlaneOrigin(const CascadeBox& box, int heightPx, int part, int count);
// The corner goes where the pointer is only 30 pixels or more from every edge.
bool CornerAccepted(int widthPx, int heightPx, double x, double y);
// The stored corner: W / ratio and H / ratio (defaults 1.4 and 1.9), and back.
void PlaceCorner(CascadeViewState& v, double ratioX, double ratioY);
std::pair<double, double> CornerRatios(const CascadeViewState& v);
// "Каскад спектров (Спектров: N)".
QString CascadeCaption(int count);
// Toolbar Plus and Minus: doubling up to 32, halving down to 2.
int CascadePlus(int count);
int CascadeMinus(int count);

// Samples per part: round(SignalDataN / CascadeN).
int CascadePartSamples(int signalDataN, int count);
// Every part's spectrum (the settings' block and window), its column maxima
// and the scale over all parts; the unit of the scale. Nothing is kept of a
// part's spectrum but its columns.
void PrepareCascade(AppState& s, CascadeViewState& v);
// Frame; for a marker channel or with imposition only that. Then the planes
// far to near, each hiding what lies behind it, and the box with its grids.
DrawList DrawCascade(const AppState& s, const CascadeViewState& v);

// StatusBar1: "D: " + unit, "G: Гистограмма " or "G: График ".
std::pair<QString, QString> CascadeStatusTexts(const AppState& s);

}  // namespace aqx::views
