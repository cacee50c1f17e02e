#include <tarvel/lua/lua_vm.h>

#include <iostream>
#include <string_view>

int main() {
  tarvel::lua::LuaVM vm;
  vm.bind("log", [](std::string_view text) { std::cout << "script: " << text << '\n'; });
  const auto script = vm.load("log('doubling') return limit * 2", "doubling", {"limit"});
  const auto result = script ? vm.call<int>(*script, 10) : script.error();
  if (!result) {
    std::cout << result.error().toString() << '\n';
    return 1;
  }
  std::cout << *result << '\n';  // 20
}
