#pragma once

#include "lua/value/iterator_state.h"

namespace tarvel::lua::internal {

// The iterator of string.gmatch for a subject and a pattern, both strings. Raises what a search
// raises, so that its steps do not. Owned by the caller.
IteratorState* createMatchIterator(LuaVM::Impl& interpreter, const Value& subject,
                                   const Value& pattern, Site site);

}  // namespace tarvel::lua::internal
