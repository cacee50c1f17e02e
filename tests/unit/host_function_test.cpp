#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "lua/value/errors.h"
#include "tests/unit/script_outcome.h"

namespace tarvel::lua {
namespace {

TEST(HostFunction, GetsArgumentsAndGivesOneResult) {
  LuaVM vm;
  std::string seen;
  LuaValue answer;
  vm.bindFunction("host", [&](LuaVM& caller, const Arguments& arguments) {
    EXPECT_EQ(&vm, &caller);
    seen.clear();
    for (const LuaValue& argument : arguments) seen += typed(argument) + ";";
    return answer;
  });
  EXPECT_EQ("nil", run(vm, "return host()"));
  EXPECT_EQ("", seen);
  EXPECT_EQ("nil", run(vm, "return host(nil, 1, 2.5, 'x', {1}, {a = true}, host, nil)"));
  EXPECT_EQ("nil;i1;f2.5;'x';[i1];{a: true};<host>;nil;", seen);
  answer = sequence(integer(1), object({{"2", LuaValue("x")}}));
  EXPECT_EQ("[i1 {2: 'x'}]", run(vm, "return host()"));
  EXPECT_EQ("[i3 [i1 {2: 'x'}]]", run(vm, "return 3, host()"));
  EXPECT_EQ("error value cannot be bridged out of TarvelLua", run(vm, "host(pairs({}))"));
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
  EXPECT_EQ("'failed: {2}; not enough memory'",
            run(vm,
                "local _, first = pcall(fail, {2}) local _, second = pcall(exhaust) "
                "return first .. '; ' .. second"));
}

// What is no std::exception is none of the interpreter's business, and leaves it in order.
TEST(HostFunction, LetsOtherExceptionsPass) {
  struct Foreign {
    int code;
  };
  LuaVM vm;
  vm.bindFunction("raise", [](LuaVM&, const Arguments& arguments) -> LuaValue {
    throw Foreign{static_cast<int>(std::get<std::int64_t>(arguments.at(0).data))};
  });
  vm.bindFunction("nested", [](LuaVM& caller, const Arguments&) {
    return caller.runScriptString("local x = {} pcall(raise, 4)", "nested").value;
  });
  const std::pair<const char*, int> cases[] = {
      {"raise(1)", 1},
      {"local t = {'kept' .. 1} pcall(pcall, raise, 2) t = nil", 2},
      {"table.sort({3, 1, 2}, function(a, b) raise(3) end)", 3},
      {"return {1, {nested()}}", 4},
      {"function f(n, t) if n == 0 then raise(5) end return 1 + f(n - 1, {t}) end f(100)", 5},
  };
  for (const auto& [source, code] : cases) {
    try {
      vm.runScriptString(source, "c");
      ADD_FAILURE() << source;
    } catch (const Foreign& foreign) {
      EXPECT_EQ(code, foreign.code) << source;
    }
    EXPECT_THROW(internal::failRuntime(1, "no pcall is active"), internal::RuntimeError) << source;
    EXPECT_EQ("[i1 [false 'c']]",
              run(vm, "function g() return {pcall(error, 'x') , 'c'} end return 1, g()"));
    EXPECT_EQ("error c:1: x", run(vm, "error('x')"));
  }
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
      {"local a, b = 'a', {'b'} local r = a .. eval('local c, d = 1, {2} return c, d') .. b[1] "
       "return r, a, b",
       "['a[i1 [i2]]b' 'a' ['b']]"},
      {"return eval('error(1)') .. eval('x = ') .. eval('return x')",
       "'error inner:1: 1error inner:1:5: expected expressionnil'"},
      {"x = 1 local r = eval('x = x + 1 return x') return r, x", "['i2' i2]"},
      {"return pcall(function() error(eval('error(2)')) end), eval('return 3')", "[false 'i3']"},
      {"for i = 1, 3 do local t = {i} r = eval('return eval([[return 7]])') .. t[1] end return r",
       "''i7'3'"},
      {"store('y', {1, 2}) y[3] = 3 return y", "[i1 i2 i3]"},
      {"local old = store store('store', 5) old('z', store) return z, store", "[i5 i5]"},
      // An inner run's exit ends that run only.
      {"return eval('return 1'), eval('os.exit(7)')", "['i1' 'exit 7']"},
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(expected, run(vm, source)) << source;

  vm.bindFunction("down", [](LuaVM& caller, const Arguments& arguments) {
    caller.setGlobal("depth", arguments.at(0));
    return caller
        .runScriptString("local d = depth if d == 0 then return 0 end return d + down(d - 1)",
                         "down")
        .value;
  });
  EXPECT_EQ("i210", run(vm, "return down(20)"));

  // The function is replaced while it runs.
  auto witness = std::make_shared<std::string>("still here");
  vm.bindFunction("passing", [witness](LuaVM& caller, const Arguments&) {
    caller.bindFunction("passing", {});
    caller.runScriptString("passing = nil", "inner");
    return LuaValue(*witness);
  });
  EXPECT_EQ("['still here' 'nil']", run(vm, "local r = passing() return r, tostring(passing)"));
  EXPECT_EQ(1, witness.use_count());
}

TEST(HostFunction, GivesUpWhatItHoldsWithItsLastReference) {
  const auto held = std::make_shared<int>(1);
  {
    LuaVM vm;
    for (const char* const name : {"dropped", "kept"}) {
      vm.bindFunction(name, [held](LuaVM&, const Arguments&) { return LuaValue(); });
    }
    EXPECT_EQ(3, held.use_count());
    run(vm, "dropped = nil");
    EXPECT_EQ(2, held.use_count());
  }
  EXPECT_EQ(1, held.use_count());
}

// What a host function holds may be an interpreter, a handle of another or of its own interpreter,
// or the last handle of one that is gone.
TEST(HostFunction, MayHoldAnotherInterpreter) {
  const auto holder = [](const LuaValue& handle) {
    return [handle](LuaVM&, const Arguments&) { return LuaValue(); };
  };
  for (const bool dropEarly : {true, false}) {
    LuaVM vm;
    auto child = std::make_shared<LuaVM>();
    run(*child, "t = {{1}, {2, {3}}} function f() return t end");
    child->bindFunction("own", holder(child->runScriptString("return f", "c").value));
    run(*child, "f = nil");
    vm.bindFunction("child", [child](LuaVM&, const Arguments&) {
      return child->runScriptString("return #t", "child").value;
    });
    {
      LuaVM other;
      const char* const source = "local t = {{1}} return function() return t end";
      vm.bindFunction("foreign", holder(other.runScriptString(source, "c").value));
    }
    child.reset();
    EXPECT_EQ("i2", run(vm, "return child()"));
    if (dropEarly) {
      EXPECT_EQ("nil", run(vm, "child = nil foreign = nil"));
    }
  }
}

}  // namespace
}  // namespace tarvel::lua
