#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "lua/value/string_object.h"

// Searching for patterns: the translated and compiled ones, and those that are plain text.

namespace tarvel::lua::internal {

class PatternExpression;

// The views are into the subject.
struct PatternMatch {
  std::size_t start = 0;  // offset of the first byte
  std::size_t end = 0;    // offset past the last byte
  // One per group of the expression; empty for a group that took no part.
  std::vector<std::string_view> captures;
  std::string_view text;

  // Becomes the match of plain text at an offset.
  void set(std::string_view subject, std::size_t offset, std::size_t length);
};

// The compiled patterns of one interpreter, the latest few. A pattern that is rejected is not kept,
// so it is rejected afresh each time.
class PatternCache {
 public:
  PatternCache();
  ~PatternCache();
  PatternCache(const PatternCache&) = delete;
  PatternCache& operator=(const PatternCache&) = delete;

  // Valid until the next call. Throws std::regex_error.
  PatternExpression& lookup(StringObject& pattern);

 private:
  struct HashOfBytes {
    std::size_t operator()(StringObject* text) const noexcept { return text->hash(); }
  };
  struct SameBytes {
    bool operator()(StringObject* a, StringObject* b) const noexcept { return stringsEqual(a, b); }
  };
  using Expressions =
      std::unordered_map<StringObject*, std::unique_ptr<PatternExpression>, HashOfBytes, SameBytes>;

  void forgetOldest() noexcept;

  std::deque<OwnedValue> keys_;  // what the keys of kept_ point to, oldest first
  Expressions kept_;
  std::unique_ptr<PatternExpression> tooLongToKeep_;  // the latest such one
};

// Searches for one pattern, in the way that suits it: a pattern without magic bytes is plain text
// and needs no expression. Borrows the pattern; no other searcher of the cache may be made while
// it lives.
class PatternSearcher {
 public:
  // Throws std::regex_error.
  PatternSearcher(PatternCache& cache, StringObject& pattern, bool plain = false);

  // Finds the leftmost match in what follows the offset `from` (at most the subject's length). The
  // bytes before it do not exist for the expression, so `^` matches there. Throws std::regex_error
  // (error_stack) where the stack that is left may not do for the search.
  bool find(std::string_view subject, std::size_t from, PatternMatch& match) const;

  std::size_t captureCount() const noexcept;

 private:
  std::string_view text_;
  PatternExpression* expression_ = nullptr;  // null: plain text
};

// One search; `init` is an offset, past the subject's end nothing is found. Throws as
// PatternSearcher does.
bool findPattern(PatternCache& cache, std::string_view subject, StringObject& pattern,
                 std::size_t init, bool plain, PatternMatch& match);

}  // namespace tarvel::lua::internal
