#pragma once

// The version of these headers, stated here alone: the build, too, reads it from these lines.
// LuaVM::version tells that of the library that was linked.
#define TARVELLUA_VERSION_MAJOR 1
#define TARVELLUA_VERSION_MINOR 1
#define TARVELLUA_VERSION_PATCH 0

// TARVELLUA_VERSION is the same as text: "major.minor.patch".
#define TARVELLUA_TEXT(number) #number
#define TARVELLUA_VERSION_TEXT(major, minor, patch) \
  TARVELLUA_TEXT(major) "." TARVELLUA_TEXT(minor) "." TARVELLUA_TEXT(patch)
#define TARVELLUA_VERSION \
  TARVELLUA_VERSION_TEXT(TARVELLUA_VERSION_MAJOR, TARVELLUA_VERSION_MINOR, TARVELLUA_VERSION_PATCH)
