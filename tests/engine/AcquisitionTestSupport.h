#pragma once
// Helpers of the acquisition tests: environment settings for the virtual
// module that are undone at the end of a test, the sample store, and files
// built byte by byte.

#include "engine/Aquilonix.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <iterator>
#include <unistd.h>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace aqx_test {

// Sets environment variables for the duration of a scope.
class EnvScope {
 public:
  EnvScope() {
    // Every test starts from the module's defaults.
    for (const char* key : kKeys) set(key, std::nullopt);
  }
  ~EnvScope() {
    for (const auto& [key, old] : saved_) {
      if (old) setenv(key.c_str(), old->c_str(), 1);
      else unsetenv(key.c_str());
    }
  }
  EnvScope(const EnvScope&) = delete;
  EnvScope& operator=(const EnvScope&) = delete;

  EnvScope& set(const std::string& key, std::optional<std::string> value) {
    if (!saved_.count(key)) {
      const char* old = std::getenv(key.c_str());
      saved_[key] = old ? std::optional<std::string>(old) : std::nullopt;
    }
    if (value) setenv(key.c_str(), value->c_str(), 1);
    else unsetenv(key.c_str());
    return *this;
  }

 private:
  static constexpr const char* kKeys[] = {
      "AQX_MODULE", "AQX_REPLAY_FILE", "AQX_VIRTUAL_SETTINGS", "AQX_VIRTUAL_CHANNELS",
      "AQX_VIRTUAL_RPM", "AQX_VIRTUAL_WANDER", "AQX_VIRTUAL_FAIL", "AQX_VIRTUAL_FAIL_AFTER_ROWS",
      "AQX_VIRTUAL_NAME", "AQX_VIRTUAL_NOISE_MV", "AQX_VIRTUAL_OVERLOAD", "AQX_VIRTUAL_TTL_IN",
      "AQX_VIRTUAL_POLES", "AQX_VIRTUAL_POLE_DEVIATION", "AQX_VIRTUAL_POLE_SPREAD"};
  std::map<std::string, std::optional<std::string>> saved_;
};

// The application's sample store, 32 codes a row: 1,048,576 rows in the
// program; the tests take the rows a call may write and one more, whose
// sentinel catches a write past the end.
inline std::unique_ptr<int16_t[]> MakeStore(int16_t fill = 0, int64_t rows = AQX_SIGNAL_ROWS) {
  const size_t codes = static_cast<size_t>(rows) * AQX_SIGNAL_COLUMNS;
  auto store = std::make_unique<int16_t[]>(codes);
  std::fill_n(store.get(), codes, fill);
  return store;
}
inline int16_t At(const int16_t* store, int64_t row, int channel) {
  return store[row * AQX_SIGNAL_COLUMNS + (channel - 1)];
}

// Channel switches and ranges, channels from 1.
inline std::array<int32_t, 32> On(std::initializer_list<int> channels) {
  std::array<int32_t, 32> a{};
  for (int c : channels) a[static_cast<size_t>(c - 1)] = 1;
  return a;
}

// Counter codes wrap in 14 bits: -8192..8191.
inline int16_t CounterCode(int64_t row) {
  return static_cast<int16_t>(((row % 16384) + 16384 + 8192) % 16384 - 8192);
}

inline std::string TempPath(const std::string& name) {
  const char* dir = std::getenv("TMPDIR");
  return std::string(dir && *dir ? dir : "/tmp") + "/aqx-acq-" + std::to_string(getpid()) + "-" + name;
}

inline void WriteBytes(const std::string& path, const std::vector<unsigned char>& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

inline std::vector<unsigned char> ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), {});
}

inline void PutInt32(std::vector<unsigned char>& b, size_t offset, int32_t v) {
  const auto u = static_cast<uint32_t>(v);
  for (int i = 0; i < 4; ++i) b[offset + static_cast<size_t>(i)] = static_cast<unsigned char>(u >> (8 * i));
}
inline void PutInt16(std::vector<unsigned char>& b, size_t offset, int16_t v) {
  const auto u = static_cast<uint16_t>(v);
  b[offset] = static_cast<unsigned char>(u);
  b[offset + 1] = static_cast<unsigned char>(u >> 8);
}

inline void SleepMs(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

}  // namespace aqx_test
