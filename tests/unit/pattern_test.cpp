#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <regex>
#include <string>
#include <utility>

#include "lua/stdlib/patterns/searcher.h"
#include "lua/stdlib/patterns/translation.h"
#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua::internal {
namespace {

using namespace std::string_literals;

// What patterns find: tests/fuzz/patterns.cpp.

TEST(PatternTest, TranslatesToExpressions) {
  const std::pair<std::string, std::string> cases[] = {
      {"()*+.?^$a^b$c", "()*+.?^$a^b$c"},
      {"%a%A%d%D", "[A-Za-z][^A-Za-z][0-9][^0-9]"},
      {"%s%S", "[\\f\\n\\r\\t\\v ][^\\f\\n\\r\\t\\v ]"},
      {"%w%W", "[A-Za-z0-9_][^A-Za-z0-9_]"},
      {"%.%%%-%/%\0"s, "\\.%-/\0"s},
      {"%$%(%)%*%+%?%[%]%^%\\%{%|%}", "\\$\\(\\)\\*\\+\\?\\[\\]\\^\\\\\\{\\|\\}"},
      {"%l%u%p%c%x%b%f%g%1%0%z%L%U%X", "lupcxbfg10zLUX"},
      {"]{}|\\/\"'~\xC3\xA4\n\0"s, "\\]\\{\\}\\|\\\\/\"'~\xC3\xA4\n\0"s},
      // Sets.
      {"[abc][^abc][a^]", "[abc][^abc][a^]"},
      {"[]][^]]", "[]\\][^]\\]"},
      {"[a-z%d-][%a][%s]", "[a-z0-9-][A-Za-z][\\f\\n\\r\\t\\v ]"},
      {"[%w][x%S]", "[A-Za-z0-9_][x^\\f\\n\\r\\t\\v ]"},
      {"[x%W][%S]", "[x^A-Za-z0-9_][^\\f\\n\\r\\t\\v ]"},
      {"[%A%D%l%u%%%.%^]", "[ADlu%.^]"},
      {"[%]]", "[]]"},
      {"[%]", "\\[\\]"},
      {"[%[][%\\d][\\d]", "[[][\\d][\\\\d]"},
      {"[[:alpha:]]", "[[:alpha:]\\]"},
      // What nothing closes is no set.
      {"[^%]-", "\\[^\\]*?"},
      {"a[b[c]d%", "a[b[c]d%"},
      {"[\0-\xFF]"s, "[\0-\xFF]"s},
  };
  for (const auto& [pattern, expression] : cases) {
    EXPECT_EQ(translateLuaPatternToRegex(pattern), expression) << pattern;
  }
}

std::string exhausted() { return std::regex_error(std::regex_constants::error_stack).what(); }

TEST(PatternTest, OnlyTheLatestPatternsAreKept) {
  const TestHeap heap;
  PatternCache cache(heap.get());
  const OwnedValue first = heap.text("a+");
  cache.lookup(*first.get().string, 0);
  EXPECT_EQ(2u, countOf(first));
  for (int i = 0; i < 1000; ++i) {
    cache.lookup(*heap.text("a" + std::to_string(i) + "+").get().string, 0);
  }
  EXPECT_EQ(1u, countOf(first));
}

// ---- The stack ----------------------------------------------------------------------------------

std::string outcomeOn(std::size_t stackBytes, const std::string& script) {
  std::string outcome;
  runOnStack(stackBytes, [&] {
    LuaVM vm;
    vm.setGlobal("big", LuaValue(std::string(50000, 'a')));
    const LuaResult result = vm.runScriptString(script, "deep");
    outcome = result.ok ? result.value.toString() : result.error;
  });
  return outcome;
}

// Just enough for running a script.
constexpr std::size_t kSmallStack = std::size_t{kWideFrames ? 256 : 64} << 10;

TEST(PatternTest, DeepRecursionGivesTheRightAnswerOrAnError) {
  const std::pair<const char*, const char*> cases[] = {
      {"return string.find(big .. 'b', '^(?:.)*b')", "{1, 50001}"},
      {"return #string.match('-' .. big, '(?:[%w])+$')", "50000"},
      {"local first, last = string.find(big .. 'b', '^(a?)-b') return last", "50001"},
      {"local first, last = string.find(big, '^(?=(a*)a)a*$') return last", "50000"},
      {"return string.find('ba', string.rep('b-', 2000) .. 'a')", "{1, 2}"},
      {"return string.find('a', string.rep('(', 2000) .. 'b' .. string.rep(')', 2000))", "nil"},
  };
  for (const auto& [script, answer] : cases) {
    EXPECT_EQ(outcomeOn(std::size_t{200} << 20, script), answer) << script;
    for (std::size_t factor = 1; factor <= 256; factor *= 4) {
      const std::string outcome = outcomeOn(kSmallStack * factor, script);
      EXPECT_TRUE(outcome == answer || outcome == exhausted())
          << script << " with " << factor << " small stacks: " << outcome;
    }
  }
  EXPECT_EQ(outcomeOn(std::size_t{1} << 20, cases[0].first), exhausted());
  const std::string repeated =
      outcomeOn(850 * kSmallStack, "return string.find(big, '^((((((a))))))*b')");
  EXPECT_TRUE(repeated == "nil" || repeated == exhausted()) << repeated;
  // Simple patterns take none.
  EXPECT_EQ(outcomeOn(kSmallStack, "return #string.match('-' .. big .. '!', '.(.*a).$')"), "50000");
  // Too deep to be compiled.
  for (const char* unit : {"(", "(?:", "(?=", "a.", "()", "[a]"}) {
    const std::string script = "return string.find('a', string.rep('" + std::string(unit);
    EXPECT_EQ(outcomeOn(std::size_t{8} << 20, script + "', 100000))"), exhausted()) << unit;
  }
}

}  // namespace
}  // namespace tarvel::lua::internal
