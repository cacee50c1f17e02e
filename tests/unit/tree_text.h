#pragma once

#include <string>

namespace tarvel::lua {

// What a chunk became, for tests and for looking at it from a debugger: each node that is executed
// stands in parentheses, under the name of the function that was chosen for it and in front of its
// parts in the order of their evaluation. A variable stands under its name, with its home if that
// is not the frame. An operand that an operator's function gets at by itself is the word for its
// policy (operands.h): `n = n + 1` with a local n is "(Arithmetic<Add, IntoLocal> Frame Constant
// n)".
std::string treeText(const std::string& source);

}  // namespace tarvel::lua
