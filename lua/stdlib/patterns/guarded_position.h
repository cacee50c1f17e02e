#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "lua/value/host_stack.h"

namespace tarvel::lua::internal {

// The limit of this thread's search with guarded positions.
class SearchStackLimit {
 public:
  // From here on the stack pointer may not fall below `floor`.
  static void set(std::uintptr_t floor) noexcept { floor_ = floor; }
  // True once it did, until the next set().
  static bool isExceeded() noexcept { return floor_ == kExceeded; }
  static void check() noexcept {
    if (hostStackPointer() < floor_) floor_ = kExceeded;
  }

 private:
  static constexpr std::uintptr_t kExceeded = UINTPTR_MAX;
  static inline constinit thread_local std::uintptr_t floor_ = 0;
};

// A position in the subject that watches the stack on behalf of std::regex, whose matcher recurses
// for each byte that it consumes. Once the stack is used up, all positions are equal: the matcher
// takes that for the end of the subject everywhere, and returns from all its levels without going
// deeper. What it then says has no meaning. (An exception through a million frames takes ten times
// as long, and the address sanitizer cannot follow it through so large a stack.)
class GuardedPosition {
 public:
  using iterator_category = std::bidirectional_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  GuardedPosition() = default;
  explicit GuardedPosition(const char* byte) noexcept : byte_(byte) {}

  const char* address() const noexcept { return byte_; }
  reference operator*() const noexcept { return *byte_; }
  GuardedPosition& operator++() noexcept {
    SearchStackLimit::check();
    ++byte_;
    return *this;
  }
  GuardedPosition operator++(int) noexcept {
    const GuardedPosition before = *this;
    ++*this;
    return before;
  }
  GuardedPosition& operator--() noexcept {
    --byte_;
    return *this;
  }
  GuardedPosition operator--(int) noexcept {
    const GuardedPosition before = *this;
    --*this;
    return before;
  }
  bool operator==(const GuardedPosition& other) const noexcept {
    return byte_ == other.byte_ || SearchStackLimit::isExceeded();
  }

 private:
  const char* byte_ = nullptr;
};

}  // namespace tarvel::lua::internal
