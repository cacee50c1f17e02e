#pragma once

#include <cstddef>

// Refuses allocations: those of interpreters, which come from realloc and mmap, and those of the
// host, which come from operator new. The linker puts the functions of refused_memory.cpp in their
// place (tests/CMakeLists.txt).

namespace tarvel::lua::refusal {

enum class Refused { Alone, WithAllLater };

// For as long as it lives, the allocation of this number fails, from 0 on. Other threads must not
// allocate at the same time.
class MemoryRefusal {
 public:
  MemoryRefusal(std::size_t number, Refused which) noexcept;
  ~MemoryRefusal();
  MemoryRefusal(const MemoryRefusal&) = delete;
  MemoryRefusal& operator=(const MemoryRefusal&) = delete;

  // How many allocations there have been since.
  static std::size_t count() noexcept;
};

// What operator new has handed out and nobody has given back, on all threads.
std::size_t liveHostBlocks() noexcept;

// The bytes of both kinds that are in use, and the most that were since.
std::size_t startPeakBytes() noexcept;
std::size_t peakBytes() noexcept;

}  // namespace tarvel::lua::refusal
