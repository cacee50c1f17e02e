#include "lua/evaluator/leaves.h"

#include "lua/evaluator/node_functions.h"

namespace tarvel::lua::internal {

bool tryOperand(const Expr* operand, Value* base, Value& out) noexcept {
  if (operand->leaf == Leaf::Frame) {
    out = slotAt(base, frameOffsetOf(*operand));
    return true;
  }
  if (operand->leaf == Leaf::Constant) {
    out = literalValue(*operand);
    return true;
  }
  if (operand->leaf == Leaf::Product) return tryProduct(operand, base, out);
  return tryLeaf(operand, base, out);
}

bool isSameVariable(const Expr& a, const Expr& b) noexcept {
  if (a.kind != ExprKind::Variable || b.kind != ExprKind::Variable) return false;
  const auto& left = static_cast<const VariableExpr&>(a);
  const auto& right = static_cast<const VariableExpr&>(b);
  if (left.home != right.home) return false;
  return left.home == VariableHome::Global ? left.cell == right.cell
                                           : left.variable == right.variable;
}

namespace {

bool isSameField(const FieldExpr& a, const FieldExpr& b) noexcept {
  return a.name == b.name && isSameLeaf(*a.object, *b.object);
}

bool isSameElement(const IndexExpr& a, const IndexExpr& b) noexcept {
  return a.keyOffset == b.keyOffset && a.elementBias == b.elementBias &&
         isSameLeaf(*a.object, *b.object);
}

}  // namespace

bool isSameLeaf(const Expr& a, const Expr& b) noexcept {
  if (a.leaf != b.leaf || a.leaf == Leaf::None) return false;
  switch (a.kind) {
    case ExprKind::Variable:
      return isSameVariable(a, b);
    case ExprKind::Field:
      return isSameField(static_cast<const FieldExpr&>(a), static_cast<const FieldExpr&>(b));
    case ExprKind::Index:
      return isSameElement(static_cast<const IndexExpr&>(a), static_cast<const IndexExpr&>(b));
    default:
      return false;
  }
}

}  // namespace tarvel::lua::internal
