#pragma once

#include <cstdint>

#include "lua/evaluator/leaves.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/value/table.h"

// Where the values of leaves stand that are elements or fields, for replacing them in place. A
// place stays only until something runs.

namespace tarvel::lua::internal {

// The object of an access that is a leaf; false where it cannot be read in place, or is no table.
template <class Access>
[[gnu::always_inline]] inline bool tryTable(const Access* access, bool isInFrame, Value* base,
                                            Table*& out) noexcept {
  Value object;
  if (isInFrame) {
    object = slotAt(base, access->objectOffset);
  } else if (!tryObject(access->object, base, object)) {
    return false;
  }
  out = object.table;
  return object.tag == kTable;
}

// The key of an element that is a leaf; false where it is no integer.
[[gnu::always_inline]] inline bool tryKey(const IndexExpr* index, Value* base,
                                          std::int64_t& out) noexcept {
  const std::int64_t bias = std::int64_t{index->elementBias} + 1;
  if (index->leaf == Leaf::ConstantElement) {
    out = bias;
    return true;
  }
  const Value key = slotAt(base, index->keyOffset);
  return key.tag == kInteger && !__builtin_add_overflow(key.integer, bias, &out);
}

// The place of an element that is a leaf, of one that is not nil, or null.
[[gnu::always_inline]] inline Value* findElement(const Expr* target, Value* base) noexcept {
  const auto* const index = static_cast<const IndexExpr*>(target);
  const bool isInFrame = index->leaf == Leaf::Element || index->leaf == Leaf::ConstantElement;
  Table* table = nullptr;
  std::int64_t key = 0;
  if (!tryTable(index, isInFrame, base, table)) return nullptr;
  if (!tryKey(index, base, key)) return nullptr;
  const std::uint64_t position = static_cast<std::uint64_t>(key) - 1;
  if (position >= table->arraySize()) return nullptr;
  Value* const place = &table->element(static_cast<std::uint32_t>(position));
  return place->isNil() ? nullptr : place;
}

// The place of a field that is a leaf, of one that the hint finds and that is not nil, or null.
[[gnu::always_inline]] inline Value* findField(const Expr* target, Value* base) noexcept {
  const auto* const field = static_cast<const FieldExpr*>(target);
  Table* table = nullptr;
  if (!tryTable(field, field->leaf == Leaf::Field, base, table)) return nullptr;
  return table->findHinted(field->name, field->hint);
}

}  // namespace tarvel::lua::internal
