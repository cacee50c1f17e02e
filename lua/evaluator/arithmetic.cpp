#include <cassert>

#include "lua/evaluator/execute.h"
#include "lua/evaluator/inline_arithmetic.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/operands.h"
#include "lua/evaluator/operators.h"
#include "lua/value/completion.h"
#include "lua/value/errors.h"

// The nodes of `+`, `-`, `*`, `/` and `%`. What inline_arithmetic.h does is done in place;
// everything else goes through the operators' rules out of line, so that the common path needs no
// frame of its own.

namespace tarvel::lua::internal {

namespace {

// What the operator's inline cases leave. Takes over the owned operands.
template <class Op, class Left, class Right>
[[gnu::noinline]] Value finishArithmetic(const Node* node, Value* base, Value ownedLeft,
                                         Value ownedRight) {
  const OwnedValue leftGuard(ownedLeft);
  const OwnedValue rightGuard(ownedRight);
  const auto* const binary = static_cast<const BinaryExpr*>(node);
  return evaluateArithmetic(reload<Left>(binary, base, ownedLeft), Op::kToken,
                            reload<Right>(binary, base, ownedRight), node->site);
}

template <class Op>
struct Arithmetic {
  using Result = Value;

  template <class Left, class Right>
  static Value apply(const Node* node, Value* base, Value left, Value right) {
    Value result;
    if (tryArithmetic<Op>(left, right, result)) [[likely]]
      return result;
    return finishArithmetic<Op, Left, Right>(node, base, onlyOwned<Left>(left),
                                             onlyOwned<Right>(right));
  }

  [[gnu::noinline]] static Value rightAfterCounted(const Node* node, Value* base, Value left) {
    const OwnedValue leftGuard(left);
    const auto* const binary = static_cast<const BinaryExpr*>(node);
    const OwnedValue right(evaluateExpression(binary->right, base));
    return evaluateArithmetic(left, Op::kToken, right.get(), node->site);
  }

  template <class Left, class Right>
  struct Execute {
    [[gnu::flatten]] static Value run(const Node* node, Value* base) {
      return withOperands<Arithmetic, Left, Right>(static_cast<const BinaryExpr*>(node), node,
                                                   base);
    }
  };
};

// `x = a + b`, where x is a frame variable that never owns anything: one node for the statement.
template <class Op>
struct ArithmeticStore {
  using Result = Value;

  template <class Left, class Right>
  static Value apply(const Node* node, Value* base, Value left, Value right) {
    Value result;
    if (!tryArithmetic<Op>(left, right, result)) [[unlikely]] {
      return finish<Left, Right>(node, base, onlyOwned<Left>(left), onlyOwned<Right>(right));
    }
    slotAt(base, static_cast<const AssignmentStmt*>(node)->targetOffset) = result;
    return normalCompletion();
  }

  template <class Left, class Right>
  [[gnu::noinline]] static Value finish(const Node* node, Value* base, Value ownedLeft,
                                        Value ownedRight) {
    const auto* const statement = static_cast<const AssignmentStmt*>(node);
    slotAt(base, statement->targetOffset) =
        finishArithmetic<Op, Left, Right>(statement->value, base, ownedLeft, ownedRight);
    return normalCompletion();
  }

  [[gnu::noinline]] static Value rightAfterCounted(const Node* node, Value* base, Value left) {
    const auto* const statement = static_cast<const AssignmentStmt*>(node);
    slotAt(base, statement->targetOffset) =
        Arithmetic<Op>::rightAfterCounted(statement->value, base, left);
    return normalCompletion();
  }

  template <class Left, class Right>
  struct Execute {
    [[gnu::flatten]] static Value run(const Node* node, Value* base) {
      const auto* const value =
          static_cast<const BinaryExpr*>(static_cast<const AssignmentStmt*>(node)->value);
      return withOperands<ArithmeticStore, Left, Right>(value, node, base);
    }
  };
};

constexpr std::size_t kShapes = std::tuple_size_v<LeftOperands>;

// The entry of `Form`, Arithmetic or ArithmeticStore, for an operator and its operands' shapes.
template <template <class> class Form>
NodeFunction functionFor(TokenKind op, OperandShapes shapes) {
  switch (op) {
    case TokenKind::Plus:
      return chooseByShapes<Form<Add>::template Execute, NodeFunction, kShapes>(shapes);
    case TokenKind::Minus:
      return chooseByShapes<Form<Subtract>::template Execute, NodeFunction, kShapes>(shapes);
    case TokenKind::Star:
      return chooseByShapes<Form<Multiply>::template Execute, NodeFunction, kShapes>(shapes);
    case TokenKind::Slash:
      return chooseByShapes<Form<Divide>::template Execute, NodeFunction, kShapes>(shapes);
    case TokenKind::Percent:
      return chooseByShapes<Form<Modulo>::template Execute, NodeFunction, kShapes>(shapes);
    default:
      unreachable("not an arithmetic operator");
  }
}

}  // namespace

void chooseArithmetic(BinaryExpr& node) {
  node.execute = functionFor<Arithmetic>(node.op, placeOperands(node));
  node.test = testValue;
}

void chooseArithmeticStore(AssignmentStmt& statement) {
  const auto& value = static_cast<const BinaryExpr&>(*statement.value);
  assert(isChosen(value));
  statement.execute = functionFor<ArithmeticStore>(value.op, operandShapes(value));
}

}  // namespace tarvel::lua::internal
