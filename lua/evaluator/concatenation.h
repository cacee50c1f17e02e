#pragma once

#include "lua/frontend/syntax_tree.h"
#include "lua/value/heap.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// Evaluates the operands from number `first` on into their temporaries, left to right.
void evaluatePieces(const ConcatExpr* concat, std::uint32_t first, Value* base);

// Appends the text of the pieces from number `first` on to `text`, a slot that holds the only
// reference to a string, and empties their slots. On failure (std::bad_alloc) nothing is appended.
void appendPieces(const ConcatExpr* concat, std::uint32_t first, Value& text, Value* base);

}  // namespace tarvel::lua::internal
