#pragma once

#include <array>
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

  // What `lookup` returned for this string object the last time, if that is still so and was in
  // this run; else null.
  PatternExpression* recall(const StringObject& pattern) noexcept {
    const Recent& recent = recentOf(pattern);
    const bool isIt = recent.pattern == &pattern && recent.run == meter().currentRun();
    return isIt ? recent.expression : nullptr;
  }

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
  // Of a pattern in `keys_`.
  struct Recent {
    const StringObject* pattern = nullptr;
    PatternExpression* expression = nullptr;
    std::uint64_t run = 0;
  };
  static constexpr std::size_t kRecents = 16;
  using Expressions = std::unordered_map<StringObject*, Kept, HashOfBytes, SameBytes>;

  std::unique_ptr<PatternExpression> compile(StringObject& pattern, Site site);
  Recent& recentOf(const StringObject& pattern) noexcept {
    const auto address = reinterpret_cast<std::uintptr_t>(&pattern);
    return recents_[(address / 32 ^ address / 512) % kRecents];
  }
  PatternExpression& keep(StringObject& pattern, std::unique_ptr<PatternExpression> expression);
  void countAgain(StringObject& pattern, Kept& kept, Site site);
  void forgetOldest() noexcept;
  void forgetAll() noexcept;

  Heap& heap_;
  std::deque<OwnedValue> keys_;  // what the keys of kept_ point to, oldest first
  Expressions kept_;
  std::array<Recent, kRecents> recents_;
  std::size_t keptMemory_ = 0;                        // bytes
  std::unique_ptr<PatternExpression> tooLongToKeep_;  // the latest such one
};

// Searches for one pattern, in the way that suits it: a pattern without magic bytes is plain text
// and needs no expression. Borrows the pattern; no other searcher of the cache may be made while
// it lives.
class PatternSearcher {
 public:
  // Throws as PatternCache::lookup does. What a search does counts as work.
  PatternSearcher(PatternCache& cache, StringObject& pattern, Site site, bool plain = false)
      : meter_(cache.meter()),
        site_(site),
        text_(pattern.view()),
        expression_(plain ? nullptr : cache.recall(pattern)) {
    meter_.spend(stepsForBytes(text_.size()), site);
    if (expression_ == nullptr && !plain) lookUp(cache, pattern);
  }

  // Finds the leftmost match in what follows the offset `from` (at most the subject's length). The
  // bytes before it do not exist for the expression, so `^` matches there. Throws std::regex_error
  // (error_stack) where the stack that is left may not do for the search.
  bool find(std::string_view subject, std::size_t from, PatternMatch& match) const;

  // Whether all searches should be made now: a later one could throw std::regex_error, or would
  // have to compile the pattern once more.
  bool isForNow() const noexcept;
  std::size_t captureCount() const noexcept;

 private:
  void lookUp(PatternCache& cache, StringObject& pattern);

  WorkMeter& meter_;
  Site site_;
  std::string_view text_;
  PatternExpression* expression_ = nullptr;  // null: plain text
};

// One search; `init` is an offset, past the subject's end nothing is found. Throws as
// PatternSearcher does.
bool findPattern(PatternCache& cache, std::string_view subject, StringObject& pattern,
                 std::size_t init, bool plain, PatternMatch& match, Site site);

// Calls visit(match) for each match from left to right. Each search sees what follows the match
// before it, or, where that was empty, what follows the next byte.
template <class Visit>
void forEachMatch(WorkMeter& meter, const PatternSearcher& searcher, std::string_view subject,
                  Site site, Visit visit) {
  PatternMatch match;
  std::size_t cursor = 0;
  while (searcher.find(subject, cursor, match)) {
    meter.step(site);
    visit(match);
    cursor = match.end;
    if (match.start != match.end) continue;
    if (cursor == subject.size()) return;
    ++cursor;
  }
}

}  // namespace tarvel::lua::internal
