#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "cli/script_container.h"
#include "lua/lua_vm_impl.h"
#include "lua/native_objects.h"
#include "tests/fuzz/choices.h"
#include "tests/fuzz/script_generator.h"
#include "tests/unit/value_support.h"

// Runs the script that the bytes stand for in every placement, supervised, and plain from a
// container, and compares.

namespace tarvel::lua::fuzz {

namespace {

constexpr std::uint64_t kMostSteps = 20000;

struct Outcome {
  std::string text;  // everything that was reported, and how the script ended
  LuaError::Kind kind = LuaError::Kind::Script;
  bool isOk = false;
  std::uint64_t steps = 0;
};

std::string exactText(const LuaValue& value) {
  switch (value.type) {
    case LuaValue::Type::Float: {
      char text[64];
      std::snprintf(text, sizeof(text), "%a", std::get<double>(value.data));
      return text;
    }
    case LuaValue::Type::Integer:
    case LuaValue::Type::Boolean:
    case LuaValue::Type::Nil:
      return value.toString();
    case LuaValue::Type::String:
      return "'" + value.toString() + "'";
    default:
      return "a table or function";
  }
}

// What Placement::Properties needs: each object that `renew` gives has the same properties.
void defineProperties(LuaVM& vm) {
  static constexpr char kTypeKey = 0;
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  internal::NativeClass& type = internal::defineClass(interpreter, &kTypeKey, "Variables");
  for (const std::string number : {"1", "2", "3", "4", "5", "6", "7", "8", "9"})
    internal::addProperty(interpreter, type, "v" + number, internal::callOfGlobal("get" + number),
                          internal::callOfGlobal("set" + number));
  internal::addProperty(interpreter, type, "spoil", internal::callOfGlobal("spoil"), {});
  interpreter.bindNativeGlobal("renew", [&](LuaVM&, internal::ValueSpan, internal::Site) {
    return internal::MultiValue(wrapObject(interpreter, type, std::make_shared<int>()));
  });
}

Outcome runScript(const std::string& script, bool supervised, std::uint64_t steps) {
  LuaVM vm({.reach = LuaReach::None, .supervised = supervised, .limits = {.steps = steps}});
  Outcome outcome;
  vm.bind("report", [&outcome](const std::vector<LuaValue>& values) {
    for (const LuaValue& value : values) outcome.text.append(exactText(value)).append(" ");
    outcome.text.append("\n");
  });
  defineProperties(vm);
  const LuaResult result = vm.runScriptString(script, "script");
  outcome.isOk = result.ok;
  outcome.steps = vm.usage().steps;
  if (result.detail != nullptr) {
    outcome.kind = result.detail->kind;
    outcome.text += std::to_string(result.detail->line) + ": " + result.detail->message;
  }
  return outcome;
}

std::string difference(const char* what, const std::string& script, const Outcome& first,
                       const Outcome& second) {
  return std::string(what) + "\n---- script\n" + script + "---- first\n" + first.text +
         "\n---- second\n" + second.text + "\n";
}

// The same steps each time. All of them are enough; one less is not, except where the last work
// was one that counts afterwards.
std::string compareSteps(const std::string& script, const Outcome& first) {
  const Outcome again = runScript(script, true, first.steps);
  if (again.text != first.text || again.steps != first.steps)
    return difference("another run with the steps of the first", script, first, again);
  const Outcome shorter = runScript(script, true, first.steps - 1);
  if (first.steps > 1 && shorter.kind != LuaError::Kind::Steps && shorter.text != first.text)
    return difference("a step less", script, first, shorter);
  return {};
}

}  // namespace

std::string findProblem(std::span<const std::uint8_t> bytes) {
  const std::string script = generateScript(bytes, Placement::Locals);
  const Outcome expected = runScript(script, true, kMostSteps);
  if (expected.kind == LuaError::Kind::Steps) return {};
  // How deep a recursion gets depends on the host's stack, so on the way.
  if (expected.text.find("stack overflow") != std::string::npos) return {};
  if (expected.kind == LuaError::Kind::Syntax)
    return difference("not well-formed", script, expected, expected);
  if (std::string problem = compareSteps(script, expected); !problem.empty()) return problem;
  for (int number = 0; number < kPlacements; ++number) {
    const std::string placed = generateScript(bytes, static_cast<Placement>(number));
    for (const bool supervised : {false, true}) {
      const std::string source =
          supervised ? placed : parseContainer(buildContainer({"script", placed})).source;
      const Outcome outcome = runScript(source, supervised, 0);
      if (outcome.text != expected.text || outcome.isOk != expected.isOk)
        return difference(supervised ? "supervised" : "plain", placed, expected, outcome);
    }
  }
  return {};
}

}  // namespace tarvel::lua::fuzz
