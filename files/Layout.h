#pragma once
// Byte layouts of binary records as data. A layout is a list of fields, each
// with its file type, element count and a binding that tells where the value
// lives in a record of the program; one generic reader and one generic writer
// work from it. All values are little-endian; text is Windows-1251,
// blank-padded, without terminator.
//
// A field lies at an explicit offset, or (kSequential) right behind the field
// before it. Fields of rows x columns elements go row by row: all columns of
// row 0, then of row 1, and so on. A field without binding is skipped on
// reading and written as zero bytes.

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

namespace aqx {

enum class FieldType : uint8_t { Int8, UInt8, Int16, UInt16, Int32, UInt32, Float, Double, Text, Bytes };

// Bytes one element of a numeric type takes; 0 for Text and Bytes, whose
// element length is given by the field.
size_t FieldTypeBytes(FieldType type);

// Where one element lives in memory. Reading converts the file value to the
// target's type (an integer read into a bool is true when not zero; a Float
// read into a double widens); writing converts back (a bool is written as -1
// or 0, the file's form of true and false; a double into a Float narrows).
// Text goes to QString (trimmed on reading), Bytes to QByteArray unchanged.
using FieldTarget = std::variant<std::monostate, bool*, int8_t*, uint8_t*, int16_t*, uint16_t*,
                                 int32_t*, uint32_t*, int64_t*, float*, double*, QString*,
                                 QByteArray*>;

inline constexpr int64_t kSequential = -1;

template <class Record>
struct LayoutField {
  std::string_view name;
  FieldType type = FieldType::Int32;
  int64_t offset = kSequential;
  int rows = 1;
  int columns = 1;
  size_t textBytes = 0;  // Text and Bytes: length of one element
  // Element (row, column) of the record; null binding: reserved bytes.
  std::function<FieldTarget(Record&, int row, int column)> bind;

  size_t elementBytes() const { return textBytes ? textBytes : FieldTypeBytes(type); }
  size_t totalBytes() const {
    return elementBytes() * static_cast<size_t>(rows) * static_cast<size_t>(columns);
  }
};

template <class Record>
using Layout = std::vector<LayoutField<Record>>;

// Where each field of a layout starts, and the size of the whole record (the
// end of the field that ends last).
struct LayoutPlacement {
  std::vector<size_t> offsets;
  size_t recordBytes = 0;
};

template <class Record>
LayoutPlacement PlaceLayout(const Layout<Record>& layout) {
  LayoutPlacement p;
  size_t next = 0;
  for (const auto& f : layout) {
    const size_t at = f.offset == kSequential ? next : static_cast<size_t>(f.offset);
    p.offsets.push_back(at);
    next = at + f.totalBytes();
    if (next > p.recordBytes) p.recordBytes = next;
  }
  return p;
}

// Start of the named field, or -1.
template <class Record>
int64_t LayoutFieldOffset(const Layout<Record>& layout, std::string_view name) {
  const LayoutPlacement p = PlaceLayout(layout);
  for (size_t i = 0; i < layout.size(); ++i)
    if (layout[i].name == name) return static_cast<int64_t>(p.offsets[i]);
  return -1;
}

// Why a read or write stopped: the field that did not fit into the bytes at
// hand, or whose binding does not match its file type.
struct LayoutError {
  std::string_view field;
  enum class Kind { None, OutOfBounds, TypeMismatch } kind = Kind::None;
  explicit operator bool() const { return kind != Kind::None; }
};

// One element, the building blocks of the generic reader and writer; the
// span must hold the element (the caller checks the bounds).
bool DecodeElement(FieldType type, std::span<const char> bytes, const FieldTarget& target);
bool EncodeElement(FieldType type, std::span<char> bytes, const FieldTarget& target);

// Fills the record from bytes. Every field must lie inside the bytes; on an
// error the record may hold part of the fields.
template <class Record>
LayoutError ReadLayout(const Layout<Record>& layout, std::span<const char> bytes, Record& record) {
  const LayoutPlacement p = PlaceLayout(layout);
  for (size_t i = 0; i < layout.size(); ++i) {
    const auto& f = layout[i];
    const size_t size = f.totalBytes();
    if (p.offsets[i] > bytes.size() || size > bytes.size() - p.offsets[i])
      return {f.name, LayoutError::Kind::OutOfBounds};
    if (!f.bind) continue;
    const size_t element = f.elementBytes();
    size_t at = p.offsets[i];
    for (int r = 0; r < f.rows; ++r)
      for (int c = 0; c < f.columns; ++c, at += element)
        if (!DecodeElement(f.type, bytes.subspan(at, element), f.bind(record, r, c)))
          return {f.name, LayoutError::Kind::TypeMismatch};
  }
  return {};
}

// Writes the record into bytes; bytes not covered by a field are left as
// they are. Every field must lie inside the bytes.
template <class Record>
LayoutError WriteLayout(const Layout<Record>& layout, const Record& record, std::span<char> bytes) {
  const LayoutPlacement p = PlaceLayout(layout);
  // The bindings hand out pointers into the record; the writer only reads
  // through them.
  Record& source = const_cast<Record&>(record);
  for (size_t i = 0; i < layout.size(); ++i) {
    const auto& f = layout[i];
    const size_t size = f.totalBytes();
    if (p.offsets[i] > bytes.size() || size > bytes.size() - p.offsets[i])
      return {f.name, LayoutError::Kind::OutOfBounds};
    const size_t element = f.elementBytes();
    size_t at = p.offsets[i];
    for (int r = 0; r < f.rows; ++r)
      for (int c = 0; c < f.columns; ++c, at += element) {
        const FieldTarget target = f.bind ? f.bind(source, r, c) : FieldTarget{};
        if (!EncodeElement(f.type, bytes.subspan(at, element), target))
          return {f.name, LayoutError::Kind::TypeMismatch};
      }
  }
  return {};
}

// Builders for the common shapes of a field, so that a table reads as one
// line per field.
template <class Record, class Member>
LayoutField<Record> ScalarField(std::string_view name, FieldType type, Member Record::*member,
                           int64_t offset = kSequential) {
  return {name, type, offset, 1, 1, 0,
          [member](Record& r, int, int) -> FieldTarget { return &(r.*member); }};
}

template <class Record>
LayoutField<Record> TextField(std::string_view name, size_t bytes, QString Record::*member,
                         int64_t offset = kSequential) {
  return {name, FieldType::Text, offset, 1, 1, bytes,
          [member](Record& r, int, int) -> FieldTarget { return &(r.*member); }};
}

// A one-dimensional array member indexed from 0 (std::array, std::vector),
// element by element.
template <class Record, class Array>
LayoutField<Record> ArrayField(std::string_view name, FieldType type, int count, Array Record::*member,
                               size_t textBytes = 0, int64_t offset = kSequential) {
  return {name, type, offset, count, 1, textBytes,
          [member](Record& r, int row, int) -> FieldTarget {
            return &(r.*member)[static_cast<size_t>(row)];
          }};
}

// Bytes that the program does not use (skipped on reading, zero on writing).
template <class Record>
LayoutField<Record> ReservedField(std::string_view name, size_t bytes, int64_t offset = kSequential) {
  return {name, FieldType::Bytes, offset, 1, 1, bytes, nullptr};
}

// A field of rows x columns elements, each found by a function of the record.
template <class Record, class Bind>
LayoutField<Record> TableField(std::string_view name, FieldType type, int rows, int columns, Bind bind,
                          size_t textBytes = 0, int64_t offset = kSequential) {
  return {name, type, offset, rows, columns, textBytes,
          [bind](Record& r, int row, int column) -> FieldTarget { return bind(r, row, column); }};
}

}  // namespace aqx
