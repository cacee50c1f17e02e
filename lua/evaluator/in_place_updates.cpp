#include "lua/evaluator/assignments.h"
#include "lua/evaluator/execute.h"
#include "lua/evaluator/inline_arithmetic.h"
#include "lua/evaluator/node_functions.h"
#include "lua/evaluator/operands.h"
#include "lua/evaluator/operators.h"
#include "lua/evaluator/places.h"
#include "lua/value/completion.h"

// `o.f = o.f + e` and `a[i] = a[i] * e`: the element or field is looked up once, and a number in it
// replaced by another, which changes neither the border nor the number of entries. An e that is not
// in place may change what the target is, so the place is looked up again behind it. What cannot be
// done so goes the general way, from the start while nothing has been evaluated.

namespace tarvel::lua::internal {

namespace {

struct FieldTarget {
  [[gnu::always_inline]] static Value* find(const Expr* target, Value* base) noexcept {
    return findField(target, base);
  }
};

struct ElementTarget {
  [[gnu::always_inline]] static Value* find(const Expr* target, Value* base) noexcept {
    return findElement(target, base);
  }
};

[[gnu::noinline]] Value endByNormalizing(Value* place, double result) {
  *place = normalizeWhole(result);
  return normalCompletion();
}

const BinaryExpr* operationOf(const Node* node) noexcept {
  return static_cast<const BinaryExpr*>(asAssignment(node)->value);
}

// By the operator's rule. Takes over the right operand; the left one is a number.
template <class Op>
[[gnu::noinline]] Value updateByRule(const Node* node, Value* base, Value left, Value right) {
  return storeInTarget(node, base, evaluateArithmetic(operationOf(node), Op::kToken, left, right));
}

template <class Op, class Target>
struct Update {
  template <class Right>
  static Value run(const Node* node, Value* base) {
    const BinaryExpr* const operation = operationOf(node);
    Value* place = Target::find(operation->left, base);
    Value right;
    Value result;
    if (place == nullptr) return storeEvaluated(node, base);
    if constexpr (Right::kInPlace) {
      if (!Right::tryLoad(operation, base, right)) return storeEvaluated(node, base);
      const Outcome outcome = tryArithmetic<Op>(*place, right, result);
      if (outcome == Outcome::Nothing) return storeEvaluated(node, base);
      if (outcome == Outcome::Float) return endByNormalizing(place, result.number);
      *place = result;
      return normalCompletion();
    } else {
      const Value left = *place;
      if (!left.isNumber()) return storeEvaluated(node, base);
      right = evaluateExpression(operation->right, base);
      const Outcome outcome = tryArithmetic<Op>(left, right, result);
      if (outcome == Outcome::Nothing) return updateByRule<Op>(node, base, left, right);
      if (outcome == Outcome::Float) result = normalizeWhole(result.number);
      place = Target::find(operation->left, base);
      if (place == nullptr) return storeInTarget(node, base, result);
      replaceSlot(*place, result);
      return normalCompletion();
    }
  }
};

template <class Op, class Target>
NodeFunction updateBy(OperandShape right) noexcept {
  using Form = Update<Op, Target>;
  switch (right) {
    case OperandShape::Frame:
      return Form::template run<RightFrame>;
    case OperandShape::Constant:
      return Form::template run<Constant>;
    case OperandShape::Field:
      return Form::template run<Right<tryField>>;
    case OperandShape::Element:
      return Form::template run<Right<tryElement>>;
    case OperandShape::Product:
      return Form::template run<Right<tryProduct>>;
    case OperandShape::Other:
      return Form::template run<RightOther>;
    case OperandShape::Leaf:
    case OperandShape::ElementOfElement:
      break;
  }
  return Form::template run<Right<tryLeaf>>;
}

template <class Target>
NodeFunction update(const BinaryExpr& operation) noexcept {
  const OperandShape right = operandShapes(operation).right;
  switch (operation.op) {
    case TokenKind::Plus:
      return updateBy<Add, Target>(right);
    case TokenKind::Minus:
      return updateBy<Subtract, Target>(right);
    case TokenKind::Star:
      return updateBy<Multiply, Target>(right);
    default:
      return nullptr;
  }
}

}  // namespace

bool chooseUpdate(AssignmentStmt& statement) {
  if (statement.value->kind != ExprKind::Binary) return false;
  const auto& operation = static_cast<const BinaryExpr&>(*statement.value);
  if (!isSameLeaf(*operation.left, *statement.targets[0].expression)) return false;
  const bool isField = operation.left->kind == ExprKind::Field;
  const NodeFunction execute =
      isField ? update<FieldTarget>(operation) : update<ElementTarget>(operation);
  if (execute == nullptr) return false;
  statement.execute = execute;
  return true;
}

}  // namespace tarvel::lua::internal
