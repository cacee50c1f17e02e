#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "lua/value/value.h"
#include "tests/unit/number_model.h"

namespace tarvel::lua::internal {
namespace {

// ---- Operators in scripts -----------------------------------------------------------------------

// `$` is the operator, A and B hold the operands, the results are collected in r. Where else an
// operator can stand, and what its operands can be: operand_forms_test.cpp.
const char* const kShapes[] = {
    "local a, b = A[i], B[i] r[i] = a $ b",
    "r[i] = A[i] $ B[i]",
    "local a, b = {v = A[i]}, {v = B[i]} r[i] = a.v $ b.v",
    "local a, b = A[i], B[i] local c = a $ b r[i] = c",
    "local a, b = A[i], B[i] local c = 0 c = a $ b r[i] = c",
    "local a, b = A[i], B[i] a = a $ b r[i] = a",
    "r[i] = same(A[i]) $ same(B[i])",
    // As conditions; only the truth of the result counts.
    "local a, b = A[i], B[i] if a $ b then r[i] = true else r[i] = false end",
    "r[i] = false if A[i] $ B[i] then r[i] = true end",
    "local a, b = A[i], B[i] r[i] = false while a $ b do r[i] = true break end",
};
constexpr std::size_t kFirstCondition = 7;

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
    check("local a, b, one = A[i], B[i], 1 r[i] = a * one $ b", op,
          [&apply = rule](auto& a, auto& b) {
            return apply(plainArithmetic(a, Value(std::int64_t{1}), std::multiplies<>()), b);
          });
    // Constants are a shape of their own.
    for (const char* const text : {"3", "0.5", "9223372036854775807"}) {
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
