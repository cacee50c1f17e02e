#pragma once

#include <string>
#include <string_view>

#include "cli/hints/script_tokens.h"

namespace tarvel::lua::internal {

// Whether it is the C++ library's message for a pattern that makes no regular expression.
bool isPatternFailure(std::string_view message);

// A hint on a pattern that makes none. The failure has no place, so it is looked for in the whole
// script: a pattern that stands in a call fails whenever that is reached.
std::string patternHint(std::string_view message, const ScriptTokens& tokens);

}  // namespace tarvel::lua::internal
