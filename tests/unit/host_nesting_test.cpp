#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>
#include <unistd.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "lua/value/heap.h"
#include "lua/value/host_stack.h"
#include "tests/unit/switched_stack.h"
#include "tests/unit/value_support.h"

// Scripts reach the host in many ways, and the host may do there whatever it may do outside. Every
// way with every deed, and a second way inside of that. Then the end of interpreters, and what runs
// while objects are destroyed.

namespace tarvel::lua {

struct Nest {
  // What the host does when a script reaches it; nothing at other times.
  static inline std::function<void()> deed;

  static void reach() {
    if (const std::function<void()> now = std::exchange(deed, {})) now();
  }
};

// Made in the middle of a conversion.
struct Converted {
  Converted() { Nest::reach(); }
  int x = 0;
};
template <>
inline constexpr auto luaRecord<Converted> = record(field("x", &Converted::x));

namespace {

using internal::Heap;
using internal::SwitchedStack;
using Action = std::function<void()>;

struct Thing {
  int method(int x) const {
    Nest::reach();
    return x;
  }
  int value() const { return method(0); }
  void setValue(int x) { method(x); }
};

struct Held {
  ~Held() { Nest::reach(); }
};

struct ForeignException {};

struct Way {
  const char* code;
  bool mayThrow = true;  // a destructor may not
};

const Way kWays[] = {
    {"host()"},
    {"bound(1)"},
    {"local x = {host(), bound(1)}"},
    {"pcall(host)"},
    {"thing:method(1)"},
    {"local x = thing.value"},
    {"thing.value = 3"},
    {"print('x')"},
    {"io.stderr:write('x')"},
    {"io.write('x', 'y')"},
    {"convert({x = 1})"},
    {"table.sort({3, 1, 2}, function(a, b) host() return a < b end)"},
    {"for k, v in pairs({1, 2}) do bound(k) end"},
    {"local t = {held} held = nil t[1] = 1", false},
    {"local t = {object, {object}} object = nil t = nil", false},
    {"local function f(o) object = nil o = tostring(o) .. tostring({o}) end f(object)", false},
    {"s = 'a' .. 1 local function take() local o = object object = nil return 'x' end "
     "s = s .. take() .. s",
     false},
    {"local f = held held = nil local ok, message = pcall(function() local g = f f = nil "
     "error('x') "
     "end) if message ~= 'x' then a = message end",
     false},
    {"local function deep(n, f) if n > 0 then return deep(n - 1, f) end held, f = nil end "
     "deep(50)",
     false},
};

constexpr const char* kBefore = "local a, b, c = {1}, 'x' .. 'y', {{3}} ";
constexpr const char* kAfter = " local d = {4} return {a, b, c, d}";
constexpr const char* kExpected = "{{1}, xy, {{3}}, {4}}";

class HostNesting : public ::testing::Test {
 protected:
  HostNesting() { begin(); }
  ~HostNesting() override {
    vm_.reset();
    EXPECT_EQ(blocksBefore_, Heap::liveBlocks());
    EXPECT_EQ(abandonedBefore_, Heap::abandonedBlocks());
  }

  void begin() {
    const auto output = [](std::string_view) { Nest::reach(); };
    vm_ = std::make_unique<LuaVM>(LuaOptions{.supervised = true,
                                             .limits = {.stack = std::size_t{32} << 10},
                                             .output = output,
                                             .errorOutput = output});
    vm_->bindFunction("host", [](LuaVM&, const std::vector<LuaValue>&) {
      Nest::reach();
      return LuaValue();
    });
    vm_->bind("bound", [](int x) {
      Nest::reach();
      return std::tuple(x, x);
    });
    vm_->bind("convert", [](const Converted&) {});
    vm_->defineClass<Thing>("Thing")
        .method("method", &Thing::method)
        .property("value", &Thing::value, &Thing::setValue);
    vm_->defineClass<Held>("Held");
    vm_->setGlobal("thing", std::make_shared<Thing>());
  }

  static std::string around(const Way& way) { return kBefore + std::string(way.code) + kAfter; }

  void arm(LuaVM& vm, std::function<void()> deed) {
    vm.setGlobal("object", std::make_shared<Held>());
    vm.bindFunction("held", [held = std::make_shared<Held>()](
                                LuaVM&, const std::vector<LuaValue>&) { return LuaValue(); });
    Nest::deed = std::move(deed);
  }

  void checkEveryWay(const std::function<void(const Action&)>& within);

  const std::size_t blocksBefore_ = Heap::liveBlocks();
  const std::size_t abandonedBefore_ = Heap::abandonedBlocks();
  std::unique_ptr<LuaVM> vm_;
};

struct Deed {
  const char* name;
  std::function<void(LuaVM&, const std::string& script)> act;
};

std::string textOf(const LuaOutcome<LuaValue>& outcome) {
  return outcome ? (*outcome).toString() : outcome.error().toString();
}

// The script reaches the host again.
const Deed kDeeds[] = {
    {"runs",
     [](LuaVM& vm, const std::string& script) {
       EXPECT_EQ(kExpected, vm.runScriptString(script, "inner").value.toString());
     }},
    {"loads and calls",
     [](LuaVM& vm, const std::string& script) {
       const LuaFunction function = vm.load("for i = 1, 2 do y = i end " + script, "inner").value();
       EXPECT_EQ(kExpected, textOf(vm.call(function)));
       EXPECT_EQ(kExpected, textOf(vm.call(function, 1, "x", std::vector<int>(50, 1))));
     }},
    {"fails",
     [](LuaVM& vm, const std::string& script) {
       vm.setGlobal("inner", vm.load(script, "inner").value());
       EXPECT_EQ("c:1: 4 text",
                 vm.runScriptString("local t = {'a' .. 1} error(#inner() .. ' text')", "c").error);
     }},
    {"exits",
     [](LuaVM& vm, const std::string& script) {
       vm.setGlobal("inner", vm.load(script, "inner").value());
       EXPECT_EQ(3, vm.runScriptString("local t = {inner()} pcall(os.exit, 3)", "c").exitCode);
     }},
    {"overflows",
     [](LuaVM& vm, const std::string& script) {
       vm.setGlobal("inner", vm.load(script, "inner").value());
       EXPECT_EQ(
           "c:1: stack overflow",
           vm.runScriptString("local function f(t) inner() return {f({t})} end f()", "c").error);
     }},
    {"runs by way of another interpreter",
     [](LuaVM& vm, const std::string& script) {
       LuaVM other;
       other.bind("run", [&] { return vm.runScriptString(script, "inner").value.toString(); });
       EXPECT_EQ(kExpected, other.runScriptString("return run()", "other").value.toString());
     }},
    {"runs at the end of another interpreter",
     [](LuaVM& vm, const std::string& script) {
       auto other = std::make_shared<LuaVM>();
       const auto last = [&](void*) {
         EXPECT_EQ(kExpected, vm.runScriptString(script, "inner").value.toString());
       };
       other->bind("run", [held = std::shared_ptr<void>(nullptr, last)] {});
       other->runScriptString("t = {run} run = nil", "other");
     }},
    {"moves values",
     [](LuaVM& vm, const std::string& script) {
       vm.setGlobal("a.b.c", std::vector<std::string>(40, "text"));
       EXPECT_EQ(40u, vm.getGlobal<std::vector<std::string>>("a.b.c").value().size());
       vm.bind("later", [] { return 5; });
       EXPECT_EQ(5, vm.call<int>("later").value());
       vm.defineClass<Thing>("Thing").method("another", &Thing::method);
       vm.runScriptString(script, "inner");
     }},
};

// `within` runs what the host does.
void HostNesting::checkEveryWay(const std::function<void(const Action&)>& within) {
  for (const Way& outer : kWays) {
    for (const Deed& deed : kDeeds) {
      for (const Way& inner : kWays) {
        int reached = 0;
        arm(*vm_, [&] {
          ++reached;
          arm(*vm_, [&] {
            ++reached;
            EXPECT_EQ("{1}",
                      vm_->runScriptString("local t = {1} return t", "third").value.toString());
          });
          within([&] { deed.act(*vm_, around(inner)); });
        });
        const LuaResult result = vm_->runScriptString(around(outer), "outer");
        EXPECT_EQ(kExpected, result.ok ? result.value.toString() : result.error)
            << outer.code << '\n'
            << deed.name << '\n'
            << inner.code;
        EXPECT_EQ(2, reached) << outer.code << '\n' << deed.name << '\n' << inner.code;
        if (HasFailure()) return;
      }
    }
  }
}

TEST_F(HostNesting, OfEveryWayInEveryWay) {
  checkEveryWay([](const Action& deed) { deed(); });
}

// The script runs on one, and what the host does on another.
TEST_F(HostNesting, OnStacksThatTheHostSwitchesTo) {
  if (internal::kWideFrames) GTEST_SKIP() << SwitchedStack::kWhyNot;
  const Action* deed = nullptr;
  SwitchedStack deeds(std::size_t{512} << 10, [&] { (*deed)(); });
  SwitchedStack scripts(std::size_t{512} << 10, [&] {
    checkEveryWay([&](const Action& next) {
      deed = &next;
      deeds.begin();
    });
  });
  scripts.begin();
}

// What the host throws there ends the run, or passes through it; the interpreter goes on.
TEST_F(HostNesting, OfExceptions) {
  for (const Way& way : kWays) {
    if (!way.mayThrow) continue;
    const bool isCaught = std::string_view(way.code).starts_with("pcall");
    arm(*vm_, [] { throw std::runtime_error("no"); });
    const LuaResult result = vm_->runScriptString(around(way), "c");
    EXPECT_EQ(isCaught, result.ok) << way.code;
    EXPECT_TRUE(result.ok || result.error.ends_with("no")) << way.code << ": " << result.error;
    arm(*vm_, [] { throw ForeignException(); });
    EXPECT_THROW(vm_->runScriptString(around(way), "c"), ForeignException) << way.code;
    const LuaFunction function = vm_->load(around(way), "c").value();
    arm(*vm_, [] { throw ForeignException(); });
    EXPECT_THROW(static_cast<void>(vm_->call(function)), ForeignException) << way.code;
    EXPECT_EQ(kExpected, textOf(vm_->call(function))) << way.code;
  }
}

// The interpreter ends when the run has ended that the host destroys its LuaVM in.
TEST_F(HostNesting, OfTheEnd) {
  vm_.reset();
  for (const Way& way : kWays) {
    begin();
    LuaVM& vm = *vm_;
    arm(vm, [this, &vm] {
      arm(vm, [this] { vm_.reset(); });
      EXPECT_EQ("{{1}}", vm.runScriptString("host() return {{1}}", "inner").value.toString());
    });
    const std::string script = kBefore + std::string(way.code) +
                               " bound(1) local d = string.rep('x', 3) return {a, b, c, d}";
    EXPECT_EQ("{{1}, xy, {{3}}, xxx}", vm.runScriptString(script, "c").value.toString())
        << way.code;
    EXPECT_EQ(nullptr, vm_);
    EXPECT_EQ(blocksBefore_, Heap::liveBlocks()) << way.code;
  }
}

// ---- The end of an interpreter, and what runs while objects are destroyed -----------------------

using Arguments = std::vector<LuaValue>;

// The descriptor that the next file would get.
int nextDescriptor() {
  const int descriptor = dup(STDERR_FILENO);
  close(descriptor);
  return descriptor;
}

TEST(InterpreterEnd, ReturnsWhatCirclesHold) {
  const char* const circles[] = {
      "t = {host} t.t = t",
      "local t = {} t.f = function() return t, host end",
      "local f f = function() return f, host end",
      "local even local function odd() return even, host end even = function() return odd end",
      "io.io = io io.host = host string.string = {string, host}",
      "local t = {pairs({host}), io.stdout, io.stdout.write} t.t = t",
      "local own = on on(function() return own, host end)",
      "on(function() return on, host end)",
      "local t = {io.open('/dev/null', 'w')} t.t = t t.write = t[1].write t.h = host",
  };
  const int descriptor = nextDescriptor();
  for (const char* const script : circles) {
    const auto held = std::make_shared<int>(0);
    LuaValue handle;
    {
      LuaVM vm;
      vm.bind("host", [held] {});
      vm.bindFunction("on", [held, callbacks = std::make_shared<Arguments>()](
                                LuaVM&, const Arguments& arguments) {
        callbacks->push_back(arguments.at(0));
        return LuaValue();
      });
      EXPECT_TRUE(vm.runScriptString(script, "c").ok) << script;
      handle = vm.runScriptString("return function() return t, host end", "c").value;
    }
    EXPECT_EQ(1, held.use_count()) << script;
    EXPECT_EQ("[function <anonymous>]", handle.toString());
  }
  EXPECT_EQ(descriptor, nextDescriptor());
}

// Values that reach the host in such a run go when the host's function is done with them, also if
// the function that is destroyed was part of a public value.
TEST(Destructors, DoNotKeepThePublicValuesOfTheirRuns) {
  LuaVM vm;
  const auto counted = std::make_shared<int>(0);
  vm.bindFunction("ignore", [](LuaVM&, const Arguments&) { return LuaValue(); });
  vm.bind("counted", [counted] {});
  long countInside = 0;
  const auto end = [&](void*) {
    vm.runScriptString("ignore({counted}) counted = nil", "inner");
    countInside = counted.use_count();
  };
  vm.bind("held", [held = std::shared_ptr<void>(nullptr, end)] {});
  vm.runScriptString("local h = held held = nil return {{h}}", "outer");
  EXPECT_EQ(1, countInside);
}

// A destructor may run a script while the globals go, and is told when it is too late for that.
TEST(Destructors, AndTheEndOfTheInterpreter) {
  std::vector<std::string> outcomes;
  {
    LuaVM vm;
    const auto bind = [&](const char* name) {
      const std::shared_ptr<void> held(nullptr, [&](void*) {
        const LuaResult result = vm.runScriptString("late = {{}} return 'ran'", "inner");
        outcomes.push_back(result.ok ? result.value.toString() : result.error);
        vm.setGlobal("late", LuaValue("x"));
      });
      vm.bind(name, [held] {});
    };
    bind("inGlobal");
    bind("inCircle");
    EXPECT_TRUE(vm.runScriptString("t = {inCircle} t.t = t inCircle = nil", "c").ok);
  }
  EXPECT_EQ((std::vector<std::string>{"ran", "the interpreter has ended"}), outcomes);
}

// The host destroys the last thing that refers to an interpreter: a function that holds it.
TEST(InterpreterEnd, ComesWithTheFunctionThatHoldsTheLuaVm) {
  const char* const scripts[] = {
      "local f = hold hold = nil return f",
      "local f = hold hold = nil return {{f}, x = f}",
      "local f = hold hold = nil return function() return f end",
  };
  for (const char* const script : scripts) {
    const auto held = std::make_shared<int>(0);
    auto vm = std::make_shared<LuaVM>();
    vm->bind("hold", [vm, held] {});
    LuaValue handle = vm->runScriptString(script, "c").value;
    vm.reset();
    EXPECT_EQ(2, held.use_count());
    handle = LuaValue();
    EXPECT_EQ(1, held.use_count());
  }
}

// What waits to be destroyed together with a host's function may belong to an interpreter that goes
// with that function, in a run or at the end of another interpreter.
TEST(InterpreterEnd, LeavesWhatWaitsToBeDestroyed) {
  for (const bool inARun : {false, true}) {
    LuaVM vm;
    auto doomed = std::make_shared<LuaVM>();
    struct {
      std::shared_ptr<void> last;
      LuaValue first;
    } held;
    held.first =
        doomed->runScriptString("local t = {{}} return function() return t end", "c").value;
    auto other = std::make_shared<LuaVM>();
    if (inARun) {
      other->bind("stop", [&doomed] { doomed.reset(); });
      held.last.reset<void>(nullptr, [other](void*) { other->runScriptString("stop()", "other"); });
    } else {
      other->bind("hold", [doomed] {});
      doomed.reset();
      held.last = other;
    }
    other.reset();
    vm.bind("held", [held] {});
    held = {};
    EXPECT_EQ("1", vm.runScriptString("held = nil return 1", "c").value.toString());
    EXPECT_EQ(nullptr, doomed);
  }
}

// However many interpreters end with one object, they take no more of the stack than one does.
TEST(InterpreterEnd, OfManyInterpretersAtOnce) {
  internal::runOnStack(std::size_t{192} << 10, [] {
    LuaVM vm;
    vm.runScriptString("t = {}", "c");
    for (int i = 0; i < 1500; ++i) {
      vm.bind("hold", [held = std::make_shared<LuaVM>()] {});
      vm.runScriptString("t[#t + 1] = hold hold = nil", "c");
    }
    EXPECT_EQ("1500", vm.runScriptString("local n = #t t = nil return n", "c").value.toString());
  });
}

}  // namespace
}  // namespace tarvel::lua
