#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/unit/script_outcome.h"
#include "tests/unit/switched_stack.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua {
namespace {

// What a script cannot exceed: the stack of the thread, or of what the host switched to. Memory:
// tests/cli_test.py.

using internal::kWideFrames;
using internal::runOnStack;
using internal::SwitchedStack;

constexpr std::size_t kKilobyte = 1024;
constexpr std::size_t kMegabyte = 1024 * kKilobyte;

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
    EXPECT_GE(small, kWideFrames ? 5 : 50) << c.source;
    const std::int64_t onMainThread = recurse(c.source, c.outcome);
    if (&c != &kRecursions[0]) continue;
    std::int64_t large = 0;
    runOnStack(64 * kMegabyte, [&] { large = recurse(c.source, c.outcome); });
    EXPECT_GT(onMainThread, small) << "the limit follows from the stack";
    EXPECT_GT(large, 50 * small);
  }
}

// However many statements a block has, it takes no more of the host's stack than other levels do.
TEST(Recursion, ThroughLongBlocksIsAnErrorToo) {
  std::string blocks = "f()";
  for (int i = 0; i < 150; ++i) {
    std::string block = "if true then ";
    for (int statement = 0; statement < 19; ++statement) block += "x = 1 ";
    blocks = block + blocks + " end";
  }
  const std::string source = "n = 0 function f() n = n + 1 " + blocks + " end f()";
  for (std::size_t size = 8; size < 16; ++size)
    runOnStack(size * kMegabyte, [&] { recurse(source.c_str(), "error c:1: stack overflow"); });
}

// Nor does any other level of a tall tree. Where it ends on the stack differs from size to size.
TEST(Recursion, ThroughTallTreesIsAnErrorToo) {
  const std::size_t least =
      (kWideFrames ? 45 : 17) * kMegabyte;  // with less they are not even read
  const std::string sources[] = {
      repeated("1 .. (", 3500) + "f()" + repeated(")", 3500),
      repeated("{x = {id(", 800) + "f()" + repeated(")}}", 800),
  };
  for (const std::string& source : sources) {
    const std::string script =
        "n = 0 function id(x) return x end function f() n = n + 1 return " + source + " end f()";
    for (std::size_t size = least; size < least + 900 * kKilobyte; size += 90 * kKilobyte)
      runOnStack(size, [&] { recurse(script.c_str(), "error c:1: stack overflow"); });
  }
}

// A run inside a run inside a run.
std::string recurseThroughHost() {
  LuaVM vm;
  std::string deepest;
  vm.bindFunction("again", [&](LuaVM& caller, const Arguments&) {
    volatile char room[20 * kKilobyte];  // what a host's own frames may take
    room[0] = '{';
    const std::string source = std::string("return ") + room[0] + "again()}";
    const LuaResult result = caller.runScriptString(source, "again");
    if (!result.ok && deepest.empty()) deepest = result.error;
    return result.value;
  });
  EXPECT_EQ("nil", run(vm, "again()"));
  EXPECT_EQ(kBusyOutcome, run(vm, kBusyScript));
  return deepest;
}

TEST(Recursion, ThroughTheHostIsAnErrorToo) {
  for (const std::size_t stack : {256 * kKilobyte, 8 * kMegabyte}) {
    runOnStack(stack, [] { EXPECT_EQ("again:1: stack overflow", recurseThroughHost()); });
  }
}

TEST(Recursion, IsAnErrorOnAStackThatTheHostSwitchedTo) {
  if (kWideFrames) GTEST_SKIP() << SwitchedStack::kWhyNot;
  SwitchedStack stack(256 * kKilobyte, [] {
    for (const auto& c : kRecursions) EXPECT_GE(recurse(c.source, c.outcome), 20) << c.source;
    EXPECT_EQ("again:1: stack overflow", recurseThroughHost());
    LuaVM vm;
    const std::string tooDeep = "error value cannot be bridged out of TarvelLua";
    EXPECT_EQ(tooDeep, run(vm, "local t = {} for i = 1, 990 do t = {t} end return t"));
    EXPECT_TRUE(run(vm, "return " + repeated("(", 9000) + "1" + repeated(")", 9000))
                    .ends_with(": source is nested too deeply"));
    LuaValue deep;
    for (int i = 0; i < 990; ++i) deep = sequence(deep);
    EXPECT_THROW(deep.toString(), std::runtime_error);
    try {
      vm.setGlobal("deep", deep);  // some compilers need so little that there is room
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ("unsupported TarvelLua value", error.what());
    }
  });
  stack.begin();
}

__attribute__((noinline)) std::string runFromDeeper(LuaVM& vm) {
  volatile char room[96 * kKilobyte];
  room[0] = '1';
  return run(vm, std::string("return ") + room[0]);
}

// Two runs that end in the order in which they began, one of them on another thread, then one on
// the first one's stack.
TEST(Recursion, IsBoundedOnEachOfSeveralSwitchedStacks) {
  if (kWideFrames) GTEST_SKIP() << SwitchedStack::kWhyNot;
  LuaVM vms[2];
  const auto runAndSuspend = [](LuaVM& vm, SwitchedStack& stack) {
    vm.bindFunction("suspend", [&](LuaVM&, const Arguments&) {
      stack.suspend();
      return LuaValue();
    });
    EXPECT_EQ("i1", run(vm, "suspend() return 1"));
  };
  bool again = false;
  SwitchedStack first(512 * kKilobyte, [&] {
    if (!again) return runAndSuspend(vms[0], first);
    EXPECT_EQ("i1", runFromDeeper(vms[0]));
  });
  SwitchedStack second(512 * kKilobyte, [&] { runAndSuspend(vms[1], second); });
  first.begin();
  second.begin();
  std::thread([&] { first.resume(); }).join();
  second.resume();
  again = true;
  first.begin();
}

// Source texts that nest or chain and would return 7: a head, then `before` as often as asked for,
// a middle, as many of `after`, and a tail.
struct NestingCase {
  const char* head;
  const char* before;
  const char* middle;
  const char* after;
  const char* tail;

  std::string source(std::size_t depth) const {
    return head + repeated(before, depth) + middle + repeated(after, depth) + tail;
  }
};

const NestingCase kNestings[] = {
    {"return ", "(", "7", ")", ""},
    {"return 7", " + 0", "", "", ""},
    {"return 7", " * 1", "", "", ""},
    {"return nil", " or nil", " or 7", "", ""},
    {"return (1", " ~= 1", ") and 7 or 7", "", ""},
    {"local s = ''", " .. 'x'", " return 7", "", ""},
    {"return (", "not ", "1) and 7 or 7", "", ""},
    {"local m = ", "- ", "7 return 7", "", ""},
    {"function f() return f end g = f", "()", " return 7", "", ""},
    {"function f(x) return x end return ", "f(", "7", ")", ""},
    {"t = {v = 7} t.t = t local r = t", ".t", " t.t = nil return r.v", "", ""},
    {"t = {1} return ", "t[", "1", "]", " * 7"},
    {"t = {} function t:m() return self end r = t", ":m()", " return 7", "", ""},
    {"local t = ", "{", "", "}", " return 7"},
    {"f = ", "function() return ", "1", " end", " return 7"},
    {"", "if 1 then ", "return 7 ", "end ", ""},
    {"x = 1 if x == 2 then", " elseif x == 3 then", " else return 7 end", "", ""},
    {"if nil then", " elseif nil then", " else return 7 end", "", ""},
    {"", "while 1 do ", "return 7 ", "end ", ""},
    {"t = {} t.t = t function t", ".t", ".f() end t.t = nil return 7", "", ""},
    {"local a", ", a", " = 1 a = 7 return a", "", ""},
    {"", "local a = 1 ", "return 7", "", ""},
};

TEST(Nesting, IsNoCrashHoweverDeep) {
  for (const NestingCase& nesting : kNestings) {
    EXPECT_EQ("i7", run(nesting.source(8))) << nesting.head << nesting.before;
    for (const std::size_t stack : {192 * kKilobyte, 1 * kMegabyte, 64 * kMegabyte}) {
      for (const std::size_t depth : {200u, 3000u, 100000u}) {
        SCOPED_TRACE(::testing::Message()
                     << nesting.head << nesting.before << " " << depth << " on " << stack);
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

}  // namespace
}  // namespace tarvel::lua
