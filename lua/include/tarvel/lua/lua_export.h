#pragma once

// The first header that each of the others includes, so that this comes before anything else.
#if __cplusplus < 202002L
#error "TarvelLua's headers need C++20: compile with -std=c++20 or later"
#endif

// TARVELLUA_API marks what a shared library shows to its users; everything else stays inside.
// TARVELLUA_INTERNAL is for what is declared inside a class that is shown.
#if defined(__GNUC__)
#define TARVELLUA_API __attribute__((visibility("default")))
#define TARVELLUA_INTERNAL __attribute__((visibility("hidden")))
#else
#define TARVELLUA_API
#define TARVELLUA_INTERNAL
#endif
