#pragma once

#include <cstddef>
#include <regex>
#include <string>
#include <string_view>

#include "lua/stdlib/patterns/guarded_position.h"
#include "lua/stdlib/patterns/hints.h"
#include "lua/stdlib/patterns/recursion_bound.h"
#include "lua/stdlib/patterns/searcher.h"

namespace tarvel::lua::internal {

// A pattern ready for searching.
class PatternExpression {
 public:
  // Throws std::regex_error: what std::regex says of the expression, or error_stack where the stack
  // that is left may not do for compiling it.
  explicit PatternExpression(std::string_view pattern);

  // As PatternSearcher::find.
  bool search(std::string_view subject, std::size_t from, PatternMatch& match);

  std::size_t captureCount() const noexcept { return expression_.mark_count(); }

 private:
  PatternExpression(std::string_view pattern, const std::string& expression);

  // The first position from `next` on where a match may start; null if there is none.
  const char* findCandidate(std::string_view subject, const char* next) const noexcept;
  // Where the run of bytes in `set` that starts at `start` ends.
  static const char* endOfRun(std::string_view subject, const char* start,
                              const ByteSet& set) noexcept;
  // Where to go on when there was no match at a candidate.
  const char* skipFailed(std::string_view subject, const char* candidate) const noexcept;
  // Tries the positions from `first` on, or only that one with match_continuous.
  bool searchFrom(const char* first, std::string_view subject,
                  std::regex_constants::match_flag_type flags, PatternMatch& match);

  std::regex expression_;
  SearchHints hints_;
  RecursionBound bound_;
  // Scratch, kept for their memory.
  std::cmatch results_;
  std::match_results<GuardedPosition> guardedResults_;
};

}  // namespace tarvel::lua::internal
