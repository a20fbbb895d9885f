#include "core/VirtualUnit.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

using namespace aqx;

namespace {
std::string Env(const char* key) {
  const char* v = std::getenv(key);
  return v ? v : "<unset>";
}
}  // namespace

TEST(VirtualUnit, TellsTheModuleTheChannelTypesAndTheUnitUnlessTheUserDid) {
  for (const char* key : {"AQX_VIRTUAL_CHANNELS", "AQX_VIRTUAL_RPM", "AQX_VIRTUAL_POLES", "AQX_VIRTUAL_MAINS_HZ"})
    unsetenv(key);
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Type[c] = 1;
  s->channels.Type[1] = 3;
  s->channels.Type[2] = 0;
  s->channels.Type[32] = 12;  // out of the list: held to the last type
  s->Polus = 48;
  s->FreqSety = 50;
  s->FreqRotorN = 125.0;
  ExportVirtualUnit(*s);
  EXPECT_EQ(Env("AQX_VIRTUAL_CHANNELS"), "3,0,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,9");
  EXPECT_EQ(Env("AQX_VIRTUAL_RPM"), "125");
  EXPECT_EQ(Env("AQX_VIRTUAL_POLES"), "48");
  EXPECT_EQ(Env("AQX_VIRTUAL_MAINS_HZ"), "50");

  setenv("AQX_VIRTUAL_RPM", "333", 1);
  s->FreqRotorN = 150.0;
  s->channels.Type[1] = 4;
  unsetenv("AQX_VIRTUAL_CHANNELS");
  ExportVirtualUnit(*s);
  EXPECT_EQ(Env("AQX_VIRTUAL_RPM"), "333");
  EXPECT_EQ(Env("AQX_VIRTUAL_CHANNELS").substr(0, 4), "4,0,");
  for (const char* key : {"AQX_VIRTUAL_CHANNELS", "AQX_VIRTUAL_RPM", "AQX_VIRTUAL_POLES", "AQX_VIRTUAL_MAINS_HZ"})
    unsetenv(key);
}
