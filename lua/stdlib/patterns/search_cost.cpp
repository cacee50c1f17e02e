#include "lua/stdlib/patterns/search_cost.h"

#include <algorithm>

#include "lua/stdlib/patterns/recursion_bound.h"
#include "lua/value/host_stack.h"

namespace tarvel::lua::internal {

namespace {

// What was measured, in the units of SearchCost::compileUnits: for every set std::regex fills a
// table of 256 entries by way of the locale.
constexpr std::uint64_t kUnitsPerSet = 200;
constexpr std::uint64_t kUnitsPerByteOfSet = 2;
// Alternatives are compiled in quadratic time.
constexpr std::uint64_t kAlternativesSquaredPerUnit = 16;
constexpr std::size_t kMemoryPerState = 128;
constexpr std::size_t kMemoryPerSet = 512;
// std::regex refuses more.
constexpr std::uint64_t kMostStates = 100000;

// A search that is given up takes time for every level that is left then. With so much stack that
// adds up to a few milliseconds: leaving a level takes 50 ns and some 15 ns more for each term that
// is tried once more, or two microseconds with an exception.
constexpr std::size_t kStackFactor = stack_cost::kRegexFactor;
constexpr std::size_t kStackTimesTerms = (std::size_t{96} << 20) * kStackFactor;
constexpr std::size_t kTermsOnTop = 3;
constexpr std::size_t kLeastStack = (std::size_t{256} << 10) * kStackFactor;
constexpr std::size_t kStackForExceptions = (std::size_t{1} << 20) * kStackFactor;

bool isQuantifier(char c) noexcept { return c == '*' || c == '+' || c == '?'; }

struct Counts {
  std::uint64_t terms = 0;
  std::uint64_t sets = 0;
  std::uint64_t bytesOfSets = 0;
  std::uint64_t groups = 0;
  std::uint64_t lookaheads = 0;
  std::uint64_t alternatives = 0;
  bool hasCounts = false;  // of repetitions
  bool isFlat = true;
};

// Goes through an expression that std::regex may or may not accept.
class Counter {
 public:
  explicit Counter(std::string_view expression) : rest_(expression) {}

  Counts count() {
    while (!rest_.empty()) {
      countElement();
      ++counts_.terms;
    }
    return counts_;
  }

 private:
  char take() noexcept {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  void countElement() {
    switch (take()) {
      case '(':
        ++counts_.groups;
        if (!rest_.starts_with('?')) return;
        counts_.isFlat = false;
        if (!rest_.starts_with("?:")) ++counts_.lookaheads;
        take();
        return;
      case ')':
        if (!rest_.empty() && (isQuantifier(rest_.front()) || rest_.front() == '{'))
          counts_.isFlat = false;
        break;
      case '|':
        ++counts_.alternatives;
        counts_.isFlat = false;
        return;
      case '{':
        counts_.hasCounts = true;
        counts_.isFlat = false;
        return;
      case '[':
        countSet();
        break;
      case '\\':
        if (!rest_.empty()) take();
        break;
      default:
        break;
    }
    countQuantifiers();
  }

  void countSet() {
    ++counts_.sets;
    while (!rest_.empty()) {
      const char c = take();
      ++counts_.bytesOfSets;
      if (c == ']') return;
      if (c == '\\' && !rest_.empty()) take();
    }
  }

  // One, perhaps with the `?` that makes it lazy, is usual. More are repetitions of what may be
  // empty.
  void countQuantifiers() {
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), isQuantifier);
    const std::string_view quantifiers(rest_.data(), static_cast<std::size_t>(end - rest_.begin()));
    if (quantifiers.size() > 2 || (quantifiers.size() == 2 && quantifiers[1] != '?'))
      counts_.isFlat = false;
    counts_.terms += quantifiers.size();
    rest_.remove_prefix(quantifiers.size());
  }

  std::string_view rest_;
  Counts counts_;
};

}  // namespace

SearchCost SearchCost::of(std::string_view expression) {
  const Counts counts = Counter(expression).count();
  const std::uint64_t copies =
      counts.hasCounts ? std::min(productOfCounts(expression), kMostStates) : 1;
  const std::uint64_t states = std::min(counts.terms * copies, 2 * kMostStates);
  SearchCost cost;
  cost.compileUnits = states + kUnitsPerSet * counts.sets +
                      kUnitsPerByteOfSet * counts.bytesOfSets +
                      counts.alternatives * counts.alternatives / kAlternativesSquaredPerUnit;
  cost.memory = kMemoryPerState * states + kMemoryPerSet * std::min(counts.sets * copies, states);
  // A search makes a list of all states. Each position where a match may start copies what the
  // groups have captured, and the way from one comparison to the next can lead through all groups;
  // a lookahead is a search of its own.
  cost.stepsPerSearch = 1 + states / 64;
  cost.stepsPerComparisons =
      1 + counts.groups / 8 + (counts.lookaheads > 0 ? (counts.groups + states) / 32 : 0);
  cost.isFlat = counts.isFlat;
  cost.stack = counts.isFlat
                   ? std::max(kStackTimesTerms / (counts.terms + kTermsOnTop), kLeastStack)
                   : kStackForExceptions;
  return cost;
}

}  // namespace tarvel::lua::internal
