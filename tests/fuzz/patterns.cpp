#include <tarvel/lua/lua_vm.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <regex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "lua/stdlib/patterns/translation.h"
#include "tests/fuzz/choices.h"
#include "tests/unit/value_support.h"

// Searches a few subjects for a pattern: find, match, gmatch and gsub give what std::regex gives,
// or the error that it throws; supervised, too, and on a small stack, where part of the searches
// runs with the stack watched.

namespace tarvel::lua::fuzz {

namespace {

using namespace std::string_literals;

constexpr int kMostSubjects = 6;
// Of a supervised search. One that takes more may take std::regex forever.
constexpr std::uint64_t kMostSteps = 200000;
// Just enough for running a script.
constexpr std::size_t kSmallStack = std::size_t{internal::kWideFrames ? 256 : 64} << 10;

class Generator {
 public:
  explicit Generator(Choices choices) : choices_(choices) {
    static const std::string kAlphabets[] = {"ab", "ab1 =", "aB_9 -.,", "a\n\r\t\0"s,
                                             "\x80\xC4\xFF\x7F\x01z"};
    alphabet_ = choices_.of(kAlphabets);
  }

  bool isEmpty() const { return choices_.isEmpty(); }
  unsigned below(std::size_t bound) { return choices_.below(static_cast<unsigned>(bound)); }
  bool oneIn(unsigned others) { return choices_.oneIn(others); }

  // Short where std::regex may take a power of the length, or worse.
  std::string subject(std::string_view pattern) {
    const auto repetitions = std::count_if(pattern.begin(), pattern.end(), [](char c) {
      return std::string_view("*+-").find(c) != std::string_view::npos;
    });
    std::string text;
    const bool mayRepeatGroups = pattern.find('(') != std::string_view::npos;
    for (unsigned left = below(repetitions < 3 && !mayRepeatGroups ? 60 : 14); left > 0; --left)
      text += byte();
    return text;
  }

  // Mostly what programs write; now and then something that std::regex rejects.
  std::string pattern() {
    static const char* const kPieces[] = {
        "a",    "a",      "b",    "=",      "1",       " ",     "%-",    "%.",   "%%",
        "]",    "a=",     "%a",   "%d",     "%s",      "%w",    "%A",    "%D",   "%S",
        "%W",   ".",      "[ab]", "[^a]",   "[%w]",    "[^%s]", "[%d-]", "[-a]", "[]",
        "[^]",  "[%]]",   "[%S]", "[1-]",   "[^%w%s]", "[\\a]", "[ -b]", "%\\",  "[%A]",
        "{",    "[\xE4]", "[[]",  "\n",     "(?=a)",   "|",     "()",    "(a)",  "(%w+)",
        "(b-)", "(a=)?",  "(.)*", "(a*1)+", "([^ ]*)", "^",     "$"};
    static const char* const kQuantifiers[] = {"*", "+", "-", "?", "-"};
    std::string text = oneIn(6) ? "^" : "";
    std::size_t open = 0;
    for (unsigned left = below(7) + 1; left > 0; --left) {
      if (oneIn(6)) {
        text += "(";
        ++open;
      }
      const unsigned kind = below(8);
      text += kind < 4 ? choices_.of(kPieces) : kind < 6 ? literal() : set();
      if (oneIn(2)) text += choices_.of(kQuantifiers);
      if (open > 0 && oneIn(2)) {
        text += ")";
        --open;
      }
    }
    return text.append(open, ')') + (oneIn(6) ? "$" : "");
  }

 private:
  char byte() { return alphabet_[below(alphabet_.size())]; }

  std::string literal() {
    const char c = byte();
    const bool isMagic = std::string_view("()*+.?^$-%[").find(c) != std::string_view::npos;
    return isMagic ? std::string{'%', c} : std::string(1, c);
  }

  std::string set() {
    std::string text = oneIn(3) ? "[^" : "[";
    for (unsigned left = below(3) + 1; left > 0; --left) {
      text += oneIn(3) ? std::string{'%', "adswADSW"[below(8)]} : std::string(1, byte());
      if (oneIn(3)) text.append("-").append(1, byte());
    }
    return text + "]";
  }

  Choices choices_;
  std::string alphabet_;
};

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
  const std::regex expression(internal::translateLuaPatternToRegex(pattern));
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

std::string exhausted() { return std::regex_error(std::regex_constants::error_stack).what(); }

}  // namespace

std::string findProblem(std::span<const std::uint8_t> bytes) {
  Generator any{Choices(bytes)};
  const bool isSupervised = any.oneIn(4);
  const bool isOnSmallStack = any.oneIn(8);
  const std::string pattern = any.pattern();
  LuaOptions options;
  options.supervised = true;
  options.limits.steps = kMostSteps;
  LuaVM supervised(options);
  LuaVM unsupervised;
  LuaVM& vm = isSupervised ? supervised : unsupervised;
  for (int i = 0; i < kMostSubjects && !any.isEmpty(); ++i) {
    const std::string subject = any.subject(pattern);
    const auto init = static_cast<std::int64_t>(any.below(subject.size() + 4)) - 1;
    const std::string replacement = any.oneIn(2) ? "<%0>" : "";
    for (LuaVM* each : {&supervised, &unsupervised}) {
      each->setGlobal("pattern", pattern);
      each->setGlobal("subject", subject);
      each->setGlobal("replacement", replacement);
      each->setGlobal("init", init);
    }
    LuaResult result = supervised.runScriptString(kComparedScript, "compare");
    if (!result.ok && result.detail->kind == LuaError::Kind::Steps) continue;
    const auto run = [&] { result = vm.runScriptString(kComparedScript, "compare"); };
    isOnSmallStack ? internal::runOnStack(kSmallStack, run) : run();
    const std::string found = result.ok ? result.value.toString() : result.error;
    if (isOnSmallStack && found == exhausted()) continue;
    const std::string expected = expectedFor(subject, pattern, init, replacement);
    if (found != expected)
      return "'" + pattern + "' in '" + subject + "' from " + std::to_string(init) + ":\n" + found +
             "instead of\n" + expected;
  }
  return {};
}

}  // namespace tarvel::lua::fuzz
