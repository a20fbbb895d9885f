#pragma once
// Single-byte Windows-1251 text of the file formats: blank-padded on the
// right, no terminator.

#include <QByteArray>
#include <QString>

#include <cstddef>

namespace aqx {

// Decodes `length` bytes and trims blanks (and zero bytes) on both sides.
QString DecodeText1251(const char* bytes, size_t length);
// Encodes, cut to `length` bytes and blank-padded to exactly `length`.
// Characters outside the code page become '?'.
QByteArray EncodeText1251(const QString& text, size_t length);

}  // namespace aqx
