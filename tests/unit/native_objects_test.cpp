#include "lua/native_objects.h"

#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "lua/lua_vm_impl.h"
#include "lua/value/heap.h"
#include "lua/value/native_class.h"
#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

// Objects of the host in scripts: their methods and properties, and how long they live. Properties
// that change what the statement around them uses: tests/fuzz/many_ways.cpp.

namespace tarvel::lua {
namespace {

using internal::addMethod;
using internal::addProperty;
using internal::MultiValue;
using internal::NativeClass;
using internal::Site;
using internal::Value;
using internal::ValueSpan;

// An object of the host; calls a function when it is destroyed.
struct World {
  explicit World(std::int64_t worldWind = 0) : wind(worldWind) {}
  ~World() {
    if (atEnd) atEnd();
  }
  std::int64_t wind;
  std::function<void()> atEnd;
};

constexpr char kWorldKey = 0;
constexpr char kOtherKey = 0;

World& worldOf(ValueSpan arguments) {
  return *static_cast<World*>(internal::objectOf(arguments[0], &kWorldKey));
}

// An interpreter that knows worlds.
class Host {
 public:
  Host() : impl(LuaVM::Impl::of(vm)), type(internal::defineClass(impl, &kWorldKey, "World")) {
    addMethod(impl, type, "add", [](LuaVM&, ValueSpan arguments, Site site) {
      auto& world = *static_cast<World*>(
          internal::requireObject("World:add", arguments, 0, site, &kWorldKey));
      world.wind += arguments[1].asInteger();
      return MultiValue(retain(arguments[0]));
    });
    addProperty(
        impl, type, "wind",
        [](LuaVM&, ValueSpan arguments, Site) {
          return MultiValue(Value(worldOf(arguments).wind));
        },
        [](LuaVM&, ValueSpan arguments, Site) {
          worldOf(arguments).wind = arguments[1].asInteger();
          return MultiValue();
        });
    // Those that a script defines.
    addProperty(impl, type, "get", internal::callOfGlobal("get"), internal::callOfGlobal("set"));
    addProperty(impl, type, "several",
                [](LuaVM&, ValueSpan arguments, Site) {
                  return MultiValue{retain(arguments[0]), Value(true)};
                },
                {});
    addProperty(impl, type, "nothing", [](LuaVM&, ValueSpan, Site) { return MultiValue(); }, {});
  }

  void set(const std::string& name, const std::shared_ptr<World>& world) {
    impl.globals.set(name, wrapObject(impl, type, world));
  }
  std::string run(const std::string& source) { return lua::run(vm, source); }

  LuaVM vm;
  LuaVM::Impl& impl;
  NativeClass& type;
};

class NativeObjects : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(liveBefore_, internal::Heap::liveBlocks()); }

 private:
  const std::size_t liveBefore_ = internal::Heap::liveBlocks();
};

TEST_F(NativeObjects, HaveTheMembersOfTheirClass) {
  const struct {
    const char* script;
    const char* outcome;
  } cases[] = {
      {"return {w.wind, w['wind'], not w.nothing, not w.unknown, w:add(2):add(3).wind, w.wind}",
       "[i1 i1 true true i6 i6]"},
      {"local add = w.add add(w, 1) return {w.wind, add == w.add, tostring(add), type(w)}",
       "[i2 true 'function: World:add' 'userdata']"},
      {"w.wind = w.wind + 1 w['wi' .. 'nd'] = w.wind * 5 return w.wind", "i10"},
      {"local a = {b = {w = w}, n = 7} a.b.w.wind, a.n = a.n, a.b.w.wind return {w.wind, a.n}",
       "[i7 i1]"},
      {"function set(o, f) keep = f end function w.get(x) return x end return keep(4)", "i4"},
      // Methods that a property gives, several values, and properties of what a property gives.
      {"function get() return function(o, n) return o.wind + n end end return w:get(4)", "i5"},
      {"return {w.several.several.wind, #{w.several}}", "[i1 i1]"},
      // Errors.
      {"w.unknown = 1", "error c:1: World has no field 'unknown'"},
      {"function w.add() end", "error c:1: World.add cannot be assigned"},
      {"w[1] = 1", "error c:1: userdata fields must be strings"},
      {"w.unknown.x = 1", "error c:1: attempt to assign into a nil value"},
      {"return w.unknown.x", "error c:1: attempt to index a nil value"},
      {"\nw.add(other, 2)", "error c:2: World:add received the wrong userdata type"},
      {"io.stdout.write(w, 2)", "error c:1: stream:write received the wrong userdata type"},
      {"io.stdout.x = 2", "error c:1: attempt to assign into a userdata value"},
      {"io.stdout[{}] = 2", "error c:1: attempt to assign into a userdata value"},
      {"\nlocal t = {w} t[1].get = {'a' .. 1}", "error c:2: attempt to call a nil value"},
      {"function set() error('no') end local t = {w} t[1].get, t.x = {'a' .. 1}, {}",
       "error c:1: no"},
      {"function get(o) local t = {o.get} return t end return {w.get}",
       "error c:1: stack overflow"},
      // One place in the code for all kinds of objects.
      {R"(local t = {add = function(self, n) return {wind = n} end, get = 5, wind = 6}
          function get() return 7 end
          function add() return {wind = 11} end
          local r = {}
          for i, o in ipairs({t, w, other, t, other, w}) do
            r[#r + 1] = o:add(1).wind
            r[#r + 1] = o.get or 0
            r[#r + 1] = o.wind or 0
          end
          return r)",
       "[i1 i5 i6 i2 i7 i2 i11 i0 i0 i1 i5 i6 i11 i0 i0 i3 i7 i3]"},
  };
  for (const auto& c : cases) {
    Host host;
    host.set("w", std::make_shared<World>(1));
    NativeClass& other = internal::defineClass(host.impl, &kOtherKey, "Other");
    addMethod(host.impl, other, "add", internal::callOfGlobal("add"));
    host.impl.globals.set("other", wrapObject(host.impl, other, std::make_shared<World>()));
    EXPECT_EQ(c.outcome, host.run(c.script)) << c.script;
    host.run("keep, w, get, set = nil");
  }
}

TEST_F(NativeObjects, MayBeDroppedByTheirOwnMembers) {
  Host host;
  host.set("w", std::make_shared<World>(5));
  EXPECT_EQ(
      "{wind: i5}",
      host.run("local t = {w = w} w = nil function get(o) t.w = nil return {wind = o.wind} end "
               "return t.w.get"));
  host.set("w", std::make_shared<World>(6));
  EXPECT_EQ("i6", host.run("g = {w = w} w = nil function set(o, v) g = nil keep = o.wind end "
                           "g.w.get = {'a' .. 1} get, set = nil return keep"));
  // A property that is defined anew while it is read.
  host.set("w", std::make_shared<World>(7));
  addProperty(host.impl, host.type, "wind",
              [&host, token = std::make_shared<int>(8)](LuaVM&, ValueSpan, Site) {
                for (const char* const name : {"wind", "a", "b", "c", "d"})
                  addProperty(host.impl, host.type, name,
                              [](LuaVM&, ValueSpan, Site) { return MultiValue(Value(true)); }, {});
                addMethod(host.impl, host.type, "a",
                          [](LuaVM&, ValueSpan, Site) { return MultiValue(Value(false)); });
                return MultiValue(Value(static_cast<std::int64_t>(*token)));
              },
              {});
  EXPECT_EQ("[i8 true false true]", host.run("return {w.wind, w.wind, w:a(), w.b}"));
  EXPECT_EQ(&host.type, &internal::defineClass(host.impl, &kWorldKey, "Again"));
  EXPECT_EQ(&host.type, internal::findClass(host.impl, &kWorldKey));
  EXPECT_EQ(nullptr, internal::findClass(host.impl, &kOtherKey));
}

TEST_F(NativeObjects, AreTheSameUserdataAsLongAsScriptsHaveThem) {
  Host host;
  const auto first = std::make_shared<World>(1);
  const auto second = std::make_shared<World>(2);
  host.set("a", first);
  host.set("b", second);
  host.set("c", first);
  EXPECT_EQ("[true false true]", host.run("return {a == c, a == b, tostring(a) == tostring(c)}"));
  EXPECT_EQ(2, first.use_count());
  host.set("n", nullptr);
  EXPECT_EQ("nil", host.run("a, b = nil collect = {c} c = nil collect[1].wind = 3 return n"));
  EXPECT_EQ(2, first.use_count());
  EXPECT_EQ(1, second.use_count());
  host.run("collect = nil");
  EXPECT_EQ(1, first.use_count());
  EXPECT_EQ(3, first->wind);
  host.set("a", first);
  host.run("a = nil");
  EXPECT_EQ(1, first.use_count());
  host.set("a", first);
  EXPECT_EQ("i3", host.run("return a.wind"));
  // It crosses again when its userdata is dead and waits to be dismantled.
  auto ending = std::make_shared<World>();
  ending->atEnd = [&] { host.set("again", first); };
  host.set("a", first);
  host.set("b", ending);
  ending.reset();
  host.run("t = {a, b} a, b = nil local x = t t = nil x = nil");
  EXPECT_EQ(2, first.use_count());
  EXPECT_EQ("i3", host.run("return again.wind"));
}

TEST_F(NativeObjects, AreGivenBackWhenTheInterpreterEnds) {
  auto world = std::make_shared<World>();
  LuaValue handle;
  {
    Host host;
    host.set("w", world);
    handle = host.vm
                 .runScriptString(
                     "local t = {w, w.add} t.t = nil return function() return t, w end", "c")
                 .value;
    addProperty(host.impl, host.type, "held",
                [world](LuaVM&, ValueSpan, Site) { return MultiValue(); }, {});
  }
  EXPECT_EQ(1, world.use_count());
  handle = LuaValue();

  // The object ends its interpreter. In the middle of a run: host_nesting_test.cpp.
  auto* const host = new Host;
  bool ended = false;
  world->atEnd = [host, &ended] {
    delete host;
    ended = true;
  };
  host->set("w", world);
  world.reset();
  handle =
      host->vm.runScriptString("local o = w w = nil return function() return o end", "c").value;
  EXPECT_FALSE(ended);
  handle = LuaValue();
  EXPECT_TRUE(ended);
}

TEST_F(NativeObjects, CountAsMemory) {
  Host host;
  host.vm.setLimits({.memory = std::size_t{4} << 20});
  host.vm.bindFunction("make", [&](LuaVM&, const std::vector<LuaValue>&) {
    host.set("w", std::make_shared<World>());
    return LuaValue();
  });
  EXPECT_EQ("error not enough memory",
            host.run("local t = {} for i = 1, 100000 do make() t[i] = w end"));
  EXPECT_EQ("i1", host.run("w = nil for i = 1, 20000 do make() end return 1"));
}

}  // namespace
}  // namespace tarvel::lua
