#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "lua/value/heap.h"
#include "tests/refusal/refused_memory.h"
#include "tests/unit/value_support.h"

// One interpreter for very many runs: whatever they end with, nothing of them stays.

namespace tarvel::lua {
namespace {

struct ForeignException {};

const char* const kEndings[] = {
    "local t = {{}, 'a' .. 1} return t",
    "t = {x = {'b' .. 2}} function f() return t end return f",
    "local x = ",
    "return 'unfinished",
    "error('a text of some length ' .. 1)",
    "local t = {} + 1",
    "os.exit(3)",
    "pcall(os.exit, 4)",
    "local function f(t) return {f({t})} end f()",
    "while true do local t = {'x' .. 1} end",
    "return ('x'):rep(2000000)",
    "return io.stdout",
    "host()",
    "foreign()",
    "return ('key' .. 1):match('(%a+)(|%d)'), ('x'):find('[')",
    "local f = io.open('README.md') return f:read()",
    "for k, v in ('a=1'):gmatch('(%w)=(%w)') do return {k, v, held} end",
    "call(function() error('inner') end)",
    "print({1, {x = 2}}, 'a' .. 1)",
};

// What fails in a node function or in a call that is an operand, while something made here is held.
const char* const kFailingOperands[] = {
    "('1' .. n) + fail()",
    "('x' .. n) < fail()",
    "({} == fail())",
    "('x' .. n) .. fail() .. 'y'",
    "{('x' .. n), x = fail()}",
    "({[n] = 'x' .. n})[fail()]",
    "type('x' .. n, fail())",
    "('x' .. n):rep(fail())",
    "held('x' .. n, fail(), 1)",
    "{n, n} + n",
    "n - ('x' .. n)",
    "n < {n, n}",
    "('x' .. n) >= n",
    "(t.none)[{n, n}]",
    "({n, n}).x.y",
    "('x' .. n).none.x",
    "t.none({n, n})",
    "({n, n}):none()",
    "(function() return n end)[{n, n}]",
    "fail() or 'x'",
    "select_(pcall(function() return {'x' .. n} == fail() end)) + fail()",
    "call(function() return fail() + 1 end)",
};

std::string failingOperands() {
  std::string script =
      "local n = 1 local function fail() error('reason ' .. n) end "
      "local function held(a, b, c) return a end local function select_(a, b) return 1 end "
      "local t = {} ";
  for (const std::string operand : kFailingOperands) {
    script += "pcall(function() return " + operand + " end) pcall(function() t[{}] = " + operand +
              " end) pcall(function() local a, b = {}, " + operand + " t[a], t[b] = b, a end) ";
  }
  return script +
         "pcall(function() for i = {n, n, n, n, n, n, n, n}, fail() do end end) "
         "pcall(table.sort, {6, 5, 4, 3, 2, 1}, function(a, b) return fail() < 1 end) ";
}

TEST(Endings, LeaveNothingHoweverMany) {
  LuaOptions options;
  options.supervised = true;
  options.limits.steps = 100;
  options.limits.memory = std::size_t{1} << 20;
  options.limits.stack = std::size_t{16} << 10;
  options.output = [](std::string_view) {};
  LuaVM vm(options);
  vm.bindFunction("host", [](LuaVM&, const std::vector<LuaValue>&) -> LuaValue {
    throw std::runtime_error("a reason of some length");
  });
  vm.bindFunction("foreign", [](LuaVM&, const std::vector<LuaValue>&) -> LuaValue {
    throw ForeignException();
  });
  vm.bind("call", [](LuaVM& inner, const LuaFunction& f) { return inner.call<int>(f).value(); });
  LuaVM operands;
  operands.bind("call", [&](const LuaFunction& f) { return operands.call<int>(f).value(); });
  const std::string failing = failingOperands();
  const auto runAll = [&](int rounds) {
    for (int i = 0; i < rounds; ++i) {
      for (const char* const source : kEndings) {
        // A global that one run leaves is replaced by the next.
        try {
          vm.runScriptString(source, "c" + std::to_string(i % 3));
        } catch (const ForeignException&) {
        }
      }
      if (i % 10 == 0) {
        EXPECT_TRUE(operands.runScriptString(failing, "c").ok);
      }
    }
    vm.runScriptString("t, f = nil", "c");
  };
  runAll(50);  // caches are full
  const std::size_t memory = vm.usage().memory;
  const std::size_t memoryOfOperands = operands.usage().memory;
  const std::size_t objects = internal::Heap::liveBlocks();
  const std::size_t hostBlocks = refusal::liveHostBlocks();
  runAll(internal::kCheckedHeap ? 250 : 10'000);
  EXPECT_EQ(memory, vm.usage().memory);
  EXPECT_EQ(memoryOfOperands, operands.usage().memory);
  EXPECT_EQ(objects, internal::Heap::liveBlocks());
  EXPECT_EQ(hostBlocks, refusal::liveHostBlocks());
}

}  // namespace
}  // namespace tarvel::lua
