#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "lua/stdlib/patterns/pattern_match.h"
#include "lua/value/errors.h"
#include "lua/value/heap.h"
#include "lua/value/string_object.h"
#include "lua/value/work_meter.h"

// Searching for patterns: the translated and compiled ones, and those that are plain text.

namespace tarvel::lua::internal {

class PatternExpression;

// The compiled patterns of one interpreter, the latest few. A pattern that is rejected is not kept,
// so it is rejected afresh each time.
//
// Compiling counts as work, and each run counts it as though it had begun with nothing compiled: so
// what ran before does not matter.
class PatternCache {
 public:
  explicit PatternCache(Heap& heap);
  ~PatternCache();
  PatternCache(const PatternCache&) = delete;
  PatternCache& operator=(const PatternCache&) = delete;

  // Valid until the next call. Throws std::regex_error; in a supervised interpreter raises "pattern
  // is too complex" at `site` for one that would take too long to compile.
  PatternExpression& lookup(StringObject& pattern, Site site);

  WorkMeter& meter() noexcept { return heap_.meter(); }

 private:
  struct HashOfBytes {
    std::size_t operator()(StringObject* text) const noexcept { return text->hash(); }
  };
  struct SameBytes {
    bool operator()(StringObject* a, StringObject* b) const noexcept { return stringsEqual(a, b); }
  };
  struct Kept {
    std::unique_ptr<PatternExpression> expression;
    std::uint64_t countedInRun;
  };
  using Expressions = std::unordered_map<StringObject*, Kept, HashOfBytes, SameBytes>;

  std::unique_ptr<PatternExpression> compile(StringObject& pattern, Site site);
  PatternExpression& keep(StringObject& pattern, std::unique_ptr<PatternExpression> expression);
  void countAgain(StringObject& pattern, Kept& kept, Site site);
  void forgetOldest() noexcept;
  void forgetAll() noexcept;

  Heap& heap_;
  std::deque<OwnedValue> keys_;  // what the keys of kept_ point to, oldest first
  Expressions kept_;
  std::size_t keptMemory_ = 0;                        // bytes
  std::unique_ptr<PatternExpression> tooLongToKeep_;  // the latest such one
};

// Searches for one pattern, in the way that suits it: a pattern without magic bytes is plain text
// and needs no expression. Borrows the pattern; no other searcher of the cache may be made while
// it lives.
class PatternSearcher {
 public:
  // Throws as PatternCache::lookup does. What a search does counts as work.
  PatternSearcher(PatternCache& cache, StringObject& pattern, Site site, bool plain = false);

  // Finds the leftmost match in what follows the offset `from` (at most the subject's length). The
  // bytes before it do not exist for the expression, so `^` matches there. Throws std::regex_error
  // (error_stack) where the stack that is left may not do for the search.
  bool find(std::string_view subject, std::size_t from, PatternMatch& match) const;

  std::size_t captureCount() const noexcept;

 private:
  WorkMeter& meter_;
  Site site_;
  std::string_view text_;
  PatternExpression* expression_ = nullptr;  // null: plain text
};

// One search; `init` is an offset, past the subject's end nothing is found. Throws as
// PatternSearcher does.
bool findPattern(PatternCache& cache, std::string_view subject, StringObject& pattern,
                 std::size_t init, bool plain, PatternMatch& match, Site site);

}  // namespace tarvel::lua::internal
