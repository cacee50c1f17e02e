#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "lua/value/heap.h"
#include "tests/unit/value_support.h"

// An interpreter gives back every object it made, however its runs ended. Checked heaps count them.
// The scripts make no reference cycles, which are never unwound: they keep the functions that they
// declare in globals of the chunk, outside the scopes that these functions capture.

namespace tarvel::lua {
namespace {

using internal::Heap;
using internal::runOnStack;

struct ForeignException {};

LuaValue raise(LuaVM&, const std::vector<LuaValue>&) { throw ForeignException(); }
LuaValue fail(LuaVM&, const std::vector<LuaValue>&) { throw std::runtime_error("failed"); }
LuaValue same(LuaVM&, const std::vector<LuaValue>& arguments) { return arguments.at(0); }
LuaValue evaluate(LuaVM& vm, const std::vector<LuaValue>& arguments) {
  return vm.runScriptString(arguments.at(0).toString(), "inner").value;
}

const char* const kScripts[] = {
    // Values of every kind in locals, globals, tables and arguments.
    "g = {1, 'a' .. 'b', {x = 'c' .. 1}, print, io.stdout, pairs({'d' .. 2})} local l = {g, g} "
    "return #l",
    "local t = {} for i = 1, 500 do t['k' .. i % 7] = {i} t[i] = 'v' .. i t[i - 3] = nil end",
    "local s = '' for i = 1, 100 do s = s .. i .. 'x' .. tostring(i) end return s",
    "local s = 'a' .. 1 local u = s s = s .. u .. s return s == u",
    "a, b, c = ('x' .. 1), {}, 'y' .. 2, 'z' .. 3 a, b = b, a",
    "t = {} t.x, t['y' .. 1], t[{} and 3] = 'a' .. 1, {'b' .. 2}, 'c' .. 3 t.x = nil",
    // Calls: too few and too many arguments, several results, methods, recursion.
    "function f(a, b, c) return b, a, 'r' .. 1 end local x, y = f('p' .. 1, {}, 'q', 'extra' .. 2) "
    "f() f(f(1, f('s' .. 1))) return f(x, f(y))",
    "function f(n, t) if n == 0 then return t end return f(n - 1, {t, 'n' .. n}) end f(200)",
    "o = {items = {}} function o:add(x) self.items[#self.items + 1] = x return self end "
    "o:add('a' .. 1):add({}):add(o.items[1])",
    "return (string.rep('ab', 3)), ('x' .. 1) == ('x' .. 1), #('y' .. 2), not {}",
    "return ('a' .. 1) < ('b' .. 2) and {1} or nil, nil or 'c' .. 3, false and {}",
    // Closures and their environments.
    "function counter() local n, t = 0, {} return function() n = n + 1 t[n] = 'v' .. n return t "
    "end "
    "end c = counter() c() c() d = counter() d()",
    "fs = {} for i = 1, 5 do local t = {i} fs[i] = function() return t end end return fs[3]()[1]",
    "for i, v in ipairs({'a' .. 1, {}}) do local w = {v} g = function() return w, i end end g()",
    // Every way out of blocks and loops.
    "function f(x) for k, v in pairs({'a' .. 1, {}, 'c' .. 3}) do local u = {v} while true do "
    "local w = {u} if x then return w, u, k end break end if k == 2 then break end end end "
    "f(true) f(false)",
    "for i = 1, 3 do local t = {i} if i == 2 then local u = {t} break end end",
    "function f() if {} then local t = {'x' .. 1} return t end end return f()[1]",
    // Errors in the middle of everything, caught and not.
    "local t = {{}, 'a' .. 1, error('x')}",
    "function f(x) local l = {x} error('deep' .. 1) end local t = {} f({t}, 'y' .. 2)",
    "for i = 1, 10 do local t = {i} pcall(function() local u = {t, 'a' .. i} error('e' .. i) end) "
    "end",
    "local s = 'a' .. 1 .. nil_call()",
    "local t = {x = 'a' .. 1} t.y.z = {'v' .. 1}",
    "local t = {} t[{}] = 'v' .. 1",
    "local t = {} t[error('x')] = {'v' .. 1}",
    "t = {['k' .. 1] = same('v' .. 2)}",
    "for k in pairs({1}), {}, {} do end",
    "nothing(string.find(string.rep('ab', 300), string.rep('(ab)', 300)))",
    "return {[{}] = 'v' .. 1}",
    "local a = {} + ('b' .. 1)",
    "return ('a' .. 1) < {}",
    "for i = 1, {} do end",
    "for k in 'a' .. 1 do end",
    "local x = {} x('arg' .. 1, {})",
    "('a' .. 1).b = {}",
    "return -{}",
    "return #pairs({'x' .. 1})",
    "local x =",
    "local x = 'abc' .. 'def' .. function() return 'ghi' end end",
    "'unfinished",
    // Exits.
    "local t = {'a' .. 1} os.exit(1)",
    "function f() local t = {} pcall(pcall, os.exit, 2) end local l = {f('x' .. 1)}",
    "for k, v in pairs({{}, {}}) do local t = {v} table.sort({3, 2, 1}, function() os.exit(3) end) "
    "end",
    // Endless recursion.
    "function f(t) return {f({t, 'x' .. 1})} end f()",
    "function f(t) local l = {t} pcall(f, l) error('x' .. 1) end f({})",
    // The host in between.
    "local t = {same({'a' .. 1, {x = same}}), same('b' .. 2)} h = same(same)",
    "local t = {'a' .. 1} pcall(fail, t) fail({t})",
    "same(pairs({'a' .. 1}))",
    "local t = {'a' .. 1} raise(t)",
    "local t = {'a' .. 1} pcall(function(x) local u = {x} raise(t, u) end, {})",
    "local t = {'a' .. 1} t[2] = evaluate([[local u = {'b' .. 2} return {u, x}]]) error(t)",
    "local t = {'a' .. 1} evaluate('local u = {1} raise(u)')",
    "local t = {'a' .. 1} return evaluate('local u = {1} os.exit(4)'), evaluate('local u = {} + "
    "1')",
};

class LiveObjects : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!internal::kCheckedHeap) GTEST_SKIP() << "only checked heaps count their objects";
    liveBefore_ = Heap::liveBlocks();
    abandonedBefore_ = Heap::abandonedBlocks();
  }

  // Nothing is left, and nothing was left to the end of its heap.
  void expectNone(const std::string& what) {
    EXPECT_EQ(liveBefore_, Heap::liveBlocks()) << what;
    EXPECT_EQ(abandonedBefore_, Heap::abandonedBlocks()) << what;
  }

  static void bindHost(LuaVM& vm) {
    vm.bindFunction("raise", raise);
    vm.bindFunction("fail", fail);
    vm.bindFunction("same", same);
    vm.bindFunction("evaluate", evaluate);
  }

  static LuaResult run(LuaVM& vm, const char* script) {
    try {
      return vm.runScriptString(script, "c");
    } catch (const ForeignException&) {
      return {};
    }
  }

 private:
  std::size_t liveBefore_ = 0;
  std::size_t abandonedBefore_ = 0;
};

TEST_F(LiveObjects, GoWithTheirInterpreter) {
  { LuaVM unused; }
  expectNone("no script");
  for (const char* const script : kScripts) {
    runOnStack(std::size_t{512} << 10, [&] {
      LuaVM vm;
      bindHost(vm);
      run(vm, script);
      run(vm, script);
    });
    expectNone(script);
  }
  {
    LuaVM vm;
    bindHost(vm);
    for (const char* const script : kScripts) run(vm, script);
  }
  expectNone("all in one");
}

// What a run leaves behind is what its globals hold.
TEST_F(LiveObjects, GoWithTheEndOfTheRun) {
  LuaVM vm;
  bindHost(vm);
  const char* const clear = "g, a, b, c, d, t, f, o, fs, counter, h = nil";
  for (const char* const script : kScripts) {
    run(vm, clear);
    run(vm, script);
    run(vm, clear);
    const std::size_t first = Heap::liveBlocks();
    for (int i = 0; i < 5; ++i) run(vm, script);
    run(vm, clear);
    EXPECT_LE(Heap::liveBlocks(), first) << script;
  }
}

TEST_F(LiveObjects, StayWhileAHandleHoldsThem) {
  LuaValue handle;
  {
    LuaVM vm;
    handle = run(vm,
                 "function make() local t = {'a' .. 1, {}} return function() return t end end "
                 "return {make(), make}")
                 .value;
  }
  EXPECT_NE("nil", handle.toString());
  handle = LuaValue();
  expectNone("the last handle has gone");
}

// What a host function holds goes with it, a whole interpreter included.
TEST_F(LiveObjects, GoWithTheHostFunctionThatHoldsThem) {
  {
    LuaVM vm;
    const auto child = std::make_shared<LuaVM>();
    run(*child, "t = {'a' .. 1, {{}}} function f() return t end");
    const LuaValue handle = run(*child, "return {f, print}").value;
    vm.bindFunction("child", [child, handle](LuaVM&, const std::vector<LuaValue>&) {
      return child->runScriptString("return f()", "c").value;
    });
    EXPECT_EQ("{a1, {{}}}", run(vm, "x = {child} return child()").value.toString());
  }
  expectNone("both have gone");
}

}  // namespace
}  // namespace tarvel::lua
