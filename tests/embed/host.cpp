// A small host: gives a script data and a function, runs it, and takes apart what comes back. Exits
// with 1, naming the check, if something is not as it should be.

#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

using tarvel::lua::LuaResult;
using tarvel::lua::LuaValue;
using tarvel::lua::LuaVM;

namespace {

bool allRight = true;

void check(bool condition, const std::string& what) {
  if (condition) return;
  std::cerr << "wrong: " << what << '\n';
  allRight = false;
}

void addPrices(LuaVM& vm) {
  auto prices = std::make_shared<LuaValue::Sequence>();
  for (std::int64_t cents : {250, 125, 625}) prices->emplace_back(cents);
  vm.setGlobal("prices", LuaValue(std::move(prices)));
  vm.bindFunction("discounted", [](LuaVM&, const std::vector<LuaValue>& arguments) {
    return LuaValue(std::get<std::int64_t>(arguments.at(0).data) - 25);
  });
}

void checkResults(LuaVM& vm) {
  addPrices(vm);
  const LuaResult sum = vm.runScriptString(
      "local sum = 0\n"
      "for _, price in ipairs(prices) do sum = sum + discounted(price) end\n"
      "return sum, {name = 'sum'}\n",
      "shop");
  check(sum.ok && sum.error.empty(), "the script runs: " + sum.error);
  check(sum.value.toString() == "{925, {name: sum}}", "its results: " + sum.value.toString());
}

void checkFailures(LuaVM& vm) {
  const LuaResult broken = vm.runScriptString("\nreturn prices.none.deeper", "shop");
  check(!broken.ok, "a script error is no success");
  check(broken.error == "shop:2: attempt to index a nil value", "its message: " + broken.error);
  check(!vm.runScriptString("x = ", "shop").ok, "a syntax error is no success");
}

void checkExitRequest(LuaVM& vm) {
  const LuaResult left = vm.runScriptString("os.exit(3)", "shop");
  check(left.ok && left.exitRequested && left.exitCode == 3, "a request to exit reaches the host");
}

}  // namespace

int main() {
  LuaVM vm;
  checkResults(vm);
  checkFailures(vm);
  checkExitRequest(vm);
  return allRight ? 0 : 1;
}
