#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua {
namespace {

using internal::runOnStack;
using namespace std::string_literals;

// ---- Results ------------------------------------------------------------------------------------

TEST(Run, EndsWithAResultAnErrorOrAnExit) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "nil"},
      {"return 1, 2.5, 'x'", "[i1 f2.5 'x']"},
      {"return 1, nil", "[i1]"},
      {"function f() return 1, 2 end return (f())", "[i1 i2]"},
      // Tables are sequences or objects.
      {"return {10, 20, x = 1}", "{1: i10, 2: i20, x: i1}"},
      {"return {[true] = 1, [false] = 2, [-1.0] = 3}", "{-1: i3, false: i2, true: i1}"},
      {"local t = {1, x = 2, y = 3} t.x = nil return t", "{1: i1, y: i3}"},
      {"local t = {} t[100] = 1 return t", "{100: i1}"},
      {"local t = {} for i = 1, 100 do t[i] = i end for i = 2, 100 do t[i] = nil end return t",
       "[i1]"},
      {"local t = {1} return {t, t, {a = {}}}", "[[i1] [i1] {a: []}]"},
      // Exits.
      {"os.exit(-3) x()", "exit -3"},
      {"table.sort({2, 1}, function() os.exit(6) end)", "exit 6"},
      {"for k, v in pairs({1, 2}) do os.exit(v) end", "exit 1"},
  };
  for (const auto& [source, expected] : cases) EXPECT_EQ(expected, run(source)) << source;
}

// What stays from run to run: tests/scripts/cli/repl_globals.lua and repl_errors.lua.
TEST(Run, NamesTheChunkThatItRuns) {
  LuaVM vm;
  EXPECT_EQ("nil", run(vm, "\nfunction f() error('x') end", "first chunk"));
  EXPECT_EQ("error second: chunk:2: x", run(vm, "f()", "second: chunk"));
  EXPECT_EQ("[finf f0]", run("return 1" + repeated("0", 400) + ", 0." + repeated("0", 400) + "1"));
}

// ---- Values from the host -----------------------------------------------------------------------

// More values: tests/fuzz/host_values.cpp.
TEST(SetGlobal, LeavesOutWhatIsNil) {
  LuaVM vm;
  vm.setGlobal("v", sequence(integer(1), LuaValue(), LuaValue("x")));
  EXPECT_EQ("{1: i1, 3: 'x'}", run(vm, "return v"));
  vm.setGlobal("v", object({{"b", integer(1)}, {"a", LuaValue()}}));
  EXPECT_EQ("{b: i1}", run(vm, "return v"));
}

// As scripts see them: those that are whole numbers in decimal.
TEST(SetGlobal, ReadsIntegerKeysOfObjects) {
  const std::pair<std::string, const char*> cases[] = {
      {"007", "i7"},
      {"-0", "i0"},
      {"+5", "i5"},
      {"\t\n\v\f\r -5", "i-5"},
      {"9223372036854775807", "i9223372036854775807"},
      {"-9223372036854775808", "i-9223372036854775808"},
  };
  LuaVM vm;
  const auto keyOf = [&vm](const std::string& key) {
    vm.setGlobal("o", object({{key, integer(1)}}));
    return run(vm, "for k in pairs(o) do return k end");
  };
  for (const auto& [key, expected] : cases) EXPECT_EQ(expected, keyOf(key));
  for (const std::string& key : {""s, " "s, "-"s, "+-5"s, "- 5"s, "5 "s, "5\0"s, "1.5"s, "1e3"s,
                                 "0x10"s, "9223372036854775808"s, "-9223372036854775809"s})
    EXPECT_EQ("'" + key + "'", keyOf(key));
}

TEST(SetGlobal, RefusesWhatCannotCross) {
  auto cycle = std::make_shared<LuaValue::Sequence>();
  cycle->push_back(LuaValue(cycle));
  auto objectCycle = std::make_shared<LuaValue::Object>();
  (*objectCycle)["o"] = LuaValue(objectCycle);
  LuaValue deep = integer(1);
  for (int i = 0; i < 3000; ++i) deep = sequence(deep);
  const LuaValue foreign = LuaVM().runScriptString("return function() end", "other").value;
  const LuaValue refused[] = {
      LuaValue(cycle),
      LuaValue(objectCycle),
      deep,
      sequence(integer(1), sequence(foreign)),
      LuaValue(std::shared_ptr<LuaValue::Sequence>()),
      LuaValue(std::shared_ptr<LuaFunctionHandle>()),
  };
  LuaVM vm;
  vm.setGlobal("v", LuaValue("old"));
  for (const LuaValue& value : refused) {
    try {
      vm.setGlobal("v", value);
      ADD_FAILURE() << value.data.index();
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ("unsupported TarvelLua value", error.what());
    }
  }
  EXPECT_EQ("'old'", run(vm, "return v"));
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_THROW(static_cast<void>(refused[i].toString()), std::runtime_error);
  }
  cycle->clear();
  objectCycle->clear();

  LuaValue nested = integer(1);
  for (int i = 0; i < 200; ++i) nested = sequence(nested);
  vm.setGlobal("v", nested);
  EXPECT_EQ(repeated("[", 200) + "i1" + repeated("]", 200), run(vm, "return v"));
}

// ---- Functions of the host ----------------------------------------------------------------------

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

TEST(HostFunction, GivesUpWhatItHoldsWithItsLastReference) {
  const auto held = std::make_shared<int>(1);
  {
    LuaVM vm;
    for (const char* const name : {"dropped", "kept"}) vm.bind(name, [held] {});
    const long all = held.use_count();
    run(vm, "dropped = nil");
    EXPECT_EQ(all - 1, held.use_count());
    // A function that is replaced while it runs.
    vm.bindFunction("passing", [held](LuaVM& caller, const Arguments&) {
      caller.bindFunction("passing", {});
      caller.runScriptString("passing = nil", "inner");
      return LuaValue(*held);
    });
    EXPECT_EQ("[i1 'nil']", run(vm, "local r = passing() return r, tostring(passing)"));
    EXPECT_EQ(all - 1, held.use_count());
  }
  EXPECT_EQ(1, held.use_count());
}

// ---- Function handles ---------------------------------------------------------------------------

std::shared_ptr<LuaFunctionHandle> handleOf(const LuaValue& value) {
  const auto* const handle = std::get_if<std::shared_ptr<LuaFunctionHandle>>(&value.data);
  return handle == nullptr ? nullptr : *handle;
}

TEST(FunctionHandle, StandsForTheSameFunctionInBothDirections) {
  LuaVM vm;
  const LuaValue value =
      vm.runScriptString("n = 0 function f() n = n + 1 return n end return {f, f}", "c").value;
  const auto& pair = *std::get<5>(value.data);
  EXPECT_EQ(handleOf(pair[0]), handleOf(pair[1]));
  EXPECT_EQ(handleOf(pair[0]), handleOf(vm.runScriptString("return f", "c").value));
  vm.setGlobal("g", pair[0]);
  vm.setGlobal("h", sequence(pair[1]));
  EXPECT_EQ("[true true i2]", run(vm, "return g == f, h[1] == f, g() + f() - n + 1"));

  // The host's handle is the only one left, then none is.
  EXPECT_EQ("nil", run(vm, "f = nil g = nil h = nil"));
  vm.setGlobal("again", pair[0]);
  EXPECT_EQ("i3", run(vm, "return again()"));
  EXPECT_EQ(handleOf(pair[0]), handleOf(vm.runScriptString("return again", "c").value));
  const std::weak_ptr<LuaFunctionHandle> gone =
      handleOf(vm.runScriptString("return function() end", "c").value);
  EXPECT_TRUE(gone.expired());
}

TEST(FunctionHandle, OutlivesItsInterpreter) {
  const std::pair<const char*, const char*> cases[] = {
      {"local t = {text = 'a' .. 'b', {}} return function() return t end", "<<anonymous>>"},
      {"function f(n) return n and f(n - 1) end return f", "<f>"},
      {"a = {b = {}} function a.b:m() end return a.b.m", "<a.b:m>"},
      {"return host", "<host>"},
      {"return {print, {io.stdout.write}}", "[<print> [<stream:write>]]"},
  };
  std::vector<LuaValue> handles;
  const auto held = std::make_shared<int>(1);
  {
    LuaVM vm;
    vm.bind("host", [held] {});
    for (const auto& [source, name] : cases) {
      handles.push_back(vm.runScriptString(source, "c").value);
    }
    vm.setGlobal("first", handles[0]);
  }
  for (std::size_t i = 0; i < std::size(cases); ++i) EXPECT_EQ(cases[i].second, typed(handles[i]));
  EXPECT_EQ(1, held.use_count());  // no handle can call the function any more
  LuaVM other;
  EXPECT_THROW(other.setGlobal("f", handles[0]), std::runtime_error);
  while (!handles.empty()) handles.erase(handles.begin());
  EXPECT_EQ("[function anonymous]", LuaValue(std::shared_ptr<LuaFunctionHandle>()).toString());
}

// ---- Interpreters and threads -------------------------------------------------------------------

// Interpreters on several threads at once: tests/fuzz/driver.cpp.
TEST(Threads, MayTakeTurnsWithOneInterpreter) {
  LuaVM vm;
  vm.bindFunction("elsewhere", [](LuaVM& caller, const Arguments&) {
    std::string text;
    std::thread([&] {
      text = run(caller, "n = n + 1 return pcall(error, 'x'), deep(100)");
    }).join();
    return LuaValue(text);
  });
  run(vm, "n = 0 function deep(n) if n == 0 then return 0 end return 1 + deep(n - 1) end");
  LuaValue handle;
  for (std::size_t i = 1; i <= 5; ++i) {
    runOnStack(i << 20, [&] {
      EXPECT_EQ(kBusyOutcome, run(vm, kBusyScript));
      EXPECT_EQ("'[false i100]'", run(vm, "return elsewhere()"));
      handle = vm.runScriptString("return function() return n end", "c").value;
    });
  }
  vm.setGlobal("f", handle);
  EXPECT_EQ("i5", run(vm, "return f()"));
}

}  // namespace
}  // namespace tarvel::lua
