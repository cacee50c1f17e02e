#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <iostream>

int main() {
  tarvel::lua::LuaVM vm;
  vm.setGlobal("limit", tarvel::lua::LuaValue(std::int64_t{10}));
  const tarvel::lua::LuaResult result = vm.runScriptString("return limit * 2", "doubling");
  std::cout << (result.ok ? result.value.toString() : result.error) << '\n';  // 20
  return result.ok ? 0 : 1;
}
