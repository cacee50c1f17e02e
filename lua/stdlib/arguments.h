#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "lua/value/errors.h"
#include "lua/value/multi_value.h"
#include "lua/value/native_object.h"
#include "lua/value/string_object.h"
#include "lua/value/table.h"

// The checks that library functions make on their arguments. `name` is the function's qualified
// name as messages show it
// ("string.sub", "file:read"); `index` counts from 0; `site` is that of the call. A missing
// argument fails like one of the wrong type. What is returned is borrowed from the arguments.

namespace tarvel::lua::internal {

constexpr std::size_t kAnyCount = SIZE_MAX;

[[noreturn]] void failArgument(const char* name, const char* text, Site site);
std::string argumentCountText(const char* name, std::size_t minimum, std::size_t maximum);
[[noreturn]] void failArgumentCount(const char* name, std::size_t minimum, std::size_t maximum);

// Throws std::runtime_error without a location, unlike every other check. Deliberate: hosts and
// scripts know these texts without one.
inline void requireArgumentCount(const char* name, std::size_t count, std::size_t minimum,
                                 std::size_t maximum) {
  if (count < minimum || count > maximum) failArgumentCount(name, minimum, maximum);
}

inline const Value& requireNumeric(const char* name, ValueSpan args, std::size_t index, Site site) {
  if (index >= args.size() || !args[index].isNumber())
    failArgument(name, " expects a numeric argument", site);
  return args[index];
}

// A float is truncated, see Value::asInteger. Raises "... expects a numeric argument".
inline std::int64_t requireInteger(const char* name, ValueSpan args, std::size_t index, Site site) {
  const Value& number = requireNumeric(name, args, index, site);
  return number.isInteger() ? number.integer : number.asInteger();
}
inline double requireNumber(const char* name, ValueSpan args, std::size_t index, Site site) {
  return requireNumeric(name, args, index, site).asFloat();
}

// Numbers are not accepted. Raises "... expects a string argument".
inline StringObject& requireString(const char* name, ValueSpan args, std::size_t index, Site site) {
  if (index >= args.size() || !args[index].isString())
    failArgument(name, " expects a string argument", site);
  return *args[index].string;
}

// Raises "... expects a table".
inline Table& requireTable(const char* name, ValueSpan args, std::size_t index, Site site) {
  if (index >= args.size() || !args[index].isTable()) failArgument(name, " expects a table", site);
  return *args[index].table;
}

// Raises "... expects userdata", or "... received the wrong userdata type" for the other kind or an
// empty object.
NativeObject& requireUserData(const char* name, ValueSpan args, std::size_t index, Site site,
                              NativeObject::Kind kind);

// True when the argument is given and not nil: for the functions that take an explicit nil for an
// absent argument.
inline bool isGiven(ValueSpan args, std::size_t index) noexcept {
  return index < args.size() && !args[index].isNil();
}

}  // namespace tarvel::lua::internal
