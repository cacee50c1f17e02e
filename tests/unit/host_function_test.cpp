#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/unit/script_outcome.h"

namespace tarvel::lua {
namespace {

TEST(HostFunction, GetsArgumentsAndGivesOneResult) {
  LuaVM vm;
  std::string seen;
  LuaValue answer;
  vm.bindFunction("host", [&](LuaVM& caller, const Arguments& arguments) {
    EXPECT_EQ(&vm, &caller);
    seen = ";";
    for (const LuaValue& argument : arguments) seen += typed(argument) + ";";
    return answer;
  });
  EXPECT_EQ("nil", run(vm, "return host()"));
  EXPECT_EQ(";", seen);
  EXPECT_EQ("nil", run(vm, "return host(nil, 1, 2.5, 'x', {1}, {a = true}, host, nil)"));
  EXPECT_EQ(";nil;i1;f2.5;'x';[i1];{a: true};<host>;nil;", seen);
  EXPECT_EQ("nil", run(vm, "t = {1, a = 2} unfinished = pairs(t) return host(t)"));
  EXPECT_EQ(";{1: i1, a: i2};", seen);
  answer = sequence(integer(1), object({{"2", LuaValue("x")}}));
  EXPECT_EQ("[i3 [i1 {2: 'x'}]]", run(vm, "return 3, host()"));
  EXPECT_EQ("[false 'value cannot be bridged out of TarvelLua']",
            run(vm, "return pcall(host, io.stdout)"));
  answer = LuaValue(std::shared_ptr<LuaValue::Object>());
  EXPECT_EQ("error unsupported TarvelLua value", run(vm, "return host()"));

  vm.bindFunction("nothing", {});
  EXPECT_EQ("error c:2: attempt to call an empty function", run(vm, "\nnothing()"));
}

TEST(HostFunction, FailsWithItsExceptionsText) {
  LuaVM vm;
  vm.bindFunction("fail", [](LuaVM&, const Arguments& arguments) -> LuaValue {
    throw std::runtime_error("failed: " + arguments.at(0).toString());
  });
  vm.bindFunction("exhaust", [](LuaVM&, const Arguments&) -> LuaValue { throw std::bad_alloc(); });
  EXPECT_EQ("error failed: 1", run(vm, "\n\nfail(1)"));
  EXPECT_EQ("error not enough memory", run(vm, "exhaust()"));
  EXPECT_EQ("[false 'failed: {2}']", run(vm, "return pcall(fail, {2})"));
  EXPECT_EQ("[false 'not enough memory']", run(vm, "return pcall(exhaust)"));
}

TEST(HostFunction, MayRunScriptsAndSetGlobals) {
  LuaVM vm;
  vm.bindFunction("eval", [](LuaVM& caller, const Arguments& arguments) {
    return LuaValue(run(caller, std::get<std::string>(arguments.at(0).data), "inner"));
  });
  vm.bindFunction("store", [](LuaVM& caller, const Arguments& arguments) {
    caller.setGlobal(arguments.at(0).toString(), arguments.at(1));
    return LuaValue();
  });
  const std::pair<const char*, const char*> cases[] = {
      {"return eval('error(1)') .. eval('x = ')",
       "'error inner:1: 1error inner:1:5: expected expression'"},
      {"x = 1 local r = eval('x = x + 1 return x') return r, x", "['i2' i2]"},
      {"return pcall(function() error(eval('error(2)')) end), eval('return 3')", "[false 'i3']"},
      {"for i = 1, 3 do local t = {i} r = eval('return eval([[return 7]])') .. t[1] end return r",
       "''i7'3'"},
      {"local old = store store('store', 5) old('z', {store}) return z, store", "[[i5] i5]"},
      // An inner run's exit ends that run only.
      {"return eval('return 1'), eval('os.exit(7)')", "['i1' 'exit 7']"},
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(expected, run(vm, source)) << source;
}

TEST(HostFunction, GivesUpWhatItHoldsWithItsLastReference) {
  const auto held = std::make_shared<int>(1);
  {
    LuaVM vm;
    const auto holder = [held](LuaVM&, const Arguments&) { return LuaValue(); };
    for (const char* const name : {"dropped", "kept"}) vm.bindFunction(name, holder);
    const long all = held.use_count();
    run(vm, "dropped = nil");
    EXPECT_EQ(all - 1, held.use_count());
    // A function that is replaced while it runs.
    vm.bindFunction("passing", [held](LuaVM& caller, const Arguments&) {
      caller.bindFunction("passing", {});
      caller.runScriptString("passing = nil", "inner");
      return LuaValue(std::int64_t{*held});
    });
    EXPECT_EQ("[i1 'nil']", run(vm, "local r = passing() return r, tostring(passing)"));
    EXPECT_EQ(all - 1, held.use_count());
  }
  EXPECT_EQ(1, held.use_count());
}

}  // namespace
}  // namespace tarvel::lua
