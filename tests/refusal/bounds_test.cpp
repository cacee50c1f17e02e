#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <latch>
#include <memory>
#include <regex>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "lua/lua_vm_impl.h"
#include "lua/value/heap.h"
#include "tests/refusal/refused_memory.h"
#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

// Scripts that mean no good, and every function of the library at its worst, under bounds that they
// would exceed: of steps, of time, and of memory, where the memory is what the process really
// takes. No pcall helps them, the interpreter goes on, and nothing leaks.

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
    {"string.find", "s = ('a'):rep(2000000)", "return s:find('[%a]+%d')"},
    {"string.find", "s = ('a'):rep(400000) n = ('a'):rep(200000) .. 'b'",
     "return s:find(n, 1, true)"},
    {"string.find", "s = ('a'):rep(400000) n = ('a'):rep(2000) .. 'b()'", "return s:find(n)"},
    {"string.find", "s = 'b' .. ('a'):rep(40)", "return s:find('(a*)*[bc]$')"},
    {"string.find", "s = ('a'):rep(40)",
     "return s:find(('a?'):rep(40) .. ('a'):rep(39) .. '[bc]')"},
    {"string.find", "s = ('a'):rep(2000)", "return s:find('a*a*a*[bc]')"},
    {"string.find", "s = ('a'):rep(2000)", "return s:find('a-a-a-[bc]')"},
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

// Each would run for minutes, or for ever, or take all memory.
const char* const kStrangers[] = {
    // Loops.
    "while true do end",
    "for i = 1, 9000000000000000000 do end",
    "for i = 1, 2, 0.00000000000000000001 do end",
    "local t = {1} while true do for k, v in pairs(t) do t[k] = v end end",
    "while true do for w in string.gmatch('a b c', '%a') do end end",
    "while true do pcall(error, 'x') end",
    "local function f() end while true do f() end",
    "local o = {} function o:m() return self end while true do o:m():m() end",
    // Recursion.
    "function f() return 1 + f() end f()",
    "local t = {3, 2, 1} local function c(a, b) table.sort({3, 2, 1}, c) return a < b end "
    "table.sort(t, c)",
    "function f() pcall(f) pcall(f) end f()",
    "function f() local ok = pcall(f) while true do end end f()",
    "function f(n) if n > 0 then return n, f(n - 1) end end while true do f(10000) end",
    "o = {} function o:m(x) pcall(o.m, o, {x}) return self:m({x}) end while true do pcall(o.m, o) "
    "end",
    // Memory.
    "local s = 'x' while true do s = s .. s end",
    "local t, i = {}, 0 while true do i = i + 1 t['k' .. i] = i end",
    "local t = {} while true do t[#t + 1] = pairs(t) end",
    // The library.
    "local t = {} for i = 1, 100000 do t[i] = i end while true do table.sort(t, function() return "
    "true end) end",
    "while true do table.sort({3, 1, 2}, function(a, b) while a do local t = {b} end end) end",
    "while true do pcall(table.sort, {3, 1, 2}, function(a, b) return pcall(error, {a, b}) end) "
    "end",
    // The host's functions.
    "while true do nest(function() return 1 end) end",
    "while true do pcall(nest, function() error('x') end) end",
    "local function f() nest(f) end while true do pcall(f) end",
    "while true do list() end",
    "while true do world:step(1) world.speed = world.speed + 1 end",
    "while true do run('return 1') end",
    "while true do run('while true do end') end",
    "while true do pcall(run, [[while true do run('while true do end') end]]) end",
    "local function f() return run('return 1'), pcall(f), f() end while true do pcall(f) end",
};

std::vector<Case> allCases() {
  std::vector<Case> cases(std::begin(kCases), std::end(kCases));
  for (const char* const script : kStrangers) cases.push_back({"", "", script});
  return cases;
}

struct World {
  double speed = 0;
  void step(double seconds) { speed += seconds; }
};

// An interpreter that has run the setup. When the host goes, it takes everything along.
class Host {
 public:
  explicit Host(const char* setup) {
    const auto output = [](std::string_view) {};
    vm_ = std::make_unique<LuaVM>(
        LuaOptions{.supervised = true, .output = output, .errorOutput = output});
    vm_->bindFunction("same", [](LuaVM&, const Arguments& arguments) { return arguments[0]; });
    // What a nested run ended with is not the script's: the host goes on, and its caller must not.
    vm_->bindFunction("nest", [](LuaVM& inner, const Arguments& arguments) {
      static_cast<void>(inner.call<void>(std::get<LuaFunction>(arguments[0].data)));
      return LuaValue();
    });
    vm_->bind("run", [](LuaVM& inner, const std::string& source) {
      return inner.runScriptString(source, "inner").ok;
    });
    vm_->bind("list", [] { return std::vector<int>(100, 1); });
    vm_->defineClass<World>("World").method("step", &World::step).property("speed", &World::speed);
    vm_->setGlobal("world", std::make_shared<World>());
    EXPECT_EQ("", vm_->runScriptString(setup, "setup").error) << setup;
  }
  ~Host() {
    vm_.reset();
    EXPECT_EQ(blocksBefore_, internal::Heap::liveBlocks());
  }

  LuaVM& vm() { return *vm_; }

  // What ended the run; Syntax, which no run ends with, where nothing did.
  Kind endOf(const std::string& work, const LuaLimits& limits) {
    vm_->setLimits(limits);
    const LuaResult result = vm_->runScriptString(work, "c");
    steps_ = vm_->usage().steps;
    vm_->setLimits({});
    EXPECT_EQ(kBusyOutcome, run(*vm_, kBusyScript)) << work;
    return result.detail != nullptr ? result.detail->kind : Kind::Syntax;
  }
  // That the latest run took.
  std::uint64_t steps() const { return steps_; }

 private:
  const std::size_t blocksBefore_ = internal::Heap::liveBlocks();
  std::unique_ptr<LuaVM> vm_;
  std::uint64_t steps_ = 0;
};

// With memory that no test needs, and stack that few calls need.
LuaLimits limitsOf(std::uint64_t steps) {
  return {.steps = steps, .memory = std::size_t{128} << 20, .stack = std::size_t{1} << 20};
}

std::string protectedForm(const std::string& work) {
  return "while true do pcall(function() " + work + " end) end";
}

constexpr std::uint64_t kManySteps = internal::kSanitized ? 5'000 : 20'000;

TEST(Bounds, OfStepsAndTimeHold) {
  for (const Case& c : allCases()) {
    SCOPED_TRACE(c.work);
    Host host(c.setup);
    EXPECT_EQ(Kind::Steps, host.endOf(c.work, limitsOf(200)));
    EXPECT_EQ(200U, host.steps());
    EXPECT_EQ(Kind::Steps, host.endOf(protectedForm(c.work), limitsOf(kManySteps)));
    EXPECT_EQ(kManySteps, host.steps());
    EXPECT_EQ(Kind::Time, host.endOf(c.work, {.time = std::chrono::nanoseconds(1)}));
  }
}

TEST(Bounds, EndWhenTheHostStopsThem) {
  for (const char* const script : kStrangers) {
    Host host("");
    std::stop_source source;
    LuaLimits limits = limitsOf(0);
    limits.stop = source.get_token();
    std::latch started(1);
    host.vm().bind("started", [&] { started.count_down(); });
    const std::jthread other([&] {
      started.wait();
      source.request_stop();
    });
    EXPECT_EQ(Kind::Stopped, host.endOf("started() " + protectedForm(script), limits)) << script;
  }
}

// What is not counted for each allocation: what the system's allocator adds, a compiled pattern,
// copies of results for the host.
constexpr std::size_t kMore = std::size_t{256} << 10;
constexpr std::size_t kUncounted = std::size_t{512} << 10;

TEST(Bounds, OfMemoryHold) {
  for (const Case& c : allCases()) {
    Host host(c.setup);
    LuaLimits limits = limitsOf(kManySteps);
    limits.memory = host.vm().usage().memory + kMore;
    host.vm().setLimits(limits);
    const std::size_t before = refusal::startPeakBytes();
    host.vm().runScriptString(c.work, "c");
    EXPECT_LT(refusal::peakBytes(), before + kMore + kUncounted) << c.work;
  }
}

// The names of functions in the headings of the library's documentation.
std::set<std::string> documentedFunctions() {
  const std::regex function("`([a-z.:]+)\\(");
  std::set<std::string> names;
  std::ifstream file("docs/library.md");
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with("### ")) continue;
    for (std::sregex_iterator at(line.begin(), line.end(), function), end; at != end; ++at)
      names.insert(at->str(1));
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

TEST(Bounds, AreTestedForEveryFunction) {
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

// Input that is chosen to be the worst, of the length n, and the steps still grow with n alone.
const char* const kGrowth[] = {
    "('a'):rep(n):find(('a'):rep(n / 2) .. 'b', 1, true)",
    "('a'):rep(n):find(('a'):rep(n / 2) .. 'b')",
    "(('a'):rep(n) .. 'b'):rep(2):find(('ab'):rep(n), 1, true)",
    "('a'):rep(n):find('a*b')",
    "('a'):rep(n):find('.-b')",
    "('ab'):rep(n):find('(a)(b)*c')",
    "('a'):rep(n):gsub('a*', 'b')",
    "(('a '):rep(n) .. 'b'):match('^%s*(.-)%s*$')",
    "for w in ('a '):rep(n):gmatch('%a+') do end",
    ("local t = {} for i = 1, n do t['k' .. i] = i end for i = 1, n do t['k' .. i] = nil end "
     "for k in pairs(t) do end"),
    "local t = {} for i = 1, n do t[i * 4294967296] = i end",
    "local t = {} for i = n, 1, -1 do t[i] = i end local x = #t",
    "local t = {} for i = 1, n do t[i] = i end for i = 1, n do t[#t] = nil end",
    "local t = {} for i = 1, n do t[i] = i end table.sort(t)",
    "local t = {} for i = 1, n do t[i] = -i end table.sort(t)",
    "local t = {} for i = 1, n do t[i] = i % 2 == 0 and i or -i end table.sort(t)",
    "local t = {} for i = 1, n do t[i] = 1 end table.sort(t)",
    "local s = '' for i = 1, n do s = s .. 'x' end",
    "local t = {} for i = 1, n do t[i] = 'x' end table.concat(t, ', ')",
};

std::uint64_t stepsOf(const std::string& script, int n) {
  LuaVM vm({.supervised = true});
  vm.setGlobal("n", n);
  EXPECT_EQ("", vm.runScriptString(script, "c").error) << script;
  return vm.usage().steps;
}

constexpr int kLength = internal::kSanitized ? 1000 : 4000;

TEST(Bounds, GrowWithChosenInputAsPromised) {
  for (const std::string work : kGrowth) {
    const bool isStatement = work.find(" do ") != std::string::npos;
    const std::string script = (isStatement ? "" : "local x = ") + work;
    const std::uint64_t least = stepsOf(script, kLength);
    const std::uint64_t most = stepsOf(script, 4 * kLength);
    // A logarithm may come in; a square would be sixteen times as much.
    EXPECT_LT(most, 6 * (least + 100)) << work << ": " << least << ", " << most;
  }
}

}  // namespace
}  // namespace tarvel::lua
