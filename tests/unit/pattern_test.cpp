#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <latch>
#include <random>
#include <regex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "lua/stdlib/patterns/searcher.h"
#include "lua/stdlib/patterns/translation.h"
#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua::internal {
namespace {

using namespace std::string_literals;

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

// ---- Results against std::regex -----------------------------------------------------------------

// The first `count` values as the script below writes them.
std::string rowOf(std::vector<std::string> values, std::size_t count) {
  values.resize(count, "nil");
  std::string text;
  for (const std::string& value : values) text.append(value).append("|");
  return text.append("\n");
}

std::vector<std::string> capturesOf(const std::smatch& match) {
  std::vector<std::string> captures;
  for (std::size_t i = 1; i < match.size(); ++i) captures.push_back(match.str(i));
  return captures;
}

// What the script below must return, straight from std::regex.
std::string expectedFor(const std::string& subject, const std::string& pattern, std::int64_t init,
                        const std::string& replacement) try {
  const std::regex expression(translateLuaPatternToRegex(pattern));
  const std::size_t skipped = static_cast<std::size_t>(std::max<std::int64_t>(init, 1)) - 1;
  std::vector<std::string> found;
  std::vector<std::string> matched;
  std::string rest = subject.substr(std::min(skipped, subject.size()));
  std::smatch match;
  if (skipped <= subject.size() && std::regex_search(rest, match, expression)) {
    const std::size_t start = skipped + static_cast<std::size_t>(match.position(0));
    matched = capturesOf(match);
    found = matched;
    found.insert(found.begin(), std::to_string(start + match.str(0).size()));
    found.insert(found.begin(), std::to_string(start + 1));
    if (matched.empty()) matched = {match.str(0)};
  }
  std::string text = rowOf(found, 5) + rowOf(matched, 4);

  std::string replaced;
  std::size_t cursor = 0;
  int count = 0;
  while (cursor <= subject.size()) {
    rest = subject.substr(cursor);
    if (!std::regex_search(rest, match, expression)) break;
    ++count;
    matched = capturesOf(match);
    if (matched.empty()) matched.push_back(match.str(0));
    text += rowOf(matched, 3);
    replaced += std::string(match.prefix()) + replacement;
    cursor += static_cast<std::size_t>(match.position(0) + match.length(0));
    if (match.length(0) > 0) continue;
    if (cursor < subject.size()) replaced += subject[cursor];
    ++cursor;
  }
  if (cursor < subject.size()) replaced += subject.substr(cursor);
  return text + rowOf({replaced, std::to_string(count)}, 2);
} catch (const std::regex_error& error) {
  return error.what();
}

constexpr const char* kComparedScript = R"lua(
function row(a, b, c, d, e)
  local text = ""
  for i, value in ipairs({a, b, c, d, e}) do text = text .. value .. "|" end
  return text .. "\n"
end
local ok, text = pcall(function()
  local a, b, c, d, e = string.find(subject, pattern, init)
  local text = row(tostring(a), tostring(b), tostring(c), tostring(d), tostring(e))
  a, b, c, d = string.match(subject, pattern, init)
  text = text .. row(tostring(a), tostring(b), tostring(c), tostring(d))
  for a, b, c in string.gmatch(subject, pattern) do
    text = text .. row(a, tostring(b), tostring(c))
  end
  a, b, c = string.gsub(subject, pattern, replacement)
  return text .. row(a, b, c)
end)
return text
)lua";

// Mostly what programs write; now and then something that std::regex rejects.
std::string anyPattern(std::mt19937& random) {
  static const std::string kPieces[] = {
      "a",     "a",       "b",     "=",     "1",     " ",    "%-",    "%.",     "%%",     "]",
      "a=",    "%a",      "%d",    "%s",    "%w",    "%A",   "%D",    "%S",     "%W",     ".",
      "[ab]",  "[^a]",    "[%w]",  "[^%s]", "[%d-]", "[-a]", "[]",    "[^]",    "[%]]",   "[%S]",
      "[1-]",  "[^%w%s]", "[\\a]", "[ -b]", "%\\",   "[%A]", "{",     "[\xE4]", "[[]",    "\n",
      "(?=a)", "|",       "()",    "(a)",   "(%w+)", "(b-)", "(a=)?", "(.)*",   "(a*1)+", "([^ ]*)",
      "*",     "*",       "+",     "+",     "-",     "-",    "?",     "?",      "^",      "$"};
  std::string text = random() % 8 == 0 ? "^" : "";
  for (std::size_t left = random() % 7 + 1; left > 0; --left) {
    text += kPieces[random() % std::size(kPieces)];
  }
  if (random() % 8 == 0) text += "$";
  if (random() % 12 == 0)
    text.insert(random() % (text.size() + 1), 1, "()[]%\\{|\xE4"[random() % 9]);
  return text;
}

std::string anySubject(std::mt19937& random) {
  const std::string alphabet =
      random() % 4 == 0 ? "ab1 =-.\n\r\v\f\t_%]\\^x\0\xE4\xFF"s : "aab1 =-"s;
  std::string text;
  for (std::size_t left = random() % 14; left > 0; --left)
    text += alphabet[random() % alphabet.size()];
  return text;
}

std::string exhausted() { return std::regex_error(std::regex_constants::error_stack).what(); }

// How often the script gave what std::regex says, other than a rejection.
int compareAtRandom(std::uint32_t seed, int rounds, bool stackMayBeExhausted,
                    bool supervised = false) {
  std::mt19937 random(seed);
  LuaVM vm({.supervised = supervised});
  int matching = 0;
  std::string pattern;
  for (int round = 0; round < rounds * 3; ++round) {
    if (round % 3 == 0) pattern = anyPattern(random);
    const std::string subject = anySubject(random);
    const auto init = static_cast<std::int64_t>(random() % (subject.size() + 4)) - 1;
    const std::string replacement = random() % 2 == 0 ? "<%0>" : "";
    vm.setGlobal("subject", LuaValue(subject));
    vm.setGlobal("pattern", LuaValue(pattern));
    vm.setGlobal("replacement", LuaValue(replacement));
    vm.setGlobal("init", LuaValue(init));
    const LuaResult result = vm.runScriptString(kComparedScript, "compare");
    const std::string actual = result.ok ? result.value.toString() : result.error;
    if (stackMayBeExhausted && actual == exhausted()) continue;
    const std::string expected = expectedFor(subject, pattern, init, replacement);
    EXPECT_EQ(actual, expected) << "pattern " << testing::PrintToString(pattern) << " in "
                                << testing::PrintToString(subject) << " from " << init;
    if (actual != expected) break;
    if (actual.ends_with('\n')) ++matching;
  }
  return matching;
}

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

TEST(PatternTest, ResultsAreThoseOfStdRegex) {
  EXPECT_GT(compareAtRandom(20240607, 4000, false), 8000);
  EXPECT_GT(compareAtRandom(20240607, 600, false, true), 1200);
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
      {"return string.find(big, '^((a))*b')", "nil"},
      {"local first, last = string.find(big, '^(a*)*$') return last", "50000"},
      {"local first, last = string.find(big .. 'b', '^(a?)-b') return last", "50001"},
      {"local first, last = string.find(big, '^(?=(a*)a)a*$') return last", "50000"},
      {"local first = string.find('a]', '[a%](b?){1000}]') return first", "1"},
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

// On a stack this small, part of the searches runs with the stack watched.
TEST(PatternTest, WatchingTheStackChangesNoResult) {
  int matching = 0;
  runOnStack(kSmallStack, [&] { matching = compareAtRandom(1, 1500, true); });
  EXPECT_GT(matching, 1500);
  EXPECT_EQ(
      outcomeOn(4 * kSmallStack, "return string.match('key = value', '(%w+)(?:%s)*=%s*(%w+)')"),
      "{key, value}");
}

// That they do not disturb each other inside the C++ library, only the thread sanitizer sees.
TEST(PatternTest, IsCompiledOnThreadsAtOnce) {
  std::vector<std::string> outcomes(4);
  std::latch ready(static_cast<std::ptrdiff_t>(outcomes.size()));
  std::vector<std::thread> threads;
  for (std::string& outcome : outcomes) {
    threads.emplace_back([&outcome, &ready] {
      LuaVM vm;
      ready.arrive_and_wait();
      outcome = run(vm, "return string.gsub('one two_3', '([%a_]+)(%d)*', '#')");
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& outcome : outcomes) EXPECT_EQ("['# #' i2]", outcome);
}

}  // namespace
}  // namespace tarvel::lua::internal
