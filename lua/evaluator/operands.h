#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

#include "lua/evaluator/execute.h"
#include "lua/evaluator/inline_arithmetic.h"
#include "lua/evaluator/node_functions.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/value/table.h"
#include "lua/value/value.h"

// Operand policies: how the functions of binary operators get at an operand. A frame variable and a
// literal are borrowed and can be read at any time, also after the other operand has run, because
// no callee can change them. A field or a product of frame variables is tried in place: where it
// gives a number without any effect, that is the operand. Any other operand is evaluated in its
// turn and owned; `Any` is the policy after a try that failed.

namespace tarvel::lua::internal {

struct LeftFrame {
  using Any = LeftFrame;
  static constexpr bool kOwned = false;
  static constexpr bool kTried = false;
  static Value load(const BinaryExpr* node, Value* base) noexcept {
    return slotAt(base, node->leftOffset);
  }
};

struct RightFrame {
  using Any = RightFrame;
  static constexpr bool kOwned = false;
  static constexpr bool kTried = false;
  static Value load(const BinaryExpr* node, Value* base) noexcept {
    return slotAt(base, node->rightOffset);
  }
};

struct Constant {
  using Any = Constant;
  static constexpr bool kOwned = false;
  static constexpr bool kTried = false;
  static Value load(const BinaryExpr* node, Value*) noexcept { return node->constant; }
};

struct LeftOther {
  using Any = LeftOther;
  static constexpr bool kOwned = true;
  static constexpr bool kTried = false;
  static Value load(const BinaryExpr* node, Value* base) {
    return evaluateExpression(node->left, base);
  }
};

struct RightOther {
  using Any = RightOther;
  static constexpr bool kOwned = true;
  static constexpr bool kTried = false;
  static Value load(const BinaryExpr* node, Value* base) {
    return evaluateExpression(node->right, base);
  }
};

// A field that holds a number, of a record that a frame variable holds, and which the hint finds.
inline bool tryField(const Expr* operand, Value* base, Value& out) noexcept {
  const auto* const field = static_cast<const FieldExpr*>(operand);
  const Value object = slotAt(base, field->objectOffset);
  if (object.tag != kTable) return false;
  out = object.table->getHinted(field->name, field->hint);
  return out.isNumber();
}

// The product of two frame variables that hold numbers.
inline bool tryProduct(const Expr* operand, Value* base, Value& out) noexcept {
  const auto* const product = static_cast<const BinaryExpr*>(operand);
  return tryArithmetic<Multiply>(LeftFrame::load(product, base), RightFrame::load(product, base),
                                 out);
}

template <bool (*Try)(const Expr*, Value*, Value&) noexcept>
struct LeftTried {
  using Any = LeftOther;
  static constexpr bool kOwned = true;
  static constexpr bool kTried = true;
  static bool tryLoad(const BinaryExpr* node, Value* base, Value& out) noexcept {
    return Try(node->left, base, out);
  }
};

template <bool (*Try)(const Expr*, Value*, Value&) noexcept>
struct RightTried {
  using Any = RightOther;
  static constexpr bool kOwned = true;
  static constexpr bool kTried = true;
  static bool tryLoad(const BinaryExpr* node, Value* base, Value& out) noexcept {
    return Try(node->right, base, out);
  }
};

using LeftField = LeftTried<tryField>;
using RightField = RightTried<tryField>;
using LeftProduct = LeftTried<tryProduct>;
using RightProduct = RightTried<tryProduct>;

// An operand for code off the common path: what was evaluated where it is owned, otherwise loaded
// again, so that the common path need not keep it at hand.
template <class Operand>
inline Value reload(const BinaryExpr* node, Value* base, Value owned) {
  if constexpr (Operand::kOwned) {
    return owned;
  } else {
    return Operand::load(node, base);
  }
}
template <class Operand>
inline Value onlyOwned(Value operand) noexcept {
  return Operand::kOwned ? operand : Value();
}

// Evaluates the operands of `node` and passes them to `Use::apply<Left, Right>(statement, base,
// left, right)`, which drops those that are owned, also when it raises an error. `statement` is the
// node that is being executed: the operator itself, or a statement that it is fused into.
template <class Use, class Left, class Right>
typename Use::Result withOperands(const BinaryExpr* node, const Node* statement, Value* base);

// Evaluates the right operand behind an owned left one.
template <class Right>
inline Value loadRight(const BinaryExpr* node, Value* base) {
  if constexpr (Right::kTried) {
    Value right;
    return Right::tryLoad(node, base, right) ? right : Right::Any::load(node, base);
  } else {
    return Right::load(node, base);
  }
}

// Starts over, with nothing tried. Out of line, so that the tries need no frame of their own.
template <class Use, class Left, class Right>
[[gnu::noinline]] typename Use::Result withAnyOperands(const BinaryExpr* node,
                                                       const Node* statement, Value* base) {
  return withOperands<Use, typename Left::Any, typename Right::Any>(node, statement, base);
}

template <class Use, class Left, class Right>
inline typename Use::Result withOperands(const BinaryExpr* node, const Node* statement,
                                         Value* base) {
  Value left;
  Value right;
  if constexpr (Left::kTried) {
    if (!Left::tryLoad(node, base, left)) [[unlikely]]
      return withAnyOperands<Use, Left, Right>(node, statement, base);
  } else if constexpr (Left::kOwned) {
    left = Left::load(node, base);
    if constexpr (Right::kOwned) {
      // Evaluating the right operand may raise an error, which must not lose the left one.
      if (left.isCounted()) [[unlikely]]
        return Use::rightAfterCounted(statement, base, left);
    }
  }
  if constexpr (Right::kTried && (Left::kTried || !Left::kOwned)) {
    if (!Right::tryLoad(node, base, right)) [[unlikely]]
      return withAnyOperands<Use, Left, Right>(node, statement, base);
  } else {
    right = loadRight<Right>(node, base);
  }
  if constexpr (!Left::kOwned) left = Left::load(node, base);
  return Use::template apply<Left, Right>(statement, base, left, right);
}

// What an operand looks like: the number of its policy in the lists.
enum class OperandShape : std::size_t { Frame, Constant, Other, Field, Product };
using LeftOperands = std::tuple<LeftFrame, Constant, LeftOther, LeftField, LeftProduct>;
using RightOperands = std::tuple<RightFrame, Constant, RightOther, RightField, RightProduct>;

template <OperandShape Shape, class Left, class Right>
constexpr bool kHasPolicies =
    std::is_same_v<std::tuple_element_t<static_cast<std::size_t>(Shape), LeftOperands>, Left>&&
        std::is_same_v<std::tuple_element_t<static_cast<std::size_t>(Shape), RightOperands>, Right>;
static_assert(kHasPolicies<OperandShape::Frame, LeftFrame, RightFrame>);
static_assert(kHasPolicies<OperandShape::Constant, Constant, Constant>);
static_assert(kHasPolicies<OperandShape::Other, LeftOther, RightOther>);
static_assert(kHasPolicies<OperandShape::Field, LeftField, RightField>);
static_assert(kHasPolicies<OperandShape::Product, LeftProduct, RightProduct>);

struct OperandShapes {
  OperandShape left;
  OperandShape right;
};

inline bool isProductOfFrameVariables(const Expr& operand) noexcept {
  if (operand.kind != ExprKind::Binary) return false;
  const auto& binary = static_cast<const BinaryExpr&>(operand);
  return binary.op == TokenKind::Star && isFrameVariable(*binary.left) &&
         isFrameVariable(*binary.right);
}

inline OperandShape operandShape(const Expr& operand) noexcept {
  if (isFrameVariable(operand)) return OperandShape::Frame;
  if (isLiteral(operand)) return OperandShape::Constant;
  if (operand.kind == ExprKind::Field &&
      isFrameVariable(*static_cast<const FieldExpr&>(operand).object))
    return OperandShape::Field;
  if (isProductOfFrameVariables(operand)) return OperandShape::Product;
  return OperandShape::Other;
}

inline OperandShapes operandShapes(const BinaryExpr& node) noexcept {
  OperandShapes shapes{operandShape(*node.left), operandShape(*node.right)};
  // Only one constant fits into a node; two literal operands are rare.
  if (shapes.left == OperandShape::Constant && shapes.right == OperandShape::Constant)
    shapes.left = OperandShape::Other;
  return shapes;
}

// Writes where the operands are into the node, which its function and those of nodes that it is
// fused into read: offsets of frame variables, and the constant.
inline OperandShapes placeOperands(BinaryExpr& node) noexcept {
  assert(isChosen(*node.left) && isChosen(*node.right));
  const OperandShapes shapes = operandShapes(node);
  if (shapes.left == OperandShape::Frame) node.leftOffset = frameOffsetOf(*node.left);
  if (shapes.right == OperandShape::Frame) node.rightOffset = frameOffsetOf(*node.right);
  if (shapes.left == OperandShape::Constant) node.constant = literalValue(*node.left);
  if (shapes.right == OperandShape::Constant) node.constant = literalValue(*node.right);
  return shapes;
}

// The functions for one left operand with each of the first right ones.
template <template <class, class> class Function, class Pointer, class Left, std::size_t... Rights>
constexpr auto functionsByRight(std::index_sequence<Rights...>) {
  return std::array<Pointer, sizeof...(Rights)>{
      Function<Left, std::tuple_element_t<Rights, RightOperands>>::run...};
}

template <template <class, class> class Function, class Pointer, std::size_t... Lefts>
constexpr auto functionsByShapes(std::index_sequence<Lefts...> lefts) {
  return std::array{
      functionsByRight<Function, Pointer, std::tuple_element_t<Lefts, LeftOperands>>(lefts)...};
}

// The function for the shapes of the operands, of which the first `Known` have functions of their
// own; the others count as `Other`.
template <template <class, class> class Function, class Pointer, std::size_t Known>
Pointer chooseByShapes(OperandShapes shapes) noexcept {
  static constexpr auto kFunctions =
      functionsByShapes<Function, Pointer>(std::make_index_sequence<Known>());
  const auto indexOf = [](OperandShape shape) {
    const auto index = static_cast<std::size_t>(shape);
    return index < Known ? index : static_cast<std::size_t>(OperandShape::Other);
  };
  return kFunctions[indexOf(shapes.left)][indexOf(shapes.right)];
}

}  // namespace tarvel::lua::internal
