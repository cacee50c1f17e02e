#pragma once

#include <string>
#include <string_view>

#include "cli/hints/script_code.h"

namespace tarvel::lua::internal {

// Hints on values that were called, indexed or assigned into and should not have been. `type` is
// what they were. The failing code is a chain; which value of it failed is said where that is sure,
// or else which ones may have.
std::string callHint(const ScriptCode& code, std::string_view type);
std::string indexHint(const ScriptCode& code, std::string_view type);
std::string assignmentHint(const ScriptCode& code, std::string_view type);

// On a field of a string that is no function of the library.
std::string stringFieldHint(const ScriptCode& code);

}  // namespace tarvel::lua::internal
