#pragma once

#include <string>
#include <string_view>

#include "cli/hints/script_code.h"

namespace tarvel::lua::internal {

// On a wrong number of arguments. The failure has no place, so the script is searched for a call
// that passes more than the function takes.
std::string argumentCountHint(const ScriptTokens& tokens, const ScriptNames& names,
                              std::string_view message);

// On an argument of a wrong type; the failing code is the call.
std::string argumentTypeHint(const ScriptCode& code, std::string_view message);

}  // namespace tarvel::lua::internal
