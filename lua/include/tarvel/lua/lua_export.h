#pragma once

// TARVELLUA_API marks what a shared library shows to its users; everything else stays inside.
#if defined(__GNUC__)
#define TARVELLUA_API __attribute__((visibility("default")))
#else
#define TARVELLUA_API
#endif
