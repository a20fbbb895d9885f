#include "engine/Aquilonix.h"

#include <gtest/gtest.h>

TEST(EngineVersion, ReportsTheProgramVersion) {
  int32_t major = -1, minor = -1, build = -1;
  AquilonixVersionDLL(&major, &minor, &build);
  EXPECT_EQ(major, AQX_VERSION_MAJOR_EXPECTED);
  EXPECT_EQ(minor, 12);
  EXPECT_GE(build, 0);
  AquilonixVersionDLL(nullptr, nullptr, nullptr);  // tolerated
}
