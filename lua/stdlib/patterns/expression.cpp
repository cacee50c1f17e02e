#include "lua/stdlib/patterns/expression.h"

#include <string>

#include "lua/stdlib/patterns/translation.h"

namespace tarvel::lua::internal {

namespace {

constexpr std::size_t kCompiledBytesPerStep = 4;

}  // namespace

PatternExpression::PatternExpression(Heap& heap, std::string_view pattern, Site site)
    : meter_(heap.meter()), memory_(heap), length_(pattern.size()) {
  RegexSearch::requireShort(meter_, pattern, site);
  const std::string expression = translateLuaPatternToRegex(pattern);
  matcher_ = Matcher::compile(expression);
  if (matcher_) {
    meter_.spend(stepsForCompiling(), site);
    memory_.add(matcher_->memory());
  } else {
    regex_ = std::make_unique<RegexSearch>(heap, pattern, expression, site);
  }
}

std::uint64_t PatternExpression::stepsForCompiling() const noexcept {
  return matcher_ ? length_ / kCompiledBytesPerStep : regex_->stepsForCompiling();
}

std::size_t PatternExpression::memory() const noexcept {
  return matcher_ ? matcher_->memory() : regex_->memory();
}

std::size_t PatternExpression::captureCount() const noexcept {
  return matcher_ ? matcher_->captureCount() : regex_->captureCount();
}

}  // namespace tarvel::lua::internal
