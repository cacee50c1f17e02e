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

// The integer that a float is, without any tolerance; false for any other float.
inline bool exactInteger(double value, std::int64_t& out) noexcept {
  if (!(value >= -kTwoTo63 && value < kTwoTo63)) return false;
  out = static_cast<std::int64_t>(value);
  return static_cast<double>(out) == value;
}

// A number as a float, for operators that mix the two kinds; false for any other value.
inline bool tryAsFloat(const Value& value, double& out) noexcept {
  if (value.tag == kFloat) {
    out = value.number;
    return true;
  }
  out = static_cast<double>(value.integer);
  return value.tag == kInteger;
}

// The integer that a float within the epsilon of a whole number in range becomes; false for any
// other float. NaN is not whole here.
bool wholeNumber(double value, std::int64_t& out) noexcept;

// A filter for normalizeWhole: true only where that keeps the float as it is. False decides
// nothing.
inline bool isClearlyFractional(double value) noexcept {
  // Adding and subtracting this rounds to an integer; without the conversions between registers
  // that a cast takes. Values too large for that are whole, and so is then what is left of them.
  constexpr double kRounding = 6755399441055744.0;  // 1.5 * 2^52
  const double fraction = value - ((value + kRounding) - kRounding);
  return std::fabs(std::fabs(fraction) - 0.5) < 0.5 - kNumberEpsilon;
}

// The result of `+`, `-`, `*`, `%` and unary minus on floats: whole results become integers, a
// result beyond the 64-bit range by rounding up to 2^63 saturates, and NaN becomes the integer 0.
// All of this is the dialect's number model.
Value normalizeWhole(double result) noexcept;

inline bool isZeroDivisor(double divisor) noexcept { return std::fabs(divisor) <= kNumberEpsilon; }

}  // namespace tarvel::lua::internal
