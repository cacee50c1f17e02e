#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

// Values by type between host and scripts: what crosses, and what is said of what does not. Then
// values as hosts make, copy and release them, without an interpreter.

namespace tarvel::lua {
namespace {

struct Listener {
  std::string address = "any";
  std::uint16_t port = 0;
};

struct World;
struct Orbit {
  std::optional<std::shared_ptr<World>> world;
};

struct Config {
  std::string name;
  std::uint8_t workers = 1;
  std::vector<Listener> listeners;
  std::map<std::string, std::string> labels;
  std::optional<double> timeout;
};

struct Tree {
  std::vector<Tree> kids;
};

struct World {
  double gravity() const { return 9.5; }
  int spawn(double x, double y) { return static_cast<int>(x + y); }
  int ask(LuaVM& vm, const LuaFunction& f, int x) { return vm.call<int>(f, x).value(); }
  int wind = 0;
  std::vector<LuaValue> tags;
  std::optional<std::shared_ptr<World>> moon;
};

}  // namespace

template <>
inline constexpr auto luaRecord<Listener> =
    record(maybe("address", &Listener::address), field("port", &Listener::port)).exact();
template <>
inline constexpr auto luaRecord<Config> = record(field("name", &Config::name),
                                                 maybe("workers", &Config::workers),
                                                 maybe("listeners", &Config::listeners),
                                                 maybe("labels", &Config::labels),
                                                 field("timeout", &Config::timeout));
template <>
inline constexpr auto luaRecord<Orbit> = record(field("world", &Orbit::world));
template <>
inline constexpr auto luaRecord<Tree> = record(maybe("kids", &Tree::kids));

namespace {

std::string textOf(const LuaOutcome<LuaValue>& outcome) {
  return outcome ? (*outcome).toString() : outcome.error().toString();
}

std::string evaluate(LuaVM& vm, std::string_view script) {
  const LuaOutcome<LuaFunction> function = vm.load(script, "c");
  return function ? textOf(vm.call(*function)) : function.error().toString();
}

std::string show(const Config& config) {
  return config.name + " " + std::to_string(config.workers) + " " +
         std::to_string(config.listeners.size()) + " " + std::to_string(config.labels.size()) +
         (config.timeout ? " in time" : "");
}

// As an interpreter's value and as one that the host already has: the same result, or message.
TEST(Conversion, OfRecordsSaysWhereSomethingDoesNotFit) {
  const struct {
    std::string script;
    std::string expected;
  } kCases[] = {
      {"{name = 'n', workers = 8 / 2, listeners = {{port = 80}, {port = 443}}, labels = {a = 'b'}}",
       "n 4 2 1"},
      {"{name = 'n', listeners = {}, labels = {}, timeout = 1, other = 2}", "n 1 0 0 in time"},
      {"{}", "name: a string expected, got nil"},
      {"{name = 1}", "name: a string expected, got 1"},
      {"{name = 'n', workers = 2.5}", "workers: a whole number expected, got 2.5"},
      {"{name = 'n', workers = 256}", "workers: a whole number from 0 to 255 expected, got 256"},
      {"{name = 'n', workers = -1}", "workers: a whole number from 0 to 255 expected, got -1"},
      {"{name = 'n', timeout = 'x'}", "timeout: a number expected, got a string"},
      {"{name = 'n', listeners = {{port = 1}, {port = '2'}}}",
       "listeners[2].port: a whole number expected, got a string"},
      {"{name = 'n', listeners = {{port = 1}, {prot = 2}}}", "listeners[2]: unknown field 'prot'"},
      {"{name = 'n', listeners = {{port = 1, [1] = 2}}}", "listeners[1]: unknown field '1'"},
      {"{name = 'n', listeners = {first = {port = 1}}}",
       "listeners: a sequence expected, got a table with other keys"},
      {"{name = 'n', labels = {'a'}}", "labels: a string as a key expected, got 1"},
      {"{name = 'n', labels = {a = true}}", "labels.a: a string expected, got a boolean"},
      {"5", "a table expected, got 5"},
      {"print", "a table expected, got a function"},
  };
  LuaVM vm;
  for (const auto& c : kCases) {
    const LuaFunction script = vm.load("return " + c.script, "c").value();
    const LuaOutcome<Config> direct = vm.call<Config>(script);
    EXPECT_EQ(c.expected, direct ? show(*direct) : direct.error().message) << c.script;
    const LuaOutcome<Config> held = fromLua<Config>(vm.call(script).value());
    EXPECT_EQ(c.expected, held ? show(*held) : held.error().message) << c.script;
    if (direct) {
      vm.setGlobal("back.again", *direct);
      EXPECT_EQ(c.expected, show(vm.getGlobal<Config>("back.again").value()));
      EXPECT_EQ(c.expected, show(fromLua<Config>(toLua(*direct)).value()));
    }
  }
}

TEST(Conversion, OfArgumentsFailsAsThatOfTheLibrary) {
  LuaVM vm;
  vm.bind("hypot", [](double x, double y) { return std::hypot(x, y); });
  vm.bind("text.join", [](std::string_view a, std::optional<std::string> b) {
    return std::string(a) + b.value_or("-");
  });
  vm.bind("byte", [](std::uint8_t value, const std::vector<int>&) { return value; });
  vm.bind("all", [](int first, const std::vector<LuaValue>& rest) {
    return std::tuple(first, rest.size());
  });
  vm.bind("early", [](const std::vector<LuaValue>& values, int last) {
    return std::tuple(values.size(), last);
  });
  vm.bind("orbit", [](Orbit orbit) { return orbit; });
  vm.bind("count", [](const std::map<std::string, int>& members) { return members.size(); });
  vm.bind("fail", [](LuaVM&, bool) { throw std::runtime_error("no such thing"); });
  vm.bind("apply", [](LuaVM& inner, const LuaFunction& f) { return inner.call<int>(f).value(); });
  vm.bind("same", [](std::shared_ptr<World> world) { return world; });
  vm.defineClass<World>("World")
      .method("spawn", &World::spawn)
      .method("name",
              [](World&, std::optional<int> n) { return "w" + std::to_string(n.value_or(0)); })
      .method("ask", &World::ask)
      .method("askAll",
              [](World&, LuaVM& inner, const LuaFunction& f, const std::vector<LuaValue>& values) {
                return inner.call(f, values).value();
              })
      .property("gravity", &World::gravity)
      .property("wind", &World::wind)
      .property("tags", &World::tags)
      .property(
          "labels",
          [](World& world, LuaVM& inner) { return inner.call("list", world.tags).value(); },
          [](World& world, LuaVM&, const std::vector<LuaValue>& value) { world.tags = value; })
      .property("moon", &World::moon);
  vm.setGlobal("world", std::make_shared<World>());
  const struct {
    const char* script;
    const char* expected;
  } kCases[] = {
      {"return hypot(3, 4)", "5"},
      {"return hypot(3)", "c:1: hypot expects 2 arguments"},
      {"return hypot(3, 4, 5)", "c:1: hypot expects 2 arguments"},
      {"return\nhypot('3', 4)", "c:2: hypot expects a numeric argument"},
      {"return text.join('a'), text.join('a', 'b')", "{a-, ab}"},
      {"return text.join('a', 5)", "c:1: text.join expects a string argument"},
      {"return byte(300, {})",
       "c:1: byte: argument 1: a whole number from 0 to 255 expected, got 300"},
      {"return byte(3, {1, 'x'})",
       "c:1: byte: argument 2: [2]: a whole number expected, got a string"},
      {"return byte(3, 4)", "c:1: byte expects a table"},
      {"t = {a = 1, b = 2} unfinished = pairs(t) return count(t)", "2"},
      {"return all(1, 2, nil, 4)", "{1, 3}"},
      {"return early({1, 2}, 3)", "{2, 3}"},
      {"return early(1, 2, 3)", "c:1: early expects 2 arguments"},
      {"fail(1)", "c:1: fail expects a boolean argument"},
      {"return pcall(fail, true)", "{false, no such thing}"},
      {"return apply(function() return 7 end)", "7"},
      {"return apply(function() return 'x' end)", "c:1: a whole number expected, got a string"},
      {"return same(world) == world, world.spawn == world.spawn", "{true, true}"},
      {"same(1)", "c:1: same expects userdata"},
      {"same(io.stdout)", "c:1: same received the wrong userdata type"},
      {"world.wind = world.wind + 2 return world:spawn(1, 2), world.wind, world.gravity, "
       "world:name()",
       "{3, 2, 9.5, w0}"},
      {"world.spawn(io.stdout, 1, 2)", "c:1: World:spawn received the wrong userdata type"},
      {"world:spawn(1)", "c:1: World:spawn expects 2 arguments"},
      {"world.wind = 1.5", "c:1: World.wind: a whole number expected, got 1.5"},
      {"world.wind = 'x'", "c:1: World.wind expects a numeric argument"},
      {"world.gravity = 1", "c:1: World.gravity cannot be assigned"},
      {"world.tags = {1, 'b'} return #world.tags, world.tags", "{2, {1, b}}"},
      {"world.tags = 1", "c:1: World.tags expects a table"},
      {"function list(t) return t end world.labels = {1, {2}} return world.labels", "{1, {2}}"},
      {"return world:ask(function(x) return x + 1 end, 4)", "5"},
      {"world:ask(4)", "c:1: World:ask expects 2 arguments"},
      {"return world:askAll(function(t) return t end, 4, {5})", "{4, {5}}"},
      {"world.moon = world local m = world.moon world.moon = nil return m == world, world.moon == "
       "nil",
       "{true, true}"},
      {"return orbit({world = world}).world == world, orbit({}).world == nil", "{true, true}"},
  };
  for (const auto& c : kCases) EXPECT_EQ(c.expected, evaluate(vm, c.script)) << c.script;
}

TEST(Conversion, OfResultsAndNames) {
  LuaVM vm;
  EXPECT_EQ("nil", evaluate(vm, "function two(x) return x, 'b' end"));
  EXPECT_EQ(std::tuple(4, std::string("b")),
            (vm.call<std::tuple<int, std::string>>("two", 4).value()));
  EXPECT_EQ("[2]: a whole number expected, got a string",
            (vm.call<std::tuple<int, int>>("two", 4).error().message));
  EXPECT_EQ("three: a function expected, got nil", vm.call<void>("three").error().message);
  EXPECT_EQ("string.three: a function expected, got nil",
            vm.call<void>("string.three").error().message);
  EXPECT_EQ("ab", vm.call<std::string>("string.sub", "abc", 1, 2).value());
  EXPECT_THROW(vm.setGlobal("two.x", 1), std::runtime_error);
  EXPECT_THROW(vm.call<int>("two", "x").value(), LuaException);
  LuaOutcome<int> failed = vm.call<int>("two", "x");
  LuaOutcome<void> ended = vm.call<void>("three");
  const LuaOutcome<int> failedBefore = std::move(failed);
  const LuaOutcome<void> endedBefore = std::move(ended);
  EXPECT_FALSE(failed || ended || failedBefore || endedBefore);
  EXPECT_EQ("was moved from", failed.error().message);
  EXPECT_THROW(failed.value(), LuaException);
  EXPECT_THROW(ended.value(), LuaException);
  EXPECT_EQ("c:1:1: a parameter cannot be named 'end'",
            vm.load("", "c", {"end"}).error().toString());
  EXPECT_EQ(3, vm.call<int>(vm.load("return a + b", "c", {"a", "b"}).value(), 1, 2).value());
  LuaVM other;
  EXPECT_EQ("the function belongs to another interpreter, or to one that is gone",
            other.call<int>(vm.getGlobal<LuaFunction>("two").value()).error().message);
  EXPECT_EQ(LuaError::Kind::Value, vm.call<int>("two", UINT64_MAX).error().kind);
}

// A type that contains itself meets a table that does, and one that only unfolds without end.
TEST(Conversion, OfATypeThatContainsItselfEnds) {
  LuaVM vm({.supervised = true, .limits = {.steps = 100'000}});
  const auto tree = [&vm](std::string_view script) {
    return vm.call<Tree>(vm.load(script, "c").value()).error();
  };
  EXPECT_NE(std::string::npos, tree("t = {} t.kids = {t} return t").message.find("too deeply"));
  EXPECT_EQ(LuaError::Kind::Steps,
            tree("local t = {} for i = 1, 40 do t = {kids = {t, t}} end return t").kind);
}

// ---- Values that the host makes -----------------------------------------------------------------

using internal::runOnStack;

constexpr std::size_t kSmallStack = 256 * 1024;
constexpr int kDepth = 1000000;

// A value in which sequences and objects nest, around `core`.
LuaValue nested(LuaValue core) {
  for (int i = 0; i < kDepth; ++i) {
    core = i % 3 == 0 ? object({{"a", core}, {"b", integer(i)}}) : sequence(core, integer(i), core);
  }
  return core;
}

TEST(LuaValue, IsReleasedFromAnyDepth) {
  const auto shared = std::make_shared<LuaValue::Sequence>(2, integer(7));
  runOnStack(kSmallStack, [&] {
    LuaValue whole = nested(LuaValue(shared));
    const LuaValue inner = std::get<6>(whole.data)->at("a");
    LuaResult result;
    result.value = std::move(whole);
    EXPECT_EQ(2, std::get<5>(inner.data).use_count()) << "in the object around it and here";
    result = LuaResult();
    EXPECT_EQ(LuaValue::Type::Sequence, inner.type);
    EXPECT_EQ(3u, std::get<5>(inner.data)->size()) << "what others hold stays as it was";
    EXPECT_EQ(1, std::get<5>(inner.data).use_count());
    EXPECT_LT(1, shared.use_count());
  });
  EXPECT_EQ(1, shared.use_count());
  EXPECT_EQ("{7, 7}", LuaValue(shared).toString());

  // Many at each level, and one that stands on another's way out.
  LuaValue wide = integer(0);
  for (int i = 0; i < 3000; ++i) {
    const LuaValue leaf = sequence(integer(i));
    LuaValue::Sequence elements(50, leaf);
    for (LuaValue& element : elements) element = sequence(leaf);
    elements.push_back(std::exchange(wide, LuaValue()));
    wide = LuaValue(std::make_shared<LuaValue::Sequence>(std::move(elements)));
  }
  runOnStack(kSmallStack, [&wide] { wide = LuaValue("gone"); });
  EXPECT_EQ("gone", wide.toString());
}

TEST(LuaValue, TakesAPartOfItself) {
  LuaValue value = object({{"list", sequence(LuaValue("inner"), integer(2))}});
  value = std::get<6>(value.data)->at("list");
  EXPECT_EQ("['inner' i2]", typed(value));
  value = std::move(std::get<5>(value.data)->front());
  EXPECT_EQ("'inner'", typed(value));
  LuaValue& same = value;
  value = same;
  value = std::move(same);
  EXPECT_EQ("'inner'", typed(value));
}

// A host may set the two apart; nothing then reads what is not there.
TEST(LuaValue, WithAWrongTypeIsRefused) {
  LuaVM vm;
  LuaValue wrong;
  vm.bindFunction("get", [&wrong](LuaVM&, const Arguments&) { return wrong; });
  for (const LuaValue& value : {LuaValue(), integer(1), LuaValue("x"), sequence(), object({})}) {
    for (const std::uint32_t type : {0u, 1u, 4u, 5u, 6u, 7u, 8u}) {
      wrong = value;
      if (static_cast<LuaValue::Type>(type) == wrong.type) continue;
      wrong.type = static_cast<LuaValue::Type>(type);
      EXPECT_THROW(vm.setGlobal("v", wrong), std::runtime_error) << type;
      EXPECT_THROW(vm.setGlobal("v", sequence(wrong)), std::runtime_error) << type;
      EXPECT_THROW(static_cast<void>(object({{"k", wrong}}).toString()), std::runtime_error);
      EXPECT_EQ("[false 'unsupported TarvelLua value']", run(vm, "return pcall(get)"));
    }
  }
}

}  // namespace
}  // namespace tarvel::lua
