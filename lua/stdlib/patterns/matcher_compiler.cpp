#include "lua/stdlib/patterns/matcher_compiler.h"

#include <algorithm>
#include <utility>

namespace tarvel::lua::internal {

namespace {

// What the terms from one on can match.
struct Rest {
  ByteSet first;
  // They can match nothing: at the end of the subject; anywhere, perhaps; anywhere, for certain.
  bool atEnd = false;
  bool anywhere = false;
  bool always = false;

  static Rest afterAll() {
    Rest rest;
    rest.anywhere = rest.always = true;
    return rest;
  }

  void prepend(const Term& term) {
    switch (term.kind) {
      case Term::Kind::OneByte:
        if (!term.optional) *this = {};
        first.add(term.bytes);
        return;
      case Term::Kind::Start:
        anywhere = true;
        always = false;
        return;
      case Term::Kind::End:
        *this = {};
        atEnd = true;
        return;
      case Term::Kind::GroupOpen:
      case Term::Kind::GroupClose:
        return;
    }
  }

  // They do not match where one of these bytes stands.
  bool cannotStartWith(const ByteSet& bytes) const noexcept {
    return !anywhere && !first.intersects(bytes);
  }
  // After a repetition of these bytes: giving some back, or leaving some, never helps.
  bool endsRunOf(const ByteSet& bytes) const noexcept { return always || cannotStartWith(bytes); }
};

class Compiler {
 public:
  explicit Compiler(const Terms& terms)
      : terms_(terms.list), rests_(terms.list.size() + 1, Rest::afterAll()) {
    program_.groups = terms.groups;
    program_.instructions.reserve(terms_.size() + 1);
    for (std::size_t i = terms_.size(); i-- > 0;) {
      rests_[i] = rests_[i + 1];
      rests_[i].prepend(terms_[i]);
    }
  }

  std::optional<MatcherProgram> compile() {
    findAttempts();
    findRequiredText();
    findTail();
    for (std::size_t i = 0; i < terms_.size();) i = compileTerm(i);
    add(Instruction::Kind::Accept);
    if (hasTooManySets_) return std::nullopt;
    const Instruction& first = program_.instructions.front();
    program_.isRun = program_.instructions.size() == 2 && first.isRun() && first.needsOne;
    program_.tables.fill();
    for (const auto& [place, number] : setUses_) *placeOf(place) = program_.tables.at(number);
    return std::move(program_);
  }

 private:
  enum class SetPlace : std::uint8_t { Set, Follow, Stop, First, LastRun };
  struct SetUse {
    SetPlace place;
    std::size_t instruction;
  };

  TableSet* placeOf(SetUse use) {
    switch (use.place) {
      case SetPlace::Set:
        return &program_.instructions[use.instruction].set;
      case SetPlace::Follow:
        return &program_.instructions[use.instruction].follow;
      case SetPlace::Stop:
        return &program_.instructions[use.instruction].stop;
      case SetPlace::First:
        return &program_.firstSet;
      case SetPlace::LastRun:
        break;
    }
    return &program_.lastRun;
  }

  // For the instruction that was added last, or for the program.
  void use(SetPlace place, const ByteSet& set) {
    const std::size_t number = program_.tables.add(set);
    if (number >= ByteTables::kMostSets) hasTooManySets_ = true;
    setUses_.push_back({{place, program_.instructions.size() - 1}, number});
  }

  Instruction& add(Instruction::Kind kind) {
    Instruction instruction;
    instruction.kind = kind;
    program_.instructions.push_back(instruction);
    return program_.instructions.back();
  }

  std::uint32_t addText(std::size_t firstTerm, std::size_t endTerm) {
    const auto offset = static_cast<std::uint32_t>(program_.texts.size());
    for (std::size_t i = firstTerm; i < endTerm; ++i) {
      if (terms_[i].isLiteral()) program_.texts.push_back(terms_[i].bytes.anyByte());
    }
    return offset;
  }
  MatcherText textOf(std::size_t firstTerm, std::size_t endTerm) {
    const std::uint32_t offset = addText(firstTerm, endTerm);
    return {offset, static_cast<std::uint32_t>(program_.texts.size()) - offset};
  }

  // ---- What matches have in common --------------------------------------------------------------

  std::size_t skipGroupMarks(std::size_t term) const {
    while (term < terms_.size() && terms_[term].isGroupMark()) ++term;
    return term;
  }

  // Behind the text that starts at a term, through the marks of groups.
  std::size_t endOfText(std::size_t term) const {
    while (term < terms_.size() && (terms_[term].isLiteral() || terms_[term].isGroupMark())) ++term;
    return term;
  }

  void findAttempts() {
    using Attempts = MatcherProgram::Attempts;
    const std::size_t first = skipGroupMarks(0);
    if (first < terms_.size() && terms_[first].kind == Term::Kind::Start) {
      program_.attempts = Attempts::Once;
      return;
    }
    program_.startsWithRun = first < terms_.size() && terms_[first].unlimited &&
                             rests_[first + 1].cannotStartWith(terms_[first].bytes);
    prefixEnd_ = endOfText(0);
    program_.prefix = textOf(0, prefixEnd_);
    const Rest& all = rests_[0];
    program_.matchesAtEnd = all.atEnd;
    if (all.anywhere) return;
    if (program_.prefix.length > 1) {
      program_.attempts = Attempts::AtText;
    } else if (all.first.isSingle() && !all.atEnd) {
      program_.attempts = Attempts::AtByte;
      program_.firstByte = all.first.anyByte();
    } else {
      program_.attempts = Attempts::AtSet;
      use(SetPlace::First, all.first);
    }
  }

  void findRequiredText() {
    if (program_.attempts == MatcherProgram::Attempts::Once) return;
    std::pair<std::size_t, std::size_t> longest{0, 0};
    std::size_t most = 0;
    for (std::size_t i = prefixEnd_; i < terms_.size();) {
      const std::size_t end = endOfText(i);
      const auto length = static_cast<std::size_t>(
          std::count_if(terms_.begin() + static_cast<std::ptrdiff_t>(i),
                        terms_.begin() + static_cast<std::ptrdiff_t>(end),
                        [](const Term& term) { return term.isLiteral(); }));
      if (length > most) {
        most = length;
        longest = {i, end};
      }
      i = std::max(end, i + 1);
    }
    program_.required = textOf(longest.first, longest.second);
  }

  // The last two terms, apart from the marks of groups, decide, if all others are bounded.
  void findTail() {
    std::size_t last = terms_.size();
    const auto previous = [this](std::size_t term) {
      while (term > 0 && terms_[term - 1].isGroupMark()) --term;
      return term;
    };
    last = previous(last);
    if (last == 0 || terms_[last - 1].kind != Term::Kind::End) return;
    std::size_t before = previous(last - 1);
    const bool endsWithRun = before > 0 && terms_[before - 1].unlimited;
    if (endsWithRun) --before;
    for (std::size_t i = 0; i < before; ++i) {
      if (terms_[i].isGroupMark()) continue;
      if (!terms_[i].isOneByte() || terms_[i].unlimited) return;
      ++program_.mostBeforeTail;
    }
    program_.hasKnownTail = true;
    program_.endsWithRun = endsWithRun;
    if (!endsWithRun) return;
    program_.lastRunNeedsOne = !terms_[before].optional;
    use(SetPlace::LastRun, terms_[before].bytes);
  }

  // ---- Instructions -----------------------------------------------------------------------------

  // Returns the next term that is not compiled yet.
  std::size_t compileTerm(std::size_t i) {
    using Kind = Instruction::Kind;
    const Term& term = terms_[i];
    switch (term.kind) {
      case Term::Kind::OneByte:
        break;
      case Term::Kind::GroupOpen:
        if (isCapturedRun(i)) {
          compileRun(i + 1, Kind::CapturedRun, Kind::CapturedRunUntil);
          program_.instructions.back().group = term.group;
          return i + 3;
        }
        add(Kind::GroupOpen).group = term.group;
        return i + 1;
      case Term::Kind::GroupClose:
        add(Kind::GroupClose).group = term.group;
        return i + 1;
      case Term::Kind::Start:
        add(Kind::Start);
        return i + 1;
      case Term::Kind::End:
        add(Kind::End);
        return i + 1;
    }
    if (term.isLiteral()) return compileText(i);
    if (term.isOnce()) {
      compileOnce(term);
    } else if (term.unlimited) {
      compileRepetition(i);
    } else {
      compilePossible(i);
    }
    return i + 1;
  }

  std::size_t compileText(std::size_t i) {
    std::size_t end = i;
    while (end < terms_.size() && terms_[end].isLiteral()) ++end;
    if (end == i + 1) {
      compileOnce(terms_[i]);
      return end;
    }
    const MatcherText text = textOf(i, end);
    Instruction& instruction = add(Instruction::Kind::Text);
    instruction.text = text.offset;
    instruction.length = text.length;
    return end;
  }

  // Whatever quantifier there is.
  void compileOnce(const Term& term) {
    if (term.bytes.isSingle()) {
      add(Instruction::Kind::Byte).byte = term.bytes.anyByte();
    } else {
      add(Instruction::Kind::Set);
      use(SetPlace::Set, term.bytes);
    }
  }

  bool isRun(std::size_t i) const {
    const Term& term = terms_[i];
    return term.unlimited && !term.lazy && rests_[i + 1].endsRunOf(term.bytes);
  }
  bool isCapturedRun(std::size_t open) const {
    return open + 2 < terms_.size() && isRun(open + 1) &&
           terms_[open + 2].kind == Term::Kind::GroupClose;
  }

  void compileRun(std::size_t i, Instruction::Kind kind, Instruction::Kind kindUntil) {
    const Term& term = terms_[i];
    ByteSet others = term.bytes;
    others.invert();
    Instruction& run = add(others.isSingle() ? kindUntil : kind);
    run.needsOne = !term.optional && !term.lazy;
    run.isFirst = program_.startsWithRun && i == skipGroupMarks(0);
    if (others.isSingle()) {
      run.byte = others.anyByte();
    } else {
      use(SetPlace::Set, term.bytes);
    }
  }

  void compileRepetition(std::size_t i) {
    using Kind = Instruction::Kind;
    const Term& term = terms_[i];
    const Rest& rest = rests_[i + 1];
    if (term.lazy && !term.optional) compileOnce(term);
    if (term.lazy && rest.always) return;
    if (rest.endsRunOf(term.bytes)) return compileRun(i, Kind::Run, Kind::RunUntil);
    Instruction& repetition = add(term.lazy ? Kind::Lazy : Kind::Greedy);
    repetition.needsOne = !term.optional && !term.lazy;
    repetition.followsAtEnd = rest.atEnd || rest.anywhere;
    ++program_.choices;
    use(SetPlace::Set, term.bytes);
    ByteSet follow = rest.first;
    ByteSet stop = term.bytes;
    stop.invert();
    if (rest.anywhere) {
      follow = term.bytes;
      follow.add(stop);
    }
    use(SetPlace::Follow, follow);
    if (!term.lazy) return;
    stop.add(follow);
    use(SetPlace::Stop, stop);
  }

  void compilePossible(std::size_t i) {
    using Kind = Instruction::Kind;
    const Term& term = terms_[i];
    const Rest& rest = rests_[i + 1];
    if (term.lazy && rest.always) return;
    const bool isCertain = rest.endsRunOf(term.bytes);
    add(isCertain ? Kind::Possible : term.lazy ? Kind::PossibleLazy : Kind::PossibleGreedy);
    use(SetPlace::Set, term.bytes);
    if (!isCertain) ++program_.choices;
  }

  const std::vector<Term>& terms_;
  std::vector<Rest> rests_;  // of the terms from each on, and behind the last
  MatcherProgram program_;
  std::vector<std::pair<SetUse, std::size_t>> setUses_;
  std::size_t prefixEnd_ = 0;  // the term behind the prefix
  bool hasTooManySets_ = false;
};

}  // namespace

std::optional<MatcherProgram> compileTerms(const Terms& terms) { return Compiler(terms).compile(); }

}  // namespace tarvel::lua::internal
