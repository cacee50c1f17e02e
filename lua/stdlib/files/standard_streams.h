#pragma once

#include <string_view>

#include "lua/value/heap.h"
#include "lua/value/value.h"

// io.stdout and io.stderr.

namespace tarvel::lua::internal {

class NativeClass;

// Everything that scripts write to the process's standard output goes through here, in order, into
// the one buffer of the C library's stdout, which a host's own output shares. Nothing is flushed
// explicitly: on a terminal a completed line appears at once, otherwise the text leaves when the
// buffer is full and when the process ends. Returns false when the stream could not take all of it.
bool writeStandardOutput(std::string_view text) noexcept;

// Return an owned native object of the class of streams.
Value makeStandardOutput(Heap& heap, NativeClass& type);
Value makeStandardError(Heap& heap, NativeClass& type);

}  // namespace tarvel::lua::internal
