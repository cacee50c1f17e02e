#pragma once

#include <cstdint>

#include "lua/frontend/token.h"
#include "lua/value/number_rules.h"
#include "lua/value/value.h"

// The arithmetic operators where they take no more than a few instructions. Everything else, errors
// included, goes through operators.h.

namespace tarvel::lua::internal {

// Each operator: its result for two integers and for two floats. False leaves the case to the rules
// out of line.

struct Add {
  static constexpr TokenKind kToken = TokenKind::Plus;
  static bool integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out.tag = kInteger;
    return !__builtin_add_overflow(a, b, &out.integer);
  }
  static bool floats(double a, double b, Value& out) noexcept {
    out = Value(a + b);
    return isClearlyFractional(out.number);
  }
};

struct Subtract {
  static constexpr TokenKind kToken = TokenKind::Minus;
  static bool integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out.tag = kInteger;
    return !__builtin_sub_overflow(a, b, &out.integer);
  }
  static bool floats(double a, double b, Value& out) noexcept {
    out = Value(a - b);
    return isClearlyFractional(out.number);
  }
};

struct Multiply {
  static constexpr TokenKind kToken = TokenKind::Star;
  static bool integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out.tag = kInteger;
    return !__builtin_mul_overflow(a, b, &out.integer);
  }
  static bool floats(double a, double b, Value& out) noexcept {
    out = Value(a * b);
    return isClearlyFractional(out.number);
  }
};

struct Divide {
  static constexpr TokenKind kToken = TokenKind::Slash;
  static bool integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    out = Value(static_cast<double>(a) / static_cast<double>(b));
    return b != 0;
  }
  static bool floats(double a, double b, Value& out) noexcept {
    out = Value(a / b);
    return !isZeroDivisor(b);
  }
};

struct Modulo {
  static constexpr TokenKind kToken = TokenKind::Percent;
  static bool integers(std::int64_t a, std::int64_t b, Value& out) noexcept {
    // A 32-bit division is several times as fast on many processors.
    if (static_cast<std::uint64_t>(a | b) >> 32 != 0 || b == 0) return false;
    out = Value(
        static_cast<std::int64_t>(static_cast<std::uint32_t>(a) % static_cast<std::uint32_t>(b)));
    return true;
  }
  static bool floats(double, double, Value&) noexcept { return false; }
};

template <class Op>
inline bool tryArithmetic(Value left, Value right, Value& out) noexcept {
  if (left.tag == kInteger && right.tag == kInteger) [[likely]] {
    return Op::integers(left.integer, right.integer, out);
  }
  if (left.tag == kFloat && right.tag == kFloat) [[likely]] {
    return Op::floats(left.number, right.number, out);
  }
  double a = 0;
  double b = 0;
  if (!tryAsFloat(left, a) || !tryAsFloat(right, b)) return false;
  return Op::floats(a, b, out);
}

}  // namespace tarvel::lua::internal
