#pragma once

#include <string>
#include <string_view>

#include "cli/hints/script_tokens.h"

namespace tarvel::lua::internal {

// A hint on what a script writes that does not exist here. `message` is that of the failure, whose
// place the tokens know.
std::string syntaxHint(std::string_view message, const ScriptTokens& tokens);

}  // namespace tarvel::lua::internal
