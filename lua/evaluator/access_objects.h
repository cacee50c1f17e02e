#pragma once

#include "lua/evaluator/execute.h"
#include "lua/evaluator/variables.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/value/value.h"

// Policies: how a field or index access, `Access`, gets at its object, for reading and for storing.
// Only an owned one needs release. A borrowed one is sure to stay while no script or host function
// runs; one in a frame variable also while they do, because no callee can change it.

namespace tarvel::lua::internal {

struct FrameObject {
  static constexpr bool kOwned = false;
  template <class Access>
  static Value load(const Access* node, Value* base) noexcept {
    return slotAt(base, node->objectOffset);
  }
};

struct GlobalObject {
  static constexpr bool kOwned = false;
  template <class Access>
  static Value load(const Access* node, Value*) noexcept {
    return *static_cast<const VariableExpr*>(node->object)->cell;
  }
};

// A variable of any home.
struct VariableObject {
  static constexpr bool kOwned = false;
  template <class Access>
  static Value load(const Access* node, Value* base) noexcept {
    return variableSlot(static_cast<const VariableExpr*>(node->object), base);
  }
};

struct PeekedObject {
  static constexpr bool kOwned = false;
  template <class Access>
  static Value load(const Access* node, Value* base) {
    return node->object->peek(node->object, base);
  }
};

struct OwnedObject {
  static constexpr bool kOwned = true;
  template <class Access>
  static Value load(const Access* node, Value* base) {
    return evaluateExpression(node->object, base);
  }
};

}  // namespace tarvel::lua::internal
