#pragma once
// Texts the library hands to the application are single-byte Windows-1251,
// as the application's file fields are.

#include <string>
#include <string_view>

namespace aqx::acq {

// UTF-8 to Windows-1251; characters outside the code page become '?'.
std::string Cp1251FromUtf8(std::string_view utf8);

}  // namespace aqx::acq
