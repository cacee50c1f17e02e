#include "lua/stdlib/patterns/regex_search.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <locale>
#include <mutex>

#include "lua/value/host_stack.h"
#include "lua/value/metered_work.h"

namespace tarvel::lua::internal {

namespace {

[[noreturn]] void failStack() { throw std::regex_error(std::regex_constants::error_stack); }

std::size_t countOf(std::string_view text, char c) noexcept {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), c));
}

// The C++ library enters each character into the tables behind std::regex when it first needs it,
// without a lock. With all of them entered, threads that compile at once only read the tables.
void fillCharacterTables() {
  static std::mutex mutex;
  const std::locale locale;
  const auto& characters = std::use_facet<std::ctype<char>>(locale);
  const std::lock_guard lock(mutex);
  for (int byte = 0; byte <= UCHAR_MAX; ++byte) {
    characters.widen(static_cast<char>(byte));
    characters.narrow(static_cast<char>(byte), '\0');
  }
}

const std::string& readyToCompile(const std::string& expression) {
  const std::size_t needed = stack_cost::kRegexCompiler +
                             expression.size() * stack_cost::kRegexElement +
                             countOf(expression, '(') * stack_cost::kRegexGroup;
  if (needed > hostStackRoom()) failStack();
  fillCharacterTables();
  return expression;
}

const char* addressOf(const char* byte) noexcept { return byte; }
const char* addressOf(GuardedPosition position) noexcept { return position.address(); }

// Empty for a group that took no part.
template <class Submatch>
std::string_view textOf(const Submatch& part) noexcept {
  const char* const start = addressOf(part.first);
  return {start, static_cast<std::size_t>(addressOf(part.second) - start)};
}

// Compiling cannot be interrupted. These units take about 5 ms.
constexpr std::uint64_t kMostSupervisedUnits = 20000;
constexpr std::uint64_t kUnitsPerStep = 4;

[[noreturn]] void failComplexity(Site site) { failRuntime(site, "pattern is too complex"); }

}  // namespace

RegexSearch::RegexSearch(Heap& heap, std::string_view pattern, const std::string& expression,
                         Site site)
    : meter_(heap.meter()),
      cost_(SearchCost::of(expression)),
      memory_(heap),
      expression_(readyToCompile(admit(expression, site))),
      flags_(expression.starts_with('^') && !mayHaveRestOfSet(expression)
                 ? std::regex_constants::match_continuous
                 : std::regex_constants::match_default),
      bound_(RecursionBound::of(pattern, expression)),
      captures_(expression_.mark_count()) {}

void RegexSearch::requireShort(const WorkMeter& meter, std::string_view pattern, Site site) {
  if (meter.isSupervised() && pattern.size() > kMostSupervisedUnits) failComplexity(site);
}

const std::string& RegexSearch::admit(const std::string& expression, Site site) {
  if (meter_.isSupervised() && cost_.compileUnits > kMostSupervisedUnits) failComplexity(site);
  meter_.spend(stepsForCompiling(), site);
  memory_.add(cost_.memory);
  return expression;
}

std::uint64_t RegexSearch::stepsForCompiling() const noexcept {
  return cost_.compileUnits / kUnitsPerStep;
}

template <class Results>
void RegexSearch::report(const Results& results, std::string_view subject, PatternMatch& match) {
  const std::string_view text = textOf(results[0]);
  match.set(subject, static_cast<std::size_t>(text.data() - subject.data()), text.size());
  for (std::size_t i = 0; i < captures_.size(); ++i) captures_[i] = textOf(results[i + 1]);
  match.captures = captures_;
}

bool RegexSearch::search(std::string_view subject, std::size_t from, PatternMatch& match,
                         Site site) {
  const char* const first = subject.data() + from;
  const char* const end = subject.data() + subject.size();
  if (meter_.isSupervised()) {
    if (!searchSupervised(first, end, site)) return false;
    report(guardedResults_, subject, match);
    return true;
  }
  const std::size_t room = hostStackRoom();
  if (bound_.fitsIn(room, static_cast<std::size_t>(end - first))) {
    if (!std::regex_search(first, end, results_, expression_, flags_)) return false;
    report(results_, subject, match);
    return true;
  }
  // It may still do, because few searches go as deep as the subject is long.
  if (bound_.stackForStep() > room) failStack();
  SearchGuard::watchStack(hostStackFloor() + bound_.stackForStep());
  const bool found = searchGuarded(first, end);
  if (SearchGuard::isExceeded()) failStack();
  if (found) report(guardedResults_, subject, match);
  return found;
}

bool RegexSearch::searchGuarded(const char* first, const char* end) {
  try {
    return std::regex_search(GuardedPosition(first), GuardedPosition(end), guardedResults_,
                             expression_, flags_);
  } catch (const SearchGuard::SearchAbandoned&) {
    return false;
  }
}

// The moves of a search are counted a round at a time, and what is over at its end.
bool RegexSearch::searchSupervised(const char* first, const char* end, Site site) {
  meter_.spend(cost_.stepsPerSearch, site);
  const std::size_t room = hostStackRoom();
  if (bound_.stackForStep() > room) failStack();
  const std::size_t stack = std::min(room - bound_.stackForStep(), cost_.stack);
  const std::uint64_t unitsPerRound =
      std::max<std::uint64_t>(kStepsPerPiece / cost_.stepsPerComparisons, 1);
  SearchGuard::watch(hostStackPointer() - stack, !cost_.isFlat, meter_,
                     static_cast<std::int64_t>(unitsPerRound * SearchCost::kComparisons),
                     unitsPerRound * cost_.stepsPerComparisons);
  const bool found = searchGuarded(first, end);
  meter_.spend(
      SearchGuard::comparisonsLeftOver() * cost_.stepsPerComparisons / SearchCost::kComparisons,
      site);
  if (SearchGuard::isExceeded()) failStack();
  return found;
}

}  // namespace tarvel::lua::internal
