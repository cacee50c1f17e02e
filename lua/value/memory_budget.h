#pragma once

#include <cstddef>

// What all interpreters of this process together may take: most of the memory that the process can
// get. Beyond it the system would end the process instead of refusing, so the refusal has to be
// ours. May be called from any thread.

namespace tarvel::lua::internal {

// Whether so many bytes are within the budget when nothing else is taken.
bool canEverTakeMemory(std::size_t bytes) noexcept;

// Counts the bytes as taken; false when there are not so many left.
bool takeMemory(std::size_t bytes) noexcept;
void giveBackMemory(std::size_t bytes) noexcept;

}  // namespace tarvel::lua::internal
