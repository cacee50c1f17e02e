#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <tuple>
#include <utility>

#include "lua/evaluator/execute.h"
#include "lua/evaluator/leaves.h"
#include "lua/evaluator/node_functions.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/value/value.h"

// Operand policies: how the functions of binary operators get at an operand. One that is in place
// is borrowed and read without any effect: a frame variable and a literal always, and also after
// the other operand has run, because no callee can change them; a leaf where it can be (leaves.h).
// Any other operand is evaluated in its turn and owned.

namespace tarvel::lua::internal {

struct LeftFrame {
  static constexpr bool kInPlace = true;
  static constexpr bool kIsLeaf = false;
  static constexpr bool kIsOfAnyKind = false;
  static bool tryLoad(const BinaryExpr* node, Value* base, Value& out) noexcept {
    out = slotAt(base, node->leftOffset);
    return true;
  }
};

struct RightFrame {
  static constexpr bool kInPlace = true;
  static constexpr bool kIsLeaf = false;
  static constexpr bool kIsOfAnyKind = false;
  static bool tryLoad(const BinaryExpr* node, Value* base, Value& out) noexcept {
    out = slotAt(base, node->rightOffset);
    return true;
  }
};

struct Constant {
  static constexpr bool kInPlace = true;
  static constexpr bool kIsLeaf = false;
  static constexpr bool kIsOfAnyKind = false;
  static bool tryLoad(const BinaryExpr* node, Value*, Value& out) noexcept {
    out = node->constant;
    return true;
  }
};

using TryLeaf = bool (*)(const Expr*, Value*, Value&) noexcept;

template <TryLeaf Try>
struct Left {
  static constexpr bool kInPlace = true;
  static constexpr bool kIsLeaf = true;
  static constexpr bool kIsOfAnyKind = Try == tryLeaf;
  [[gnu::always_inline]] static bool tryLoad(const BinaryExpr* node, Value* base,
                                             Value& out) noexcept {
    return Try(node->left, base, out);
  }
};

template <TryLeaf Try>
struct Right {
  static constexpr bool kInPlace = true;
  static constexpr bool kIsLeaf = true;
  static constexpr bool kIsOfAnyKind = Try == tryLeaf;
  [[gnu::always_inline]] static bool tryLoad(const BinaryExpr* node, Value* base,
                                             Value& out) noexcept {
    return Try(node->right, base, out);
  }
};

struct LeftOther {
  static constexpr bool kInPlace = false;
  static constexpr bool kIsLeaf = false;
  static constexpr bool kIsOfAnyKind = false;
};

struct RightOther {
  static constexpr bool kInPlace = false;
  static constexpr bool kIsLeaf = false;
  static constexpr bool kIsOfAnyKind = false;
};

// Evaluates the operands of `node`, of which at least one is not in place, and passes them to
// `Use::tryApply`, which does the common cases. The other functions of `Use` have the rest: they
// take over what has been evaluated and load again what is in place, so that the common path need
// not keep it at hand. `statement` is the node that is being executed: the operator itself, or a
// statement that it is fused into. The caller provides the variables: with variables of its own,
// once it is inlined, the compiler would not let the caller end in a jump.
template <class Use, class Left, class Right>
[[gnu::always_inline]] inline typename Use::Result withEvaluated(const BinaryExpr* node,
                                                                 const Node* statement, Value* base,
                                                                 Value& left, Value& right,
                                                                 typename Use::Result& result) {
  if constexpr (!Left::kInPlace) {
    left = evaluateExpression(node->left, base);
    // Evaluating the right operand may raise an error, which must not lose the left one.
    if constexpr (!Right::kInPlace || Right::kIsLeaf) {
      if (left.isCounted()) [[unlikely]]
        return Use::template rightAfter<Right>(statement, base, left);
    }
  } else if constexpr (Left::kIsLeaf) {
    // What stands there may change, so only what needs no reference is taken in advance.
    if (!Left::tryLoad(node, base, left) || left.isCounted()) [[unlikely]]
      return Use::evaluateBoth(statement, base);
  }
  if constexpr (Right::kInPlace) {
    if (!Right::tryLoad(node, base, right)) [[unlikely]]
      return Use::template rightAfter<Right>(statement, base, left);
  } else {
    right = evaluateExpression(node->right, base);
  }
  if constexpr (Left::kInPlace && !Left::kIsLeaf) {
    Left::tryLoad(node, base, left);
  }
  if (Use::template tryApply<Left, Right>(statement, base, left, right, result)) [[likely]]
    return result;
  if constexpr (Right::kInPlace) {
    return Use::template rightAfter<Right>(statement, base, left);
  } else if constexpr (Left::kInPlace && !Left::kIsLeaf) {
    return Use::leftBehind(statement, base, right);
  } else {
    return Use::ofOwned(statement, base, left, right);
  }
}

// What an operand looks like: the number of its policy in the lists.
enum class OperandShape : std::size_t {
  Frame,
  Constant,
  Field,
  Element,
  Leaf,  // of any kind
  Other,
  ElementOfElement,
  Product
};
using LeftOperands =
    std::tuple<LeftFrame, Constant, Left<tryField>, Left<tryElement>, Left<tryLeaf>, LeftOther,
               Left<tryElementOfElement>, Left<tryProduct>>;
using RightOperands =
    std::tuple<RightFrame, Constant, Right<tryField>, Right<tryElement>, Right<tryLeaf>, RightOther,
               Right<tryElementOfElement>, Right<tryProduct>>;

// How many of the shapes, the first ones, an operator has functions for.
constexpr std::size_t kAllShapes = std::tuple_size_v<LeftOperands>;
constexpr std::size_t kCommonShapes = static_cast<std::size_t>(OperandShape::ElementOfElement);

struct OperandShapes {
  OperandShape left;
  OperandShape right;
};

inline OperandShape operandShape(const Expr& operand) noexcept {
  switch (operand.leaf) {
    case Leaf::Frame:
      return OperandShape::Frame;
    case Leaf::Constant:
      return OperandShape::Constant;
    case Leaf::None:
    case Leaf::Negation:
      return OperandShape::Other;
    case Leaf::Field:
      return OperandShape::Field;
    case Leaf::Element:
      return OperandShape::Element;
    case Leaf::ElementOfElement:
      return OperandShape::ElementOfElement;
    case Leaf::Product:
      return OperandShape::Product;
    default:
      return OperandShape::Leaf;
  }
}

inline OperandShapes operandShapes(const BinaryExpr& node) noexcept {
  assert(isChosen(*node.left) && isChosen(*node.right));
  OperandShapes shapes{operandShape(*node.left), operandShape(*node.right)};
  // Only one constant fits into a node; two literal operands are rare.
  if (shapes.left == OperandShape::Constant && shapes.right == OperandShape::Constant)
    shapes.left = OperandShape::Other;
  return shapes;
}

// Writes where the operands are into the node, which its function and those of nodes that it is
// fused into read: offsets of frame variables, and the constant.
inline OperandShapes placeOperands(BinaryExpr& node) noexcept {
  const OperandShapes shapes = operandShapes(node);
  if (shapes.left == OperandShape::Frame) node.leftOffset = frameOffsetOf(*node.left);
  if (shapes.right == OperandShape::Frame) node.rightOffset = frameOffsetOf(*node.right);
  if (shapes.left == OperandShape::Constant) node.constant = literalValue(*node.left);
  if (shapes.right == OperandShape::Constant) node.constant = literalValue(*node.right);
  return shapes;
}

// The shape as which one is treated that has no functions, among the first `known`. To keep the
// functions few, a leaf of any kind beside another leaf makes that one of any kind, too.
constexpr OperandShape servedShape(OperandShape shape, OperandShape beside,
                                   std::size_t known) noexcept {
  const bool isKnown = static_cast<std::size_t>(shape) < known;
  if (shape == OperandShape::Product)
    return isKnown && beside != OperandShape::Leaf ? shape : OperandShape::Other;
  if (shape == OperandShape::ElementOfElement && !isKnown) return OperandShape::Leaf;
  const bool isSpecificLeaf = shape == OperandShape::Field || shape == OperandShape::Element ||
                              shape == OperandShape::ElementOfElement;
  return isSpecificLeaf && beside == OperandShape::Leaf ? OperandShape::Leaf : shape;
}

constexpr OperandShapes servedShapes(OperandShapes shapes, std::size_t known) noexcept {
  const OperandShape left = servedShape(shapes.left, shapes.right, known);
  const OperandShape right = servedShape(shapes.right, left, known);
  return {servedShape(left, right, known), right};
}

template <template <class, class> class Function, std::size_t Left, std::size_t Right,
          std::size_t Known>
constexpr auto functionForShapes() {
  constexpr OperandShapes kShapes =
      servedShapes({static_cast<OperandShape>(Left), static_cast<OperandShape>(Right)}, Known);
  return Function<
      std::tuple_element_t<static_cast<std::size_t>(kShapes.left), LeftOperands>,
      std::tuple_element_t<static_cast<std::size_t>(kShapes.right), RightOperands>>::run;
}

// Indexed by the shape of the left operand times kAllShapes plus that of the right one.
template <template <class, class> class Function, class Pointer, std::size_t Known,
          std::size_t... Pairs>
constexpr auto functionsByShapes(std::index_sequence<Pairs...>) {
  return std::array<Pointer, sizeof...(Pairs)>{
      functionForShapes<Function, Pairs / kAllShapes, Pairs % kAllShapes, Known>()...};
}

template <template <class, class> class Function, class Pointer, std::size_t Known>
Pointer chooseByShapes(OperandShapes shapes) noexcept {
  static constexpr auto kFunctions = functionsByShapes<Function, Pointer, Known>(
      std::make_index_sequence<kAllShapes * kAllShapes>());
  return kFunctions[static_cast<std::size_t>(shapes.left) * kAllShapes +
                    static_cast<std::size_t>(shapes.right)];
}

}  // namespace tarvel::lua::internal
