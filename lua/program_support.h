#pragma once

#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <string>

// What our own program needs of the library beyond the public header.

namespace tarvel::lua {

// Finds out whether a text is a valid chunk, without preparing it for running.
LuaOutcome<void> checkScript(LuaVM& vm, const std::string& source, const std::string& chunkName);

// Whether a script left a file open whose text could not be stored in the end.
bool fileTextWasLost() noexcept;

// The objects of all interpreters of the process that nothing had released when their interpreter
// ended: circles of scripts, or a fault of ours. Counted in checked builds only; 0 otherwise.
std::size_t abandonedObjectCount() noexcept;

}  // namespace tarvel::lua
