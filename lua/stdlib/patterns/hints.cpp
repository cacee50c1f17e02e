#include "lua/stdlib/patterns/hints.h"

#include <algorithm>

namespace tarvel::lua::internal {

namespace {

std::size_t indexOf(char byte) noexcept { return static_cast<unsigned char>(byte); }

bool isAlphanumeric(char c) noexcept {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isQuantifier(char c) noexcept { return c == '*' || c == '+' || c == '?'; }

// One element of an expression with its quantifiers.
struct Term {
  enum class Kind {
    End,
    OneByte,    // any of `bytes`
    GroupOpen,  // of a capturing group
    GroupClose,
    StartAnchor,
    EndAnchor,
    Uncertain,  // something that is not understood here; so is all that follows
  };

  Kind kind = Kind::End;
  ByteSet bytes;
  bool repeated = false;   // there are quantifiers
  bool optional = false;   // the quantifiers may let it match nothing
  bool unlimited = false;  // the quantifiers let it match any number of times
  bool isRun = false;      // one or more, as many as there are
};

// Cuts an expression into terms.
class TermReader {
 public:
  explicit TermReader(std::string_view expression) : rest_(expression) {}

  Term next() {
    Term term;
    if (rest_.empty()) return term;
    term.kind = readElement(term.bytes);
    const std::size_t count = static_cast<std::size_t>(
        std::find_if_not(rest_.begin(), rest_.end(), isQuantifier) - rest_.begin());
    const std::string_view quantifiers = take(count);
    term.repeated = !quantifiers.empty();
    const bool isPlus = quantifiers == "+" || quantifiers == "+?";
    term.optional = term.repeated && !isPlus;
    term.isRun = quantifiers == "+";
    term.unlimited = isPlus || quantifiers == "*" || quantifiers == "*?";
    return term;
  }

 private:
  std::string_view take(std::size_t count) noexcept {
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }

  Term::Kind readElement(ByteSet& bytes) {
    const char c = take(1)[0];
    switch (c) {
      case '(':
        // A group of a special kind, or a lookahead.
        return rest_.starts_with('?') ? Term::Kind::Uncertain : Term::Kind::GroupOpen;
      case ')':
        return Term::Kind::GroupClose;
      case '^':
        return Term::Kind::StartAnchor;
      case '$':
        return Term::Kind::EndAnchor;
      case '.':
        bytes.set().reset(indexOf('\n')).reset(indexOf('\r'));
        return Term::Kind::OneByte;
      case '[':
        return readSet(bytes) ? Term::Kind::OneByte : Term::Kind::Uncertain;
      case '\\':
        bytes.set(indexOf(take(1)[0]));
        return Term::Kind::OneByte;
      default:
        bytes.set(indexOf(c));
        return Term::Kind::OneByte;
    }
  }

  // Reads what follows a `[`. False for whatever std::regex might see in another way than this.
  bool readSet(ByteSet& bytes) {
    const bool negated = rest_.starts_with('^');
    if (negated) take(1);
    while (!rest_.empty()) {
      if (rest_[0] == ']') {
        take(1);
        if (negated) bytes.flip();
        return true;
      }
      if (!readSetItem(bytes)) return false;
    }
    return false;
  }

  bool readSetItem(ByteSet& bytes) {
    char c = take(1)[0];
    if (c == '[' || (c == '\\' && !readSetEscape(c))) return false;
    const bool isRange = rest_.size() > 1 && rest_[0] == '-' && rest_[1] != ']';
    if (!isRange) {
      bytes.set(indexOf(c));
      return true;
    }
    const char last = take(2)[1];
    if (!isAlphanumeric(c) || !isAlphanumeric(last)) return false;
    for (std::size_t i = indexOf(c); i <= indexOf(last); ++i) bytes.set(i);
    return true;
  }

  bool readSetEscape(char& c) {
    constexpr std::string_view kEscapes = "fnrtv\\]";
    constexpr std::string_view kMeanings = "\f\n\r\t\v\\]";
    if (rest_.empty()) return false;
    const std::size_t which = kEscapes.find(take(1)[0]);
    if (which == std::string_view::npos) return false;
    c = kMeanings[which];
    return true;
  }

  std::string_view rest_;
};

// True also where the text only looks like it.
bool mayHaveOptionalGroup(std::string_view expression) noexcept {
  for (const std::string_view sign : {")*", ")?", ")+*", ")+?", ")++"}) {
    if (expression.find(sign) != std::string_view::npos) return true;
  }
  return false;
}

char onlyByteOf(const ByteSet& bytes) noexcept {
  std::size_t i = 0;
  while (!bytes[i]) ++i;
  return static_cast<char>(i);
}

bool isSingleRun(TermReader terms) {
  const Term only = terms.next();
  return only.kind == Term::Kind::OneByte && only.isRun && terms.next().kind == Term::Kind::End;
}

class HintCollector {
 public:
  SearchHints collect(TermReader terms) {
    hints_.isLiteral = true;
    Term term = terms.next();
    for (; term.kind != Term::Kind::End && term.kind != Term::Kind::Uncertain;
         term = terms.next()) {
      addRun(term);
      if (term.kind == Term::Kind::OneByte) {
        addFirst(term);
        addLiteral(term);
      } else {
        addMark(term);
      }
    }
    if (term.kind == Term::Kind::Uncertain) hints_.isLiteral = false;
    if (!hints_.first) hints_.run.reset();
    return hints_;
  }

 private:
  void addFirst(const Term& term) {
    if (!firstIsOpen_) return;
    first_ |= term.bytes;
    if (term.optional) return;
    firstIsOpen_ = false;
    hints_.first = first_;
  }

  void addLiteral(const Term& term) {
    const bool isLiteral = !term.optional && term.bytes.count() == 1;
    if (isLiteral && prefixIsOpen_) {
      hints_.prefix.push_back(onlyByteOf(term.bytes));
    } else if (isLiteral && !hints_.required) {
      hints_.required = onlyByteOf(term.bytes);
    }
    if (isLiteral && !term.repeated) return;
    prefixIsOpen_ = hints_.isLiteral = false;
  }

  void addMark(const Term& term) {
    const bool isGroup = term.kind == Term::Kind::GroupOpen || term.kind == Term::Kind::GroupClose;
    hints_.isLiteral = false;
    if (!isGroup) firstIsOpen_ = false;
    if (!isGroup || term.repeated) prefixIsOpen_ = false;
  }

  // The first two terms decide, apart from the groups around them.
  void addRun(const Term& term) {
    if (runIsSettled_ || term.kind == Term::Kind::GroupOpen) return;
    if (term.kind == Term::Kind::GroupClose && !term.repeated) return;
    if (!run_ && term.kind == Term::Kind::OneByte && term.unlimited) {
      run_ = term.bytes;
      return;
    }
    runIsSettled_ = true;
    const bool endsRun =
        term.kind == Term::Kind::EndAnchor || (term.kind == Term::Kind::OneByte && !term.optional);
    if (run_ && endsRun && (*run_ & term.bytes).none()) hints_.run = run_;
  }

  SearchHints hints_;
  ByteSet first_;
  bool firstIsOpen_ = true;
  bool prefixIsOpen_ = true;
  std::optional<ByteSet> run_;
  bool runIsSettled_ = false;
};

}  // namespace

bool mayHaveRestOfSet(std::string_view expression) noexcept {
  bool inSet = false;
  for (std::size_t i = 0; i < expression.size(); ++i) {
    const char c = expression[i];
    if (c == '\\') {
      ++i;
      if (!inSet && isAlphanumeric(expression[i])) return true;
    } else if (inSet) {
      inSet = c != ']';
    } else if (c == '|' || c == '{') {
      return true;
    } else {
      inSet = c == '[';
    }
  }
  return false;
}

SearchHints findSearchHints(std::string_view expression) {
  SearchHints hints;
  if (mayHaveRestOfSet(expression)) return hints;
  hints.anchored = expression.starts_with('^');
  if (hints.anchored || mayHaveOptionalGroup(expression)) return hints;
  hints = HintCollector().collect(TermReader(expression));
  hints.isRun = isSingleRun(TermReader(expression));
  return hints;
}

}  // namespace tarvel::lua::internal
