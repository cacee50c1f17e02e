#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/unit/script_outcome.h"

// What the library gives scripts, where their output goes, and what its work counts.

namespace tarvel::lua {
namespace {

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
    LuaOptions options;
    options.supervised = supervised;
    options.output = [this](std::string_view text) { output += text; };
    options.errorOutput = [this](std::string_view text) { errors += text; };
    return options;
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
  LuaOptions options;
  bool isForeign = false;
  options.output = [&](std::string_view text) {
    if (isForeign) throw ForeignException();
    if (text != "ok") throw std::runtime_error("full");
  };
  LuaVM vm(options);
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
  LuaOptions options;
  options.limits.memory = std::size_t{4} << 20;
  LuaVM vm(options);
  // Compiled patterns make room for each other, and leave most of it for the script.
  EXPECT_EQ("i300", run(vm,
                        "local n = 0 for i = 1, 300 do n = n + "
                        "('x'):find('x' .. ('[x]?'):rep(200) .. '([' .. i .. ']*)') end return n"));
  EXPECT_LT(std::size_t{390} << 10, vm.usage().memory);
  EXPECT_GT(std::size_t{2} << 20, vm.usage().peakMemory);
}

}  // namespace
}  // namespace tarvel::lua
