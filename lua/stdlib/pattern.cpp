#include "lua/stdlib/pattern.h"

#include <algorithm>
#include <array>
#include <utility>

#include "lua/stdlib/pattern_expression.h"

namespace tarvel::lua::internal {

// ---- Translation --------------------------------------------------------------------------------

std::string escapeRegexLiteralChar(char c) {
  constexpr std::string_view kSpecial = "$()*+.?[\\]^{|}";
  if (kSpecial.find(c) == std::string_view::npos) return std::string(1, c);
  return {'\\', c};
}

namespace {

// Empty where %letter is no class.
std::string_view classOutsideSet(char letter) noexcept {
  switch (letter) {
    case 'a':
      return "[A-Za-z]";
    case 'A':
      return "[^A-Za-z]";
    case 'd':
      return "[0-9]";
    case 'D':
      return "[^0-9]";
    case 's':
      return R"([\f\n\r\t\v ])";
    case 'S':
      return R"([^\f\n\r\t\v ])";
    case 'w':
      return "[A-Za-z0-9_]";
    case 'W':
      return "[^A-Za-z0-9_]";
    default:
      return {};
  }
}

// The `^` of %S and %W is an ordinary byte in the middle of a set, and %A and %D are no classes in
// one; this is meant.
std::string_view classInsideSet(char letter) noexcept {
  switch (letter) {
    case 'a':
      return "A-Za-z";
    case 'd':
      return "0-9";
    case 's':
      return R"(\f\n\r\t\v )";
    case 'S':
      return R"(^\f\n\r\t\v )";
    case 'w':
      return "A-Za-z0-9_";
    case 'W':
      return "^A-Za-z0-9_";
    default:
      return {};
  }
}

// The offset of the bracket that closes a set whose contents start at `from`. Directly at the start
// it closes the set too, unlike in Lua; this is meant.
std::size_t findSetEnd(std::string_view pattern, std::size_t from) noexcept {
  for (std::size_t i = from; i < pattern.size(); ++i) {
    if (pattern[i] == ']') return i;
    if (pattern[i] == '%') ++i;
  }
  return std::string_view::npos;
}

void translateSetContents(std::string_view contents, std::string& out) {
  for (std::size_t i = 0; i < contents.size(); ++i) {
    const char c = contents[i];
    if (c == '%') {
      if (++i == contents.size()) return;
      const std::string_view characterClass = classInsideSet(contents[i]);
      if (characterClass.empty()) {
        out.push_back(contents[i]);  // without a backslash, whatever it is
      } else {
        out.append(characterClass);
      }
    } else {
      if (c == '\\') out.push_back('\\');
      out.push_back(c);
    }
  }
}

// Translates what starts with the `[` at `open`; returns the offset behind it.
std::size_t translateSet(std::string_view pattern, std::size_t open, std::string& out) {
  std::size_t start = open + 1;
  const bool negated = start < pattern.size() && pattern[start] == '^';
  if (negated) ++start;
  const std::size_t end = findSetEnd(pattern, start);
  if (end == std::string_view::npos) {
    out.append("\\[");
    return open + 1;
  }
  out.append(negated ? "[^" : "[");
  translateSetContents(pattern.substr(start, end - start), out);
  out.push_back(']');
  return end + 1;
}

// Translates what the `%` at `percent` starts; returns the offset behind it.
std::size_t translateEscape(std::string_view pattern, std::size_t percent, std::string& out) {
  const std::size_t next = percent + 1;
  if (next == pattern.size()) {
    out.push_back('%');
    return next;
  }
  const std::string_view characterClass = classOutsideSet(pattern[next]);
  if (characterClass.empty()) {
    out.append(escapeRegexLiteralChar(pattern[next]));
  } else {
    out.append(characterClass);
  }
  return next + 1;
}

}  // namespace

std::string translateLuaPatternToRegex(std::string_view pattern) {
  std::string out;
  std::size_t i = 0;
  while (i < pattern.size()) {
    const char c = pattern[i];
    switch (c) {
      case '(':
      case ')':
      case '*':
      case '+':
      case '.':
      case '?':
      case '^':
      case '$':
        out.push_back(c);
        ++i;
        break;
      case '-':
        out.append("*?");
        ++i;
        break;
      case '%':
        i = translateEscape(pattern, i, out);
        break;
      case '[':
        i = translateSet(pattern, i, out);
        break;
      default:
        out.append(escapeRegexLiteralChar(c));
        ++i;
        break;
    }
  }
  return out;
}

// ---- Compiled patterns --------------------------------------------------------------------------

namespace {

constexpr std::size_t kKeptPatterns = 256;
// Longer ones are rare, and their expressions take a hundred times their own memory.
constexpr std::size_t kLongestKeptPattern = 1024;  // bytes

}  // namespace

PatternCache::PatternCache() = default;
PatternCache::~PatternCache() = default;

PatternExpression& PatternCache::lookup(StringObject& pattern) {
  if (pattern.length > kLongestKeptPattern) {
    tooLongToKeep_.reset();
    tooLongToKeep_ = std::make_unique<PatternExpression>(pattern.view());
    return *tooLongToKeep_;
  }
  if (const auto found = kept_.find(&pattern); found != kept_.end()) return *found->second;
  auto expression = std::make_unique<PatternExpression>(pattern.view());
  if (keys_.size() == kKeptPatterns) forgetOldest();
  keys_.push_back(OwnedValue::share(Value(&pattern)));
  try {
    return *kept_.emplace(&pattern, std::move(expression)).first->second;
  } catch (...) {
    keys_.pop_back();
    throw;
  }
}

void PatternCache::forgetOldest() noexcept {
  kept_.erase(keys_.front().get().string);
  keys_.pop_front();
}

// ---- Searching ----------------------------------------------------------------------------------

namespace {

constexpr auto kIsMagic = [] {
  std::array<bool, 256> table{};
  for (const char c : std::string_view("()*+.?^$-%[")) table[static_cast<unsigned char>(c)] = true;
  return table;
}();

bool isPlainText(std::string_view pattern) noexcept {
  return std::none_of(pattern.begin(), pattern.end(),
                      [](char c) { return kIsMagic[static_cast<unsigned char>(c)]; });
}

bool findText(std::string_view subject, std::string_view text, std::size_t from,
              PatternMatch& match) {
  const std::size_t start = subject.find(text, from);
  if (start == std::string_view::npos) return false;
  match.set(subject, start, text.size());
  return true;
}

}  // namespace

void PatternMatch::set(std::string_view subject, std::size_t offset, std::size_t length) {
  start = offset;
  end = offset + length;
  captures.clear();
  text = subject.substr(offset, length);
}

PatternSearcher::PatternSearcher(PatternCache& cache, StringObject& pattern, bool plain)
    : text_(pattern.view()) {
  if (!plain && !isPlainText(text_)) expression_ = &cache.lookup(pattern);
}

bool PatternSearcher::find(std::string_view subject, std::size_t from, PatternMatch& match) const {
  return expression_ != nullptr ? expression_->search(subject, from, match)
                                : findText(subject, text_, from, match);
}

std::size_t PatternSearcher::captureCount() const noexcept {
  return expression_ != nullptr ? expression_->captureCount() : 0;
}

bool findPattern(PatternCache& cache, std::string_view subject, StringObject& pattern,
                 std::size_t init, bool plain, PatternMatch& match) {
  if (init > subject.size()) return false;
  return PatternSearcher(cache, pattern, plain).find(subject, init, match);
}

}  // namespace tarvel::lua::internal
