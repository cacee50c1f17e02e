#pragma once

#include <string>
#include <string_view>

// Lua patterns. There is no matcher of our own: a pattern is translated into an ECMAScript regular
// expression and run by std::regex with its default flags. So std::regex says what a match is, and
// which expressions it rejects with which text.

namespace tarvel::lua::internal {

// `c` as it stands for itself in an expression, outside of sets.
std::string escapeRegexLiteralChar(char c);

// The expression that a pattern stands for. Shallow: what it does not know is taken literally. The
// result may be an expression that std::regex rejects.
std::string translateLuaPatternToRegex(std::string_view pattern);

}  // namespace tarvel::lua::internal
