#include "lua/stdlib/patterns/matcher.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "lua/stdlib/patterns/translation.h"

namespace tarvel::lua::internal {
namespace {

using namespace std::string_literals;

// ---- Against std::regex, with patterns and subjects from a generator ----------------------------

class Generator {
 public:
  explicit Generator(std::uint32_t seed) : random_(seed) {}

  std::size_t below(std::size_t bound) { return random_() % bound; }
  bool oneIn(std::size_t bound) { return below(bound) == 0; }

  // From here on, texts are made of other bytes.
  void changeAlphabet() {
    static const std::string kAlphabets[] = {"ab", "ab1 =", "aB_9 -.,", "a\n\r\t\0"s,
                                             "\x80\xC4\xFF\x7F\x01z"};
    alphabet_ = kAlphabets[below(std::size(kAlphabets))];
  }

  std::string subject() {
    std::string text;
    for (std::size_t left = below(oneIn(8) ? 60 : 16); left > 0; --left) text += byte();
    return text;
  }

  std::string pattern() {
    std::string text = oneIn(6) ? "^" : "";
    std::size_t open = 0;
    for (std::size_t left = below(7) + 1; left > 0; --left) {
      if (oneIn(5)) {
        text += "(";
        ++open;
      }
      if (!oneIn(12)) text += piece();
      if (open > 0 && oneIn(2)) {
        text += ")";
        --open;
      }
    }
    text.append(open, ')');
    if (oneIn(6)) text += "$";
    if (oneIn(16)) text.insert(below(text.size() + 1), 1, "()[]%^$*+?-{|\\"[below(14)]);
    return text;
  }

 private:
  char byte() { return alphabet_[below(alphabet_.size())]; }

  std::string literal() {
    const char c = byte();
    const bool isMagic = std::string("()*+.?^$-%[").find(c) != std::string::npos;
    return isMagic ? std::string{'%', c} : std::string(1, c);
  }

  std::string characterClass() { return std::string{'%', "adswADSW"[below(8)]}; }

  std::string set() {
    std::string text = oneIn(3) ? "[^" : "[";
    for (std::size_t left = below(oneIn(4) ? 4 : 2) + 1; left > 0; --left) {
      if (oneIn(3)) {
        text += characterClass();
      } else if (oneIn(3)) {
        text.append(1, byte()).append("-").append(1, byte());
      } else {
        text += oneIn(8) ? "-[\\^%%"[below(6)] : byte();
      }
    }
    return text + "]";
  }

  std::string piece() {
    const std::size_t kind = below(10);
    std::string text = kind < 4 ? literal() : kind < 5 ? "." : kind < 7 ? characterClass() : set();
    if (oneIn(10)) return text + (oneIn(2) ? "$" : "^");
    if (oneIn(2)) text += "*+?--"[below(5)];
    if (oneIn(24)) text += "?+"[below(2)];
    return text;
  }

  std::mt19937 random_;
  std::string alphabet_;
};

// Start, end and groups; "none" without a match.
std::string outcomeOf(Matcher& matcher, WorkMeter& meter, const std::string& subject,
                      std::size_t from) {
  PatternMatch match;
  if (!matcher.search(meter, subject, from, match, 0)) return "none";
  std::string text = std::to_string(match.start) + "-" + std::to_string(match.end);
  for (const std::string_view capture : match.captures) {
    text += ";" + std::to_string(capture.data() - subject.data()) + "+" +
            std::to_string(capture.size());
  }
  return text;
}

std::string outcomeOf(const std::regex& expression, const std::string& subject, std::size_t from) {
  const char* const start = subject.data() + from;
  std::cmatch match;
  if (!std::regex_search(start, subject.data() + subject.size(), match, expression)) return "none";
  const auto offset = static_cast<std::size_t>(match.position(0)) + from;
  std::string text = std::to_string(offset) + "-" +
                     std::to_string(offset + static_cast<std::size_t>(match.length(0)));
  for (std::size_t i = 1; i < match.size(); ++i)
    text += ";" + std::to_string(match[i].first - subject.data()) + "+" +
            std::to_string(match.length(i));
  return text;
}

std::optional<std::regex> compileStandard(const std::string& expression) try {
  return std::regex(expression);
} catch (const std::regex_error&) {
  return std::nullopt;
}

struct Totals {
  int accepted = 0;
  int rejected = 0;  // by std::regex
  int others = 0;
  int searches = 0;
  int matches = 0;
};

void compareSearches(Generator& any, Matcher& matcher, const std::regex& standard,
                     const std::string& pattern, Totals& totals) {
  WorkMeter free;
  WorkMeter counting;
  counting.setSupervised();
  for (int i = 0; i < 60; ++i) {
    const std::string subject = any.subject();
    const std::size_t from = any.oneIn(3) ? any.below(subject.size() + 1) : 0;
    const std::string expected = outcomeOf(standard, subject, from);
    ASSERT_EQ(expected, outcomeOf(matcher, any.oneIn(4) ? counting : free, subject, from))
        << testing::PrintToString(pattern) << " in " << testing::PrintToString(subject) << " from "
        << from;
    ++totals.searches;
    if (expected != "none") ++totals.matches;
  }
}

// How many patterns are tried; more by the environment.
int patternCount() {
  const char* const wanted = std::getenv("TARVELLUA_MATCHER_PATTERNS");
  return wanted != nullptr ? std::atoi(wanted) : 1000;
}

TEST(MatcherTest, FindsWhatStdRegexFinds) {
  Generator any(20251011);
  Totals totals;
  for (int i = 0; i < patternCount() && !HasFatalFailure(); ++i) {
    any.changeAlphabet();
    const std::string pattern = any.pattern();
    const std::string expression = translateLuaPatternToRegex(pattern);
    const std::optional<std::regex> standard = compileStandard(expression);
    std::optional<Matcher> matcher = Matcher::compile(expression);
    ASSERT_TRUE(standard || !matcher) << testing::PrintToString(expression);
    ++(matcher ? totals.accepted : standard ? totals.others : totals.rejected);
    if (matcher) compareSearches(any, *matcher, *standard, pattern, totals);
  }
  EXPECT_GT(totals.searches, 30 * patternCount());
  EXPECT_GT(totals.matches, totals.searches / 5);
  RecordProperty("accepted", totals.accepted);
  RecordProperty("rejected", totals.rejected);
  RecordProperty("others", totals.others);
  RecordProperty("searches", totals.searches);
  RecordProperty("matches", totals.matches);
}

}  // namespace
}  // namespace tarvel::lua::internal
