#include "lua/stdlib/pattern.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <tarvel/lua/lua_vm.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "lua/stdlib/pattern_hints.h"

namespace tarvel::lua::internal {
namespace {

using namespace std::string_literals;

// ---- Translation --------------------------------------------------------------------------------

TEST(PatternTest, EscapesExactlyTheSpecialCharacters) {
  const std::string special = "$()*+.?[\\]^{|}";
  for (int i = 0; i < 256; ++i) {
    const char c = static_cast<char>(i);
    std::string expected(1, c);
    if (special.find(c) != std::string::npos) expected.insert(0, 1, '\\');
    EXPECT_EQ(escapeRegexLiteralChar(c), expected) << i;
  }
}

struct TranslationCase {
  std::string pattern;
  std::string translated;
};

TEST(PatternTest, TranslatesOutsideOfSets) {
  const TranslationCase cases[] = {
      {"", ""},
      {"abc", "abc"},
      {"()*+.?^$", "()*+.?^$"},
      {"a^b$c", "a^b$c"},
      {"a-", "a*?"},
      {"-", "*?"},
      {"%a%A%d%D", "[A-Za-z][^A-Za-z][0-9][^0-9]"},
      {"%s", "[\\f\\n\\r\\t\\v ]"},
      {"%S", "[^\\f\\n\\r\\t\\v ]"},
      {"%w%W", "[A-Za-z0-9_][^A-Za-z0-9_]"},
      {"%.%%%-%/", "\\.%-/"},
      {"%$%(%)%*%+%?%[%]%^", "\\$\\(\\)\\*\\+\\?\\[\\]\\^"},
      {"%\\%{%|%}", "\\\\\\{\\|\\}"},
      {"%l%u%p%c%x%b%f%g%1%0%z", "lupcxbfg10z"},
      {"%L%U%P%C%X%G", "LUPCXG"},
      {"%", "%"},
      {"a%", "a%"},
      {"%%%", "%%"},
      {"]{}|\\", "\\]\\{\\}\\|\\\\"},
      {"/\"'~\xC3\xA4", "/\"'~\xC3\xA4"},
      {"a\0b\n"s, "a\0b\n"s},
      {"%\0"s, "\0"s},
  };
  for (const TranslationCase& c : cases) {
    EXPECT_EQ(translateLuaPatternToRegex(c.pattern), c.translated) << c.pattern;
  }
}

TEST(PatternTest, TranslatesSets) {
  const TranslationCase cases[] = {
      {"[abc]", "[abc]"},
      {"[^abc]", "[^abc]"},
      {"[a^]", "[a^]"},
      {"[]", "[]"},
      {"[^]", "[^]"},
      {"[]]", "[]\\]"},
      {"[^]]", "[^]\\]"},
      {"[a-z%d-]", "[a-z0-9-]"},
      {"[%a]", "[A-Za-z]"},
      {"[%d]", "[0-9]"},
      {"[%s]", "[\\f\\n\\r\\t\\v ]"},
      {"[%w]", "[A-Za-z0-9_]"},
      {"[x%S]", "[x^\\f\\n\\r\\t\\v ]"},
      {"[x%W]", "[x^A-Za-z0-9_]"},
      {"[%S]", "[^\\f\\n\\r\\t\\v ]"},
      {"[%A%D]", "[AD]"},
      {"[%l%u%%%.%^]", "[lu%.^]"},
      {"[%]]", "[]]"},
      {"[%]", "\\[\\]"},
      {"[a%]b]c", "[a]b]c"},
      {"[%[]", "[[]"},
      {"[%\\d]", "[\\d]"},
      {"[\\d]", "[\\\\d]"},
      {"[().*+?$|{}]", "[().*+?$|{}]"},
      {"[[:alpha:]]", "[[:alpha:]\\]"},
      {"[", "\\["},
      {"[^", "\\[^"},
      {"[a", "\\[a"},
      {"[%a", "\\[[A-Za-z]"},
      {"[%", "\\[%"},
      {"[^%]-", "\\[^\\]*?"},
      {"a[b[c]d", "a[b[c]d"},
      {"[\0-\xFF]"s, "[\0-\xFF]"s},
  };
  for (const TranslationCase& c : cases) {
    EXPECT_EQ(translateLuaPatternToRegex(c.pattern), c.translated) << c.pattern;
  }
}

// ---- Hints --------------------------------------------------------------------------------------

struct HintCase {
  std::string expression;
  std::string description;
};

std::string describe(const SearchHints& hints) {
  std::string text;
  if (hints.anchored) text += "anchored ";
  if (!hints.prefix.empty()) text += "prefix=" + hints.prefix + " ";
  if (hints.isLiteral) text += "literal ";
  if (hints.isRun) text += "whole ";
  if (hints.required) text += "required="s + *hints.required + " ";
  if (hints.run) text += "run:" + std::to_string(hints.run->count()) + " ";
  if (hints.first) text += "first:" + std::to_string(hints.first->count());
  return text;
}

TEST(PatternTest, KnowsWhatMatchesHaveInCommon) {
  const HintCase cases[] = {
      {"^a", "anchored "},
      {"a\\.b", "prefix=a.b literal first:1"},
      {"took=([0-9]+)", "prefix=took= first:1"},
      {"([A-Za-z]+)=([0-9])", "required== run:52 first:52"},
      {".*b", "required=b first:254"},
      {"a+b", "prefix=a required=b run:1 first:1"},
      {"a+?b", "prefix=a required=b run:1 first:1"},
      {"a+*b", "required=b first:2"},
      {"-?[0-9]", "first:11"},
      {"[0-9-]", "first:11"},
      {"[-x\\n]", "first:3"},
      {"[x-]a", "required=a first:2"},
      {"[a-c-z]", "first:5"},
      {"([0-9]*)[^0-9]", "run:10 first:256"},
      {"((a+)b)+", "prefix=a required=b run:1 first:1"},
      {"[ab]+(b)", "required=b first:2"},
      {"([ab]+)+c", "required=c first:2"},
      {"[ab]+c?", "first:2"},
      {"[ab]+$", "run:2 first:2"},
      {"[ab]+", "whole first:2"},
      {"a+", "prefix=a whole first:1"},
      {"[ab]+?", "first:2"},
      {"[ab]++", ""},
      {"([ab]+)", "first:2"},
      {"[ab]+[cd]+", "run:2 first:2"},
      {"a?", ""},
      {"a*$", ""},
      {"a*b", "required=b run:1 first:2"},
      {"$a", "required=a "},
      {"([=])[^\\\\\\]]x", "prefix== required=x first:1"},
      // An optional group, and what is not understood.
      {"(a)?b", ""},
      {"(ab)+c", "prefix=ab required=c first:1"},
      {"ab(?=c)", "prefix=ab first:1"},
      {"a[\\d]", "prefix=a first:1"},
      {"[[]", ""},
      {"[!-0]a", ""},
  };
  for (const HintCase& c : cases) {
    EXPECT_EQ(describe(findSearchHints(c.expression)), c.description) << c.expression;
  }
}

// ---- Results against std::regex and another translation -----------------------------------------

// The same rules in another form: the pattern is first cut into pieces, then the pieces are looked
// up.
class ReferenceTranslation {
 public:
  explicit ReferenceTranslation(std::string pattern) : pattern_(std::move(pattern)) {}

  std::string translate() {
    std::string out;
    while (position_ < pattern_.size()) out += piece();
    return out;
  }

 private:
  std::string piece() {
    const std::string rest = pattern_.substr(position_);
    std::smatch set;
    // Without the newline quirk of `.`: a set is a bracket, perhaps `^`, then escaped pairs or
    // bytes that are neither `%` nor a closing bracket.
    static const std::regex kSet("\\[(\\^?)((?:%[^]|[^%\\]])*)\\]");
    if (std::regex_search(rest, set, kSet, std::regex_constants::match_continuous)) {
      position_ += set[0].str().size();
      return std::string("[").append(set[1].str()).append(contents(set[2].str())).append("]");
    }
    if (rest[0] == '%') {
      position_ += rest.size() > 1 ? 2 : 1;
      return rest.size() > 1 ? escaped(rest[1]) : "%";
    }
    ++position_;
    if (rest[0] == '-') return "*?";
    const bool isCopied = "()*+.?^$"s.find(rest[0]) != std::string::npos;
    return isCopied ? rest.substr(0, 1) : literal(rest[0]);
  }

  static std::string escaped(char c) {
    static const std::map<char, std::string> kClasses = {
        {'a', "A-Za-z"}, {'d', "0-9"}, {'s', "\\f\\n\\r\\t\\v "}, {'w', "A-Za-z0-9_"}};
    const char lower = static_cast<char>(c | 0x20);
    const bool isLetter = (lower >= 'a' && lower <= 'z');
    const auto found = isLetter ? kClasses.find(lower) : kClasses.end();
    if (found == kClasses.end()) return literal(c);
    return std::string(c == lower ? "[" : "[^").append(found->second).append("]");
  }

  static std::string contents(const std::string& set) {
    static const std::map<char, std::string> kClasses = {
        {'a', "A-Za-z"},     {'d', "0-9"},         {'s', "\\f\\n\\r\\t\\v "},
        {'w', "A-Za-z0-9_"}, {'W', "^A-Za-z0-9_"}, {'S', "^\\f\\n\\r\\t\\v "}};
    std::string out;
    bool afterPercent = false;
    for (const char c : set) {
      const auto found = kClasses.find(c);
      if (afterPercent) {
        out += found != kClasses.end() ? found->second : std::string(1, c);
      } else if (c != '%') {
        out.append(c == '\\' ? 2 : 1, c);
      }
      afterPercent = !afterPercent && c == '%';
    }
    return out;
  }

  static std::string literal(char c) {
    const bool isSpecial = "$()*+.?[\\]^{|}"s.find(c) != std::string::npos;
    return isSpecial ? std::string{'\\', c} : std::string{c};
  }

  std::string pattern_;
  std::size_t position_ = 0;
};

// The first `count` values as the script below writes them.
std::string rowOf(std::vector<std::string> values, std::size_t count) {
  values.resize(count, "nil");
  std::string text;
  for (const std::string& value : values) text.append(value).append("|");
  return text.append("\n");
}

// What the script below must return, straight from std::regex.
class Reference {
 public:
  Reference(std::string subject, const std::string& pattern)
      : subject_(std::move(subject)), expression_(ReferenceTranslation(pattern).translate()) {}

  std::string findAndMatch(std::size_t init) const {
    std::vector<std::string> found;
    std::vector<std::string> matched;
    const std::string suffix = subject_.substr(std::min(init, subject_.size()));
    std::smatch match;
    if (init <= subject_.size() && std::regex_search(suffix, match, expression_)) {
      const std::size_t start = init + static_cast<std::size_t>(match.position(0));
      matched = capturesOf(match);
      found = matched;
      found.insert(found.begin(), std::to_string(start + match.str(0).size()));
      found.insert(found.begin(), std::to_string(start + 1));
      if (matched.empty()) matched = {match.str(0)};
    }
    return rowOf(found, 5) + rowOf(matched, 4);
  }

  std::string gmatchAndGsub(const std::string& replacement) const {
    std::string loops;
    std::string replaced;
    std::size_t cursor = 0;
    int count = 0;
    for (std::smatch match; cursor <= subject_.size();) {
      const std::string suffix = subject_.substr(cursor);
      if (!std::regex_search(suffix, match, expression_)) break;
      ++count;
      std::vector<std::string> values = capturesOf(match);
      if (values.empty()) values.push_back(match.str(0));
      loops += rowOf(values, 3);
      replaced += std::string(match.prefix()) + replacement;
      cursor += static_cast<std::size_t>(match.position(0) + match.length(0));
      if (match.length(0) > 0) continue;
      if (cursor < subject_.size()) replaced += subject_[cursor];
      ++cursor;
    }
    if (cursor < subject_.size()) replaced += subject_.substr(cursor);
    return loops + rowOf({replaced, std::to_string(count)}, 2);
  }

 private:
  static std::vector<std::string> capturesOf(const std::smatch& match) {
    std::vector<std::string> captures;
    for (std::size_t i = 1; i < match.size(); ++i) captures.push_back(match.str(i));
    return captures;
  }

  std::string subject_;
  std::regex expression_;
};

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

class PatternGenerator {
 public:
  explicit PatternGenerator(std::uint32_t seed) : random_(seed) {}

  // Mostly what programs write; now and then something that std::regex rejects.
  std::string pattern() {
    std::string text = chance(8) ? "^" : "";
    int groups = 0;
    for (std::size_t left = below(6) + 1; left > 0; --left) {
      if (groups < 3 && chance(4)) {
        ++groups;
        text += group();
      } else {
        text += repeatedItem();
      }
    }
    if (chance(8)) text += "$";
    if (chance(12)) text.insert(below(text.size() + 1), 1, pick("()[]%*-^$?+\\{|a\0\xE4"s));
    latest_ = text;
    return text;
  }

  const std::string& latest() const { return latest_; }

  std::string subject() {
    const std::string alphabet = chance(4) ? "ab1 =-.\n\r\v\f\t_%]\\^x\0\xE4\xFF"s : "aab1 =-"s;
    std::string text;
    for (std::size_t left = below(14); left > 0; --left) text += pick(alphabet);
    return text;
  }

  std::size_t below(std::size_t limit) { return random_() % limit; }

 private:
  bool chance(std::size_t oneIn) { return below(oneIn) == 0; }
  char pick(const std::string& from) { return from[below(from.size())]; }
  std::string pick(const std::vector<std::string>& from) { return from[below(from.size())]; }

  std::string quantifier() { return pick(std::vector<std::string>{"*", "+", "-", "?"}); }

  std::string item() {
    static const std::vector<std::string> kItems = {
        "a",       "a",     "b",   "=",    "1",    " ",      "%-",      "%.",      "%%",
        "]",       "ab",    "a=",  "%a",   "%d",   "%s",     "%w",      "%A",      "%D",
        "%S",      "%W",    ".",   "[ab]", "[^a]", "[%w]",   "[a-c1]",  "[^%s]",   "[%d-]",
        "[-a]",    "[]",    "[^]", "[%]]", "[=]",  "[%S]",   "[^%w%s]", "[\\a]",   "[%.%-%+]",
        "[1-]",    "[ -b]", "%\\", "$",    "[%A]", "{",      "|",       "\xE4",    "[\xE4]",
        "[^\xE4]", "()",    "^",   "\n",   "[[]",  "[%\\d]", "(?=^)",   "[a-c-1]", "(?=a)"};
    return pick(kItems);
  }

  std::string repeatedItem() {
    std::string text = item();
    if (chance(2)) text += quantifier();
    if (chance(20)) text += quantifier();
    return text;
  }

  // A repetition within a repetition can take exponential time, so it is rare and there is just the
  // one.
  std::string group() {
    const bool isRepeated = chance(3);
    std::string text = "(";
    if (isRepeated) {
      text += item();
      if (chance(6)) text += quantifier();
    } else {
      text += repeatedItem();
    }
    if (chance(2)) text += item();
    text += ')';
    if (isRepeated) text += quantifier();
    return text;
  }

  std::mt19937 random_;
  std::string latest_;
};

std::string expectedFor(const std::string& subject, const std::string& pattern, std::int64_t init,
                        const std::string& replacement) {
  try {
    const Reference reference(subject, pattern);
    return reference.findAndMatch(static_cast<std::size_t>(init < 1 ? 0 : init - 1)) +
           reference.gmatchAndGsub(replacement);
  } catch (const std::regex_error& error) {
    return error.what();
  }
}

std::string exhausted() { return std::regex_error(std::regex_constants::error_stack).what(); }

// How often the script gave what std::regex says, other than a rejection.
int compareAtRandom(std::uint32_t seed, int rounds, bool stackMayBeExhausted) {
  PatternGenerator generator(seed);
  LuaVM vm;
  int matching = 0;
  for (int round = 0; round < rounds * 3; ++round) {
    const std::string pattern = round % 3 == 0 ? generator.pattern() : generator.latest();
    const std::string subject = generator.subject();
    const auto init = static_cast<std::int64_t>(generator.below(subject.size() + 4)) - 1;
    const std::string replacement = generator.below(2) == 0 ? "<%0>" : "";
    vm.setGlobal("subject", LuaValue(subject));
    vm.setGlobal("pattern", LuaValue(pattern));
    vm.setGlobal("replacement", LuaValue(replacement));
    vm.setGlobal("init", LuaValue(init));
    const LuaResult result = vm.runScriptString(kComparedScript, "compare");
    const std::string expected = expectedFor(subject, pattern, init, replacement);
    const std::string actual = result.ok ? result.value.toString() : result.error;
    if (stackMayBeExhausted && actual == exhausted()) continue;
    EXPECT_EQ(actual, expected) << "pattern " << testing::PrintToString(pattern) << " in "
                                << testing::PrintToString(subject) << " from " << init;
    if (actual != expected) break;
    if (actual.ends_with('\n')) ++matching;
  }
  return matching;
}

TEST(PatternTest, ResultsAreThoseOfStdRegex) {
  EXPECT_GT(compareAtRandom(20240607, 4000, false), 8000);
}

// ---- The cache ----------------------------------------------------------------------------------

TEST(PatternTest, CacheForgetsWithoutConfusingPatterns) {
  LuaVM vm;
  const LuaResult result = vm.runScriptString(R"lua(
local wrong = 0
for round = 1, 3 do
  for i = 1, 700 do
    local text = "n" .. i
    local found = string.match("<" .. text .. ">", "(" .. text .. ")%W")
    if found ~= text then wrong = wrong + 1 end
    if pcall(string.find, text, "(" .. i) then wrong = wrong + 1 end
  end
end
-- Too long to be kept.
local long = string.rep("a", 3000)
for i = 1, 3 do
  if string.find("x" .. long .. i, long .. "(%d)") ~= 2 then wrong = wrong + 1 end
end
return wrong
)lua",
                                              "cache");
  ASSERT_TRUE(result.ok) << result.error;
  EXPECT_EQ(result.value.toString(), "0");
}

// ---- The stack ----------------------------------------------------------------------------------

void* runJob(void* job) {
  (*static_cast<const std::function<void()>*>(job))();
  return nullptr;
}

void runOnThread(std::size_t stackBytes, const std::function<void()>& job) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, stackBytes), 0);
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, runJob,
                           const_cast<void*>(static_cast<const void*>(&job))),
            0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

std::string outcomeOn(std::size_t stackBytes, const std::string& script) {
  std::string outcome;
  runOnThread(stackBytes, [&] {
    LuaVM vm;
    vm.setGlobal("big", LuaValue(std::string(50000, 'a')));
    const LuaResult result = vm.runScriptString(script, "deep");
    outcome = result.ok ? result.value.toString() : result.error;
  });
  return outcome;
}

// Just enough for running a script. Sanitizers widen the frames.
#ifdef TARVELLUA_CHECKED_HEAP
constexpr std::size_t kSmallStack = std::size_t{256} << 10;
#else
constexpr std::size_t kSmallStack = std::size_t{64} << 10;
#endif

struct DeepCase {
  std::string script;
  std::string answer;
};

TEST(PatternTest, DeepRecursionGivesTheRightAnswerOrAnError) {
  const DeepCase cases[] = {
      {"return string.find(big .. 'b', '^.*b')", "{1, 50001}"},
      {"return #string.match(big .. 'x', '(.-)x')", "50000"},
      {"return #string.match('-' .. big, '[%w]+$')", "50000"},
      {"return string.find(big, '^((a))*b')", "nil"},
      {"local first, last = string.find(big, '^(a*)*$') return last", "50000"},
      {"local first, last = string.find(big .. 'b', '^(a?)-b') return last", "50001"},
      {"local first, last = string.find(big, '^(?=(a*)a)a*$') return last", "50000"},
      {"return #string.gsub(big, '(a)(a*)', '')", "0"},
      {"local first = string.find('ba', string.rep('()', 2000) .. 'a+') return first", "2"},
      {"return string.find('ba', string.rep('b-', 2000) .. 'a')", "{1, 2}"},
      {"return string.find('a', string.rep('(', 2000) .. 'b' .. string.rep(')', 2000))", "nil"},
      {"return string.find(big, string.rep('a', 10000) .. '+$')", "{1, 50000}"},
  };
  for (const DeepCase& c : cases) {
    EXPECT_EQ(outcomeOn(std::size_t{200} << 20, c.script), c.answer) << c.script;
    for (std::size_t factor = 1; factor <= 256; factor *= 4) {
      const std::string outcome = outcomeOn(kSmallStack * factor, c.script);
      EXPECT_TRUE(outcome == c.answer || outcome == exhausted())
          << c.script << " with " << factor << " small stacks: " << outcome;
    }
  }
  EXPECT_EQ(outcomeOn(std::size_t{1} << 20, cases[0].script), exhausted());
}

TEST(PatternTest, ExpressionsTooDeepToCompileAreErrors) {
  for (const char* unit : {"(", "(?:", "(?=", "a.", "()", "[a]"}) {
    const std::string script =
        "return string.find('a', string.rep('" + std::string(unit) + "', 100000))";
    EXPECT_EQ(outcomeOn(std::size_t{8} << 20, script), exhausted()) << unit;
  }
}

// On a stack this small, part of the searches runs with the stack watched.
TEST(PatternTest, WatchingTheStackChangesNoResult) {
  int matching = 0;
  runOnThread(kSmallStack, [&] { matching = compareAtRandom(1, 1500, true); });
  EXPECT_GT(matching, 1500);
}

// What an ordinary pattern needs is there on a small stack too.
TEST(PatternTest, OrdinarySearchesWorkOnASmallStack) {
  EXPECT_EQ(
      outcomeOn(std::size_t{256} << 10, "return string.match('key = value', '(%w+)%s*=%s*(%w+)')"),
      "{key, value}");
}

}  // namespace
}  // namespace tarvel::lua::internal
