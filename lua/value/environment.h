#pragma once

#include <cstddef>
#include <cstdint>

#include "lua/value/heap.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// The variables of one activation of a scope that closures can capture. Scopes that no closure can
// capture keep their variables in the frame and have none.
struct Environment : Object {
  Environment* parent;  // owned; the next scope outward that has an environment, or null
  std::uint64_t slotCount;

  Value* slots() noexcept { return reinterpret_cast<Value*>(this + 1); }

  // A new environment, all slots nil, sharing `enclosing`. Returns an owned reference.
  static Environment* create(Heap& heap, std::uint32_t slotCount, Environment* enclosing);

  static std::size_t blockBytes(std::uint64_t slotCount) noexcept {
    return sizeof(Environment) + slotCount * sizeof(Value);
  }
};

static_assert(sizeof(Environment) % alignof(Value) == 0);

}  // namespace tarvel::lua::internal
