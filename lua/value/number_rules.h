#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "lua/value/value.h"

// The number model's own rules: when a float counts as whole, and how floats become integers. The
// one home of the epsilon.

namespace tarvel::lua::internal {

// The distance at which a float counts as whole, a divisor as zero, and an integer as equal to a
// float.
constexpr double kNumberEpsilon = 2.220446049250313e-16;
constexpr double kTwoTo63 = 9223372036854775808.0;

// Truncates toward zero; beyond the 64-bit range the nearest limit, NaN gives 0.
inline std::int64_t saturatingInteger(double value) noexcept {
  if (value >= kTwoTo63) return std::numeric_limits<std::int64_t>::max();
  if (value < -kTwoTo63) return std::numeric_limits<std::int64_t>::min();
  return std::isnan(value) ? 0 : static_cast<std::int64_t>(value);
}

// The integer that a float within the epsilon of a whole number in range becomes; false for any
// other float. NaN is not whole here.
bool wholeNumber(double value, std::int64_t& out) noexcept;

// The rule of normalizeWhole, for the values that its filter does not decide.
Value normalizeExactly(double result) noexcept;

// The result of `+`, `-`, `*`, `%` and unary minus on floats: whole results become integers, a
// result beyond the 64-bit range by rounding up to 2^63 saturates, and NaN becomes the integer 0.
// All of this is the dialect's number model.
inline Value normalizeWhole(double result) noexcept {
  // A float whose fraction is clearly away from 0 and 1 stays a float: the filter never keeps what
  // the rule converts.
  if (std::fabs(result) < 4503599627370496.0) {
    const auto truncated = static_cast<std::int64_t>(result);
    const double fraction = result - static_cast<double>(truncated);
    if (std::fabs(std::fabs(fraction) - 0.5) < 0.5 - kNumberEpsilon) return Value(result);
    if (fraction == 0.0) return Value(truncated);
  }
  return normalizeExactly(result);
}

inline bool isZeroDivisor(double divisor) noexcept { return std::fabs(divisor) <= kNumberEpsilon; }

}  // namespace tarvel::lua::internal
