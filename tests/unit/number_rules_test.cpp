#include "lua/value/number_rules.h"

#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "lua/evaluator/operators.h"
#include "lua/value/errors.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua::internal {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
__extension__ typedef __int128 Wide;

constexpr double kEpsilon = 2.220446049250313e-16;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNaN = std::nan("");

constexpr int kRounds = kSanitized ? 100000 : 1000000;

// ---- The rules as they are written, without regard to speed -------------------------------------

std::int64_t plainSaturate(double whole) {
  if (std::isnan(whole)) return 0;
  if (whole >= 9223372036854775808.0) return kHighest;
  if (whole <= -9223372036854775808.0) return kLowest;
  return static_cast<std::int64_t>(whole);
}

bool staysFloat(double result) {
  const double rounded = std::round(result);
  return std::fabs(result - rounded) > kEpsilon || rounded < -9223372036854775808.0 ||
         rounded > 9223372036854775808.0;
}

Value plainNormalize(double result) {
  return staysFloat(result) ? Value(result) : Value(plainSaturate(std::round(result)));
}

// Kind and bits, so that -0.0 and 0.0 differ and every NaN is alike.
std::string exact(const Value& value) {
  if (value.isInteger()) return "integer " + std::to_string(value.integer);
  if (!value.isFloat()) return value.toString();
  if (std::isnan(value.number)) return "float nan";
  return "float " + std::to_string(std::bit_cast<std::uint64_t>(value.number)) + " " +
         value.toString();
}

// ---- Numbers to try -----------------------------------------------------------------------------

std::int64_t anyInteger(std::mt19937_64& random) {
  const auto bits = static_cast<std::int64_t>(random());
  switch (random() % 4) {
    case 0:
      return bits;
    case 1:
      return bits >> (random() % 64);
    case 2:
      return bits % 100;
    default: {
      const std::int64_t edges[] = {kLowest,
                                    kLowest + 1,
                                    -1,
                                    0,
                                    1,
                                    kHighest - 1,
                                    kHighest,
                                    std::int64_t{1} << 32,
                                    (std::int64_t{1} << 32) - 1,
                                    std::int64_t{1} << 31,
                                    std::int64_t{3037000499},
                                    -2};
      return edges[random() % std::size(edges)];
    }
  }
}

// Floats around every place where a rule changes its mind.
std::vector<double> edgeFloats() {
  std::vector<double> floats = {kInfinity, kNaN, std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::denorm_min(), kEpsilon};
  for (const double center :
       {0.0,    0.5,    1.0,    1.5,    2.0,    2.5,    3.0,    100.0,  1e15,   0x1p31,
        0x1p32, 0x1p50, 0x1p51, 0x1p52, 0x1p53, 0x1p54, 0x1p62, 0x1p63, 0x1p64, 1e300}) {
    for (const double offset : {0.0, 0.5, -0.5, 1.0, kEpsilon, 2 * kEpsilon, kEpsilon / 2,
                                -kEpsilon / 2, -kEpsilon, 1e-9, 0.25}) {
      double below = center + offset;
      double above = below;
      for (int step = 0; step < 6; ++step) {
        floats.push_back(below);
        floats.push_back(above);
        below = std::nextafter(below, -kInfinity);
        above = std::nextafter(above, kInfinity);
      }
    }
  }
  const std::size_t positive = floats.size();
  for (std::size_t i = 0; i < positive; ++i) floats.push_back(-floats[i]);
  return floats;
}

double anyFloat(std::mt19937_64& random) {
  static const std::vector<double> edges = edgeFloats();
  switch (random() % 5) {
    case 0:
      return std::bit_cast<double>(random());
    case 1:
      return edges[random() % edges.size()];
    case 2:
      return static_cast<double>(static_cast<std::int64_t>(random() % 4000) - 2000) / 4;
    case 3:
      return static_cast<double>(anyInteger(random));
    default:
      return static_cast<double>(random() % 1000000) / 997;
  }
}

Value anyNumber(std::mt19937_64& random) {
  return random() % 2 == 0 ? Value(anyInteger(random)) : Value(anyFloat(random));
}

// ---- Whole numbers ------------------------------------------------------------------------------

void checkWhole(double number) {
  ASSERT_EQ(exact(plainNormalize(number)), exact(normalizeWhole(number))) << number;
  if (isClearlyFractional(number)) {
    ASSERT_TRUE(staysFloat(number)) << number;
  }
  std::int64_t whole = 0;
  const bool isWhole = !std::isnan(number) && !staysFloat(number);
  ASSERT_EQ(isWhole, wholeNumber(number, whole)) << number;
  if (isWhole) {
    ASSERT_EQ(plainSaturate(std::round(number)), whole) << number;
  }
  ASSERT_EQ(plainSaturate(std::trunc(number)), saturatingInteger(number)) << number;
  ASSERT_EQ(std::fabs(number) <= kEpsilon, isZeroDivisor(number)) << number;
}

TEST(NumberRules, FollowTheirPlainFormulas) {
  for (const double number : edgeFloats()) checkWhole(number);
  std::mt19937_64 random(31);
  for (int i = 0; i < kRounds && !::testing::Test::HasFailure(); ++i) {
    checkWhole(std::bit_cast<double>(random()));
    checkWhole(anyFloat(random));
  }
  EXPECT_TRUE(isClearlyFractional(0.5)) << "or the filter filters nothing";
  EXPECT_TRUE(isClearlyFractional(-1234567.25));
}

// ---- Arithmetic ---------------------------------------------------------------------------------

struct ArithmeticRule {
  const char* text;
  TokenKind op;
  Value (*function)(const Value&, const Value&);
  Wide (*integers)(Wide, Wide);
  double (*floats)(double, double);
};

const ArithmeticRule kArithmetic[] = {
    {"+", TokenKind::Plus, addNumbers, [](Wide a, Wide b) { return a + b; },
     [](double a, double b) { return a + b; }},
    {"-", TokenKind::Minus, subtractNumbers, [](Wide a, Wide b) { return a - b; },
     [](double a, double b) { return a - b; }},
    {"*", TokenKind::Star, multiplyNumbers, [](Wide a, Wide b) { return a * b; },
     [](double a, double b) { return a * b; }},
    {"%", TokenKind::Percent, moduloNumbers, [](Wide a, Wide b) { return a % b; },
     [](double a, double b) { return std::fmod(a, b); }},
    {"/", TokenKind::Slash, divideNumbers, nullptr, nullptr},
};

Value plainArithmetic(const ArithmeticRule& rule, const Value& left, const Value& right) {
  if (rule.integers == nullptr) return Value(left.asFloat() / right.asFloat());
  if (left.isInteger() && right.isInteger()) {
    const Wide result = rule.integers(left.integer, right.integer);
    if (result >= kLowest && result <= kHighest) return Value(static_cast<std::int64_t>(result));
  }
  return plainNormalize(rule.floats(left.asFloat(), right.asFloat()));
}

bool divides(const ArithmeticRule& rule) {
  return rule.op == TokenKind::Slash || rule.op == TokenKind::Percent;
}

TEST(Operators, AgreeWithWideArithmetic) {
  std::mt19937_64 random(47);
  for (const ArithmeticRule& rule : kArithmetic) {
    for (int i = 0; i < kRounds / 3; ++i) {
      const Value left = anyNumber(random);
      const Value right = anyNumber(random);
      if (divides(rule) && std::fabs(right.asFloat()) <= kEpsilon) continue;
      const std::string expected = exact(plainArithmetic(rule, left, right));
      const auto context = [&] { return exact(left) + " " + rule.text + " " + exact(right); };
      ASSERT_EQ(expected, exact(rule.function(left, right))) << context();
      ASSERT_EQ(expected, exact(evaluateArithmetic(left, rule.op, right, 1))) << context();
    }
  }
  for (int i = 0; i < 100000; ++i) {
    const Value operand = anyNumber(random);
    const bool negatable = operand.isInteger() && operand.integer != kLowest;
    const Value expected = negatable ? Value(-operand.integer) : plainNormalize(-operand.asFloat());
    ASSERT_EQ(exact(expected), exact(negateValue(operand, 1))) << exact(operand);
  }
}

// The text of a script error that `body` raises at line 7.
std::string errorOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const RuntimeError& error) {
    EXPECT_EQ(7u, error.line);
    return error.what();
  }
  return "no error";
}

TEST(Operators, TakeADivisorWithinTheEpsilonForZero) {
  const auto outcome = [](TokenKind op, const Value& divisor) {
    return errorOf([&] { evaluateArithmetic(Value(std::int64_t{1}), op, divisor, 7); });
  };
  for (const Value zero :
       {Value(std::int64_t{0}), Value(0.0), Value(-0.0), Value(kEpsilon), Value(-1e-17)}) {
    EXPECT_EQ("division by zero", outcome(TokenKind::Slash, zero));
    EXPECT_EQ("modulo by zero", outcome(TokenKind::Percent, zero));
  }
  EXPECT_EQ("no error", outcome(TokenKind::Slash, Value(2 * kEpsilon)));
  EXPECT_EQ("no error", outcome(TokenKind::Percent, Value(-2 * kEpsilon)));
}

// ---- Comparison ---------------------------------------------------------------------------------

// Both by the letter: numbers of two kinds as floats, equal within the epsilon, ordered without it.
bool plainEqual(const Value& left, const Value& right) {
  if (left.isInteger() && right.isInteger()) return left.integer == right.integer;
  if (left.isFloat() && right.isFloat()) return left.number == right.number;
  return std::fabs(left.asFloat() - right.asFloat()) <= kEpsilon;
}

const struct OrderRule {
  const char* text;
  TokenKind op;
  bool (*integers)(std::int64_t, std::int64_t);
  bool (*floats)(double, double);
} kOrder[] = {
    {"<", TokenKind::Less, [](std::int64_t a, std::int64_t b) { return a < b; },
     [](double a, double b) { return a < b; }},
    {"<=", TokenKind::LessEqual, [](std::int64_t a, std::int64_t b) { return a <= b; },
     [](double a, double b) { return a <= b; }},
    {">", TokenKind::Greater, [](std::int64_t a, std::int64_t b) { return a > b; },
     [](double a, double b) { return a > b; }},
    {">=", TokenKind::GreaterEqual, [](std::int64_t a, std::int64_t b) { return a >= b; },
     [](double a, double b) { return a >= b; }},
};

bool plainOrder(const OrderRule& rule, const Value& left, const Value& right) {
  return left.isInteger() && right.isInteger() ? rule.integers(left.integer, right.integer)
                                               : rule.floats(left.asFloat(), right.asFloat());
}

// A number close to another one, often equal.
Value neighbour(std::mt19937_64& random, const Value& value) {
  const double number = value.asFloat();
  switch (random() % 5) {
    case 0:
      return value;
    case 1:
      return Value(number);
    case 2:
      return Value(std::nextafter(number, random() % 2 == 0 ? kInfinity : -kInfinity));
    case 3:
      return Value(plainSaturate(number));
    default:
      return anyNumber(random);
  }
}

TEST(Operators, CompareNumbersByTheirRules) {
  std::mt19937_64 random(53);
  for (int i = 0; i < kRounds / 3; ++i) {
    const Value left = anyNumber(random);
    const Value right = neighbour(random, left);
    ASSERT_EQ(plainEqual(left, right), valuesEqual(left, right)) << exact(left) << exact(right);
    ASSERT_EQ(plainEqual(left, right), valuesEqual(right, left)) << exact(left) << exact(right);
    for (const OrderRule& rule : kOrder) {
      ASSERT_EQ(plainOrder(rule, left, right), compareValues(left, right, rule.op, 1))
          << exact(left) << " " << rule.text << " " << exact(right);
    }
  }
  EXPECT_TRUE(valuesEqual(Value(std::int64_t{1}), Value(1.0000000000000002)));
  EXPECT_FALSE(valuesEqual(Value(1.0), Value(1.0000000000000002)));
}

TEST(Operators, CompareOtherValuesByIdentity) {
  const TestHeap heap;
  // All different from each other; only the number and the string can be ordered, with themselves.
  const OwnedValue values[] = {OwnedValue(),
                               OwnedValue(Value(false)),
                               OwnedValue(Value(true)),
                               OwnedValue(Value(std::int64_t{1})),
                               heap.text("1"),
                               heap.table(),
                               heap.table(),
                               heap.native("f"),
                               heap.native("f")};
  for (const OwnedValue& left : values) {
    for (const OwnedValue& right : values) {
      EXPECT_EQ(&left == &right, valuesEqual(left.get(), right.get()));
      const bool ordered = &left == &right && (left.get().isNumber() || left.get().isString());
      for (const OrderRule& rule : kOrder) {
        EXPECT_EQ(ordered ? "no error" : "ordered comparisons require matching numbers or strings",
                  errorOf([&] { compareValues(left.get(), right.get(), rule.op, 7); }));
      }
    }
  }
}

// ---- The same through scripts -------------------------------------------------------------------

LuaValue publicNumber(const Value& value) {
  return value.isInteger() ? LuaValue(value.integer) : LuaValue(value.number);
}

std::string exact(const LuaValue& value) {
  if (const auto* const integer = std::get_if<std::int64_t>(&value.data))
    return exact(Value(*integer));
  if (const auto* const number = std::get_if<double>(&value.data)) return exact(Value(*number));
  return value.toString();
}

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
    "g, h = A[i], B[i] r[i] = g $ h",
    "g, h = A[i], B[i] g = g $ h r[i] = g",
    "r[i] = same(A[i]) $ same(B[i])",
    "local a, b = A[i], B[i] r[i] = (function() return a $ b end)()",
    "local a, b = A[i], B[i]; (function() b = a $ b end)() r[i] = b",
};
// The same for conditions.
const char* const kConditions[] = {
    "local a, b = A[i], B[i] if a $ b then r[i] = true else r[i] = false end",
    "r[i] = false if A[i] $ B[i] then r[i] = true end",
    "local a, b = A[i], B[i] r[i] = false while a $ b do r[i] = true break end",
    "local a, b = A[i], B[i] r[i] = a $ b and true or false",
    "local a, b = A[i], B[i] if not (a $ b) then r[i] = false else r[i] = true end",
};

std::string fill(std::string shape, const std::string& text) {
  return shape.replace(shape.find('$'), 1, text);
}

class ScriptedOperators : public ::testing::Test {
 protected:
  ScriptedOperators() {
    std::mt19937_64 random(59);
    for (int i = 0; i < 1500; ++i) {
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
    for (const Value& value : values) sequence->push_back(publicNumber(value));
    return LuaValue(std::move(sequence));
  }

  // Runs the body for each pair and compares r[i] with what is expected of the pair.
  void check(const std::string& body,
             const std::function<Value(const Value&, const Value&)>& expected) {
    const LuaResult result =
        vm_.runScriptString("local r = {} for i = 1, #A do " + body + " end return r", "pairs");
    ASSERT_TRUE(result.ok) << body << ": " << result.error;
    const auto& results = *std::get<std::shared_ptr<LuaValue::Sequence>>(result.value.data);
    ASSERT_EQ(left_.size(), results.size()) << body;
    for (std::size_t i = 0; i < left_.size(); ++i) {
      ASSERT_EQ(exact(expected(left_[i], right_[i])), exact(results[i]))
          << body << " with " << exact(left_[i]) << " and " << exact(right_[i]);
    }
  }

  LuaVM vm_;
  std::vector<Value> left_;
  std::vector<Value> right_;
};

TEST_F(ScriptedOperators, ComputeLikeTheRules) {
  for (const ArithmeticRule& rule : kArithmetic) {
    for (const char* const shape : kShapes) {
      check(fill(shape, rule.text),
            [&](const Value& a, const Value& b) { return plainArithmetic(rule, a, b); });
    }
    // Constants are a shape of their own.
    for (const char* const constant :
         {"1", "3", "0.5", "2.0", "4294967296", "9223372036854775807"}) {
      const std::string text = constant;
      const Value number = text.find('.') == std::string::npos
                               ? Value(static_cast<std::int64_t>(std::stoll(text)))
                               : Value(std::stod(text));
      check("local b = B[i] r[i] = " + text + " " + rule.text + " b",
            [&](const Value&, const Value& b) { return plainArithmetic(rule, number, b); });
      check("local a = A[i] r[i] = a " + std::string(rule.text) + " " + text,
            [&](const Value& a, const Value&) { return plainArithmetic(rule, a, number); });
      check("local a = A[i] local c = a " + std::string(rule.text) + " " + text + " r[i] = c",
            [&](const Value& a, const Value&) { return plainArithmetic(rule, a, number); });
    }
  }
  check("local a = A[i] r[i] = -a", [](const Value& a, const Value&) {
    return a.isInteger() && a.integer != kLowest ? Value(-a.integer) : plainNormalize(-a.asFloat());
  });
}

TEST_F(ScriptedOperators, CompareLikeTheRules) {
  std::vector<std::pair<std::string, std::function<Value(const Value&, const Value&)>>> rules;
  rules.emplace_back("==", [](auto& a, auto& b) { return Value(plainEqual(a, b)); });
  rules.emplace_back("~=", [](auto& a, auto& b) { return Value(!plainEqual(a, b)); });
  for (const OrderRule& rule : kOrder) {
    rules.emplace_back(rule.text,
                       [&rule](auto& a, auto& b) { return Value(plainOrder(rule, a, b)); });
  }
  const Value three(std::int64_t{3});
  for (const auto& [text, expected] : rules) {
    for (const char* const shape : kShapes) check(fill(shape, text), expected);
    for (const char* const condition : kConditions) check(fill(condition, text), expected);
    check("local a = A[i] r[i] = a " + text + " 3",
          [&, &rule = expected](const Value& a, const Value&) { return rule(a, three); });
    check("r[i] = false if 3 " + text + " B[i] then r[i] = true end",
          [&, &rule = expected](const Value&, const Value& b) { return rule(three, b); });
  }
}

}  // namespace
}  // namespace tarvel::lua::internal
