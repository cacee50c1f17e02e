#include "lua/stdlib/patterns/terms.h"

#include "lua/stdlib/patterns/translation.h"

namespace tarvel::lua::internal {

namespace {

constexpr std::size_t kMostTerms = 512;

bool isQuantifier(char c) noexcept { return c == '*' || c == '+' || c == '?'; }

// Everywhere, false means that the expression is not of this kind.
class TermReader {
 public:
  explicit TermReader(std::string_view expression) : rest_(expression) {}

  std::optional<Terms> read() {
    while (!rest_.empty()) {
      Term term;
      if (terms_.list.size() == kMostTerms || !readElement(term)) return std::nullopt;
      if (term.isOneByte() && !readQuantifier(term)) return std::nullopt;
      terms_.list.push_back(term);
    }
    if (!open_.empty()) return std::nullopt;
    return std::move(terms_);
  }

 private:
  static constexpr int kNoByte = 256;

  bool isNext(char c) const noexcept { return rest_.starts_with(c); }
  char take() noexcept {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  bool readElement(Term& term) {
    const char c = take();
    switch (c) {
      case '(':
        return openGroup(term);
      case ')':
        return closeGroup(term);
      case '^':
        term.kind = Term::Kind::Start;
        return true;
      case '$':
        term.kind = Term::Kind::End;
        return true;
      case '.':
        term.bytes.add('\n');
        term.bytes.add('\r');
        term.bytes.invert();
        return true;
      case '[':
        return readSet(term.bytes);
      case '\\':
        if (rest_.empty() || isAlphanumeric(rest_.front())) return false;
        term.bytes.add(take());
        return true;
      case '*':
      case '+':
      case '?':
      case '|':
      case '{':
      case '}':
      case ']':
        return false;
      default:
        term.bytes.add(c);
        return true;
    }
  }

  bool openGroup(Term& term) {
    if (isNext('?')) return false;
    term.kind = Term::Kind::GroupOpen;
    term.group = static_cast<std::uint16_t>(terms_.groups++);
    open_.push_back(term.group);
    return true;
  }

  bool closeGroup(Term& term) {
    if (open_.empty()) return false;
    term.kind = Term::Kind::GroupClose;
    term.group = open_.back();
    open_.pop_back();
    return true;
  }

  bool readQuantifier(Term& term) {
    if (rest_.empty() || !isQuantifier(rest_.front())) return true;
    const char quantifier = take();
    term.optional = quantifier != '+';
    term.unlimited = quantifier != '?';
    term.lazy = isNext('?');
    if (term.lazy) take();
    return rest_.empty() || !isQuantifier(rest_.front());
  }

  // What follows a `[`.
  bool readSet(ByteSet& bytes) {
    const bool negated = isNext('^');
    if (negated) take();
    int last = kNoByte;  // may yet become the start of a range
    while (!isNext(']')) {
      if (!readSetItem(bytes, last)) return false;
    }
    take();
    addByte(bytes, last);
    if (negated) bytes.invert();
    return true;
  }

  static void addByte(ByteSet& bytes, int byte) noexcept {
    if (byte != kNoByte) bytes.add(static_cast<char>(byte));
  }

  bool readSetItem(ByteSet& bytes, int& last) {
    if (last != kNoByte && rest_.size() > 1 && isNext('-') && rest_[1] != ']') {
      take();
      return readRangeEnd(bytes, last);
    }
    addByte(bytes, last);
    last = readSetByte();
    return last != kNoByte;
  }

  // A `-` behind a range is a byte.
  bool readRangeEnd(ByteSet& bytes, int& start) {
    const int end = readSetByte();
    if (end == kNoByte || start > end) return false;
    bytes.addRange(static_cast<char>(start), static_cast<char>(end));
    start = kNoByte;
    return true;
  }

  // A value of the type char, or kNoByte.
  int readSetByte() {
    constexpr std::string_view kEscapes = "fnrtv\\";
    constexpr std::string_view kMeanings = "\f\n\r\t\v\\";
    if (rest_.empty()) return kNoByte;
    const char c = take();
    if (c == '[') {
      const bool startsClass = rest_.empty() || isNext('.') || isNext(':') || isNext('=');
      return startsClass ? kNoByte : c;
    }
    if (c != '\\') return c;
    if (rest_.empty()) return kNoByte;
    const std::size_t which = kEscapes.find(take());
    return which == std::string_view::npos ? kNoByte : kMeanings[which];
  }

  std::string_view rest_;
  Terms terms_;
  std::vector<std::uint16_t> open_;  // groups
};

}  // namespace

std::optional<Terms> readTerms(std::string_view expression) {
  if (expression.size() > kLongestReadExpression) return std::nullopt;
  return TermReader(expression).read();
}

}  // namespace tarvel::lua::internal
