#include "lua/stdlib/patterns/matcher.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "lua/stdlib/patterns/matcher_compiler.h"
#include "lua/stdlib/patterns/text_search.h"
#include "lua/value/metered_work.h"

namespace tarvel::lua::internal {

std::optional<Matcher> Matcher::compile(std::string_view expression) {
  const std::optional<Terms> terms = readTerms(expression);
  if (!terms) return std::nullopt;
  std::optional<MatcherProgram> program = compileTerms(*terms);
  if (!program) return std::nullopt;
  return Matcher(std::move(*program));
}

Matcher::Matcher(MatcherProgram&& program)
    : program_(std::move(program)),
      choices_(program_.choices),
      groupStarts_(program_.groups),
      captures_(program_.groups) {}

std::size_t Matcher::memory() const noexcept {
  return sizeof(Matcher) + program_.memory() + choices_.size() * sizeof(Choice) +
         program_.groups * (sizeof(const char*) + sizeof(std::string_view));
}

namespace {

// How a search counts its work: not at all, or by the bytes it scans and the moves it makes, so
// that a supervised run can end in the middle.
class Unmetered {
 public:
  void attempt() noexcept {}
  void move() noexcept {}
  void resume() noexcept {}
  template <class Find>
  const char* scan(const char* next, const char* end, const Find& find) const {
    return find(next, end);
  }
  template <class Find>
  const char* scanBack(const char* low, const char* next, const Find& find) const {
    return find(low, next);
  }
  const char* findText(std::string_view subject, std::string_view text) const {
    return findTextIn(subject, text);
  }
};

// Of a short program in a short subject: from one attempt or choice to the next takes less than a
// step may, so only those are counted.
class BrieflyMetered : public Unmetered {
 public:
  static bool suits(const MatcherProgram& program, std::ptrdiff_t subjectLength) noexcept {
    return subjectLength <= kMostBytes && program.instructions.size() <= kMostInstructions;
  }

  BrieflyMetered(WorkMeter& meter, Site site) : meter_(meter), site_(site) {}

  void attempt() { meter_.step(site_); }
  void resume() {
    if (++resumes_ % kResumesPerStep == 0) meter_.step(site_);
  }

 private:
  static constexpr std::ptrdiff_t kMostBytes = 512;
  static constexpr std::size_t kMostInstructions = 16;
  static constexpr unsigned kResumesPerStep = 4;

  WorkMeter& meter_;
  Site site_;
  unsigned resumes_ = 0;
};

class Metered {
 public:
  Metered(WorkMeter& meter, Site site) : meter_(meter), site_(site) {}

  void attempt() { meter_.step(site_); }
  void resume() noexcept {}
  void move() {
    if (++moves_ % kMovesPerStep == 0) meter_.step(site_);
  }
  template <class Find>
  const char* scan(const char* next, const char* end, const Find& find) {
    const char* const soon = next + std::min(kFree, end - next);
    const char* const found = find(next, soon);
    return found != soon || soon == end ? found : scanFar(next, end, find);
  }
  // As scan, from `next` down to `low`.
  template <class Find>
  const char* scanBack(const char* low, const char* next, const Find& find) {
    const char* const soon = next - std::min(kFree, next - low);
    const char* const found = find(soon, next);
    return found != soon || soon == low ? found : scanFarBack(low, next, find);
  }
  const char* findText(std::string_view subject, std::string_view text) {
    const std::size_t found = internal::findText(meter_, subject, text, 0, site_);
    return subject.data() + std::min(found, subject.size());
  }

 private:
  static constexpr unsigned kMovesPerStep = 4;
  static constexpr std::ptrdiff_t kFree = kBytesPerStep - 1;  // so few bytes are no step

  template <class Find>
  [[gnu::noinline]] const char* scanFar(const char* next, const char* end, const Find& find) {
    return findInPieces(meter_, next, end, site_, find);
  }
  template <class Find>
  [[gnu::noinline]] const char* scanFarBack(const char* low, const char* next, const Find& find) {
    constexpr auto kMost = static_cast<std::ptrdiff_t>(kBytesPerStep * kStepsPerPiece);
    for (;;) {
      const char* const pieceLow = next - std::min(kMost, next - low);
      const char* const found = find(pieceLow, next);
      meter_.spend(stepsForBytes(static_cast<std::uint64_t>(next - found)), site_);
      if (found != pieceLow || pieceLow == low) return found;
      next = pieceLow;
    }
  }

  WorkMeter& meter_;
  Site site_;
  unsigned moves_ = 0;
};

// Past the bytes that are in the set, or with `inSet` false, that are not.
template <bool inSet>
const char* skip(const char* next, const char* end, TableSet set) noexcept {
  return std::find_if(next, end, [set](char byte) { return set.contains(byte) != inSet; });
}

// The same downward: what is returned is behind the byte that ended it.
template <bool inSet>
const char* skipBack(const char* low, const char* next, TableSet set) noexcept {
  while (next != low && set.contains(next[-1]) == inSet) --next;
  return next;
}

// Most runs are too short for memchr.
const char* findByteSoon(const char* next, const char* end, char byte) noexcept {
  constexpr std::ptrdiff_t kSoon = 12;
  const char* const soon = next + std::min(kSoon, end - next);
  while (next != soon && *next != byte) ++next;
  return next != soon || soon == end ? next : findByte(next, end, byte);
}

template <class Work>
[[gnu::always_inline]] inline const char* endOfRun(Work& work, const Instruction& run,
                                                   const char* at, const char* end) {
  using Kind = Instruction::Kind;
  if (run.kind == Kind::RunUntil || run.kind == Kind::CapturedRunUntil) {
    return work.scan(at, end, [&run](const char* from, const char* to) {
      return findByteSoon(from, to, run.byte);
    });
  }
  return work.scan(at, end, [set = run.set](const char* from, const char* to) {
    return skip<true>(from, to, set);
  });
}

}  // namespace

bool Matcher::search(WorkMeter& meter, std::string_view subject, std::size_t from,
                     PatternMatch& match, Site site) {
  begin_ = subject.data() + from;
  end_ = subject.data() + subject.size();
  const std::string_view found = !meter.isSupervised() ? searchFrom(Unmetered())
                                 : BrieflyMetered::suits(program_, end_ - begin_)
                                     ? searchFrom(BrieflyMetered(meter, site))
                                     : searchFrom(Metered(meter, site));
  if (found.data() == nullptr) return false;
  match.set(subject, static_cast<std::size_t>(found.data() - subject.data()), found.size());
  match.captures = captures_;
  return true;
}

template <class Work>
std::string_view Matcher::searchFrom(Work work) {
  bool hasFailed = false;
  const char* required = begin_;  // the text does not start before
  const char* next = program_.hasKnownTail ? tailStart(work) : begin_;
  while (next != nullptr && (next = findAttempt(work, next)) != nullptr) {
    // Only when an attempt has failed: most searches never come so far.
    if (hasFailed && program_.required.length > 0 && required <= next) {
      required = findText(work, next, program_.required);
      if (required == nullptr) return {};
    }
    work.attempt();
    firstRunEnd_ = next;
    const char* const matchEnd =
        program_.isRun ? endOfRun(work, program_.instructions[0], next, end_) : matchAt(work, next);
    if (matchEnd != nullptr) return {next, static_cast<std::size_t>(matchEnd - next)};
    if (next == end_ || program_.attempts == MatcherProgram::Attempts::Once) return {};
    hasFailed = true;
    next = std::max(next + 1, firstRunEnd_);
  }
  return {};
}

// Where the first attempt of an expression with a known tail is made; null where it cannot match.
template <class Work>
const char* Matcher::tailStart(Work& work) const {
  const char* tail = end_;
  if (program_.endsWithRun) {
    tail = work.scanBack(begin_, end_, [set = program_.lastRun](const char* low, const char* next) {
      return skipBack<true>(low, next, set);
    });
    if (tail == end_ && program_.lastRunNeedsOne) return nullptr;
  }
  const auto before = static_cast<std::size_t>(tail - begin_);
  return tail - std::min(before, program_.mostBeforeTail);
}

// The first place from `next` on where it may match, or null.
template <class Work>
const char* Matcher::findAttempt(Work& work, const char* next) const {
  using Attempts = MatcherProgram::Attempts;
  switch (program_.attempts) {
    case Attempts::AtText:
      return findText(work, next, program_.prefix);
    case Attempts::AtByte:
      next = work.scan(next, end_, [this](const char* from, const char* to) {
        return findByte(from, to, program_.firstByte);
      });
      return next == end_ ? nullptr : next;
    case Attempts::AtSet:
      next = work.scan(next, end_, [set = program_.firstSet](const char* from, const char* to) {
        return skip<false>(from, to, set);
      });
      return next == end_ && !program_.matchesAtEnd ? nullptr : next;
    case Attempts::Once:
    case Attempts::Everywhere:
      break;
  }
  return next;
}

template <class Work>
const char* Matcher::findText(Work& work, const char* next, MatcherText text) const {
  const std::string_view rest(next, static_cast<std::size_t>(end_ - next));
  const char* const found = work.findText(rest, {program_.texts.data() + text.offset, text.length});
  return found == end_ ? nullptr : found;
}

template <class Work>
const char* Matcher::matchAt(Work& work, const char* start) {
  using Kind = Instruction::Kind;
  const Instruction* next = program_.instructions.data();
  const char* at = start;
  const char* const end = end_;
  Choice* top = choices_.data();
  // Each round is one instruction, and where that fails, one of the choices.
  for (;;) {
    work.move();
    const Instruction& now = *next;
    switch (now.kind) {
      case Kind::Byte:
        if (at == end || *at != now.byte) break;
        ++at;
        ++next;
        continue;
      case Kind::Text:
        if (static_cast<std::size_t>(end - at) < now.length ||
            std::memcmp(at, program_.texts.data() + now.text, now.length) != 0) {
          break;
        }
        at += now.length;
        ++next;
        continue;
      case Kind::Set:
        if (at == end || !now.set.contains(*at)) break;
        ++at;
        ++next;
        continue;
      case Kind::Run:
      case Kind::RunUntil:
      case Kind::CapturedRun:
      case Kind::CapturedRunUntil: {
        const char* const runEnd = endOfRun(work, now, at, end);
        if (now.isFirst) firstRunEnd_ = runEnd;
        if (now.needsOne && runEnd == at) break;
        if (now.kind == Kind::CapturedRun || now.kind == Kind::CapturedRunUntil)
          captures_[now.group] = {at, static_cast<std::size_t>(runEnd - at)};
        at = runEnd;
        ++next;
        continue;
      }
      case Kind::Greedy: {
        const char* const runEnd = endOfRun(work, now, at, end);
        if (now.needsOne && runEnd == at) break;
        *top++ = {next, at + (now.needsOne ? 1 : 0), runEnd};
        if (runEnd == end ? !now.followsAtEnd : !now.follow.contains(*runEnd)) break;
        at = runEnd;
        ++next;
        continue;
      }
      case Kind::Lazy:
        *top++ = {next, at, at};
        break;
      case Kind::Possible:
        if (at != end && now.set.contains(*at)) ++at;
        ++next;
        continue;
      case Kind::PossibleGreedy:
        if (at != end && now.set.contains(*at)) {
          *top++ = {next, at, at};
          ++at;
        }
        ++next;
        continue;
      case Kind::PossibleLazy:
        if (at != end && now.set.contains(*at)) *top++ = {next, at, at + 1};
        ++next;
        continue;
      case Kind::GroupOpen:
        groupStarts_[now.group] = at;
        ++next;
        continue;
      case Kind::GroupClose: {
        const char* const groupStart = groupStarts_[now.group];
        captures_[now.group] = {groupStart, static_cast<std::size_t>(at - groupStart)};
        ++next;
        continue;
      }
      case Kind::Start:
        if (at != begin_) break;
        ++next;
        continue;
      case Kind::End:
        if (at != end) break;
        ++next;
        continue;
      case Kind::Accept:
        return at;
    }
    work.resume();
    if (!resume(work, top, next, at)) return nullptr;
  }
}

template <class Work>
[[gnu::always_inline]] inline bool Matcher::resume(Work& work, Choice*& top,
                                                   const Instruction*& next, const char*& at) {
  while (top != choices_.data()) {
    Choice& choice = top[-1];
    const Instruction& made = *choice.instruction;
    next = choice.instruction + 1;
    if (made.kind == Instruction::Kind::Lazy) {
      if (resumeLazy(work, top, at)) return true;
      continue;
    }
    if (made.kind != Instruction::Kind::Greedy) {
      at = choice.at;
      --top;
      return true;
    }
    const auto findFollow = [set = made.follow](const char* low, const char* from) {
      return skipBack<false>(low, from, set);
    };
    const char* const followed = work.scanBack(choice.low, choice.at, findFollow);
    if (followed != choice.low) {
      at = choice.at = followed - 1;
      return true;
    }
    --top;
  }
  return false;
}

// Takes more until what follows may match.
template <class Work>
[[gnu::always_inline]] inline bool Matcher::resumeLazy(Work& work, Choice*& top, const char*& at) {
  Choice& choice = top[-1];
  const Instruction& made = *choice.instruction;
  at = work.scan(choice.at, end_, [set = made.stop](const char* from, const char* to) {
    return skip<false>(from, to, set);
  });
  const bool isFollowed = at == end_ ? made.followsAtEnd : made.follow.contains(*at);
  if (isFollowed && at != end_ && made.set.contains(*at)) {
    choice.at = at + 1;
  } else {
    --top;
  }
  return isFollowed;
}

}  // namespace tarvel::lua::internal
