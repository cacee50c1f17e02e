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

}  // namespace tarvel::lua::internal
