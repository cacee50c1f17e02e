#include "lua/evaluator/supervision.h"

#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"

namespace tarvel::lua::internal {

void noteScriptCall(const FunctionExpr& body, const Value* frame, Site site) noexcept {
  body.interpreter->trace.note(*frame[0].function, site);
}

void noteNativeCall(LuaVM& vm, const Value* frame, Site site) noexcept {
  LuaVM::Impl::of(vm).trace.note(*frame[0].function, site);
}

bool isTakenByPcall(const LuaVM::Impl& interpreter) noexcept {
  return interpreter.landing != nullptr;
}

}  // namespace tarvel::lua::internal
