#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <regex>
#include <string>
#include <string_view>

#include "lua/stdlib/patterns/matcher.h"
#include "lua/stdlib/patterns/translation.h"
#include "tests/fuzz/choices.h"

// Searches a few subjects for a pattern: the matcher finds what std::regex finds.

namespace tarvel::lua::fuzz {

namespace {

using namespace std::string_literals;
using internal::Matcher;
using internal::PatternMatch;
using internal::WorkMeter;

constexpr int kMostSubjects = 12;

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

  // Short where the pattern has many repetitions, for which std::regex takes a power of its length.
  std::string subject(std::string_view pattern) {
    const auto repetitions = std::count_if(pattern.begin(), pattern.end(), [](char c) {
      return std::string_view("*+-").find(c) != std::string_view::npos;
    });
    std::string text;
    for (unsigned left = below(repetitions < 4 ? 60 : 16); left > 0; --left) text += byte();
    return text;
  }

  std::string pattern() {
    std::string text = oneIn(6) ? "^" : "";
    std::size_t open = 0;
    for (unsigned left = below(7) + 1; left > 0; --left) {
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
    const bool isMagic = std::string_view("()*+.?^$-%[").find(c) != std::string_view::npos;
    return isMagic ? std::string{'%', c} : std::string(1, c);
  }

  std::string characterClass() { return std::string{'%', "adswADSW"[below(8)]}; }

  std::string set() {
    std::string text = oneIn(3) ? "[^" : "[";
    for (unsigned left = below(oneIn(4) ? 4 : 2) + 1; left > 0; --left) {
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
    const unsigned kind = below(10);
    std::string text = kind < 4 ? literal() : kind < 5 ? "." : kind < 7 ? characterClass() : set();
    if (oneIn(10)) return text + (oneIn(2) ? "$" : "^");
    if (oneIn(2)) text += "*+?--"[below(5)];
    if (oneIn(24)) text += "?+"[below(2)];
    return text;
  }

  Choices choices_;
  std::string alphabet_;
};

// Start, end and groups; "none" without a match.
std::string outcomeOf(Matcher& matcher, bool isSupervised, const std::string& subject,
                      std::size_t from) {
  WorkMeter meter;
  if (isSupervised) meter.setSupervised();
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

std::string problemOf(Generator any) {
  const std::string pattern = any.pattern();
  const std::string expression = internal::translateLuaPatternToRegex(pattern);
  std::optional<Matcher> matcher = Matcher::compile(expression);
  if (!matcher) return {};
  const std::optional<std::regex> standard = compileStandard(expression);
  if (!standard) return pattern + ": std::regex refuses " + expression;
  for (int i = 0; i < kMostSubjects && !any.isEmpty(); ++i) {
    const std::string subject = any.subject(pattern);
    const std::size_t from = any.oneIn(3) ? any.below(subject.size() + 1) : 0;
    const std::string expected = outcomeOf(*standard, subject, from);
    const std::string found = outcomeOf(*matcher, any.oneIn(4), subject, from);
    if (found != expected)
      return pattern + " in '" + subject + "' from " + std::to_string(from) + ": " + found +
             " instead of " + expected;
  }
  return {};
}

}  // namespace

}  // namespace tarvel::lua::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarvel::lua::fuzz;
  const std::string problem = problemOf(Generator(Choices({data, size})));
  if (problem.empty()) return 0;
  std::fwrite(problem.data(), 1, problem.size(), stderr);
  std::abort();
}
