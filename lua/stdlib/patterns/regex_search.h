#pragma once

#include <cstddef>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "lua/stdlib/patterns/guarded_position.h"
#include "lua/stdlib/patterns/pattern_match.h"
#include "lua/stdlib/patterns/recursion_bound.h"
#include "lua/stdlib/patterns/search_cost.h"
#include "lua/value/errors.h"
#include "lua/value/memory_charge.h"

namespace tarvel::lua::internal {

// A pattern that std::regex searches for.
class RegexSearch {
 public:
  // `expression` is the translated pattern. Counts compiling as work and the compiled expression as
  // memory. Throws std::regex_error: what std::regex says of the expression, or error_stack where
  // the stack that is left may not do for compiling it. In a supervised interpreter raises "pattern
  // is too complex".
  RegexSearch(Heap& heap, std::string_view pattern, const std::string& expression, Site site);

  std::uint64_t stepsForCompiling() const noexcept;
  std::size_t memory() const noexcept { return cost_.memory; }  // bytes
  std::size_t captureCount() const noexcept { return captures_.size(); }

  // As PatternSearcher::find.
  bool search(std::string_view subject, std::size_t from, PatternMatch& match, Site site);

  // Refuses, as the constructor would, what is too long to be translated.
  static void requireShort(const WorkMeter& meter, std::string_view pattern, Site site);

 private:
  using Flags = std::regex_constants::match_flag_type;

  const std::string& admit(const std::string& expression, Site site);
  bool searchGuarded(const char* first, const char* end);
  bool searchSupervised(const char* first, const char* end, Site site);
  template <class Results>
  void report(const Results& results, std::string_view subject, PatternMatch& match);

  WorkMeter& meter_;
  SearchCost cost_;
  MemoryCharge memory_;
  std::regex expression_;
  // An expression that starts with `^` is tried at one place only.
  Flags flags_;
  RecursionBound bound_;
  // Scratch, kept for their memory.
  std::cmatch results_;
  std::match_results<GuardedPosition> guardedResults_;
  std::vector<std::string_view> captures_;
};

}  // namespace tarvel::lua::internal
