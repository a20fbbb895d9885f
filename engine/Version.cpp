#include "engine/Aquilonix.h"

extern "C" void AquilonixVersionDLL(int32_t* major, int32_t* minor, int32_t* build) {
  if (major) *major = AQX_VERSION_MAJOR;
  if (minor) *minor = AQX_VERSION_MINOR;
  if (build) *build = AQX_VERSION_PATCH;
}
