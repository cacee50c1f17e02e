#pragma once

#include <cstdint>

#include "lua/frontend/token.h"
#include "lua/value/number_rules.h"
#include "lua/value/value.h"

// The arithmetic operators where they take no more than a few instructions. Everything else, errors
// included, goes through operators.h.

namespace tarvel::lua::internal {

enum class Outcome : std::uint8_t {
  Done,
  Float,    // a float, which normalizeWhole has yet to see
  Nothing,  // left to the rules out of line
};

inline Outcome doneIf(bool isDone) noexcept { return isDone ? Outcome::Done : Outcome::Nothing; }

inline Outcome floatOutcome(double result, Value& out) noexcept {
  out = Value(result);
  return isClearlyFractional(result) ? Outcome::Done : Outcome::Float;
}

// Each operator: its result for two integers and for two floats.

struct Add {
  static constexpr TokenKind kToken = TokenKind::Plus;
  static Outcome integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out.tag = kInteger;
    return doneIf(!__builtin_add_overflow(a, b, &out.integer));
  }
  static Outcome floats(double a, double b, Value& out) noexcept {
    return floatOutcome(a + b, out);
  }
};

struct Subtract {
  static constexpr TokenKind kToken = TokenKind::Minus;
  static Outcome integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out.tag = kInteger;
    return doneIf(!__builtin_sub_overflow(a, b, &out.integer));
  }
  static Outcome floats(double a, double b, Value& out) noexcept {
    return floatOutcome(a - b, out);
  }
};

struct Multiply {
  static constexpr TokenKind kToken = TokenKind::Star;
  static Outcome integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out.tag = kInteger;
    return doneIf(!__builtin_mul_overflow(a, b, &out.integer));
  }
  static Outcome floats(double a, double b, Value& out) noexcept {
    return floatOutcome(a * b, out);
  }
};

struct Divide {
  static constexpr TokenKind kToken = TokenKind::Slash;
  static Outcome integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out = Value(static_cast<double>(a) / static_cast<double>(b));
    return doneIf(b != 0);
  }
  static Outcome floats(double a, double b, Value& out) noexcept {
    out = Value(a / b);
    return doneIf(!isZeroDivisor(b));
  }
};

struct Modulo {
  static constexpr TokenKind kToken = TokenKind::Percent;
  static Outcome integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    // A 32-bit division is several times as fast on many processors.
    if (static_cast<std::uint64_t>(a | b) >> 32 == 0 && b != 0) [[likely]] {
      out = Value(
          static_cast<std::int64_t>(static_cast<std::uint32_t>(a) % static_cast<std::uint32_t>(b)));
      return Outcome::Done;
    }
    if (b <= 0) return Outcome::Nothing;
    out = Value(a % b);
    return Outcome::Done;
  }
  // Of whole floats, as `n / 2` gives them: the remainder of exact floats is exact.
  static Outcome floats(double a, double b, Value& out) noexcept {
    std::int64_t dividend = 0;
    std::int64_t divisor = 0;
    if (!exactInteger(a, dividend) || !exactInteger(b, divisor)) return Outcome::Nothing;
    return integers(dividend, divisor, out);
  }
};

template <class Op>
[[gnu::always_inline]] inline Outcome tryArithmetic(Value left, Value right, Value& out) noexcept {
  if (left.tag == kInteger && right.tag == kInteger) [[likely]] {
    return Op::integers(left.integer, right.integer, out);
  }
  if (left.tag == kFloat && right.tag == kFloat) [[likely]] {
    return Op::floats(left.number, right.number, out);
  }
  double a = 0;
  double b = 0;
  if (!tryAsFloat(left, a) || !tryAsFloat(right, b)) return Outcome::Nothing;
  return Op::floats(a, b, out);
}

}  // namespace tarvel::lua::internal
