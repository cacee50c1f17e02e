#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tarvel/lua/lua_vm.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "lua/value/errors.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua {
namespace {

using internal::kSanitized;
using internal::runOnStack;

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
constexpr std::size_t kKilobyte = 1024;
constexpr std::size_t kMegabyte = 1024 * kKilobyte;

using Arguments = std::vector<LuaValue>;

// Scripts in here make no reference cycles, which are never unwound: a function that a local holds
// would capture the scope of that local.

// ---- Values as text -----------------------------------------------------------------------------

// A value with its types: i5, f2.5, true, 'text', [i1 i2], {key: i1}, <name>.
std::string typed(const LuaValue& value) {
  EXPECT_EQ(static_cast<std::size_t>(value.type), value.data.index());
  switch (value.type) {
    case LuaValue::Type::Integer:
      return "i" + value.toString();
    case LuaValue::Type::Float:
      return "f" + value.toString();
    case LuaValue::Type::String:
      return "'" + value.toString() + "'";
    case LuaValue::Type::Function:
      return "<" + std::get<7>(value.data)->name() + ">";
    case LuaValue::Type::Sequence: {
      std::string text;
      for (const LuaValue& element : *std::get<5>(value.data)) text += " " + typed(element);
      return "[" + (text.empty() ? text : text.substr(1)) + "]";
    }
    case LuaValue::Type::Object: {
      std::map<std::string, std::string> members;
      for (const auto& [key, member] : *std::get<6>(value.data)) members[key] = typed(member);
      std::string text;
      for (const auto& [key, member] : members) {
        text += text.empty() ? "" : ", ";
        text += key;
        text += ": ";
        text += member;
      }
      return "{" + text + "}";
    }
    default:
      return value.toString();
  }
}

// What a run came to: the typed value, "error ..." or "exit code ...".
std::string outcome(const LuaResult& result) {
  EXPECT_EQ(result.ok, result.error.empty());
  if (!result.ok) {
    EXPECT_EQ("nil", typed(result.value));
    EXPECT_FALSE(result.exitRequested);
    EXPECT_EQ(0, result.exitCode);
    return "error " + result.error;
  }
  if (!result.exitRequested) {
    EXPECT_EQ(0, result.exitCode);
    return typed(result.value);
  }
  EXPECT_EQ("i" + std::to_string(result.exitCode), typed(result.value));
  return "exit " + std::to_string(result.exitCode);
}

std::string run(LuaVM& vm, const std::string& source, const std::string& chunkName = "c") {
  return outcome(vm.runScriptString(source, chunkName));
}

std::string run(const std::string& source) {
  LuaVM vm;
  return run(vm, source);
}

std::string repeated(const std::string& text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

template <class... Elements>
LuaValue sequence(Elements... elements) {
  return LuaValue(std::make_shared<LuaValue::Sequence>(LuaValue::Sequence{elements...}));
}

LuaValue object(LuaValue::Object members) {
  return LuaValue(std::make_shared<LuaValue::Object>(std::move(members)));
}

LuaValue integer(std::int64_t value) { return LuaValue(value); }

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
      {"local t = {} t.t = t return t", "error value cannot be bridged out of TarvelLua"},
      {"local t = {} for i = 1, 5000 do t = {t} end return t",
       "error value cannot be bridged out of TarvelLua"},
      {"local t = {} t[1] = t print(t)", "error value cannot be bridged out of TarvelLua"},
  };
  checkEach(cases);
  LuaVM vm;
  EXPECT_EQ("nil", run(vm, "\nfunction f() error('x') end", "first chunk"));
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
      {integer(kLowest), "number -9223372036854775808", "i-9223372036854775808"},
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
  const std::pair<std::string, std::string> cases[] = {
      {"7", "number 7"},
      {"007", "number 7"},
      {"-0", "number 0"},
      {"-12", "number -12"},
      {"+5", "number 5"},
      {" 5", "number 5"},
      {"\t\n\v\f\r -5", "number -5"},
      {"9223372036854775807", "number 9223372036854775807"},
      {"-9223372036854775808", "number -9223372036854775808"},
      {"9223372036854775808", "string 9223372036854775808"},
      {"-9223372036854775809", "string -9223372036854775809"},
      {"99999999999999999999999", "string 99999999999999999999999"},
      {"", "string "},
      {" ", "string  "},
      {"-", "string -"},
      {"+", "string +"},
      {"+-5", "string +-5"},
      {"-+5", "string -+5"},
      {"--5", "string --5"},
      {"- 5", "string - 5"},
      {"5 ", "string 5 "},
      {"1.5", "string 1.5"},
      {"1e3", "string 1e3"},
      {"0x10", "string 0x10"},
      {"1_0", "string 1_0"},
      {std::string("5\0", 2), "string " + std::string("5\0", 2)},
  };
  LuaVM vm;
  for (const auto& [key, expected] : cases) {
    vm.setGlobal("o", object({{key, integer(1)}}));
    EXPECT_EQ("'" + expected + "'",
              run(vm, "for k, v in pairs(o) do return type(k) .. ' ' .. tostring(k) end"));
  }
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

// ---- Host functions -----------------------------------------------------------------------------

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
  vm.bindFunction("suicide", [witness](LuaVM& caller, const Arguments&) {
    caller.bindFunction("suicide", {});
    caller.runScriptString("suicide = nil", "inner");
    return LuaValue(*witness);
  });
  EXPECT_EQ("['still here' 'nil']", run(vm, "local r = suicide() return r, tostring(suicide)"));
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

// What a host function holds may be an interpreter, or the last handle of one that is gone.
TEST(HostFunction, MayHoldAnotherInterpreter) {
  for (const bool dropEarly : {true, false}) {
    LuaVM vm;
    auto child = std::make_shared<LuaVM>();
    run(*child, "t = {{1}, {2, {3}}} function f() return t end");
    vm.bindFunction("child", [child](LuaVM&, const Arguments&) {
      return child->runScriptString("return #t", "child").value;
    });
    LuaValue handle;
    {
      LuaVM other;
      handle = other.runScriptString("local t = {{1}} return function() return t end", "c").value;
    }
    vm.bindFunction("keeper", [handle](LuaVM&, const Arguments&) { return LuaValue(); });
    handle = LuaValue();
    child.reset();
    EXPECT_EQ("i2", run(vm, "return child()"));
    if (dropEarly) {
      EXPECT_EQ("nil", run(vm, "child = nil keeper = nil"));
    }
  }
}

// ---- Interpreters and threads -------------------------------------------------------------------

constexpr const char* kBusyScript =
    "function fib(n) if n < 2 then return n end return fib(n - 1) + fib(n - 2) end "
    "local words = {} for i = 1, 300 do words['w' .. i % 50] = {text = 'x' .. i, i} end "
    "local caught = 0 for i = 1, 50 do if not pcall(error, 'e' .. i) then caught = caught + 1 end "
    "end local s = '' for i = 1, 200 do s = s .. i end "
    "return fib(16), #s, caught, words.w7.text";
constexpr const char* kBusyOutcome = "[i987 i492 i50 'x257']";

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
  for (int i = 1; i <= 5; ++i) {
    runOnStack(i * kMegabyte, [&] {
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

// ---- Limits -------------------------------------------------------------------------------------

const struct {
  const char* source;  // recurses without end, counting in n
  const char* outcome;
} kRecursions[] = {
    {"function f() n = n + 1\nreturn 1 + f() end f()", "error c:2: stack overflow"},
    {"function f(a, b, c, d, e) n = n + 1 f(a, b, c, d, e, f({})) end f()",
     "error c:1: stack overflow"},
    {"t = {} function t:m(x) n = n + 1 return {self:m({x})} end t:m()",
     "error c:1: stack overflow"},
    {"function f() n = n + 1 return (function() return f() end)() .. 'x' end f()",
     "error c:1: stack overflow"},
    {"function f() n = n + 1 table.sort({2, 1}, f) end f()", "error c:1: stack overflow"},
    {"function f() n = n + 1 f() end return pcall(f), pcall(f)", "[false false 'stack overflow']"},
    {"function f() n = n + 1 local ok, e = pcall(f) if not ok then error(e) end end f()",
     "error c:1: stack overflow"},
};

// How deep it came.
std::int64_t recurse(const char* source, const std::string& expected) {
  LuaVM vm;
  vm.setGlobal("n", integer(0));
  EXPECT_EQ(expected, run(vm, source)) << source;
  const LuaValue depth = vm.runScriptString("return n", "c").value;
  EXPECT_EQ(kBusyOutcome, run(vm, kBusyScript)) << "after " << source;
  return std::get<std::int64_t>(depth.data);
}

TEST(Recursion, IsAnErrorOnEveryStack) {
  for (const auto& c : kRecursions) {
    std::int64_t small = 0;
    runOnStack(256 * kKilobyte, [&] { small = recurse(c.source, c.outcome); });
    EXPECT_GE(small, kSanitized ? 5 : 50) << c.source;
    const std::int64_t onMainThread = recurse(c.source, c.outcome);
    if (&c != &kRecursions[0]) continue;
    std::int64_t large = 0;
    runOnStack(64 * kMegabyte, [&] { large = recurse(c.source, c.outcome); });
    EXPECT_GT(onMainThread, small) << "the limit follows from the stack";
    EXPECT_GT(large, 50 * small);
  }
}

TEST(Recursion, ThroughTheHostIsAnErrorToo) {
  for (const std::size_t stack : {256 * kKilobyte, 8 * kMegabyte}) {
    runOnStack(stack, [] {
      LuaVM vm;
      std::string deepest;
      vm.bindFunction("again", [&](LuaVM& caller, const Arguments&) {
        const LuaResult result = caller.runScriptString("return {again()}", "again");
        if (!result.ok && deepest.empty()) deepest = result.error;
        return result.value;
      });
      EXPECT_EQ("nil", run(vm, "again()"));
      EXPECT_TRUE(deepest.ends_with("stack overflow") || deepest.ends_with("too deeply"))
          << deepest;
      EXPECT_EQ(kBusyOutcome, run(vm, kBusyScript));
    });
  }
}

// Source texts that nest or chain `depth` times and would return 7.
const struct {
  const char* name;
  std::string (*source)(std::size_t depth);
} kNestings[] = {
    {"parentheses",
     [](std::size_t n) { return "return " + repeated("(", n) + "7" + repeated(")", n); }},
    {"sums", [](std::size_t n) { return "return 7" + repeated(" + 0", n); }},
    {"products", [](std::size_t n) { return "return 7" + repeated(" * 1", n); }},
    {"alternatives", [](std::size_t n) { return "return nil" + repeated(" or nil", n) + " or 7"; }},
    {"comparisons",
     [](std::size_t n) { return "return (1" + repeated(" ~= 1", n) + ") and 7 or 7"; }},
    {"concatenation",
     [](std::size_t n) { return "local s = ''" + repeated(" .. 'x'", n) + " return 7"; }},
    {"negation", [](std::size_t n) { return "return (" + repeated("not ", n) + "1) and 7 or 7"; }},
    {"minus", [](std::size_t n) { return "local m = " + repeated("- ", n) + "7 return 7"; }},
    {"calls",
     [](std::size_t n) {
       return "function f() return f end g = f" + repeated("()", n) + " return 7";
     }},
    {"arguments",
     [](std::size_t n) {
       return "function f(x) return x end return " + repeated("f(", n) + "7" + repeated(")", n);
     }},
    {"fields",
     [](std::size_t n) {
       return "t = {v = 7} t.t = t local r = t" + repeated(".t", n) + " t.t = nil return r.v";
     }},
    {"indexes",
     [](std::size_t n) {
       return "t = {1} return " + repeated("t[", n) + "1" + repeated("]", n) + " * 7";
     }},
    {"methods",
     [](std::size_t n) {
       return "t = {} function t:m() return self end r = t" + repeated(":m()", n) + " return 7";
     }},
    {"tables",
     [](std::size_t n) {
       return "local t = " + repeated("{", n) + repeated("}", n) + " return 7";
     }},
    {"functions",
     [](std::size_t n) {
       return "f = " + repeated("function() return ", n) + "1" + repeated(" end", n) + " return 7";
     }},
    {"ifs",
     [](std::size_t n) { return repeated("if 1 then ", n) + "return 7 " + repeated("end ", n); }},
    {"elseifs",
     [](std::size_t n) {
       return "x = 1 if x == 2 then" + repeated(" elseif x == 3 then", n) + " else return 7 end";
     }},
    {"loops",
     [](std::size_t n) { return repeated("while 1 do ", n) + "return 7 " + repeated("end ", n); }},
    {"declared fields",
     [](std::size_t n) {
       return "t = {} t.t = t function t" + repeated(".t", n) + ".f() end t.t = nil return 7";
     }},
    {"targets",
     [](std::size_t n) { return "local a" + repeated(", a", n) + " = 1 a = 7 return a"; }},
    {"statements", [](std::size_t n) { return repeated("local a = 1 ", n) + "return 7"; }},
};

TEST(Nesting, IsNoCrashHoweverDeep) {
  for (const auto& nesting : kNestings) {
    EXPECT_EQ("i7", run(nesting.source(8))) << nesting.name;
    for (const std::size_t stack : {192 * kKilobyte, 1 * kMegabyte, 64 * kMegabyte}) {
      for (const std::size_t depth : {200, 3000, 100000}) {
        SCOPED_TRACE(::testing::Message() << nesting.name << " " << depth << " on " << stack);
        const std::string source = nesting.source(depth);
        runOnStack(stack, [&] {
          LuaVM vm;
          const std::string text = run(vm, source);
          if (text != "i7") {
            EXPECT_TRUE(text.starts_with("error c:1:")) << text;
            EXPECT_TRUE(text.ends_with(": source is nested too deeply")) << text;
          }
          EXPECT_EQ("i1", run(vm, "return 1"));
        });
      }
    }
  }
  runOnStack(64 * kMegabyte, [] { EXPECT_EQ("i7", run(kNestings[0].source(1000))); });
}

// Runs a script in this process with a limited address space and ends the process, with status 0 if
// the script returned true and the interpreter still runs others (or, where all memory went into
// small objects, at least says why not).
[[noreturn]] void runWithLittleMemory(const std::string& script, bool recovers) {
  const rlimit limit{700 * kMegabyte, 700 * kMegabyte};
  setrlimit(RLIMIT_AS, &limit);
  LuaVM vm;
  const std::string text = run(vm, script);
  const std::string afterwards = run(vm, kBusyScript);
  std::cerr << text << ' ' << afterwards << '\n';
  const bool usable =
      afterwards == kBusyOutcome || (!recovers && afterwards == "error not enough memory");
  _exit(text == "true" && usable ? 0 : 1);
}

TEST(Memory, RunningOutIsAnError) {
  if (kSanitized) GTEST_SKIP() << "a sanitizer's allocator ends the process instead";
  const struct {
    std::string body;
    bool recovers;
  } cases[] = {
      {"local s = 'x' while true do s = s .. s end", true},
      {"local s = 'x' while true do local t = s .. s s = t end", true},
      {"local t = {} local i = 0 while true do i = i + 1 t[i] = i end", true},
      {"local t = {} local i = 0 while true do i = i + 1 t['key' .. i] = i end", true},
      {"local a = {1} for i = 1, 40 do a = {a, a} end print(a)", true},
      {"local s = string.rep('x', 9000000000000)", true},
      {"local t = {} while true do t = {t} end", false},
      {"local t = {} while true do t = {x = t} end", false},
      {"local f = 1 while true do local g = f f = function() return g end end", false},
  };
  for (const auto& c : cases) {
    const std::string script = "local ok, message = pcall(function() " + c.body +
                               " end) return not ok and message == 'not enough memory'";
    EXPECT_EXIT(runWithLittleMemory(script, c.recovers), ::testing::ExitedWithCode(0), "")
        << c.body;
  }
}

// An assignment that fails stores nothing, also where it would have appended in place.
TEST(Memory, AFailedAppendLeavesTheString) {
  if (kSanitized) GTEST_SKIP() << "a sanitizer's allocator ends the process instead";
  const std::string script =
      "local big = 'x' for i = 1, 26 do big = big .. big end local s = 'a' .. 'b' "
      "local ok = pcall(function() s = s .. 'tail' .. big .. big .. big .. big .. big .. big .. "
      "big "
      "end) return not ok and s == 'ab'";
  EXPECT_EXIT(runWithLittleMemory(script, true), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tarvel::lua
