#pragma once

#include <string>
#include <string_view>

// Lua patterns. A pattern is translated into an ECMAScript regular expression, and std::regex with
// its default flags says what a match is, and which expressions are rejected with which text. What
// searches for the simple ones is our own, and finds the same.

namespace tarvel::lua::internal {

// `c` as it stands for itself in an expression, outside of sets.
std::string escapeRegexLiteralChar(char c);

// Of such a byte a backslash makes something else than the byte itself.
constexpr bool isAlphanumeric(char c) noexcept {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// The expression that a pattern stands for. Shallow: what it does not know is taken literally. The
// result may be an expression that std::regex rejects.
std::string translateLuaPatternToRegex(std::string_view pattern);

}  // namespace tarvel::lua::internal
