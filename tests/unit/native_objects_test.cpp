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

// Objects of the host in scripts: their methods and properties, which run code where a script only
// reads a field, and how long they live.

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
    addProperty(impl, type, "get", hook("get"), hook("set"));
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

 private:
  static internal::NativeFunction hook(const std::string& name) {
    return [name](LuaVM& self, ValueSpan arguments, Site site) {
      LuaVM::Impl& interpreter = LuaVM::Impl::of(self);
      const Value function = interpreter.globals.at(interpreter.globals.slotOf(name));
      if (!function.isFunction()) internal::failRuntime(site, "attempt to call a nil value");
      return interpreter.callHandle(function.function, arguments, site);
    };
  }
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
      {"local a = {b = {w = w}} a.b.w.wind = a.b.w.wind .. 'x'", "error value is not numeric"},
      {"local a = {b = {w = w}, n = 7} a.b.w.wind, a.n = a.n, a.b.w.wind return {w.wind, a.n}",
       "[i7 i1]"},
      {"function set(o, f) keep = f end function w.get(x) return x end return keep(4)", "i4"},
      // Methods that a property gives, several values, and properties of what a property gives.
      {"function get() return function(o, n) return o.wind + n end end return w:get(4)", "i5"},
      {"return {w.several.several.wind, #{w.several}}", "[i1 i1]"},
      {R"(function get() return {x = {5, y = 'yes'}} end
          local t, r = {w = {w}}, 0
          g = t
          if t.w[1].get.x.y then r = r + 1 end
          if g.w[1].get.x[1] then r = r + 1 end
          if not g.w[1].get.x[2] then r = r + 1 end
          while w.get.x[7] do end
          return {w.get.x[1], w.get.x.y, #w.get.x, w.get.x[w.wind], w.get['x'].y:rep(2),
                  g.w[w.wind].get.x[g.w[1].wind], r})",
       "[i5 'yes' i1 i5 'yesyes' i5 i3]"},
      // Errors.
      {"w.unknown = 1", "error c:1: World has no field 'unknown'"},
      {"\nw['unknown'] = 1", "error c:2: World has no field 'unknown'"},
      {"function w.add() end", "error c:1: World.add cannot be assigned"},
      {"return w[1]", "error c:1: userdata fields must be strings"},
      {"w[1] = 1", "error c:1: userdata fields must be strings"},
      {"w:unknown()", "error c:1: attempt to call a nil value"},
      {"w.unknown.x = 1", "error c:1: attempt to assign into a nil value"},
      {"return w.unknown.x", "error c:1: attempt to index a nil value"},
      {"return #w.wind", "error c:1: length operator expects a string or table"},
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
    const auto eleven = std::make_shared<World>(11);
    addMethod(host.impl, other, "add", [&](LuaVM&, ValueSpan, Site) {
      Value table(internal::Table::create(host.impl.heap));
      const internal::OwnedValue key(host.impl.makeString("wind"));
      table.table->set(internal::TableKey::ofString(key.get().string), Value(eleven->wind));
      return MultiValue(table);
    });
    host.impl.globals.set("other", wrapObject(host.impl, other, eleven));
    EXPECT_EQ(c.outcome, host.run(c.script)) << c.script;
    host.run("keep, w, g, get, set = nil");
  }
}

// Reading a property may change everything that the statement around it uses. So each statement has
// to come to what it comes to with a call in the property's place.
TEST_F(NativeObjects, MayPullTheRugFromUnderTheReader) {
  const char* const statements[] = {
      "return {@g.w@, g and 1}",
      "return {g.o.items[@g.w@], 1}",
      "return {g.o.items[@g.w@ + 1], 1}",
      "return {g.o.items[g.o.index[@w@]], 1}",
      "return {#g.o.items[@w@], 1}",
      "return {u.o.items[@u.w@ + 1][1], 1}",
      "return {u.items[@w@][u.n], #u.items[@w@]}",
      "local l = up return {l.items[@w@][l.n], l.items[@w@ + 1][l.n], 1}",
      "return {g.list[@g.w@ - @w@ + 2], 1}",
      "return {g.n + @g.w@, @w@ + 1, 1}",
      "local l = 1 l = g.n * @g.w@ + u.n return l",
      "local l = g return l.n - @l.w@ + l.n",
      "return {g.n < @g.w@, g.name == @w@, u.name .. @w@ .. u.n}",
      "if g.o.items[@w@] and u.o.items[@w@ + 1] then return 1 end return up.n == @w@",
      "while g.o.items[@w@][1] do return g and g.n end",
      "s = s .. @g.w@ .. s return s",
      "s = s .. #g.o.items[@w@] return s",
      "g.f(@g.w@, u.n)",
      "return g.f(u.n, @g.w@, g and g.n)",
      "return g.o:m(@g.w@)",
      "t[@g.w@] = g and g.n return t",
      "up[@w@] = 'stored' return up and up[1]",
      "up[@w@ + 1] = {'a' .. 1} return keep[1][2]",
      "g.list[@w@] = g.n return keep[2]",
      "u.o[@u.w@], u.n = u.n, @w@ return {keep[3][1], keep[4].n}",
      "local a, b = g.o.items, @g.w@ return {a[1], b, #a}",
      "return {x = g.o, [@g.w@] = u.o, u and u.n}",
      "for i = g.n, @g.w@ + 2 do t[i] = u and u.n end return t",
      "for k, v in ipairs({g.o, @w@, u and u.o}) do t[k] = v end return #t",
      "return (@g.w@ and g.n) or u.n",
      "function make() return {g.list, @w@} end return make()[1][1]",
  };
  const char* const hooks[] = {
      "return 1",
      "g, u, up, keep = nil return 1",
      "g.o, g.list, u.items, up.items, g.w, g.n = nil return 1",
      R"(g, u, up = {n = 10}, {n = 11, items = {{12}, {13}}}, {n = 1, items = {{15}, {16}}}
         return 1)",
      "g.o.items, g.o.index, up.items, s = {{20}, {21}}, {2}, {{22}, {23}}, 'new' return 2",
      "g.w, w, u.w = nil return 1",
      "g, u, up, w = nil error('cut')",
      "g, u, up, w = nil os.exit(4)",
  };
  // Each run: what `hook` drops is overwritten by what is made afterwards.
  const auto program = [](const std::string& statement, const std::string& hook, bool isProperty) {
    std::string body;
    bool isOpen = false;
    for (const char c : statement) {
      if (c != '@') {
        body += c;
        continue;
      }
      isOpen = !isOpen;
      body += isOpen ? (isProperty ? "" : "call(") : (isProperty ? ".get" : ")");
    }
    return R"(
      s, t, calls = 's', {}, 0
      u = {n = 1, name = 'u', w = w, items = {{'i' .. 1}, {'i' .. 2}}}
      g = {n = 2, name = 'g', w = w, list = {7, 8, 9}}
      function g.f(a, b) return {a, b} end
      g.o = {items = {{'j' .. 1}, {'j' .. 2}}, index = {1, 2}}
      function g.o.m(o, a) return {o.items and 1, a} end
      u.o = g.o
      local function run()
        local up = {n = 1, w = w, items = {{'k' .. 1}, {'k' .. 2}}}
        keep = {up, g.list, u.o, u}
        local function act() )" +
           hook + R"( end
        function get()
          calls = calls + 1
          if calls > 1 then return 1 end
          local result, junk = act(), {}
          for i = 1, 40 do junk[i] = {'x' .. i} end
          return result
        end
        function call(o) return o.get end local function go() )" +
           body + R"( end
        return go()
      end
      return run())";
  };
  for (const char* const statement : statements) {
    for (const char* const hook : hooks) {
      std::string outcomes[2];
      for (const bool isProperty : {false, true}) {
        Host host;
        host.set("w", std::make_shared<World>());
        outcomes[isProperty] = host.run(program(statement, hook, isProperty));
        host.run("g, u, keep, t, w, get, call, make = nil");
      }
      EXPECT_EQ(outcomes[0], outcomes[1]) << statement << "\n" << hook;
    }
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
  // An object crosses again when its userdata is dead and waits to be dismantled.
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

  // The object ends its interpreter: in the middle of a run, which goes on; and where nothing runs.
  for (const bool isRunning : {true, false}) {
    auto* const host = new Host;
    bool ended = false;
    auto owner = std::make_shared<World>();
    owner->atEnd = [host, &ended] {
      delete host;
      ended = true;
    };
    host->set("w", owner);
    owner.reset();
    const char* const script = isRunning ? "local t = {w, {w}} w = nil t = nil return 1"
                                         : "local o = w w = nil return function() return o end";
    handle = host->vm.runScriptString(script, "c").value;
    EXPECT_EQ(isRunning, ended);
    handle = LuaValue();
    EXPECT_TRUE(ended);
  }
}

TEST_F(NativeObjects, CountAsMemory) {
  Host host;
  LuaLimits limits;
  limits.memory = std::size_t{4} << 20;
  host.vm.setLimits(limits);
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
