#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "lua/lua_vm_impl.h"
#include "tests/refusal/refused_memory.h"
#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

// Every function of the library at its worst, under bounds that it would exceed: of steps, of time,
// and of memory, where the memory is what the process really takes.

namespace tarvel::lua {
namespace {

using Kind = LuaError::Kind;

struct Case {
  const char* function;  // as docs/library.md calls it; "" for what the evaluator does
  const char* setup;
  const char* work;  // would take long, or much
};

const Case kCases[] = {
    {"string.sub", "s = ('a'):rep(2000000)", "return s:sub(2), s:sub(3)"},
    {"string.rep", "s = ('a'):rep(2000000)", "return s:rep(100)"},
    {"string.rep", "", "return ('a'):rep(4000000)"},
    {"string.format", "s = ('a'):rep(2000000)", "return string.format('%s%s', s, s)"},
    {"string.format", "s = ('%%'):rep(20000)", "return string.format(s)"},
    {"string.unpack", "s = (' '):rep(20000)", "return string.unpack(s, '')"},
    {"string.unpack", "s = 'I' .. ('0'):rep(20000) .. '4'", "return string.unpack(s, '1234')"},
    {"string.unpack", "f, s = ('I4'):rep(20000), ('x'):rep(80000)", "return string.unpack(f, s)"},
    {"tonumber", "s = ('1'):rep(100000)", "return tonumber(s)"},
    {"tostring", "t = {}", "while true do tostring(t) tostring(2.5) end"},
    {"type", "", "while true do type(1) end"},
    {"error", "s = ('e'):rep(900000)", "return pcall(error, s)"},
    {"assert", "s = ('e'):rep(900000)", "return pcall(assert, nil, s)"},
    {"pcall", "", "local function f(n) return pcall(f, n) end while true do f() end"},
    {"math.max", "f, s = ('I4'):rep(2000), ('x'):rep(8000)",
     "while true do math.max(string.unpack(f, s)) end"},
    {"math.min", "f, s = ('I4'):rep(2000), ('x'):rep(8000)",
     "while true do math.min(string.unpack(f, s)) end"},
    {"math.floor", "", "while true do math.floor(2.5) end"},
    // Searching.
    {"string.find", "s = ('a'):rep(2000000)", "return s:find('b', 1, true)"},
    {"string.find", "s = ('a'):rep(2000000)", "return s:find('b()')"},
    {"string.find", "s = ('a'):rep(2000000)", "return s:find('%d%a')"},
    {"string.find", "s = ('a'):rep(2000000)", "return s:find('%a+')"},
    {"string.find", "s = ('a'):rep(2000000)", "return s:find('[%a]+%d')"},
    {"string.find", "s = ('a'):rep(400000) n = ('a'):rep(200000) .. 'b'",
     "return s:find(n, 1, true)"},
    {"string.find", "s = ('a'):rep(400000) n = ('a'):rep(2000) .. 'b()'", "return s:find(n)"},
    {"string.find", "s = ('ab'):rep(20000)", "return s:find('[ab]%d')"},
    {"string.find", "s = 'b' .. ('a'):rep(40)", "return s:find('(a*)*[bc]$')"},
    {"string.find", "s = 'b' .. ('a'):rep(40)", "return s:find('(a+)+[bc]')"},
    {"string.find", "s = ('a'):rep(40)",
     "return s:find(('a?'):rep(40) .. ('a'):rep(39) .. '[bc]')"},
    {"string.find", "s = ('a'):rep(2000)", "return s:find('a*a*a*[bc]')"},
    {"string.find", "s = ('a'):rep(2000)", "return s:find('a-a-a-[bc]')"},
    {"string.find", "s = 'b'", "return s:find(('()?'):rep(40) .. 'a')"},
    {"string.find", "s = 'b'", "return s:find(('('):rep(9) .. 'a*' .. (')*'):rep(9) .. '[cd]')"},
    {"string.find", "s = 'a'", "return s:find('[a%]' .. ('(|)'):rep(40) .. ']c')"},
    {"string.find", "s = ('a'):rep(2000)", "return s:find('^(a-' .. ('()?'):rep(40) .. ')[bc]')"},
    {"string.find", "s = ('a'):rep(2000)",
     "return s:find('(?=(a*)b|)' .. ('()'):rep(1000) .. '[bc]')"},
    {"string.find", "", "for i = 1, 300 do ('x'):find('[a-z]' .. i) end"},
    {"string.find", "", "for i = 1, 300 do ('x'):find(('a'):rep(15000) .. '.') end"},
    {"string.match", "s = ('a'):rep(2000000)", "return s:match('(.*)(.*)')"},
    {"string.gmatch", "s = ('a'):rep(20000)", "for m in s:gmatch('a()') do end"},
    {"string.gmatch", "s = ('a'):rep(2000000)",
     "local t = {} for m in s:gmatch('((.+))') do t[#t + 1] = m end"},
    {"string.gsub", "s = ('a'):rep(20000)", "return s:gsub('', '-')"},
    {"string.gsub", "s = ('a'):rep(1000) r = ('b'):rep(10000)", "return s:gsub('a', r)"},
    // Tables.
    {"table.remove", "t = {} for i = 1, 100000 do t[i] = i end", "table.remove(t, 2)"},
    {"table.concat", "t = {} for i = 1, 100000 do t[i] = i end", "return table.concat(t)"},
    {"table.concat", "t, s = {}, ('a'):rep(100000) for i = 1, 100 do t[i] = s end",
     "return table.concat(t, s)"},
    {"table.sort", "t = {} for i = 1, 100000 do t[i] = i end", "table.sort(t)"},
    {"table.sort", "t = {} for i = 1, 20000 do t[i] = 'k' .. i end", "table.sort(t)"},
    {"table.sort", "t = {} for i = 1, 20000 do t[i] = i % 2 == 0 and i or 'k' .. i end",
     "table.sort(t)"},
    {"table.sort", "t = {} s = ('a'):rep(100000) for i = 1, 20 do t[i] = s .. i end",
     "table.sort(t)"},
    {"pairs", "t = {} for i = 1, 100000 do t[i] = i end", "return pairs(t)"},
    {"pairs", "t = {} for i = 1, 100000 do t['k' .. i] = i end", "return pairs(t)"},
    {"ipairs", "t = {1}", "while true do for i in ipairs(t) do ipairs(t) end end"},
    // Values that cross and are printed.
    {"", "t = {} for i = 1, 20000 do t[i] = i end", "return t"},
    {"", "t = {} for i = 1, 20000 do t['k' .. i] = i end", "return t"},
    {"", "t = {} for i = 1, 40 do t = {t, t} end", "same(t)"},
    {"", "s = ('a'):rep(2000000)", "same(s)"},
    {"",
     "f, s = ('I4'):rep(20000), ('x'):rep(80000) function go() nest(go, string.unpack(f, s)) end",
     "while true do pcall(go) end"},
    {"print", "t = {} for i = 1, 40 do t = {t, t} end", "print(t)"},
    {"print", "s = ('a'):rep(2000000)", "print(s)"},
    {"io.write", "s = ('a'):rep(2000000)", "io.write(s)"},
    {"stream:write", "s = ('a'):rep(2000000)", "io.stderr:write(s)"},
    // Files.
    {"file:read", "f = io.open('/dev/zero')", "f:read('a')"},
    {"file:read", "f = io.open('/dev/zero')", "f:read()"},
    {"file:read", "f = io.open('/dev/zero')", "f:read(2000000)"},
    {"file:write", "f = io.open('/dev/null', 'w') s = ('a'):rep(2000000)", "f:write(s)"},
    {"file:seek", "f = io.open('/dev/null')", "while true do f:seek('set', 1) end"},
    {"file:close", "", "while true do io.open('/dev/null'):close() end"},
    {"io.open", "s = ('a'):rep(2000000)", "io.open(s)"},
    {"io.open", "", "local t = {} while true do t[#t + 1] = io.open('/dev/null') end"},
    {"os.execute", "s = ('a'):rep(300000)", "while true do os.execute(s) end"},
    // What the evaluator asks for.
    {"", "s = ('a'):rep(2000000)", "for i = 1, 2 do local u = s .. s end"},
    {"", "s = ('a'):rep(2000000)", "for i = 1, 2 do local u = ({})[s .. i] end"},
    {"", "s = ('a'):rep(2000000) u = s .. 'b' s = s .. 'b'",
     "for i = 1, 2 do local u = s == u, s < u end"},
    {"", "t = {} for i = 1, 1000000 do t[i] = i end",
     "for i = 1, 3 do t[1] = nil t[1] = 1 local n = #t end"},
    {"", "", "local t = {} while true do t = {t, function() return t end, 'x' .. #t} end"},
    {"", "", "local function f(a, b) end while true do f(1, {2}) end"},
};

// Ends the run, so there is no worst.
constexpr const char* kExit = "os.exit";

std::unique_ptr<LuaVM> makeHost(const char* setup) {
  LuaOptions options;
  options.supervised = true;
  options.output = options.errorOutput = [](std::string_view) {};
  auto vm = std::make_unique<LuaVM>(options);
  vm->bindFunction("same", [](LuaVM&, const Arguments& arguments) { return arguments[0]; });
  vm->bindFunction("nest", [](LuaVM& inner, const Arguments& arguments) {
    static_cast<void>(inner.call<void>(std::get<LuaFunction>(arguments[0].data)));
    return LuaValue();
  });
  EXPECT_EQ("", vm->runScriptString(setup, "setup").error) << setup;
  return vm;
}

// What ended the run; Syntax, which no run ends with, where nothing did.
Kind runWithin(LuaVM& vm, const char* work, const LuaLimits& limits) {
  vm.setLimits(limits);
  const LuaResult result = vm.runScriptString(work, "c");
  vm.setLimits({});
  return result.detail != nullptr ? result.detail->kind : Kind::Syntax;
}

TEST(LibraryBounds, OfStepsAndTimeHold) {
  for (const Case& c : kCases) {
    const std::unique_ptr<LuaVM> vm = makeHost(c.setup);
    LuaLimits limits;
    limits.steps = 1000;
    EXPECT_EQ(Kind::Steps, runWithin(*vm, c.work, limits)) << c.work;
    EXPECT_EQ(1000U, vm->usage().steps);
    limits.steps = 0;
    limits.time = std::chrono::nanoseconds(1);
    EXPECT_EQ(Kind::Time, runWithin(*vm, c.work, limits)) << c.work;
    EXPECT_EQ(kBusyOutcome, run(*vm, kBusyScript)) << c.work;
  }
}

// What is not counted for each allocation: what the system's allocator adds, a compiled pattern,
// copies of results for the host.
constexpr std::size_t kMore = std::size_t{256} << 10;
constexpr std::size_t kUncounted = std::size_t{512} << 10;

TEST(LibraryBounds, OfMemoryHold) {
  for (const Case& c : kCases) {
    const std::unique_ptr<LuaVM> vm = makeHost(c.setup);
    LuaLimits limits;
    limits.steps = internal::kSanitized ? 5'000 : 20'000;
    limits.memory = vm->usage().memory + kMore;
    const std::size_t before = refusal::startPeakBytes();
    runWithin(*vm, c.work, limits);
    EXPECT_LT(refusal::peakBytes(), before + kMore + kUncounted) << c.work;
    EXPECT_EQ(kBusyOutcome, run(*vm, kBusyScript)) << c.work;
  }
}

// The names of functions in the headings of the library's documentation.
std::set<std::string> documentedFunctions() {
  std::set<std::string> names;
  std::ifstream file("docs/library.md");
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with("### `")) continue;
    for (std::size_t at = 0; (at = line.find('`', at)) != std::string::npos; ++at) {
      const std::string rest = line.substr(at + 1);
      const std::size_t end = rest.find_first_not_of("abcdefghijklmnopqrstuvwxyz.:");
      if (end != std::string::npos && end > 0 && rest[end] == '(')
        names.insert(rest.substr(0, end));
    }
  }
  return names;
}

// How many functions the globals are or hold.
std::size_t countGlobalFunctions() {
  LuaVM vm;
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  const std::size_t count = interpreter.globals.slotOf("n");
  for (std::size_t slot = 0; slot < count; ++slot) {
    interpreter.globals.set("probe", retain(interpreter.globals.at(slot)));
    vm.runScriptString(
        "local values = {probe} if type(probe) == 'table' then values = probe end "
        "for k, v in pairs(values) do if type(v) == 'function' then n = (n or 0) + 1 end end",
        "c");
  }
  return vm.getGlobal<std::size_t>("n").value();
}

TEST(LibraryBounds, AreTestedForEveryFunction) {
  std::set<std::string> tested{kExit};
  for (const Case& c : kCases) tested.insert(c.function);
  tested.erase("");
  EXPECT_EQ(documentedFunctions(), tested);
  const auto methods = std::count_if(tested.begin(), tested.end(), [](const std::string& name) {
    return name.find(':') != std::string::npos;
  });
  EXPECT_EQ(countGlobalFunctions(), tested.size() - static_cast<std::size_t>(methods));
}

// ---- Growth -------------------------------------------------------------------------------------

// Input that is chosen to be the worst: the steps that it takes grow with a power of its length.
struct Growth {
  const char* script;  // given the length n
  int power;
};

const Growth kGrowth[] = {
    {"('a'):rep(n):find(('a'):rep(n / 2) .. 'b', 1, true)", 1},
    {"('a'):rep(n):find(('a'):rep(n / 2) .. 'b')", 1},
    {"(('a'):rep(n) .. 'b'):rep(2):find(('ab'):rep(n), 1, true)", 1},
    {"('a'):rep(n):find('a*b')", 1},
    {"('a'):rep(n):find('^a*a*b')", 2},
    {"('a'):rep(n):find('.-b')", 1},
    {"('a'):rep(n):find('[ab]*c')", 1},
    {"('a'):rep(n):find('a*a*b')", 2},
    {"('ab'):rep(n):find('(a)(b)*c')", 1},
    {"('a'):rep(n):gsub('a*', 'b')", 1},
    {"(' '):rep(n):match('^%s*(.-)%s*$')", 1},
    {"(('a '):rep(n) .. 'b'):match('^%s*(.-)%s*$')", 1},
    {"for w in ('a '):rep(n):gmatch('%a+') do end", 1},
    {"local t = {} for i = 1, n do t['k' .. i] = i end for i = 1, n do t['k' .. i] = nil end "
     "for k in pairs(t) do end",
     1},
    {"local t = {} for i = 1, n do t[i * 4294967296] = i end", 1},
    {"local t = {} for i = n, 1, -1 do t[i] = i end local x = #t", 1},
    {"local t = {} for i = 1, n do t[i] = i end for i = 1, n do t[#t] = nil end", 1},
    {"local t = {} for i = 1, n do t[i] = i end table.sort(t)", 1},
    {"local t = {} for i = 1, n do t[i] = -i end table.sort(t)", 1},
    {"local t = {} for i = 1, n do t[i] = i % 2 == 0 and i or -i end table.sort(t)", 1},
    {"local t = {} for i = 1, n do t[i] = 1 end table.sort(t)", 1},
    {"local s = '' for i = 1, n do s = s .. 'x' end", 1},
    {"local t = {} for i = 1, n do t[i] = 'x' end table.concat(t, ', ')", 1},
};

std::uint64_t stepsOf(const std::string& script, int n) {
  LuaOptions options;
  options.supervised = true;
  LuaVM vm(options);
  vm.setGlobal("n", n);
  EXPECT_EQ("", vm.runScriptString(script, "c").error) << script;
  return vm.usage().steps;
}

constexpr int kLength = internal::kSanitized ? 1000 : 4000;

TEST(LibraryBounds, GrowWithChosenInputAsPromised) {
  for (const Growth& growth : kGrowth) {
    const bool isStatement = std::string_view(growth.script).find(" do ") != std::string_view::npos;
    const std::string script = (isStatement ? "" : "local x = ") + std::string(growth.script);
    const std::uint64_t least = stepsOf(script, kLength);
    const std::uint64_t most = stepsOf(script, 4 * kLength);
    // A logarithm may come in; one power more would be four times as much.
    EXPECT_LT(most, (growth.power == 1 ? 6 : 24) * (least + 100))
        << growth.script << ": " << least << ", " << most;
  }
}

}  // namespace
}  // namespace tarvel::lua
