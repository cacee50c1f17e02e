#include "lua/stdlib/patterns/expression.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <locale>
#include <mutex>

#include "lua/stdlib/patterns/text_search.h"
#include "lua/stdlib/patterns/translation.h"
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

template <class Results>
void report(const Results& results, std::string_view subject, PatternMatch& match) {
  const std::string_view text = textOf(results[0]);
  match.set(subject, static_cast<std::size_t>(text.data() - subject.data()), text.size());
  match.captures.resize(results.size() - 1);
  for (std::size_t i = 0; i < match.captures.size(); ++i)
    match.captures[i] = textOf(results[i + 1]);
}

}  // namespace

namespace {

// Compiling cannot be interrupted. These units take about 5 ms.
constexpr std::uint64_t kMostSupervisedUnits = 20000;
constexpr std::uint64_t kUnitsPerStep = 4;

[[noreturn]] void failComplexity(Site site) { failRuntime(site, "pattern is too complex"); }

// Before its length can do harm.
std::string translate(const WorkMeter& meter, std::string_view pattern, Site site) {
  if (meter.isSupervised() && pattern.size() > kMostSupervisedUnits) failComplexity(site);
  return translateLuaPatternToRegex(pattern);
}

}  // namespace

PatternExpression::PatternExpression(Heap& heap, std::string_view pattern, Site site)
    : PatternExpression(heap, pattern, translate(heap.meter(), pattern, site), site) {}

PatternExpression::PatternExpression(Heap& heap, std::string_view pattern,
                                     const std::string& expression, Site site)
    : meter_(heap.meter()),
      cost_(SearchCost::of(expression)),
      memory_(heap),
      expression_(readyToCompile(admit(expression, site))),
      hints_(findSearchHints(expression)),
      bound_(RecursionBound::of(pattern, expression)) {}

const std::string& PatternExpression::admit(const std::string& expression, Site site) {
  if (meter_.isSupervised() && cost_.compileUnits > kMostSupervisedUnits) failComplexity(site);
  meter_.spend(stepsForCompiling(), site);
  memory_.add(cost_.memory);
  return expression;
}

std::uint64_t PatternExpression::stepsForCompiling() const noexcept {
  return cost_.compileUnits / kUnitsPerStep;
}

bool PatternExpression::search(std::string_view subject, std::size_t from, PatternMatch& match,
                               Site site) {
  using namespace std::regex_constants;
  const char* const begin = subject.data() + from;
  // At a later position there is nothing that `^` could match.
  if (hints_.anchored) return searchFrom(begin, subject, match_continuous, match, site);
  const char* const end = subject.data() + subject.size();
  if (hints_.required && findByte(meter_, begin, end, *hints_.required, site) == end) {
    return false;
  }
  const bool oneByOne = !hints_.prefix.empty() || hints_.run;
  const char* next = findCandidate(subject, begin, site);
  while (next != nullptr) {
    if (hints_.isLiteral) {
      match.set(subject, static_cast<std::size_t>(next - subject.data()), hints_.prefix.size());
      return true;
    }
    if (hints_.isRun) {
      const char* const runEnd = endOfRun(subject, next, *hints_.first, site);
      match.set(subject, static_cast<std::size_t>(next - subject.data()),
                static_cast<std::size_t>(runEnd - next));
      return true;
    }
    // As std::regex itself goes on to a later position: with a byte in front, so that `^` does not
    // match there.
    const auto flags = next == begin ? match_default : match_prev_avail;
    if (!oneByOne) return searchFrom(next, subject, flags, match, site);
    if (searchFrom(next, subject, flags | match_continuous, match, site)) return true;
    next = findCandidate(subject, skipFailed(subject, next, site), site);
  }
  return false;
}

namespace {

// The first byte that is in the set, or with `wanted` false, that is not.
template <bool wanted>
const char* findInSet(const char* next, const char* end, const ByteSet& set) noexcept {
  return std::find_if(
      next, end, [&set](char byte) { return set[static_cast<unsigned char>(byte)] == wanted; });
}

template <bool wanted>
[[gnu::noinline]] const char* findInSetCounted(WorkMeter& meter, const char* next, const char* end,
                                               const ByteSet& set, Site site) {
  return findInPieces(meter, next, end, site, [&set](const char* from, const char* to) {
    return findInSet<wanted>(from, to, set);
  });
}

}  // namespace

const char* PatternExpression::findCandidate(std::string_view subject, const char* next,
                                             Site site) const {
  if (!hints_.prefix.empty()) {
    const auto offset = static_cast<std::size_t>(next - subject.data());
    const std::size_t start = findText(meter_, subject, hints_.prefix, offset, site);
    return start == std::string_view::npos ? nullptr : subject.data() + start;
  }
  if (!hints_.first) return next;
  const char* const end = subject.data() + subject.size();
  next = meter_.isSupervised() ? findInSetCounted<true>(meter_, next, end, *hints_.first, site)
                               : findInSet<true>(next, end, *hints_.first);
  return next == end ? nullptr : next;
}

const char* PatternExpression::endOfRun(std::string_view subject, const char* start,
                                        const ByteSet& set, Site site) const {
  const char* const end = subject.data() + subject.size();
  return meter_.isSupervised() ? findInSetCounted<false>(meter_, start, end, set, site)
                               : findInSet<false>(start, end, set);
}

const char* PatternExpression::skipFailed(std::string_view subject, const char* candidate,
                                          Site site) const {
  if (!hints_.run) return candidate + 1;
  return std::max(endOfRun(subject, candidate, *hints_.run, site), candidate + 1);
}

bool PatternExpression::searchFrom(const char* first, std::string_view subject,
                                   std::regex_constants::match_flag_type flags, PatternMatch& match,
                                   Site site) {
  const char* const end = subject.data() + subject.size();
  if (meter_.isSupervised()) {
    if (!searchSupervised(first, end, flags, site)) return false;
    report(guardedResults_, subject, match);
    return true;
  }
  const std::size_t room = hostStackRoom();
  if (bound_.fitsIn(room, static_cast<std::size_t>(end - first))) {
    if (!std::regex_search(first, end, results_, expression_, flags)) return false;
    report(results_, subject, match);
    return true;
  }
  // It may still do, because few searches go as deep as the subject is long.
  if (bound_.stackForStep() > room) failStack();
  SearchGuard::watchStack(hostStackFloor() + bound_.stackForStep());
  const bool found = searchGuarded(first, end, flags);
  if (SearchGuard::isExceeded()) failStack();
  if (found) report(guardedResults_, subject, match);
  return found;
}

bool PatternExpression::searchGuarded(const char* first, const char* end,
                                      std::regex_constants::match_flag_type flags) {
  try {
    return std::regex_search(GuardedPosition(first), GuardedPosition(end), guardedResults_,
                             expression_, flags);
  } catch (const SearchGuard::SearchAbandoned&) {
    return false;
  }
}

// The moves of a search are counted a round at a time, and what is over at its end.
bool PatternExpression::searchSupervised(const char* first, const char* end,
                                         std::regex_constants::match_flag_type flags, Site site) {
  meter_.spend(cost_.stepsPerSearch, site);
  const std::size_t room = hostStackRoom();
  if (bound_.stackForStep() > room) failStack();
  const std::size_t stack = std::min(room - bound_.stackForStep(), cost_.stack);
  const std::uint64_t unitsPerRound =
      std::max<std::uint64_t>(kStepsPerPiece / cost_.stepsPerComparisons, 1);
  SearchGuard::watch(hostStackPointer() - stack, !cost_.isFlat, meter_,
                     static_cast<std::int64_t>(unitsPerRound * SearchCost::kComparisons),
                     unitsPerRound * cost_.stepsPerComparisons);
  const bool found = searchGuarded(first, end, flags);
  meter_.spend(
      SearchGuard::comparisonsLeftOver() * cost_.stepsPerComparisons / SearchCost::kComparisons,
      site);
  if (SearchGuard::isExceeded()) failStack();
  return found;
}

}  // namespace tarvel::lua::internal
