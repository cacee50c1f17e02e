#pragma once

#include <cstddef>
#include <string>

#include "cli/hints/chain.h"
#include "cli/hints/script_names.h"
#include "cli/hints/script_tokens.h"

namespace tarvel::lua::internal {

// A script that failed at run time, at the token `failed`, and what its text tells of its values.
struct ScriptCode {
  const ScriptTokens& tokens;
  const ScriptNames& names;
  std::size_t failed;
};

// What is known of a value from the text alone.
enum class Presence {
  Absent,   // nil: nothing in the script sets it, and the library does not have it
  Present,  // the library's own
  Unknown,
};
Presence presenceOf(const ScriptCode& code, const std::string& path);

// What there is to say about a value that is absent, or that is a local only further down; empty
// for all other paths, and for the empty one.
std::string absenceHint(const ScriptCode& code, const std::string& path);

// absenceHint for the first value on the way along the chain's first `count` steps.
std::string absenceHint(const ScriptCode& code, const Chain& chain, std::size_t count);

}  // namespace tarvel::lua::internal
