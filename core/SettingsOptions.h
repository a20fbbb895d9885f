#pragma once
// Options that live in the settings store and steer display and analysis:
// the check marks of the view menus, the option sheet, colours and the shaft
// marker detector. Grouped by the section that stores them; each field has
// the key's name and its default. Options that other code already reads from
// AppState directly (SaveProbe, ReminderFileSave, AccountOffset, the Synchro
// keys and the like) stay there and are not repeated here.

#include <QString>

#include <array>
#include <cstdint>

namespace aqx {

inline constexpr int kColorTypeKitCount = 10;  // one per sensor type
inline constexpr int kColorBackKitSets = 6;    // mnuViewColorBack 0..5
inline constexpr int kColorBackKitParts = 4;

// Section Config, beyond the recording parameters.
struct ConfigOptions {
  int32_t ScaleSpectr = 2;           // spectrum band 0..3
  QString BandLabelText = QStringLiteral("0-1кГц");  // follows ScaleSpectr
  int32_t BandTickCount = 28;
  // Colour index into ColorList for each sensor type 0..9.
  std::array<int32_t, kColorTypeKitCount> ColorTypeKit{5, 56, 33, 41, 57, 9, 1, 53, 4, 57};
  int32_t FreqDescWaveN = 8;         // playback rate choice
  float TimeRefresh = 0.25f;         // seconds between data refreshes of a run
  bool ViewToolbarMain = true;
  bool ViewToolbarChannels = true;
  bool ViewStatusBar = true;
  bool ViewFiles = false;
  int32_t ColorBackKitSel = 1;       // background colour set 0..5
  std::array<std::array<int32_t, kColorBackKitParts>, kColorBackKitSets> ColorBackKit{{
      {103, 193, 0, 3},
      {111, 194, 57, 39},
      {131, 163, 25, 96},
      {152, 254, 58, 48},
      {144, 254, 221, 250},
      {124, 242, 116, 222},
  }};
  bool Advice = true;                // tip of the day at start
  int32_t AdviceN = 0;
  int32_t StartUpPicture = 1;
  int32_t ProbeType = 0;             // unit of the probe table: 0 Hz, 1 harmonic
  int32_t FilterType = 0;            // unit of the filter table
  // Spectrum analyser: window 0 "Нет", 1..8 (Hanning first), its alpha
  // parameter and the overlap of the blocks in percent.
  int32_t SmoothingWindow = 1;
  double AlphaParametr = 0.0;
  int32_t Overlapping = 50;
  int32_t ParametersTab = 0;         // the option sheet's tab shown last
};

// Section Signal: the check marks of the signal view's menu.
struct SignalOptions {
  bool StatusBarParameter = true;
  bool Control = true;
  bool StatusBar = true;
  bool ScaleX = true;
  bool ScaleY = true;
  int32_t Cursor = -1;               // cursor kind, -1 none
  bool Otmetchick = true;
  bool OtmetchickLine = true;
  bool SignalViewColorProperty = true;
  bool LineCenter = false;
  bool LineZero = true;
  bool BeginPoint = false;
  double Corner = 0.0;               // last angle of the phase shift, degrees
};

// Section Spectr: the spectrum view.
struct SpectrOptions {
  bool StatusBarParameter = true;
  bool StatusBar = true;
  int32_t Cursor = -1;
  bool ViewGarmonic = false;
  bool ViewLinesProbeFreq = false;
  int32_t SpectrViewType = 1;
  int32_t Evaluation = 0;            // 0 none, 1..3 the ticked entry of mnuSpectrEvaluation
  int32_t GarmonicaN = 10;           // harmonic lines drawn, 1..10
};

// Section Spectrum: the cascade of spectra.
struct SpectrumOptions {
  bool StatusBar = true;
  int32_t SpectrumViewType = 1;
};

// Section Traectoria: the trajectory view.
struct TraectoriaOptions {
  bool StatusBar = true;
  bool Cursor = false;               // cursor mode instead of panning
  bool CenterRotor = true;
  bool TraectoriaFirstGarmonic = false;
  bool TraectoriaOtmetchick = true;
  bool BeginPoint = true;
  int32_t ScaleXY = -1;              // the window's scale, kept between its openings
};

// Section Parameters: the option sheet (AccountOffset, ReminderConvertFile
// and ReminderFileSave are AppState members).
struct ParameterOptions {
  bool VisibleChannels = true;
  bool ColorType = true;
  bool FileLastLoad = false;
  bool AutoY0 = true;
  bool ViewRealTime = false;
  bool StatusFilterConst = true;
  bool StatusFilterBienie = false;
  bool SignalParameterMax = true;
  bool SolidClerData = false;
  bool ReminderOverload = true;
  bool ReminderClearenceMin = true;
  int32_t ValueClearenceMin = 500;   // micrometres
  bool ReminderClearenceMax = true;
  int32_t ValueClearenceMax = 4000;  // micrometres
};

// Section Color: named colours as blue-green-red words.
struct ColorOptions {
  int32_t ColorLineOtmetchick = 0x0000FF;
  int32_t ColorLinePorogOtmetchick = 0x008000;
  int32_t ColorLineCenterSignal = 0x808080;
  int32_t ColorBeginPoint = 0xFF0000;
  int32_t ColorLineY0Signal = 0x000000;
  int32_t ColorGrid = 0xC0C0C0;
  int32_t ColorLineSynchro = 0x800080;
  int32_t ColorCarsetSpectrum = 0x000000;
  int32_t ColorText = 0x000000;
  int32_t ColorLinesGarmonic = 0xFF0000;
  int32_t ColorLinesProbeFreq = 0x008000;
};

// Section Otmetchick: the shaft marker detector. With OtmetchickAuto the
// detector writes the level and direction it found back.
struct OtmetchickOptions {
  int32_t OtmetchickAuto = 1;
  int32_t OtmetchickLevel = 100;     // ADC code
  int32_t OtmetchickDirect = 1;      // 1 rising
  int32_t OtmetchickDrebezg = 10;
  int32_t OtmetchickNoise = 100;
};

// Section FormaRotor: the rotor form, its diagram and form spectrum.
struct FormaRotorOptions {
  int32_t FormaView = 1;             // 0 sectors, 1 line
  bool FormaViewColor = false;       // one colour instead of colouring by limits
  bool FormaViewScale = false;       // circles at the limits
  bool FormaValue = false;           // numbers on the plot
  int32_t SpicaN = 8;                // spokes 1..36
  int32_t SpicaP = 1;                // pole of the first spoke 1..360
  int32_t SpicaD = 1;                // 0 "левое", else "правое"
  bool SpicaV = true;                // spokes drawn
  int32_t DiagramaViewType = 1;      // 1 bars, 2 line
  int32_t DiagramaView = 1;          // 1 plain, 2 with each pole's least and greatest
  bool DiagramaViewColor = false;
  bool DiagramaViewScale = false;
  bool DiagramaValue = false;
  bool SpectrFormsValue = false;
};

struct SettingsOptions {
  ConfigOptions config;
  SignalOptions signal;
  SpectrOptions spectr;
  SpectrumOptions spectrum;
  TraectoriaOptions traectoria;
  ParameterOptions parameters;
  ColorOptions color;
  OtmetchickOptions otmetchick;
  FormaRotorOptions formaRotor;
};

}  // namespace aqx
