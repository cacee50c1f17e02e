#include <tarvel/lua/lua_class.h>
#include <tarvel/lua/lua_vm.h>

#include "lua/bridge_access.h"
#include "lua/lua_vm_impl.h"

namespace tarvel::lua {
namespace bridge {
void* ScriptValue::address(const void*) const noexcept { return nullptr; }
std::shared_ptr<void> ScriptValue::object(const void*) const { return nullptr; }
std::string ScriptValue::className(const void*) const { return "object"; }
void ScriptSink::object(const void*, std::shared_ptr<void>) { nil(); }
void addMethod(LuaVM&, ClassInInterpreter*, std::string_view, std::shared_ptr<Callable>) {}
void addProperty(LuaVM&, ClassInInterpreter*, std::string_view, std::shared_ptr<Callable>,
                 std::shared_ptr<Callable>) {}
}  // namespace bridge
bridge::ClassInInterpreter* LuaVM::findOrMakeClass(const void*, std::string_view) {
  return nullptr;
}
}  // namespace tarvel::lua
