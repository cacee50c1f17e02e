#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <cstdint>
#include <limits>
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

struct ScriptCase {
  const char* source;
  std::string outcome;
};

template <std::size_t N>
void checkEach(const ScriptCase (&cases)[N]) {
  for (const ScriptCase& c : cases) EXPECT_EQ(c.outcome, run(c.source)) << c.source;
}

// ---- Results ------------------------------------------------------------------------------------

TEST(Run, ReturnsNilOneValueOrAList) {
  const ScriptCase cases[] = {
      {"", "nil"},
      {"return", "nil"},
      {"return nil", "nil"},
      {"return 5", "i5"},
      {"return 6 / 2", "f3"},
      {"return 1 == 2", "false"},
      {"return 'text'", "'text'"},
      {"return 1, 2.5, 'x'", "[i1 f2.5 'x']"},
      {"return 1, nil", "[i1]"},
      {"return nil, 2", "{2: i2}"},
      {"return nil, nil", "[]"},
      {"return 1, {2, 3}", "[i1 [i2 i3]]"},
      {"function f() return 1, 2 end return f()", "[i1 i2]"},
      {"function f() return 1, 2 end return (f())", "[i1 i2]"},
      {"function f() end return f()", "nil"},
      {"if 1 then return 7 end return 8", "i7"},
  };
  checkEach(cases);
}

TEST(Run, ConvertsTablesToSequencesOrObjects) {
  const ScriptCase cases[] = {
      {"return {}", "[]"},
      {"return {10, 20, 30}", "[i10 i20 i30]"},
      {"return {10, 20, x = 1}", "{1: i10, 2: i20, x: i1}"},
      {"return {[0] = 1}", "{0: i1}"},
      {"return {1, nil, 3}", "{1: i1, 3: i3}"},
      {"return {nil, nil}", "[]"},
      {"return {1, 2, nil}", "[i1 i2]"},
      {"return {[true] = 1, [false] = 2, [-1.0] = 3}", "{-1: i3, false: i2, true: i1}"},
      {"local t = {1, x = 2} t.x = nil return t", "[i1]"},
      {"local t = {} t[100] = 1 return t", "{100: i1}"},
      {"local t = {} t[100] = 1 t[100] = nil return t", "[]"},
      {"local t = {} for i = 1, 100 do t[i] = i end for i = 2, 100 do t[i] = nil end return t",
       "[i1]"},
      {"return {a = {b = {c = {}}}}", "{a: {b: {c: []}}}"},
      {"local t = {1} return {t, t}", "[[i1] [i1]]"},
      {"return {[''] = 1, ['a: b'] = 2}", "{: i1, a: b: i2}"},
  };
  checkEach(cases);
}

TEST(Run, ReportsErrorsWithChunkAndLine) {
  const ScriptCase cases[] = {
      {"error('x')", "error c:1: x"},
      {"\n\nlocal x = 1 + nil", "error c:3: operator '+' expects numbers"},
      {"function f()\n  nil_value()\nend\nf()", "error c:2: attempt to call a nil value"},
      {"pcall(error, 'x') error('y')", "error c:1: y"},
      {"local x = ", "error c:1:11: expected expression"},
      {"x = 1\n  break", "error c:2:3: break outside a loop"},
      {"return pairs({})", "error value cannot be bridged out of TarvelLua"},
      {"return {io.stdout}", "error value cannot be bridged out of TarvelLua"},
      {"local t = {} for i = 1, 5000 do t = {t} end return t",
       "error value cannot be bridged out of TarvelLua"},
  };
  checkEach(cases);
  LuaVM vm;
  EXPECT_EQ("nil", run(vm, "\nfunction f() error('x') end", "first chunk"));
  for (const char* use : {"t = {} t.t = t return t", "t = {} t[1] = t print(t)"}) {
    EXPECT_EQ("error value cannot be bridged out of TarvelLua", run(vm, use)) << use;
    EXPECT_EQ("nil", run(vm, "t.t = nil t[1] = nil"));  // a cycle would never be reclaimed
  }
  EXPECT_EQ("error second: chunk:2: x", run(vm, "f()", "second: chunk"));
}

TEST(Run, EndsWithOsExit) {
  const ScriptCase cases[] = {
      {"os.exit(2) x()", "exit 2"},
      {"os.exit(0)", "exit 0"},
      {"os.exit(-3)", "exit -3"},
      {"os.exit()", "exit 0"},
      {"pcall(os.exit, 4) return 1", "exit 4"},
      {"function f() pcall(function() os.exit(5) end) end f()", "exit 5"},
      {"table.sort({2, 1}, function() os.exit(6) end)", "exit 6"},
      {"for k, v in pairs({1, 2}) do os.exit(v) end", "exit 1"},
  };
  checkEach(cases);
  LuaVM vm;
  EXPECT_EQ("exit 9", run(vm, "t = {} t[1] = os.exit(9)"));
  EXPECT_EQ("[]", run(vm, "return t")) << "an exit does not mark the next run";
}

TEST(Run, KeepsGlobalsAndForgetsLocals) {
  LuaVM vm;
  EXPECT_EQ("nil", run(vm, "a = 1 local b = 2 function f() a = a + 1 return a end"));
  EXPECT_EQ("[i1 i2]", run(vm, "return a, f(), b"));
  EXPECT_EQ("error c:1: x", run(vm, "a = 10 error('x')"));
  EXPECT_EQ("error c:1:16: expected expression", run(vm, "a = 20 a = a ..")) << "nothing ran";
  EXPECT_EQ("i11", run(vm, "return f()"));
  LuaVM other;
  EXPECT_EQ("nil", run(other, "return a"));
}

// ---- Values from the host -----------------------------------------------------------------------

TEST(SetGlobal, TakesEveryKindOfValue) {
  const struct {
    LuaValue value;
    std::string asScript;  // of type(v) .. tostring(v), for what has a stable text
    std::string back;
  } cases[] = {
      {LuaValue(), "nil nil", "nil"},
      {integer(std::numeric_limits<std::int64_t>::min()), "number -9223372036854775808",
       "i-9223372036854775808"},
      {LuaValue(2.0), "number 2", "f2"},
      {LuaValue(std::numeric_limits<double>::infinity()), "number inf", "finf"},
      {LuaValue(true), "boolean true", "true"},
      {LuaValue("text"), "string text", "'text'"},
      {LuaValue(std::string("\0\xff", 2)), "string " + std::string("\0\xff", 2),
       "'" + std::string("\0\xff", 2) + "'"},
      {sequence(), "", "[]"},
      {sequence(integer(1), LuaValue(), LuaValue("x")), "", "{1: i1, 3: 'x'}"},
      {sequence(LuaValue(), LuaValue()), "", "[]"},
      {sequence(sequence(LuaValue(0.5))), "", "[[f0.5]]"},
      {object({}), "", "[]"},
      {object({{"b", integer(1)}, {"a", LuaValue()}}), "", "{b: i1}"},
      {object({{"2", integer(20)}, {"1", integer(10)}}), "", "[i10 i20]"},
  };
  LuaVM vm;
  for (const auto& c : cases) {
    vm.setGlobal("v", integer(-1));
    vm.setGlobal("v", c.value);
    if (!c.asScript.empty()) {
      EXPECT_EQ("'" + c.asScript + "'", run(vm, "return type(v) .. ' ' .. tostring(v)"));
    }
    EXPECT_EQ(c.back, run(vm, "return v"));
  }
}

TEST(SetGlobal, ReadsIntegerKeysOfObjects) {
  LuaVM vm;
  const auto keyOf = [&vm](const std::string& key) {
    vm.setGlobal("o", object({{key, integer(1)}}));
    return run(vm, "for k in pairs(o) do return k end");
  };
  const std::pair<const char*, const char*> integers[] = {
      {"7", "i7"},
      {"007", "i7"},
      {"-0", "i0"},
      {"-12", "i-12"},
      {"+5", "i5"},
      {" 5", "i5"},
      {"\t\n\v\f\r -5", "i-5"},
      {"9223372036854775807", "i9223372036854775807"},
      {"-9223372036854775808", "i-9223372036854775808"}};
  for (const auto& [key, expected] : integers) EXPECT_EQ(expected, keyOf(key));
  const std::string texts[] = {"",
                               " ",
                               "-",
                               "+",
                               "+-5",
                               "-+5",
                               "--5",
                               "- 5",
                               "5 ",
                               "1.5",
                               "1e3",
                               "0x10",
                               "1_0",
                               "9223372036854775808",
                               "-9223372036854775809",
                               "99999999999999999999999",
                               std::string("5\0", 2)};
  for (const std::string& key : texts) EXPECT_EQ("'" + key + "'", keyOf(key));
}

TEST(SetGlobal, RefusesWhatCannotCross) {
  auto cycle = std::make_shared<LuaValue::Sequence>();
  cycle->push_back(LuaValue(cycle));
  auto objectCycle = std::make_shared<LuaValue::Object>();
  (*objectCycle)["o"] = LuaValue(objectCycle);
  LuaValue deep = integer(1);
  for (int i = 0; i < 3000; ++i) deep = sequence(deep);
  LuaValue foreign;
  {
    LuaVM other;
    foreign = other.runScriptString("return function() end", "other").value;
  }
  const LuaValue refused[] = {
      LuaValue(cycle),
      LuaValue(objectCycle),
      deep,
      foreign,
      sequence(integer(1), sequence(foreign)),
      LuaValue(std::shared_ptr<LuaValue::Sequence>()),
      LuaValue(std::shared_ptr<LuaValue::Object>()),
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
  for (const LuaValue& value : {LuaValue(cycle), LuaValue(objectCycle), deep}) {
    EXPECT_THROW(static_cast<void>(value.toString()), std::runtime_error);
  }
  cycle->clear();
  objectCycle->clear();

  LuaValue nested = integer(1);
  for (int i = 0; i < 200; ++i) nested = sequence(nested);
  vm.setGlobal("v", nested);
  EXPECT_EQ(repeated("[", 200) + "i1" + repeated("]", 200), run(vm, "return v"));
}

TEST(LuaValue, PrintsLikePrint) {
  LuaVM vm;
  const LuaValue function = vm.runScriptString("function t_m() end return t_m", "c").value;
  const std::pair<LuaValue, std::string> cases[] = {
      {LuaValue(), "nil"},
      {LuaValue(1e20), "1e+20"},
      {LuaValue(false), "false"},
      {LuaValue("a b"), "a b"},
      {sequence(), "{}"},
      {object({}), "{}"},
      {sequence(integer(1), LuaValue("x"), sequence(LuaValue())), "{1, x, {nil}}"},
      {object({{"b", integer(1)},
               {"a", integer(2)},
               {"B", integer(3)},
               {"10", integer(4)},
               {"9", integer(5)},
               {"-1", integer(6)},
               {"", integer(7)}}),
       "{-1: 6, 9: 5, 10: 4, : 7, B: 3, a: 2, b: 1}"},
      {sequence(function), "{[function t_m]}"},
      {LuaValue(std::shared_ptr<LuaFunctionHandle>()), "[function anonymous]"},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(text, value.toString());
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
  const auto fresh = handleOf(vm.runScriptString("return print", "c").value);
  EXPECT_EQ(fresh, handleOf(vm.runScriptString("return print", "c").value));
}

TEST(FunctionHandle, TellsItsName) {
  const ScriptCase cases[] = {
      {"function f() end return f", "<f>"},
      {"local function g() end h = g g = nil return h", "<g>"},
      {"a = {b = {}} function a.b.c() end return a.b.c", "<a.b.c>"},
      {"a = {b = {}} function a.b:m() end return a.b.m", "<a.b:m>"},
      {"return function() end", "<<anonymous>>"},
      {"f = function() end return f", "<<anonymous>>"},
      {"return pcall", "<pcall>"},
  };
  checkEach(cases);
  LuaVM vm;
  vm.bindFunction("of the host", [](LuaVM&, const Arguments&) { return LuaValue(); });
  vm.bindFunction("host", [](LuaVM&, const Arguments&) { return LuaValue(); });
  EXPECT_EQ("<host>", run(vm, "return host"));
}

TEST(FunctionHandle, OutlivesItsInterpreter) {
  std::vector<LuaValue> handles;
  const auto held = std::make_shared<int>(1);
  {
    LuaVM vm;
    vm.bindFunction("host", [held](LuaVM&, const Arguments&) { return LuaValue(); });
    for (const char* const source :
         {"local t = {text = 'a' .. 'b', {}} return function() return t end",
          "function f(n) return n and f(n - 1) end return f", "function g() end return g",
          "return host", "return string.rep", "return {print, {io.stdout.write}}"}) {
      const LuaResult result = vm.runScriptString(source, "c");
      ASSERT_TRUE(result.ok) << result.error;
      handles.push_back(result.value);
    }
    vm.setGlobal("first", handles[0]);
  }
  EXPECT_EQ("<<anonymous>>", typed(handles[0]));
  EXPECT_EQ("<f>", typed(handles[1]));
  EXPECT_EQ("<g>", typed(handles[2]));
  EXPECT_EQ("<host>", typed(handles[3]));
  EXPECT_EQ(2, held.use_count());
  LuaVM other;
  EXPECT_THROW(other.setGlobal("f", handles[0]), std::runtime_error);
  while (!handles.empty()) handles.erase(handles.begin());
  EXPECT_EQ(1, held.use_count());
}

// ---- Interpreters and threads -------------------------------------------------------------------

TEST(Interpreters, AreIndependentOfEachOther) {
  std::vector<std::unique_ptr<LuaVM>> vms;
  for (std::int64_t i = 0; i < 200; ++i) {
    vms.push_back(std::make_unique<LuaVM>());
    vms.back()->setGlobal("mine", integer(i));
    EXPECT_EQ("nil", run(*vms.back(), "t = {mine, text = 'n' .. mine}"));
  }
  for (std::size_t i = 0; i < vms.size(); i += 2) vms[i].reset();
  for (std::size_t i = 1; i < vms.size(); i += 2) {
    const std::string number = std::to_string(i);
    EXPECT_EQ("[i" + number + " 'n" + number + "']", run(*vms[i], "return t[1], t.text"));
  }
}

TEST(Threads, MayTakeTurnsWithOneInterpreter) {
  LuaVM vm;
  vm.bindFunction("elsewhere", [](LuaVM& caller, const Arguments&) {
    std::string text;
    std::thread([&] {
      text = run(caller, "n = n + 1 return pcall(error, 'x'), deep(100)");
    }).join();
    return LuaValue(text);
  });
  const std::string recursion =
      "function deep(n) if n == 0 then return 0 end return 1 + deep(n - 1) end ";
  EXPECT_EQ("nil", run(vm, recursion + "n = 0"));
  LuaValue handle;
  for (std::size_t i = 1; i <= 5; ++i) {
    runOnStack(i << 20, [&] {
      EXPECT_EQ(kBusyOutcome, run(vm, kBusyScript));
      EXPECT_EQ("'[false i100]'", run(vm, "return elsewhere()"));
      EXPECT_EQ("i" + std::to_string(i), run(vm, "return n"));
      handle = vm.runScriptString("return function() return n end", "c").value;
    });
  }
  vm.setGlobal("f", handle);
  EXPECT_EQ("i5", run(vm, "return f()"));
}

TEST(Threads, MayRunTwoInterpretersAtOnce) {
  std::vector<std::string> outcomes(4);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < outcomes.size(); ++i) {
    threads.emplace_back([&outcome = outcomes[i]] {
      for (int round = 0; round < 20; ++round) {
        LuaVM vm;
        vm.bindFunction("host", [](LuaVM&, const Arguments& a) { return a.at(0); });
        outcome = run(vm, kBusyScript) + run(vm, "return host({1, host})");
        if (outcome != kBusyOutcome + std::string("[i1 <host>]")) return;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& text : outcomes)
    EXPECT_EQ(kBusyOutcome + std::string("[i1 <host>]"), text);
}

}  // namespace
}  // namespace tarvel::lua
