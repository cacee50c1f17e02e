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

// Where the result of a node's arithmetic goes, as a policy.

struct AsValue {
  static const BinaryExpr* operation(const Node* node) noexcept {
    return static_cast<const BinaryExpr*>(node);
  }
  static Value put(const Node*, Value*, Value result) noexcept { return result; }
};

// `x = a + b`, where x is a frame variable that owns nothing: one node for the statement.
struct IntoLocal {
  static const BinaryExpr* operation(const Node* node) noexcept {
    return static_cast<const BinaryExpr*>(static_cast<const AssignmentStmt*>(node)->value);
  }
  static Value put(const Node* node, Value* base, Value result) noexcept {
    slotAt(base, static_cast<const AssignmentStmt*>(node)->targetOffset) = result;
    return normalCompletion();
  }
};

template <class Place>
[[gnu::noinline]] Value putNormalized(const Node* node, Value* base, double result) {
  return Place::put(node, base, normalizeWhole(result));
}

// Operands of which at least one has to be evaluated.
template <class Op, class Place>
struct Evaluated {
  using Result = Value;

  template <class Left, class Right>
  [[gnu::always_inline]] static bool tryApply(const Node* node, Value* base, Value left,
                                              Value right, Value& out) {
    Value result;
    const Outcome outcome = tryArithmetic<Op>(left, right, result);
    if (outcome == Outcome::Nothing) return false;
    out = outcome == Outcome::Done ? Place::put(node, base, result)
                                   : putNormalized<Place>(node, base, result.number);
    return true;
  }

  // Takes over both operands.
  [[gnu::noinline]] static Value ofOwned(const Node* node, Value* base, Value left, Value right) {
    Value result;
    if (tryApply<LeftOther, RightOther>(node, base, left, right, result)) return result;
    result = evaluateArithmetic(Place::operation(node), Op::kToken, left, right);
    return Place::put(node, base, result);
  }

  template <class Right>
  [[gnu::noinline]] static Value rightAfter(const Node* node, Value* base, Value left) {
    const Value right = evaluateHolding(left, Place::operation(node)->right, base);
    return ofOwned(node, base, left, right);
  }

  // The left operand is a frame variable or a literal.
  [[gnu::noinline]] static Value leftBehind(const Node* node, Value* base, Value right) {
    return ofOwned(node, base, evaluateExpression(Place::operation(node)->left, base), right);
  }

  [[gnu::noinline]] static Value evaluateBoth(const Node* node, Value* base) {
    Value left;
    Value right;
    Value result;
    return withEvaluated<Evaluated, LeftOther, RightOther>(Place::operation(node), node, base, left,
                                                           right, result);
  }
};

template <class Op, class Place>
struct Arithmetic {
  template <class Left, class Right>
  struct Execute {
    static Value run(const Node* node, Value* base) {
      const BinaryExpr* const operation = Place::operation(node);
      Value left;
      Value right;
      Value result;
      if constexpr (Left::kInPlace && Right::kInPlace) {
        if (!Left::tryLoad(operation, base, left) || !Right::tryLoad(operation, base, right))
            [[unlikely]] {
          return Evaluated<Op, Place>::evaluateBoth(node, base);
        }
        const Outcome outcome = tryArithmetic<Op>(left, right, result);
        if (outcome == Outcome::Done) [[likely]]
          return Place::put(node, base, result);
        if (outcome == Outcome::Float) return putNormalized<Place>(node, base, result.number);
        return Evaluated<Op, Place>::evaluateBoth(node, base);
      } else {
        return withEvaluated<Evaluated<Op, Place>, Left, Right>(operation, node, base, left, right,
                                                                result);
      }
    }
  };
};

template <class Place>
NodeFunction functionFor(TokenKind op, OperandShapes shapes) {
  switch (op) {
    case TokenKind::Plus:
      return chooseByShapes<Arithmetic<Add, Place>::template Execute, NodeFunction, kAllShapes>(
          shapes);
    case TokenKind::Minus:
      return chooseByShapes<Arithmetic<Subtract, Place>::template Execute, NodeFunction,
                            kAllShapes>(shapes);
    case TokenKind::Star:
      return chooseByShapes<Arithmetic<Multiply, Place>::template Execute, NodeFunction,
                            kAllShapes>(shapes);
    case TokenKind::Slash:
      return chooseByShapes<Arithmetic<Divide, Place>::template Execute, NodeFunction, kAllShapes>(
          shapes);
    case TokenKind::Percent:
      return chooseByShapes<Arithmetic<Modulo, Place>::template Execute, NodeFunction, kAllShapes>(
          shapes);
    default:
      unreachable("not an arithmetic operator");
  }
}

}  // namespace

void chooseArithmetic(BinaryExpr& node) {
  const OperandShapes shapes = placeOperands(node);
  node.execute = functionFor<AsValue>(node.op, shapes);
  node.test = testValue;
  if (node.op == TokenKind::Star && shapes.left == OperandShape::Frame &&
      shapes.right == OperandShape::Frame) {
    node.leaf = Leaf::Product;
  }
}

void chooseArithmeticStore(AssignmentStmt& statement) {
  const auto& value = static_cast<const BinaryExpr&>(*statement.value);
  assert(isChosen(value));
  statement.execute = functionFor<IntoLocal>(value.op, operandShapes(value));
}

}  // namespace tarvel::lua::internal
