#include "files/Layout.h"

#include "files/Text1251.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

namespace aqx {

size_t FieldTypeBytes(FieldType type) {
  switch (type) {
    case FieldType::Int8:
    case FieldType::UInt8: return 1;
    case FieldType::Int16:
    case FieldType::UInt16: return 2;
    case FieldType::Int32:
    case FieldType::UInt32:
    case FieldType::Float: return 4;
    case FieldType::Double: return 8;
    case FieldType::Text:
    case FieldType::Bytes: return 0;
  }
  return 0;
}

namespace {

uint64_t LoadLittle(std::span<const char> bytes) {
  uint64_t v = 0;
  for (size_t i = bytes.size(); i-- > 0;) v = (v << 8) | static_cast<uint8_t>(bytes[i]);
  return v;
}

void StoreLittle(std::span<char> bytes, uint64_t v) {
  for (char& b : bytes) {
    b = static_cast<char>(v & 0xFF);
    v >>= 8;
  }
}

// A numeric file value, kept as what it is (integer or floating point) until
// it meets the type of its target.
struct Number {
  bool isFloating = false;
  int64_t integer = 0;
  double floating = 0.0;
};

Number LoadNumber(FieldType type, std::span<const char> bytes) {
  const uint64_t raw = LoadLittle(bytes);
  Number n;
  switch (type) {
    case FieldType::Int8: n.integer = static_cast<int8_t>(raw); break;
    case FieldType::UInt8: n.integer = static_cast<uint8_t>(raw); break;
    case FieldType::Int16: n.integer = static_cast<int16_t>(raw); break;
    case FieldType::UInt16: n.integer = static_cast<uint16_t>(raw); break;
    case FieldType::Int32: n.integer = static_cast<int32_t>(raw); break;
    case FieldType::UInt32: n.integer = static_cast<uint32_t>(raw); break;
    case FieldType::Float:
      n.isFloating = true;
      n.floating = std::bit_cast<float>(static_cast<uint32_t>(raw));
      break;
    case FieldType::Double:
      n.isFloating = true;
      n.floating = std::bit_cast<double>(raw);
      break;
    default: break;
  }
  return n;
}

bool StoreNumber(FieldType type, std::span<char> bytes, const Number& n) {
  switch (type) {
    case FieldType::Float:
      StoreLittle(bytes, std::bit_cast<uint32_t>(static_cast<float>(
                             n.isFloating ? n.floating : static_cast<double>(n.integer))));
      return true;
    case FieldType::Double:
      StoreLittle(bytes, std::bit_cast<uint64_t>(n.isFloating ? n.floating
                                                              : static_cast<double>(n.integer)));
      return true;
    default:
      // Integers are written as their low bytes in two's complement; a
      // floating value never goes into an integer field.
      if (n.isFloating) return false;
      StoreLittle(bytes, static_cast<uint64_t>(n.integer));
      return true;
  }
}

bool IsNumeric(FieldType type) { return type != FieldType::Text && type != FieldType::Bytes; }

}  // namespace

bool DecodeElement(FieldType type, std::span<const char> bytes, const FieldTarget& target) {
  if (type == FieldType::Text) {
    auto* text = std::get_if<QString*>(&target);
    if (!text) return false;
    **text = DecodeText1251(bytes.data(), bytes.size());
    return true;
  }
  if (type == FieldType::Bytes) {
    if (std::holds_alternative<std::monostate>(target)) return true;
    auto* raw = std::get_if<QByteArray*>(&target);
    if (!raw) return false;
    **raw = QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return true;
  }
  const Number n = LoadNumber(type, bytes);
  return std::visit(
      [&n](auto p) -> bool {
        using P = decltype(p);
        if constexpr (std::is_same_v<P, std::monostate>) {
          return true;  // an element the program does not keep
        } else if constexpr (std::is_same_v<P, QString*> || std::is_same_v<P, QByteArray*>) {
          return false;
        } else {
          using T = std::remove_pointer_t<P>;
          if constexpr (std::is_same_v<T, bool>) {
            *p = n.isFloating ? n.floating != 0.0 : n.integer != 0;
          } else if constexpr (std::is_floating_point_v<T>) {
            *p = static_cast<T>(n.isFloating ? n.floating : static_cast<double>(n.integer));
          } else {
            if (n.isFloating) return false;
            *p = static_cast<T>(n.integer);
          }
          return true;
        }
      },
      target);
}

bool EncodeElement(FieldType type, std::span<char> bytes, const FieldTarget& target) {
  if (std::holds_alternative<std::monostate>(target)) {
    std::memset(bytes.data(), 0, bytes.size());
    return true;
  }
  if (type == FieldType::Text) {
    auto* text = std::get_if<QString*>(&target);
    if (!text) return false;
    const QByteArray encoded = EncodeText1251(**text, bytes.size());
    std::memcpy(bytes.data(), encoded.constData(), bytes.size());
    return true;
  }
  if (type == FieldType::Bytes) {
    auto* raw = std::get_if<QByteArray*>(&target);
    if (!raw) return false;
    // Short data is padded with zero bytes; long data is cut.
    const QByteArray& data = **raw;
    const size_t copied = std::min(bytes.size(), static_cast<size_t>(data.size()));
    std::memcpy(bytes.data(), data.constData(), copied);
    std::memset(bytes.data() + copied, 0, bytes.size() - copied);
    return true;
  }
  if (!IsNumeric(type)) return false;
  Number n;
  const bool known = std::visit(
      [&n](auto p) -> bool {
        using P = decltype(p);
        if constexpr (std::is_same_v<P, std::monostate> || std::is_same_v<P, QString*> ||
                      std::is_same_v<P, QByteArray*>) {
          return false;
        } else {
          using T = std::remove_pointer_t<P>;
          if constexpr (std::is_same_v<T, bool>) {
            n.integer = *p ? -1 : 0;
          } else if constexpr (std::is_floating_point_v<T>) {
            n.isFloating = true;
            n.floating = static_cast<double>(*p);
          } else {
            n.integer = static_cast<int64_t>(*p);
          }
          return true;
        }
      },
      target);
  return known && StoreNumber(type, bytes, n);
}

}  // namespace aqx
