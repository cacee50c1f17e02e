#include <cassert>
#include <type_traits>

#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/operands.h"
#include "lua/evaluator/operators.h"
#include "lua/value/completion.h"
#include "lua/value/errors.h"
#include "lua/value/number_rules.h"

// The nodes of the comparison operators, as values and as conditions, and those of an `if` that a
// comparison is fused into.

namespace tarvel::lua::internal {

namespace {

struct Less {
  static constexpr TokenKind kToken = TokenKind::Less;
  template <class T>
  static bool decide(T a, T b) noexcept {
    return a < b;
  }
};

struct LessEqual {
  static constexpr TokenKind kToken = TokenKind::LessEqual;
  template <class T>
  static bool decide(T a, T b) noexcept {
    return a <= b;
  }
};

struct Greater {
  static constexpr TokenKind kToken = TokenKind::Greater;
  template <class T>
  static bool decide(T a, T b) noexcept {
    return a > b;
  }
};

struct GreaterEqual {
  static constexpr TokenKind kToken = TokenKind::GreaterEqual;
  template <class T>
  static bool decide(T a, T b) noexcept {
    return a >= b;
  }
};

// Each rule: what two values of common kinds give (`tryFast`, only where no owned operand needs
// release), whether two have an answer (`applies`), and what two such give (`decide`).
template <class Order>
struct OrderRule {
  template <bool LeftOwned, bool RightOwned>
  static bool tryFast(Value left, Value right, bool& out) noexcept {
    if (left.tag == kInteger && right.tag == kInteger) {
      out = Order::decide(left.integer, right.integer);
      return true;
    }
    if (left.tag == kFloat && right.tag == kFloat) {
      out = Order::decide(left.number, right.number);
      return true;
    }
    if (!LeftOwned && !RightOwned && left.tag == kString && right.tag == kString) {
      const int a = firstByte(left.string);
      const int b = firstByte(right.string);
      out = Order::decide(a, b);
      return a != b;
    }
    double a = 0;
    double b = 0;
    if (!tryAsFloat(left, a) || !tryAsFloat(right, b)) return false;
    out = Order::decide(a, b);
    return true;
  }
  static bool applies(Value left, Value right) noexcept { return areOrdered(left, right); }
  static bool decide(Value left, Value right) { return compareValues(left, right, Order::kToken); }
};

template <bool WhenEqual>
struct EqualityRule {
  template <bool LeftOwned, bool RightOwned>
  static bool tryFast(Value left, Value right, bool& out) noexcept {
    if (left.tag == kInteger && right.tag == kInteger) {
      out = (left.integer == right.integer) == WhenEqual;
      return true;
    }
    if (left.tag <= kTrue || right.tag <= kTrue) {
      // Nil and the booleans are their tags.
      out = (left.tag == right.tag) == WhenEqual;
      return (!LeftOwned || !left.isCounted()) && (!RightOwned || !right.isCounted());
    }
    if (!LeftOwned && !RightOwned && left.tag == kString && right.tag == kString) {
      const bool isSame = left.string == right.string;
      out = isSame == WhenEqual;
      return isSame || firstByte(left.string) != firstByte(right.string);
    }
    if (!left.isNumber() || !right.isNumber()) return false;
    out = numbersEqual(left, right) == WhenEqual;
    return true;
  }
  static bool applies(Value, Value) noexcept { return true; }
  static bool decide(Value left, Value right) noexcept {
    return valuesEqual(left, right) == WhenEqual;
  }
};

// Operands of which at least one has to be evaluated.
template <class Rule>
struct Evaluated {
  using Result = bool;

  template <class Left, class Right>
  [[gnu::always_inline]] static bool tryApply(const Node*, Value*, Value left, Value right,
                                              bool& out) noexcept {
    return Rule::template tryFast<!Left::kInPlace, !Right::kInPlace>(left, right, out);
  }

  // Takes over both operands. The right one is released first, which shows where both are files.
  [[gnu::noinline]] static bool ofOwned(const Node* comparison, Value*, Value left, Value right) {
    const bool applies = Rule::applies(left, right);
    const bool result = applies && Rule::decide(left, right);
    drop(right);
    drop(left);
    if (!applies) failComparison(comparison);
    return result;
  }

  template <class Right>
  [[gnu::noinline]] static bool rightAfter(const Node* node, Value* base, Value left) {
    const auto* const comparison = static_cast<const BinaryExpr*>(node);
    Value right;
    if constexpr (std::is_same_v<Right, Constant>) {
      right = retain(comparison->constant);  // needs no base, so the common path need not keep it
    } else {
      right = evaluateHolding(left, comparison->right, base);
    }
    return ofOwned(node, base, left, right);
  }

  // The left operand is a frame variable or a literal.
  [[gnu::noinline]] static bool leftBehind(const Node* comparison, Value* base, Value right) {
    const Value left = evaluateExpression(static_cast<const BinaryExpr*>(comparison)->left, base);
    return ofOwned(comparison, base, left, right);
  }

  [[gnu::noinline]] static bool evaluateBoth(const Node* node, Value* base) {
    const auto* const comparison = static_cast<const BinaryExpr*>(node);
    Value left;
    Value right;
    bool result = false;
    if (tryOperand(comparison->left, base, left) && tryOperand(comparison->right, base, right)) {
      if (!Rule::applies(left, right)) failComparison(node);
      return Rule::decide(left, right);
    }
    return withEvaluated<Evaluated, LeftOther, RightOther>(comparison, comparison, base, left,
                                                           right, result);
  }
};

const IfStmt* asIf(const Node* node) noexcept { return static_cast<const IfStmt*>(node); }

// Goes on where an `if` has been decided.
[[gnu::always_inline]] inline Value branch(const Node* statement, Value* base, bool condition) {
  if (condition) return executeStatement(asIf(statement)->thenNode, base);
  const Node* const otherwise = asIf(statement)->otherwiseNode;
  return otherwise == nullptr ? normalCompletion() : executeStatement(otherwise, base);
}

// For operands that could not be read in place, or that tryFast leaves.
template <class Rule>
[[gnu::noinline]] Value branchEvaluated(const Node* statement, Value* base) {
  return branch(statement, base, Evaluated<Rule>::evaluateBoth(asIf(statement)->condition, base));
}

template <class Operand>
constexpr bool kHasShortWay = Operand::kInPlace && !Operand::kIsOfAnyKind;

template <class Rule>
struct Comparison {
  template <class Left, class Right>
  struct Condition {
    static bool run(const Node* node, Value* base) {
      const auto* const comparison = static_cast<const BinaryExpr*>(node);
      Value left;
      Value right;
      bool result = false;
      if constexpr (Left::kInPlace && Right::kInPlace) {
        if (!Left::tryLoad(comparison, base, left) || !Right::tryLoad(comparison, base, right))
            [[unlikely]] {
          return Evaluated<Rule>::evaluateBoth(node, base);
        }
        if (Rule::template tryFast<false, false>(left, right, result)) [[likely]]
          return result;
        return Evaluated<Rule>::evaluateBoth(node, base);
      } else {
        return withEvaluated<Evaluated<Rule>, Left, Right>(comparison, node, base, left, right,
                                                           result);
      }
    }
  };

  template <class Left, class Right>
  struct AsValue {
    [[gnu::flatten]] static Value run(const Node* node, Value* base) {
      if constexpr (kHasShortWay<Left> && kHasShortWay<Right>) {
        return Value(Condition<Left, Right>::run(node, base));
      } else {
        return Value(evaluateCondition(static_cast<const BinaryExpr*>(node), base));
      }
    }
  };

  // `if` on this comparison.
  template <class Left, class Right>
  struct If {
    static Value run(const Node* node, Value* base) {
      const auto* const condition = static_cast<const BinaryExpr*>(asIf(node)->condition);
      Value left;
      Value right;
      bool result = false;
      if constexpr (Left::kInPlace && Right::kInPlace) {
        if (!Left::tryLoad(condition, base, left) || !Right::tryLoad(condition, base, right))
            [[unlikely]] {
          return branchEvaluated<Rule>(node, base);
        }
        if (!Rule::template tryFast<false, false>(left, right, result)) [[unlikely]]
          return branchEvaluated<Rule>(node, base);
        return branch(node, base, result);
      } else {
        result = withEvaluated<Evaluated<Rule>, Left, Right>(condition, condition, base, left,
                                                             right, result);
        return branch(node, base, result);
      }
    }
  };
};

// Calls `use` with the Comparison of an operator.
template <class Use>
void withComparison(TokenKind op, Use use) {
  switch (op) {
    case TokenKind::Equal:
      return use(Comparison<EqualityRule<true>>());
    case TokenKind::NotEqual:
      return use(Comparison<EqualityRule<false>>());
    case TokenKind::Less:
      return use(Comparison<OrderRule<Less>>());
    case TokenKind::LessEqual:
      return use(Comparison<OrderRule<LessEqual>>());
    case TokenKind::Greater:
      return use(Comparison<OrderRule<Greater>>());
    case TokenKind::GreaterEqual:
      return use(Comparison<OrderRule<GreaterEqual>>());
    default:
      unreachable("not a comparison operator");
  }
}

}  // namespace

void chooseComparison(BinaryExpr& node) {
  const OperandShapes shapes = placeOperands(node);
  withComparison(node.op, [&]<class Kind>(Kind) {
    node.execute = chooseByShapes<Kind::template AsValue, NodeFunction, kCommonShapes>(shapes);
    node.test = chooseByShapes<Kind::template Condition, ConditionFunction, kCommonShapes>(shapes);
  });
}

bool chooseFusedIf(IfStmt& statement) {
  if (statement.condition->kind != ExprKind::Binary) return false;
  const auto& condition = static_cast<const BinaryExpr&>(*statement.condition);
  if (!isComparison(condition.op)) return false;
  assert(isChosen(condition));
  const OperandShapes shapes = operandShapes(condition);
  withComparison(condition.op, [&]<class Kind>(Kind) {
    statement.execute = chooseByShapes<Kind::template If, NodeFunction, kCommonShapes>(shapes);
  });
  return true;
}

}  // namespace tarvel::lua::internal
