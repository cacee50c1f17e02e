#include "lua/value/number_rules.h"

namespace tarvel::lua::internal {

bool wholeNumber(double value, std::int64_t& out) noexcept {
  const double rounded = std::round(value);
  if (!(std::fabs(value - rounded) <= kNumberEpsilon)) return false;
  if (rounded < -kTwoTo63 || rounded > kTwoTo63) return false;
  out = saturatingInteger(rounded);
  return true;
}

// The tests ask whether the value is *not* whole, so NaN passes them all and becomes 0; this is
// meant.
Value normalizeWhole(double result) noexcept {
  if (isClearlyFractional(result)) return Value(result);
  const double rounded = std::round(result);
  if (std::fabs(result - rounded) > kNumberEpsilon) return Value(result);
  if (rounded < -kTwoTo63 || rounded > kTwoTo63) return Value(result);
  return Value(saturatingInteger(rounded));
}

}  // namespace tarvel::lua::internal
