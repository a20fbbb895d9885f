#pragma once
// frmPlayerSound without its widgets: the conversion rates it offers, what
// it tells about the file it plays, and its picture of the active channel
// with the mark of the playing position.

#include "core/AppState.h"
#include "views/Primitives.h"

#include <QString>

#include <array>

namespace aqx::views {

struct WaveRate {
  const char* text;
  int samplesPerSecond;
};
inline constexpr std::array<WaveRate, 9> kWaveRates = {{{"8,000 кГц    128 кбит/с", 8000},
                                                         {"11,025 кГц   176 кбит/с", 11025},
                                                         {"12,000 кГц   192 кбит/с", 12000},
                                                         {"16,000 кГц   256 кбит/с", 16000},
                                                         {"22,050 кГц   353 кбит/с", 22050},
                                                         {"24,000 кГц   384 кбит/с", 24000},
                                                         {"32,000 кГц   512 кбит/с", 32000},
                                                         {"44,100 кГц   705 кбит/с", 44100},
                                                         {"48,000 кГц   768 кбит/с", 48000}}};

// The row of FreqDescWaveN held to the table.
int WaveRateRow(const AppState& s);
// Seconds the active channel sounds at the rate of the row.
double PlaySeconds(const AppState& s, int row);
// txtInfo: "Частота дескритизации: " + rate + " Гц" and the length.
QString PlayerInfoText(const AppState& s, int row);
// The channel's least and greatest code over each column, and the playing
// position (0..1, negative: none) as a vertical line.
DrawList PlayerPicture(const AppState& s, int channel, int widthPx, int heightPx, double position);

}  // namespace aqx::views
