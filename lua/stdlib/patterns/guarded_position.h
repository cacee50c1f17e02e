#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "lua/value/host_stack.h"
#include "lua/value/work_meter.h"

namespace tarvel::lua::internal {

struct SearchLimits {
  std::uintptr_t floor = 0;  // of the stack pointer
  bool throws = false;
  WorkMeter* meter = nullptr;     // null: nothing is counted
  std::int64_t left = INT64_MAX;  // comparisons of the round
  std::int64_t round = INT64_MAX;
  std::uint64_t stepsPerRound = 0;
};

// What this thread's search with guarded positions may take of the stack and of the run's steps.
// std::regex knows nothing of it. When something is used up, the search ends in one of two ways:
// - All positions become equal. The matcher takes that for the end of the subject everywhere, and
//   returns from all its levels without going deeper. What it then says has no meaning. (An
//   exception through a million frames takes far longer, and the address sanitizer cannot follow it
//   through so large a stack.)
// - Where the matcher could go on for long without consuming anything, SearchAbandoned is thrown.
class SearchGuard {
 public:
  struct SearchAbandoned {};

  // Watches only the stack: from here on the stack pointer may not fall below `floor`.
  static void watchStack(std::uintptr_t floor) noexcept {
    limits_ = {};
    limits_.floor = floor;
  }
  // Also counts `stepsPerRound` steps for each round of so many comparisons of positions.
  static void watch(std::uintptr_t floor, bool throws, WorkMeter& meter, std::int64_t round,
                    std::uint64_t stepsPerRound) noexcept {
    limits_ = {floor, throws, &meter, round, round, stepsPerRound};
  }
  static bool isExceeded() noexcept { return limits_.floor == kExceeded; }
  // The comparisons since the last full round.
  static std::uint64_t comparisonsLeftOver() noexcept {
    return static_cast<std::uint64_t>(limits_.round - limits_.left);
  }

  static void checkStack() {
    if (hostStackPointer() < limits_.floor) giveUp();
  }
  static void countComparison() {
    if (--limits_.left < 0) [[unlikely]]
      endRound();
  }

 private:
  static constexpr std::uintptr_t kExceeded = UINTPTR_MAX;

  static void giveUp() {
    if (isExceeded()) return;
    limits_.floor = kExceeded;
    limits_.left = limits_.round = INT64_MAX;
    if (limits_.throws) throw SearchAbandoned();
  }
  static void endRound() {
    limits_.left = limits_.round - 1;
    if (limits_.throws) checkStack();
    if (limits_.meter != nullptr && !limits_.meter->poll(limits_.stepsPerRound)) giveUp();
  }

  static inline constinit thread_local SearchLimits limits_;
};

// A position in the subject that watches over the search on behalf of std::regex, whose matcher
// recurses for each byte that it consumes, and compares positions wherever its way may end.
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
  GuardedPosition& operator++() {
    SearchGuard::checkStack();
    ++byte_;
    return *this;
  }
  GuardedPosition operator++(int) {
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
  bool operator==(const GuardedPosition& other) const {
    SearchGuard::countComparison();
    return byte_ == other.byte_ || SearchGuard::isExceeded();
  }

 private:
  const char* byte_ = nullptr;
};

}  // namespace tarvel::lua::internal
