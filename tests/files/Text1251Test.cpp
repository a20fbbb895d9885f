#include "files/Text1251.h"

#include <gtest/gtest.h>

namespace aqx {
namespace {

TEST(Text1251, RussianTextRoundTripsBlankPadded) {
  const QString station = QStringLiteral("Саяно-Шушенская ГЭС ±°");
  const QByteArray field = EncodeText1251(station, 50);
  ASSERT_EQ(field.size(), 50);
  EXPECT_EQ(static_cast<unsigned char>(field[0]), 0xD1);  // 'С' in the code page
  EXPECT_EQ(field.back(), ' ');
  EXPECT_EQ(DecodeText1251(field.constData(), 50), station);
}

TEST(Text1251, LongTextIsCutAndForeignCharactersBecomeQuestionMarks) {
  EXPECT_EQ(EncodeText1251(QStringLiteral("ABCDEFGHIJKLMN"), 10), QByteArray("ABCDEFGHIJ"));
  EXPECT_EQ(EncodeText1251(QStringLiteral("a\u4E2Db"), 4), QByteArray("a?b "));
  const char zeros[6] = {'x', 0, 0, ' ', 0, 0};
  EXPECT_EQ(DecodeText1251(zeros, 6), QStringLiteral("x"));
}

}  // namespace
}  // namespace aqx
