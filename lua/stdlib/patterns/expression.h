#pragma once

#include <cstddef>
#include <regex>
#include <string>
#include <string_view>

#include "lua/stdlib/patterns/guarded_position.h"
#include "lua/stdlib/patterns/hints.h"
#include "lua/stdlib/patterns/recursion_bound.h"
#include "lua/stdlib/patterns/search_cost.h"
#include "lua/stdlib/patterns/searcher.h"
#include "lua/value/errors.h"
#include "lua/value/memory_charge.h"

namespace tarvel::lua::internal {

// A pattern ready for searching.
class PatternExpression {
 public:
  // Counts compiling as work and the compiled expression as memory. Throws std::regex_error: what
  // std::regex says of the expression, or error_stack where the stack that is left may not do for
  // compiling it. In a supervised interpreter raises "pattern is too complex".
  PatternExpression(Heap& heap, std::string_view pattern, Site site);

  std::uint64_t stepsForCompiling() const noexcept;
  std::size_t memory() const noexcept { return cost_.memory; }  // bytes

  // As PatternSearcher::find.
  bool search(std::string_view subject, std::size_t from, PatternMatch& match, Site site);

  std::size_t captureCount() const noexcept { return expression_.mark_count(); }

 private:
  PatternExpression(Heap& heap, std::string_view pattern, const std::string& expression, Site site);
  const std::string& admit(const std::string& expression, Site site);

  // The first position from `next` on where a match may start; null if there is none.
  const char* findCandidate(std::string_view subject, const char* next, Site site) const;
  // Where the run of bytes in `set` that starts at `start` ends.
  const char* endOfRun(std::string_view subject, const char* start, const ByteSet& set,
                       Site site) const;
  // Where to go on when there was no match at a candidate.
  const char* skipFailed(std::string_view subject, const char* candidate, Site site) const;
  // Tries the positions from `first` on, or only that one with match_continuous.
  bool searchFrom(const char* first, std::string_view subject,
                  std::regex_constants::match_flag_type flags, PatternMatch& match, Site site);
  bool searchGuarded(const char* first, const char* end,
                     std::regex_constants::match_flag_type flags);
  bool searchSupervised(const char* first, const char* end,
                        std::regex_constants::match_flag_type flags, Site site);

  WorkMeter& meter_;
  SearchCost cost_;
  MemoryCharge memory_;
  std::regex expression_;
  SearchHints hints_;
  RecursionBound bound_;
  // Scratch, kept for their memory.
  std::cmatch results_;
  std::match_results<GuardedPosition> guardedResults_;
};

}  // namespace tarvel::lua::internal
