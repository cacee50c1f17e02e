#pragma once

#include <span>
#include <string_view>

namespace tarvel::lua::internal {

// What the library has, and what authors who come from the larger language miss in it.

// What does the work of a function or value that does not exist here, as a piece of code or in
// words; by a global's name or with its table, "unpack" or "table.insert". Empty where nothing is
// known. A method that files lack is that of the table "file".
std::string_view remedyFor(std::string_view path);

// Whether the library has it.
bool isLibraryName(std::string_view path);

// What is in one of the library's tables, or with an empty name the globals; empty for every other.
std::span<const std::string_view> libraryMembers(std::string_view table);

// All that remedyFor knows.
std::span<const std::string_view> missedNames();

}  // namespace tarvel::lua::internal
