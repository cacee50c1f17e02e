#include <tarvel/lua/lua_vm.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tests/fuzz/choices.h"

// Values of a host go into a script and come back: as they are, through tables, and as C++ types.

namespace tarvel::lua::fuzz {

struct Place {
  double x = 0;
  int y = 0;
  std::string name;
  std::vector<LuaValue> list;
};

}  // namespace tarvel::lua::fuzz

template <>
inline constexpr auto tarvel::lua::luaRecord<tarvel::lua::fuzz::Place> =
    tarvel::lua::record(tarvel::lua::field("x", &tarvel::lua::fuzz::Place::x),
                        tarvel::lua::maybe("y", &tarvel::lua::fuzz::Place::y),
                        tarvel::lua::maybe("name", &tarvel::lua::fuzz::Place::name),
                        tarvel::lua::maybe("list", &tarvel::lua::fuzz::Place::list));

namespace tarvel::lua::fuzz {

namespace {

LuaValue valueOf(Choices& choices, int depth) {
  switch (choices.below(depth > 0 ? 7 : 5)) {
    case 0:
      return LuaValue();
    case 1:
      return LuaValue(choices.oneIn(2));
    case 2:
      return LuaValue(static_cast<std::int64_t>(choices.below(256)) << (8 * choices.below(8)));
    case 3: {
      // Not a whole number of 64 bits, so that it stays a float.
      static const double kExtremes[] = {1e300, -1e300, HUGE_VAL, -HUGE_VAL, 5e-324, 0.1};
      if (choices.oneIn(4)) return LuaValue(choices.of(kExtremes));
      return LuaValue(static_cast<double>(choices.below(256)) + 0.5);
    }
    case 4: {
      std::string text;
      while (choices.below(4) != 0) text.push_back(static_cast<char>(choices.below(256)));
      return LuaValue(std::move(text));
    }
    case 5: {
      std::vector<LuaValue> elements;
      while (choices.below(4) != 0) {
        LuaValue element = valueOf(choices, depth - 1);
        if (element.type == LuaValue::Type::Nil) break;  // would end the sequence
        elements.push_back(std::move(element));
      }
      return toLua(elements);
    }
    default: {
      static const char* const kNames[] = {"x", "y", "name", "list", ""};
      std::map<std::string, LuaValue> members;
      while (choices.below(4) != 0) {
        LuaValue member = valueOf(choices, depth - 1);
        if (member.type != LuaValue::Type::Nil) members[choices.of(kNames)] = std::move(member);
      }
      return toLua(members);
    }
  }
}

// Tables without a key are all one kind of value.
std::string describe(const LuaValue& value) {
  std::string text;
  switch (value.type) {
    case LuaValue::Type::Sequence:
      for (const LuaValue& element : *std::get<5>(value.data)) text += describe(element) + " ";
      return text.empty() ? "{}" : "[" + text + "]";
    case LuaValue::Type::Object: {
      std::map<std::string, std::string> members;
      for (const auto& [key, member] : *std::get<6>(value.data)) members[key] = describe(member);
      for (const auto& [key, member] : members) text.append(key).append("=").append(member + " ");
      return "{" + text + "}";
    }
    case LuaValue::Type::String:
      return "'" + value.toString() + "'";
    case LuaValue::Type::Float:
      return value.toString() + "f";
    default:
      return value.toString();
  }
}

template <class T>
std::string describe(const LuaOutcome<T>& outcome) {
  return outcome ? describe(toLua(*outcome)) : "error " + outcome.error().message;
}

bool isError(const std::string& outcome) { return outcome.rfind("error ", 0) == 0; }

// A value that the host has, and the same value in a script, convert alike, or fail alike. A map
// fails for the member that comes first, which is another one in each; a global's error has its
// name in front.
template <class T>
void compareAs(const char* type, LuaVM& vm, const LuaValue& value, std::string& problem,
               bool isMap = false) {
  const std::string expected = describe(fromLua<T>(value));
  const std::string global = describe(vm.getGlobal<T>("value"));
  const std::string returned = describe(vm.call<T>("same", value));
  const bool isSame = isError(expected)
                          ? isError(global) && isError(returned) && (isMap || returned == expected)
                          : global == expected && returned == expected;
  if (!isSame)
    problem.append(type).append(": ").append(expected + " | " + global + " | " + returned + "\n");
}

}  // namespace

std::string findProblem(std::span<const std::uint8_t> bytes) {
  Choices choices(bytes);
  LuaVM vm;
  vm.runScriptString("function same(v) return v end", "chunk");
  const LuaValue value = valueOf(choices, 4);
  vm.setGlobal(std::string("value"), value);
  std::string problem;
  compareAs<LuaValue>("any", vm, value, problem);
  if (describe(vm.call<LuaValue>("same", value)) != describe(value)) problem += "changed\n";
  compareAs<bool>("bool", vm, value, problem);
  compareAs<std::int64_t>("int64", vm, value, problem);
  compareAs<std::uint8_t>("uint8", vm, value, problem);
  compareAs<std::int8_t>("int8", vm, value, problem);
  compareAs<std::uint64_t>("uint64", vm, value, problem);
  compareAs<double>("double", vm, value, problem);
  compareAs<float>("float", vm, value, problem);
  compareAs<std::string>("string", vm, value, problem);
  compareAs<std::optional<int>>("optional", vm, value, problem);
  compareAs<std::vector<double>>("numbers", vm, value, problem);
  compareAs<std::vector<std::vector<int>>>("rows", vm, value, problem);
  compareAs<std::map<std::string, LuaValue>>("members", vm, value, problem, true);
  compareAs<std::map<std::string, std::vector<std::string>>>("lists", vm, value, problem, true);
  compareAs<std::unordered_map<std::string, double>>("table", vm, value, problem, true);
  compareAs<Place>("record", vm, value, problem);
  compareAs<std::vector<Place>>("records", vm, value, problem);
  return problem.empty() ? problem : describe(value) + "\n" + problem + "\n";
}

}  // namespace tarvel::lua::fuzz
