#pragma once

#include <cstddef>
#include <string_view>

namespace tarvel::lua::internal {

// In a set, `%]` ends it early, and the rest of it stands outside as it is: an alternation, a
// counted repetition or the escape of a control byte, which are found nowhere else. True also where
// std::regex sees them in a set.
bool mayHaveRestOfSet(std::string_view expression) noexcept;

// By how much the counts of counted repetitions multiply the states of an expression at most.
std::size_t productOfCounts(std::string_view expression) noexcept;

// How deep the matcher of std::regex can recurse for a pattern: it does so for every state of the
// expression that a match passes through.
struct RecursionBound {
  std::size_t statesAtOnce;  // between one byte of the subject and the next
  std::size_t statesPerByte;

  static RecursionBound of(std::string_view pattern, std::string_view expression) noexcept;

  std::size_t stackForStep() const noexcept;  // bytes
  bool fitsIn(std::size_t stackBytes, std::size_t subjectLength) const noexcept;
};

}  // namespace tarvel::lua::internal
