#pragma once

#include "lua/frontend/syntax_tree.h"
#include "lua/value/environment.h"
#include "lua/value/function_handle.h"

// Where a variable's value stands at run time.

namespace tarvel::lua::internal {

// The closure that runs in a frame.
inline FunctionObject* runningFunction(Value* base) noexcept { return base[-1].function; }

inline Value& ownEnvironmentSlot(const VariableExpr* variable, Value* base) noexcept {
  return slotAt(base, variable->offset).environment->slots()[variable->environmentIndex];
}

inline Value& capturedSlot(const VariableExpr* variable, Value* base) noexcept {
  Environment* environment = runningFunction(base)->environment;
  for (std::uint32_t hops = variable->hops; hops > 0; --hops) environment = environment->parent;
  return environment->slots()[variable->environmentIndex];
}

inline Value& variableSlot(const VariableExpr* variable, Value* base) noexcept {
  switch (variable->home) {
    case VariableHome::Frame:
      return slotAt(base, variable->offset);
    case VariableHome::OwnEnvironment:
      return ownEnvironmentSlot(variable, base);
    case VariableHome::Captured:
      return capturedSlot(variable, base);
    case VariableHome::Global:
      break;
  }
  return *variable->cell;
}

}  // namespace tarvel::lua::internal
