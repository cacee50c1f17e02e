#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

// Supervised interpreters: what counts as a step, and what is known of the calls that an error
// passed through. How runs end that do too much: tests/refusal/bounds_test.cpp.

namespace tarvel::lua {
namespace {

LuaOptions supervised(const LuaLimits& limits = {}) {
  LuaOptions options;
  options.supervised = true;
  options.limits = limits;
  return options;
}

LuaLimits steps(std::uint64_t count) {
  LuaLimits limits;
  limits.steps = count;
  return limits;
}

LuaValue evaluate(LuaVM& vm, const std::vector<LuaValue>& arguments) {
  const LuaResult result = vm.runScriptString(arguments.at(0).toString(), "inner");
  return result.ok ? result.value : LuaValue(result.detail->toString());
}

// What ended a run: the name of the kind, or nothing.
std::string runWithin(LuaVM& vm, const std::string& source, const LuaLimits& limits) {
  vm.setLimits(limits);
  const LuaResult result = vm.runScriptString(source, "c");
  if (result.ok) return "";
  switch (result.detail->kind) {
    case LuaError::Kind::Steps:
      return "Steps";
    case LuaError::Kind::Stopped:
      return "Stopped";
    default:
      return result.error;
  }
}

std::string traceOf(const LuaResult& result) {
  if (result.detail == nullptr) return "no failure";
  LuaError error;
  error.trace = result.detail->trace;
  return error.toString();
}

struct Counted {
  const char* source;
  std::uint64_t steps;
};

// The chunk itself is a call.
constexpr Counted kCounted[] = {
    {"", 1},
    {"return (1 + 2) * 3, 'a' .. 1, {}, #'x'", 1},
    // Rounds of loops; the test that ends a loop is none.
    {"local n = 0 while n < 5 do n = n + 1 end", 6},
    {"while true do break end", 2},
    {"for i = 1, 10 do end for i = 10, 1, -3 do end for i = 1, 0 do end", 15},
    {"for i = 1, 9223372036854775807, 9223372036854775806 do end", 3},
    {"for i = 0.5, 3 do end for i = 3, 0.5, -1 do end for i = 1, 0.5 do end", 7},
    {"for i = 1, 3 do for j = 1, 2 do end end", 10},
    {"for k in pairs({1, x = 2}) do end for i in ipairs({5, 6, 7}) do end", 8},
    {"for i = 1, 600 do end", 601},
    // Every form of a call.
    {"function f(a, b) end f() f(1) f(1, 2) f(1, 2, 3) f(1, 2, 3, 4) f(1, 2, 3, 4, 5)", 7},
    {"function f() return 1, 2 end f(f()) local x, y = f(), f() return f(), {f(), f()}", 8},
    {"local function f(a, b) end f() f(1) f(1, 2) local function g() f(1, 2) end g()", 6},
    {"local f f = function(n) if n > 0 then f(n - 1) end end f(3)", 5},
    {"local function f(n) if n > 0 then return f(n - 1) end end f(3) f(0)", 6},
    {"local t = {f = function() end} t.f() t['f'](1) t:f() t:f(1, 2) t:f(1, 2, 3, 4, 5)", 6},
    {"(function() end)() if type(nil) then end if not type(1) then end return -#type('')", 5},
    {"return ('x'):rep(2), math.floor(1.5), tostring(nil)", 4},
    {"type = function() end type(1) return type(nil)", 3},
    // Calls from native functions.
    {"pcall(error) pcall(pcall, error, 'x') pcall(type, 1)", 8},
    {"return pcall(nil)", 2},
    // Passing on many values: eight are a step, at every level that moves them.
    {"local function f(n) if n == 1 then return 1 end return 1, f(n - 1) end return f(64)", 353},
    {"local function f(n) if n > 1 then return pcall(f, n - 1) end end return f(64)", 1063},
};

TEST(Supervision, EveryCallAndEveryRoundIsAStep) {
  for (const Counted& counted : kCounted) {
    LuaVM vm(supervised());
    ASSERT_EQ("", vm.runScriptString(counted.source, "c").error);
    EXPECT_EQ(counted.steps, vm.usage().steps) << counted.source;
    // So many are enough, one less is not.
    EXPECT_EQ("", runWithin(vm, counted.source, steps(counted.steps))) << counted.source;
    if (counted.steps == 1) continue;
    EXPECT_EQ("Steps", runWithin(vm, counted.source, steps(counted.steps - 1))) << counted.source;
    EXPECT_EQ(counted.steps - 1, vm.usage().steps) << counted.source;
  }
  LuaVM unsupervised;
  run(unsupervised, kBusyScript);
  EXPECT_EQ(0U, unsupervised.usage().steps);
}

TEST(Supervision, ARequestEndsTheRunsThatBeginLater) {
  std::stop_source request;
  request.request_stop();
  LuaLimits limits;
  limits.stop = request.get_token();
  LuaVM vm(supervised());
  EXPECT_EQ("Stopped", runWithin(vm, "error('it began')", limits));
}

// ---- Nested runs --------------------------------------------------------------------------------

TEST(Supervision, NestedRunsShareTheLimitsOfTheOutermost) {
  LuaVM vm(supervised());
  vm.bindFunction("evaluate", evaluate);
  // What a nested run uses is gone, also where it was begun by a destructor.
  const std::string nested = "for i = 1, 3 do evaluate('for i = 1, 10 do end') end";
  EXPECT_EQ("", runWithin(vm, nested, steps(40)));
  EXPECT_EQ("Steps", runWithin(vm, nested, steps(39)));
  auto ended = std::shared_ptr<void>(nullptr, [&](void*) { vm.runScriptString("a() a()", "end"); });
  vm.bindFunction("held",
                  [ended = std::move(ended)](LuaVM&, const Arguments&) { return LuaValue(); });
  EXPECT_EQ("", runWithin(vm, "function a() end held = nil", steps(4)));
  EXPECT_EQ(4U, vm.usage().steps);
}

// What a bound function passes on from a run inside of it ends the run around it in the same way.
TEST(Supervision, TheEndOfANestedRunIsThatOfTheOutermost) {
  LuaOptions options = supervised(steps(1'000'000));
  options.limits.memory = std::size_t{4} << 20;
  LuaVM vm(options);
  vm.bind("nest", [](LuaVM& inner, const LuaFunction& f) { inner.call<void>(f).value(); });
  vm.bind("ignore", [](LuaVM& inner, const LuaFunction& f) { return bool(inner.call<void>(f)); });
  const std::pair<const char*, LuaError::Kind> cases[] = {
      {"\nnest(function() while true do end end)", LuaError::Kind::Steps},
      {"\nreturn pcall(nest, function() while true do end end)", LuaError::Kind::Steps},
      {"\nreturn ignore(function() while true do end end)", LuaError::Kind::Steps},
      {"\nnest(function() local s = 'x' while true do s = s .. s end end)", LuaError::Kind::Memory},
      {"\nnest(function() local function f() return 1 + f() end f() end)", LuaError::Kind::Stack},
      {"\nnest(function() error('x') end)", LuaError::Kind::Script},
  };
  for (const auto& [script, kind] : cases) {
    const LuaResult result = vm.runScriptString(script, "c");
    ASSERT_NE(nullptr, result.detail) << script;
    EXPECT_EQ(kind, result.detail->kind) << script << result.error;
    EXPECT_EQ(2U, result.detail->line) << script;
  }
}

struct Tree {
  std::map<std::string, Tree> named;
};

}  // namespace

template <>
inline constexpr auto luaRecord<Tree> = record(maybe("named", &Tree::named));

namespace {

// Copies for the host are as long as a script likes, and stand outside of its interpreter's heap.
TEST(Supervision, ConversionsCountWhatTheyCopy) {
  LuaOptions options = supervised(steps(200'000));
  options.limits.memory = std::size_t{4} << 20;
  LuaVM vm(options);
  vm.bind("texts", [](const std::vector<std::string>& list) { return list.size(); });
  vm.bind("map", [](const std::map<std::string, std::string>& map) { return map.size(); });
  vm.bind("values", [](std::string, const std::vector<LuaValue>& rest) { return rest.size(); });
  vm.bind("lists", [](const std::vector<std::vector<LuaValue>>& list) { return list.size(); });
  vm.bind("text", [](const std::string& text) { return text.size(); });
  vm.bind("tree", [](const Tree& tree) { return tree.named.size(); });
  const std::string many = "local s, t = ('x'):rep(200000), {} for i = 1, 50 do t[i] = s end ";
  const std::string shared = "local t = {'x'} for i = 1, 18 do t = {t, t} end ";
  const std::pair<std::string, const char*> cases[] = {
      {many + "return texts(t)", "c:1: not enough memory"},
      {many + "local m = {} for i, v in ipairs(t) do m['k' .. i] = v end map(m)",
       "c:1: not enough memory"},
      {many + "lists({t})", "c:1: not enough memory"},
      {many + "values(s, t[1], t, t)", "c:1: not enough memory"},
      {shared + "lists(t)", "c:1: not enough memory"},
      {many + "for i = 1, 500 do text(s) end", "c:1: used up its steps"},
      {"local t = {named = {}} t.named[('n'):rep(1000)] = t tree(t)", "c:1: tree: argument 1: "},
      {"local s = ('x'):rep(200000) return texts({s, s}), text(s), values(s, s)", ""},
  };
  for (const auto& [script, error] : cases) {
    const LuaResult result = vm.runScriptString(script, "c");
    EXPECT_EQ(error, result.error.substr(0, std::string_view(error).size())) << script;
    EXPECT_GT(2000U, result.error.size()) << script;
    EXPECT_EQ(result.ok, error[0] == '\0') << script << result.error;
  }
  EXPECT_GT(std::size_t{1} << 20, vm.usage().memory) << "what was copied is gone";
}

// ---- Traces -------------------------------------------------------------------------------------

struct Traced {
  const char* source;
  const char* trace;
};

constexpr Traced kTraced[] = {
    {"error('x')", "\n  in error\n  in <chunk> (c:1)"},
    {"local t = {}\nt.x.y = 1", "\n  in <chunk> (c:2)"},
    {"Account = {}\nfunction Account:deposit(n)\n  self.sum = self.sum + n\nend\n"
     "local function total(a)\n  return (a:deposit(1))\nend\nlocal t = {\n  total(Account)}",
     "\n  in Account:deposit (c:3)\n  in total (c:6)\n  in <chunk> (c:9)"},
    {"local function f(n)\n  if n == 0 then\n    error('x') end\n  return f(n - 1)\nend\nf(2)",
     "\n  in error\n  in f (c:3)\n  in f (c:4)\n  in f (c:4)\n  in <chunk> (c:6)"},
    {"local f = function() end\nfunction g(a, b, c, d, e)\n  return nil + e\nend\n"
     "return g(1, 2, 3, 4,\n 5)",
     "\n  in g (c:3)\n  in <chunk> (c:5)"},
    {"table.sort({2, 1},\n  function(a, b)\n    return a.x\n  end)",
     "\n  in <anonymous> (c:3)\n  in sort\n  in <chunk> (c:1)"},
    // What was caught left no trace.
    {"pcall(function() error('x') end)\npcall(pcall, nil)\nlocal x = {} + 1",
     "\n  in <chunk> (c:3)"},
    {"pcall(evaluate, 'error(1)') evaluate('error(2)')\nerror('x')",
     "\n  in error\n  in <chunk> (c:2)"},
    {"function f()\n  f()\n  return 1\nend\nlocal ok = pcall(f)\nfail(\nevaluate('return 1'))",
     "\n  in fail\n  in <chunk> (c:6)"},
};

TEST(Supervision, TracesSayWhichCallsAnErrorPassedThrough) {
  for (const Traced& traced : kTraced) {
    LuaVM vm(supervised());
    vm.bindFunction("evaluate", evaluate);
    vm.bindFunction("fail", [](LuaVM&, const Arguments&) -> LuaValue { throw std::bad_alloc(); });
    EXPECT_EQ(traced.trace, traceOf(vm.runScriptString(traced.source, "c"))) << traced.source;
  }
  // At most 32 calls, the innermost; of a nested run its own.
  LuaVM vm(supervised(steps(1000)));
  EXPECT_EQ(32U, vm.runScriptString("function f() f() end f()", "c").detail->trace.size());
  vm.setLimits({});
  vm.bindFunction("evaluate", evaluate);
  EXPECT_EQ("'inner:1: x\n  in error\n  in <chunk> (inner:1)'",
            run(vm, "function f() return evaluate([[error('x')]]) end return f()"));
  LuaVM unsupervised;
  EXPECT_EQ("", traceOf(unsupervised.runScriptString("error('x')", "c")));
}

}  // namespace
}  // namespace tarvel::lua
