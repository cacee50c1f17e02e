#include "lua/stdlib/patterns/searcher.h"

#include <algorithm>
#include <array>

#include "lua/stdlib/patterns/expression.h"

namespace tarvel::lua::internal {

// ---- Compiled patterns --------------------------------------------------------------------------

namespace {

constexpr std::size_t kKeptPatterns = 256;
// Longer ones are rare, and their expressions take a hundred times their own memory.
constexpr std::size_t kLongestKeptPattern = 1024;  // bytes

}  // namespace

PatternCache::PatternCache() = default;
PatternCache::~PatternCache() = default;

PatternExpression& PatternCache::lookup(StringObject& pattern) {
  if (pattern.length > kLongestKeptPattern) {
    tooLongToKeep_.reset();
    tooLongToKeep_ = std::make_unique<PatternExpression>(pattern.view());
    return *tooLongToKeep_;
  }
  if (const auto found = kept_.find(&pattern); found != kept_.end()) return *found->second;
  auto expression = std::make_unique<PatternExpression>(pattern.view());
  if (keys_.size() == kKeptPatterns) forgetOldest();
  keys_.push_back(OwnedValue::share(Value(&pattern)));
  try {
    return *kept_.emplace(&pattern, std::move(expression)).first->second;
  } catch (...) {
    keys_.pop_back();
    throw;
  }
}

void PatternCache::forgetOldest() noexcept {
  kept_.erase(keys_.front().get().string);
  keys_.pop_front();
}

// ---- Searching ----------------------------------------------------------------------------------

namespace {

constexpr auto kIsMagic = [] {
  std::array<bool, 256> table{};
  for (const char c : std::string_view("()*+.?^$-%[")) table[static_cast<unsigned char>(c)] = true;
  return table;
}();

bool isPlainText(std::string_view pattern) noexcept {
  return std::none_of(pattern.begin(), pattern.end(),
                      [](char c) { return kIsMagic[static_cast<unsigned char>(c)]; });
}

bool findText(std::string_view subject, std::string_view text, std::size_t from,
              PatternMatch& match) {
  const std::size_t start = subject.find(text, from);
  if (start == std::string_view::npos) return false;
  match.set(subject, start, text.size());
  return true;
}

}  // namespace

void PatternMatch::set(std::string_view subject, std::size_t offset, std::size_t length) {
  start = offset;
  end = offset + length;
  captures.clear();
  text = subject.substr(offset, length);
}

PatternSearcher::PatternSearcher(PatternCache& cache, StringObject& pattern, bool plain)
    : text_(pattern.view()) {
  if (!plain && !isPlainText(text_)) expression_ = &cache.lookup(pattern);
}

bool PatternSearcher::find(std::string_view subject, std::size_t from, PatternMatch& match) const {
  return expression_ != nullptr ? expression_->search(subject, from, match)
                                : findText(subject, text_, from, match);
}

std::size_t PatternSearcher::captureCount() const noexcept {
  return expression_ != nullptr ? expression_->captureCount() : 0;
}

bool findPattern(PatternCache& cache, std::string_view subject, StringObject& pattern,
                 std::size_t init, bool plain, PatternMatch& match) {
  if (init > subject.size()) return false;
  return PatternSearcher(cache, pattern, plain).find(subject, init, match);
}

}  // namespace tarvel::lua::internal
