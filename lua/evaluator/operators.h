#pragma once

#include <cmath>
#include <cstdint>

#include "lua/frontend/syntax_tree.h"
#include "lua/frontend/token.h"
#include "lua/value/number_rules.h"
#include "lua/value/string_object.h"
#include "lua/value/value.h"

// The rules of the operators. The evaluator's nodes try the common operand types inline and
// come here for the rest.

namespace tarvel::lua::internal {

// Both operands are numbers. Integers stay integers while the result fits; otherwise floats,
// normalised. A sum beyond the 64-bit range therefore saturates: 9223372036854775807 + 1 is
// 9223372036854775807.
Value addNumbers(const Value& left, const Value& right);
Value subtractNumbers(const Value& left, const Value& right);
Value multiplyNumbers(const Value& left, const Value& right);

// Both operands are numbers, the divisor is not zero. The remainder truncates: its sign is the
// dividend's, as in -7 % 3 == -1. This is the dialect's rule.
Value moduloNumbers(const Value& left, const Value& right);

// Both operands are numbers, the divisor is not zero. Always a float: division is never normalised.
inline Value divideNumbers(const Value& left, const Value& right) {
  return Value(left.asFloat() / right.asFloat());
}

// Two numbers of which one at least is a float. An integer and a float are equal within the
// epsilon, two floats only exactly; this difference is deliberate: integers that became floats stay
// equal to themselves, floats keep their order.
inline bool numbersEqual(const Value& left, const Value& right) noexcept {
  if (left.tag == right.tag) return left.number == right.number;
  const double whole = static_cast<double>(left.isInteger() ? left.integer : right.integer);
  const double other = left.isInteger() ? right.number : left.number;
  return std::fabs(whole - other) <= kNumberEpsilon;
}

bool valuesEqual(const Value& left, const Value& right) noexcept;

// Whether these are two numbers or two strings.
bool areOrdered(const Value& left, const Value& right) noexcept;
// An ordering operator on two such values.
bool compareValues(const Value& left, const Value& right, TokenKind op);
// The error for any other two.
[[noreturn]] void failComparison(const Node* node);

// The arithmetic operator `op`, which is the operation's, on any two values, which it takes over,
// with its checks and errors.
Value evaluateArithmetic(const BinaryExpr* operation, TokenKind op, Value left, Value right);

// Unary minus. The most negative integer saturates to the largest.
Value negateValue(const Value& operand, Site site);

// The operator `#`.
Value lengthOf(const Value& operand, Site site);

}  // namespace tarvel::lua::internal
