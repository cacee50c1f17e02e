#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

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

namespace tarvel::lua::internal {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
__extension__ typedef __int128 Wide;

constexpr double kEpsilon = 2.220446049250313e-16;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- The rules as they are written, without regard to speed -------------------------------------

std::int64_t plainSaturate(double whole) {
  if (std::isnan(whole)) return 0;
  if (whole >= 0x1p63) return kHighest;
  return whole <= -0x1p63 ? kLowest : static_cast<std::int64_t>(whole);
}

bool staysFloat(double result) {
  const double rounded = std::round(result);
  return std::fabs(result - rounded) > kEpsilon || std::fabs(rounded) > 0x1p63;
}

Value plainNormalize(double result) {
  return staysFloat(result) ? Value(result) : Value(plainSaturate(std::round(result)));
}

// Numbers of two kinds as floats, equal within the epsilon, ordered without it.
bool plainEqual(const Value& left, const Value& right) {
  if (left.isInteger() && right.isInteger()) return left.integer == right.integer;
  if (left.isFloat() && right.isFloat()) return left.number == right.number;
  return std::fabs(left.asFloat() - right.asFloat()) <= kEpsilon;
}

bool plainLess(const Value& left, const Value& right, bool orEqual) {
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

const std::pair<const char*, Value (*)(const Value&, const Value&)> kOperators[] = {
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
std::vector<double> edgeFloats() {
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

Value anyNumber(std::mt19937_64& random) {
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
Value neighbour(std::mt19937_64& random, const Value& value) {
  const double number = value.asFloat();
  if (random() % 2 == 0)
    return Value(std::nextafter(number, random() % 2 == 0 ? kInfinity : -kInfinity));
  return value.isInteger() ? Value(number) : Value(plainSaturate(number));
}

// Kind and bits, so that -0.0 and 0.0 differ and every NaN is alike.
std::string exact(const Value& value) {
  if (!value.isFloat()) return value.toString() + (value.isInteger() ? " integer" : "");
  if (std::isnan(value.number)) return "nan";
  return value.toString() + " " + std::to_string(std::bit_cast<std::uint64_t>(value.number));
}

// ---- Operators in scripts -----------------------------------------------------------------------

// Where an operator can stand, so that each of its ways through the evaluator is taken: `$` is the
// operator, A and B hold the operands, the results are collected in r.
const char* const kShapes[] = {
    "local a, b = A[i], B[i] r[i] = a $ b",
    "r[i] = A[i] $ B[i]",
    "local a = A[i] r[i] = a $ B[i]",
    "local b = B[i] r[i] = A[i] $ b",
    "local a, b = A[i], B[i] local c = a $ b r[i] = c",
    "local a, b = A[i], B[i] local c = 0 c = a $ b r[i] = c",
    "local a, b = A[i], B[i] a = a $ b r[i] = a",
    "local a, b = A[i], B[i] b = a $ b r[i] = b",
    "g, h = A[i], B[i] g = g $ h r[i] = g",
    "r[i] = same(A[i]) $ same(B[i])",
    "local a, b = A[i], B[i] r[i] = (function() return a $ b end)()",
    "local a, b = A[i], B[i]; (function() b = a $ b end)() r[i] = b",
    // As conditions; only the truth of the result counts.
    "local a, b = A[i], B[i] if a $ b then r[i] = true else r[i] = false end",
    "r[i] = false if A[i] $ B[i] then r[i] = true end",
    "local a, b = A[i], B[i] r[i] = false while a $ b do r[i] = true break end",
    "local a, b = A[i], B[i] r[i] = a $ b and true or false",
    "local a, b = A[i], B[i] if not (a $ b) then r[i] = false else r[i] = true end",
};
constexpr std::size_t kFirstCondition = 12;

class ScriptedOperators : public ::testing::Test {
 protected:
  ScriptedOperators() {
    std::mt19937_64 random(59);
    for (int i = 0; i < 4000; ++i) {
      left_.push_back(anyNumber(random));
      right_.push_back(i % 3 == 0 ? neighbour(random, left_.back()) : anyNumber(random));
      if (std::fabs(right_.back().asFloat()) <= kEpsilon) right_.back() = Value(std::int64_t{3});
    }
    vm_.runScriptString("function same(x) return x end", "setup");
    vm_.setGlobal("A", list(left_));
    vm_.setGlobal("B", list(right_));
  }

  static LuaValue list(const std::vector<Value>& values) {
    auto sequence = std::make_shared<LuaValue::Sequence>();
    for (const Value& value : values) {
      sequence->push_back(value.isInteger() ? LuaValue(value.integer) : LuaValue(value.number));
    }
    return LuaValue(std::move(sequence));
  }

  // Runs the body for each pair and compares r[i] with what is expected of the pair.
  void check(std::string body, const std::string& op,
             const std::function<Value(const Value&, const Value&)>& expected) {
    body.replace(body.find('$'), 1, op);
    const LuaResult result =
        vm_.runScriptString("local r = {} for i = 1, #A do " + body + " end return r", "pairs");
    ASSERT_TRUE(result.ok) << body << ": " << result.error;
    const auto& results = *std::get<std::shared_ptr<LuaValue::Sequence>>(result.value.data);
    ASSERT_EQ(left_.size(), results.size()) << body;
    for (std::size_t i = 0; i < left_.size(); ++i) {
      const auto& actual = results[i].data;
      const Value value = std::holds_alternative<std::int64_t>(actual) ? Value(std::get<1>(actual))
                          : std::holds_alternative<double>(actual)     ? Value(std::get<2>(actual))
                                                                       : Value(std::get<3>(actual));
      ASSERT_EQ(exact(expected(left_[i], right_[i])), exact(value))
          << body << " with " << exact(left_[i]) << " and " << exact(right_[i]);
    }
  }

  LuaVM vm_;
  std::vector<Value> left_;
  std::vector<Value> right_;
};

TEST_F(ScriptedOperators, FollowTheRules) {
  for (const auto& [op, rule] : kOperators) {
    for (std::size_t i = 0; i < std::size(kShapes); ++i) {
      check(kShapes[i], op, [&, &apply = rule](auto& a, auto& b) {
        const Value result = apply(a, b);
        return i < kFirstCondition ? result : Value(result.isTruthy());
      });
    }
    // Constants are a shape of their own.
    for (const char* const text : {"1", "3", "0.5", "2.0", "4294967296", "9223372036854775807"}) {
      const std::string constant = text;
      const Value number = constant.find('.') == std::string::npos
                               ? Value(std::int64_t{std::stoll(constant)})
                               : Value(std::stod(constant));
      check("local b = B[i] r[i] = " + constant + " $ b", op,
            [&, &apply = rule](auto&, auto& b) { return apply(number, b); });
      check("local a = A[i] local c = a $ " + constant + " r[i] = c", op,
            [&, &apply = rule](auto& a, auto&) { return apply(a, number); });
      check("local a = A[i] r[i] = false if a $ " + constant + " then r[i] = true end", op,
            [&, &apply = rule](auto& a, auto&) { return Value(apply(a, number).isTruthy()); });
    }
  }
  check("local a = A[i] r[i] = $a", "-", [](const Value& a, const Value&) {
    return a.isInteger() && a.integer != kLowest ? Value(-a.integer) : plainNormalize(-a.asFloat());
  });
}

}  // namespace
}  // namespace tarvel::lua::internal
