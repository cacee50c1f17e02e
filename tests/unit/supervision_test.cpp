#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

// Supervised interpreters: what counts as a step, and what is known of the calls that an error
// passed through. What the library gives scripts, where their output goes, and what its work
// counts. How runs end that do too much: tests/refusal/bounds_test.cpp.

namespace tarvel::lua {
namespace {

LuaValue evaluate(LuaVM& vm, const std::vector<LuaValue>& arguments) {
  const LuaResult result = vm.runScriptString(arguments.at(0).toString(), "inner");
  return result.ok ? result.value : LuaValue(result.detail->toString());
}

// What ended a run; Syntax, which no run ends with, where nothing did.
LuaError::Kind endOf(LuaVM& vm, const std::string& source, const LuaLimits& limits) {
  vm.setLimits(limits);
  const LuaResult result = vm.runScriptString(source, "c");
  return result.ok ? LuaError::Kind::Syntax : result.detail->kind;
}

constexpr auto kNothing = LuaError::Kind::Syntax;

std::string traceOf(const LuaResult& result) {
  if (result.detail == nullptr) return "no failure";
  LuaError error;
  error.trace = result.detail->trace;
  return error.toString();
}

// The chunk itself is a call.
constexpr std::pair<const char*, std::uint64_t> kCounted[] = {
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
  for (const auto& [source, steps] : kCounted) {
    LuaVM vm({.supervised = true});
    ASSERT_EQ("", vm.runScriptString(source, "c").error);
    EXPECT_EQ(steps, vm.usage().steps) << source;
    // So many are enough, one less is not.
    EXPECT_EQ(kNothing, endOf(vm, source, {.steps = steps})) << source;
    if (steps == 1) continue;
    EXPECT_EQ(LuaError::Kind::Steps, endOf(vm, source, {.steps = steps - 1}));
    EXPECT_EQ(steps - 1, vm.usage().steps) << source;
  }
  LuaVM unsupervised;
  run(unsupervised, kBusyScript);
  EXPECT_EQ(0U, unsupervised.usage().steps);
}

TEST(Supervision, ARequestEndsTheRunsThatBeginLater) {
  std::stop_source request;
  request.request_stop();
  LuaVM vm({.supervised = true});
  EXPECT_EQ(LuaError::Kind::Stopped, endOf(vm, "error('it began')", {.stop = request.get_token()}));
}

// ---- Nested runs --------------------------------------------------------------------------------

TEST(Supervision, NestedRunsShareTheLimitsOfTheOutermost) {
  LuaVM vm({.supervised = true});
  vm.bindFunction("evaluate", evaluate);
  // What a nested run uses is gone, also where it was begun by a destructor.
  const std::string nested = "for i = 1, 3 do evaluate('for i = 1, 10 do end') end";
  EXPECT_EQ(kNothing, endOf(vm, nested, {.steps = 40}));
  EXPECT_EQ(LuaError::Kind::Steps, endOf(vm, nested, {.steps = 39}));
  auto ended = std::shared_ptr<void>(nullptr, [&](void*) { vm.runScriptString("a() a()", "end"); });
  vm.bindFunction("held",
                  [ended = std::move(ended)](LuaVM&, const Arguments&) { return LuaValue(); });
  EXPECT_EQ(kNothing, endOf(vm, "function a() end held = nil", {.steps = 4}));
  EXPECT_EQ(4U, vm.usage().steps);
}

// What a bound function passes on from a run inside of it ends the run around it in the same way.
TEST(Supervision, TheEndOfANestedRunIsThatOfTheOutermost) {
  LuaVM vm({.supervised = true, .limits = {.steps = 1'000'000, .memory = std::size_t{4} << 20}});
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
  LuaVM vm({.supervised = true, .limits = {.steps = 200'000, .memory = std::size_t{4} << 20}});
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

constexpr std::pair<const char*, const char*> kTraced[] = {
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
  for (const auto& [source, trace] : kTraced) {
    LuaVM vm({.supervised = true});
    vm.bindFunction("evaluate", evaluate);
    vm.bindFunction("fail", [](LuaVM&, const Arguments&) -> LuaValue { throw std::bad_alloc(); });
    EXPECT_EQ(trace, traceOf(vm.runScriptString(source, "c"))) << source;
  }
  // At most 32 calls, the innermost; of a nested run its own.
  LuaVM vm({.supervised = true, .limits = {.steps = 1000}});
  EXPECT_EQ(32U, vm.runScriptString("function f() f() end f()", "c").detail->trace.size());
  vm.setLimits({});
  vm.bindFunction("evaluate", evaluate);
  EXPECT_EQ("'inner:1: x\n  in error\n  in <chunk> (inner:1)'",
            run(vm, "function f() return evaluate([[error('x')]]) end return f()"));
  LuaVM unsupervised;
  EXPECT_EQ("", traceOf(unsupervised.runScriptString("error('x')", "c")));
}

// ---- The library --------------------------------------------------------------------------------

TEST(LibraryReach, WhatIsNotGrantedDoesNotExist) {
  const char* const script =
      "local s = '' for i, v in ipairs({print or 0, io.write or 0, io.stdout or 0, io.stderr or 0, "
      "io.open or 0, os.execute or 0, os.exit or 0}) do s = s .. (v == 0 and '-' or i) end "
      "return s, type(io), type(os), type(string.rep)";
  const std::pair<LuaReach, const char*> cases[] = {
      {LuaReach::None, "-------"},  {LuaReach::Output, "1234---"},
      {LuaReach::Files, "----5--"}, {LuaReach::Commands, "-----6-"},
      {LuaReach::Exit, "------7"},  {LuaReach::Output | LuaReach::Exit, "1234--7"},
      {LuaReach::All, "1234567"},
  };
  for (const auto& [reach, names] : cases) {
    LuaVM vm({.reach = reach});
    EXPECT_EQ("['" + std::string(names) + "' 'table' 'table' 'function']", run(vm, script));
  }
}

// ---- Output -------------------------------------------------------------------------------------

struct Outputs {
  std::string output;
  std::string errors;

  LuaOptions options(bool supervised = false) {
    return {.supervised = supervised,
            .output = [this](std::string_view text) { output += text; },
            .errorOutput = [this](std::string_view text) { errors += text; }};
  }
};

TEST(LibraryOutput, GoesToTheHost) {
  Outputs to;
  LuaVM vm(to.options());
  EXPECT_EQ("nil", run(vm,
                       "print(1, nil, 'a\\0b', {1, {x = 2}}, 2.5, true) print() print('') "
                       "io.write('a', 1):write('b') io.stderr:write('c', 2) "
                       "io.write(('z'):rep(100000)) print('h', ('z'):rep(100000), type)"));
  EXPECT_TRUE(to.output == std::string("1\tnil\ta\0b\t{1, {x: 2}}\t2.5\ttrue\n\n\na1b", 36) +
                               std::string(100000, 'z') + "h\t" + std::string(100000, 'z') +
                               "\t[function type]\n")
      << to.output.substr(0, 50);
  EXPECT_EQ("c2", to.errors);
  EXPECT_EQ("error value cannot be bridged out of TarvelLua", run(vm, "print('lost', io.stdout)"));
  EXPECT_FALSE(to.output.ends_with("lost"));
}

struct ForeignException {};

TEST(LibraryOutput, WhatTheHostThrowsIsAnErrorWhereTheScriptWrites) {
  bool isForeign = false;
  LuaVM vm({.output = [&](std::string_view text) {
    if (isForeign) throw ForeignException();
    if (text != "ok") throw std::runtime_error("full");
  }});
  for (const char* call : {"print('x')", "io.write('ok', 'x')", "io.stdout:write('x')"}) {
    const LuaResult result = vm.runScriptString("io.write('ok')\n" + std::string(call), "c");
    EXPECT_EQ("c:2: full", result.error) << call;
    ASSERT_NE(nullptr, result.detail);
    EXPECT_EQ(LuaError::Kind::Host, result.detail->kind);
    EXPECT_EQ("[false 'full']", run(vm, "return pcall(function() " + std::string(call) + " end)"));
  }
  isForeign = true;
  EXPECT_THROW(vm.runScriptString("pcall(print, 1)", "c"), ForeignException);
}

// ---- Work ---------------------------------------------------------------------------------------

// Neither on what the interpreter did before, nor on hashes.
TEST(LibraryWork, CountsTheSameEveryTime) {
  const char* const script =
      "local n = 0 for i = 1, 600 do n = n + (('a1b2'):find('[a-z]' .. i % 300) or 0) end "
      "for k, v in pairs({a = 1, b = 2}) do n = n + v end print({c = n, d = {e = n}}) "
      "return ('x-y z'):gsub('%W', ''), ('k=v'):match('(%w+)=(%w+)')";
  Outputs to;
  LuaVM vm(to.options(true));
  LuaVM other(to.options(true));
  run(other, "for i = 1, 100 do ('x'):find('[a-z]' .. i * 2) end ('k=v'):match('(%w+)=(%w+)')");
  std::uint64_t steps = 0;
  for (LuaVM* next : {&vm, &other, &vm, &other}) {
    EXPECT_EQ("['xyz' 'k' 'v']", run(*next, script));
    if (steps == 0) steps = next->usage().steps;
    EXPECT_EQ(steps, next->usage().steps);
  }
}

// Also where it is done in pieces. Wherever a limit ends a sort, all elements are there; those
// whose comparison may fail are where they were.
TEST(LibraryWork, LeavesLongTablesRight) {
  const char* const mixed = "i % 2 == 0 and i or 'k' .. i";
  for (const char* element : {"i * 7919 % 3001", "'k' .. i * 7919 % 3001", "-i", mixed}) {
    LuaVM vm({.supervised = true});
    run(vm, "function made() local t = {} for i = 1, 3000 do t[i] = " + std::string(element) +
                " end return t end t = made() table.sort(t) sorted = table.concat(t, ' ')");
    bool isDone = false;
    for (std::uint64_t steps = 1000; !isDone; steps += 1000) {
      run(vm, "t = made() before = table.concat(t, ' ')");
      vm.setLimits({.steps = steps});
      isDone = vm.runScriptString("table.sort(t)", "c").ok;
      vm.setLimits({});
      if (!isDone && element != mixed) run(vm, "table.sort(t)");
      const char* const expected = isDone || element != mixed ? "sorted" : "before";
      const std::string check = "return table.concat(t, ' ') == " + std::string(expected);
      EXPECT_EQ("true", run(vm, check)) << element << ", " << steps;
    }
  }
  const char* const script =
      "local t, sum = {}, 0 "
      "for i = 1, 5000 do t[i] = i % 997 == 0 and ('L'):rep(40000) or 'e' .. i end "
      "for k, v in pairs(t) do t[5001] = v sum = sum * 31 % 1000003 + k + #v end "
      "local o = {f = ''} for i = 1, 2000 do o.f = (o.f .. i) .. ' ' end "
      "return table.concat(t, ', '), o.f, sum";
  LuaVM supervised({.supervised = true});
  LuaVM free;
  EXPECT_TRUE(run(supervised, script) == run(free, script));
}

TEST(LibraryWork, WhatCannotBeInterruptedIsRefused) {
  const std::pair<const char*, const char*> cases[] = {
      {"return ('x'):find(('(%a)?'):rep(200))", "pattern is too complex"},
      {"return ('x'):find(('a'):rep(30000) .. '.')", "pattern is too complex"},
      {"return ('x'):find('[%](a{100}){900}]')", "pattern is too complex"},
      {"return tonumber(('1'):rep(300000))", "text is too long for a number"},
      {"error(('e'):rep(2000000))", "error message is too long"},
  };
  for (const auto& [script, text] : cases) {
    LuaVM vm({.supervised = true});
    EXPECT_EQ("error c:1: " + std::string(text), run(vm, script)) << script;
    LuaVM free;
    EXPECT_EQ(std::string::npos, run(free, script).find(text)) << script;
  }
}

TEST(LibraryWork, CountsMemoryThatStandsElsewhere) {
  LuaVM vm({.limits = {.memory = std::size_t{4} << 20}});
  // Compiled patterns make room for each other, and leave most of it for the script.
  EXPECT_EQ("i300", run(vm,
                        "local n = 0 for i = 1, 300 do n = n + "
                        "('x'):find('x' .. ('[x]?'):rep(200) .. '([' .. i .. ']*)') end return n"));
  EXPECT_LT(std::size_t{390} << 10, vm.usage().memory);
  EXPECT_GT(std::size_t{2} << 20, vm.usage().peakMemory);
}

}  // namespace
}  // namespace tarvel::lua
