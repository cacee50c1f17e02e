#pragma once

#include <tarvel/lua/lua_error.h>

#include <string>
#include <string_view>

namespace tarvel::lua {

// One line for an author who comes from the larger language: what does here what the script tried,
// or which value was nil. Empty where nothing is known or the cause is not sure. `source` is the
// text of the chunk that the error names.
std::string hintFor(const LuaError& error, std::string_view source);

}  // namespace tarvel::lua
