#include <fcntl.h>
#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "tests/unit/value_support.h"

// When an interpreter ends, and what runs while objects are destroyed.

namespace tarvel::lua {
namespace {

using Arguments = std::vector<LuaValue>;

// A file for one test.
class ScratchFile {
 public:
  ScratchFile() : path_(testing::TempDir() + "tarvellua-" + std::to_string(getpid())) {}
  ~ScratchFile() { std::remove(path_.c_str()); }

  const std::string& path() const { return path_; }
  std::string content() const {
    std::ifstream file(path_);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string path_;
};

// The descriptor that the next file would get.
int nextDescriptor() {
  const int descriptor = dup(STDERR_FILENO);
  close(descriptor);
  return descriptor;
}

// Calls a function when it is destroyed.
struct Finally {
  explicit Finally(std::function<void()> function) : action(std::move(function)) {}
  ~Finally() { action(); }
  std::function<void()> action;
};

TEST(InterpreterEnd, ReturnsWhatCirclesHold) {
  const ScratchFile file;
  const char* const circles[] = {
      "t = {host} t.t = t",
      "local t = {} t.f = function() return t, host end",
      "local f f = function() return f, host end",
      "local even local function odd() return even, host end even = function() return odd end",
      "io.io = io io.host = host string.string = {string, host}",
      "local t = {pairs({host}), io.stdout, io.stdout.write} t.t = t",
      "local own = on on(function() return own, host end)",
      "on(function() return on, host end)",
      "local t = {io.open(path, 'w')} t[1]:write('text') t.t = t t.write = t[1].write t.h = host",
  };
  const int descriptor = nextDescriptor();
  for (const char* const script : circles) {
    const auto held = std::make_shared<int>(0);
    LuaValue handle;
    {
      LuaVM vm;
      vm.setGlobal("path", LuaValue(file.path()));
      vm.bindFunction("host", [held](LuaVM&, const Arguments&) { return LuaValue(); });
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
  EXPECT_EQ("text", file.content());
}

// Values that reach the host in such a run go when the host's function is done with them, also if
// the function that is destroyed was part of a public value.
TEST(Destructors, DoNotKeepThePublicValuesOfTheirRuns) {
  LuaVM vm;
  const auto counted = std::make_shared<int>(0);
  vm.bindFunction("ignore", [](LuaVM&, const Arguments&) { return LuaValue(); });
  vm.bindFunction("counted", [counted](LuaVM&, const Arguments&) { return LuaValue(); });
  long countInside = 0;
  vm.bindFunction("held", [end = std::make_shared<Finally>([&] {
                             vm.runScriptString("ignore({counted}) counted = nil", "inner");
                             countInside = counted.use_count();
                           })](LuaVM&, const Arguments&) { return LuaValue(); });
  vm.runScriptString("local h = held held = nil return {{h}}", "outer");
  EXPECT_EQ(1, countInside);
}

// A destructor may run a script while the globals go, and is told when it is too late for that.
TEST(Destructors, AndTheEndOfTheInterpreter) {
  std::vector<std::string> outcomes;
  {
    LuaVM vm;
    const auto bind = [&](const char* name) {
      const auto held = std::make_shared<Finally>([&] {
        const LuaResult result = vm.runScriptString("late = {{}} return 'ran'", "inner");
        outcomes.push_back(result.ok ? result.value.toString() : result.error);
        vm.setGlobal("late", LuaValue("x"));
      });
      vm.bindFunction(name, [held](LuaVM&, const Arguments&) { return LuaValue(); });
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
    vm->bindFunction("hold", [vm, held](LuaVM&, const Arguments&) { return LuaValue(); });
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
      other->bindFunction("stop", [&doomed](LuaVM&, const Arguments&) {
        doomed.reset();
        return LuaValue();
      });
      held.last = std::make_shared<Finally>([other] { other->runScriptString("stop()", "other"); });
    } else {
      other->bindFunction("hold", [doomed](LuaVM&, const Arguments&) { return LuaValue(); });
      doomed.reset();
      held.last = other;
    }
    other.reset();
    vm.bindFunction("held", [held](LuaVM&, const Arguments&) { return LuaValue(); });
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
      vm.bindFunction("hold", [held = std::make_shared<LuaVM>()](LuaVM&, const Arguments&) {
        return LuaValue();
      });
      vm.runScriptString("t[#t + 1] = hold hold = nil", "c");
    }
    EXPECT_EQ("1500", vm.runScriptString("local n = #t t = nil return n", "c").value.toString());
  });
}

}  // namespace
}  // namespace tarvel::lua
