#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "lua/stdlib/patterns/matcher_program.h"
#include "lua/stdlib/patterns/pattern_match.h"
#include "lua/value/errors.h"
#include "lua/value/work_meter.h"

namespace tarvel::lua::internal {

// Finds what std::regex would find, for expressions of the simple kind (terms.h). Needs no memory
// and no stack while it searches, and cannot fail.
class Matcher {
 public:
  // Nothing for any other expression.
  static std::optional<Matcher> compile(std::string_view expression);

  std::size_t memory() const noexcept;  // bytes
  std::size_t captureCount() const noexcept { return program_.groups; }

  // The leftmost match in what follows the offset `from`, where `^` matches. Counts as work.
  bool search(WorkMeter& meter, std::string_view subject, std::size_t from, PatternMatch& match,
              Site site);

 private:
  // Where a repetition can go on in another way: a greedy one in [low, at), a lazy one from `at`
  // on.
  struct Choice {
    const Instruction* instruction;
    const char* low;
    const char* at;
  };

  explicit Matcher(MatcherProgram&& program);

  // The match; without any data if there is none.
  template <class Work>
  std::string_view searchFrom(Work work);
  template <class Work>
  const char* tailStart(Work& work) const;
  template <class Work>
  const char* findAttempt(Work& work, const char* next) const;
  template <class Work>
  const char* findText(Work& work, const char* next, MatcherText text) const;
  // Returns the end of the match that starts there, or null.
  template <class Work>
  const char* matchAt(Work& work, const char* start);
  // Goes on with a choice that was made; false when there is none.
  template <class Work>
  bool resume(Work& work, Choice*& top, const Instruction*& next, const char*& at);
  template <class Work>
  bool resumeLazy(Work& work, Choice*& top, const char*& at);

  MatcherProgram program_;
  // One for each repetition that can make one, since nothing is around a repetition.
  std::vector<Choice> choices_;
  std::vector<const char*> groupStarts_;
  std::vector<std::string_view> captures_;
  // Of the search that is under way.
  const char* begin_ = nullptr;
  const char* end_ = nullptr;
  const char* firstRunEnd_ = nullptr;
};

}  // namespace tarvel::lua::internal
