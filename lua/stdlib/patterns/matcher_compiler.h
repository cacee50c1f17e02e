#pragma once

#include <optional>

#include "lua/stdlib/patterns/matcher_program.h"
#include "lua/stdlib/patterns/terms.h"

namespace tarvel::lua::internal {

// Nothing where there are too many different sets.
std::optional<MatcherProgram> compileTerms(const Terms& terms);

}  // namespace tarvel::lua::internal
