#include "lua/script_check.h"

#include <tarvel/lua/lua_vm.h>

#include "lua/lua_vm_impl.h"

namespace tarvel::lua {

void checkScript(const std::string& source, const std::string& chunkName) {
  LuaVM vm;
  LuaVM::Impl::of(vm).parseScript(source, chunkName);
}

}  // namespace tarvel::lua
