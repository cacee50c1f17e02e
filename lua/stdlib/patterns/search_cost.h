#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarvel::lua::internal {

// What an expression costs std::regex, for counting it as work and for bounding it. Depends on the
// text alone.
struct SearchCost {
  // Compiling, in units of about a quarter of a microsecond.
  std::uint64_t compileUnits = 0;
  std::size_t memory = 0;  // bytes of the compiled expression
  // What a search costs whatever it finds, and for so many comparisons of positions.
  std::uint64_t stepsPerSearch = 1;
  std::uint64_t stepsPerComparisons = 1;
  static constexpr std::uint64_t kComparisons = 4;
  // Nothing but single bytes is repeated or optional, so the matcher goes on for no more than a
  // state for each term without consuming a byte.
  bool isFlat = true;
  std::size_t stack = 0;  // bytes that a search may take in a supervised interpreter

  static SearchCost of(std::string_view expression);
};

}  // namespace tarvel::lua::internal
