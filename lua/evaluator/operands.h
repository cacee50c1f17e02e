#pragma once

#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/value/value.h"

// Operand policies: how the functions of binary operators get at an operand. A frame variable and a
// literal are borrowed and can be read at any time, also after the other operand has run, because
// no callee can change them. Any other operand is evaluated in its turn and owned.

namespace tarvel::lua::internal {

struct LeftFrame {
  static constexpr bool kOwned = false;
  static Value load(const BinaryExpr* node, Value* base) noexcept {
    return slotAt(base, node->leftOffset);
  }
};

struct RightFrame {
  static constexpr bool kOwned = false;
  static Value load(const BinaryExpr* node, Value* base) noexcept {
    return slotAt(base, node->rightOffset);
  }
};

struct Constant {
  static constexpr bool kOwned = false;
  static Value load(const BinaryExpr* node, Value*) noexcept { return node->constant; }
};

struct LeftOther {
  static constexpr bool kOwned = true;
  static Value load(const BinaryExpr* node, Value* base) {
    return evaluateExpression(node->left, base);
  }
};

struct RightOther {
  static constexpr bool kOwned = true;
  static Value load(const BinaryExpr* node, Value* base) {
    return evaluateExpression(node->right, base);
  }
};

// An operand for code off the common path: what was evaluated where it is owned, otherwise loaded
// again, so that the common path need not keep it at hand.
template <class Operand>
inline Value reload(const BinaryExpr* node, Value* base, Value owned) {
  if constexpr (Operand::kOwned) return owned;
  return Operand::load(node, base);
}
template <class Operand>
inline Value onlyOwned(Value operand) noexcept {
  return Operand::kOwned ? operand : Value();
}

// Evaluates the operands of `node` and passes them to `Use::apply<Left, Right>(statement, base,
// left, right)`, which drops those that are owned, also when it raises an error. `statement` is the
// node that is being executed: the operator itself, or a statement that it is fused into.
template <class Use, class Left, class Right>
inline typename Use::Result withOperands(const BinaryExpr* node, const Node* statement,
                                         Value* base) {
  if constexpr (!Left::kOwned) {
    const Value right = Right::load(node, base);
    return Use::template apply<Left, Right>(statement, base, Left::load(node, base), right);
  } else {
    const Value left = Left::load(node, base);
    if constexpr (Right::kOwned) {
      // Evaluating the right operand may raise an error, which must not lose the left one.
      if (left.isCounted()) [[unlikely]]
        return Use::rightAfterCounted(statement, base, left);
    }
    const Value right = Right::load(node, base);
    return Use::template apply<Left, Right>(statement, base, left, right);
  }
}

struct OperandShapes {
  int left;  // 0 frame, 1 constant, 2 other
  int right;
};
inline int operandShape(const Expr& operand) noexcept {
  return isFrameVariable(operand) ? 0 : isLiteral(operand) ? 1 : 2;
}

inline OperandShapes operandShapes(const BinaryExpr& node) noexcept {
  const OperandShapes shapes{operandShape(*node.left), operandShape(*node.right)};
  // Only one constant fits into a node; two literal operands are rare.
  return shapes.left == 1 && shapes.right == 1 ? OperandShapes{2, 1} : shapes;
}

inline OperandShapes noteOperands(BinaryExpr& node) noexcept {
  const OperandShapes shapes = operandShapes(node);
  if (shapes.left == 0) node.leftOffset = frameOffsetOf(*node.left);
  if (shapes.right == 0) node.rightOffset = frameOffsetOf(*node.right);
  if (shapes.left == 1) node.constant = literalValue(*node.left);
  if (shapes.right == 1) node.constant = literalValue(*node.right);
  return shapes;
}

// The entry for the shapes in a table of the functions for {frame, constant, other} x {frame,
// constant, other}.
template <template <class, class> class Function, class Pointer>
Pointer chooseByShapes(OperandShapes shapes) noexcept {
  static constexpr Pointer kFunctions[3][3] = {
      {Function<LeftFrame, RightFrame>::run, Function<LeftFrame, Constant>::run,
       Function<LeftFrame, RightOther>::run},
      {Function<Constant, RightFrame>::run, nullptr, Function<Constant, RightOther>::run},
      {Function<LeftOther, RightFrame>::run, Function<LeftOther, Constant>::run,
       Function<LeftOther, RightOther>::run},
  };
  return kFunctions[shapes.left][shapes.right];
}

}  // namespace tarvel::lua::internal
