#pragma once

#include <array>
#include <cstddef>

#include "lua/evaluator/execute.h"
#include "lua/evaluator/node_functions.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/value/table.h"
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

// A field that holds a number, of a record that a frame variable holds, and which the hint finds.
// Whatever else the operand turns out to be is evaluated as any other.
inline Value loadField(const Expr* operand, Value* base) {
  const auto* const field = static_cast<const FieldExpr*>(operand);
  const Value object = slotAt(base, field->objectOffset);
  if (object.tag == kTable) [[likely]] {
    const Value value = object.table->getHinted(field->name, field->hint);
    if (value.isNumber()) [[likely]]
      return value;
  }
  return evaluateExpression(operand, base);
}

struct LeftField {
  static constexpr bool kOwned = true;
  static Value load(const BinaryExpr* node, Value* base) { return loadField(node->left, base); }
};

struct RightField {
  static constexpr bool kOwned = true;
  static Value load(const BinaryExpr* node, Value* base) { return loadField(node->right, base); }
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

enum class OperandShape { Frame = 0, Constant = 1, Other = 2, Field = 3 };

struct OperandShapes {
  OperandShape left;
  OperandShape right;
};

inline OperandShape operandShape(const Expr& operand) noexcept {
  if (isFrameVariable(operand)) return OperandShape::Frame;
  if (isLiteral(operand)) return OperandShape::Constant;
  if (operand.kind == ExprKind::Field &&
      isFrameVariable(*static_cast<const FieldExpr&>(operand).object))
    return OperandShape::Field;
  return OperandShape::Other;
}

inline OperandShapes operandShapes(const BinaryExpr& node) noexcept {
  OperandShapes shapes{operandShape(*node.left), operandShape(*node.right)};
  // Only one constant fits into a node; two literal operands are rare.
  if (shapes.left == OperandShape::Constant && shapes.right == OperandShape::Constant)
    shapes.left = OperandShape::Other;
  return shapes;
}

inline OperandShapes noteOperands(BinaryExpr& node) noexcept {
  const OperandShapes shapes = operandShapes(node);
  if (shapes.left == OperandShape::Frame) node.leftOffset = frameOffsetOf(*node.left);
  if (shapes.right == OperandShape::Frame) node.rightOffset = frameOffsetOf(*node.right);
  if (shapes.left == OperandShape::Constant) node.constant = literalValue(*node.left);
  if (shapes.right == OperandShape::Constant) node.constant = literalValue(*node.right);
  return shapes;
}

// One left operand with every right one, in the order of OperandShape.
template <template <class, class> class Function, class Pointer, class Left>
constexpr std::array<Pointer, 4> kByRightShape = {
    Function<Left, RightFrame>::run, Function<Left, Constant>::run, Function<Left, RightOther>::run,
    Function<Left, RightField>::run};

// The entry for the shapes in a table of the functions for every pair of operands.
template <template <class, class> class Function, class Pointer>
Pointer chooseByShapes(OperandShapes shapes) noexcept {
  static constexpr std::array<Pointer, 4> kFunctions[] = {
      kByRightShape<Function, Pointer, LeftFrame>, kByRightShape<Function, Pointer, Constant>,
      kByRightShape<Function, Pointer, LeftOther>, kByRightShape<Function, Pointer, LeftField>};
  return kFunctions[static_cast<int>(shapes.left)][static_cast<std::size_t>(shapes.right)];
}

}  // namespace tarvel::lua::internal
