#pragma once

#include <cstdint>
#include <span>
#include <string>

// Well-formed scripts from bytes, for comparing ways of running them.

namespace tarvel::lua::fuzz {

// Where the variables of a script live. The same bytes give the same script in each: the same
// statements on the same lines, with the same results.
enum class Placement : std::uint8_t {
  Locals,    // of the main function
  Captured,  // locals of the main function, used by a function inside
  Globals,
  Fields,      // of one table
  Elements,    // of one list
  Calls,       // locals, each read through a call, so that no operand has a form of its own
  Properties,  // of an object of the host's, which run get1 to get9, set1 to set9 and spoil
};
inline constexpr int kPlacements = 7;

// The script calls `report` with any values, in the order in which it gets to know them. It ends by
// itself, but may take long.
std::string generateScript(std::span<const std::uint8_t> bytes, Placement placement);

}  // namespace tarvel::lua::fuzz
