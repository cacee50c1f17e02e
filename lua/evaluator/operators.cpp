#include "lua/evaluator/operators.h"

#include <cmath>
#include <limits>
#include <string>

#include "lua/lua_vm_impl.h"
#include "lua/value/errors.h"
#include "lua/value/table.h"

namespace tarvel::lua::internal {

namespace {

const char* operatorText(TokenKind op) {
  switch (op) {
    case TokenKind::Plus:
      return "+";
    case TokenKind::Minus:
      return "-";
    case TokenKind::Star:
      return "*";
    case TokenKind::Slash:
      return "/";
    case TokenKind::Percent:
      return "%";
    default:
      unreachable("not an arithmetic operator");
  }
}

template <class T>
bool ordered(TokenKind op, T left, T right) {
  switch (op) {
    case TokenKind::Less:
      return left < right;
    case TokenKind::LessEqual:
      return left <= right;
    case TokenKind::Greater:
      return left > right;
    case TokenKind::GreaterEqual:
      return left >= right;
    default:
      unreachable("not an ordering operator");
  }
}

}  // namespace

Value addNumbers(const Value& left, const Value& right) {
  std::int64_t sum = 0;
  if (left.isInteger() && right.isInteger() &&
      !__builtin_add_overflow(left.integer, right.integer, &sum)) {
    return Value(sum);
  }
  return normalizeWhole(left.asFloat() + right.asFloat());
}

Value subtractNumbers(const Value& left, const Value& right) {
  std::int64_t difference = 0;
  if (left.isInteger() && right.isInteger() &&
      !__builtin_sub_overflow(left.integer, right.integer, &difference)) {
    return Value(difference);
  }
  return normalizeWhole(left.asFloat() - right.asFloat());
}

Value multiplyNumbers(const Value& left, const Value& right) {
  std::int64_t product = 0;
  if (left.isInteger() && right.isInteger() &&
      !__builtin_mul_overflow(left.integer, right.integer, &product)) {
    return Value(product);
  }
  return normalizeWhole(left.asFloat() * right.asFloat());
}

Value moduloNumbers(const Value& left, const Value& right) {
  if (left.isInteger() && right.isInteger()) {
    // The processor traps on the most negative integer divided by -1.
    return Value(right.integer == -1 ? std::int64_t{0} : left.integer % right.integer);
  }
  return normalizeWhole(std::fmod(left.asFloat(), right.asFloat()));
}

bool valuesEqual(const Value& left, const Value& right) noexcept {
  if (left.tag == right.tag) {
    switch (left.tag) {
      case kNil:
      case kFalse:
      case kTrue:
        return true;
      case kInteger:
        return left.integer == right.integer;
      case kFloat:
        return left.number == right.number;
      case kString:
        return stringsEqual(left.string, right.string);
      default:
        return left.object == right.object;
    }
  }
  return left.isNumber() && right.isNumber() && numbersEqual(left, right);
}

bool areOrdered(const Value& left, const Value& right) noexcept {
  return (left.isNumber() && right.isNumber()) || (left.isString() && right.isString());
}

void failComparison(const Node* node) {
  node->interpreter->raiseAt(node->site,
                             {"ordered comparisons require matching numbers or strings"});
}

bool compareValues(const Value& left, const Value& right, TokenKind op) {
  if (left.isInteger() && right.isInteger()) return ordered(op, left.integer, right.integer);
  if (left.isNumber() && right.isNumber()) return ordered(op, left.asFloat(), right.asFloat());
  return ordered(op, compareStrings(left.string, right.string), 0);
}

void failArithmetic(const BinaryExpr* operation, Value left, Value right) {
  drop(right);
  drop(left);
  operation->interpreter->raiseAt(operation->site,
                                  {"operator '", operatorText(operation->op), "' expects numbers"});
}

Value evaluateArithmetic(const BinaryExpr* operation, TokenKind op, Value left, Value right) {
  if (!left.isNumber() || !right.isNumber()) failArithmetic(operation, left, right);
  switch (op) {
    case TokenKind::Plus:
      return addNumbers(left, right);
    case TokenKind::Minus:
      return subtractNumbers(left, right);
    case TokenKind::Star:
      return multiplyNumbers(left, right);
    case TokenKind::Slash:
      // Deliberate: a divisor within the epsilon counts as zero, as it compares equal to the
      // integer 0.
      if (isZeroDivisor(right.asFloat()))
        operation->interpreter->raiseAt(operation->site, {"division by zero"});
      return divideNumbers(left, right);
    case TokenKind::Percent:
      if (isZeroDivisor(right.asFloat()))
        operation->interpreter->raiseAt(operation->site, {"modulo by zero"});
      return moduloNumbers(left, right);
    default:
      unreachable("not an arithmetic operator");
  }
}

Value negateValue(const Value& operand, Site site) {
  if (operand.isInteger() && operand.integer != std::numeric_limits<std::int64_t>::min()) {
    return Value(-operand.integer);
  }
  if (!operand.isNumber()) failRuntime(site, "unary '-' expects a number");
  return normalizeWhole(-operand.asFloat());
}

Value lengthOf(const Value& operand, Site site) {
  if (operand.isTable()) return Value(tableSequenceLength(operand.table));
  if (operand.isString()) return Value(static_cast<std::int64_t>(operand.string->length));
  failRuntime(site, "length operator expects a string or table");
}

}  // namespace tarvel::lua::internal
