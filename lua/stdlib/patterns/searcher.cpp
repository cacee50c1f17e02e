#include "lua/stdlib/patterns/searcher.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "lua/stdlib/patterns/expression.h"
#include "lua/stdlib/patterns/text_search.h"

namespace tarvel::lua::internal {

// ---- Compiled patterns --------------------------------------------------------------------------

namespace {

constexpr std::size_t kKeptPatterns = 256;
// Bytes of all kept expressions, and their part of the memory that the interpreter may take.
constexpr std::size_t kKeptMemory = std::size_t{1} << 20;
constexpr std::size_t kPartOfMemory = 8;
// Longer ones are rare, and their expressions take a hundred times their own memory.
constexpr std::size_t kLongestKeptPattern = 1024;  // bytes

}  // namespace

PatternCache::PatternCache(Heap& heap) : heap_(heap) {}
PatternCache::~PatternCache() = default;

PatternExpression& PatternCache::lookup(StringObject& pattern, Site site) {
  if (pattern.length > kLongestKeptPattern) {
    tooLongToKeep_.reset();
    tooLongToKeep_ = compile(pattern, site);
    return *tooLongToKeep_;
  }
  const auto found = kept_.find(&pattern);
  if (found == kept_.end()) return keep(pattern, compile(pattern, site));
  if (found->second.countedInRun != meter().currentRun()) countAgain(pattern, found->second, site);
  PatternExpression& expression = *found->second.expression;
  if (found->first == &pattern) recentOf(pattern) = {&pattern, &expression, meter().currentRun()};
  return expression;
}

// Where there is no memory, what is kept makes room.
std::unique_ptr<PatternExpression> PatternCache::compile(StringObject& pattern, Site site) {
  try {
    return std::make_unique<PatternExpression>(heap_, pattern.view(), site);
  } catch (const std::bad_alloc&) {
    forgetAll();
    return std::make_unique<PatternExpression>(heap_, pattern.view(), site);
  }
}

PatternExpression& PatternCache::keep(StringObject& pattern,
                                      std::unique_ptr<PatternExpression> expression) {
  const std::size_t room = std::min(kKeptMemory, heap_.memoryLimit() / kPartOfMemory);
  keptMemory_ += expression->memory();
  while (!keys_.empty() && (keys_.size() == kKeptPatterns || keptMemory_ > room)) forgetOldest();
  try {
    keys_.push_back(OwnedValue::share(Value(&pattern)));
    Kept kept{std::move(expression), meter().currentRun()};
    return *kept_.emplace(&pattern, std::move(kept)).first->second.expression;
  } catch (...) {
    forgetAll();
    throw;
  }
}

// The first time in a run: it stands behind those that the run has not used.
void PatternCache::countAgain(StringObject& pattern, Kept& kept, Site site) {
  meter().spend(kept.expression->stepsForCompiling(), site);
  kept.countedInRun = meter().currentRun();
  const auto key = std::find_if(keys_.begin(), keys_.end(), [&pattern](const OwnedValue& text) {
    return stringsEqual(text.get().string, &pattern);
  });
  std::rotate(key, key + 1, keys_.end());
}

void PatternCache::forgetOldest() noexcept {
  recents_ = {};
  const auto oldest = kept_.find(keys_.front().get().string);
  keptMemory_ -= oldest->second.expression->memory();
  kept_.erase(oldest);
  keys_.pop_front();
}

void PatternCache::forgetAll() noexcept {
  recents_ = {};
  kept_.clear();
  keys_.clear();
  keptMemory_ = 0;
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

}  // namespace

void PatternSearcher::lookUp(PatternCache& cache, StringObject& pattern) {
  if (!isPlainText(text_)) expression_ = &cache.lookup(pattern, site_);
}

bool PatternSearcher::isForNow() const noexcept {
  return expression_ != nullptr && (expression_->canFail() || text_.size() > kLongestKeptPattern);
}

bool PatternSearcher::find(std::string_view subject, std::size_t from, PatternMatch& match) const {
  if (expression_ != nullptr) return expression_->search(subject, from, match, site_);
  const std::size_t start = findText(meter_, subject, text_, from, site_);
  if (start == std::string_view::npos) return false;
  match.set(subject, start, text_.size());
  match.captures = {};
  return true;
}

std::size_t PatternSearcher::captureCount() const noexcept {
  return expression_ != nullptr ? expression_->captureCount() : 0;
}

bool findPattern(PatternCache& cache, std::string_view subject, StringObject& pattern,
                 std::size_t init, bool plain, PatternMatch& match, Site site) {
  if (init > subject.size()) return false;
  return PatternSearcher(cache, pattern, site, plain).find(subject, init, match);
}

}  // namespace tarvel::lua::internal
