#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "lua/value/heap.h"
#include "tests/refusal/refused_memory.h"
#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

// Every allocation of a script or a host call is refused once, alone and with all that follow. It
// ends as without, or says that there is not enough memory; the interpreter goes on, and its end
// gives everything back. The scripts make no circles, which are never unwound: they keep the
// functions that they declare in globals of the chunk.
//
// Then one interpreter for very many runs: whatever they end with, nothing of them stays.

namespace tarvel::lua {

struct Order {
  std::string customer;
  std::vector<int> items;
  std::map<std::string, double> prices;
  std::optional<std::string> note;
};
template <>
inline constexpr auto luaRecord<Order> = record(field("customer", &Order::customer),
                                                field("items", &Order::items),
                                                maybe("prices", &Order::prices),
                                                maybe("note", &Order::note));

namespace {

using internal::Heap;
using refusal::MemoryRefusal;
using refusal::Refused;

// Short enough to be a std::string without memory.
constexpr const char* kNoMemory = "no memory";

bool saysNoMemory(std::string_view message) { return message.ends_with("not enough memory"); }

bool isNoMemory(const std::exception& error) {
  return dynamic_cast<const std::bad_alloc*>(&error) != nullptr || saysNoMemory(error.what());
}

struct Ship {
  std::string name = "a ship of some name";
  std::string join(const std::string& text) const { return name + text; }
};

LuaValue evaluate(LuaVM& vm, const Arguments& arguments) {
  const LuaResult result = vm.runScriptString(arguments.at(0).toString(), "inner");
  if (!result.ok) throw std::runtime_error(result.error);
  return result.value;
}

std::unique_ptr<LuaVM> makeHost(bool supervised) {
  const auto output = [](std::string_view) {};
  auto vm = std::make_unique<LuaVM>(
      LuaOptions{.supervised = supervised, .output = output, .errorOutput = output});
  vm->bindFunction("fail", [](LuaVM&, const Arguments&) -> LuaValue {
    throw std::runtime_error("failed for a reason of its own");
  });
  vm->bindFunction("same", [](LuaVM&, const Arguments& arguments) { return arguments.at(0); });
  vm->bindFunction("evaluate", evaluate);
  vm->bind("host.total", [](const Order& order, std::string_view, const std::vector<LuaValue>&) {
    return std::tuple(order.customer + " with a longer name", order.items, order.prices);
  });
  vm->bind("host.callBack", [](LuaVM& inner, const LuaFunction& function) {
    return inner.call<std::string>(function, std::vector<int>{1, 2}).value();
  });
  vm->defineClass<Ship>("Ship").method("join", &Ship::join).property("name", &Ship::name);
  vm->setGlobal("ship", std::make_shared<Ship>());
  return vm;
}

std::string runScript(LuaVM& vm, const std::string& source) {
  LuaResult result;
  try {
    result = vm.runScriptString(source, "c");
  } catch (const std::bad_alloc&) {
    return "threw";
  }
  if (!result.ok && (result.error.empty() || saysNoMemory(result.error))) return kNoMemory;
  return outcome(result);
}

// An outcome is never an exception. `make` allocates nothing itself.
template <class Make>
std::string textOf(const Make& make) {
  std::optional<decltype(make())> result;
  try {
    result.emplace(make());
  } catch (const std::bad_alloc&) {
    return "threw";
  }
  if (*result) return typed(toLua(**result));
  const LuaError& error = result->error();
  return saysNoMemory(error.message) ? kNoMemory : error.message;
}

struct Act {
  std::string name;
  std::function<std::string(LuaVM&)> run;
};

const Order kOrder{"somebody with a long name", {1, 2, 3}, {{"the first price", 2.5}}, "a note"};

const Act kHostCalls[] = {
    {"an interpreter",
     [](LuaVM&) {
       const std::unique_ptr<LuaVM> other = makeHost(true);
       return runScript(*other, "return ship.name");
     }},
    {"load and call",
     [](LuaVM& vm) {
       LuaFunction script;
       const std::string loaded = textOf([&] {
         auto outcome =
             vm.load("local t = {} t[order.customer] = order return t", "a name", {"order"});
         if (outcome) script = *outcome;
         return outcome;
       });
       return loaded == kNoMemory || loaded == "threw"
                  ? loaded
                  : textOf([&] { return vm.call(script, kOrder); });
     }},
    {"a text that is none",
     [](LuaVM& vm) { return textOf([&] { return vm.load("local function f() x", "c"); }); }},
    {"a call that fails",
     [](LuaVM& vm) {
       return textOf([&] { return vm.call<int>("error", "a long text, or not"); });
     }},
    {"a result that is none",
     [](LuaVM& vm) { return textOf([&] { return vm.call<Order>("same", kOrder.items); }); }},
    {"a nested call",
     [](LuaVM& vm) {
       return runScript(vm, "return host.callBack(function(t) return t[1] .. 'and some text' end)");
     }},
    {"records",
     [](LuaVM& vm) {
       vm.setGlobal("shop.orders", std::vector<Order>{kOrder, kOrder});
       return textOf([&] { return vm.getGlobal<std::vector<Order>>("shop.orders"); });
     }},
    {"objects",
     [](LuaVM& vm) {
       vm.setGlobal("boats.first", std::make_shared<Ship>());
       return runScript(vm,
                        "boats.first.name = 'a new name of some length' "
                        "return boats.first:join(ship:join('another text'))");
     }},
    {"values",
     [](LuaVM& vm) {
       vm.setGlobal(
           std::string("value"),
           sequence(object({{"a key of some length", sequence(LuaValue("text of some length"))}})));
       const LuaValue back = vm.getGlobal("value").value();
       return typed(back) + back.toString();
     }},
    {"a copy of a value",
     [](LuaVM&) {
       LuaValue target("short");
       try {
         target = LuaValue(std::string("a text of some length"));
         target = sequence(target, integer(1));
         target = object({{"a", target}});
       } catch (const std::bad_alloc&) {
         const std::string* const text = std::get_if<std::string>(&target.data);
         const bool isWhole = text == nullptr || text->size() == 5 || text->size() == 21;
         return std::string(isWhole ? kNoMemory : "changed");
       }
       return typed(target);
     }},
    {"handles that stay",
     [](LuaVM& vm) {
       const LuaValue handle =
           vm.runScriptString("local t = {{}} return {function() return t end}", "c").value;
       vm.setGlobal("handle", handle);
       return handle.type == LuaValue::Type::Nil ? kNoMemory : runScript(vm, "return #handle[1]()");
     }},
};

const char* const kScripts[] = {
    // Values of every kind in locals, globals, tables and arguments.
    "g = {1, 'a' .. 'b', {x = 'c' .. 1}, print, io.stdout, pairs({'d' .. 2})} local l = {g, g} "
    "return #l",
    "local t = {} for i = 1, 60 do t['k' .. i % 20] = {i} t[i] = 'v' .. i t[i - 3] = nil end "
    "return t.k7, #t",
    "local s = '' for i = 1, 60 do s = s .. i .. 'x' .. tostring(i) end return s",
    "local s = 'a' .. 1 local u = s s = s .. u .. s return s == u",
    "a, b, c = ('x' .. 1), {}, 'y' .. 2, 'z' .. 3 a, b = b, a",
    "t = {} t.x, t['y' .. 1], t[{} and 3] = 'a' .. 1, {'b' .. 2}, 'c' .. 3 t.x = nil",
    // Calls: too few and too many arguments, several results, methods, recursion.
    "function f(a, b, c) return b, a, 'r' .. 1 end local x, y = f('p' .. 1, {}, 'q', 'extra' .. 2) "
    "f() f(f(1, f('s' .. 1))) return f(x, f(y))",
    "function f(n, t) if n == 0 then return t end return f(n - 1, {t, 'n' .. n}) end "
    "return #f(40)[1][2]",
    "o = {items = {}} function o:add(x) self.items[#self.items + 1] = x return self end "
    "o:add('a' .. 1):add({}):add(o.items[1])",
    // Closures and their environments.
    "function counter() local n, t = 0, {} return function() n = n + 1 t[n] = 'v' .. n return t "
    "end end c = counter() c() c() d = counter() return #d()",
    // Every way out of blocks and loops.
    "function f(x) for k, v in pairs({'a' .. 1, {}, 'c' .. 3}) do local u = {v} while true do "
    "local w = {u} if x then return w, u, k end break end if k == 2 then break end end end "
    "f(true) f(false)",
    // Errors in the middle of everything, caught and not; more of them: kFailingOperands.
    "for i = 1, 3 do local t = {i} pcall(function() local u = {t, 'a' .. i} error('e' .. i) end) "
    "end",
    "local x = 'abc' .. 'def' .. function() return 'ghi' end end",
    "'unfinished",
    "return pcall(error, 'a text' .. ' of some length')",
    // Exits.
    "function f() local t = {} pcall(pcall, os.exit, 2) end local l = {f('x' .. 1)}",
    // Endless recursion.
    "function f(t) return {f({t, 'x' .. 1})} end f()",
    "function f(t) local l = {t} pcall(f, l) error('x' .. 1) end f({})",
    // An assignment that fails stores nothing, also where it would have appended in place.
    "local s = 'a' .. 1 local ok = pcall(function() s = s .. 'b' .. ('c'):rep(30) .. #s end) "
    "if not ok then ok = s == 'a1' end return ok",
    "t = {1, 2} local ok = pcall(function() t[#t + 1], t.x = {3}, {4} end) "
    "return ok or #t == 2 and t.x == nil or #t == 3 and t.x == nil or false",
    // The host in between.
    "local t = {same({'a' .. 1, {x = same}}), same('b' .. 2)} h = same(same)",
    "local t = {'a' .. 1} pcall(fail, t) fail({t})",
    "same(pairs({'a' .. 1}))",
    "local t = {'a' .. 1} t[2] = evaluate([[local u = {'b' .. 2} return {u, x}]]) error(#t)",
    "local t = {'a' .. 1} return evaluate('local u = {1} os.exit(4)'), evaluate('local u = {} + "
    "1')",
    "local a, b = host.total({customer = 'c' .. 1, items = {1, 2}, prices = {one = 1}}, 'x', {{}}) "
    "return {a, b}",
    "return host.total({customer = 'c' .. 1, items = {1, 'x'}}, 'x', {})",
    "local s = ship s.name = 'n' .. ('x'):rep(40) return s:join('y') .. s.name, s.join == s.join",
    // The library.
    "print({'a', {b = 'c' .. 1}}, ('x'):rep(50), print) io.write('a', 1, 2.5, ('b'):rep(50)) "
    "io.stderr:write('c')",
    "return string.format('%s %d %f %%', 'a' .. ('b'):rep(40), 3, 2.5), tostring({} ~= {}), "
    "tonumber('12' .. 3), ('abc'):sub(2)",
    "return ('some words in it'):gsub('%a+', 'x'), ('key = value'):match('(%a+) = (%a+)'), "
    "('a,b;c'):find('[,;]()'), ('x'):rep(3)",
    "local n = 0 for k, v in ('a=1, b=2, c=3'):gmatch('(%w+)=(%w+)') do n = n + #k + #v end return "
    "n",
    "return ('xyxyxy'):find('(xy)*(z|)'), ('aab'):match('((a*)b?)*c?'), ('ab'):find('[a-'), 1",
    "local n = 0 for m in ('aab abb'):gmatch('(a|b)(a*)+') do n = n + #m end return n",
    "local t = {} for i = 1, 30 do t[i] = 'w' .. i * 7 % 30 end table.sort(t) "
    "table.sort(t, function(a, b) return #a .. b > #b .. a end) table.remove(t, 3) "
    "return table.concat(t, ', '), table.concat({1, 2.5, 'x'})",
    "for k, v in pairs({1, 2, x = 3, y = {}}) do local t = {k, v} end for i, v in ipairs({{}, {}}) "
    "do local t = {v} end",
    "local p = 'build-none/' .. ('x'):rep(30) local f, m = io.open(p) return f, m",
    "local f = io.open('/dev/null', 'w') f:write('text', 1, ('x'):rep(40000)) f:close() "
    "f = io.open('/dev/zero') local s = f:read(40000) return #s, #f:read(3), f:seek('set')",
    "local f = io.open('README.md') return #f:read(), f:read('n'), #f:read('a') > 3, f:read()",
};

// So many of a larger number are tried, at even distances: long scripts repeat what they do.
constexpr std::size_t kMostTried = internal::kSanitized ? 70 : 200;

class RefusedMemory : public ::testing::Test {
 protected:
  // What the act came to with this allocation refused; sets whether it happened at all.
  std::string runRefused(const Act& act, std::size_t number, Refused which, bool supervised,
                         std::size_t& count) {
    const std::size_t heapBlocks = Heap::liveBlocks();
    const std::size_t abandoned = Heap::abandonedBlocks();
    const std::size_t hostBlocks = refusal::liveHostBlocks();
    std::string text;
    {
      const std::unique_ptr<LuaVM> vm = makeHost(supervised);
      {
        const MemoryRefusal refusal(number, which);
        try {
          text = act.run(*vm);
        } catch (const std::exception& error) {
          text = kNoMemory;
          if (!isNoMemory(error)) throw;
        }
        count = MemoryRefusal::count();
      }
      EXPECT_EQ("i3", run(*vm, "local t = {'a' .. 12} return #t[1]"));
      static_cast<void>(act.run(*vm));
      // Slabs hide the rest.
      if (internal::kCheckedHeap) memory_ = vm->usage().memory;
    }
    EXPECT_EQ(heapBlocks, Heap::liveBlocks());
    EXPECT_EQ(abandoned, Heap::abandonedBlocks());
    // The text that is returned is one block more, if it is long.
    EXPECT_EQ(hostBlocks + (text.size() > std::string().capacity() ? 1 : 0),
              refusal::liveHostBlocks());
    return text;
  }

  void refuseEach(const Act& act) {
    for (const Refused which : {Refused::Alone, Refused::WithAllLater}) {
      const bool supervised = which == Refused::Alone;
      std::size_t count = 0;
      runRefused(act, SIZE_MAX, which, supervised, count);  // what is made only once
      const std::string expected = runRefused(act, SIZE_MAX, which, supervised, count);
      EXPECT_NE(kNoMemory, expected) << act.name;
      const std::size_t memory = memory_;
      const std::size_t step = count / kMostTried + 1;
      std::size_t ignored = 0;
      for (std::size_t number = 0; number < count; number += step) {
        const std::string text = runRefused(act, number, which, supervised, ignored);
        EXPECT_TRUE(text == expected || text == kNoMemory ||
                    text.find("not enough memory") != std::string::npos)
            << text << "\ninstead of " << expected;
        EXPECT_EQ(memory, memory_) << "what the interpreter holds after the next time";
        if (HasFailure())
          FAIL() << act.name << "\nallocation " << number << " of " << count << " refused"
                 << (which == Refused::Alone ? "" : ", and all later ones");
      }
      total_ += count;
    }
  }

  std::size_t total_ = 0;
  std::size_t memory_ = 0;  // that the interpreter held in the end
};

TEST_F(RefusedMemory, EndsScripts) {
  internal::runOnStack(std::size_t{512} << 10, [this] {
    for (const char* const script : kScripts) {
      const std::string source = script;
      refuseEach({source, [&source](LuaVM& vm) { return runScript(vm, source); }});
    }
  });
  RecordProperty("allocations", std::to_string(total_));
}

TEST_F(RefusedMemory, DoesNotKeepAnInterpreterFromEnding) {
  const std::size_t heapBlocks = Heap::liveBlocks();
  std::unique_ptr<LuaVM> vm = makeHost(true);
  for (const char* const script : kScripts) runScript(*vm, script);
  runScript(*vm, "t = {{}, file = io.open('/dev/null', 'w')} t.file:write('x') t.t = t");
  {
    const MemoryRefusal refusal(0, Refused::WithAllLater);
    vm.reset();
  }
  EXPECT_EQ(heapBlocks, Heap::liveBlocks());
}

TEST_F(RefusedMemory, EndsHostCalls) {
  for (const Act& act : kHostCalls) refuseEach(act);
  RecordProperty("allocations", std::to_string(total_));
}

// ---- What stays of many runs --------------------------------------------------------------------

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
  LuaVM vm(
      {.supervised = true,
       .limits = {.steps = 100, .memory = std::size_t{1} << 20, .stack = std::size_t{16} << 10},
       .output = [](std::string_view) {}});
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
