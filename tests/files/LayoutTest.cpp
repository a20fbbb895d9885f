#include "files/Layout.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace aqx {
namespace {

struct Sample {
  int32_t count = 0;
  bool flag = false;
  bool shortFlag = false;
  double speed = 0;
  QString name;
  std::array<int16_t, 3> codes{};
  std::array<std::array<float, 3>, 2> grid{};
  QByteArray blob;
};

Layout<Sample> SampleLayout() {
  return {
      ScalarField("count", FieldType::Int32, &Sample::count),
      ScalarField("flag", FieldType::Int32, &Sample::flag),
      ScalarField("shortFlag", FieldType::Int16, &Sample::shortFlag),
      ScalarField("speed", FieldType::Float, &Sample::speed),
      TextField("name", 6, &Sample::name),
      ArrayField("codes", FieldType::Int16, 3, &Sample::codes),
      ReservedField<Sample>("gap", 2),
      // Two rows of two columns out of a 2 x 3 array: the file keeps fewer
      // entries than memory.
      TableField<Sample>("grid", FieldType::Float, 2, 2,
                         [](Sample& s, int r, int c) -> FieldTarget {
                           return &s.grid[static_cast<size_t>(r)][static_cast<size_t>(c)];
                         }),
      {"blob", FieldType::Bytes, 44, 1, 1, 4,
       [](Sample& s, int, int) -> FieldTarget { return &s.blob; }},
  };
}

// Offsets written out: 0 count, 4 flag, 8 shortFlag, 10 speed, 14 name,
// 20 codes, 26 gap, 28 grid, 44 blob, size 48.
const unsigned char kBytes[48] = {
    0x78, 0x56, 0x34, 0x12,                          // count 0x12345678
    0x02, 0x00, 0x00, 0x00,                          // flag: not zero
    0xFF, 0xFF,                                      // shortFlag -1
    0x00, 0x00, 0xC0, 0x3F,                          // 1.5f
    0xC2, 0xC2, 'A', ' ', ' ', ' ',                  // "ВВA" in Windows-1251
    0xFE, 0xFF, 0x00, 0x80, 0x01, 0x00,              // -2, -32768, 1
    0xAA, 0xBB,                                      // gap
    0x00, 0x00, 0x80, 0x3F, 0x00, 0x00, 0x00, 0x40,  // 1, 2
    0x00, 0x00, 0x40, 0x40, 0x00, 0x00, 0x80, 0x40,  // 3, 4 (row 1)
    0x01, 0x02, 0x03, 0x04,                          // blob
};

TEST(Layout, ReadsLittleEndianValuesIntoTheirTargets) {
  Sample s;
  s.grid[0][2] = 9.0f;
  const auto err = ReadLayout(SampleLayout(),
                              std::span(reinterpret_cast<const char*>(kBytes), sizeof kBytes), s);
  ASSERT_FALSE(err);
  EXPECT_EQ(s.count, 0x12345678);
  EXPECT_TRUE(s.flag);
  EXPECT_TRUE(s.shortFlag);
  EXPECT_DOUBLE_EQ(s.speed, 1.5);
  EXPECT_EQ(s.name, QStringLiteral("ВВA"));
  EXPECT_EQ(s.codes[0], -2);
  EXPECT_EQ(s.codes[1], -32768);
  EXPECT_EQ(s.codes[2], 1);
  EXPECT_EQ(s.grid[0][0], 1.0f);
  EXPECT_EQ(s.grid[0][1], 2.0f);
  EXPECT_EQ(s.grid[0][2], 9.0f);  // not in the file: untouched
  EXPECT_EQ(s.grid[1][0], 3.0f);
  EXPECT_EQ(s.grid[1][1], 4.0f);
  EXPECT_EQ(s.blob, QByteArray("\x01\x02\x03\x04", 4));
}

TEST(Layout, WritesBackTheSameBytesBooleansAsMinusOneAndGapsAsZero) {
  Sample s;
  ASSERT_FALSE(ReadLayout(SampleLayout(),
                          std::span(reinterpret_cast<const char*>(kBytes), sizeof kBytes), s));
  std::array<char, 52> out;
  out.fill('\x5A');
  ASSERT_FALSE(WriteLayout(SampleLayout(), s, std::span(out.data(), 48)));
  unsigned char expected[48];
  std::memcpy(expected, kBytes, 48);
  expected[4] = 0xFF, expected[5] = 0xFF, expected[6] = 0xFF, expected[7] = 0xFF;
  expected[26] = 0, expected[27] = 0;
  EXPECT_EQ(std::memcmp(out.data(), expected, 48), 0);
  for (size_t i = 48; i < out.size(); ++i) EXPECT_EQ(out[i], '\x5A') << i;
}

TEST(Layout, RefusesFieldsBeyondTheBytesAndMismatchedTargets) {
  Sample s;
  const auto shortRead = ReadLayout(
      SampleLayout(), std::span(reinterpret_cast<const char*>(kBytes), 47), s);
  EXPECT_EQ(shortRead.kind, LayoutError::Kind::OutOfBounds);
  EXPECT_EQ(shortRead.field, "blob");

  std::array<char, 10> small{};
  const auto shortWrite = WriteLayout(SampleLayout(), s, std::span(small));
  EXPECT_EQ(shortWrite.kind, LayoutError::Kind::OutOfBounds);
  EXPECT_EQ(shortWrite.field, "speed");

  const Layout<Sample> wrong = {ScalarField("name", FieldType::Int32, &Sample::name)};
  EXPECT_EQ(ReadLayout(wrong, std::span(reinterpret_cast<const char*>(kBytes), 4), s).kind,
            LayoutError::Kind::TypeMismatch);
  const Layout<Sample> floatIntoInt = {ScalarField("count", FieldType::Float, &Sample::count)};
  EXPECT_EQ(ReadLayout(floatIntoInt, std::span(reinterpret_cast<const char*>(kBytes), 4), s).kind,
            LayoutError::Kind::TypeMismatch);
}

}  // namespace
}  // namespace aqx
