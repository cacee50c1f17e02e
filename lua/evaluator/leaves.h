#pragma once

#include <cstdint>

#include "lua/evaluator/inline_arithmetic.h"
#include "lua/evaluator/variables.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/value/number_rules.h"
#include "lua/value/table.h"
#include "lua/value/value.h"

// Reading leaves in place: operands that an operator's function, a store or a condition gets at
// without calling their own functions. What is read is borrowed, which is sound until something
// runs. False says that the leaf cannot be read so this time, because of a hint that is wrong, a
// key that is no element, or an object that is no table; nothing has happened then, and whoever
// tried starts over with the expressions' own functions, which also have the errors.
//
// Every function here is inlined into those that try, of which most need no frame of their own.

namespace tarvel::lua::internal {

[[gnu::always_inline]] inline bool tryElementOf(const IndexExpr* index, Value object, Value* base,
                                                Value& out) noexcept {
  const Value key = slotAt(base, index->keyOffset);
  if (object.tag != kTable || key.tag != kInteger) return false;
  // A sum that wraps around is as far out of the array as the key that it stands for.
  const auto bias = static_cast<std::uint64_t>(std::int64_t{index->elementBias});
  return object.table->tryElement(static_cast<std::uint64_t>(key.integer) + bias, out);
}

[[gnu::always_inline]] inline bool tryFieldOf(const FieldExpr* field, Value object,
                                              Value& out) noexcept {
  if (object.tag != kTable) return false;
  out = object.table->getHinted(field->name, field->hint);
  return !out.isNil();
}

[[gnu::always_inline]] inline bool tryElement(const Expr* operand, Value* base,
                                              Value& out) noexcept {
  const auto* const index = static_cast<const IndexExpr*>(operand);
  return tryElementOf(index, slotAt(base, index->objectOffset), base, out);
}

[[gnu::always_inline]] inline bool tryField(const Expr* operand, Value* base, Value& out) noexcept {
  const auto* const field = static_cast<const FieldExpr*>(operand);
  return tryFieldOf(field, slotAt(base, field->objectOffset), out);
}

[[gnu::always_inline]] inline bool tryElementOfElement(const Expr* operand, Value* base,
                                                       Value& out) noexcept {
  const auto* const index = static_cast<const IndexExpr*>(operand);
  return tryElement(index->object, base, out) && tryElementOf(index, out, base, out);
}

[[gnu::always_inline]] inline Value sharedVariable(const Expr* operand, Value* base) noexcept {
  const auto* const variable = static_cast<const VariableExpr*>(operand);
  if (variable->home == VariableHome::CapturedValue) return captureOf(variable, base);
  if (variable->home == VariableHome::CapturedEnvironment)
    return captureOf(variable, base).environment->slot;
  return *variable->cell;
}

// The object of an access, where that is no frame variable.
[[gnu::always_inline]] inline bool tryObject(const Expr* object, Value* base, Value& out) noexcept {
  if (object->leaf == Leaf::Shared) {
    out = sharedVariable(object, base);
    return true;
  }
  return object->leaf == Leaf::Field ? tryField(object, base, out) : tryElement(object, base, out);
}

[[gnu::always_inline]] inline bool tryProduct(const Expr* operand, Value* base,
                                              Value& out) noexcept {
  const auto* const product = static_cast<const BinaryExpr*>(operand);
  const Value left = slotAt(base, product->leftOffset);
  const Value right = slotAt(base, product->rightOffset);
  const Outcome outcome = tryArithmetic<Multiply>(left, right, out);
  if (outcome == Outcome::Done) return true;
  if (outcome != Outcome::Float || !exactInteger(out.number, out.integer)) return false;
  out.tag = kInteger;
  return true;
}

// Of any kind. Those that are frequent have shapes of their own in operands.h, which spare the
// jump.
[[gnu::always_inline]] inline bool tryLeaf(const Expr* operand, Value* base, Value& out) noexcept {
  const auto* const index = static_cast<const IndexExpr*>(operand);
  const auto* const field = static_cast<const FieldExpr*>(operand);
  if (operand->leaf == Leaf::Shared) {
    out = sharedVariable(operand, base);
    return true;
  }
  switch (operand->leaf) {
    case Leaf::Element:
      return tryElement(operand, base, out);
    case Leaf::ElementOfElement:
      return tryElementOfElement(operand, base, out);
    case Leaf::ElementOfLeaf:
      return tryObject(index->object, base, out) && tryElementOf(index, out, base, out);
    case Leaf::ConstantElement: {
      const Value object = slotAt(base, index->objectOffset);
      const auto position = static_cast<std::uint64_t>(std::int64_t{index->elementBias});
      return object.tag == kTable && object.table->tryElement(position, out);
    }
    case Leaf::Field:
      return tryField(operand, base, out);
    case Leaf::FieldOfLeaf:
      return tryObject(field->object, base, out) && tryFieldOf(field, out, out);
    default:
      return false;
  }
}

inline bool isElementLeaf(const Expr& expression) noexcept {
  return expression.leaf >= Leaf::Element && expression.leaf <= Leaf::ConstantElement;
}

bool isSameVariable(const Expr& a, const Expr& b) noexcept;

// Whether two leaves are the same variable, or the same element or field of the same one.
bool isSameLeaf(const Expr& a, const Expr& b) noexcept;

// Reads any operand that is in place, out of line.
bool tryOperand(const Expr* operand, Value* base, Value& out) noexcept;

}  // namespace tarvel::lua::internal
