#pragma once

#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <string_view>

#include "lua/value/errors.h"
#include "lua/value/heap.h"
#include "lua/value/value.h"

// io.stdout and io.stderr.

namespace tarvel::lua::internal {

class NativeClass;

enum class StandardStream : std::uint8_t { Output, Error };

// Everything that scripts write to a standard stream goes through here, in order: to the host's
// function for it, or else into the one buffer of the C library's stdout or stderr, which a host's
// own output shares. Nothing is flushed explicitly: on a terminal a completed line appears at once,
// otherwise the text leaves when the buffer is full and when the process ends.
//
// Returns false when the process's stream could not take all of it. What the host's function throws
// becomes a script error at `site`, if it is a std::exception.
bool writeToStandard(StandardStream stream, LuaVM& vm, std::string_view text, Site site);

// Returns an owned native object of the class of streams.
Value makeStandardStream(Heap& heap, NativeClass& type, StandardStream stream);

}  // namespace tarvel::lua::internal
