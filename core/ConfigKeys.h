#pragma once
// Where each setting of the shared state lives in the settings store: the
// section, the key, the default that stands when the key is missing, the
// field it fills, and for an option that a menu ticks, the menu entry. The
// scalar table is one run of rows per section, in the order in which the
// settings load reads them after the fixed first group; loading, saving, the
// menu entries that tick options and their check marks all come from it, so
// a new option is a new row. The per-channel table lists the keys that carry
// a channel number 1..32.

#include "core/AppState.h"
#include "core/Settings.h"

#include <QString>

#include <limits>
#include <span>
#include <variant>
#include <vector>

namespace aqx {

// Section names.
inline constexpr char kSectionConfig[] = "Config";
inline constexpr char kSectionChannel[] = "Channel";
inline constexpr char kSectionProbeFreq[] = "ProbeFreq";
inline constexpr char kSectionFilter[] = "Filter";
inline constexpr char kSectionRemark[] = "Remark";
inline constexpr char kSectionSignal[] = "Signal";
inline constexpr char kSectionSpectr[] = "Spectr";
inline constexpr char kSectionSpectrum[] = "Spectrum";
inline constexpr char kSectionTraectoria[] = "Traectoria";
inline constexpr char kSectionParameters[] = "Parameters";
inline constexpr char kSectionColor[] = "Color";
inline constexpr char kSectionSynchro[] = "Synchro";
inline constexpr char kSectionSensor[] = "Sensor";
inline constexpr char kSectionOtmetchick[] = "Otmetchick";
inline constexpr char kSectionFormaRotor[] = "FormaRotor";
inline constexpr char kSectionMarker[] = "Marker";
inline constexpr char kSectionLineka[] = "Lineka";
inline constexpr char kSectionRecent[] = "Recent";

using SettingField = std::variant<int32_t*, bool*, float*, double*, QString*>;

// The control that shows an option: the entry of a menu that ticks it
// ("mnu..."), or a control of the option sheet ("chk...", "txt...", "cmd...").
struct OptionMenuEntry {
  const char* caption = nullptr;     // nullptr: no entry of its own
  const char* objectName = nullptr;  // "mnuSignalLineZero"
  int group = 0;                     // menu: groups a separator apart; sheet: its tab
};

struct SettingKey {
  const char* section;
  const char* key;
  // The default as the key table states it, with a decimal point; numbers
  // are shown to the user in the locale's form (DefaultSettingText).
  const char* defaultText;
  SettingField (*field)(AppState& s);
  OptionMenuEntry menu{};
  // Integers outside this range are refused like text that is no number:
  // the field keeps its value. Guards the fields that index tables.
  int32_t minValue = std::numeric_limits<int32_t>::min();
  int32_t maxValue = std::numeric_limits<int32_t>::max();
};

struct ChannelSettingKey {
  const char* key;  // the channel number follows it
  const char* defaultText;  // nullptr: the channel's colour from ChannelColorDefault
  SettingField (*field)(ChannelSetup& ch, int channel);
  int32_t minValue = std::numeric_limits<int32_t>::min();
  int32_t maxValue = std::numeric_limits<int32_t>::max();
};

// Scalar keys in load order (the fixed first group excluded).
std::span<const SettingKey> ScalarSettingKeys();
// Per-channel keys of section Channel.
std::span<const ChannelSettingKey> ChannelSettingKeys();

// The scalar key of that section and name, or nullptr.
const SettingKey* FindSettingKey(const QString& section, const QString& key);
// The rows of one section that a menu or the option sheet shows, in table
// order.
std::vector<const SettingKey*> MenuOptions(const char* section);
// A boolean option's value in the state; false for a row that holds no flag.
bool OptionFlag(const AppState& s, const SettingKey& key);
// Flips a boolean option in the state and saves it.
void FlipOptionFlag(AppState& s, SettingsStore& store, const SettingKey& key);
// False for text the load would refuse for a key with a range (an integer
// outside it, or no integer); any text for other keys.
bool SettingTextAccepted(const QString& section, const QString& key, const QString& text,
                         const QLocale& locale);

// The default in the form the store holds it: "83,3" with a decimal comma.
QString DefaultSettingText(const char* defaultText, const QLocale& locale);

// Key names that carry numbers.
QString ChannelKey(const char* key, int channel);                 // "Ku7"
QString ProbeFreqKey(int channel, int entry);                     // "ProbeFreq3N5"
QString FilterKey(int channel, int entry);                        // "Filter3N2"
QString RemarkKey(int number);                                    // "Remark0".."Remark27"
QString ColorTypeKitKey(int type);                                // "ColorTypeKit0".."9"
QString ColorBackKitKey(int set, int part);                       // "ColorBackKit00".."53"
QString MarkerKey(const char* key, int number);                   // "MarkerDate1"

// One field from its key: a missing key gives the default, text that is no
// number (or out of range) leaves the field as it was (false).
bool ReadSettingKey(const SettingsStore& store, const SettingKey& key, AppState& s);
void WriteSettingKey(SettingsStore& store, const SettingKey& key, const AppState& s);
bool ReadChannelSettingKey(const SettingsStore& store, const ChannelSettingKey& key,
                           ChannelSetup& ch, int channel);
void WriteChannelSettingKey(SettingsStore& store, const ChannelSettingKey& key,
                            const ChannelSetup& ch, int channel);

}  // namespace aqx
