#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tarvel/lua/lua_vm.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>

#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua {
namespace {

// What a script cannot exceed: the thread's stack, and memory.

using internal::kSanitized;
using internal::runOnStack;

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

// What this process may use of the address space beyond what it uses now.
void limitMemory(std::size_t bytes) {
  std::ifstream file("/proc/self/statm");
  std::size_t pages = 0;
  file >> pages;
  const rlim_t total = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + bytes;
  const rlimit limit{total, total};
  setrlimit(RLIMIT_AS, &limit);
}

// Runs a script in this process with a limited address space and ends the process, with status 0 if
// the script returned true and the interpreter still runs others (or, where all memory went into
// small objects, at least says why not).
[[noreturn]] void runWithLittleMemory(const std::string& script, bool recovers) {
  limitMemory(700 * kMegabyte);
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
      {"local f = 1 while true do f = around(f) end", false},
  };
  for (const auto& c : cases) {
    const std::string script =
        "function around(g) return function() return g end end "
        "local ok, message = pcall(function() " +
        c.body + " end) return not ok and message == 'not enough memory'";
    EXPECT_EXIT(runWithLittleMemory(script, c.recovers), ::testing::ExitedWithCode(0), "")
        << c.body;
  }
}

// An assignment that fails stores nothing, also where it would have appended in place.
TEST(Memory, AFailedAppendLeavesTheString) {
  if (kSanitized) GTEST_SKIP() << "a sanitizer's allocator ends the process instead";
  const std::string script =
      "local big = 'x' for i = 1, 26 do big = big .. big end local s = 'a' .. 'b' "
      "local ok = pcall(function() s = s .. 'tail' .. big .. big .. big .. big .. big .. big end) "
      "return not ok and s == 'ab'";
  EXPECT_EXIT(runWithLittleMemory(script, true), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tarvel::lua
