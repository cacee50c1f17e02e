#pragma once

#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <optional>
#include <string>

// What converting and printing public values have in common.

namespace tarvel::lua::internal {

[[noreturn]] void failBridgeOut();    // "value cannot be bridged out of TarvelLua"
[[noreturn]] void failUnsupported();  // "unsupported TarvelLua value"

// A host can set `type` and `data` apart.
inline void requireConsistent(const LuaValue& value) {
  if (static_cast<std::size_t>(value.type) != value.data.index()) failUnsupported();
}

// Whether sequences and objects are nested deeper than conversion and printing go down, or than
// the host's stack has room for.
bool isTooDeep(int depth) noexcept;

// The integer that a member's key is, where the whole key is one in base 10.
std::optional<std::int64_t> integerKey(const std::string& key) noexcept;

}  // namespace tarvel::lua::internal
