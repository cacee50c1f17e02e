#pragma once

#include "lua/value/heap.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// The home of one local variable that closures share: one that an inner function names and that is
// assigned after its declaration. The frame that declared it and each of those closures hold a
// reference. Every other variable stays in its frame; closures that name it hold its value.
struct Environment : Object {
  Value slot;

  // Returns an owned reference to a new home, which takes over `variable`. On failure
  // (std::bad_alloc) the caller still owns it.
  static Environment* create(Heap& heap, Value variable);
};

}  // namespace tarvel::lua::internal
