#include "lua/stdlib/patterns/recursion_bound.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "lua/stdlib/patterns/translation.h"
#include "lua/value/host_stack.h"

namespace tarvel::lua::internal {

namespace {

// A group that is only optional is passed once, like what is not repeated.
bool repeatsWhatCanBeEmpty(char before, char c) noexcept {
  if (before == ')' && c == '?') return false;
  const auto isQuantifier = [](char q) { return q == '*' || q == '+' || q == '?' || q == '-'; };
  return isQuantifier(c) && (before == ')' || isQuantifier(before));
}

constexpr std::size_t kMostStates = SIZE_MAX / stack_cost::kRegexState;

std::size_t timesSaturated(std::size_t states, std::size_t factor) noexcept {
  return states > kMostStates / factor ? kMostStates : states * factor;
}

}  // namespace

bool mayHaveRestOfSet(std::string_view expression) noexcept {
  bool inSet = false;
  for (std::size_t i = 0; i < expression.size(); ++i) {
    const char c = expression[i];
    if (c == '\\') {
      ++i;
      if (!inSet && isAlphanumeric(expression[i])) return true;
    } else if (inSet) {
      inSet = c != ']';
    } else if (c == '|' || c == '{') {
      return true;
    } else {
      inSet = c == '[';
    }
  }
  return false;
}

std::size_t productOfCounts(std::string_view expression) noexcept {
  std::size_t product = 1;
  for (std::size_t i = 0; i < expression.size(); ++i) {
    if (expression[i] != '{' && expression[i] != ',') continue;
    std::size_t count = 0;
    std::from_chars(expression.data() + i + 1, expression.data() + expression.size(), count);
    product = timesSaturated(product, std::max<std::size_t>(count, 1));
  }
  return product;
}

// Every state stems from a byte of the pattern, but for a few around them and those that a counted
// repetition multiplies. Where nothing but single bytes is repeated, a match passes each state
// once, and the two of a repetition once for every byte. Otherwise it may, between two bytes, enter
// each repetition twice (the matcher sees to that) and pass every state in between; a lookahead
// adds a search within the search.
RecursionBound RecursionBound::of(std::string_view pattern, std::string_view expression) noexcept {
  const bool mayCount = mayHaveRestOfSet(expression);
  const std::size_t states =
      timesSaturated(pattern.size() + 4, mayCount ? productOfCounts(expression) : 1);
  std::size_t rounds = 1;
  std::size_t searches = 1;
  for (std::size_t i = 1; i < pattern.size(); ++i) {
    if (repeatsWhatCanBeEmpty(pattern[i - 1], pattern[i]) || (mayCount && pattern[i] == '{'))
      rounds += 2;
    if (pattern[i - 1] == '(' && pattern[i] == '?') ++searches;
  }
  const std::size_t statesAtOnce = timesSaturated(timesSaturated(states, rounds), searches);
  return {statesAtOnce, rounds == 1 ? 2 * searches : statesAtOnce};
}

std::size_t RecursionBound::stackForStep() const noexcept {
  return statesAtOnce * stack_cost::kRegexState;
}

bool RecursionBound::fitsIn(std::size_t stackBytes, std::size_t subjectLength) const noexcept {
  const std::size_t states = stackBytes / stack_cost::kRegexState;
  return statesAtOnce <= states && subjectLength <= (states - statesAtOnce) / statesPerByte;
}

}  // namespace tarvel::lua::internal
