#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "lua/stdlib/patterns/matcher.h"
#include "lua/stdlib/patterns/pattern_match.h"
#include "lua/stdlib/patterns/regex_search.h"
#include "lua/value/errors.h"
#include "lua/value/memory_charge.h"

namespace tarvel::lua::internal {

// A pattern ready for searching: by a matcher of our own if it is simple enough, else by
// std::regex. Both find the same.
class PatternExpression {
 public:
  // As RegexSearch, for patterns that go there.
  PatternExpression(Heap& heap, std::string_view pattern, Site site);

  std::uint64_t stepsForCompiling() const noexcept;
  std::size_t memory() const noexcept;  // bytes
  std::size_t captureCount() const noexcept;
  bool canFail() const noexcept { return !matcher_; }  // in a search

  // As PatternSearcher::find.
  bool search(std::string_view subject, std::size_t from, PatternMatch& match, Site site) {
    return matcher_ ? matcher_->search(meter_, subject, from, match, site)
                    : regex_->search(subject, from, match, site);
  }

 private:
  WorkMeter& meter_;
  MemoryCharge memory_;
  std::size_t length_;  // of the pattern, in bytes
  std::optional<Matcher> matcher_;
  std::unique_ptr<RegexSearch> regex_;  // where there is no matcher
};

}  // namespace tarvel::lua::internal
