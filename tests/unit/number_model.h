#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "lua/value/value.h"

// The rules of the operators on numbers, as the language's description has them, and numbers to try
// them on.

namespace tarvel::lua::internal {

inline constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
__extension__ typedef __int128 Wide;

inline constexpr double kEpsilon = 2.220446049250313e-16;
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- The rules, without regard to speed ---------------------------------------------------------

inline std::int64_t plainSaturate(double whole) {
  if (std::isnan(whole)) return 0;
  if (whole >= 0x1p63) return kHighest;
  return whole <= -0x1p63 ? kLowest : static_cast<std::int64_t>(whole);
}

inline bool staysFloat(double result) {
  const double rounded = std::round(result);
  return std::fabs(result - rounded) > kEpsilon || std::fabs(rounded) > 0x1p63;
}

inline Value plainNormalize(double result) {
  return staysFloat(result) ? Value(result) : Value(plainSaturate(std::round(result)));
}

// Numbers of two kinds as floats, equal within the epsilon, ordered without it.
inline bool plainEqual(const Value& left, const Value& right) {
  if (left.isInteger() && right.isInteger()) return left.integer == right.integer;
  if (left.isFloat() && right.isFloat()) return left.number == right.number;
  return std::fabs(left.asFloat() - right.asFloat()) <= kEpsilon;
}

inline bool plainLess(const Value& left, const Value& right, bool orEqual) {
  if (left.isInteger() && right.isInteger()) {
    return orEqual ? left.integer <= right.integer : left.integer < right.integer;
  }
  return orEqual ? left.asFloat() <= right.asFloat() : left.asFloat() < right.asFloat();
}

template <class Operation>
Value plainArithmetic(const Value& left, const Value& right, Operation operation) {
  if (left.isInteger() && right.isInteger()) {
    const Wide result = operation(Wide{left.integer}, Wide{right.integer});
    if (result >= kLowest && result <= kHighest) return Value(static_cast<std::int64_t>(result));
  }
  return plainNormalize(operation(left.asFloat(), right.asFloat()));
}

struct Remainder {
  Wide operator()(Wide a, Wide b) const { return a % b; }
  double operator()(double a, double b) const { return std::fmod(a, b); }
};

inline const std::pair<const char*, Value (*)(const Value&, const Value&)> kOperators[] = {
    {"+", [](auto& a, auto& b) { return plainArithmetic(a, b, std::plus<>()); }},
    {"-", [](auto& a, auto& b) { return plainArithmetic(a, b, std::minus<>()); }},
    {"*", [](auto& a, auto& b) { return plainArithmetic(a, b, std::multiplies<>()); }},
    {"%", [](auto& a, auto& b) { return plainArithmetic(a, b, Remainder()); }},
    {"/", [](auto& a, auto& b) { return Value(a.asFloat() / b.asFloat()); }},
    {"==", [](auto& a, auto& b) { return Value(plainEqual(a, b)); }},
    {"~=", [](auto& a, auto& b) { return Value(!plainEqual(a, b)); }},
    {"<", [](auto& a, auto& b) { return Value(plainLess(a, b, false)); }},
    {"<=", [](auto& a, auto& b) { return Value(plainLess(a, b, true)); }},
    {">", [](auto& a, auto& b) { return Value(plainLess(b, a, false)); }},
    {">=", [](auto& a, auto& b) { return Value(plainLess(b, a, true)); }},
};

// ---- Numbers to try -----------------------------------------------------------------------------

// Floats around every place where a rule changes its mind.
inline std::vector<double> edgeFloats() {
  std::vector<double> floats = {kInfinity, std::nan(""), 1e300, 5e-324, kEpsilon};
  for (const double center :
       {0.0, 0.5, 1.0, 1.5, 2.0, 3.0, 100.0, 0x1p31, 0x1p32, 0x1p51, 0x1p52, 0x1p53, 0x1p63}) {
    for (const double offset : {0.0, 0.5, 1.0, kEpsilon, 2 * kEpsilon, -kEpsilon / 2, 0.25}) {
      double below = center + offset;
      double above = below;
      for (int step = 0; step < 6; ++step) {
        floats.insert(floats.end(), {below, above, -below, -above});
        below = std::nextafter(below, -kInfinity);
        above = std::nextafter(above, kInfinity);
      }
    }
  }
  return floats;
}

inline Value anyNumber(std::mt19937_64& random) {
  static const std::vector<double> floats = edgeFloats();
  static const std::int64_t integers[] = {kLowest,  kLowest + 1, -1,         0,         1,
                                          kHighest, 1LL << 31,   3037000499, 1LL << 32, -100};
  switch (random() % 5) {
    case 0:
      return Value(std::bit_cast<double>(random()));
    case 1:
      return Value(floats[random() % floats.size()]);
    case 2:
      return Value(static_cast<double>(random() % 1000000) / 997);
    case 3:
      return Value(integers[random() % std::size(integers)]);
    default:
      return Value(static_cast<std::int64_t>(random()) >> (random() % 64));
  }
}

// A number close to another one, or the same of the other kind.
inline Value neighbour(std::mt19937_64& random, const Value& value) {
  const double number = value.asFloat();
  if (random() % 2 == 0)
    return Value(std::nextafter(number, random() % 2 == 0 ? kInfinity : -kInfinity));
  return value.isInteger() ? Value(number) : Value(plainSaturate(number));
}

// Kind and bits, so that -0.0 and 0.0 differ and every NaN is alike.
inline std::string exact(const Value& value) {
  if (!value.isFloat()) return (value.isInteger() ? "i" : "") + value.toString();
  if (std::isnan(value.number)) return "nan";
  return value.toString() + " " + std::to_string(std::bit_cast<std::uint64_t>(value.number));
}

}  // namespace tarvel::lua::internal
