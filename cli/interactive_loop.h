#pragma once

#include <tarvel/lua/lua_vm.h>

namespace tarvel::lua {

// Runs lines of standard input as they come; returns the exit status.
// Deliberate: os.exit ends only the line that calls it; `exit` and `quit` end the loop.
int runInteractively(LuaVM& vm);

}  // namespace tarvel::lua
