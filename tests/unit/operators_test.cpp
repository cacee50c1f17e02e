#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "lua/value/value.h"
#include "tests/unit/script_outcome.h"

// The operators on pairs of numbers against their rules, as the language's description has them.
// That operands in every form give what these give: tests/fuzz/many_ways.cpp.

namespace tarvel::lua::internal {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
constexpr double kEpsilon = 2.220446049250313e-16;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
__extension__ typedef __int128 Wide;

// ---- The rules, without regard to speed ---------------------------------------------------------

std::int64_t saturate(double whole) {
  if (std::isnan(whole)) return 0;
  if (whole >= 0x1p63) return kHighest;
  return whole <= -0x1p63 ? kLowest : static_cast<std::int64_t>(whole);
}

Value normalize(double result) {
  const double rounded = std::round(result);
  const bool isFloat = std::fabs(result - rounded) > kEpsilon || std::fabs(rounded) > 0x1p63;
  return isFloat ? Value(result) : Value(saturate(rounded));
}

// Numbers of two kinds as floats, equal within the epsilon, ordered without it.
bool equal(const Value& left, const Value& right) {
  if (left.isInteger() && right.isInteger()) return left.integer == right.integer;
  if (left.isFloat() && right.isFloat()) return left.number == right.number;
  return std::fabs(left.asFloat() - right.asFloat()) <= kEpsilon;
}

template <class Order>
Value ordered(const Value& left, const Value& right, Order order) {
  if (left.isInteger() && right.isInteger()) return Value(order(left.integer, right.integer));
  return Value(order(left.asFloat(), right.asFloat()));
}

template <class Operation>
Value arithmetic(const Value& left, const Value& right, Operation operation) {
  if (left.isInteger() && right.isInteger()) {
    const Wide result = operation(Wide{left.integer}, Wide{right.integer});
    if (result >= kLowest && result <= kHighest) return Value(static_cast<std::int64_t>(result));
  }
  return normalize(operation(left.asFloat(), right.asFloat()));
}

struct Remainder {
  Wide operator()(Wide a, Wide b) const { return a % b; }
  double operator()(double a, double b) const { return std::fmod(a, b); }
};

const std::pair<const char*, Value (*)(const Value&, const Value&)> kOperators[] = {
    {"+", [](auto& a, auto& b) { return arithmetic(a, b, std::plus<>()); }},
    {"-", [](auto& a, auto& b) { return arithmetic(a, b, std::minus<>()); }},
    {"*", [](auto& a, auto& b) { return arithmetic(a, b, std::multiplies<>()); }},
    {"%", [](auto& a, auto& b) { return arithmetic(a, b, Remainder()); }},
    {"/", [](auto& a, auto& b) { return Value(a.asFloat() / b.asFloat()); }},
    {"==", [](auto& a, auto& b) { return Value(equal(a, b)); }},
    {"~=", [](auto& a, auto& b) { return Value(!equal(a, b)); }},
    {"<", [](auto& a, auto& b) { return ordered(a, b, std::less<>()); }},
    {"<=", [](auto& a, auto& b) { return ordered(a, b, std::less_equal<>()); }},
    {">", [](auto& a, auto& b) { return ordered(a, b, std::greater<>()); }},
    {">=", [](auto& a, auto& b) { return ordered(a, b, std::greater_equal<>()); }},
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
  return value.isInteger() ? Value(number) : Value(saturate(number));
}

LuaValue publicValue(const Value& number) {
  return number.isInteger() ? LuaValue(number.integer) : LuaValue(number.number);
}

// Kind and bits, so that -0.0 and 0.0 differ and every NaN is alike.
std::string exact(const LuaValue& value) {
  const double* const number = std::get_if<double>(&value.data);
  if (number == nullptr) return typed(value);
  return std::isnan(*number) ? "nan" : std::to_string(std::bit_cast<std::uint64_t>(*number));
}

std::string exact(const Value& value) {
  return exact(value.isNumber() ? publicValue(value) : LuaValue(value.isTruthy()));
}

TEST(Operators, GiveWhatTheRulesSay) {
  std::mt19937_64 random(59);
  LuaVM vm;
  run(vm, "V = {} function same(v) return v end function add(v) V[#V + 1] = v end");
  std::vector<Value> numbers{Value(kHighest)};
  while (numbers.size() < 100)
    numbers.push_back(numbers.size() % 3 == 0 ? neighbour(random, numbers.back())
                                              : anyNumber(random));
  for (const Value& number : numbers) vm.call<void>("add", publicValue(number)).value();
  // The results of applying an operator to each number, or pair of numbers.
  const auto resultsOf = [&vm](const std::string& operation, const char* loops) {
    const std::string script = "local results = {} for i = 1, #V do " + std::string(loops) +
                               " local ok, result = pcall(function() return " + operation +
                               " end) results[#results + 1] = ok and result end end return results";
    return vm.call<std::vector<LuaValue>>(vm.load(script, "rules").value()).value();
  };
  for (const auto& [op, rule] : kOperators) {
    const std::string operation = "same(V[i]) " + std::string(op) + " same(V[j])";
    const auto results = resultsOf(operation, "for j = 1, #V do");
    ASSERT_EQ(numbers.size() * numbers.size(), results.size());
    for (std::size_t i = 0; i < results.size(); ++i) {
      const Value& left = numbers[i / numbers.size()];
      const Value& right = numbers[i % numbers.size()];
      const bool isDivision = std::strchr("/%", *op) != nullptr;
      const bool fails = isDivision && std::fabs(right.asFloat()) <= kEpsilon;
      ASSERT_EQ(exact(fails ? Value(false) : rule(left, right)), exact(results[i]))
          << exact(left) << ' ' << op << ' ' << exact(right);
    }
  }
  const auto negated = resultsOf("-same(V[i])", "if V then");
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const Value& number = numbers[i];
    const bool isExact = number.isInteger() && number.integer != kLowest;
    EXPECT_EQ(exact(isExact ? Value(-number.integer) : normalize(-number.asFloat())),
              exact(negated[i]));
  }
}

}  // namespace
}  // namespace tarvel::lua::internal
