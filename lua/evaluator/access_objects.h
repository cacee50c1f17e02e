#pragma once

#include "lua/evaluator/execute.h"
#include "lua/evaluator/variables.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/value/value.h"

// Peeking. An access path is peeked at without taking references on the way, so that `a.b.c` costs
// none but for its result. That is sound because a peek runs no function of a script or the host,
// which could change a table or a variable on the path, and because whoever peeks is done with what
// it borrowed before anything can run. Accesses are not free of code as such: reading a property of
// a native object calls a function of the host, which may run any script. Therefore:
//
// - A peek looks only into tables. Where it comes to anything else it gives kNotPeeked and has done
//   nothing, so that whoever peeked starts over with evaluatePath, which owns each object on the
//   path while its field is read. This holds for methods and errors as well: whatever is no table
//   is left to the one general way.
// - A key inside a peeked path is itself peeked, or is an expression that contains no access and no
//   call (Expr::mayRunCode).
// - What is borrowed while any other key is evaluated is a frame variable, which no callee can
//   change; another object is owned by a slot meanwhile.
// - The receiver of a property is owned while its function runs, and the result by the caller.

namespace tarvel::lua::internal {

inline Value notPeeked() noexcept { return Value::ofTag(kNotPeeked); }
inline bool isPeeked(Value value) noexcept { return value.tag != kNotPeeked; }

// In indexing.cpp. The value of any expression, owned; what can be peeked at is evaluated from its
// start, without peeking.
Value evaluatePath(const Expr* path, Value* base);
// In expressions.cpp. The same for `#`.
Value evaluateLengthOfPath(const UnaryExpr* length, Value* base);

// Policies: how a field or index access, `Access`, gets at its object, for reading and for storing.
// Only an owned one needs release. A borrowed one is sure to stay while no script or host function
// runs; one in a frame variable also while they do, because no callee can change it.

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

// May be kNotPeeked.
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
