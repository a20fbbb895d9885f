#pragma once
// What the built-in modules are told from outside: which backend, and for the
// virtual module the hydro unit it imitates and the failure it should show.
// The values come from environment variables; AQX_VIRTUAL_SETTINGS may name a
// file of KEY=value lines with the same keys (an environment variable wins).
// The keys and their defaults are listed in ModuleSettings.cpp.

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace aqx::acq {

// Signal of one input. The first ten follow the channel types of the
// program; the rest are plain test signals.
enum class SignalKind : int {
  RunOut = 0,
  Vibration,
  Strain,
  Marker,
  TurnProbe,
  Voltage,
  Pressure,
  Temperature,
  Displacement,
  Power,
  Counter,      // code = row number since the start, wrapping in 14 bits
  CounterHigh,  // code = row number / 16384, wrapping in 14 bits
  Zero,
  Dc,    // constant millivolts
  Sine,  // frequencyHz, millivolts amplitude
};

struct ChannelScenario {
  SignalKind kind = SignalKind::RunOut;
  double frequencyHz = 0.0;
  double millivolts = 0.0;
};

inline constexpr int kScenarioChannels = 32;

struct ModuleSettings {
  std::string backend = "virtual";  // "virtual" or "replay"
  std::string replayFile;

  std::array<ChannelScenario, kScenarioChannels> channels{};

  // The unit.
  double rpm = 150.0;
  int poles = 40;
  int blades = 15;
  double mainsHz = 50.0;
  double wanderPercent = 0.3;

  // Amplitudes at the module's input, millivolts.
  double runOutMv = 400.0;
  double runOut2Mv = 100.0;
  double runOutOffsetMv = 4000.0;
  double vibrationMv = 60.0;
  double broadbandMv = 25.0;
  double markerMv = 5000.0;
  double turnMv = 2000.0;
  // A small random spread, and a few poles far enough off to show in the
  // rotor form: one past the red limit, two in the yellow band.
  double poleSpreadPercent = 0.5;
  std::vector<std::pair<int, double>> poleDeviations{{7, 6.0}, {23, -9.0}, {31, 4.0}};  // pole from 1, percent
  double noiseMv = 3.0;
  // Calibration on a standing shaft: with a gap set (>= 0) every run-out
  // probe reads the level of that gap, rising gapMvPerMicrometre per
  // micrometre from -8000 mV at contact, at half that slope past
  // gapLinearMicrometres, where such probes leave their linear range.
  double gapMicrometres = -1.0;
  double gapMvPerMicrometre = 4.0;
  double gapLinearMicrometres = 3000.0;
  std::array<bool, kScenarioChannels> overload{};

  // Failure to show: an error number of the library, at its step; for 20
  // (module read) and 27 (file write) only after this many rows.
  int failNumber = 0;
  int64_t failAfterRows = 0;

  std::string moduleName = "E140";
  std::string serialNumber = "VR000001";
  uint16_t ttlIn = 0;  // input lines while the outputs are high-impedance
  uint64_t seed = 1;
};

using SettingLookup = std::function<std::optional<std::string>(const std::string& key)>;

// The default channel scenarios: 1 marker, 2..7 run-out in pairs, 8..9
// vibration, 10 turn probe, 11..15 process signals, 16 strain, and the same
// again from 17 with run-out in place of the marker.
std::array<ChannelScenario, kScenarioChannels> DefaultScenarios();
// Parses a comma-separated list of channel signals, channel 1 first; missing
// entries keep the default. Tokens: a type number 0..9 or runout, vibration,
// strain, marker, turn, voltage, pressure, temperature, displacement, power,
// counter, counterhigh, zero, dc:<mV>, sine:<Hz>:<mV>.
void ParseScenarios(const std::string& text, std::array<ChannelScenario, kScenarioChannels>& out);

// Settings from a key lookup (full names, such as "AQX_VIRTUAL_RPM").
ModuleSettings ParseModuleSettings(const SettingLookup& lookup);
// Settings from the environment and the optional settings file.
ModuleSettings LoadModuleSettings();

}  // namespace aqx::acq
