#include <cassert>
#include <cstddef>

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
// release), and what any two give (`decide`).
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
  static bool decide(const Node* node, const Value& left, const Value& right) {
    return compareValues(left, right, Order::kToken, node->site);
  }
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
    return false;
  }
  static bool decide(const Node*, const Value& left, const Value& right) noexcept {
    return valuesEqual(left, right) == WhenEqual;
  }
};

template <class Rule, class Left, class Right>
[[gnu::noinline]] bool finishComparison(const Node* node, Value* base, Value ownedLeft,
                                        Value ownedRight) {
  const OwnedValue leftGuard(ownedLeft);
  const OwnedValue rightGuard(ownedRight);
  const auto* const binary = static_cast<const BinaryExpr*>(node);
  return Rule::decide(node, reload<Left>(binary, base, ownedLeft),
                      reload<Right>(binary, base, ownedRight));
}

template <class Rule>
struct Comparison {
  using Result = bool;

  template <class Left, class Right>
  static bool apply(const Node* node, Value* base, Value left, Value right) {
    bool result = false;
    if (Rule::template tryFast<Left::kOwned, Right::kOwned>(left, right, result)) [[likely]]
      return result;
    return finishComparison<Rule, Left, Right>(node, base, onlyOwned<Left>(left),
                                               onlyOwned<Right>(right));
  }

  [[gnu::noinline]] static bool rightAfterCounted(const Node* node, Value* base, Value left) {
    const OwnedValue leftGuard(left);
    const auto* const binary = static_cast<const BinaryExpr*>(node);
    const OwnedValue right(evaluateExpression(binary->right, base));
    return Rule::decide(node, left, right.get());
  }

  template <class Left, class Right>
  struct Condition {
    [[gnu::flatten]] static bool run(const Node* node, Value* base) {
      return withOperands<Comparison, Left, Right>(static_cast<const BinaryExpr*>(node), node,
                                                   base);
    }
  };

  template <class Left, class Right>
  struct AsValue {
    [[gnu::flatten]] static Value run(const Node* node, Value* base) {
      return Value(Condition<Left, Right>::run(node, base));
    }
  };

  // `if` on this comparison, with nothing or something to do when it is false.
  template <class Left, class Right>
  struct If {
    [[gnu::flatten]] static Value run(const Node* node, Value* base) {
      const auto* const statement = static_cast<const IfStmt*>(node);
      if (!Condition<Left, Right>::run(statement->condition, base)) return normalCompletion();
      return executeStatement(statement->thenNode, base);
    }
  };

  template <class Left, class Right>
  struct IfElse {
    [[gnu::flatten]] static Value run(const Node* node, Value* base) {
      const auto* const statement = static_cast<const IfStmt*>(node);
      const Node* const chosen = Condition<Left, Right>::run(statement->condition, base)
                                     ? statement->thenNode
                                     : statement->otherwiseNode;
      return executeStatement(chosen, base);
    }
  };
};

// Products are rare here, so the last shape has no functions.
constexpr std::size_t kShapes = static_cast<std::size_t>(OperandShape::Product);
static_assert(kShapes + 1 == std::tuple_size_v<LeftOperands>);

// A field is tried as a number, which is useless where it is compared with a literal that is none.
OperandShapes comparisonShapes(const BinaryExpr& node) noexcept {
  OperandShapes shapes = operandShapes(node);
  const auto isOtherLiteral = [](const Expr& operand) {
    return isLiteral(operand) && !literalValue(operand).isNumber();
  };
  if (shapes.left == OperandShape::Field && isOtherLiteral(*node.right)) {
    shapes.left = OperandShape::Other;
  }
  if (shapes.right == OperandShape::Field && isOtherLiteral(*node.left)) {
    shapes.right = OperandShape::Other;
  }
  return shapes;
}

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
  placeOperands(node);
  const OperandShapes shapes = comparisonShapes(node);
  withComparison(node.op, [&]<class Kind>(Kind) {
    node.execute = chooseByShapes<Kind::template AsValue, NodeFunction, kShapes>(shapes);
    node.test = chooseByShapes<Kind::template Condition, ConditionFunction, kShapes>(shapes);
  });
}

bool chooseFusedIf(IfStmt& statement) {
  if (statement.condition->kind != ExprKind::Binary) return false;
  const auto& condition = static_cast<const BinaryExpr&>(*statement.condition);
  if (!isComparison(condition.op)) return false;
  assert(isChosen(condition));
  const bool hasElse = statement.otherwiseNode != nullptr;
  const OperandShapes shapes = comparisonShapes(condition);
  withComparison(condition.op, [&]<class Kind>(Kind) {
    statement.execute = hasElse
                            ? chooseByShapes<Kind::template IfElse, NodeFunction, kShapes>(shapes)
                            : chooseByShapes<Kind::template If, NodeFunction, kShapes>(shapes);
  });
  return true;
}

}  // namespace tarvel::lua::internal
