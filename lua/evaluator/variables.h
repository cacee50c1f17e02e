#pragma once

#include "lua/frontend/syntax_tree.h"
#include "lua/value/environment.h"
#include "lua/value/function_handle.h"

// Where a variable's value stands at run time.

namespace tarvel::lua::internal {

// The closure that runs in a frame.
inline FunctionObject* runningFunction(Value* base) noexcept { return base[-1].function; }

// What the running closure captured for the variable: its value or its Environment.
inline Value& captureOf(const VariableExpr* variable, Value* base) noexcept {
  return runningFunction(base)->captures()[variable->captureIndex];
}

// Gives the variable in a frame slot a home that closures can share. On failure (std::bad_alloc)
// the slot stays as it is.
inline void moveToEnvironment(Heap& heap, Value& slot) {
  slot = Value(Environment::create(heap, slot));
}

// Only what lives in a frame slot, an Environment or a global may be stored into; the values that
// closures captured never change.
inline Value& variableSlot(const VariableExpr* variable, Value* base) noexcept {
  switch (variable->home) {
    case VariableHome::Frame:
      return slotAt(base, variable->offset);
    case VariableHome::OwnEnvironment:
      return slotAt(base, variable->offset).environment->slot;
    case VariableHome::CapturedValue:
      return captureOf(variable, base);
    case VariableHome::CapturedEnvironment:
      return captureOf(variable, base).environment->slot;
    case VariableHome::RunningFunction:
      return base[-1];
    case VariableHome::Global:
      break;
  }
  return *variable->cell;
}

}  // namespace tarvel::lua::internal
