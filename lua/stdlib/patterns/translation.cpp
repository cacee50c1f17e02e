#include "lua/stdlib/patterns/translation.h"

namespace tarvel::lua::internal {

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

// Deliberate: in a set, %S and %W are their bytes and a `^`, which is an ordinary byte there, and
// %A and %D are no classes. A set of the expression has no way to say "all but these" for a part of
// it.
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

// The offset of the bracket that closes a set whose contents start at `from`. Deliberate: unlike in
// Lua it closes the set also directly at the start, because the expression reads it so.
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

// Translates what starts with the `[` at `open`; returns the offset behind it. `mayClose` becomes
// false when no set of the rest is closed, so that many open ones do not all look for their end.
std::size_t translateSet(std::string_view pattern, std::size_t open, std::string& out,
                         bool& mayClose) {
  std::size_t start = open + 1;
  const bool negated = start < pattern.size() && pattern[start] == '^';
  if (negated) ++start;
  const std::size_t end = mayClose ? findSetEnd(pattern, start) : std::string_view::npos;
  if (end == std::string_view::npos) {
    mayClose = false;
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
  bool mayClose = true;
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
        i = translateSet(pattern, i, out, mayClose);
        break;
      default:
        out.append(escapeRegexLiteralChar(c));
        ++i;
        break;
    }
  }
  return out;
}

}  // namespace tarvel::lua::internal
