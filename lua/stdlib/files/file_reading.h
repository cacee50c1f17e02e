#pragma once

#include <tarvel/lua/lua_vm.h>

#include <cstdint>

#include "lua/stdlib/files/buffered_file.h"
#include "lua/value/errors.h"
#include "lua/value/value.h"

// What file:read can ask for, one function per format. All take a file that startReading() has
// accepted and the site of the call, return an owned value, and throw what BufferedFile::readMore
// throws.

namespace tarvel::lua::internal {

// Everything up to the end, which may be nothing.
Value readRest(LuaVM& vm, BufferedFile& file, Site site);

// Up to the next line feed, or to the end where there is none. Nil at the end.
Value readLine(LuaVM& vm, BufferedFile& file, bool keepLineFeed, Site site);

// At most `count` bytes, fewer only at the end. Nil at the end, also for a count of zero.
Value readBytes(LuaVM& vm, BufferedFile& file, std::uint64_t count, Site site);

// A decimal number behind any white space, as tonumber understands it. Nil where there is none;
// only the white space is taken then.
Value readNumber(LuaVM& vm, BufferedFile& file, Site site);

}  // namespace tarvel::lua::internal
