#pragma once
// Fixed vocabulary of the domain, built once and constant afterwards.

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>

namespace aqx {

struct NamedColor {
  const char* name;  // "Русское / English"
  int red, green, blue;
};

inline constexpr int kSensorTypeCount = 10;
inline constexpr int kAmplitudeScaleCount = 18;
inline constexpr int kColorListCount = 64;

struct Vocabulary {
  std::array<double, kAmplitudeScaleCount> AmplitudeScales{};
  QStringList SensorTypeList;   // 0..9
  QStringList SensorUnitList;   // base unit of each type
  QStringList VolumeList;       // 0..3
  QStringList PlaceList;        // 17 rows
  QStringList DirectList;       // 11 rows
  QStringList StationList;      // 11 rows, site data
  QStringList ModeList;         // 39 rows
  QStringList ColorNameList;    // 64 rows
  std::array<uint32_t, kColorListCount> ColorList{};  // red-green-blue as 0xRRGGBB
};

// Builds the tables; the application keeps the one result for its lifetime.
Vocabulary BuildVocabulary();

// Default colour of channel 1..32 as a blue-green-red word.
int32_t ChannelColorDefault(int channel);

// Colour words: the blue-green-red word of the files and settings to and from
// red, green, blue.
inline int32_t BgrWord(int red, int green, int blue) {
  return static_cast<int32_t>((blue << 16) | (green << 8) | red);
}
inline int BgrRed(int32_t w) { return w & 0xFF; }
inline int BgrGreen(int32_t w) { return (w >> 8) & 0xFF; }
inline int BgrBlue(int32_t w) { return (w >> 16) & 0xFF; }

// A background colour set (mnuViewColorBack): a colour (parts 0..2, red,
// green, blue) and its strength (part 3, 0..255) over white, as a
// blue-green-red word.
int32_t ColorBackBgr(const std::array<int32_t, 4>& parts);

// Label of the spectrum band by ScaleSpectr 0..3 and the number of tick
// positions of its frequency axis.
struct BandLabelResult {
  QString label;
  int tickCount = 0;
};
BandLabelResult BandLabel(int scaleSpectr);

}  // namespace aqx
