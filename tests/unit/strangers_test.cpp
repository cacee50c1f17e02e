#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "lua/value/heap.h"
#include "tests/unit/value_support.h"

// Scripts that mean no good, in supervised interpreters: whatever they do, each ends with the limit
// that is set, no pcall helps them, the interpreter goes on, and nothing leaks.

namespace tarvel::lua {
namespace {

using internal::Heap;
using Kind = LuaError::Kind;

struct Stranger {
  const char* script;
  // What ends it before any limit of work does, alone and unprotected; Steps for none.
  Kind alone = Kind::Steps;
};

// Each would run for minutes, or for ever, or take all memory.
const Stranger kStrangers[] = {
    // Loops.
    {"while true do end"},
    {"while true do local x = {} end"},
    {"while 1 do if not x then y = 1 end end"},
    {"for i = 1, 9000000000000000000 do end"},
    {"for i = 9000000000000000000, 1, -1 do local x = i end"},
    {"for i = 1, 2, 0.0000000000001 do end"},
    {"for i = 1, 2, 0.00000000000000000001 do end"},
    {"local a, b = 0, 1 while a ~= b do a = 0 end"},
    {"local t = {1} while true do for k, v in pairs(t) do t[k] = v end end"},
    {"local t = {1, 2} while true do for i in ipairs(t) do t[i] = i end end"},
    {"while true do for w in string.gmatch('a b c', '%a') do end end"},
    {"while true do pcall(error, 'x') end"},
    {"while true do pcall(pcall) end"},
    {"while true do pcall(pcall, error) end"},
    {"local function f() end while true do f() end"},
    {"local o = {} function o:m() return self end while true do o:m():m() end"},
    {"local f f = function(n) if n == 0 then return end f(n - 1) end while true do f(50) end"},
    {"local function g(n) if n < 2 then return n end return g(n - 1) + g(n - 2) end g(90)"},
    // Recursion.
    {"function f() return f() end f()", Kind::Stack},
    {"function f() return 1 + f() end f()", Kind::Stack},
    {"function f(a, b, c) local d, e = a, b return f(d, e, c), 1 end f(1, 2, 3)", Kind::Stack},
    {"local o = {} function o:m() return self:m() end o:m()", Kind::Stack},
    {"local t = {3, 2, 1} local function c(a, b) table.sort({3, 2, 1}, c) return a < b end "
     "table.sort(t, c)",
     Kind::Stack},
    {"function f() pcall(f) pcall(f) end f()"},
    {"function f() local ok = pcall(f) while true do end end f()"},
    {"function f(n) if n > 0 then return n, f(n - 1) end end while true do f(10000) end"},
    {"o = {} function o:m(x) pcall(o.m, o, {x}) return self:m({x}) end while true do pcall(o.m, o) "
     "end"},
    // Memory.
    {"local t = {} while true do t[#t + 1] = {} end", Kind::Memory},
    {"local t = {} while true do t = {t} end", Kind::Memory},
    {"local s = 'x' while true do s = s .. s end", Kind::Memory},
    {"local s = '' while true do s = s .. 'some text of no use to anybody' end", Kind::Memory},
    {"local t, i = {}, 0 while true do i = i + 1 t['k' .. i] = i end", Kind::Memory},
    {"local t, i = {}, 0 while true do i = i + 1 t[i * 4294967296] = i end", Kind::Memory},
    {"local t = {} while true do t[#t + 1] = function() return t end end", Kind::Memory},
    {"local t = {} while true do t[#t + 1] = string.rep('x', 10000) .. #t end", Kind::Memory},
    {"string.rep('x', 1000000000000)", Kind::Memory},
    {"local t = {} while true do t[#t + 1] = pairs(t) end", Kind::Memory},
    // The library, of which tests/refusal/library_bounds_test.cpp has more.
    {"local t = {} for i = 1, 100000 do t[i] = i end while true do table.sort(t, function() return "
     "true end) end"},
    {"while true do table.sort({3, 1, 2}, function(a, b) while a do local t = {b} end end) end"},
    {"while true do pcall(table.sort, {3, 1, 2}, function(a, b) return pcall(error, {a, b}) end) "
     "end"},
    {"while true do print('spam') end"},
    // The host's functions.
    {"while true do callBack(function() return 1 end) end"},
    {"callBack(function() while true do end end)"},
    {"while true do pcall(callBack, function() error('x') end) end"},
    {"local function f() callBack(f) end while true do pcall(f) end"},
    {"while true do list() end"},
    {"while true do world:step(1) world.speed = world.speed + 1 end"},
    {"while true do run('return 1') end"},
    {"run('while true do end') while true do end"},
    {"while true do run('while true do end') end"},
    {"while true do pcall(run, [[while true do run('while true do end') end]]) end"},
    {"local function f() return run('return 1'), pcall(f), f() end while true do pcall(f) end"},
};

struct World {
  double speed = 0;
  void step(double seconds) { speed += seconds; }
};

LuaOptions optionsWith(const LuaLimits& limits) {
  LuaOptions options;
  options.reach = LuaReach::Output;
  options.supervised = true;
  options.limits = limits;
  options.output = [](std::string_view) {};
  return options;
}

std::unique_ptr<LuaVM> makeHost(const LuaLimits& limits) {
  auto vm = std::make_unique<LuaVM>(optionsWith(limits));
  // What a nested call ended with is not the script's: the host goes on, and its caller must not.
  vm->bind("callBack", [](LuaVM& inner, const LuaFunction& function) {
    return static_cast<bool>(inner.call<void>(function));
  });
  vm->bind("list", [] { return std::vector<int>(100, 1); });
  vm->bind("run", [](LuaVM& inner, const std::string& source) {
    return inner.runScriptString(source, "inner").ok;
  });
  vm->defineClass<World>("World").method("step", &World::step).property("speed", &World::speed);
  vm->setGlobal("world", std::make_shared<World>());
  return vm;
}

// Memory that no test needs, and stack that few calls need.
LuaLimits bounds() {
  LuaLimits limits;
  limits.memory = std::size_t{48} << 20;
  limits.stack = std::size_t{1} << 20;
  return limits;
}

std::string protectedForm(const std::string& script) {
  return "while true do pcall(function() " + script + " end) end";
}

// What ended the script; the interpreter must be of use afterwards.
LuaError endOf(LuaVM& vm, const std::string& script) {
  const LuaResult result = vm.runScriptString(script, "stranger");
  if (result.ok || result.detail == nullptr) return {Kind::Exit, "finished", "", 0, 0, 0, {}};
  vm.setLimits(bounds());
  const LuaOutcome<int> after = vm.call<int>(vm.load("return 1 + 1", "after").value());
  EXPECT_TRUE(after && *after == 2) << script;
  return *result.detail;
}

constexpr std::uint64_t kSteps = internal::kSanitized ? 20'000 : 100'000;

TEST(Strangers, EndWithTheirStepsExactly) {
  for (const Stranger& stranger : kStrangers) {
    LuaLimits limits = bounds();
    limits.steps = kSteps;
    const std::string alone = stranger.script;
    for (const std::string& script : {alone, protectedForm(alone)}) {
      const auto vm = makeHost(limits);
      const LuaError error = endOf(*vm, script);
      if (error.kind != Kind::Steps && script == alone) {
        EXPECT_EQ(stranger.alone, error.kind) << script << '\n' << error.toString();
      } else {
        EXPECT_EQ(Kind::Steps, error.kind) << script << '\n' << error.toString();
      }
      // The same script ends after the same step.
      const auto first = makeHost(limits);
      const auto second = makeHost(limits);
      first->runScriptString(script, "stranger");
      second->runScriptString(script, "stranger");
      EXPECT_EQ(first->usage().steps, second->usage().steps) << script;
      if (error.kind == Kind::Steps) {
        EXPECT_EQ(kSteps, first->usage().steps) << script;
      }
    }
  }
}

TEST(Strangers, EndWithTheirTime) {
  for (const Stranger& stranger : kStrangers) {
    LuaLimits limits = bounds();
    limits.time = std::chrono::milliseconds(20);
    const auto vm = makeHost(limits);
    const LuaError error = endOf(*vm, protectedForm(stranger.script));
    EXPECT_EQ(Kind::Time, error.kind) << stranger.script << '\n' << error.toString();
  }
}

TEST(Strangers, EndWhenTheyAreStopped) {
  for (const Stranger& stranger : kStrangers) {
    std::stop_source source;
    LuaLimits limits = bounds();
    limits.stop = source.get_token();
    const auto vm = makeHost(limits);
    std::mutex mutex;
    std::condition_variable started;
    bool hasStarted = false;
    vm->bind("started", [&] {
      const std::lock_guard lock(mutex);
      hasStarted = true;
      started.notify_one();
    });
    std::jthread other([&] {
      std::unique_lock lock(mutex);
      started.wait(lock, [&] { return hasStarted; });
      source.request_stop();
    });
    const LuaError error = endOf(*vm, "started() " + protectedForm(stranger.script));
    EXPECT_EQ(Kind::Stopped, error.kind) << stranger.script << '\n' << error.toString();
  }
}

TEST(Strangers, LeaveNothing) {
  if (!internal::kCheckedHeap) GTEST_SKIP() << "needs a build that counts objects";
  const std::size_t before = Heap::liveBlocks();
  for (const Stranger& stranger : kStrangers) {
    LuaLimits limits = bounds();
    limits.steps = 10'000;
    endOf(*makeHost(limits), protectedForm(stranger.script));
    EXPECT_EQ(before, Heap::liveBlocks()) << stranger.script;
  }
}

}  // namespace
}  // namespace tarvel::lua
