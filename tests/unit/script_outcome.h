#pragma once

#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Runs and their outcomes as text, for tests from a host's point of view. The scripts in these
// tests make no reference cycles, which are never unwound: a function that a local holds would
// capture the scope of that local.

namespace tarvel::lua {

using Arguments = std::vector<LuaValue>;

// A value with its types: i5, f2.5, true, 'text', [i1 i2], {key: i1}, <name>.
inline std::string typed(const LuaValue& value) {
  EXPECT_EQ(static_cast<std::size_t>(value.type), value.data.index());
  switch (value.type) {
    case LuaValue::Type::Integer:
      return "i" + value.toString();
    case LuaValue::Type::Float:
      return "f" + value.toString();
    case LuaValue::Type::String:
      return "'" + value.toString() + "'";
    case LuaValue::Type::Function:
      return "<" + std::get<7>(value.data)->name() + ">";
    case LuaValue::Type::Sequence: {
      std::string text;
      for (const LuaValue& element : *std::get<5>(value.data)) text += " " + typed(element);
      return "[" + (text.empty() ? text : text.substr(1)) + "]";
    }
    case LuaValue::Type::Object: {
      std::map<std::string, std::string> members;
      for (const auto& [key, member] : *std::get<6>(value.data)) members[key] = typed(member);
      std::string text;
      for (const auto& [key, member] : members) {
        text.append(text.empty() ? "" : ", ").append(key).append(": ").append(member);
      }
      return "{" + text + "}";
    }
    default:
      return value.toString();
  }
}

// What a run came to: the typed value, "error ..." or "exit code ...".
inline std::string outcome(const LuaResult& result) {
  EXPECT_EQ(result.ok, result.error.empty());
  if (!result.ok) {
    EXPECT_EQ("nil", typed(result.value));
    EXPECT_FALSE(result.exitRequested);
    EXPECT_EQ(0, result.exitCode);
    return "error " + result.error;
  }
  if (!result.exitRequested) {
    EXPECT_EQ(0, result.exitCode);
    return typed(result.value);
  }
  EXPECT_EQ("i" + std::to_string(result.exitCode), typed(result.value));
  return "exit " + std::to_string(result.exitCode);
}

inline std::string run(LuaVM& vm, const std::string& source, const std::string& chunkName = "c") {
  return outcome(vm.runScriptString(source, chunkName));
}

inline std::string run(const std::string& source) {
  LuaVM vm;
  return run(vm, source);
}

inline std::string repeated(const std::string& text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

template <class... Elements>
LuaValue sequence(Elements... elements) {
  return LuaValue(std::make_shared<LuaValue::Sequence>(LuaValue::Sequence{elements...}));
}

inline LuaValue object(LuaValue::Object members) {
  return LuaValue(std::make_shared<LuaValue::Object>(std::move(members)));
}

inline LuaValue integer(std::int64_t value) { return LuaValue(value); }

// Something of everything, to see that an interpreter is in order.
inline constexpr const char* kBusyScript =
    "function fib(n) if n < 2 then return n end return fib(n - 1) + fib(n - 2) end "
    "local words = {} for i = 1, 300 do words['w' .. i % 50] = {text = 'x' .. i, i} end "
    "local caught = 0 for i = 1, 50 do if not pcall(error, 'e' .. i) then caught = caught + 1 end "
    "end local s = '' for i = 1, 200 do s = s .. i end "
    "return fib(16), #s, caught, words.w7.text";
inline constexpr const char* kBusyOutcome = "[i987 i492 i50 'x257']";

}  // namespace tarvel::lua
