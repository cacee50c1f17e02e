#pragma once

#include <string>

#include "cli/hints/script_code.h"

namespace tarvel::lua::internal {

// Hints on operands of a wrong type. The failing code is the operator, for a loop its `for`.
std::string arithmeticHint(const ScriptCode& code);
std::string comparisonHint(const ScriptCode& code);
std::string negationHint(const ScriptCode& code);
std::string lengthHint(const ScriptCode& code);
std::string loopBoundsHint(const ScriptCode& code);

}  // namespace tarvel::lua::internal
