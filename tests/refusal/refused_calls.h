#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

// Refuses what this process asks the system for. The linker puts the functions of refused_calls.cpp
// in the place of open, read, write, close, lseek, fstat and pthread_create; the C library's own
// streams do not use those, so the standard ones are exchanged for some that do.

namespace tarvel::lua::refusal {

// Memory: as in refused_memory.h.
enum class Call { None, Open, Read, Write, Close, Seek, Status, Thread, Memory };

// Instead of an error: a read or write of one byte.
inline constexpr int kShort = -1;

struct Fault {
  Call call = Call::None;
  std::size_t number = 0;     // of the calls of this kind, from 0 on
  bool withAllLater = false;  // or the one alone
  int error = 0;              // errno, or kShort
};

// From now on, in this process.
void injectFault(const Fault& fault) noexcept;
// Makes stdin and stdout streams that use read and write as those of the C library do.
void useOwnStandardStreams();
// Whether there has been a call for the fault.
bool wasHit() noexcept;

}  // namespace tarvel::lua::refusal
