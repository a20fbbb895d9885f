#include "engine/acquisition/ModuleSettings.h"

#include <cctype>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <type_traits>

// Keys, all optional:
//   AQX_MODULE                    "virtual" (default) or "replay"
//   AQX_REPLAY_FILE               .aqx file the replay backend plays
//   AQX_VIRTUAL_SETTINGS          file of KEY=value lines with these keys
//   AQX_VIRTUAL_CHANNELS          signals of channels 1.., see ParseScenarios
//   AQX_VIRTUAL_RPM               shaft speed, rev/min (150)
//   AQX_VIRTUAL_POLES             rotor poles (40)
//   AQX_VIRTUAL_BLADES            runner blades (15)
//   AQX_VIRTUAL_MAINS_HZ          mains frequency (50)
//   AQX_VIRTUAL_WANDER            slow speed wander, percent (0.3)
//   AQX_VIRTUAL_RUNOUT_MV         run-out 1x amplitude (400)
//   AQX_VIRTUAL_RUNOUT2_MV        run-out 2x amplitude (100)
//   AQX_VIRTUAL_RUNOUT_OFFSET_MV  run-out probe gap voltage (4000)
//   AQX_VIRTUAL_VIBRATION_MV      vibration 1x amplitude (60)
//   AQX_VIRTUAL_BROADBAND_MV      vibration broadband rms (25)
//   AQX_VIRTUAL_MARKER_MV         marker pulse height (5000)
//   AQX_VIRTUAL_TURN_MV           turn-probe pulse height (2000)
//   AQX_VIRTUAL_POLE_SPREAD       random pole-to-pole spread, percent (0.5)
//   AQX_VIRTUAL_POLE_DEVIATION    "pole:percent,..." fixed deviations, pole from 1
//                                 ("7:6,23:-9,31:4"; an empty text for none)
//   AQX_VIRTUAL_NOISE_MV          noise rms on every input (3)
//   AQX_VIRTUAL_GAP_UM            shaft standing, run-out probes at this gap (unset)
//   AQX_VIRTUAL_GAP_MV_PER_UM     the probes' slope over the gap (4)
//   AQX_VIRTUAL_GAP_LINEAR_UM     end of their linear range (3000)
//   AQX_VIRTUAL_OVERLOAD          channels driven far past their range: "all" or "2,5"
//   AQX_VIRTUAL_FAIL              error number to provoke at its step
//   AQX_VIRTUAL_FAIL_AFTER_ROWS   rows before an injected 20 or 27 strikes (0)
//   AQX_VIRTUAL_NAME              module name the module reports ("E140")
//   AQX_VIRTUAL_SERIAL            serial number ("VR000001")
//   AQX_VIRTUAL_TTL_IN            input lines while outputs are high-impedance (0)
//   AQX_VIRTUAL_SEED              noise seed (1)

namespace aqx::acq {

namespace {

std::string Trim(const std::string& s) {
  size_t a = 0, b = s.size();
  while (a < b && std::isspace(static_cast<unsigned char>(s[a]))) ++a;
  while (b > a && std::isspace(static_cast<unsigned char>(s[b - 1]))) --b;
  return s.substr(a, b - a);
}

std::string Lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

std::vector<std::string> Split(const std::string& s, char sep) {
  std::vector<std::string> parts;
  std::string part;
  std::istringstream in(s);
  while (std::getline(in, part, sep)) parts.push_back(Trim(part));
  return parts;
}

std::optional<double> ToDouble(const std::string& s) {
  const std::string t = Trim(s);
  if (t.empty()) return std::nullopt;
  char* end = nullptr;
  const double v = std::strtod(t.c_str(), &end);
  if (end == t.c_str() || *end != '\0') return std::nullopt;
  return v;
}

std::optional<int64_t> ToInteger(const std::string& s) {
  const std::string t = Trim(s);
  int64_t v = 0;
  const int base = t.rfind("0x", 0) == 0 ? 16 : 10;
  const char* first = t.data() + (base == 16 ? 2 : 0);
  const auto [ptr, ec] = std::from_chars(first, t.data() + t.size(), v, base);
  if (ec != std::errc() || ptr != t.data() + t.size() || first == ptr) return std::nullopt;
  return v;
}

std::optional<ChannelScenario> ParseToken(const std::string& token) {
  static_assert(static_cast<int>(SignalKind::Power) == 9);
  const std::vector<std::string> parts = Split(Lower(token), ':');
  if (parts.empty() || parts[0].empty()) return std::nullopt;
  const std::string& name = parts[0];
  if (const auto n = ToInteger(name)) {
    if (*n < 0 || *n > 9) return std::nullopt;
    return ChannelScenario{static_cast<SignalKind>(*n)};
  }
  const std::map<std::string, SignalKind> names = {
      {"runout", SignalKind::RunOut},        {"vibration", SignalKind::Vibration},
      {"strain", SignalKind::Strain},        {"marker", SignalKind::Marker},
      {"turn", SignalKind::TurnProbe},       {"voltage", SignalKind::Voltage},
      {"pressure", SignalKind::Pressure},    {"temperature", SignalKind::Temperature},
      {"displacement", SignalKind::Displacement}, {"power", SignalKind::Power},
      {"counter", SignalKind::Counter},      {"counterhigh", SignalKind::CounterHigh},
      {"zero", SignalKind::Zero},            {"dc", SignalKind::Dc},
      {"sine", SignalKind::Sine}};
  const auto it = names.find(name);
  if (it == names.end()) return std::nullopt;
  ChannelScenario s{it->second};
  if (s.kind == SignalKind::Dc) {
    const auto mv = parts.size() > 1 ? ToDouble(parts[1]) : std::nullopt;
    if (!mv) return std::nullopt;
    s.millivolts = *mv;
  } else if (s.kind == SignalKind::Sine) {
    const auto hz = parts.size() > 1 ? ToDouble(parts[1]) : std::nullopt;
    const auto mv = parts.size() > 2 ? ToDouble(parts[2]) : std::nullopt;
    if (!hz || !mv) return std::nullopt;
    s.frequencyHz = *hz;
    s.millivolts = *mv;
  }
  return s;
}

}  // namespace

std::array<ChannelScenario, kScenarioChannels> DefaultScenarios() {
  const SignalKind first[16] = {
      SignalKind::Marker,    SignalKind::RunOut,    SignalKind::RunOut,      SignalKind::RunOut,
      SignalKind::RunOut,    SignalKind::RunOut,    SignalKind::RunOut,      SignalKind::Vibration,
      SignalKind::Vibration, SignalKind::TurnProbe, SignalKind::Power,       SignalKind::Voltage,
      SignalKind::Pressure,  SignalKind::Temperature, SignalKind::Displacement, SignalKind::Strain};
  std::array<ChannelScenario, kScenarioChannels> out{};
  for (int i = 0; i < kScenarioChannels; ++i) {
    const SignalKind k = first[i % 16];
    out[static_cast<size_t>(i)].kind = (i >= 16 && k == SignalKind::Marker) ? SignalKind::RunOut : k;
  }
  return out;
}

void ParseScenarios(const std::string& text, std::array<ChannelScenario, kScenarioChannels>& out) {
  const std::vector<std::string> tokens = Split(text, ',');
  for (size_t i = 0; i < tokens.size() && i < out.size(); ++i)
    if (const auto s = ParseToken(tokens[i])) out[i] = *s;
}

ModuleSettings ParseModuleSettings(const SettingLookup& lookup) {
  ModuleSettings s;
  s.channels = DefaultScenarios();
  const auto text = [&](const char* key) { return lookup(key); };
  const auto number = [&](const char* key, double& target) {
    if (const auto v = lookup(key))
      if (const auto d = ToDouble(*v)) target = *d;
  };
  const auto integer = [&](const char* key, auto& target) {
    if (const auto v = lookup(key))
      if (const auto n = ToInteger(*v)) target = static_cast<std::remove_reference_t<decltype(target)>>(*n);
  };

  if (const auto v = text("AQX_MODULE")) s.backend = Lower(Trim(*v));
  if (const auto v = text("AQX_REPLAY_FILE")) s.replayFile = Trim(*v);
  if (const auto v = text("AQX_VIRTUAL_CHANNELS")) ParseScenarios(*v, s.channels);
  number("AQX_VIRTUAL_RPM", s.rpm);
  integer("AQX_VIRTUAL_POLES", s.poles);
  integer("AQX_VIRTUAL_BLADES", s.blades);
  number("AQX_VIRTUAL_MAINS_HZ", s.mainsHz);
  number("AQX_VIRTUAL_WANDER", s.wanderPercent);
  number("AQX_VIRTUAL_RUNOUT_MV", s.runOutMv);
  number("AQX_VIRTUAL_RUNOUT2_MV", s.runOut2Mv);
  number("AQX_VIRTUAL_RUNOUT_OFFSET_MV", s.runOutOffsetMv);
  number("AQX_VIRTUAL_VIBRATION_MV", s.vibrationMv);
  number("AQX_VIRTUAL_BROADBAND_MV", s.broadbandMv);
  number("AQX_VIRTUAL_MARKER_MV", s.markerMv);
  number("AQX_VIRTUAL_TURN_MV", s.turnMv);
  number("AQX_VIRTUAL_POLE_SPREAD", s.poleSpreadPercent);
  number("AQX_VIRTUAL_NOISE_MV", s.noiseMv);
  number("AQX_VIRTUAL_GAP_UM", s.gapMicrometres);
  number("AQX_VIRTUAL_GAP_MV_PER_UM", s.gapMvPerMicrometre);
  number("AQX_VIRTUAL_GAP_LINEAR_UM", s.gapLinearMicrometres);
  if (const auto v = text("AQX_VIRTUAL_POLE_DEVIATION")) {
    s.poleDeviations.clear();
    for (const std::string& item : Split(*v, ',')) {
      const std::vector<std::string> kv = Split(item, ':');
      if (kv.size() != 2) continue;
      const auto pole = ToInteger(kv[0]);
      const auto percent = ToDouble(kv[1]);
      if (pole && percent && *pole >= 1) s.poleDeviations.emplace_back(static_cast<int>(*pole), *percent);
    }
  }
  if (const auto v = text("AQX_VIRTUAL_OVERLOAD")) {
    if (Lower(Trim(*v)) == "all") {
      s.overload.fill(true);
    } else {
      for (const std::string& item : Split(*v, ','))
        if (const auto c = ToInteger(item); c && *c >= 1 && *c <= kScenarioChannels)
          s.overload[static_cast<size_t>(*c - 1)] = true;
    }
  }
  integer("AQX_VIRTUAL_FAIL", s.failNumber);
  integer("AQX_VIRTUAL_FAIL_AFTER_ROWS", s.failAfterRows);
  if (const auto v = text("AQX_VIRTUAL_NAME")) s.moduleName = Trim(*v);
  if (const auto v = text("AQX_VIRTUAL_SERIAL")) s.serialNumber = Trim(*v);
  integer("AQX_VIRTUAL_TTL_IN", s.ttlIn);
  integer("AQX_VIRTUAL_SEED", s.seed);

  if (s.rpm <= 0.0) s.rpm = 150.0;
  if (s.poles < 2) s.poles = 2;
  if (s.blades < 1) s.blades = 1;
  if (s.wanderPercent < 0.0 || s.wanderPercent > 20.0) s.wanderPercent = 0.3;
  return s;
}

ModuleSettings LoadModuleSettings() {
  std::map<std::string, std::string> fileValues;
  if (const char* path = std::getenv("AQX_VIRTUAL_SETTINGS")) {
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
      const std::string t = Trim(line);
      if (t.empty() || t[0] == '#' || t[0] == ';' || t[0] == '[') continue;
      const size_t eq = t.find('=');
      if (eq == std::string::npos) continue;
      fileValues[Trim(t.substr(0, eq))] = Trim(t.substr(eq + 1));
    }
  }
  return ParseModuleSettings([&](const std::string& key) -> std::optional<std::string> {
    if (const char* v = std::getenv(key.c_str())) return std::string(v);
    const auto it = fileValues.find(key);
    if (it != fileValues.end()) return it->second;
    return std::nullopt;
  });
}

}  // namespace aqx::acq
