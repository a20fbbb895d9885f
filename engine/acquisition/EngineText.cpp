#include "engine/acquisition/EngineText.h"

#include <cstdint>

namespace aqx::acq {

namespace {

char32_t NextCodePoint(std::string_view s, size_t& i) {
  const auto byte = [&](size_t k) { return static_cast<unsigned char>(s[k]); };
  const unsigned char b0 = byte(i);
  int extra = 0;
  char32_t cp = b0;
  if (b0 >= 0xF0) { extra = 3; cp = b0 & 0x07; }
  else if (b0 >= 0xE0) { extra = 2; cp = b0 & 0x0F; }
  else if (b0 >= 0xC0) { extra = 1; cp = b0 & 0x1F; }
  else if (b0 >= 0x80) { ++i; return U'?'; }
  ++i;
  for (int k = 0; k < extra; ++k, ++i) {
    if (i >= s.size() || (byte(i) & 0xC0) != 0x80) return U'?';
    cp = (cp << 6) | (byte(i) & 0x3F);
  }
  return cp;
}

char ToCp1251(char32_t cp) {
  if (cp < 0x80) return static_cast<char>(cp);
  if (cp >= 0x0410 && cp <= 0x044F) return static_cast<char>(0xC0 + (cp - 0x0410));
  switch (cp) {
    case 0x0401: return static_cast<char>(0xA8);  // Ё
    case 0x0451: return static_cast<char>(0xB8);  // ё
    case 0x00B1: return static_cast<char>(0xB1);  // ±
    case 0x00B0: return static_cast<char>(0xB0);  // °
    case 0x2116: return static_cast<char>(0xB9);  // №
    case 0x00AB: return static_cast<char>(0xAB);
    case 0x00BB: return static_cast<char>(0xBB);
    case 0x2013: return static_cast<char>(0x96);
    case 0x2014: return static_cast<char>(0x97);
    default: return '?';
  }
}

}  // namespace

std::string Cp1251FromUtf8(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  for (size_t i = 0; i < utf8.size();) out.push_back(ToCp1251(NextCodePoint(utf8, i)));
  return out;
}

}  // namespace aqx::acq
